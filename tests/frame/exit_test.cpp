// The end of the process through zr_exit, seen from a process that starts it.
#include <zrclb/report.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>

#include <gmock/gmock.h>

#include "frame/counted_allocation.h"
#include "frame/report_fixture.h"

namespace {

using testing::AllOf;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

class Exit : public ReportFixture {
protected:
    static void SetUpTestSuite() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    // Makes the process that ends tell what its log holds, and remove its folder.
    void TellAtTheEnd() {
        folder = Folder();
        zr::platform::services.show_message_box = [](zr_window, const char *text, const char *caption, unsigned type) {
            std::fprintf(stderr, "box[%s|%s|%x|%s]", caption, text, type,
                         std::filesystem::exists(log_path) ? "logged" : "not logged");
            return 1;
        };
        std::atexit([] {
            std::string log;
            for (char ch : Log()) {
                log += ch == '\r' ? "<CR>" : ch == '\n' ? "<LF>" : std::string(1, ch);
            }
            std::fprintf(stderr, "log[%s]", log.c_str());
            std::error_code ignored;
            std::filesystem::remove_all(folder, ignored);
        });
    }

    static inline std::filesystem::path folder;
};

void First() {
    std::fprintf(stderr, "first(ran)");
}

void Second() {
    std::fprintf(stderr, "second(ran)");
}

int LoudHandler(zr_window, const char *, const char *, zr_ulong, zr_value) {
    std::fprintf(stderr, "handler was called");
    return 1;
}

TEST_F(Exit, ShowsLogsRunsEndingsAndEndsWithStatusZero) {
    EXPECT_EXIT(
        {
            TellAtTheEnd();
            zr_SetMessageBoxHandler(LoudHandler, 0);
            endprog_fkt(0, First);
            endprog_fkt(0, Second);
            zr_begin("f");
            zr_exit("one ", nullptr, "three", "Mini", 33);
        },
        ExitedWithCode(0),
        AllOf(HasSubstr("box[EXIT :|one three|40000|not logged]first(ran)second(ran)"
                        "log[> EXIT    in \"Mini\" line 33:<CR><LF>  one !<CR><LF>  three!<CR><LF><CR><LF><CR><LF>"
                        "  traceback:<CR><LF>  - f called from ...<CR><LF>  - main.<CR><LF><CR><LF><CR><LF>]"),
              Not(HasSubstr("handler was called"))));
}

TEST_F(Exit, LogsBeforeTheEndingsRunAndFreesTheirList) {
    EXPECT_EXIT(
        {
            TellAtTheEnd();
            static zr_long before = zr::frame::heap_block_count;
            endprog_fkt(0, [] {
                std::fprintf(stderr, "%s;%d registered", std::filesystem::exists(log_path) ? "logged" : "not logged",
                             static_cast<int>(zr::frame::heap_block_count - before));
            });
            std::atexit(
                [] { std::fprintf(stderr, ";%d left;", static_cast<int>(zr::frame::heap_block_count - before)); });
            zr_exit("a", nullptr, nullptr, "Mini", 1);
        },
        ExitedWithCode(0), HasSubstr("]logged;1 registered;0 left;"));
}

TEST_F(Exit, BelongsToTheWindowInFocusAndTellsNoDebugger) {
    EXPECT_EXIT(
        {
            TellAtTheEnd();
            static int window = 0;
            zr::platform::services.focus_window = []() -> zr_window { return &window; };
            zr::platform::services.show_message_box = [](zr_window owner, const char *, const char *, unsigned) {
                std::fprintf(stderr, owner == &window ? "owner is right" : "owner is wrong");
                return 1;
            };
            zr::platform::services.debug_output = [](const char *) { std::fprintf(stderr, "debugger was told"); };
            zr_exit("a", nullptr, nullptr, "Mini", 1);
        },
        ExitedWithCode(0), AllOf(HasSubstr("owner is rightlog["), Not(HasSubstr("debugger was told"))));
}

TEST_F(Exit, EmptyTextIsALineAndTheNameIsNotAskedFor) {
    EXPECT_EXIT(
        {
            zr::frame::SetLogHook({[] { return true; },
                                   [](char *out, std::size_t size) {
                                       return str_ncpy(out, log_path.c_str(), static_cast<int>(size) - 1) != nullptr;
                                   },
                                   [](char *, std::size_t) {
                                       std::fprintf(stderr, "name was asked for");
                                       return false;
                                   }});
            TellAtTheEnd();
            zr_error_setname("");
            zr_exit(nullptr, "", "c", "Mini", 1);
        },
        ExitedWithCode(0),
        AllOf(
            HasSubstr("box[EXIT :|c|40000|not logged]log[> EXIT    in \"Mini\" line 1:<CR><LF>  !<CR><LF>  c!<CR><LF>"),
            Not(HasSubstr("name was asked for"))));
}

TEST_F(Exit, WaitingBoxHoldsNobodyUp) {
    EXPECT_EXIT(
        {
            TellAtTheEnd();
            static std::future<void> other;
            zr::platform::services.show_message_box = [](zr_window, const char *, const char *, unsigned) {
                other = std::async(std::launch::async, [] { zr_switch_error(1, "T", 1); });
                bool passed = other.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
                std::fprintf(stderr, passed ? "other passed" : "other waits");
                return 1;
            };
            zr_exit("a", nullptr, nullptr, "Mini", 1);
        },
        ExitedWithCode(0), HasSubstr("other passedlog[SWITCH ERROR in \"T\""));
}

TEST_F(Exit, IsNotSilencedByTheErrorSwitch) {
    EXPECT_EXIT(
        {
            TellAtTheEnd();
            zr_error_onoff(0);
            zr_exit(nullptr, nullptr, nullptr, nullptr, 1);
        },
        ExitedWithCode(0),
        HasSubstr(
            "box[EXIT :||40000|not logged]log[> EXIT    in \"\" line 1:<CR><LF><CR><LF><CR><LF><CR><LF><CR><LF>]"));
}

TEST_F(Exit, OverlongTextIsCutInTheBoxAndWholeInTheLog) {
    std::string text(200, 'x');
    EXPECT_EXIT(
        {
            TellAtTheEnd();
            zr_exit(text.c_str(), text.c_str(), text.c_str(), "Mini", 1);
        },
        ExitedWithCode(0),
        AllOf(HasSubstr("box[EXIT :|" + std::string(255, 'x') + "|40000|"),
              HasSubstr("  " + text + "!<CR><LF>  " + text + "!<CR><LF>  " + text + "!<CR><LF><CR><LF>")));
}

TEST_F(Exit, EndsWithStatusZeroWithoutALog) {
    EXPECT_EXIT(
        {
            log_is_on = false;
            SwitchLogOn();
            TellAtTheEnd();
            endprog_fkt(0, Second);
            zr_exit("a", nullptr, nullptr, "Mini", 1);
        },
        ExitedWithCode(0), HasSubstr("box[EXIT :|a|40000|not logged]second(ran)log[]"));
}

} // namespace
