// The file name value as a class: every member, report and limit.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/file_name.hpp>
#include <zrclb/folders.h>
#include <zrclb/paths.h>

#include "env/report_capture.h"
#include "golden_table.h"
#include "platform/services.h"
#include "platform/temp_folder.h"

namespace {

using Texts = std::vector<std::string>;

static_assert(std::is_trivially_copyable_v<CZrFileName> && !std::is_polymorphic_v<CZrFileName>);
static_assert(sizeof(CZrFileName) == 2 * 256 + 8 * 260 + 3 + 5);

std::string Of(std::size_t count, char c = 'a') {
    return std::string(count, c);
}

class FileName : public testing::Test {
protected:
    ~FileName() override { EXPECT_EQ(m_capture.Take(), zr::test::Reports()); }

    // The reports since they were last taken, all of which must be errors of the value's own.
    Texts Reports() {
        Texts texts;
        for (const zr::test::Report &report : m_capture.Take()) {
            EXPECT_EQ(report.kind, zr::test::Report::Error);
            EXPECT_EQ(report.tag, "ZrFileName") << report;
            texts.push_back(zr::test::JoinedTexts(report));
        }
        return texts;
    }

    // The texts of all reports, whoever made them.
    Texts AllReports() { return zr::test::TextsOf(m_capture); }

    // Name, extension, directory and drive.
    static Texts Parts(const CZrFileName &file) {
        return {file.GetFileName(false), file.GetExt(), file.GetDir(false), file.GetDrive()};
    }

private:
    zr::test::ReportCapture m_capture;
};

// ---- Construction ---------------------------------------------------------------------------------------------------

TEST_F(FileName, Default_HasNoPartsAndNoPath) {
    const CZrFileName file;
    EXPECT_EQ(Parts(file), Texts({"", "", "", ""}));
    EXPECT_STREQ(file.GetPath(), "");
    EXPECT_STREQ(file.GetFileName(true), "");
    EXPECT_STREQ(file.GetDir(true), "");
    EXPECT_STREQ(file.GetLastDir(), "");
    EXPECT_STREQ(file.GetCompactPath(20), "");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_PATH);
    EXPECT_FALSE(file.FileNameValid() || file.ExtValid() || file.DirValid() || file.DriveValid() || file.PathValid());
}

TEST_F(FileName, NameAlone_IsSplit) {
    const CZrFileName file("a.txt");
    EXPECT_EQ(Parts(file), Texts({"a", "txt", "", ""}));
    EXPECT_STREQ(file.GetFileName(true), "a.txt");
    EXPECT_STREQ(file.GetPath(), "a.txt");
    EXPECT_STREQ(file, "a.txt");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, AllParts_GivePathAndDirectories) {
    const CZrFileName file("a", "txt", "\\d", "C:");
    EXPECT_STREQ(file.GetPath(), "C:\\d\\a.txt");
    EXPECT_STREQ(file.GetDir(false), "\\d\\");
    EXPECT_STREQ(file.GetDir(true), "C:\\d");
    EXPECT_TRUE(file.FileNameValid() && file.ExtValid() && file.DirValid() && file.DriveValid() && file.PathValid());
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, Construction_EmptyAndNullLeavePartsUnset) {
    const CZrFileName file("", "", "", "");
    EXPECT_EQ(Parts(file), Texts({"", "", "", ""}));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_PATH) << "no part counts as set";
    const CZrFileName partly("a.b", nullptr, "", nullptr);
    EXPECT_EQ(Parts(partly), Texts({"a", "b", "", ""}));
    EXPECT_EQ(partly.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, Construction_LaterPartsOverrideThoseOfTheName) {
    const CZrFileName file("D:\\x\\a.b", "c", "y", "E:");
    EXPECT_EQ(Parts(file), Texts({"a.b", "c", "y\\", "E:"}));
    const CZrFileName from_dir("D:\\x\\a", nullptr, "F:\\z", nullptr);
    EXPECT_EQ(Parts(from_dir), Texts({"a", "", "\\z\\", "F:"}));
}

TEST_F(FileName, Construction_OldExtensionGoesToTheNameIfItFits) {
    EXPECT_EQ(Parts(CZrFileName("a.b", "c")), Texts({"a.b", "c", "", ""}));
    EXPECT_EQ(Parts(CZrFileName("a.b", ".c")), Texts({"a.b", "c", "", ""}));
    EXPECT_EQ(Parts(CZrFileName("a", "c")), Texts({"a", "c", "", ""}));
    EXPECT_EQ(Parts(CZrFileName(".b", "c")), Texts({".b", "c", "", ""})) << "also where there was no name";
    EXPECT_EQ(Parts(CZrFileName("a.b", "c*")), Texts({"a", "c*", "", ""})) << "only a valid extension";
    EXPECT_EQ(Parts(CZrFileName((Of(252) + ".b").c_str(), "c")), Texts({Of(252) + ".b", "c", "", ""}));
    EXPECT_EQ(Parts(CZrFileName((Of(253) + ".b").c_str(), "c")), Texts({Of(253) + ".b", "c", "", ""}));
    EXPECT_EQ(Parts(CZrFileName((Of(254) + ".b").c_str(), "c")), Texts({Of(254), "c", "", ""}));
}

TEST_F(FileName, Construction_Limits) {
    for (const std::size_t count : {259U, 260U, 10000U}) {
        const std::string text = Of(count);
        CZrFileName file(text.c_str(), text.c_str(), text.c_str(), text.c_str());
        EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
        EXPECT_EQ(Parts(file), Texts({"", Of(255), "", "aa"}));
        EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_NAME);
    }
}

TEST_F(FileName, Copies_AreIndependent) {
    CZrFileName first("a", "txt", "\\d", "C:");
    EXPECT_STREQ(first.GetPath(), "C:\\d\\a.txt");
    CZrFileName second(first);
    CZrFileName third;
    third = first;
    first.SetFileName("b", true);
    second.SetExt("doc");
    EXPECT_STREQ(first.GetPath(), "C:\\d\\b.txt");
    EXPECT_STREQ(second.GetPath(), "C:\\d\\a.doc");
    EXPECT_STREQ(third.GetPath(), "C:\\d\\a.txt");
    third = *&third;
    EXPECT_STREQ(third.GetPath(), "C:\\d\\a.txt");
}

