// A shared library, loaded while the object lives.
#ifndef TESTS_PLATFORM_POSIX_LOADED_LIBRARY_H
#define TESTS_PLATFORM_POSIX_LOADED_LIBRARY_H

#include <stdexcept>
#include <string>

#include <dlfcn.h>

class LoadedLibrary {
public:
    explicit LoadedLibrary(const std::string &path) : m_library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (m_library == nullptr)
            throw std::runtime_error(dlerror());
    }
    ~LoadedLibrary() { dlclose(m_library); }
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    template <class Function>
    Function Get(const char *name) const {
        void *function = dlsym(m_library, name);
        if (function == nullptr)
            throw std::runtime_error(std::string("no function ") + name);
        return reinterpret_cast<Function>(function);
    }

    // Whether the library is in the process.
    static bool IsLoaded(const std::string &path) {
        void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (library != nullptr)
            dlclose(library);
        return library != nullptr;
    }

private:
    void *m_library;
};

#endif
