// A shared library, loaded while the object lives.
#ifndef TESTS_PLATFORM_WIN32_LOADED_LIBRARY_H
#define TESTS_PLATFORM_WIN32_LOADED_LIBRARY_H

#include <stdexcept>
#include <string>

#include <windows.h>

class LoadedLibrary {
public:
    explicit LoadedLibrary(const std::string &path) : m_library(LoadLibraryA(path.c_str())) {
        if (m_library == nullptr)
            throw std::runtime_error("can't load " + path);
    }
    ~LoadedLibrary() { FreeLibrary(m_library); }
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    template <class Function>
    Function Get(const char *name) const {
        void *function = reinterpret_cast<void *>(GetProcAddress(m_library, name));
        if (function == nullptr)
            throw std::runtime_error(std::string("no function ") + name);
        return reinterpret_cast<Function>(function);
    }

    // Whether the library is in the process.
    static bool IsLoaded(const std::string &path) { return GetModuleHandleA(path.c_str()) != nullptr; }

private:
    HMODULE m_library;
};

#endif
