// Versions, the kind of system, users and environment variables.
#include <zrclb/system.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/ini.h>
#include <zrclb/version.h>

#include "env/refused_memory.h"
#include "platform/library_record.h"
#include "platform/system_kind.h"
#include "platform/users.h"
#include "settings/installation_fixture.h"
#include "settings/system_answers.h"
#include "settings/system_kind.h"
#include "settings/version_text.h"

namespace {

using namespace zr::platform;
using zr::settings::system_answers;
using Texts = std::vector<std::string>;

// An installation whose answers start empty, and reports as the debugger gets them, byte by byte.
class System : public InstallationFixture {
protected:
    void SetUp() override {
        InstallationFixture::SetUp();
        services.debug_output = [](const char *text) { s_debugger.emplace_back(text); };
        s_debugger.clear();
        s_calls = 0;
        s_version = {};
        s_user.clear();
        s_login.clear();
        system_answers = {};
    }
    void TearDown() override {
        system_answers = {};
        InstallationFixture::TearDown();
    }

    // The texts of all reports, their tags in front.
    static Texts TakeReports() {
        Texts found;
        std::size_t i = 0;
        while (i < s_debugger.size()) {
            const std::string header = s_debugger[i++];
            const std::size_t end = header.find("\" line ");
            const std::size_t start = header.rfind('"', end - 1) + 1;
            std::string report = header.substr(start, end - start);
            while (i < s_debugger.size() && s_debugger[i] != "\n\n")
                report += "|" + s_debugger[i++];
            ++i;
            found.push_back(report);
        }
        s_debugger.clear();
        return found;
    }

    static void ReplaceVersion(const FileVersion &version) {
        s_version = version;
        services.file_version = [](FileVersion &out) {
            ++s_calls;
            out = s_version;
            return true;
        };
    }
    static void ReplaceUsers(const std::string &user, const std::string &login) {
        s_user = user;
        s_login = login;
        services.system_user = [](char *out, std::size_t size) {
            ++s_calls;
            EXPECT_EQ(size, 512U);
            return Give(s_user, out, size) != 0;
        };
        services.system_login = [](char *out, std::size_t size) {
            EXPECT_EQ(size, 512U);
            return Give(s_login, out, size) != 0;
        };
    }
    // What the search for the settings file reports where there is none.
    Texts TextsOfNoSettingsFile() {
        char path[260];
        EXPECT_NE(zr_suche_datei(nullptr, nullptr, nullptr, path), 0);
        Texts reports = Reports();
        EXPECT_FALSE(reports.empty());
        return reports;
    }
    void WriteSettings(const std::string &text) const { Write("zr\\zr.zrini", text); }

