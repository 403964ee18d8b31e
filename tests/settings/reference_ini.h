// Reading and rewriting settings files by the told steps and nothing else: a text stream, a line buffer, a byte after the other.
#ifndef TESTS_SETTINGS_REFERENCE_INI_H
#define TESTS_SETTINGS_REFERENCE_INI_H

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "platform/streams.h"

namespace zr::test {

struct IniAnswer {
    int result = 0;
    std::string text; // what was stored: the value, or the list of names with their terminators
    int size = 0;
    int malformed = 0; // lines reported

    bool operator==(const IniAnswer &) const = default;
};

class ReferenceIni {
public:
    using Section = std::optional<std::string>; // none: null

    static std::string Trim(const std::string &text) {
        std::size_t from = 0, end = text.size();
        while (from < end && static_cast<unsigned char>(text[from]) <= 32)
            ++from;
        while (end > from && static_cast<unsigned char>(text[end - 1]) <= 32)
            --end;
        return text.substr(from, end - from);
    }

    // 0 at the end, 1 for a header with its name, 2 for another line.
    static int NextLine(std::FILE *in, std::FILE *copy, std::string &line) {
        char buffer[2047];
        while (in != nullptr && std::fgets(buffer, sizeof buffer, in) != nullptr) {
            line = Trim(buffer);
            if (line.empty())
                continue;
            if (line[0] == ';') {
                if (copy != nullptr) {
                    LineFeed(copy);
                    std::fprintf(copy, "%s", line.c_str());
                }
                continue;
            }
            if (line[0] != '[')
                return 2;
            std::string name = line.substr(1);
            if (name.find(']') != std::string::npos)
                name = name.substr(0, name.find(']'));
            line = Trim(name);
            return 1;
        }
        return 0;
    }

    int NextSection(std::FILE *in, std::FILE *copy, std::string &line) {
        for (;;) {
            const int type = NextLine(in, copy, line);
            if (type != 2)
                return type;
            if (copy == nullptr)
                continue;
            no_header_yet = false;
            LineFeed(copy);
            std::fprintf(copy, "%s", line.c_str());
        }
    }

    static bool IsBlank(const Section &section) { return !section || Trim(section->substr(0, 79)).empty(); }

    // What a read answers; the text is the first `size` characters of the value, or of the list without its last terminator.
    IniAnswer Read(const std::string &file, const Section &section, const Section &entry, int size) {
        std::FILE *in = platform::OpenText(file.c_str(), "r");
        if (in == nullptr)
            return {-1, "", size, 0};
        IniAnswer answer = {2, "", size, 0};
        std::string line;
        int type = 1;
        if (!IsBlank(section)) {
            do
                type = NextSection(in, nullptr, line);
            while (type == 1 && line != *section);
        }
        if (type == 0)
            answer.result = 1;
        while (type != 0 && (type = NextLine(in, nullptr, line)) == 2) {
            const std::size_t sign = line.find('=');
            if (sign == std::string::npos) {
                ++answer.malformed;
                continue;
            }
            const std::string name = Trim(line.substr(0, sign));
            if (!entry) {
                answer.text += name + std::string(1, '\0');
                if ((answer.result = EndList(answer, size)) != 0)
                    break;
                answer.result = 2;
                continue;
            }
            if (name == *entry) {
                const std::string value = line.substr(sign + 1);
                const bool fits = static_cast<int>(value.size()) <= size;
                answer.text = value.substr(0, static_cast<std::size_t>(size));
                answer.result = fits ? 0 : 3;
                answer.size = fits ? static_cast<int>(value.size()) : size;
                break;
            }
        }
        std::fclose(in);
        if (answer.result == 2 && !entry)
            answer.result = EndList(answer, size);
        return answer;
    }

    // Each writes `out` from `in`, both closed at the end, and answers the told result, 0 for what the copy answers.
    int Write(std::FILE *in, std::FILE *out, const Section &section, const std::string &entry,
              const std::string &value) {
        std::string line;
        if (!GoInto(in, out, section, line)) {
            Separator(out);
            std::fprintf(out, "[%s]\n%s=%s", section->c_str(), entry.c_str(), value.c_str());
            return Close(in, out, 0);
        }
        int type;
        while ((type = NextLine(in, out, line)) == 2) {
            const std::size_t sign = line.find('=');
            if (sign == std::string::npos)
                continue;
            LineFeed(out);
            const std::string name = Trim(line.substr(0, sign));
            std::fprintf(out, "%s=%s", name.c_str(), name == entry ? value.c_str() : line.c_str() + sign + 1);
            if (name == entry)
                return Rest(in, out, 0);
        }
        LineFeed(out);
        std::fprintf(out, "%s=%s", entry.c_str(), value.c_str());
        if (type == 1)
            std::fprintf(out, "\n\n[%s]", line.c_str());
        return Rest(in, out, 0);
    }

