// Paths in settings files: read as full paths, stored in a portable form.
#include <zrclb/ini.h>

#include <cstring>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <zrclb/installation.h>

#include "platform/file_verbs.h"
#include "settings/installation_fixture.h"

namespace {

class IniPath : public InstallationFixture {
protected:
    std::string File() const { return Path("etc\\mine.ini"); }

    void WriteEntry(const std::string &value) const { Write("etc\\mine.ini", "[S]\ne=" + value + "\n"); }

    // Result, and what there is of the value in the file behind it.
    std::string Store(const std::string &value) const {
        const int result = ini_write_path(File().c_str(), "S", "e", value.c_str());
        return std::to_string(result) + "<" + Stored() + ">";
    }

    std::string Stored(const char *file = nullptr, const char *section = "S", const char *entry = "e") const {
        char text[1000];
        zr_long size = sizeof text - 1;
        const int result = ini_read_string(file != nullptr ? file : File().c_str(), section, entry, text, &size);
        return result == 0 ? text : "none " + std::to_string(result);
    }

    // Result, size and text of a read into a buffer of that size; nothing is written behind it.
    std::string ReadInto(zr_long size) const {
        std::string buffer(300, '#');
        const auto room = static_cast<std::size_t>(size > 0 ? size : 0);
        const int result = ini_read_path(File().c_str(), "S", "e", buffer.data(), &size);
        EXPECT_EQ(buffer.find_first_not_of('#', room), std::string::npos);
        return std::to_string(result) + " " + std::to_string(size) + " " +
               buffer.substr(0, buffer.find_first_of("#\0"));
    }

