// Changing texts in place.
#include <zrclb/heap.h>
#include <zrclb/str.h>

#include <climits>
#include <clocale>
#include <cstring>
#include <string>
#include <vector>

#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "frame/report_fixture.h"
#include "golden_table.h"

namespace {

// Texts in a buffer of exactly the size told to the function, so that a write behind it shows under a sanitizer.
class StrChange : public ReportFixture {
protected:
    void Set(const std::string &text, int size) {
        buffer.assign(static_cast<std::size_t>(size), '#');
        std::memcpy(buffer.data(), text.c_str(), text.size() + 1);
        buffer.shrink_to_fit();
    }
    int Size() const { return static_cast<int>(buffer.size()); }
    std::string Text() const { return buffer.data(); }

    // The text of the one error since the last call, empty if there was none.
    static std::string TakeError() {
        std::string text = debugger.size() == 3 ? debugger[1] : "";
        if (!debugger.empty()) {
            EXPECT_EQ(debugger.size(), 3u);
            EXPECT_EQ(debugger[0].find("ZR_ERROR in prog.exe \"Str\" line "), 0u);
        }
        debugger.clear();
        return text;
    }

    std::vector<char> buffer;
};

TEST_F(StrChange, CaseFollowsTheCodePage) {
    GoldenTable table("win_ctype.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        int byte = std::stoi(row.at("byte"));
        if (byte == 0) {
            continue;
        }
        char upper[] = {static_cast<char>(byte), '\0'};
        char lower[] = {static_cast<char>(byte), '\0'};
        str_cap(upper);
        str_low(lower);
        EXPECT_EQ(static_cast<unsigned char>(upper[0]), std::stoi(row.at("CharUpperA"))) << byte;
        EXPECT_EQ(static_cast<unsigned char>(lower[0]), std::stoi(row.at("CharLowerA"))) << byte;
        ++checked;
    }
    EXPECT_EQ(checked, 178);
}

// The letters beyond ASCII that the code page has in both sizes, one below the other.
constexpr char capitals[] =
    "\x8A\x8C\x8E\x9F\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF\xD0\xD1\xD2\xD3\xD4\xD5\xD6\xD8\xD9\xDA\xDB\xDC\xDD\xDE";
constexpr char smalls[] =
    "\x9A\x9C\x9E\xFF\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF8\xF9\xFA\xFB\xFC\xFD\xFE";

TEST_F(StrChange, CaseOfEveryByte) {
    for (int byte = 1; byte < 256; ++byte) {
        const char ch = static_cast<char>(byte);
        const bool ascii_small = ch >= 'a' && ch <= 'z';
        const bool ascii_capital = ch >= 'A' && ch <= 'Z';
        const char *small = std::strchr(smalls, ch);
        const char *capital = std::strchr(capitals, ch);
        char upper[] = {ch, '\0'};
        char lower[] = {ch, '\0'};
        EXPECT_EQ(str_cap(upper)[0], small != nullptr ? capitals[small - smalls] : ascii_small ? ch - 32 : ch) << byte;
        EXPECT_EQ(str_low(lower)[0], capital != nullptr ? smalls[capital - capitals]
                                     : ascii_capital    ? ch + 32
                                                        : ch)
            << byte;
    }
}

TEST_F(StrChange, CaseFollowsTheRuntimeInTheCodePage) {
    GoldenTable table("crt_ctype.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        int byte = std::stoi(row.at("byte"));
        if (byte == 0 || row.at("locale_requested") == "C" || row.at("dll").find("ucrtbase") == std::string::npos ||
            !row.at("windows_documented").empty()) {
            continue;
        }
        char upper[] = {static_cast<char>(byte), '\0'};
        char lower[] = {static_cast<char>(byte), '\0'};
        str_cap(upper);
        str_low(lower);
        EXPECT_EQ(static_cast<unsigned char>(upper[0]), std::stoi(row.at("toupper"))) << byte;
        EXPECT_EQ(static_cast<unsigned char>(lower[0]), std::stoi(row.at("tolower"))) << byte;
        ++checked;
    }
    EXPECT_GE(checked, 200);
}

TEST_F(StrChange, CaseOfWholeTexts) {
    char text[] = "Gr\xF6\xDF"
                  "e 12 \xC4";
    EXPECT_EQ(str_cap(text), text);
    EXPECT_STREQ(text, "GR\xD6\xDF"
                       "E 12 \xC4");
    EXPECT_EQ(str_low(text), text);
    EXPECT_STREQ(text, "gr\xF6\xDF"
                       "e 12 \xE4");
    char empty[] = "";
    EXPECT_EQ(str_cap(empty), empty);
    EXPECT_EQ(str_low(empty), empty);
    EXPECT_EQ(str_cap(nullptr), nullptr);
    EXPECT_EQ(str_low(nullptr), nullptr);
}

TEST_F(StrChange, CaseLeavesTheLocaleAlone) {
    // Any but the one that is named by the empty name will do.
    for (const char *name : {"C", "C.UTF-8", "German_Germany.1252", "de_DE.UTF-8"}) {
        if (std::setlocale(LC_CTYPE, name) == nullptr) {
            continue;
        }
        std::string before = std::setlocale(LC_CTYPE, nullptr);
        char text[] = "\xE4\xC4";
        EXPECT_STREQ(str_cap(text), "\xC4\xC4") << name;
        EXPECT_EQ(before, std::setlocale(LC_CTYPE, nullptr));
        EXPECT_STREQ(str_low(text), "\xE4\xE4") << name;
        EXPECT_EQ(before, std::setlocale(LC_CTYPE, nullptr));
    }
    std::setlocale(LC_CTYPE, "C");
}

TEST_F(StrChange, TrimTakesBlanksAlone) {
    struct {
        const char *text;
        const char *both;
        const char *left;
        const char *right;
    } rows[] = {{"  a b  ", "a b", "a b  ", "  a b"},
                {"a", "a", "a", "a"},
                {"", "", "", ""},
                {"    ", "", "", ""},
                {" ", "", "", ""},
                {" a\t", "a\t", "a\t", " a\t"},
                {"\n a \n", "\n a \n", "\n a \n", "\n a \n"},
                {"a\t ", "a\t", "a\t ", "a\t"},
                {"\xA0 a", "\xA0 a", "\xA0 a", "\xA0 a"}};
    for (const auto &row : rows) {
        Set(row.text, 20);
        EXPECT_EQ(str_trim(buffer.data()), buffer.data());
        EXPECT_EQ(Text(), row.both);
        Set(row.text, 20);
        EXPECT_EQ(str_ltrim(buffer.data()), buffer.data());
        EXPECT_EQ(Text(), row.left);
        Set(row.text, 20);
        EXPECT_EQ(str_rtrim(buffer.data()), buffer.data());
        EXPECT_EQ(Text(), row.right);
    }
    EXPECT_EQ(str_trim(nullptr), nullptr);
    EXPECT_EQ(str_ltrim(nullptr), nullptr);
    EXPECT_EQ(str_rtrim(nullptr), nullptr);
}

TEST_F(StrChange, ReplTakesTheFirstOnly) {
    Set("one two one", 20);
    EXPECT_EQ(str_repl(buffer.data(), Size(), "one", "three"), buffer.data());
    EXPECT_EQ(Text(), "three two one");
    EXPECT_EQ(str_repl(buffer.data(), Size(), "three", "x"), buffer.data());
    EXPECT_EQ(Text(), "x two one");
    EXPECT_EQ(str_repl(buffer.data(), Size(), " two", ""), buffer.data());
    EXPECT_EQ(Text(), "x one");
    EXPECT_EQ(str_repl(buffer.data(), Size(), "x one", ""), buffer.data());
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(StrChange, ReplWithoutThePatternIsNullWithoutAReport) {
    Set("abc", 10);
    EXPECT_EQ(str_repl(buffer.data(), Size(), "x", "y"), nullptr);
    EXPECT_EQ(str_repl(buffer.data(), Size(), "ABC", "y"), nullptr);
    EXPECT_EQ(str_repl(buffer.data(), Size(), "", "y"), buffer.data());
    EXPECT_EQ(str_repl(buffer.data(), 0, "", "y"), buffer.data());
    EXPECT_EQ(Text(), "abc");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(StrChange, ReplKnowsItsBuffer) {
    Set("abc", 6);
    EXPECT_EQ(str_repl(buffer.data(), Size(), "b", "1234"), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Buffer zu klein");
    EXPECT_EQ(Text(), "abc");
    EXPECT_EQ(str_repl(buffer.data(), Size(), "b", "123"), buffer.data());
    EXPECT_EQ(Text(), "a123c");
    EXPECT_EQ(str_repl(buffer.data(), 0, "a", "x"), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Buffer zu klein");
    EXPECT_EQ(str_repl(buffer.data(), INT_MIN, "a", ""), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Buffer zu klein");
    EXPECT_EQ(Text(), "a123c");
}

TEST_F(StrChange, ReplReportsNull) {
    Set("abc", 6);
    EXPECT_EQ(str_repl(nullptr, 6, "a", "b"), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Falsche Parameter");
    EXPECT_EQ(str_repl(buffer.data(), 6, nullptr, "b"), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Falsche Parameter");
    EXPECT_EQ(str_repl(buffer.data(), 6, "a", nullptr), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Falsche Parameter");
    EXPECT_EQ(Text(), "abc");
}

TEST_F(StrChange, ReplLooksForNullThenThePatternThenTheRoom) {
    Set("abc", 4);
    EXPECT_EQ(str_repl(buffer.data(), Size(), "", nullptr), nullptr);
    EXPECT_EQ(TakeError(), "str_repl : Falsche Parameter");
    EXPECT_EQ(str_repl(buffer.data(), 0, "x", "longer than the buffer"), nullptr);
    EXPECT_EQ(TakeError(), "");
    EXPECT_EQ(str_repl_all(buffer.data(), Size(), "", nullptr), 0);
    EXPECT_EQ(TakeError(), "str_repl_all : Falsche Parameter");
    EXPECT_EQ(str_repl_all(buffer.data(), 0, "x", "longer than the buffer"), 0);
    EXPECT_EQ(str_repl_all(buffer.data(), 0, "", "longer than the buffer"), 0);
    EXPECT_EQ(TakeError(), "");
    EXPECT_EQ(Text(), "abc");
}

// The steps as they are told, one replacement after the other: slow, and plain to see.
int ReplAllByStep(std::string &text, int size, const std::string &from, const std::string &to) {
    int count = 0;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        if (static_cast<long long>(text.size() - from.size() + to.size()) + 1 > size) {
            return -1;
        }
        text.replace(at, from.size(), to);
        ++count;
    }
    return count;
}

TEST_F(StrChange, ReplAllDoesNotSearchWhatItPutIn) {
    Set("aa", 5);
    EXPECT_EQ(str_repl_all(buffer.data(), Size(), "a", "aa"), 2);
    EXPECT_EQ(Text(), "aaaa");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(StrChange, ReplAllAgreesWithItsSteps) {
    const char *texts[] = {"", "a", "aa", "aaa", "abab", "xabyabz", "ababab", "aaab", "baaa", "abcabcabc", "xxxxxxxx"};
    const char *patterns[] = {"a", "aa", "ab", "abc", "x", "xyz"};
    const char *news[] = {"", "a", "aa", "ab", "xyzzy", "b", "aba"};
    for (const char *text : texts) {
        for (const char *from : patterns) {
            for (const char *to : news) {
                for (int size = static_cast<int>(std::strlen(text)) + 1; size <= 42; ++size) {
                    std::string expected = text;
                    int count = ReplAllByStep(expected, size, from, to);
                    Set(text, size);
                    ASSERT_EQ(str_repl_all(buffer.data(), size, from, to), count)
                        << text << ' ' << from << ' ' << to << ' ' << size;
                    ASSERT_EQ(Text(), expected) << text << ' ' << from << ' ' << to << ' ' << size;
                    ASSERT_EQ(TakeError(), count == -1 ? "str_repl_all : Buffer zu klein" : "");
                }
            }
        }
    }
}

TEST_F(StrChange, ReplAllWithASizeBelowTheTextStopsAtOnce) {
    for (int size : {0, 3, -1, INT_MIN}) {
        Set("aaaa", 5);
        EXPECT_EQ(str_repl_all(buffer.data(), size, "a", "b"), -1);
        EXPECT_EQ(TakeError(), "str_repl_all : Buffer zu klein");
        EXPECT_EQ(Text(), "aaaa");
    }
    // The first step brings the text into the buffer, and so passes.
    Set("aaaa", 5);
    EXPECT_EQ(str_repl_all(buffer.data(), 4, "a", ""), 4);
    EXPECT_EQ(Text(), "");
}

TEST_F(StrChange, ReplAllStoppedByTheBufferKeepsWhatIsDone) {
    Set("a-a-a", 9);
    EXPECT_EQ(str_repl_all(buffer.data(), Size(), "a", "xy"), 3);
    EXPECT_EQ(Text(), "xy-xy-xy");
    Set("a-a-a", 8);
    EXPECT_EQ(str_repl_all(buffer.data(), Size(), "a", "xy"), -1);
    EXPECT_EQ(TakeError(), "str_repl_all : Buffer zu klein");
    EXPECT_EQ(Text(), "xy-xy-a");
}

TEST_F(StrChange, ReplAllReportsNullAndTakesAnEmptyPattern) {
    Set("abc", 6);
    EXPECT_EQ(str_repl_all(nullptr, 6, "a", "b"), 0);
    EXPECT_EQ(TakeError(), "str_repl_all : Falsche Parameter");
    EXPECT_EQ(str_repl_all(buffer.data(), 6, nullptr, "b"), 0);
    EXPECT_EQ(TakeError(), "str_repl_all : Falsche Parameter");
    EXPECT_EQ(str_repl_all(buffer.data(), 6, "a", nullptr), 0);
    EXPECT_EQ(TakeError(), "str_repl_all : Falsche Parameter");
    EXPECT_EQ(str_repl_all(buffer.data(), 6, "", "b"), 0);
    EXPECT_EQ(str_repl_all(buffer.data(), 6, "x", "b"), 0);
    EXPECT_EQ(TakeError(), "");
    EXPECT_EQ(Text(), "abc");
}

TEST_F(StrChange, ReplAllMillionTimesInTenMegabytes) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 1000000; ++i) {
        text += "filling; ";
        expected += "filling--- ";
    }
    Set(text, static_cast<int>(expected.size()) + 1);
    EXPECT_EQ(str_repl_all(buffer.data(), Size(), ";", "---"), 1000000);
    EXPECT_TRUE(Text() == expected);
    EXPECT_EQ(str_repl_all(buffer.data(), Size(), "---", ";"), 1000000);
    EXPECT_TRUE(Text() == text);
}

TEST_F(StrChange, InsPutsTextBeforeAnIndex) {
    Set("abc", 20);
    EXPECT_EQ(str_ins(buffer.data(), Size(), 0, "12"), buffer.data());
    EXPECT_EQ(Text(), "12abc");
    EXPECT_EQ(str_ins(buffer.data(), Size(), 3, "-"), buffer.data());
    EXPECT_EQ(Text(), "12a-bc");
    EXPECT_EQ(str_ins(buffer.data(), Size(), 6, "end"), buffer.data());
    EXPECT_EQ(Text(), "12a-bcend");
    EXPECT_EQ(str_ins(buffer.data(), Size(), 4, ""), buffer.data());
    EXPECT_EQ(Text(), "12a-bcend");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(StrChange, InsKnowsItsBuffer) {
    Set("abc", 6);
    EXPECT_EQ(str_ins(buffer.data(), Size(), 1, "123"), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Buffer zu klein");
    EXPECT_EQ(Text(), "abc");
    EXPECT_EQ(str_ins(buffer.data(), Size(), 1, "12"), buffer.data());
    EXPECT_EQ(Text(), "a12bc");
    EXPECT_EQ(str_ins(buffer.data(), Size(), 5, "1"), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Buffer zu klein");
}

TEST_F(StrChange, InsLooksForTheIndexThenForTextThenForTheRoom) {
    Set("abc", 4);
    EXPECT_EQ(str_ins(buffer.data(), Size(), 4, ""), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Index zu gro\xDF");
    EXPECT_EQ(str_ins(buffer.data(), 1, 4, "too long"), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Index zu gro\xDF");
    EXPECT_EQ(str_ins(buffer.data(), 1, 3, ""), buffer.data());
    EXPECT_EQ(TakeError(), "");
    EXPECT_EQ(Text(), "abc");
    Set("", 4);
    EXPECT_EQ(str_ins(buffer.data(), Size(), 0, ""), buffer.data());
    EXPECT_EQ(TakeError(), "");
    EXPECT_EQ(Text(), "");
}

TEST_F(StrChange, InsIntoAnEmptyTextCutsSilently) {
    Set("", 4);
    EXPECT_EQ(str_ins(buffer.data(), Size(), 0, "abcdef"), buffer.data());
    EXPECT_EQ(Text(), "abc");
    Set("", 1);
    EXPECT_EQ(str_ins(buffer.data(), Size(), 0, "abcdef"), buffer.data());
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(StrChange, InsReportsItsArguments) {
    Set("abc", 6);
    const char *wrong = "str_ins: Falsche Parameter";
    EXPECT_EQ(str_ins(nullptr, 6, 0, "x"), nullptr);
    EXPECT_EQ(TakeError(), wrong);
    EXPECT_EQ(str_ins(buffer.data(), 0, 0, "x"), nullptr);
    EXPECT_EQ(TakeError(), wrong);
    EXPECT_EQ(str_ins(buffer.data(), -1, 0, "x"), nullptr);
    EXPECT_EQ(TakeError(), wrong);
    EXPECT_EQ(str_ins(buffer.data(), 6, -1, "x"), nullptr);
    EXPECT_EQ(TakeError(), wrong);
    EXPECT_EQ(str_ins(buffer.data(), 6, 0, nullptr), nullptr);
    EXPECT_EQ(TakeError(), wrong);
    EXPECT_EQ(str_ins(buffer.data(), 6, 4, "x"), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Index zu gro\xDF");
    EXPECT_EQ(str_ins(buffer.data(), 6, INT_MAX, "x"), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Index zu gro\xDF");
    EXPECT_EQ(Text(), "abc");
    Set("", 6);
    EXPECT_EQ(str_ins(buffer.data(), 6, 1, "x"), nullptr);
    EXPECT_EQ(TakeError(), "str_ins: Index zu gro\xDF");
}

TEST_F(StrChange, EscapesToBytesAndBack) {
    char escaped[] = R"(\a\b\t\n\v\f\r\"\'\\ x)";
    char plain[] = "\a\b\t\n\v\f\r\"'\\ x";
    char out[64];
    EXPECT_EQ(str_stoe(out, escaped), out);
    EXPECT_STREQ(out, plain);
    EXPECT_EQ(str_etos(out, plain), out);
    EXPECT_STREQ(out, escaped);
    EXPECT_STREQ(plain, "\a\b\t\n\v\f\r\"'\\ x");
}

TEST_F(StrChange, BackslashThatBeginsNothingStays) {
    struct {
        const char *escaped;
        const char *plain;
    } rows[] = {{R"(\)", "\\"},    {R"(a\)", "a\\"},     {R"(\x41)", "\\x41"}, {R"(\0)", "\\0"},
                {R"(\\n)", "\\n"}, {R"(\q\n)", "\\q\n"}, {R"(\\\)", "\\\\"},   {R"(\A)", "\\A"},
                {"", ""},          {"\xE4\\t", "\xE4\t"}};
    for (const auto &row : rows) {
        char source[16];
        std::strcpy(source, row.escaped);
        char out[16];
        EXPECT_STREQ(str_stoe(out, source), row.plain);
    }
}

TEST_F(StrChange, OnlyTheBytesOfTheTableAreEscaped) {
    const std::string escaped = "\a\b\t\n\v\f\r\"'\\";
    for (int byte = 1; byte < 256; ++byte) {
        char source[] = {static_cast<char>(byte), '\0'};
        char out[4];
        const bool in_table = escaped.find(source[0]) != std::string::npos;
        EXPECT_EQ(str_len(str_etos(out, source)), in_table ? 2 : 1) << byte;
        EXPECT_EQ(out[0], in_table ? '\\' : source[0]) << byte;
        EXPECT_STREQ(str_stoe(nullptr, out), source) << byte;
    }
}

TEST_F(StrChange, EscapesInPlace) {
    char text[32] = R"(a\tb\\)";
    EXPECT_EQ(str_stoe(nullptr, text), text);
    EXPECT_STREQ(text, "a\tb\\");
    EXPECT_EQ(str_etos(nullptr, text), text);
    EXPECT_STREQ(text, R"(a\tb\\)");
    EXPECT_EQ(str_stoe(text, text), text);
    EXPECT_STREQ(text, "a\tb\\");
}

TEST_F(StrChange, EscapesOfNullDoNothing) {
    char out[] = "old";
    EXPECT_EQ(str_stoe(out, nullptr), out);
    EXPECT_EQ(str_etos(out, nullptr), out);
    EXPECT_STREQ(out, "old");
    EXPECT_EQ(str_stoe(nullptr, nullptr), nullptr);
    EXPECT_EQ(str_etos(nullptr, nullptr), nullptr);
}

TEST_F(StrChange, EscapesGiveTheirCopyBack) {
    zr_long before = zr::frame::heap_block_count;
    char text[16] = "\n";
    str_etos(nullptr, text);
    str_stoe(nullptr, text);
    EXPECT_EQ(zr::frame::heap_block_count, before);
}

TEST(StrEscapesMemory, WithoutMemoryTheTextStaysAndNullIsTheResult) {
    char text[20] = "a\\nb";
    char other[20] = "kept";
    const zr::test::HeapRefusal refusal(0, true);
    EXPECT_EQ(str_stoe(text, text), nullptr);
    EXPECT_EQ(str_etos(other, text), nullptr);
    EXPECT_STREQ(text, "a\\nb");
    EXPECT_STREQ(other, "kept");
}

} // namespace
