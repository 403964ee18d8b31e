// A desktop for the windows of a test program. Only its test source includes this.
#ifndef TESTS_PLATFORM_WIN32_OWN_DESKTOP_H
#define TESTS_PLATFORM_WIN32_OWN_DESKTOP_H

#include <random>
#include <string>

#include <windows.h>

#include <gtest/gtest.h>

// A desktop of this program's own for all of its tests: windows of other programs are none of its, and it needs no
// screen. It is there before anything else, because Wine looks for its driver once, at the first call that needs it.
class OwnDesktop : public testing::Environment {
public:
    void SetUp() override {
        m_before = GetThreadDesktop(GetCurrentThreadId());
        const std::string name = "zr_test_" + std::to_string(std::random_device{}());
        m_desktop = CreateDesktopA(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
        ASSERT_TRUE(m_desktop != nullptr && SetThreadDesktop(m_desktop));
        const WithoutScreen without_screen;
        // With the first window Wine has its driver.
        const HWND first = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(first, nullptr);
        DestroyWindow(first);
    }
    void TearDown() override {
        SetThreadDesktop(m_before);
        CloseDesktop(m_desktop);
    }

private:
    // As long as it lives, Wine takes the driver without a screen for new desktops; Windows itself knows nothing of the key. One at
    // a time in all test programs that run.
    class WithoutScreen {
    public:
        WithoutScreen() : m_turn(CreateMutexA(nullptr, FALSE, "zr_test_drivers")) {
            WaitForSingleObject(m_turn, INFINITE);
            const BYTE driver[] = "null";
            RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Wine\\Drivers", 0, nullptr, REG_OPTION_VOLATILE,
                            KEY_ALL_ACCESS, nullptr, &m_drivers, nullptr);
            RegSetValueExA(m_drivers, "Graphics", 0, REG_SZ, driver, sizeof driver);
        }
        ~WithoutScreen() {
            RegDeleteValueA(m_drivers, "Graphics");
            RegCloseKey(m_drivers);
            ReleaseMutex(m_turn);
            CloseHandle(m_turn);
        }
        WithoutScreen(const WithoutScreen &) = delete;
        WithoutScreen &operator=(const WithoutScreen &) = delete;

    private:
        HANDLE m_turn;
        HKEY m_drivers = nullptr;
    };

    HDESK m_before = nullptr;
    HDESK m_desktop = nullptr;
};

[[maybe_unused]] const testing::Environment *const own_desktop = testing::AddGlobalTestEnvironment(new OwnDesktop);

#endif
