// Reports of two threads: their records never mix.
#include <zrclb/report.h>

#include <chrono>
#include <future>
#include <thread>

#include "frame/report_fixture.h"

namespace {

std::future<void> other_call; // waited for outside the box or handler that starts it

// Whether a message of another thread gets through while this one waits.
bool OtherThreadReports() {
    other_call = std::async(std::launch::async, [] { zr_message("other", nullptr, nullptr, "T", 1); });
    return other_call.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
}

using ReportThreads = ReportFixture;

TEST_F(ReportThreads, RecordsDoNotMix) {
    constexpr int count = 200;
    zr_error_setname(""); // the name is looked up by whoever comes first
    zr::platform::services.debug_output = [](const char *) {};
    auto report = [](const char *name, int line) {
        for (int i = 0; i < count; ++i) {
            zr_begin(name);
            zr_message(name, name, name, name, line);
            zr_error(name, nullptr, nullptr, name, line);
            zr_end();
        }
    };
    zr_begin("main"); // keeps mixed brackets from ending below the first one
    std::thread other(report, "Other", 2);
    report("Main", 1);
    other.join();

    std::string log = TakeLog();
    for (const char *name : {"Main", "Other"}) {
        std::string line = std::string(name) == "Main" ? "1" : "2";
        std::string text = name;
        std::string message = Stamp() + "> MESSAGE in  \"" + text + "\" line " + line + ":\n  " + text + "!\n  " +
                              text + "!\n  " + text + "!\n\n\n";
        std::string error = Stamp() + ">ERROR  in  \"" + text + "\" line " + line + ":\n  " + text + "!\n\n\n";
        for (const std::string &record : {message, error}) {
            int found = 0;
            for (std::size_t at = log.find(record); at != std::string::npos; at = log.find(record, at + 1)) {
                ++found;
            }
            EXPECT_EQ(found, count) << record;
        }
    }
}

TEST_F(ReportThreads, ReportsWithoutALogLeaveTheSectionFree) {
    log_is_on = false;
    SwitchLogOn();
    zr_error("a", nullptr, nullptr, "Fio", 1);
    zr_message("a", nullptr, nullptr, "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_TRUE(OtherThreadReports());
}

TEST_F(ReportThreads, ReportsLeaveTheSectionFree) {
    zr_error("a", nullptr, nullptr, "Fio", 1);
    zr_message("a", nullptr, nullptr, "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    zr_end();
    TakeLog();
    EXPECT_TRUE(OtherThreadReports());
    EXPECT_NE(TakeLog(), "");
}

TEST_F(ReportThreads, BoxOfAnEndWithoutBeginHoldsNobodyUp) {
    static bool passed;
    passed = false;
    zr::platform::services.show_message_box = [](zr_window, const char *, const char *, unsigned) {
        passed = OtherThreadReports();
        return 1;
    };
    zr_end();
    other_call.wait();
    EXPECT_TRUE(passed);
}

TEST_F(ReportThreads, HandlerRunsOutsideTheSection) {
    zr_SetMessageBoxHandler(
        [](zr_window, const char *, const char *, zr_ulong, zr_value) {
            other_call = std::async(std::launch::async, [] { zr_SetMessageBoxHandler(nullptr, 0); });
            return other_call.wait_for(std::chrono::seconds(20)) == std::future_status::ready ? 70 : 71;
        },
        0);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 70);
    other_call.wait();
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 1); // the other thread has removed the handler
}

TEST_F(ReportThreads, HandlersComeAndGoWhileBoxesAreShown) {
    auto handler = [](zr_window, const char *, const char *, zr_ulong, zr_value user) {
        return static_cast<int>(user);
    };
    zr::platform::services.show_message_box = [](zr_window, const char *, const char *, unsigned) { return 1; };
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            zr_SetMessageBoxHandler(handler, 2);
            zr_SetMessageBoxHandler(nullptr, 0);
        }
    });
    int wrong = 0;
    for (int i = 0; i < 2000; ++i) {
        int answer = zr_MessageBox(nullptr, "", "", 0);
        wrong += answer != 1 && answer != 2;
    }
    other.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
