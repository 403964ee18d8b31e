// The link to Word over the system's own calls: a registry, a program and windows that the tests make.
#include <zrclb/winword.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "desktop/word_search.h"
#include "frame/report_fixture.h"
#include "own_desktop.h"
#include "platform/server_programs.h"
#include "platform/temp_folder.h"
#include "process_measures.h"

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

const std::string class_id = "{5A1B7C20-0F0E-4D3C-9B2A-0123456789AB}";
const std::string class_key = "CLSID\\" + class_id;

HKEY MakeKey(HKEY parent, const std::string &path) {
    HKEY made;
    if (RegCreateKeyExA(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &made,
                        nullptr) != ERROR_SUCCESS)
        throw std::runtime_error("can't make the key " + path);
    return made;
}

void SetKey(HKEY parent, const std::string &path, const std::string &text) {
    const HKEY key = MakeKey(parent, path);
    const LSTATUS status = RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                                          static_cast<DWORD>(text.size() + 1));
    RegCloseKey(key);
    if (status != ERROR_SUCCESS)
        throw std::runtime_error("can't write to " + path);
}

// A class of the machine's, under a fresh name: the system looks for classes in its own registry only.
class MadeClass {
public:
    explicit MadeClass(const std::string &id = class_id)
        : m_name("zr_test_" + std::to_string(std::random_device{}())), m_path("Software\\Classes\\" + m_name) {
        SetKey(HKEY_LOCAL_MACHINE, m_path + "\\CLSID", id);
    }
    ~MadeClass() { RegDeleteTreeA(HKEY_LOCAL_MACHINE, m_path.c_str()); }
    MadeClass(const MadeClass &) = delete;
    MadeClass &operator=(const MadeClass &) = delete;

    const std::string &Name() const { return m_name; }

private:
    std::string m_name;
    std::string m_path;
};

// For this process HKEY_CLASSES_ROOT is meanwhile a fresh key of the user's, which goes with it.
class ClassesRoot {
public:
    ClassesRoot() : m_path("Software\\zr_test_" + std::to_string(std::random_device{}())) {
        m_root = MakeKey(HKEY_CURRENT_USER, m_path);
        if (RegOverridePredefKey(HKEY_CLASSES_ROOT, m_root) != ERROR_SUCCESS)
            throw std::runtime_error("can't put a key in the place of another");
    }
    ~ClassesRoot() {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(m_root);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_path.c_str());
    }
    ClassesRoot(const ClassesRoot &) = delete;
    ClassesRoot &operator=(const ClassesRoot &) = delete;

    static void Set(const std::string &key, const std::string &text) { SetKey(HKEY_CLASSES_ROOT, key, text); }

private:
    std::string m_path;
    HKEY m_root = nullptr;
};

// Top-level windows that go with it.
class Windows {
public:
    Windows() = default;
    ~Windows() {
        for (const HWND window : m_windows)
            DestroyWindow(window);
    }
    Windows(const Windows &) = delete;
    Windows &operator=(const Windows &) = delete;

    HWND Make(const char *title) {
        const HWND window = CreateWindowExA(0, "STATIC", title, WS_POPUP, 0, 0, 100, 100, nullptr, nullptr,
                                            GetModuleHandleA(nullptr), nullptr);
        if (window == nullptr)
            throw std::runtime_error("can't make a window");
        m_windows.push_back(window);
        return window;
    }

private:
    std::vector<HWND> m_windows;
};

class WindowsWordLink : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        zr::desktop::found_word = {};
        zr::desktop::winword_info_loaded = false;
        made_class = m_class.Name();
        services.class_id = [](const char *program_id, char *out, std::size_t size) {
            EXPECT_STREQ(program_id, "Word.Document");
            return backend::FindClassId(made_class.c_str(), out, size);
        };
        m_program = Copy("winword.exe");
    }

    // A copy of the stand-in, and its path.
    std::string Copy(const std::string &below) const {
        const std::filesystem::path path = Folder() / below;
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::copy_file(ZR_STAND_IN, path);
        return path.string();
    }
    const std::string &Winword() const { return m_program; }

    static Texts Search() {
        zr::desktop::winword_info_loaded = false;
        winword_info info;
        std::memset(&info, '#', sizeof info);
        const int number = winword_GetInfo(&info);
        return {std::to_string(number), info.version, info.path};
    }

    // What the stand-in has written down by the time that Run answers 1.
    std::string Run(int force, unsigned short show, const char *arguments) const {
        const std::filesystem::path answer = Folder() / "answer";
        SetEnvironmentVariableA("ZR_TEST_ANSWER", answer.string().c_str());
        const int result = winword_Run(force, show, arguments);
        SetEnvironmentVariableA("ZR_TEST_ANSWER", nullptr);
        std::string text;
        std::getline(std::ifstream(answer, std::ios::binary), text, '\0');
        std::error_code ignored;
        std::filesystem::remove(answer, ignored);
        return result == 1 ? text : "failed: " + text;
    }

    static inline std::string made_class;

