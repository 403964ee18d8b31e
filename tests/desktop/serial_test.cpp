// Plot data for a serial port, with a port that the test makes up.
#include <zrclb/serial.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/port_configuration.h"
#include "frame/refused_heap.h"
#include "frame/report_fixture.h"
#include "platform/known_folders.h"
#include "platform/libraries.h"
#include "platform/serial_port.h"
#include "platform/system_kind.h"
#include "platform/temp_folder.h"
#include "process_measures.h"

namespace {

using zr::platform::PortSettings;
using zr::platform::services;

constexpr zr_value port_handle = 77;

// As the library is loaded, before any test.
const int first_kind = getWinComPort();

// What the made-up port and system do, and what was done to them.
struct World {
    std::string folder; // the Windows folder
    std::string open_port;
    bool port_refuses_settings = false;
    std::size_t room = static_cast<std::size_t>(-1); // bytes that the port takes before it is gone
    std::string opened;                              // name
    std::string settings_text;
    PortSettings settings;
    int applied = 0;
    int closed = 0;
    std::string bytes;
    std::vector<std::size_t> writes;
    std::uint32_t platform = 2;
    bool library_there = true;
    int start_result = 1;
    std::string missing_function;
    std::string calls; // of the old layer
};

World world;

int StartLibrary(void *library, zr_ulong reason, void *) {
    world.calls += library == &world && reason == 1 ? "start " : "wrong start ";
    return world.start_result;
}

int PlotOldWay(const char *file, const char *port) {
    world.calls += "plot " + std::string(file) + " " + port + " ";
    return 5;
}

zr::platform::LibraryFunction FindOldFunction(void *library, const char *name) {
    if (library != &world || world.missing_function == name)
        return nullptr;
    if (std::strcmp(name, "DllEntryPoint") == 0)
        return reinterpret_cast<zr::platform::LibraryFunction>(StartLibrary);
    if (std::strcmp(name, "PlotToCom16Bit_32") == 0)
        return reinterpret_cast<zr::platform::LibraryFunction>(PlotOldWay);
    return nullptr;
}

class Serial : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        world = World();
        world.folder = Folder();
        setWinComPort(WIN_COM_NONE, 1);
        services.windows_folder = [](char *out, std::size_t size) -> std::size_t {
            if (world.folder.empty() || world.folder.size() >= size)
                return 0;
            std::strcpy(out, world.folder.c_str());
            return world.folder.size();
        };
        services.system_version = [](zr::platform::SystemVersion &out) {
            out = {world.platform, 4, 0};
            return world.platform != 99;
        };
        ReplacePort();
        ReplaceOldLayer();
    }

    // Results and the old layer's boxes tell all.
    void TearDown() override {
        EXPECT_EQ(TakeLog(), "");
        EXPECT_TRUE(debugger.empty());
        ReportFixture::TearDown();
    }

    static void ReplacePort() {
        services.open_port = [](const char *port) -> zr_value {
            world.opened = port;
            return world.open_port == port ? 0 : port_handle;
        };
        // The portable parser, so that both platforms see the same.
        services.build_port_settings = [](const char *port, const char *configuration, PortSettings &out) {
            world.settings_text = std::string(port) + ":" + configuration;
            return zr::platform::ParsePortText(world.settings_text.c_str(), out);
        };
        services.apply_port_settings = [](zr_value port, const PortSettings &settings) {
            EXPECT_EQ(port, port_handle);
            world.settings = settings;
            ++world.applied;
            return !world.port_refuses_settings;
        };
        services.write_port = [](zr_value port, const void *bytes, std::size_t size) {
            EXPECT_EQ(port, port_handle);
            const std::size_t taken = std::min(size, world.room - std::min(world.room, world.bytes.size()));
            world.bytes.append(static_cast<const char *>(bytes), taken);
            world.writes.push_back(size);
            return taken;
        };
        services.close_port = [](zr_value port) {
            EXPECT_EQ(port, port_handle);
            ++world.closed;
        };
    }

    static void ReplaceOldLayer() {
        services.open_library = [](const char *name) -> void * {
            world.calls += std::string("load ") + name + " ";
            return world.library_there ? &world : nullptr;
        };
        services.find_function = FindOldFunction;
        services.close_library = [](void *library) { world.calls += library == &world ? "free " : "wrong free "; };
        services.show_message_box = [](zr_window owner, const char *text, const char *caption, unsigned type) {
            EXPECT_EQ(owner, nullptr);
            EXPECT_EQ(type, 0x40000u);
            world.calls += std::string("[") + caption + ": " + text + "] ";
            return 1;
        };
    }

    std::string Folder() const { return m_folder.Folder().string(); }
    std::string Path(const std::string &name) const { return m_folder.Path(name); }

    void SetEntry(const std::string &value, const std::string &port = "COM1") const {
        m_folder.Write("WIN.INI", "[Ports]\r\n" + port + ":=" + value + "\r\n");
    }

    // The configuration that a port gets, with nothing written behind the 64 characters; "none" when that fails.
    static std::string Entry(const char *port) {
        char config[70];
        std::memset(config, '#', sizeof config);
        const int result = GetComEntry(config, port);
        EXPECT_EQ(std::string(config + 64, 6), "######");
        EXPECT_TRUE(result != 0 || *config == '\0');
        return result == 1 ? config : "none";
    }

    std::string FileOf(const std::string &bytes) const {
        m_folder.Write("plot", bytes);
        return Path("plot");
    }

    TempFolder m_folder;
};

