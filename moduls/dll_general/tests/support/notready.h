// Sees the calls of `_notready`, which does nothing by itself.
#ifndef KAR_TEST_NOT_READY_H
#define KAR_TEST_NOT_READY_H

#include "karexport.h"

#include <string>
#include <vector>

struct NotReadyCall {
    std::string text;
    std::string file;
    int line;
};

inline bool operator==(const NotReadyCall &a, const NotReadyCall &b)
{
    return a.text == b.text && a.file == b.file && a.line == b.line;
}

/// The calls since the program started or the list was cleared; empty where they can't be seen.
inline std::vector<NotReadyCall> notReadyCalls;

// An ELF program's own definition stands in front of that of the library, for the library's calls too.
#if defined(__ELF__)
constexpr bool notReadyIsSeen = true;
extern "C" KAR_API void _notready(const char *text, const char *file, int line)
{
    notReadyCalls.push_back({text, file, line});
}
#else
constexpr bool notReadyIsSeen = false;
#endif

/// Whether exactly `calls` were made; true where calls can't be seen. Starts a new list.
inline bool tookNotReadyCalls(const std::vector<NotReadyCall> &calls)
{
    const bool same = !notReadyIsSeen || notReadyCalls == calls;
    notReadyCalls.clear();
    return same;
}

#endif
