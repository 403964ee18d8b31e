// A re-entrant lock: the thread that holds it may enter again and leaves as often as it entered.
#ifndef ZR_PLATFORM_LOCKS_H
#define ZR_PLATFORM_LOCKS_H

#include <cstddef>

namespace zr::platform {

// A lock is made and unmade by calls rather than by its constructor, because load and unload decide when. A static lock
// needs no run-time initialisation. On a lock that isn't made, Enter, Leave and Delete do nothing.
// Threads: Create and Delete from one thread while no other uses the lock; Enter and Leave from any.
class Lock {
public:
    constexpr Lock() = default;
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

    void Create(); // nothing if it is made already
    void Delete(); // must not be held; can be made again afterwards
    void Enter();  // waits while another thread holds it
    void Leave();  // once for every Enter, by the same thread

private:
    alignas(std::max_align_t) unsigned char m_storage[48] = {}; // the system's lock, while m_created
    bool m_created = false;
};

// Holds a lock for the life of the guard.
class LockGuard {
public:
    explicit LockGuard(Lock &lock) : m_lock(lock) { m_lock.Enter(); }
    ~LockGuard() { m_lock.Leave(); }
    LockGuard(const LockGuard &) = delete;
    LockGuard &operator=(const LockGuard &) = delete;

private:
    Lock &m_lock;
};

} // namespace zr::platform

#endif
