// The texts that the desktop system has for its error codes, in English.
#include "platform/system_text.h"

namespace zr::platform {

namespace {

struct CodeText {
    unsigned long code;
    const char *text;
};

constexpr CodeText texts[] = {
    {0, "The operation completed successfully.\r\n"},
    {1, "Incorrect function.\r\n"},
    {2, "The system cannot find the file specified.\r\n"},
    {3, "The system cannot find the path specified.\r\n"},
    {4, "The system cannot open the file.\r\n"},
    {5, "Access is denied.\r\n"},
    {6, "The handle is invalid.\r\n"},
    {8, "Not enough storage is available to process this command.\r\n"},
    {11, "An attempt was made to load a program with an incorrect format.\r\n"},
    {13, "The data is invalid.\r\n"},
    {14, "Not enough storage is available to complete this operation.\r\n"},
    {15, "The system cannot find the drive specified.\r\n"},
    {17, "The system cannot move the file to a different disk drive.\r\n"},
    {18, "There are no more files.\r\n"},
    {19, "The media is write protected.\r\n"},
    {21, "The device is not ready.\r\n"},
    {31, "A device attached to the system is not functioning.\r\n"},
    {32, "The process cannot access the file because it is being used by another process.\r\n"},
    {33, "The process cannot access the file because another process has locked a portion of the file.\r\n"},
    {50, "The request is not supported.\r\n"},
    {53, "The network path was not found.\r\n"},
    {67, "The network name cannot be found.\r\n"},
    {80, "The file exists.\r\n"},
    {87, "The parameter is incorrect.\r\n"},
    {110, "The system cannot open the device or file specified.\r\n"},
    {112, "There is not enough space on the disk.\r\n"},
    {122, "The data area passed to a system call is too small.\r\n"},
    {123, "The filename, directory name, or volume label syntax is incorrect.\r\n"},
    {126, "The specified module could not be found.\r\n"},
    {127, "The specified procedure could not be found.\r\n"},
    {145, "The directory is not empty.\r\n"},
    {161, "The specified path is invalid.\r\n"},
    {183, "Cannot create a file when that file already exists.\r\n"},
    {193, "%1 is not a valid Win32 application.\r\n"},
    {206, "The filename or extension is too long.\r\n"},
    {234, "More data is available.\r\n"},
    {267, "The directory name is invalid.\r\n"},
    {740, "The requested operation requires elevation.\r\n"},
    {997, "Overlapped I/O operation is in progress.\r\n"},
    {1223, "The operation was canceled by the user.\r\n"},
    {1824, "A UUID that is valid only on this computer has been allocated.\r\n"},
    {1921, "The name of the file cannot be resolved by the system.\r\n"},
};

} // namespace

SystemText::SystemText(unsigned long code) {
    for (const CodeText &entry : texts)
        if (entry.code == code)
            m_text = entry.text;
}

// The texts are constant; on the other platform the system's memory is given back here.
SystemText::~SystemText() {}

} // namespace zr::platform
