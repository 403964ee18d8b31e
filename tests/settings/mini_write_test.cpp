// Settings files held in memory: writing, removing, renaming, updating the file; what happens without memory or disk.
#include <zrclb/mini.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zrclb/report.h>

#include "frame/counted_allocation.h"
#include "frame/log_hook.h"
#include "frame/refused_heap.h"
#include "platform/file_verbs.h"
#include "platform/raw_output.h"
#include "settings/mini_fixture.h"

namespace {

using namespace std::string_literals;
using zr::platform::services;
using zr::test::Error;
using zr::test::HeapRefusal;

class MiniWrite : public MiniFixture {
protected:
    static void SetUpTestSuite() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    static int DiskIsFull(std::intptr_t, std::uint64_t, const char *, std::size_t) { return 112; }

    // Makes the process that ends tell what its log holds, and remove its folder.
    static void TellAtTheEnd() {
        zr::frame::LogHook hook;
        hook.is_on = [] { return true; };
        hook.path = [](char *out, std::size_t size) { return Give((s_folder / "log").string(), out, size) != 0; };
        zr::frame::SetLogHook(hook);
        std::atexit([] {
            std::cerr << std::ifstream(s_folder / "log").rdbuf();
            std::error_code ignored;
            std::filesystem::remove_all(s_folder, ignored);
        });
    }

    static inline std::filesystem::path s_folder;

    // What the file is after the handle has been closed.
    std::string Closed() {
        EXPECT_EQ(mini_close(&m_handle), 1);
        EXPECT_EQ(m_handle, nullptr);
        return Bytes();
    }

    int Set(const Text &section, const Text &entry, const Text &value) {
        return mini_write_string(m_handle, OrNull(section), OrNull(entry), OrNull(value));
    }
};

// ---- Writing ------------------------------------------------------------------------------------------------------

TEST_F(MiniWrite, NewFile_ComesToBeAtTheUpdate) {
    Reopen();
    EXPECT_EQ(Set("S", "e", "v"), 0);
    EXPECT_FALSE(FileExists());
    EXPECT_EQ(mini_delete_section(m_handle, "none"), -1);
    EXPECT_EQ(mini_rename_section(m_handle, "S", "T"), 0);
    EXPECT_EQ(mini_rename_section(m_handle, "T", "S"), 0);
    EXPECT_FALSE(FileExists());
    EXPECT_EQ(m_reports.Take(), zr::test::Reports()); // a file that is still to come is no error
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("[S]\ne=v"));
    EXPECT_EQ(Set({}, "top", "0"), 0);
    EXPECT_EQ(Set("T", "e", ""), 0);
    EXPECT_EQ(Bytes(), Stored("[S]\ne=v"));
    EXPECT_EQ(Closed(), Stored("top=0\n\n[S]\ne=v\n\n[T]\ne="));
}

TEST_F(MiniWrite, Update_LosesCommentsAndBlankLines) {
    Open(";note\n[A]\nx = 1\n");
    EXPECT_EQ(Closed(), Stored("[A]\nx= 1"));
    Open("\n; top\n t = 0 \n\n[ A ] text\n\n; in A\n a = 1 \nbad\n[B]\n[]\nlost=1\n[A]\na=2\n\n");
    EXPECT_EQ(Closed(), Stored("t= 0\n\n[A]\na= 1\n\n[B]\n\n[A]\na=2"));
    Open("");
    EXPECT_EQ(Closed(), "");
    Open("; nothing else\n");
    EXPECT_EQ(Closed(), "");
    Open("=\n");
    EXPECT_EQ(Closed(), "=");
}

TEST_F(MiniWrite, NewEntry_GoesBehindTheLastOfItsSection) {
    Open("[A]\na=1\nb=2\n[B]\nx=1\n");
    EXPECT_EQ(Set("A", "c", "3"), 0);
    EXPECT_EQ(Set(" A ", " b\t", "new"), 0); // both names are trimmed
    EXPECT_EQ(Set(" C ", "x", " v "), 0);
    EXPECT_EQ(Set("", "top", "1"), 0);
    EXPECT_EQ(Closed(), Stored("top=1\n\n[A]\na=1\nb=new\nc=3\n\n[B]\nx=1\n\n[C]\nx= v "));
}

TEST_F(MiniWrite, FirstOfSeveral_IsWritten) {
    Open("[A]\nx=1\nx=2\n[A]\nx=3\ny=4\n");
    EXPECT_EQ(Set("A", "x", "9"), 0);
    EXPECT_EQ(Set("A", "y", "8"), 0);
    EXPECT_EQ(Closed(), Stored("[A]\nx=9\nx=2\ny=8\n\n[A]\nx=3\ny=4"));
}

TEST_F(MiniWrite, BlankTopArea_GoesInFrontOfAll) {
    Open("[A]\nx=1\n");
    EXPECT_EQ(mini_unload_one_section(m_handle, ""), 0);
    EXPECT_EQ(Sections(), "A");
    std::filesystem::remove(m_folder.Folder() / "test.ini"); // so that it can't be loaded again
    EXPECT_EQ(Set(" ", "t", "0"), 0);
    EXPECT_EQ(Sections(), ",A");
    EXPECT_EQ(Closed(), Stored("t=0\n\n[A]\nx=1"));
}

TEST_F(MiniWrite, State_TellsOfChanges) {
    Open("[A]\nx=1\n[B]\ny=2\n");
    Set("B", "y", "3");
    Set("C", " ", "4");
    const auto sections = Content();
    std::string changes;
    for (const auto &section : sections)
        changes += section.name + (section.changed ? "1" : "0");
    EXPECT_EQ(changes, "0A0B1C0");
    const list_element *const of_b = m_handle->sections.last->prev;
    EXPECT_EQ(reinterpret_cast<const mini_section *>(of_b)->state, 1);
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(Content(), sections); // an update leaves all in memory as it is
    EXPECT_EQ(reinterpret_cast<const mini_section *>(m_handle->sections.last)->entries.count, 0);
}

