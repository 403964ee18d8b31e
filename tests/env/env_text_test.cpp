// Reading and writing as operations of the environment: order of steps, reports, files, what stays after a failure.
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "env/text_support.h"
#include "platform/files.h"

namespace text_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(eEnvReadWrapped == 0 && eEnvReadNotWrapped == 1 && eEnvReadAuto == 2);
static_assert(std::is_same_v<EEnvReadMode, Zr::EEnvReadMode> && Zr::eEnvReadAuto == eEnvReadAuto);

class EnvText : public TextTest {
protected:
    ReportCapture reports;
    const Tree tree = {Section("A", {Data("x", "1")})};

    void SetUp() override { ASSERT_EQ(env->ReadString("[A]\nx=1\n", eEnvReadAuto), Zr::ENV_OK); }
    void TearDown() override { zr::platform::services = {}; }
    void ExpectPlace(zr_long line, zr_long column) {
        zr_long gotLine = 0, gotColumn = 0;
        EXPECT_EQ(env->GetErrorPosition(gotLine, gotColumn), Zr::ENV_OK);
        EXPECT_EQ(gotLine, line);
        EXPECT_EQ(gotColumn, column);
    }
};

TEST_F(EnvText, ReadingReplacesWhatWasThere) {
    EXPECT_EQ(env->ReadString("[B]\n", eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("B", {})});
    EXPECT_EQ(ReadAsFile("[C]\n"), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("C", {})});
    EXPECT_THAT(reports.Take(), IsEmpty());
}

