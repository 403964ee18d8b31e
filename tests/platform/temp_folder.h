// A fresh folder for one test, removed with all that lies in it.
#ifndef TESTS_PLATFORM_TEMP_FOLDER_H
#define TESTS_PLATFORM_TEMP_FOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

class TempFolder {
public:
    TempFolder() : m_path(std::filesystem::temp_directory_path()) {
        std::random_device random;
        m_path /= "zr_test_" + std::to_string(random());
        if (!std::filesystem::create_directory(m_path))
            throw std::runtime_error("the temporary folder exists already");
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    const std::filesystem::path &Folder() const { return m_path; }

    // Path of an entry of the folder, as the host and the library both take it.
    std::string Path(const std::string &name) const { return (m_path / name).string(); }

    // Writes and reads whole files, byte by byte as they are.
    void Write(const std::string &name, const std::string &bytes) const {
        std::ofstream file(m_path / name, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!file.flush())
            throw std::runtime_error("can't write " + name);
    }
    std::string Read(const std::string &name) const {
        std::ifstream file(m_path / name, std::ios::binary);
        if (!file)
            throw std::runtime_error("can't read " + name);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};

// Changes the current folder for its life.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path &folder) : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~CurrentFolder() {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
    }
    CurrentFolder(const CurrentFolder &) = delete;
    CurrentFolder &operator=(const CurrentFolder &) = delete;

private:
    std::filesystem::path m_before;
};

#endif
