// Serial ports on pseudo-terminals: what really arrives at the other end.
#include <zrclb/serial.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include "platform/known_folders.h"
#include "platform/libraries.h"
#include "platform/posix/posix_ports.h"
#include "platform/serial_port.h"
#include "platform/temp_folder.h"
#include "pseudo_terminal.h"

namespace {

using zr::platform::PortSettings;

// The kernel's record of a terminal's settings.
struct termios2 {
    tcflag_t c_iflag, c_oflag, c_cflag, c_lflag;
    cc_t c_line;
    cc_t c_cc[19];
    speed_t c_ispeed, c_ospeed;
};

// What this thread has asked of terminals.
struct Asked {
    tcflag_t line = 0; // the last flags of the line
    int on = 0;        // lines to be switched
    int off = 0;
};

thread_local Asked asked;

} // namespace

// Stands in front of the C library's ioctl, which has a name of its own for late times where they are not the usual.
#ifdef __LP64__
extern "C" int AskTerminal(int descriptor, unsigned long request, ...) noexcept __asm__("ioctl");
#else
extern "C" int AskTerminal(int descriptor, unsigned long request, ...) noexcept __asm__("__ioctl_time64");
#endif

extern "C" int AskTerminal(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (request == TCSETS2)
        asked.line = static_cast<const termios2 *>(argument)->c_cflag;
    else if (request == TIOCMBIS)
        asked.on |= *static_cast<const int *>(argument);
    else if (request == TIOCMBIC)
        asked.off |= *static_cast<const int *>(argument);
    return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
}

namespace {

// COM1 is the pseudo-terminal, and WIN.INI stands in the test's folder.
class PosixSerial : public testing::Test {
protected:
    void SetUp() override {
        setenv("ZR_WINDOWS_DIR", m_folder.Folder().c_str(), 1);
        setenv("ZR_PORT_COM1", m_pair.Port().c_str(), 1);
    }
    void TearDown() override {
        unsetenv("ZR_WINDOWS_DIR");
        unsetenv("ZR_PORT_COM1");
    }

    void SetEntry(const std::string &value, const std::string &port = "COM1") const {
        m_folder.Write("WIN.INI", "[Ports]\n" + port + ":=" + value + "\n");
    }

    std::string FileOf(const std::string &bytes) const {
        m_folder.Write("plot", bytes);
        return m_folder.Path("plot");
    }

    static std::string Noise(std::size_t size) {
        std::string bytes(size, '\0');
        unsigned state = 1;
        for (char &c : bytes)
            c = static_cast<char>((state = state * 1103515245 + 12345) >> 16);
        return bytes;
    }

    TempFolder m_folder;
    PseudoTerminal m_pair;
};

TEST_F(PosixSerial, SettingsArrive) {
    SetEntry("19200,e,7,2,p");
    zr_value port = iOpenWinComWrite("COM1");
    ASSERT_NE(port, 0u);
    const termios settings = m_pair.Settings();
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B19200));
    EXPECT_EQ(cfgetispeed(&settings), static_cast<speed_t>(B19200));
    EXPECT_NE(settings.c_cflag & CSTOPB, 0u);
    EXPECT_NE(settings.c_cflag & CRTSCTS, 0u);
    EXPECT_NE(settings.c_cflag & CLOCAL, 0u);
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | ICRNL | INLCR | ISTRIP), 0u);
    EXPECT_EQ(settings.c_oflag & OPOST, 0u);
    EXPECT_EQ(settings.c_lflag & (ECHO | ICANON | ISIG | IEXTEN), 0u);
    CloseWinCom(&port);
}

TEST_F(PosixSerial, HardwareHandshakeIsSetForEveryLetter) {
    for (const char *entry : {"9600,n,8,1,x", "9600,n,8,1,p", "9600,n,8,1"}) {
        SetEntry(entry);
        zr_value port = iOpenWinComWrite("COM1");
        ASSERT_NE(port, 0u) << entry;
        EXPECT_NE(m_pair.Settings().c_cflag & CRTSCTS, 0u) << entry;
        EXPECT_EQ((m_pair.Settings().c_iflag & IXON) != 0, std::string(entry).back() == 'x') << entry;
        EXPECT_EQ(m_pair.Settings().c_cflag & CSTOPB, 0u) << entry;
        CloseWinCom(&port);
    }
}

