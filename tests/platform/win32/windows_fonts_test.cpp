// The list of installed fonts in the registry.
#include <random>
#include <stdexcept>
#include <string>

#include <windows.h>

#include <gtest/gtest.h>
#include <zrclb/window_utilities.h>

#include "platform/installed_fonts.h"
#include "process_measures.h"

namespace {

constexpr const char *fonts_path = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Fonts";

// For this process HKEY_LOCAL_MACHINE is meanwhile a fresh key of the user's, which goes with it.
class WindowsFonts : public testing::Test {
protected:
    WindowsFonts() : m_path("Software\\zr_test_" + std::to_string(std::random_device{}())) {
        m_root = Make(HKEY_CURRENT_USER, m_path);
        if (RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root) != ERROR_SUCCESS)
            throw std::runtime_error("can't put a key in the place of another");
    }
    ~WindowsFonts() override {
        if (m_fonts != nullptr)
            RegCloseKey(m_fonts);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegCloseKey(m_root);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_path.c_str());
    }

    void Install(const std::string &name, const std::string &bytes) {
        if (m_fonts == nullptr)
            m_fonts = Make(HKEY_LOCAL_MACHINE, fonts_path);
        ASSERT_EQ(RegSetValueExA(m_fonts, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(bytes.data()),
                                 static_cast<DWORD>(bytes.size())),
                  ERROR_SUCCESS);
    }

    // The names and files that the walk meets, up to `limit` of them.
    static std::string Walk(int limit = 1000) {
        struct Context {
            int left;
            std::string list;
        } context{limit, ""};
        zr::platform::VisitInstalledFonts(
            [](void *place, const char *name, const char *file) {
                auto &met = *static_cast<Context *>(place);
                met.list += std::string(name) + "=" + file + ";";
                return --met.left > 0;
            },
            &context);
        return context.list;
    }

private:
    static HKEY Make(HKEY parent, const std::string &path) {
        HKEY made;
        if (RegCreateKeyExA(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &made,
                            nullptr) != ERROR_SUCCESS)
            throw std::runtime_error("can't make the key " + path);
        return made;
    }

    std::string m_path;
    HKEY m_root = nullptr;
    HKEY m_fonts = nullptr;
};

TEST_F(WindowsFonts, AreFoundByName) {
    Install("Tahoma (TrueType)", "tahoma.ttf");
    Install("Arial (TrueType)", "C:\\own\\arial.ttf");
    char buffer[100] = "before";
    EXPECT_EQ(wu_GetFontFile("arial", buffer, sizeof buffer), 1);
    EXPECT_STREQ(buffer, "C:\\own\\arial.ttf");
    EXPECT_EQ(wu_GetFontFile("TAHOMA", buffer, sizeof buffer), 1);
    EXPECT_STREQ(buffer, "tahoma.ttf");
    EXPECT_EQ(wu_GetFontFile("Courier", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(WindowsFonts, ListThatIsNotThereIsEmpty) {
    EXPECT_EQ(Walk(), "");
    char buffer[100] = "before";
    EXPECT_EQ(wu_GetFontFile("arial", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(WindowsFonts, ListIsClosedAgain) {
    Install("A", "a.ttf");
    Install("B", std::string(300, 'x'));
    char buffer[100];
    const long long handles_before = ProcessMeasures::OpenHandles();
    for (const char *name : {"A", "none"})
        wu_GetFontFile(name, buffer, sizeof buffer);
    EXPECT_EQ(ProcessMeasures::OpenHandles(), handles_before);
}

TEST_F(WindowsFonts, VisitorEndsTheWalk) {
    Install("A", "a.ttf");
    Install("B", "b.ttf");
    EXPECT_EQ(Walk(1), "A=a.ttf;");
    EXPECT_EQ(Walk(2), "A=a.ttf;B=b.ttf;");
    EXPECT_EQ(Walk(), "A=a.ttf;B=b.ttf;");
}

TEST_F(WindowsFonts, TextsOf259CharactersFit) {
    const std::string longest(259, 'x');
    Install("A", longest);
    Install(longest, "b.ttf");
    EXPECT_EQ(Walk(), "A=" + longest + ";" + longest + "=b.ttf;");
}

TEST_F(WindowsFonts, TextThatIsTooLongEndsTheWalk) {
    Install("A", "a.ttf");
    Install("B", std::string(260, 'x') + '\0');
    Install("C", "c.ttf");
    EXPECT_EQ(Walk(), "A=a.ttf;");
}

TEST_F(WindowsFonts, NameThatIsTooLongEndsTheWalk) {
    Install("A", "a.ttf");
    Install(std::string(260, 'B'), "b.ttf");
    Install("C", "c.ttf");
    EXPECT_EQ(Walk(), "A=a.ttf;");
}

} // namespace
