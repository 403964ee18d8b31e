// The installation: settings file, folders, search.
#include <zrclb/installation.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <zrclb/file_name.hpp>
#include <zrclb/str.h>

#include "env/refused_memory.h"
#include "frame/log_hook.h"
#include "registry_values.h"
#include "settings/installation_fixture.h"
#include "settings/suite_registry.h"

namespace {

using Installation = InstallationFixture;

TEST_F(Installation, RegistryValueCountsIfItFitsAndIsNotEmpty) {
    char out[zr::settings::registry_value_size];
    EXPECT_EQ(zr::settings::read_suite_registry_value("a", out), 0);
    s_registry["a"] = "";
    EXPECT_EQ(zr::settings::read_suite_registry_value("a", out), 0);
    s_registry["a"] = "x";
    EXPECT_EQ(zr::settings::read_suite_registry_value("a", out), 1);
    EXPECT_STREQ(out, "x");
    s_registry["a"] = std::string(255, 'x');
    EXPECT_EQ(zr::settings::read_suite_registry_value("a", out), 1);
    s_registry["a"] = std::string(256, 'x');
    EXPECT_EQ(zr::settings::read_suite_registry_value("a", out), 0);
}

TEST_F(Installation, SettingsFileOfTheRegistryComesFirst) {
    Write("reg\\zr.zrini");
    Write("zr\\zr.zrini");
    Write("zr\\bin\\zr.zrini");
    s_registry["zr.ini"] = Path("x\\..\\reg");
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("reg\\zr.zrini")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, FolderOfTheRegistryMayBeginWithAPathVariable) {
    Write("zr\\etc\\zr.zrini");
    s_registry["zr.ini"] = "$INSTALLDIR$\\etc";
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\etc\\zr.zrini")));
}

// As installers like to write it.
TEST_F(Installation, FoldersOfTheRegistryMayEndInASeparator) {
    Write("zr2\\etc\\zr.zrini", "[P]\nRel=a\n");
    Write("zr2\\one\\file.txt");
    s_registry["zr.ini"] = Path("zr2\\etc\\");
    s_registry["InstallDir"] = Path("zr2\\");
    s_registry["file.txt"] = "$INSTALLDIR$\\one\\";
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr2\\etc\\zr.zrini")));
    EXPECT_EQ(SearchPath("P", "Rel"), Hit(Path("zr2\\etc\\a")));
    EXPECT_EQ(zr_GetInstallDir(), Path("zr2\\"));
    EXPECT_EQ(zr_GetBinExt32Dir(), Path("zr2\\binExt"));
    EXPECT_EQ(SearchFile("S", "e", "file.txt"), Hit(Path("zr2\\one\\file.txt")));
    EXPECT_EQ(FullPath("$INSTALLDIR$\\x"), Hit(Path("zr2\\x"), 1));
    EXPECT_EQ(Relative(Path("zr2\\x"), "$INSTALLDIR$"), Hit("$INSTALLDIR$\\x", 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, RelativeFoldersOfTheRegistryStartInTheCurrentOne) {
    const CurrentFolder here(m_folder.Folder());
    Write("reg\\zr.zrini");
    Write("one\\file.txt");
    s_registry["zr.ini"] = "reg";
    s_registry["file.txt"] = "one";
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("reg\\zr.zrini")));
    EXPECT_EQ(SearchFile("S", "e", "file.txt"), Hit(Path("one\\file.txt")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, SettingsFileInTheInstallRootComesSecond) {
    Write("zr\\zr.zrini");
    Write("zr\\bin\\zr.zrini");
    s_registry["zr.ini"] = Path("nowhere");
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\zr.zrini")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, SettingsFileBesideTheLibraryComesThird) {
    Write("zr\\bin\\zr.zrini");
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\bin\\zr.zrini")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, SettingsFileIsKeptOnceFoundAndSearchedAgainUntilThen) {
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit("", -1));
    EXPECT_EQ(m_reports.Take(),
              (zr::test::Reports{zr::test::Error("Zr", not_found), zr::test::Error("Zr", not_found)}));
    EXPECT_EQ(SearchPath("System", "Exe"), Hit("untouched", -1));
    EXPECT_EQ(m_reports.Take(), zr::test::Reports(3, zr::test::Error("Zr", not_found)));
    Write("zr\\zr.zrini");
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\zr.zrini")));
    std::filesystem::remove(m_folder.Folder() / "zr/zr.zrini");
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit(Path("zr\\zr.zrini")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, FolderThatIsNotKnownIsNotTheCurrentOne) {
    Write("zr.zrini");
    const CurrentFolder here(m_folder.Folder());
    s_module.clear();
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit("", -1));
    EXPECT_EQ(Reports(), (Texts{"Fehler beim Ermitteln des Installations-Ordners",
                                "Fehler beim Ermitteln des bin-Ordners", not_found, not_found}));
}

TEST_F(Installation, SearchWithoutSectionOrEntryIsTheSettingsFile) {
    EXPECT_EQ(SearchFile("", "e", "file"), Hit("", 0));
    EXPECT_EQ(Reports(), Texts{not_found});
    Write("zr\\zr.zrini");
    for (const char *nothing : {"", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(SearchFile(nothing, "e", "file"), Hit(Path("zr\\zr.zrini")));
        EXPECT_EQ(SearchFile("s", nothing, "file"), Hit(Path("zr\\zr.zrini")));
    }
    EXPECT_EQ(zr_suche_datei("s", "e", "file", nullptr), -1);
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, SystemExeIsNeverReadFromTheFile) {
    Write("zr\\zr.zrini", "[System]\nExe=" + Path("other") + "\n[SYSTEM]\nexe=" + Path("other") + "\n");
    Write("other\\a.exe");
    EXPECT_EQ(SearchFile("SYSTEM", "exe", "a.exe"), Hit("", -1));
    Write("zr\\bin64\\a.exe");
    EXPECT_EQ(SearchFile("SYSTEM", "exe", "a.exe"), Hit(Path("zr\\bin64\\a.exe")));
    Write("zr\\bin\\a.exe");
    EXPECT_EQ(SearchFile("System", "Exe", "a.exe"), Hit(Path("zr\\bin\\a.exe")));
    EXPECT_EQ(SearchPath("sYSTEM", "eXE"), Hit(Path("zr\\bin")));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, FileIsSearchedInTheFoldersOfTheEntryInOrder) {
    Write("zr\\zr.zrini", "[Search]\nText=;one;;" + Path("two") + ";$INSTALLDIR$\\three;\nNone=;;\nUmlaut=M\xFCll\n");
    Write("two\\second.txt");
    EXPECT_EQ(SearchFile("Search", "Text", "second.txt"), Hit(Path("two\\second.txt")));
    Write("zr\\one\\first.txt");
    Write("two\\first.txt");
    EXPECT_EQ(SearchFile("Search", "Text", "first.txt"), Hit(Path("zr\\one\\first.txt")));
    Write("zr\\three\\third.txt");
    EXPECT_EQ(SearchFile("Search", "Text", "third.txt"), Hit(Path("zr\\three\\third.txt")));
    s_registry["fourth.txt"] = Path("two");
    EXPECT_EQ(SearchFile("Search", "Text", "fourth.txt"), Hit("untouched", -1));
    EXPECT_EQ(SearchFile("Search", "None", "first.txt"), Hit("untouched", -1));
    EXPECT_EQ(SearchFile("Search", "Umlaut", "first.txt"), Hit("untouched", -1));
    EXPECT_EQ(Reports(), Texts{});
}

// A folder that is nothing, by a variable that nobody knows, is the current one.
TEST_F(Installation, FolderOfNothingInAListIsTheCurrentOne) {
    Write("zr\\zr.zrini", "[Search]\nText=$PROJDIR$;two\n");
    Write("zr\\two\\file.txt");
    const CurrentFolder here(m_folder.Folder());
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit(Path("zr\\two\\file.txt")));
    Write("file.txt");
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit("file.txt"));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, SearchDoesNotDisturbAWalkThroughAText) {
    Write("zr\\zr.zrini", "[Search]\nText=one;two;three\n");
    char text[] = "a b c";
    ASSERT_STREQ(str_tok(text, " "), "a");
    EXPECT_EQ(SearchFile("Search", "Text", "x"), Hit("untouched", -1));
    EXPECT_STREQ(str_tok(nullptr, " "), "b");
    EXPECT_STREQ(str_tok(nullptr, " "), "c");
}

TEST_F(Installation, WithoutEntryARegistryValueIsTheFolder) {
    Write("zr\\zr.zrini", "[Search]\nLong=" + std::string(261, 'x') + "\n");
    Write("zr\\one\\file.txt");
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit("untouched", -1));
    s_registry["file.txt"] = "$INSTALLDIR$\\one";
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit(Path("zr\\one\\file.txt")));
    EXPECT_EQ(SearchFile("None", "Text", "file.txt"), Hit(Path("zr\\one\\file.txt")));
    EXPECT_EQ(SearchFile("Search", "Long", "file.txt"), Hit(Path("zr\\one\\file.txt")));
    s_registry["file.txt"] = Path("nowhere");
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit("untouched", 0));
    char empty[260] = "";
    EXPECT_EQ(zr_suche_datei("Search", "Text", "file.txt", empty), 0);
    EXPECT_STREQ(empty, "");
}