    static inline Texts s_debugger;
    static inline int s_calls = 0;
    static inline FileVersion s_version;
    static inline std::string s_user;
    static inline std::string s_login;
};

// ---- Checking versions

TEST_F(System, OlderData_CanBeWorkedOnWhateverTheirMinorVersion) {
    EXPECT_EQ(zr_base_check_version("D", 3, 9, "M", 4, 0), 1);
    EXPECT_EQ(zr_base_check_version("D", 3, INT_MAX, "M", 4, INT_MIN), 1);
    EXPECT_EQ(zr_base_check_version("D", INT_MIN, 0, "M", INT_MAX, 0), 1);
    EXPECT_EQ(TakeReports(), Texts{});
}

TEST_F(System, DataOfTheSameVersionOrALowerMinorOne_CanBeWorkedOn) {
    EXPECT_EQ(zr_base_check_version("D", 4, 0, "M", 4, 0), 1);
    EXPECT_EQ(zr_base_check_version("D", 4, 1, "M", 4, 2), 1);
    EXPECT_EQ(zr_base_check_version("D", 4, -1, "M", 4, 0), 1);
    EXPECT_EQ(zr_base_check_version(nullptr, 4, 0, nullptr, 4, 0), 1);
    EXPECT_EQ(TakeReports(), Texts{});
}

TEST_F(System, DataOfALaterMinorVersion_ReportedInBothLanguages) {
    EXPECT_EQ(zr_base_check_version("Plan", 4, 1, "Frame", 4, 0), 0);
    EXPECT_EQ(TakeReports(), (Texts{"Zr|The version of data unit (Plan 4,1,x,x) is a newer than version handled by "
                                    "your module (Frame 4,0,x,x)",
                                    "Zr|Die Daten Plan entsprechen Version 4,1.\n"
                                    "Das Modul Frame kann nur korrekt mit Daten bis einschl. Version 4,0 arbeiten.\n"
                                    "Mit diesen Daten arbeitet das Modul eventuell nicht richtig.\n"
                                    "Bitte aktualisieren Sie das Modul."}));
}

TEST_F(System, DataOfALaterMajorVersion_ReportedInBothLanguages) {
    EXPECT_EQ(zr_base_check_version("Plan", 5, 0, "Frame", 4, 9), 0);
    EXPECT_EQ(TakeReports(), (Texts{"Zr|The version of module (Frame 4,9,x,x) is incompatible with data unit version "
                                    "(Plan 5,0,x,x)",
                                    "Zr|Die Daten Plan entsprechen Version 5,0.\n"
                                    "Das Modul Frame kann nur mit Daten bis einschl. Version 4,9 arbeiten.\n"
                                    "Das Modul kann nicht mit den Daten arbeiten.\n"
                                    "Bitte aktualisieren Sie das Modul."}));
}

TEST_F(System, DataOfALaterVersion_ReportedAsErrors) {
    EXPECT_EQ(zr_base_check_version("D", 4, 1, "M", 4, 0), 0);
    EXPECT_EQ(zr_base_check_version("D", 5, 1, "M", 4, 2), 0);
    const zr::test::Reports reports = m_reports.Take();
    ASSERT_EQ(reports.size(), 4U);
    for (const zr::test::Report &report : reports) {
        EXPECT_EQ(report.kind, zr::test::Report::Error);
        EXPECT_EQ(report.tag, "Zr");
        EXPECT_EQ(report.texts.size(), 1U) << report;
    }
}

TEST_F(System, NullNames_EmptyPlacesInTheReports) {
    EXPECT_EQ(zr_base_check_version(nullptr, 2147483647, -2147483647 - 1, nullptr, -1, 7), 0);
    EXPECT_EQ(TakeReports(), (Texts{"Zr|The version of module ( -1,7,x,x) is incompatible with data unit version ( "
                                    "2147483647,-2147483648,x,x)",
                                    "Zr|Die Daten  entsprechen Version 2147483647,-2147483648.\n"
                                    "Das Modul  kann nur mit Daten bis einschl. Version -1,7 arbeiten.\n"
                                    "Das Modul kann nicht mit den Daten arbeiten.\n"
                                    "Bitte aktualisieren Sie das Modul."}));
}

TEST_F(System, LongNames_ReportsAreCutAt1023Characters) {
    const std::string lead = "The version of data unit (";
    // One that just fits and one character more.
    const std::string rest = " 4,1,x,x) is a newer than version handled by your module (M 4,0,x,x)";
    const std::string fits(1023 - lead.size() - rest.size(), 'n');
    EXPECT_EQ(zr_base_check_version(fits.c_str(), 4, 1, "M", 4, 0), 0);
    EXPECT_EQ(TakeReports().at(0), "Zr|" + lead + fits + rest);
    EXPECT_EQ(zr_base_check_version((fits + "n").c_str(), 4, 1, "M", 4, 0), 0);
    EXPECT_EQ(TakeReports().at(0), "Zr|" + lead + fits + "n" + rest.substr(0, rest.size() - 1));
    const std::string enormous(100000, 'n');
    EXPECT_EQ(zr_base_check_version(enormous.c_str(), 4, 1, enormous.c_str(), 4, 0), 0);
    const Texts reports = TakeReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0], "Zr|" + lead + std::string(1023 - lead.size(), 'n'));
    EXPECT_EQ(reports[1], "Zr|Die Daten " + std::string(1013, 'n'));
}

TEST_F(System, NamesWithPercentSigns_StandAsTheyAre) {
    EXPECT_EQ(zr_base_check_version("%s%n", 5, 0, "%d", 4, 0), 0);
    EXPECT_EQ(TakeReports().at(0), "Zr|The version of module (%d 4,0,x,x) is incompatible with data unit version "
                                   "(%s%n 5,0,x,x)");
}