// A pseudo-terminal keeps neither bits nor parity and has no lines to switch.
TEST_F(PosixSerial, TerminalIsAskedForAllSettings) {
    struct Row {
        const char *entry;
        tcflag_t line;
    };
    for (const auto &[entry, line] :
         {Row{"9600,n,8,1,p", CS8}, Row{"9600,e,7,2,x", CS7 | PARENB | CSTOPB},
          Row{"9600,o,6,1,p", CS6 | PARENB | PARODD}, Row{"9600,m,5,1.5,p", CS5 | PARENB | PARODD | CMSPAR | CSTOPB}}) {
        SetEntry(entry);
        asked = {};
        zr_value port = iOpenWinComWrite("COM1");
        EXPECT_NE(port, 0u) << entry;
        EXPECT_EQ(asked.line & (CSIZE | PARENB | PARODD | CMSPAR | CSTOPB), line) << entry;
        EXPECT_EQ(asked.off, TIOCM_DTR) << entry;
        EXPECT_EQ(asked.on, 0) << entry;
        CloseWinCom(&port);
    }
}

TEST_F(PosixSerial, BytesArriveAsTheyAre) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    zr_value port = iOpenWinComWrite("COM1");
    WriteWinCom(&port, bytes.data(), static_cast<zr_ulong>(bytes.size()));
    ASSERT_NE(port, 0u);
    EXPECT_EQ(m_pair.Receive(bytes.size()), bytes);
    CloseWinCom(&port);
    EXPECT_TRUE(m_pair.IsQuiet());
}

TEST_F(PosixSerial, PlotWithTheDefaultConfiguration_Arrives) {
    const std::string bytes = "IN;SP1;PA0,0;\r\n\x1A\n";
    EXPECT_EQ(PlotToCom32Bit(FileOf(bytes).c_str(), "COM1"), 1);
    EXPECT_EQ(m_pair.Receive(bytes.size()), bytes);
    const termios settings = m_pair.Settings();
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B9600));
}

TEST_F(PosixSerial, PortMayBeTheDevicesPath) {
    const std::string bytes = "data";
    SetEntry("38400,n,8,1,x", m_pair.Port());
    EXPECT_EQ(PlotToCom32Bit(FileOf(bytes).c_str(), m_pair.Port().c_str()), 1);
    EXPECT_EQ(m_pair.Receive(bytes.size()), bytes);
    const termios settings = m_pair.Settings();
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B38400));
    std::string path = "C:" + m_pair.Port();
    std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_EQ(WriteFileWinCom(FileOf(bytes).c_str(), path.c_str()), 1);
    EXPECT_EQ(m_pair.Receive(bytes.size()), bytes);
}

TEST_F(PosixSerial, FaultyConfiguration_GivesZeroAfterSending) {
    for (const char *entry : {"9600,N,8,1,p", "9600,s,8,1,p", "9600,n,8,1,P", "0,n,8,1,p"}) {
        SetEntry(entry);
        EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0) << entry;
        EXPECT_EQ(m_pair.Receive(4), "data") << entry;
        EXPECT_EQ(PlotToCom32Bit(m_folder.Path("missing").c_str(), "COM1"), 0) << entry;
    }
}

TEST_F(PosixSerial, RefusedConfiguration_SendsNothingAndLeavesThePortOpen) {
    SetEntry("9600,q,8,1,p");
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0);
    EXPECT_TRUE(m_pair.IsQuiet());
    SetEntry("9600,n,8,1,p");
    EXPECT_EQ(iOpenWinComWrite("COM1"), 0u); // it is still open
}

TEST_F(PosixSerial, MissingFile_IsDoneAndThePortClosedAgain) {
    EXPECT_EQ(PlotToCom32Bit(m_folder.Path("missing").c_str(), "COM1"), 1);
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 1);
    EXPECT_EQ(m_pair.Receive(4), "data");
}

