// Rewriting settings files.
#include <zrclb/ini.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/report.h>

#include "env/refused_memory.h"
#include "env/report_capture.h"
#include "platform/file_verbs.h"
#include "platform/raw_file.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"
#include "platform/temporary.h"
#include "process_measures.h"
#include "settings/reference_ini.h"

namespace {

using zr::platform::services;
using zr::test::Error;
using zr::test::ReferenceIni;
using zr::test::Refusal;
using Section = ReferenceIni::Section;

const char *OrNull(const Section &text) {
    return text ? text->c_str() : nullptr;
}

// The file on the disk: each line feed is CR LF there.
std::string Stored(const std::string &text) {
    std::string bytes;
    for (const char c : text)
        bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return bytes;
}

// Temporary files come to be in a folder that is watched.
const TempFolder *watched_folder;

class IniWrite : public testing::Test {
protected:
    IniWrite() {
        watched_folder = &m_temporary;
        services.temp_folder = [](char *out, std::size_t size) {
            const std::string folder = watched_folder->Path("");
            std::memcpy(out, folder.c_str(), std::min(size, folder.size() + 1));
            return folder.size();
        };
    }
    ~IniWrite() override {
        EXPECT_TRUE(std::filesystem::is_empty(m_temporary.Folder())); // no call leaves a file
        services = {};
    }

    const char *File(const std::string &text) {
        m_folder.Write("test.ini", Stored(text));
        return m_path.c_str();
    }

    std::string Bytes() const { return m_folder.Read("test.ini"); }

    // What writing a value makes of a file.
    std::string Written(const std::string &text, const Section &section, const char *entry, const char *value) {
        EXPECT_EQ(ini_write_string(File(text), OrNull(section), entry, value), 0);
        return Bytes();
    }

