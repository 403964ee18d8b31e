// What the tests of the text format share: an environment of their own, a fresh folder, files as bytes, reports.
#ifndef ZR_TESTS_ENV_TEXT_SUPPORT_H
#define ZR_TESTS_ENV_TEXT_SUPPORT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zrclb/env.hpp>

#include "env/reference_reader.h"
#include "env/report_capture.h"
#include "env/text_tree.h"
#include "platform/services.h"

namespace text_test {

using zr::test::Error;
using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

constexpr const char *Tag = "ZrEnv"; // of all reports of reading and writing

inline std::string ReadBytes(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void WriteBytes(const std::string &path, const std::string &bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(stream.good());
}

class TextTest : public testing::Test {
protected:
    TextTest() {
        static std::mt19937_64 random{std::random_device{}()};
        do
            folder = std::filesystem::temp_directory_path() / ("zr_text_" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder));
    }
    ~TextTest() override {
        Zr::CZrEnv::DestroyEnv(env, true);
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    std::string Path(const std::string &name) const { return (folder / name).string(); }

    // Writes the bytes to a file and reads that.
    Zr::EZrEnvError ReadAsFile(const std::string &bytes, EEnvReadMode mode = eEnvReadAuto) {
        WriteBytes(Path("a.env"), bytes);
        return env->ReadFile(Path("a.env").c_str(), mode);
    }
    std::string Written(bool wrap) {
        char *text = env->WriteString(wrap);
        std::string copy = text ? text : "(null)";
        Zr::CZrEnv::FreeString(text);
        return copy;
    }
    std::string WrittenAsFile(bool wrap) {
        EXPECT_TRUE(env->WriteFile(Path("w.env").c_str(), wrap));
        return ReadBytes(Path("w.env"));
    }

    std::filesystem::path folder;
    Zr::CZrEnv *env = Zr::CZrEnv::CreateEnv(1, nullptr);
};

// Catches errors in the process, whatever bytes their texts hold, and far faster than the log. Each is its texts joined
// by "|". One at a time.
class ErrorChannel {
public:
    ErrorChannel() {
        Calls().clear();
        zr::platform::services.debug_output = [](const char *text) { Calls().emplace_back(text); };
    }
    ErrorChannel(const ErrorChannel &) = delete;
    ErrorChannel &operator=(const ErrorChannel &) = delete;
    ~ErrorChannel() { zr::platform::services.debug_output = zr::platform::backend::DebugOutput; }

    std::vector<std::string> Take() {
        std::vector<std::string> errors;
        for (std::size_t i = 0; i < Calls().size(); ++i) {
            if (Calls()[i].starts_with("ZR_ERROR in "))
                errors.push_back(Calls().at(i++ + 1)); // header, first text
            else if (i + 1 != Calls().size() && !Calls()[i + 1].starts_with("ZR_ERROR in "))
                errors.at(errors.size() - 1) += "|" + Calls()[i];
        }
        Calls().clear();
        return errors;
    }

private:
    static std::vector<std::string> &Calls() {
        static std::vector<std::string> calls;
        return calls;
    }
};

// Compares one reading with the reference: result, tree, reports, place of a failure.
inline void ExpectAsReference(Zr::CZrEnv &env, Zr::EZrEnvError result, const ReferenceReader &reference,
                              const std::vector<std::string> &errors) {
    EXPECT_EQ(result, reference.result);
    EXPECT_EQ(TreeOf(env), reference.sections);
    EXPECT_EQ(errors, reference.reports);
    zr_long line = 0, column = 0;
    if (reference.result == 0) {
        EXPECT_EQ(env.GetErrorPosition(line, column), Zr::ENV_NOT_FOUND);
        return;
    }
    EXPECT_EQ(env.GetErrorPosition(line, column), Zr::ENV_OK);
    EXPECT_EQ(line, reference.line);
    EXPECT_EQ(column, reference.column);
}

} // namespace text_test

#endif
