// A program that knows the library only as a file: loads it, uses it, unloads it, and writes what it saw.
//
// Its argument has three lines: what to do ("answers" or "cycles"), the path of the library, and that of the file for what it
// saw, one answer a line.
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <zrclb/ini.h>
#include <zrclb/installation.h>
#include <zrclb/report.h>
#include <zrclb/str.h>
#include <zrclb/system.h>
#include <zrclb/timer.h>

#include "loaded_library.h"
#include "process_measures.h"
#include "suite_registry.h"

// The function of this name in `library`.
#define ZR_FUNCTION(library, name) (library).Get<decltype(&name)>(#name)

namespace {

// What the library tells when it is asked for the first time.
void Answer(const std::string &path, std::ostream &out) {
    const auto before = ProcessMeasures::Now();
    const LoadedLibrary library(path);
    const auto after = ProcessMeasures::Now();
    char found[260] = "";
    out << "megabytes=" << ((after.space - before.space) >> 20) << "\n";
    ZR_FUNCTION(library, zr_suche_datei)(nullptr, nullptr, nullptr, found);
    out << "settings=" << found << "\n";
    out << "install=" << ZR_FUNCTION(library, zr_GetInstallDir)() << "\n";
    out << "bin=" << ZR_FUNCTION(library, zr_GetBinDir)() << "\n";
    out << "bin64=" << ZR_FUNCTION(library, zr_GetBin64Dir)() << "\n";
    *found = '\0';
    out << "file=" << ZR_FUNCTION(library, zr_suche_datei)("Search", "Tables", "steel.txt", found) << found << "\n";
    *found = '\0';
    out << "folder=" << ZR_FUNCTION(library, zr_suche_pfad)("Search", "Home", found) << found << "\n";
    char letters[] = "\x81\xE1";
    out << "letters=" << (*ZR_FUNCTION(library, dos_to_win)(letters, 0) == '\xFC' ? "desktop" : "old") << "\n";
    out << "beeps=" << ZR_FUNCTION(library, ini_initialize_clib)() << "\n";
    char version[80] = "";
    ZR_FUNCTION(library, zr_get_tek_version)(version, sizeof version);
    out << "version=" << version << "\n";
    out << "fits=" << ZR_FUNCTION(library, zr_base_check_version)("Plan", 5, 1, "Frame", 4, 2) << "\n";
    ZR_FUNCTION(library, zr_error)("reported by the host", nullptr, nullptr, "Host", 7);
}

zr_window window = nullptr;

// Sets timers that are still there when the library goes, one that runs in a window, one whose window has ended, and one without.
void LeaveTimers(const LoadedLibrary &library) {
    const auto set = ZR_FUNCTION(library, zrTimerSet);
    const zr_window_function current = [] { return window; };
    const zr_timer_function never = [](void *) { std::abort(); };
    const auto open = [&] {
        window = ZR_FUNCTION(library, zrWindowCreate)([](zr_window, unsigned, zr_value, void *) {}, nullptr);
        return window != nullptr;
    };
    const auto close = [&] { return ZR_FUNCTION(library, zrWindowDestroy)(window) == 1; };
    if (!open() || set(current, 3600000, never, nullptr) != 0 || !close() || !open() ||
        set(current, 3600000, never, nullptr) != 1 || ZR_FUNCTION(library, zrPumpNextDue)() <= 0)
        throw std::runtime_error("no timers");
    ZR_FUNCTION(library, zrPumpDescriptor)();
    ZR_FUNCTION(library, Yield_and_PeekMessage)();
    if (!close()) // all windows have to end before the library
        throw std::runtime_error("no window");
    window = nullptr;
    set(current, 3600000, never, nullptr);
}

// Lives of the library in this process; it is used in every tenth.
void LoadAndUnload(const std::string &path, int times) {
    for (int i = 0; i < times; ++i) {
        const LoadedLibrary library(path);
        if (i % 10 != 0)
            continue;
        char text[] = "\x81";
        ZR_FUNCTION(library, zr_error)("reported by the host", nullptr, nullptr, "Host", 7);
        ZR_FUNCTION(library, zr_GetBinDir)();
        ZR_FUNCTION(library, dos_to_win)(text, 0);
        LeaveTimers(library);
    }
}

// What a thousand lives leave behind. The first ones may fill what the system keeps anyway, and a copy holds what the library
// itself needs.
void Cycle(const std::string &path, std::ostream &out) {
    const LoadedLibrary held(path + ".held");
    LoadAndUnload(path, 20);
    const auto before = ProcessMeasures::Now();
    LoadAndUnload(path, 1000);
    const auto after = ProcessMeasures::Now();
    out << "loaded=" << LoadedLibrary::IsLoaded(path) << "\n";
    out << "handles=" << after.handles - before.handles << "\n";
    out << "mappings=" << after.mappings - before.mappings << "\n";
    out << "space=" << after.space - before.space << "\n";
    out << "heap=" << after.heap - before.heap << "\n";
    out << "keys=" << after.keys - before.keys << "\n";
}

} // namespace

int main() {
    const char *argument = std::getenv("ZR_TEST_ARGUMENT");
    std::istringstream lines(argument != nullptr ? argument : "");
    std::string task, library, file;
    std::getline(lines, task);
    std::getline(lines, library);
    std::getline(lines, file);
    std::ofstream out(file);
    try {
        SuiteRegistry::Enter();
        (task == "cycles" ? Cycle : Answer)(library, out);
    } catch (const std::exception &fault) {
        out << "fault=" << fault.what() << "\n";
        return 1;
    }
    const int code = out.flush() ? 0 : 1;
    if (task == "answers")
        std::_Exit(code); // without a search for leaks: memory that the library reserves stays so on purpose
    return code;
}
