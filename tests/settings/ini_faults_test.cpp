// Settings files and what can happen to them: a process that dies at any step of a rewrite, a full disk, no memory, what is no
// settings file at all.
#include <zrclb/ini.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "child_process.h"
#include "env/refused_memory.h"
#include "env/report_capture.h"
#include "frame/refused_heap.h"
#include "platform/raw_file.h"
#include "platform/raw_output.h"
#include "platform/temp_folder.h"
#include "platform/temporary.h"
#include "settings/ini_on_the_way.h"

namespace {

namespace backend = zr::platform::backend;
using zr::platform::access_denied;
using zr::platform::disk_full;
using zr::platform::done;
using zr::platform::file_not_found;
using zr::platform::not_supported;
using zr::platform::services;

// ---- Steps of a rewrite --------------------------------------------------------------------------------------------

// The calls of the seam that a rewrite makes, counted; at a chosen one something happens.
struct Steps {
    static inline int left = -1;
    static inline void (*action)() = nullptr;
    static inline std::string temporary_folder;

    static void Count() {
        if (left >= 0 && left-- == 0)
            action();
    }

    static void Watch() {
        services.open_raw = [](const char *path) {
            Count();
            return backend::OpenRaw(path);
        };
        services.read_raw = [](std::intptr_t file, char *out, std::size_t size) {
            Count();
            return backend::ReadRaw(file, out, size);
        };
        services.temp_folder = [](char *out, std::size_t size) {
            Count();
            std::memcpy(out, temporary_folder.c_str(), std::min(size, temporary_folder.size() + 1));
            return temporary_folder.size();
        };
        services.temp_file_name = [](const char *folder, const char *prefix, unsigned unique, char *out) {
            Count();
            return backend::TempFileName(folder, prefix, unique, out);
        };
        services.open_output = [](const char *path, std::intptr_t &file, std::uint64_t &size) {
            Count();
            return backend::OpenOutput(path, file, size);
        };
        services.reserve_output = [](std::intptr_t file, std::uint64_t size) {
            Count();
            return backend::ReserveOutput(file, size);
        };
        // Two steps: a system that is stopped in the midst of a write has written some of it.
        services.write_output = [](std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size) {
            Count();
            const int code = backend::WriteOutput(file, at, bytes, size / 2);
            Count();
            return code != done ? code : backend::WriteOutput(file, at + size / 2, bytes + size / 2, size - size / 2);
        };
        services.cut_output = [](std::intptr_t file, std::uint64_t size) {
            Count();
            return backend::CutOutput(file, size);
        };
        services.close_output = [](std::intptr_t file) {
            Count();
            return backend::CloseOutput(file);
        };
    }
};

// What the second process does: the change, until it dies at the step that its argument begins with.
bool ChangeAndDie(const std::string &argument) {
    const std::size_t blank = argument.find(' ');
    const std::string folder = argument.substr(blank + 1);
    Steps::temporary_folder = folder + "/temporary/";
    Steps::left = std::atoi(argument.c_str());
    Steps::action = [] { std::_Exit(2); };
    Steps::Watch();
    return ini_write_string((folder + "/test.ini").c_str(), "S", "x", "new") == 0;
}

// It never gets to the tests.
const struct SecondProcess {
    SecondProcess() {
        if (!ChildProcess::Argument().empty())
            std::_Exit(ChangeAndDie(ChildProcess::Argument()) ? 0 : 1);
    }
} second_process;

// ---- The tests -----------------------------------------------------------------------------------------------------

class IniFaults : public testing::Test {
protected:
    IniFaults() {
        std::filesystem::create_directory(Temporary());
        Steps::temporary_folder = m_folder.Path("temporary") + "/";
        Steps::left = -1;
        Steps::Watch();
    }
    ~IniFaults() override { services = {}; }

    std::filesystem::path Temporary() const { return m_folder.Folder() / "temporary"; }

    const char *File(const std::string &bytes) {
        m_folder.Write("test.ini", bytes);
        return m_path.c_str();
    }
    std::string Bytes() const { return m_folder.Read("test.ini"); }