TEST_F(Serial, EntryOfThePort_IsTheConfiguration) {
    m_folder.Write("WIN.INI",
                   "[Other]\r\nCOM1:=bad\r\n[Ports]\r\nCOM1:=19200,e,7,2,x\r\nCOM2:=300,n,8,1\r\nLPT1:=\r\n");
    EXPECT_EQ(Entry("COM1"), "19200,e,7,2,x");
    EXPECT_EQ(Entry("COM2"), "300,n,8,1");
    EXPECT_EQ(Entry("LPT1"), "");
}

TEST_F(Serial, NoEntryOrNoFile_GivesTheDefault) {
    EXPECT_EQ(Entry("COM1"), "9600,n,8,1,p");
    SetEntry("19200,e,7,2,x");
    EXPECT_EQ(Entry("COM3"), "9600,n,8,1,p");
    EXPECT_EQ(Entry("COM1:"), "9600,n,8,1,p");
    EXPECT_EQ(Entry(""), "9600,n,8,1,p");
    m_folder.Write("WIN.INI", "COM1:=1\r\n[Port]\r\nCOM1:=2\r\n");
    EXPECT_EQ(Entry("COM1"), "9600,n,8,1,p");
}

TEST_F(Serial, Configuration_IsCutBehind40Characters) {
    const std::string longest = "9600,n,8,1,p" + std::string(28, 'y');
    SetEntry(longest);
    EXPECT_EQ(Entry("COM1"), longest);
    SetEntry(longest + "z and more");
    EXPECT_EQ(Entry("COM1"), longest);
}

TEST_F(Serial, UnknownOrLongFolder_GivesNoConfiguration) {
    world.folder = "";
    EXPECT_EQ(Entry("COM1"), "none");
    world.folder = std::string(64, 'f');
    EXPECT_EQ(Entry("COM1"), "none");
    world.folder = std::string(63, 'f');
    EXPECT_EQ(Entry("COM1"), "9600,n,8,1,p");
}