    TempFolder m_folder;
    TempFolder m_temporary;
    const std::string m_path = m_folder.Path("test.ini");
    zr::test::ReportCapture m_reports;
};

TEST_F(IniWrite, NewFile_HoldsHeaderAndEntry) {
    EXPECT_EQ(ini_write_string(m_path.c_str(), "S", "e", "v"), 0);
    EXPECT_EQ(Bytes(), Stored("[S]\ne=v"));
    EXPECT_EQ(Written("", "S", "e", nullptr), Stored("[S]\ne="));
    EXPECT_EQ(Written("", {}, "e", "v"), Stored("e=v\n"));
    std::filesystem::remove(m_path);
    EXPECT_EQ(ini_write_string(m_path.c_str(), " ", "e", "v"), 0);
    EXPECT_EQ(Bytes(), Stored("e=v\n"));
}

TEST_F(IniWrite, NewEntry_StandsAtTheEndOfItsSection) {
    EXPECT_EQ(Written("[A]\na=1\nb=2\n[B]\nx=1\n", "A", "c", "3"), Stored("[A]\na=1\nb=2\nc=3\n\n[B]\nx=1\n"));
    EXPECT_EQ(Written("[A]\na=1\n\n; note\n\n[B]\n\nx=1", "A", "c", "3"),
              Stored("[A]\na=1\n; note\nc=3\n\n[B]\n\nx=1"));
    EXPECT_EQ(Written("a=1\n[B]\nx=1\n", "", "c", "3"), Stored("a=1\nc=3\n\n[B]\nx=1\n"));
    EXPECT_EQ(Written("[B]\nx=1\n", {}, "c", "3"), Stored("c=3\n\n[B]\nx=1\n"));
    EXPECT_EQ(Written("[A]\na=1", "A", "c", "3"), Stored("[A]\na=1\nc=3\n"));
    EXPECT_EQ(Written("[A]\na=1\n\n", "B", "c", "3"), Stored("[A]\na=1\n\n[B]\nc=3"));
    EXPECT_EQ(Written("; c\n", "B", "c", "3"), Stored("; c\n[B]\nc=3"));
    EXPECT_EQ(Written("[A]\n", " A ", "c", "3"), Stored("[A]\n\n[ A ]\nc=3")); // such a name is never found
}

TEST_F(IniWrite, GivenNames_AreTakenAsTheyAre) {
    EXPECT_EQ(Written("[A]\na=1\n", "A", " a ", "2"), Stored("[A]\na=1\n a =2\n"));
    EXPECT_EQ(Written("[A]\n a =1\n", "A", " a ", "2"), Stored("[A]\na=1\n a =2\n")); // never found
    const std::string text = "[A]\na=1\n";
    EXPECT_EQ(ini_delete_entry(File(text), "A", " a"), 2);
    EXPECT_EQ(ini_delete_entry(m_path.c_str(), " A", "a"), 1);
    EXPECT_EQ(ini_delete_section(m_path.c_str(), "A "), 1);
    EXPECT_EQ(ini_rename_entry(m_path.c_str(), " A ", "a ", "b"), 2); // this one trims its section, and no entry
    EXPECT_EQ(ini_delete_entry(m_path.c_str(), "a", "a"), 1);
    EXPECT_EQ(ini_delete_entry(m_path.c_str(), "A", "A"), 2);
    EXPECT_EQ(ini_rename_section(m_path.c_str(), "a", "b"), 1);
    EXPECT_EQ(Bytes(), Stored("[A]\na=1"));
    EXPECT_EQ(ini_rename_entry(m_path.c_str(), " A ", "a", " b "), 0);
    EXPECT_EQ(Bytes(), Stored("[A]\nb=1\n"));
}

TEST_F(IniWrite, LineFeedsInAValue_AreThoseOfATextStream) {
    EXPECT_EQ(Written("[A]\na=1\n", "A", "a", "x\ny\r\nz\n"), "[A]\r\na=x\r\ny\r\r\nz\r\n\r\n");
    EXPECT_EQ(Written("", "A", "a", "\n[B]\nb=2"), "[A]\r\na=\r\n[B]\r\nb=2");
}

TEST_F(IniWrite, Rewrite_NormalisesInFrontOfTheChangeOnly) {
    const std::string before =
        "\n ; top \n  t = 0  \nno sign\n\n[ A ] text\n\n a = 1 \n[B]\n  ; c \n\n b = 2\n x = 1 \n";
    const std::string behind = "\n  y = 3  \n[C] text\n\n\n[B]\n z\n";
    EXPECT_EQ(Written(before + behind, "B", "x", "new"),
              Stored("; top\nt = 0\nno sign\n\n[A]\na = 1\n\n[B]\n; c\nb= 2\nx=new\n" + behind));
    EXPECT_EQ(m_reports.Take(), zr::test::Reports());
}

TEST_F(IniWrite, RestOfTheFile_IsWhatTheStreamHasOfIt) {
    using namespace std::string_literals;
    const std::string tail = std::string(9000, 'v') + "\r";
    m_folder.Write("test.ini", "[A]\nx=1\nq\0q\r\r\n\nlone\rcr\r\n"s + tail);
    EXPECT_EQ(ini_write_string(m_path.c_str(), "A", "x", "2"), 0);
    EXPECT_EQ(Bytes(), "[A]\r\nx=2\r\nq\0q\r\r\n\r\nlone\rcr\r\n"s + tail);
    m_folder.Write("test.ini", "[A]\r\nx=1\r\ny=2\x1Az=3\r\n");
    EXPECT_EQ(ini_write_string(m_path.c_str(), "A", "x", "2"), 0);
    EXPECT_EQ(Bytes(), "[A]\r\nx=2\r\ny=2");
}

TEST_F(IniWrite, LineWithoutSign_IsReportedAndDroppedInTheSectionOnly) {
    EXPECT_EQ(Written("lost\n[S]\nbad\na=1\nworse\n", "S", "a", "2"), Stored("lost\n\n[S]\na=2\nworse\n"));
    const auto report = Error("Ini", "Incorrect entry's format. '=' is not found.");
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{report});
    EXPECT_EQ(ini_rename_entry(File("[S]\nbad\na=1\n"), "S", "a", "b"), 0);
    EXPECT_EQ(Bytes(), Stored("[S]\nb=1\n"));
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{report});
}

TEST_F(IniWrite, LineWithoutSign_IsDroppedByDeleting) {
    EXPECT_EQ(ini_delete_entry(File("lost\n[S]\nbad\na=1\nworse\n"), "S", "a"), 0);
    EXPECT_EQ(Bytes(), Stored("lost\n\n[S]\nworse\n"));
    EXPECT_EQ(m_reports.Take(), zr::test::Reports{Error("Ini", "Incorrect entry's format. '=' is not found.")});
    EXPECT_EQ(ini_delete_section(File("lost\n; c\n[S]\nbad\n"), ""), 0);
    EXPECT_EQ(Bytes(), Stored("; c\n\n[S]\nbad\n"));
    EXPECT_EQ(ini_delete_section(m_path.c_str(), "S"), 0);
    EXPECT_EQ(Bytes(), "; c");
    EXPECT_EQ(m_reports.Take(), zr::test::Reports());
}

