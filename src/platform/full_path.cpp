// The full path: where a path starts, and which of its elements remain.
//
// Elements are visited from the end: there it is known how many ".." still take an element away, so nothing is built
// that goes again, and neither length nor depth of a path has a limit.
#include <cstring>
#include <string_view>

#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/path_text.h"

namespace zr::platform {
namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

// A path without its dots: root, elements of the current folder, elements of the path itself.
struct Start {
    std::string_view root; // "C:", "\\server\share\", "\\.\"
    bool root_needs_separator;
    std::string_view folder; // of the current folder, behind its root
    std::string_view rest;   // of the path
};

// Skips what `skip` is true for.
template <typename Test>
std::size_t Skip(std::string_view text, std::size_t at, Test skip) {
    while (at < text.size() && skip(text[at]))
        ++at;
    return at;
}

std::size_t SkipElementAndSeparators(std::string_view text, std::size_t at) {
    return Skip(text, Skip(text, at, [](char c) { return !IsSeparator(c); }), IsSeparator);
}

bool BeginsOnNetwork(std::string_view path) {
    return path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
}

// "\\.\" and "\\?\", in front of names of the system itself.
bool BeginsWithDevice(std::string_view path) {
    return BeginsOnNetwork(path) && path.size() >= 4 && (path[2] == '.' || path[2] == '?') && IsSeparator(path[3]);
}

bool BeginsWithDrive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':';
}

// Length of the root of an absolute path: drive, or server and share with the separators behind, or device.
std::size_t RootLength(std::string_view path) {
    if (BeginsWithDevice(path))
        return 4;
    if (BeginsOnNetwork(path))
        return SkipElementAndSeparators(path, SkipElementAndSeparators(path, 2));
    return BeginsWithDrive(path) ? 2 : 0;
}

void SetRoot(Start &start, std::string_view root) {
    start.root = root;
    start.root_needs_separator = root.empty() || !IsSeparator(root.back());
}

// Number of the drive in front of the path, 0 for one that is no letter.
int DriveNumber(std::string_view path) {
    const int letter = Capital(path[0]);
    return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 1 : 0;
}

// Finds where the path starts. `buffer` holds the current folder, as long as `start` is used.
bool FindStart(std::string_view path, const CurrentFolders &current, char (&buffer)[path_size], Start &start) {
    start = {};
    if (BeginsOnNetwork(path)) {
        start.root = path.substr(0, RootLength(path));
        start.rest = path.substr(start.root.size());
        return true;
    }
    const bool with_drive = BeginsWithDrive(path);
    start.rest = path.substr(with_drive ? 2 : 0);
    const bool rooted = !start.rest.empty() && IsSeparator(start.rest[0]);
    if (rooted)
        start.rest.remove_prefix(1);
    if (with_drive) {
        SetRoot(start, path.substr(0, 2));
        const int drive = DriveNumber(path);
        if (rooted || drive == 0 || !current.folder(current.user, drive, buffer, sizeof buffer))
            return true;
    } else if (!current.folder(current.user, 0, buffer, sizeof buffer)) {
        return false;
    }
    const std::string_view folder(buffer);
    SetRoot(start, folder.substr(0, RootLength(folder)));
    if (!rooted)
        start.folder = folder.substr(start.root.size());
    return true;
}

// The elements that remain, from the last to the first. What stands behind the last separator is an element even if
// nothing does: it gives the full path its separator at the end.
class Elements {
public:
    explicit Elements(const Start &start) : m_text(start.rest), m_folder(start.folder), m_more(!start.rest.empty()) {}

    bool Next(std::string_view &element) {
        while (Raw(element)) {
            const bool is_end = m_at_end;
            m_at_end = false;
            if (element == "." || (element.empty() && !is_end))
                continue;
            if (element == "..") {
                ++m_dropped;
            } else if (element.empty()) {
                m_found = true;
                return true;
            } else if (m_dropped != 0) {
                --m_dropped;
            } else {
                element.remove_suffix(m_found ? PointToDrop(element) : EndToDrop(element));
                m_found = true;
                return true;
            }
        }
        return false;
    }

private:
    // Next element as it is written. Behind the path's first comes the current folder's last.
    bool Raw(std::string_view &element) {
        if (!m_more) {
            if (m_folder.empty())
                return false;
            m_text = m_folder;
            m_folder = {};
            m_at_end = false;
        }
        std::size_t begin = m_text.size();
        while (begin != 0 && !IsSeparator(m_text[begin - 1]))
            --begin;
        m_more = begin != 0;
        element = m_text.substr(begin);
        m_text = m_text.substr(0, m_more ? begin - 1 : 0);
        return true;
    }

