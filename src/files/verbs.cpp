// Tests and verbs of files and folders, by folder and name.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <zrclb/files.h>
#include <zrclb/heap.h>
#include <zrclb/paths.h>

#include "files/entry_path.h"
#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/services.h"
#include "platform/shell.h"

namespace {

using namespace zr::platform;

// The path that `dir` and `name` make; empty, so that every verb fails, if it is too long. The second terminator makes
// it the list of one path that the shell wants.
class ComposedPath {
public:
    ComposedPath(const char *dir, const char *name) { fio_makepath(m_text, "", dir, name); }
    operator const char *() const { return m_text; }

private:
    char m_text[path_size + 1] = {};
};

int ZeroOrMinusOne(int code) {
    return code == done ? 0 : -1;
}

bool IsLink(const char *path) {
    char target[path_size];
    return !FollowLinks(path, target, sizeof target) || std::strcmp(target, path) != 0;
}

// Removes folders with all that lies in them. One path grows and shrinks on the way down and up; as each level adds two
// characters at least, there are fewer than 128.
class TreeRemover {
public:
    // Whether the folder `path` is gone.
    bool Remove(const char *path) {
        m_length = std::strlen(path);
        if (m_length > longest_folder)
            return false;
        std::memcpy(m_path, path, m_length + 1);
        return RemoveFolder();
    }

private:
    static constexpr std::size_t longest_folder = 254;

    bool RemoveFolder() {
        if (m_length < 1 || m_length > longest_folder)
            return false;
        if (IsLink(m_path))
            return fio_ispath(m_path) == 1 && RemoveUnprotectedFile(m_path) == done;
        RemoveEntries();
        return RemoveEmptyFolder(m_path) == done;
    }

    void RemoveEntries() {
        fio_dirent *entries = nullptr;
        int count = 0;
        fio_listdir(m_path, "*", FIO_IS_FILE | FIO_IS_DIR, &entries, &count);
        const std::size_t length = m_length;
        for (int i = 0; i < count; ++i) {
            if (!Append(entries[i].name))
                continue;
            if ((entries[i].flags & FIO_IS_DIR) != 0)
                RemoveFolder();
            else
                RemoveUnprotectedFile(m_path);
            m_length = length;
            m_path[length] = 0;
        }
        heap_free(entries);
    }

    // Goes down to an entry. Not to those that stand for folders above, nor to what a host allows in a name but no path
    // of the library can express: it would lead elsewhere.
    bool Append(const char *name) {
        if (zr::files::IsDotEntry(name) || std::strpbrk(name, "\\/") != nullptr)
            return false;
        const std::size_t name_length = std::strlen(name);
        const std::size_t separator = m_path[m_length - 1] == '\\' ? 0 : 1;
        if (m_length + separator + name_length > path_limit)
            return false;
        if (separator != 0)
            m_path[m_length++] = '\\';
        std::memcpy(m_path + m_length, name, name_length + 1);
        m_length += name_length;
        return true;
    }

    char m_path[path_size] = {};
    std::size_t m_length = 0;
};

} // namespace

extern "C" {

int fio_exist(const char *dir, const char *name) noexcept {
    return fio_access(dir, name, 0);
}

int fio_access(const char *dir, const char *name, int mode) noexcept {
    return CanAccess(ComposedPath(dir, name), mode) ? 1 : 0;
}

int fio_ispath(const char *path) noexcept {
    std::uint32_t attributes = 0;
    return GetAttributes(path, attributes) == done && (attributes & attribute_folder) != 0 ? 1 : 0;
}

int fio_purge(const char *dir, const char *name) noexcept {
    return ZeroOrMinusOne(RemoveUnprotectedFile(ComposedPath(dir, name)));
}

int fio_copy(const char *from_dir, const char *from_name, const char *to_dir, const char *to_name) noexcept {
    return CopyFileOver(ComposedPath(from_dir, from_name), ComposedPath(to_dir, to_name));
}

int fio_move(const char *from_dir, const char *from_name, const char *to_dir, const char *to_name) noexcept {
    return MoveToNewName(ComposedPath(from_dir, from_name), ComposedPath(to_dir, to_name));
}

int fio_rename(const char *dir, const char *old_name, const char *new_name) noexcept {
    const ComposedPath from(dir, old_name), to(dir, new_name);
    if (MoveToNewName(from, to) != done)
        return -1;
    NoticeRename(fio_ispath(to) == 1, from, to);
    return 0;
}

int fio_rename_ex(const char *dir, const char *old_name, const char *new_name) noexcept {
    const ComposedPath from(dir, old_name), to(dir, new_name);
    if (*from == 0 || *to == 0)
        return -1;
    GroupOptions options;
    options.progress_title = "...";
    options.owner = services.focus_window();
    bool aborted = false;
    return DoGroupOperation(GroupVerb::rename, from, to, options, aborted) == 0 && !aborted ? 0 : -1;
}

int fio_mkdir(const char *dir) noexcept {
    const ComposedPath path(dir, "");
    if (MakeFolder(path) != done)
        return -1;
    NoticeNewFolder(path);
    return 0;
}

int fio_CreatePath(const char *path) noexcept {
    return ZeroOrMinusOne(CreateMissingFolders(path));
}

int fio_rmdir(const char *dir) noexcept {
    return ZeroOrMinusOne(RemoveEmptyFolder(ComposedPath(dir, "")));
}

int fio_rmdir_ex(const char *dir) noexcept {
    return TreeRemover().Remove(ComposedPath(dir, "")) ? 0 : -1;
}
}
