// A fresh folder, and handles on its files.
#ifndef TESTS_FILES_HANDLE_FIXTURE_H
#define TESTS_FILES_HANDLE_FIXTURE_H

#include <string>

#include <gtest/gtest.h>

#include <zrclb/file_handle.h>
#include <zrclb/paths.h>

#include "env/report_capture.h"
#include "platform/temp_folder.h"

class HandleFixture : public testing::Test {
protected:
    using Reports = zr::test::Reports;

    fio_handle *Open(const std::string &name, int mode) const {
        return fio_open(m_folder.Folder().string().c_str(), name.c_str(), mode);
    }

    // A handle that reads these bytes.
    fio_handle *OpenBytes(const std::string &bytes, int mode = FIO_READ) const {
        m_folder.Write("bytes", bytes);
        return Open("bytes", mode);
    }

    // Ends the handle and gives what is in its file then.
    std::string CloseAndRead(fio_handle *handle, const std::string &name) const {
        EXPECT_EQ(fio_close(handle), 0);
        return m_folder.Read(name);
    }

    // Of a stream without a buffer whose writes fail.
    static void ExpectWritesToFail(fio_handle *handle) {
        EXPECT_EQ(fio_putdouble(handle, 1.5), -1);
        EXPECT_EQ(fio_putlong(handle, 1), -1);
        EXPECT_EQ(fio_putfloat(handle, 1), -1);
        EXPECT_EQ(fio_putshort(handle, 1), -1);
        EXPECT_EQ(fio_putchar(handle, 'x'), -1);
        EXPECT_EQ(fio_putstring(handle, "x", 0), -1);
        EXPECT_EQ(fio_putstring(handle, "", 1), -1);
        EXPECT_EQ(fio_putstring(handle, "", 0), 0) << "nothing to write";
        EXPECT_EQ(fio_fwrite("abcd", 1, 4, handle), 0u);
    }

    // Where the host takes the library's paths as they are: a lock covers bytes there.
    static bool IsOnDesktop() {
        char host[16] = "";
        return zr_HostPath("\\a", host, sizeof host) != 0 && std::string(host) == "\\a";
    }

    static Reports Refusal(const char *text) { return {zr::test::Error("Fio", text)}; }

    TempFolder m_folder;
    zr::test::ReportCapture m_reports;
};

// The headers of files from here and from machines of the other order.
inline const std::string native_header = "1.1  @zrINTEL   ";
inline const std::string foreign_header = "1.1  @zrMOTOROLA";

#endif
