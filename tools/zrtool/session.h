// What every verb of the tool is given: where to print, how texts are shown, and the exit codes that scripts rely on.
#ifndef ZRTOOL_SESSION_H
#define ZRTOOL_SESSION_H

#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zrtool {

enum ExitCode : int {
    Done = 0,
    NotFound = 1,    // no such section, element or value
    BadUsage = 2,    // the command line cannot be carried out as written
    BadData = 3,     // a file was read, and its text is wrong
    InputOutput = 4, // a file could not be read or written
};

// Ends a verb: the message goes to the error stream, the code to the caller of the program.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string &message) : std::runtime_error(message), code(exitCode) {}

    ExitCode code;
};

// Texts of the library are bytes in code page 1252. They pass unchanged, unless `utf8` asks for a translation at the
// edge: command line to code page, code page to output.
struct Session {
    std::ostream &out;
    std::ostream &err;
    bool utf8 = false;

    // A word of the command line as the library takes it. Failure with BadUsage when code page 1252 lacks a letter.
    std::string FromUser(const std::string &word) const;

    // A text of the library as the user sees it.
    std::string ToUser(std::string_view text) const;
};

} // namespace zrtool

#endif
