// The scanner behind a handle: the core over a caller's source, with the caller's keywords and a trace.
#ifndef ZR_EXPRESSIONS_SCANNER_H
#define ZR_EXPRESSIONS_SCANNER_H

#include <utility>
#include <variant>

#include <zrclb/scan.h>
#include <zrclb/scan.hpp>

#include "expressions/keyword_index.h"
#include "expressions/scan_trace.h"
#include "expressions/scanner_core.h"

namespace zr::expressions {

// A caller's function, and the caller's user function, if there is one.
struct FunctionSource {
    int (*get_char)(void) = nullptr;
    zr_long (*user)(void) = nullptr;

    int Next() const { return get_char(); }
    bool HasUser() const { return user != nullptr; }
    zr_long User() const { return user != nullptr ? user() : 0; }
    static void Follow(const FunctionSource &) {} // nothing of it moves
};

// A caller's object; null is an input without characters.
struct ObjectSource {
    IZrScannerGetChar *object = nullptr;

    int Next() const { return object != nullptr ? object->GetChar() : 0; }
    static bool HasUser() { return false; }
    static zr_long User() { return 0; }
    static void Follow(const ObjectSource &) {}
};

} // namespace zr::expressions

struct CZrScanner {
public:
    // What is passed by pointer is borrowed; null is an input without characters.
    CZrScanner(IZrScannerGetChar *source, zr_long options, const char **keywords)
        : CZrScanner(Tag{}, zr::expressions::ObjectSource{source}, options, keywords) {}
    CZrScanner(int (*source)(void), zr_long (*user)(void), zr_long options, const char **keywords);

    int NextToken(zr_long &kind, ZrScanToken &token) noexcept;
    void NextCharacter(zr_long &kind, char &c, bool comments);
    void Reset();

private:
    template <class Source>
    using Core = zr::expressions::ScannerCore<Source, zr::expressions::KeywordIndex>;
    using FunctionCore = Core<zr::expressions::FunctionSource>;
    using ObjectCore = Core<zr::expressions::ObjectSource>;

    struct Tag {}; // of what is made in here only

    template <class Source>
    CZrScanner(Tag, const Source &source, zr_long options, const char **keywords)
        : m_characters(options), m_core(std::in_place_type<Core<Source>>, source, options, m_characters, m_keywords),
          m_traced((options & SCAN_TRACE) != 0) {
        Prepare(options, keywords);
    }
    void Prepare(zr_long options, const char **keywords);
    int NextTokenOfAnySource(zr_long &kind, ZrScanToken &token) noexcept;

    const zr::expressions::CharacterTable m_characters;
    zr::expressions::KeywordIndex m_keywords;
    zr::expressions::ScanTrace m_trace;
    std::variant<FunctionCore, ObjectCore> m_core;
    const bool m_traced;
};

#endif
