// Group operations: lists, reports and results. What the shell does with them is tested beside the platform.
#include <zrclb/folders.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "platform/shell_paths.h"

namespace {

using zr::test::HeapRefusal;
using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

namespace fs = std::filesystem;

class GroupOperation : public testing::Test {
protected:
    void SetUp() override {
        for (const char *name : {"from", "to", "from/sub"})
            fs::create_directory(m_folder.Folder() / name);
        m_folder.Write("from/a", "A");
        m_folder.Write("from/b", "B");
        m_folder.Write("from/sub/x", "X");
        m_blocks = zr::frame::heap_block_count;
    }
    void TearDown() override { EXPECT_EQ(zr::frame::heap_block_count, m_blocks); }

    std::string From() const { return LibraryPath(m_folder.Folder() / "from"); }
    std::string To() const { return LibraryPath(m_folder.Folder() / "to"); }
    bool Exists(const std::string &name) const { return fs::exists(m_folder.Folder() / name); }

    int Do(int operation, std::vector<const char *> names, const char **targets = nullptr, int files_only = 0,
           const char *title = nullptr) {
        names.push_back(nullptr);
        return fio_group_operation(From().c_str(), names.data(), To().c_str(), targets, operation, files_only, title,
                                   nullptr);
    }
    Reports Taken() { return m_capture.Take(); }

    TempFolder m_folder;
    ReportCapture m_capture;
    zr_long m_blocks = 0;
};

TEST_F(GroupOperation, UnknownOperationIsReported) {
    EXPECT_EQ(Do(3, {"a"}), 2);
    EXPECT_EQ(Do(-1, {"a"}), 2);
    EXPECT_EQ(fio_group_operation(nullptr, nullptr, nullptr, nullptr, 3, 0, nullptr, nullptr), 2);
    EXPECT_EQ(Taken(), Reports(3, Message("Fio", "Bad fioOperation")));
}

TEST_F(GroupOperation, NullSourcesAreReported) {
    EXPECT_EQ(fio_group_operation("x", nullptr, "y", nullptr, FIO_GROUP_COPY, 0, nullptr, nullptr), 2);
    EXPECT_EQ(Taken(), Reports{Message("Fio", "pFrom == NIL!")});
}

TEST_F(GroupOperation, CopiesUnderTheNamesOfTheSources) {
    EXPECT_EQ(Do(FIO_GROUP_COPY, {"a", "b", "sub"}), 0);
    EXPECT_EQ(m_folder.Read("to/a") + m_folder.Read("to/b") + m_folder.Read("to/sub/x"), "ABX");
    EXPECT_TRUE(Exists("from/a"));
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(GroupOperation, MovesToNamesOfTheirOwn) {
    const char *targets[] = {"n1", "n2", nullptr};
    EXPECT_EQ(Do(FIO_GROUP_MOVE, {"a", "sub"}, targets), 0);
    EXPECT_EQ(m_folder.Read("to/n1") + m_folder.Read("to/n2/x"), "AX");
    EXPECT_FALSE(Exists("from/a") || Exists("from/sub"));
}

TEST_F(GroupOperation, DeletionBuildsNoTargetList) {
    const char *names[] = {"a", "sub", nullptr};
    const std::string overlong(300, 'x');
    const char *targets[] = {overlong.c_str(), nullptr};
    EXPECT_EQ(
        fio_group_operation(From().c_str(), names, overlong.c_str(), nullptr, FIO_GROUP_DELETE, 0, nullptr, nullptr),
        0);
    EXPECT_FALSE(Exists("from/a") || Exists("from/sub"));
    EXPECT_EQ(Do(FIO_GROUP_DELETE, {"b"}, targets), 0);
    EXPECT_FALSE(Exists("from/b"));
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(GroupOperation, FilesOnlyLeavesFoldersOutOfPatterns) {
    const char *targets[] = {"", nullptr};
    EXPECT_EQ(Do(FIO_GROUP_COPY, {"*"}, targets, 1), 0);
    EXPECT_TRUE(Exists("to/a") && Exists("to/b"));
    EXPECT_FALSE(Exists("to/sub"));
    EXPECT_EQ(Do(FIO_GROUP_COPY, {"*"}, targets, 0), 0);
    EXPECT_TRUE(Exists("to/sub/x"));
}

TEST_F(GroupOperation, FailureOfTheShellIsTwoWithoutReport) {
    EXPECT_EQ(Do(FIO_GROUP_COPY, {"missing"}), 2);
    EXPECT_EQ(Do(FIO_GROUP_COPY, {"missing"}, nullptr, 0, "title"), 2);
    EXPECT_EQ(Do(FIO_GROUP_DELETE, {"missing"}), 2);
    EXPECT_EQ(Do(FIO_GROUP_DELETE, {}), 2); // an empty list
    EXPECT_EQ(Do(FIO_GROUP_COPY, {}), 2);
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(GroupOperation, TitleShowsNothingWhereNobodyIs) {
    EXPECT_EQ(Do(FIO_GROUP_COPY, {"a"}, nullptr, 0, "title"), 0);
    EXPECT_TRUE(Exists("to/a"));
}

TEST_F(GroupOperation, NullFoldersCountAsEmpty) {
    const std::string from = From() + "\\a", to = To() + "\\n";
    const char *names[] = {from.c_str(), nullptr};
    const char *targets[] = {to.c_str(), nullptr};
    EXPECT_EQ(fio_group_operation(nullptr, names, nullptr, targets, FIO_GROUP_COPY, 0, nullptr, nullptr), 0);
    EXPECT_EQ(m_folder.Read("to/n"), "A");
}

// A name that composing would take for empty would stand for the folder itself.
TEST_F(GroupOperation, OverlongPartsAreWrongNames) {
    for (const std::size_t length : {256U, 259U, 260U, 10000U}) {
        const std::string overlong(length, 'x');
        const char *names[] = {"a", overlong.c_str(), nullptr};
        EXPECT_EQ(Do(FIO_GROUP_DELETE, {"a", overlong.c_str()}), 2);
        EXPECT_EQ(Do(FIO_GROUP_MOVE, {"a"}, names), 2);
        EXPECT_EQ(fio_group_operation(overlong.c_str(), names, nullptr, nullptr, FIO_GROUP_DELETE, 0, nullptr, nullptr),
                  2);
        Reports reports = Taken();
        std::erase(reports, Message("Fio", "Buffer zu klein")); // told as well where it is the whole that is too long
        EXPECT_EQ(reports, (Reports{Message("Fio", "Wrong 'from' names"), Message("Fio", "Wrong 'to' names"),
                                    Message("Fio", "Wrong 'from' names")}));
    }
    const std::string name(200, 'x');
    EXPECT_EQ(Do(FIO_GROUP_DELETE, {(name + "\\" + name).c_str()}), 2);
    EXPECT_TRUE(Exists("from/a") && Exists("from/sub/x"));
}

TEST_F(GroupOperation, WithoutMemoryTheListIsWrong) {
    for (int others = 0; others < 2; ++others) {
        const HeapRefusal refusal(others);
        EXPECT_EQ(Do(FIO_GROUP_MOVE, {"a", "b"}), 2);
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_EQ(Taken(), (Reports{Message("Fio", "Wrong 'from' names"), Message("Fio", "Wrong 'to' names")}));
    EXPECT_TRUE(Exists("from/a"));
}

} // namespace