TEST_F(Serial, NullAndOverlongArguments_Fail) {
    EXPECT_EQ(GetComEntry(nullptr, "COM1"), 0);
    EXPECT_EQ(Entry(nullptr), "none");
    EXPECT_EQ(Entry(std::string(260, 'p').c_str()), "none");
    EXPECT_EQ(Entry(std::string(259, 'p').c_str()), "9600,n,8,1,p");
    EXPECT_EQ(iOpenWinComWrite(nullptr), 0u);
    EXPECT_EQ(iOpenWinComWrite(std::string(260, 'p').c_str()), 0u);
    EXPECT_EQ(PlotToCom32Bit("x", nullptr), 0);
    EXPECT_EQ(world.opened, "");
    EXPECT_EQ(PlotToCom32Bit(nullptr, "COM1"), 1); // a missing file
    EXPECT_EQ(PlotToCom32Bit(std::string(100000, 'f').c_str(), "COM1"), 1);
    EXPECT_EQ(world.closed, 2);
    EXPECT_EQ(WriteComEntry(nullptr, "COM1"), 0);
    EXPECT_EQ(WriteComEntry("x", nullptr), 0);
    EXPECT_EQ(WriteFileWinCom("x", nullptr), 0);
    EXPECT_EQ(WinCommPortCheck(nullptr), 0);
    world.platform = 0;
    EXPECT_EQ(WriteFileWinCom("x", nullptr), 0);
    EXPECT_EQ(WriteFileWinCom(nullptr, "COM1"), 0);
    EXPECT_EQ(world.calls, "");
}

// "baud data parity stop rts cts dtr dsr xon xon", or what went wrong.
std::string Opened(const char *port = "COM1") {
    world.applied = 0;
    if (iOpenWinComWrite(port) != port_handle)
        return world.applied == 0 ? "none" : "none, but applied";
    const PortSettings &s = world.settings;
    return std::to_string(s.baud_rate) + " " + std::to_string(s.data_bits) + " " + std::to_string(s.parity) + " " +
           std::to_string(s.stop_bits) + " " + std::to_string(s.rts) + std::to_string(s.cts_flow) +
           std::to_string(s.dtr) + " " + std::to_string(s.dsr_flow) + std::to_string(s.xon_output) +
           std::to_string(s.xon_input);
}

TEST_F(Serial, OpenedPort_HasItsSettingsAndHardwareHandshake) {
    EXPECT_EQ(Opened(), "9600 8 0 0 210 100");
    EXPECT_EQ(world.settings_text, "COM1:9600,n,8,1,p");
    SetEntry("19200,e,7,2,x");
    EXPECT_EQ(Opened(), "19200 7 2 2 210 011");
    SetEntry("300,o,5,1.5");
    EXPECT_EQ(Opened(), "300 5 1 1 210 000");
    SetEntry("115200,m,8,1,");
    EXPECT_EQ(Opened(), "115200 8 3 0 210 000");
    EXPECT_EQ(world.closed, 0);
}

TEST_F(Serial, OwnReaderOverridesTheSystems) {
    SetEntry("96,n,8,1,p"); // the system takes it as a short form
    EXPECT_EQ(Opened(), "96 8 0 0 210 100");
    SetEntry("9600,S,8, 2 ,P"); // fields that are not known keep what the system made of them
    EXPECT_EQ(Opened(), "9600 8 4 2 210 100");
    SetEntry("baud=9600 parity=e data=7 stop=2");
    EXPECT_EQ(Opened(), "0 7 2 2 210 000");
    SetEntry("");
    EXPECT_EQ(Opened(), "0 0 0 0 210 000");
}

TEST_F(Serial, ConfigurationThatTheSystemRefuses_LeavesThePortOpen) {
    for (const char *entry : {"9600", "9600,n,8,1,e", "9600,q,8,1,p", "x"}) {
        SetEntry(entry);
        EXPECT_EQ(Opened(), "none");
        EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0);
    }
    EXPECT_EQ(Opened("COM2:"), "none"); // its text has two colons
    world.folder = "";
    EXPECT_EQ(Opened(), "none");
    EXPECT_EQ(world.closed, 0);
    EXPECT_EQ(world.bytes, "");
}

TEST_F(Serial, PortThatDoesNotOpen_GivesZero) {
    world.open_port = "COM1";
    EXPECT_EQ(Opened(), "none");
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0);
    EXPECT_EQ(world.closed, 0);
}

