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

    bool no_header_yet = true;

protected:
    static void LineFeed(std::FILE *out) {
        if (std::ftell(out) != 0)
            std::fputc('\n', out);
    }

private:
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
