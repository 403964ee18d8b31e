// Plot data for a device on a serial port.
#include <cstdio>
#include <cstring>
#include <memory>

#include <zrclb/heap.h>
#include <zrclb/ini.h>
#include <zrclb/serial.h>
#include <zrclb/str.h>

#include "desktop/port_configuration.h"
#include "platform/files.h"
#include "platform/known_folders.h"
#include "platform/serial_port.h"
#include "platform/streams.h"

namespace zr::desktop {
namespace {

constexpr int longest_entry = 40; // characters of a configuration
constexpr unsigned block_size = 32768;

int win_com_port_kind = WIN_COM_NONE;

// Whether the text is there and has no more than 259 characters.
bool IsName(const char *text) {
    return text != nullptr && std::memchr(text, '\0', platform::path_size) != nullptr;
}

// Replaces the configuration by the entry of the port, if there is one.
void ReadEntry(const char *folder, const char *port, char *config) {
    char path[configuration_size + sizeof "\\WIN.INI"];
    char entry[platform::path_size + sizeof ":"];
    str_printf(path, sizeof path, "%s\\WIN.INI", folder);
    str_printf(entry, sizeof entry, "%s:", port);
    zr_long size = longest_entry;
    ini_read_string(path, "Ports", entry, config, &size);
}

// Sets an open port up. `faulty` tells whether something of the configuration could not be followed; false if all of it
// is unusable.
bool SetUp(zr_value handle, const char *port, bool &faulty) {
    char config[configuration_size];
    platform::PortSettings settings;
    if (GetComEntry(config, port) == 0 || !platform::BuildPortSettings(port, config, settings))
        return false;
    const bool sound = ReadConfiguration(config, settings);
    faulty = !platform::ApplyPortSettings(handle, settings) || !sound;
    return true;
}

// The port stays open if it can't be set up, as callers know it.
zr_value OpenAndSetUp(const char *port, bool &faulty) {
    if (!IsName(port))
        return 0;
    const zr_value handle = platform::OpenPort(port);
    return handle != 0 && SetUp(handle, port, faulty) ? handle : 0;
}

struct CloseStream {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};

struct FreeBlock {
    void operator()(void *block) const { heap_free(block); }
};

// Whether all of the file went to the port, or there is no such file.
bool SendFile(const char *file, zr_value handle) {
    const std::unique_ptr<std::FILE, CloseStream> stream(IsName(file) ? platform::OpenBinary(file, "rb") : nullptr);
    if (stream == nullptr)
        return true;
    const std::unique_ptr<void, FreeBlock> block(heap_malloc(block_size));
    if (block == nullptr)
        return false;
    // The block takes the place of the stream's buffer.
    std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    for (;;) {
        const std::size_t count = std::fread(block.get(), 1, block_size, stream.get());
        if (count == 0)
            return true;
        if (platform::WritePort(handle, block.get(), count) != count)
            return false;
    }
}

} // namespace
} // namespace zr::desktop

using namespace zr::desktop;
using namespace zr;

extern "C" {

int GetComEntry(char *config, const char *port) noexcept {
    if (config == nullptr)
        return 0;
    char folder[configuration_size];
    *config = '\0';
    if (!IsName(port) || platform::WindowsFolder(folder, sizeof folder) == 0)
        return 0;
    str_ncpy(config, "9600,n,8,1,p", longest_entry);
    ReadEntry(folder, port, config);
    return 1;
}

zr_value iOpenWinComWrite(const char *port) noexcept {
    bool faulty = false;
    return OpenAndSetUp(port, faulty);
}

void WriteWinCom(zr_value *handle, const void *buffer, zr_ulong count) noexcept {
    if (handle == nullptr || *handle == 0)
        return;
    const std::size_t written = buffer != nullptr ? platform::WritePort(*handle, buffer, count) : 0;
    if (written != count)
        CloseWinCom(handle);
}

int CloseWinCom(zr_value *handle) noexcept {
    if (handle != nullptr && *handle != 0) {
        platform::ClosePort(*handle);
        *handle = 0;
    }
    return win_com_port_kind = WIN_COM_NONE;
}

int PlotToCom32Bit(const char *file, const char *port) noexcept {
    bool faulty = false;
    const zr_value handle = OpenAndSetUp(port, faulty);
    if (handle == 0)
        return 0;
    const bool sent = SendFile(file, handle);
    platform::ClosePort(handle);
    return sent && !faulty ? 1 : 0;
}

int setWinComPort(int value, int write) noexcept {
    if (write == 1)
        win_com_port_kind = value;
    return win_com_port_kind;
}

int getWinComPort() noexcept {
    return win_com_port_kind;
}
}