TEST_F(Installation, PathsOfEntriesAreExpanded) {
    Write("zr\\zr.zrini",
          "[P]\nRel=a\\..\\b\nVar=$INSTALLDIR$\\c\nAbs=" + Path("d") + "\nLong=" + std::string(261, 'x') + "\n");
    Write("other.ini", "[P]\nRel=a\n");
    EXPECT_EQ(SearchPath("P", "Rel"), Hit(Path("zr\\b")));
    EXPECT_EQ(SearchPath("P", "Var"), Hit(Path("zr\\c")));
    EXPECT_EQ(SearchPath("P", "Abs"), Hit(Path("d")));
    EXPECT_EQ(SearchPath("P", "None"), Hit("untouched", -1));
    EXPECT_EQ(SearchPath("None", "Rel"), Hit("untouched", -1));
    EXPECT_EQ(SearchPath("P", "Long"), Hit("untouched", -1));
    EXPECT_EQ(SearchPath("P", nullptr), Hit("untouched", -1));
    const auto search = [&](const char *file, const char *entry) {
        return Out([&](char *out) { return zr_suche_pfad_ex(file, "P", entry, out); });
    };
    EXPECT_EQ(search(nullptr, "Rel"), Hit(Path("zr\\b")));
    EXPECT_EQ(search(Path("other.ini").c_str(), "Rel"), Hit(Path("a")));
    EXPECT_EQ(search(Path("other.ini").c_str(), "Var"), Hit("untouched", -1));
    EXPECT_EQ(search(Path("none.ini").c_str(), "Rel"), Hit("untouched", -1));
    EXPECT_EQ(zr_suche_pfad("P", "Rel", nullptr), -1);
    EXPECT_EQ(zr_suche_pfad_ex(Path("other.ini").c_str(), "P", "Rel", nullptr), -1);
}