TEST_F(IniWrite, FirstOfTwoSectionsAndEntries_IsChanged) {
    const std::string text = "[S]\na=1\na=2\n[S]\na=3\nb=4\n";
    EXPECT_EQ(Written(text, "S", "a", "9"), Stored("[S]\na=9\na=2\n[S]\na=3\nb=4\n"));
    EXPECT_EQ(Written(text, "S", "b", "9"), Stored("[S]\na=1\na=2\nb=9\n\n[S]\na=3\nb=4\n"));
    EXPECT_EQ(ini_delete_entry(File(text), "S", "a"), 0);
    EXPECT_EQ(Bytes(), Stored("[S]\na=2\n[S]\na=3\nb=4\n"));
    EXPECT_EQ(ini_delete_section(File(text), "S"), 0);
    EXPECT_EQ(Bytes(), Stored("[S]\na=3\nb=4\n"));
    EXPECT_EQ(ini_rename_entry(File(text), "S", "a", "n"), 0);
    EXPECT_EQ(Bytes(), Stored("[S]\nn=1\na=2\n[S]\na=3\nb=4\n"));
    EXPECT_EQ(ini_rename_section(File(text), "S", "N"), 0);
    EXPECT_EQ(Bytes(), Stored("[N]\na=1\na=2\n[S]\na=3\nb=4\n"));
}

TEST_F(IniWrite, Numbers_HaveTheirForms) {
    const char *file = m_path.c_str();
    EXPECT_EQ(ini_write_double(file, "S", "d", 1.5), 0);
    const double reals[] = {1.5, 1e300, -0.25};
    EXPECT_EQ(ini_write_doubles(file, "S", "ds", reals, 3), 0);
    EXPECT_EQ(ini_write_doubles(file, "S", "one", reals, 1), 0);
    EXPECT_EQ(ini_write_long(file, "S", "l", -7), 0);
    const zr_long longs[] = {1, -2147483647 - 1, 3};
    EXPECT_EQ(ini_write_longs(file, "S", "ls", longs, 3), 0);
    EXPECT_EQ(ini_write_longs(file, "S", "none", nullptr, 0), 0);
    EXPECT_EQ(ini_write_longs(file, "S", "none", nullptr, 1), -1);
    EXPECT_EQ(ini_write_longs(file, "S", "few", longs, -1), 0);
    EXPECT_EQ(ini_write_doubles(file, "S", "less", nullptr, -2147483647 - 1), 0);
    EXPECT_EQ(ini_write_doubles(file, "S", "less", nullptr, 1), -1);
    EXPECT_EQ(ini_set_data_version(file, 1, 2, 3, 4), 0);
    EXPECT_EQ(Bytes(),
              Stored("[S]\nd=1.500000\nds=1.5,1e+300,-0.25\none=1.5\nl=-7\nls=1,-2147483648,3\nnone=\nfew=\nless=\n\n"
                     "[_Zr_Data_Version_Info_]\nVersion=1,2,3,4"));
    EXPECT_EQ(ini_write_double(file, "S", "d", -1e308), 0);
    double read = 0.0;
    EXPECT_EQ(ini_read_double(file, "S", "d", &read), 0);
    EXPECT_EQ(read, -1e308);
}

TEST_F(IniWrite, ListOverItsLimit_EndsABracketAndWritesNothing) {
    static int boxes;
    boxes = 0;
    services.show_message_box = [](zr_window, const char *, const char *, unsigned) { return ++boxes; };
    const char *file = File("");
    std::vector<zr_long> values(1023, 1); // with their commas 2046 characters
    EXPECT_EQ(ini_write_longs(file, "S", "e", values.data(), 1023), 0);
    values.back() = 10;
    EXPECT_EQ(ini_write_longs(file, "S", "e", values.data(), 1023), 0);
    zr_long count = 1023;
    EXPECT_EQ(ini_read_longs(file, "S", "e", values.data(), &count), 0);
    EXPECT_EQ(count, 1022); // the line came apart when it was read
    EXPECT_EQ(boxes, 0);
    const std::string before = Bytes();
    values.back() = 100;
    EXPECT_EQ(ini_write_longs(file, "S", "e", values.data(), 1023), 3);
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(Bytes(), before);
    zr_begin("open");
    const std::vector<double> reals(600, 0.25);
    EXPECT_EQ(ini_write_doubles(file, "S", "e", reals.data(), 600), 3);
    EXPECT_EQ(boxes, 1); // it closed this bracket
    zr_end();
    EXPECT_EQ(boxes, 2);
}

