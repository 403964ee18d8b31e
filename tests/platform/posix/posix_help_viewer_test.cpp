// The programs that show help on Linux, with scripts in their place, and the table of routes.
#include "platform/help_viewer.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/environment.h"
#include "platform/posix/default_route.h"
#include "platform/temp_folder.h"
#include "settings/started_program.h"

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

class PosixHelpViewer : public testing::Test {
protected:
    // Nothing but what the test writes can be found.
    void SetUp() override {
        m_before = std::getenv("PATH");
        SetVariable("PATH", m_folder.Path("bin").c_str());
        std::filesystem::create_directory(m_folder.Folder() / "bin");
    }
    void TearDown() override { SetVariable("PATH", m_before.c_str()); }

    // Makes a program that leaves its name and arguments as the answer.
    void Install(const std::string &name) const {
        const std::string part = m_folder.Path("part");
        m_folder.Write("bin/" + name, "#!/bin/sh\nfor i in " + name + " \"$@\"; do printf '%s\\n' \"$i\"; done > " +
                                          part + "\n/bin/mv " + part + " " + m_folder.Path("answer") + "\n");
        std::filesystem::permissions(m_folder.Folder() / "bin" / name, std::filesystem::perms::owner_all);
    }

    Texts Answer() const { return StartedProgram::Take(m_folder.Folder()); }

    std::string m_before;
    TempFolder m_folder;
};

TEST_F(PosixHelpViewer, Url_GoesToTheDesktopsProgramAsOneArgument) {
    Install("xdg-open");
    OpenUrl("http://help.test/a b/\"$(x)'\\%41");
    EXPECT_EQ(Answer(), (Texts{"xdg-open", "http://help.test/a b/\"$(x)'\\%41"}));
}

// A viewer of files isn't taken for it, and what comes later is found.
TEST_F(PosixHelpViewer, UrlWithoutAProgram_IsNoFault) {
    Install("xchm");
    OpenUrl("http://help.test/first");
    Install("xdg-open");
    OpenUrl("http://help.test/second");
    EXPECT_EQ(Answer(), (Texts{"xdg-open", "http://help.test/second"}));
}

TEST_F(PosixHelpViewer, File_IsShownByTheFirstViewerInstalled) {
    EXPECT_FALSE(ShowHelpFile("C:\\help\\Beam.chm", HelpCommand::topic, 12));
    for (const char *viewer : {"xdg-open", "okular", "kchmviewer"}) {
        Install(viewer);
        EXPECT_TRUE(ShowHelpFile("C:\\help\\Beam.chm", HelpCommand::topic, 12));
        EXPECT_EQ(Answer(), (Texts{viewer, "/help/Beam.chm"}));
    }
    Install("xchm");
    EXPECT_TRUE(ShowHelpFile("C:\\help\\Beam.chm", HelpCommand::topic, 4294967295));
    EXPECT_EQ(Answer(), (Texts{"xchm", "-c", "4294967295", "/help/Beam.chm"}));
    EXPECT_TRUE(ShowHelpFile("C:\\help\\Beam.chm", HelpCommand::start, 0));
    EXPECT_EQ(Answer(), (Texts{"xchm", "/help/Beam.chm"}));
}

TEST_F(PosixHelpViewer, ViewerThatCannotRun_IsPassedOver) {
    Install("okular");
    m_folder.Write("bin/xchm", "data");
    m_folder.Write("bin/kchmviewer", "#!/zr_no_such_program\n");
    std::filesystem::permissions(m_folder.Folder() / "bin" / "kchmviewer", std::filesystem::perms::owner_all);
    EXPECT_TRUE(ShowHelpFile("\\Beam.chm", HelpCommand::topic, 1));
    EXPECT_EQ(Answer(), (Texts{"okular", "/Beam.chm"}));
}

