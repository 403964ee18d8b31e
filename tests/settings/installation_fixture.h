// An installation in a temporary folder, and a registry and known folders that answer as the test wants.
#ifndef TESTS_SETTINGS_INSTALLATION_FIXTURE_H
#define TESTS_SETTINGS_INSTALLATION_FIXTURE_H

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/installation.h>

#include "env/report_capture.h"
#include "platform/known_folders.h"
#include "platform/registry.h"
#include "platform/services.h"
#include "platform/temp_folder.h"
#include "settings/installation_state.h"

class InstallationFixture : public testing::Test {
protected:
    static constexpr const char *not_found = "zr.zrini not found";

    void SetUp() override {
        s_registry.clear();
        s_data = Path("data");
        std::filesystem::create_directories(m_folder.Folder() / "zr" / "bin");
        s_module = Path("zr\\bin\\zrclb.dll");
        auto &services = zr::platform::services;
        services.registry_text = ReadValue;
        services.module_path = [](char *out, std::size_t size) { return Give(s_module, out, size); };
        services.known_folder = [](int number, char *out, std::size_t size) {
            return Give(s_data.empty() ? "" : s_data + std::to_string(number), out, size) != 0;
        };
        services.known_folder_below = [](int number, const char *below, char *out, std::size_t size) {
            return Give(s_data + std::to_string(number) + "\\" + below, out, size) != 0 &&
                   std::filesystem::exists(HostOf(out));
        };
        zr::settings::ForgetInstallation();
    }

    void TearDown() override {
        zr::platform::services = zr::platform::Services();
        zr::settings::ForgetInstallation();
    }

    // A path below the test's folder in the library's form.
    std::string Path(const std::string &below) const {
        std::string path = m_folder.Folder().string();
        if (path[0] == '/')
            path.insert(0, "C:");
        std::replace(path.begin(), path.end(), '/', '\\');
        return below.empty() ? path : path + "\\" + below;
    }

    // Writes a file below the test's folder, with the folders that it needs.
    void Write(std::string below, const std::string &text = "") const {
        std::replace(below.begin(), below.end(), '\\', '/');
        std::filesystem::create_directories((m_folder.Folder() / below).parent_path());
        m_folder.Write(below, text);
    }

    // The library's form in the host's.
    static std::filesystem::path HostOf(std::string path) {
        if (std::filesystem::temp_directory_path().string()[0] == '/') {
            path.erase(0, 2);
            std::replace(path.begin(), path.end(), '\\', '/');
        }
        return path;
    }

    // Results of the functions with an output: the text in angle brackets behind the result.
    template <class Call>
    static std::string Out(const Call &call) {
        char out[300];
        std::memset(out, '#', sizeof out);
        std::strcpy(out, "untouched");
        const int result = call(out);
        EXPECT_TRUE(std::all_of(out + 260, out + sizeof out, [](char c) { return c == '#'; }));
        return std::to_string(result) + "<" + out + ">";
    }
    static std::string SearchFile(const char *section, const char *entry, const char *file) {
        return Out([&](char *out) { return zr_suche_datei(section, entry, file, out); });
    }
    static std::string SearchPath(const char *section, const char *entry) {
        return Out([&](char *out) { return zr_suche_pfad(section, entry, out); });
    }
    static std::string FullPath(const std::string &path, const char *base = nullptr) {
        return Out([&](char *out) { return zr_BuildFullPath(path.c_str(), base, out); });
    }
    static std::string Relative(const std::string &path, const char *base, int allow_up = 1) {
        return Out([&](char *out) { return zr_BuildRelativePathEx(path.c_str(), base, out, allow_up); });
    }
    static std::string Hit(const std::string &path, int result = 0) {
        return std::to_string(result) + "<" + path + ">";
    }

    std::vector<std::string> Reports() { return zr::test::TextsOf(m_reports); }
    using Texts = std::vector<std::string>;

    static std::size_t Give(const std::string &text, char *out, std::size_t size) {
        const bool fits = text.size() < size;
        std::strcpy(out, fits ? text.c_str() : "");
        return fits ? text.size() : 0;
    }

    static bool ReadValue(zr::platform::RegistryHive hive, const char *key, const char *name, char *out,
                          std::size_t size) {
        EXPECT_EQ(hive, zr::platform::RegistryHive::classes_root);
        EXPECT_STREQ(key, "Software\\Zr Works\\Zr Bench\\2013");
        EXPECT_EQ(size, 256U);
        const auto found = s_registry.find(name);
        out[0] = '\0';
        if (found == s_registry.end() || found->second.size() >= size)
            return false;
        std::strcpy(out, found->second.c_str());
        return true;
    }

    static inline std::map<std::string, std::string> s_registry;
    static inline std::string s_module;
    static inline std::string s_data;
    zr::test::ReportCapture m_reports;
    TempFolder m_folder;
};

#endif
