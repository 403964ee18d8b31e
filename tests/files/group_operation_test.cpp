// Group operations: lists, reports and results. What the shell does with them is tested beside the platform.
#include <zrclb/folders.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "platform/services.h"
#include "platform/shell.h"
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

TEST_F(GroupOperation, PlacesThatAreNoneFail) {
    const std::string file = From() + "\\a";
    for (const std::string &dir : {std::string("Q:\\"), From() + "\\missing", file, std::string("\\\\\\"),
                                   std::string("C:\\..\\..\\no such folder"), std::string("\xE4\x80\xFF")}) {
        const char *names[] = {"b", nullptr};
        EXPECT_EQ(fio_group_operation(dir.c_str(), names, To().c_str(), nullptr, FIO_GROUP_COPY, 0, nullptr, nullptr),
                  2);
        const int moved =
            fio_group_operation(dir.c_str(), names, To().c_str(), nullptr, FIO_GROUP_MOVE, 0, nullptr, nullptr);
        EXPECT_TRUE(moved == 2 || on_desktop); // not every shell minds a source that is missing
        EXPECT_EQ(fio_group_operation(dir.c_str(), names, nullptr, nullptr, FIO_GROUP_DELETE, 0, nullptr, nullptr), 2);
    }
    EXPECT_TRUE(fs::is_empty(m_folder.Folder() / "to"));
    const char *names[] = {"b", nullptr};
    for (const std::string &dir : {std::string("Q:\\"), file}) {
        const int copied =
            fio_group_operation(From().c_str(), names, dir.c_str(), nullptr, FIO_GROUP_COPY, 0, nullptr, nullptr);
        EXPECT_TRUE(copied == 2 || (on_desktop && copied == 1)) << copied; // a shell may call that left out
    }
    EXPECT_EQ(m_folder.Read("from/a") + m_folder.Read("from/b"), "AB");
    EXPECT_EQ(Taken(), Reports{});
}

// What the shell is asked for, in place of the shell.
class ShellCalls : public GroupOperation {
protected:
    void SetUp() override {
        GroupOperation::SetUp();
        zr::platform::services.do_group_operation = Note;
        code = 0;
        abort = false;
    }
    void TearDown() override {
        zr::platform::services = m_services;
        GroupOperation::TearDown();
    }

    static std::vector<std::string> Paths(const char *list) {
        std::vector<std::string> paths;
        for (; *list != 0; list += paths.back().size() + 1)
            paths.emplace_back(list);
        return paths;
    }
    static int Note(zr::platform::GroupVerb asked, const char *from_list, const char *to_list,
                    const zr::platform::GroupOptions &with, bool &aborted) {
        verb = asked;
        from = Paths(from_list);
        targets = to_list != nullptr;
        to = targets ? Paths(to_list) : std::vector<std::string>();
        options = with;
        aborted = abort;
        return code;
    }

    static inline zr::platform::GroupVerb verb;
    static inline std::vector<std::string> from, to;
    static inline bool targets, abort;
    static inline zr::platform::GroupOptions options;
    static inline int code;
    const zr::platform::Services m_services = zr::platform::services;
};

TEST_F(ShellCalls, GetListsTitleAndOwner) {
    using Paths = std::vector<std::string>;
    const char *names[] = {"a", "sub\\x/y", "E:\\z", "\xE4\x80", nullptr}, *others[] = {"1", "2", nullptr};
    int window = 0;
    EXPECT_EQ(fio_group_operation("C:\\d\\", names, "/t", others, FIO_GROUP_MOVE, 1, "title", &window), 0);
    EXPECT_EQ(verb, zr::platform::GroupVerb::move);
    EXPECT_EQ(from, (Paths{"C:\\d\\a", "C:\\d\\sub\\x\\y", "E:\\z", "C:\\d\\\xE4\x80"}));
    EXPECT_EQ(to, (Paths{"\\t\\1", "\\t\\2"}));
    EXPECT_TRUE(options.several_targets && options.files_only);
    EXPECT_STREQ(options.progress_title, "title");
    EXPECT_EQ(options.owner, &window);
    EXPECT_EQ(fio_group_operation(nullptr, others, "C:", nullptr, FIO_GROUP_COPY, 0, nullptr, nullptr), 0);
    EXPECT_EQ(verb, zr::platform::GroupVerb::copy);
    EXPECT_EQ(from, (Paths{"1", "2"}));
    EXPECT_EQ(to, (Paths{"C:\\1", "C:\\2"}));
    EXPECT_TRUE(options.several_targets && !options.files_only);
    EXPECT_EQ(options.progress_title, nullptr);
    EXPECT_EQ(options.owner, nullptr);
}

TEST_F(ShellCalls, DeletionHasNoTargets) {
    EXPECT_EQ(Do(FIO_GROUP_DELETE, {"a"}), 0);
    EXPECT_EQ(verb, zr::platform::GroupVerb::remove);
    EXPECT_EQ(from, std::vector<std::string>{From() + "\\a"});
    EXPECT_FALSE(targets || options.several_targets);
    EXPECT_EQ(Do(FIO_GROUP_DELETE, {}), 0);
    EXPECT_EQ(from, std::vector<std::string>{});
}

TEST_F(ShellCalls, CodeAndAbortMakeTheResult) {
    const struct {
        int code;
        bool abort;
        int result;
    } cases[] = {{0, false, 0}, {0, true, 1}, {5, false, 2}, {-1, false, 2}, {1223, true, 1}};
    for (const auto &[shell_code, shell_abort, result] : cases) {
        code = shell_code;
        abort = shell_abort;
        EXPECT_EQ(Do(FIO_GROUP_COPY, {"a"}), result) << shell_code << shell_abort;
    }
    EXPECT_EQ(Taken(), Reports{});
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