TEST_F(MiniWrite, Arguments_AreTestedInTheirOrder) {
    Open("[S]\nx=1\n");
    EXPECT_EQ(mini_write_string(nullptr, "S", nullptr, nullptr), -1);
    EXPECT_EQ(Set("S", {}, {}), 2);
    EXPECT_EQ(Set("S", "x", {}), 3);
    EXPECT_EQ(Set("S", " ", {}), 3);
    EXPECT_EQ(Set("S", "", "v"), 2);
    EXPECT_EQ(Set("new", "  ", "v"), 2); // its section comes to be
    EXPECT_EQ(Sections(), ",S,new");
    const zr_long number = 1;
    const double real = 1;
    EXPECT_EQ(mini_write_long(nullptr, "S", "x", 1), -1);
    EXPECT_EQ(mini_write_long(m_handle, "S", nullptr, 1), 2);
    EXPECT_EQ(mini_write_double(nullptr, "S", "x", 1), -1);
    EXPECT_EQ(mini_write_double(m_handle, "S", nullptr, 1), 2);
    EXPECT_EQ(mini_write_longs(nullptr, "S", nullptr, nullptr, 1), -1);
    EXPECT_EQ(mini_write_longs(m_handle, "S", nullptr, nullptr, 1), 2);
    EXPECT_EQ(mini_write_longs(m_handle, "S", "x", nullptr, 1), 3);
    EXPECT_EQ(mini_write_longs(m_handle, "S", " ", &number, 1), 2);
    EXPECT_EQ(mini_write_doubles(nullptr, "S", nullptr, nullptr, 1), -1);
    EXPECT_EQ(mini_write_doubles(m_handle, "S", nullptr, nullptr, 1), 2);
    EXPECT_EQ(mini_write_doubles(m_handle, "S", "x", nullptr, 1), 3);
    EXPECT_EQ(mini_write_doubles(m_handle, "S", " ", &real, 1), 2);
    EXPECT_EQ(mini_write_path(nullptr, "S", nullptr, nullptr), -1);
    EXPECT_EQ(mini_write_path(m_handle, "S", nullptr, nullptr), 2);
    EXPECT_EQ(mini_write_path(m_handle, "S", "x", nullptr), 3);
    EXPECT_EQ(mini_write_path(m_handle, "S", " ", "C:\\a"), 2);
    EXPECT_EQ(Closed(), Stored("[S]\nx=1\n\n[new]"));
}

TEST_F(MiniWrite, Numbers_HaveTheirForms) {
    Reopen();
    EXPECT_EQ(mini_write_double(m_handle, "S", "half", 0.5), 0);
    EXPECT_EQ(mini_write_double(m_handle, "S", "big", -1e300), 0);
    EXPECT_EQ(mini_write_long(m_handle, "S", "l", -2147483647 - 1), 0);
    const double reals[] = {1.5, 1e300, 1.0 / 3};
    EXPECT_EQ(mini_write_doubles(m_handle, "S", "ds", reals, 3), 0);
    const zr_long longs[] = {1, -2147483647 - 1, 3};
    EXPECT_EQ(mini_write_longs(m_handle, "S", "ls", longs, 3), 0);
    EXPECT_EQ(mini_write_longs(m_handle, "S", "one", longs, 1), 0);
    EXPECT_EQ(mini_write_longs(m_handle, "S", "none", longs, 0), 0);
    EXPECT_EQ(mini_write_longs(m_handle, "S", "less", nullptr, -1), 0);
    EXPECT_EQ(mini_write_doubles(m_handle, "S", "null", nullptr, 0), 0);
    EXPECT_EQ(Closed(), Stored("[S]\nhalf=0.5\nbig=-1e+300\nl=-2147483648\nds=1.5,1e+300,0.333333\n"
                               "ls=1,-2147483648,3\none=1\nnone=\nless=\nnull="));
    EXPECT_EQ(ini_write_double(m_path.c_str(), "S", "half", 0.5), 0); // the other family has another form
    Reopen();
    EXPECT_EQ(Value("S", "half"), "0.500000");
}

TEST_F(MiniWrite, ListOverItsLimit_EndsABracketAndWritesNothing) {
    static int boxes;
    boxes = 0;
    services.show_message_box = [](zr_window, const char *, const char *, unsigned) { return ++boxes; };
    Reopen();
    std::vector<zr_long> values(1023, 1); // with their commas 2046 characters
    EXPECT_EQ(mini_write_longs(m_handle, "S", "e", values.data(), 1023), 0);
    EXPECT_EQ(Value("S", "e").size(), 2045U);
    values.back() = 10; // 2047
    EXPECT_EQ(mini_write_longs(m_handle, "S", "e", values.data(), 1023), 0);
    EXPECT_EQ(Value("S", "e").size(), 2046U);
    values.back() = 100;
    EXPECT_EQ(mini_write_longs(nullptr, "S", "e", values.data(), 1023), -1);
    EXPECT_EQ(mini_write_longs(m_handle, "S", nullptr, values.data(), 1023), 2);
    EXPECT_EQ(boxes, 0);
    EXPECT_EQ(mini_write_longs(m_handle, "S", "e", values.data(), 1023), 3);
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(Value("S", "e").size(), 2046U);
    zr_begin("open");
    const std::vector<double> reals(600, 0.25);
    EXPECT_EQ(mini_write_doubles(m_handle, "S", "e", reals.data(), 600), 3);
    EXPECT_EQ(boxes, 1); // it closed this bracket
    zr_end();
    EXPECT_EQ(boxes, 2);
    EXPECT_EQ(Value("S", "e").size(), 2046U);
    zr_long count = 1023;
    EXPECT_EQ(mini_read_longs(m_handle, "S", "e", values.data(), &count), 0);
    EXPECT_EQ(count, 1023);
    EXPECT_EQ(values.back(), 10);
}

