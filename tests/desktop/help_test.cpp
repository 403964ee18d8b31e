// Help: where it comes from, the URL of a topic, local files, what is kept. Nothing is started: what would be is written down.
#include <zrclb/help.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "desktop/help_state.h"
#include "env/refused_memory.h"
#include "platform/help_viewer.h"
#include "settings/installation_fixture.h"

namespace {

using zr::platform::HelpCommand;

constexpr const char *no_url = "HelpURL konnte nicht ermittelt werden.";
constexpr const char *bad_type = "zrHelp_SetHelpType - falscher Help-Type";

EZrHelpType Type(int value) {
    return static_cast<EZrHelpType>(value);
}

class Help : public InstallationFixture {
protected:
    void SetUp() override {
        InstallationFixture::SetUp();
        zr::desktop::help_state = {};
        s_online = true;
        s_tests = 0;
        s_opened.clear();
        auto &services = zr::platform::services;
        services.is_online = [] {
            ++s_tests;
            return s_online;
        };
        services.open_url = [](const char *url) { s_opened += std::string("url ") + url + "\n"; };
        services.show_help_file = [](const char *path, HelpCommand command, zr_ulong id) {
            s_opened += std::string("file ") + path + " " + std::to_string(static_cast<unsigned>(command)) + " " +
                        std::to_string(id) + "\n";
            return false; // makes no difference
        };
        Write("help\\Beam.chm");
    }
    void TearDown() override {
        zr::desktop::help_state = {};
        InstallationFixture::TearDown();
    }

    // The settings file, with the folder of the help files in front.
    void Settings(const std::string &lines) const {
        Write("zr\\zr.zrini", "[System]\nHelp=" + Path("help") + "\n" + lines);
    }

    std::string File(const std::string &name, int command, unsigned long id) const {
        return "file " + Path("help\\" + name) + " " + std::to_string(command) + " " + std::to_string(id) + "\n";
    }

    // What was opened since the last call.
    static std::string Opened() { return std::exchange(s_opened, ""); }

    // The result and the buffer of a call, whose buffer holds `before` at first.
    static std::string Url(const char *application, zr_ulong id, zr_ulong size = 200, const char *before = "") {
        std::string buffer(size + 20, '#');
        if (size != 0)
            std::strcpy(buffer.data(), before);
        const bool got = zrHelp_GetHelpURL(application, id, buffer.data(), size);
        EXPECT_TRUE(std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(size), buffer.end(),
                                [](char c) { return c == '#'; }));
        return (got ? "1<" : "0<") + (size != 0 ? std::string(buffer.c_str()) : "") + ">";
    }

    static inline bool s_online = true;
    static inline int s_tests = 0; // of being online
    static inline std::string s_opened;
};

constexpr const char *web = "HelpURL=http://help.test/$$VERSION/$$APP/$$ID\n";

TEST_F(Help, Types_HaveTheirValues) {
    EXPECT_EQ(ZR_HELP_DEFAULT, 0);
    EXPECT_EQ(ZR_HELP_WEB, 1);
    EXPECT_EQ(ZR_HELP_LOCAL, 2);
}

// ---- The type ----

TEST_F(Help, StoredType_IsWebForOneAndLocalForOthers) {
    const struct {
        const char *lines;
        EZrHelpType type;
    } cases[] = {{"", ZR_HELP_WEB},
                 {"UseWebHelp=1\n", ZR_HELP_WEB},
                 {"UseWebHelp=0\n", ZR_HELP_LOCAL},
                 {"UseWebHelp=2\n", ZR_HELP_LOCAL},
                 {"UseWebHelp=\n", ZR_HELP_LOCAL},
                 {"UseWebHelp=yes\n", ZR_HELP_LOCAL},
                 {"UseWebHelp=99999999999\n", ZR_HELP_LOCAL},
                 {"UseWebHelp= 1 \n", ZR_HELP_WEB},
                 {"[Other]\nUseWebHelp=0\n", ZR_HELP_WEB}};
    for (const auto &row : cases) {
        zr::desktop::help_state = {};
        Settings(row.lines);
        EXPECT_EQ(zrHelp_GetHelpType(), row.type) << row.lines;
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, StoredType_IsReadOnce) {
    Settings("UseWebHelp=0\n");
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_LOCAL);
    Settings("UseWebHelp=1\n");
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_LOCAL);
}

