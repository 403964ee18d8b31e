// A plain reference of the file name value, with texts that grow: the steps of each member one behind the other.
#ifndef TESTS_FILES_REFERENCE_FILE_NAME_H
#define TESTS_FILES_REFERENCE_FILE_NAME_H

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <zrclb/paths.h>

#include "platform/path_text.h"

namespace zr::test {

class ReferenceFileName {
public:
    using Text = std::optional<std::string>; // no text stands for null

    std::string name, ext, dir, drive;
    bool name_set = false, ext_set = false, dir_set = false, drive_set = false;

    ReferenceFileName() = default;
    ReferenceFileName(const Text &new_name, const Text &new_ext, const Text &new_dir, const Text &new_drive) {
        if (Filled(new_name))
            SetFileName(new_name, true);
        if (Filled(new_ext)) {
            const std::string old = ext;
            if (SetExt(new_ext) && !old.empty() && name.size() + 1 + old.size() < 256)
                name += "." + old;
        }
        if (Filled(new_dir))
            SetDir(new_dir);
        if (Filled(new_drive))
            SetDrive(new_drive);
    }

    bool SetFileName(const Text &text, bool split_ext) {
        name_set = Filled(text);
        platform::PathParts parts;
        platform::SplitPath(name_set ? text->c_str() : "", parts);
        std::string base = parts.name;
        std::string extension = parts.extension;
        if (!split_ext) {
            if (base.size() + extension.size() < 256)
                base += extension;
            extension.clear();
        }
        bool good = !name_set || NameValid(base);
        name = base.substr(0, 255);
        if (!extension.empty())
            good &= SetExt(extension);
        if (*parts.drive != '\0')
            good &= SetDrive(std::string(parts.drive));
        if (*parts.folder != '\0')
            good &= SetDir(std::string(parts.folder));
        return good;
    }

    bool SetExt(const Text &text) {
        ext_set = Filled(text);
        ext = text.value_or("").substr(0, 255);
        if (ext.starts_with('.'))
            ext.erase(0, 1);
        return !ext_set || ExtValid(*text);
    }

    bool SetDir(const Text &text) {
        dir_set = Filled(text);
        platform::PathParts parts;
        platform::SplitPath(Terminated(text.value_or("").substr(0, 255)).c_str(), parts);
        bool good = *parts.drive == '\0' || SetDrive(std::string(parts.drive));
        good &= !dir_set || DirValid(parts.folder);
        dir = Standard(parts.folder);
        return good;
    }

    bool SetDrive(const Text &text) {
        drive_set = Filled(text);
        drive = text.value_or("").substr(0, 2);
        return !drive_set || DriveValid(*text);
    }

    bool AddDir(const Text &text) {
        if (!text)
            return false;
        if (text->empty())
            return true;
        if (dir.size() + text->size() >= 260)
            return false;
        dir = Standard(dir + *text);
        return DirValid(*text);
    }

    bool RemoveLastDir() {
        if (dir.empty())
            return false;
        if (dir.ends_with('\\'))
            dir.pop_back();
        const std::size_t last = dir.rfind('\\');
        dir = Standard(dir.substr(0, last != std::string::npos ? last : 0));
        return true;
    }

    bool ReplaceDir(const Text &from, const Text &to) {
        if (!Filled(from))
            return false;
        const std::string old_part = Standard(from->substr(0, 255));
        const std::string new_part = Standard(to.value_or("").substr(0, 255));
        bool good = !Filled(to) || DirValid(*to);
        const std::size_t place = dir.find(old_part);
        if (place != std::string::npos && dir.size() - old_part.size() + new_part.size() < 260)
            dir.replace(place, old_part.size(), new_part);
        else
            good = false;
        dir = Standard(dir);
        return good;
    }

    bool FNToDir(const Text &text) {
        const std::string whole = name + (name.empty() || ext.empty() ? "" : "." + ext);
        return AddDir(whole) && SetFileName(text, true);
    }

