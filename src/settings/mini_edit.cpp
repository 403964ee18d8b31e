// Settings files held in memory: removing and renaming.
#include <zrclb/mini.h>

#include "settings/mini_load.h"
#include "settings/mini_memory.h"

namespace zr::settings {

namespace {

// What keeps a handle from being edited; `name` is that of what is to go or to be renamed.
int Refusal(const mini_file *handle, const char *name) {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (name == nullptr)
        return INI_NO_ENTRY;
    return static_cast<const MiniFile *>(handle)->Has(MINI_READONLY) ? MINI_IS_READONLY : INI_DONE;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int mini_delete_entry(mini_file *handle, const char *section, const char *entry) noexcept {
    const int refusal = Refusal(handle, entry);
    if (refusal != INI_DONE)
        return refusal;
    MiniFile &file = *FileOf(handle);
    const NameCopy name(GivenName(section));
    MiniSection *const found = file.Find(name.View());
    if (found == nullptr)
        return ini_delete_entry(MiniPath(file).Text(), name.Text(), entry);
    MiniEntry *const target = found->Find(entry);
    if (target == nullptr)
        return INI_NO_ENTRY;
    RemoveEntry(*found, target);
    return INI_DONE;
}

int mini_delete_section(mini_file *handle, const char *section) noexcept {
    const int refusal = Refusal(handle, section);
    if (refusal != INI_DONE)
        return refusal;
    MiniFile &file = *FileOf(handle);
    const NameCopy name(GivenName(section));
    MiniSection *const found = file.Find(name.View());
    if (found != nullptr)
        RemoveSection(file, found);
    const int result = ini_delete_section(MiniPath(file).Text(), name.Text());
    return found != nullptr ? INI_DONE : result;
}

int mini_rename_entry(mini_file *handle, const char *section, const char *old_entry, const char *new_entry) noexcept {
    const int refusal = Refusal(handle, old_entry);
    if (refusal != INI_DONE)
        return refusal;
    const NameCopy new_name(GivenName(new_entry));
    if (new_name.View().empty())
        return MINI_BLANK_NAME;
    MiniFile &file = *FileOf(handle);
    const NameCopy name(GivenName(section));
    MiniSection *const found = file.Find(name.View());
    if (found == nullptr)
        return ini_rename_entry(MiniPath(file).Text(), name.Text(), old_entry, new_name.Text());
    MiniEntry *const target = found->Find(old_entry);
    if (target == nullptr)
        return INI_NO_ENTRY;
    SetName(*found, *target, new_name.View());
    return INI_DONE;
}

int mini_rename_section(mini_file *handle, const char *old_section, const char *new_section) noexcept {
    const int refusal = Refusal(handle, old_section);
    if (refusal != INI_DONE)
        return refusal;
    const NameCopy new_name(GivenName(new_section));
    if (new_name.View().empty())
        return MINI_BLANK_NAME;
    MiniFile &file = *FileOf(handle);
    const NameCopy name(GivenName(old_section));
    MiniSection *const found = file.Find(name.View());
    if (found != nullptr)
        SetName(file, *found, new_name.View());
    const int result = ini_rename_section(MiniPath(file).Text(), name.Text(), new_name.Text());
    return found != nullptr ? INI_DONE : result;
}
}