TEST_F(Serial, PortThatRefusesSettings_IsOpenAllTheSame) {
    world.port_refuses_settings = true;
    EXPECT_EQ(iOpenWinComWrite("COM1"), port_handle);
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0);
    EXPECT_EQ(world.bytes, "data");
    EXPECT_EQ(PlotToCom32Bit(Path("missing").c_str(), "COM1"), 0);
    EXPECT_EQ(world.closed, 2);
}

TEST_F(Serial, Plot_SendsTheFileInBlocks) {
    std::string bytes(2 * 32768 + 5, 'a');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    EXPECT_EQ(PlotToCom32Bit(FileOf(bytes).c_str(), "COM1"), 1);
    EXPECT_TRUE(world.bytes == bytes);
    EXPECT_EQ(world.writes, (std::vector<std::size_t>{32768, 32768, 5}));
    EXPECT_EQ(world.closed, 1);
    world.bytes.clear();
    EXPECT_EQ(PlotToCom32Bit(FileOf("\r\n\x1A\r\n").c_str(), "COM1"), 1);
    EXPECT_EQ(world.bytes, "\r\n\x1A\r\n");
}

TEST_F(Serial, PlotOfNothing_IsDone) {
    EXPECT_EQ(PlotToCom32Bit(FileOf("").c_str(), "COM1"), 1);
    EXPECT_EQ(PlotToCom32Bit(Path("missing").c_str(), "COM1"), 1);
    EXPECT_EQ(PlotToCom32Bit(Folder().c_str(), "COM1"), 1);
    EXPECT_EQ(PlotToCom32Bit("", "COM1"), 1);
    EXPECT_EQ(world.closed, 4);
    EXPECT_TRUE(world.writes.empty());
}

TEST_F(Serial, PlotWithFaultyConfiguration_GivesZeroAfterSending) {
    services.build_port_settings = [](const char *, const char *, PortSettings &) { return true; };
    for (const char *entry : {"9600,q,8,1,p", "9600,n,8,1,q", "9600,N,8,1,p", "9600, n,8,1,p", "9600,s,8,1,p"}) {
        SetEntry(entry);
        world.bytes.clear();
        EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 0) << entry;
        EXPECT_EQ(world.bytes, "data") << entry;
        EXPECT_EQ(PlotToCom32Bit(Path("missing").c_str(), "COM1"), 0) << entry;
    }
    for (const char *entry : {"9600,n,8,1,e", "9600,n,8,1,x", "9600,none,8,1,paper", "9600,n", "9600", ",,"}) {
        SetEntry(entry);
        EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 1) << entry;
    }
    EXPECT_EQ(world.closed, 16);
}

TEST_F(Serial, PortThatIsGone_EndsThePlot) {
    world.room = 32770;
    EXPECT_EQ(PlotToCom32Bit(FileOf(std::string(100000, 'x')).c_str(), "COM1"), 0);
    EXPECT_EQ(world.bytes.size(), 32770u);
    EXPECT_EQ(world.writes.size(), 2u);
    EXPECT_EQ(world.closed, 1);
}

TEST_F(Serial, NoMemory_GivesZeroAndClosesThePort) {
    const std::string file = FileOf("data");
    int unsent = 0;
    const long long handles_before = ProcessMeasures::Now().handles;
    for (int others = 0;; ++others) {
        world.bytes.clear();
        const int closed_before = world.closed;
        const zr::test::HeapBalance balance;
        const zr::test::HeapRefusal refusal(others);
        const int result = PlotToCom32Bit(file.c_str(), "COM1");
        EXPECT_EQ(world.closed, closed_before + 1);
        EXPECT_EQ(balance.Open(), 0);
        EXPECT_EQ(world.bytes, result == 1 ? "data" : "");
        if (!refusal.Met()) {
            EXPECT_EQ(result, 1);
            break;
        }
        unsent += 1 - result;
    }
    EXPECT_EQ(unsent, 1); // for the block
    EXPECT_EQ(ProcessMeasures::Now().handles, handles_before);
}

