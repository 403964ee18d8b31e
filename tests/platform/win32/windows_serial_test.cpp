// Serial ports of the system: the parser of settings texts, and a real port where there is one.
#include <zrclb/serial.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include <winternl.h>

#include "failing_system.h"
#include "platform/known_folders.h"
#include "platform/libraries.h"
#include "platform/serial_port.h"
#include "platform/temp_folder.h"
#include "process_measures.h"
#include "wine_terminal.h"

namespace {

using zr::platform::PortSettings;
namespace backend = zr::platform::backend;

std::string Line(const PortSettings &s) {
    std::string line;
    for (const std::uint32_t value :
         {s.baud_rate, std::uint32_t{s.data_bits}, std::uint32_t{s.parity}, std::uint32_t{s.stop_bits},
          std::uint32_t{s.cts_flow}, std::uint32_t{s.dsr_flow}, std::uint32_t{s.dtr}, std::uint32_t{s.dsr_sensitive},
          std::uint32_t{s.xon_output}, std::uint32_t{s.xon_input}, std::uint32_t{s.rts}})
        line += std::to_string(value) + " ";
    return line;
}

TEST(WindowsPortText, SystemsParserGoesThroughTheBlock) {
    PortSettings settings;
    EXPECT_TRUE(backend::BuildPortSettings("COM1", "19200,e,7,2,p", settings));
    EXPECT_EQ(Line(settings), "19200 7 2 2 1 1 2 0 0 0 2 ");
    EXPECT_TRUE(backend::BuildPortSettings("COM2", "xon=on idsr=on", settings));
    EXPECT_EQ(Line(settings), "19200 7 2 0 1 1 2 1 1 1 2 ");
    const std::string before = Line(settings);
    for (const char *text : {"9600,q,8,1,p", "9600,n,8,1,e", "9600"})
        EXPECT_FALSE(backend::BuildPortSettings("COM1", text, settings)) << text;
    EXPECT_FALSE(backend::BuildPortSettings("COM1:", "9600,n,8,1,p", settings));
    EXPECT_FALSE(backend::BuildPortSettings(std::string(1000, 'C').c_str(), "9600,n,8,1,p", settings));
    EXPECT_EQ(Line(settings), before);
}

// Texts put together at random from pieces that matter. Short forms and handshake words, which not every system knows,
// are not among them.
TEST(WindowsPortText, PortableParserAgreesWithTheSystems) {
    const char *pieces[] = {
        ",",     ",",     ",",    ",",     " ",          " ",     ":",       "n",         "e",
        "p",     "x",     "8",    "7",     "1",          "2",     "1.5",     "9600",      "110",
        "0",     "4",     "=",    "baud=", "parity=",    "data=", "stop=",   "on",        "off",
        "xon=",  "rts=",  "dtr=", "N",     "s",          "-",     "+",       "\t",        "octs=",
        "odsr=", "idsr=", "to=",  ".5",    "9600,n,8,1", ",p",    " xon=on", " baud=110", "baud=9600 parity=n"};
    std::uint32_t state = 1;
    const auto next = [&](std::size_t below) { return ((state = state * 1103515245u + 12345u) >> 16) % below; };
    int accepted = 0;
    for (int run = 0; run < 20000; ++run) {
        std::string text;
        for (std::size_t count = next(8); count > 0; --count)
            text += pieces[next(std::size(pieces))];
        PortSettings system;
        system.baud_rate = run % 2 == 0 ? 0 : 110;
        system.stop_bits = run % 3 == 0 ? 1 : 2;
        PortSettings portable = system;
        const bool taken = backend::BuildPortSettings("COM1", text.c_str(), system);
        ASSERT_EQ(zr::platform::ParsePortText(("COM1:" + text).c_str(), portable), taken) << text;
        ASSERT_EQ(Line(portable), Line(system)) << text;
        accepted += taken ? 1 : 0;
    }
    EXPECT_GT(accepted, 500);
}

class WindowsSerial : public testing::Test {
protected:
    void TearDown() override { zr::platform::services = zr::platform::Services(); }

    std::string FileOf(const std::string &bytes) const {
        m_folder.Write("plot", bytes);
        return m_folder.Path("plot");
    }

    TempFolder m_folder;
};

TEST_F(WindowsSerial, WhatIsNoPort_DoesNotOpen) {
    const std::string file = FileOf("plain");
    for (const std::string &port :
         {std::string("COM97"), m_folder.Path("missing"), file, m_folder.Folder().string(), std::string("")}) {
        EXPECT_EQ(iOpenWinComWrite(port.c_str()), 0u) << port;
        EXPECT_EQ(PlotToCom32Bit(file.c_str(), port.c_str()), 0) << port;
    }
    EXPECT_EQ(m_folder.Read("plot"), "plain");
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path("missing")));
    EXPECT_TRUE(std::filesystem::remove(file)); // nothing holds it open
}