TEST_F(Help, MissingType_IsKeptAsWeb) {
    Settings("");
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
    Settings("UseWebHelp=0\n");
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
}

TEST_F(Help, NegativeType_IsLocalAndReadAgain) {
    Settings("UseWebHelp=-3\n");
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_LOCAL);
    Settings("UseWebHelp=1\n");
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
}

TEST_F(Help, SetType_HoldsAtOnceAndIsStored) {
    Settings("UseWebHelp=1\n");
    const std::string head = "[System]\r\nHelp=" + Path("help") + "\r\nUseWebHelp=";
    zrHelp_SetHelpType(ZR_HELP_LOCAL);
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_LOCAL);
    EXPECT_EQ(m_folder.Read("zr/zr.zrini").find(head + "0"), 0U) << m_folder.Read("zr/zr.zrini");
    zrHelp_SetHelpType(ZR_HELP_WEB);
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
    EXPECT_EQ(m_folder.Read("zr/zr.zrini").find(head + "1"), 0U) << m_folder.Read("zr/zr.zrini");
    EXPECT_EQ(Reports(), Texts{});
    zr::desktop::help_state = {};
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
}

TEST_F(Help, SetWrongType_IsToldAndSetsWeb) {
    for (const int type : {7, 0, 3, -1, 2147483647}) {
        Settings("UseWebHelp=0\n");
        zr::desktop::help_state.help_use_web = 0;
        zrHelp_SetHelpType(Type(type));
        EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Message("zrHelp", bad_type)});
        EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
        EXPECT_NE(m_folder.Read("zr/zr.zrini").find("UseWebHelp=1"), std::string::npos);
    }
}

TEST_F(Help, WithoutSettingsFile_TypeIsWebAndCanBeSet) {
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_WEB);
    zrHelp_SetHelpType(ZR_HELP_LOCAL);
    EXPECT_EQ(zrHelp_GetHelpType(), ZR_HELP_LOCAL);
    EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found, not_found})); // two for each call
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "zr" / "zr.zrini"));
}

// ---- The URL ----

TEST_F(Help, Url_HasVersionApplicationAndId) {
    Settings(web);
    EXPECT_EQ(Url("Beam", 12), "1<http://help.test/2013/beam/12>");
    EXPECT_EQ(Url("BE\xC4M", 0), "1<http://help.test/2013/be\xE4m/0>");
    EXPECT_EQ(Url("", 1), "1<http://help.test/2013//1>");
    EXPECT_EQ(Url("x", 4294967295), "1<http://help.test/2013/x/-1>");
    EXPECT_EQ(Url("x", 2147483647), "1<http://help.test/2013/x/2147483647>");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, Url_KeepsTheCaseAroundTheApplication) {
    Settings("HelpURL=HTTP://Host/$$APP/Topic$$ID.HTM\n");
    EXPECT_EQ(Url("BEAM", 3), "1<HTTP://Host/beam/Topic3.HTM>");
}

TEST_F(Help, Url_OnlyTheFirstOfEachPlaceIsFilled) {
    Settings("HelpURL=$$VERSION$$VERSION$$APP$$APP$$ID$$ID\n");
    EXPECT_EQ(Url("Ab", 5), "1<2013$$VERSIONab$$APP5$$ID>");
    zr::desktop::help_state = {};
    Settings("HelpURL=$$ID/$$AP$$APP/$VERSION$$VERSIO$$VERSION/$$\n"); // in any order, and pieces that are none
    EXPECT_EQ(Url("Ab", 5), "1<5/$$APab/$VERSION$$VERSIO2013/$$>");
    zr::desktop::help_state = {};
    Settings("HelpURL=http://all/$$app\n");
    EXPECT_EQ(Url("Ab", 5), "1<http://all/$$app>");
    EXPECT_EQ(Reports(), Texts{});
}

