// The reports: their records, what goes to the debugger, and the switches.
#include <zrclb/report.h>

#include "frame/invalid_parameter.h"
#include "frame/report_fixture.h"

namespace {

using Report = ReportFixture;

TEST_F(Report, MessageWritesStampHeaderTextsAndTwoLineEnds) {
    zr_message("first", "second", "third", "Fio", 12);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line 12:\n  first!\n  second!\n  third!\n\n\n");
    EXPECT_TRUE(debugger.empty());
    EXPECT_TRUE(boxes.empty());
}

TEST_F(Report, StampHasTwentyFourCharactersAndALineEnd) {
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    std::string log = TakeLog();
    EXPECT_EQ(log.find('\n'), 24u);
    EXPECT_EQ(log.substr(3, 1), " ");
    EXPECT_EQ(log.substr(4, 3), "Sep");
    EXPECT_EQ(log.substr(8, 2), " 9");
    EXPECT_EQ(log.substr(20, 4), "2001");
}

TEST_F(Report, FileHoldsCarriageReturnsAndLineFeeds) {
    zr_switch_error(3, "Scan", 4);
    EXPECT_EQ(Log(), "SWITCH ERROR in \"Scan\" line 4:\r\n  switch value = 3!\r\n\r\n\r\n\r\n");
}

TEST_F(Report, NullTextIsLeftOutAndEmptyTextIsALine) {
    zr_message(nullptr, "", nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line 1:\n  !\n\n\n");
    zr_message("a", nullptr, "c", "Fio", -1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line -1:\n  a!\n  c!\n\n\n");
}

TEST_F(Report, TextsPassByteForByte) {
    zr_message("100% geh\xF6rt %s\ttab", "\xFF\x80", nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(),
              Stamp() + "> MESSAGE in prog.exe \"Fio\" line 1:\n  100% geh\xF6rt %s\ttab!\n  \xFF\x80!\n\n\n");
}

TEST_F(Report, LongTextIsWrittenWhole) {
    std::string text(100000, 'x');
    zr_message(text.c_str(), nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line 1:\n  " + text + "!\n\n\n");
}

TEST_F(Report, NullSourceTagCountsAsEmpty) {
    zr_message("a", nullptr, nullptr, nullptr, 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"\" line 1:\n  a!\n\n\n");
    zr_error("a", nullptr, nullptr, nullptr, 1);
    EXPECT_EQ(TakeLog(), Stamp() + ">ERROR  in prog.exe \"\" line 1:\n  a!\n\n\n\n\n");
    EXPECT_EQ(debugger.front(), "ZR_ERROR in prog.exe \"\" line 1:\n");
    zr_switch_error(0, nullptr, 1);
    EXPECT_EQ(TakeLog(), "SWITCH ERROR in \"\" line 1:\n  switch value = 0!\n\n\n\n");
}

TEST_F(Report, ErrorWritesRecordWithTracebackAndTellsTheDebugger) {
    zr_error("Section expected", "x@y", nullptr, "ZrEnv", 77);
    EXPECT_EQ(TakeLog(), Stamp() + ">ERROR  in prog.exe \"ZrEnv\" line 77:\n  Section expected!\n  x@y!\n\n\n\n\n");
    std::vector<std::string> expected = {"ZR_ERROR in prog.exe \"ZrEnv\" line 77:\n", "Section expected", "x@y",
                                         "\n\n"};
    EXPECT_EQ(debugger, expected);
    EXPECT_TRUE(boxes.empty());
}

TEST_F(Report, ErrorGivesEveryTextInItsOrder) {
    zr_error("a", "", "c", "Fio", 5);
    EXPECT_EQ(TakeLog(), Stamp() + ">ERROR  in prog.exe \"Fio\" line 5:\n  a!\n  !\n  c!\n\n\n\n\n");
    std::vector<std::string> expected = {"ZR_ERROR in prog.exe \"Fio\" line 5:\n", "a", "", "c", "\n\n"};
    EXPECT_EQ(debugger, expected);
}

TEST_F(Report, LongTextGoesToTheDebuggerWhole) {
    std::string text(100000, 'x');
    zr_error(nullptr, text.c_str(), nullptr, "Fio", 5);
    ASSERT_EQ(debugger.size(), 3u);
    EXPECT_EQ(debugger[1], text);
}

TEST_F(Report, ErrorWithoutTextsSendsNoClosingToTheDebugger) {
    zr_error(nullptr, nullptr, nullptr, "Fio", 5);
    EXPECT_EQ(TakeLog(), Stamp() + ">ERROR  in prog.exe \"Fio\" line 5:\n\n\n\n\n");
    EXPECT_EQ(debugger, std::vector<std::string>{"ZR_ERROR in prog.exe \"Fio\" line 5:\n"});
}

TEST_F(Report, EmptyTextStillClosesTheDebuggerLines) {
    zr_error("", nullptr, nullptr, "Fio", 5);
    std::vector<std::string> expected = {"ZR_ERROR in prog.exe \"Fio\" line 5:\n", "", "\n\n"};
    EXPECT_EQ(debugger, expected);
}

TEST_F(Report, OverlongDebuggerHeaderGoesOutEmptyAndIsReported) {
    std::string tag(300, 't');
    zr_error("a", nullptr, nullptr, tag.c_str(), 5);
    std::vector<std::string> expected = {"", "a", "\n\n"};
    EXPECT_EQ(debugger, expected);
    std::string log = TakeLog();
    EXPECT_NE(log.find(">ERROR  in prog.exe \"" + tag + "\" line 5:\n"), std::string::npos);
    EXPECT_NE(log.find("  Invalid Parameter!\n  !\n  !\n\n\n"), std::string::npos);
}

TEST_F(Report, DebuggerHeaderOf255CharactersFits) {
    // "ZR_ERROR in prog.exe \"" and "\" line 5:\n" take 32 characters.
    std::string tag(223, 't');
    zr_error(nullptr, nullptr, nullptr, tag.c_str(), 5);
    EXPECT_EQ(debugger, std::vector<std::string>{"ZR_ERROR in prog.exe \"" + tag + "\" line 5:\n"});
    debugger.clear();
    zr_error(nullptr, nullptr, nullptr, (tag + "t").c_str(), 5);
    EXPECT_EQ(debugger, std::vector<std::string>{""});
}

TEST_F(Report, SwitchErrorHasNoStampAndNoClosingOfItsOwn) {
    zr_switch_error(-2147483647 - 1, "Calc", 9);
    EXPECT_EQ(TakeLog(), "SWITCH ERROR in \"Calc\" line 9:\n  switch value = -2147483648!\n\n\n\n");
    EXPECT_TRUE(debugger.empty());
    EXPECT_TRUE(boxes.empty());
}

TEST_F(Report, OnoffSilencesOnlyTheErrorRecord) {
    EXPECT_EQ(zr_error_onoff(0), 1);
    zr_error("a", nullptr, nullptr, "Fio", 5);
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(debugger.size(), 3u);
    zr_message("b", nullptr, nullptr, "Fio", 6);
    zr_switch_error(7, "Fio", 8);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line 6:\n  b!\n\n\nSWITCH ERROR in \"Fio\" line 8:\n"
                                   "  switch value = 7!\n\n\n\n");
    EXPECT_EQ(zr_error_onoff(1), 0);
    zr_error(nullptr, nullptr, nullptr, "Fio", 5);
    EXPECT_NE(TakeLog(), "");
}

TEST_F(Report, OnoffWithAnyOtherStateOnlyAsks) {
    EXPECT_EQ(zr_error_onoff(2), 1);
    EXPECT_EQ(zr_error_onoff(-1), 1);
    EXPECT_EQ(zr_error_onoff(-2147483647 - 1), 1);
    EXPECT_EQ(zr_error_onoff(0), 1);
    EXPECT_EQ(zr_error_onoff(2), 0);
    EXPECT_EQ(zr_error_onoff(-1), 0);
    EXPECT_EQ(zr_error_onoff(1), 0);
    EXPECT_EQ(zr_error_onoff(-1), 1);
}

TEST_F(Report, NameIsCutAtFortyCharacters) {
    std::string name(39, 'n');
    zr_error_setname((name + "abc").c_str());
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in " + name + "a \"Fio\" line 1:\n\n\n");
    zr_error_setname("short");
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in short \"Fio\" line 1:\n\n\n");
}

TEST_F(Report, NameThatNobodyKnowsIsEmpty) {
    zr_error_setname("");
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in  \"Fio\" line 1:\n\n\n");
    zr_error_setname(nullptr);
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in  \"Fio\" line 1:\n\n\n");
}