// What a caller may do with an open handle.
ACCESS_MASK AccessOf(HANDLE handle) {
    using QueryObject = NTSTATUS(NTAPI *)(HANDLE, int, void *, ULONG, ULONG *);
    const auto query = reinterpret_cast<QueryObject>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("ntdll"), "NtQueryObject")));
    PUBLIC_OBJECT_BASIC_INFORMATION information = {};
    EXPECT_EQ(query(handle, 0, &information, sizeof information, nullptr), 0);
    return information.GrantedAccess;
}

// A plain file tells as well how a port is opened, though it is closed again.
TEST_F(WindowsSerial, Port_IsOpenedForOneAlone) {
    const std::string file = FileOf("plain");
    SetLastError(0);
    EXPECT_EQ(backend::OpenPort(file.c_str()), 0u);
    EXPECT_NE(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}}) {
        const HANDLE other =
            CreateFileA(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(other, INVALID_HANDLE_VALUE);
        SetLastError(0);
        EXPECT_EQ(backend::OpenPort(file.c_str()), 0u);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
        CloseHandle(other);
    }
}

TEST_F(WindowsSerial, ForeignHandles_AreRefusedAndStayOpen) {
    const HANDLE file = CreateFileA(FileOf("plain").c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    for (const zr_value foreign :
         {reinterpret_cast<zr_value>(file), reinterpret_cast<zr_value>(event), zr_value(99996), ~zr_value(0) - 99}) {
        zr_value handle = foreign;
        WriteWinCom(&handle, "data", 4);
        EXPECT_EQ(handle, 0u);
        EXPECT_FALSE(backend::ApplyPortSettings(foreign, PortSettings()));
    }
    EXPECT_EQ(m_folder.Read("plot"), "plain");
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_TRUE(CloseHandle(event));
}

// Leads the library's calls of a system function elsewhere while it lives.
template <class Function>
class Led {
public:
    Led(const char *name, Function *target)
        : m_name(name), m_real(zr::test::system_calls::Lead(GetModuleHandleA(nullptr), name, target)) {
        if (m_real == nullptr)
            throw std::runtime_error(std::string("nothing calls ") + name);
    }
    ~Led() { zr::test::system_calls::Lead(GetModuleHandleA(nullptr), m_name, m_real); }
    Led(const Led &) = delete;
    Led &operator=(const Led &) = delete;

private:
    const char *m_name;
    Function *m_real;
};

DCB set_block;
BOOL block_is_taken;

// A port with everything switched on.
BOOL WINAPI GetFullBlock(HANDLE, LPDCB block) {
    std::memset(block, 0xFF, sizeof *block);
    block->DCBlength = sizeof *block;
    return TRUE;
}

BOOL WINAPI SetBlock(HANDLE, LPDCB block) {
    set_block = *block;
    return block_is_taken;
}

// Not all of it comes to a terminal that stands for a port.
TEST_F(WindowsSerial, SystemIsAskedForAllSettings) {
    const Led get("GetCommState", GetFullBlock);
    const Led set("SetCommState", SetBlock);
    PortSettings settings;
    settings.baud_rate = 19200;
    settings.data_bits = 7;
    settings.parity = zr::platform::odd_parity;
    settings.stop_bits = zr::platform::one_and_a_half_stop_bits;
    settings.rts = zr::platform::line_handshake;
    settings.cts_flow = true;
    block_is_taken = TRUE;
    EXPECT_TRUE(backend::ApplyPortSettings(77, settings));
    EXPECT_EQ(set_block.DCBlength, sizeof set_block);
    EXPECT_EQ(set_block.BaudRate, 19200u);
    EXPECT_EQ(set_block.ByteSize, 7);
    EXPECT_EQ(set_block.Parity, ODDPARITY);
    EXPECT_EQ(set_block.StopBits, ONE5STOPBITS);
    EXPECT_EQ(set_block.fRtsControl, DWORD{RTS_CONTROL_HANDSHAKE});
    EXPECT_EQ(set_block.fOutxCtsFlow, 1u);
    EXPECT_EQ(set_block.fDtrControl, DWORD{DTR_CONTROL_DISABLE});
    EXPECT_EQ(set_block.fOutxDsrFlow | set_block.fDsrSensitivity | set_block.fOutX | set_block.fInX, 0u);
    block_is_taken = FALSE;
    EXPECT_FALSE(backend::ApplyPortSettings(77, settings));
}

BOOL WINAPI WriteAndFail(HANDLE, LPCVOID, DWORD size, LPDWORD written, LPOVERLAPPED) {
    *written = size;
    return FALSE;
}

// The number that was written tells whether a write failed, not what the system says of it.
TEST_F(WindowsSerial, WriteThatFailsButTellsAll_IsDone) {
    zr_value port = backend::OpenPort("NUL"); // a device of characters, too
    ASSERT_NE(port, 0u);
    {
        const Led write("WriteFile", WriteAndFail);
        WriteWinCom(&port, "data", 4);
    }
    EXPECT_NE(port, 0u);
    EXPECT_EQ(CloseWinCom(&port), 0);
}

// A port that is a terminal of the host. Its name is a path, which the system's parser does not take for a port's: it gets
// the settings alone.
class WineSerial : public WindowsSerial {
protected:
    void SetUp() override {
        if (m_terminal.Port().empty())
            GTEST_SKIP() << "no terminal of a host";
        folder = m_folder.Folder().string();
        zr::platform::services.windows_folder = [](char *out, std::size_t size) -> std::size_t {
            if (folder.size() >= size)
                return 0;
            std::strcpy(out, folder.c_str());
            return folder.size();
        };
        zr::platform::services.build_port_settings = [](const char *, const char *configuration, PortSettings &out) {
            return backend::BuildPortSettings("COM1", configuration, out);
        };
    }

    void SetEntry(const std::string &value) const {
        m_folder.Write("WIN.INI", "[Ports]\r\n" + m_terminal.Port() + ":=" + value + "\r\n");
    }

    const char *Port() const { return m_terminal.Port().c_str(); }

    static inline std::string folder;
    WineTerminal m_terminal;
};

bool Has(const std::string &settings, const std::string &word) {
    return settings.find(" " + word + " ") != std::string::npos;
}

std::string Noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 7;
    for (char &c : bytes)
        c = static_cast<char>((state = state * 1103515245u + 12345u) >> 16);
    return bytes;
}

