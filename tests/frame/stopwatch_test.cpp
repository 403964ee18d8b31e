// Stopwatches and their table. No timer is ever taken out of the table: the tests run in the order in which they stand.
#include <zrclb/clock.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "frame/refused_heap.h"
#include "platform/clock.h"
#include "platform/temp_folder.h"

namespace {

using zr::platform::services;

class Stopwatch : public testing::Test {
protected:
    void SetUp() override {
        services.now = [] { return milliseconds / 1000; };
        services.now_milliseconds = [] { return milliseconds; };
        milliseconds = 1000000000500;
    }
    void TearDown() override { services = zr::platform::Services(); }

    // The table as text, with its line ends, which are CR LF and nothing else, as \n.
    static std::string Table(const TempFolder &folder, const std::string &name) {
        const std::string bytes = folder.Read(name);
        std::string text;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool end = bytes.compare(i, 2, "\r\n") == 0;
            EXPECT_TRUE(bytes[i] != '\r' || end);
            EXPECT_TRUE(bytes[i] != '\n' || (i > 0 && bytes[i - 1] == '\r'));
            if (!end)
                text += bytes[i];
        }
        return text;
    }

    static std::string Title() {
        return std::string("   Zeitmessung vom ") + clock_date(0, 0) + ", " + clock_time(0, 1) + "\n\n";
    }

    static inline const std::string head = "          Timername |  Starts |  Sekunden\n"
                                           "   -----------------|---------|----------\n";
    static inline const std::string rule = "   -----------------|---------|----------\n";
    static inline std::int64_t milliseconds = 0;
};

TEST_F(Stopwatch, Timer_HasItsFieldsInOrder) {
    EXPECT_EQ(offsetof(clock_timer, name), 0U);
    EXPECT_EQ(offsetof(clock_timer, start_seconds), 80U);
    EXPECT_EQ(offsetof(clock_timer, start_milliseconds), 88U);
    EXPECT_EQ(offsetof(clock_timer, total_milliseconds), 96U);
    EXPECT_EQ(offsetof(clock_timer, starts), 104U);
}

TEST_F(Stopwatch, TableWithoutTimers_SaysSo) {
    const TempFolder folder;
    clock_timertable(folder.Path("table").c_str(), 0);
    EXPECT_EQ(Table(folder, "table"), Title() + "keine Timer vorhanden.");
    clock_timertable(folder.Path("table").c_str(), 1);
    EXPECT_EQ(Table(folder, "table"), Title() + "keine Timer vorhanden." + Title() + "keine Timer vorhanden.");
    for (const int mode : {2, -1, 257}) {
        clock_timertable(folder.Path("table").c_str(), mode);
        EXPECT_EQ(Table(folder, "table"), Title() + "keine Timer vorhanden.") << mode;
    }
}

TEST_F(Stopwatch, TableThatCannotBeOpened_DoesNothing) {
    const TempFolder folder;
    const CurrentFolder current(folder.Folder());
    zr::test::ReportCapture reports;
    clock_timertable(nullptr, 0);
    for (const std::string &path :
         {std::string(), std::string(259, 'a'), std::string(260, 'a'), std::string(10000, 'a'), std::string("\\"),
          std::string("//"), std::string("Q:\\table"), folder.Folder().string(), folder.Path("missing/table")})
        for (const int mode : {0, 1})
            clock_timertable(path.c_str(), mode);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Folder()));
    EXPECT_EQ(reports.Take(), zr::test::Reports{});
}

TEST_F(Stopwatch, TableThatIsWriteProtected_StaysAsItIs) {
    const TempFolder folder;
    folder.Write("table", "before");
    using std::filesystem::perms;
    std::filesystem::permissions(folder.Folder() / "table", perms::owner_read);
    for (const int mode : {0, 1})
        clock_timertable(folder.Path("table").c_str(), mode);
    EXPECT_EQ(folder.Read("table"), "before");
    std::filesystem::permissions(folder.Folder() / "table", perms::owner_all);
    clock_timertable(folder.Path("table").c_str(), 0);
    EXPECT_NE(folder.Read("table"), "before");
}