    // What the temporary files hold; they are removed.
    std::vector<std::string> TakeTemporary() const {
        std::vector<std::string> contents;
        for (const auto &entry : std::filesystem::directory_iterator(Temporary())) {
            std::ifstream file(entry.path(), std::ios::binary);
            contents.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
            file.close();
            std::filesystem::remove(entry.path());
        }
        return contents;
    }

    int Change(const char *value = "new") const { return ini_write_string(m_path.c_str(), "S", "x", value); }

    TempFolder m_folder;
    const std::string m_path = m_folder.Path("test.ini");
    zr::test::ReportCapture m_reports;
};

TEST_F(IniFaults, ProcessKilledAtAnyStep_LeavesTheOldFileOrTheNewOneOrBothInOne) {
    const std::string before = "[S]\r\n\r\n\r\nx=what was here\r\ny=1\r\n";
    const std::string after = "[S]\r\nx=new\r\ny=1\r\n";
    enum {
        old,
        on_the_way,
        new_one
    } state = old;
    int steps = 0, ways = 0;
    for (bool done_at_all = false; !done_at_all; ++steps) {
        ASSERT_LT(steps, 100);
        File(before);
        done_at_all = ChildProcess(std::to_string(steps) + " " + m_folder.Folder().string()).Passes();
        const std::string bytes = Bytes();
        const auto temporary = TakeTemporary();
        if (bytes == before) {
            EXPECT_EQ(state, old) << steps;
        } else if (bytes == after) {
            state = new_one;
        } else {
            EXPECT_NE(state, new_one) << steps;
            EXPECT_TRUE(zr::test::IsOnTheWay(bytes, before, after)) << steps << " " << bytes;
            state = on_the_way;
            ++ways;
        }
        if (done_at_all) {
            EXPECT_TRUE(temporary.empty());
        } else if (state != old) {
            EXPECT_EQ(temporary, std::vector<std::string>{after}) << steps;
        } else {
            EXPECT_LE(temporary.size(), 1U) << steps;
        }
    }
    EXPECT_EQ(state, new_one);
    EXPECT_EQ(Bytes(), after);
    EXPECT_EQ(ways, 2);   // in the midst of the new bytes, and in front of the cut
    EXPECT_GE(steps, 15); // one of which is that nothing happened
}

// Looks at the file in the midst of a rewrite, at every step, for files that grow and shrink and don't fit into memory.
TEST_F(IniFaults, FileAtAnyStep_IsOldUntilRoomIsMadeSureOf) {
    static std::string path, seen;
    static const auto look = [] {
        std::ifstream file(path, std::ios::binary);
        seen.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    };
    path = m_path;
    const std::string lines(70000, 'l');
    for (const std::string &value : {std::string(), std::string("longer than the old value")}) {
        for (const std::string &rest : {std::string(), "\r\n" + lines}) {
            const std::string before = "[S]\r\nx=old value" + rest;
            const std::string after = "[S]\r\nx=" + value + "\r\n" + (rest.empty() ? rest : rest.substr(2));
            bool is_new = false;
            for (int step = 0;; ++step) {
                File(before);
                Steps::left = step;
                Steps::action = [] { look(); };
                seen = "-";
                ASSERT_EQ(Change(value.c_str()), 0);
                ASSERT_EQ(Bytes(), after);
                ASSERT_TRUE(TakeTemporary().empty());
                if (seen == "-")
                    break;
                is_new = is_new || seen == after;
                ASSERT_TRUE(is_new || zr::test::IsOnTheWay(seen, before, after)) << step;
            }
            EXPECT_TRUE(is_new);
        }
    }
}

TEST_F(IniFaults, FullDiskForTheTemporaryFile_ChangesNothing) {
    for (const std::size_t size : {std::size_t{10}, std::size_t{500000}}) {
        const std::string before = "[S]\r\n\r\nx=old\r\n" + std::string(size, 'r');
        File(before);
        services.write_output = [](std::intptr_t, std::uint64_t, const char *, std::size_t) { return int{disk_full}; };
        EXPECT_EQ(Change(), -1);
        EXPECT_EQ(ini_delete_section(m_path.c_str(), "T"), 1);
        EXPECT_EQ(ini_rename_section(m_path.c_str(), "S", "T"), -1);
        EXPECT_EQ(Bytes(), before);
        EXPECT_TRUE(TakeTemporary().empty());
    }
}

TEST_F(IniFaults, FailureOfTheTemporaryFilesClose_ChangesNothing) {
    services.close_output = [](std::intptr_t file) {
        backend::CloseOutput(file);
        return int{disk_full};
    };
    File("[S]\r\nx=old");
    EXPECT_EQ(Change(), -1);
    EXPECT_EQ(Bytes(), "[S]\r\nx=old");
    EXPECT_TRUE(TakeTemporary().empty());
}

TEST_F(IniFaults, FullDiskForTheCopy_LeavesTheFileAsItWas) {
    services.reserve_output = [](std::intptr_t, std::uint64_t) { return int{disk_full}; };
    File("[S]\r\nx=old");
    EXPECT_EQ(Change(), disk_full);
    EXPECT_EQ(ini_delete_entry(m_path.c_str(), "S", "x"), 0); // told so
    EXPECT_EQ(ini_rename_entry(m_path.c_str(), "S", "x", "y"), disk_full);
    EXPECT_EQ(Bytes(), "[S]\r\nx=old");
    EXPECT_TRUE(TakeTemporary().empty());
}

// The system can't set room aside, and finds out that there is none when the file grows.
TEST_F(IniFaults, FullDiskWhereNothingCanBeReserved_LeavesTheFileAsItWas) {
    static int writes;
    services.reserve_output = [](std::intptr_t, std::uint64_t) { return int{not_supported}; };
    services.write_output = [](std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size) {
        return --writes >= 0 ? backend::WriteOutput(file, at, bytes, size) : int{disk_full};
    };
    const std::string value(5000, 'v');
    for (const int most : {1, 2}) {
        writes = most; // the temporary file, and then nothing or some of what is to stand behind the old end
        File("[S]\r\nx=old");
        EXPECT_EQ(Change(value.c_str()), disk_full);
        EXPECT_EQ(Bytes(), "[S]\r\nx=old");
    }
    writes = 9;
    EXPECT_EQ(Change(value.c_str()), 0);
    EXPECT_EQ(Bytes(), "[S]\r\nx=" + value + "\r\n");
    EXPECT_TRUE(TakeTemporary().empty());
}

TEST_F(IniFaults, TemporaryFileThatCannotBeHad_ChangesNothing) {
    File("[S]\r\nx=old");
    services.open_output = [](const char *, std::intptr_t &, std::uint64_t &) { return int{access_denied}; };
    EXPECT_EQ(Change(), -1);
    services.open_output = backend::OpenOutput;
    services.temp_file_name = [](const char *, const char *, unsigned, char *) { return 0U; };
    EXPECT_EQ(Change(), -1);
    EXPECT_EQ(zr::test::TextsOf(m_reports), std::vector<std::string>{"Failed GetTempFileName call"});
    EXPECT_EQ(Bytes(), "[S]\r\nx=old");
    EXPECT_TRUE(TakeTemporary().empty());
}

TEST_F(IniFaults, TemporaryFileThatDisappears_ChangesNothing) {
    const std::string before = "[S]\r\nx=old\r\n" + std::string(200000, 'r'); // too much to be held in memory
    File(before);
    static std::string path;
    path = m_path;
    services.open_raw = [](const char *file) { return file == path ? backend::OpenRaw(file) : -1; };
    EXPECT_EQ(Change(), file_not_found);
    EXPECT_EQ(Bytes(), before);
    EXPECT_TRUE(TakeTemporary().empty());
}

// What is there and can't be read must not be taken for an empty file.
TEST_F(IniFaults, UnreadableFile_IsNotReplaced) {
    File("[S]\r\nx=old");
    services.open_raw = [](const char *) -> std::intptr_t { return -1; };
    char value[9];
    zr_long size = 8;
    EXPECT_EQ(ini_read_string(m_path.c_str(), "S", "x", value, &size), -1);
    EXPECT_EQ(Change(), -1);
    EXPECT_EQ(ini_delete_entry(m_path.c_str(), "S", "x"), -1);
    services.open_raw = backend::OpenRaw;
    static int reads;
    for (const int failing : {1, 2, 3}) {
        const std::string before = "[S]\r\nx=old\r\n" + std::string(10000, '\n');
        File(before);
        reads = failing;
        services.read_raw = [](std::intptr_t file, char *out, std::size_t room) -> std::ptrdiff_t {
            return --reads == 0 ? -1 : backend::ReadRaw(file, out, room);
        };
        EXPECT_EQ(Change(), -1) << failing;
        EXPECT_EQ(Bytes(), before) << failing;
        EXPECT_TRUE(TakeTemporary().empty());
    }
}

TEST_F(IniFaults, NoMemory_IsNoMatter) {
    File("[S]\r\nx=old\r\n" + std::string(100000, 'r'));
    for (int others = 0; others < 3; ++others) {
        const zr::test::NthAllocation nth(others);
        const zr::test::HeapRefusal heap(others, true);
        char value[99];
        zr_long size = 98, list[2] = {1, 2}, count = 2;
        EXPECT_EQ(Change("1,2"), 0);
        EXPECT_EQ(ini_read_string(m_path.c_str(), "S", "x", value, &size), 0);
        EXPECT_EQ(ini_read_longs(m_path.c_str(), "S", "x", list, &count), 0);
        EXPECT_EQ(ini_write_longs(m_path.c_str(), "S", "x", list, 2), 0);
        EXPECT_EQ(ini_rename_section(m_path.c_str(), "S", "T"), 0);
        EXPECT_EQ(ini_rename_section(m_path.c_str(), "T", "S"), 0);
        EXPECT_FALSE(nth.Met() || heap.Met()); // none is asked for
    }
}

// Every byte there is, in every place: nothing is found, nothing but lines is told, and what is behind the change stays.
TEST_F(IniFaults, BinaryFile_IsAFileOfOddLines) {
    std::string bytes;
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            if (first != 0x1A && second != 0x1A)
                bytes += {static_cast<char>(first), static_cast<char>(second)};
        }
    }
    File(bytes);
    char value[99];
    zr_long size = 98;
    EXPECT_EQ(ini_read_string(m_path.c_str(), "no such section", "x", value, &size), 1);
    EXPECT_EQ(Change(), 0);
    EXPECT_EQ(ini_read_string(m_path.c_str(), "S", "x", value, &(size = 98)), 0);
    EXPECT_STREQ(value, "new");
    File("[S]\r\nx=old\r\n" + bytes);
    EXPECT_EQ(Change(), 0);
    std::string stored; // a text stream writes a CR in front of each line feed, and none of its own
    for (std::size_t i = 0; i < bytes.size(); ++i)
        stored += bytes[i] == '\n' && (i == 0 || bytes[i - 1] != '\r') ? "\r\n" : std::string(1, bytes[i]);
    EXPECT_EQ(Bytes(), "[S]\r\nx=new\r\n" + stored);
}

TEST_F(IniFaults, FolderAndDriveAndDevice_AreNoFiles) {
    char value[9] = "-";
    zr_long size = 8;
    for (const std::string &path : {m_folder.Folder().string(), m_folder.Folder().string() + "/", std::string("C:")}) {
        EXPECT_EQ(ini_read_string(path.c_str(), "S", "x", value, &size), -1) << path;
        EXPECT_NE(ini_write_string(path.c_str(), "S", "x", "new"), 0) << path;
        EXPECT_EQ(ini_delete_section(path.c_str(), "S"), -1) << path;
    }
    EXPECT_STREQ(value, "-");
    EXPECT_TRUE(TakeTemporary().empty());
}

} // namespace
