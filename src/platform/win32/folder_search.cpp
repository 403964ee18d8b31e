// The search for the entries of a folder that match a pattern.
#include "platform/folder_search.h"

#include <cstring>
#include <new>

#include <windows.h>

#include "platform/entry_list.h"
#include "platform/file_verbs.h"
#include "platform/win32/windows_errors.h"
#include "platform/win32/windows_time.h"

namespace zr::platform {

namespace {

constexpr DWORD told_attributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                  FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NORMAL;

// Other files that the system marks in this way (held elsewhere, stored once for many) are no links.
bool IsLink(const WIN32_FIND_DATAA &data) {
    return (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (data.dwReserved0 == IO_REPARSE_TAG_SYMLINK || data.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

void Take(const WIN32_FIND_DATAA &data, FoundEntry &out) {
    const bool folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    std::strncpy(out.name, data.cFileName, sizeof out.name - 1);
    out.name[sizeof out.name - 1] = 0;
    out.attributes = (data.dwFileAttributes & told_attributes) | (IsLink(data) ? attribute_link : 0U);
    out.size = folder ? 0 : windows::Join(data.nFileSizeHigh, data.nFileSizeLow);
    const bool known = data.ftLastWriteTime.dwLowDateTime != 0 || data.ftLastWriteTime.dwHighDateTime != 0;
    out.modified = known ? windows::UnixTime(data.ftLastWriteTime) : -1;
}

} // namespace

struct FolderSearch::State {
    State() = default;
    ~State() { Close(); }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    bool Read(FoundEntry &out);
    int Collect(FoundEntry &first);
    void Close() {
        if (search != INVALID_HANDLE_VALUE)
            FindClose(search);
        search = INVALID_HANDLE_VALUE;
    }

    HANDLE search = INVALID_HANDLE_VALUE;
    bool sorted = false; // the entries come from the list
    EntryList list;
};

bool FolderSearch::State::Read(FoundEntry &out) {
    WIN32_FIND_DATAA data;
    if (!FindNextFileA(search, &data))
        return false;
    Take(data, out);
    return true;
}

// Collects everything from the entry that the search gave first.
int FolderSearch::State::Collect(FoundEntry &first) {
    do {
        if (!list.Add(first))
            return out_of_memory;
    } while (Read(first));
    Close();
    list.Sort();
    sorted = true;
    list.Next(first);
    return done;
}

FolderSearch::FolderSearch() = default;
FolderSearch::~FolderSearch() = default;

int FolderSearch::Start(const char *pattern, SearchOrder order, FoundEntry &first) {
    state_.reset();
    int code = windows::PathCode(pattern);
    if (code != done)
        return code;
    std::unique_ptr<State> state(new (std::nothrow) State);
    if (state == nullptr)
        return out_of_memory;
    WIN32_FIND_DATAA data;
    state->search = FindFirstFileA(pattern, &data);
    if (state->search == INVALID_HANDLE_VALUE)
        return static_cast<int>(GetLastError());
    Take(data, first);
    if (order == SearchOrder::by_name)
        code = state->Collect(first);
    if (code == done)
        state_ = std::move(state);
    return code;
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