TEST_F(WineSerial, SettingsAndBytesArrive) {
    SetEntry("19200,e,7,2,x");
    zr_value port = iOpenWinComWrite(Port());
    ASSERT_NE(port, 0u);
    constexpr ACCESS_MASK both = FILE_READ_DATA | FILE_WRITE_DATA;
    EXPECT_EQ(AccessOf(reinterpret_cast<HANDLE>(port)) & both, both);
    const std::string settings = m_terminal.Settings();
    EXPECT_TRUE(Has(settings, "speed 19200 baud")) << settings;
    EXPECT_TRUE(Has(settings, "cstopb")) << settings;
    EXPECT_TRUE(Has(settings, "-opost")) << settings;
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    WriteWinCom(&port, bytes.data(), 256);
    EXPECT_NE(port, 0u);
    EXPECT_TRUE(m_terminal.Arrives(bytes));
    EXPECT_EQ(CloseWinCom(&port), 0);
}

TEST_F(WineSerial, HardwareHandshakeIsSetForEveryLetter) {
    for (const std::string entry : {"9600,n,8,1,x", "9600,n,8,1,p", "9600,n,8,1"}) {
        SetEntry(entry);
        zr_value port = iOpenWinComWrite(Port());
        ASSERT_NE(port, 0u) << entry;
        const std::string settings = m_terminal.Settings();
        EXPECT_TRUE(Has(settings, "speed 9600 baud")) << settings;
        EXPECT_TRUE(Has(settings, "-cstopb")) << settings;
        EXPECT_TRUE(Has(settings, "crtscts")) << entry << settings;
        EXPECT_TRUE(Has(settings, entry.back() == 'x' ? "ixon" : "-ixon")) << entry << settings;
        CloseWinCom(&port);
    }
}

TEST_F(WineSerial, HandshakesCanBeSwitchedOff) {
    const zr_value port = backend::OpenPort(Port());
    PortSettings settings;
    settings.baud_rate = 9600;
    settings.data_bits = 8;
    settings.xon_output = settings.xon_input = settings.cts_flow = true;
    settings.rts = zr::platform::line_handshake;
    EXPECT_TRUE(backend::ApplyPortSettings(port, settings));
    EXPECT_TRUE(Has(m_terminal.Settings(), "crtscts"));
    settings.xon_output = settings.xon_input = settings.cts_flow = false;
    settings.rts = zr::platform::line_enabled;
    EXPECT_TRUE(backend::ApplyPortSettings(port, settings));
    EXPECT_TRUE(Has(m_terminal.Settings(), "-crtscts"));
    EXPECT_TRUE(Has(m_terminal.Settings(), "-ixon"));
    backend::ClosePort(port);
}

