// Sees the calls of `_notready` in a source that is compiled into the test itself: include this, then the source.
#ifndef KAR_TEST_NOT_READY_H
#define KAR_TEST_NOT_READY_H

// Inside the library the calls go straight to the function that does nothing.
#define KAR_BUILDING
#define _notready recordNotReady

#include "karsystem.h"

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

/// The calls since the program started or the list was taken.
inline std::vector<NotReadyCall> notReadyCalls;

void recordNotReady(const char *text, const char *file, int line) { notReadyCalls.push_back({text, file, line}); }

inline std::vector<NotReadyCall> takeNotReadyCalls()
{
    std::vector<NotReadyCall> calls;
    calls.swap(notReadyCalls);
    return calls;
}

#endif