TEST_F(Installation, InstallRootIsThatOfTheRegistry) {
    s_registry["InstallDir"] = Path("zr\\bin");
    EXPECT_EQ(zr_GetInstallDir(), Path("zr\\bin"));
    s_registry["InstallDir"] = Path("zr");
    EXPECT_EQ(zr_GetInstallDir(), Path("zr\\bin")); // kept
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, InstallRootInTheHostsFormIsInTheLibrarysOne) {
    s_registry["InstallDir"] = (m_folder.Folder() / "zr").generic_string();
    const std::string long_form = zr_GetInstallDir();
    if (HostOf("C:\\x") != "C:\\x") { // elsewhere a slash stays one
        EXPECT_EQ(long_form, Path("zr"));
    }
    EXPECT_TRUE(std::filesystem::equivalent(HostOf(long_form), m_folder.Folder() / "zr"));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, WrongInstallRootIsReportedAndPassedOver) {
    s_registry["InstallDir"] = Path("nowhere");
    EXPECT_EQ(zr_GetInstallDir(), Path("zr"));
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Error("Zr", "InstallDir nicht korrekt gesetzt.")});
    EXPECT_EQ(zr_GetInstallDir(), Path("zr"));
    EXPECT_EQ(Reports(), Texts{});
    zr::settings::ForgetInstallation();
    s_module.clear();
    EXPECT_STREQ(zr_GetInstallDir(), "");
    EXPECT_EQ(Reports(),
              (Texts{"InstallDir nicht korrekt gesetzt.", "Fehler beim Ermitteln des Installations-Ordners"}));
}

TEST_F(Installation, InstallRootTakesItsLongForm) {
    zr::platform::services.long_path = [](const char *path, char *out, std::size_t size) {
        EXPECT_EQ(path, s_module);
        EXPECT_EQ(size, 260U);
        std::strcpy(out, "C:\\long");
        return std::size_t{7};
    };
    s_registry["InstallDir"] = Path("zr");
    s_module = Path("zr");
    EXPECT_STREQ(zr_GetInstallDir(), "C:\\long");
    for (const std::size_t length : {0U, 1U, 259U, 260U, 300U}) {
        static std::size_t answer;
        answer = length;
        zr::settings::ForgetInstallation();
        zr::platform::services.long_path = [](const char *, char *out, std::size_t) {
            std::strcpy(out, "C:\\long");
            return answer;
        };
        EXPECT_EQ(zr_GetInstallDir(), length == 1 || length == 259 ? "C:\\long" : Path("zr"));
    }
}

TEST_F(Installation, RootAboveTheLibraryTakesItsLongFormAndTheLibrarysFolderDoesNot) {
    zr::platform::services.long_path = [](const char *path, char *out, std::size_t) {
        std::strcpy(out, (std::string(path) + " long").c_str());
        return std::strlen(out);
    };
    EXPECT_EQ(zr_GetInstallDir(), Path("zr long"));
    EXPECT_EQ(zr_GetBinDir(), Path("zr\\bin"));
    EXPECT_EQ(zr_GetBin64Dir(), Path("zr\\bin64"));
    EXPECT_EQ(zr_GetBinExt64Dir(), Path("zr long\\binExt64"));
}

