// The full path: where a path starts, and which of its elements remain.
//
// Elements are visited from the end, once: there it is known how many ".." still take an element away, so nothing is
// written that goes again, and neither length nor depth of a path has a limit.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/path_text.h"
#include "platform/separator.h"

namespace zr::platform {
namespace {

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

// A path that grows from its end to its front. It stands at the end of its room until it is finished; what has no room
// is only counted.
class GrowingPath {
public:
    // What stands behind the last separator of a path is an element even if nothing does: it gives the full path its
    // separator at the end.
    GrowingPath(char *room, std::size_t size, bool ends_in_separator)
        : m_room(room), m_size(size), m_at(room + (size != 0 ? size - 1 : 0)), m_found(ends_in_separator) {}

    // Length of the text, whether it fits or not.
    std::size_t Length() const { return m_length; }

    // Puts the elements in front that remain of `text`.
    void PutElements(std::string_view text) {
        const char *const front = text.data();
        const char *end = front + text.size();
        while (end != front) {
            end = PutElement(front, end);
            end -= end != front ? 1 : 0;
        }
    }

    // The root as it stands in a full path: backslashes, runs of them as one except at the very start.
    void PutRoot(const Start &start) {
        const std::string_view root = start.root;
        if (start.root_needs_separator)
            Put('\\');
        for (std::size_t i = root.size(); i-- > 0;) {
            const bool separator = IsSeparator(root[i]);
            if (!separator || i < 2 || !IsSeparator(root[i - 1]))
                Put(separator ? '\\' : root[i]);
        }
    }

    // Moves the text to the front of its room, if it fits.
    bool Finish() {
        if (m_length >= m_size)
            return false;
        std::memmove(m_room, m_at, m_length);
        m_room[m_length] = '\0';
        return true;
    }

private:
    void Put(char c) {
        if (m_at != m_room)
            *--m_at = c;
        ++m_length;
    }

    // Puts the element in front that ends at `end`, if it remains. It is copied before it is known. Gives its start.
    const char *PutElement(const char *front, const char *end) {
        const char *const last = m_found ? WithoutPoint(front, end) : WithoutPointsAndBlanks(front, end);
        const char *begin = last;
        char *at = m_at;
        if (m_found && at != m_room)
            *--at = '\\';
        const char *const stop = last - std::min(last - front, at - m_room);
        while (begin != stop && !IsSeparator(begin[-1]))
            *--at = *--begin;
        while (begin != front && !IsSeparator(begin[-1])) // has no room
            --begin;
        const std::string_view element(begin, static_cast<std::size_t>(end - begin));
        if (element.empty() || element == ".")
            return begin;
        if (element == "..") {
            ++m_dropped;
        } else if (m_dropped != 0) {
            --m_dropped;
        } else {
            m_length += static_cast<std::size_t>(last - begin) + (m_found ? 1 : 0);
            m_at = at;
            m_found = true;
        }
        return begin;
    }

    // An element in the middle loses its point at the end, but two and more points stay.
    static const char *WithoutPoint(const char *front, const char *end) {
        return end - front >= 2 && end[-1] == '.' && end[-2] != '.' ? end - 1 : end;
    }

    // The last one loses all points and blanks at its end.
    static const char *WithoutPointsAndBlanks(const char *front, const char *end) {
        while (end != front && (end[-1] == '.' || end[-1] == ' '))
            --end;
        return end;
    }

    char *m_room;
    std::size_t m_size;
    char *m_at; // the text's start, if it fits
    std::size_t m_length = 0;
    std::size_t m_dropped = 0; // elements that ".." behind them takes away
    bool m_found;              // whether the last element is there
};

bool EqualsWithoutCase(std::string_view text, std::string_view capitals) {
    return std::equal(text.begin(), text.end(), capitals.begin(), capitals.end(),
                      [](char c, char capital) { return Capital(c) == static_cast<unsigned char>(capital); });
}

bool IsDevice(std::string_view name) {
    if (name.size() < 3 || name.size() > 7) // most names
        return false;
    for (const std::string_view device : {"AUX", "CON", "NUL", "PRN", "CONIN$", "CONOUT$"}) {
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
    const std::size_t front = BeginsWithDrive(path) ? 2 : 0;
    std::size_t begin = path.size();
    while (begin > front && !IsSeparator(path[begin - 1]))
        --begin;
    std::size_t end = Skip(path, begin, [](char c) { return c != '.' && c != ':'; });
    while (end > begin && path[end - 1] == ' ')
        --end;
    const std::string_view name = path.substr(begin, end - begin);
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
    const std::string_view text = path != nullptr ? path : "";
    if (text.find_first_not_of(' ') == std::string_view::npos)
        return 0;
    const std::string_view device = DeviceOf(text);
    if (!device.empty())
        return WriteDevice(device, out, size);
    char buffer[path_size];
    Start start;
    if (!FindStart(text, current, buffer, start))
        return 0;
    GrowingPath full(out, size, !start.rest.empty() && IsSeparator(start.rest.back()));
    full.PutElements(start.rest);
    full.PutElements(start.folder);
    full.PutRoot(start);
    if (!full.Finish()) {
        if (size != 0)
            out[0] = '\0';
        return full.Length() + 1;
    }
    if (file_part != nullptr)
        *file_part = FilePart(out);
    return full.Length();
}

} // namespace zr::platform