// The application's own text is lowered before the id is put in.
TEST_F(Help, Url_PlacesInTheApplicationAreNone) {
    Settings("HelpURL=u/$$APP/$$ID\n");
    EXPECT_EQ(Url("$$ID$$APP$$VERSION", 5), "1<u/$$id$$app$$version/5>");
}

TEST_F(Help, Url_IsCutAtTheBuffersSize) {
    Settings("HelpURL=http://$$APP/$$ID\n");
    EXPECT_EQ(Url("ab", 7, 18), "1<http://ab/7>");
    EXPECT_EQ(Url("ab", 7, 15), "1<http://ab/$>");
    EXPECT_EQ(Url("ab", 7, 12), "1<http://$$AP>");
    EXPECT_EQ(Url("ab", 7, 5), "1<http>");
    EXPECT_EQ(Url("ab", 7, 2), "1<h>");
    EXPECT_EQ(Url("ab", 7, 1), "0<>");
    EXPECT_EQ(Url("ab", 7, 0), "0<>");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, Url_WhatHasNoRoomStaysUnfilled) {
    Settings("HelpURL=$$APP/$$ID\n");
    EXPECT_EQ(Url("LongerThanThat", 7, 12), "1<$$APP/7>");
    EXPECT_EQ(Reports(), Texts{"str_repl : Buffer zu klein"});
    EXPECT_EQ(Url("abcdef", 4000000000, 14), "1<abcdef/$$ID>");
    EXPECT_EQ(Reports(), Texts{"str_repl : Buffer zu klein"});
    const std::string endless(100000, 'A');
    EXPECT_EQ(Url(endless.c_str(), 7), "1<$$APP/7>");
    EXPECT_EQ(Reports(), Texts{"str_repl : Buffer zu klein"});
}

TEST_F(Help, UrlTemplate_HasAtMost511Characters) {
    Settings("HelpURL=" + std::string(511, 'u') + "\n");
    EXPECT_EQ(Url("x", 1, 1000), "1<" + std::string(511, 'u') + ">");
    zr::desktop::help_state = {};
    Settings("HelpURL=" + std::string(512, 'u') + "\n");
    EXPECT_EQ(Url("x", 1, 1000), "0<>");
    EXPECT_EQ(Reports(), Texts{no_url});
}

TEST_F(Help, UrlTemplate_IsReadOnceItIsThere) {
    Settings("");
    EXPECT_EQ(Url("x", 1), "0<>");
    Settings("HelpURL=\n");
    EXPECT_EQ(Url("x", 1), "0<>");
    EXPECT_EQ(m_reports.Take(),
              (zr::test::Reports{zr::test::Message("zrHelp", no_url), zr::test::Message("zrHelp", no_url)}));
    Settings("HelpURL=one/$$APP\n");
    EXPECT_EQ(Url("x", 1), "1<one/x>");
    Settings("HelpURL=two/$$APP\n");
    EXPECT_EQ(Url("y", 1), "1<one/y>");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, UrlWithoutTemplate_LeavesTheBuffer) {
    Settings("");
    EXPECT_EQ(Url("x", 1, 10, "before"), "1<before>");
    EXPECT_EQ(Url("x", 1, 10, ""), "0<>");
    EXPECT_EQ(Reports(), (Texts{no_url, no_url}));
}

TEST_F(Help, UrlOfNull_IsNone) {
    Settings(web);
    EXPECT_FALSE(zrHelp_GetHelpURL("x", 1, nullptr, 100));
    EXPECT_FALSE(zrHelp_GetHelpURL(nullptr, 1, nullptr, 0));
    EXPECT_EQ(Url(nullptr, 1, 10, "before"), "0<before>");
    EXPECT_EQ(Reports(), Texts{});
}

// ---- Help on the web ----

