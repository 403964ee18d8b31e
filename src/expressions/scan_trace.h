// The trace of a scanner: a line for each token in the file "trc" of the current folder.
#ifndef ZR_EXPRESSIONS_SCAN_TRACE_H
#define ZR_EXPRESSIONS_SCAN_TRACE_H

#include <cstdio>

#include <zrclb/scan.h>

namespace zr::expressions {

class ScanTrace {
public:
    ScanTrace() = default;
    ~ScanTrace();
    ScanTrace(const ScanTrace &) = delete;
    ScanTrace &operator=(const ScanTrace &) = delete;

    // A file that can't be opened takes no traces.
    void Open();
    void Write(zr_long kind, const ZrScanToken &token);

private:
    std::FILE *m_file = nullptr;
};

} // namespace zr::expressions

#endif
