// Which way plot data take to a serial port: straight, or through the library of the old layer.
#include <cstdio>
#include <initializer_list>

#include <zrclb/serial.h>

#include "desktop/port_configuration.h"
#include "platform/libraries.h"
#include "platform/message_box.h"
#include "platform/streams.h"
#include "platform/system_kind.h"

namespace zr::desktop {
namespace {

constexpr unsigned topmost = 0x40000;
constexpr unsigned process_attach = 1;

// What the old layer's library shows.
using EntryPoint = int (*)(void *library, zr_ulong reason, void *reserved);
using PlotFunction = int (*)(const char *file, const char *port);

// A system that doesn't tell is no old one.
bool HasOldLayer() {
    platform::SystemVersion version;
    return platform::GetSystemVersion(version) && version.platform == 0;
}

int RefusePlot(const char *text) {
    platform::ShowMessageBox(nullptr, text, "win_com.c", topmost);
    return 0;
}

// A library that was loaded but doesn't start stays loaded.
int PlotThroughLibrary(const char *file, const char *port) {
    void *library = platform::OpenLibrary("plotut32.dll");
    if (library == nullptr)
        return RefusePlot("32Bit Dll couldn't be loaded");
    const auto start = reinterpret_cast<EntryPoint>(platform::FindFunction(library, "DllEntryPoint"));
    const auto plot = reinterpret_cast<PlotFunction>(platform::FindFunction(library, "PlotToCom16Bit_32"));
    if (start == nullptr || plot == nullptr || start(library, process_attach, nullptr) == 0)
        return RefusePlot("32Bit Dll couldn't be initialized");
    const int result = plot(file, port);
    platform::CloseLibrary(library);
    return result;
}

} // namespace
} // namespace zr::desktop

using namespace zr::desktop;
using namespace zr;

extern "C" {

int WriteComEntry(const char *file, const char *port) noexcept {
    if (file == nullptr || port == nullptr)
        return 0;
    char config[configuration_size] = "";
    GetComEntry(config, port);
    std::FILE *stream = platform::OpenText("COMM.TMP", "w+");
    if (stream == nullptr)
        return 0;
    for (const char *line : {file, port, static_cast<const char *>(config)}) {
        std::fputs(line, stream);
        std::fputc('\n', stream);
    }
    std::fclose(stream);
    return 1;
}

int WriteFileWinCom(const char *file, const char *port) noexcept {
    if (!HasOldLayer())
        return PlotToCom32Bit(file, port);
    if (file == nullptr || port == nullptr)
        return 0;
    WriteComEntry(file, port);
    return PlotThroughLibrary(file, port);
}

int WinCommPortCheck(const char *device) noexcept {
    const bool is_com = device != nullptr && device[0] == 'C' && device[1] == 'O' && device[2] == 'M';
    const int serial_kind = is_com && HasOldLayer() ? WIN_COM_16BIT : WIN_COM_32BIT;
    return setWinComPort(is_com ? serial_kind : WIN_COM_NONE, 1);
}
}