TEST_F(MiniWrite, Path_KeepsTheFormOfTheOldValue) {
    Open("[S]\nrel=.\\a\nvar=$INSTALLDIR$\\b\nplain=C:\\c\n");
    const std::string under_folder = Path("sub\\x.txt"), under_root = Path("zr\\bin\\y.dll");
    const auto written = [&](const std::string &entry, const std::string &path) {
        EXPECT_EQ(mini_write_path(m_handle, "S", entry.c_str(), path.c_str()), 0);
        return Value("S", entry);
    };
    EXPECT_EQ(written("rel", under_folder), ".\\sub\\x.txt");
    EXPECT_EQ(written("rel", under_root), ".\\zr\\bin\\y.dll");
    EXPECT_EQ(written("rel", "Q:\\z"), "Q:\\z");
    EXPECT_EQ(written("var", under_root), "$INSTALLDIR$\\bin\\y.dll");
    EXPECT_EQ(written("plain", under_root), under_root);
    EXPECT_EQ(written("new", under_root), "$INSTALLDIR$\\bin\\y.dll");
    EXPECT_EQ(written("new2", "Q:\\z"), "Q:\\z");
    // What was written is what the other family would have written, and reads back.
    ini_write_string(m_path.c_str(), "S", "rel", ".\\a");
    EXPECT_EQ(ini_write_path(m_path.c_str(), "S", "rel", under_folder.c_str()), 0);
    EXPECT_EQ(ini_write_path(m_path.c_str(), "S", "fresh", under_folder.c_str()), 0);
    char text[260];
    zr_long size = 259;
    EXPECT_EQ(ini_read_string(m_path.c_str(), "S", "rel", text, &size), 0);
    EXPECT_EQ(written("rel", "Q:\\z"), "Q:\\z");
    Set("S", "rel", ".\\a");
    EXPECT_EQ(written("rel", under_folder), text);
    size = 259;
    EXPECT_EQ(ini_read_string(m_path.c_str(), "S", "fresh", text, &size), 0);
    EXPECT_EQ(written("fresh", under_folder), text);
    size = 259;
    EXPECT_EQ(mini_read_path(m_handle, "S", "fresh", text, &size), 0);
    EXPECT_EQ(text, under_folder);
    // An old value counts up to 260 characters; one that is longer is none.
    for (const std::size_t length : {259U, 260U, 261U}) {
        Set("S", "long", std::string(length, 'p'));
        EXPECT_EQ(written("long", under_root), length > 260 ? "$INSTALLDIR$\\bin\\y.dll" : under_root) << length;
    }
    const std::string far_away = "C:\\" + std::string(256, 'f'), too_far = far_away + "f", absurd(4000, 'a');
    for (const std::string &path : {far_away, too_far, absurd, ""s})
        EXPECT_EQ(written("far" + std::to_string(path.size()), path), path);
    mini_unload_one_section(m_handle, "S"); // the file has the old value of one that is not in memory
    ini_write_string(m_path.c_str(), "S", "rel", ".\\a");
    EXPECT_EQ(written("rel", "Q:\\z"), "Q:\\z");
    EXPECT_EQ(written("rel", under_folder), under_folder);
}

TEST_F(MiniWrite, BothDirections_GoByTheFlag) {
    Reopen();
    char text[10] = "abc";
    zr_long size = 9, number = 5, count = 1;
    double real = 0.5;
    EXPECT_EQ(mini_rw_string(1, m_handle, "s", "t", text, &size), 0);
    EXPECT_EQ(mini_rw_long(2, m_handle, "s", "l", &number), 0);
    EXPECT_EQ(mini_rw_double(-1, m_handle, "s", "d", &real), 0);
    EXPECT_EQ(mini_rw_longs(1, m_handle, "s", "ls", &number, &count), 0);
    EXPECT_EQ(mini_rw_doubles(1, m_handle, "s", "ds", &real, &count), 0);
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("[s]\nt=abc\nl=5\nd=0.5\nls=5\nds=0.5"));
    number = 0;
    real = 0;
    EXPECT_EQ(mini_rw_long(0, m_handle, "s", "l", &number), 0);
    EXPECT_EQ(mini_rw_double(0, m_handle, "s", "d", &real), 0);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(real, 0.5);
    number = 0;
    real = 0;
    EXPECT_EQ(mini_rw_longs(0, m_handle, "s", "ls", &number, &count), 0);
    EXPECT_EQ(mini_rw_doubles(0, m_handle, "s", "ds", &real, &count), 0);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(real, 0.5);
    std::strcpy(text, "");
    EXPECT_EQ(mini_rw_string(0, m_handle, "s", "t", text, &size), 0);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(mini_rw_string(1, m_handle, "s", "t", nullptr, nullptr), 3);
    EXPECT_EQ(mini_rw_string(0, m_handle, "s", "t", text, nullptr), 3);
    for (int write = 0; write < 2; ++write) {
        EXPECT_EQ(mini_rw_string(write, nullptr, "s", "t", text, &size), -1);
        EXPECT_EQ(mini_rw_long(write, nullptr, "s", "l", &number), -1);
        EXPECT_EQ(mini_rw_double(write, nullptr, "s", "l", &real), -1);
        EXPECT_EQ(mini_rw_longs(write, nullptr, "s", "l", &number, &count), -1);
        EXPECT_EQ(mini_rw_doubles(write, nullptr, "s", "l", &real, &count), -1);
        EXPECT_EQ(mini_rw_long(write, m_handle, "s", "l", nullptr), 3);
        EXPECT_EQ(mini_rw_double(write, m_handle, "s", "l", nullptr), 3);
        EXPECT_EQ(mini_rw_longs(write, m_handle, "s", "l", nullptr, &count), 3);
        EXPECT_EQ(mini_rw_longs(write, m_handle, "s", "l", &number, nullptr), 3);
        EXPECT_EQ(mini_rw_doubles(write, m_handle, "s", "l", nullptr, &count), 3);
        EXPECT_EQ(mini_rw_doubles(write, m_handle, "s", "l", &real, nullptr), 3);
    }
}