    std::string Value() const {
        char path[260] = "untouched";
        zr_long size = sizeof path;
        const int result = ini_read_path(File().c_str(), "S", "e", path, &size);
        EXPECT_TRUE(result != 0 || size == static_cast<zr_long>(std::strlen(path)));
        return std::to_string(result) + "<" + path + ">";
    }
};

TEST_F(IniPath, Value_IsSeenFromTheFolderOfItsFile) {
    WriteEntry("a\\..\\b");
    EXPECT_EQ(Value(), Hit(Path("etc\\b")));
    WriteEntry("..\\b\\");
    EXPECT_EQ(Value(), Hit(Path("b"))); // joined, it has no separator at its end
    WriteEntry("Q:\\b");
    EXPECT_EQ(Value(), Hit("Q:\\b"));
    WriteEntry("$INSTALLDIR$\\b");
    EXPECT_EQ(Value(), Hit(Path("zr\\b")));
    WriteEntry("");
    EXPECT_EQ(Value(), Hit(""));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, FileWithoutAFolder_LiesInTheCurrentOne) {
    const CurrentFolder here(m_folder.Folder());
    Write("plain.ini", "[S]\ne=b\n");
    char path[260];
    zr_long size = sizeof path;
    EXPECT_EQ(ini_read_path("plain.ini", "S", "e", path, &size), 0);
    EXPECT_EQ(path, Path("b"));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, WhatIsNotThere_IsToldByItsCode) {
    EXPECT_EQ(Value(), Hit("untouched", INI_NO_FILE));
    Write("etc\\mine.ini", "[S]\nf=x\n");
    EXPECT_EQ(Value(), Hit("untouched", INI_NO_ENTRY));
    Write("etc\\mine.ini", "[T]\ne=x\n");
    EXPECT_EQ(Value(), Hit("untouched", INI_NO_SECTION));
    WriteEntry("x");
    char path[260];
    zr_long size = sizeof path;
    EXPECT_EQ(ini_read_path(File().c_str(), "S", "e", path, nullptr), INI_NO_FILE);
    EXPECT_EQ(ini_read_path(File().c_str(), "S", nullptr, path, &size), INI_NO_FILE);
    EXPECT_EQ(ini_read_path(File().c_str(), "S", "e", nullptr, &size), INI_DONE);
    EXPECT_EQ(size, static_cast<zr_long>(Path("etc\\x").size()));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, Value_HasAtMost260Characters) {
    std::string value;
    while (value.size() < 260)
        value += "folder 10\\";
    WriteEntry(value); // of which 259 are those of a path: neither a folder nor a root goes with it
    EXPECT_EQ(Value(), Hit(value.substr(0, 259)));
    EXPECT_EQ(Reports(), Texts{"Buffer zu klein"});
    WriteEntry(std::string(261, 'x'));
    EXPECT_EQ(Value(), Hit("untouched", INI_NO_ROOM));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, PathOfJustTheSize_LosesItsLastCharacter) {
    WriteEntry("Q:\\abcde");
    EXPECT_EQ(ReadInto(9), std::string("0 8 Q:\\abcde") + '\0');
    EXPECT_EQ(ReadInto(8), std::string("0 7 Q:\\abcd") + '\0');
    EXPECT_EQ(ReadInto(7), "3 7 ");
    EXPECT_EQ(ReadInto(1), "3 1 ");
    EXPECT_EQ(ReadInto(0), "3 0 ");
    EXPECT_EQ(ReadInto(-1), "-1 -1 ");
    zr_long size = 7;
    EXPECT_EQ(ini_read_path(File().c_str(), "S", "e", nullptr, &size), INI_NO_ROOM);
    EXPECT_EQ(size, 7);
    WriteEntry(std::string(261, 'x')); // the value itself is too long
    EXPECT_EQ(ReadInto(270), "3 270 ");
    WriteEntry("");
    EXPECT_EQ(ReadInto(1), std::string("0 0 ") + '\0');
    EXPECT_EQ(ReadInto(0), "0 0 ");
}

TEST_F(IniPath, WithoutAFile_TheSettingsFileIsMeant) {
    char path[260] = "untouched";
    zr_long size = sizeof path;
    for (const char *file : {"", static_cast<const char *>(nullptr)}) {
        zr::settings::ForgetInstallation();
        std::filesystem::remove(m_folder.Folder() / "zr/zr.zrini");
        EXPECT_EQ(ini_read_path(file, "S", "e", path, &size), INI_NO_FILE);
        EXPECT_EQ(ini_write_path(file, "S", "e", "x"), INI_NO_FILE);
        EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found, not_found}));
        Write("zr\\zr.zrini", "[S]\ne=x\n");
        size = sizeof path;
        EXPECT_EQ(ini_read_path(file, "S", "e", path, &size), INI_DONE);
        EXPECT_EQ(path, Path("zr\\x"));
        EXPECT_EQ(ini_write_path(file, "S", "e", "y"), INI_DONE);
        EXPECT_EQ(Stored(Path("zr\\zr.zrini").c_str()), "y");
        EXPECT_EQ(Reports(), Texts{});
    }
}