// Programs stand beside the library, extensions below the root, wherever that is.
TEST_F(Installation, RootOfTheRegistryMovesTheExtensionsAlone) {
    s_registry["InstallDir"] = Path("");
    EXPECT_EQ(zr_GetInstallDir(), Path(""));
    EXPECT_EQ(zr_GetBinDir(), Path("zr\\bin"));
    EXPECT_EQ(zr_GetBin32Dir(), Path("zr\\bin"));
    EXPECT_EQ(zr_GetBin64Dir(), Path("zr\\bin64"));
    EXPECT_EQ(zr_GetBinExt32Dir(), Path("binExt"));
    EXPECT_EQ(zr_GetBinExt64Dir(), Path("binExt64"));
    EXPECT_EQ(Out([](char *out) { return zr_GetBinExt64File("a", out); }), Hit(Path("binExt64\\a"), 1));
    EXPECT_EQ(Out([](char *out) { return zr_GetBin64File("a", out); }), Hit(Path("zr\\bin64\\a"), 1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, FoldersOfProgramsStandBesideAndBelow) {
    EXPECT_EQ(zr_GetBinDir(), Path("zr\\bin"));
    EXPECT_EQ(zr_GetBin32Dir(), Path("zr\\bin"));
    EXPECT_EQ(zr_GetBin64Dir(), Path("zr\\bin64"));
    EXPECT_EQ(zr_GetBinExt32Dir(), Path("zr\\binExt"));
    EXPECT_EQ(zr_GetBinExt64Dir(), Path("zr\\binExt64"));
    EXPECT_EQ(zr_GetBinExtDir(), zr_GetBinExt32Dir());
    s_module = Path("zr\\bin64\\zrclb.dll");
    EXPECT_EQ(zr_GetBinDir(), Path("zr\\bin")); // kept
    zr::settings::ForgetInstallation();
    EXPECT_EQ(zr_GetBinDir(), Path("zr\\bin64"));
    EXPECT_EQ(zr_GetBin32Dir(), Path("zr\\bin"));
    EXPECT_EQ(zr_GetBin64Dir(), Path("zr\\bin64"));
    EXPECT_EQ(zr_GetInstallDir(), Path("zr"));
    zr::settings::ForgetInstallation();
    s_module = "C:\\zrclb.dll";
    EXPECT_STREQ(zr_GetBinDir(), "C:\\");
}

TEST_F(Installation, FolderThatCannotBeFoundIsReportedEachTime) {
    s_module.clear();
    const std::string root = "Fehler beim Ermitteln des Installations-Ordners";
    const std::string bin = "Fehler beim Ermitteln des bin-Ordners";
    for (int i = 0; i < 2; ++i) {
        EXPECT_STREQ(zr_GetInstallDir(), "");
        EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Error("Zr", root.c_str())});
        EXPECT_STREQ(zr_GetBinDir(), "");
        EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Error("Zr", bin.c_str())});
    }
    const auto reports_of = [&](const char *(*getter)()) {
        EXPECT_STREQ(getter(), "");
        return m_reports.Take();
    };
    const auto both = [](const std::string &first, const char *second) {
        return zr::test::Reports{zr::test::Error("Zr", first.c_str()), zr::test::Error("Zr", second)};
    };
    EXPECT_EQ(reports_of(zr_GetBin32Dir), both(bin, "Fehler beim Ermitteln des bin32-Ordners"));
    EXPECT_EQ(reports_of(zr_GetBin64Dir), both(bin, "Fehler beim Ermitteln des bin64-Ordners"));
    EXPECT_EQ(reports_of(zr_GetBinExtDir), both(root, "Fehler beim Ermitteln des binExt32-Ordners"));
    EXPECT_EQ(reports_of(zr_GetBinExt64Dir), both(root, "Fehler beim Ermitteln des binExt64-Ordners"));
    // Without a folder the file stands for itself.
    EXPECT_EQ(Out([](char *out) { return zr_GetBin32File("a", out); }), Hit("a", 1));
    EXPECT_EQ(Reports(), (Texts{bin, "Fehler beim Ermitteln des bin32-Ordners"}));
    EXPECT_EQ(Out([](char *out) { return zr_GetBinFile("", out); }), Hit("", 0));
    Reports();
    s_module = Path("zr\\bin\\zrclb.dll");
    EXPECT_EQ(zr_GetBin32Dir(), Path("zr\\bin"));
}