TEST_F(Serial, OnlyThePlotNeedsMemory) {
    const CurrentFolder inside(m_folder.Folder());
    SetEntry("19200,e,7,2,x");
    const zr::test::HeapRefusal refusal(0, true);
    EXPECT_EQ(Entry("COM1"), "19200,e,7,2,x");
    zr_value handle = iOpenWinComWrite("COM1");
    WriteWinCom(&handle, "abc", 3);
    EXPECT_EQ(handle, port_handle);
    EXPECT_EQ(WriteComEntry("x", "COM1"), 1);
    EXPECT_FALSE(refusal.Met());
}

TEST_F(Serial, Plot_LeavesTheKindAlone) {
    setWinComPort(WIN_COM_32BIT, 1);
    EXPECT_EQ(PlotToCom32Bit(FileOf("data").c_str(), "COM1"), 1);
    EXPECT_EQ(getWinComPort(), WIN_COM_32BIT);
}

TEST_F(Serial, Write_SendsOrClosesThePort) {
    zr_value handle = iOpenWinComWrite("COM1");
    setWinComPort(2, 1);
    WriteWinCom(&handle, "abc", 3);
    WriteWinCom(&handle, "abc", 0);
    EXPECT_EQ(world.bytes, "abc");
    EXPECT_EQ(handle, port_handle);
    EXPECT_EQ(getWinComPort(), 2);
    world.room = 5;
    WriteWinCom(&handle, "def", 3);
    EXPECT_EQ(world.bytes, "abcde");
    EXPECT_EQ(handle, 0u);
    EXPECT_EQ(world.closed, 1);
    EXPECT_EQ(getWinComPort(), 0);
    WriteWinCom(&handle, "ghi", 3);
    WriteWinCom(nullptr, "ghi", 3);
    EXPECT_EQ(world.bytes, "abcde");
    EXPECT_EQ(world.closed, 1);
}

TEST_F(Serial, WriteFromNull_ClosesThePort) {
    zr_value handle = port_handle;
    WriteWinCom(&handle, nullptr, 0);
    EXPECT_EQ(handle, port_handle);
    WriteWinCom(&handle, nullptr, 1);
    EXPECT_EQ(handle, 0u);
    EXPECT_EQ(world.closed, 1);
}

TEST_F(Serial, Close_ForgetsHandleAndKind) {
    setWinComPort(2, 1);
    zr_value handle = port_handle;
    EXPECT_EQ(CloseWinCom(&handle), 0);
    EXPECT_EQ(handle, 0u);
    EXPECT_EQ(getWinComPort(), 0);
    EXPECT_EQ(world.closed, 1);
    for (zr_value *none : {&handle, static_cast<zr_value *>(nullptr)}) {
        setWinComPort(2, 1);
        EXPECT_EQ(CloseWinCom(none), 0);
        EXPECT_EQ(getWinComPort(), 0);
    }
    EXPECT_EQ(world.closed, 1);
}

TEST_F(Serial, KindIsNoneAtFirst) {
    EXPECT_EQ(first_kind, 0);
}

TEST_F(Serial, KindIsStoredOnlyWhenWriteIsOne) {
    EXPECT_EQ(setWinComPort(5, 0), 0);
    EXPECT_EQ(setWinComPort(7, 1), 7);
    EXPECT_EQ(setWinComPort(5, 0), 7);
    EXPECT_EQ(setWinComPort(5, 2), 7);
    EXPECT_EQ(setWinComPort(5, -1), 7);
    EXPECT_EQ(getWinComPort(), 7);
}

TEST_F(Serial, CheckFindsTheKind) {
    EXPECT_EQ(WinCommPortCheck("COM2:"), 2);
    EXPECT_EQ(getWinComPort(), 2);
    EXPECT_EQ(WinCommPortCheck("LPT1"), 0);
    EXPECT_EQ(getWinComPort(), 0);
    EXPECT_EQ(WinCommPortCheck("COM"), 2);
    EXPECT_EQ(WinCommPortCheck("COMPUTER"), 2);
    for (const char *other : {"com1", "CO", "C", "", " COM1", "\\\\.\\COM1"})
        EXPECT_EQ(WinCommPortCheck(other), 0) << other;
    world.platform = 1;
    EXPECT_EQ(WinCommPortCheck("COM1"), 2);
    world.platform = 0;
    EXPECT_EQ(WinCommPortCheck("COM1"), 1);
    EXPECT_EQ(WinCommPortCheck("LPT1"), 0);
    world.platform = 99; // the system doesn't tell
    EXPECT_EQ(WinCommPortCheck("COM1"), 2);
}

