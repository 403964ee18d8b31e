// What the functions on single elements share with the other env_ functions.
#ifndef ZR_ENV_FUNCTIONS_ACCESS_H
#define ZR_ENV_FUNCTIONS_ACCESS_H

#include <zrclb/env.h>

namespace zr::env {

// The step behind env_put and env_put_string. ext_data must be null: it is refused with zr_message and ENV_ERROR. An empty
// path gives zr_error and ENV_EMPTY_PATH.
int env_put_core(zr_env env, const char *section, const char *path, const char *text, const void *ext_data) noexcept;

// Ends the iteration of a handle, if there is one. The caller holds the lock.
void ForgetIteration(zr_env env) noexcept;

} // namespace zr::env

#endif
