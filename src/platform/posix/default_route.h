// The tables of the machine's routes, as the kernel writes them.
#ifndef ZR_PLATFORM_POSIX_DEFAULT_ROUTE_H
#define ZR_PLATFORM_POSIX_DEFAULT_ROUTE_H

namespace zr::platform::posix {

// Whether the table in the file has a route to everywhere that is up and doesn't refuse; the first is the form of
// /proc/net/route, the second that of /proc/net/ipv6_route. False without the file.
bool HasDefaultRoute(const char *file);
bool HasDefaultRouteIpv6(const char *file);

} // namespace zr::platform::posix

#endif