TEST_F(PosixSerial, OpenPort_IsForOneAlone) {
    zr_value port = iOpenWinComWrite("COM1");
    ASSERT_NE(port, 0u);
    int claimed = 0;
    EXPECT_EQ(ioctl(static_cast<int>(port), TIOCGEXCL, &claimed), 0);
    EXPECT_NE(claimed, 0);
    EXPECT_NE(fcntl(static_cast<int>(port), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(fcntl(static_cast<int>(port), F_GETFL) & (O_ACCMODE | O_NONBLOCK), O_RDWR);
    EXPECT_EQ(iOpenWinComWrite("COM1"), 0u);
    EXPECT_EQ(iOpenWinComWrite(m_pair.Port().c_str()), 0u);
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0);
    WriteWinCom(&port, "mine", 4);
    EXPECT_EQ(m_pair.Receive(4), "mine");
    CloseWinCom(&port);
    port = iOpenWinComWrite("COM1");
    EXPECT_NE(port, 0u);
    CloseWinCom(&port);
}

TEST_F(PosixSerial, PortOfAnotherProgram_DoesNotOpen) {
    const int other = open(m_pair.Port().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_NE(other, -1);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(iOpenWinComWrite("COM1"), 0u);
    ASSERT_EQ(flock(other, LOCK_UN), 0);
    ASSERT_EQ(ioctl(other, TIOCEXCL), 0);
    EXPECT_EQ(iOpenWinComWrite("COM1"), 0u);
    ASSERT_EQ(ioctl(other, TIOCNXCL), 0);
    zr_value port = iOpenWinComWrite("COM1");
    EXPECT_NE(port, 0u);
    CloseWinCom(&port);
    close(other);
}

TEST_F(PosixSerial, SlowReader_GetsEverything) {
    const std::string bytes = Noise(100000);
    std::string received;
    std::thread reader([&] {
        for (int i = 0; i < 10; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            received += m_pair.Receive(1000);
        }
        received += m_pair.Receive(bytes.size() - received.size());
    });
    EXPECT_EQ(PlotToCom32Bit(FileOf(bytes).c_str(), "COM1"), 1);
    reader.join();
    EXPECT_TRUE(received == bytes);
}

TEST_F(PosixSerial, ReaderThatGoesAway_EndsThePlot) {
    std::thread reader([&] {
        EXPECT_EQ(m_pair.Receive(50000).size(), 50000u);
        m_pair.HangUp();
    });
    EXPECT_EQ(PlotToCom32Bit(FileOf(Noise(1000000)).c_str(), "COM1"), 0);
    reader.join();
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0); // no such port any more
}

// Reader of its own for each of two ports; nothing of one gets to the other.
TEST_F(PosixSerial, PortsOfTwoThreads_AreIndependent) {
    const PseudoTerminal second;
    m_folder.Write("WIN.INI", "[Ports]\n" + m_pair.Port() + ":=19200,e,7,2,p\n" + second.Port() + ":=300,n,8,1,x\n");
    const std::string file = FileOf(Noise(3000));
    const auto plot = [&](const PseudoTerminal &pair, speed_t rate) {
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(PlotToCom32Bit(file.c_str(), pair.Port().c_str()), 1);
            EXPECT_TRUE(pair.Receive(3000) == Noise(3000));
            const termios settings = pair.Settings();
            EXPECT_EQ(cfgetospeed(&settings), rate);
        }
    };
    std::thread beside(plot, std::cref(second), speed_t(B300));
    plot(m_pair, speed_t(B19200));
    beside.join();
}

TEST_F(PosixSerial, WriteToAPortThatIsGone_ClosesIt) {
    zr_value port = iOpenWinComWrite("COM1");
    ASSERT_NE(port, 0u);
    const int descriptor = static_cast<int>(port);
    setWinComPort(2, 1);
    m_pair.HangUp();
    WriteWinCom(&port, "data", 4);
    EXPECT_EQ(port, 0u);
    EXPECT_EQ(getWinComPort(), 0);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(PosixSerial, WhatIsNoPort_DoesNotOpen) {
    const std::string file = FileOf("plain");
    for (const std::string &port :
         {m_folder.Path("missing"), file, m_folder.Folder().string(), std::string("/dev/null"), std::string(""),
          std::string("COM0"), std::string("COM1000"), std::string("COM"), std::string("COM1x"), std::string("Q:\\x"),
          std::string("\\\\.\\COM1")}) {
        EXPECT_EQ(iOpenWinComWrite(port.c_str()), 0u) << port;
        EXPECT_EQ(PlotToCom32Bit(file.c_str(), port.c_str()), 0) << port;
    }
    EXPECT_EQ(m_folder.Read("plot"), "plain");
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path("missing")));
    setenv("ZR_PORT_COM1", file.c_str(), 1);
    EXPECT_EQ(iOpenWinComWrite("COM1"), 0u);
    setenv("ZR_PORT_COM1", std::string("/" + std::string(10000, 'x')).c_str(), 1);
    EXPECT_EQ(iOpenWinComWrite("COM1"), 0u);
}

