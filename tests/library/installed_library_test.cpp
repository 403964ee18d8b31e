// The library in an installation of its own, loaded from there by a program that knows nothing else of it.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include <zrclb/version.h>

#include "child_process.h"
#include "platform/temp_folder.h"
#include "process_measures.h"
#include "suite_registry.h"

namespace {

namespace fs = std::filesystem;

class InstalledLibrary : public testing::Test {
protected:
    using Answers = std::map<std::string, std::string>;

    void SetUp() override {
        fs::create_directories(m_folder.Folder() / "zr" / "bin");
        fs::create_directories(m_folder.Folder() / "etc");
        fs::copy_file(ZR_LIBRARY_FILE, LibraryFile());
    }

    fs::path LibraryFile() const { return m_folder.Folder() / "zr" / "bin" / fs::path(ZR_LIBRARY_FILE).filename(); }

    // What the host saw, by name.
    Answers Ask(const std::string &task) {
        const std::string file = m_folder.Path("answers.txt");
        ChildProcess host(task + "\n" + LibraryFile().string() + "\n" + file, ZR_LIBRARY_HOST);
        EXPECT_TRUE(host.Passes());
        Answers answers;
        std::ifstream lines(file);
        for (std::string line; std::getline(lines, line);)
            answers[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
        return answers;
    }

    // A path below the test's folder in the library's form.
    std::string Path(const std::string &below) const {
        std::string path = (m_folder.Folder() / below).string();
        if (path[0] == '/')
            path.insert(0, "C:");
        std::replace(path.begin(), path.end(), '/', '\\');
        return path;
    }

    void Write(const std::string &below, const std::string &text) {
        fs::create_directories((m_folder.Folder() / below).parent_path());
        m_folder.Write(below, text);
    }

    bool Exists(const std::string &below) const { return fs::exists(m_folder.Folder() / below); }

    TempFolder m_folder;
    SuiteRegistry m_registry;
};

TEST_F(InstalledLibrary, AnswersFromSettingsThatTheRegistryNames) {
    const std::string host = fs::path(ZR_LIBRARY_HOST).filename().string();
    m_registry.Set("zr.ini", Path("etc"));
    m_registry.Set("InstallDir", Path("zr"));
    Write("etc/zr.zrini", "[System]\nZrLog=1\nDosToWin=1\nAllocMByte=300\nAllocProg=" + host +
                              "\n[Search]\nTables=tables;$INSTALLDIR$\\data\nHome=..\\home\n[Beep]\nTick=3,4\n");
    Write("zr/data/steel.txt", "");
    Answers answers = Ask("answers");
    EXPECT_GE(std::stoi(answers["megabytes"]), 300);
    EXPECT_LT(std::stoi(answers["megabytes"]), 400);
    EXPECT_EQ(answers["settings"], Path("etc/zr.zrini"));
    EXPECT_EQ(answers["install"], Path("zr"));
    EXPECT_EQ(answers["bin"], Path("zr/bin"));
    EXPECT_EQ(answers["bin64"], Path("zr/bin64"));
    EXPECT_EQ(answers["file"], "0" + Path("zr/data/steel.txt"));
    EXPECT_EQ(answers["folder"], "0" + Path("home"));
    EXPECT_EQ(answers["letters"], "desktop");
    EXPECT_EQ(answers["beeps"], "0");
    const std::string log = m_folder.Read("etc/zrlog.txt");
    EXPECT_NE(log.find("\r\n>ERROR  in " + host + "["), std::string::npos) << log;
    EXPECT_NE(log.find(" \"Host\" line 7:\r\n  reported by the host!\r\n"), std::string::npos) << log;
    // Record and texts of the library's own file.
    char version[80];
    std::snprintf(version, sizeof version, "%d.%02d%d", ZR_VERSION_MAJOR, ZR_VERSION_MINOR, ZR_VERSION_PATCH);
    EXPECT_EQ(answers["version"], version);
    EXPECT_EQ(answers["fits"], "0");
    EXPECT_NE(log.find("  The version of module (Frame 4,2,x,x) is incompatible"), std::string::npos) << log;
    EXPECT_NE(log.find("  Die Daten Plan entsprechen Version 5,1."), std::string::npos) << log;
    EXPECT_NE(log.find("Das Modul Frame kann nur mit Daten bis einschl. Version 4,2 arbeiten."), std::string::npos)
        << log;
}

TEST_F(InstalledLibrary, AnswersFromTheFolderAboveItsOwnWithoutTheRegistry) {
    Write("zr/zr.zrini", "[System]\nZrLog=2\nAllocMByte=300\nAllocProg=other.exe\n");
    Answers answers = Ask("answers");
    EXPECT_LT(std::stoi(answers["megabytes"]), 100);
    EXPECT_EQ(answers["settings"], Path("zr/zr.zrini"));
    EXPECT_EQ(answers["install"], Path("zr"));
    EXPECT_EQ(answers["file"], "-1");
    EXPECT_EQ(answers["letters"], "old");
    EXPECT_EQ(answers["beeps"], "1");
    EXPECT_FALSE(Exists("zr/zrlog.txt"));
}

TEST_F(InstalledLibrary, AnswersWithARegistryOfNonsense) {
    m_registry.Garble();
    Write("zr/bin/zr.zrini", "[System]\nZrLog=1\nDosToWin=1\n");
    Answers answers = Ask("answers");
    EXPECT_EQ(answers["settings"], Path("zr/bin/zr.zrini"));
    EXPECT_EQ(answers["install"], Path("zr"));
    EXPECT_EQ(answers["letters"], "desktop");
    EXPECT_TRUE(Exists("zr/bin/zrlog.txt"));
}

TEST_F(InstalledLibrary, LoadsWithoutAnySettings) {
    Answers answers = Ask("answers");
    EXPECT_EQ(answers["settings"], "");
    EXPECT_EQ(answers["bin"], Path("zr/bin"));
    EXPECT_EQ(answers["letters"], "old");
    EXPECT_EQ(answers["beeps"], "-1");
}

TEST_F(InstalledLibrary, AThousandLoadsAndUnloadsLeaveNothingBehind) {
    Write("zr/zr.zrini", "[System]\nZrLog=1\nDosToWin=1\n");
    fs::copy_file(LibraryFile(), LibraryFile().string() + ".held");
    Answers answers = Ask("cycles");
    EXPECT_EQ(answers["loaded"], "0");
    for (const auto &[name, growth] : answers)
        RecordProperty(name, growth);
    EXPECT_LE(std::stoi(answers["handles"]), 0);
    EXPECT_LE(std::stoi(answers["keys"]), 0);
    EXPECT_LE(std::stoll(answers["heap"]), 8000);
    if (ProcessMeasures::space_tells_leaks) {
        EXPECT_LE(std::stoll(answers["mappings"]), 10);
        EXPECT_LE(std::stoll(answers["space"]), 1 << 20);
    }
    EXPECT_TRUE(Exists("zr/zrlog.txt"));
}

} // namespace
