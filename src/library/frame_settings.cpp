// What the settings file tells the frame: the log's switch and place, the name of the program, memory to keep away from it.
#include "library/frame_settings.h"

#include <zrclb/ini.h>
#include <zrclb/installation.h>
#include <zrclb/paths.h>
#include <zrclb/str.h>

#include "platform/files.h"
#include "platform/modules.h"

namespace zr::library {
namespace {

using platform::path_size;

constexpr char section[] = "System";

// The pieces of a path, as fio_divide gives them.
struct PathParts {
    char drive[3];
    char folder[256];
    char name[path_size];
};

bool DivideProgramPath(PathParts &out) {
    char path[path_size];
    if (platform::ProgramPath(path, sizeof path) == 0)
        return false;
    fio_divide(path, out.drive, out.folder, out.name);
    return true;
}

// What the entry says of this program. Only a name that was found and is not empty asks for the program's own; the limit
// tells a missing entry, which leaves it, from an empty one. Where the program's path isn't known, none is asked for.
bool ReservesHere() {
    constexpr zr_long limit = 511;
    char wanted[limit + 1] = "";
    zr_long length = limit;
    ini_read_string(nullptr, section, "AllocProg", wanted, &length);
    PathParts program;
    return length <= 0 || !DivideProgramPath(program) || str_ieq(wanted, program.name);
}

} // namespace

bool LogIsOn() {
    zr_long setting = 0;
    ini_read_long(nullptr, section, "ZrLog", &setting);
    return setting == 1;
}

bool LogPath(char *out, std::size_t size) {
    char path[path_size];
    if (zr_suche_datei(nullptr, nullptr, nullptr, path) != 0 ||
        str_repl(path, sizeof path, "zr.zrini", "zrlog.txt") == nullptr)
        return false;
    if (static_cast<std::size_t>(str_len(path)) >= size)
        return false;
    str_cpy(out, path);
    return true;
}

bool ProgramName(char *out, std::size_t size) {
    constexpr short part = 20;
    const int limit = static_cast<int>(size) - 1;
    PathParts program;
    if (!DivideProgramPath(program)) {
        str_ncpy(out, "GetModuleFileName??", limit);
        return true;
    }
    char text[sizeof program.name + 2 * part + sizeof "[...]"];
    str_cpy(text, program.name);
    str_cat(text, "[");
    str_ncat(text, program.drive, part);
    str_ncat(text, program.folder, part);
    str_cat(text, "...]");
    str_ncpy(out, text, limit);
    return true;
}

void ReserveMemory() {
    constexpr zr_long group = 1000;
    constexpr std::size_t block_of_group = 0x40000000;
    zr_long megabytes = 0;
    ini_read_long(nullptr, section, "AllocMByte", &megabytes);
    if (megabytes <= 0 || !ReservesHere())
        return;
    for (zr_long i = 0; i < megabytes / group; ++i)
        reserve_block(block_of_group);
    reserve_block(static_cast<std::size_t>(megabytes % group) << 20);
}

} // namespace zr::library
