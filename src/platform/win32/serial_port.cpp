// Serial ports of the system.
#include "platform/serial_port.h"

#include <cstdio>
#include <cstring>

#include <windows.h>

#include "platform/files.h"

namespace zr::platform {

namespace {

constexpr std::size_t text_size = 2 * path_size;

HANDLE HandleOf(zr_value port) {
    return reinterpret_cast<HANDLE>(port);
}

// Ports are devices that pass characters; files, pipes and what is no handle of a file are none.
bool IsPort(HANDLE handle) {
    return GetFileType(handle) == FILE_TYPE_CHAR;
}

// To and from the fields of the system's block that settings speak of.
void Store(const PortSettings &settings, DCB &block) {
    block.BaudRate = settings.baud_rate;
    block.ByteSize = settings.data_bits;
    block.Parity = settings.parity;
    block.StopBits = settings.stop_bits;
    block.fOutxCtsFlow = settings.cts_flow;
    block.fOutxDsrFlow = settings.dsr_flow;
    block.fDtrControl = settings.dtr & 3u;
    block.fDsrSensitivity = settings.dsr_sensitive;
    block.fOutX = settings.xon_output;
    block.fInX = settings.xon_input;
    block.fRtsControl = settings.rts & 3u;
}

PortSettings SettingsOf(const DCB &block) {
    PortSettings settings;
    settings.baud_rate = block.BaudRate;
    settings.data_bits = block.ByteSize;
    settings.parity = block.Parity;
    settings.stop_bits = block.StopBits;
    settings.rts = block.fRtsControl;
    settings.dtr = block.fDtrControl;
    settings.cts_flow = block.fOutxCtsFlow != 0;
    settings.dsr_flow = block.fOutxDsrFlow != 0;
    settings.dsr_sensitive = block.fDsrSensitivity != 0;
    settings.xon_output = block.fOutX != 0;
    settings.xon_input = block.fInX != 0;
    return settings;
}

} // namespace

zr_value backend::OpenPort(const char *port) {
    const HANDLE handle = CreateFileA(port, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return 0;
    if (IsPort(handle))
        return reinterpret_cast<zr_value>(handle);
    CloseHandle(handle);
    return 0;
}

bool backend::BuildPortSettings(const char *port, const char *configuration, PortSettings &out) {
    char text[text_size];
    if (std::strlen(port) + std::strlen(configuration) + 2 > sizeof text)
        return false;
    std::strcpy(text, port);
    std::strcat(text, ":");
    std::strcat(text, configuration);
    DCB block = {};
    block.DCBlength = sizeof block;
    Store(out, block);
    if (!BuildCommDCBA(text, &block))
        return false;
    out = SettingsOf(block);
    return true;
}

bool backend::ApplyPortSettings(zr_value port, const PortSettings &settings) {
    DCB block = {};
    block.DCBlength = sizeof block;
    if (!GetCommState(HandleOf(port), &block))
        return false;
    Store(settings, block);
    block.fBinary = 1;                                        // the system knows no other mode
    block.fErrorChar = block.fNull = block.fAbortOnError = 0; // bytes pass as they are
    return SetCommState(HandleOf(port), &block) != 0;
}

std::size_t backend::WritePort(zr_value port, const void *bytes, std::size_t size) {
    if (!IsPort(HandleOf(port)))
        return 0;
    DWORD written = 0;
    const DWORD wanted = size > MAXDWORD ? MAXDWORD : static_cast<DWORD>(size);
    WriteFile(HandleOf(port), bytes, wanted, &written, nullptr); // the number tells all
    return written;
}

void backend::ClosePort(zr_value port) {
    if (IsPort(HandleOf(port)))
        CloseHandle(HandleOf(port));
}

} // namespace zr::platform
