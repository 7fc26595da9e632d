// The library, loaded by a test that isn't linked to it and so can unload it.
#ifndef KAR_TEST_LOADED_LIBRARY_H
#define KAR_TEST_LOADED_LIBRARY_H

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

/// Loads the library, and unloads it when it dies.
class Library {
public:
    Library()
    {
#if defined(_WIN32)
        handle = LoadLibraryA("libkrKGeneral.dll"); // beside the program
#else
        handle = dlopen(KAR_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
#endif
    }
    ~Library()
    {
#if defined(_WIN32)
        FreeLibrary(handle);
#else
        dlclose(handle);
#endif
    }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    static bool isLoaded()
    {
#if defined(_WIN32)
        return GetModuleHandleA("libkrKGeneral.dll") != nullptr;
#else
        void *const handle = dlopen(KAR_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
        if (handle)
            dlclose(handle);
        return handle != nullptr;
#endif
    }

    /// The bytes of its file.
    static std::string contents()
    {
        std::string bytes;
        if (std::FILE *const file = std::fopen(KAR_LIBRARY_FILE, "rb")) {
            char part[65536];
            while (const std::size_t size = std::fread(part, 1, sizeof part, file))
                bytes.append(part, size);
            std::fclose(file);
        }
        return bytes;
    }

    template <class T>
    T symbol(const char *name) const
    {
#if defined(_WIN32)
        const auto address = GetProcAddress(handle, name);
#else
        void *const address = dlsym(handle, name);
#endif
        T result = nullptr;
        static_assert(sizeof result == sizeof address, "an address");
        std::memcpy(&result, &address, sizeof result);
        return result;
    }

private:
#if defined(_WIN32)
    HMODULE handle;
#else
    void *handle;
#endif
};

#endif
