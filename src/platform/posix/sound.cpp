// The bell of the terminal.
#include "platform/sound.h"

#include <fcntl.h>
#include <unistd.h>

namespace zr::platform {

int backend::SimpleSound() {
    const int terminal = open("/dev/tty", O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (terminal < 0)
        return 0;
    const bool done = write(terminal, "\a", 1) == 1;
    close(terminal);
    return done ? 1 : 0;
}

} // namespace zr::platform