TEST_F(Stopwatch, NewTimer_IsClear) {
    clock_timer *timer = clock_timeropen("first");
    ASSERT_NE(timer, nullptr);
    EXPECT_STREQ(timer->name, "first");
    EXPECT_EQ(timer->start_seconds, 0);
    EXPECT_EQ(timer->start_milliseconds, 0);
    EXPECT_EQ(timer->total_milliseconds, 0U);
    EXPECT_EQ(timer->starts, 0);
    EXPECT_EQ(clock_timerget(timer), 0);
}

TEST_F(Stopwatch, RefusedMemory_GivesNullAndLeavesTheTable) {
    const TempFolder folder;
    clock_timertable(folder.Path("before").c_str(), 0);
    zr::test::ReportCapture reports;
    {
        const zr::test::HeapRefusal refusal(0);
        EXPECT_EQ(clock_timeropen("refused"), nullptr);
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_EQ(reports.Take(), zr::test::Reports{});
    clock_timertable(folder.Path("after").c_str(), 0);
    EXPECT_EQ(folder.Read("after"), folder.Read("before"));
}

TEST_F(Stopwatch, LongName_IsCutAt79Characters) {
    for (const std::size_t length : {100U, 0U, 1U, 79U, 80U, 259U, 260U, 10000U}) {
        const clock_timer *timer = clock_timeropen(std::string(length, 'n').c_str());
        ASSERT_NE(timer, nullptr);
        EXPECT_EQ(timer->name, std::string(length < 79 ? length : 79, 'n'));
    }
    const clock_timer *timer = clock_timeropen(nullptr);
    ASSERT_NE(timer, nullptr);
    EXPECT_STREQ(timer->name, "");
    timer = clock_timeropen("\x80\xE4\xFF\\/:");
    ASSERT_NE(timer, nullptr);
    EXPECT_STREQ(timer->name, "\x80\xE4\xFF\\/:");
}

TEST_F(Stopwatch, Intervals_AddUp) {
    clock_timer *timer = clock_timeropen("intervals");
    ASSERT_NE(timer, nullptr);
    clock_timerstart(timer);
    EXPECT_EQ(timer->start_seconds, 1000000000);
    EXPECT_EQ(timer->start_milliseconds, 500);
    milliseconds += 2750; // into the next second but two, with fewer milliseconds
    clock_timerstop(timer);
    EXPECT_EQ(clock_timerget(timer), 2750);
    EXPECT_EQ(timer->starts, 1);
    milliseconds += 10000; // at rest
    clock_timerstart(timer);
    milliseconds += 999999; // started again: this one is lost
    clock_timerstart(timer);
    milliseconds += 50;
    clock_timerstop(timer);
    EXPECT_EQ(clock_timerget(timer), 2800);
    EXPECT_EQ(timer->starts, 2);
    milliseconds += 100; // stopped again: from the same start on
    clock_timerstop(timer);
    EXPECT_EQ(clock_timerget(timer), 2950);
    EXPECT_EQ(timer->starts, 3);
}

TEST_F(Stopwatch, Reset_ClearsAllButTheName) {
    clock_timer *timer = clock_timeropen("reset");
    ASSERT_NE(timer, nullptr);
    clock_timerstart(timer);
    milliseconds += 5;
    clock_timerstop(timer);
    EXPECT_EQ(clock_timerreset(timer), timer);
    EXPECT_STREQ(timer->name, "reset");
    EXPECT_EQ(timer->start_seconds, 0);
    EXPECT_EQ(timer->start_milliseconds, 0);
    EXPECT_EQ(timer->total_milliseconds, 0U);
    EXPECT_EQ(timer->starts, 0);
}

TEST_F(Stopwatch, StopWithoutStart_MeasuresFrom1970) {
    clock_timer *timer = clock_timeropen("no start");
    ASSERT_NE(timer, nullptr);
    clock_timerstop(timer);
    EXPECT_EQ(timer->total_milliseconds, 1000000000500U);
    EXPECT_EQ(timer->starts, 1);
    EXPECT_EQ(clock_timerget(timer), static_cast<zr_long>(static_cast<std::uint32_t>(1000000000500U)));
}

TEST_F(Stopwatch, ClockSetBack_AndAnyStart_AreDefined) {
    clock_timer *timer = clock_timeropen("back");
    ASSERT_NE(timer, nullptr);
    clock_timerstart(timer);
    milliseconds -= 1500;
    clock_timerstop(timer);
    EXPECT_EQ(clock_timerget(timer), -1500);
    timer->start_seconds = std::numeric_limits<std::int64_t>::min();
    timer->start_milliseconds = std::numeric_limits<std::int64_t>::min();
    timer->starts = std::numeric_limits<zr_long>::max();
    clock_timerstop(timer);
    EXPECT_EQ(timer->starts, std::numeric_limits<zr_long>::min());
    clock_timerreset(timer);
}

TEST_F(Stopwatch, NullTimer_IsIgnored) {
    EXPECT_EQ(clock_timerreset(nullptr), nullptr);
    clock_timerstart(nullptr);
    clock_timerstop(nullptr);
    EXPECT_EQ(clock_timerget(nullptr), 0);
}

TEST_F(Stopwatch, RealClock_CountsMilliseconds) {
    services = zr::platform::Services();
    clock_timer *timer = clock_timeropen("real");
    ASSERT_NE(timer, nullptr);
    clock_timerstart(timer);
    zr::platform::Wait(30);
    clock_timerstop(timer);
    EXPECT_GE(clock_timerget(timer), 20); // the calendar's clock may be slewed meanwhile
    EXPECT_LT(clock_timerget(timer), 60000);
    clock_timerreset(timer);
}

TEST_F(Stopwatch, Table_HasALineForEachTimer) {
    clock_timer *timer = clock_timeropen("t\xFC");
    ASSERT_NE(timer, nullptr);
    timer->total_milliseconds = 1234567;
    timer->starts = 42;
    const TempFolder folder;
    clock_timertable(folder.Path("table").c_str(), 0);
    const std::string first = "              first |       0 |     0.000\n" + rule;
    const std::string expected_end = "                 t\xFC |      42 |  1234.567\n" + rule;
    const std::string text = Table(folder, "table");
    EXPECT_EQ(text.substr(0, (Title() + head + first).size()), Title() + head + first);
    EXPECT_EQ(text.substr(text.size() - expected_end.size()), expected_end);
    EXPECT_NE(text.find("    " + std::string(79, 'n') + " |       0 |     0.000\n"), std::string::npos);
    EXPECT_NE(text.find("           no start |       1 | 1000000000.500\n"), std::string::npos);
    clock_timertable(folder.Path("table").c_str(), 1);
    EXPECT_EQ(Table(folder, "table"), text + text);
}

TEST_F(Stopwatch, Table_HoldsTheLargestNumbers) {
    const std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();
    clock_timer *timer = clock_timeropen("huge");
    ASSERT_NE(timer, nullptr);
    timer->total_milliseconds = huge;
    timer->starts = std::numeric_limits<zr_long>::min();
    const TempFolder folder;
    clock_timertable(folder.Path("table").c_str(), 0);
    EXPECT_NE(Table(folder, "table").find("               huge | -2147483648 | 18446744073709552.000\n"),
              std::string::npos);
    clock_timerreset(timer);
}

TEST_F(Stopwatch, HundredAndFirstTimer_IsNull) {
    int opened = 0;
    while (clock_timeropen("more") != nullptr)
        ASSERT_LT(++opened, 101);
    zr::test::ReportCapture reports;
    EXPECT_EQ(clock_timeropen("one too many"), nullptr);
    EXPECT_EQ(clock_timeropen(nullptr), nullptr);
    EXPECT_EQ(reports.Take(), zr::test::Reports{});
    const TempFolder folder;
    clock_timertable(folder.Path("table").c_str(), 0);
    const std::string text = Table(folder, "table").substr((Title() + head).size());
    // Each timer has its line and a rule.
    std::size_t lines = 0;
    for (const char c : text)
        lines += c == '\n' ? 1 : 0;
    EXPECT_EQ(lines, 200U);
}

} // namespace