    // An element in the middle loses its point at the end, but two and more points stay.
    static std::size_t PointToDrop(std::string_view element) {
        return element.back() == '.' && element[element.size() - 2] != '.' ? 1 : 0;
    }

    // The last one loses all points and blanks at its end.
    static std::size_t EndToDrop(std::string_view element) {
        const std::size_t last = element.find_last_not_of(". ");
        return last == std::string_view::npos ? element.size() : element.size() - last - 1;
    }

    std::string_view m_text;
    std::string_view m_folder;
    bool m_more;
    bool m_at_end = true;
    bool m_found = false;
    std::size_t m_dropped = 0; // elements that ".." behind them takes away
};

// The root as it is written in a full path: backslashes, runs of them as one except at the very start. `out` null only
// counts.
std::size_t WriteRoot(const Start &start, char *out) {
    std::size_t length = 0;
    const auto put = [&](char c) {
        if (out != nullptr)
            out[length] = c;
        ++length;
    };
    for (std::size_t i = 0; i < start.root.size(); ++i) {
        const bool separator = IsSeparator(start.root[i]);
        if (!separator || i < 2 || !IsSeparator(start.root[i - 1]))
            put(separator ? '\\' : start.root[i]);
    }
    if (start.root_needs_separator)
        put('\\');
    return length;
}

// Length of all elements with the separators between them.
std::size_t ElementsLength(const Start &start) {
    Elements elements(start);
    std::size_t length = 0;
    std::string_view element;
    for (bool first = true; elements.Next(element); first = false)
        length += element.size() + (first ? 0 : 1);
    return length;
}

// Writes them, ending just in front of `end`.
void WriteElements(const Start &start, char *end) {
    Elements elements(start);
    std::string_view element;
    for (bool first = true; elements.Next(element); first = false) {
        if (!first)
            *--end = '\\';
        end -= element.size();
        std::memcpy(end, element.data(), element.size());
    }
}

bool EqualsWithoutCase(std::string_view text, std::string_view capitals) {
    if (text.size() != capitals.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (Capital(text[i]) != static_cast<unsigned char>(capitals[i]))
            return false;
    }
    return true;
}

bool IsDevice(std::string_view name) {
    for (const char *device : {"AUX", "CON", "NUL", "PRN", "CONIN$", "CONOUT$"}) {
        if (EqualsWithoutCase(name, device))
            return true;
    }
    return name.size() == 4 && name[3] >= '1' && name[3] <= '9' &&
           (EqualsWithoutCase(name.substr(0, 3), "COM") || EqualsWithoutCase(name.substr(0, 3), "LPT"));
}

// The device that the last element of the path names, in spite of folder, extension and blanks; or the empty text.
std::string_view DeviceOf(std::string_view path) {
    if (BeginsOnNetwork(path))
        return {};
    std::string_view name = path.substr(BeginsWithDrive(path) ? 2 : 0);
    const std::size_t separator = name.find_last_of("\\/");
    if (separator != std::string_view::npos)
        name.remove_prefix(separator + 1);
    name = name.substr(0, name.find_first_of(".:"));
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    return IsDevice(name) ? name : std::string_view{};
}

// Offset of the last element. The backslashes of "\\server" have none behind them.
std::size_t FilePart(const char *full_path) {
    const char *separator = std::strrchr(full_path, '\\');
    if (separator == nullptr || separator < full_path + 2 || separator[1] == '\0')
        return no_file_part;
    return static_cast<std::size_t>(separator + 1 - full_path);
}

std::size_t WriteDevice(std::string_view device, char *out, std::size_t size) {
    constexpr std::string_view prefix = "\\\\.\\";
    const std::size_t length = prefix.size() + device.size();
    if (length >= size)
        return length + 1;
    std::memcpy(out, prefix.data(), prefix.size());
    std::memcpy(out + prefix.size(), device.data(), device.size());
    out[length] = '\0';
    return length;
}

} // namespace

std::size_t FullPath(const char *path, const CurrentFolders &current, char *out, std::size_t size,
                     std::size_t *file_part) {
    if (size != 0)
        out[0] = '\0';
    if (file_part != nullptr)
        *file_part = no_file_part;
    if (path == nullptr || path[std::strspn(path, " ")] == '\0')
        return 0;
    const std::string_view device = DeviceOf(path);
    if (!device.empty())
        return WriteDevice(device, out, size);
    char buffer[path_size];
    Start start;
    if (!FindStart(path, current, buffer, start))
        return 0;
    const std::size_t length = WriteRoot(start, nullptr) + ElementsLength(start);
    if (length >= size)
        return length + 1;
    WriteRoot(start, out);
    WriteElements(start, out + length);
    out[length] = '\0';
    if (file_part != nullptr)
        *file_part = FilePart(out);
    return length;
}

} // namespace zr::platform
