// Catches what the library reports while a target runs. The build leads the reports of a target whose source includes this
// here; one source of a program only.
#ifndef FUZZ_CAUGHT_REPORTS_H
#define FUZZ_CAUGHT_REPORTS_H

#include <string>
#include <utility>
#include <vector>

namespace fuzz {

// Each as "message tag|text|text", "error tag|text" or "switch tag|value", texts that are null left out.
using Reports = std::vector<std::string>;

inline Reports caught_reports;

// The reports since they were last taken.
inline Reports TakeReports() {
    return std::exchange(caught_reports, {});
}

inline void CatchReport(std::string report, const char *text1, const char *text2, const char *text3, const char *file) {
    report += file;
    for (const char *text : {text1, text2, text3}) {
        if (text != nullptr)
            report += std::string("|") + text;
    }
    caught_reports.push_back(std::move(report));
}

} // namespace fuzz

extern "C" void __wrap_zr_message(const char *text1, const char *text2, const char *text3, const char *file,
                                  int) noexcept {
    fuzz::CatchReport("message ", text1, text2, text3, file);
}

extern "C" void __wrap_zr_error(const char *text1, const char *text2, const char *text3, const char *file,
                                int) noexcept {
    fuzz::CatchReport("error ", text1, text2, text3, file);
}

extern "C" void __wrap_zr_switch_error(int value, const char *file, int) noexcept {
    fuzz::CatchReport("switch ", std::to_string(value).c_str(), nullptr, nullptr, file);
}

#endif
