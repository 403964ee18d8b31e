// Loading and unloading.
#include "library/load.h"

#include <chrono>
#include <future>

#include <zrclb/zrclb.h>

#include "env/env_lock.h"
#include "frame/log.h"
#include "frame/message_box_stack.h"
#include "frame/report_fixture.h"
#include "platform/modules.h"

namespace {

// No installation is known to the registry.
class Load : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        zr::platform::services.registry_text = [](zr::platform::RegistryHive, const char *, const char *, char *,
                                                  std::size_t) { return false; };
    }

    // Load misses the settings file, and says so.
    static void LoadAnew() {
        zr::library::LibraryUnload();
        zr::library::LibraryLoad(nullptr);
        EXPECT_NE(debugger, std::vector<std::string>{});
        debugger.clear();
    }
};

int Handler(zr_window, const char *, const char *, zr_ulong, zr_value user) {
    return static_cast<int>(user);
}

std::string ended;

TEST_F(Load, LogIsOffAfterLoading) {
    LoadAnew();
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Folder());
    zr_error("a", nullptr, nullptr, "Fio", 1);
    zr_message("a", nullptr, nullptr, "Fio", 1);
    std::filesystem::current_path(before);
    EXPECT_TRUE(std::filesystem::is_empty(Folder()));
    EXPECT_EQ(debugger.size(), 3u);
}

TEST_F(Load, NameIsThatOfTheProgramAfterLoading) {
    LoadAnew();
    zr_error_setname("");
    zr_error_setname(nullptr);
    zr_error(nullptr, nullptr, nullptr, "Fio", 1);
    ASSERT_EQ(debugger.size(), 1u);
    EXPECT_EQ(debugger[0].find("ZR_ERROR in load_test"), 0U);
    EXPECT_NE(debugger[0].find(" \"Fio\" line 1:\n"), std::string::npos);
}

TEST_F(Load, ModuleHandleOfTheFirstLoadIsKept) {
    int first = 0;
    int second = 0;
    zr::library::LibraryUnload();
    zr::library::LibraryLoad(&first);
    zr::library::LibraryLoad(&second);
    EXPECT_EQ(zr::platform::StoredModule(), &first);
    zr::library::LibraryUnload();
    zr::library::LibraryLoad(nullptr);
    EXPECT_EQ(zr::platform::StoredModule(), nullptr);
}

TEST_F(Load, SecondLoadKeepsTheHook) {
    zr::library::LibraryLoad(nullptr);
    zr_switch_error(1, "Fio", 1);
    EXPECT_NE(TakeLog(), "");
}

// Whether another thread gets into the section within the time.
bool OtherThreadEnters(zr::platform::Lock &section, std::chrono::milliseconds limit, std::future<void> &other) {
    other = std::async(std::launch::async, [&section] { zr::platform::LockGuard guard(section); });
    return other.wait_for(limit) == std::future_status::ready;
}

TEST_F(Load, SectionsKeepOtherThreadsOutFromLoadToUnload) {
    for (zr::platform::Lock *section :
         {&zr::frame::LogSection(), &zr::env::Section(), &zr::frame::MessageBoxSection()}) {
        std::future<void> other;
        zr::library::LibraryLoad(nullptr);
        section->Enter();
        EXPECT_FALSE(OtherThreadEnters(*section, std::chrono::milliseconds(50), other));
        section->Leave();
        other.wait();
        EXPECT_TRUE(OtherThreadEnters(*section, std::chrono::seconds(20), other));
        zr::library::LibraryUnload();
        section->Enter(); // a section that is gone holds nobody up
        EXPECT_TRUE(OtherThreadEnters(*section, std::chrono::seconds(20), other));
        zr::library::LibraryLoad(nullptr);
    }
}

TEST_F(Load, SectionsAreReentrantAfterLoading) {
    for (zr::platform::Lock *section :
         {&zr::frame::LogSection(), &zr::env::Section(), &zr::frame::MessageBoxSection()}) {
        section->Enter();
        section->Enter();
        section->Leave();
        section->Leave();
    }
    zr::platform::LockGuard guard(zr::frame::LogSection());
    zr_switch_error(1, "Fio", 1);
    EXPECT_NE(TakeLog(), "");
}

TEST_F(Load, UnloadTwiceAndLoadAgainWork) {
    zr::library::LibraryUnload();
    zr::library::LibraryUnload();
    zr::library::LibraryLoad(nullptr);
    SwitchLogOn();
    zr_message(nullptr, nullptr, nullptr, "Fio", 1);
    EXPECT_EQ(TakeLog(), Stamp() + "> MESSAGE in prog.exe \"Fio\" line 1:\n\n\n");
}

TEST_F(Load, CallsWithoutTheLocksAreSound) {
    zr::library::LibraryUnload();
    zr_error("late", nullptr, nullptr, "Fio", 1);
    zr_SetMessageBoxHandler(Handler, 5);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 5);
    zr_SetMessageBoxHandler(nullptr, 0);
    EXPECT_EQ(debugger.size(), 3u);
    zr::library::LibraryLoad(nullptr);
}

TEST_F(Load, UnloadDeletesTheTimers) {
    LoadAnew();
    static int running;
    running = 0;
    zr::platform::services.start_window_timer = [](zr_window, zr_value id, zr_long) {
        ++running;
        return id;
    };
    zr::platform::services.stop_window_timer = [](zr_window, zr_value) { return --running >= 0; };
    const zr_window_function window = [] { return static_cast<zr_window>(&running); };
    EXPECT_EQ(zrTimerSet(window, 50, nullptr, nullptr), 0);
    EXPECT_EQ(zrTimerSet(window, 50, nullptr, nullptr), 1);
    EXPECT_EQ(running, 2);
    zr::library::LibraryUnload();
    EXPECT_EQ(running, 0);
    EXPECT_EQ(zrTimerDel(0), -1);
    LoadAnew();
}

TEST_F(Load, UnloadDoesNotRunTheExitList) {
    ended.clear();
    endprog_fkt(0, [] { ended += "a"; });
    zr::library::LibraryUnload();
    zr::library::LibraryLoad(nullptr);
    EXPECT_EQ(ended, "");
    zr_atexit();
    EXPECT_EQ(ended, "a");
}

} // namespace
