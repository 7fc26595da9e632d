// Formats where the host's locale has another decimal point. The tests stand in front of the C library's `localeconv`,
// so that they need no locale installed; they run with the GNU C library only.
#include "karstring.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>

#if defined(__GLIBC__)

namespace {

char decimalPoint[4] = ".";

karString written(const char *point)
{
    std::strcpy(decimalPoint, point);
    karString s;
    s.format("%7.2f|%.0f|%d", -1.5, 2.5, 3);
    std::strcpy(decimalPoint, ".");
    return s;
}

} // namespace

extern "C" __attribute__((visibility("default"))) std::lconv *localeconv() noexcept
{
    static std::lconv conventions = {};
    conventions.decimal_point = decimalPoint;
    return &conventions;
}

TEST(KarStringFormat, WritesTheDecimalPointOfTheHost)
{
    EXPECT_EQ(written(".") == "  -1.50|2|3", 1);
    EXPECT_EQ(written(",") == "  -1,50|2|3", 1);
}

// Printed by the C library itself, which has its own locale here.
TEST(KarStringFormat, LeavesAPointOfSeveralBytesOrNoneToTheCLibrary)
{
    EXPECT_EQ(written("\xd9\xab") == "  -1.50|2|3", 1);
    EXPECT_EQ(written("") == "  -1.50|2|3", 1);
}

#endif