TEST_F(WineSerial, PlotArrivesAndAFaultyOneToo) {
    const std::string bytes = Noise(100000);
    EXPECT_EQ(PlotToCom32Bit(FileOf(bytes).c_str(), Port()), 1);
    EXPECT_TRUE(m_terminal.Arrives(bytes));
    EXPECT_TRUE(Has(m_terminal.Settings(), "speed 9600 baud"));
    const long long handles_before = ProcessMeasures::OpenHandles();
    SetEntry("9600,N,8,1,p");
    EXPECT_EQ(PlotToCom32Bit(FileOf("capital letter").c_str(), Port()), 0);
    EXPECT_TRUE(m_terminal.Arrives("capital letter"));
    EXPECT_EQ(PlotToCom32Bit(m_folder.Path("missing").c_str(), Port()), 0);
    SetEntry("9600,n,8,1,p");
    EXPECT_EQ(PlotToCom32Bit(m_folder.Path("missing").c_str(), Port()), 1);
    EXPECT_EQ(ProcessMeasures::OpenHandles(), handles_before);
}

TEST_F(WineSerial, RefusedConfiguration_SendsNothingAndLeavesThePortOpen) {
    const long long handles_before = ProcessMeasures::OpenHandles();
    SetEntry("9600,q,8,1,p");
    EXPECT_EQ(PlotToCom32Bit(FileOf("refused").c_str(), Port()), 0);
    EXPECT_EQ(iOpenWinComWrite(Port()), 0u);
    EXPECT_EQ(ProcessMeasures::OpenHandles(), handles_before + 2);
    SetEntry("9600,n,8,1,p");
    EXPECT_EQ(PlotToCom32Bit(FileOf("taken").c_str(), Port()), 1);
    EXPECT_TRUE(m_terminal.Arrives("taken"));
    EXPECT_FALSE(m_terminal.HasArrived("refused"));
}

// Whether a plot that nobody reads still waits a while later.
bool Waits(const std::future<int> &plot) {
    return plot.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout;
}

TEST_F(WineSerial, SlowReader_GetsEverything) {
    const std::string bytes = Noise(100000);
    const std::string file = FileOf(bytes);
    m_terminal.Pause();
    auto plot = std::async(std::launch::async, [&] { return PlotToCom32Bit(file.c_str(), Port()); });
    EXPECT_TRUE(Waits(plot));
    m_terminal.GoOn();
    EXPECT_EQ(plot.get(), 1);
    EXPECT_TRUE(m_terminal.Arrives(bytes));
}

TEST_F(WineSerial, ReaderThatGoesAway_EndsThePlot) {
    const std::string file = FileOf(Noise(1000000)), port = Port();
    m_terminal.Pause();
    auto plot = std::async(std::launch::async, [&] { return PlotToCom32Bit(file.c_str(), port.c_str()); });
    EXPECT_TRUE(Waits(plot));
    m_terminal.HangUp();
    EXPECT_EQ(plot.get(), 0);
    EXPECT_EQ(PlotToCom32Bit(file.c_str(), port.c_str()), 0); // no such port any more
}

TEST_F(WineSerial, WriteToAPortThatIsGone_ClosesIt) {
    zr_value port = iOpenWinComWrite(Port());
    ASSERT_NE(port, 0u);
    setWinComPort(2, 1);
    m_terminal.HangUp();
    WriteWinCom(&port, "data", 4);
    EXPECT_EQ(port, 0u);
    EXPECT_EQ(getWinComPort(), 0);
}

TEST(WindowsFolder, IsTheSystems) {
    char folder[260];
    const std::size_t length = zr::platform::WindowsFolder(folder, sizeof folder);
    char system[MAX_PATH];
    EXPECT_EQ(length, GetWindowsDirectoryA(system, sizeof system));
    EXPECT_STREQ(folder, system);
    EXPECT_EQ(zr::platform::WindowsFolder(folder, length + 1), length);
    EXPECT_EQ(zr::platform::WindowsFolder(folder, length), 0u);
    EXPECT_STREQ(folder, "");
    EXPECT_EQ(zr::platform::WindowsFolder(folder, 0), 0u);
    EXPECT_EQ(zr::platform::WindowsFolder(nullptr, 9), 0u);
}

TEST(WindowsLibraries, FunctionsAreFoundByName) {
    EXPECT_EQ(zr::platform::OpenLibrary("plotut32.dll"), nullptr);
    void *library = zr::platform::OpenLibrary("kernel32.dll");
    ASSERT_NE(library, nullptr);
    EXPECT_NE(zr::platform::FindFunction(library, "GetTickCount"), nullptr);
    EXPECT_EQ(zr::platform::FindFunction(library, "no such function"), nullptr);
    zr::platform::CloseLibrary(library);
}

} // namespace
