// Composing and dividing of paths done slowly, one told step after the other, to hold the library's way against.
#ifndef TESTS_FILES_REFERENCE_MAKEPATH_H
#define TESTS_FILES_REFERENCE_MAKEPATH_H

#include <cstddef>
#include <optional>
#include <string>

namespace paths_test {

struct DividedPath {
    std::string drive;
    std::string folder;
    std::string name; // base name and extension
};

// Takes apart the first 260 characters of a text.
inline DividedPath ReferenceDivide(const char *text) {
    std::string path;
    while (path.size() < 260 && text[path.size()] != '\0')
        path += text[path.size()];
    DividedPath divided;
    if (path.size() >= 2 && path[1] == ':') {
        divided.drive = path.substr(0, 2);
        path.erase(0, 2);
    }
    const std::size_t separator = path.find_last_of("\\/");
    if (separator != std::string::npos) {
        divided.folder = path.substr(0, separator + 1);
        path.erase(0, separator + 1);
    }
    const std::size_t point = path.rfind('.');
    const std::string base = path.substr(0, point);
    const std::string extension = point != std::string::npos ? path.substr(point) : "";
    if (divided.folder.size() > 255 || base.size() > 255 || extension.size() > 255)
        return {};
    divided.name = base + extension;
    return divided;
}

// The composed path, or nothing where it would get too long.
class ReferenceMakepath {
public:
    ReferenceMakepath(const char *default_dir, const char *dir, const char *name) {
        if (name != nullptr) {
            m_pieces = ReferenceDivide(name);
            m_result = Check(m_pieces.drive + m_pieces.folder + m_pieces.name);
        }
        if (dir != nullptr) {
            if (m_pieces.drive.empty() && m_pieces.folder.substr(0, 2) == "\\\\") {
                m_pieces.drive = "\\\\";
                m_pieces.folder.erase(0, 2);
            }
            if (m_pieces.drive.empty())
                PutUnder(dir, true);
        }
        if (default_dir != nullptr && m_pieces.drive.empty())
            PutUnder(default_dir, false);
        for (char &c : m_result)
            c = c == '/' ? '\\' : c;
        if (m_result.size() > m_pieces.drive.size() + 2 && m_result.back() == '\\')
            m_result.pop_back();
    }

    std::optional<std::string> Result() const {
        return m_too_long ? std::nullopt : std::optional<std::string>(m_result);
    }

private:
    static bool IsSeparator(char c) { return c == '\\' || c == '/'; }
    static bool BeginsWithSeparator(const std::string &text) { return !text.empty() && IsSeparator(text.front()); }
    static bool EndsInSeparator(const std::string &text) { return !text.empty() && IsSeparator(text.back()); }

    const std::string &Check(const std::string &text) {
        m_too_long = m_too_long || text.size() + 1 > 260;
        return text;
    }

    void PutUnder(const char *folder, bool root) {
        m_pieces = ReferenceDivide(folder);
        if (root && !m_pieces.drive.empty() && !EndsInSeparator(m_pieces.drive) &&
            !BeginsWithSeparator(m_pieces.folder) && !BeginsWithSeparator(m_pieces.name))
            m_pieces.drive = Check(m_pieces.drive + "\\");
        std::string front = Check(m_pieces.drive + m_pieces.folder + m_pieces.name);
        if (!m_result.empty() && !m_pieces.name.empty())
            front = Check(front + "\\");
        if (!front.empty()) {
            const bool skip = EndsInSeparator(front) && BeginsWithSeparator(m_result);
            m_result = Check(front + m_result.substr(skip ? 1 : 0));
        }
    }

    DividedPath m_pieces;
    std::string m_result;
    bool m_too_long = false;
};

} // namespace paths_test

#endif
