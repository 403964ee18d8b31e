// The lines of a settings file, straight from its blocks.
#include "settings/ini_lines.h"

#include <algorithm>
#include <cstring>

namespace zr::settings {

namespace {

constexpr char end_of_text = 0x1A;

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

const char *Find(const char *from, const char *end, char c) {
    return static_cast<const char *>(std::memchr(from, c, static_cast<std::size_t>(end - from)));
}

// Behind the last line feed of from..end-1; `from` if there is none.
const char *LineStart(const char *from, const char *end) {
    while (end != from && end[-1] != '\n')
        --end;
    return end;
}

std::string_view Text(const char *from, const char *end) {
    return {from, static_cast<std::size_t>(end - from)};
}

} // namespace

std::string_view Trimmed(std::string_view text) {
    const char *from = text.data();
    const char *end = from + text.size();
    while (from != end && IsBlank(*from))
        ++from;
    while (from != end && IsBlank(end[-1]))
        --end;
    return Text(from, end);
}

std::string_view HeaderName(std::string_view line) {
    return Trimmed(line.substr(1, line.find(']') - 1));
}

bool IniLines::Open(const char *path) {
    m_ended = m_failed = false;
    m_wanted = first_block_size;
    m_at = m_end = m_buffer;
    if (m_file.Open(path) && !Fill() && m_failed) {
        m_file.Close();
        m_failed = false;
    }
    return IsOpen();
}

// Puts the next block behind what is left of the last one, which is less than a line. False if there is none.
bool IniLines::Fill() {
    if (m_ended)
        return false;
    const std::size_t left = Available();
    std::memmove(m_buffer, m_at, left);
    m_at = m_buffer;
    char *const block = m_buffer + left;
    const std::ptrdiff_t count = m_file.Read(block, m_wanted);
    m_wanted = block_size;
    m_end = block + std::max<std::ptrdiff_t>(count, 0);
    m_failed = count < 0;
    const char *end = Find(block, m_end, end_of_text);
    m_ended = count <= 0 || end != nullptr;
    if (end != nullptr)
        m_end = end;
    return m_end != block;
}

// The next line as it is read, without its line end. False at the end of the file.
bool IniLines::NextPhysical(std::string_view &line) {
    for (;;) {
        const std::size_t looked = std::min(Available(), line_bytes);
        const char *const feed = Find(m_at, m_at + looked, '\n');
        if (feed != nullptr) {
            const char *const end = feed != m_at && feed[-1] == '\r' ? feed - 1 : feed;
            if (static_cast<std::size_t>(end - m_at) < line_size) {
                line = Text(m_at, end);
                m_at = feed + 1;
                return true;
            }
        }
        if (looked == line_bytes || feed != nullptr) {
            line = Text(m_at, m_at + line_size);
            m_at += line_size;
            return true;
        }
        if (!Fill())
            break;
    }
    line = Text(m_at, m_end);
    m_at = m_end;
    return !line.empty();
}

bool IniLines::Next(std::string_view &line) {
    while (NextPhysical(line)) {
        line = Trimmed(line.substr(0, line.find('\0')));
        if (!line.empty())
            return true;
    }
    return false;
}

// The start of the next line, or null if this one isn't plain or not all in memory.
const char *IniLines::BehindPlainLine(const char *line) const {
    if (line == m_end || IsBlank(*line) || *line == ';' || *line == '[')
        return nullptr;
    const char *const feed = Find(line, m_end, '\n');
    const bool is_plain =
        feed != nullptr && feed[-1] == '\r' && !IsBlank(feed[-2]) && static_cast<std::size_t>(feed - line) <= line_size;
    return is_plain ? feed + 1 : nullptr;
}

std::string_view IniLines::PlainLines() {
    constexpr std::ptrdiff_t enough = 1024; // to be put at once; a zero byte in it is looked for again for each line
    const char *const from = m_at;
    const char *end = from;
    for (const char *next; end - from < enough && (next = BehindPlainLine(end)) != nullptr;)
        end = next;
    const char *const nul = Find(from, end, 0);
    m_at = nul != nullptr ? LineStart(from, nul) : end;
    return m_at != from ? Text(from, m_at - 2) : std::string_view();
}

// No line in memory can be a header: leaves only the last one, which the file may go on with.
void IniLines::DropSearched() {
    m_at = LineStart(m_at, m_end);
    while (Available() >= line_bytes)
        m_at += line_size;
}

// Goes to a line not behind the next one that holds a "[". False if none does.
bool IniLines::GoToNextBracket() {
    for (;;) {
        const char *const bracket = Find(m_at, m_end, '[');
        if (bracket != nullptr) {
            m_at = LineStart(m_at, bracket);
            return true;
        }
        DropSearched();
        if (!Fill())
            return false;
    }
}

bool IniLines::NextHeader(std::string_view &name) {
    std::string_view line;
    while (GoToNextBracket() && Next(line)) {
        if (line[0] == '[') {
            name = HeaderName(line);
            return true;
        }
    }
    return false;
}

std::string_view IniLines::Rest() {
    if (Available() == 0)
        Fill();
    const char *const from = m_at;
    m_at = m_end;
    return Text(from, m_end);
}

} // namespace zr::settings