TEST_F(System, TextThatCannotBeLoaded_GivesAnEmptyReport) {
    static LibraryText asked;
    services.library_text = [](LibraryText text, char *out, std::size_t size) -> std::size_t {
        asked = text;
        EXPECT_EQ(size, 1024U);
        out[0] = 0;
        return 0;
    };
    EXPECT_EQ(zr_base_check_version("D", 4, 1, "M", 4, 0), 0);
    EXPECT_EQ(asked, LibraryText::data_of_later_minor);
    Texts reports = TakeReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1], "Zr|");
    EXPECT_EQ(zr_base_check_version("D", 5, 0, "M", 4, 0), 0);
    EXPECT_EQ(asked, LibraryText::data_of_later_major);
    reports = TakeReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1], "Zr|");
}

// ---- The version text

std::string VersionText(std::uint16_t a, std::uint16_t b, std::uint16_t c, std::uint16_t d) {
    char text[80];
    zr::settings::WriteVersionText({a, b, c, d}, text, sizeof text);
    return text;
}

TEST_F(System, VersionText_Below50HasTheFourthPlaceOnlyIfItIsNot0) {
    EXPECT_EQ(VersionText(2013, 1, 2, 0), "2013.012");
    EXPECT_EQ(VersionText(2013, 1, 2, 3), "2013.0123");
    EXPECT_EQ(VersionText(0, 0, 0, 0), "0.000");
    EXPECT_EQ(VersionText(7, 49, 10, 11), "7.491011");
    EXPECT_EQ(VersionText(65535, 49, 65535, 65535), "65535.496553565535");
}

TEST_F(System, VersionText_From50To55HasALetter) {
    EXPECT_EQ(VersionText(2013, 50, 0, 0), "2013.000 Va");
    EXPECT_EQ(VersionText(2013, 50, 0, 9), "2013.000 Va");
    EXPECT_EQ(VersionText(2013, 50, 9, 0), "2013.000 Vj");
    EXPECT_EQ(VersionText(2013, 51, 0, 0), "2013.000 Vk");
    EXPECT_EQ(VersionText(2013, 52, 5, 0), "2013.000 Vz");
    EXPECT_EQ(VersionText(2013, 52, 6, 0), "2013.000 VA");
    EXPECT_EQ(VersionText(2013, 53, 0, 0), "2013.000 VE");
    EXPECT_EQ(VersionText(2013, 55, 1, 0), "2013.000 VZ");
    EXPECT_EQ(VersionText(2013, 55, 2, 0), "2013.000 V[");
}

TEST_F(System, VersionText_LetterBeyondTheAlphabetIsTakenModulo256) {
    EXPECT_EQ(VersionText(1, 55, 9, 0), "1.000 Vb");
    EXPECT_EQ(VersionText(1, 50, 26 + 63, 0), "1.000 V\x80");
    EXPECT_EQ(VersionText(1, 50, 217, 0), "1.000 V");
    EXPECT_EQ(VersionText(1, 50, 218, 0), "1.000 V\x01");
    for (unsigned c = 0; c <= 65535; ++c) {
        const unsigned n = 53 * 10 + c;
        const char letter = static_cast<char>(static_cast<unsigned char>('A' + n - 526));
        ASSERT_EQ(VersionText(1, 53, static_cast<std::uint16_t>(c), 0), ("1.000 V" + std::string(1, letter)).c_str());
    }
}

TEST_F(System, VersionText_Above55SplitsTheSecondPlace) {
    EXPECT_EQ(VersionText(2013, 60, 7, 0), "2013.006007");
    EXPECT_EQ(VersionText(2013, 56, 0, 5), "2013.005600");
    EXPECT_EQ(VersionText(2013, 100, 12, 5), "2013.010012");
    EXPECT_EQ(VersionText(2013, 1234, 123, 0), "2013.1234123");
    EXPECT_EQ(VersionText(65535, 65535, 65535, 65535), "65535.6553565535");
}

