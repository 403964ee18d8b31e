// What the settings file tells the frame: the log, the program's name, memory to keep away from it, beeps, the old code page.
#include "library/frame_settings.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include <zrclb/ini.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

#include "env/refused_memory.h"
#include "frame/counted_allocation.h"
#include "frame/log_hook.h"
#include "frame/refused_heap.h"
#include "library/load.h"
#include "settings/beep_settings.h"
#include "settings/dos_to_win.h"
#include "settings/installation_fixture.h"

namespace {

const zr_long mode_at_start = zr::settings::dos_to_win_mode; // before any call

class FrameSettings : public InstallationFixture {
protected:
    using Sizes = std::vector<std::uint64_t>;

    static constexpr std::uint64_t mega = 1 << 20;
    static constexpr std::uint64_t giga = 1 << 30;

    void SetUp() override {
        InstallationFixture::SetUp();
        s_program = "C:\\bin\\tool.exe";
        s_debugger.clear();
        s_blocks.clear();
        s_block_count = 0;
        auto &services = zr::platform::services;
        services.program_path = [](char *out, std::size_t size) { return Give(s_program, out, size); };
        services.debug_output = [](const char *text) { s_debugger.emplace_back(text); };
        m_reserve_before = zr::library::reserve_block;
        zr::library::reserve_block = Reserve;
        zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
        zr::settings::beep_settings = {};
        zr_error_setname("prog.exe");
    }

    void TearDown() override {
        zr::library::reserve_block = m_reserve_before;
        zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
        zr::settings::beep_settings = {};
        zr_error_setname("");
        InstallationFixture::TearDown();
    }

    static void *Reserve(std::size_t size) {
        ++s_block_count;
        if (s_blocks.size() < 10)
            s_blocks.push_back(size);
        return nullptr; // refused, which does no harm
    }

    // The settings file with these lines in its section System, found anew.
    void WriteSystem(const std::string &lines) const {
        Write("zr\\zr.zrini", "[System]\n" + lines + "\n");
        zr::settings::ForgetInstallation();
    }

    // From the next report on, the log is as the settings say.
    static void UseSettings() {
        zr::frame::SetLogHook({zr::library::LogIsOn, zr::library::LogPath, zr::library::ProgramName});
    }

    bool Exists(const std::string &below) const { return std::filesystem::exists(HostOf(Path(below))); }

    // The lines of the log that hold a text of a report.
    std::string LogTexts(const std::string &below = "zr\\zrlog.txt") const {
        std::ifstream file(HostOf(Path(below)), std::ios::binary);
        std::string line, texts;
        while (std::getline(file, line)) {
            if (line.starts_with("  ") && line.find("traceback") == std::string::npos)
                texts += line.substr(2, line.find('!') - 2) + ";";
        }
        return texts;
    }

    static void ReportText(const char *text) { zr_error(text, nullptr, nullptr, "T", 1); }

    // What reached the debugger, without the heads of the reports and the ends of lines.
    static Texts DebuggerTexts() {
        Texts texts;
        for (const std::string &text : s_debugger) {
            if (!text.starts_with("ZR_ERROR in ") && text != "\n\n")
                texts.push_back(text);
        }
        s_debugger.clear();
        return texts;
    }

    static std::string LogPath(std::size_t size = 260) {
        char out[300];
        std::memset(out, '#', sizeof out);
        const bool found = zr::library::LogPath(out, size);
        EXPECT_EQ(out[size], '#');
        return found ? out : "none";
    }

    static std::string ProgramName(std::size_t size = 260) {
        char out[300];
        std::memset(out, '#', sizeof out);
        EXPECT_TRUE(zr::library::ProgramName(out, size));
        EXPECT_EQ(out[size], '#');
        return out;
    }

    static Sizes Reserved() {
        s_blocks.clear();
        zr::library::ReserveMemory();
        return s_blocks;
    }

