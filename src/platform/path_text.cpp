// Taking paths apart and putting them together.
#include "platform/path_text.h"

#include <cstring>

#include "platform/separator.h"

namespace zr::platform {
namespace {

// Copies [begin, end) with a terminator; false if it has more than size - 1 characters.
bool CopyPart(char *out, std::size_t size, const char *begin, const char *end) {
    const auto length = static_cast<std::size_t>(end - begin);
    if (length >= size)
        return false;
    std::memcpy(out, begin, length);
    out[length] = '\0';
    return true;
}

// A text that grows in the caller's buffer and knows whether it fitted so far.
class Writer {
public:
    Writer(char *out, std::size_t size) : m_out(out), m_size(size), m_fits(size != 0) {}

    void Put(char c) {
        if (m_length + 1 >= m_size)
            m_fits = false;
        else
            m_out[m_length++] = c;
    }
    void Put(const char *text) {
        const std::size_t length = std::strlen(text);
        if (!m_fits || length >= m_size - m_length) {
            m_fits = false;
            return;
        }
        std::memcpy(m_out + m_length, text, length);
        m_length += length;
    }
    bool Finish() {
        if (m_size != 0)
            m_out[m_fits ? m_length : 0] = '\0';
        return m_fits;
    }

private:
    char *m_out;
    std::size_t m_size;
    std::size_t m_length = 0;
    bool m_fits;
};

} // namespace

bool SplitPath(const char *path, PathParts &out) {
    out.drive[0] = out.folder[0] = out.name[0] = out.extension[0] = '\0';
    if (path == nullptr)
        return false;
    const char *folder = path[0] != '\0' && path[1] == ':' ? path + 2 : path;
    const char *name = folder;
    const char *extension = nullptr;
    const char *end = folder;
    for (; *end != '\0'; ++end) {
        if (IsSeparator(*end)) {
            name = end + 1;
            extension = nullptr;
        } else if (*end == '.') {
            extension = end;
        }
    }
    if (extension == nullptr)
        extension = end;
    if (CopyPart(out.drive, sizeof out.drive, path, folder) && CopyPart(out.folder, sizeof out.folder, folder, name) &&
        CopyPart(out.name, sizeof out.name, name, extension) &&
        CopyPart(out.extension, sizeof out.extension, extension, end))
        return true;
    out.drive[0] = out.folder[0] = out.name[0] = out.extension[0] = '\0';
    return false;
}

bool MakePath(char *out, std::size_t size, const char *drive, const char *folder, const char *name,
              const char *extension) {
    if (out == nullptr)
        return false;
    Writer path(out, size);
    if (drive != nullptr && *drive != '\0') {
        path.Put(*drive);
        path.Put(':');
    }
    if (folder != nullptr && *folder != '\0') {
        path.Put(folder);
        if (!IsSeparator(folder[std::strlen(folder) - 1]))
            path.Put('\\');
    }
    if (name != nullptr)
        path.Put(name);
    if (extension != nullptr && *extension != '\0') {
        if (*extension != '.')
            path.Put('.');
        path.Put(extension);
    }
    return path.Finish();
}

} // namespace zr::platform
