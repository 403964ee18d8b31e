// Any text with places, in buffers of any size: no byte behind the buffer, with less room the same text or none, and result and text
// are those of a plain reference.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <zrclb/calc.h>

#include "expressions/reference_string_expression.h"

namespace {

void Check(bool holds) {
    if (!holds)
        std::abort();
}

// Fills a block of exactly `size` bytes; a sanitizer sees every byte written behind it.
bool Fill(const char *text, std::size_t size, std::string &out) {
    const std::unique_ptr<char[]> block = std::make_unique<char[]>(size);
    std::memset(block.get(), '#', size);
    char ok = 7;
    calc_string_expression(text, block.get(), static_cast<zr_long>(size), &ok);
    Check(ok == 0 || ok == 1);
    Check(size == 0 || std::memchr(block.get(), 0, size) != nullptr);
    out = size != 0 ? block.get() : "";
    Check(ok == 1 || out.empty());
    return ok == 1;
}

} // namespace

// The first two bytes are a size, what follows is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::size_t head = std::min<std::size_t>(size, 2);
    const std::size_t wanted = head == 2 ? data[0] + std::size_t{data[1]} * 256 : 0;
    const std::string text(reinterpret_cast<const char *>(data) + head, size - head);
    const std::size_t length = std::strlen(text.c_str());
    const std::size_t ample = length * 100 + 1; // ten characters make 610 at most
    const std::unique_ptr<char[]> exact = std::make_unique<char[]>(length + 1);
    std::memcpy(exact.get(), text.c_str(), length + 1);

    std::string whole, part;
    const bool good = Fill(exact.get(), ample, whole);
    zr::test::ReferenceStringExpression reference;
    Check(reference.Fill(exact.get(), ample) == good && reference.out == whole);
    reference = {};
    const bool fits = Fill(exact.get(), wanted, part);
    Check(fits == (good && whole.size() < wanted) && fits == reference.Fill(exact.get(), wanted));
    Check(part == (fits ? whole : "") && part == reference.out);
    if (good) {
        Check(Fill(exact.get(), whole.size() + 1, part) && part == whole);
        Check(!Fill(exact.get(), whole.size(), part));
    }
    return 0;
}
