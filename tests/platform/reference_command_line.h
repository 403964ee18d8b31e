// The rules of command lines, one character after the other, to hold the library's parser against.
#ifndef TESTS_PLATFORM_REFERENCE_COMMAND_LINE_H
#define TESTS_PLATFORM_REFERENCE_COMMAND_LINE_H

#include <string>
#include <utility>
#include <vector>

namespace reference {

inline bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

// The arguments of a line that has no program in front. A backslash waits until it is known what follows it.
inline std::vector<std::string> Arguments(const std::string &line) {
    std::vector<std::string> arguments;
    std::string argument;
    bool inside = false; // an argument
    bool quoted = false;
    int waiting = 0; // backslashes
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\') {
            inside = true;
            ++waiting;
            continue;
        }
        if (c == '"') {
            inside = true;
            argument.append(static_cast<std::size_t>(waiting / 2), '\\');
            const bool as_character = waiting % 2 == 1;
            waiting = 0;
            if (as_character) {
                argument += c;
            } else if (quoted && i + 1 < line.size() && line[i + 1] == '"') {
                argument += c;
                ++i;
            } else {
                quoted = !quoted;
            }
            continue;
        }
        argument.append(static_cast<std::size_t>(waiting), '\\');
        waiting = 0;
        if (!IsBlank(c) || quoted) {
            inside = true;
            argument += c;
        } else if (inside) {
            arguments.push_back(std::exchange(argument, ""));
            inside = false;
        }
    }
    argument.append(static_cast<std::size_t>(waiting), '\\');
    if (inside)
        arguments.push_back(argument);
    return arguments;
}

// What may name the program, each with the arguments that it would have.
inline std::vector<std::pair<std::string, std::string>> ProgramNames(const std::string &line) {
    if (!line.empty() && line[0] == '"') {
        std::string name;
        for (std::size_t i = 1; i < line.size() && line[i] != '"'; ++i)
            name += line[i];
        int quotes = 0;
        std::size_t end = 0;
        for (; end < line.size() && (quotes % 2 == 1 || !IsBlank(line[end])); ++end)
            quotes += line[end] == '"' ? 1 : 0;
        return {{name, line.substr(end)}};
    }
    std::vector<std::pair<std::string, std::string>> names;
    for (std::size_t i = 0; i <= line.size(); ++i)
        if (i == line.size() || IsBlank(line[i]))
            names.emplace_back(line.substr(0, i), line.substr(i));
    return names;
}

} // namespace reference

#endif