TEST_F(FileName, Copies_TakeFaultsAndResultsAlong) {
    CZrFileName nameless;
    EXPECT_FALSE(nameless.SetFileName("C:\\d\\", true));
    EXPECT_EQ(CZrFileName(nameless).GetError(), ZR_FILE_NAME_BAD_NAME) << "empty, and set";
    const CZrFileName pathless(nullptr, "txt");
    EXPECT_STREQ(pathless.GetPath(), "");
    EXPECT_EQ(Reports(), Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
    EXPECT_STREQ(CZrFileName(pathless).GetPath(), "");
    nameless = pathless;
    EXPECT_STREQ(nameless.GetPath(), "");
    EXPECT_EQ(Reports(), Texts()) << "the kept path is copied";
    EXPECT_EQ(nameless.GetError(), ZR_FILE_NAME_BAD_PATH);
}

// ---- SetFileName ----------------------------------------------------------------------------------------------------

TEST_F(FileName, SetFileName_TakesWholePath) {
    CZrFileName file;
    EXPECT_TRUE(file.SetFileName("C:\\x/y\\a.b.c", true));
    EXPECT_EQ(Parts(file), Texts({"a.b", "c", "\\x\\y\\", "C:"}));
    EXPECT_STREQ(file.GetPath(), "C:\\x\\y\\a.b.c");
}

TEST_F(FileName, SetFileName_PartsNotHeldStay) {
    CZrFileName file("a", "txt", "\\d", "C:");
    EXPECT_TRUE(file.SetFileName("b", true));
    EXPECT_STREQ(file.GetPath(), "C:\\d\\b.txt");
    EXPECT_TRUE(file.SetFileName("E:c", true));
    EXPECT_STREQ(file.GetPath(), "E:\\d\\c.txt");
    EXPECT_TRUE(file.SetFileName("e\\f.g", true));
    EXPECT_EQ(Parts(file), Texts({"f", "g", "e\\", "E:"}));
}

TEST_F(FileName, SetFileName_EmptyAndNullClearTheNameAlone) {
    CZrFileName file("a", "txt", "\\d", "C:");
    EXPECT_TRUE(file.SetFileName("", true));
    EXPECT_EQ(Parts(file), Texts({"", "txt", "\\d\\", "C:"}));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_STREQ(file.GetPath(), "C:\\d\\") << "an extension without a name is left out";
    EXPECT_STREQ(file.GetFileName(true), "");
    file.SetFileName("b", true);
    EXPECT_TRUE(file.SetFileName(nullptr, false));
    EXPECT_EQ(Parts(file), Texts({"", "txt", "\\d\\", "C:"}));
}

TEST_F(FileName, SetFileName_WithoutSplitKeepsExtensionInTheName) {
    CZrFileName file;
    EXPECT_TRUE(file.SetFileName("C:\\d\\a.b", false));
    EXPECT_EQ(Parts(file), Texts({"a.b", "", "\\d\\", "C:"}));
    EXPECT_STREQ(file.GetFileName(true), "a.b");
    EXPECT_STREQ(file.GetPath(), "C:\\d\\a.b");
    file.SetExt("x");
    EXPECT_TRUE(file.SetFileName("c.d", false));
    EXPECT_STREQ(file.GetFileName(true), "c.d.x");
    EXPECT_TRUE(file.SetFileName(".profile", false));
    EXPECT_STREQ(file.GetFileName(false), ".profile");
}

TEST_F(FileName, SetFileName_WithoutSplitTooLongTogether_ReportsAndLosesTheExtension) {
    CZrFileName file;
    EXPECT_TRUE(file.SetFileName((Of(250) + ".txt").c_str(), false));
    EXPECT_EQ(file.GetFileName(false), Of(250) + ".txt");
    EXPECT_TRUE(file.SetFileName((Of(251) + ".txt").c_str(), false));
    EXPECT_EQ(file.GetFileName(false), Of(251) + ".txt");
    EXPECT_EQ(Reports(), Texts());
    EXPECT_TRUE(file.SetFileName((Of(252) + ".txt").c_str(), false));
    EXPECT_EQ(Reports(), Texts({"Buffer too small"}));
    EXPECT_EQ(Parts(file), Texts({Of(252), "", "", ""}));
}

TEST_F(FileName, SetFileName_InvalidIsStoredAndTold) {
    CZrFileName file;
    EXPECT_FALSE(file.SetFileName("a*.txt", true));
    EXPECT_EQ(Parts(file), Texts({"a*", "txt", "", ""}));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_NAME);
    EXPECT_FALSE(file.SetFileName("a.t?t", true));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_EXT);
    EXPECT_FALSE(CZrFileName().SetFileName("1:a", true));
    EXPECT_FALSE(CZrFileName().SetFileName("x<y\\a", true));
    EXPECT_FALSE(CZrFileName().SetFileName("a.", true)) << "the extension is a dot without text";
    EXPECT_TRUE(file.SetExt(""));
    EXPECT_FALSE(file.SetFileName("a.t*", false)) << "here the name is bad";
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_NAME);
    EXPECT_TRUE(file.SetFileName("", true)) << "what is cleared is not tested";
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_PATH);
}

TEST_F(FileName, SetFileName_AllPartsInvalid_AllAreStored) {
    CZrFileName file("n", "e", "d", "C:");
    EXPECT_STREQ(file.GetPath(), "C:\\d\\n.e");
    EXPECT_FALSE(file.SetFileName("1:x.\\a?.b|", true));
    EXPECT_EQ(Parts(file), Texts({"a?", "b|", "x.\\", "1:"}));
    EXPECT_STREQ(file.GetPath(), "1:\\x.\\a?.b|");
}

TEST_F(FileName, SetFileName_PathWithoutName_TakesTheRestAndFails) {
    CZrFileName file("a", "txt");
    EXPECT_FALSE(file.SetFileName("C:\\d\\", true));
    EXPECT_EQ(Parts(file), Texts({"", "txt", "\\d\\", "C:"}));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_NAME);
    EXPECT_FALSE(file.SetFileName(".ini", true));
    EXPECT_EQ(Parts(file), Texts({"", "ini", "\\d\\", "C:"}));
    EXPECT_FALSE(file.SetFileName("\\\\//", true));
    EXPECT_STREQ(file.GetDir(false), "\\\\");
    EXPECT_FALSE(file.SetFileName("E:", true));
    EXPECT_EQ(Parts(file), Texts({"", "ini", "\\\\", "E:"}));
}

TEST_F(FileName, SetFileName_Limits) {
    CZrFileName file("x", "y");
    EXPECT_TRUE(file.SetFileName(Of(254).c_str(), true));
    EXPECT_TRUE(file.SetFileName(Of(255).c_str(), true));
    EXPECT_EQ(Parts(file), Texts({Of(255), "y", "", ""}));
    EXPECT_TRUE(file.SetFileName(("C:\\" + Of(253) + "\\" + Of(255) + "." + Of(254)).c_str(), true));
    EXPECT_EQ(Parts(file), Texts({Of(255), Of(254), "\\" + Of(253) + "\\", "C:"}));
    for (const std::size_t count : {256U, 259U, 260U, 10000U}) {
        EXPECT_FALSE(file.SetFileName(("D:\\z\\" + Of(count) + ".q").c_str(), true));
        EXPECT_EQ(Parts(file), Texts({"", Of(254), "\\" + Of(253) + "\\", "C:"})) << "no part of it is taken";
        EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_NAME);
    }
}

TEST_F(FileName, SetFileName_BytesAboveAsciiPass) {
    CZrFileName file;
    EXPECT_TRUE(file.SetFileName("\x80\xC4\\\xFCml\xFF.\xE4", true));
    EXPECT_EQ(Parts(file), Texts({"\xFCml\xFF", "\xE4", "\x80\xC4\\", ""}));
    EXPECT_STREQ(file.GetPath(), "\x80\xC4\\\xFCml\xFF.\xE4");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

// ---- SetExt and SetDrive --------------------------------------------------------------------------------------------

TEST_F(FileName, SetExt_DropsOneDot) {
    CZrFileName file("a");
    EXPECT_TRUE(file.SetExt(".txt"));
    EXPECT_STREQ(file.GetExt(), "txt");
    EXPECT_TRUE(file.SetExt("tar.gz"));
    EXPECT_STREQ(file.GetPath(), "a.tar.gz");
    EXPECT_TRUE(file.SetExt("..x"));
    EXPECT_STREQ(file.GetExt(), ".x");
    EXPECT_STREQ(file.GetFileName(true), "a..x");
    EXPECT_STREQ(file.GetPath(), "a.x") << "the path maker takes the dot that is there";
}

TEST_F(FileName, SetExt_EmptyAndNullClear) {
    CZrFileName file("a", "txt");
    EXPECT_TRUE(file.SetExt(""));
    EXPECT_STREQ(file.GetExt(), "");
    EXPECT_STREQ(file.GetPath(), "a");
    file.SetExt("b");
    EXPECT_TRUE(file.SetExt(nullptr));
    EXPECT_STREQ(file.GetPath(), "a");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, SetExt_InvalidIsStoredAndTold) {
    CZrFileName file("a");
    EXPECT_FALSE(file.SetExt("t|t"));
    EXPECT_STREQ(file.GetExt(), "t|t");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_EXT);
    EXPECT_FALSE(file.SetExt("."));
    EXPECT_STREQ(file.GetExt(), "");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_EXT);
    EXPECT_TRUE(file.SetExt(".."));
    EXPECT_STREQ(file.GetExt(), ".");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_EXT) << "what is left is no extension";
    EXPECT_TRUE(file.SetExt(""));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, SetExt_Limits) {
    CZrFileName file;
    EXPECT_TRUE(file.SetExt(Of(254).c_str()));
    EXPECT_TRUE(file.SetExt(Of(255).c_str()));
    EXPECT_EQ(file.GetExt(), Of(255));
    EXPECT_TRUE(file.SetExt(("." + Of(254)).c_str()));
    EXPECT_EQ(file.GetExt(), Of(254));
    EXPECT_FALSE(file.SetExt(("." + Of(255)).c_str()));
    EXPECT_EQ(file.GetExt(), Of(254)) << "cut before the dot is dropped";
    for (const std::size_t count : {256U, 259U, 260U, 10000U}) {
        EXPECT_FALSE(file.SetExt(Of(count, '\xE4').c_str()));
        EXPECT_EQ(file.GetExt(), Of(255, '\xE4'));
    }
}

