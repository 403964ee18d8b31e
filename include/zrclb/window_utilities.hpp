// Error codes of the operating system with their texts. C++20.
#ifndef ZRCLB_WINDOW_UTILITIES_HPP
#define ZRCLB_WINDOW_UTILITIES_HPP

#include <string>

#include <zrclb/types.h>
#include <zrclb/window_utilities.h>

// A code of the operating system, in the desktop's numbers on Linux too. An object belongs to one thread at a time.
class ZR_API CZrWinError {
public:
    CZrWinError(zr_ulong code = 0) noexcept;
    CZrWinError(const CZrWinError &other) = default;
    CZrWinError &operator=(const CZrWinError &other) = default;
    CZrWinError &operator=(zr_ulong code) noexcept;
    ~CZrWinError() = default;

    // The code.
    operator zr_ulong() const noexcept;
    zr_ulong GetCode() const noexcept;
    void SetCode(zr_ulong code) noexcept;

    // The system's text for the code, with the line end that the system gives; inserts ("%1") stay as they are. In the
    // user's language on Windows, in English on Linux. Empty for a code that the system has no text for, and without
    // memory.
    std::string GetFormattedMsg() const noexcept;

    // The same for any code.
    static std::string GetFormattedMsg(zr_ulong code) noexcept;

private:
    zr_ulong m_code;
};

#endif