TEST_F(IniWrite, BothDirections_GoByTheFlag) {
    const char *file = m_path.c_str();
    char text[10] = "abc";
    zr_long size = 9, number = 5, count = 1;
    double real = 0.5;
    EXPECT_EQ(ini_rw_string(1, file, "s", "t", text, &size), 0);
    EXPECT_EQ(ini_rw_long(2, file, "s", "l", &number), 0);
    EXPECT_EQ(ini_rw_double(-1, file, "s", "d", &real), 0);
    EXPECT_EQ(ini_rw_longs(1, file, "s", "ls", &number, &count), 0);
    EXPECT_EQ(ini_rw_doubles(1, file, "s", "ds", &real, &count), 0);
    EXPECT_EQ(Bytes(), Stored("[s]\nt=abc\nl=5\nd=0.500000\nls=5\nds=0.5\n"));
    for (int turn = 0; turn < 2; ++turn) {
        number = 0;
        real = 0.0;
        EXPECT_EQ(
            turn == 0 ? ini_rw_long(0, file, "s", "l", &number) : ini_rw_longs(0, file, "s", "ls", &number, &count), 0);
        EXPECT_EQ(
            turn == 0 ? ini_rw_double(0, file, "s", "d", &real) : ini_rw_doubles(0, file, "s", "ds", &real, &count), 0);
        EXPECT_EQ(number, 5);
        EXPECT_EQ(real, 0.5);
    }
    text[0] = 0;
    EXPECT_EQ(ini_rw_string(0, file, "s", "t", text, &size), 0);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(ini_rw_string(0, file, "s", "t", text, nullptr), -1);
    EXPECT_EQ(ini_rw_string(1, file, "s", "t", nullptr, nullptr), 0);
    EXPECT_EQ(ini_rw_string(0, file, "s", "t", text, &size), 0);
    EXPECT_STREQ(text, "");
    for (int write = 0; write < 2; ++write) {
        EXPECT_EQ(ini_rw_long(write, file, "s", "l", nullptr), 3);
        EXPECT_EQ(ini_rw_double(write, file, "s", "l", nullptr), 3);
        EXPECT_EQ(ini_rw_longs(write, file, "s", "l", nullptr, &count), 3);
        EXPECT_EQ(ini_rw_longs(write, file, "s", "l", &number, nullptr), 3);
        EXPECT_EQ(ini_rw_doubles(write, file, "s", "l", nullptr, &count), 3);
        EXPECT_EQ(ini_rw_doubles(write, file, "s", "l", &real, nullptr), 3);
    }
}

TEST_F(IniWrite, DeleteEntry_RewritesTheFileInAnyCase) {
    const std::string text = "\n[A]\n\na = 1\n\nb=2\n\n[B]\n\nc=3\n";
    EXPECT_EQ(ini_delete_entry(File(text), "A", "a"), 0);
    EXPECT_EQ(Bytes(), Stored("[A]\n\nb=2\n\n[B]\n\nc=3\n"));
    EXPECT_EQ(ini_delete_entry(File(text), "A", "x"), 2);
    EXPECT_EQ(Bytes(), Stored("[A]\na= 1\nb=2\n[B]\n\nc=3\n"));
    EXPECT_EQ(ini_delete_entry(File(text), "B", "x"), 2);
    EXPECT_EQ(Bytes(), Stored("[A]\na = 1\nb=2\n\n[B]\nc=3\n"));
    EXPECT_EQ(ini_delete_entry(File(text), "C", "x"), 1);
    EXPECT_EQ(Bytes(), Stored("[A]\na = 1\nb=2\n\n[B]\nc=3"));
    EXPECT_EQ(ini_delete_entry(File("a=1\n[A]\n"), nullptr, "a"), 0);
    EXPECT_EQ(Bytes(), Stored("[A]\n"));
}

TEST_F(IniWrite, DeleteSection_EndsAtTheNextHeader) {
    const std::string text = "; t\nx=1\n[A]\n; c\na=1\n\n[B]\n\nb=2\n[A]\nz=1\n";
    EXPECT_EQ(ini_delete_section(File(text), "A"), 0);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[B]\n\nb=2\n[A]\nz=1\n"));
    EXPECT_EQ(ini_delete_section(File(text), "B"), 0);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[A]\n; c\na=1\n\n[A]\nz=1\n"));
    EXPECT_EQ(ini_delete_section(File(text), nullptr), 0);
    EXPECT_EQ(Bytes(), Stored("; t\n\n[A]\n; c\na=1\n\n[B]\n\nb=2\n[A]\nz=1\n"));
    EXPECT_EQ(ini_delete_section(File(text), "C"), 1);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[A]\n; c\na=1\n\n[B]\nb=2\n\n[A]\nz=1"));
    EXPECT_EQ(ini_delete_section(File("[A]\na=1\n"), "A"), 0);
    EXPECT_EQ(Bytes(), "");
}