TEST_F(MiniWrite, Texts_MayBeTheLibrarysOwn) {
    Open("[S]\nS=S\nx=abcdef\n");
    EXPECT_EQ(mini_write_string(m_handle, "S", "x", mini_get_string(m_handle, "S", "x", nullptr, nullptr) + 2), 0);
    EXPECT_EQ(Value("S", "x"), "cdef");
    EXPECT_EQ(mini_write_string(m_handle, "S", "x", mini_get_string(m_handle, "S", "x", nullptr, nullptr) + 2), 0);
    EXPECT_EQ(Value("S", "x"), "ef");
    const auto *const section = reinterpret_cast<const mini_section *>(m_handle->sections.last);
    const auto *const entry = reinterpret_cast<const mini_entry *>(section->entries.first);
    EXPECT_EQ(mini_rename_entry(m_handle, section->name, entry->name, entry->value), 0);
    EXPECT_EQ(mini_rename_section(m_handle, section->name, entry->value), 0);
    EXPECT_EQ(mini_rename_section(m_handle, section->name, section->name), 0);
    EXPECT_EQ(mini_rename_entry(m_handle, section->name, entry->name, entry->name), 0);
    EXPECT_EQ(mini_delete_entry(m_handle, entry->value, entry->name), 0);
    EXPECT_EQ(mini_delete_section(m_handle, section->name), 0);
    EXPECT_EQ(Sections(), "");
}

TEST_F(MiniWrite, LongTexts_AreCutInTheFileOnly) {
    Reopen();
    for (const std::size_t size : {2046U, 2047U, 2048U, 6000U, 100000U}) {
        const std::string value(size - 2, 'v');
        EXPECT_EQ(Set("S", "x", value), 0);
        EXPECT_EQ(Set("S", "y", "1"), 0);
        EXPECT_EQ(mini_update_file(m_handle), 1);
        EXPECT_EQ(Bytes(), Stored("[S]\nx=" + value.substr(0, 2045) + "\ny=1")) << size;
    }
    EXPECT_EQ(std::strlen(mini_get_string(m_handle, "S", "x", nullptr, nullptr)), 99998U);
    const std::string name(2100, 'n');
    EXPECT_EQ(Set("S", name, "1"), 0);
    EXPECT_EQ(Value("S", name), "1");
    EXPECT_EQ(mini_delete_entry(m_handle, "S", "x"), 0);
    EXPECT_EQ(Closed(), Stored("[S]\ny=1\n" + name.substr(0, 2047)));
    Reopen();
    EXPECT_EQ(m_reports.Take().size(), 1U); // what is left of it has no sign
    for (const std::size_t size : {254U, 255U, 256U, 257U}) {
        mini_unload_all_sections(m_handle);
        std::filesystem::remove(m_folder.Folder() / "test.ini");
        EXPECT_EQ(Set(std::string(size, 's'), "x", "1"), 0);
        EXPECT_EQ(mini_update_file(m_handle), 1);
        EXPECT_EQ(Bytes(), Stored("[" + std::string(std::min<std::size_t>(size, 255), 's') + "]\nx=1"));
    }
}

TEST_F(MiniWrite, LineFeeds_AreWrittenAsLineEnds) {
    Open("[S]\na=1\nb=2\n");
    EXPECT_EQ(Set("S", "a", "1\n[T]"), 0);
    EXPECT_EQ(Set("S", "c\nd", "\r\n3"), 0);
    EXPECT_EQ(mini_rename_entry(m_handle, "S", "b", "e\nf"), 0);
    EXPECT_EQ(Set("U\nV", "x", "\rand \x1A"), 0);
    EXPECT_EQ(Set("U\nV", "y\nz", "4"), 0);
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("[S]\na=1\n[T]\ne\nf=2\nc\nd=\r\n3\n\n[U\nV]\nx=\rand \x1A\ny\nz=4"));
    EXPECT_EQ(Set("S", "a", "1"), 0);
    EXPECT_EQ(mini_delete_entry(m_handle, "S", "c\nd"), 0);
    EXPECT_EQ(mini_rename_entry(m_handle, "S", "e\nf", "b"), 0);
    EXPECT_EQ(mini_delete_section(m_handle, "U\nV"), 0);
    EXPECT_EQ(Closed(), Stored("[S]\na=1\nb=2"));
}

