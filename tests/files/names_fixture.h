// For tests of functions on files by name: a folder, what is reported meanwhile, and texts that no function may take.
#ifndef TESTS_FILES_NAMES_FIXTURE_H
#define TESTS_FILES_NAMES_FIXTURE_H

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/temp_folder.h"

class NamesFixture : public testing::Test {
protected:
    // Makes a file or folder read-only while it lives.
    class ReadOnly {
    public:
        explicit ReadOnly(const std::string &path) : m_path(path) {
            EXPECT_EQ(zr::platform::SetAttributes(m_path.c_str(), zr::platform::attribute_read_only), 0);
        }
        ~ReadOnly() { zr::platform::SetAttributes(m_path.c_str(), zr::platform::attribute_normal); }
        ReadOnly(const ReadOnly &) = delete;
        ReadOnly &operator=(const ReadOnly &) = delete;

    private:
        std::string m_path;
    };

    std::string Dir() const { return m_folder.Folder().string(); }
    std::string Path(const std::string &name) const { return m_folder.Path(name); }
    void Write(const std::string &name, const std::string &bytes = "content") const { m_folder.Write(name, bytes); }
    std::string Read(const std::string &name) const { return m_folder.Read(name); }
    bool Exists(const std::string &name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(m_folder.Folder() / name));
    }
    void MakeFolders(const std::string &name) const { std::filesystem::create_directories(m_folder.Folder() / name); }

    // A name with which a path in the folder has that length.
    std::string NameForLength(std::size_t length) const { return std::string(length - Dir().size() - 1, 'n'); }

    // A path in the library's form, as it composes it from the host's.
    static std::string LibraryForm(std::string path) {
        std::replace(path.begin(), path.end(), '/', '\\');
        return path[0] == '\\' ? "C:" + path : path;
    }

    // Paths that name nothing, together with empty names.
    std::vector<std::string> BadPaths() const {
        return {"",
                Path("missing"),
                Path("missing/x"),
                Path("file/x"),
                Path("*"),
                "Q:\\x",
                "Q:",
                Dir() + "\\" + NameForLength(260),
                std::string(260, 'x'),
                std::string(10000, 'x'),
                std::string(10000, '\\'),
                "\xE4\x80\xFF\x01"};
    }

    // What a failed check shows of a text.
    static std::string Short(const std::string &text) { return text.substr(0, 100); }

    // Forgets the reports so far; each of them is of a path that was too long.
    void ExpectTooLong(std::size_t times) {
        const zr::test::Report too_long = zr::test::Message("Fio", "Buffer zu klein");
        EXPECT_EQ(m_reports.Take(), zr::test::Reports(times, too_long));
    }

    void TearDown() override { EXPECT_EQ(m_reports.Take(), zr::test::Reports()); }

    TempFolder m_folder;
    zr::test::ReportCapture m_reports;
};

#endif
