// The daily log: switch, place, days, and files that cannot be written.
#include <chrono>
#include <cstdio>

#include <zrclb/report.h>

#include "frame/report_fixture.h"

namespace {

std::int64_t modified_time;

class Log : public ReportFixture {
protected:
    static constexpr const char *record = "SWITCH ERROR in \"Fio\" line 1:\n  switch value = 1!\n\n\n\n";

    static void WriteOldLog() {
        std::ofstream file(log_path, std::ios::binary);
        file << "old";
    }

    // Makes the log look as if it was last written at `modified`.
    static void PretendModified(std::int64_t modified) {
        modified_time = modified;
        zr::platform::services.file_status = [](const char *, zr::platform::FileStatus &out) {
            out = {modified_time, 3, false};
            return true;
        };
    }

    // Midnight of the local day that `moment` lies in.
    static std::int64_t Midnight(std::int64_t moment) {
        zr::platform::Calendar calendar;
        EXPECT_TRUE(zr::platform::LocalCalendar(moment, calendar));
        return moment - calendar.hour * 3600 - calendar.minute * 60 - calendar.second;
    }

    static zr::platform::Calendar Day(std::int64_t moment) {
        zr::platform::Calendar calendar;
        EXPECT_TRUE(zr::platform::LocalCalendar(moment, calendar));
        return calendar;
    }
};

TEST_F(Log, IsOffWhereTheHookSaysSo) {
    log_is_on = false;
    SwitchLogOn();
    zr_error("a", nullptr, nullptr, "Fio", 1);
    zr_message("a", nullptr, nullptr, "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_FALSE(std::filesystem::exists(log_path));
    EXPECT_EQ(debugger.size(), 3u);
}

TEST_F(Log, IsOffWithoutAHook) {
    zr::frame::SetLogHook({});
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Folder());
    zr_error("a", nullptr, nullptr, "Fio", 1);
    std::filesystem::current_path(before);
    EXPECT_TRUE(std::filesystem::is_empty(Folder()));
}

TEST_F(Log, StandsInTheCurrentFolderWithoutAPath) {
    zr::frame::SetLogHook({[] { return true; }, [](char *, std::size_t) { return false; }, nullptr});
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Folder());
    zr_switch_error(1, "Fio", 1);
    std::filesystem::current_path(before);
    EXPECT_EQ(TakeLog(), record); // the fixture's log has that very name
}

TEST_F(Log, HookIsAskedOnce) {
    static int asked;
    asked = 0;
    zr::frame::SetLogHook({[] {
                               ++asked;
                               return false;
                           },
                           nullptr, nullptr});
    zr_switch_error(1, "Fio", 1);
    zr_switch_error(2, "Fio", 1);
    EXPECT_EQ(asked, 1);
}

TEST_F(Log, HookMayReport) {
    zr::frame::SetLogHook({[] {
                               zr_error("inside", nullptr, nullptr, "Ini", 2);
                               return true;
                           },
                           [](char *out, std::size_t size) {
                               return str_ncpy(out, log_path.c_str(), static_cast<int>(size) - 1) != nullptr;
                           },
                           nullptr});
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), record);
    std::vector<std::string> expected = {"ZR_ERROR in prog.exe \"Ini\" line 2:\n", "inside", "\n\n"};
    EXPECT_EQ(debugger, expected);
}

TEST_F(Log, MissingFileIsMadeAndRecordsAreAppended) {
    time = zr::platform::backend::Now();
    zr::platform::services.file_status = zr::platform::backend::GetFileStatus;
    zr_switch_error(1, "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), std::string(record) + record);
}

TEST_F(Log, FileOfTodayIsAppendedTo) {
    WriteOldLog();
    time = Midnight(fixed_time) + 5;
    PretendModified(Midnight(fixed_time));
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), std::string("old") + record);
}

TEST_F(Log, FileOfYesterdayIsEmptied) {
    WriteOldLog();
    time = Midnight(fixed_time);
    PretendModified(time - 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), record);
}

TEST_F(Log, FileOfTomorrowIsEmptied) {
    WriteOldLog();
    time = Midnight(fixed_time) - 1;
    PretendModified(time + 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), record);
}

TEST_F(Log, FileWithoutAStatusIsAppendedTo) {
    WriteOldLog();
    zr::platform::services.file_status = [](const char *, zr::platform::FileStatus &) { return false; };
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), std::string("old") + record);
}

TEST_F(Log, IsOpenedOnceForEachRecordAndInItsMode) {
    static std::string modes;
    modes.clear();
    zr::platform::services.open_text = [](const char *path, const char *mode) {
        EXPECT_EQ(path, log_path);
        modes += mode;
        return zr::platform::backend::OpenText(path, mode);
    };
    WriteOldLog();
    PretendModified(time - 2 * 86400);
    zr_error("a", "b", "c", "Fio", 1);
    PretendModified(time);
    zr_message("a", "b", "c", "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(modes, "waa");
}

TEST_F(Log, SameDayOfAnotherMonthOrYearIsAnotherDay) {
    std::int64_t month_ago = fixed_time;
    do {
        month_ago -= 86400;
    } while (Day(month_ago).day != Day(fixed_time).day);
    WriteOldLog();
    PretendModified(month_ago);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), record);

    std::int64_t year_ago = month_ago;
    while (Day(year_ago).day != Day(fixed_time).day || Day(year_ago).month != Day(fixed_time).month) {
        year_ago -= 86400;
    }
    WriteOldLog();
    PretendModified(year_ago);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), record);
}

TEST_F(Log, FileOfYesterdayOnDiskIsEmptied) {
    WriteOldLog();
    time = zr::platform::backend::Now();
    zr::platform::services.file_status = zr::platform::backend::GetFileStatus;
    std::filesystem::last_write_time(log_path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(25));
    zr_switch_error(1, "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(TakeLog(), std::string(record) + record);
}

TEST_F(Log, FileThatCannotBeOpenedIsPassedOver) {
    log_path = (Folder() / "missing" / "zrlog.txt").string();
    SwitchLogOn();
    zr_error("a", nullptr, nullptr, "Fio", 1);
    zr_message("a", nullptr, nullptr, "Fio", 1);
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(debugger.size(), 3u);
    EXPECT_TRUE(std::filesystem::is_empty(Folder()));
}

TEST_F(Log, FolderInItsPlaceIsPassedOver) {
    std::filesystem::create_directory(log_path);
    zr_error("a", nullptr, nullptr, "Fio", 1);
    EXPECT_TRUE(std::filesystem::is_directory(log_path));
    EXPECT_EQ(debugger.size(), 3u);
}

TEST_F(Log, OverlongPathIsCut) {
    zr::frame::SetLogHook({[] { return true; },
                           [](char *out, std::size_t size) {
                               std::string path(size - 1, 'x');
                               return str_ncpy(out, path.c_str(), static_cast<int>(size) - 1) != nullptr;
                           },
                           nullptr});
    static std::string opened;
    zr::platform::services.open_text = [](const char *path, const char *) {
        opened = path;
        return static_cast<std::FILE *>(nullptr);
    };
    zr_switch_error(1, "Fio", 1);
    EXPECT_EQ(opened, std::string(255, 'x'));
}

TEST_F(Log, EveryRecordIsOnDiskWhenItsReportReturns) {
    for (int i = 1; i <= 3; ++i) {
        zr_switch_error(1, "Fio", 1);
        EXPECT_EQ(std::filesystem::file_size(log_path), static_cast<unsigned>(i) * (std::string(record).size() + 5));
    }
}

} // namespace
