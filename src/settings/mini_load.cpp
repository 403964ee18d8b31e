// Loading settings files into memory.
#include "settings/mini_load.h"

#include <zrclb/paths.h>
#include <zrclb/report.h>

#include "settings/ini_names.h"
#include "settings/mini_text.h"

namespace zr::settings {

namespace {

// An entry line; a line without "=" is reported.
void LoadEntry(const MiniFile &file, MiniText &text, MiniSection &section, const MiniPiece &line) {
    const std::size_t sign = FindEqualSign(line.View());
    if (sign == std::string_view::npos) {
        zr_error("Incorrect entry's format. '=' is not found. Dir,File=", file.dir, file.name, mini_tag, __LINE__);
        return;
    }
    const MiniPiece value = {line.from + sign + 1, line.end};
    const std::string_view name = TrimmedEnd({line.from, sign});
    char *const value_text = text.Terminated(value);
    char *const name_text = text.Terminated({line.from, line.from + name.size()});
    AddEntry(section, MakeEntry(text.Block(), name_text, name.size(), value_text, value.Size()));
}

// Loads a section up to the next header, whose name is then in `name`. False at the end of the file.
bool LoadLines(MiniFile &file, MiniText &text, MiniSection &section, MiniPiece &name) {
    MiniText::Kind kind;
    while ((kind = text.Next(name)) == MiniText::Kind::other)
        LoadEntry(file, text, section, name);
    return kind == MiniText::Kind::header;
}

// A section with a header of that name, which may be none.
MiniSection *StartSection(MiniText &text, const MiniPiece *name) {
    if (name == nullptr)
        return MakeSection(text.Block(), text.Block().Copy(""), 0);
    return MakeSection(text.Block(), text.Terminated(*name), name->Size());
}

bool FindHeader(MiniText &text, std::string_view wanted, MiniPiece &name) {
    while (text.NextHeader(name)) {
        if (name.View() == wanted)
            return true;
    }
    return false;
}

} // namespace

MiniPath::MiniPath(const MiniFile &file) {
    fio_makepath(m_text, "", file.dir, file.name);
}

bool LoadFile(MiniFile &file) {
    MiniText text;
    if (!text.Read(MiniPath(file).Text()))
        return false;
    file.is_cut = text.HasFailed();
    MiniSection *section = StartSection(text, nullptr);
    for (MiniPiece name;;) {
        const bool has_next = LoadLines(file, text, *section, name);
        AddSection(file, section);
        bool has_name = has_next;
        while (has_name && name.Size() == 0) {
            zr_error("Section's name is not defined. Description is ignored", nullptr, nullptr, mini_tag, __LINE__);
            has_name = text.NextHeader(name);
        }
        if (!has_name)
            return true;
        section = StartSection(text, &name);
    }
}

MiniSection *LoadSection(MiniFile &file, std::string_view name) {
    MiniText text;
    if (!text.Read(MiniPath(file).Text()))
        return nullptr;
    file.is_cut = file.is_cut || text.HasFailed();
    MiniPiece header;
    if (!name.empty() && !FindHeader(text, name, header))
        return nullptr;
    MiniSection *const section = StartSection(text, name.empty() ? nullptr : &header);
    LoadLines(file, text, *section, header);
    AddSection(file, section);
    return section;
}

} // namespace zr::settings
