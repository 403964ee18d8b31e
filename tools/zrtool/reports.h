// Listens to what the library reports while it works.
#ifndef ZRTOOL_REPORTS_H
#define ZRTOOL_REPORTS_H

#include <string>

namespace zrtool {

// From its making to its end, takes the texts of error reports that the library sends to the debugger channel, and keeps
// them from going anywhere else. One at a time, on one thread.
class ReportListener {
public:
    ReportListener();
    ~ReportListener();
    ReportListener(const ReportListener &) = delete;
    ReportListener &operator=(const ReportListener &) = delete;

    // The reports so far on one line, each without source and line number, the first one in front; empty without any.
    std::string Text() const;

private:
    static void Listen(const char *text);

    void (*m_before)(const char *text);
};

} // namespace zrtool

#endif