TEST_F(Help, Web_OpensTheUrl) {
    Settings(web);
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), "url http://help.test/2013/beam/12\n");
    EXPECT_TRUE(zrHelp("Beam", 0, ZR_HELP_DEFAULT)); // as a missing entry says
    EXPECT_EQ(Opened(), "url http://help.test/2013/beam/0\n");
    EXPECT_EQ(s_tests, 2);
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, Web_WhenAskedForWinsOverTheSettings) {
    Settings(std::string("UseWebHelp=0\n") + web);
    EXPECT_TRUE(zrHelp("Beam", 1, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), "url http://help.test/2013/beam/1\n");
}

TEST_F(Help, WebOffline_IsTheLocalFileWithoutAMessage) {
    Settings(std::string("UseWebHelp=1\n") + web);
    s_online = false;
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_DEFAULT));
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 12) + File("Beam.chm", 15, 12));
    EXPECT_EQ(s_tests, 2);
    EXPECT_EQ(Reports(), Texts{});
}

// Then nobody asks for a URL.
TEST_F(Help, WebOfflineWithoutUrl_HasNoMessage) {
    Settings("UseWebHelp=1\n");
    s_online = false;
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_DEFAULT));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 12));
    EXPECT_FALSE(zrHelp("Other", 12, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), "");
    EXPECT_EQ(s_tests, 2);
    EXPECT_EQ(Reports(), Texts{});
}

// The user reads the message before the help.
TEST_F(Help, WebWithoutUrl_IsToldBeforeTheLocalFileIsOpened) {
    static zr::test::ReportCapture *reports;
    static std::size_t before;
    reports = &m_reports;
    before = 0;
    zr::platform::services.show_help_file = [](const char *, HelpCommand, zr_ulong) {
        before = reports->Take().size();
        return true;
    };
    Settings("UseWebHelp=1\n");
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_DEFAULT));
    EXPECT_EQ(before, 2U);
    EXPECT_EQ(Reports(), Texts{});
}

// The URL's own message, and the one that nothing else could be done.
TEST_F(Help, WebWithoutUrl_IsToldTwiceAndTheLocalFileOpened) {
    Settings("UseWebHelp=1\n");
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_DEFAULT));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 12));
    EXPECT_EQ(m_reports.Take(),
              (zr::test::Reports{zr::test::Message("zrHelp", no_url), zr::test::Message("zrHelp", no_url)}));
    EXPECT_FALSE(zrHelp("Other", 12, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), "");
    EXPECT_EQ(Reports(), (Texts{no_url, no_url}));
}

TEST_F(Help, WebWithAnEndlessApplication_IsCutTo511Characters) {
    Settings("HelpURL=" + std::string(506, 'u') + "$$APP\n");
    EXPECT_TRUE(zrHelp("Fives", 1, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), "url " + std::string(506, 'u') + "fives\n");
    EXPECT_TRUE(zrHelp("Sixsix", 1, ZR_HELP_WEB));
    EXPECT_EQ(Opened(), "url " + std::string(506, 'u') + "$$APP\n");
    EXPECT_EQ(Reports(), Texts{"str_repl : Buffer zu klein"});
}

// ---- Local help ----

TEST_F(Help, Local_AsksForNoConnection) {
    Settings(std::string("UseWebHelp=0\n") + web);
    EXPECT_TRUE(zrHelp("Beam", 12, ZR_HELP_DEFAULT));
    EXPECT_TRUE(zrHelp("Beam", 13, ZR_HELP_LOCAL));
    EXPECT_TRUE(zrHelp("Beam", 14, Type(7)));
    EXPECT_TRUE(zrHelp("Beam", 15, Type(-1)));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 12) + File("Beam.chm", 15, 13) + File("Beam.chm", 15, 14) +
                            File("Beam.chm", 15, 15));
    EXPECT_EQ(s_tests, 0);
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, LocalOfIdZero_IsTheStart) {
    Settings("");
    EXPECT_TRUE(zrHelp("Beam", 0, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), File("Beam.chm", 0, 0));
    EXPECT_TRUE(zrHelp("Beam", 4294967295, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 4294967295));
}

TEST_F(Help, LocalWithoutAFile_IsFalseWithoutAReport) {
    Settings("");
    EXPECT_FALSE(zrHelp("Other", 12, ZR_HELP_LOCAL));
    EXPECT_FALSE(zrHelp("Other", 0, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), "");
    EXPECT_EQ(Reports(), Texts{});
}

