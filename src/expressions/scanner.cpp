// The scanner behind a handle.
#include "expressions/scanner.h"

#include <new>

#include <zrclb/heap.h>
#include <zrclb/report.h>

using zr::expressions::FunctionSource;

namespace {

int NoCharacter() {
    return 0;
}

} // namespace

CZrScanner::CZrScanner(int (*source)(void), zr_long (*user)(void), zr_long options, const char **keywords)
    : CZrScanner(Tag{}, FunctionSource{source != nullptr ? source : NoCharacter, user}, options, keywords) {}

void CZrScanner::Prepare(zr_long options, const char **keywords) {
    if (!m_keywords.Build(keywords, (options & SCAN_KEYWORDS_NOCASE) != 0))
        zr_error("Nicht gen\374gend Speicher", nullptr, nullptr, "Scan", __LINE__);
    else if (m_traced)
        m_trace.Open();
}

// What is called most is called directly.
int CZrScanner::NextToken(zr_long &kind, ZrScanToken &token) noexcept {
    auto *core = std::get_if<FunctionCore>(&m_core);
    if (core != nullptr && !m_traced) [[likely]]
        return core->NextToken(kind, token);
    return NextTokenOfAnySource(kind, token);
}

int CZrScanner::NextTokenOfAnySource(zr_long &kind, ZrScanToken &token) noexcept {
    return std::visit(
        [&](auto &core) {
            const bool has_place = !core.OwesDot();
            const int error = core.NextToken(kind, token);
            if (m_traced && has_place)
                m_trace.Write(kind, token);
            return error;
        },
        m_core);
}

void CZrScanner::NextCharacter(zr_long &kind, char &c, bool comments) {
    std::visit([&](auto &core) { core.NextCharacter(kind, c, comments); }, m_core);
}

void CZrScanner::Reset() {
    std::visit([](auto &core) { core.Reset(); }, m_core);
}

extern "C" {

CZrScanner *scan_open(int (*getChar)(void), zr_long options, const char **keywords) noexcept {
    return scan_open_with_userdata(getChar, nullptr, options, keywords);
}

CZrScanner *scan_open_with_userdata(int (*getChar)(void), zr_long (*userFunction)(void), zr_long options,
                                    const char **keywords) noexcept {
    void *place = heap_malloc(sizeof(CZrScanner));
    return place != nullptr ? new (place) CZrScanner(getChar, userFunction, options, keywords) : nullptr;
}

void scan_close(CZrScanner *handle) noexcept {
    if (handle != nullptr)
        handle->~CZrScanner();
    heap_free(handle);
}

CZrScanner *scan_reset(CZrScanner *handle) noexcept {
    if (handle != nullptr)
        handle->Reset();
    return handle;
}

int scan_token(CZrScanner *handle, zr_long *kind, ZrScanToken *token) noexcept {
    if (handle == nullptr || kind == nullptr || token == nullptr)
        return SCAN_ERROR_NULL;
    return handle->NextToken(*kind, *token);
}

void scan_character(CZrScanner *handle, zr_long *kind, char *c) noexcept {
    if (handle != nullptr && kind != nullptr && c != nullptr)
        handle->NextCharacter(*kind, *c, false);
}

void scan_character_ex(CZrScanner *handle, zr_long *kind, char *c) noexcept {
    if (handle != nullptr && kind != nullptr && c != nullptr)
        handle->NextCharacter(*kind, *c, true);
}

} // extern "C"