// Names come and go while tables of them exist.
TEST_F(MiniWrite, ManyNames_AreFoundAfterEveryChange) {
    std::mt19937 random(4);
    Open("");
    m_folder.Write("reference.ini", "");
    Reference reference(Path("reference.ini"));
    const auto pick = [&](std::size_t count) { return std::to_string(random() % count); };
    for (int round = 0; round < 30000; ++round) {
        const std::string section = "s" + std::to_string(random() % 100 == 0 ? random() % 30 : random() % 2);
        const std::string entry = "entry" + pick(round < 15000 ? 100 : 10);
        const std::string value = std::to_string(round);
        switch (random() % 8) {
        case 0:
            ASSERT_EQ(Set(section, entry, value), reference.Write(section, entry, value));
            break;
        case 1:
            if (random() % 8 == 0) {
                const int expected = reference.Find(section) != nullptr ? reference.DeleteEntry(section, entry) : 1;
                ASSERT_EQ(mini_delete_entry(m_handle, section.c_str(), entry.c_str()), expected);
            }
            break;
        case 2:
            if (random() % 8 == 0 && reference.Find(section) != nullptr) {
                const std::string name = "entry" + pick(100); // maybe one that is there
                ASSERT_EQ(mini_rename_entry(m_handle, section.c_str(), entry.c_str(), name.c_str()),
                          reference.RenameEntry(section, entry, name));
            }
            break;
        case 3:
            if (random() % 200 == 0) {
                ASSERT_EQ(mini_unload_one_section(m_handle, section.c_str()), reference.Unload(section));
            }
            break;
        default:
            ASSERT_EQ(Read(section, entry, 10), reference.Read(section, entry, 10)) << round;
        }
    }
    EXPECT_EQ(Content(), reference.sections);
    EXPECT_GT(reference.sections.size(), 20U);
}

// ---- Removing and renaming ----------------------------------------------------------------------------------------

const char *const sample = "; t\nt=0\n[A]\n; c\na = 1\nb=2\n\n[B]\nb=2\n";

TEST_F(MiniWrite, DeletedEntry_StaysInTheFileUntilTheUpdate) {
    Open(sample);
    EXPECT_EQ(mini_delete_entry(m_handle, " A ", "a"), 0);
    EXPECT_EQ(mini_delete_entry(m_handle, "A", "a"), 2);
    EXPECT_EQ(mini_delete_entry(m_handle, "A", " b"), 2);
    EXPECT_EQ(mini_delete_entry(m_handle, "A", nullptr), 2);
    EXPECT_EQ(mini_delete_entry(nullptr, "A", "a"), -1);
    EXPECT_EQ(mini_delete_entry(nullptr, "A", nullptr), -1);
    EXPECT_EQ(Bytes(), sample);
    EXPECT_EQ(Entries("A"), "b");
    EXPECT_EQ(mini_close_ex(&m_handle), 1);
    EXPECT_EQ(Bytes(), sample);
    Reopen();
    EXPECT_EQ(mini_delete_entry(m_handle, nullptr, "t"), 0);
    EXPECT_EQ(Closed(), Stored("[A]\na= 1\nb=2\n\n[B]\nb=2"));
}

TEST_F(MiniWrite, DeletedSection_IsGoneFromTheFileAtOnce) {
    Open(sample);
    EXPECT_EQ(mini_delete_section(m_handle, nullptr), 2);
    EXPECT_EQ(mini_delete_section(nullptr, "A"), -1);
    EXPECT_EQ(mini_delete_section(nullptr, nullptr), -1);
    EXPECT_EQ(Bytes(), sample);
    EXPECT_EQ(mini_delete_section(m_handle, " A "), 0);
    EXPECT_EQ(Sections(), ",B");
    EXPECT_EQ(mini_close_ex(&m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("; t\nt=0\n\n[B]\nb=2\n"));
    Reopen();
    EXPECT_EQ(mini_delete_section(m_handle, " "), 0); // the top area
    EXPECT_EQ(Sections(), "B");
    EXPECT_EQ(Bytes(), Stored("; t\n\n[B]\nb=2\n"));
    EXPECT_EQ(mini_delete_section(m_handle, "C"), 1); // what the file answers
    Set("C", "x", "1");
    EXPECT_EQ(mini_delete_section(m_handle, "C"), 0); // in memory only
    EXPECT_EQ(Closed(), Stored("[B]\nb=2"));
}

TEST_F(MiniWrite, RenamedEntry_StaysInTheFileUntilTheUpdate) {
    Open(sample);
    EXPECT_EQ(mini_rename_entry(m_handle, " A ", "a", " n "), 0);
    EXPECT_EQ(Bytes(), sample);
    EXPECT_EQ(Entries("A"), "n,b");
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "a", "n"), 2);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", nullptr, nullptr), 2);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "b", nullptr), 5);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "none", " \t"), 5);
    EXPECT_EQ(mini_rename_entry(nullptr, "A", nullptr, nullptr), -1);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "b", "n"), 0); // two of one name
    EXPECT_EQ(Value("A", "n"), " 1");
    for (const std::size_t size : {254U, 255U, 256U, 257U}) {
        EXPECT_EQ(mini_rename_entry(m_handle, "B", "b", std::string(size, 'r').c_str()), 0);
        EXPECT_EQ(Entries("B"), std::string(std::min<std::size_t>(size, 255), 'r'));
        EXPECT_EQ(mini_rename_entry(m_handle, "B", std::string(std::min<std::size_t>(size, 255), 'r').c_str(), "b"), 0);
    }
    EXPECT_EQ(Closed(), Stored("t=0\n\n[A]\nn= 1\nn=2\n\n[B]\nb=2"));
}