TEST_F(System, TekVersion_IsWorkedOutOnceAndCutForTheCaller) {
    ReplaceVersion({2013, 1, 2, 3});
    char out[20];
    EXPECT_EQ(zr_get_tek_version(out, 3), out);
    EXPECT_STREQ(out, "20");
    EXPECT_STREQ(system_answers.tek_version_text, "2013.0123");
    EXPECT_EQ(zr_get_tek_version(out, 2), out);
    EXPECT_STREQ(out, "2");
    EXPECT_EQ(zr_get_tek_version(out, 9), out);
    EXPECT_STREQ(out, "2013.012");
    s_version = {1, 1, 1, 1};
    EXPECT_EQ(zr_get_tek_version(out, 10), out);
    EXPECT_STREQ(out, "2013.0123");
    EXPECT_EQ(s_calls, 1);
}

TEST_F(System, TekVersion_WithoutRoomIsNullButKept) {
    ReplaceVersion({2013, 1, 2, 0});
    char out[4] = "abc";
    for (const unsigned size : {0U, 1U, 0x80000001U, 0xFFFFFFFFU})
        EXPECT_EQ(zr_get_tek_version(out, size), nullptr) << size;
    EXPECT_STREQ(out, "abc");
    EXPECT_EQ(zr_get_tek_version(nullptr, 80), nullptr);
    EXPECT_STREQ(system_answers.tek_version_text, "2013.012");
    char large[20];
    EXPECT_EQ(zr_get_tek_version(large, 0x80000000U), large);
    EXPECT_STREQ(large, "2013.012");
}

TEST_F(System, TekVersion_WithoutRecordIsTheYear) {
    services.file_version = [](FileVersion &) { return false; };
    char out[80];
    EXPECT_EQ(zr_get_tek_version(out, sizeof out), out);
    EXPECT_STREQ(out, "2013");
    ReplaceVersion({7, 1, 2, 0}); // that answer is kept too
    EXPECT_EQ(zr_get_tek_version(out, sizeof out), out);
    EXPECT_STREQ(out, "2013");
}

// ---- The kind of system

struct KindRow {
    std::uint32_t platform, major, minor;
    int kind;
};

TEST_F(System, Kinds_RowByRow) {
    constexpr KindRow rows[] = {
        {0, 0, 0, 2},  {0, 10, 0, 2},         {1, 4, 0, 4},           {1, 4, 90, 4},  {1, 10, 3, 4},  {2, 0, 0, 3},
        {2, 3, 51, 3}, {2, 3, 0, 3},          {2, 4, 0, 5},           {2, 4, 9, 5},   {2, 5, 0, 6},   {2, 5, 1, 7},
        {2, 5, 2, 5},  {2, 5, 3, 5},          {2, 5, 0xFFFFFFFF, 5},  {2, 6, 0, 8},   {2, 6, 1, 9},   {2, 6, 2, 10},
        {2, 6, 3, 11}, {2, 6, 4, 11},         {2, 7, 0, 11},          {2, 10, 0, 11}, {2, 11, 1, 11}, {3, 10, 0, 0},
        {4, 0, 0, 0},  {0xFFFFFFFF, 6, 1, 0}, {2, 0xFFFFFFFF, 0, 11},
    };
    for (const KindRow &row : rows)
        EXPECT_EQ(zr::settings::SystemKind({row.platform, row.major, row.minor}), row.kind)
            << row.platform << " " << row.major << "." << row.minor;
}

