// The tables of path services: which rows have an answer, and which one it is.
#ifndef TESTS_PLATFORM_PATH_ROWS_H
#define TESTS_PLATFORM_PATH_ROWS_H

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "golden_table.h"
#include "platform/path_text.h"

namespace path_rows {

using zr::platform::CurrentFolders;

// The text of a field, or null for "no value".
inline const char *TextOrNull(const std::string &field) {
    return field == "\\N" ? nullptr : field.c_str();
}

inline unsigned long Number(const std::string &field) {
    return std::strtoul(field.c_str(), nullptr, 0);
}

inline bool IsVerified(const GoldenTable::Row &row) {
    return row.at("windows_documented").rfind("unverified", 0) != 0;
}

// The answer of a column: the known difference where it is a value, else what was measured.
inline std::string Answer(const GoldenTable::Row &row, const char *column) {
    const std::string &documented = row.at("windows_documented");
    const bool is_remark =
        documented.find(": ") != std::string::npos || documented.find(" as measured") != std::string::npos;
    return documented.empty() || is_remark ? row.at(column) : documented;
}

// The folders that a table was measured in.
struct Folders {
    std::string current;
    std::string of_d;

    CurrentFolders Seam() { return {&Tell, this}; }

    static bool Tell(void *user, int drive, char *out, std::size_t size) {
        const Folders &folders = *static_cast<Folders *>(user);
        const int current = folders.current[0] - 'A' + 1;
        const std::string &folder = drive == 0 || drive == current ? folders.current : folders.of_d;
        if ((drive != 0 && drive != current && drive != 4) || folder.size() >= size)
            return false;
        std::memcpy(out, folder.c_str(), folder.size() + 1);
        return true;
    }
};

// The full path of a text without devices, drives of their own and servers, made step by step: for rows that say only
// that the length has no limit, and for texts of all kinds. A drive in front must have a separator behind it.
inline std::string PlainFullPath(const std::string &current, const std::string &path) {
    std::string whole = path;
    if (path.substr(1, 1) != ":")
        whole = path[0] == '\\' || path[0] == '/' ? current.substr(0, 2) + path : current + "\\" + path;
    std::vector<std::string> elements;
    std::string element;
    for (const char c : whole.substr(3) + "\\") {
        if (c != '\\' && c != '/') {
            element += c;
            continue;
        }
        if (element == ".." && !elements.empty())
            elements.pop_back();
        else if (!element.empty() && element != "." && element != "..")
            elements.push_back(element);
        element.clear();
    }
    const bool ends_in_separator = whole.size() > 3 && (whole.back() == '\\' || whole.back() == '/');
    if (ends_in_separator)
        elements.emplace_back();
    std::string result = whole.substr(0, 2);
    for (const std::string &e : elements) {
        const bool is_last = &e == &elements.back();
        const bool loses_point = e.size() >= 2 && e.back() == '.' && e[e.size() - 2] != '.';
        result += "\\" + e.substr(0, is_last ? e.find_last_not_of(". ") + 1 : e.size() - (loses_point ? 1 : 0));
    }
    return elements.empty() ? result + "\\" : result;
}

} // namespace path_rows

#endif