    static std::string Converted(std::string text, int flag = 0) {
        EXPECT_EQ(dos_to_win(text.data(), flag), text.data());
        return text;
    }

    static Sizes Beeps() {
        const auto &beep = zr::settings::beep_settings;
        Sizes values;
        for (const auto &pair : {beep.error, beep.warning, beep.tick})
            values.insert(values.end(), pair, pair + 2);
        return values;
    }

    static inline std::string s_program;
    static inline Texts s_debugger;
    static inline Sizes s_blocks;
    static inline std::uint64_t s_block_count;
    zr::library::ReserveBlock m_reserve_before = nullptr;
};

// ---- The log

TEST_F(FrameSettings, LogIsOnForExactlyOne) {
    for (const char *value : {"1", " 1", "\t01", "+1", "1 ; on", "1.9"}) {
        WriteSystem(std::string("ZrLog=") + value);
        EXPECT_TRUE(zr::library::LogIsOn()) << value;
    }
    for (const char *value : {"0", "2", "-1", "11", "", "x", "yes", "99999999999", "4294967297"}) {
        WriteSystem(std::string("ZrLog=") + value);
        EXPECT_FALSE(zr::library::LogIsOn()) << value;
    }
    WriteSystem("zrlog=1");
    EXPECT_FALSE(zr::library::LogIsOn());
    WriteSystem("[Other]\nZrLog=1");
    EXPECT_FALSE(zr::library::LogIsOn());
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(FrameSettings, LogStandsBesideTheSettingsFile) {
    WriteSystem("ZrLog=1");
    const CurrentFolder current(HostOf(Path("zr\\bin")));
    UseSettings();
    ReportText("first");
    ReportText("second");
    EXPECT_EQ(LogTexts(), "first;second;");
    EXPECT_TRUE(std::filesystem::is_empty(HostOf(Path("zr\\bin"))));
}

TEST_F(FrameSettings, NoLogWithAnotherSettingThanOne) {
    const CurrentFolder current(HostOf(Path("zr\\bin")));
    for (const char *lines : {"ZrLog=2", "ZrLog=0", "Other=1"}) {
        WriteSystem(lines);
        UseSettings();
        ReportText("a");
        EXPECT_FALSE(Exists("zr\\zrlog.txt"));
        EXPECT_EQ(DebuggerTexts(), Texts{"a"});
    }
    EXPECT_TRUE(std::filesystem::is_empty(HostOf(Path("zr\\bin"))));
}

TEST_F(FrameSettings, LogSettingIsReadOnce) {
    WriteSystem("ZrLog=1");
    UseSettings();
    ReportText("on");
    WriteSystem("ZrLog=0");
    ReportText("still on");
    EXPECT_EQ(LogTexts(), "on;still on;");
    UseSettings();
    ReportText("off");
    WriteSystem("ZrLog=1");
    ReportText("still off");
    EXPECT_EQ(LogTexts(), "on;still on;");
}

TEST_F(FrameSettings, ReportsOfTheLookUpReachTheDebuggerOnlyAndTheLogStaysOff) {
    const CurrentFolder current(HostOf(Path("zr\\bin")));
    UseSettings();
    ReportText("first");
    // Switch and path each search, and each search reports twice.
    EXPECT_EQ(DebuggerTexts(), (Texts{not_found, not_found, not_found, not_found, "first"}));
    WriteSystem("ZrLog=1");
    ReportText("second");
    EXPECT_EQ(DebuggerTexts(), Texts{"second"});
    EXPECT_FALSE(Exists("zr\\zrlog.txt"));
    EXPECT_TRUE(std::filesystem::is_empty(HostOf(Path("zr\\bin"))));
}

TEST_F(FrameSettings, SearchWhoseReportIsTheFirstIsNotEnteredAgain) {
    UseSettings();
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit("", -1));
    EXPECT_EQ(DebuggerTexts(), (Texts{not_found, not_found}));
    WriteSystem("ZrLog=1");
    ReportText("later");
    EXPECT_FALSE(Exists("zr\\zrlog.txt"));
}

TEST_F(FrameSettings, FirstReportRaisedInsideTheSearchFindsNoSettings) {
    s_registry["InstallDir"] = Path("nowhere");
    Write("zr\\bin\\zr.zrini", "[System]\nZrLog=1\n");
    UseSettings();
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\bin\\zr.zrini")));
    EXPECT_EQ(DebuggerTexts(), Texts{"InstallDir nicht korrekt gesetzt."});
    ReportText("later");
    EXPECT_FALSE(Exists("zr\\bin\\zrlog.txt"));
}

TEST_F(FrameSettings, MalformedLineReportedByTheLookUpReachesTheDebuggerOnly) {
    WriteSystem("broken\nZrLog=1");
    UseSettings();
    ReportText("first");
    EXPECT_EQ(LogTexts(), "first;");
    const std::string malformed = "Incorrect entry's format. '=' is not found. File below:";
    EXPECT_EQ(DebuggerTexts(), (Texts{malformed, "System", "ZrLog", "first"}));
}

TEST_F(FrameSettings, FirstNameOfTheSettingsFileInThePathIsReplacedAndCaseCounts) {
    for (const auto &[folder, log] : {std::pair("etc", "etc\\zrlog.txt"),
                                      {"zr.zrini", "zrlog.txt\\zr.zrini"},
                                      {"old-zr.zrini.d", "old-zrlog.txt.d\\zr.zrini"},
                                      {"zr.zrin", "zr.zrin\\zrlog.txt"}}) {
        Write(std::string(folder) + "\\zr.zrini");
        s_registry["zr.ini"] = Path(folder);
        zr::settings::ForgetInstallation();
        EXPECT_EQ(LogPath(), Path(log));
    }
    // Path that a test alone can bring about: the library composes the name itself.
    strcpy(zr::settings::installation.settings_file_path.text, "C:\\ZR.ZRINI\\zr.zrini");
    EXPECT_EQ(LogPath(), "C:\\ZR.ZRINI\\zrlog.txt");
    strcpy(zr::settings::installation.settings_file_path.text, "C:\\ZR.zrini\\zr.ini");
    EXPECT_EQ(LogPath(), "none");
}

TEST_F(FrameSettings, LogOfAFileThatIsSpelledOtherwiseStandsInTheCurrentFolder) {
    Write("zr\\Zr.ZrIni", "[System]\nZrLog=1\n");
    strcpy(zr::settings::installation.settings_file_path.text, Path("zr\\Zr.ZrIni").c_str());
    const CurrentFolder current(HostOf(Path("zr\\bin")));
    UseSettings();
    ReportText("a");
    EXPECT_EQ(LogTexts("zr\\bin\\zrlog.txt"), "a;");
}

TEST_F(FrameSettings, PathOfTheLogNeedsRoomForItsTerminator) {
    Write("zr\\zr.zrini");
    const std::string path = Path("zr\\zrlog.txt");
    EXPECT_EQ(LogPath(path.size() + 1), path);
    EXPECT_EQ(LogPath(path.size()), "none");
    EXPECT_EQ(LogPath(1), "none");
}

class LongSettingsPath : public FrameSettings {
protected:
    // The logs that a report opens with a settings file whose path has so many characters.
    static Texts OpenedLogs(std::size_t length) {
        std::string path = "C:\\" + std::string(length - 12, 'a') + "\\zr.zrini";
        EXPECT_EQ(path.size(), length);
        strcpy(zr::settings::installation.settings_file_path.text, path.c_str());
        zr::platform::services.open_text = [](const char *name, const char *) -> std::FILE * {
            s_opened.emplace_back(name);
            return nullptr;
        };
        s_opened.clear();
        zr::frame::SetLogHook({[] { return true; }, zr::library::LogPath, nullptr});
        ReportText("a");
        return s_opened;
    }
    static std::string LogOf(std::size_t length) { return "C:\\" + std::string(length - 12, 'a') + "\\zrlog.txt"; }

