// Removing and renaming entries and sections of settings files.
#include <zrclb/ini.h>

#include <cstring>
#include <string_view>

#include "settings/ini_names.h"
#include "settings/ini_rewrite.h"

namespace zr::settings {

namespace {

constexpr int blank_name = 5;

// Replaces the file, whatever becomes of that, and answers `result`.
int FinishWith(IniRewrite &rewrite, int result) {
    rewrite.Finish();
    return result;
}

// A header that ends what was looked at, and all that follows it.
void PutHeaderAndRest(IniRewrite &rewrite, std::string_view name) {
    if (rewrite.HasPut())
        rewrite.Put("\n\n");
    rewrite.PutHeader(name);
    rewrite.PutRest();
}

// Leaves the entry out: INI_DONE or INI_NO_ENTRY.
int DropEntry(IniRewrite &rewrite, std::string_view entry) {
    std::string_view text, name, value;
    LineKind kind;
    while ((kind = rewrite.Next(text)) == LineKind::other) {
        if (!SplitEntry(text, name, value))
            continue;
        if (name == entry) {
            rewrite.PutRest();
            return INI_DONE;
        }
        rewrite.PutLineFeed();
        rewrite.PutEntry(name, value);
    }
    if (kind == LineKind::header) {
        rewrite.PutLineFeed();
        rewrite.PutHeader(text);
    }
    rewrite.PutRest();
    return INI_NO_ENTRY;
}

// Leaves out what stands up to the next header, comments only if told.
void DropSection(IniRewrite &rewrite, bool drop_comments) {
    std::string_view text;
    LineKind kind;
    do
        kind = rewrite.Next(text, drop_comments);
    while (kind == LineKind::other);
    if (kind == LineKind::header)
        PutHeaderAndRest(rewrite, text);
}

// Gives the lines in front of the first header one of their own, behind the comments that they begin with.
void NameTopArea(IniRewrite &rewrite, std::string_view new_section) {
    std::string_view text;
    const LineKind kind = rewrite.Next(text);
    rewrite.PutLineFeed();
    rewrite.PutHeader(new_section);
    if (kind == LineKind::header) {
        rewrite.Put("\n\n");
        rewrite.PutHeader(text);
    } else if (kind == LineKind::other) {
        rewrite.Put("\n");
        rewrite.Put(text);
    }
}

// Goes to a section to be renamed or to be looked through; its header isn't put yet, only what goes in front of it.
bool FindGivenSection(IniRewrite &rewrite, std::string_view section) {
    if (section.empty())
        return true;
    if (!rewrite.FindSection(section, false))
        return false;
    rewrite.PutSeparator();
    return true;
}

// Renames the entry: INI_DONE or INI_NO_ENTRY.
int PutRenamed(IniRewrite &rewrite, std::string_view old_entry, std::string_view new_entry) {
    std::string_view text, name, value;
    LineKind kind;
    while ((kind = rewrite.Next(text)) == LineKind::other) {
        if (!SplitEntry(text, name, value))
            continue;
        rewrite.PutLineFeed();
        const bool found = name == old_entry;
        rewrite.PutEntry(found ? new_entry : name, value);
        if (found) {
            rewrite.PutRest();
            return INI_DONE;
        }
    }
    if (kind == LineKind::header)
        PutHeaderAndRest(rewrite, text);
    else
        rewrite.PutRest();
    return INI_NO_ENTRY;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int ini_delete_entry(const char *file, const char *section, const char *entry) noexcept {
    IniRewrite rewrite;
    if (entry == nullptr || !rewrite.Open(file, IniRewrite::Missing::fails))
        return INI_NO_FILE;
    if (!IsTopArea(section) && !rewrite.FindSection(section, true))
        return FinishWith(rewrite, INI_NO_SECTION);
    return FinishWith(rewrite, DropEntry(rewrite, entry));
}

int ini_delete_section(const char *file, const char *section) noexcept {
    IniRewrite rewrite;
    if (!rewrite.Open(file, IniRewrite::Missing::fails))
        return INI_NO_FILE;
    const bool top = IsTopArea(section);
    if (!top && !rewrite.FindSection(section, false))
        return FinishWith(rewrite, INI_NO_SECTION);
    DropSection(rewrite, !top);
    return FinishWith(rewrite, INI_DONE);
}

int ini_rename_section(const char *file, const char *old_section, const char *new_section) noexcept {
    const std::string_view new_name = GivenSection(new_section);
    if (new_name.empty())
        return blank_name;
    const std::string_view old_name = GivenSection(old_section);
    IniRewrite rewrite;
    if (!rewrite.Open(file, IniRewrite::Missing::fails))
        return INI_NO_FILE;
    if (!FindGivenSection(rewrite, old_name))
        return FinishWith(rewrite, INI_NO_SECTION);
    if (old_name.empty())
        NameTopArea(rewrite, new_name);
    else
        rewrite.PutHeader(new_name);
    rewrite.PutRest();
    return rewrite.Finish();
}

int ini_rename_entry(const char *file, const char *section, const char *old_entry, const char *new_entry) noexcept {
    const std::string_view new_name = GivenSection(new_entry);
    if (new_name.empty())
        return blank_name;
    const std::string_view section_name = GivenSection(section);
    IniRewrite rewrite;
    if (old_entry == nullptr || !rewrite.Open(file, IniRewrite::Missing::fails))
        return INI_NO_FILE;
    if (!FindGivenSection(rewrite, section_name))
        return FinishWith(rewrite, INI_NO_SECTION);
    if (!section_name.empty())
        rewrite.PutHeader(section_name);
    const int result = PutRenamed(rewrite, old_entry, new_name);
    return result == INI_DONE ? rewrite.Finish() : FinishWith(rewrite, result);
}
}