TEST_F(Serial, ThisSystem_HasTheDefaultAndThe32BitPath) {
    services = zr::platform::Services();
    EXPECT_EQ(WinCommPortCheck("COM2:"), 2);
    EXPECT_EQ(Entry("no port of this system"), "9600,n,8,1,p");
}

TEST_F(Serial, ParameterFileHasThreeLines) {
    const CurrentFolder inside(m_folder.Folder());
    SetEntry("19200,e,7,2,x");
    m_folder.Write("COMM.TMP", std::string(1000, 'o'));
    EXPECT_EQ(WriteComEntry("C:\\a b\\plot.plt", "COM1"), 1);
    EXPECT_EQ(m_folder.Read("COMM.TMP"), "C:\\a b\\plot.plt\r\nCOM1\r\n19200,e,7,2,x\r\n");
    world.folder = "";
    EXPECT_EQ(WriteComEntry("", "COM1"), 1);
    EXPECT_EQ(m_folder.Read("COMM.TMP"), "\r\nCOM1\r\n\r\n");
    std::filesystem::remove("COMM.TMP");
    std::filesystem::create_directory("COMM.TMP");
    EXPECT_EQ(WriteComEntry("x", "COM1"), 0);
}

TEST_F(Serial, RealSystem_SendsItself) {
    for (const std::uint32_t platform : {1u, 2u, 99u}) {
        world.platform = platform;
        world.bytes.clear();
        EXPECT_EQ(WriteFileWinCom(FileOf("data").c_str(), "COM1"), 1);
        EXPECT_EQ(world.bytes, "data");
    }
    world.open_port = "COM1";
    EXPECT_EQ(WriteFileWinCom(FileOf("data").c_str(), "COM1"), 0);
    EXPECT_EQ(world.calls, "");
}

TEST_F(Serial, OldLayer_SendsThroughItsLibrary) {
    const CurrentFolder inside(m_folder.Folder());
    world.platform = 0;
    EXPECT_EQ(WriteFileWinCom("plot.plt", "COM1"), 5);
    EXPECT_EQ(world.calls, "load plotut32.dll start plot plot.plt COM1 free ");
    EXPECT_EQ(m_folder.Read("COMM.TMP"), "plot.plt\r\nCOM1\r\n9600,n,8,1,p\r\n");
    EXPECT_EQ(world.opened, "");
}

TEST_F(Serial, OldLayer_SendsWithoutItsParameterFileToo) {
    const CurrentFolder inside(m_folder.Folder());
    world.platform = 0;
    std::filesystem::create_directory("COMM.TMP");
    EXPECT_EQ(WriteFileWinCom("plot.plt", "COM1"), 5);
    EXPECT_EQ(world.calls, "load plotut32.dll start plot plot.plt COM1 free ");
}

TEST_F(Serial, OldLayerThatIsMissing_SaysSo) {
    const CurrentFolder inside(m_folder.Folder());
    world.platform = 0;
    world.library_there = false;
    EXPECT_EQ(WriteFileWinCom("plot.plt", "COM1"), 0);
    EXPECT_EQ(world.calls, "load plotut32.dll [win_com.c: 32Bit Dll couldn't be loaded] ");
}

