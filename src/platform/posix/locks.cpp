// Re-entrant lock on a recursive mutex.
#include "platform/locks.h"

#include <new>

#include <pthread.h>

namespace zr::platform {

namespace {

pthread_mutex_t *Mutex(unsigned char *storage) {
    return std::launder(reinterpret_cast<pthread_mutex_t *>(storage));
}

} // namespace

void Lock::Create() {
    static_assert(sizeof(pthread_mutex_t) <= sizeof m_storage && alignof(pthread_mutex_t) <= alignof(std::max_align_t));
    if (m_created)
        return;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    m_created = pthread_mutex_init(new (m_storage) pthread_mutex_t, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
}

void Lock::Delete() {
    if (m_created)
        pthread_mutex_destroy(Mutex(m_storage));
    m_created = false;
}

void Lock::Enter() {
    if (m_created)
        pthread_mutex_lock(Mutex(m_storage));
}

void Lock::Leave() {
    if (m_created)
        pthread_mutex_unlock(Mutex(m_storage));
}

} // namespace zr::platform