TEST_F(Installation, FoldersAreKeptWhateverChanges) {
    Write("zr\\zr.zrini", "[System]\nCOMMON_DIR=common\nUSER_DIR=user\n");
    using Getter = const char *(*)();
    const Getter getters[] = {zr_GetInstallDir,
                              zr_GetBinDir,
                              zr_GetBin32Dir,
                              zr_GetBin64Dir,
                              zr_GetBinExtDir,
                              zr_GetBinExt32Dir,
                              zr_GetBinExt64Dir,
                              zr_GetAppDataDir,
                              zr_GetLocalAppDataDir,
                              zr_GetCommonAppDataDir,
                              zr::settings::get_common_dir,
                              zr::settings::get_user_dir};
    Texts before;
    for (const Getter getter : getters)
        before.emplace_back(getter());
    std::filesystem::remove(m_folder.Folder() / "zr/zr.zrini");
    s_registry["InstallDir"] = Path("data");
    s_module = Path("other\\bin\\zrclb.dll");
    s_data = Path("other");
    Texts after;
    for (const Getter getter : getters)
        after.emplace_back(getter());
    EXPECT_EQ(after, before);
    EXPECT_EQ(std::count(before.begin(), before.end(), ""), 0);
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, EachAllocationOfASearchMayFail) {
    Write("zr\\zr.zrini", "[Search]\nText=one\n[P]\nRel=sub\n");
    Write("zr\\one\\file.txt");
    const std::string file = Path("zr\\one\\file.txt");
    const std::string folder = Path("zr\\sub");
    bool met = true;
    for (int refused = 0; met; ++refused) {
        ASSERT_LT(refused, 100);
        zr::settings::ForgetInstallation();
        char found[260] = "", path[260] = "";
        int search, read;
        {
            const zr::test::NthAllocation refusal(refused);
            search = zr_suche_datei("Search", "Text", "file.txt", found);
            read = zr_suche_pfad("P", "Rel", path);
            met = refusal.Met();
        }
        EXPECT_EQ(found, search == 0 ? file : "");
        EXPECT_EQ(path, read == 0 ? folder : "");
        EXPECT_EQ(Reports().empty(), !met);
        EXPECT_TRUE(met || (search == 0 && read == 0));
        EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit(file)); // nothing wrong was kept
    }
}

TEST_F(Installation, MissingMemoryIsAMissingFolder) {
    const std::string handle = "zrFileCreateFileHandle: Fehler beim Erzeugen von File-Handle";
    {
        const zr::test::Refusal refusal(sizeof(CZrFileName), sizeof(CZrFileName));
        EXPECT_STREQ(zr_GetInstallDir(), "");
    }
    EXPECT_EQ(Reports(), (Texts{handle, "Fehler beim Ermitteln des Installations-Ordners"}));
    EXPECT_EQ(zr_GetBinDir(), Path("zr\\bin"));
    {
        const zr::test::Refusal refusal(sizeof(CZrFileName), sizeof(CZrFileName));
        EXPECT_STREQ(zr_GetBin64Dir(), "");
    }
    EXPECT_EQ(Reports(), (Texts{handle, "Fehler beim Ermitteln des bin64-Ordners"}));
    EXPECT_EQ(zr_GetInstallDir(), Path("zr"));
    {
        const zr::test::Refusal refusal(sizeof(CZrFileName), sizeof(CZrFileName), 2);
        EXPECT_EQ(Relative(Path("zr\\a"), "$INSTALLDIR$"), Hit(Path("zr\\a"), 0));
    }
    {
        const zr::test::Refusal refusal(sizeof(CZrFileName), sizeof(CZrFileName));
        EXPECT_EQ(FullPath("$PROJDOCDIR$\\x", nullptr).substr(0, 2), "1<"); // a variable whose getter gives null stays
    }
    EXPECT_EQ(Reports(), (Texts{handle, handle}));
}

TEST_F(Installation, FilesAreComposedWithoutALook) {
    const auto compose = [&](auto function) { return Out([&](char *out) { return function("a b.dll", out); }); };
    EXPECT_EQ(compose(zr_GetBin32File), Hit(Path("zr\\bin\\a b.dll"), 1));
    EXPECT_EQ(compose(zr_GetBin64File), Hit(Path("zr\\bin64\\a b.dll"), 1));
    EXPECT_EQ(compose(zr_GetBinExt32File), Hit(Path("zr\\binExt\\a b.dll"), 1));
    EXPECT_EQ(compose(zr_GetBinExt64File), Hit(Path("zr\\binExt64\\a b.dll"), 1));
    EXPECT_EQ(Reports(), Texts{});
    const std::string over_long(250, 'x');
    EXPECT_EQ(Out([&](char *out) { return zr_GetBin32File(over_long.c_str(), out); }), Hit("untouched", 0));
    EXPECT_EQ(Reports(), Texts{"Buffer zu klein"});
    char out[260];
    for (const auto function : {zr_GetBin32File, zr_GetBin64File, zr_GetBinExt32File, zr_GetBinExt64File}) {
        EXPECT_EQ(function(nullptr, out), 0);
        EXPECT_EQ(function("a", nullptr), 0);
        EXPECT_EQ(m_reports.Take(),
                  (zr::test::Reports{zr::test::Error("Zr", "Null-Pointer"), zr::test::Error("Zr", "Null-Pointer")}));
    }
}

