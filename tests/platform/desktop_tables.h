// What the tests of files, folders and drives need to replay tables that were measured on the desktop, on either
// platform.
#ifndef TESTS_PLATFORM_DESKTOP_TABLES_H
#define TESTS_PLATFORM_DESKTOP_TABLES_H

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "golden_table.h"
#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

// Whether the host is the desktop itself, whose answers may be those of the tables or the documented ones.
inline bool OnDesktop() {
    char host[8];
    return zr::platform::HostPath("a/b", host, sizeof host) && host[1] == '\\';
}

// A path of the host in the library's form, with its drive.
inline std::string LibraryForm(const std::filesystem::path &path) {
    std::string form = path.string();
    for (char &c : form)
        c = c == '/' ? '\\' : c;
    return form[0] == '\\' ? "C:" + form : form;
}

inline std::string UpperText(std::string text) {
    for (char &c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// The path `path` of a table, with the folder `root` (library's form) in place of the table's "C:\woad".
inline std::string AtRoot(const std::string &path, const std::string &root) {
    const std::string exact = "\\\\?\\"; // a path that the desktop takes as it is
    if (path.compare(0, exact.size(), exact) == 0)
        return exact + AtRoot(path.substr(exact.size()), root);
    for (const std::string table_root : {"C:\\woad", "C:/woad", "C:\\WORK", "\\woad", "/woad"})
        if (UpperText(path.substr(0, table_root.size())) == UpperText(table_root))
            return (table_root[0] == 'C' ? root : root.substr(2)) + path.substr(table_root.size());
    return path;
}

// Rows that tell of the desktop's disks and devices alone. Elsewhere names differ by the case of their letters, end in
// any points and blanks, and hold any sign; and a device is no name.
inline bool IsDesktopsOwn(const std::string &path) {
    for (const char *part : {"nul", "NUL", "con", "com1", "COM1", "com9", "\\\\.\\", "\\\\?\\", "\xC4"})
        if (path.find(part) != std::string::npos)
            return true;
    const std::string below_drive = path.size() > 1 && path[1] == ':' ? path.substr(2) : path;
    for (const char c : below_drive)
        if (c >= 'A' && c <= 'Z')
            return true;
    for (std::size_t start = 0; start <= below_drive.size();) {
        const std::size_t end = std::min(below_drive.find_first_of("\\/", start), below_drive.size());
        const std::string element = below_drive.substr(start, end - start);
        start = end + 1;
        if (!element.empty() && element != "." && element != ".." && (element.back() == '.' || element.back() == ' '))
            return true;
    }
    return false;
}

// Names that no new file of the desktop can have; elsewhere they are names like others.
inline bool HasForbiddenSign(const std::string &name) {
    return name.find_first_of("*?<>|\"") != std::string::npos;
}

// The names that the tables of tests by name were measured on, in the folder "fs" of `folder`.
inline void MakeTableTree(const TempFolder &folder) {
    namespace fs = std::filesystem;
    using namespace zr::platform;
    fs::remove_all(folder.Folder() / "fs");
    for (const char *name : {"sub/inner", "rodir", "dir.d", "dir with blank"})
        fs::create_directories(folder.Folder() / "fs" / name);
    const std::string tree = LibraryForm(folder.Folder() / "fs") + "\\";
    for (const std::string &name :
         {std::string("file.txt"), std::string("readonly.txt"), std::string("hidden.txt"), std::string("system.txt"),
          std::string("noext"), std::string("sub\\in.txt"), std::string("\xE4\xF6\xFC.txt"), std::string("\x80.bin"),
          std::string("prog.exe"), std::string("script.bat"), std::string("script.cmd"), std::string("prog.com"),
          std::string("empty"), std::string(200, 'a')})
        if (std::FILE *stream = OpenText((tree + name).c_str(), "w")) {
            std::fputs(name == "empty" ? "" : "content", stream);
            std::fclose(stream);
        }
    SetAttributes((tree + "readonly.txt").c_str(), attribute_read_only);
    SetAttributes((tree + "rodir").c_str(), attribute_read_only);
    SetAttributes((tree + "hidden.txt").c_str(), attribute_hidden | attribute_archive);
    SetAttributes((tree + "system.txt").c_str(), attribute_system | attribute_archive);
}

// Takes the write protection from everything below the folder, so that it can be removed.
inline void Unprotect(const TempFolder &folder) {
    std::error_code ignored;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder.Folder(), ignored))
        if (!entry.is_symlink(ignored))
            std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_write,
                                         std::filesystem::perm_options::add, ignored);
}

#endif
