// Any pattern and name: the matching against the rules tried out in every way.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/reference_wildcard.h"
#include "platform/wildcard.h"

// The text up to the first line feed is the pattern, the rest the name, both up to their first zero byte. The reference
// is exponential, so it gets short texts only; long ones must merely come to an end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::size_t line_end = text.find('\n');
    const std::string pattern(text.substr(0, line_end).c_str());
    const std::string name(line_end == std::string::npos ? "" : text.substr(line_end + 1).c_str());
    const bool matches = zr::platform::MatchWildcard(pattern.c_str(), name.c_str());
    if (zr::platform::Wildcard(pattern.c_str()).Match(name) != matches)
        std::abort();
    if (pattern.size() <= 9 && name.size() <= 12 && reference::MatchWildcard(pattern, name) != matches)
        std::abort();
    return 0;
}
