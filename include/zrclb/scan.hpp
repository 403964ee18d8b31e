// The scanner's source as a class. C++20.
#ifndef ZRCLB_SCAN_HPP
#define ZRCLB_SCAN_HPP

#include <zrclb/scan.h>

// Where a scanner takes its characters from.
class IZrScannerGetChar {
public:
    virtual ~IZrScannerGetChar() = default;

    // The next character; 0 or -1 at the end, where it may be asked again.
    virtual int GetChar() = 0;
};

#endif