TEST_F(Installation, FileIsFoundInOneOfTwoFolders) {
    const auto bin = [&](const char *file) { return Out([&](char *out) { return zr_GetBinFile(file, out); }); };
    const auto ext = [&](const char *file) { return Out([&](char *out) { return zr_GetBinExtFile(file, out); }); };
    EXPECT_EQ(bin("a"), Hit("", 0));
    EXPECT_EQ(ext("a"), Hit("", 0));
    Write("zr\\bin64\\a");
    Write("zr\\binExt64\\a");
    EXPECT_EQ(bin("a"), Hit(Path("zr\\bin64\\a"), 1));
    EXPECT_EQ(ext("a"), Hit(Path("zr\\binExt64\\a"), 1));
    Write("zr\\bin\\a");
    Write("zr\\binExt\\a");
    EXPECT_EQ(bin("a"), Hit(Path("zr\\bin\\a"), 1));
    EXPECT_EQ(ext("a"), Hit(Path("zr\\binExt\\a"), 1));
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_EQ(bin(nullptr), Hit("", 0));
    EXPECT_EQ(Reports(), (Texts{"Null-Pointer", "Null-Pointer"}));
    EXPECT_EQ(zr_GetBinFile("a", nullptr), 0);
}

TEST_F(Installation, DataFoldersAreMadeOnce) {
    const struct {
        const char *(*getter)();
        const char *number;
    } rows[] = {{zr_GetAppDataDir, "26"}, {zr_GetLocalAppDataDir, "28"}, {zr_GetCommonAppDataDir, "35"}};
    for (const auto &row : rows) {
        const std::string folder = Path("data") + row.number + "\\Zr Works\\Zr Bench\\2013\\";
        EXPECT_EQ(row.getter(), folder);
        EXPECT_TRUE(std::filesystem::is_directory(HostOf(folder)));
        EXPECT_EQ(row.getter(), folder);
    }
    zr::settings::ForgetInstallation();
    zr::platform::services.known_folder = [](int, char *, std::size_t) { return false; }; // they exist now
    for (const auto &row : rows)
        EXPECT_EQ(row.getter(), Path("data") + row.number + "\\Zr Works\\Zr Bench\\2013\\");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, DataFolderThatCannotBeHadIsReported) {
    s_data.clear();
    EXPECT_STREQ(zr_GetAppDataDir(), "");
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Message("Zr", "SHGetFolderPath failed")});
    Write("file");
    s_data = Path("file\\");
    EXPECT_STREQ(zr_GetLocalAppDataDir(), "");
    const std::string folder = Path("file\\28\\Zr Works\\Zr Bench\\2013\\");
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Message("Zr", "fio_CreatePath failed", folder.c_str())});
    s_data = Path("data");
    EXPECT_EQ(zr_GetLocalAppDataDir(), Path("data28\\Zr Works\\Zr Bench\\2013\\"));
}

TEST_F(Installation, ProjectsFolderIsReadAtEveryCall) {
    EXPECT_STREQ(zr_GetInstallDirProjekte(), "");
    EXPECT_EQ(Reports(), (Texts{not_found, not_found}));
    Write("zr\\zr.zrini", "[Zr Tekbau Tek+]\nInstallDirProjekte=D:\\one\n");
    EXPECT_STREQ(zr_GetInstallDirProjekte(), "D:\\one");
    Write("zr\\zr.zrini", "[Zr Tekbau Tek+]\nInstallDirProjekte=D:\\two\n");
    EXPECT_STREQ(zr_GetInstallDirProjekte(), "D:\\two");
    Write("zr\\zr.zrini", "[Zr Tekbau Tek+]\nInstallDirProjekte=" + std::string(261, 'x') + "\n");
    EXPECT_STREQ(zr_GetInstallDirProjekte(), "D:\\two");
    Write("zr\\zr.zrini", "[Zr Tekbau Tek+]\nInstallDirProjekte=" + std::string(260, 'x') + "\n");
    EXPECT_EQ(zr_GetInstallDirProjekte(), std::string(260, 'x'));
    Write("zr\\zr.zrini", "");
    EXPECT_EQ(zr_GetInstallDirProjekte(), std::string(260, 'x'));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, ProjectFolderIsWhatWasSet) {
    EXPECT_STREQ(zr_GetProjDir(), "");
    zr_SetProjDir("C:\\proj");
    zr_SetProjDir(nullptr);
    EXPECT_STREQ(zr_GetProjDir(), "C:\\proj");
    zr_SetProjDir(zr_GetProjDir() + 3);
    EXPECT_STREQ(zr_GetProjDir(), "proj");
    for (const std::size_t length : {259U, 260U, 261U, 5000U}) {
        zr_SetProjDir(std::string(length, 'x').c_str());
        EXPECT_EQ(zr_GetProjDir(), std::string(std::min<std::size_t>(length, 260), 'x'));
    }
    zr_SetProjDir("");
    EXPECT_STREQ(zr_GetProjDir(), "");
}

