// Faults of the system, preloaded into the program. FAULT holds the word "nameless": no file can be without a name;
// "kill": the program is killed when it gives a file its name; "memory": of what the library asks the heap for, only the
// first MEMORY blocks are given.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool asked(const char *fault)
{
    const char *wanted = std::getenv("FAULT");
    return wanted && std::strstr(wanted, fault);
}

// Whether the library itself has come here, from that address.
bool isLibrary(const void *caller)
{
    Dl_info place;
    return dladdr(caller, &place) != 0 && place.dli_fname && std::strstr(place.dli_fname, "libkrKGeneral");
}

bool isLeft()
{
    static long left = std::strtol(std::getenv("MEMORY"), nullptr, 10);
    return left-- > 0;
}

} // namespace

extern "C" __attribute__((visibility("default"))) void *malloc(std::size_t size) noexcept
{
    if (asked("memory") && isLibrary(__builtin_return_address(0)) && !isLeft())
        return nullptr;
    using Malloc = void *(*)(std::size_t);
    static const auto next = reinterpret_cast<Malloc>(dlsym(RTLD_NEXT, "malloc"));
    return next(size);
}

extern "C" __attribute__((visibility("default"))) int open(const char *path, int flags, ...)
{
    if ((flags & O_TMPFILE) == O_TMPFILE && asked("nameless")) {
        errno = EOPNOTSUPP;
        return -1;
    }
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    using Open = int (*)(const char *, int, ...);
    return reinterpret_cast<Open>(dlsym(RTLD_NEXT, "open"))(path, flags, mode);
}

extern "C" __attribute__((visibility("default"))) int linkat(int from, const char *path, int to, const char *name,
                                                             int flags)
{
    if (asked("kill"))
        std::raise(SIGKILL);
    using Link = int (*)(int, const char *, int, const char *, int);
    return reinterpret_cast<Link>(dlsym(RTLD_NEXT, "linkat"))(from, path, to, name, flags);
}
