// The reader of the text format in its plainest form: one character at a time through all levels, nesting by recursion.
// What the library's reader gives is compared with this.
#ifndef ZR_TESTS_ENV_REFERENCE_READER_H
#define ZR_TESTS_ENV_REFERENCE_READER_H

#include <algorithm>
#include <cstring>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "env/text_tree.h"

namespace text_test {

// What a text stream delivers of a file: CR LF as LF, nothing from byte 0x1A on.
inline std::string AsTextStreamReads(const std::string &bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size() && bytes[i] != '\x1A'; ++i)
        if (bytes[i] != '\r' || i + 1 == bytes.size() || bytes[i + 1] != '\n')
            text += bytes[i];
    return text;
}

inline std::string Report(const std::string &text1, const std::optional<std::string> &text2 = {},
                          const std::optional<std::string> &text3 = {}) {
    return text1 + (text2 ? "|" + *text2 : "") + (text3 ? "|" + *text3 : "");
}

class ReferenceReader {
public:
    int result = 0;
    Tree sections;
    std::vector<std::string> reports;
    int line = 1; // where it failed
    int column = 1;

    // Reads what a stream delivers, or a string.
    ReferenceReader(std::string text, bool fromStream, EEnvReadMode readMode, std::string name)
        : bytes(std::move(text)), stream(fromStream), mode(readMode), fileName(std::move(name)) {
        const std::size_t limit = stream ? 254 : 255;
        std::size_t length = 0;
        while (length < limit && length < bytes.size() && bytes[length] != '\n')
            ++length;
        const bool lineFeed = length < bytes.size() && bytes[length] == '\n' && (!stream || length < limit);
        const bool modeLine = bytes.compare(0, 20, "__ZR_ENV_READ_MODE__") == 0;
        if (mode == eEnvReadAuto)
            mode = modeLine ? eEnvReadNotWrapped : eEnvReadWrapped;
        if (modeLine)
            position = filled = length + (lineFeed ? 1 : 0);
        if (!stream)
            filled = bytes.size();

        int c = GetChar();
        while (c != '[' && c != -1)
            c = GetChar();
        pushedBack = c;
        Fetch();
        ParseSections();
        result = error;
        FindPlace();
    }

private:
    enum {
        TokenSection = 1,
        TokenEqual,
        TokenName,
        TokenBlockEnd,
        TokenEnd
    };

    int Refill() {
        filled = std::min(bytes.size(), filled + 30000);
        ended = position == filled;
        return ended ? -1 : static_cast<unsigned char>(bytes[position++]);
    }
    int GetRawChar() {
        if (position == filled)
            return Refill();
        if (bytes[position++] != '\r')
            return static_cast<unsigned char>(bytes[position - 1]);
        if (position == filled)
            return Refill();
        return static_cast<unsigned char>(bytes[position++]);
    }
    int GetLineChar() {
        int c = GetRawChar();
        if (c == -1)
            return -1;
        if (atLineStart && c == ';') {
            do
                c = GetRawChar();
            while (c != '\n' && c != -1);
            atLineStart = c == '\n';
            return c;
        }
        if (c == '\n') {
            atLineStart = true;
            return c;
        }
        if (atLineStart && (c == ' ' || c == '\t'))
            return c;
        atLineStart = false;
        return c;
    }
    int TakePending() {
        const int c = pending.front();
        pending.pop_front();
        return c;
    }
    int GetChar() {
        for (;;) {
            if (pushedBack != 0) {
                const int c = pushedBack;
                pushedBack = 0;
                return c;
            }
            if (!pending.empty())
                return TakePending();
            const int c = GetLineChar();
            if (c != '\\' || mode == eEnvReadNotWrapped)
                return c;
            pending.push_back('\\');
            int d = GetLineChar();
            if (d == '\\') {
                do {
                    d = GetLineChar();
                    if (d == '\n') {
                        pending.push_back('\n');
                        return TakePending();
                    }
                    pending.push_back('\\');
                } while (d == '\\');
            }
            while (d == ' ') {
                pending.push_back(' ');
                d = GetLineChar();
            }
            if (d != '\n') {
                pending.push_back(d);
                continue;
            }
            pending.clear();
            atLineStart = false;
        }
    }
    int GetNonBlankChar() {
        int c;
        do
            c = GetChar();
        while (c == ' ' || c == '\t');
        return c;
    }
    int AccumulateString(std::string &out, int first, int terminator) {
        out.clear();
        if (first == terminator)
            return terminator;
        if (first != 0 && first != -1)
            out += static_cast<char>(first);
        signed char c;
        for (;;) {
            c = static_cast<signed char>(GetChar());
            if (c == terminator || c == -1)
                break;
            out += static_cast<char>(c);
        }
        out.resize(std::strlen(out.c_str()));
        while (!out.empty() && (out.back() == ' ' || out.back() == '\t'))
            out.pop_back();
        return c;
    }
    void Fetch() {
        int c;
        do
            c = GetNonBlankChar();
        while (c == '\n');
        if (c == '=')
            token = TokenEqual;
        else if (c == '[')
            token = TokenSection;
        else if (c == '}')
            token = TokenBlockEnd;
        else if (c == -1)
            token = TokenEnd;
        else {
            pushedBack = AccumulateString(tokenText, c, '=');
            token = TokenName;
        }
    }
    static void ReplaceAll(std::string &text, const std::string &from, const std::string &to) {
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
            text.replace(at, from.size(), to);
    }