TEST_F(MiniWrite, RenamedSection_HasItsNameInTheFileAtOnce) {
    Open(sample);
    EXPECT_EQ(mini_rename_section(m_handle, nullptr, nullptr), 2);
    EXPECT_EQ(mini_rename_section(m_handle, "A", nullptr), 5);
    EXPECT_EQ(mini_rename_section(m_handle, "none", " "), 5);
    EXPECT_EQ(mini_rename_section(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(mini_rename_section(m_handle, "none", "N"), 1);
    EXPECT_EQ(mini_rename_section(m_handle, " A ", " N "), 0);
    EXPECT_EQ(Sections(), ",N,B");
    EXPECT_EQ(Bytes(), Stored("; t\nt=0\n\n[N]\n; c\na = 1\nb=2\n\n[B]\nb=2"));
    EXPECT_EQ(mini_rename_section(m_handle, "", "T"), 0);
    EXPECT_EQ(Sections(), "T,N,B");
    EXPECT_EQ(ResultOf("", "t"), 1);
    EXPECT_EQ(mini_close_ex(&m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("; t\n[T]\nt=0\n\n[N]\n; c\na = 1\nb=2\n\n[B]\nb=2"));
    Reopen();
    for (const std::size_t size : {79U, 80U, 255U, 256U}) {
        EXPECT_EQ(mini_rename_section(m_handle, "B", std::string(size, 'r').c_str()), 0);
        const std::string name(std::min<std::size_t>(size, 255), 'r'), name_in_file(79, 'r');
        EXPECT_EQ(mini_section_exists(m_handle, name.c_str()), 1);
        EXPECT_THAT(Bytes(), testing::EndsWith(Stored("[" + name_in_file + "]\nb=2")));
        EXPECT_EQ(mini_rename_section(m_handle, name.c_str(), "B"), 0);
        EXPECT_THAT(Bytes(), testing::EndsWith(Stored("[B]\nb=2")));
    }
    std::filesystem::remove(m_folder.Folder() / "test.ini");
    m_reports.Take();
    EXPECT_EQ(mini_rename_section(m_handle, "B", "C"), 0); // the file can't follow
    EXPECT_EQ(m_reports.Take(), zr::test::Reports());
    EXPECT_FALSE(FileExists());
    EXPECT_EQ(Sections(), ",T,N,C");
}

TEST_F(MiniWrite, UnloadedSection_IsEditedInTheFile) {
    Open(sample);
    mini_unload_all_sections(m_handle);
    EXPECT_EQ(mini_delete_entry(m_handle, " A ", "a"), 0);
    EXPECT_EQ(Bytes(), Stored("; t\nt=0\n\n[A]\n; c\nb=2\n\n[B]\nb=2\n"));
    EXPECT_EQ(mini_delete_entry(m_handle, "A", "a"), 2);
    EXPECT_EQ(mini_delete_entry(m_handle, "C", "a"), 1);
    EXPECT_EQ(mini_rename_entry(m_handle, " A ", "b", " n "), 0);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "b", "n"), 2);
    EXPECT_EQ(mini_rename_entry(m_handle, "C", "b", "n"), 1);
    EXPECT_EQ(mini_rename_section(m_handle, " A ", "N"), 0);
    EXPECT_EQ(mini_rename_section(m_handle, "A", "N"), 1);
    EXPECT_EQ(mini_delete_section(m_handle, " B "), 0);
    EXPECT_EQ(mini_delete_section(m_handle, "B"), 1);
    EXPECT_EQ(Bytes(), Stored("; t\nt=0\n\n[N]\n; c\nn=2"));
    EXPECT_EQ(m_handle->sections.count, 0);
    std::filesystem::remove(m_folder.Folder() / "test.ini");
    EXPECT_EQ(mini_delete_entry(m_handle, "A", "a"), -1);
    EXPECT_EQ(mini_delete_section(m_handle, "A"), -1);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "a", "n"), -1);
    EXPECT_EQ(mini_rename_section(m_handle, "A", "n"), -1);
}

TEST_F(MiniWrite, ReadOnlyHandle_WritesInMemoryOnly) {
    Open(sample, MINI_READONLY);
    EXPECT_EQ(Set("A", "a", "new"), 0);
    EXPECT_EQ(Set("C", "x", "new"), 0);
    EXPECT_EQ(Value("A", "a"), "new");
    EXPECT_EQ(mini_delete_entry(m_handle, "A", "a"), 4);
    EXPECT_EQ(mini_delete_entry(m_handle, "A", nullptr), 2);
    EXPECT_EQ(mini_delete_section(m_handle, "A"), 4);
    EXPECT_EQ(mini_delete_section(m_handle, nullptr), 2);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "a", "n"), 4);
    EXPECT_EQ(mini_rename_entry(m_handle, "A", "a", ""), 4);
    EXPECT_EQ(mini_rename_section(m_handle, "A", "N"), 4);
    EXPECT_EQ(mini_rename_section(m_handle, "A", nullptr), 4);
    EXPECT_EQ(Sections(), ",A,B,C");
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(mini_close(&m_handle), 1);
    EXPECT_EQ(m_handle, nullptr);
    EXPECT_EQ(Bytes(), sample);
}

// ---- Faults -------------------------------------------------------------------------------------------------------

TEST_F(MiniWrite, ReadOnlyFile_StaysAsItIs) {
    Open(sample);
    Set("A", "a", "new");
    ASSERT_EQ(zr::platform::SetAttributes(m_path.c_str(), zr::platform::attribute_read_only), 0);
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(Bytes(), sample);
    EXPECT_EQ(Value("A", "a"), "new");
    EXPECT_EQ(mini_delete_section(m_handle, "B"), 0);
    EXPECT_EQ(Bytes(), sample);
    EXPECT_EQ(mini_close(&m_handle), 0);
    EXPECT_EQ(m_handle, nullptr);
    ASSERT_EQ(zr::platform::SetAttributes(m_path.c_str(), zr::platform::attribute_normal), 0);
    EXPECT_EQ(Bytes(), sample);
}