TEST_F(Installation, WithoutASettingsFileTheSearchGoesOnInTheRegistry) {
    Write("reg\\file.txt");
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit("untouched", -1));
    EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found})); // the search, and that of the entry's default file
    s_registry["file.txt"] = Path("reg");
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit(Path("reg\\file.txt")));
    EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found}));
    EXPECT_EQ(SearchFile("System", "Exe", "file.txt"), Hit("", -1));
    EXPECT_EQ(Reports(), Texts{not_found});
}

TEST_F(Installation, ListOfFoldersHasAtMost260Characters) {
    Write("two\\file.txt");
    const std::string two = Path("two");
    ASSERT_LT(two.size(), 200U);
    const auto write = [&](std::size_t length) {
        Write("zr\\zr.zrini", "[Search]\nText=" + two + ";" + std::string(length - two.size() - 1, 'x') + "\n");
    };
    for (const std::size_t length : {259U, 260U}) {
        write(length);
        EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit(Path("two\\file.txt")));
    }
    write(261);
    EXPECT_EQ(SearchFile("Search", "Text", "file.txt"), Hit("untouched", -1));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, HostileFileNamesAreNotFound) {
    Write("zr\\zr.zrini", "[Search]\nText=one;" + Path("") + "\n");
    for (const char *name : {"a\\*", "<>|\"", "\xFF\x01", "..\\..\\no such file"})
        EXPECT_EQ(SearchFile("Search", "Text", name), Hit("untouched", -1));
    // No name at all, and one that is too long to be one, stand for the folder.
    for (const std::string &name : {std::string(), std::string(300, 'x'), std::string(5000, 'y')})
        EXPECT_EQ(SearchFile("Search", "Text", name.c_str()), Hit(Path("")));
    EXPECT_EQ(SearchFile(std::string(5000, 's').c_str(), std::string(5000, 'e').c_str(), "file"), Hit("untouched", -1));
    EXPECT_EQ(SearchPath(std::string(5000, 's').c_str(), std::string(5000, 'e').c_str()), Hit("untouched", -1));
}

