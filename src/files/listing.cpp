// The listing of a folder.
#include <zrclb/files.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>

#include <zrclb/clock.h>
#include <zrclb/heap.h>
#include <zrclb/str.h>

#include "platform/clock.h"
#include "platform/file_verbs.h"
#include "platform/folder_search.h"
#include "platform/path_text.h"

namespace {

using namespace zr::platform;

std::uint32_t FlagsOf(std::uint32_t attributes) {
    std::uint32_t flags = (attributes & attribute_folder) != 0 ? FIO_IS_DIR : FIO_IS_FILE;
    if ((attributes & attribute_read_only) != 0)
        flags |= FIO_IS_READONLY;
    if ((attributes & attribute_hidden) != 0)
        flags |= FIO_IS_HIDDEN;
    if ((attributes & attribute_system) != 0)
        flags |= FIO_IS_SYSTEM;
    if ((attributes & attribute_archive) != 0)
        flags |= FIO_IS_ARCHIVE;
    return flags;
}

// The time of a last write as a value of the clock.
std::int32_t WriteTime(std::int64_t modified) {
    constexpr std::int64_t unknown = -1, first_of_1980 = 315529200;
    Calendar calendar;
    clock_struct fields{};
    if (LocalCalendar(modified == unknown ? first_of_1980 : modified, calendar)) {
        fields.second = calendar.second;
        fields.minute = calendar.minute;
        fields.hour = calendar.hour;
        fields.day = calendar.day;
        fields.month = calendar.month - 1;
        fields.year = calendar.year - 1900;
    } else {
        fields.day = 1;
        fields.year = 80;
    }
    return clock_makevalue(&fields);
}

// The array of a listing while it grows, released unless it is taken.
class Records {
public:
    Records() : m_block(static_cast<fio_dirent *>(heap_malloc(step * sizeof(fio_dirent)))) {}
    ~Records() { heap_free(m_block); }
    Records(const Records &) = delete;
    Records &operator=(const Records &) = delete;

    bool HasMemory() const { return m_block != nullptr; }

    // Adds an entry with those flags; false if there is no memory for it.
    bool Add(const FoundEntry &entry, std::uint32_t flags) {
        if (m_count == m_capacity && !Grow())
            return false;
        fio_dirent &record = m_block[m_count++];
        str_ncpy(record.name, entry.name, sizeof record.name - 1);
        record.flags = flags;
        record.size = static_cast<std::uint32_t>(std::min<std::uint64_t>(entry.size, UINT32_MAX));
        record.mtime = WriteTime(entry.modified);
        return true;
    }

    // Hands the array over, without the room that no record took.
    void Take(fio_dirent **entries, int *count) {
        if (m_count == 0)
            return;
        void *fitted = heap_realloc(m_block, m_count * static_cast<unsigned>(sizeof(fio_dirent)));
        *entries = fitted != nullptr ? static_cast<fio_dirent *>(fitted) : m_block;
        *count = static_cast<int>(m_count);
        m_block = nullptr;
    }

private:
    static constexpr unsigned step = 10;
    static constexpr unsigned most = UINT_MAX / sizeof(fio_dirent) / step * step;

    // By steps, one for a small folder and more the more there are, so that a large one is not copied for every few
    // entries.
    bool Grow() {
        if (m_capacity == most)
            return false;
        const unsigned more = std::max(1U, m_capacity / (2 * step)) * step;
        const unsigned capacity = std::min(most - m_capacity, more) + m_capacity;
        void *block = heap_realloc(m_block, capacity * static_cast<unsigned>(sizeof(fio_dirent)));
        if (block == nullptr)
            return false;
        m_block = static_cast<fio_dirent *>(block);
        m_capacity = capacity;
        return true;
    }

    fio_dirent *m_block;
    unsigned m_count = 0;
    unsigned m_capacity = step;
};

// Adds the entries that share a bit with the mask; false if they can't be had, or kept.
bool Collect(const char *pattern, unsigned mask, Records &records) {
    FolderSearch search;
    FoundEntry entry;
    int code = search.Start(pattern, SearchOrder::by_name, entry);
    for (; code == done; code = search.Next(entry)) {
        const std::uint32_t flags = FlagsOf(entry.attributes);
        if ((mask == 0 || (flags & mask) != 0) && !records.Add(entry, flags))
            return false;
    }
    return code == no_more_files;
}

} // namespace

extern "C" {

int fio_listdir(const char *dir, const char *pattern, unsigned mask, fio_dirent **entries, int *count) noexcept {
    if (entries != nullptr)
        *entries = nullptr;
    if (count != nullptr)
        *count = 0;
    if (entries == nullptr || count == nullptr)
        return -1;
    Records records;
    if (!records.HasMemory())
        return 0;
    char search[path_size];
    const char *names = pattern != nullptr && pattern[0] != 0 ? pattern : "*.*";
    if (!MakePath(search, sizeof search, nullptr, dir, names, nullptr) || !Collect(search, mask, records))
        return -1;
    records.Take(entries, count);
    return 0;
}
}