    std::string FileName(bool with_ext) const {
        if (!with_ext || ext.empty() || name.empty())
            return name;
        const std::string full = name + "." + ext;
        return full.size() < 260 ? full : "";
    }

    std::string Dir(bool with_drive) const {
        if (!with_drive || drive.empty())
            return dir;
        char out[260] = "";
        fio_makepath(out, drive.c_str(), dir.c_str(), "");
        return out;
    }

    std::string LastDir() const {
        std::string_view last = dir;
        if (last.ends_with('\\'))
            last.remove_suffix(1);
        return std::string(last.substr(last.rfind('\\') + 1)); // behind nothing: from the start
    }

    std::string Path() const {
        if (name.empty() && dir.empty() && drive.empty())
            return "";
        if (name.size() + ext.size() + dir.size() + drive.size() >= 260)
            return "";
        std::string path = drive.empty() ? "" : drive.substr(0, 1) + ":";
        path += dir;
        if (!dir.empty() && !dir.ends_with('\\'))
            path += '\\';
        path += name;
        if (!name.empty() && !ext.empty())
            path += (ext.starts_with('.') ? "" : ".") + ext;
        if (path.size() >= 260)
            return "";
        const std::size_t colon = path.find(':');
        if (colon != std::string::npos && path[colon + 1] != '\\' && path[colon + 1] != '/')
            path.insert(colon + 1, 1, '\\');
        return path.size() < 260 ? path : "";
    }

    int Error() const {
        if (name_set && !NameValid(name))
            return 1;
        if (ext_set && !ExtValid(ext))
            return 2;
        if (dir_set && !DirValid(dir))
            return 3;
        if (drive_set && !DriveValid(drive))
            return 4;
        return Path().empty() ? 5 : 0;
    }

    static bool NameValid(const std::string &text) {
        return !text.empty() && text.size() < 256 && text.find_first_of("\"/:;<>@\\|*?") == std::string::npos;
    }

    static bool ExtValid(const std::string &text) {
        return text.size() < 256 && NameValid(text.starts_with('.') ? text.substr(1) : text);
    }

    static bool DirValid(const std::string &text) {
        if (text.empty() || text.size() > 259)
            return false;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find_first_of("\\/", start), text.size());
            const std::string element = text.substr(start, end - start);
            start = end + 1;
            if (element.empty() || element == "." || element == "..")
                continue;
            constexpr std::string_view not_at_ends = " \t.";
            if (!NameValid(element) || not_at_ends.find(element.front()) != std::string_view::npos ||
                not_at_ends.find(element.back()) != std::string_view::npos)
                return false;
        }
        return true;
    }

    static bool DriveValid(const std::string &text) {
        const char letter = static_cast<char>(text[0] | 0x20);
        return text.size() == 2 && letter >= 'a' && letter <= 'z' && text[1] == ':';
    }

    static bool PathValid(const std::string &text) {
        platform::PathParts parts;
        if (text.empty() || text.size() > 259 || !platform::SplitPath(text.c_str(), parts))
            return false;
        const std::string extension = parts.extension;
        const bool has_name = *parts.name != '\0';
        return (*parts.drive == '\0' || DriveValid(parts.drive)) && (*parts.folder == '\0' || DirValid(parts.folder)) &&
               (!has_name || NameValid(parts.name)) && (extension.empty() || (has_name && ExtValid(extension)));
    }

private:
    static bool Filled(const Text &text) { return text && !text->empty(); }

    static std::string Terminated(std::string text) {
        if (!text.empty() && text.back() != '\\' && text.back() != '/' && text.size() < 255)
            text += '\\';
        return text;
    }

    static std::string Standard(const std::string &text) {
        std::string out = Terminated(text);
        for (char &c : out)
            c = c == '/' ? '\\' : c;
        for (std::size_t place; (place = out.find("\\\\", 1)) != std::string::npos;)
            out.erase(place, 1);
        return out;
    }
};

} // namespace zr::test

#endif
