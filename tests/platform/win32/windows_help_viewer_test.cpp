// The help control: where its library comes from, what its function gets, which failures are kept; the connection test.
#include "platform/win32/help_control.h"

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

constexpr char control_key[] = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";

// A key of the test's own in place of HKEY_CLASSES_ROOT: what other programs find there stays as it is.
class OwnClasses {
public:
    OwnClasses() : m_root("Software\\zr_test_" + std::to_string(std::random_device()())) {
        if (RegCreateKeyExA(HKEY_CURRENT_USER, m_root.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &m_key, nullptr) != ERROR_SUCCESS ||
            RegOverridePredefKey(HKEY_CLASSES_ROOT, m_key) != ERROR_SUCCESS)
            throw std::runtime_error("can't put a key in place of the classes");
    }
    ~OwnClasses() {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(m_key);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_root.c_str());
    }
    OwnClasses(const OwnClasses &) = delete;
    OwnClasses &operator=(const OwnClasses &) = delete;

    // Writes a value; null is the key's default one.
    void Set(const std::string &path, const char *name, DWORD type, const std::string &text) const {
        HKEY key = nullptr;
        RegCreateKeyExA(m_key, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        const LSTATUS status = RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE *>(text.c_str()),
                                              static_cast<DWORD>(text.size() + 1));
        RegCloseKey(key);
        if (status != ERROR_SUCCESS)
            throw std::runtime_error("can't write to " + path);
    }
    void SetControl(DWORD type, const std::string &path) const { Set(control_key, nullptr, type, path); }

private:
    std::string m_root;
    HKEY m_key = nullptr;
};

int library_handle; // stands for a loaded library

class WindowsHelpViewer : public testing::Test {
protected:
    void SetUp() override {
        s_asked.clear();
        s_calls.clear();
        s_loadable.clear();
        s_has_entry = true;
        s_window = reinterpret_cast<HWND>(&library_handle);
        services.open_library = [](const char *name) -> void * {
            s_asked.emplace_back(name);
            return name == s_loadable ? &library_handle : nullptr;
        };
        services.find_function = [](void *library, const char *name) -> LibraryFunction {
            EXPECT_EQ(library, &library_handle);
            s_asked.push_back("entry " + std::to_string(reinterpret_cast<ULONG_PTR>(name)));
            return s_has_entry ? reinterpret_cast<LibraryFunction>(HelpFunction) : nullptr;
        };
    }
    void TearDown() override { services = Services(); }

    static HWND WINAPI HelpFunction(HWND owner, const char *file, UINT command, DWORD_PTR data) {
        EXPECT_EQ(owner, nullptr);
        s_calls.push_back(std::string(file) + " " + std::to_string(command) + " " + std::to_string(data));
        return s_window;
    }

    static inline Texts s_asked;
    static inline Texts s_calls;
    static inline std::string s_loadable;
    static inline bool s_has_entry = true;
    static inline HWND s_window = nullptr;
    OwnClasses m_classes;
};