TEST_F(IniPath, StoredPath_KeepsTheFormOfTheOldOne) {
    zr_SetProjDir(Path("proj").c_str());
    WriteEntry(".\\old");
    EXPECT_EQ(Store(Path("etc\\sub\\x")), Hit(".\\sub\\x"));
    EXPECT_EQ(Store(Path("zr\\x")), Hit("..\\zr\\x"));
    EXPECT_EQ(Store("Q:\\x\\..\\y"), Hit("Q:\\x\\..\\y")); // no way leads there: as it is
    for (const char *old : {"..\\old", ".", ".hidden"}) {
        WriteEntry(old);
        EXPECT_EQ(Store(Path("etc\\x")), Hit(".\\x"));
    }
    WriteEntry("$PROJDIR$\\old");
    EXPECT_EQ(Store(Path("proj\\x")), Hit("$PROJDIR$\\x"));
    EXPECT_EQ(Store(Path("zr\\x")), Hit("$PROJDIR$\\..\\zr\\x"));
    EXPECT_EQ(Store("Q:\\x"), Hit("Q:\\x"));
    EXPECT_EQ(Store(Path("proj\\x")), Hit(Path("proj\\x"))); // the old one is absolute now
    WriteEntry("$OTHER$\\old");
    EXPECT_EQ(Store(Path("proj\\..\\x")), Hit(Path("proj\\..\\x")));
    WriteEntry("");
    EXPECT_EQ(Store(Path("proj\\x")), Hit(Path("proj\\x")));
    WriteEntry("old");
    EXPECT_EQ(Store(""), Hit(""));
    WriteEntry(".\\old");
    EXPECT_EQ(Store(""), Hit(""));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, NewPath_GetsItsShortestForm) {
    Write("zr\\zr.zrini", "[Zr Tekbau Tek+]\nInstallDirProjekte=" + Path("projects") + "\n");
    zr_SetProjDir(Path("proj").c_str());
    const auto store = [&](const std::string &path) {
        Write("etc\\mine.ini", "[S]\nf=1\n");
        return Store(path);
    };
    EXPECT_EQ(store(Path("proj\\x")), Hit("$PROJDIR$\\x"));
    EXPECT_EQ(store(Path("zr\\bin\\x")), Hit("$INSTALLDIR$\\bin\\x"));
    EXPECT_EQ(store(Path("projects\\x")), Hit("$INSTALLDIR_PROJEKTE$\\x"));
    EXPECT_EQ(store(Path("etc\\sub\\x")), Hit(".\\sub\\x")); // behind no variable, but below the file's folder
    EXPECT_EQ(store(Path("x")), Hit(Path("x")));             // neither
    EXPECT_EQ(store("Q:\\x"), Hit("Q:\\x"));
    EXPECT_EQ(store(""), Hit(""));
    const std::string over_long = "C:\\" + std::string(300, 'x');
    EXPECT_EQ(store(over_long), Hit(over_long)); // no path, but a text
    EXPECT_EQ(Reports(), Texts{});
}

// A bare name tells no folder: nothing is relative to it.
TEST_F(IniPath, FileWithoutAFolder_TakesFormsBehindVariablesOnly) {
    const CurrentFolder here(m_folder.Folder());
    zr_SetProjDir(Path("proj").c_str());
    const auto store = [&](const std::string &old, const std::string &path) {
        Write("plain.ini", "[S]\n" + old);
        EXPECT_EQ(ini_write_path("plain.ini", "S", "e", path.c_str()), 0);
        return Stored("plain.ini");
    };
    EXPECT_EQ(store("e=.\\old\n", Path("x")), Path("x"));
    EXPECT_EQ(store("e=$PROJDIR$\\old\n", Path("x")), "$PROJDIR$\\..\\x");
    EXPECT_EQ(store("", Path("proj\\x")), "$PROJDIR$\\x");
    EXPECT_EQ(store("", Path("x")), "$INSTALLDIR$\\..\\x"); // the form of no folder: any variable's, which may go up
    EXPECT_EQ(store("", "Q:\\x"), "Q:\\x");
}

TEST_F(IniPath, FileThatCannotBeWritten_IsTold) {
    WriteEntry("x");
    ASSERT_EQ(zr::platform::SetAttributes(File().c_str(), zr::platform::attribute_read_only), 0);
    EXPECT_EQ(ini_write_path(File().c_str(), "S", "e", "y"), 5);
    EXPECT_EQ(zr_schreibe_pfad_ex(File().c_str(), "S", "e", "y"), -1);
    EXPECT_EQ(Stored(), "x");
    ASSERT_EQ(zr::platform::SetAttributes(File().c_str(), zr::platform::attribute_normal), 0);
}

TEST_F(IniPath, OldValueOfMoreThan260Characters_IsNone) {
    zr_SetProjDir(Path("proj").c_str());
    WriteEntry(std::string(260, 'x'));
    EXPECT_EQ(Store(Path("proj\\x")), Hit(Path("proj\\x")));
    WriteEntry(std::string(261, 'x'));
    EXPECT_EQ(Store(Path("proj\\x")), Hit("$PROJDIR$\\x"));
}