private:
    MadeClass m_class;
    ClassesRoot m_root;
    std::string m_program;
};

TEST_F(WindowsWordLink, FirstKey_GivesPathAndProductVersion) {
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword());
    EXPECT_EQ(Search(), (Texts{"16", "", Winword()}));
    EXPECT_EQ(winword_GetVersion(), 16);
    char path[256];
    EXPECT_EQ(winword_GetPath(path), 16);
    EXPECT_EQ(path, Winword());
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WindowsWordLink, PathInQuotes_IsKeptWithoutThem) {
    const std::string path = Copy("Word 16\\winword.exe");
    ClassesRoot::Set(class_key + "\\LocalServer32", " \"" + path + "\"");
    EXPECT_EQ(Search()[0], "0");
    ClassesRoot::Set(class_key + "\\LocalServer32", "\"" + path + "\"");
    EXPECT_EQ(Search(), (Texts{"16", "", path}));
}

TEST_F(WindowsWordLink, SecondKey_IsOfThe32BitSystem) {
    ClassesRoot::Set("Wow6432Node\\" + class_key + "\\LocalServer32", Winword());
    EXPECT_EQ(Search(), (Texts{"16", "", Winword()}));
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword() + " /Automation"); // no file of that name
    EXPECT_EQ(Search(), (Texts{"16", "", Winword()}));
}

TEST_F(WindowsWordLink, OlderEntry_TellsTheVersion) {
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword() + " /Automation");
    EXPECT_EQ(Search(), (Texts{"0", "", ""}));
    ClassesRoot::Set(class_key + "\\LocalServer", "\"" + Winword() + "\"");
    EXPECT_EQ(Search(), (Texts{"-1", "", Winword()}));
    ClassesRoot::Set(class_key + "\\Version", "7.0");
    EXPECT_EQ(Search(), (Texts{"7", "7.0", Winword()}));
}

TEST_F(WindowsWordLink, ClassThatIsNotThere_IsNotFound) {
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword());
    const MadeClass broken("no id");
    for (const std::string &name : {std::string("zr_test.missing"), broken.Name()}) {
        made_class = name;
        EXPECT_EQ(Search(), (Texts{"0", "", ""}));
    }
    EXPECT_EQ(winword_Run(0, 5, nullptr), 0);
    EXPECT_NE(TakeLog().find("  winword_GetPath FAILED!\n"), std::string::npos);
}

TEST_F(WindowsWordLink, FileWithoutRecord_HasNoVersion) {
    const std::string path = (Folder() / "note.exe").string();
    std::ofstream(path) << "no program";
    ClassesRoot::Set(class_key + "\\LocalServer32", path);
    EXPECT_EQ(Search(), (Texts{"-2", "", path}));
    ClassesRoot::Set(class_key + "\\LocalServer32", Folder().string());
    EXPECT_EQ(Search()[0], "-2");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WindowsWordLink, Run_PassesArgumentsAndWaits) {
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword());
    EXPECT_EQ(Run(0, 3, "x.doc \"y z\""), "3|x.doc \"y z\"");
    ClassesRoot::Set(class_key + "\\LocalServer32", Copy("Word 16\\winword.exe"));
    EXPECT_EQ(Search()[0], "16");
    EXPECT_EQ(Run(1, 5, "x.doc"), "5|x.doc");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WindowsWordLink, Run_HandsNoHandlesOn) {
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword());
    SECURITY_ATTRIBUTES to_be_inherited = {sizeof to_be_inherited, nullptr, TRUE};
    const HANDLE event = CreateEventA(&to_be_inherited, TRUE, FALSE, nullptr);
    ASSERT_NE(event, nullptr);
    SetEnvironmentVariableA("ZR_TEST_HANDLE", std::to_string(reinterpret_cast<zr_value>(event)).c_str());
    EXPECT_EQ(Run(0, 5, "a"), "5|a");
    EXPECT_EQ(WaitForSingleObject(event, 0), DWORD{WAIT_TIMEOUT});
    CloseHandle(event);
    SetEnvironmentVariableA("ZR_TEST_HANDLE", nullptr);
}

