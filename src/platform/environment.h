// Changing the environment variables of the process.
#ifndef ZR_PLATFORM_ENVIRONMENT_H
#define ZR_PLATFORM_ENVIRONMENT_H

namespace zr::platform {

// Sets the variable, whose name has a character and no "="; an empty value removes it, or leaves it missing. 0 or an
// error number of the C library. Threads: while no other one asks for variables.
int SetVariable(const char *name, const char *value);

} // namespace zr::platform

#endif
