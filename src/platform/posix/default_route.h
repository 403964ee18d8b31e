// The table of the machine's routes, as the kernel writes it.
#ifndef ZR_PLATFORM_POSIX_DEFAULT_ROUTE_H
#define ZR_PLATFORM_POSIX_DEFAULT_ROUTE_H

namespace zr::platform::posix {

// Whether the table in the file (/proc/net/route) has a route to everywhere that is up and doesn't refuse. False
// without the file.
bool HasDefaultRoute(const char *file);

} // namespace zr::platform::posix

#endif