TEST_F(IniPath, StoredPath_IsReadBackAsItWas) {
    zr_SetProjDir(Path("proj").c_str());
    Write("etc\\mine.ini", "");
    for (const std::string &path : {Path("proj\\a"), Path("zr\\b"), Path("etc\\c"), Path("d"), std::string("Q:\\e")}) {
        ini_delete_entry(File().c_str(), "S", "e");
        EXPECT_EQ(Store(path).substr(0, 2), "0<");
        EXPECT_EQ(Value(), Hit(path)) << Stored();
    }
}

TEST_F(IniPath, MissingFile_IsNotMade) {
    std::filesystem::create_directories(m_folder.Folder() / "etc");
    EXPECT_EQ(ini_write_path(File().c_str(), "S", "e", "x"), INI_NO_FILE);
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "etc/mine.ini"));
    WriteEntry("x");
    EXPECT_EQ(ini_write_path(File().c_str(), "S", nullptr, "y"), INI_NO_FILE);
    EXPECT_EQ(Stored(), "x");
    EXPECT_EQ(ini_write_path(File().c_str(), "S", "e", nullptr), INI_DONE);
    EXPECT_EQ(Stored(), "");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, SearchedSettingsFile_TakesPathsToo) {
    const auto store = [](const char *section, const char *entry, const std::string &path) {
        return zr_schreibe_pfad(section, entry, path.c_str());
    };
    EXPECT_EQ(store("S", "e", "x"), -1);
    EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found}));
    Write("zr\\zr.zrini", "[S]\nf=1\n");
    const std::string file = Path("zr\\zr.zrini");
    EXPECT_EQ(store("S", "e", Path("zr\\bin\\x")), 0);
    EXPECT_EQ(Stored(file.c_str()), "$INSTALLDIR$\\bin\\x");
    EXPECT_EQ(zr_schreibe_pfad_ex(nullptr, "S", "e", Path("zr\\y").c_str()), 0);
    EXPECT_EQ(Stored(file.c_str()), "$INSTALLDIR$\\y");
    EXPECT_EQ(zr_schreibe_pfad("S", nullptr, "x"), -1);
    EXPECT_EQ(zr_schreibe_pfad(nullptr, "e", "Q:\\x"), 0); // in front of the first header
    EXPECT_EQ(Stored(file.c_str(), nullptr), "Q:\\x");
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_EQ(zr_schreibe_pfad_ex(File().c_str(), "S", "e", "x"), -1);
    WriteEntry(".");
    EXPECT_EQ(zr_schreibe_pfad_ex(File().c_str(), "S", "e", Path("etc\\x").c_str()), 0);
    EXPECT_EQ(Stored(), ".\\x");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniPath, SystemExe_IsNotWrittenIntoTheSettingsFile) {
    const char *told = "Pfad System / Exe wird nicht mehr geschrieben.";
    EXPECT_EQ(zr_schreibe_pfad("System", "Exe", "x"), -1);
    EXPECT_EQ(m_reports.Take(), zr::test::Reports(3, zr::test::Error("Zr", not_found)));
    Write("zr\\zr.zrini", "[System]\nExe=old\n");
    EXPECT_EQ(zr_schreibe_pfad("System", "Exe", "x"), 0);
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{zr::test::Message("Zr", told)});
    EXPECT_EQ(zr_schreibe_pfad_ex(nullptr, "sYSTEM", "eXE", "x"), 0);
    EXPECT_EQ(Reports(), Texts{told});
    EXPECT_EQ(m_folder.Read("zr/zr.zrini"), "[System]\nExe=old\n");
    EXPECT_EQ(zr_schreibe_pfad_ex(Path("zr\\zr.zrini").c_str(), "System", "Exe", "x"), 0); // a given file is any file
    EXPECT_EQ(Stored(Path("zr\\zr.zrini").c_str(), "System", "Exe"), "x");
    EXPECT_EQ(zr_schreibe_pfad("Sys", "Exe", "Q:\\x"), 0);
    EXPECT_EQ(Reports(), Texts{});
}

} // namespace
