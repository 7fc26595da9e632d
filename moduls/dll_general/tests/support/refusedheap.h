// The system refuses memory to the library: one request, or all from one on. For a program of a single source, as it
// stands in front of the C library's malloc; on Windows it stands in the library's table of imports.
#ifndef KAR_TEST_REFUSED_HEAP_H
#define KAR_TEST_REFUSED_HEAP_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cstdio>
#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <set>
#include <string>
#endif

/// Which requests of the library the system refuses while `armed`. Requests of anyone else are neither counted nor
/// refused.
struct RefusedHeap {
    /// The tables behind the pools take cleared memory, all else is blocks. What isn't meant is granted
    /// and not counted.
    enum Kind {
        everything,
        blocks,
        tables
    };

    bool armed = false;
    Kind kind = everything;
    unsigned first = 0;   ///< The request refused first, from 1 on; 0 for none.
    bool onwards = false; ///< All that follow are refused too.

    unsigned requests = 0; ///< Since the start of the plan.
    unsigned refused = 0;
    void *granted[4096] = {}; ///< Blocks that the library got.
    unsigned grantedCount = 0;
    long held = 0; ///< Blocks of the whole program that aren't released yet; not counted on Windows.

    void start(unsigned refusedFirst, bool andOnwards, Kind ofKind)
    {
        first = refusedFirst;
        onwards = andOnwards;
        kind = ofKind;
        requests = refused = 0;
        grantedCount = 0;
    }
    bool means(Kind request) const { return kind == everything || kind == request; }
    bool refuses()
    {
        ++requests;
        const bool result = first > 0 && (requests == first || (onwards && requests > first));
        refused += result;
        return result;
    }
    void note(void *p)
    {
        if (p && grantedCount < sizeof granted / sizeof *granted)
            granted[grantedCount++] = p;
    }
};
inline RefusedHeap refusedHeap;

#if defined(_WIN32)

namespace refusedheap {

inline HGLOBAL WINAPI globalAlloc(UINT flags, SIZE_T size)
{
    return refusedHeap.armed && refusedHeap.means(RefusedHeap::blocks) && refusedHeap.refuses()
               ? nullptr
               : GlobalAlloc(flags, size);
}
inline LPVOID WINAPI globalLock(HGLOBAL handle)
{
    void *const p = GlobalLock(handle);
    if (refusedHeap.armed)
        refusedHeap.note(p);
    return p;
}
inline void *allocate(std::size_t size)
{
    return refusedHeap.armed && refusedHeap.means(RefusedHeap::blocks) && refusedHeap.refuses() ? nullptr
                                                                                                : std::malloc(size);
}
inline void *allocateCleared(std::size_t count, std::size_t size)
{
    return refusedHeap.armed && refusedHeap.means(RefusedHeap::tables) && refusedHeap.refuses()
               ? nullptr
               : std::calloc(count, size);
}

inline void replace(unsigned char *slot, const char *name)
{
    const struct {
        const char *name;
        std::uintptr_t function;
    } replacements[] = {{"GlobalAlloc", reinterpret_cast<std::uintptr_t>(&globalAlloc)},
                        {"GlobalLock", reinterpret_cast<std::uintptr_t>(&globalLock)},
                        {"malloc", reinterpret_cast<std::uintptr_t>(&allocate)},
                        {"calloc", reinterpret_cast<std::uintptr_t>(&allocateCleared)}};
    for (const auto &replacement : replacements) {
        if (std::strcmp(name, replacement.name) != 0)
            continue;
        DWORD before;
        VirtualProtect(slot, sizeof replacement.function, PAGE_READWRITE, &before);
        std::memcpy(slot, &replacement.function, sizeof replacement.function);
        VirtualProtect(slot, sizeof replacement.function, before, &before);
    }
}

template <class T>
T at(const unsigned char *base, std::size_t offset)
{
    T value;
    std::memcpy(&value, base + offset, sizeof value);
    return value;
}

/// Puts the functions above in the place of those that the library imports.
inline bool install()
{
    auto *const base = reinterpret_cast<unsigned char *>(GetModuleHandleA("libkrKGeneral.dll"));
    if (!base)
        return false;
    const auto start = static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(base, 0).e_lfanew);
    const auto header = at<IMAGE_NT_HEADERS>(base, start);
    std::size_t table = header.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (;; table += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto library = at<IMAGE_IMPORT_DESCRIPTOR>(base, table);
        if (!library.Name)
            return true;
        for (std::size_t i = 0;; i += sizeof(std::uintptr_t)) {
            const auto name = at<std::uintptr_t>(base, library.OriginalFirstThunk + i);
            if (!name)
                break;
            if (!(name >> (8 * sizeof name - 1))) // not by number
                replace(base + library.FirstThunk + i, reinterpret_cast<const char *>(base + name + 2));
        }
    }
}
inline const bool installed = install();

} // namespace refusedheap

