// Paths cut short by "...".
#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/path_text.h"

namespace zr::platform {
namespace {

constexpr std::string_view ellipsis = "...";

// Where the name starts: behind the last separator or drive that has a name behind it. A separator at the end is the
// name's.
std::size_t NameStart(std::string_view path) {
    for (std::size_t i = path.size(); i-- > 1;) {
        const bool is_separator = path[i] == '\\' || path[i] == '/';
        const char before = path[i - 1];
        if (!is_separator && (before == '\\' || before == '/' || before == ':'))
            return i;
    }
    return 0;
}

char *Put(char *out, std::string_view text) {
    return std::copy(text.begin(), text.end(), out);
}

// The text's beginning with "..." behind, `room` characters together, or points alone where the room is for no more.
char *PutCut(char *out, std::string_view text, std::size_t room) {
    if (room <= ellipsis.size())
        return std::fill_n(out, room, '.');
    return Put(Put(out, text.substr(0, room - ellipsis.size())), ellipsis);
}

// The path in at most `room` characters. One that has just `room` of them is cut as well; that's the desktop's way.
char *PutCompact(char *out, std::string_view path, std::size_t room) {
    if (path.size() < room)
        return Put(out, path);
    const std::size_t name = NameStart(path);
    if (name == 0 || room <= ellipsis.size())
        return PutCut(out, path, room);
    const std::string_view tail = path.substr(name - 1);
    if (ellipsis.size() + tail.size() <= room)
        return Put(PutCut(out, path, room - tail.size()), tail);
    out = Put(Put(out, ellipsis), tail.substr(0, 1));
    return PutCut(out, tail.substr(1), room - ellipsis.size() - 1);
}

} // namespace

int CompactPath(char *out, const char *path, unsigned width, std::uint32_t) {
    if (out == nullptr || path == nullptr)
        return 0;
    if (width == 0)
        return 1;
    *PutCompact(out, path, width - 1) = '\0';
    return 1;
}

} // namespace zr::platform
