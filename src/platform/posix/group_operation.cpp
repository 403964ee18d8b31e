// Operations on groups of files, on a host without a shell: files, links and whole trees copied, moved, deleted and
// renamed.
//
// Trees are walked by fts, which keeps its place on the heap and never follows a link: a link is copied, moved and
// deleted as a link.
#include "platform/shell.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <fts.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/folder_search.h"
#include "platform/posix/posix_attributes.h"
#include "platform/posix/posix_copy.h"
#include "platform/posix/posix_errors.h"
#include "platform/posix/posix_paths.h"
#include "platform/separator.h"

namespace zr::platform {

namespace {

using posix::all_permissions;
using posix::any_write;
using posix::PathBuffer;
using posix::SystemCode;

struct CloseWalk {
    void operator()(FTS *walk) const { fts_close(walk); }
};
using TreeWalk = std::unique_ptr<FTS, CloseWalk>;

// One end of an operation: its path in the library's form and in the host's, both without separators at the end.
struct Place {
    std::string path;
    PathBuffer host;
};

struct Source {
    std::string path;
    bool left_out; // a folder where files alone are wanted; it can still end the operation
};

struct Sources {
    std::vector<Source> items;
    bool wildcards = false; // some were found by a pattern
};

// Offset of the last element of `path`.
std::size_t NameOffset(const std::string &path) {
    const std::size_t separator = path.find_last_of("\\/");
    if (separator != std::string::npos)
        return separator + 1;
    return path.size() > 1 && path[1] == ':' ? 2 : 0;
}

int SetPlace(const std::string &path, Place &out) {
    out.path = path;
    while (out.path.size() > 1 && IsSeparator(out.path.back()) && out.path[out.path.size() - 2] != ':')
        out.path.pop_back();
    return posix::Translate(out.path.c_str(), out.host);
}

// Status of the name itself, links not followed.
bool StatusOf(const char *host, struct stat &status) {
    return lstat(host, &status) == 0;
}

bool IsFolder(const char *host) {
    struct stat status;
    return stat(host, &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsSameFile(const char *host, const char *other) {
    struct stat status, other_status;
    return StatusOf(host, status) && StatusOf(other, other_status) && status.st_dev == other_status.st_dev &&
           status.st_ino == other_status.st_ino;
}

// Does `target`, of which the end may be missing, lie below the folder `folder`?
bool LiesBelow(const char *target, const char *folder) {
    PathBuffer real_folder, real_target, part;
    if (realpath(folder, real_folder) == nullptr)
        return false;
    std::strcpy(part, target);
    while (realpath(part, real_target) == nullptr) {
        char *separator = std::strrchr(part, '/');
        if (separator == nullptr)
            std::strcpy(part, ".");
        else if (separator == part)
            std::strcpy(part, "/");
        else
            *separator = 0;
    }
    const std::size_t length = std::strlen(real_folder);
    return std::strncmp(real_target, real_folder, length) == 0 &&
           (real_target[length] == '/' || real_target[length] == 0);
}

// Makes what is missing of the folders above `host`.
int MakeFoldersAbove(const char *host) {
    constexpr mode_t everybody = 0777;
    PathBuffer part;
    for (std::size_t i = 1; host[i] != 0; ++i) {
        if (host[i] != '/')
            continue;
        std::memcpy(part, host, i);
        part[i] = 0;
        if (mkdir(part, everybody) != 0 && errno != EEXIST)
            return SystemCode(errno);
    }
    return done;
}

// ---- Single entries

int RemoveEntry(const char *host, bool folder) {
    return (folder ? rmdir(host) : unlink(host)) == 0 ? done : SystemCode(errno);
}

// Copies a file or a link over what is there, the write-protected included: nobody is to be asked.
int CopyPlain(const char *from, const char *to, bool link) {
    struct stat status;
    if (!link) {
        const int code = posix::CopyOver(from, to);
        if (code != access_denied || !StatusOf(to, status) || S_ISDIR(status.st_mode))
            return code;
    }
    if (StatusOf(to, status) && unlink(to) != 0)
        return SystemCode(errno);
    return posix::CopyToNewFile(from, to);
}

int MakeTreeFolder(const char *host, mode_t mode) {
    constexpr mode_t usable = 0700; // until its content is there; then it gets the permissions of its source
    if (mkdir(host, (mode & all_permissions) | usable) == 0)
        return done;
    return errno == EEXIST && IsFolder(host) ? done : SystemCode(errno);
}

// ---- Trees

TreeWalk WalkTree(char *host) {
    char *roots[] = {host, nullptr};
    return TreeWalk(fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR, nullptr));
}

// Copies what the walk has reached from below `from` to the same place below `to`.
int CopyEntry(const FTSENT &entry, const char *from, const char *to) {
    const char *const rest = entry.fts_path + std::strlen(from); // empty, or with a separator in front
    PathBuffer host;
    if (std::strlen(to) + std::strlen(rest) >= sizeof host)
        return path_too_long;
    std::strcpy(host, to);
    std::strcat(host, rest);
    switch (entry.fts_info) {
    case FTS_D:
        return MakeTreeFolder(host, entry.fts_statp->st_mode);
    case FTS_DP:
        return chmod(host, entry.fts_statp->st_mode & all_permissions) == 0 ? done : SystemCode(errno);
    case FTS_F:
    case FTS_SL:
    case FTS_SLNONE:
        return CopyPlain(entry.fts_path, host, entry.fts_info != FTS_F);
    case FTS_DNR:
    case FTS_ERR:
    case FTS_NS:
        return SystemCode(entry.fts_errno);
    default: // neither file nor folder nor link
        return not_supported;
    }
}

int CopyTree(char *from, const char *to) {
    const TreeWalk walk = WalkTree(from);
    if (walk == nullptr)
        return SystemCode(errno);
    for (const FTSENT *entry = fts_read(walk.get()); entry != nullptr; entry = fts_read(walk.get()))
        if (const int code = CopyEntry(*entry, from, to); code != done)
            return code;
    return errno == 0 ? done : SystemCode(errno);
}

int RemoveTree(char *host) {
    const TreeWalk walk = WalkTree(host);
    if (walk == nullptr)
        return SystemCode(errno);
    for (const FTSENT *entry = fts_read(walk.get()); entry != nullptr; entry = fts_read(walk.get())) {
        int code = done;
        if (entry->fts_info == FTS_DNR || entry->fts_info == FTS_ERR || entry->fts_info == FTS_NS)
            code = SystemCode(entry->fts_errno);
        else if (entry->fts_info != FTS_D)
            code = RemoveEntry(entry->fts_path, entry->fts_info == FTS_DP);
        if (code != done)
            return code;
    }
    return errno == 0 ? done : SystemCode(errno);
}

// ---- Verbs

// Copies a file, a link or a tree to the name `to`. A folder that is there already takes the content in.
int CopyOne(char *from, const char *to) {
    return IsSameFile(from, to) ? int{sharing_violation} : CopyTree(from, to);
}

int MoveOne(char *from, const char *to) {
    if (IsSameFile(from, to) || rename(from, to) == 0)
        return done;
    const int error = errno;
    const bool merge = IsFolder(from) && IsFolder(to);
    if (error != EXDEV && !merge)
        return SystemCode(error);
    const int code = CopyTree(from, to);
    return code == done ? RemoveTree(from) : code;
}

// Copies or moves to the name `target`, or, if that is or is to be a folder, into it. `finished` tells that `target` is
// the source itself, with which the whole operation ends.
int CopyOrMove(GroupVerb verb, const Source &source, const char *target, bool into, bool &finished) {
    Place from, to;
    int code = SetPlace(source.path, from);
    if (code == done)
        code = SetPlace(target, to);
    if (code != done)
        return code;
    struct stat status;
    if (!StatusOf(from.host, status))
        return file_not_found;
    const bool folder = S_ISDIR(status.st_mode);
    finished = folder && IsSameFile(from.host, to.host);
    if (finished || source.left_out)
        return done;
    if (into || IsFolder(to.host)) {
        const std::string name = from.path.substr(NameOffset(from.path));
        code = name.empty() ? int{invalid_name} : SetPlace(to.path + "\\" + name, to);
    }
    if (code == done && folder && LiesBelow(to.host, from.host))
        code = invalid_parameter;
    if (code == done)
        code = MakeFoldersAbove(to.host);
    if (code != done)
        return code;
    return verb == GroupVerb::copy ? CopyOne(from.host, to.host) : MoveOne(from.host, to.host);
}

// A write-protected entry is refused; what lies in a tree goes with it.
int RemoveOne(const std::string &path) {
    Place place;
    const int code = SetPlace(path, place);
    struct stat status;
    if (code != done)
        return code;
    if (!StatusOf(place.host, status))
        return SystemCode(errno);
    if (!S_ISLNK(status.st_mode) && (status.st_mode & any_write) == 0)
        return access_denied;
    return RemoveTree(place.host);
}

int RenameOne(const std::string &path, const char *target) {
    Place from, to;
    int code = SetPlace(path, from);
    if (code == done)
        code = SetPlace(target, to);
    struct stat status;
    if (code != done)
        return code;
    if (StatusOf(to.host, status))
        return already_exists;
    return rename(from.host, to.host) == 0 ? done : SystemCode(errno);
}

// ---- Lists

int AddMatches(const char *pattern, bool files_only, Sources &out) {
    const std::string folder = std::string(pattern).substr(0, NameOffset(pattern));
    FolderSearch search;
    FoundEntry entry;
    for (int code = search.Start(pattern, SearchOrder::by_name, entry); code != no_more_files;
         code = search.Next(entry)) {
        if (code == file_not_found || code == path_not_found)
            break; // nothing matches, which is no fault
        if (code != done)
            return code;
        const bool is_folder = (entry.attributes & attribute_folder) != 0;
        if (std::strcmp(entry.name, ".") != 0 && std::strcmp(entry.name, "..") != 0)
            out.items.push_back({folder + entry.name, files_only && is_folder});
    }
    return done;
}

int ListSources(const char *list, bool files_only, Sources &out) {
    for (const char *path = list; *path != 0; path += std::strlen(path) + 1) {
        if (std::strpbrk(path + NameOffset(path), "*?") == nullptr) {
            out.items.push_back({path, false});
            continue;
        }
        out.wildcards = true;
        if (const int code = AddMatches(path, files_only, out); code != done)
            return code;
    }
    return *list == 0 ? access_denied : done;
}

// Nothing is begun if a source is missing.
int CheckSources(const Sources &sources) {
    Place place;
    struct stat status;
    for (const Source &source : sources.items) {
        if (const int code = SetPlace(source.path, place); code != done)
            return code;
        if (!StatusOf(place.host, status))
            return file_not_found;
    }
    return done;
}

int CopyOrMoveAll(GroupVerb verb, const Sources &sources, const char *to, const GroupOptions &options) {
    std::vector<const char *> targets;
    for (const char *path = to; *path != 0; path += std::strlen(path) + 1)
        targets.push_back(path);
    const bool pairs = targets.size() > 1;
    if (targets.empty() ||
        (pairs && (!options.several_targets || sources.wildcards || targets.size() != sources.items.size())))
        return invalid_parameter;
    int code = CheckSources(sources);
    bool finished = false;
    const bool into = !pairs && (sources.wildcards || sources.items.size() > 1);
    for (std::size_t i = 0; i < sources.items.size() && code == done && !finished; ++i)
        code = CopyOrMove(verb, sources.items[i], targets[pairs ? i : 0], into, finished);
    return code;
}

int Operate(GroupVerb verb, const char *from, const char *to, const GroupOptions &options) {
    Sources sources;
    int code = ListSources(from, options.files_only, sources);
    if (code != done)
        return code;
    if (verb == GroupVerb::rename)
        return sources.wildcards || sources.items.size() != 1 || to[std::strlen(to) + 1] != 0
                   ? int{invalid_parameter}
                   : RenameOne(sources.items[0].path, to);
    if (verb != GroupVerb::remove)
        return CopyOrMoveAll(verb, sources, to, options);
    for (std::size_t i = 0; i < sources.items.size() && code == done; ++i)
        code = sources.items[i].left_out ? int{done} : RemoveOne(sources.items[i].path);
    return code;
}

} // namespace

int backend::DoGroupOperation(GroupVerb verb, const char *from, const char *to, const GroupOptions &options,
                              bool &aborted) {
    aborted = false; // without a box nobody can end it
    if (from == nullptr || (to == nullptr && verb != GroupVerb::remove))
        return invalid_parameter;
    try {
        return Operate(verb, from, to, options);
    } catch (const std::bad_alloc &) {
        return out_of_memory;
    }
}

} // namespace zr::platform
