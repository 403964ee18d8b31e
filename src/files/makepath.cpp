// Composing a path from a default folder, a folder and a name, and taking one apart.
#include <zrclb/paths.h>

#include <array>
#include <cstddef>
#include <cstring>

#include <zrclb/report.h>

#include "files/path_pieces.h"
#include "platform/files.h"

namespace zr::files {
namespace {

using platform::path_limit;
using platform::path_size;

// A drive with no separator behind it, whatever else is.
bool IsBareDrive(const PathPieces &pieces) {
    return pieces.drive != 0 && (pieces.folder == 0 || !IsSeparator(pieces.text[pieces.drive]));
}

char WithBackslash(char c) {
    return c == '/' ? '\\' : c;
}

// Copies a text with backslashes for its slashes: first in blocks of a fixed size, each of which takes few instructions.
void CopyWithBackslashes(char *out, const char *text, std::size_t length) {
    std::array<char, 16> block;
    std::size_t at = 0;
    for (; at + block.size() <= length; at += block.size()) {
        std::memcpy(block.data(), text + at, block.size());
        for (char &c : block)
            c = WithBackslash(c);
        std::memcpy(out + at, block.data(), block.size());
    }
    for (; at < length; ++at)
        out[at] = WithBackslash(text[at]);
}

// A path that grows from its name to the front: it stands at the end of its room, so that nothing is moved.
class GrowingPath {
public:
    // False, here and below, if the path would get too long.
    bool StartWithName(const char *name) {
        const PathPieces pieces = Divide(name);
        m_drive = pieces.drive;
        m_network_name = pieces.folder >= 2 && pieces.drive == 0 && pieces.text[0] == '\\' && pieces.text[1] == '\\';
        return Prepend(pieces.text, pieces.Length());
    }

    // A name on the network lies somewhere, as one with a drive does.
    void TakeNetworkNameAsComplete() {
        if (m_network_name)
            m_drive = 2;
    }

    // Whether the path says where it lies.
    bool IsComplete() const { return m_drive != 0; }

    // Puts `folder` in front; `root_bare_drive` tells whether "C:foo" means "C:\foo".
    bool PutUnder(const char *folder, bool root_bare_drive) {
        const PathPieces pieces = Divide(folder);
        const bool root = root_bare_drive && IsBareDrive(pieces);
        const bool join = !IsEmpty() && pieces.file != 0;
        const bool ends_in_separator = join || (pieces.file == 0 && (pieces.folder != 0 || root));
        m_drive = pieces.drive + (root ? 1 : 0);
        if (ends_in_separator && !IsEmpty() && IsSeparator(*m_start))
            ++m_start;
        return (!join || Prepend("\\", 1)) && Prepend(pieces.text + pieces.drive, pieces.folder + pieces.file) &&
               (!root || Prepend("\\", 1)) && Prepend(pieces.text, pieces.drive);
    }

    // Writes the path with backslashes, and without one at its end where something stands in front of that.
    void WriteTo(char *out) const {
        std::size_t length = Length();
        CopyWithBackslashes(out, m_start, length);
        if (length > m_drive + 2 && out[length - 1] == '\\')
            --length;
        out[length] = '\0';
    }

private:
    const char *End() const { return m_text + path_limit; }
    std::size_t Length() const { return static_cast<std::size_t>(End() - m_start); }
    bool IsEmpty() const { return m_start == End(); }

    bool Prepend(const char *text, std::size_t length) {
        if (length > static_cast<std::size_t>(m_start - m_text))
            return false;
        m_start -= length;
        std::memcpy(m_start, text, length);
        return true;
    }

    char m_text[path_limit]; // only what lies behind m_start is set
    char *m_start = m_text + path_limit;
    std::size_t m_drive = 0; // characters by which the path says where it lies
    bool m_network_name = false;
};

bool Compose(GrowingPath &path, const char *default_dir, const char *dir, const char *name) {
    if (name != nullptr && !path.StartWithName(name))
        return false;
    if (dir != nullptr) {
        path.TakeNetworkNameAsComplete();
        if (!path.IsComplete() && !path.PutUnder(dir, true))
            return false;
    }
    return default_dir == nullptr || path.IsComplete() || path.PutUnder(default_dir, false);
}

void CopyPiece(char *out, const char *text, std::size_t length) {
    if (out == nullptr)
        return;
    std::memcpy(out, text, length);
    out[length] = '\0';
}

} // namespace
} // namespace zr::files

using namespace zr::files;

extern "C" {

char *fio_makepath(char *out, const char *default_dir, const char *dir, const char *name) noexcept {
    if (out == nullptr)
        return nullptr;
    GrowingPath path;
    if (!Compose(path, default_dir, dir, name)) {
        zr_message("Buffer zu klein", nullptr, nullptr, "Fio", __LINE__);
        return nullptr;
    }
    path.WriteTo(out);
    return out;
}

int fio_divide(const char *path, char *drive, char *dir, char *name) noexcept {
    const PathPieces pieces = Divide(path);
    const char *folder = pieces.text + pieces.drive;
    CopyPiece(drive, pieces.text, pieces.drive);
    CopyPiece(dir, folder, pieces.folder);
    CopyPiece(name, folder + pieces.folder, pieces.file < path_size ? pieces.file : path_limit);
    return 0;
}

} // extern "C"
