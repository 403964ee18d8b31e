// The file name value through plain functions: handles, results and reports.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/file_name.h>

#include "env/refused_memory.h"
#include "env/report_capture.h"

namespace {

using Texts = std::vector<std::string>;

class FileNameFunctions : public testing::Test {
protected:
    ~FileNameFunctions() override {
        zrFileFreeFileHandle(handle);
        EXPECT_EQ(capture.Take(), zr::test::Reports());
    }

    // The reports since they were last taken are this one error.
    void ExpectReport(const std::string &text) {
        EXPECT_EQ(capture.Take(), zr::test::Reports({zr::test::Error("ZrFileName", text)})) << text;
    }

    // For a call on a null handle.
    void ExpectHandleReport(const std::string &function) { ExpectReport(function + " : Handle falsch"); }

    zr::test::ReportCapture capture;
    zr_value handle = zrFileCreateFileHandle("a", "txt", "\\d", "C:");
};

TEST_F(FileNameFunctions, Create_TakesAllParts) {
    ASSERT_NE(handle, 0U);
    EXPECT_STREQ(zrFileGetPath(handle), "C:\\d\\a.txt");
    EXPECT_EQ(zrFileGetError(handle), ZR_FILE_NAME_OK);
    const zr_value empty = zrFileCreateFileHandle(nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(empty, 0U);
    EXPECT_STREQ(zrFileGetPath(empty), "");
    EXPECT_EQ(zrFileGetError(empty), ZR_FILE_NAME_BAD_PATH);
    zrFileFreeFileHandle(empty);
    const zr_value bad = zrFileCreateFileHandle("a?", nullptr, nullptr, nullptr);
    EXPECT_EQ(zrFileGetError(bad), ZR_FILE_NAME_BAD_NAME);
    zrFileFreeFileHandle(bad);
}

TEST_F(FileNameFunctions, Create_WithoutMemory_Reports) {
    zr_value refused = 1;
    {
        const zr::test::Refusal refusal(2000, 4000);
        refused = zrFileCreateFileHandle("a", nullptr, nullptr, nullptr);
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_EQ(refused, 0U);
    ExpectReport("zrFileCreateFileHandle: Fehler beim Erzeugen von File-Handle");
}

TEST_F(FileNameFunctions, Free_NullDoesNothing) {
    zrFileFreeFileHandle(0);
}

TEST_F(FileNameFunctions, Getters_GiveTheParts) {
    EXPECT_STREQ(zrFileGetFileName(handle, 0), "a");
    EXPECT_STREQ(zrFileGetFileName(handle, 1), "a.txt");
    EXPECT_STREQ(zrFileGetFileName(handle, 2), "a") << "only 1 asks for the extension";
    EXPECT_STREQ(zrFileGetFileName(handle, -1), "a");
    EXPECT_STREQ(zrFileGetExt(handle), "txt");
    EXPECT_STREQ(zrFileGetDir(handle, 0), "\\d\\");
    EXPECT_STREQ(zrFileGetDir(handle, 1), "C:\\d");
    EXPECT_STREQ(zrFileGetDir(handle, 2), "\\d\\") << "only 1 asks for the drive";
    EXPECT_STREQ(zrFileGetDir(handle, -1), "\\d\\");
    EXPECT_STREQ(zrFileGetDrive(handle), "C:");
    EXPECT_STREQ(zrFileGetCompactPath(handle, 260), "C:\\d\\a.txt");
    EXPECT_STREQ(zrFileGetCompactPath(handle, 0), "");
    EXPECT_STREQ(zrFileGetCompactPath(handle, 10), "...\\a.txt");
}

TEST_F(FileNameFunctions, SetFileName_SplitsTheExtension) {
    EXPECT_EQ(zrFileSetFileName(handle, "D:\\x\\b.c"), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "D:\\x\\b.c");
    EXPECT_STREQ(zrFileGetExt(handle), "c");
    EXPECT_EQ(zrFileSetFileName(handle, "b*"), 0);
    EXPECT_EQ(zrFileGetError(handle), ZR_FILE_NAME_BAD_NAME);
    EXPECT_EQ(zrFileSetFileName(handle, nullptr), 1);
    EXPECT_STREQ(zrFileGetFileName(handle, 1), "");
}

TEST_F(FileNameFunctions, Setters_AnswerOneOrZero) {
    EXPECT_EQ(zrFileSetExt(handle, ".b"), 1);
    EXPECT_EQ(zrFileSetDir(handle, "E:/x"), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "E:\\x\\a.b");
    EXPECT_EQ(zrFileSetDrive(handle, "f:"), 1);
    EXPECT_EQ(zrFileAddDir(handle, "y"), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "f:\\x\\y\\a.b");
    EXPECT_EQ(zrFileFNToDir(handle, "n"), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "f:\\x\\y\\a.b\\n.b");
    EXPECT_EQ(zrFileRemoveLastDir(handle), 1);
    EXPECT_EQ(zrFileReplaceDir(handle, "x", "z"), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "f:\\z\\y\\n.b");
    EXPECT_EQ(zrFileSetDrive(handle, "1:"), 0);
    EXPECT_EQ(zrFileGetError(handle), ZR_FILE_NAME_BAD_DRIVE);
    EXPECT_EQ(zrFileSetDir(handle, "x."), 0);
    EXPECT_EQ(zrFileGetError(handle), ZR_FILE_NAME_BAD_DIR);
    EXPECT_EQ(zrFileSetExt(handle, "b|"), 0);
    EXPECT_EQ(zrFileGetError(handle), ZR_FILE_NAME_BAD_EXT);
    EXPECT_EQ(zrFileSetDir(handle, ""), 1);
    EXPECT_EQ(zrFileRemoveLastDir(handle), 0);
}

TEST_F(FileNameFunctions, Setters_NullTextsClear) {
    EXPECT_EQ(zrFileSetExt(handle, nullptr), 1);
    EXPECT_EQ(zrFileSetDir(handle, nullptr), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "C:\\a");
    EXPECT_EQ(zrFileSetDrive(handle, nullptr), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "a");
    EXPECT_EQ(zrFileFNToDir(handle, nullptr), 1);
    EXPECT_EQ(zrFileAddDir(handle, ""), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "a\\");
    EXPECT_EQ(zrFileReplaceDir(handle, "a", nullptr), 1);
    EXPECT_STREQ(zrFileGetPath(handle), "");
}

TEST_F(FileNameFunctions, Setters_PassReportsOn) {
    EXPECT_EQ(zrFileAddDir(handle, nullptr), 0);
    ExpectReport("AddDir(): NULL-Pointer");
    EXPECT_EQ(zrFileReplaceDir(handle, nullptr, "x"), 0);
    ExpectReport("ReplaceDir(): Falscher Parameter");
    EXPECT_EQ(zrFileReplaceDir(handle, "q", "x"), 0);
    ExpectReport("ReplaceDir() : Fehler beim Ersetzen");
    EXPECT_EQ(zrFileSetFileName(handle, "d?"), 0);
    EXPECT_EQ(zrFileFNToDir(handle, "x"), 0);
    EXPECT_EQ(capture.Take(),
              zr::test::Reports({zr::test::Error("ZrFileName", "AddDir(): Verzeichnis nicht g\xFCltig :", "d?.txt")}));
}

TEST_F(FileNameFunctions, NullHandle_GettersReportAndGiveNull) {
    EXPECT_EQ(zrFileGetFileName(0, 1), nullptr);
    ExpectHandleReport("zrFileGetFileName");
    EXPECT_EQ(zrFileGetExt(0), nullptr);
    ExpectHandleReport("zrFileGetExt");
    EXPECT_EQ(zrFileGetDir(0, 1), nullptr);
    ExpectHandleReport("zrFileGetDir");
    EXPECT_EQ(zrFileGetDrive(0), nullptr);
    ExpectHandleReport("zrFileGetDrive");
    EXPECT_EQ(zrFileGetPath(0), nullptr);
    ExpectHandleReport("zrFileGetPath");
    EXPECT_EQ(zrFileGetCompactPath(0, 10), nullptr);
    ExpectHandleReport("zrFileGetCompactPath");
    EXPECT_EQ(zrFileGetError(0), 5);
    ExpectHandleReport("zrFileGetError");
}

TEST_F(FileNameFunctions, NullHandle_SettersReportAndGiveZero) {
    EXPECT_EQ(zrFileSetFileName(0, "a"), 0);
    ExpectHandleReport("zrFileSetFileName");
    EXPECT_EQ(zrFileSetExt(0, "a"), 0);
    ExpectHandleReport("zrFileSetExt");
    EXPECT_EQ(zrFileSetDir(0, "a"), 0);
    ExpectHandleReport("zrFileSetDir");
    EXPECT_EQ(zrFileAddDir(0, nullptr), 0);
    ExpectHandleReport("zrFileAddDir");
    EXPECT_EQ(zrFileRemoveLastDir(0), 0);
    ExpectHandleReport("zrFileRemoveLastDir");
    EXPECT_EQ(zrFileReplaceDir(0, nullptr, nullptr), 0);
    ExpectHandleReport("zrFileReplaceDir");
    EXPECT_EQ(zrFileSetDrive(0, "C:"), 0);
    ExpectHandleReport("zrFileSetDrive");
    EXPECT_EQ(zrFileFNToDir(0, "a"), 0);
    ExpectHandleReport("zrFileFNToDir");
}

TEST_F(FileNameFunctions, TextTests_AnswerOneOrZero) {
    EXPECT_EQ(zrFileNameValid("a"), 1);
    EXPECT_EQ(zrFileNameValid("a?"), 0);
    EXPECT_EQ(zrFileExtValid(".txt"), 1);
    EXPECT_EQ(zrFileExtValid("."), 0);
    EXPECT_EQ(zrFileDirValid("..\\sub"), 1);
    EXPECT_EQ(zrFileDirValid("C:\\x"), 0);
    EXPECT_EQ(zrFileDriveValid("C:"), 1);
    EXPECT_EQ(zrFileDriveValid("C:\\"), 0);
    EXPECT_EQ(zrFilePathValid("C:"), 1);
    EXPECT_EQ(zrFilePathValid(".txt"), 0);
    const auto tests = {zrFileNameValid, zrFileExtValid, zrFileDirValid, zrFileDriveValid, zrFilePathValid};
    for (const auto test : tests) {
        EXPECT_EQ(test(nullptr), 0);
        EXPECT_EQ(test(""), 0);
        EXPECT_EQ(test(std::string(10000, 'a').c_str()), 0);
    }
}

} // namespace