TEST_F(MiniWrite, UpdateKeepsThePermissionsOfTheFile) {
    Open(sample);
    const auto path = m_folder.Folder() / "test.ini";
    using std::filesystem::perms; // that no new file has
    std::filesystem::permissions(path, perms::owner_all | perms::others_read);
    const auto before = std::filesystem::status(path).permissions();
    Set("A", "a", "new");
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(std::filesystem::status(path).permissions(), before);
}

TEST_F(MiniWrite, TemporaryFile_IsNobodyElsesToRead) {
    m_folder.Write("private", "");
    zr::platform::RawOutput output;
    ASSERT_EQ(output.Open(Path("private").c_str()), 0);
    output.MakePrivate();
    ASSERT_EQ(output.Close(), 0);
    static std::filesystem::path folder;
    static std::filesystem::perms permissions;
    folder = m_folder.Folder() / "temporary";
    services.reserve_output = [](std::intptr_t file, std::uint64_t size) {
        permissions = std::filesystem::directory_iterator(folder)->status().permissions();
        return zr::platform::backend::ReserveOutput(file, size);
    };
    Open(sample);
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(permissions, std::filesystem::status(m_folder.Folder() / "private").permissions());
}

// The name of the temporary file is not cut, up to the longest that the system gives.
TEST_F(MiniWrite, TemporaryFolderOfALongPath_IsLeftEmpty) {
    const std::string parent = s_temporary;
    for (const std::size_t length : {240U, 246U}) { // with the separator
        s_temporary = parent + std::string(length - parent.size() - 1, 't') + "\\";
        const std::filesystem::path folder = HostOf(s_temporary);
        std::filesystem::create_directory(folder);
        Open(sample);
        Set("A", "a", "new");
        EXPECT_EQ(mini_update_file(m_handle), 1) << length;
        EXPECT_NE(Bytes(), sample) << length;
        EXPECT_TRUE(std::filesystem::is_empty(folder)) << length;
        std::filesystem::remove_all(folder);
    }
}

TEST_F(MiniWrite, MissingFolder_IsNoPlaceForAFile) {
    const std::string path = Path("none\\x.ini");
    m_handle = mini_open(nullptr, path.c_str(), 0);
    Set("A", "a", "1");
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(Value("A", "a"), "1");
    EXPECT_EQ(mini_close(&m_handle), 0);
}

TEST_F(MiniWrite, FolderOfThatName_IsNoFileToUpdate) {
    std::filesystem::create_directory(m_folder.Folder() / "test.ini");
    Reopen();
    Set("A", "a", "1");
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(mini_delete_section(m_handle, "A"), 0);
    EXPECT_EQ(mini_delete_section(m_handle, "A"), -1);
    EXPECT_EQ(mini_close(&m_handle), 0);
    EXPECT_TRUE(std::filesystem::is_directory(m_folder.Folder() / "test.ini"));
}

TEST_F(MiniWrite, FaultOfTheTemporaryFile_LeavesTheFileAlone) {
    Open(sample);
    Set("A", "a", "new");
    const auto fails = [this] {
        EXPECT_EQ(mini_update_file(m_handle), 0);
        EXPECT_EQ(Bytes(), sample);
        EXPECT_TRUE(std::filesystem::is_empty(m_folder.Folder() / "temporary"));
    };
    services.temp_file_name = [](const char *, const char *, unsigned, char *) { return 0U; };
    fails();
    services.temp_file_name = zr::platform::backend::TempFileName;
    services.open_output = [](const char *, std::intptr_t &, std::uint64_t &) -> int { return 5; };
    fails();
    services.open_output = zr::platform::backend::OpenOutput;
    services.write_output = DiskIsFull;
    fails();
    services.write_output = zr::platform::backend::WriteOutput;
    services.close_output = [](std::intptr_t file) { // a full disk that shows at the end only
        zr::platform::backend::CloseOutput(file);
        return 112;
    };
    fails();
    services.close_output = zr::platform::backend::CloseOutput;
    EXPECT_EQ(Value("A", "a"), "new");
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("t=0\n\n[A]\na=new\nb=2\n\n[B]\nb=2"));
}

TEST_F(MiniWrite, FullDiskDuringTheCopy_LeavesTheFileAlone) {
    Open(sample);
    Set("A", "a", std::string(1000, 'v'));
    services.reserve_output = [](std::intptr_t, std::uint64_t) -> int { return 112; };
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(Bytes(), sample);
    EXPECT_EQ(mini_close(&m_handle), 0);
    EXPECT_EQ(Bytes(), sample);
}

TEST_F(MiniWrite, FaultOfTheTemporaryFile_LeavesAPartOfANewFile) {
    Reopen();
    Set("A", "a", "1");
    services.open_output = [](const char *, std::intptr_t &, std::uint64_t &) -> int { return 5; };
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_FALSE(FileExists());
    services.open_output = zr::platform::backend::OpenOutput;
    services.write_output = DiskIsFull;
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_TRUE(FileExists());
    EXPECT_EQ(Bytes(), "");
    services.write_output = zr::platform::backend::WriteOutput;
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(Bytes(), Stored("[A]\na=1"));
}

TEST_F(MiniWrite, DiskThatIsFullOnTheWay_LeavesWhatWasWrittenOfANewFile) {
    static int writes;
    Reopen();
    for (int i = 0; i < 100; ++i)
        Set("A", "e" + std::to_string(i), std::string(2000, 'v'));
    services.write_output = [](std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size) {
        return ++writes > 1 ? 112 : zr::platform::backend::WriteOutput(file, at, bytes, size);
    };
    writes = 0;
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(writes, 2); // the first failure ends it
    services.write_output = zr::platform::backend::WriteOutput;
    const std::string part = Bytes();
    std::filesystem::remove(m_folder.Folder() / "test.ini");
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_GT(part.size(), 10000U);
    EXPECT_LT(part.size(), Bytes().size());
    EXPECT_TRUE(Bytes().starts_with(part));
}

