// Any two paths: the relative one put behind its base and made full leads to the target again, and no answer leaves its
// limits.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/path_text.h"

namespace {

using namespace zr::platform;

const CurrentFolders current{[](void *, int drive, char *out, std::size_t) {
                                 std::strcpy(out, "C:\\woad");
                                 return drive == 0 || drive == 3;
                             },
                             nullptr};

std::string Full(const std::string &path) {
    char out[1024];
    const std::size_t length = FullPath(path.c_str(), current, out, sizeof out, nullptr);
    if (length < sizeof out ? std::strlen(out) != length : *out != '\0')
        std::abort();
    return out;
}

// Normal form: a full path on a drive that making it full leaves alone, with a name at its end and no second ":",
// behind which the desktop sees a drive wherever it stands.
bool IsNormal(const std::string &path) {
    return path.size() > 3 && path.size() <= path_limit && path.find(':') == 1 && path.rfind(':') == 1 &&
           path.back() != '\\' && Full(path) == path;
}

bool SameWithoutCase(const std::string &a, const std::string &b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Capital(x) == Capital(y); });
}

} // namespace

// The first byte holds the attributes, the text up to the first line feed is the base, the rest the target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::size_t line_end = text.find('\n');
    if (size == 0 || line_end == 0 || line_end == std::string::npos)
        return 0;
    const std::uint32_t from_attributes = data[0] & 1 ? 0x10 : 0x80;
    const std::uint32_t to_attributes = data[0] & 2 ? 0x10 : 0x80;
    const std::string from(text.substr(1, line_end - 1).c_str());
    const std::string to(text.substr(line_end + 1).c_str());
    char relative[path_size];
    const bool found = RelativePath(relative, from.c_str(), from_attributes, to.c_str(), to_attributes);
    if (std::strlen(relative) > path_limit || (!found && *relative != '\0'))
        std::abort();
    Full(from);
    if (!found || !IsNormal(from) || !IsNormal(to))
        return 0;
    const std::string base = from_attributes == 0x10 ? from : from.substr(0, from.rfind('\\'));
    if (!SameWithoutCase(Full(base + "\\" + relative), to))
        std::abort();
    return 0;
}