TEST_F(PosixSerial, PortNamesHaveAnyCaseAndAColon) {
    for (const char *name : {"COM1", "com1", "Com1"}) {
        zr_value port = iOpenWinComWrite(name);
        EXPECT_NE(port, 0u) << name;
        CloseWinCom(&port);
    }
    const zr_value port = zr::platform::OpenPort("COM1:");
    EXPECT_NE(port, 0u);
    zr::platform::ClosePort(port);
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1:"), 0); // two colons in its settings text
}

TEST_F(PosixSerial, ForeignHandles_AreRefusedAndStayOpen) {
    const int file = open(FileOf("plain").c_str(), O_RDWR);
    ASSERT_NE(file, -1);
    for (zr_value foreign : {static_cast<zr_value>(file), zr_value(99999), ~zr_value(0), zr_value(0x7FFFFFFF)}) {
        zr_value handle = foreign;
        WriteWinCom(&handle, "data", 4);
        EXPECT_EQ(handle, 0u);
        EXPECT_FALSE(zr::platform::ApplyPortSettings(foreign, PortSettings()));
    }
    EXPECT_NE(fcntl(file, F_GETFD), -1);
    EXPECT_EQ(m_folder.Read("plot"), "plain");
    close(file);
}

TEST_F(PosixSerial, PortNeverHasTheHandleZero) {
    const int input = dup(0);
    close(0);
    zr_value port = iOpenWinComWrite("COM1");
    EXPECT_NE(port, 0u);
    EXPECT_EQ(fcntl(0, F_GETFD), -1);
    WriteWinCom(&port, "data", 4);
    EXPECT_EQ(m_pair.Receive(4), "data");
    CloseWinCom(&port);
    if (input != -1) {
        dup2(input, 0);
        close(input);
    }
}

PortSettings Plain(std::uint32_t rate) {
    PortSettings settings;
    settings.baud_rate = rate;
    settings.data_bits = 8;
    return settings;
}

TEST_F(PosixSerial, EveryRateIsSet) {
    const zr_value port = zr::platform::OpenPort("COM1");
    ASSERT_NE(port, 0u);
    struct Rate {
        std::uint32_t bits;
        speed_t code;
    };
    for (const auto &[bits, code] : {Rate{50, B50}, Rate{110, B110}, Rate{300, B300}, Rate{19200, B19200},
                                     Rate{115200, B115200}, Rate{4000000, B4000000}}) {
        EXPECT_TRUE(zr::platform::ApplyPortSettings(port, Plain(bits)));
        const termios settings = m_pair.Settings();
        EXPECT_EQ(cfgetospeed(&settings), code) << bits;
    }
    constexpr speed_t no_code = 0010000; // the rate stands as a number
    EXPECT_TRUE(zr::platform::ApplyPortSettings(port, Plain(256000)));
    const termios settings = m_pair.Settings();
    EXPECT_EQ(cfgetospeed(&settings), no_code);
    zr::platform::ClosePort(port);
}

// Of the parity a pseudo-terminal keeps only which one it would be.
TEST_F(PosixSerial, EveryParityIsSet) {
    const zr_value port = zr::platform::OpenPort("COM1");
    ASSERT_NE(port, 0u);
    const tcflag_t wanted[] = {0, PARODD, 0, PARODD | CMSPAR, CMSPAR};
    for (std::uint8_t parity = 0; parity < 5; ++parity) {
        PortSettings settings = Plain(9600);
        settings.parity = parity;
        EXPECT_TRUE(zr::platform::ApplyPortSettings(port, settings));
        EXPECT_EQ(m_pair.Settings().c_cflag & (PARODD | CMSPAR), wanted[parity]) << int(parity);
    }
    zr::platform::ClosePort(port);
}

TEST_F(PosixSerial, SettingsOutOfRange_AreRefused) {
    const zr_value port = zr::platform::OpenPort("COM1");
    EXPECT_TRUE(zr::platform::ApplyPortSettings(port, Plain(300)));
    PortSettings wrong[6];
    std::fill(std::begin(wrong), std::end(wrong), Plain(9600));
    wrong[0].baud_rate = 0; // would hang up
    wrong[1].baud_rate = 0xFFFFFFFF;
    wrong[2].data_bits = 4;
    wrong[3].data_bits = 9;
    wrong[4].parity = 5;
    wrong[5].stop_bits = 3;
    for (const PortSettings &settings : wrong)
        EXPECT_FALSE(zr::platform::ApplyPortSettings(port, settings));
    const termios settings = m_pair.Settings();
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B300));
    zr::platform::ClosePort(port);
}