TEST_F(Installation, RegistryValuesHaveAtMost255Characters) {
    Write("zr\\zr.zrini");
    s_registry["InstallDir"] = Path("zr") + "\\" + std::string(255, '.');
    EXPECT_EQ(zr_GetInstallDir(), Path("zr")); // not read, hence not reported
    EXPECT_EQ(Reports(), Texts{});
    zr::settings::ForgetInstallation();
    std::string folder = Path("zr");
    while (folder.size() + 2 <= 255)
        folder += "\\.";
    s_registry["InstallDir"] = folder;
    EXPECT_EQ(zr_GetInstallDir(), folder); // as it was given
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(Installation, PathsOfTheLibraryHaveAtMost259Characters) {
    std::string folder = "C:";
    while (folder.size() < 245)
        folder += "\\folder7";
    const auto module_of = [&](std::size_t length) {
        return folder + "\\" + std::string(length - folder.size() - 5, 'm') + ".dll";
    };
    s_module = module_of(259);
    EXPECT_EQ(zr_GetBinDir(), folder);
    zr::settings::ForgetInstallation();
    s_module = module_of(260);
    EXPECT_STREQ(zr_GetBinDir(), "");
    EXPECT_EQ(Reports(), Texts{"Fehler beim Ermitteln des bin-Ordners"});
}

TEST_F(Installation, DataFolderWithoutRoomIsReported) {
    std::string parent = Path("");
    while (parent.size() < 240)
        parent += "\\f";
    s_data = parent;
    EXPECT_STREQ(zr_GetAppDataDir(), "");
    EXPECT_EQ(m_reports.Take(), (zr::test::Reports{{zr::test::Report::Message, "Fio", {"Buffer zu klein"}},
                                                   zr::test::Message("Zr", "fio_CreatePath failed", "")}));
}

TEST_F(Installation, ValuesOfTheRealRegistryCount) {
    Write("zr2\\zr.zrini", "[P]\nRel=sub\n");
    Write("zr\\zr.zrini");
    Write("reg\\file.txt");
    zr::platform::services.registry_text = zr::platform::backend::ReadRegistryText;
    RegistryValues values("Software\\Zr Works\\Zr Bench\\2013");
    values.Set("zr.ini", Path("zr2"));
    values.Set("InstallDir", Path("reg"));
    values.Set("file.txt", "$INSTALLDIR$");
    EXPECT_EQ(SearchPath("P", "Rel"), Hit(Path("zr2\\sub")));
    EXPECT_EQ(zr_GetInstallDir(), Path("reg"));
    EXPECT_EQ(SearchFile("S", "e", "file.txt"), Hit(Path("reg\\file.txt")));
    EXPECT_EQ(SearchFile("S", "e", "other.txt"), Hit("untouched", -1));
    EXPECT_EQ(Reports(), Texts{});
}

// Reports that look for the log come back to the search while it works.
class InstallationInTheLog : public InstallationFixture {
protected:
    static inline std::string answers;

    static void LookAt(const char *(*getter)()) { answers += std::string("[") + getter() + "]"; }
};

TEST_F(InstallationInTheLog, SearchEnteredAgainIsNotFoundAndSilent) {
    answers.clear();
    static std::string log;
    log = Path("log.txt");
    zr::frame::SetLogHook({[] {
                               answers += SearchFile(nullptr, nullptr, nullptr) + SearchPath("a", "b");
                               return true;
                           },
                           [](char *out, std::size_t size) { return Give(log, out, size) != 0; }, nullptr});
    EXPECT_EQ(SearchFile(nullptr, nullptr, nullptr), Hit("", -1));
    EXPECT_EQ(answers, Hit("", -1) + Hit("untouched", -1));
    const std::string text = m_folder.Read("log.txt");
    std::size_t count = 0;
    for (std::size_t at = text.find(not_found); at != std::string::npos; at = text.find(not_found, at + 1))
        ++count;
    EXPECT_EQ(count, 2U);
}

TEST_F(InstallationInTheLog, GetterEnteredAgainIsEmpty) {
    answers.clear();
    s_module.clear();
    const auto look = [](bool (*is_on)()) { zr::frame::SetLogHook({is_on, nullptr, nullptr}); };
    look([] {
        LookAt(zr_GetInstallDir);
        return false;
    });
    EXPECT_STREQ(zr_GetInstallDir(), "");
    EXPECT_EQ(answers, "[]");
    answers.clear();
    look([] {
        LookAt(zr_GetBinDir);
        LookAt(zr_GetBin64Dir);
        return false;
    });
    EXPECT_STREQ(zr_GetBin64Dir(), "");
    EXPECT_EQ(answers, "[][]");
    answers.clear();
    s_data.clear();
    look([] {
        LookAt(zr_GetAppDataDir);
        LookAt(zr_GetInstallDirProjekte);
        return false;
    });
    EXPECT_STREQ(zr_GetAppDataDir(), "");
    EXPECT_EQ(answers, "[][]");
}

// Each getter, asked by the report of its own failure.
TEST_F(InstallationInTheLog, EveryGetterMayBeAskedByItsOwnReport) {
    using Getter = const char *(*)();
    static Getter asked;
    s_data.clear();
    const Getter failing[] = {
        zr_GetAppDataDir,          zr_GetLocalAppDataDir, zr_GetCommonAppDataDir, zr_GetInstallDirProjekte,
        zr_GetInstallDir,          zr_GetBinDir,          zr_GetBin32Dir,         zr_GetBin64Dir,
        zr_GetBinExtDir,           zr_GetBinExt32Dir,     zr_GetBinExt64Dir,      zr::settings::get_common_dir,
        zr::settings::get_user_dir};
    for (const Getter getter : failing) {
        zr::settings::ForgetInstallation();
        s_module.clear();
        answers.clear();
        asked = getter;
        zr::frame::SetLogHook({[] {
                                   LookAt(asked);
                                   return false;
                               },
                               nullptr, nullptr});
        EXPECT_STREQ(getter(), "");
        EXPECT_EQ(answers, "[]");
    }
}

TEST_F(InstallationInTheLog, ProjectsFolderAskedByAReportOfItsReadIsEmpty) {
    answers.clear();
    Write("zr\\zr.zrini", "[Zr Tekbau Tek+]\nno sign\nInstallDirProjekte=D:\\one\n");
    EXPECT_STREQ(zr_GetInstallDirProjekte(), "D:\\one");
    zr::frame::SetLogHook({[] {
                               LookAt(zr_GetInstallDirProjekte);
                               return false;
                           },
                           nullptr, nullptr});
    EXPECT_STREQ(zr_GetInstallDirProjekte(), "D:\\one");
    EXPECT_EQ(answers, "[]");
}

TEST_F(InstallationInTheLog, SettingsFileIsFoundFromWithinAReport) {
    answers.clear();
    Write("zr\\bin\\zr.zrini");
    s_registry["InstallDir"] = Path("nowhere");
    zr::frame::SetLogHook({[] {
                               answers = SearchFile(nullptr, nullptr, nullptr);
                               return false;
                           },
                           nullptr, nullptr});
    EXPECT_EQ(zr_GetInstallDir(), Path("zr"));
    EXPECT_EQ(answers, Hit(Path("zr\\bin\\zr.zrini")));
}

} // namespace
