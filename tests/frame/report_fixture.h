// For tests of what is reported: a log of their own, switched on through the hook, and box, debugger and clock of their own.
#ifndef TESTS_FRAME_REPORT_FIXTURE_H
#define TESTS_FRAME_REPORT_FIXTURE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/report.h>
#include <zrclb/str.h>

#include "frame/log_hook.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/services.h"

class ReportFixture : public testing::Test {
protected:
    static constexpr std::int64_t fixed_time = 1000000000; // in September 2001, in every zone

    struct Box {
        zr_window owner;
        std::string text;
        std::string caption;
        unsigned type;
    };

    void SetUp() override {
        std::random_device random;
        m_folder = std::filesystem::temp_directory_path() / ("zr_frame_" + std::to_string(random()));
        ASSERT_TRUE(std::filesystem::create_directory(m_folder));
        log_path = (m_folder / "zrlog.txt").string();
        time = fixed_time;
        debugger.clear();
        boxes.clear();
        log_is_on = true;
        zr::platform::services.now = [] { return time; };
        // The log was last written on the day that stands, whichever that is.
        zr::platform::services.file_status = [](const char *path, zr::platform::FileStatus &out) {
            bool found = zr::platform::backend::GetFileStatus(path, out);
            out.modified = time;
            return found;
        };
        zr::platform::services.debug_output = [](const char *text) { debugger.emplace_back(text); };
        zr::platform::services.show_message_box = [](zr_window owner, const char *text, const char *caption,
                                                     unsigned type) {
            boxes.push_back({owner, text, caption, type});
            return 1;
        };
        zr::platform::services.focus_window = [] { return focus; };
        SwitchLogOn();
        zr_error_setname("prog.exe");
        zr_error_onoff(1);
    }

    void TearDown() override {
        zr::frame::SetLogHook({});
        zr::platform::services = zr::platform::Services();
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    // From the next report on, the log stands at log_path.
    static void SwitchLogOn() {
        zr::frame::SetLogHook({[] { return log_is_on; },
                               [](char *out, std::size_t size) {
                                   return str_ncpy(out, log_path.c_str(), static_cast<int>(size) - 1) != nullptr;
                               },
                               nullptr});
    }

    // All bytes of the log, empty if there is none.
    static std::string Log() {
        std::ifstream file(log_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // The log since the last call, with its line ends as \n, which in the file are CR LF and nothing else.
    static std::string TakeLog() {
        std::string text;
        std::string bytes = Log();
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == '\r') {
                EXPECT_EQ(bytes.substr(i, 2), "\r\n");
                continue;
            }
            EXPECT_TRUE(bytes[i] != '\n' || (i > 0 && bytes[i - 1] == '\r'));
            text += bytes[i];
        }
        std::error_code ignored;
        std::filesystem::remove(log_path, ignored);
        return text;
    }

    // The line that says when, for the time that stands.
    static std::string Stamp() {
        char stamp[26];
        zr::platform::CtimeText(time, stamp);
        return stamp;
    }

    const std::filesystem::path &Folder() const { return m_folder; }

    static inline std::string log_path;
    static inline bool log_is_on = true;
    static inline std::int64_t time = fixed_time;
    static inline std::vector<std::string> debugger;
    static inline std::vector<Box> boxes;
    static inline zr_window focus = nullptr;

private:
    std::filesystem::path m_folder;
};

#endif