TEST_F(WindowsHelpViewer, Control_IsTheRegisteredOneAndLoadedOnce) {
    m_classes.SetControl(REG_SZ, "C:\\own\\control.ocx");
    s_loadable = "C:\\own\\control.ocx";
    win32::HelpControl control;
    EXPECT_TRUE(control.Show("C:\\help\\Beam.chm", HelpCommand::topic, 4294967295));
    EXPECT_TRUE(control.Show("C:\\help\\Beam.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_calls, (Texts{"C:\\help\\Beam.chm 15 4294967295", "C:\\help\\Beam.chm 0 0"}));
    EXPECT_EQ(s_asked, (Texts{"C:\\own\\control.ocx", "entry 14"}));
}

TEST_F(WindowsHelpViewer, EnvironmentStrings_AreExpandedIfTheTypeAsksForThat) {
    SetEnvironmentVariableA("ZR_TEST_CONTROL", "C:\\from");
    m_classes.SetControl(REG_EXPAND_SZ, "%ZR_TEST_CONTROL%\\control.ocx");
    s_loadable = "C:\\from\\control.ocx";
    EXPECT_TRUE(win32::HelpControl().Show("a.chm", HelpCommand::start, 0));
    m_classes.SetControl(REG_SZ, "%ZR_TEST_CONTROL%\\control.ocx");
    s_loadable = "%ZR_TEST_CONTROL%\\control.ocx";
    EXPECT_TRUE(win32::HelpControl().Show("a.chm", HelpCommand::start, 0));
    SetEnvironmentVariableA("ZR_TEST_CONTROL", nullptr);
    EXPECT_EQ(s_calls.size(), 2U);
}

TEST_F(WindowsHelpViewer, WithoutARegisteredControl_ThePlainNameIsLoaded) {
    s_loadable = "hhctrl.ocx";
    EXPECT_TRUE(win32::HelpControl().Show("a.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_asked, (Texts{"hhctrl.ocx", "entry 14"}));
    s_asked.clear();
    m_classes.SetControl(REG_SZ, "C:\\gone.ocx");
    EXPECT_TRUE(win32::HelpControl().Show("a.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_asked, (Texts{"C:\\gone.ocx", "hhctrl.ocx", "entry 14"}));
    s_asked.clear();
    m_classes.SetControl(REG_SZ, std::string(1000, 'x'));
    EXPECT_TRUE(win32::HelpControl().Show("a.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_asked, (Texts{"hhctrl.ocx", "entry 14"}));
}

TEST_F(WindowsHelpViewer, FailureToLoad_IsKept) {
    win32::HelpControl control;
    EXPECT_FALSE(control.Show("a.chm", HelpCommand::start, 0));
    s_loadable = "hhctrl.ocx";
    EXPECT_FALSE(control.Show("a.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_asked, Texts{"hhctrl.ocx"});
    EXPECT_EQ(s_calls, Texts{});
}

TEST_F(WindowsHelpViewer, LibraryWithoutTheEntry_IsKept) {
    s_loadable = "hhctrl.ocx";
    s_has_entry = false;
    win32::HelpControl control;
    EXPECT_FALSE(control.Show("a.chm", HelpCommand::start, 0));
    s_has_entry = true;
    EXPECT_FALSE(control.Show("a.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_asked, (Texts{"hhctrl.ocx", "entry 14"}));
    EXPECT_EQ(s_calls, Texts{});
}

TEST_F(WindowsHelpViewer, ControlThatShowsNothing_IsTold) {
    s_loadable = "hhctrl.ocx";
    s_window = nullptr;
    win32::HelpControl control;
    EXPECT_FALSE(control.Show("a.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_calls, Texts{"a.chm 0 0"});
}

// As the library calls it: one control for the process. No other test here may get to it.
TEST_F(WindowsHelpViewer, Process_HasOneControl) {
    s_loadable = "hhctrl.ocx";
    EXPECT_TRUE(ShowHelpFile("a.chm", HelpCommand::topic, 12));
    s_window = nullptr;
    EXPECT_FALSE(ShowHelpFile("b.chm", HelpCommand::start, 0));
    EXPECT_EQ(s_calls, (Texts{"a.chm 15 12", "b.chm 0 0"}));
    EXPECT_EQ(s_asked, (Texts{"hhctrl.ocx", "entry 14"}));
}

// A program of the test's own is registered for a scheme of its own.
TEST_F(WindowsHelpViewer, Url_GoesToTheProgramOfItsScheme) {
    services = Services();
    const TempFolder folder;
    const std::string answer = folder.Path("answer");
    m_classes.Set("zrtest", nullptr, REG_SZ, "URL:test");
    m_classes.Set("zrtest", "URL Protocol", REG_SZ, "");
    m_classes.Set("zrtest\\shell\\open\\command", nullptr, REG_SZ, "\"" ZR_STAND_IN "\" \"%1\"");
    m_classes.Set("zrtest\\shell\\edit\\command", nullptr, REG_SZ, "\"" ZR_STAND_IN "\" edit");
    SetEnvironmentVariableA("ZR_TEST_ANSWER", answer.c_str());
    OpenUrl("zrtest://help/2013/beam/12");
    SetEnvironmentVariableA("ZR_TEST_ANSWER", nullptr);
    // Its window is shown as usual. The program may still be writing.
    const std::string expected = std::to_string(SW_SHOWNORMAL) + "|\"zrtest://help/2013/beam/12\"";
    const auto written = [&] { return std::filesystem::exists(answer) && folder.Read("answer") == expected; };
    for (int i = 0; i < 3000 && !written(); ++i)
        Sleep(10);
    EXPECT_TRUE(written()) << (std::filesystem::exists(answer) ? folder.Read("answer") : "nothing");
}

// The control is not taken for it.
TEST_F(WindowsHelpViewer, UrlWithoutAProgram_IsNoFault) {
    OpenUrl("zrnone://help/");
    OpenUrl("");
    EXPECT_EQ(s_asked, Texts{});
}

// The desktop's own control has the entry under its number.
TEST_F(WindowsHelpViewer, SystemsControl_HasTheEntry) {
    services = Services();
    void *library = services.open_library("hhctrl.ocx");
    ASSERT_NE(library, nullptr);
    const LibraryFunction by_number = services.find_function(library, MAKEINTRESOURCEA(14));
    EXPECT_NE(by_number, nullptr);
    EXPECT_EQ(by_number, services.find_function(library, "HtmlHelpA"));
    services.close_library(library);
}

TEST_F(WindowsHelpViewer, Online_IsWhatTheSystemSays) {
    services = Services();
    HMODULE library = LoadLibraryA("wininet.dll");
    ASSERT_NE(library, nullptr);
    using Function = BOOL(WINAPI *)(DWORD *, DWORD);
    const auto connected = reinterpret_cast<Function>(
        reinterpret_cast<LibraryFunction>(GetProcAddress(library, "InternetGetConnectedState")));
    ASSERT_NE(connected, nullptr);
    DWORD flags = 0;
    EXPECT_EQ(IsOnline(), connected(&flags, 0) != FALSE);
    FreeLibrary(library);
}

} // namespace
