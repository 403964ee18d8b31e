// Command lines by the rules of the desktop system: which part names the program, and what its arguments are.
#ifndef ZR_PLATFORM_COMMAND_LINE_H
#define ZR_PLATFORM_COMMAND_LINE_H

#include <cstddef>
#include <string_view>

namespace zr::platform {

inline constexpr std::size_t longest_command_line = 1023;

// The beginnings of a command line that may name its program, in the order in which they are tried: the text between a
// quote at the very start and the next one (or the line's end), and nothing else; else each beginning that ends in
// front of a blank or tab, and the whole line.
class ProgramNames {
public:
    explicit ProgramNames(std::string_view line) : m_line(line) {}

    // The next one; false when there are no more. `arguments` is what follows it and the characters glued to its
    // closing quote.
    bool Next(std::string_view &name, std::string_view &arguments);

private:
    bool NextQuoted(std::string_view &name, std::string_view &arguments);

    std::string_view m_line;
    std::size_t m_end = 0; // where the last one ended
    bool m_done = false;
};

// The arguments of a program. Blanks and tabs part them, except between quotes. A quote in front of which stand 2n
// backslashes opens or closes, and n of them remain; in front of which stand 2n+1, it is a quote like any character,
// with n backslashes in front. Other backslashes stand for themselves. Between quotes two quotes in a row are one
// quote, and the text goes on.
class ArgumentList {
public:
    // `program` becomes the first argument as it is. False if program or `arguments` have more than
    // `longest_command_line` characters.
    bool Split(std::string_view program, std::string_view arguments);

    std::size_t Count() const { return m_count; }

    // The arguments, Count() of them, and a null behind the last; valid while this lives unchanged.
    char *const *Values() { return m_values; }

private:
    void Begin();
    std::size_t TakeArgument(std::string_view line, std::size_t pos);
    void Put(char character) { m_text[m_length++] = character; }

    // Each argument behind the first takes two characters at least, one of them the blank in front.
    static constexpr std::size_t longest_list = 1 + longest_command_line / 2 + 1;

    char m_text[longest_command_line + 1 + longest_command_line + 1] = {};
    char *m_values[longest_list + 1] = {};
    std::size_t m_length = 0;
    std::size_t m_count = 0;
};

} // namespace zr::platform

#endif
