// Re-entrant lock on a critical section.
#include "platform/locks.h"

#include <new>

#include <windows.h>

namespace zr::platform {

namespace {

CRITICAL_SECTION *Section(unsigned char *storage) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION *>(storage));
}

} // namespace

void Lock::Create() {
    static_assert(sizeof(CRITICAL_SECTION) <= sizeof m_storage &&
                  alignof(CRITICAL_SECTION) <= alignof(std::max_align_t));
    if (!m_created)
        InitializeCriticalSection(new (m_storage) CRITICAL_SECTION);
    m_created = true;
}

void Lock::Delete() {
    if (m_created)
        DeleteCriticalSection(Section(m_storage));
    m_created = false;
}

void Lock::Enter() {
    if (m_created)
        EnterCriticalSection(Section(m_storage));
}

void Lock::Leave() {
    if (m_created)
        LeaveCriticalSection(Section(m_storage));
}

} // namespace zr::platform
