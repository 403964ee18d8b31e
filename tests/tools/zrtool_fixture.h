// A fresh folder, and the tool run inside this process with its output caught.
#ifndef ZR_TESTS_ZRTOOL_FIXTURE_H
#define ZR_TESTS_ZRTOOL_FIXTURE_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dispatch.h"
#include "platform/files.h"

class ZrtoolFixture : public testing::Test {
protected:
    struct Outcome {
        int code;
        std::string out;
        std::string err;
    };

    void SetUp() override {
        std::random_device random;
        m_folder = std::filesystem::temp_directory_path() / ("zrtool_test_" + std::to_string(random()));
        ASSERT_TRUE(std::filesystem::create_directory(m_folder));
    }

    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    // Runs the tool with these words: `env` is put in front.
    static Outcome Env(std::vector<std::string> words) {
        words.insert(words.begin(), "env");
        return Run(words);
    }

    static Outcome Run(const std::vector<std::string> &words) {
        std::ostringstream out;
        std::ostringstream err;
        const int code = zrtool::Run(words, out, err);
        return {code, out.str(), err.str()};
    }

    std::string Path(const std::string &name) const { return (m_folder / name).string(); }

    // Makes a file of these bytes and answers its path.
    std::string File(const std::string &name, const std::string &bytes) const {
        std::ofstream stream(m_folder / name, std::ios::binary);
        stream << bytes;
        EXPECT_TRUE(stream.flush().good()) << name;
        return Path(name);
    }

    static std::string Bytes(const std::string &path) {
        std::ifstream stream(path, std::ios::binary);
        EXPECT_TRUE(stream.good()) << path;
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    static std::string Example(const std::string &name) { return std::string(ZRTOOL_EXAMPLES) + "/" + name; }

    std::vector<std::string> FolderContent() const {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(m_folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // True where a backslash separates folders and permissions are attributes.
    static bool HostIsDesktop() {
        char host[16] = "";
        return zr::platform::HostPath("\\a", host, sizeof host) && std::string(host) != "/a";
    }

    std::filesystem::path m_folder;
};

#endif