// A program of the console is never ready for its user: that doesn't count. Nor does Wine then keep a handle of its own.
TEST_F(WindowsWordLink, Run_OfAProgramWithoutWindows_IsAStartThatKeepsNoHandle) {
    char system[MAX_PATH];
    GetSystemDirectoryA(system, sizeof system);
    ClassesRoot::Set(class_key + "\\LocalServer32", std::string(system) + "\\cmd.exe");
    EXPECT_EQ(winword_Run(0, 0, "/c exit"), 1);
    const long long handles_before = ProcessMeasures::OpenHandles();
    EXPECT_EQ(winword_Run(0, 0, "/c exit"), 1);
    EXPECT_EQ(ProcessMeasures::OpenHandles(), handles_before);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WindowsWordLink, Run_OfAFileThatIsNoProgram_IsReported) {
    const std::string path = (Folder() / "note.exe").string();
    std::ofstream(path) << "no program";
    ClassesRoot::Set(class_key + "\\LocalServer32", path);
    EXPECT_EQ(Run(0, 5, nullptr), "failed: ");
    EXPECT_NE(TakeLog().find("  CreateProcess FAILED!\n"), std::string::npos);
}

TEST_F(WindowsWordLink, Window_IsFoundByItsTitleWhileItIsThere) {
    ClassesRoot::Set(class_key + "\\LocalServer32", Winword());
    Windows windows;
    windows.Make("");
    windows.Make("microsoft word");
    windows.Make("My Microsoft Word");
    EXPECT_EQ(winword_FindWindow(), nullptr);
    const HWND word = windows.Make("Microsoft Word - x.doc");
    EXPECT_EQ(winword_FindWindow(), word);
    EXPECT_EQ(Run(0, 5, "a"), ""); // nothing is started
    EXPECT_EQ(winword_EnsureRunning(), 1);
    EXPECT_EQ(Run(1, 5, "x.doc"), "5|x.doc");
    SetWindowTextA(word, "Other");
    EXPECT_EQ(winword_FindWindow(), nullptr);
    SetWindowTextA(word, ("Microsoft Word" + std::string(1000, 'x')).c_str());
    EXPECT_EQ(winword_FindWindow(), word);
}

TEST_F(WindowsWordLink, LastOfSeveralWindows_IsFound) {
    Windows windows;
    windows.Make("Microsoft Word - a");
    windows.Make("Microsoft Word - b");
    HWND last = nullptr;
    EnumWindows(
        [](HWND window, LPARAM place) -> BOOL {
            char title[100] = "";
            if (GetWindowTextA(window, title, sizeof title) != 0 && std::strncmp(title, "Microsoft Word", 14) == 0)
                *reinterpret_cast<HWND *>(place) = window;
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&last));
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(winword_FindWindow(), last);
}

// ---- The seam ----

TEST(WindowsServerPrograms, ClassIdIsWrittenInCapitalLetters) {
    const MadeClass made("{5a1b7c20-0f0e-4d3c-9b2a-0123456789ab}");
    char out[class_id_size + 1] = "before";
    EXPECT_TRUE(FindClassId(made.Name().c_str(), out, class_id_size));
    EXPECT_EQ(out, class_id);
    EXPECT_FALSE(FindClassId(made.Name().c_str(), out, class_id_size - 1));
    EXPECT_STREQ(out, "");
    for (const std::string &name : {std::string(), std::string(255, 'x'), std::string(10000, 'x')})
        EXPECT_FALSE(FindClassId(name.c_str(), out, sizeof out));
    EXPECT_FALSE(FindClassId(nullptr, out, sizeof out));
    EXPECT_FALSE(FindClassId(made.Name().c_str(), nullptr, 0));
}

TEST(WindowsServerPrograms, VersionRecordIsReadWhereThereIsOne) {
    const std::size_t size = VersionRecordSize(ZR_STAND_IN);
    ASSERT_GT(size, 0U);
    std::vector<unsigned char> record(size + 4);
    ASSERT_TRUE(ReadVersionRecord(ZR_STAND_IN, record.data(), size));
    FileVersion version;
    ASSERT_TRUE(FindProductVersion(record.data(), version));
    EXPECT_EQ(version.a, 16);
    EXPECT_EQ(version.b, 7);
    EXPECT_EQ(version.c, 8);
    EXPECT_EQ(version.d, 9);
    EXPECT_EQ(VersionRecordSize("C:\\zr_no_such.exe"), 0U);
    EXPECT_FALSE(ReadVersionRecord("C:\\zr_no_such.exe", record.data(), size));
    EXPECT_EQ(VersionRecordSize(nullptr), 0U);
    EXPECT_FALSE(ReadVersionRecord(nullptr, record.data(), size));
    EXPECT_FALSE(ReadVersionRecord(ZR_STAND_IN, nullptr, size));
    EXPECT_FALSE(FindProductVersion(nullptr, version));
}

TEST(WindowsServerPrograms, WindowsThatAreNone) {
    EXPECT_FALSE(IsWindowAlive(nullptr));
    EXPECT_FALSE(IsWindowAlive(reinterpret_cast<zr_window>(static_cast<zr_value>(0x7FFFFFF1))));
}

} // namespace