TEST_F(IniWrite, Renaming_KeepsWhatBelongsToTheName) {
    const std::string text = "; t\nx=1\n[A]\n; c\na = 1\n\n[B]\nb=2\n";
    EXPECT_EQ(ini_rename_section(File(text), " A ", " N "), 0);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[N]\n; c\na = 1\n\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_section(File(text), "", "N"), 0);
    EXPECT_EQ(Bytes(), Stored("; t\n[N]\nx=1\n[A]\n; c\na = 1\n\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_section(File("[A]\na=1\n"), nullptr, "N"), 0);
    EXPECT_EQ(Bytes(), Stored("[N]\n\n[A]\na=1\n"));
    EXPECT_EQ(ini_rename_section(File(""), nullptr, "N"), 0);
    EXPECT_EQ(Bytes(), Stored("[N]\n"));
    EXPECT_EQ(ini_rename_section(File(text), "C", "N"), 1);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[A]\n; c\na = 1\n\n[B]\nb=2"));
    EXPECT_EQ(ini_rename_entry(File(text), "A", "a", "n"), 0);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[A]\n; c\nn= 1\n\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_entry(File(text), "A", "y", "n"), 2);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[A]\n; c\na= 1\n\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_entry(File(text), "B", "y", "n"), 2);
    EXPECT_EQ(Bytes(), Stored("; t\nx=1\n\n[A]\n; c\na = 1\n\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_entry(File(text), "", "x", "n"), 0);
    EXPECT_EQ(Bytes(), Stored("; t\nn=1\n[A]\n; c\na = 1\n\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_entry(File(text), "C", "x", "n"), 1);
    const std::string long_name(80, 'n');
    EXPECT_EQ(ini_rename_entry(File("a=1\n"), "", "a", long_name.c_str()), 0);
    EXPECT_EQ(Bytes(), Stored(long_name.substr(1) + "=1\n"));
    EXPECT_EQ(ini_rename_section(File("[A]\n"), "A", long_name.c_str()), 0);
    EXPECT_EQ(Bytes(), Stored("[" + long_name.substr(1) + "]\n"));
}

TEST_F(IniWrite, RenamingToANameThatIsThere_MakesTwoOfIt) {
    EXPECT_EQ(ini_rename_section(File("[A]\na=1\n[B]\nb=2\n"), "A", "B"), 0);
    EXPECT_EQ(Bytes(), Stored("[B]\na=1\n[B]\nb=2\n"));
    EXPECT_EQ(ini_rename_entry(File("[A]\na=1\nb=2\n"), "A", "b", "a"), 0);
    EXPECT_EQ(Bytes(), Stored("[A]\na=1\na=2\n"));
}

TEST_F(IniWrite, BlankNewName_GivesFive) {
    const char *file = File("[A]\n\na = 1\n");
    for (const char *name : {static_cast<const char *>(nullptr), "", " \t"}) {
        EXPECT_EQ(ini_rename_section(file, "A", name), 5);
        EXPECT_EQ(ini_rename_entry(file, "A", "a", name), 5);
    }
    EXPECT_EQ(ini_rename_section(nullptr, "A", ""), 5);
    EXPECT_EQ(Bytes(), Stored("[A]\n\na = 1\n"));
}

TEST_F(IniWrite, MissingFile_IsNoneToEdit) {
    const std::string folder = m_folder.Folder().string();
    for (const char *file : {static_cast<const char *>(nullptr), "", m_path.c_str(), folder.c_str()}) {
        EXPECT_EQ(ini_delete_entry(file, "A", "a"), -1);
        EXPECT_EQ(ini_delete_section(file, "A"), -1);
        EXPECT_EQ(ini_rename_section(file, "A", "B"), -1);
        EXPECT_EQ(ini_rename_entry(file, "A", "a", "b"), -1);
    }
    EXPECT_FALSE(std::filesystem::exists(m_path));
    EXPECT_EQ(ini_write_string(folder.c_str(), "A", "a", "b"), zr::platform::access_denied);
    EXPECT_EQ(ini_write_string((folder + "/none/x.ini").c_str(), "A", "a", "b"), zr::platform::path_not_found);
    const char *file = File("a=1");
    EXPECT_EQ(ini_write_string(file, "A", nullptr, "b"), -1);
    EXPECT_EQ(ini_delete_entry(file, "A", nullptr), -1);
    EXPECT_EQ(ini_rename_entry(file, "A", nullptr, "b"), -1);
    EXPECT_EQ(Bytes(), "a=1");
}

TEST_F(IniWrite, ReadOnlyFile_IsRefused) {
    const char *file = File("[A]\na=1\n");
    ASSERT_EQ(zr::platform::SetAttributes(file, zr::platform::attribute_read_only), 0);
    EXPECT_EQ(ini_write_string(file, "A", "a", "2"), zr::platform::access_denied);
    EXPECT_EQ(ini_rename_section(file, "A", "B"), zr::platform::access_denied);
    EXPECT_EQ(ini_delete_entry(file, "A", "a"), 0); // told so
    EXPECT_EQ(Bytes(), Stored("[A]\na=1\n"));
    ASSERT_EQ(zr::platform::SetAttributes(file, zr::platform::attribute_normal), 0);
}

// Names and paths have limits of their own; what is longer is no more of a name, or another file.
TEST_F(IniWrite, SectionNames_CountWithTheirFirst79CharactersWhereTheyAreTrimmed) {
    for (const std::size_t length : {78U, 79U, 80U, 81U}) {
        const std::string name(length, 'n');
        // Written and looked for as the caller has it, be it as long as it may.
        EXPECT_EQ(ini_write_string(File("[A]\n"), name.c_str(), "e", "v"), 0);
        EXPECT_EQ(Bytes(), Stored("[A]\n\n[" + name + "]\ne=v"));
        EXPECT_EQ(ini_write_string(m_path.c_str(), name.c_str(), "e", "w"), 0);
        EXPECT_EQ(Bytes(), Stored("[A]\n\n[" + name + "]\ne=w\n"));
        EXPECT_EQ(ini_rename_entry(m_path.c_str(), name.c_str(), "e", "f"), length < 80 ? 0 : 1);
        EXPECT_EQ(ini_rename_section(m_path.c_str(), name.c_str(), "B"), length < 80 ? 0 : 1);
        EXPECT_EQ(ini_delete_section(m_path.c_str(), name.c_str()), length < 80 ? 1 : 0);
        // Blank in front of the limit, it is the top area.
        const std::string blanks = std::string(length - 1, ' ') + "x";
        EXPECT_EQ(ini_delete_entry(File("a=1\n"), blanks.c_str(), "a"), length < 80 ? 1 : 0) << length;
    }
    const std::string name(100, 'n');
    EXPECT_EQ(ini_rename_section(File("[A]\n"), "A", (std::string(10, ' ') + name).c_str()), 0);
    EXPECT_EQ(Bytes(), Stored("[" + name.substr(0, 69) + "]\n"));
}

TEST_F(IniWrite, Paths_HaveAtMost259Characters) {
    std::string folder = m_folder.Folder().string();
    while (folder.size() < 200) {
        folder += "/f";
        std::filesystem::create_directory(folder);
    }
    for (const std::size_t length : {254U, 255U, 256U, 259U, 260U}) {
        const std::string path = folder + "/" + std::string(length - folder.size() - 1, 'x');
        const int result = ini_write_string(path.c_str(), "S", "e", "v");
        EXPECT_EQ(result == 0, length < 260) << length << " " << result;
        char value[2] = "-";
        zr_long size = 1;
        EXPECT_EQ(ini_read_string(path.c_str(), "S", "e", value, &size), length < 260 ? 0 : -1) << length;
        EXPECT_STREQ(value, length < 260 ? "v" : "-");
        EXPECT_EQ(ini_delete_section(path.c_str(), "S"), length < 260 ? 0 : -1) << length;
    }
    const std::string over_long(100000, 'x');
    EXPECT_NE(ini_write_string(over_long.c_str(), "S", "e", "v"), 0);
    EXPECT_EQ(ini_write_path(over_long.c_str(), "S", "e", "v"), -1);
    EXPECT_EQ(ini_rename_entry(over_long.c_str(), "S", "e", "f"), -1);
}

// A value that the reader can't have in one piece is written all the same.
TEST_F(IniWrite, LongLines_AreWrittenAsTheyAre) {
    for (const std::size_t length : {2043U, 2044U, 2045U, 2046U, 2047U, 100000U}) {
        const std::string value(length, 'v');
        EXPECT_EQ(ini_write_string(File("[S]\na=1\n[T]\n"), "S", "a", value.c_str()), 0);
        EXPECT_EQ(Bytes(), Stored("[S]\na=" + value + "\n[T]\n"));
        std::vector<char> read(length + 1);
        auto size = static_cast<zr_long>(length);
        EXPECT_EQ(ini_read_string(m_path.c_str(), "S", "a", read.data(), &size), 0);
        EXPECT_EQ(size, static_cast<zr_long>(std::min<std::size_t>(length, 2044)));
        // The next change in front of its end takes the line apart.
        EXPECT_EQ(ini_write_string(m_path.c_str(), "T", "b", "2"), 0);
        EXPECT_EQ(ini_read_string(m_path.c_str(), "T", "b", read.data(), &(size = 1)), 0);
        EXPECT_EQ(Bytes().find(std::string(2047, 'v')), std::string::npos);
    }
}

// More than is kept in memory on the way.
TEST_F(IniWrite, LargeFiles_ComeOutWhole) {
    std::string front, behind;
    for (int i = 0; i < 6000; ++i)
        front += "name" + std::to_string(i) + "= value " + std::to_string(i) + "\n";
    for (int i = 0; i < 6000; ++i)
        behind += "\n; " + std::to_string(i) + " \n b = 1 \n";
    EXPECT_EQ(ini_write_string(File("[A]\n" + front + "x=1" + behind), "A", "x", "2"), 0);
    EXPECT_EQ(Bytes(), Stored("[A]\n" + front + "x=2" + behind));
    EXPECT_EQ(ini_write_string(m_path.c_str(), "A", "x", std::string(200000, 'v').c_str()), 0);
    EXPECT_EQ(Bytes(), Stored("[A]\n" + front + "x=" + std::string(200000, 'v') + behind));
    EXPECT_EQ(ini_delete_section(m_path.c_str(), "A"), 0);
    EXPECT_EQ(Bytes(), "");
}

// Whether a blank line goes in front of a header is kept for each rewrite by itself.
TEST_F(IniWrite, RewriteWithinARewrite_SpoilsNoBlankLines) {
    static std::string other;
    static int reads;
    other = m_folder.Path("other.ini");
    reads = 0;
    services.read_raw = [](std::intptr_t file, char *out, std::size_t size) -> std::ptrdiff_t {
        if (++reads == 2) {
            EXPECT_EQ(ini_write_string(other.c_str(), "T", "b", "2"), 0);
        }
        return zr::platform::backend::ReadRaw(file, out, size);
    };
    const std::string comment = "; " + std::string(1000, 'c') + "\n";
    std::string comments; // more than the first block
    for (int i = 0; i < 20; ++i)
        comments += comment;
    m_folder.Write("other.ini", Stored("[S]\na=1\n"));
    EXPECT_EQ(Written(comments + "[A]\na=1\n", "A", "a", "2"), Stored(comments + "[A]\na=2\n"));
    EXPECT_EQ(m_folder.Read("other.ini"), Stored("[S]\na=1\n\n[T]\nb=2"));
    reads = 0;
    m_folder.Write("other.ini", "");
    EXPECT_EQ(Written("x=1\n" + comments + "[A]\na=1\n", "A", "a", "2"), Stored("x=1\n" + comments + "\n[A]\na=2\n"));
    EXPECT_EQ(m_folder.Read("other.ini"), Stored("[T]\nb=2"));
}

// The name of the temporary file is not cut, up to the longest that the system gives.
TEST_F(IniWrite, TemporaryFolderOfALongPath_IsLeftEmpty) {
    static std::string given;
    const std::string parent = m_temporary.Folder().string();
    services.temp_folder = [](char *out, std::size_t size) {
        std::memcpy(out, given.c_str(), std::min(size, given.size() + 1));
        return given.size();
    };
    for (const std::size_t length : {240U, 244U, 246U}) { // with the separator
        const std::string folder = parent + "/" + std::string(length - parent.size() - 2, 't');
        std::filesystem::create_directory(folder);
        given = folder + "\\";
        EXPECT_EQ(Written("[A]\na=1\n", "A", "a", "2"), Stored("[A]\na=2\n")) << length;
        EXPECT_TRUE(std::filesystem::is_empty(folder)) << length;
        std::filesystem::remove_all(folder);
    }
}

// What a call opens it closes, whatever comes of it.
TEST_F(IniWrite, EveryCall_ClosesItsFiles) {
    const auto calls = [this] {
        char text[9];
        zr_long size = 8, none = -1;
        const char *const file = File("[A]\nbad\na=1\n");
        EXPECT_EQ(ini_read_string(file, "A", "a", text, &size), 0);
        EXPECT_EQ(ini_read_string(file, "A", "b", text, &size), 2);
        EXPECT_EQ(ini_read_string(file, "B", "b", text, &size), 1);
        EXPECT_EQ(ini_read_string(file, "A", "a", text, &(size = 0)), 3);
        EXPECT_EQ(ini_read_string(file, "A", nullptr, text, &(size = 8)), 0);
        EXPECT_EQ(ini_read_string(file, "A", "a", text, &none), -1);
        EXPECT_EQ(ini_write_string(file, "B", "b", "2"), 0);
        EXPECT_EQ(ini_delete_entry(file, "A", "b"), 2);
        EXPECT_EQ(ini_delete_section(file, "C"), 1);
        EXPECT_EQ(ini_rename_entry(file, "C", "a", "b"), 1);
        EXPECT_EQ(ini_rename_section(file, "C", "D"), 1);
        services.temp_file_name = [](const char *, const char *, unsigned, char *) { return 0U; };
        EXPECT_EQ(ini_write_string(file, "A", "a", "2"), -1);
        EXPECT_EQ(ini_rename_section(file, "A", "B"), -1);
        services.temp_file_name = zr::platform::backend::TempFileName;
    };
    calls(); // what the process opens once and keeps is open then
    const auto before = ProcessMeasures::Now().handles;
    calls();
    EXPECT_EQ(ProcessMeasures::Now().handles, before);
}

// What is in front of the change is put line by line or, where it may stay as it is, many lines at once.
TEST_F(IniWrite, LinesInFrontOfTheChange_ComeOutAsOneByOne) {
    using namespace std::string_literals;
    const std::string before =
        "a=1\r\nbad\r\n; c\r\nb=2\nc=3\r\n d=4\r\ne=5 \r\n\r\nf=\r6\r\r\n=\r\ng=7\0x\r\nh=8\r\n"s;
    m_folder.Write("test.ini", before + "[S]\r\nx=1");
    EXPECT_EQ(ini_write_string(m_path.c_str(), "S", "x", "2"), 0);
    EXPECT_EQ(Bytes(),
              "a=1\r\nbad\r\n; c\r\nb=2\r\nc=3\r\nd=4\r\ne=5\r\nf=\r6\r\n=\r\ng=7\r\nh=8\r\n\r\n[S]\r\nx=2\r\n");
    for (const std::size_t length : {2043U, 2044U, 2045U, 2046U, 2047U}) {
        const std::string line = "a=" + std::string(length - 2, 'v');
        m_folder.Write("test.ini", "b=1\r\n" + line + "\r\nc=1\r\n[S]\r\nx=1");
        EXPECT_EQ(ini_write_string(m_path.c_str(), "S", "x", "2"), 0);
        const std::string split = length > 2046 ? line.substr(0, 2046) + "\r\n" + line.substr(2046) : line;
        EXPECT_EQ(Bytes(), "b=1\r\n" + split + "\r\nc=1\r\n\r\n[S]\r\nx=2\r\n") << length;
    }
}

TEST_F(IniWrite, RandomFiles_ComeOutAsThePlainReferenceWritesThem) {
    std::mt19937 random(20132);
    const std::vector<std::string> pieces = {"[",
                                             "]",
                                             "=",
                                             ";",
                                             "\n",
                                             "\r\n",
                                             "\r",
                                             " ",
                                             "a",
                                             "b",
                                             "s",
                                             "\t",
                                             "\n[s]\n",
                                             "\na=",
                                             "\xE4",
                                             "\n[a]x\n",
                                             "a=1",
                                             "\r\n b = 2\r\n",
                                             "\n;x\n",
                                             "\n\n",
                                             "c=3\r\n",
                                             "\r\nd\r\nb=1\r\n",
                                             std::string(1, '\0')};
    const std::vector<std::string> rare = {std::string(2040, 'v'), std::string(2046, ' '), std::string(700, 'w'),
                                           "\x1A", std::string(8000, '\n')};
    const auto below = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    const std::string path = m_folder.Path("reference.ini");
    for (int round = 0; round < 150; ++round) {
        std::string bytes;
        for (std::size_t left = below(50); left != 0; --left)
            bytes += below(24) == 0 ? rare[below(rare.size())] : pieces[below(pieces.size())];
        const Section section = std::vector<Section>{{}, "s", "a", " s", " "}[below(5)];
        const std::string entry = below(2) == 0 ? "a" : "b";
        m_folder.Write("test.ini", bytes);
        std::FILE *in = zr::platform::OpenText(m_path.c_str(), "r");
        std::FILE *out = zr::platform::OpenText(path.c_str(), "w");
        int result = 0, expected = 0;
        ReferenceIni reference;
        const char *const file = m_path.c_str();
        switch (round % 5) {
        case 0:
            expected = reference.Write(in, out, section, entry, "new");
            result = ini_write_string(file, OrNull(section), entry.c_str(), "new");
            break;
        case 1:
            expected = reference.DeleteEntry(in, out, section, entry);
            result = ini_delete_entry(file, OrNull(section), entry.c_str());
            break;
        case 2:
            expected = reference.DeleteSection(in, out, section);
            result = ini_delete_section(file, OrNull(section));
            break;
        case 3:
            expected = reference.RenameSection(in, out, section, "new");
            result = ini_rename_section(file, OrNull(section), "new");
            break;
        default:
            expected = reference.RenameEntry(in, out, section, entry, "new");
            result = ini_rename_entry(file, OrNull(section), entry.c_str(), "new");
        }
        ASSERT_EQ(result, expected) << round << testing::PrintToString(bytes);
        ASSERT_EQ(Bytes(), m_folder.Read("reference.ini"))
            << round << testing::PrintToString(bytes) << section.value_or("null") << " " << entry;
    }
}

} // namespace
