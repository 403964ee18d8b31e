// Files that are written over in place.
#include "platform/raw_output.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/file_verbs.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

class RawOutputs : public testing::Test {
protected:
    ~RawOutputs() override { services = {}; }

    const char *File(const std::string &bytes) {
        m_folder.Write("file", bytes);
        return m_path.c_str();
    }
    std::string Bytes() const { return m_folder.Read("file"); }

    // The first bytes of the file are these, and its length is one of the two.
    void ExpectReserved(const std::string &bytes, std::size_t reserved) const {
        const std::string found = Bytes();
        EXPECT_EQ(found.substr(0, bytes.size()), bytes);
        EXPECT_TRUE(found.size() == bytes.size() || found.size() == reserved) << found.size();
    }

    TempFolder m_folder;
    const std::string m_path = m_folder.Path("file");
};

TEST_F(RawOutputs, OpenedFile_KeepsItsBytes) {
    RawOutput output;
    EXPECT_FALSE(output.IsOpen());
    ASSERT_EQ(output.Open(File("old bytes")), done);
    EXPECT_TRUE(output.IsOpen());
    EXPECT_EQ(output.Written(), 0U);
    EXPECT_EQ(output.Close(), done);
    EXPECT_FALSE(output.IsOpen());
    EXPECT_EQ(output.Close(), done);
    EXPECT_EQ(Bytes(), "old bytes");
}

TEST_F(RawOutputs, WrittenBytes_StandInFrontOfTheOldOnesUntilTheCut) {
    RawOutput output;
    ASSERT_EQ(output.Open(File("old bytes")), done);
    EXPECT_EQ(output.Write("ne", 2), done);
    EXPECT_EQ(output.Write("w", 1), done);
    EXPECT_EQ(output.Write("", 0), done);
    EXPECT_EQ(output.Written(), 3U);
    EXPECT_EQ(Bytes(), "new bytes");
    EXPECT_EQ(output.Cut(), done);
    EXPECT_EQ(output.Close(), done);
    EXPECT_EQ(Bytes(), "new");
    ASSERT_EQ(output.Open(m_path.c_str()), done);
    EXPECT_EQ(output.Written(), 0U);
    EXPECT_EQ(output.Cut(), done);
    EXPECT_EQ(Bytes(), "");
    const std::string many(300000, 'x');
    EXPECT_EQ(output.Write(many.data(), many.size()), done);
    EXPECT_EQ(output.Close(), done);
    EXPECT_EQ(Bytes(), many);
}

TEST_F(RawOutputs, WhatIsNoFileToWrite_HasItsCode) {
    RawOutput output;
    EXPECT_EQ(output.Open(m_path.c_str()), file_not_found);
    EXPECT_EQ(output.Open(m_folder.Path("none/file").c_str()), path_not_found);
    EXPECT_EQ(output.Open(m_folder.Folder().string().c_str()), access_denied);
    EXPECT_EQ(output.Open(nullptr), path_not_found);
    EXPECT_EQ(output.Open(std::string(260, 'x').c_str()), path_too_long);
    ASSERT_EQ(SetAttributes(File("x"), attribute_read_only), done);
    EXPECT_EQ(output.Open(m_path.c_str()), access_denied);
    ASSERT_EQ(SetAttributes(m_path.c_str(), attribute_normal), done);
    EXPECT_FALSE(output.IsOpen());
    EXPECT_EQ(Bytes(), "x");
    std::uint32_t attributes = 0;
    ASSERT_EQ(SetAttributes(m_path.c_str(), attribute_hidden), done); // where a system knows it
    ASSERT_EQ(GetAttributes(m_path.c_str(), attributes), done);
    EXPECT_EQ(output.Open(m_path.c_str()), (attributes & attribute_hidden) != 0 ? access_denied : done);
}

TEST_F(RawOutputs, ReservedRoom_ChangesNoByte) {
    RawOutput output;
    ASSERT_EQ(output.Open(File("old bytes")), done);
    for (const unsigned size : {0U, 3U, 9U, 10U, 100000U}) {
        EXPECT_EQ(output.Reserve(size), done);
        ExpectReserved("old bytes", size);
    }
    EXPECT_EQ(output.Write("new", 3), done);
    EXPECT_EQ(output.Cut(), done);
    EXPECT_EQ(output.Close(), done);
    EXPECT_EQ(Bytes(), "new");
}

TEST_F(RawOutputs, SystemThatCannotReserve_GetsZerosBehindTheEnd) {
    services.reserve_output = [](std::intptr_t, std::uint64_t) { return int{not_supported}; };
    RawOutput output;
    ASSERT_EQ(output.Open(File("old bytes")), done);
    EXPECT_EQ(output.Reserve(9), done);
    EXPECT_EQ(Bytes(), "old bytes");
    EXPECT_EQ(output.Reserve(9000), done);
    EXPECT_EQ(Bytes(), "old bytes" + std::string(8991, '\0'));
    EXPECT_EQ(output.Written(), 0U);
}

// The disk takes so many writes, and no more.
int writes_left;

int WriteWhileThereIsRoom(std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size) {
    return writes_left-- > 0 ? backend::WriteOutput(file, at, bytes, size) : int{disk_full};
}

TEST_F(RawOutputs, FullDisk_LeavesTheFileAsItWas) {
    RawOutput output;
    services.reserve_output = [](std::intptr_t, std::uint64_t) { return int{disk_full}; };
    ASSERT_EQ(output.Open(File("old bytes")), done);
    EXPECT_EQ(output.Reserve(100), disk_full);
    EXPECT_EQ(Bytes(), "old bytes");
    services.reserve_output = [](std::intptr_t, std::uint64_t) { return int{not_supported}; };
    services.write_output = WriteWhileThereIsRoom;
    for (const int writes : {0, 1, 2}) {
        writes_left = writes;
        EXPECT_EQ(output.Reserve(9000), disk_full) << writes; // three are needed
        EXPECT_EQ(Bytes(), "old bytes") << writes;
    }
    writes_left = 0;
    EXPECT_EQ(output.Write("new", 3), disk_full);
    EXPECT_EQ(output.Written(), 0U);
}

TEST_F(RawOutputs, FailureOfTheClose_IsTold) {
    services.close_output = [](std::intptr_t file) {
        backend::CloseOutput(file);
        return int{disk_full};
    };
    RawOutput output;
    ASSERT_EQ(output.Open(File("x")), done);
    EXPECT_EQ(output.Close(), disk_full);
    EXPECT_EQ(output.Close(), done);
}

TEST_F(RawOutputs, PrivateFile_IsStillItsOwners) {
    RawOutput output;
    ASSERT_EQ(output.Open(File("x")), done);
    output.MakePrivate();
    EXPECT_EQ(output.Close(), done);
    EXPECT_EQ(Bytes(), "x");
    EXPECT_TRUE(CanAccess(m_path.c_str(), 6));
}

} // namespace