TEST_F(MiniWrite, OpenWithoutMemory_GivesNull) {
    Open(sample);
    for (int others = 0; others < 3; ++others) { // the record, folder and name
        const zr_long before = zr::frame::heap_block_count;
        const HeapRefusal refusal(others);
        EXPECT_EQ(mini_open(nullptr, m_path.c_str(), 0), nullptr);
        EXPECT_TRUE(refusal.Met());
        EXPECT_EQ(zr::frame::heap_block_count, before);
    }
}

TEST_F(MiniWrite, UpdateWithoutMemory_IsDone) {
    Open(sample);
    Set("A", "a", "new");
    const HeapRefusal refusal(0, true);
    EXPECT_EQ(mini_update_file(m_handle), 1); // it needs none
    EXPECT_EQ(Bytes(), Stored("t=0\n\n[A]\na=new\nb=2\n\n[B]\nb=2"));
}

TEST_F(MiniWrite, ReadsWithoutMemory_FindAllTheSame) {
    std::string bytes;
    for (int i = 0; i < 200; ++i)
        bytes += "[s" + std::to_string(i) + "]\na=1\nb=2\nc=3\nd=4\ne=5\nf=" + std::to_string(i) + "\n";
    Open(bytes);
    const HeapRefusal refusal(0, true);
    for (int round = 0; round < 20; ++round) {
        for (int i = 0; i < 200; i += 7)
            EXPECT_EQ(Value("s" + std::to_string(i), "f"), std::to_string(i));
    }
    EXPECT_TRUE(refusal.Met());
}

TEST_F(MiniWrite, NoMemory_EndsTheProcess) {
    Open(sample);
    services.show_message_box = [](zr_window, const char *text, const char *, unsigned) {
        std::fprintf(stderr, "box[%s]", text);
        return 1;
    };
    s_folder = m_folder.Folder();
    const auto end_of = [](int others, const auto &call) {
        EXPECT_EXIT(
            {
                TellAtTheEnd();
                const HeapRefusal refusal(others);
                call();
                std::fprintf(stderr, "it goes on");
            },
            testing::ExitedWithCode(0),
            testing::AllOf(testing::HasSubstr("box[Insufficient of memory.]"), testing::HasSubstr("> EXIT    in "),
                           testing::HasSubstr("\"Mini\" line "), testing::HasSubstr("  Insufficient of memory.!"),
                           testing::Not(testing::HasSubstr("it goes on"))))
            << others;
    };
    for (int others = 3; others < 6; ++others) // text, block, records
        end_of(others, [this] { mini_open(nullptr, m_path.c_str(), 0); });
    for (int others = 0; others < 2; ++others) // entry, value
        end_of(others, [this] { Set("A", "new", "1"); });
    end_of(0, [this] { Set("A", "a", "1"); });
    end_of(0, [this] { mini_rename_entry(m_handle, "A", "a", "n"); });
    end_of(0, [this] { mini_rename_section(m_handle, "A", "N"); });
    mini_unload_all_sections(m_handle);
    for (int others = 0; others < 3; ++others) // text, block, records of the section that comes back
        end_of(others, [this] { mini_get_string(m_handle, "A", "a", nullptr, nullptr); });
    std::filesystem::remove(m_folder.Folder() / "test.ini");
    end_of(0, [this] { Set("A", "a", "1"); }); // section
}

// ---- The two families on one file ---------------------------------------------------------------------------------

TEST_F(MiniWrite, RandomSequences_GoAsInThePlainReference) {
    std::mt19937 random(20134);
    const auto below = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    const std::vector<Text> sections = {{}, "", " ", "A", " A ", "B", "C", "long " + std::string(300, 's')};
    const std::vector<Text> names = {{}, "", "a", " a ", "b", "c", "="};
    for (int round = 0; round < 12; ++round) {
        const std::string bytes = below(2) != 0 ? sample : "[A]\na=1\na=2\n[]\nx=1\n[A]\nb=3\nbad\n";
        Open(bytes);
        m_folder.Write("reference.ini", bytes);
        Reference reference(Path("reference.ini"));
        for (int step = 0; step < 20; ++step) {
            const Text section = sections[below(8)], name = names[below(7)], other = names[below(7)];
            const char *const given = OrNull(section);
            switch (below(8)) {
            case 0:
                ASSERT_EQ(mini_delete_entry(m_handle, given, OrNull(name)), reference.DeleteEntry(section, name));
                break;
            case 1:
                ASSERT_EQ(mini_delete_section(m_handle, given), reference.DeleteSection(section));
                break;
            case 2:
                ASSERT_EQ(mini_rename_entry(m_handle, given, OrNull(name), OrNull(other)),
                          reference.RenameEntry(section, name, other));
                break;
            case 3: {
                const Text new_section = sections[below(7)];
                ASSERT_EQ(mini_rename_section(m_handle, given, OrNull(new_section)),
                          reference.RenameSection(section, new_section));
                break;
            }
            case 4:
                ASSERT_EQ(mini_unload_one_section(m_handle, section.value_or("none").c_str()),
                          reference.Unload(section.value_or("none")));
                break;
            case 5:
                ASSERT_EQ(mini_update_file(m_handle), reference.Update());
                break;
            default:
                ASSERT_EQ(Set(section, name, other), reference.Write(section, name, other));
            }
            ASSERT_EQ(Content(), reference.sections) << round << " " << step;
            ASSERT_EQ(Bytes(), m_folder.Read("reference.ini")) << round << " " << step;
        }
    }
}

} // namespace
