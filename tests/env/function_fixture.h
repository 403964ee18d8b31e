// What the tests of the env_ functions share: handles that close themselves, texts of environments, switch reports.
#ifndef TESTS_ENV_FUNCTION_FIXTURE_H
#define TESTS_ENV_FUNCTION_FIXTURE_H

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/env.h>
#include <zrclb/env.hpp>

#include "frame/log_hook.h"

namespace zr::test {

// A handle that is closed at the end, which must succeed.
class EnvHandle {
public:
    explicit EnvHandle(zr_env env) : m_env(env) {}
    explicit EnvHandle(const char *text = "", zr_long id = 0, zr_env deflt = nullptr) : m_env(env_open(id, deflt)) {
        EXPECT_EQ(env_read_from_string(text, m_env), 0);
    }
    EnvHandle(const EnvHandle &) = delete;
    EnvHandle &operator=(const EnvHandle &) = delete;
    ~EnvHandle() { EXPECT_EQ(env_close(m_env, 0), 0); }

    operator zr_env() const { return m_env; }
    Zr::CZrEnv *operator->() const { return reinterpret_cast<Zr::CZrEnv *>(m_env); }

private:
    zr_env m_env;
};

// What is written of an environment, with plain line ends.
inline std::string WrittenText(zr_env env) {
    char *written = env_write_to_string(env);
    std::string text = written ? written : "(null)";
    env_free_string(written);
    std::erase(text, '\r');
    return text;
}

inline std::string ValueOf(zr_env env, const char *section, const char *path) {
    const char *text = nullptr;
    const int result = env_get_reference(env, section, path, 1, &text);
    return result < 0 ? "(" + std::to_string(result) + ")" : text ? text : "(null)";
}

// A path of count steps, each called name.
inline std::string DeepPath(int count, const char *name = "a") {
    std::string path;
    for (int i = 0; i < count; ++i)
        path += (i ? "@" : "") + std::string(name);
    return path;
}

// The text of one block in the other, depth levels down, with inner in the last.
inline std::string NestedText(int depth, const std::string &inner) {
    std::string text = "[S]\n";
    for (int i = 0; i < depth; ++i)
        text += "b ={\n";
    text += inner;
    for (int i = 0; i < depth; ++i)
        text += "}\n";
    return text;
}

// A folder of its own, removed at the end.
class TempFolder {
public:
    TempFolder() {
        std::mt19937_64 random{std::random_device{}()};
        do
            m_path = std::filesystem::temp_directory_path() / ("zr_functions_" + std::to_string(random()));
        while (!std::filesystem::create_directory(m_path));
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::string File(const char *name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

// Catches what zr_switch_error tells, as "tag: value". Not together with another capture.
class SwitchCapture {
public:
    SwitchCapture() {
        Path() = m_folder.File("log.txt");
        zr::frame::LogHook hook;
        hook.is_on = [] { return true; };
        hook.path = [](char *out, std::size_t size) {
            return Path().size() < size && std::memcpy(out, Path().c_str(), Path().size() + 1) != nullptr;
        };
        zr::frame::SetLogHook(hook);
    }
    SwitchCapture(const SwitchCapture &) = delete;
    SwitchCapture &operator=(const SwitchCapture &) = delete;
    ~SwitchCapture() { zr::frame::SetLogHook({}); }

    std::vector<std::string> Take() {
        std::vector<std::string> found;
        std::ifstream log(Path(), std::ios::binary);
        std::string tag;
        for (std::string line; std::getline(log, line);) {
            if (line.starts_with("SWITCH ERROR in \"")) {
                tag = line.substr(17, line.find('"', 17) - 17);
                continue;
            }
            const std::string lead = "  switch value = ";
            if (line.starts_with(lead))
                found.push_back(tag + ": " + line.substr(lead.size(), line.find('!') - lead.size()));
        }
        log.close();
        std::filesystem::remove(Path());
        return found;
    }

private:
    static std::string &Path() {
        static std::string path;
        return path;
    }

    TempFolder m_folder;
};

} // namespace zr::test

#endif