TEST_F(Serial, OldLayerThatDoesNotStart_SaysSoAndStaysLoaded) {
    const CurrentFolder inside(m_folder.Folder());
    world.platform = 0;
    world.start_result = 0;
    EXPECT_EQ(WriteFileWinCom("plot.plt", "COM1"), 0);
    EXPECT_EQ(world.calls, "load plotut32.dll start [win_com.c: 32Bit Dll couldn't be initialized] ");
    for (const char *function : {"DllEntryPoint", "PlotToCom16Bit_32"}) {
        world.calls.clear();
        world.missing_function = function;
        EXPECT_EQ(WriteFileWinCom("plot.plt", "COM1"), 0);
        EXPECT_EQ(world.calls, "load plotut32.dll [win_com.c: 32Bit Dll couldn't be initialized] ");
    }
}

TEST(PortConfiguration, MissingFieldsLeaveWhatWasThere) {
    PortSettings settings;
    settings.baud_rate = 1;
    settings.data_bits = 2;
    settings.parity = 4;
    settings.stop_bits = 2;
    EXPECT_TRUE(zr::desktop::ReadConfiguration("", settings));
    EXPECT_EQ(settings.baud_rate, 1u);
    EXPECT_TRUE(zr::desktop::ReadConfiguration("77,e", settings));
    EXPECT_EQ(settings.baud_rate, 77u);
    EXPECT_EQ(settings.parity, zr::platform::even_parity);
    EXPECT_EQ(settings.data_bits, 2);
    EXPECT_EQ(settings.stop_bits, 2);
    EXPECT_TRUE(settings.cts_flow);
}

TEST(PortConfiguration, EveryFieldTakesThePlaceOfWhatWasThere) {
    PortSettings settings;
    settings.parity = zr::platform::space_parity;
    settings.stop_bits = zr::platform::two_stop_bits;
    settings.rts = settings.dtr = zr::platform::line_toggled;
    EXPECT_TRUE(zr::desktop::ReadConfiguration("9600,n,8,1,e", settings));
    EXPECT_EQ(settings.parity, zr::platform::no_parity);
    EXPECT_EQ(settings.stop_bits, zr::platform::one_stop_bit);
    EXPECT_EQ(settings.rts, zr::platform::line_handshake);
    EXPECT_EQ(settings.dtr, zr::platform::line_disabled);
}

// Commas without anything between them count as one, so the fields behind them move up.
TEST(PortConfiguration, EmptyFieldsAreNone) {
    PortSettings settings;
    settings.stop_bits = zr::platform::two_stop_bits;
    EXPECT_FALSE(zr::desktop::ReadConfiguration(",9600,,7,6,1.50", settings)); // no such parity
    EXPECT_EQ(settings.baud_rate, 9600u);
    EXPECT_EQ(settings.data_bits, 6);
    EXPECT_EQ(settings.stop_bits, zr::platform::two_stop_bits);
}

TEST(PortConfiguration, OfTwoThreads_DoNotMeet) {
    const auto read = [](const char *configuration, std::uint32_t rate, std::uint8_t bits) {
        for (int i = 0; i < 5000; ++i) {
            PortSettings settings;
            ASSERT_TRUE(zr::desktop::ReadConfiguration(configuration, settings));
            ASSERT_EQ(settings.baud_rate, rate);
            ASSERT_EQ(settings.data_bits, bits);
        }
    };
    std::thread beside(read, "300,e,7,2,x", 300, std::uint8_t{7});
    read("19200,n,8,1,p", 19200, 8);
    beside.join();
}

TEST(PortConfiguration, NumbersOutOfRange_BecomeSomethingNoPortTakes) {
    PortSettings settings;
    EXPECT_TRUE(zr::desktop::ReadConfiguration("-1,n,264,1,p", settings));
    EXPECT_EQ(settings.baud_rate, 0xFFFFFFFF);
    EXPECT_EQ(settings.data_bits, 255);
    EXPECT_TRUE(zr::desktop::ReadConfiguration("99999999999,n,-8,1.50,p", settings));
    EXPECT_EQ(settings.baud_rate, 0x7FFFFFFFu);
    EXPECT_EQ(settings.data_bits, 0);
    EXPECT_EQ(settings.stop_bits, 0);
    EXPECT_TRUE(zr::desktop::ReadConfiguration(std::string(10000, '7').c_str(), settings));
}

} // namespace