// The settings' folder takes the place of one that the name brings along, and the extension that of none.
TEST_F(Help, LocalName_KeepsItsExtensionAndLosesItsFolder) {
    Settings("");
    Write("help\\Beam.exe.chm");
    EXPECT_TRUE(zrHelp("Beam.exe", 1, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), File("Beam.exe.chm", 15, 1));
    EXPECT_TRUE(zrHelp("other\\Beam", 1, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 1));
}

TEST_F(Help, LocalWithoutAFolder_LiesInTheCurrentOne) {
    Write("zr\\zr.zrini", "[System]\n");
    EXPECT_FALSE(zrHelp("Beam", 1, ZR_HELP_LOCAL));
    const CurrentFolder current(m_folder.Folder() / "help");
    EXPECT_TRUE(zrHelp("Beam", 1, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), "file Beam.chm 15 1\n");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Help, LocalFolder_MayBeRelativeToTheSettingsFile) {
    Write("zr\\zr.zrini", "[System]\nHelp=..\\help\n");
    EXPECT_TRUE(zrHelp("Beam", 1, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), File("Beam.chm", 15, 1));
}

// ---- Bad arguments ----

TEST_F(Help, NullApplication_IsReported) {
    Settings(web);
    for (const EZrHelpType type : {ZR_HELP_DEFAULT, ZR_HELP_WEB, ZR_HELP_LOCAL, Type(7)}) {
        EXPECT_FALSE(zrHelp(nullptr, 1, type));
        EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Error("zrHelp", "Invalid parameter")});
    }
    EXPECT_EQ(Opened(), "");
    EXPECT_EQ(s_tests, 0);
}

// ---- Without memory ----

// What is opened is counted only: to note it would take memory.
int opened = 0;

// Lets each allocation of a call fail in turn. Either it opens something and says so, or neither; and what is kept is sound
// afterwards.
void RefuseEach(bool (*open)()) {
    int others = 0;
    for (bool met = true; met; ++others) {
        zr::desktop::help_state = {};
        zr::settings::ForgetInstallation();
        opened = 0;
        {
            const zr::test::NthAllocation refusal(others);
            const bool is_open = open();
            met = refusal.Met();
            EXPECT_EQ(opened, is_open ? 1 : 0) << others;
            EXPECT_TRUE(is_open || met) << others;
        }
        zr::settings::ForgetInstallation();
        EXPECT_TRUE(open()) << others;
    }
    EXPECT_GE(others, 2); // there was one to refuse
}

TEST_F(Help, WithoutMemory_OpensOrIsFalse) {
    Settings(std::string("UseWebHelp=1\n") + web);
    auto &services = zr::platform::services;
    services.known_folder = [](int, char *, std::size_t) { return false; };
    services.known_folder_below = [](int, const char *, char *, std::size_t) { return false; };
    services.open_url = [](const char *url) {
        opened += std::strcmp(url, "http://help.test/2013/beam/12") == 0 ? 1 : 100;
    };
    services.show_help_file = [](const char *, HelpCommand, zr_ulong) { return ++opened == 1; };
    const auto on_the_web = [] { return zrHelp("Beam", 12, ZR_HELP_DEFAULT); };
    const auto from_the_file = [] { return zrHelp("Beam", 12, ZR_HELP_LOCAL); };
    RefuseEach(on_the_web);
    RefuseEach(from_the_file);
}

TEST_F(Help, LocalOfNoName_IsFalse) {
    Settings("");
    for (const std::size_t length : {255U, 256U, 100000U}) // the path is too long, the name is
        EXPECT_FALSE(zrHelp(std::string(length, 'a').c_str(), 1, ZR_HELP_LOCAL)) << length;
    EXPECT_FALSE(zrHelp("a*b?", 1, ZR_HELP_LOCAL));
    EXPECT_FALSE(zrHelp("", 1, ZR_HELP_LOCAL));
    EXPECT_EQ(Opened(), "");
}

} // namespace