TEST_F(FileName, SetDrive_StoresTwoCharacters) {
    CZrFileName file("a");
    EXPECT_TRUE(file.SetDrive("z:"));
    EXPECT_STREQ(file.GetPath(), "z:\\a");
    for (const char *bad : {"C", "1:", "C:\\", "\xC4:", ":", "::", "\\\\"}) {
        EXPECT_FALSE(file.SetDrive(bad)) << bad;
        EXPECT_EQ(file.GetDrive(), std::string(bad).substr(0, 2));
    }
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DRIVE);
    for (const std::size_t count : {3U, 259U, 260U, 10000U}) {
        EXPECT_FALSE(file.SetDrive(Of(count, 'C').c_str()));
        EXPECT_STREQ(file.GetDrive(), "CC");
    }
    EXPECT_STREQ(file.GetPath(), "C:\\a");
    EXPECT_TRUE(file.SetDrive(""));
    EXPECT_STREQ(file.GetDrive(), "");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    file.SetDrive("C:");
    EXPECT_TRUE(file.SetDrive(nullptr));
    EXPECT_STREQ(file.GetPath(), "a");
}

// ---- SetDir ---------------------------------------------------------------------------------------------------------

TEST_F(FileName, SetDir_GivesStandardForm) {
    CZrFileName file;
    EXPECT_TRUE(file.SetDir("C:\\x/y"));
    EXPECT_EQ(Parts(file), Texts({"", "", "\\x\\y\\", "C:"}));
    EXPECT_TRUE(file.SetDir("a//b\\/\\c/"));
    EXPECT_EQ(Parts(file), Texts({"", "", "a\\b\\c\\", "C:"}));
    EXPECT_TRUE(file.SetDir("\\\\srv\\sh"));
    EXPECT_STREQ(file.GetDir(false), "\\\\srv\\sh\\");
    EXPECT_TRUE(file.SetDir("////srv///sh"));
    EXPECT_STREQ(file.GetDir(false), "\\\\srv\\sh\\");
    EXPECT_TRUE(file.SetDir("C:"));
    EXPECT_EQ(Parts(file), Texts({"", "", "\\", "C:"}));
    EXPECT_TRUE(file.SetDir("d.e"));
    EXPECT_STREQ(file.GetDir(false), "d.e\\");
    EXPECT_TRUE(file.SetDir("..\\./\xFC"));
    EXPECT_STREQ(file.GetDir(false), "..\\.\\\xFC\\");
    EXPECT_STREQ(file.GetPath(), "C:\\..\\.\\\xFC\\");
    EXPECT_TRUE(file.SetDir("\\..\\.."));
    EXPECT_STREQ(file.GetPath(), "C:\\..\\..\\") << "built anew, and nothing is resolved";
}

TEST_F(FileName, SetDir_SeparatorsOnlyAreValid) {
    CZrFileName file;
    EXPECT_TRUE(file.SetDir("/"));
    EXPECT_STREQ(file.GetDir(false), "\\");
    EXPECT_TRUE(file.SetDir(Of(10000, '/').c_str()));
    EXPECT_STREQ(file.GetDir(false), "\\\\");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, SetDir_EmptyAndNullClearTheDirectoryAlone) {
    CZrFileName file("a", "b", "c", "D:");
    EXPECT_TRUE(file.SetDir(""));
    EXPECT_EQ(Parts(file), Texts({"a", "b", "", "D:"}));
    file.SetDir("x");
    EXPECT_TRUE(file.SetDir(nullptr));
    EXPECT_STREQ(file.GetPath(), "D:\\a.b");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
}

TEST_F(FileName, SetDir_InvalidIsStoredAndTold) {
    CZrFileName file("a");
    for (const char *bad : {"xx:y", "x.", " x", "x\t", ".x", "a*", "a\\b?\\c", "\\a;b", "a\\...\\b"}) {
        EXPECT_FALSE(file.SetDir(bad)) << bad;
        EXPECT_EQ(file.GetDir(false), std::string(bad) + "\\");
        EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR);
    }
    EXPECT_TRUE(file.SetDir(""));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_FALSE(file.SetDir("1:\\x")) << "the drive is bad";
    EXPECT_EQ(Parts(file), Texts({"a", "", "\\x\\", "1:"}));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DRIVE);
}

TEST_F(FileName, SetDir_Limits) {
    CZrFileName file("a");
    EXPECT_TRUE(file.SetDir(Of(253).c_str()));
    EXPECT_TRUE(file.SetDir(Of(254).c_str()));
    EXPECT_EQ(file.GetDir(false), Of(254) + "\\");
    EXPECT_EQ(Reports(), Texts());
    EXPECT_TRUE(file.SetDir((Of(254) + "/").c_str()));
    EXPECT_TRUE(file.SetDir((Of(254) + "\\b").c_str())) << "cut to 255 characters";
    EXPECT_EQ(file.GetDir(false), Of(254) + "\\");
    EXPECT_EQ(Reports(), Texts());
    EXPECT_TRUE(file.SetDir(("\\" + Of(253) + "b").c_str()));
    EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
    EXPECT_STREQ(file.GetDir(false), "\\") << "what has no separator behind it is no directory";
    for (const std::size_t count : {255U, 256U, 259U, 260U, 10000U}) {
        EXPECT_FALSE(file.SetDir(Of(count).c_str()));
        EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
        EXPECT_STREQ(file.GetDir(false), "");
        EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR);
    }
}

TEST_F(FileName, SetDir_LimitCountsTheDrive) {
    CZrFileName file;
    EXPECT_TRUE(file.SetDir(("C:\\" + Of(251)).c_str()));
    EXPECT_EQ(Reports(), Texts());
    EXPECT_EQ(Parts(file), Texts({"", "", "\\" + Of(251) + "\\", "C:"}));
    EXPECT_TRUE(file.SetDir(("D:\\" + Of(252)).c_str()));
    EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
    EXPECT_EQ(Parts(file), Texts({"", "", "\\", "D:"}));
}

// ---- AddDir ---------------------------------------------------------------------------------------------------------

TEST_F(FileName, AddDir_AppendsInStandardForm) {
    CZrFileName file("a", nullptr, "\\x", "C:");
    EXPECT_STREQ(file.GetPath(), "C:\\x\\a");
    EXPECT_TRUE(file.AddDir("y"));
    EXPECT_STREQ(file.GetPath(), "C:\\x\\y\\a");
    EXPECT_TRUE(file.AddDir("/z//w/"));
    EXPECT_STREQ(file.GetDir(false), "\\x\\y\\z\\w\\");
    EXPECT_TRUE(file.AddDir(".."));
    EXPECT_STREQ(file.GetPath(), "C:\\x\\y\\z\\w\\..\\a");
    EXPECT_TRUE(file.AddDir("/\\"));
    EXPECT_STREQ(file.GetDir(false), "\\x\\y\\z\\w\\..\\") << "separators alone add nothing";
    CZrFileName fresh;
    EXPECT_TRUE(fresh.AddDir("\xE4"));
    EXPECT_STREQ(fresh.GetPath(), "\xE4\\");
}