TEST_F(Report, NameThatCannotBeDerivedStaysAsItIs) {
    zr_error_setname("mine");
    zr_error_setname(nullptr);
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in mine \"Fio\" line 1:\n\n\n");
}

int asked; // how often the program's name was asked for

// Lets the name of the program be found, and none be set.
class ReportName : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        asked = 0;
        zr::frame::SetLogHook({[] { return true; },
                               [](char *out, std::size_t size) {
                                   return str_ncpy(out, log_path.c_str(), static_cast<int>(size) - 1) != nullptr;
                               },
                               [](char *out, std::size_t size) {
                                   ++asked;
                                   return str_ncpy(out, "a name of more than forty characters, much more",
                                                   static_cast<int>(size) - 1) != nullptr;
                               }});
        zr_error_setname("");
    }
};

TEST_F(ReportName, IsAskedForByAMessageAlone) {
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(TakeLog().substr(25), "> MESSAGE in a name of more than forty characters, mu \"Fio\" line 1:\n\n\n");
}

TEST_F(ReportName, IsAskedForByAnErrorThatIsSilenced) {
    zr_error_onoff(0);
    zr_error(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(asked, 1);
    ASSERT_EQ(debugger.size(), 1u);
    EXPECT_EQ(debugger[0], "ZR_ERROR in a name of more than forty characters, mu \"Fio\" line 1:\n");
}

TEST_F(ReportName, IsAskedForAtTheFirstMessageOrError) {
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(asked, 0);
    TakeLog();
    zr_error(nullptr, nullptr, nullptr, "Fio", 1);
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(TakeLog().substr(25), ">ERROR  in a name of more than forty characters, mu \"Fio\" line 1:\n\n\n\n\n" +
                                        Stamp() +
                                        "> MESSAGE in a name of more than forty characters, mu \"Fio\" line 1:\n\n\n");
    zr_error_setname("mine");
    zr_error_setname(nullptr);
    EXPECT_EQ(asked, 2);
}

TEST_F(Report, InvalidParameterHasThreeLines) {
    zr::frame::InvalidParameterReporter(nullptr, nullptr);
    std::string log = TakeLog();
    EXPECT_EQ(log.find(Stamp() + "> MESSAGE in prog.exe \"clib\" line "), 0u);
    EXPECT_NE(log.find(":\n  Invalid Parameter!\n  !\n  !\n\n\n"), std::string::npos);
}

TEST_F(Report, InvalidParameterWithOneTextLeavesTheOtherLineEmpty) {
    zr::frame::InvalidParameterReporter(L"buffer != 0", nullptr);
    EXPECT_NE(TakeLog().find(":\n  Invalid Parameter!\n  buffer != 0!\n  !\n\n\n"), std::string::npos);
    zr::frame::InvalidParameterReporter(nullptr, L"sprintf");
    EXPECT_NE(TakeLog().find(":\n  Invalid Parameter!\n  !\n  sprintf!\n\n\n"), std::string::npos);
    EXPECT_TRUE(debugger.empty());
}

TEST_F(Report, InvalidParameterTextsAreNarrowedAndCut) {
    std::wstring expression(300, L'e');
    zr::frame::InvalidParameterReporter(expression.c_str(), L"f\xF6\x20AC");
    std::string log = TakeLog();
    EXPECT_NE(log.find("  " + std::string(255, 'e') + "!\n  f\xF6?!\n\n\n"), std::string::npos);
}

} // namespace
