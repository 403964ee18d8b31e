// The search for the entries of a folder that match a pattern.
#include "platform/folder_search.h"

#include <cerrno>
#include <cstring>
#include <new>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/entry_list.h"
#include "platform/file_verbs.h"
#include "platform/posix/posix_attributes.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_errors.h"
#include "platform/posix/posix_paths.h"
#include "platform/wildcard.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;

// Length of the folder part of a pattern, its last separator or drive colon included.
std::size_t FolderLength(const char *pattern) {
    std::size_t length = pattern[1] == ':' && posix::DriveNumber(pattern[0]) != 0 ? 2 : 0;
    for (std::size_t i = length; pattern[i] != 0; ++i)
        if (pattern[i] == '\\' || pattern[i] == '/')
            length = i + 1;
    return length;
}

bool IsDots(const char *name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

// A pattern that ends in "." or ".." means the folder's own name, in the folder around it. file_not_found for a root,
// which has none.
int FindOwnName(const char *pattern, PathBuffer &folder, char (&name)[path_size]) {
    std::size_t root_length;
    if (!posix::ToAbsoluteHost(pattern, folder, root_length))
        return path_not_found;
    char *last = std::strrchr(folder + root_length, '/');
    if (last == nullptr || last[1] == 0)
        return file_not_found;
    if (std::strlen(last + 1) >= sizeof name)
        return path_too_long;
    std::strcpy(name, last + 1);
    last[1] = 0;
    return done;
}

// Takes the pattern apart into the host's folder and the pattern of names in it.
int Divide(const char *pattern, PathBuffer &folder, char (&names)[path_size]) {
    if (pattern == nullptr || pattern[0] == 0)
        return path_not_found;
    if (strnlen(pattern, path_size) > path_limit)
        return path_too_long;
    const std::size_t length = FolderLength(pattern);
    if (pattern[length] == 0) {
        const int code = posix::Translate(pattern, folder);
        return code == done ? file_not_found : code;
    }
    if (IsDots(pattern + length))
        return FindOwnName(pattern, folder, names);
    char text[path_size + 1];
    std::memcpy(text, pattern, length);
    std::strcpy(text + length, "."); // "C:" alone would be the root
    std::strcpy(names, pattern + length);
    return posix::Translate(text, folder);
}

int FolderFailure(const char *host, int error) {
    struct stat status;
    if (error == ENOTDIR && stat(host, &status) == 0)
        return invalid_name;
    const int code = posix::FailureCode(host, error);
    return code == file_not_found ? static_cast<int>(path_not_found) : code;
}

// Facts of an entry; false if it has vanished. A link that leads nowhere has facts of its own.
bool LookAt(int folder, const dirent &entry, struct stat &status, bool &link) {
    link = entry.d_type == DT_LNK;
    if (entry.d_type == DT_UNKNOWN) {
        if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return false;
        link = S_ISLNK(status.st_mode);
        if (!link)
            return true;
    }
    return fstatat(folder, entry.d_name, &status, 0) == 0 ||
           (link && fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0);
}

} // namespace

struct FolderSearch::State {
    explicit State(const char *text) : names(std::strcpy(pattern, text)) {}
    ~State() {
        if (stream != nullptr)
            closedir(stream);
    }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    int Open(const char *host, int drive);
    bool Read(FoundEntry &out);
    int Collect();

    DIR *stream = nullptr;
    bool root = false;   // a drive's, which has neither "." nor ".."
    bool sorted = false; // the entries come from the list
    EntryList list;
    char pattern[path_size]; // the text of `names`
    Wildcard names;
};

int FolderSearch::State::Open(const char *host, int drive) {
    const int descriptor = posix::Open(host, O_RDONLY | O_DIRECTORY | O_NONBLOCK, 0);
    if (descriptor < 0)
        return FolderFailure(host, errno);
    stream = fdopendir(descriptor);
    if (stream == nullptr) {
        const int error = errno;
        close(descriptor);
        return posix::SystemCode(error);
    }
    struct stat status, top;
    const char *drive_root = posix::DriveRoot(drive);
    root = drive_root != nullptr && fstat(descriptor, &status) == 0 && stat(drive_root, &top) == 0 &&
           status.st_dev == top.st_dev && status.st_ino == top.st_ino;
    return done;
}

// The next entry that matches, from the host. A folder that has been removed meanwhile has no more of them.
bool FolderSearch::State::Read(FoundEntry &out) {
    while (const dirent *entry = readdir(stream)) {
        const std::size_t length = std::strlen(entry->d_name);
        if (length >= sizeof out.name || (root && IsDots(entry->d_name)))
            continue;
        if (!names.Match({entry->d_name, length}))
            continue;
        struct stat status;
        bool link;
        if (!LookAt(dirfd(stream), *entry, status, link))
            continue;
        std::memcpy(out.name, entry->d_name, length + 1);
        out.attributes = posix::AttributesOf(status, entry->d_name) | (link ? attribute_link : 0U);
        out.size = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
        out.modified = status.st_mtime;
        return true;
    }
    return false;
}

int FolderSearch::State::Collect() {
    FoundEntry entry;
    while (Read(entry))
        if (!list.Add(entry))
            return out_of_memory;
    closedir(stream);
    stream = nullptr;
    list.Sort();
    sorted = true;
    return done;
}

FolderSearch::FolderSearch() = default;
FolderSearch::~FolderSearch() = default;

int FolderSearch::Start(const char *pattern, SearchOrder order, FoundEntry &first) {
    state_.reset();
    PathBuffer folder;
    char names[path_size];
    int code = Divide(pattern, folder, names);
    if (code != done)
        return code;
    std::unique_ptr<State> state(new (std::nothrow) State(names));
    if (state == nullptr)
        return out_of_memory;
    code = state->Open(folder, posix::DriveOf(pattern));
    if (code == done && order == SearchOrder::by_name)
        code = state->Collect();
    if (code != done)
        return code;
    state_ = std::move(state);
    return Next(first) == done ? done : file_not_found;
}

int FolderSearch::Next(FoundEntry &next) {
    if (state_ == nullptr)
        return no_more_files;
    if (state_->sorted ? state_->list.Next(next) : state_->Read(next))
        return done;
    state_.reset();
    return no_more_files;
}

} // namespace zr::platform