TEST_F(FileName, AddDir_NullReportsEmptyDoesNothing) {
    CZrFileName file("a", nullptr, "x");
    EXPECT_FALSE(file.AddDir(nullptr));
    EXPECT_EQ(Reports(), Texts({"AddDir(): NULL-Pointer"}));
    EXPECT_TRUE(file.AddDir(""));
    EXPECT_STREQ(file.GetPath(), "x\\a");
}

TEST_F(FileName, AddDir_InvalidReportsAndAppends) {
    CZrFileName file("a", nullptr, "x");
    EXPECT_FALSE(file.AddDir("C:\\y*"));
    EXPECT_EQ(Reports(), Texts({"AddDir(): Verzeichnis nicht g\xFCltig :|C:\\y*"}));
    EXPECT_STREQ(file.GetDir(false), "x\\C:\\y*\\");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR);
}

TEST_F(FileName, AddDir_OnADirectoryNeverSet_LeavesItUntested) {
    CZrFileName file("a");
    EXPECT_FALSE(file.AddDir("y*"));
    EXPECT_EQ(Reports(), Texts({"AddDir(): Verzeichnis nicht g\xFCltig :|y*"}));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_FALSE(file.DirValid() || file.PathValid());
}

TEST_F(FileName, AddDir_WithoutRoomForTheLastBackslash_ReportsAndGoesWithout) {
    for (const std::size_t count : {249U, 250U, 254U}) {
        CZrFileName file(nullptr, nullptr, "dddd");
        EXPECT_TRUE(file.AddDir(Of(count).c_str()));
        const bool room = 5 + count < 255;
        EXPECT_EQ(Reports(), room ? Texts() : Texts({"TerminateDir() : length error"})) << count;
        EXPECT_EQ(file.GetDir(false), "dddd\\" + Of(count) + (room ? "\\" : ""));
        EXPECT_EQ(file.GetLastDir(), Of(count));
        EXPECT_TRUE(file.DirValid());
        EXPECT_TRUE(file.RemoveLastDir());
        EXPECT_STREQ(file.GetDir(false), "dddd\\");
    }
}

TEST_F(FileName, AddDir_TooLong_ReportsAndChangesNothing) {
    CZrFileName file(nullptr, nullptr, "dddd");
    EXPECT_FALSE(file.AddDir(Of(255).c_str()));
    EXPECT_EQ(Reports(), Texts({"AddDir(): Verzeichnis zu lang"})) << "260 together";
    EXPECT_STREQ(file.GetDir(false), "dddd\\");
    for (const std::size_t count : {256U, 259U, 260U, 10000U}) {
        EXPECT_FALSE(file.AddDir(Of(count).c_str()));
        const Texts reports = AllReports();
        ASSERT_EQ(reports.size(), 2U);
        EXPECT_TRUE(reports[0].starts_with("AddDir(): Verzeichnis nicht g\xFCltig :|" + Of(200)));
        EXPECT_EQ(reports[1], "AddDir(): Verzeichnis zu lang");
        EXPECT_STREQ(file.GetDir(false), "dddd\\");
    }
    EXPECT_TRUE(file.AddDir(Of(254).c_str()));
    EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
    EXPECT_FALSE(file.AddDir("b")) << "259 are full";
    EXPECT_EQ(Reports(), Texts({"AddDir(): Verzeichnis zu lang"}));
}

// ---- RemoveLastDir, ReplaceDir, FNToDir -----------------------------------------------------------------------------

TEST_F(FileName, RemoveLastDir_GoesUpToEmpty) {
    CZrFileName file("f", nullptr, "\\a\\b\\", "C:");
    EXPECT_STREQ(file.GetPath(), "C:\\a\\b\\f");
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(file.GetDir(false), "\\a\\");
    EXPECT_STREQ(file.GetPath(), "C:\\a\\f") << "the path is built anew";
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(file.GetDir(false), "");
    EXPECT_STREQ(file.GetPath(), "C:\\f");
    EXPECT_FALSE(file.RemoveLastDir());
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR) << "it still counts as set";
    EXPECT_FALSE(CZrFileName().RemoveLastDir());
}

TEST_F(FileName, RemoveLastDir_RelativeAndNetwork) {
    CZrFileName file(nullptr, nullptr, "a");
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(file.GetDir(false), "");
    file.SetDir("\\\\srv\\sh");
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(file.GetDir(false), "\\\\srv\\");
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(file.GetDir(false), "\\");
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(file.GetDir(false), "");
}

TEST_F(FileName, ReplaceDir_ReplacesTheFirst) {
    CZrFileName file("f", nullptr, "\\a\\b\\a\\");
    EXPECT_STREQ(file.GetPath(), "\\a\\b\\a\\f");
    EXPECT_TRUE(file.ReplaceDir("a", "c/d"));
    EXPECT_STREQ(file.GetPath(), "\\c\\d\\b\\a\\f");
    EXPECT_TRUE(file.ReplaceDir("\\b", "/x"));
    EXPECT_STREQ(file.GetDir(false), "\\c\\d\\x\\a\\");
    EXPECT_TRUE(file.ReplaceDir("d", ""));
    EXPECT_STREQ(file.GetDir(false), "\\c\\x\\a\\");
    EXPECT_TRUE(file.ReplaceDir("x", nullptr));
    EXPECT_STREQ(file.GetDir(false), "\\c\\a\\");
    EXPECT_TRUE(file.ReplaceDir("a", "\\z")) << "a doubled backslash goes";
    EXPECT_STREQ(file.GetDir(false), "\\c\\z\\");
    EXPECT_TRUE(file.ReplaceDir("/", "\xE4")) << "the first separator alone";
    EXPECT_STREQ(file.GetDir(false), "\xE4\\c\\z\\");
}

TEST_F(FileName, ReplaceDir_TakesTheEndOfAnElement) {
    CZrFileName file(nullptr, nullptr, "\\xa\\ab\\a");
    EXPECT_TRUE(file.ReplaceDir("a", "c")) << "a text with its backslash is replaced, not an element";
    EXPECT_STREQ(file.GetDir(false), "\\xc\\ab\\a\\");
}

TEST_F(FileName, ReplaceDir_EmptyFrom_Reports) {
    CZrFileName file(nullptr, nullptr, "a");
    EXPECT_FALSE(file.ReplaceDir("", "b"));
    EXPECT_EQ(Reports(), Texts({"ReplaceDir(): Falscher Parameter"}));
    EXPECT_FALSE(file.ReplaceDir(nullptr, "b*"));
    EXPECT_EQ(Reports(), Texts({"ReplaceDir(): Verzeichnis nicht g\xFCltig :|b*", "ReplaceDir(): Falscher Parameter"}));
    EXPECT_STREQ(file.GetDir(false), "a\\");
}

TEST_F(FileName, ReplaceDir_NotFound_Reports) {
    CZrFileName file("f", nullptr, "a");
    EXPECT_FALSE(file.ReplaceDir("A", "b"));
    EXPECT_EQ(Reports(), Texts({"ReplaceDir() : Fehler beim Ersetzen"}));
    EXPECT_STREQ(file.GetPath(), "a\\f");
    EXPECT_FALSE(CZrFileName().ReplaceDir("a", "b"));
    EXPECT_EQ(Reports(), Texts({"ReplaceDir() : Fehler beim Ersetzen"}));
    EXPECT_FALSE(file.ReplaceDir("c", "b*"));
    EXPECT_EQ(Reports(),
              Texts({"ReplaceDir(): Verzeichnis nicht g\xFCltig :|b*", "ReplaceDir() : Fehler beim Ersetzen"}));
}

