// Any file, rewritten by any of the functions: as the plain reference writes it anew, and else as it was.
#include <cstdint>
#include <cstring>
#include <string>

#include <zrclb/ini.h>

#include "ini_input.h"
#include "platform/streams.h"
#include "settings/reference_ini.h"

namespace {

using fuzz::OrNull;
using fuzz::Require;
using zr::test::ReferenceIni;
using Section = ReferenceIni::Section;

enum class Verb {
    write,
    delete_entry,
    delete_section,
    rename_section,
    rename_entry
};
constexpr unsigned verbs = 5;

struct Change {
    Verb verb;
    Section section;
    std::string entry, value; // or the new name
};

int Do(const Change &change, const char *file) {
    const char *const section = OrNull(change.section);
    switch (change.verb) {
    case Verb::write:
        return ini_write_string(file, section, change.entry.c_str(), change.value.c_str());
    case Verb::delete_entry:
        return ini_delete_entry(file, section, change.entry.c_str());
    case Verb::delete_section:
        return ini_delete_section(file, section);
    case Verb::rename_section:
        return ini_rename_section(file, section, change.value.c_str());
    default:
        return ini_rename_entry(file, section, change.entry.c_str(), change.value.c_str());
    }
}

int DoPlainly(const Change &change, const std::string &from, const std::string &to) {
    const std::string name = ReferenceIni::Trim(change.value.substr(0, 79));
    if ((change.verb == Verb::rename_section || change.verb == Verb::rename_entry) && name.empty()) {
        fuzz::Store(to, fuzz::Load(from));
        return 5;
    }
    std::FILE *const in = zr::platform::OpenText(from.c_str(), "r");
    std::FILE *const out = zr::platform::OpenText(to.c_str(), "w");
    Require(in != nullptr && out != nullptr, "no streams");
    ReferenceIni reference;
    switch (change.verb) {
    case Verb::write:
        return reference.Write(in, out, change.section, change.entry, change.value);
    case Verb::delete_entry:
        return reference.DeleteEntry(in, out, change.section, change.entry);
    case Verb::delete_section:
        return reference.DeleteSection(in, out, change.section);
    case Verb::rename_section:
        return reference.RenameSection(in, out, change.section, name);
    default:
        return reference.RenameEntry(in, out, change.section, change.entry, name);
    }
}

// Whether what is written is one line, which reads as it was given.
bool IsOneLine(const Change &change) {
    const std::string line = change.entry + "=" + change.value;
    const std::string section = change.section.value_or("");
    const bool found = ReferenceIni::IsBlank(section) || (ReferenceIni::Trim(section) == section &&
                                                          section.find_first_of("]\x1A\r") == std::string::npos);
    return found && section.size() < 2000 && line.size() < 2000 && line.find_first_of("\n\x1A") == std::string::npos &&
           ReferenceIni::Trim(line) == line && ReferenceIni::Trim(change.entry) == change.entry &&
           change.entry.find('=') == std::string::npos && line[0] != ';' && line[0] != '[';
}

void RequireValue(const Change &change, const char *file) {
    char value[2048];
    zr_long size = sizeof value - 1;
    Require(ini_read_string(file, OrNull(change.section), change.entry.c_str(), value, &size) == INI_DONE, "the entry");
    Require(change.value == value, "the value");
}

} // namespace

// The lines in front of the file are section, entry and value or new name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string file = fuzz::PathOf("rewritten.ini"), plain = fuzz::PathOf("plain.ini");
    const fuzz::ReportCount reports("");
    zr::platform::services.temp_folder = [](char *out, std::size_t room) {
        const std::string folder = fuzz::PathOf("");
        std::memcpy(out, folder.c_str(), std::min(room, folder.size() + 1));
        return folder.size();
    };
    fuzz::IniInput input(data, size);
    const auto verb = static_cast<Verb>(input.Choose(verbs));
    Change change = {verb, input.LineOrNull(), input.Line(), input.Line()};
    fuzz::Store(file, input.Rest());
    const int expected = DoPlainly(change, file, plain);
    Require(Do(change, file.c_str()) == expected, "result");
    Require(fuzz::Load(file) == fuzz::Load(plain), "file");
    if (verb == Verb::write && input.Rest().find('\x1A') == std::string::npos && IsOneLine(change))
        RequireValue(change, file.c_str());
    return 0;
}
