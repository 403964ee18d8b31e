// The library's reporter of bad arguments to the C library.
#include "frame/invalid_parameter.h"

#include <cstddef>

#include <zrclb/report.h>

namespace zr::frame {
namespace {

constexpr std::size_t narrow_size = 256;

void Narrow(const wchar_t *text, char (&out)[narrow_size]) {
    std::size_t length = 0;
    while (text != nullptr && length < narrow_size - 1 && text[length] != L'\0') {
        auto code = static_cast<unsigned long>(text[length]);
        out[length] = code < 0x100 ? static_cast<char>(static_cast<unsigned char>(code)) : '?';
        ++length;
    }
    out[length] = '\0';
}

} // namespace

void InvalidParameterReporter(const wchar_t *expression, const wchar_t *function) {
    char expression_text[narrow_size];
    char function_text[narrow_size];
    Narrow(expression, expression_text);
    Narrow(function, function_text);
    zr_message("Invalid Parameter", expression_text, function_text, "clib", __LINE__);
}

} // namespace zr::frame
