// Catches what is reported while a test runs: zr_message and zr_error, in their order, with tag and texts.
//
// The log is switched on through the frame's hook, into a file of its own that goes with the capture, and read back.
// Captures nest: the innermost one gets the reports. Not for tests that put a hook of their own.
#ifndef TESTS_ENV_REPORT_CAPTURE_H
#define TESTS_ENV_REPORT_CAPTURE_H

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "frame/log_hook.h"

namespace zr::test {

struct Report {
    enum Kind {
        Message,
        Error
    } kind;
    std::string tag;                // the source that reports
    std::vector<std::string> texts; // the texts that are not null

    bool operator==(const Report &) const = default;
};

using Reports = std::vector<Report>;

template <class... Texts>
Report Message(const char *tag, Texts... texts) {
    return {Report::Message, tag, {texts...}};
}

template <class... Texts>
Report Error(const char *tag, Texts... texts) {
    return {Report::Error, tag, {texts...}};
}

inline std::string JoinedTexts(const Report &report) {
    std::string joined;
    for (const std::string &text : report.texts)
        joined += (&text != report.texts.data() ? "|" : "") + text;
    return joined;
}

inline std::ostream &operator<<(std::ostream &stream, const Report &report) {
    return stream << (report.kind == Report::Error ? "error " : "message ") << report.tag << ": "
                  << JoinedTexts(report);
}

class ReportCapture {
public:
    ReportCapture() : m_path(FreshPath()), m_previous(s_current) {
        s_current = this;
        Hook();
    }

    ~ReportCapture() {
        s_current = m_previous;
        if (m_previous != nullptr)
            Hook();
        else
            zr::frame::SetLogHook({});
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }

    ReportCapture(const ReportCapture &) = delete;
    ReportCapture &operator=(const ReportCapture &) = delete;

    // The reports since the start, or since they were last taken.
    Reports Take() {
        Reports reports;
        std::string line;
        std::istringstream lines(TakeLog());
        while (std::getline(lines, line)) {
            if (line.starts_with(MessageLead))
                reports.push_back({Report::Message, TagOf(line), TextsBehind(lines)});
            else if (line.starts_with(ErrorLead))
                reports.push_back({Report::Error, TagOf(line), TextsBehind(lines)});
        }
        return reports;
    }

private:
    static constexpr const char *MessageLead = "> MESSAGE in ";
    static constexpr const char *ErrorLead = ">ERROR  in ";

    static std::string FreshPath() {
        static std::mt19937_64 random{std::random_device{}()};
        std::filesystem::path path;
        do
            path = std::filesystem::temp_directory_path() / ("zr_reports_" + std::to_string(random()) + ".txt");
        while (std::filesystem::exists(path));
        return path.string();
    }

    static void Hook() {
        zr::frame::LogHook hook;
        hook.is_on = [] { return true; };
        hook.path = [](char *out, std::size_t size) {
            const std::string &path = s_current->m_path; // no copy: memory may be short while a test reports
            if (path.size() >= size)
                return false;
            std::memcpy(out, path.c_str(), path.size() + 1);
            return true;
        };
        zr::frame::SetLogHook(hook);
    }

    // What the log holds, with plain line feeds; it is empty afterwards.
    std::string TakeLog() {
        std::ifstream stream(m_path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        stream.close();
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
        std::string text;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (bytes.compare(i, 2, "\r\n") != 0)
                text += bytes[i];
        }
        return text;
    }

    // From: program "tag" line 1:
    static std::string TagOf(const std::string &header) {
        const std::size_t end = header.rfind("\" line ");
        const std::size_t start = end != std::string::npos ? header.rfind('"', end - 1) : end;
        return start != std::string::npos ? header.substr(start + 1, end - start - 1) : header;
    }

    // The texts stand on lines of their own, two blanks in front and an exclamation mark behind, up to an empty line.
    static std::vector<std::string> TextsBehind(std::istream &lines) {
        std::vector<std::string> texts;
        std::string line;
        while (std::getline(lines, line) && !line.empty()) {
            std::string more;
            while (!line.ends_with('!') && std::getline(lines, more))
                line += "\n" + more;
            texts.push_back(line.substr(2, line.size() - 3));
        }
        return texts;
    }

    static inline ReportCapture *s_current = nullptr;

    std::string m_path;
    ReportCapture *m_previous;
};

// The texts of the reports since they were last taken, those of one report joined by "|".
inline std::vector<std::string> TextsOf(ReportCapture &capture) {
    std::vector<std::string> texts;
    for (const Report &report : capture.Take())
        texts.push_back(JoinedTexts(report));
    return texts;
}

} // namespace zr::test

#endif
