// The one lock of all environments, as the env_ functions take it.
#ifndef ZR_ENV_ENV_LOCK_H
#define ZR_ENV_ENV_LOCK_H

#include "platform/locks.h"

namespace zr::env {

// Re-entrant. Made when the library is loaded and unmade when it is unloaded; before and after, entering does nothing.
platform::Lock &Section();

// Holds the lock from its making to its end.
class SectionGuard {
public:
    SectionGuard() : m_guard(Section()) {}

private:
    platform::LockGuard m_guard;
};

} // namespace zr::env

#endif
