// Writing settings held in memory to their file.
//
// Lines are put without an end; the line feed comes in front of the next one, unless nothing was put yet.
#include "settings/mini_save.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <zrclb/file_handle.h>
#include <zrclb/files.h>

#include "settings/ini_rewrite.h"
#include "settings/mini_load.h"

namespace zr::settings {

namespace {

constexpr std::size_t entry_limit = 2047; // characters of an entry's line
constexpr int temporary_size = 256;       // of the name, with its terminator

// What goes to the temporary file. After the first failure nothing more does.
class Output {
public:
    explicit Output(fio_handle *handle) : m_handle(handle) {}

    void PutSection(const MiniSection &section) {
        if (section.name_size == 0)
            return;
        Put(m_is_empty ? "[" : "\n\n[");
        Put(section.Name());
        Put("]");
    }

    void PutEntry(const MiniEntry &entry) {
        if (!m_is_empty)
            Put("\n");
        std::size_t room = entry_limit;
        for (const std::string_view part : {entry.Name(), std::string_view("="), entry.Value()}) {
            Put(part.substr(0, room));
            room -= std::min(room, part.size());
        }
    }

    bool HasFailed() const { return m_failed; }

    // Hands all over to the system and closes the handle. False if something failed by now.
    bool Close() {
        WriteOut();
        m_failed = fio_flush(m_handle) != 0 || m_failed;
        return fio_close(m_handle) == 0 && !m_failed;
    }

private:
    void Put(std::string_view text) {
        m_is_empty = m_is_empty && text.empty();
        while (text.size() > sizeof m_buffer - m_size) {
            const std::size_t part = sizeof m_buffer - m_size;
            Collect(text.substr(0, part));
            text.remove_prefix(part);
            WriteOut();
        }
        Collect(text);
    }

    void Collect(std::string_view text) {
        std::memcpy(m_buffer + m_size, text.data(), text.size());
        m_size += text.size();
    }

    void WriteOut() {
        if (m_size > 0 && !m_failed)
            m_failed = fio_fwrite(m_buffer, 1, m_size, m_handle) != m_size;
        m_size = 0;
    }

    fio_handle *m_handle;
    bool m_failed = false;
    bool m_is_empty = true; // nothing was put yet
    std::size_t m_size = 0;
    char m_buffer[4096];
};

bool PutAll(const MiniFile &file, fio_handle *handle) {
    Output output(handle);
    for (const MiniSection *section = file.FirstSection(); section != nullptr; section = section->Next()) {
        output.PutSection(*section);
        for (const MiniEntry *entry = section->FirstEntry(); entry != nullptr; entry = entry->Next()) {
            output.PutEntry(*entry);
            if (output.HasFailed())
                return output.Close();
        }
    }
    return output.Close();
}

} // namespace

bool SaveFile(const MiniFile &file) {
    char temporary[temporary_size];
    if (fio_tmpnam(temporary, temporary_size) == nullptr)
        return false;
    fio_handle *const handle = fio_open("", temporary, FIO_WRITE | FIO_TEXT);
    const bool is_whole = handle != nullptr && PutAll(file, handle);
    // Where there is no file yet, a part of it is better than nothing.
    const bool may_copy = is_whole || (handle != nullptr && fio_exist(file.dir, file.name) == 0);
    const bool is_copied = may_copy && CopyOverFile(temporary, MiniPath(file).Text()) == 0;
    fio_purge("", temporary);
    return is_whole && is_copied;
}

} // namespace zr::settings
