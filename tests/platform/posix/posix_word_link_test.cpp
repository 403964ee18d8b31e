// The link to Word where there is none.
#include <zrclb/winword.h>

#include <string>

#include "frame/report_fixture.h"
#include "platform/server_programs.h"
#include "registry_values.h"

namespace {

using namespace zr::platform;

TEST(ServerPrograms, AreNeverFound) {
    char out[class_id_size] = "before";
    EXPECT_FALSE(FindClassId("Word.Document", out, sizeof out));
    EXPECT_STREQ(out, "");
    EXPECT_FALSE(FindClassId("Word.Document", nullptr, 0));
    EXPECT_EQ(VersionRecordSize("/bin/sh"), 0U);
    EXPECT_FALSE(ReadVersionRecord("/bin/sh", out, sizeof out));
    FileVersion version{1, 2, 3, 4};
    EXPECT_FALSE(FindProductVersion(out, version));
    EXPECT_EQ(version.a, 1);
    VisitTopWindows([](void *, zr_window, const char *title) { ADD_FAILURE() << title; }, nullptr);
    EXPECT_FALSE(IsWindowAlive(out));
    char line[] = "/bin/true";
    EXPECT_FALSE(StartServer(line, 5, 1000));
}

class WordLinkHere : public ReportFixture {};

TEST_F(WordLinkHere, FindsNothingWhateverTheRegistryHolds) {
    RegistryValues values("Word.Document\\CLSID");
    values.Set("", "{000209FF-0000-0000-C000-000000000046}");
    values.AddKey("CLSID\\{000209FF-0000-0000-C000-000000000046}\\LocalServer32");
    values.Set("", "C:\\bin\\sh");
    winword_info info{"before", "before"};
    EXPECT_EQ(winword_GetInfo(&info), 0);
    EXPECT_STREQ(info.version, "");
    EXPECT_STREQ(info.path, "");
    EXPECT_EQ(winword_GetVersion(), 0);
    char path[256] = "before";
    EXPECT_EQ(winword_GetPath(path), 0);
    EXPECT_STREQ(path, "before");
    EXPECT_EQ(winword_FindWindow(), nullptr);
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(winword_Run(1, 5, "x.doc"), 0);
    EXPECT_NE(TakeLog().find("  winword_GetPath FAILED!\n"), std::string::npos);
    EXPECT_EQ(winword_EnsureRunning(), 0);
    EXPECT_NE(TakeLog().find("  winword_GetPath FAILED!\n"), std::string::npos);
}

} // namespace
