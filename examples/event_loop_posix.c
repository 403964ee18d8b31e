/* Waits with poll: the pump's descriptor stands beside those of the application. */
#include <poll.h>

#include <zrclb/zrclb.h>

#include "event_loop.h"

void wait_for_events(int milliseconds) {
    struct pollfd items[1]; /* an application adds its sockets, its display, ... */
    items[0].fd = zrPumpDescriptor();
    items[0].events = POLLIN;
    items[0].revents = 0;
    poll(items, 1, milliseconds);
}
