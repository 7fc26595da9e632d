// Faults of the system, preloaded into the program. FAULT holds the word "nameless": no file can be without a name;
// "kill": the program is killed when it gives a file its name.
#include <cerrno>
#include <csignal>
#include <cstdarg>
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

} // namespace

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
