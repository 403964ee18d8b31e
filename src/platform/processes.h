// Starting other programs.
#ifndef ZR_PLATFORM_PROCESSES_H
#define ZR_PLATFORM_PROCESSES_H

#include "platform/services.h"

namespace zr::platform {

// Starts the program that the command line names (command_line.h tells the rules) and doesn't wait for it. The line has
// at most `longest_command_line` characters and may be changed by the call. 0, or a code of system_error.h:
// file_not_found, access_denied, bad_program_format, ... The program gets the current folder, the environment and the
// standard streams, none of the process's other files. `show` is how the desktop shows the program's window at first.
//
// A name with a folder or drive is a path in the library's form. Others are looked for in the folder of the running
// program, the current folder, the system's own folders where there are such, and the folders of PATH. On Linux a name
// is the name as it is, without ".exe", and the program becomes a child of the system's first process, so that its end
// leaves nothing behind here. Threads: any, as long as none changes the environment.
inline int StartProgram(char *command_line, unsigned short show) {
    return services.start_program(command_line, show);
}

} // namespace zr::platform

#endif
