// The scanner behind a handle: the core over a caller's source, with the caller's keywords and a trace.
#ifndef ZR_EXPRESSIONS_SCANNER_H
#define ZR_EXPRESSIONS_SCANNER_H

#include <zrclb/scan.h>
#include <zrclb/scan.hpp>

#include "expressions/keyword_index.h"
#include "expressions/scan_trace.h"
#include "expressions/scanner_core.h"

namespace zr::expressions {

// A caller's function, or else a caller's object, or else nothing at all; and the caller's user function, if there is one.
struct CallerSource {
    int (*get_char)(void) = nullptr;
    IZrScannerGetChar *object = nullptr;
    zr_long (*user)(void) = nullptr;

    int Next() const { return get_char != nullptr ? get_char() : object != nullptr ? object->GetChar() : 0; }
    zr_long User() const { return user != nullptr ? user() : 0; }
};

} // namespace zr::expressions

struct CZrScanner {
public:
    // What is passed by pointer is borrowed.
    CZrScanner(IZrScannerGetChar *source, zr_long options, const char **keywords)
        : CZrScanner(zr::expressions::CallerSource{nullptr, source, nullptr}, options, keywords) {}
    CZrScanner(const zr::expressions::CallerSource &source, zr_long options, const char **keywords);

    int NextToken(zr_long &kind, ZrScanToken &token);
    void NextCharacter(zr_long &kind, char &c, bool comments) { core_.NextCharacter(kind, c, comments); }
    void Reset() { core_.Reset(); }

private:
    int TraceToken(zr_long &kind, ZrScanToken &token);

    const zr::expressions::CharacterTable characters_;
    zr::expressions::KeywordIndex keywords_;
    zr::expressions::ScanTrace trace_;
    zr::expressions::ScannerCore<zr::expressions::CallerSource, zr::expressions::KeywordIndex> core_;
    const bool traced_;
};

#endif