TEST_F(FileName, ReplaceDir_NotFound_StillMarksThePathAsChanged) {
    CZrFileName file(Of(255).c_str(), nullptr, "dddd");
    EXPECT_STREQ(file.GetPath(), "");
    EXPECT_EQ(Reports(), Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
    EXPECT_FALSE(file.ReplaceDir("q", "x"));
    EXPECT_EQ(Reports(), Texts({"ReplaceDir() : Fehler beim Ersetzen"}));
    EXPECT_STREQ(file.GetPath(), "");
    EXPECT_EQ(Reports(), Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
}

TEST_F(FileName, ReplaceDir_InvalidTo_ReportsAndReplaces) {
    CZrFileName file("f", nullptr, "a\\b");
    EXPECT_FALSE(file.ReplaceDir("b", "C:\\x"));
    EXPECT_EQ(Reports(), Texts({"ReplaceDir(): Verzeichnis nicht g\xFCltig :|C:\\x"}));
    EXPECT_STREQ(file.GetDir(false), "a\\C:\\x\\");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR);
}

TEST_F(FileName, ReplaceDir_Limits) {
    // "dddd\" and 254 characters with their backslash fill the directory; one character more doesn't fit.
    CZrFileName file(nullptr, nullptr, "ddd\\b");
    EXPECT_TRUE(file.ReplaceDir("b", Of(254).c_str()));
    EXPECT_EQ(file.GetDir(false), "ddd\\" + Of(254) + "\\");
    file.SetDir("dddd\\b");
    EXPECT_FALSE(file.ReplaceDir("b", Of(254).c_str()));
    EXPECT_EQ(AllReports(), Texts({"str_repl : Buffer zu klein", "ReplaceDir() : Fehler beim Ersetzen"}));
    EXPECT_STREQ(file.GetDir(false), "dddd\\b\\");
    file.SetDir("b");
    EXPECT_TRUE(file.ReplaceDir("b", Of(255).c_str())) << "cut at 255, without a backslash at its end";
    EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error", "TerminateDir() : length error"}));
    EXPECT_EQ(file.GetDir(false), Of(255));
    for (const std::size_t count : {259U, 260U, 10000U}) {
        file.SetDir("b");
        EXPECT_FALSE(file.ReplaceDir("b", Of(count).c_str()));
        const Texts reports = AllReports();
        ASSERT_EQ(reports.size(), 3U);
        EXPECT_TRUE(reports[0].starts_with("ReplaceDir(): Verzeichnis nicht g\xFCltig :|" + Of(200)));
        EXPECT_EQ(file.GetDir(false), Of(255));
        EXPECT_TRUE(file.ReplaceDir(Of(count).c_str(), "")) << "the first 255 characters count";
        EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
        EXPECT_STREQ(file.GetDir(false), "");
    }
    file.AddDir(Of(255).c_str());
    EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
    EXPECT_FALSE(file.ReplaceDir(Of(10000).c_str(), (Of(10, 'z') + Of(10000, '/')).c_str()));
    const Texts reports = AllReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1], "TerminateDir() : length error");
    EXPECT_EQ(file.GetDir(false), Of(10, 'z') + "\\") << "the first 255 characters of both count";
}

TEST_F(FileName, FNToDir_NameBecomesLastDirectory) {
    CZrFileName file("a", "txt", "\\d", "C:");
    EXPECT_TRUE(file.FNToDir("b.doc"));
    EXPECT_STREQ(file.GetPath(), "C:\\d\\a.txt\\b.doc");
    EXPECT_TRUE(file.FNToDir("c"));
    EXPECT_STREQ(file.GetPath(), "C:\\d\\a.txt\\b.doc\\c.doc") << "the extension stays";
    CZrFileName nameless(nullptr, "x", "d");
    EXPECT_TRUE(nameless.FNToDir("n"));
    EXPECT_STREQ(nameless.GetPath(), "d\\n.x");
    EXPECT_FALSE(nameless.FNToDir("q?"));
    EXPECT_STREQ(nameless.GetPath(), "d\\n.x\\q?.x");
    EXPECT_TRUE(nameless.SetFileName("n", true));
    EXPECT_TRUE(nameless.FNToDir(nullptr));
    EXPECT_STREQ(nameless.GetPath(), "d\\n.x\\n.x\\");
}

TEST_F(FileName, FNToDir_StopsWhereTheNameIsNoDirectory) {
    CZrFileName file("a*", nullptr, "d");
    EXPECT_FALSE(file.FNToDir("b"));
    EXPECT_EQ(Reports(), Texts({"AddDir(): Verzeichnis nicht g\xFCltig :|a*"}));
    EXPECT_EQ(Parts(file), Texts({"a*", "", "d\\a*\\", ""}));
}

TEST_F(FileName, FNToDir_StopsWhereTheNameHasNoRoom) {
    CZrFileName file(Of(255).c_str(), "bcdef");
    EXPECT_STREQ(file.GetFileName(true), "") << "261 characters";
    EXPECT_FALSE(file.FNToDir("n"));
    const Texts reports = AllReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_TRUE(reports[0].starts_with("AddDir(): Verzeichnis nicht g\xFCltig :|" + Of(200)));
    EXPECT_EQ(reports[1], "AddDir(): Verzeichnis zu lang");
    EXPECT_EQ(Parts(file), Texts({Of(255), "bcdef", "", ""})) << "nothing is lost";
    CZrFileName longest(Of(255).c_str(), Of(255).c_str(), "d");
    EXPECT_FALSE(longest.FNToDir("n"));
    EXPECT_EQ(AllReports().size(), 2U);
    EXPECT_EQ(Parts(longest), Texts({Of(255), Of(255), "d\\", ""}));
}

TEST_F(FileName, FNToDir_Limits) {
    for (const std::size_t count : {255U, 256U, 767U, 768U, 769U, 10000U}) {
        CZrFileName file("a");
        EXPECT_EQ(file.FNToDir(Of(count, 'b').c_str()), count <= 255) << count;
        EXPECT_EQ(Parts(file), Texts({count <= 255 ? Of(count, 'b') : "", "", "a\\", ""}));
    }
    // The longest text that can be split comes through whole.
    CZrFileName file("a");
    EXPECT_TRUE(file.FNToDir(("C:" + Of(254) + "\\" + Of(255, 'b') + "." + Of(254, 'c')).c_str()));
    EXPECT_EQ(Parts(file), Texts({Of(255, 'b'), Of(254, 'c'), Of(254) + "\\", "C:"}));
}

// ---- Getters --------------------------------------------------------------------------------------------------------

TEST_F(FileName, GetFileName_FitsTo259) {
    CZrFileName file(Of(255).c_str());
    file.SetExt("bcd");
    EXPECT_EQ(file.GetFileName(true), Of(255) + ".bcd");
    file.SetExt("bc");
    EXPECT_EQ(file.GetFileName(true), Of(255) + ".bc");
    file.SetExt("bcde");
    EXPECT_STREQ(file.GetFileName(true), "");
    EXPECT_EQ(file.GetFileName(false), Of(255));
}

TEST_F(FileName, GetDir_WithDrive) {
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, "C:\\").GetDir(true), "C:\\");
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, nullptr, "C:").GetDir(true), "C:");
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, "x\\y").GetDir(true), "x\\y\\") << "no drive";
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, "C:\\a\\b").GetDir(true), "C:\\a\\b");
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, "x\\y", "C:").GetDir(true), "C:x\\y") << "only the path has a root";
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, "x", "C:").GetDir(true), "C:x\\") << "so short that it keeps it";
}