TEST_F(System, Kinds_HaveNames) {
    const int names[] = {ZR_SYSTEM_UNKNOWN, ZR_SYSTEM_32S,   ZR_SYSTEM_NT_3,  ZR_SYSTEM_9X,
                         ZR_SYSTEM_NT_4,    ZR_SYSTEM_NT_50, ZR_SYSTEM_NT_51, ZR_SYSTEM_NT_60,
                         ZR_SYSTEM_NT_61,   ZR_SYSTEM_NT_62, ZR_SYSTEM_LATER};
    const int numbers[] = {0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    EXPECT_TRUE(std::equal(std::begin(names), std::end(names), std::begin(numbers), std::end(numbers)));
}

TEST_F(System, Win32_IsWorkedOutOnce) {
    services.system_version = [](SystemVersion &out) {
        ++s_calls;
        out = {2, 5, 2};
        return true;
    };
    EXPECT_EQ(zr_get_win32(), 5);
    EXPECT_EQ(zr_get_win32(), 5);
    EXPECT_EQ(s_calls, 1);
}

TEST_F(System, Win32_UnknownKindIsAskedForAgain) {
    services.system_version = [](SystemVersion &out) {
        out = {static_cast<std::uint32_t>(s_calls++ == 0 ? 9 : 1), 4, 0};
        return true;
    };
    EXPECT_EQ(zr_get_win32(), 0);
    EXPECT_EQ(zr_get_win32(), 4);
}

TEST_F(System, Win32_SystemThatDoesNotTellIs0) {
    services.system_version = [](SystemVersion &out) {
        out = {2, 10, 0};
        return false;
    };
    EXPECT_EQ(zr_get_win32(), 0);
    EXPECT_EQ(TakeReports(), Texts{});
}

// ---- Users

TEST_F(System, UserName_IsTheEntryTrimmed) {
    ReplaceUsers("system", "");
    WriteSettings("[System]\nUser=  Anna Berg \n");
    EXPECT_STREQ(zr_GetUserName(), "Anna Berg");
    WriteSettings("[System]\nUser=Other\n");
    EXPECT_STREQ(zr_GetUserName(), "Anna Berg");
    EXPECT_EQ(s_calls, 0);
    EXPECT_EQ(TakeReports(), Texts{});
}

TEST_F(System, UserName_WithoutEntryIsTheSystems) {
    ReplaceUsers("system", "");
    for (const char *text : {"", "[System]\n", "[System]\nUser=\n", "[System]\nUser=   \n", "[Other]\nUser=x\n"}) {
        system_answers = {};
        WriteSettings(text);
        EXPECT_STREQ(zr_GetUserName(), "system") << text;
    }
    WriteSettings("[System]\nUser=x\n"); // what was found is kept
    EXPECT_STREQ(zr_GetUserName(), "system");
    EXPECT_EQ(s_calls, 5);
}

TEST_F(System, UserName_WithoutAnyIsEmptyAndLookedForAgain) {
    ReplaceUsers("", "");
    WriteSettings("");
    EXPECT_STREQ(zr_GetUserName(), "");
    EXPECT_STREQ(zr_GetUserName(), "");
    EXPECT_EQ(s_calls, 2);
    WriteSettings("[System]\nUser=x\n");
    EXPECT_STREQ(zr_GetUserName(), "x");
}

TEST_F(System, UserName_LongEntriesCountUpTo512Characters) {
    for (const std::size_t length : {511U, 512U, 513U, 1500U}) {
        system_answers = {};
        WriteSettings("[System]\nUser=" + std::string(length, 'u') + "\n");
        EXPECT_EQ(zr_GetUserName(), std::string(std::min<std::size_t>(length, 512), 'u'));
        EXPECT_EQ(system_answers.user_login[0], 0);
    }
    system_answers = {};
    WriteSettings("[System]\nUser=" + std::string(512, ' ') + "far away\n");
    ReplaceUsers("system", "");
    EXPECT_STREQ(zr_GetUserName(), "system");
}

TEST_F(System, UserName_WithoutSettingsFileIsTheSystems) {
    ReplaceUsers("system", "");
    EXPECT_STREQ(zr_GetUserName(), "system");
}

TEST_F(System, SetUserName_WritesTheEntryAndKeepsTheTrimmedName) {
    WriteSettings("[System]\nOther=1\n");
    zr_SetUserName("  Carl ");
    EXPECT_STREQ(zr_GetUserName(), "Carl");
    char stored[80];
    zr_long size = 79;
    ASSERT_EQ(ini_read_string(nullptr, "System", "User", stored, &size), INI_DONE);
    EXPECT_STREQ(stored, "  Carl");
    zr_SetUserName("Dora");
    EXPECT_STREQ(zr_GetUserName(), "Dora");
    system_answers = {};
    EXPECT_STREQ(zr_GetUserName(), "Dora");
}

TEST_F(System, SetUserName_NullDoesNothing) {
    WriteSettings("[System]\nUser=Anna\n");
    zr_SetUserName(nullptr);
    EXPECT_STREQ(zr_GetUserName(), "Anna");
}

TEST_F(System, SetUserName_WithoutSettingsFileChangesNothing) {
    ReplaceUsers("system", "HOST\\system");
    const Texts expected = TextsOfNoSettingsFile();
    zr_SetUserName("Berta");
    EXPECT_EQ(Reports(), expected);
    EXPECT_STREQ(zr_GetUserName(), "system");
    EXPECT_EQ(Reports(), expected);
    zr_SetUserName("Berta");
    EXPECT_STREQ(zr_GetUserName(), "system");
}

TEST_F(System, SetUserName_TheNameMayBeTheAnswer) {
    WriteSettings("[System]\nUser=Anna Berg\n");
    zr_SetUserName(zr_GetUserName());
    EXPECT_STREQ(zr_GetUserName(), "Anna Berg");
    zr_SetUserName(zr_GetUserName() + 5);
    EXPECT_STREQ(zr_GetUserName(), "Berg");
    system_answers = {};
    EXPECT_STREQ(zr_GetUserName(), "Berg");
}

TEST_F(System, SetUserName_LeavesTheLoginAlone) {
    ReplaceUsers("anna", "HOST\\anna");
    WriteSettings("[System]\n");
    EXPECT_STREQ(zr_GetUserLogin(), "HOST\\anna");
    zr_SetUserName("Berta");
    EXPECT_STREQ(zr_GetUserLogin(), "HOST\\anna");
    EXPECT_STREQ(zr_GetUserName(), "Berta");
}

TEST_F(System, SetUserName_EmptyNameIsLookedForAgain) {
    ReplaceUsers("system", "");
    WriteSettings("[System]\nUser=Anna\n");
    EXPECT_STREQ(zr_GetUserName(), "Anna");
    zr_SetUserName("");
    EXPECT_STREQ(zr_GetUserName(), "system");
}

TEST_F(System, SetUserName_KeepsAtMost511Characters) {
    WriteSettings("[System]\n");
    for (const std::size_t length : {510U, 511U, 512U, 1000U}) {
        zr_SetUserName(std::string(length, 'u').c_str());
        EXPECT_EQ(zr_GetUserName(), std::string(std::min<std::size_t>(length, 511), 'u'));
    }
    zr_SetUserName((std::string(510, 'u') + " v").c_str());
    EXPECT_EQ(zr_GetUserName(), std::string(510, 'u'));
    zr_SetUserName((std::string(10, ' ') + std::string(600, 'u')).c_str()); // cut first, then trimmed
    EXPECT_EQ(zr_GetUserName(), std::string(501, 'u'));
}

TEST_F(System, SetUserName_ThatCannotBeWrittenChangesNothing) {
    WriteSettings("[System]\nUser=Anna\n");
    EXPECT_STREQ(zr_GetUserName(), "Anna");
    std::filesystem::permissions(m_folder.Folder() / "zr" / "zr.zrini", std::filesystem::perms::owner_read);
    zr_SetUserName("Berta");
    std::filesystem::permissions(m_folder.Folder() / "zr" / "zr.zrini", std::filesystem::perms::owner_all);
    EXPECT_STREQ(zr_GetUserName(), "Anna");
    EXPECT_EQ(TakeReports(), Texts{});
}

TEST_F(System, UserLogin_IsTheOneWithTheDomain) {
    ReplaceUsers("anna", "HOST\\anna");
    EXPECT_STREQ(zr_GetUserLogin(), "HOST\\anna");
    s_login = "OTHER\\berta";
    EXPECT_STREQ(zr_GetUserLogin(), "HOST\\anna");
    EXPECT_EQ(s_calls, 0);
}

TEST_F(System, UserLogin_WithoutDomainIsTheUser) {
    ReplaceUsers("anna", "");
    EXPECT_STREQ(zr_GetUserLogin(), "anna");
    s_login = "HOST\\anna";
    EXPECT_STREQ(zr_GetUserLogin(), "anna");
}

TEST_F(System, UserLogin_WithoutAnyIsEmptyAndLookedForAgain) {
    ReplaceUsers("", "");
    EXPECT_STREQ(zr_GetUserLogin(), "");
    EXPECT_STREQ(zr_GetUserLogin(), "");
    EXPECT_EQ(s_calls, 2);
    s_login = "HOST\\anna";
    EXPECT_STREQ(zr_GetUserLogin(), "HOST\\anna");
    EXPECT_EQ(TakeReports(), Texts{});
}

// ---- Environment variables

TEST_F(System, Environment_ValueOrDefault) {
    char other[] = "default";
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", "value"), 0);
    EXPECT_STREQ(zr_getenv("ZR_TEST_VARIABLE", other), "value");
    EXPECT_STREQ(std::getenv("ZR_TEST_VARIABLE"), "value");
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", "geh\xF6rt dazu"), 0);
    EXPECT_STREQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), "geh\xF6rt dazu");
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", ""), 0);
    EXPECT_EQ(zr_getenv("ZR_TEST_VARIABLE", other), other);
    EXPECT_EQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), nullptr);
}