    int DeleteEntry(std::FILE *in, std::FILE *out, const Section &section, const std::string &entry) {
        std::string line;
        if (!GoInto(in, out, section, line))
            return Close(in, out, 1);
        int type;
        while ((type = NextLine(in, out, line)) == 2) {
            const std::size_t sign = line.find('=');
            if (sign == std::string::npos)
                continue;
            const std::string name = Trim(line.substr(0, sign));
            if (name == entry)
                return Rest(in, out, 0);
            LineFeed(out);
            std::fprintf(out, "%s=%s", name.c_str(), line.c_str() + sign + 1);
        }
        if (type == 1) {
            LineFeed(out);
            std::fprintf(out, "[%s]", line.c_str());
        }
        return Rest(in, out, 2);
    }

    int DeleteSection(std::FILE *in, std::FILE *out, const Section &section) {
        std::string line;
        int type = 1;
        while (!IsBlank(section) && (type = NextSection(in, out, line)) == 1 && line != *section) {
            Separator(out);
            std::fprintf(out, "[%s]", line.c_str());
        }
        if (type == 0)
            return Close(in, out, 1);
        do
            type = NextLine(in, IsBlank(section) ? out : nullptr, line);
        while (type == 2);
        return type == 1 ? HeaderAndRest(in, out, line, 0) : Close(in, out, 0);
    }

    int RenameSection(std::FILE *in, std::FILE *out, const Section &section, const std::string &new_name) {
        std::string line;
        if (!Find(in, out, section, line))
            return Close(in, out, 1);
        if (!IsBlank(section)) {
            std::fprintf(out, "[%s]", new_name.c_str());
            return Rest(in, out, 0);
        }
        const int type = NextLine(in, out, line);
        LineFeed(out);
        std::fprintf(out, "[%s]", new_name.c_str());
        if (type == 1)
            std::fprintf(out, "\n\n[%s]", line.c_str());
        if (type == 2)
            std::fprintf(out, "\n%s", line.c_str());
        return Rest(in, out, 0);
    }

    int RenameEntry(std::FILE *in, std::FILE *out, const Section &section, const std::string &entry,
                    const std::string &new_name) {
        std::string line;
        if (!Find(in, out, section, line))
            return Close(in, out, 1);
        if (!IsBlank(section))
            std::fprintf(out, "[%s]", Trim(section->substr(0, 79)).c_str());
        int type;
        while ((type = NextLine(in, out, line)) == 2) {
            const std::size_t sign = line.find('=');
            if (sign == std::string::npos)
                continue;
            LineFeed(out);
            const std::string name = Trim(line.substr(0, sign));
            std::fprintf(out, "%s=%s", name == entry ? new_name.c_str() : name.c_str(), line.c_str() + sign + 1);
            if (name == entry)
                return Rest(in, out, 0);
        }
        return type == 1 ? HeaderAndRest(in, out, line, 2) : Rest(in, out, 2);
    }

    bool no_header_yet = true;

private:
    // Behind the section's header, which is copied with all in front of it.
    bool GoInto(std::FILE *in, std::FILE *out, const Section &section, std::string &line) {
        if (IsBlank(section))
            return true;
        while (NextSection(in, out, line) == 1) {
            Separator(out);
            std::fprintf(out, "[%s]", line.c_str());
            if (line == *section)
                return true;
        }
        return false;
    }

    // The same, without the section's own header.
    bool Find(std::FILE *in, std::FILE *out, const Section &section, std::string &line) {
        if (IsBlank(section))
            return true;
        while (NextSection(in, out, line) == 1) {
            Separator(out);
            if (line == Trim(section->substr(0, 79)))
                return true;
            std::fprintf(out, "[%s]", line.c_str());
        }
        return false;
    }

    void Separator(std::FILE *out) {
        LineFeed(out);
        if (!no_header_yet)
            std::fputc('\n', out);
        no_header_yet = false;
    }

    static int HeaderAndRest(std::FILE *in, std::FILE *out, const std::string &name, int result) {
        if (std::ftell(out) != 0)
            std::fputs("\n\n", out);
        std::fprintf(out, "[%s]", name.c_str());
        return Rest(in, out, result);
    }

    // Byte by byte, as the stream has them.
    static int Rest(std::FILE *in, std::FILE *out, int result) {
        LineFeed(out);
        for (int c; in != nullptr && (c = std::fgetc(in)) != EOF;)
            std::fputc(c, out);
        return Close(in, out, result);
    }

    static int Close(std::FILE *in, std::FILE *out, int result) {
        if (in != nullptr)
            std::fclose(in);
        std::fclose(out);
        return result;
    }

    static void LineFeed(std::FILE *out) {
        if (std::ftell(out) != 0)
            std::fputc('\n', out);
    }

    // Cuts a list that is too long: 3, else 0.
    static int EndList(IniAnswer &answer, int size) {
        const std::size_t limit = size > 0 ? static_cast<std::size_t>(size) - 1 : 0;
        const int result = answer.text.size() > limit ? 3 : 0;
        answer.text.resize(std::min(answer.text.size(), limit));
        answer.size = static_cast<int>(answer.text.size());
        return result;
    }
};

} // namespace zr::test

#endif