TEST_F(FileName, GetDir_WithDriveFitsTo259) {
    for (const std::size_t count : {251U, 252U, 253U}) {
        CZrFileName file(nullptr, nullptr, "\\ddd", "C:");
        EXPECT_TRUE(file.AddDir(Of(count).c_str()));
        EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
        EXPECT_EQ(file.GetDir(true), count <= 252 ? "C:\\ddd\\" + Of(count) : "") << count;
        EXPECT_EQ(AllReports(), count <= 252 ? Texts() : Texts({"Buffer zu klein"})) << "the join's own report";
    }
}

TEST_F(FileName, GetLastDir_WithoutSeparators) {
    CZrFileName file(nullptr, nullptr, "\\a\\b\\");
    EXPECT_STREQ(file.GetLastDir(), "b");
    file.SetDir("\\\\srv");
    EXPECT_STREQ(file.GetLastDir(), "srv");
    file.SetDir("a");
    EXPECT_STREQ(file.GetLastDir(), "a");
    file.SetDir("\\");
    EXPECT_STREQ(file.GetLastDir(), "");
    file.SetDir("\\\\");
    EXPECT_STREQ(file.GetLastDir(), "");
    file.SetDir("x/..");
    EXPECT_STREQ(file.GetLastDir(), "..");
}

TEST_F(FileName, GetPath_DriveAlwaysHasARoot) {
    EXPECT_STREQ(CZrFileName(nullptr, nullptr, nullptr, "C:").GetPath(), "C:\\");
    EXPECT_STREQ(CZrFileName("C:a.txt").GetPath(), "C:\\a.txt");
    EXPECT_STREQ(CZrFileName("a", nullptr, "x", "C:").GetPath(), "C:\\x\\a");
    EXPECT_STREQ(CZrFileName("a", nullptr, "\\", "C:").GetPath(), "C:\\a");
    EXPECT_STREQ(CZrFileName("ab:").GetPath(), "ab:\\") << "any colon counts";
    EXPECT_STREQ(CZrFileName("ab:c:d").GetPath(), "ab:\\c:d") << "but only the first";
    EXPECT_STREQ(CZrFileName("a", nullptr, nullptr, "7").GetPath(), "7:\\a");
    EXPECT_STREQ(CZrFileName(nullptr, "txt", nullptr, "C:").GetPath(), "C:\\");
    CZrFileName file("a");
    EXPECT_FALSE(file.AddDir("C:y"));
    EXPECT_EQ(Reports(), Texts({"AddDir(): Verzeichnis nicht g\xFCltig :|C:y"}));
    EXPECT_STREQ(file.GetPath(), "C:\\y\\a");
}

