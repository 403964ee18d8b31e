// Command lines by the rules of the desktop system.
#include "platform/command_line.h"

#include <algorithm>
#include <cstring>

namespace zr::platform {

namespace {

constexpr char blanks[] = " \t";

bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}

// Where the first word ends, whose quotes need no blank behind them to close. No backslash counts in it.
std::size_t FirstWordEnd(std::string_view line) {
    bool quoted = false;
    std::size_t pos = 0;
    for (; pos < line.size() && (quoted || !IsBlank(line[pos])); ++pos) {
        if (line[pos] == '"')
            quoted = !quoted;
    }
    return pos;
}

} // namespace

bool ProgramNames::NextQuoted(std::string_view &name, std::string_view &arguments) {
    m_done = true;
    const std::string_view inside = m_line.substr(1);
    name = inside.substr(0, inside.find('"'));
    arguments = m_line.substr(FirstWordEnd(m_line));
    return true;
}

bool ProgramNames::Next(std::string_view &name, std::string_view &arguments) {
    if (m_done)
        return false;
    if (m_line.starts_with('"'))
        return NextQuoted(name, arguments);
    m_end = std::min(m_line.find_first_of(blanks, m_end), m_line.size());
    name = m_line.substr(0, m_end);
    arguments = m_line.substr(m_end);
    m_done = m_end == m_line.size();
    ++m_end;
    return true;
}

void ArgumentList::Begin() {
    m_values[m_count++] = m_text + m_length;
}

// Takes the argument that begins at `pos`, and answers where it ends.
std::size_t ArgumentList::TakeArgument(std::string_view line, std::size_t pos) {
    bool quoted = false;
    Begin();
    while (pos < line.size() && (quoted || !IsBlank(line[pos]))) {
        const std::size_t behind = std::min(line.find_first_not_of('\\', pos), line.size());
        const std::size_t backslashes = behind - pos;
        pos = behind;
        const bool before_quote = pos < line.size() && line[pos] == '"';
        for (std::size_t i = 0; i < (before_quote ? backslashes / 2 : backslashes); ++i)
            Put('\\');
        if (!before_quote) {
            if (backslashes == 0)
                Put(line[pos++]);
            continue;
        }
        const bool doubled = quoted && backslashes % 2 == 0 && line.substr(pos).starts_with("\"\"");
        if (backslashes % 2 != 0 || doubled)
            Put('"');
        else
            quoted = !quoted;
        pos += doubled ? 2 : 1;
    }
    Put(0);
    return pos;
}

bool ArgumentList::Split(std::string_view program, std::string_view arguments) {
    m_length = 0;
    m_count = 0;
    m_values[0] = nullptr;
    if (program.size() > longest_command_line || arguments.size() > longest_command_line)
        return false;
    Begin();
    std::memcpy(m_text, program.data(), program.size());
    m_length = program.size();
    Put(0);
    std::size_t pos = 0;
    while ((pos = arguments.find_first_not_of(blanks, pos)) != std::string_view::npos)
        pos = TakeArgument(arguments, pos);
    m_values[m_count] = nullptr;
    return true;
}

} // namespace zr::platform