TEST_F(EnvText, NullTextIsReportedAndChangesNothing) {
    EXPECT_EQ(env->ReadFile(nullptr, eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(env->ReadString(nullptr, eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "NULL-Pointer"), Error(Tag, "NULL-Pointer")));
    EXPECT_EQ(TreeOf(*env), tree);
}

TEST_F(EnvText, ReadingIntoASubenvironmentIsRefused) {
    Zr::CZrEnv *sub = env->OpenSubenv("A", nullptr, true);
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->ReadString("[B]", eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(sub->ReadFile(Path("none").c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(sub->ReadFile(nullptr, eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(sub->ReadString(nullptr, eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_THAT(reports.Take(), ElementsAre(Message(Tag, "can not read subenv"), Message(Tag, "can not read subenv"),
                                            Error(Tag, "NULL-Pointer"), Error(Tag, "NULL-Pointer")));
    EXPECT_EQ(TreeOf(*env), tree);
    EXPECT_EQ(sub->GetFileMTime(), Zr::ENV_ERROR);
    Zr::CZrEnv::DestroyEnv(sub, false);
}

// Opens a private operation to the test: an explicit instantiation may name it.
void StoreFileMTime(Zr::CZrEnv &target, zr_long time);
template <auto Operation>
struct PrivateOperation {
    friend void StoreFileMTime(Zr::CZrEnv &target, zr_long time) { (target.*Operation)(time); }
};
template struct PrivateOperation<&Zr::CZrEnv::SetFileMTime>;

TEST_F(EnvText, TimeOfASubenvironmentIsNotStored) {
    StoreFileMTime(*env, 77);
    Zr::CZrEnv *sub = env->OpenSubenv("A", nullptr, true);
    ASSERT_NE(sub, nullptr);
    StoreFileMTime(*sub, 88);
    EXPECT_THAT(reports.Take(), ElementsAre(Message(Tag, "Try to call 'env_core_set_mtime' for subenv")));
    EXPECT_EQ(sub->GetFileMTime(), Zr::ENV_ERROR);
    Zr::CZrEnv::DestroyEnv(sub, false);
    EXPECT_EQ(env->GetFileMTime(), 77);
}

TEST_F(EnvText, WritingASubenvironmentGivesNoSections) {
    Zr::CZrEnv *sub = env->OpenSubenv("A", nullptr, true);
    ASSERT_NE(sub, nullptr);
    EXPECT_TRUE(sub->WriteFile(Path("s.env").c_str(), false));
    EXPECT_EQ(ReadBytes(Path("s.env")), "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n");
    char *text = sub->WriteString(true);
    EXPECT_STREQ(text, "");
    Zr::CZrEnv::FreeString(text);
    EXPECT_THAT(reports.Take(),
                ElementsAre(Message(Tag, "can not write subenv"), Message(Tag, "can not write subenv")));
    EXPECT_EQ(TreeOf(*env), tree);
    Zr::CZrEnv::DestroyEnv(sub, false);
}

TEST_F(EnvText, FileThatCannotBeOpenedEmptiesTheEnvironment) {
    EXPECT_EQ(env->ReadFile(Path("missing").c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Can't open to read:", Path("missing"))));
    EXPECT_EQ(TreeOf(*env), Tree());
    ExpectPlace(1, 1);
}

TEST_F(EnvText, FolderAndEmptyPathAreNoFiles) {
    EXPECT_EQ(env->ReadFile(folder.string().c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(env->ReadFile("", eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_THAT(reports.Take(),
                ElementsAre(Error(Tag, "Can't open to read:", folder.string()), Error(Tag, "Can't open to read:", "")));
    EXPECT_FALSE(env->WriteFile(folder.string().c_str(), true));
    EXPECT_FALSE(env->WriteFile("", true));
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Can't open to write:", folder.string()),
                                            Error(Tag, "Can't open to write:", "")));
}

TEST_F(EnvText, OverlongPathIsReportedWhole) {
    const std::string path = Path(std::string(400, 'p'));
    EXPECT_EQ(env->ReadFile(path.c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_FALSE(env->WriteFile(path.c_str(), false));
    EXPECT_THAT(reports.Take(),
                ElementsAre(Error(Tag, "Can't open to read:", path), Error(Tag, "Can't open to write:", path)));
}

std::string streamPath; // what the replaced open_text opens in place of a path of many letters p

std::FILE *OpenStreamPath(const char *path, const char *mode) {
    return zr::platform::backend::OpenText(*path == 'p' ? streamPath.c_str() : path, mode);
}

TEST_F(EnvText, FileNameInReportsIsCut) {
    streamPath = Path("a.env");
    WriteBytes(streamPath, "[A]\n}");
    zr::platform::services.open_text = OpenStreamPath;
    EXPECT_EQ(env->ReadFile(std::string(300, 'p').c_str(), eEnvReadAuto), Zr::ENV_BAD_FORMAT);
    zr::platform::services = {};
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Section expected", std::string(259, 'p'))));
}

std::FILE *OpenNoEnv(const char *path, const char *mode) {
    return std::string(path).ends_with("a.env") ? nullptr : zr::platform::backend::OpenText(path, mode);
}

TEST_F(EnvText, UnreadableFileEmptiesAndUnwritableFileDoesNot) {
    WriteBytes(Path("a.env"), "[B]");
    zr::platform::services.open_text = OpenNoEnv;
    EXPECT_FALSE(env->WriteFile(Path("a.env").c_str(), true));
    EXPECT_EQ(TreeOf(*env), tree);
    EXPECT_EQ(env->ReadFile(Path("a.env").c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(TreeOf(*env), Tree());
    zr::platform::services = {};
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Can't open to write:", Path("a.env")),
                                            Error(Tag, "Can't open to read:", Path("a.env"))));
}

std::FILE *OpenToRead(const char *path, const char *) {
    return zr::platform::backend::OpenText(path, "rt");
}

TEST_F(EnvText, WritingThatFailsOnTheWayIsTrue) {
    WriteBytes(Path("a.env"), "old");
    ASSERT_EQ(env->SetString("A", "x", std::string(200000, 'v').c_str()), Zr::ENV_OK);
    reports.Take();
    zr::platform::services.open_text = OpenToRead;
    EXPECT_TRUE(env->WriteFile(Path("a.env").c_str(), true));
    zr::platform::services = {};
    EXPECT_THAT(reports.Take(), IsEmpty());
    EXPECT_EQ(ReadBytes(Path("a.env")), "old");
}

TEST_F(EnvText, PathMayLieInTheTreeThatIsReplaced) {
    WriteBytes(Path("a.env"), "[B]");
    ASSERT_EQ(env->SetString("A", "path", Path("a.env").c_str()), Zr::ENV_OK);
    EXPECT_EQ(env->ReadFile(env->GetString("A", "path"), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("B", {})});
}

TEST_F(EnvText, NullPathIsNotWritten) {
    EXPECT_FALSE(env->WriteFile(nullptr, true));
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Can't open to write:", "")));
}

TEST_F(EnvText, FailedReadKeepsTheSectionsBeforeTheFault) {
    EXPECT_EQ(ReadAsFile("[B]\n[C]\ny=2\n[D]\nz={\n"), Zr::ENV_BAD_FORMAT);
    EXPECT_EQ(TreeOf(*env), (Tree{Section("B", {}), Section("C", {Data("y", "2")})}));
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Cbracesymbol expected", Path("a.env")),
                                            Error(Tag, "Fehler beim Lesen der Sektion:", "D", Path("a.env"))));
    ExpectPlace(6, 1);
    EXPECT_EQ(env->GetFileMTime(), -1);
}

TEST_F(EnvText, ReadingAgainClearsThePlace) {
    EXPECT_EQ(env->ReadString("[A]\n}", eEnvReadAuto), Zr::ENV_BAD_FORMAT);
    ExpectPlace(2, 1);
    EXPECT_EQ(ReadAsFile("[A]\n"), Zr::ENV_OK);
    zr_long line = 7, column = 8;
    EXPECT_EQ(env->GetErrorPosition(line, column), Zr::ENV_NOT_FOUND);
    EXPECT_EQ(line, 7);
    EXPECT_EQ(column, 8);
}

TEST_F(EnvText, PlaceInAFileCountsItsLinesBeyondABlock) {
    std::string text = "__ZR_ENV_READ_MODE__\r\n[A]\r\n";
    for (int i = 0; i < 50000; ++i)
        text += "x =" + std::to_string(i) + "\r\n";
    EXPECT_EQ(ReadAsFile(text + "  }"), Zr::ENV_BAD_FORMAT);
    ExpectPlace(50003, 3);
    EXPECT_EQ(ReadAsFile(text + "abc"), Zr::ENV_BAD_FORMAT);
    ExpectPlace(50003, 4);
    EXPECT_EQ(ReadAsFile("[A]\n" + std::string(70000, 'n')), Zr::ENV_BAD_FORMAT);
    ExpectPlace(2, 70001);
}

bool status(const char *, zr::platform::FileStatus &out) {
    out = {};
    out.modified = 0x1234567890;
    return true;
}
bool noStatus(const char *, zr::platform::FileStatus &) {
    return false;
}

TEST_F(EnvText, ModificationTimeIsThatOfTheFile) {
    EXPECT_EQ(env->GetFileMTime(), -1) << "a string has none";
    zr::platform::FileStatus found;
    EXPECT_EQ(ReadAsFile("[A]"), Zr::ENV_OK);
    ASSERT_TRUE(zr::platform::GetFileStatus(Path("a.env").c_str(), found));
    EXPECT_EQ(env->GetFileMTime(), static_cast<zr_long>(found.modified));
    zr::platform::services.file_status = status;
    EXPECT_EQ(ReadAsFile("[A]"), Zr::ENV_OK);
    EXPECT_EQ(env->GetFileMTime(), 0x34567890) << "the low 32 bits";
    EXPECT_TRUE(env->WriteFile(Path("b.env").c_str(), true));
    EXPECT_EQ(env->ReadString("[A]", eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(env->GetFileMTime(), 0x34567890);
}

TEST_F(EnvText, FailedReadKeepsTheRecordedTime) {
    StoreFileMTime(*env, 77);
    zr::platform::services.file_status = status;
    EXPECT_EQ(ReadAsFile("[B]\n}"), Zr::ENV_BAD_FORMAT);
    EXPECT_EQ(env->GetFileMTime(), 77);
    EXPECT_EQ(env->ReadFile(Path("missing").c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(env->GetFileMTime(), 77);
    EXPECT_EQ(env->ReadString("[B]\n}", eEnvReadAuto), Zr::ENV_BAD_FORMAT);
    EXPECT_EQ(env->GetFileMTime(), 77);
}

TEST_F(EnvText, MissingModificationTimeIsReportedAndNoFailure) {
    StoreFileMTime(*env, 77);
    zr::platform::services.file_status = noStatus;
    EXPECT_EQ(ReadAsFile("[B]"), Zr::ENV_OK);
    EXPECT_EQ(env->GetFileMTime(), 77);
    EXPECT_EQ(TreeOf(*env), Tree{Section("B", {})});
    EXPECT_THAT(reports.Take(), ElementsAre(Message(Tag, "_stat failed")));
    EXPECT_EQ(ReadAsFile("[B]\n}"), Zr::ENV_BAD_FORMAT);
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Section expected", Path("a.env"))));
}

TEST_F(EnvText, FileKeepsItsModeThroughACycle) {
    const Tree odd = {
        Section("A", {Data("path", "C:\\a\\b\\\\c"), Data("long", std::string(500, 'v')), Data("two", "1\n2")})};
    for (const bool wrap : {false, true}) {
        env->DeleteEnvironmentSections();
        env->SetString("A", "path", "C:\\a\\b\\\\c");
        env->SetString("A", "long", std::string(500, 'v').c_str());
        env->SetString("A", "two", "1\n2");
        const std::string first = WrittenAsFile(wrap);
        EXPECT_EQ(env->ReadFile(Path("w.env").c_str(), eEnvReadAuto), Zr::ENV_OK);
        EXPECT_EQ(TreeOf(*env), odd);
        EXPECT_EQ(WrittenAsFile(wrap), first);
        EXPECT_EQ(Written(wrap), first);
    }
}

TEST_F(EnvText, CommentsAreLostByACycle) {
    ASSERT_EQ(ReadAsFile("front\r\n;c\r\n[A]\r\n;d\r\nx=1\r\n"), Zr::ENV_OK);
    EXPECT_EQ(Written(true), "[A]\r\n  x =1\r\n");
}

TEST_F(EnvText, FileIsReplacedNotAppended) {
    WriteBytes(Path("w.env"), std::string(1000, 'x'));
    EXPECT_EQ(WrittenAsFile(true), "[A]\r\n  x =1\r\n");
}

TEST_F(EnvText, FreeStringTakesNull) {
    Zr::CZrEnv::FreeString(nullptr);
}

TEST_F(EnvText, SectionNameHoldsAnythingButABracket) {
    EXPECT_FALSE(Zr::CZrEnv::CheckSectionName(nullptr));
    EXPECT_FALSE(Zr::CZrEnv::CheckSectionName("a]b"));
    EXPECT_TRUE(Zr::CZrEnv::CheckSectionName(""));
    EXPECT_TRUE(Zr::CZrEnv::CheckSectionName("a[b=@"));
}

} // namespace
} // namespace text_test
