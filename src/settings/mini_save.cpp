// Writing settings held in memory to their file.
//
// Lines are put without an end; the line feed comes in front of the next one, unless nothing was put yet.
#include "settings/mini_save.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <zrclb/files.h>

#include "platform/files.h"
#include "settings/ini_copy.h"
#include "settings/ini_output.h"
#include "settings/mini_load.h"

namespace zr::settings {

namespace {

constexpr std::size_t entry_limit = 2047; // characters of an entry's line

void PutSection(const MiniSection &section, IniOutput &out) {
    if (section.name_size == 0)
        return;
    out.Put(out.Size() != 0 ? "\n\n[" : "[");
    out.Put(section.Name());
    out.Put("]");
}

// An entry's line as its text has it: cut, and with the line feeds that it was given.
void PutOddEntry(const MiniEntry &entry, IniOutput &out) {
    std::size_t room = entry_limit;
    for (const std::string_view part : {entry.Name(), std::string_view("="), entry.Value()}) {
        out.Put(part.substr(0, room));
        room -= std::min(room, part.size());
    }
}

void PutEntry(const MiniEntry &entry, IniOutput &out) {
    if (out.Size() != 0)
        out.PutLineFeed();
    if (entry.may_hold_feed || std::size_t{entry.name_size} + 1 + entry.value_size > entry_limit)
        return PutOddEntry(entry, out);
    out.PutBytes(entry.Name());
    out.PutBytes("=");
    out.PutBytes(entry.Value());
}

void PutAll(const MiniFile &file, IniOutput &out) {
    for (const MiniSection *section = file.FirstSection(); section != nullptr; section = section->Next()) {
        PutSection(*section, out);
        for (const MiniEntry *entry = section->FirstEntry(); entry != nullptr; entry = entry->Next())
            PutEntry(*entry, out);
    }
}

// Writes the temporary file and copies it over the file at `path`.
bool SaveThrough(const char *temporary, const MiniFile &file, const char *path) {
    IniOutput out;
    if (!out.Open(temporary))
        return false;
    platform::FileStatus status;
    const bool is_new = !platform::GetFileStatus(path, status);
    if (!is_new)
        out.MakePrivate(); // not everybody may be allowed to read the file
    PutAll(file, out);
    const bool is_whole = out.Close();
    // Where there is no file yet, a part of it is better than nothing.
    const bool is_copied = (is_whole || is_new) && CopyOverFile(temporary, path, out.Whole()) == 0;
    return is_whole && is_copied;
}

} // namespace

bool SaveFile(const MiniFile &file) {
    char temporary[platform::path_size];
    if (fio_tmpnam(temporary, static_cast<int>(sizeof temporary)) == nullptr)
        return false;
    const bool is_saved = SaveThrough(temporary, file, MiniPath(file).Text());
    platform::RemoveFile(temporary);
    return is_saved;
}

} // namespace zr::settings