TEST_F(FileName, GetPath_OnlyExtension_ReportsOnce) {
    const CZrFileName file(nullptr, "txt");
    EXPECT_STREQ(file.GetPath(), "");
    EXPECT_EQ(Reports(), Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
    EXPECT_STREQ(file.GetPath(), "");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_PATH);
    EXPECT_EQ(Reports(), Texts()) << "the empty path is kept";
    EXPECT_EQ(CZrFileName(nullptr, "txt").GetError(), ZR_FILE_NAME_BAD_PATH);
    EXPECT_EQ(Reports(), Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
}

TEST_F(FileName, GetPath_PartsTogetherBelow260) {
    for (const std::size_t count : {252U, 253U, 254U}) {
        CZrFileName file(Of(count).c_str(), nullptr, "\\dd", "C:");
        EXPECT_EQ(file.GetPath(), count <= 253 ? "C:\\dd\\" + Of(count) : "") << count;
        EXPECT_EQ(Reports(), count <= 253 ? Texts() : Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
        EXPECT_EQ(file.GetError(), count <= 253 ? ZR_FILE_NAME_OK : ZR_FILE_NAME_BAD_PATH);
        EXPECT_TRUE(file.SetFileName("a", true)) << "a failure is not for ever";
        EXPECT_STREQ(file.GetPath(), "C:\\dd\\a");
    }
    CZrFileName longest(Of(255).c_str(), Of(255).c_str(), Of(254).c_str(), "C:");
    EXPECT_STREQ(longest.GetPath(), "");
    EXPECT_EQ(Reports(), Texts({"GetPath(): Kein g\xFCltiger Pfad"}));
}

TEST_F(FileName, GetPath_WithoutRoomForTheDot_Reports) {
    for (const std::size_t count : {251U, 252U}) {
        const CZrFileName file(Of(count).c_str(), "x", "\\dd", "C:");
        EXPECT_EQ(file.GetPath(), count == 251 ? "C:\\dd\\" + Of(count) + ".x" : "");
        EXPECT_EQ(Reports(), count == 251 ? Texts() : Texts({"GetPath(): Buffer zu klein"}));
    }
}

TEST_F(FileName, GetPath_WithoutRoomForTheDirectorysBackslash_Reports) {
    for (const std::size_t count : {252U, 253U, 254U}) {
        CZrFileName file(nullptr, nullptr, "dddd");
        EXPECT_TRUE(file.AddDir(Of(count).c_str()));
        EXPECT_EQ(Reports(), Texts({"TerminateDir() : length error"}));
        EXPECT_EQ(file.GetPath(), count < 254 ? "dddd\\" + Of(count) + "\\" : "") << count;
        EXPECT_EQ(Reports(), count < 254 ? Texts() : Texts({"GetPath(): Buffer zu klein"}));
    }
}

TEST_F(FileName, GetPath_WithoutRoomForTheRoot_Reports) {
    for (const std::size_t count : {252U, 253U, 254U}) {
        CZrFileName file(nullptr, nullptr, "ddd");
        EXPECT_FALSE(file.SetFileName((Of(count) + ":").c_str(), true));
        const bool room = 4 + count + 1 < 259;
        EXPECT_EQ(file.GetPath(), room ? "ddd\\" + Of(count) + ":\\" : "") << count;
        EXPECT_EQ(Reports(), room ? Texts() : Texts({"GetPath(): Buffer zu klein"}));
    }
    for (const std::size_t count : {253U, 254U, 255U}) {
        const CZrFileName file(Of(count).c_str(), "x", nullptr, "C:");
        const bool room = 2 + count + 2 < 259;
        EXPECT_EQ(file.GetPath(), room ? "C:\\" + Of(count) + ".x" : "") << count;
        EXPECT_EQ(AllReports(), room ? Texts() : Texts({"str_ins: Buffer zu klein", "GetPath(): Fehler bei str_ins"}));
    }
}

TEST_F(FileName, GetCompactPath_KeepsToTheWidth) {
    const CZrFileName file("C:\\folder\\subfolder\\deeper\\name.txt");
    const std::string path = file.GetPath();
    EXPECT_STREQ(file.GetCompactPath(0), "");
    EXPECT_STREQ(file.GetCompactPath(1), "");
    EXPECT_STREQ(file.GetCompactPath(2), ".");
    EXPECT_STREQ(file.GetCompactPath(20), "C:\\fold...\\name.txt");
    for (zr_ulong width = 1; width <= path.size(); ++width)
        EXPECT_LT(std::strlen(file.GetCompactPath(width)), width);
    EXPECT_STREQ(file.GetCompactPath(static_cast<zr_ulong>(path.size() + 1)),
                 "C:\\folder\\subfolder\\dee...\\name.txt");
    EXPECT_EQ(file.GetCompactPath(static_cast<zr_ulong>(path.size() + 2)), path) << "one more than would do";
}

TEST_F(FileName, GetCompactPath_IsThePlainFunctions) {
    std::size_t compared = 0;
    const GoldenTable table("win_compactpath.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        CZrFileName file;
        file.SetFileName(row.at("path").c_str(), true);
        if (file.GetPath() != row.at("path"))
            continue; // the value changes it: a drive without root, doubled separators, slashes
        EXPECT_EQ(file.GetCompactPath(static_cast<zr_ulong>(std::stoul(row.at("width")))), row.at("result"))
            << row.at("path") << " " << row.at("width");
        ++compared;
    }
    EXPECT_GT(compared, 300U);
    AllReports(); // paths of the table that are too long

    for (const std::string &path : {"C:\\" + Of(123) + "\\" + Of(130, '\xE4') + ".x", "\\\\srv\\" + Of(252), Of(255)}) {
        CZrFileName file;
        EXPECT_TRUE(file.SetFileName(path.c_str(), true));
        for (unsigned width = 0; width <= 300; ++width) {
            char out[300] = "";
            EXPECT_EQ(fio_CompactPath(out, path.c_str(), width, 0), 1);
            ASSERT_STREQ(file.GetCompactPath(width), out) << width;
        }
    }
}

TEST_F(FileName, GetCompactPath_WidthsAroundItsBuffer) {
    const CZrFileName file(Of(253).c_str(), nullptr, "\\dd", "C:");
    const std::string path = file.GetPath();
    ASSERT_EQ(path.size(), 259U);
    EXPECT_EQ(file.GetCompactPath(259), "C...\\" + Of(253));
    EXPECT_EQ(file.GetCompactPath(260), "C:...\\" + Of(253));
    for (const zr_ulong width : {261U, 262U, 300U, 100000U, UINT32_MAX})
        EXPECT_EQ(file.GetCompactPath(width), path) << width;
    EXPECT_EQ(file.GetPath(), path);
    EXPECT_STREQ(file.GetLastDir(), "dd") << "the neighbours are untouched";
    EXPECT_EQ(file.GetFileName(true), Of(253));
}

TEST_F(FileName, Results_StayUntilTheirOwnGetterIsCalledAgain) {
    CZrFileName file("C:\\x\\y\\a.txt");
    const char *path = file.GetPath();
    const char *compact = file.GetCompactPath(10);
    const char *full = file.GetFileName(true);
    const char *dir = file.GetDir(true);
    const char *last = file.GetLastDir();
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_TRUE(file.FNToDir("D:\\z\\b.c"));
    EXPECT_TRUE(file.ReplaceDir("z", "w"));
    EXPECT_TRUE(file.RemoveLastDir());
    EXPECT_STREQ(path, "C:\\x\\y\\a.txt");
    EXPECT_STREQ(compact, "...\\a.txt");
    EXPECT_STREQ(full, "a.txt");
    EXPECT_STREQ(dir, "C:\\x\\y");
    EXPECT_STREQ(last, "y");
}

// ---- An object's own texts ------------------------------------------------------------------------------------------

TEST_F(FileName, OwnTexts_MayBeGivenToItsSetters) {
    CZrFileName file("a.b", "txt", "\\d\\e", "C:");
    const std::string path = file.GetPath();
    EXPECT_TRUE(file.SetDir(file.GetDir(true)));
    EXPECT_EQ(file.GetPath(), path);
    EXPECT_TRUE(file.SetDir(file.GetDir(false)));
    EXPECT_EQ(file.GetPath(), path);
    EXPECT_TRUE(file.SetFileName(file.GetPath(), true));
    EXPECT_EQ(file.GetPath(), path);
    EXPECT_TRUE(file.SetDrive(file.GetDrive()));
    EXPECT_TRUE(file.SetExt(file.GetExt()));
    EXPECT_EQ(file.GetPath(), path);
    EXPECT_TRUE(file.SetExt(file.GetExt() + 1));
    EXPECT_STREQ(file.GetExt(), "xt");
    EXPECT_TRUE(file.SetExt(file.GetFileName(true)));
    EXPECT_STREQ(file.GetFileName(true), "a.b.a.b.xt");
    EXPECT_TRUE(file.SetFileName(file.GetFileName(false), true));
    EXPECT_EQ(Parts(file), Texts({"a", "b", "\\d\\e\\", "C:"}));
    EXPECT_TRUE(file.AddDir(file.GetDir(false)));
    EXPECT_STREQ(file.GetDir(false), "\\d\\e\\d\\e\\");
    EXPECT_TRUE(file.AddDir(file.GetDir(false) + 6));
    EXPECT_STREQ(file.GetDir(false), "\\d\\e\\d\\e\\e\\");
}

TEST_F(FileName, OwnTexts_MayBeGivenToTheChangesOfTheDirectory) {
    CZrFileName file("n", nullptr, "\\d\\e");
    EXPECT_TRUE(file.ReplaceDir(file.GetLastDir(), file.GetFileName(true)));
    EXPECT_STREQ(file.GetDir(false), "\\d\\n\\");
    EXPECT_TRUE(file.ReplaceDir(file.GetDir(false), file.GetDir(false)));
    EXPECT_STREQ(file.GetDir(false), "\\d\\n\\");
    EXPECT_TRUE(file.FNToDir(file.GetFileName(true)));
    EXPECT_STREQ(file.GetPath(), "\\d\\n\\n\\n");
    EXPECT_FALSE(file.FNToDir(file.GetDir(false))) << "a directory holds no name";
    EXPECT_EQ(Parts(file), Texts({"", "", "\\d\\n\\n\\", ""}));
}

// ---- Validity of texts ----------------------------------------------------------------------------------------------

TEST_F(FileName, FileNameValid_Texts) {
    for (const std::string &good : {std::string("a"), std::string("a b.txt"), std::string("."), std::string(" "),
                                    std::string("\xE4\x80\xFF"), Of(254), Of(255)})
        EXPECT_TRUE(CZrFileName::FileNameValid(good.c_str())) << good;
    for (const std::string &bad :
         {std::string(), std::string("a?"), std::string("*"), std::string("a\"b"), std::string("a/b"),
          std::string("a\\b"), std::string("a:"), std::string(";"), std::string("<"), std::string(">"),
          std::string("a@b"), std::string("|"), Of(256), Of(10000)})
        EXPECT_FALSE(CZrFileName::FileNameValid(bad.c_str())) << bad;
    EXPECT_FALSE(CZrFileName::FileNameValid(nullptr));
}

TEST_F(FileName, ExtValid_Texts) {
    for (const std::string &good : {std::string("txt"), std::string(".txt"), std::string("a.b"), std::string(".."),
                                    std::string("\xFC"), Of(255), "." + Of(254)})
        EXPECT_TRUE(CZrFileName::ExtValid(good.c_str())) << good;
    for (const std::string &bad :
         {std::string(), std::string("."), std::string("t?t"), std::string("a\\b"), Of(256), "." + Of(255), Of(10000)})
        EXPECT_FALSE(CZrFileName::ExtValid(bad.c_str())) << bad;
    EXPECT_FALSE(CZrFileName::ExtValid(nullptr));
}

TEST_F(FileName, DirValid_Texts) {
    for (const std::string &good :
         {std::string("..\\sub"), std::string("."), std::string("x"), std::string("\\"), std::string("//\\\\"),
          std::string("\\\\srv\\sh\\"), std::string("a\\\\b//c/"), std::string("a.b\\\xE4"), Of(255),
          Of(200) + "\\" + Of(57), Of(200) + "\\" + Of(58), Of(259, '/')})
        EXPECT_TRUE(CZrFileName::DirValid(good.c_str())) << good;
    for (const std::string &bad :
         {std::string(), std::string("C:\\x"), std::string("C:"), std::string("x."), std::string("a\\.b"),
          std::string("a\\ \\b"), std::string("..."), std::string("\tx"), std::string("x "), std::string("a*"),
          std::string("a\\b?"), Of(256), Of(200) + "\\" + Of(59), Of(260, '/'), Of(10000, '\\')})
        EXPECT_FALSE(CZrFileName::DirValid(bad.c_str())) << bad;
    EXPECT_FALSE(CZrFileName::DirValid(nullptr));
}

TEST_F(FileName, DriveValid_Texts) {
    for (const char *good : {"A:", "Z:", "a:", "z:"})
        EXPECT_TRUE(CZrFileName::DriveValid(good)) << good;
    for (const char *bad : {"", "C", "C:\\", "@:", "[:", "`:", "{:", "1:", "\xC4:", ":", "C;", "::", " C:"})
        EXPECT_FALSE(CZrFileName::DriveValid(bad)) << bad;
    EXPECT_FALSE(CZrFileName::DriveValid(nullptr));
    EXPECT_FALSE(CZrFileName::DriveValid(Of(10000).c_str()));
}

TEST_F(FileName, PathValid_Texts) {
    for (const std::string &good :
         {std::string("C:"), std::string("a"), std::string("a.txt"), std::string("C:\\x\\"), std::string("C:x/y.z"),
          std::string("\\\\srv\\sh\\f.t"), std::string("..\\a"), std::string("\\"), std::string("a.b.c"),
          std::string("\xE4\\\xF6.\xFC"), Of(255), "C:\\" + Of(255), "\\d\\" + Of(255), "C:\\d\\" + Of(254)})
        EXPECT_TRUE(CZrFileName::PathValid(good.c_str())) << good;
    for (const std::string &bad :
         {std::string(), std::string(".txt"), std::string("C:\\.txt"), std::string("1:\\a"), std::string("a*"),
          std::string("x.\\a"), std::string("a.t?t"), std::string("a."), std::string(".."), std::string("C:\\a:b"),
          Of(256), Of(259), "\\d\\" + Of(257), Of(260), "C:\\d\\" + Of(255), Of(10000)})
        EXPECT_FALSE(CZrFileName::PathValid(bad.c_str())) << bad;
    EXPECT_FALSE(CZrFileName::PathValid(nullptr));
}

TEST_F(FileName, GetError_TellsTheFirstFault) {
    CZrFileName file("n?", "e?", "d?", "1:");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_NAME);
    EXPECT_FALSE(file.FileNameValid() || file.ExtValid() || file.DirValid() || file.DriveValid() || file.PathValid());
    EXPECT_TRUE(file.SetFileName("n", true));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_EXT);
    EXPECT_TRUE(file.FileNameValid());
    EXPECT_FALSE(file.ExtValid() || file.DirValid() || file.DriveValid() || file.PathValid());
    EXPECT_TRUE(file.SetExt("e"));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR);
    EXPECT_TRUE(file.FileNameValid() && file.ExtValid());
    EXPECT_FALSE(file.DirValid() || file.DriveValid() || file.PathValid());
    EXPECT_TRUE(file.SetDir("d"));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DRIVE);
    EXPECT_TRUE(file.FileNameValid() && file.ExtValid() && file.DirValid());
    EXPECT_FALSE(file.DriveValid() || file.PathValid());
    EXPECT_TRUE(file.SetDrive("C:"));
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_TRUE(file.FileNameValid() && file.ExtValid() && file.DirValid() && file.DriveValid() && file.PathValid());
    EXPECT_EQ(0, ZR_FILE_NAME_OK);
    EXPECT_EQ(1, ZR_FILE_NAME_BAD_NAME);
    EXPECT_EQ(2, ZR_FILE_NAME_BAD_EXT);
    EXPECT_EQ(3, ZR_FILE_NAME_BAD_DIR);
    EXPECT_EQ(4, ZR_FILE_NAME_BAD_DRIVE);
    EXPECT_EQ(5, ZR_FILE_NAME_BAD_PATH);
}

