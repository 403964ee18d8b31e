// Work on a thread whose stack has a given size.
#ifndef TESTS_PLATFORM_POSIX_SMALL_STACK_H
#define TESTS_PLATFORM_POSIX_SMALL_STACK_H

#include <cstddef>
#include <stdexcept>

#include <pthread.h>

namespace zr::test {

// Returns when `work` has ended.
inline void RunOnStack(std::size_t size, void (*work)()) {
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    const bool started =
        pthread_attr_setstacksize(&attributes, size) == 0 && pthread_create(
                                                                 &thread, &attributes,
                                                                 [](void *argument) -> void * {
                                                                     reinterpret_cast<void (*)()>(argument)();
                                                                     return nullptr;
                                                                 },
                                                                 reinterpret_cast<void *>(work)) == 0;
    pthread_attr_destroy(&attributes);
    if (!started)
        throw std::runtime_error("no thread");
    pthread_join(thread, nullptr);
}

} // namespace zr::test

#endif