#else

namespace refusedheap {

struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
};

inline int findLibrary(dl_phdr_info *object, std::size_t, void *range)
{
    if (!std::strstr(object->dlpi_name, "libkrKGeneral"))
        return 0;
    Range &found = *static_cast<Range *>(range);
    found.begin = object->dlpi_addr;
    for (int i = 0; i < object->dlpi_phnum; ++i)
        if (object->dlpi_phdr[i].p_type == PT_LOAD)
            found.end = object->dlpi_addr + object->dlpi_phdr[i].p_vaddr + object->dlpi_phdr[i].p_memsz;
    return 1;
}

inline bool inLibrary(const void *address)
{
    static const Range range = [] {
        Range found;
        dl_iterate_phdr(findLibrary, &found);
        return found;
    }();
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    return place >= range.begin && place < range.end;
}

/// The exported functions on whose behalf a request was refused, for the file that KAR_REFUSED_LIST names. Whole only
/// in a build without optimisation, where each function has a frame.
class Refusals {
public:
    ~Refusals()
    {
        std::FILE *const file = path ? std::fopen(path, "w") : nullptr;
        if (!file)
            return;
        for (const std::string &name : names)
            std::fprintf(file, "%s\n", name.c_str());
        std::fclose(file);
    }
    void add()
    {
        if (!path)
            return;
        void *frames[64];
        const int count = backtrace(frames, 64);
        for (int i = 0; i < count; ++i) {
            Dl_info info;
            void *extra = nullptr;
            if (!inLibrary(frames[i]) || !dladdr1(frames[i], &info, &extra, RTLD_DL_SYMENT) || !info.dli_sname)
                continue;
            const auto offset =
                reinterpret_cast<std::uintptr_t>(frames[i]) - reinterpret_cast<std::uintptr_t>(info.dli_saddr);
            if (offset <= static_cast<const ElfW(Sym) *>(extra)->st_size)
                names.insert(info.dli_sname);
        }
    }

private:
    const char *path = std::getenv("KAR_REFUSED_LIST");
    std::set<std::string> names;
};
inline Refusals refusals;

/// Whether a request is the library's and to be refused.
inline bool refuses(const void *caller)
{
    if (!inLibrary(caller))
        return false;
    const bool result = refusedHeap.refuses();
    if (result) {
        refusedHeap.armed = false; // what the list needs is granted
        refusals.add();
        refusedHeap.armed = true;
    }
    return result;
}

} // namespace refusedheap

extern "C" {
#if defined(__SANITIZE_ADDRESS__)
void *__interceptor_malloc(std::size_t size);
void *__interceptor_calloc(std::size_t count, std::size_t size);
void __interceptor_free(void *p);
#define KAR_SYSTEM_MALLOC __interceptor_malloc
#define KAR_SYSTEM_CALLOC __interceptor_calloc
#define KAR_SYSTEM_FREE __interceptor_free
#else
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void __libc_free(void *p);
#define KAR_SYSTEM_MALLOC __libc_malloc
#define KAR_SYSTEM_CALLOC __libc_calloc
#define KAR_SYSTEM_FREE __libc_free
#endif

// The sanitizers call these before they are ready themselves.
__attribute__((visibility("default"), no_sanitize("address", "undefined"))) void *malloc(std::size_t size) noexcept
{
    if (refusedHeap.armed && refusedHeap.means(RefusedHeap::blocks) &&
        refusedheap::refuses(__builtin_return_address(0)))
        return nullptr;
    void *const p = KAR_SYSTEM_MALLOC(size);
    refusedHeap.held += p != nullptr;
    if (refusedHeap.armed)
        refusedHeap.note(p);
    return p;
}

__attribute__((visibility("default"), no_sanitize("address", "undefined"))) void *calloc(std::size_t count,
                                                                                         std::size_t size) noexcept
{
    if (refusedHeap.armed && refusedHeap.means(RefusedHeap::tables) &&
        refusedheap::refuses(__builtin_return_address(0)))
        return nullptr;
    void *const p = KAR_SYSTEM_CALLOC(count, size);
    refusedHeap.held += p != nullptr;
    return p;
}

__attribute__((visibility("default"), no_sanitize("address", "undefined"))) void free(void *p) noexcept
{
    refusedHeap.held -= p != nullptr;
    KAR_SYSTEM_FREE(p);
}
}

#endif

#endif