TEST_F(System, Environment_RemovingWhatIsNotThereSucceeds) {
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", ""), 0);
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", ""), 0);
}

TEST_F(System, Environment_BadNamesAndValuesAre22) {
    char other[] = "default";
    EXPECT_EQ(zr_putenv(nullptr, "x"), 22);
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", nullptr), 22);
    EXPECT_EQ(zr_putenv(nullptr, nullptr), 22);
    EXPECT_EQ(zr_putenv("", "x"), 22);
    EXPECT_EQ(zr_putenv("", ""), 22);
    EXPECT_EQ(zr_putenv("=", "x"), 22);
    EXPECT_EQ(zr_putenv("=a", "x"), 22);
    EXPECT_EQ(zr_getenv(nullptr, other), other);
    EXPECT_EQ(zr_getenv("", other), other);
    EXPECT_EQ(TakeReports(), Texts{});
}

TEST_F(System, Environment_SignInTheNameBelongsToTheValue) {
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE=a", "b"), 0);
    EXPECT_STREQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), "a=b");
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE=", ""), 0);
    EXPECT_STREQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), "=");
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", ""), 0);
    EXPECT_EQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), nullptr);
}

TEST_F(System, Environment_LongestNameAndValue) {
    const std::string longest(32766, 'v');
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", longest.substr(0, 32000).c_str()), 0);
    EXPECT_EQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), longest.substr(0, 32000));
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", (longest + "v").c_str()), 22);
    EXPECT_EQ(zr_putenv((longest + "v").c_str(), "x"), 22);
    EXPECT_EQ(zr_putenv(std::string(100000, 'v').c_str(), ""), 22);
    EXPECT_EQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), longest.substr(0, 32000));
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", ""), 0);
}