    static inline Texts s_opened;
};

TEST_F(LongSettingsPath, OfTheLogsPath255CharactersAreKept) {
    EXPECT_EQ(OpenedLogs(254), Texts{LogOf(254)});
    EXPECT_EQ(LogOf(254).size(), 255U);
    EXPECT_EQ(OpenedLogs(255), Texts{LogOf(255).substr(0, 255)});
    EXPECT_EQ(OpenedLogs(258), Texts{LogOf(258).substr(0, 255)});
    EXPECT_EQ(DebuggerTexts(), (Texts{"a", "a", "a"}));
}

TEST_F(LongSettingsPath, WithoutRoomForTheLogsNameIsReportedInTheCurrentFolder) {
    EXPECT_EQ(OpenedLogs(259), (Texts{"zrlog.txt", "zrlog.txt"}));
    EXPECT_EQ(DebuggerTexts(), (Texts{"str_repl : Buffer zu klein", "a"}));
}

// ---- The program's name

TEST_F(FrameSettings, ProgramIsItsFileWithTheStartOfItsFolder) {
    for (const auto &[path, name] : {
             std::pair("C:\\Program Files\\Zr\\bin\\tool.exe", "tool.exe[C:\\Program Files\\Zr\\bi...]"),
             {"C:\\1234567890123456789\\tool", "tool[C:\\1234567890123456789...]"},
             {"C:\\123456789012345678\\tool", "tool[C:\\123456789012345678\\...]"},
             {"C:\\a\\t.exe", "t.exe[C:\\a\\...]"},
             {"C:\\t.exe", "t.exe[C:\\...]"},
             {"\\\\host\\share\\t.exe", "t.exe[\\\\host\\share\\...]"},
             {"t.exe", "t.exe[...]"},
         }) {
        s_program = path;
        EXPECT_EQ(ProgramName(), name);
    }
}

TEST_F(FrameSettings, ProgramWithoutAPathHasANameThatSaysSo) {
    s_program = "";
    EXPECT_EQ(ProgramName(), "GetModuleFileName??");
    UseSettings();
    zr_error_setname(nullptr);
    ReportText("a");
    EXPECT_EQ(s_debugger.back(), "\n\n");
    s_debugger.clear();
    ReportText("a");
    EXPECT_EQ(s_debugger[0], "ZR_ERROR in GetModuleFileName?? \"T\" line 1:\n");
}

TEST_F(FrameSettings, ProgramOfAnyLengthHasAName) {
    s_program = "C:\\" + std::string(251, 'p') + ".exe";
    EXPECT_EQ(ProgramName(300 - 1), std::string(251, 'p') + ".exe[C:\\...]");
    EXPECT_EQ(ProgramName(41), std::string(40, 'p'));
    s_program = "C:\\" + std::string(256, 'p'); // too long for the splitter, which gives no parts then
    EXPECT_EQ(ProgramName(), "[...]");
    s_program = "C:\\" + std::string(250, 'f') + "\\t.exe";
    EXPECT_EQ(ProgramName(), "t.exe[C:\\" + std::string(19, 'f') + "...]");
    EXPECT_EQ(ProgramName(2), "t");
}

TEST_F(FrameSettings, NameIsDerivedWhereNoneIsSetAndCutAt40Characters) {
    s_program = "C:\\Program Files\\Zr\\bin\\calculator.exe";
    WriteSystem("ZrLog=1");
    UseSettings();
    zr_error_setname("");
    zr_message("a", nullptr, nullptr, "T", 1);
    zr_error_setname("own");
    zr_message("a", nullptr, nullptr, "T", 2);
    zr_error_setname(nullptr);
    zr_message("a", nullptr, nullptr, "T", 3);
    const std::string log = m_folder.Read("zr/zrlog.txt");
    EXPECT_NE(log.find("> MESSAGE in calculator.exe[C:\\Program Files\\Zr\\bi... \"T\" line 1:"), std::string::npos);
    EXPECT_NE(log.find("> MESSAGE in own \"T\" line 2:"), std::string::npos);
    EXPECT_NE(log.find("> MESSAGE in calculator.exe[C:\\Program Files\\Zr\\bi... \"T\" line 3:"), std::string::npos);
}

// ---- Memory to keep away

TEST_F(FrameSettings, ThousandsAreBlocksOfAGigabyteAndTheRestIsMegabytes) {
    for (const auto &[setting, blocks] : {std::pair("1", Sizes{mega}),
                                          {"999", {999 * mega}},
                                          {"1000", {giga, 0}},
                                          {" 1001", {giga, mega}},
                                          {"1500", {giga, 500 * mega}},
                                          {"2500x", {giga, giga, 500 * mega}},
                                          {"3000", {giga, giga, giga, 0}}}) {
        WriteSystem(std::string("AllocProg=\nAllocMByte=") + setting);
        EXPECT_EQ(Reserved(), blocks) << setting;
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(FrameSettings, BlocksAreTheStandardAllocatorsAndAreNotCounted) {
    EXPECT_EQ(m_reserve_before, static_cast<zr::library::ReserveBlock>(std::malloc));
    static std::vector<void *> given;
    zr::library::reserve_block = [](std::size_t size) { return given.emplace_back(std::malloc(size)); };
    WriteSystem("AllocProg=\nAllocMByte=1");
    const zr_long blocks = zr::frame::heap_block_count;
    zr::library::ReserveMemory();
    EXPECT_EQ(zr::frame::heap_block_count, blocks);
    EXPECT_EQ(given.size(), 1U);
    for (void *block : given)
        std::free(block); // still there: else the second time
    given.clear();
}

TEST_F(FrameSettings, RefusedBlocksDoNotEndTheReservation) {
    WriteSystem("AllocProg=\nAllocMByte=99999999999"); // read as 2147483647
    s_block_count = 0;
    EXPECT_EQ(Reserved()[0], giga);
    EXPECT_EQ(s_block_count, 2147483U + 1);
}

TEST_F(FrameSettings, NothingIsReservedWithoutMegabytes) {
    for (const char *lines :
         {"AllocMByte=0", "AllocMByte=-1", "AllocMByte=-1500", "AllocMByte=", "AllocMByte=x", "allocmbyte=5"}) {
        for (const char *program : {"", "AllocProg=", "AllocProg=tool.exe"}) {
            WriteSystem(std::string(program) + "\n" + lines);
            EXPECT_EQ(Reserved(), Sizes{}) << lines << program;
        }
    }
    Write("zr\\zr.zrini", "AllocProg=\nAllocMByte=5\n");
    EXPECT_EQ(Reserved(), Sizes{});
}

TEST_F(FrameSettings, ProgramOfTheSettingAloneReserves) {
    const auto reserves = [this](const std::string &program_line) {
        WriteSystem(program_line + "\nAllocMByte=1");
        return !Reserved().empty();
    };
    EXPECT_TRUE(reserves("AllocProg=tool.exe"));
    EXPECT_TRUE(reserves("AllocProg=TOOL.Exe"));
    EXPECT_TRUE(reserves("AllocProg =tool.exe  \t"));
    EXPECT_TRUE(reserves("AllocProg="));
    EXPECT_TRUE(reserves("AllocProg=   "));
    for (const char *other :
         {"tool", "tool.ex", "tool.exe2", " tool.exe", "C:\\bin\\tool.exe", "other.exe", "\"tool.exe\""})
        EXPECT_FALSE(reserves(std::string("AllocProg=") + other)) << other;
    EXPECT_FALSE(reserves(""));
    EXPECT_FALSE(reserves("allocprog=tool.exe"));
    EXPECT_FALSE(reserves("AllocProg"));
    EXPECT_EQ(Reports().size(), 4U); // a line without "=", met by both reads
    s_program = "C:\\\xDC"
                "bung.exe";
    EXPECT_TRUE(reserves("AllocProg=\xDC"
                         "BUNG.EXE"));
    EXPECT_FALSE(reserves("AllocProg=\xFC"
                          "bung.exe")); // case counts beyond ASCII
}

TEST_F(FrameSettings, OverLongProgramIsNone) {
    for (const std::size_t length : {260U, 510U, 511U, 512U, 600U, 2000U}) {
        s_program = "C:\\bin\\" + std::string(200, 'p');
        WriteSystem("AllocMByte=1\nAllocProg=" + std::string(length, 'p'));
        EXPECT_EQ(Reserved(), Sizes{}) << length;
    }
    WriteSystem("AllocMByte=1\nAllocProg=" + std::string(200, 'p'));
    EXPECT_EQ(Reserved(), Sizes{mega});
    // The longest name that the splitter gives; nothing is cut to it.
    s_program = "C:\\" + std::string(255, 'p');
    EXPECT_EQ(ProgramName(299), std::string(255, 'p') + "[C:\\...]");
    WriteSystem("AllocMByte=1\nAllocProg=" + std::string(255, 'p'));
    EXPECT_EQ(Reserved(), Sizes{mega});
    WriteSystem("AllocMByte=1\nAllocProg=" + std::string(256, 'p'));
    EXPECT_EQ(Reserved(), Sizes{});
}

TEST_F(FrameSettings, ProgramThatIsNotKnownReserves) {
    s_program = "";
    WriteSystem("AllocMByte=1\nAllocProg=other.exe");
    EXPECT_EQ(Reserved(), Sizes{mega});
    WriteSystem("AllocMByte=1");
    EXPECT_EQ(Reserved(), Sizes{mega});
}

TEST_F(FrameSettings, MissingFileAtLoadIsReportedAndLeavesTheReservationOff) {
    EXPECT_EQ(Reserved(), Sizes{});
    EXPECT_EQ(Reports(), (Texts{not_found, not_found}));
}

TEST_F(FrameSettings, LoadReservesOnceAndLeadsTheLogToTheSettings) {
    WriteSystem("ZrLog=1\nAllocMByte=1500\nAllocProg=tool.exe");
    zr::library::LibraryUnload();
    s_blocks.clear();
    zr::library::LibraryLoad(nullptr);
    EXPECT_EQ(s_blocks, (Sizes{giga, 500 * mega}));
    zr::library::LibraryLoad(nullptr);
    EXPECT_EQ(s_blocks.size(), 2U);
    zr_error_setname("");
    ReportText("a");
    EXPECT_EQ(LogTexts(), "a;");
    EXPECT_EQ(s_debugger[0], "ZR_ERROR in tool.exe[C:\\bin\\...] \"T\" line 1:\n");
}

TEST_F(FrameSettings, LoadWithoutTheFileSwitchesTheLogOffForTheProcess) {
    zr::library::LibraryUnload();
    zr::library::LibraryLoad(nullptr);
    EXPECT_EQ(s_blocks, Sizes{});
    // The search that load begins reports, which asks for the log, which finds nobody else searching; then the read's own.
    EXPECT_EQ(DebuggerTexts(), (Texts{not_found, not_found}));
    WriteSystem("ZrLog=1");
    ReportText("later");
    EXPECT_FALSE(Exists("zr\\zrlog.txt"));
}

// ---- Beeps

TEST_F(FrameSettings, BeepsStayWithoutTheirEntries) {
    const Sizes start = {500, 700, 100, 700, 1, 0};
    EXPECT_EQ(Beeps(), start);
    EXPECT_EQ(ini_initialize_clib(), INI_NO_FILE);
    EXPECT_EQ(Reports().size(), 6U);
    Write("zr\\zr.zrini", "Error=1,2\n");
    EXPECT_EQ(ini_initialize_clib(), INI_NO_SECTION);
    Write("zr\\zr.zrini", "[Beep]\nerror=1,2\n");
    EXPECT_EQ(ini_initialize_clib(), INI_NO_ENTRY);
    EXPECT_EQ(Beeps(), start);
}

TEST_F(FrameSettings, BeepsAreReadAndTheLastReadIsTheResult) {
    Write("zr\\zr.zrini", "[Beep]\nError=1,2\nWarning= 3 , 4\nTick=5,6\n");
    EXPECT_EQ(ini_initialize_clib(), INI_DONE);
    EXPECT_EQ(Beeps(), (Sizes{1, 2, 3, 4, 5, 6}));
    Write("zr\\zr.zrini", "[Beep]\nError=7\nWarning=\nTick=8,9,10\n");
    EXPECT_EQ(ini_initialize_clib(), INI_NO_ROOM);
    EXPECT_EQ(Beeps(), (Sizes{7, 2, 3, 4, 8, 9}));
    Write("zr\\zr.zrini", "[Beep]\nError=11,12,13\nTick=14\n");
    EXPECT_EQ(ini_initialize_clib(), INI_DONE);
    EXPECT_EQ(Beeps(), (Sizes{11, 12, 3, 4, 14, 9}));
    Write("zr\\zr.zrini", "[Beep]\nError=15\nWarning=16,17\n");
    EXPECT_EQ(ini_initialize_clib(), INI_NO_ENTRY);
    EXPECT_EQ(Beeps(), (Sizes{15, 12, 16, 17, 14, 9}));
    EXPECT_EQ(Reports(), Texts{});
}

// ---- The old code page

std::string AllBytes() {
    std::string bytes;
    for (int c = 1; c < 256; ++c)
        bytes += static_cast<char>(c);
    return bytes;
}

TEST_F(FrameSettings, SevenLettersOfTheOldCodePageAreConvertedAndNoOtherByte) {
    std::string expected = AllBytes();
    for (const auto &[in, out] : {std::pair('\x81', '\xFC'),
                                  {'\x84', '\xE4'},
                                  {'\x8E', '\xC4'},
                                  {'\x94', '\xF6'},
                                  {'\x99', '\xD6'},
                                  {'\x9A', '\xDC'},
                                  {'\xE1', '\xDF'}})
        expected[static_cast<unsigned char>(in) - 1U] = out;
    WriteSystem("DosToWin=1");
    EXPECT_EQ(Converted(AllBytes()), expected);
    EXPECT_EQ(Converted("gr\x81\xE1"
                        "e"),
              "gr\xFC\xDF"
              "e");
    EXPECT_EQ(Converted("\x81\x81\x9A"), "\xFC\xFC\xDC");
    EXPECT_EQ(Converted("\xFC\xDF"), "\xFC\xDF");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(FrameSettings, FlagAndEmptyAndNullTextAreNotConverted) {
    WriteSystem("DosToWin=1");
    for (const int flag : {1, 2, -1})
        EXPECT_EQ(Converted("\x81", flag), "\x81");
    EXPECT_EQ(Converted(""), "");
    EXPECT_EQ(dos_to_win(nullptr, 0), nullptr);
    EXPECT_EQ(dos_to_win(nullptr, 1), nullptr);
    char constant[] = "\0\x81";
    dos_to_win(constant, 0);
    EXPECT_EQ(constant[1], '\x81'); // nothing behind the end
}

TEST_F(FrameSettings, CodePageSettingIsUnreadAtFirst) {
    EXPECT_EQ(mode_at_start, -1);
}

TEST_F(FrameSettings, NothingIsConvertedWithoutTheSetting) {
    for (const char *lines : {"DosToWin=0", "DosToWin=", "DosToWin=x", "dostowin=1", ""}) {
        zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
        WriteSystem(lines);
        EXPECT_EQ(Converted(AllBytes()), AllBytes()) << lines;
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(FrameSettings, EverySettingButZeroConverts) {
    for (const char *value : {"1", "2", " -1", "-7", "99999999999"}) {
        zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
        WriteSystem(std::string("DosToWin=") + value);
        EXPECT_EQ(Converted("\x81"), "\xFC") << value;
    }
}

TEST_F(FrameSettings, CodePageSettingIsReadByTheFirstCallAlone) {
    for (const char *on : {"1", "-1"}) {
        zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
        WriteSystem(std::string("DosToWin=") + on);
        EXPECT_EQ(Converted("\x81"), "\xFC");
        WriteSystem("DosToWin=0");
        EXPECT_EQ(Converted("\x81"), "\xFC") << on;
    }
    zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
    EXPECT_EQ(Converted("\x81", 1), "\x81"); // reads, too
    WriteSystem("DosToWin=1");
    EXPECT_EQ(Converted("\x81"), "\x81");
}

TEST_F(FrameSettings, CodePageSettingThatCannotBeReadIsOffForTheProcess) {
    EXPECT_EQ(Converted("\x81"), "\x81");
    EXPECT_EQ(Reports(), (Texts{not_found, not_found}));
    WriteSystem("DosToWin=1");
    EXPECT_EQ(Converted("\x81"), "\x81");
    EXPECT_EQ(Reports(), Texts{});
}

// ---- Short memory

class ShortMemory : public FrameSettings {
protected:
    void SetUp() override {
        FrameSettings::SetUp();
        WriteSystem("ZrLog=1\nAllocMByte=5\nAllocProg=tool.exe\nDosToWin=1");
        m_log = HostOf(Path("zr\\zrlog.txt"));
        zr::platform::services.debug_output = [](const char *) {};
        zr::library::reserve_block = [](std::size_t) -> void * {
            ++s_block_count;
            return nullptr;
        };
    }

    // Lets everything read its setting, and allocates nothing itself.
    void Read() {
        zr::settings::ForgetInstallation();
        zr::settings::dos_to_win_mode = zr::settings::dos_to_win_unread;
        s_block_count = 0;
        std::strcpy(m_letter, "\x81");
        UseSettings();
        zr_error("a", nullptr, nullptr, "T", 1);
        zr::library::ReserveMemory();
        dos_to_win(m_letter, 0);
    }

    // What came of it, as one text.
    std::string TakeAnswers() {
        const bool log = std::filesystem::remove(m_log);
        return (log ? "log " : "") + std::to_string(s_block_count) + (*m_letter == '\xFC' ? " converted" : "");
    }

    // Reads with one allocation after the other refused, which may cost answers but nothing else; gives how many there were.
    template <class Refusal>
    int RefuseEach() {
        const CurrentFolder current(HostOf(Path("zr\\bin")));
        const auto blocks = zr::frame::heap_block_count.load();
        int refused = 0;
        for (bool met = true; met && refused < 1000;) {
            {
                Refusal refusal(refused);
                Read();
                met = refusal.Met();
            }
            EXPECT_EQ(zr::frame::heap_block_count, blocks) << refused;
            const std::string answers = TakeAnswers();
            EXPECT_TRUE(met || answers == "log 1 converted") << answers;
            refused += met;
        }
        EXPECT_TRUE(std::filesystem::is_empty(HostOf(Path("zr\\bin"))));
        return refused;
    }

    std::filesystem::path m_log;
    char m_letter[2] = "";
};

TEST_F(ShortMemory, SettingsAreReadOrMissingAndNothingIsLost) {
    EXPECT_EQ(RefuseEach<zr::test::HeapRefusal>(), 0); // none of the counted kind
    EXPECT_GT(RefuseEach<zr::test::NthAllocation>(), 0);
}

} // namespace
