// The trace stack: brackets, folding, tracebacks, and brackets that do not match.
#include <zrclb/report.h>

#include "frame/report_fixture.h"

namespace {

class Trace : public ReportFixture {
protected:
    // The traceback as an error writes it now.
    static std::string Traceback() {
        zr_switch_error(0, "T", 0);
        std::string log = TakeLog();
        std::string head = "SWITCH ERROR in \"T\" line 0:\n  switch value = 0!\n\n";
        EXPECT_EQ(log.substr(0, head.size()), head);
        return log.substr(head.size());
    }
};

TEST_F(Trace, WithoutBracketsOnlyTheTwoLineEnds) {
    EXPECT_EQ(Traceback(), "\n\n");
}

TEST_F(Trace, InnermostBracketComesFirst) {
    zr_begin("outer");
    zr_begin("inner");
    EXPECT_EQ(Traceback(), "  traceback:\n  - inner called from ...\n  - outer called from ...\n  - main.\n\n\n");
    zr_end();
    EXPECT_EQ(Traceback(), "  traceback:\n  - outer called from ...\n  - main.\n\n\n");
    zr_end();
    EXPECT_EQ(Traceback(), "\n\n");
    EXPECT_TRUE(boxes.empty());
}

TEST_F(Trace, EqualNamesFoldIntoOneSlot) {
    zr_begin("f");
    zr_begin("f");
    zr_begin("f");
    EXPECT_EQ(Traceback(), "  traceback:\n  - 3 * f called from ...\n\n  - main.\n\n\n");
    zr_end();
    EXPECT_EQ(Traceback(), "  traceback:\n  - 2 * f called from ...\n\n  - main.\n\n\n");
    zr_end();
    EXPECT_EQ(Traceback(), "  traceback:\n  - f called from ...\n  - main.\n\n\n");
    zr_end();
    EXPECT_EQ(Traceback(), "\n\n");
}

TEST_F(Trace, OnlyTheTopSlotFolds) {
    for (const char *name : {"a", "b", "a", "b"}) {
        zr_begin(name);
    }
    EXPECT_EQ(Traceback(), "  traceback:\n  - b called from ...\n  - a called from ...\n  - b called from ...\n"
                           "  - a called from ...\n  - main.\n\n\n");
    for (int i = 0; i < 4; ++i) {
        zr_end();
    }
    EXPECT_EQ(Traceback(), "\n\n");
}

TEST_F(Trace, NamesCompareByteByByte) {
    for (const char *name : {"f", "F", "ff", "f"}) {
        zr_begin(name);
    }
    EXPECT_EQ(Traceback(), "  traceback:\n  - f called from ...\n  - ff called from ...\n  - F called from ...\n"
                           "  - f called from ...\n  - main.\n\n\n");
    for (int i = 0; i < 4; ++i) {
        zr_end();
    }
}

TEST_F(Trace, OverlongNameIsCutAndFoldsWithTheCutName) {
    std::string cut(79, 'n');
    zr_begin((cut + "one").c_str());
    zr_begin((cut + "another").c_str());
    zr_begin(cut.c_str());
    EXPECT_EQ(Traceback(), "  traceback:\n  - 3 * " + cut + " called from ...\n\n  - main.\n\n\n");
    for (int i = 0; i < 3; ++i) {
        zr_end();
    }
    EXPECT_EQ(Traceback(), "\n\n");
}

TEST_F(Trace, NullNameIsTheEmptyOne) {
    zr_begin(nullptr);
    zr_begin("");
    EXPECT_EQ(Traceback(), "  traceback:\n  - 2 *  called from ...\n\n  - main.\n\n\n");
    zr_end();
    zr_end();
}

TEST_F(Trace, TwentyNamesAreHeldAndTheTopOneStillFolds) {
    std::string expected;
    for (int i = 1; i <= 20; ++i) {
        std::string name = "f" + std::to_string(i);
        zr_begin(name.c_str());
        expected.insert(0, "  - " + name + " called from ...\n");
    }
    EXPECT_EQ(Traceback(), "  traceback:\n" + expected + "  - main.\n\n\n");
    zr_begin("f20");
    std::string top = "  - f20 called from ...\n";
    expected.replace(0, top.size(), "  - 2 * f20 called from ...\n\n");
    EXPECT_EQ(Traceback(), "  traceback:\n" + expected + "  - main.\n\n\n");
    EXPECT_TRUE(debugger.empty());
    for (int i = 0; i < 21; ++i) {
        zr_end();
    }
    EXPECT_EQ(Traceback(), "\n\n");
    EXPECT_TRUE(boxes.empty());
}

TEST_F(Trace, ErrorCarriesTheTracebackAndMessageDoesNot) {
    zr_begin("f");
    zr_error("e", nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + ">ERROR  in prog.exe \"Fio\" line 1:\n  e!\n\n\n  traceback:\n"
                                   "  - f called from ...\n  - main.\n\n\n");
    zr_message("m", nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line 1:\n  m!\n\n\n");
    zr_end();
}

TEST_F(Trace, EndWithoutBeginShowsABoxAndTwoLines) {
    focus = &focus;
    zr_SetMessageBoxHandler([](zr_window, const char *, const char *, zr_ulong, zr_value) { return 99; }, 0);
    zr_end();
    zr_SetMessageBoxHandler(nullptr, 0);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].owner, focus);
    EXPECT_EQ(boxes[0].text, "  END without BEGIN!\n\n");
    EXPECT_EQ(boxes[0].caption, "MISSMATCH WITH BEGIN-END-BRACKET:\n");
    EXPECT_EQ(boxes[0].type, 0x40000u);
    EXPECT_EQ(TakeLog(), "> MISSMATCH WITH BEGIN-END-BRACKET:\n  END without BEGIN!\n\n");
    focus = nullptr;

    zr_begin("f");
    EXPECT_EQ(Traceback(), "  traceback:\n  - f called from ...\n  - main.\n\n\n");
    zr_end();
    EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(Trace, EveryEndWithoutBeginShowsItsBox) {
    zr_end();
    zr_end();
    EXPECT_EQ(boxes.size(), 2u);
    std::string lines = "> MISSMATCH WITH BEGIN-END-BRACKET:\n  END without BEGIN!\n\n";
    EXPECT_EQ(TakeLog(), lines + lines);
    EXPECT_TRUE(debugger.empty());
}

TEST_F(Trace, EndWithoutBeginShowsItsBoxWithoutALog) {
    log_is_on = false;
    SwitchLogOn();
    zr_end();
    EXPECT_EQ(boxes.size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(log_path));
}

TEST_F(Trace, BoxComesBeforeTheLogIsOpened) {
    static bool logged;
    logged = true;
    zr::platform::services.show_message_box = [](zr_window, const char *, const char *, unsigned) {
        logged = std::filesystem::exists(log_path);
        return 1;
    };
    zr_end();
    EXPECT_FALSE(logged);
    EXPECT_TRUE(std::filesystem::exists(log_path));
}

} // namespace