TEST_F(System, Environment_WithoutMemoryIs12) {
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", "old"), 0);
    {
        const zr::test::NthAllocation refusal(0);
        EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE=a", "b"), 12);
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_STREQ(zr_getenv("ZR_TEST_VARIABLE", nullptr), "old");
    EXPECT_EQ(zr_putenv("ZR_TEST_VARIABLE", ""), 0);
}

// ---- Memory

// Whichever allocation fails, the answer is empty or the whole one.
TEST_F(System, AnswersWithoutMemory_AreEmptyOrWhole) {
    WriteSettings("");
    const std::string user = zr_GetUserName();
    const std::string login = zr_GetUserLogin();
    char version[80];
    zr_get_tek_version(version, sizeof version);
    const std::string whole_version = version;
    bool met = true;
    for (int i = 0; met; ++i) {
        system_answers = {};
        const char *got_user = nullptr, *got_login = nullptr;
        const zr::test::NthAllocation refusal(i);
        got_user = zr_GetUserName();
        got_login = zr_GetUserLogin();
        zr_get_tek_version(version, sizeof version);
        met = refusal.Met();
        EXPECT_TRUE(*got_user == 0 || got_user == user) << got_user;
        EXPECT_TRUE(*got_login == 0 || got_login == login || got_login == user) << got_login;
        EXPECT_TRUE(version == whole_version || std::strcmp(version, "2013") == 0) << version;
    }
}

} // namespace