// ---- On the disk ----------------------------------------------------------------------------------------------------

// Whether the file of this path has been there, which it is no more.
bool RemoveEmpty(const char *path) {
    char host[1024];
    if (zr_HostPath(path, host, sizeof host) != 1)
        return false;
    std::error_code error;
    return std::filesystem::file_size(host, error) == 0 && std::filesystem::remove(host, error);
}

TEST_F(FileName, Exist_LooksAtTheDisk) {
    const TempFolder folder;
    folder.Write("a.txt", "x");
    CZrFileName file;
    EXPECT_TRUE(file.SetFileName(folder.Path("a.txt").c_str(), true));
    EXPECT_TRUE(file.Exist());
    EXPECT_TRUE(file.SetExt("no"));
    EXPECT_FALSE(file.Exist());
    file.SetFileName("", true);
    EXPECT_TRUE(file.Exist()) << "the folder itself";
    EXPECT_TRUE(file.AddDir("no"));
    EXPECT_FALSE(file.Exist());
    EXPECT_TRUE(CZrFileName(folder.Folder().string().c_str()).Exist()) << "a folder by its name";
    EXPECT_FALSE(CZrFileName("b", nullptr, folder.Path("a.txt").c_str()).Exist()) << "nothing lies under a file";
    EXPECT_FALSE(CZrFileName("a", nullptr, "\\", "B:").Exist()) << "a drive that isn't there";
    EXPECT_FALSE(CZrFileName().Exist());
}

TEST_F(FileName, Exist_PartsWithoutRoomTogetherAreNowhere) {
    const TempFolder folder;
    folder.Write("a.txt", "x");
    const CurrentFolder current(folder.Folder());
    EXPECT_TRUE(CZrFileName("a.txt").Exist());
    CZrFileName file(Of(255).c_str(), "bcdef");
    EXPECT_TRUE(file.SetDir(folder.Folder().string().c_str()));
    EXPECT_FALSE(file.Exist()) << "not its folder";
    EXPECT_TRUE(file.SetFileName("a.txt", true));
    EXPECT_TRUE(file.Exist());
    CZrFileName deep("a.txt", nullptr, "\\ddd", "C:");
    EXPECT_TRUE(deep.AddDir(Of(253).c_str()));
    EXPECT_FALSE(deep.Exist()) << "not in the current folder";
    EXPECT_EQ(AllReports(), Texts({"TerminateDir() : length error", "Buffer zu klein"}));
}

TEST_F(FileName, TemporaryFileName_NamesAFileThatTheSystemMade) {
    CZrFileName file("a", "b", "c", "D:");
    EXPECT_STREQ(file.GetPath(), "D:\\c\\a.b");
    EXPECT_TRUE(file.SetTemporaryFileName());
    EXPECT_EQ(std::string(file.GetFileName(false)).substr(0, 3), "zr_");
    EXPECT_STREQ(file.GetExt(), "tmp");
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_TRUE(file.Exist());
    const CZrFileName other = CZrFileName::GetTemporaryFileName();
    EXPECT_EQ(other.GetError(), ZR_FILE_NAME_OK);
    EXPECT_TRUE(other.Exist());
    EXPECT_STREQ(other.GetDir(true), file.GetDir(true));
    EXPECT_STRNE(other.GetPath(), file.GetPath());
    EXPECT_TRUE(RemoveEmpty(file.GetPath()));
    EXPECT_TRUE(RemoveEmpty(other.GetPath()));
    EXPECT_FALSE(file.Exist());
}

TEST_F(FileName, TemporaryFileName_FailureChangesNothing) {
    zr::platform::services.temp_folder = [](char *, std::size_t) -> std::size_t { return 0; };
    CZrFileName file("a", "b", "c", "D:");
    EXPECT_FALSE(file.SetTemporaryFileName());
    EXPECT_EQ(AllReports(), Texts({"Failed GetTempPath call"}));
    EXPECT_STREQ(file.GetPath(), "D:\\c\\a.b");
    EXPECT_STREQ(CZrFileName::GetTemporaryFileName().GetPath(), "");
    EXPECT_EQ(AllReports(), Texts({"Failed GetTempPath call"}));
    zr::platform::services = zr::platform::Services();
}

} // namespace
