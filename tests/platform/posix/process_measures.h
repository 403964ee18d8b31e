// What the process holds.
#ifndef TESTS_PLATFORM_POSIX_PROCESS_MEASURES_H
#define TESTS_PLATFORM_POSIX_PROCESS_MEASURES_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <malloc.h>
#include <pthread.h>
#include <unistd.h>

// The compilers tell of it in different ways.
#if defined(__SANITIZE_ADDRESS__)
#define ZR_ADDRESS_SANITIZER true
#elif defined(__has_feature)
#define ZR_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#else
#define ZR_ADDRESS_SANITIZER false
#endif

struct ProcessMeasures {
    long long handles = 0;  // open descriptors
    long long mappings = 0; // pieces of the address space
    long long space = 0;    // their bytes
    long long heap = 0;     // bytes that are allocated
    long long keys = 0;     // the next key of thread storage

    // The address sanitizer keeps what is freed for a while, so the address space tells nothing; it looks for leaks itself.
    static constexpr bool space_tells_leaks = !ZR_ADDRESS_SANITIZER;

    static ProcessMeasures Now() {
        ProcessMeasures now;
        const auto used = mallinfo2();
        now.heap = static_cast<long long>(used.uordblks + used.hblkhd);
        pthread_key_t key;
        if (pthread_key_create(&key, nullptr) == 0) {
            now.keys = key;
            pthread_key_delete(key);
        }
        std::ifstream("/proc/self/statm") >> now.space;
        now.space *= sysconf(_SC_PAGESIZE);
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);)
            ++now.mappings;
        maps.close();
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        now.handles = std::distance(begin(descriptors), end(descriptors));
        return now;
    }
};

#endif
