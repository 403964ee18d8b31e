// Any text under any options: the scanner's tokens and characters are those of the plain reference.
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <zrclb/scan.h>

#include "expressions/scanner_comparison.h"

namespace {

using scan_test::Call;
using scan_test::Comparison;

constexpr std::size_t header_size = 8;

// Bits of the fourth byte.
enum Flag : unsigned {
    signed_bytes = 1,
    wide_characters = 2, // some control characters become values that are no bytes
    keyword_list = 0x1C, // which one
};

int Character(std::uint8_t byte, unsigned flags) {
    constexpr int wide[] = {256, 256 + '"', 1000000, INT_MAX, -2, -128, INT_MIN, -191};
    if ((flags & wide_characters) != 0 && byte >= 1 && byte <= std::size(wide))
        return wide[byte - 1];
    return (flags & signed_bytes) != 0 ? static_cast<std::int8_t>(byte) : byte;
}

const std::vector<std::string> &Keywords(unsigned flags) {
    static const std::vector<std::string> lists[] = {
        {},
        {"if"},
        {"while", "If"},
        {"a", "b", "a"},
        {"IF", "if", "else", "ELSE", "x", "_", "while", "do"},
        {"", "e", "E5", "'", "x'", "\x84", "A\x9A"},
        {"int", "double", "char", "if", "else", "while", "for", "return", "static", "const", "void", "struct"},
        {"ab", "aB", "Ab", "AB", "abc", "b", "B"},
    };
    return lists[(flags & keyword_list) >> 2];
}

Call CallOf(std::uint8_t byte) {
    switch (byte & 15) {
    case 1:
    case 2:
        return Call::Character;
    case 3:
    case 4:
        return Call::CharacterPastComments;
    case 5:
        return Call::Reset;
    case 6:
        return Call::ResetAndRewind;
    default:
        return Call::Token;
    }
}

} // namespace

// Three bytes of options (no trace), one of flags, four that tell which calls are made, then the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < header_size)
        return 0;
    Comparison::Case input;
    input.options = (data[0] | data[1] << 8 | data[2] << 16) & ~SCAN_TRACE;
    input.keywords = Keywords(data[3]);
    input.calls.clear();
    for (std::size_t i = 4; i < header_size; ++i)
        input.calls.push_back(CallOf(data[i]));
    for (std::size_t i = header_size; i < size; ++i)
        input.text.push_back(Character(data[i], data[3]));
    const std::string difference = Comparison(input).Run();
    if (!difference.empty()) {
        std::fprintf(stderr, "scanner:%s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
