// Path variables, full paths and portable forms; the members of the file name value that stand on them.
#include <zrclb/installation.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/file_name.hpp>

#include "env/refused_memory.h"
#include "settings/installation_fixture.h"

namespace {

class PortablePaths : public InstallationFixture {
protected:
    static constexpr const char *out_of_handles = "zrFileCreateFileHandle: Fehler beim Erzeugen von File-Handle";

    // Whether the text begins with a path variable, and which.
    static std::string Variable(const char *path, unsigned size = 80) {
        return Out([&](char *out) { return zr_FindPathVar(path, out, size); });
    }

    // A folder with this many characters, elements of 10 ("C:\aaaaaaaa\aaaaaaaaa\...").
    static std::string FolderOfLength(std::size_t length) {
        std::string path = "C:";
        while (path.size() < length)
            path += path.size() % 10 == 2 ? '\\' : 'a';
        if (path.back() == '\\')
            path.back() = 'a';
        return path;
    }

    // The path without its drive and the root: what is the same wherever the test runs.
    static std::string BelowRoot(const std::string &path) { return path.substr(3); }
};

TEST_F(PortablePaths, Variable_IsFoundInFrontOnly) {
    for (const std::string name : {"INSTALLDIR", "PROJDIR", "PROJDOCDIR", "INSTALLDIR_PROJEKTE", "APPDATA",
                                   "LOCAL_APPDATA", "COMMON_APPDATA", "COMMON_DIR", "USER_DIR"}) {
        const std::string text = "$" + name + "$";
        EXPECT_EQ(Variable((text + "\\x").c_str()), Hit(text, 1));
        EXPECT_EQ(Variable(text.c_str()), Hit(text, 1));
        EXPECT_EQ(Variable((text + text).c_str()), Hit(text, 1));
        EXPECT_EQ(Variable(("\\" + text).c_str()), Hit("untouched", 0));
        EXPECT_EQ(Variable(("$" + name).c_str()), Hit("untouched", 0));
        EXPECT_EQ(Variable((name + "$").c_str()), Hit("untouched", 0));
    }
    EXPECT_EQ(Variable("$installdir$\\x"), Hit("untouched", 0));
    EXPECT_EQ(Variable("$InstallDir$"), Hit("untouched", 0));
    EXPECT_EQ(Variable("$OTHER$\\x"), Hit("untouched", 0));
    EXPECT_EQ(Variable("$$"), Hit("untouched", 0));
    EXPECT_EQ(Variable(""), Hit("untouched", 0));
    EXPECT_EQ(Variable(nullptr), Hit("untouched", 0));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, Variable_IsCutToTheRoom) {
    EXPECT_EQ(Variable("$PROJDIR$\\x", 10), Hit("$PROJDIR$", 1));
    EXPECT_EQ(Variable("$PROJDIR$\\x", 9), Hit("$PROJDIR", 1));
    EXPECT_EQ(Variable("$PROJDIR$\\x", 2), Hit("$", 1));
    EXPECT_EQ(Variable("$PROJDIR$\\x", 1), Hit("", 1));
    EXPECT_EQ(Variable("$PROJDIR$\\x", 0), Hit("untouched", 1));
    EXPECT_EQ(Variable("x", 1), Hit("untouched", 0));
    EXPECT_EQ(zr_FindPathVar("$PROJDIR$", nullptr, 80), 1);
    EXPECT_EQ(zr_FindPathVar("x", nullptr, 80), 0);
}

TEST_F(PortablePaths, FullPath_ReplacesEachVariable) {
    Write("zr\\zr.zrini", "[System]\nCOMMON_DIR=common\nUSER_DIR=" + Path("user") +
                              "\n[Zr Tekbau Tek+]\nInstallDirProjekte=" + Path("projects") + "\n");
    zr_SetProjDir(Path("proj").c_str());
    zr_SetProjDocFolder("doc");
    EXPECT_EQ(FullPath("$INSTALLDIR$\\x"), Hit(Path("zr\\x"), 1));
    EXPECT_EQ(FullPath("$PROJDIR$\\x"), Hit(Path("proj\\x"), 1));
    EXPECT_EQ(FullPath("$PROJDOCDIR$\\x"), Hit(Path("proj\\doc\\x"), 1));
    EXPECT_EQ(FullPath("$INSTALLDIR_PROJEKTE$\\x"), Hit(Path("projects\\x"), 1));
    EXPECT_EQ(FullPath("$APPDATA$\\x"), Hit(Path("data26\\Zr Works\\Zr Bench\\2013\\x"), 1));
    EXPECT_EQ(FullPath("$LOCAL_APPDATA$\\x"), Hit(Path("data28\\Zr Works\\Zr Bench\\2013\\x"), 1));
    EXPECT_EQ(FullPath("$COMMON_APPDATA$\\x"), Hit(Path("data35\\Zr Works\\Zr Bench\\2013\\x"), 1));
    EXPECT_EQ(FullPath("$COMMON_DIR$\\x"), Hit(Path("zr\\common\\x"), 1));
    EXPECT_EQ(FullPath("$USER_DIR$\\x"), Hit(Path("user\\x"), 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, FoldersOfTheSettingsFile_AreElseTheInstallRoot) {
    Write("zr\\zr.zrini", "[System]\nCOMMON_DIR=\n");
    EXPECT_EQ(FullPath("$COMMON_DIR$\\x"), Hit(Path("zr\\x"), 1)); // an empty value is none
    EXPECT_EQ(FullPath("$USER_DIR$\\x"), Hit(Path("zr\\x"), 1));
    Write("zr\\zr.zrini", "[System]\nCOMMON_DIR=common\nUSER_DIR=user\n");
    EXPECT_EQ(FullPath("$COMMON_DIR$\\x"), Hit(Path("zr\\x"), 1)); // kept
    EXPECT_EQ(FullPath("$USER_DIR$\\x"), Hit(Path("zr\\x"), 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, FoldersWithoutASettingsFile_AreTheInstallRootAfterReports) {
    EXPECT_EQ(FullPath("$COMMON_DIR$\\x"), Hit(Path("zr\\x"), 1));
    EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found}));
    EXPECT_EQ(FullPath("$COMMON_DIR$\\x"), Hit(Path("zr\\x"), 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, VariablesThatNameEachOtherInARing_ComeToAnEnd) {
    Write("zr\\zr.zrini", "[System]\nCOMMON_DIR=$USER_DIR$\\a\nUSER_DIR=$COMMON_DIR$\\b\n");
    // Asked for again on the way, the first one is empty: "\a" lies under the settings file's folder.
    EXPECT_EQ(FullPath("$USER_DIR$\\x"), Hit(Path("zr\\a\\b\\x"), 1));
    EXPECT_EQ(FullPath("$COMMON_DIR$\\x"), Hit(Path("zr\\a\\x"), 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, VariableThatNamesItself_ComesToAnEnd) {
    Write("zr\\zr.zrini", "[System]\nUSER_DIR=$USER_DIR$\n"
                          "[Zr Tekbau Tek+]\nInstallDirProjekte=$INSTALLDIR_PROJEKTE$\\y\n");
    EXPECT_EQ(FullPath("$USER_DIR$\\x"), Hit(Path("zr\\x"), 1));
    // This one is no path but a text, which is not expanded.
    EXPECT_EQ(FullPath("$INSTALLDIR_PROJEKTE$\\x", "Q:\\b"), Hit("Q:\\b\\$INSTALLDIR_PROJEKTE$\\y\\x", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, SettingsFileThatIsNamedByItsOwnContents_IsStillFound) {
    Write("zr\\zr.zrini", "[System]\nUSER_DIR=" + Path("user") + "\n");
    Write("user\\zr.zrini");
    s_registry["zr.ini"] = "$USER_DIR$";
    // While the search works there is no settings file: the folder is the install root.
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\zr.zrini")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, FullPath_ReplacesOneVariableInFront) {
    zr_SetProjDir(Path("proj").c_str());
    EXPECT_EQ(FullPath("$INSTALLDIR$"), Hit(Path("zr"), 1));
    EXPECT_EQ(FullPath("$INSTALLDIR$x"), Hit(Path("zrx"), 1));
    EXPECT_EQ(FullPath("$INSTALLDIR$\\$PROJDIR$"), Hit(Path("zr\\$PROJDIR$"), 1));
    EXPECT_EQ(FullPath("$INSTALLDIR$\\$INSTALLDIR$"), Hit(Path("zr\\$INSTALLDIR$"), 1));
    EXPECT_EQ(FullPath("a\\$PROJDIR$", "Q:\\b"), Hit("Q:\\b\\a\\$PROJDIR$", 1));
    EXPECT_EQ(FullPath("$projdir$\\a", "Q:\\b"), Hit("Q:\\b\\$projdir$\\a", 1));
    zr_SetProjDir("$INSTALLDIR$\\p");
    EXPECT_EQ(FullPath("$PROJDIR$\\a", "Q:\\b"), Hit("Q:\\b\\$INSTALLDIR$\\p\\a", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, VariableOfNothing_IsRemoved) {
    EXPECT_EQ(FullPath("$PROJDIR$\\x", "Q:\\b"), Hit("Q:\\b\\x", 1));
    EXPECT_EQ(FullPath("$PROJDIR$", "Q:\\b"), Hit("", 1));
    EXPECT_EQ(FullPath("$PROJDOCDIR$", "Q:\\b"), Hit("", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, FullPath_TakesItsBaseWithoutADrive) {
    EXPECT_EQ(FullPath("x", "C:\\a"), Hit("C:\\a\\x", 1));
    EXPECT_EQ(FullPath("..\\x", "C:\\a\\b"), Hit("C:\\a\\x", 1));
    EXPECT_EQ(FullPath("\\x", "C:\\a"), Hit("C:\\a\\x", 1));
    EXPECT_EQ(FullPath("C:\\x", "C:\\a"), Hit("C:\\x", 1));
    EXPECT_EQ(FullPath("Q:\\x\\.\\y\\..\\z/u", "C:\\a"), Hit("Q:\\x\\z\\u", 1));
    EXPECT_EQ(FullPath("\\\\server\\share\\x", "C:\\a"), Hit("\\\\server\\share\\x", 1));
    EXPECT_EQ(FullPath("$INSTALLDIR$\\..\\x", "Q:\\a"), Hit(Path("x"), 1));
    EXPECT_EQ(FullPath("", "C:\\a"), Hit("", 1));
    EXPECT_EQ(FullPath(""), Hit("", 1));
    EXPECT_EQ(FullPath("   "), Hit("   ", 1)); // has no full path
    EXPECT_EQ(FullPath("Q:", "C:\\a"), Hit("Q:\\", 1));
    EXPECT_EQ(FullPath("Q:x", "C:\\a"), Hit("Q:\\x", 1));
    EXPECT_EQ(FullPath("Q:x"), Hit("Q:\\x", 1)); // a drive that isn't there has no current folder but its root
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, FullPath_WithoutBaseStartsInTheCurrentFolder) {
    const CurrentFolder here(m_folder.Folder());
    EXPECT_EQ(FullPath("x\\y"), Hit(Path("x\\y"), 1));
    EXPECT_EQ(FullPath(".\\x\\..\\y"), Hit(Path("y"), 1));
    EXPECT_EQ(FullPath("x", ""), Hit(Path("x"), 1));
    EXPECT_EQ(FullPath("x", "rel"), Hit(Path("rel\\x"), 1));
    EXPECT_EQ(FullPath("x", "$INSTALLDIR$"), Hit(Path("$INSTALLDIR$\\x"), 1)); // variables of the base are not replaced
}

TEST_F(PortablePaths, FullPath_OfNothingFails) {
    char out[260] = "untouched";
    EXPECT_EQ(zr_BuildFullPath(nullptr, "C:\\a", out), 0);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(zr_BuildFullPath("x", "C:\\a", nullptr), 0);
    EXPECT_EQ(zr_BuildFullPath(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, FullPath_MayBeWrittenOverItsArguments) {
    char text[260] = "$INSTALLDIR$\\x";
    EXPECT_EQ(zr_BuildFullPath(text, nullptr, text), 1);
    EXPECT_EQ(text, Path("zr\\x"));
    std::strcpy(text, "C:\\a\\b");
    EXPECT_EQ(zr_BuildFullPath("..\\x", text, text), 1);
    EXPECT_STREQ(text, "C:\\a\\x");
}

TEST_F(PortablePaths, FullPath_HasAtMost259Characters) {
    for (const std::size_t length : {258U, 259U}) {
        const std::string path = FolderOfLength(length);
        EXPECT_EQ(FullPath(path), Hit(path, 1));
    }
    for (const std::size_t length : {260U, 261U, 5000U})
        EXPECT_EQ(FullPath(FolderOfLength(length)), Hit(FolderOfLength(length).substr(0, 259), 1));
    EXPECT_EQ(Reports(), Texts{});
    // What has no full path stays as it is.
    const CurrentFolder here(m_folder.Folder());
    const std::string relative = BelowRoot(FolderOfLength(259));
    EXPECT_EQ(FullPath(relative), Hit(relative, 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, BaseWithoutRoom_IsReportedAndLeftOut) {
    const CurrentFolder here(m_folder.Folder());
    const std::string base = FolderOfLength(200);
    const std::string fits(58, 'x'); // 200 + separator + 58 = 259
    EXPECT_EQ(FullPath(fits, base.c_str()), Hit(base + "\\" + fits, 1));
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_EQ(FullPath(fits + "x", base.c_str()), Hit(Path(fits + "x"), 1));
    EXPECT_EQ(Reports(), Texts{"Buffer zu klein"});
}

TEST_F(PortablePaths, VariableWithoutRoom_IsReportedAndStays) {
    zr_SetProjDir(FolderOfLength(250).c_str());
    const std::string rest = "\\bcdefghi"; // 250 + 9 = 259
    EXPECT_EQ(FullPath("$PROJDIR$" + rest), Hit(FolderOfLength(250) + rest, 1));
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_EQ(FullPath("$PROJDIR$" + rest + "j", "Q:\\b"), Hit("Q:\\b\\$PROJDIR$" + rest + "j", 1));
    EXPECT_EQ(Reports(), Texts{"str_repl : Buffer zu klein"});
    zr_SetProjDir(FolderOfLength(260).c_str());
    EXPECT_EQ(FullPath("$PROJDIR$", "Q:\\b"), Hit("Q:\\b\\$PROJDIR$", 1));
    EXPECT_EQ(Reports(), Texts{"str_repl : Buffer zu klein"});
}

TEST_F(PortablePaths, VariableOfANullGetter_Stays) {
    zr_SetProjDir("C:\\p");
    {
        const zr::test::Refusal refusal(sizeof(CZrFileName), sizeof(CZrFileName));
        EXPECT_EQ(FullPath("$PROJDOCDIR$\\x", "Q:\\b"), Hit("Q:\\b\\$PROJDOCDIR$\\x", 1));
    }
    EXPECT_EQ(Reports(), Texts{out_of_handles});
}

TEST_F(PortablePaths, DocumentFolder_LiesInTheProjectFolder) {
    EXPECT_EQ(FullPath("$PROJDOCDIR$"), Hit("", 1));
    zr_SetProjDir("C:\\proj\\one");
    EXPECT_EQ(FullPath("$PROJDOCDIR$\\x"), Hit("C:\\proj\\one\\x", 1));
    zr_SetProjDocFolder("Doc\\Sub");
    zr_SetProjDocFolder(nullptr);
    EXPECT_EQ(FullPath("$PROJDOCDIR$\\x"), Hit("C:\\proj\\one\\Doc\\Sub\\x", 1));
    zr_SetProjDir("C:\\proj.two\\"); // built each time
    EXPECT_EQ(FullPath("$PROJDOCDIR$\\x"), Hit("C:\\proj.two\\Doc\\Sub\\x", 1));
    zr_SetProjDir("C:\\proj.two"); // a name with an extension counts as a folder too
    EXPECT_EQ(FullPath("$PROJDOCDIR$\\x"), Hit("C:\\proj.two\\Doc\\Sub\\x", 1));
    zr_SetProjDocFolder("");
    EXPECT_EQ(FullPath("$PROJDOCDIR$\\x"), Hit("C:\\proj.two\\x", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, DocumentFolder_HasAtMost256Characters) {
    zr_SetProjDir("C:\\");
    const std::string folder = BelowRoot(FolderOfLength(255)); // of 252
    zr_SetProjDocFolder(folder.c_str());
    EXPECT_EQ(FullPath("$PROJDOCDIR$"), Hit("C:\\" + folder + "\\", 1));
    EXPECT_EQ(Reports(), Texts{});
    for (const std::size_t length : {256U, 257U, 1000U}) {
        zr_SetProjDocFolder(std::string(length, 'x').c_str());
        EXPECT_STREQ(zr::settings::installation.proj_doc_folder, std::string(256, 'x').c_str());
    }
    zr_SetProjDocFolder(std::string(255, 'x').c_str());
    EXPECT_STREQ(zr::settings::installation.proj_doc_folder, std::string(255, 'x').c_str());
    zr_SetProjDocFolder(std::string(256, 'x').c_str());
    EXPECT_EQ(FullPath("$PROJDOCDIR$"), Hit("", 1)); // no folder of that length
    EXPECT_EQ(Reports(), (Texts{"AddDir(): Verzeichnis nicht g\xFCltig :|" + std::string(256, 'x'),
                                "TerminateDir() : length error", "GetPath(): Buffer zu klein"}));
}

TEST_F(PortablePaths, Relative_IsSeenFromAPlainFolder) {
    EXPECT_EQ(Relative("C:\\a\\b\\c.txt", "C:\\a"), Hit(".\\b\\c.txt", 1));
    EXPECT_EQ(Relative("C:\\a\\c.txt", "C:\\a\\"), Hit(".\\c.txt", 1));
    EXPECT_EQ(Relative("C:\\a\\c.txt", "C:\\a\\b\\d"), Hit("..\\..\\c.txt", 1));
    EXPECT_EQ(Relative("C:\\a\\c.txt", "C:\\a\\b\\d", 0), Hit("..\\..\\c.txt", 1)); // up counts for variables only
    EXPECT_EQ(Relative("C:\\a\\c.txt", "C:\\"), Hit(".\\a\\c.txt", 1));
    EXPECT_EQ(Relative("C:\\a\\b\\", "C:\\a"), Hit(".\\b\\", 1));
    EXPECT_EQ(Relative("C:\\x\\..\\a\\c.txt", "C:\\a\\y\\.."), Hit(".\\c.txt", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, Relative_OnAnotherDriveIsTheAbsolutePath) {
    EXPECT_EQ(Relative("Q:\\a\\..\\b.txt", "C:\\a"), Hit("Q:\\b.txt", 0));
    EXPECT_EQ(Relative("Q:\\a\\..\\b.txt", "$INSTALLDIR$"), Hit("Q:\\b.txt", 0));
    EXPECT_EQ(Relative("\\\\server\\share\\x", "C:\\a"), Hit("\\\\server\\share\\x", 0));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, Relative_StandsBehindTheVariableOfItsBase) {
    zr_SetProjDir("C:\\proj");
    EXPECT_EQ(Relative(Path("zr\\bin\\a.dll"), "$INSTALLDIR$"), Hit("$INSTALLDIR$\\bin\\a.dll", 1));
    EXPECT_EQ(Relative(Path("zr\\a"), "$INSTALLDIR$"), Hit("$INSTALLDIR$\\a", 1));
    EXPECT_EQ(Relative("$INSTALLDIR$\\x\\..\\a", "$INSTALLDIR$"), Hit("$INSTALLDIR$\\a", 1));
    EXPECT_EQ(Relative("C:\\a", "$PROJDIR$"), Hit("$PROJDIR$\\..\\a", 1));
    EXPECT_EQ(Relative("C:\\proj\\x\\a", "$PROJDIR$\\x"),
              Hit("$PROJDIR$\\a", 1)); // what follows the variable is left out
    EXPECT_EQ(Out([&](char *out) { return zr_BuildRelativePath("C:\\a", "$PROJDIR$", out); }),
              Hit("$PROJDIR$\\..\\a", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, Relative_OfTheFolderItselfEndsInASeparator) {
    zr_SetProjDir("C:\\proj");
    EXPECT_EQ(Relative("C:\\proj\\", "$PROJDIR$"), Hit("$PROJDIR$\\", 1));
    EXPECT_EQ(Relative("C:\\proj", "$PROJDIR$"), Hit("$PROJDIR$\\..\\proj", 1)); // a name
    EXPECT_EQ(FullPath("$PROJDIR$\\..\\proj"), Hit("C:\\proj", 1));
}

TEST_F(PortablePaths, Relative_FromAVariableOfNothingStartsInTheCurrentFolder) {
    const CurrentFolder here(m_folder.Folder());
    EXPECT_EQ(Relative(Path("x\\y"), "$PROJDIR$"), Hit("$PROJDIR$\\x\\y", 1));
    EXPECT_EQ(Relative("x\\y", Path("").c_str()), Hit(".\\x\\y", 1)); // so does a path without a drive
}

TEST_F(PortablePaths, Relative_MayNotGoUpUnlessAllowed) {
    zr_SetProjDir("C:\\proj");
    zr_SetProjDocFolder("doc");
    EXPECT_EQ(Relative("C:\\a\\..\\b", "$PROJDIR$", 0), Hit("C:\\a\\..\\b", 0)); // the path itself, as it was given
    EXPECT_EQ(Relative("C:\\proj\\a", "$PROJDIR$", 0), Hit("$PROJDIR$\\a", 1));
    EXPECT_EQ(Relative("C:\\", "$PROJDIR$", 0), Hit("$PROJDIR$\\..", 1)); // ".." is no way up with nothing behind it
    EXPECT_EQ(Relative("C:\\", "$PROJDIR$\\a", 0), Hit("C:\\", 0));
    EXPECT_EQ(Relative("C:\\projx\\a", "$PROJDIR$", 0), Hit("C:\\projx\\a", 0));
    const auto build = [&](int (*function)(const char *, char *), const std::string &path) {
        return Out([&](char *out) { return function(path.c_str(), out); });
    };
    EXPECT_EQ(build(zr_BuildInstallDirPath, Path("zr\\x")), Hit("$INSTALLDIR$\\x", 1));
    EXPECT_EQ(build(zr_BuildInstallDirPath, Path("x")), Hit(Path("x"), 0));
    EXPECT_EQ(build(zr_BuildProjDirPath, "C:\\proj\\x"), Hit("$PROJDIR$\\x", 1));
    EXPECT_EQ(build(zr_BuildProjDirPath, "C:\\x"), Hit("C:\\x", 0));
    EXPECT_EQ(build(zr_BuildProjDocDirPath, "C:\\proj\\doc\\x"), Hit("$PROJDOCDIR$\\x", 1));
    EXPECT_EQ(build(zr_BuildProjDocDirPath, "C:\\proj\\x"), Hit("C:\\proj\\x", 0));
    for (const auto function : {zr_BuildInstallDirPath, zr_BuildProjDirPath, zr_BuildProjDocDirPath}) {
        char out[260] = "before";
        EXPECT_EQ(function("C:\\x", nullptr), 0);
        EXPECT_EQ(function(nullptr, out), 0);
        EXPECT_STREQ(out, "");
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, RelativeOfNothing_Fails) {
    char out[260] = "before";
    EXPECT_EQ(zr_BuildRelativePathEx(nullptr, "C:\\a", out, 1), 0);
    EXPECT_STREQ(out, "");
    std::strcpy(out, "before");
    EXPECT_EQ(zr_BuildRelativePathEx("", "C:\\a", out, 1), 0);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(zr_BuildRelativePathEx("C:\\a", "C:\\a", nullptr, 1), 0);
    EXPECT_EQ(zr_BuildRelativePath("C:\\a", "C:\\a", nullptr), 0);
    EXPECT_EQ(Reports(), Texts{});
}

class PortablePathsOfNoBase : public PortablePaths {
protected:
    void SetUp() override {
        PortablePaths::SetUp();
        Write("zr\\zr.zrini", "[System]\nCOMMON_DIR=" + Path("common") + "\nUSER_DIR=" + Path("common\\user") +
                                  "\n[Zr Tekbau Tek+]\nInstallDirProjekte=" + Path("zr\\projects") + "\n");
        zr_SetProjDir(Path("zr\\projects\\p").c_str());
        zr_SetProjDocFolder("doc");
    }
};

TEST_F(PortablePathsOfNoBase, VariableWithTheFewestFoldersIsTaken) {
    for (const char *base : {"", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(Relative(Path("zr\\x"), base, 0), Hit("$INSTALLDIR$\\x", 1));
        EXPECT_EQ(Relative(Path("zr\\projects\\x"), base, 0), Hit("$INSTALLDIR_PROJEKTE$\\x", 1));
        EXPECT_EQ(Relative(Path("zr\\projects\\p\\x"), base, 0), Hit("$PROJDIR$\\x", 1));
        EXPECT_EQ(Relative(Path("zr\\projects\\p\\doc\\x"), base, 0), Hit("$PROJDOCDIR$\\x", 1));
        EXPECT_EQ(Relative(Path("common\\x"), base, 0), Hit("$COMMON_DIR$\\x", 1));
        EXPECT_EQ(Relative(Path("common\\user\\x\\y"), base, 0), Hit("$USER_DIR$\\x\\y", 1));
        EXPECT_EQ(Relative(Path("data26\\Zr Works\\Zr Bench\\2013\\x"), base, 0), Hit("$APPDATA$\\x", 1));
        EXPECT_EQ(Relative(Path("data28\\Zr Works\\Zr Bench\\2013\\x"), base, 0), Hit("$LOCAL_APPDATA$\\x", 1));
        EXPECT_EQ(Relative(Path("data35\\Zr Works\\Zr Bench\\2013\\x"), base, 0), Hit("$COMMON_APPDATA$\\x", 1));
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePathsOfNoBase, EarlierVariableWinsATie) {
    zr_SetProjDir(Path("zr").c_str());
    EXPECT_EQ(Relative(Path("zr\\a\\x"), nullptr, 0), Hit("$INSTALLDIR$\\a\\x", 1));
    zr_SetProjDir(Path("zr\\projects").c_str());
    EXPECT_EQ(Relative(Path("zr\\projects\\x"), nullptr, 0), Hit("$PROJDIR$\\x", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePathsOfNoBase, PathOutsideOfAllIsThePathItself) {
    EXPECT_EQ(Relative(Path("x"), nullptr, 0), Hit(Path("x"), 0));
    EXPECT_EQ(Relative(Path("y\\..\\x"), nullptr, 0), Hit(Path("y\\..\\x"), 0));
    EXPECT_EQ(Relative("Q:\\y\\..\\x", nullptr, 1), Hit("Q:\\x", 0)); // on another drive its absolute form
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePathsOfNoBase, ShortestWayMayGoUpIfAllowed) {
    EXPECT_EQ(Relative(Path("x"), nullptr, 1), Hit("$INSTALLDIR$\\..\\x", 1)); // before $COMMON_DIR$\..\x
    EXPECT_EQ(Relative(Path("zr\\projects\\p\\x"), nullptr, 1), Hit("$PROJDIR$\\x", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePathsOfNoBase, PathItselfGivesWayToAVariableWithAsManyFolders) {
    zr_SetProjDir("C:\\");
    EXPECT_EQ(Relative("C:\\a.txt", nullptr, 0), Hit("$PROJDIR$\\a.txt", 1));
    // "$PROJDIR$\b" are two folders, "\b" is one.
    EXPECT_EQ(Relative("C:\\b\\a.txt", nullptr, 0), Hit("C:\\b\\a.txt", 1));
}

TEST_F(PortablePathsOfNoBase, PathWithFewerFoldersThanItsFormsStays) {
    zr_SetProjDir("Q:\\p"); // no way leads from there: the absolute path comes into play
    const std::string drive = Path("").substr(0, 2);
    EXPECT_EQ(Relative(drive + "\\a.txt", nullptr, 1), Hit(drive + "\\a.txt", 1));
}

TEST_F(PortablePathsOfNoBase, UnknownFoldersArePassedOver) {
    zr_SetProjDir("");
    zr_SetProjDocFolder("");
    s_data.clear();
    EXPECT_EQ(Relative(Path("zr\\projects\\p\\x"), nullptr, 0), Hit("$INSTALLDIR_PROJEKTE$\\p\\x", 1));
    EXPECT_EQ(Reports(), (Texts{"SHGetFolderPath failed", "SHGetFolderPath failed", "SHGetFolderPath failed"}));
}

TEST_F(PortablePathsOfNoBase, MissingMemoryLeavesAGoodPathOrThePathItself) {
    const std::string path = Path("zr\\projects\\p\\doc\\x");
    const std::string good = Hit("$PROJDOCDIR$\\x", 1);
    ASSERT_EQ(Relative(path, nullptr, 0), good); // folders are known from here on
    bool met = true;
    for (int refused = 0; met; ++refused) {
        ASSERT_LT(refused, 1000);
        std::string answer(300, '\0');
        {
            const zr::test::NthAllocation refusal(refused);
            char out[260];
            const int result = zr_BuildRelativePathEx(path.c_str(), nullptr, out, 0);
            met = refusal.Met();
            std::memcpy(answer.data(), out, std::strlen(out));
            answer.resize(std::strlen(out));
            EXPECT_TRUE(met || result == 1);
        }
        // Whatever was found expands to the path, or is the path.
        EXPECT_EQ(FullPath(answer), Hit(path, 1)) << answer << " with allocation " << refused;
        const Texts reports = Reports();
        EXPECT_EQ(reports, met ? Texts{out_of_handles} : Texts{});
    }
}

// Two handles to compare with, one to look with: without one of them the run changes nothing, or is the last.
TEST_F(PortablePaths, FormThatCannotBeComparedChangesNothing) {
    Write("zr\\zr.zrini");
    zr_SetProjDir(Path("zr\\p").c_str());
    zr_SetProjDocFolder("doc");
    const std::string path = Path("zr\\p\\x");
    ASSERT_EQ(Relative(path, nullptr, 0), Hit("$PROJDIR$\\x", 1));
    const std::string answers[] = {Hit(path, 0), Hit("$INSTALLDIR$\\p\\x", 0), Hit("$INSTALLDIR$\\p\\x", 1),
                                   Hit("$INSTALLDIR$\\p\\x", 1)};
    for (int refused = 0; refused < 4; ++refused) {
        char out[260];
        int result;
        {
            const zr::test::NthAllocation refusal(refused);
            result = zr_BuildRelativePathEx(path.c_str(), nullptr, out, 0);
        }
        EXPECT_EQ(Hit(out, result), answers[refused]) << refused;
        EXPECT_EQ(Reports(), Texts{out_of_handles});
    }
}

TEST_F(PortablePaths, FormsHaveAtMost259Characters) {
    // "$PROJDIR$" and the rest behind "C:\p".
    zr_SetProjDir("C:\\p");
    const std::string fits = "C:\\p\\" + BelowRoot(FolderOfLength(252)); // 9 + 1 + 249 = 259 characters
    EXPECT_EQ(Relative(fits, "$PROJDIR$"), Hit("$PROJDIR$" + fits.substr(4), 1));
    EXPECT_EQ(Reports(), Texts{});
    const std::string too_long = fits + "b";
    EXPECT_EQ(Relative(too_long, "$PROJDIR$"), Hit(too_long, 0));
    EXPECT_EQ(Reports(), Texts{"str_ins: Buffer zu klein"});
    EXPECT_EQ(FullPath("$PROJDIR$" + fits.substr(4)), Hit(fits, 1));
}

TEST_F(PortablePaths, OverlongPathHasNoForm) {
    for (const std::size_t length : {260U, 261U}) {
        EXPECT_EQ(Relative(FolderOfLength(length), "C:\\a"), Hit("", 0));
        EXPECT_EQ(Reports(), Texts{"GetPath(): Kein g\xFCltiger Pfad"});
    }
    EXPECT_EQ(Relative(FolderOfLength(5000), "C:\\a"), Hit("", 0));
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_EQ(Relative("C:\\a\\b", FolderOfLength(300).c_str()).substr(0, 6), "1<..\\."); // of a base 259 count
}

TEST_F(PortablePaths, AbsolutePathOfAFileName_GoesThroughItsVariable) {
    const CurrentFolder here(m_folder.Folder());
    EXPECT_STREQ(CZrFileName("C:\\a\\..\\b\\c.txt").GetAbsolutePath(nullptr), "C:\\b\\c.txt");
    EXPECT_EQ(CZrFileName("$INSTALLDIR$\\x.txt").GetAbsolutePath(nullptr), Path("zr\\x.txt"));
    EXPECT_EQ(CZrFileName("x.txt").GetAbsolutePath(nullptr), Path("x.txt"));
    EXPECT_STREQ(CZrFileName("").GetAbsolutePath(nullptr), "");
    EXPECT_STREQ(CZrFileName("C:").GetAbsolutePath(nullptr), "C:\\");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, AbsolutePathOfAFileName_BorrowsTheProjectFolder) {
    const CZrFileName file("$PROJDIR$\\x.txt");
    zr_SetProjDir("C:\\one");
    EXPECT_STREQ(file.GetAbsolutePath("C:\\two"), "C:\\two\\x.txt");
    EXPECT_STREQ(zr_GetProjDir(), "C:\\one");
    EXPECT_STREQ(file.GetAbsolutePath(nullptr), "C:\\one\\x.txt");
    EXPECT_STREQ(file.GetAbsolutePath(zr_GetProjDir()), "C:\\one\\x.txt");
    EXPECT_STREQ(file.GetAbsolutePath(file.GetAbsolutePath("C:\\three")), "C:\\three\\x.txt\\x.txt"); // its own result
    EXPECT_STREQ(zr_GetProjDir(), "C:\\one");
    file.GetAbsolutePath(FolderOfLength(300).c_str());
    EXPECT_STREQ(zr_GetProjDir(), "C:\\one");
}

TEST_F(PortablePaths, RelativePathOfAFileName_IsSeenFromAFolderOrAFile) {
    const CurrentFolder here(m_folder.Folder());
    const CZrFileName file("C:\\a\\b\\c.txt");
    EXPECT_STREQ(file.GetRelativePath("C:\\a", 16), ".\\b\\c.txt");
    EXPECT_STREQ(file.GetRelativePath("C:\\a", 128), ".\\a\\b\\c.txt"); // a file in the root
    EXPECT_STREQ(file.GetRelativePath("C:\\a\\x.txt", 128), ".\\b\\c.txt");
    EXPECT_STREQ(file.GetRelativePath("C:\\a\\.\\d\\..", 16), ".\\b\\c.txt");
    EXPECT_STREQ(file.GetRelativePath("C:\\", 16), ".\\a\\b\\c.txt"); // the service answers "\a\b\c.txt" here
    EXPECT_STREQ(file.GetRelativePath("Q:\\a", 16), "");
    EXPECT_EQ(CZrFileName(Path("x\\y").c_str()).GetRelativePath("x", 16), std::string(".\\y"));
    EXPECT_STREQ(CZrFileName("x\\y").GetRelativePath(nullptr, 16), ".\\x\\y");
    EXPECT_STREQ(CZrFileName("x\\y").GetRelativePath("", 16), ".\\x\\y");
    EXPECT_STREQ(CZrFileName("C:\\a\\b\\").GetRelativePath("C:\\a", 16), ".\\b\\"); // a folder
    EXPECT_STREQ(CZrFileName("C:\\a\\b\\").GetRelativePath("C:\\a\\b\\", 16), ".");
    EXPECT_STREQ(CZrFileName("$INSTALLDIR$\\y").GetRelativePath(Path("zr\\bin").c_str(), 16), "..\\y");
    EXPECT_STREQ(file.GetRelativePath(file.GetAbsolutePath(nullptr), 128), ".\\c.txt"); // its own result
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, RelativePathOfAFileName_TakesTwoKindsOnly) {
    const CZrFileName file("C:\\a\\b");
    for (const int kind : {0, 1, 15, 17, 127, 129, 144, -1}) {
        EXPECT_STREQ(file.GetRelativePath("C:\\a", kind), "");
        EXPECT_EQ(m_reports.Take(),
                  zr::test::Reports{zr::test::Error("ZrFileName", "GetRelativePath : Falscher Parameter")});
    }
    const std::string over_long = FolderOfLength(300);
    EXPECT_STREQ(file.GetRelativePath(over_long.c_str(), 16), "");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(PortablePaths, HandlesOfFileNames_ReachTheMembers) {
    const zr_value handle = zrFileCreateFileHandle("C:\\a\\.\\b", nullptr, nullptr, nullptr);
    EXPECT_STREQ(zrFileGetAbsolutePath(handle), "C:\\a\\b");
    EXPECT_STREQ(zrFileGetRelativePath(handle, "C:\\a", 16), ".\\b");
    EXPECT_STREQ(zrFileGetRelativePath(handle, "C:\\a", 5), "");
    EXPECT_EQ(Reports(), Texts{"GetRelativePath : Falscher Parameter"});
    zrFileFreeFileHandle(handle);
    EXPECT_EQ(zrFileGetAbsolutePath(0), nullptr);
    EXPECT_EQ(zrFileGetRelativePath(0, "C:\\a", 16), nullptr);
    EXPECT_EQ(m_reports.Take(),
              (zr::test::Reports{zr::test::Error("ZrFileName", "zrFileGetAbsolutePath : Handle falsch"),
                                 zr::test::Error("ZrFileName", "zrFileGetRelativePath : Handle falsch")}));
}

TEST_F(PortablePaths, DirectoryOfAFileName_ComesFromSettings) {
    Write("zr\\zr.zrini", "[P]\nDir=sub\\\nBad=a*b\\\n");
    Write("other.ini", "[P]\nDir=deep\\er\n");
    CZrFileName file("C:\\a\\b.txt");
    EXPECT_TRUE(file.SetDirFromConfig("P", "Dir"));
    EXPECT_EQ(file.GetPath(), Path("zr\\sub\\b.txt"));
    EXPECT_TRUE(file.SetDirFromConfig(Path("other.ini").c_str(), "P", "Dir"));
    EXPECT_EQ(file.GetPath(), Path("deep\\er\\b.txt"));
    EXPECT_TRUE(file.SetDirFromConfig(nullptr, "P", "Dir"));
    EXPECT_EQ(file.GetPath(), Path("zr\\sub\\b.txt"));
    EXPECT_TRUE(file.SetDirFromConfig("System", "Exe"));
    EXPECT_EQ(file.GetPath(), Path("zr\\bin\\b.txt"));
    EXPECT_FALSE(file.SetDirFromConfig("P", "None"));
    EXPECT_FALSE(file.SetDirFromConfig("None", "Dir"));
    EXPECT_FALSE(file.SetDirFromConfig(Path("none.ini").c_str(), "P", "Dir"));
    EXPECT_EQ(file.GetPath(), Path("zr\\bin\\b.txt"));
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_FALSE(file.SetDirFromConfig("P", "Bad")); // SetDir stores what it refuses
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_BAD_DIR);
}

TEST_F(PortablePaths, FileName_ComesFromSettingsAndAName) {
    Write("zr\\zr.zrini", "[P]\nDir=sub\n");
    CZrFileName file("C:\\a\\b.txt");
    EXPECT_TRUE(file.SetFileNameFromConfig("P", "Dir", "c.doc"));
    EXPECT_EQ(file.GetPath(), Path("zr\\sub\\c.doc"));
    EXPECT_FALSE(file.SetFileNameFromConfig("P", "None", "d.doc"));
    EXPECT_EQ(file.GetPath(), Path("zr\\sub\\c.doc"));
    EXPECT_TRUE(file.SetFileNameFromConfig("P", "Dir", "e")); // an extension that it lacks stays
    EXPECT_EQ(file.GetPath(), Path("zr\\sub\\e.doc"));
    EXPECT_EQ(Reports(), Texts{});
}

} // namespace