// A relative path becomes absolute: it is never taken for an option.
TEST_F(PosixHelpViewer, RelativeFile_BecomesAbsolute) {
    Install("okular");
    const CurrentFolder current(m_folder.Folder());
    EXPECT_TRUE(ShowHelpFile("-x.chm", HelpCommand::start, 0));
    EXPECT_EQ(Answer(), (Texts{"okular", std::filesystem::canonical(m_folder.Folder()).string() + "/-x.chm"}));
    EXPECT_FALSE(ShowHelpFile("", HelpCommand::start, 0));
    EXPECT_FALSE(ShowHelpFile("Q:\\x.chm", HelpCommand::start, 0)); // no such drive
}

TEST_F(PosixHelpViewer, DefaultRoute_IsOneToEverywhereThatIsUp) {
    const std::string head = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
    const std::string lan = "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
    const struct {
        std::string rows;
        bool online;
    } cases[] = {{"", false},
                 {lan, false},
                 {lan + "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n", true},
                 {"ppp0\t00000000\t00000000\t0001\t0\t0\t0\t00000000\t0\t0\t0\n" + lan, true},
                 {"eth0\t00000000\t010200C0\t0002\t0\t0\t0\t00000000\t0\t0\t0\n", false}, // down
                 {"*\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\t0\t0\n", false},    // refuses
                 {"eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000080\t0\t0\t0\n", false}, // half of everywhere
                 {"eth0\t00000000\n", false},
                 {std::string(1000, 'x') + "\n", false}};
    for (const auto &row : cases) {
        m_folder.Write("route", head + row.rows);
        EXPECT_EQ(posix::HasDefaultRoute(m_folder.Path("route").c_str()), row.online) << row.rows;
    }
    EXPECT_FALSE(posix::HasDefaultRoute(m_folder.Path("none").c_str()));
    EXPECT_FALSE(posix::HasDefaultRoute(m_folder.Path("bin").c_str()));
}

TEST_F(PosixHelpViewer, DefaultRouteIpv6_IsOneToEverywhereThatIsUp) {
    const std::string zero(32, '0');
    const std::string hop = "20010db8000000000000000000000001";
    const std::string end = " 00000400 00000001 00000000 ";
    const struct {
        std::string rows;
        bool online;
    } cases[] = {{"", false},
                 {zero + " 00 " + zero + " 00 " + hop + end + "00450003     eth0\n", true},
                 {zero + " 00 " + zero + " 00 " + zero + end + "00000001     ppp0\n", true},
                 {zero + " 00 " + zero + " 00 " + hop + end + "00450002     eth0\n", false}, // down
                 {zero + " 00 " + zero + " 00 " + zero + " ffffffff 00000001 00000000 00200200       lo\n", false},
                 {zero + " 00 " + zero + " 00 " + zero + end + "00000201     eth0\n", false}, // refuses
                 {zero + " 03 " + zero + " 00 " + hop + end + "00450003     eth0\n", false},  // an eighth of everywhere
                 {hop + " 00 " + zero + " 00 " + zero + end + "00000001     eth0\n", false},
                 {hop + " 40 " + zero + " 00 " + zero + end + "00000001     eth0\n" + zero + " 00 " + zero + " 00 " +
                      hop + end + "00000003     eth0\n",
                  true},
                 {zero + " 00 " + zero + "\n", false},
                 {std::string(1000, '0') + "\n", false}};
    for (const auto &row : cases) {
        m_folder.Write("route", row.rows);
        EXPECT_EQ(posix::HasDefaultRouteIpv6(m_folder.Path("route").c_str()), row.online) << row.rows;
    }
    EXPECT_FALSE(posix::HasDefaultRouteIpv6(m_folder.Path("none").c_str()));
}

TEST_F(PosixHelpViewer, Online_IsWhatTheKernelsTablesSay) {
    EXPECT_EQ(IsOnline(),
              posix::HasDefaultRoute("/proc/net/route") || posix::HasDefaultRouteIpv6("/proc/net/ipv6_route"));
}

} // namespace
