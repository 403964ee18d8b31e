// The scanner's trace: the file "trc" byte by byte.
#include <clocale>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/scan.h>

#include "env/report_capture.h"
#include "expressions/scan_trace.h"
#include "expressions/scanner.h"
#include "frame/refused_heap.h"
#include "platform/temp_folder.h"

namespace {

using std::string;

string text;
std::size_t taken = 0;

int Next() {
    return taken < text.size() ? static_cast<unsigned char>(text[taken++]) : 0;
}

class ScanTraceFile : public testing::Test {
protected:
    // The trace of all tokens up to the end, each into `kind` as it stands.
    string TraceOf(zr_long options, const string &input, const char **keywords = nullptr) {
        text = input;
        taken = 0;
        CZrScanner *scanner = scan_open(Next, options, keywords);
        const auto token = std::make_unique<ZrScanToken>();
        zr_long kind = 0;
        while (kind != SCAN_KIND_END)
            scan_token(scanner, &kind, token.get());
        scan_close(scanner);
        return std::filesystem::exists(folder.Folder() / "trc") ? folder.Read("trc") : "none";
    }

    TempFolder folder;
    CurrentFolder current{folder.Folder()};
};

TEST_F(ScanTraceFile, HasALineForEachToken) {
    const char *keywords[] = {"do", "if", nullptr};
    EXPECT_EQ(TraceOf(SCAN_TRACE | SCAN_KEEP_EOL | SCAN_HASH_STYLE, "if ab 12\n 3.5 'x' `q' + ~", keywords),
              "S1  [ 0: 0]\tkeyword    <if> #1\r\n"
              "S1  [ 0: 3]\tidentifier <ab>\r\n"
              "S1  [ 0: 6]\tlong       <12>  12\r\n"
              "S1  [ 0: 8]\teol        < >\r\n"
              "S1  [ 1: 1]\tdouble     <3.5>  3.500000\r\n"
              "S1  [ 1: 5]\tchar       <x>\r\n"
              "S1  [ 1: 9]\tsymbol     <q>\r\n"
              "S1  [ 1:13]\tsymbol     <+>\r\n"
              "S1  [ 1:15]\tsymbol     <~>\r\n"
              "S1  [ 1:16]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, NamesStringsAndVoids) {
    EXPECT_EQ(TraceOf(SCAN_TRACE, "\"s t\" \x7f"), "S1  [ 0: 0]\tstring     <s t>\r\n"
                                                   "S1  [ 0: 6]\t** void ** <\x7f>\r\n"
                                                   "S1  [ 0: 7]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, AnOwedDot_HasNoPlaceAndNoLine) {
    EXPECT_EQ(TraceOf(SCAN_TRACE | SCAN_SIGNED_NUMBERS, "+.x"), "S1  [ 0: 0]\tsymbol     <+>\r\n"
                                                                "S1  [ 0: 2]\tidentifier <x>\r\n"
                                                                "S1  [ 0: 3]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, ATextWithoutTerminator_IsTracedToItsEnd) {
    EXPECT_EQ(TraceOf(SCAN_TRACE, string(5000, 'n')), "S1  [ 0: 0]\tidentifier <" + string(4096, 'n') +
                                                          ">\r\n"
                                                          "S1  [ 0:5000]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, ANumberWithoutTerminator_HasItsValueBehindIt) {
    const string zeros(4095, '0');
    EXPECT_EQ(TraceOf(SCAN_TRACE, zeros + "7"), "S1  [ 0: 0]\tlong       <" + zeros +
                                                    "7>  7\r\n"
                                                    "S1  [ 0:4096]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, LargeNumbers_AreWrittenInFull) {
    const string trace = TraceOf(SCAN_TRACE, "1e308 4294967296");
    EXPECT_NE(
        trace.find(
            "<1e308>  100000000000000001097906362944045541740492309677311846336810682903157585404911491537163328978"
            "4946888990612496697211725156115902837431400883283070091981460460312716645029330271856974896995885590"
            "43338384466165001178426897626212945177628091195786707458122783970171784415105291802893207873272974885715"
            "430223118336.000000\r\n"),
        string::npos);
    EXPECT_NE(trace.find("double     <4294967296>  4294967296.000000\r\n"), string::npos);
}

TEST_F(ScanTraceFile, IgnoresTheProcessLocale) {
    bool comma = false;
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany.1252", "fr_FR.UTF-8"})
        comma = comma || (std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',');
    const string trace = TraceOf(SCAN_TRACE, "2.5");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(trace.substr(0, 36), "S1  [ 0: 0]\tdouble     <2.5>  2.5000");
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
}

TEST_F(ScanTraceFile, IsMadeAnewByEachScanner) {
    folder.Write("trc", "an old and longer content that goes");
    EXPECT_EQ(TraceOf(SCAN_TRACE, ""), "S1  [ 0: 0]\teof        < >\r\n");
    EXPECT_TRUE(std::filesystem::remove(folder.Folder() / "trc")); // nobody has it open any more
}

TEST_F(ScanTraceFile, IsThereFromTheStart) {
    folder.Write("trc", "old");
    text = "a";
    taken = 0;
    CZrScanner *scanner = scan_open(Next, SCAN_TRACE, nullptr);
    EXPECT_EQ(std::filesystem::file_size(folder.Folder() / "trc"), 0U);
    EXPECT_EQ(taken, 0U);
    scan_close(scanner);
    EXPECT_EQ(folder.Read("trc"), "");
}

TEST_F(ScanTraceFile, StaysInTheFolderItWasMadeIn) {
    text = "a";
    taken = 0;
    std::filesystem::create_directory(folder.Folder() / "other");
    CZrScanner *scanner = scan_open(Next, SCAN_TRACE, nullptr);
    {
        const CurrentFolder other(folder.Folder() / "other");
        const auto token = std::make_unique<ZrScanToken>();
        zr_long kind = 0;
        scan_token(scanner, &kind, token.get());
        scan_close(scanner);
    }
    EXPECT_EQ(folder.Read("trc"), "S1  [ 0: 0]\tidentifier <a>\r\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.Folder() / "other"));
}

// The kind is the caller's then: 0 at first here, that of the token before later on.
TEST_F(ScanTraceFile, AKindThatIsLeft_IsTracedAsWhatItWas) {
    EXPECT_EQ(TraceOf(SCAN_TRACE, "1e a \\ 7 1e"), "S1  [ 0: 0]\t** void ** <1e>\r\n"
                                                   "S1  [ 0: 3]\tidentifier <a>\r\n"
                                                   "S1  [ 0: 5]\tidentifier <\\>\r\n"
                                                   "S1  [ 0: 7]\tlong       <7>  7\r\n"
                                                   "S1  [ 0: 9]\tlong       <1e>  0\r\n"
                                                   "S1  [ 0:11]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, AnEscapedLineFeed_IsWrittenAsOne) {
    EXPECT_EQ(TraceOf(SCAN_TRACE | SCAN_STRING_ESCAPES, "\"a\\nb\""), "S1  [ 0: 0]\tstring     <a\r\nb>\r\n"
                                                                      "S1  [ 1: 2]\teof        < >\r\n");
}

TEST_F(ScanTraceFile, OfCharacters_HasNothing) {
    text = "ab";
    taken = 0;
    CZrScanner *scanner = scan_open(Next, SCAN_TRACE, nullptr);
    zr_long kind = 0;
    char c = 0;
    scan_character(scanner, &kind, &c);
    scan_character_ex(scanner, &kind, &c);
    EXPECT_EQ(c, 'a');
    scan_close(scanner);
    EXPECT_EQ(folder.Read("trc"), "");
}

TEST_F(ScanTraceFile, OfAScannerOfTheClass) {
    class Letter : public IZrScannerGetChar {
        int GetChar() override { return std::exchange(m_next, 0); }
        int m_next = 'q';
    } source;
    {
        CZrScanner scanner(&source, SCAN_TRACE, nullptr);
        const auto token = std::make_unique<ZrScanToken>();
        zr_long kind = 0;
        EXPECT_EQ(scanner.NextToken(kind, *token), 0);
        EXPECT_STREQ(token->text, "q");
    }
    EXPECT_EQ(folder.Read("trc"), "S1  [ 0: 0]\tidentifier <q>\r\n");
}

TEST_F(ScanTraceFile, OfTheManual_IsTrue) {
    std::ifstream manual(ZR_GOLDEN_DIR "/../../docs/scanner.md");
    string expected;
    for (string line; std::getline(manual, line);) {
        if (line.starts_with("    S1  "))
            expected += line.substr(4, line.find_last_not_of('\r') - 3) + "\r\n";
    }
    const char *keywords[] = {"if", nullptr};
    EXPECT_EQ(TraceOf(SCAN_TRACE, "if a = 12 .5", keywords), expected);
}

TEST_F(ScanTraceFile, WithoutTheOption_IsNotMade) {
    EXPECT_EQ(TraceOf(0, "a b"), "none");
}

TEST_F(ScanTraceFile, ThatCannotBeMade_ChangesNothing) {
    std::filesystem::create_directory(folder.Folder() / "trc");
    zr::test::ReportCapture reports;
    text = "a";
    taken = 0;
    CZrScanner *scanner = scan_open(Next, SCAN_TRACE, nullptr);
    ASSERT_NE(scanner, nullptr);
    const auto token = std::make_unique<ZrScanToken>();
    zr_long kind = 0;
    EXPECT_EQ(scan_token(scanner, &kind, token.get()), 0);
    EXPECT_EQ(kind, 6);
    EXPECT_STREQ(token->text, "a");
    scan_close(scanner);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Folder() / "trc"));
    EXPECT_EQ(reports.Take(), zr::test::Reports{});
}

TEST_F(ScanTraceFile, WithoutMemoryForTheKeywords_IsNotMade) {
    const char *keywords[] = {"a", nullptr};
    zr::test::HeapRefusal refusal(1);
    EXPECT_EQ(TraceOf(SCAN_TRACE, "a b", keywords), "none");
    EXPECT_TRUE(refusal.Met());
}

// The labels of all kinds; those of scan_character don't occur.
TEST_F(ScanTraceFile, Labels) {
    const auto token = std::make_unique<ZrScanToken>();
    token->text[0] = 't';
    {
        zr::expressions::ScanTrace trace;
        trace.Open();
        token->row = 123;
        token->column = 4567;
        for (zr_long kind : {0, 6, 9, 10, 43, 44})
            trace.Write(kind, *token);
        for (zr_long kind = 11; kind <= 42; ++kind)
            trace.Write(kind, *token);
        token->longValue = -7;
        token->doubleValue = -0.25;
        for (zr_long kind : {5, 7, 8})
            trace.Write(kind, *token);
    }
    std::vector<string> lines = {"** void ** <t>", "identifier <t>", "char       <t>",
                                 "string     <t>", "eol        <t>", "eof        <t>"};
    lines.insert(lines.end(), 32, "symbol     <t>");
    lines.insert(lines.end(), {"keyword    <t> #-7", "long       <t>  -7", "double     <t>  -0.250000"});
    string expected;
    for (const string &line : lines)
        expected += "S1  [123:4567]\t" + line + "\r\n";
    EXPECT_EQ(folder.Read("trc"), expected);
}

} // namespace