TEST_F(PosixSerial, HandshakesCanBeSwitchedOff) {
    const zr_value port = zr::platform::OpenPort("COM1");
    PortSettings settings = Plain(9600);
    settings.xon_output = settings.xon_input = settings.cts_flow = true;
    EXPECT_TRUE(zr::platform::ApplyPortSettings(port, settings));
    EXPECT_EQ(m_pair.Settings().c_iflag & (IXON | IXOFF), static_cast<tcflag_t>(IXON | IXOFF));
    EXPECT_NE(m_pair.Settings().c_cflag & CRTSCTS, 0u);
    EXPECT_TRUE(zr::platform::ApplyPortSettings(port, Plain(9600)));
    EXPECT_EQ(m_pair.Settings().c_iflag & (IXON | IXOFF), 0u);
    EXPECT_EQ(m_pair.Settings().c_cflag & CRTSCTS, 0u);
    zr::platform::ClosePort(port);
}

// The host's device of a port, or "none".
std::string DeviceOf(const std::string &port) {
    zr::platform::posix::PathBuffer device;
    return zr::platform::posix::HostPort(port.c_str(), device) ? device : "none";
}

TEST(PosixPortNames, AreDevicesOrPaths) {
    unsetenv("ZR_PORT_COM1");
    EXPECT_EQ(DeviceOf("COM1"), "/dev/ttyS0");
    EXPECT_EQ(DeviceOf("com12:"), "/dev/ttyS11");
    EXPECT_EQ(DeviceOf("CoM999"), "/dev/ttyS998");
    for (const char *number : {"0", "01", "1000", "1x", "", "7"})
        setenv((std::string("ZR_PORT_COM") + number).c_str(), "/own", 1);
    EXPECT_EQ(DeviceOf("COM7"), "/own");
    EXPECT_EQ(DeviceOf("COM7:"), "/own");
    for (const char *path : {"COM0", "COM01", "COM1000", "COM1x", "COM", "COM7::", "COM 7", "LPT7"})
        EXPECT_EQ(DeviceOf(path), path);
    EXPECT_EQ(DeviceOf("\\dev\\ttyUSB0"), "/dev/ttyUSB0");
    EXPECT_EQ(DeviceOf("Q:\\dev"), "none");
    for (const char *no_path : {"own", "", "../own"}) {
        setenv("ZR_PORT_COM7", no_path, 1);
        EXPECT_EQ(DeviceOf("COM7"), "/dev/ttyS6") << no_path;
    }
    for (const char *number : {"0", "01", "1000", "1x", "", "7"})
        unsetenv((std::string("ZR_PORT_COM") + number).c_str());
}

TEST(PosixWindowsFolder, IsTheVariablesOrTheDefault) {
    char folder[260];
    unsetenv("ZR_WINDOWS_DIR");
    EXPECT_EQ(zr::platform::WindowsFolder(folder, sizeof folder), 9u);
    EXPECT_STREQ(folder, "C:\\etc\\zr");
    setenv("ZR_WINDOWS_DIR", "/opt/old/", 1);
    EXPECT_EQ(zr::platform::WindowsFolder(folder, sizeof folder), 10u);
    EXPECT_STREQ(folder, "C:\\opt\\old");
    EXPECT_EQ(zr::platform::WindowsFolder(folder, 10), 0u);
    EXPECT_STREQ(folder, "");
    EXPECT_EQ(zr::platform::WindowsFolder(folder, 0), 0u);
    EXPECT_EQ(zr::platform::WindowsFolder(folder, 11), 10u);
    for (const char *relative : {"", "opt"}) {
        setenv("ZR_WINDOWS_DIR", relative, 1);
        EXPECT_EQ(zr::platform::WindowsFolder(folder, sizeof folder), 9u);
    }
    setenv("ZR_WINDOWS_DIR", std::string("/" + std::string(10000, 'x')).c_str(), 1);
    EXPECT_EQ(zr::platform::WindowsFolder(folder, sizeof folder), 0u);
    unsetenv("ZR_WINDOWS_DIR");
}

TEST(PosixLibraries, FunctionsAreFoundByName) {
    EXPECT_EQ(zr::platform::OpenLibrary("plotut32.dll"), nullptr);
    void *library = zr::platform::OpenLibrary("libc.so.6");
    ASSERT_NE(library, nullptr);
    const auto function = reinterpret_cast<int (*)(int)>(zr::platform::FindFunction(library, "abs"));
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(function(-7), 7);
    EXPECT_EQ(zr::platform::FindFunction(library, "no such function"), nullptr);
    zr::platform::CloseLibrary(library);
}

} // namespace
