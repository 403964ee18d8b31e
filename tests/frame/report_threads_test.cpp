// Reports of two threads: their records never mix.
#include <zrclb/report.h>

#include <thread>

#include "frame/report_fixture.h"

namespace {

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
