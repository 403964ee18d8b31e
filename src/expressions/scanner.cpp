// The scanner behind a handle.
#include "expressions/scanner.h"

#include <new>

#include <zrclb/heap.h>
#include <zrclb/report.h>

using zr::expressions::CallerSource;

CZrScanner::CZrScanner(const CallerSource &source, zr_long options, const char **keywords)
    : characters_(options), core_(source, options, characters_, keywords_), traced_((options & SCAN_TRACE) != 0) {
    if (!keywords_.Build(keywords, (options & SCAN_KEYWORDS_NOCASE) != 0))
        zr_error("Nicht gen\374gend Speicher", nullptr, nullptr, "Scan", __LINE__);
    else if (traced_)
        trace_.Open();
}

int CZrScanner::NextToken(zr_long &kind, ZrScanToken &token) {
    return traced_ ? TraceToken(kind, token) : core_.NextToken(kind, token);
}

int CZrScanner::TraceToken(zr_long &kind, ZrScanToken &token) {
    const bool has_place = !core_.OwesDot();
    const int error = core_.NextToken(kind, token);
    if (has_place)
        trace_.Write(kind, token);
    return error;
}

extern "C" {

CZrScanner *scan_open(int (*getChar)(void), zr_long options, const char **keywords) noexcept {
    return scan_open_with_userdata(getChar, nullptr, options, keywords);
}

CZrScanner *scan_open_with_userdata(int (*getChar)(void), zr_long (*userFunction)(void), zr_long options,
                                    const char **keywords) noexcept {
    void *place = heap_malloc(sizeof(CZrScanner));
    return place != nullptr ? new (place) CZrScanner(CallerSource{getChar, nullptr, userFunction}, options, keywords)
                            : nullptr;
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
