// Any two texts, compared as names and as dates: as the plain references do it, and the other way round the other sign.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <zrclb/window_utilities.h>

#include "desktop/reference_natural_order.h"

namespace {

// A text in a block of exactly its size; a sanitizer sees every byte read behind it.
std::unique_ptr<char[]> Exact(const std::string &text) {
    std::unique_ptr<char[]> copy = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

void Check(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

// The text up to the first line feed is the one, the rest the other, both up to their first zero byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::size_t line_end = text.find('\n');
    const std::string one(text.substr(0, line_end).c_str());
    const std::string two(line_end == std::string::npos ? "" : text.substr(line_end + 1).c_str());
    const std::unique_ptr<char[]> a = Exact(one), b = Exact(two);
    const int order = wu_ANCmp(a.get(), b.get());
    Check(order == reference::ANCmp(one, two));
    Check(Sign(wu_ANCmp(b.get(), a.get())) == -Sign(order));
    Check(wu_ANCmp(a.get(), a.get()) == 0);
    Check(wu_DateCmp(a.get(), b.get()) == reference::DateCmp(one, two));
    Check(wu_DateCmp(b.get(), a.get()) == -wu_DateCmp(a.get(), b.get()));
    return 0;
}
