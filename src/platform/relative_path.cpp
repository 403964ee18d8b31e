// The path of one file or folder seen from another.
#include <cstring>
#include <string_view>

#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/path_text.h"

namespace zr::platform {
namespace {

constexpr std::uint32_t folder_attribute = 0x10;

// Length of the folder of a file: up to the last backslash, but with that of a root. What a drive is followed by goes,
// if it is no backslash.
std::size_t FolderLength(std::string_view path) {
    std::size_t length = 0;
    std::size_t at = 0;
    for (; at < 2 && at < path.size() && path[at] == '\\'; ++at)
        length = at + 1;
    for (; at < path.size(); ++at) {
        if (path[at] == '\\') {
            length = at;
        } else if (path[at] == ':') {
            ++at;
            length = at < path.size() && path[at] == '\\' ? at + 1 : at;
        }
    }
    return length;
}

bool BeginsOnNetwork(std::string_view path) {
    return path.substr(0, 2) == "\\\\";
}

// Length of what both have in common, in whole elements. A length of 2 is a drive, and counts with the backslash behind
// it, whether there is one or not, as on the desktop.
std::size_t CommonLength(std::string_view a, std::string_view b) {
    if (BeginsOnNetwork(a) != BeginsOnNetwork(b))
        return 0;
    std::size_t common = 0;
    for (std::size_t i = BeginsOnNetwork(a) ? 2 : 0;; ++i) {
        if ((i == a.size() || a[i] == '\\') && (i == b.size() || b[i] == '\\'))
            common = i;
        if (i == a.size() || i == b.size() || Capital(a[i]) != Capital(b[i]))
            break;
    }
    return common == 2 ? 3 : common;
}

// The steps up from the folder to what is common. `path` is the whole path of which the first `length` characters are
// the folder.
class StepsUp {
public:
    StepsUp(std::string_view path, std::size_t length, std::size_t common) {
        if (common > path.size()) {
            Put(".."); // "C:", of which more is common than there is
            return;
        }
        // Where the folder is a bare drive, the desktop looks behind it and finds what was cut off.
        std::string_view rest = common > length ? path.substr(common) : path.substr(common, length - common);
        if (rest.empty())
            Put(".");
        else if (rest[0] == '\\')
            rest.remove_prefix(1);
        while (!rest.empty() && m_fits) {
            rest = BehindElement(rest);
            Put(rest.empty() ? ".." : "..\\");
        }
    }

    void Put(std::string_view text) {
        m_fits = m_fits && text.size() < sizeof m_text - m_length;
        if (!m_fits)
            return;
        std::memcpy(m_text + m_length, text.data(), text.size());
        m_length += text.size();
    }

    // Copies the text to out[0..259]; false if it didn't fit.
    bool CopyTo(char *out) const {
        std::memcpy(out, m_text, m_length);
        out[m_fits ? m_length : 0] = '\0';
        return m_fits;
    }

private:
    // A double backslash divides as a single one.
    static std::string_view BehindElement(std::string_view rest) {
        const std::size_t separator = rest.find('\\');
        if (separator == std::string_view::npos)
            return {};
        return rest.substr(rest.substr(separator, 2) == "\\\\" ? separator + 2 : separator + 1);
    }

    char m_text[path_size];
    std::size_t m_length = 0;
    bool m_fits = true;
};

} // namespace

bool RelativePath(char *out, const char *from, std::uint32_t from_attributes, const char *to,
                  std::uint32_t to_attributes) {
    if (out == nullptr)
        return false;
    out[0] = '\0';
    if (from == nullptr || to == nullptr)
        return false;
    const std::string_view source(from);
    const std::string_view target(to);
    if (source.size() > path_limit || target.size() > path_limit)
        return false;
    const std::size_t source_folder = (from_attributes & folder_attribute) != 0 ? source.size() : FolderLength(source);
    const std::size_t target_folder = (to_attributes & folder_attribute) != 0 ? target.size() : FolderLength(target);
    const std::size_t common = CommonLength(source.substr(0, source_folder), target.substr(0, target_folder));
    if (common == 0)
        return false;
    StepsUp result(source, source_folder, common);
    // The way down begins with its separator: where the common part holds it, it is taken back.
    if (common < target.size())
        result.Put(target.substr(target[common] == '\\' ? common : common - 1));
    return result.CopyTo(out);
}

} // namespace zr::platform
