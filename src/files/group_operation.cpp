// Copying, moving and deleting groups of files through the shell.
#include <zrclb/folders.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>

#include <zrclb/heap.h>
#include <zrclb/paths.h>
#include <zrclb/report.h>

#include "files/entry_path.h"
#include "platform/files.h"
#include "platform/shell.h"

namespace {

using zr::files::IsComposable;
using zr::platform::GroupVerb;
using zr::platform::path_size;

constexpr char source_tag[] = "Fio";

enum Result {
    all_done = 0,
    by_user = 1,
    failed = 2
};

struct FreeList {
    void operator()(char *list) const { heap_free(list); }
};

// Paths behind one another, each with its terminator, and one more terminator at the end.
using PathList = std::unique_ptr<char, FreeList>;

int Fail(const char *message, int line) {
    zr_message(message, nullptr, nullptr, source_tag, line);
    return failed;
}

// Bytes that hold the list: composing adds at most two separators to folder and name.
std::size_t RoomFor(const char *dir, const char *const *names) {
    constexpr std::size_t room_for_separators = 4, room_for_end = 2;
    std::size_t size = room_for_end;
    for (; *names != nullptr; ++names)
        size += std::strlen(dir) + std::strlen(*names) + room_for_separators;
    return size;
}

// Null if a path gets too long, or without memory.
PathList ComposeList(const char *dir, const char *const *names) {
    if (dir == nullptr)
        dir = "";
    const std::size_t size = RoomFor(dir, names);
    if (size > std::numeric_limits<unsigned>::max() || !IsComposable(dir))
        return nullptr;
    PathList list(static_cast<char *>(heap_malloc(static_cast<unsigned>(size))));
    if (list == nullptr)
        return nullptr;
    char *end = list.get();
    for (; *names != nullptr; ++names) {
        char path[path_size];
        if (!IsComposable(*names) || fio_makepath(path, "", dir, *names) == nullptr)
            return nullptr;
        const std::size_t length = std::strlen(path) + 1;
        std::memcpy(end, path, length);
        end += length;
    }
    *end = 0;
    if (end == list.get()) // an empty list is two terminators for the shell
        end[1] = 0;
    return list;
}

bool FindVerb(int operation, GroupVerb &out) {
    switch (operation) {
    case FIO_GROUP_COPY:
        out = GroupVerb::copy;
        return true;
    case FIO_GROUP_MOVE:
        out = GroupVerb::move;
        return true;
    case FIO_GROUP_DELETE:
        out = GroupVerb::remove;
        return true;
    default:
        return false;
    }
}

} // namespace

extern "C" {

int fio_group_operation(const char *from_dir, const char **from_names, const char *to_dir, const char **to_names,
                        int operation, int files_only, const char *progress_title, zr_window owner) noexcept {
    GroupVerb verb;
    if (!FindVerb(operation, verb))
        return Fail("Bad fioOperation", __LINE__);
    if (from_names == nullptr)
        return Fail("pFrom == NIL!", __LINE__);
    const PathList from = ComposeList(from_dir, from_names);
    if (from == nullptr)
        return Fail("Wrong 'from' names", __LINE__);
    PathList to;
    if (verb != GroupVerb::remove) {
        to = ComposeList(to_dir, to_names != nullptr ? to_names : from_names);
        if (to == nullptr)
            return Fail("Wrong 'to' names", __LINE__);
    }
    zr::platform::GroupOptions options;
    options.several_targets = to != nullptr;
    options.files_only = files_only != 0;
    options.progress_title = progress_title;
    options.owner = owner;
    bool aborted = false;
    const int code = zr::platform::DoGroupOperation(verb, from.get(), to.get(), options, aborted);
    if (aborted)
        return by_user;
    return code != 0 ? failed : all_done;
}
}
