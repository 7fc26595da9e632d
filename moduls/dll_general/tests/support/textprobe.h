// What a text keeps from its users.
#ifndef KAR_TEST_TEXT_PROBE_H
#define KAR_TEST_TEXT_PROBE_H

#include "karstring.h"

#include <gtest/gtest.h>

#include <string>

struct TextProbe : karString {
    static constexpr unsigned mark = unknownLength;
    static unsigned adjusted(unsigned n) { return adjust(n); }
    static unsigned cached(const karString &s) { return s.*&TextProbe::cachedLength; }
    static void setCached(karString &s, unsigned n) { s.*&TextProbe::cachedLength = n; }
    static const char *bytes(const karString &s) { return s.*&TextProbe::buffer; }
    static unsigned size(const karString &s) { return s.*&TextProbe::bufferSize; }
};

/// Keeps the pages that short texts come from, which would come and go with each text of a long sequence.
struct HeldPages {
    const karString small{7u}, middle{23u}, large{39u};
};

/// Text, cached length and size, read without any operation of the class.
inline ::testing::AssertionResult hasState(const karString &s, const std::string &text, unsigned cached, unsigned size)
{
    const char *const bytes = TextProbe::bytes(s);
    if (!bytes)
        return ::testing::AssertionFailure() << "no buffer";
    if (bytes != text || TextProbe::cached(s) != cached || TextProbe::size(s) != size)
        return ::testing::AssertionFailure()
               << '"' << bytes << "\", cached length " << TextProbe::cached(s) << ", size " << TextProbe::size(s);
    return ::testing::AssertionSuccess();
}

#endif