    void ParseSections() {
        error = 0;
        std::optional<Node> section = ParseSection();
        while (section && error == 0) {
            sections.push_back(*section);
            section = ParseSection();
        }
    }
    std::optional<Node> ParseSection() {
        if (token == TokenEnd)
            return {};
        if (token != TokenSection) {
            reports.push_back(Report("Section expected", fileName));
            error = -5;
            return {};
        }
        Node section = Section("", {});
        AccumulateString(*section.name, GetNonBlankChar(), ']');
        Fetch();
        if (ParseBlockBody(section))
            return section;
        reports.push_back(Report("Fehler beim Lesen der Sektion:", section.name, fileName));
        return {};
    }
    bool ParseBlockBody(Node &block) {
        for (;;) {
            std::optional<Node> element = ParseElement();
            if (!element)
                return error == 0;
            if (error != 0)
                return false;
            block.children.push_back(std::move(*element));
        }
    }
    std::optional<Node> ParseElement() {
        if (token != TokenName)
            return {};
        const std::string name = tokenText;
        Fetch();
        if (token != TokenEqual) {
            reports.push_back(Report("Equal sign expected", fileName));
            error = -5;
            return {};
        }
        const int c = GetNonBlankChar();
        if (c != '{') {
            Node data = Data(name, "");
            AccumulateString(*data.value, c, '\n');
            ReplaceAll(*data.value, "<<\\n>>", "\n");
            ReplaceAll(*data.value, "<<\\r>>", "\r");
            Fetch();
            return data;
        }
        Fetch();
        Node block = Block(name, {});
        if (!ParseBlockBody(block))
            return block;
        if (token == TokenBlockEnd) {
            Fetch();
            return block;
        }
        reports.push_back(Report("Cbracesymbol expected", fileName));
        error = -5;
        return block;
    }
    void FindPlace() {
        const std::size_t end = ended || position == 0 ? position : position - 1;
        for (std::size_t i = 0; i < end; ++i) {
            ++column;
            if (bytes[i] == '\n') {
                ++line;
                column = 1;
            }
        }
    }

    std::string bytes;
    bool stream;
    EEnvReadMode mode;
    std::string fileName;
    std::size_t position = 0;
    std::size_t filled = 0;
    bool ended = false;
    bool atLineStart = true;
    std::deque<int> pending;
    int pushedBack = 0;
    int token = TokenEnd;
    std::string tokenText;
    int error = 0;
};

} // namespace text_test

#endif
