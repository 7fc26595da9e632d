// Formatting, trimming, mapping, searching and taking texts apart.
// Not tested: the size that a format of more than 4 GB asks for.
#include "karmemgb.h"
#include "textprobe.h"
#include "testrandom.h"
#include "teststeps.h"

#include <climits>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <memory>
#include <limits>
#include <string>

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // formats made at random
#endif

namespace {

karString countedNul() // "xab" and three NULs in the cached length of 6
{
    karString s("x");
    s.ncat("ab", 5);
    return s;
}

karString shortCopy() // "abyz" with cached length 2
{
    karString s("wxyz");
    s.ncopy("ab", 5);
    return s;
}

// The size that an empty text of 16 bytes has after a format.
template <class... Arguments>
unsigned sizeAfter(const char *format, Arguments... arguments)
{
    karString s;
    s.format(format, arguments...);
    return s.size();
}

} // namespace

// ---- format

TEST(KarString, FormatsAndGivesTheLength)
{
    karString s;
    EXPECT_EQ(s.format("%d", 5), 1);
    EXPECT_TRUE(hasState(s, "5", 1, 40)); // 32 reserved: adjust(33)
    EXPECT_EQ(s.format("%s-%c-%5.2f-%x", "ab", 'q', 1.0, 255u), 13);
    EXPECT_TRUE(hasState(s, "ab-q- 1.00-ff", 13, 72)); // 2 + 2 + 32 + 32 + 3: adjust(72)
}

TEST(KarString, FormatNeverShrinks)
{
    karString s(100u);
    s.format("%s", "abc");
    EXPECT_TRUE(hasState(s, "abc", 3, 104));
    karString t("0123456789012345678901234567890123456789"); // the present text counts too
    t.format("x");
    EXPECT_TRUE(hasState(t, "x", 1, 56));
    karString u("0123456789", 0u); // size 16
    u.format("%s", "01234567890123");
    EXPECT_TRUE(hasState(u, "01234567890123", 14, 16));
}

TEST(KarString, FormatEstimatesOrdinaryCharactersAndPercentAsOne)
{
    EXPECT_EQ(sizeAfter("0123456789abcde"), 16u);
    EXPECT_EQ(sizeAfter("0123456789abcdef"), 24u);
    EXPECT_EQ(sizeAfter("%%%%%%%%%%%%%%%%"), 16u);  // 8
    EXPECT_EQ(sizeAfter("0123456789abcd%%"), 16u);  // 15
    EXPECT_EQ(sizeAfter("0123456789abcde%%"), 24u); // 16
}

TEST(KarString, FormatEstimatesNumbersByWidthAndPrecisionAtLeast32)
{
    EXPECT_EQ(sizeAfter("%d", 5), 40u);             // adjust(33)
    EXPECT_EQ(sizeAfter("%5.2f", 1.0), 40u);        // 32
    EXPECT_EQ(sizeAfter("%40.3f", 1.0), 48u);       // 43: adjust(44)
    EXPECT_EQ(sizeAfter("%44.3f", 1.0), 48u);       // 47
    EXPECT_EQ(sizeAfter("%44.4f", 1.0), 56u);       // 48
    EXPECT_EQ(sizeAfter("%*.*f", 44, 4, 1.0), 56u); // 48 by arguments
    EXPECT_EQ(sizeAfter("%*.*f", 44, 3, 1.0), 48u);
    EXPECT_EQ(sizeAfter("%-+ 044d", 5), 48u); // flags count nothing
    EXPECT_EQ(sizeAfter("%-d", 5), 40u);
    EXPECT_EQ(sizeAfter("%+d", 5), 40u);
    EXPECT_EQ(sizeAfter("%02d", 5), 40u);
    EXPECT_EQ(sizeAfter("% d", 5), 40u);
    EXPECT_EQ(sizeAfter("%#44x", 5u), 48u);                    // 44 + 2
    EXPECT_EQ(sizeAfter("%#45x", 5u), 48u);                    // 47: adjust(48)
    EXPECT_EQ(sizeAfter("%#46x", 5u), 56u);                    // 46 + 2
    EXPECT_EQ(sizeAfter("%i%u%o", 1, 2u, 3u), 104u);           // 96
    EXPECT_EQ(sizeAfter("%X%e%g%G", 1u, 1.0, 1.0, 1.0), 136u); // 128
    EXPECT_EQ(sizeAfter("%p", static_cast<void *>(nullptr)), 40u);
    EXPECT_EQ(sizeAfter("%ld%hd", 1L, 2), 72u); // 64
}

TEST(KarString, FormatEstimatesTexts)
{
    EXPECT_EQ(sizeAfter("%s", "0123456789abcde"), 16u);
    EXPECT_EQ(sizeAfter("%s", "0123456789abcdef"), 24u);
    EXPECT_EQ(sizeAfter("0123456789abcd%s", ""), 16u);        // at least 1: 15
    EXPECT_EQ(sizeAfter("0123456789abcde%s", ""), 24u);       // 16
    EXPECT_EQ(sizeAfter("%20s", "ab"), 24u);                  // raised to the width: adjust(21)
    EXPECT_EQ(sizeAfter("%-*s", 24, "ab"), 32u);              // adjust(25)
    EXPECT_EQ(sizeAfter("%.3s", "0123456789abcdefghi"), 16u); // lowered to the precision
    EXPECT_EQ(sizeAfter("%.20s", "0123456789abcdefghijklmnop"), 24u);
    EXPECT_EQ(sizeAfter("%.0s", "0123456789abcdefghi"), 24u); // a precision of 0 doesn't lower: adjust(20)
    EXPECT_EQ(sizeAfter("0123456789abc%c", 'x'), 16u);        // 2: 15
    EXPECT_EQ(sizeAfter("0123456789abcd%c", 'x'), 24u);       // 16
    EXPECT_EQ(sizeAfter("0123456789abcd%.1c", 'x'), 16u);     // lowered
}

TEST(KarString, FormatCountsANullTextAsOne)
{
    karString s;
    const char *const none = nullptr;
    char expected[32];
    std::snprintf(expected, sizeof expected, "%s", none ? none : "(null)");
    s.format("%s", none);
    EXPECT_TRUE(hasState(s, expected, 6, 16));
}

TEST(KarString, FormatEstimateStopsReadingBehindWhatItDoesNotKnow)
{
    // "%lld": the second l is the conversion, the d an ordinary character; then a text counts 1 whatever it is.
    karString s;
    EXPECT_EQ(s.format("%lld %s", 1234567890123456789LL, "0123456789abcdef"), 36);
    EXPECT_TRUE(hasState(s, "1234567890123456789 0123456789abcdef", 36, 40)); // too small: adjust(37)
    karString t;
    t.format("%zu|%s", std::size_t{7}, "ab");
    EXPECT_TRUE(hasState(t, "7|ab", 4, 16));
    karString u;
    u.format("%hhd|%s", 7, "ab");
    EXPECT_TRUE(hasState(u, "7|ab", 4, 16));
    karString v;
    v.format("%E|%s", 1.0, "ab"); // E isn't among the conversions
    EXPECT_TRUE(hasState(v, "1.000000E+00|ab", 15, 16));
    karString w;
    w.format("%Lf|%s|%d", static_cast<long double>(1), "ab", 3); // 32 + 1 + 1 + 1 + 32
    EXPECT_EQ(w.size(), 72u);
    karString a;
    a.format("%Lf|%s", static_cast<long double>(1), "0123456789"); // 32 + 1 + 1: adjust(35)
    EXPECT_TRUE(hasState(a, "1.000000|0123456789", 19, 40));
    karString b;
    b.format("%zu0123456789abc%s", std::size_t{7}, ""); // u, 13 characters and 1: adjust(16)
    EXPECT_TRUE(hasState(b, "70123456789abc", 14, 16));
    karString x;
    x.format("%Fs|%s", 1.0, "ab"); // F as a letter of length before "s"
    EXPECT_TRUE(hasState(x, "1.000000s|ab", 12, 16));
#if defined(__linux__)
    // Nothing behind it is read either: no width, no flag, no character.
    int printed = 0;
    karString behind;
    behind.format("%Fs|%*d|%-5d|%c|%n", 1.0, 3, 7, 8, 'x', &printed);
    EXPECT_EQ(behind == "1.000000s|  7|8    |x|", 1);
    EXPECT_EQ(printed, 22);
    karString counts;
    counts.format("0123456789abcde%n", &printed); // counts nothing: adjust(16)
    EXPECT_TRUE(hasState(counts, "0123456789abcde", 15, 16));
    printed = 0;
    karString given;
    given.format("%*d|%*d|%s", 0, 5, 3, 6, "ab"); // a width of 0 is none; 32 + 1 + 32 + 1 + 2
    EXPECT_TRUE(hasState(given, "5|  6|ab", 8, 72));
#endif
    karString y;
    y.format("%jd|%td|%s", static_cast<std::intmax_t>(1), static_cast<std::ptrdiff_t>(2), "ab");
    EXPECT_TRUE(hasState(y, "1|2|ab", 6, 16));
}

TEST(KarString, FormatEstimateReadsOnBehindEveryConversionThatItKnows)
{
    // The text counts as it is only if all arguments before it were read; its estimate is above what is printed.
    const char *const text = "0123456789abcdefghijk"; // 21
    EXPECT_EQ(sizeAfter("%c|%s", 'x', text), 32u);    // 2 + 1 + 21: adjust(25), while 23 are printed
    EXPECT_EQ(sizeAfter("%C|%s", static_cast<std::wint_t>('x'), text), 32u);
    EXPECT_EQ(sizeAfter("%lc|%s", static_cast<std::wint_t>('x'), text), 32u);
    EXPECT_EQ(sizeAfter("%d|%s", 1, text), 56u); // 54: adjust(55)
    EXPECT_EQ(sizeAfter("%ld|%s", 1L, text), 56u);
    EXPECT_EQ(sizeAfter("%hd|%s", 1, text), 56u);
    EXPECT_EQ(sizeAfter("%f|%s", 1.0, text), 56u);
    EXPECT_EQ(sizeAfter("%lf|%s", 1.0, text), 56u);
    EXPECT_EQ(sizeAfter("%p|%s", static_cast<const void *>(text), text), 56u);
    EXPECT_EQ(sizeAfter("%*.*d|%s", 1, 1, 1, text), 56u);
    EXPECT_EQ(sizeAfter("%s||%s", "", text), 32u); // 1 + 2 + 21
    EXPECT_EQ(sizeAfter("%S||%s", L"", text), 32u);
    EXPECT_EQ(sizeAfter("%ls||%s", L"", text), 32u);
#if defined(__linux__)
    int count = 0;
    EXPECT_EQ(sizeAfter("%c%n|%s", 'x', &count, text), 32u);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(sizeAfter("%d%5%%s", 1, text), 56u); // 32 + 0 + 21: "%" behind a width takes no argument
#endif
}

TEST(KarString, FormatReadsOnlySoMuchOfATextAsThePrecisionAsksFor)
{
    const std::unique_ptr<char[]> text(new char[3]{'a', 'b', 'c'}); // no terminator
    karString s;
    EXPECT_EQ(s.format("%.3s|%.*s", text.get(), 2, text.get()), 6);
    EXPECT_TRUE(hasState(s, "abc|ab", 6, 16));
#if defined(__linux__)
    const std::unique_ptr<wchar_t[]> wide(new wchar_t[3]{L'a', L'b', L'c'});
    EXPECT_EQ(s.format("%.3ls|%.2S", wide.get(), wide.get()), 6);
    EXPECT_TRUE(hasState(s, "abc|ab", 6, 16));
#endif
}

TEST(KarString, FormatHasRoomForWhatTheEstimateMisses)
{
    karString s;
    const int length = s.format("%f", 1e300);
    EXPECT_EQ(length, 308);
    EXPECT_EQ(s.length(), 308u);
    EXPECT_EQ(s.vstrlen(), 308u);
    EXPECT_EQ(s.size(), 312u); // adjust(309)
    karString t;
    EXPECT_EQ(t.format("%*s", -60, "ab"), 60); // a negative width counts as it is
    EXPECT_TRUE(hasState(t, "ab" + std::string(58, ' '), 60, 64));
    karString u;
    EXPECT_EQ(u.format("%700d|", 5), 701); // longer than what is printed at once
    EXPECT_TRUE(hasState(u, std::string(699, ' ') + "5|", 701, 704));
    const long before = globalMemList->getCurAnzNew();
    {
        karString v;
        EXPECT_EQ(v.format("%1500d", 7), 1500);
        EXPECT_EQ(v == (std::string(1499, ' ') + "7").c_str(), 1);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), before); // a block written over its end isn't released
}

TEST(KarString, FormatTakesNegativePrecisionAsItIs)
{
    karString s;
    s.format("%.*s", -5, "abc"); // below zero in all: nothing reserved
    EXPECT_TRUE(hasState(s, "abc", 3, 16));
    karString t;
    t.format("0123456789abcdefghij%.*s", -5, "x"); // 20 - 5 = 15 is too small for 21
    EXPECT_TRUE(hasState(t, "0123456789abcdefghijx", 21, 24));
}

TEST(KarString, FormatEndsAtTheEndOfTheFormat)
{
    for (const char *format : {"abc%", "abc%5", "abc%-", "abc%.", "abc%l", "abc%5.3h"}) {
        karString s("before");
        const int result = s.format(format);
        EXPECT_EQ(s.size(), 16u) << format;
        EXPECT_EQ(s.vstrlen(), static_cast<unsigned>(result < 0 ? 0 : result)) << format;
        EXPECT_EQ(s.length(), s.vstrlen()) << format;
    }
}

TEST(KarString, FormatThatFailsLeavesTheEmptyText)
{
    karString s("before");
    const int result = s.format("%ls", L"\xd800"); // no character
#if defined(__linux__)
    EXPECT_LT(result, 0);
#endif
    if (result < 0) {
        EXPECT_TRUE(hasState(s, "", 0, 16));
    }
}

TEST(KarString, FormatsAsTheCLibraryDoes)
{
    const std::uint64_t seed = 20265;
    TestRandom random(seed);
    for (int step = 0, steps = testSteps(40000); step < steps; ++step) {
        std::string format = "<%";
        for (unsigned flags = random.below(4); flags > 0; --flags)
            format += "-+ 0#"[random.below(5)];
        if (random.below(2))
            format += std::to_string(random.below(45));
        const bool hasPrecision = random.below(2);
        if (hasPrecision)
            format += '.' + (random.below(5) ? std::to_string(random.below(25)) : std::string());
        const int whole = random.below(2) ? random.anyInt() : random.between(-100, 100);
        double real = random.between(-1000.0, 1000.0);
        if (random.below(3) == 0)
            real = std::ldexp(random.between(-4000, 4000), -random.between(0, 12)); // ties
        else if (random.below(3) == 0)
            real = std::ldexp(real, random.between(-60, 120));
        const std::string text(random.below(30), 'x');
        karString s;
        char expected[400];
        const auto check = [&](auto argument) {
            format += "> %% %d";
            const int length = std::snprintf(expected, sizeof expected, format.c_str(), argument, step);
            const int result = s.format(format.c_str(), argument, step);
            return result == length && s == expected && s.length() == std::strlen(expected);
        };
        bool same = false;
        switch (random.below(9)) {
        case 0:
            format += 'd';
            same = check(whole);
            break;
        case 1:
            format += "li";
            same = check(static_cast<long>(whole));
            break;
        case 2:
            format += 'u';
            same = check(static_cast<unsigned>(whole));
            break;
        case 3:
            format += 'x';
            same = check(static_cast<unsigned>(whole));
            break;
        case 4:
            format += "lx";
            same = check(static_cast<unsigned long>(whole));
            break;
        case 5:
            format += 's';
            same = check(text.c_str());
            break;
        case 6:
            format += 'e';
            same = check(real);
            break;
        case 7:
            format += "lf";
            same = check(real);
            break;
        default:
            format += 'f';
            same = check(real);
            break;
        }
        ASSERT_TRUE(same) << "seed " << seed << ", step " << step << ", format " << format << ": "
                          << TextProbe::bytes(s) << " is not " << expected;
    }
}

TEST(KarString, FormatWritesThePointOfTheLocale)
{
    for (const char *name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"})
        if (std::setlocale(LC_NUMERIC, name))
            break;
    char expected[32];
    std::snprintf(expected, sizeof expected, "%7.2f|%.0f", -1.5, 2.5);
    karString s;
    s.format("%7.2f|%.0f", -1.5, 2.5);
    EXPECT_EQ(s == expected, 1);
    std::setlocale(LC_NUMERIC, "C");
}

TEST(KarString, FormatRoundsAMiddleToTheEvenDigitAndNamesWhatIsNoNumber)
{
    karString s;
    s.format("%.69f", 0x1p-70); // ...15625: more digits than a machine word has
    EXPECT_EQ(s == "0.000000000000000000000847032947254300339068322500679641962051391601562", 1);
    s.format("%.71f", 0x1p-70 + 0x1p-72); // ...953125
    EXPECT_EQ(s == "0.00000000000000000000105879118406787542383540312584955245256423950195312", 1);
    // More than the middle by what follows in the same nine digits, and by what follows them.
    s.format("%.54f", 0x1p-61); // ...6845703125
    EXPECT_EQ(s == "0.000000000000000000433680868994201773602981120347976685", 1);
    s.format("%.17f", 13 * 0x1p-61); // 5.637...e-18
    EXPECT_EQ(s == "0.00000000000000001", 1);
#if defined(__linux__)
    s.format("%f|%5.1f", std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(s == "inf| -inf", 1);
#endif
}

TEST(KarString, FormatReadsItsOwnText)
{
    karString s("abcdef");
    const char *const own = TextProbe::bytes(s);
    s.format("<%s|%s>", own, own + 3);
    EXPECT_TRUE(hasState(s, "<abcdef|def>", 12, 16));
    s.format("%s%s%s", TextProbe::bytes(s), TextProbe::bytes(s), TextProbe::bytes(s)); // grows
    EXPECT_TRUE(hasState(s, "<abcdef|def><abcdef|def><abcdef|def>", 36, 40));
    karString t("%d-%d");
    t.format(TextProbe::bytes(t), 1, 2);
    EXPECT_EQ(t == "1-2", 1);
}

TEST(KarString, FormatCountsWhatWasPrinted)
{
    karString s;
    EXPECT_EQ(s.format("a%cb", '\0'), 3);
    EXPECT_TRUE(hasState(s, "a", 3, 16));
    EXPECT_STREQ(TextProbe::bytes(s) + 2, "b");
}

TEST(KarString, WritesDurations)
{
    karString s;
    s.time(59);
    EXPECT_TRUE(hasState(s, "00:00:59", 8, 104)); // 3 * 32 + 2
    s.time(60);
    EXPECT_EQ(s == "00:01:00", 1);
    s.time(3661);
    EXPECT_EQ(s == "01:01:01", 1);
    s.time(86399);
    EXPECT_EQ(s == "23:59:59", 1);
    s.time(86400);
    EXPECT_EQ(s == "01d00:00", 1); // the seconds vanish
    s.time(86460);
    EXPECT_EQ(s == "01d00:01", 1);
    s.time(90061);
    EXPECT_EQ(s == "01d01:01", 1);
    s.time(100ul * 86400 + 3599);
    EXPECT_EQ(s == "100d00:59", 1);
    s.time(4294967295ul);
    EXPECT_EQ(s == "49710d06:28", 1);
    s.time(0);
    EXPECT_EQ(s == "00:00:00", 1);
}

// ---- searchValue

TEST(KarString, LooksUpTheFirstEqualRow)
{
    karString::searchStruct table[] = {{"", 9}, {"one", 1}, {"two", 2}, {"one", 3}, {"twofold", 4}, {nullptr, 0}};
    int value = -5;
    EXPECT_EQ(karString("one").searchValue(table, value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(karString("twofold").searchValue(table, value), 0);
    EXPECT_EQ(value, 4);
    value = -5;
    for (const char *text : {"", "One", " one", "one ", "on", "three", "twofol"})
        EXPECT_EQ(karString(text).searchValue(table, value), -1) << text;
    EXPECT_EQ(value, -5);
}

TEST(KarString, LooksUpByTheCachedLengthAndTheStartOfTheText)
{
    karString::searchStruct table[] = {{"xab", 1}, {"xab   ", 2}, {"ab", 3}, {"abyz", 4}, {nullptr, 0}};
    int value = -5;
    EXPECT_EQ(countedNul().searchValue(table, value), -1); // six characters by the cache, none of the rows
    EXPECT_EQ(shortCopy().searchValue(table, value), 0);
    EXPECT_EQ(value, 3);
}

TEST(KarString, ATableWithoutRowsLeavesTheLengthUnknown)
{
    karString::searchStruct none[] = {{nullptr, 0}};
    karString::searchStruct one[] = {{"x", 1}, {nullptr, 0}};
    karString s("abc");
    s[2] = 'c';
    int value = -5;
    EXPECT_EQ(s.searchValue(none, value), -1);
    EXPECT_EQ(TextProbe::cached(s), TextProbe::mark);
    EXPECT_EQ(s.searchValue(one, value), -1);
    EXPECT_EQ(TextProbe::cached(s), 3u);
}

// ---- Trimming

TEST(KarString, TrimsTheStart)
{
    karString s(" \t abc ");
    s.ltrim();
    EXPECT_TRUE(hasState(s, "abc ", 4, 16));
    s.ltrim("ab");
    EXPECT_TRUE(hasState(s, "c ", 2, 16));
    s.ltrim("x");
    EXPECT_TRUE(hasState(s, "c ", 2, 16));
    s.ltrim("");
    EXPECT_TRUE(hasState(s, "c ", 2, 16));
    s.ltrim(" c");
    EXPECT_TRUE(hasState(s, "", 0, 16));
    s.ltrim();
    EXPECT_TRUE(hasState(s, "", 0, 16));
    karString lines("\n abc");
    lines.ltrim(); // blank and tab, no line end
    EXPECT_TRUE(hasState(lines, "\n abc", 5, 16));
}

TEST(KarString, TrimsTheEndButNeverTheFirstCharacter)
{
    karString s("abc \t ");
    s.rtrim();
    EXPECT_TRUE(hasState(s, "abc", 3, 16));
    s.rtrim("bc");
    EXPECT_TRUE(hasState(s, "a", 1, 16));
    s.rtrim("a");
    EXPECT_TRUE(hasState(s, "a", 1, 16));
    karString blanks("   ");
    blanks.rtrim();
    EXPECT_TRUE(hasState(blanks, " ", 1, 16));
    blanks.rtrim();
    EXPECT_TRUE(hasState(blanks, " ", 1, 16));
    karString empty;
    empty.rtrim();
    EXPECT_TRUE(hasState(empty, "", 0, 16));
    karString high("ab\xe4\xe4");
    high.rtrim("\xe4");
    EXPECT_TRUE(hasState(high, "ab", 2, 16));
}

TEST(KarString, TrimsBothEnds)
{
    karString s("  a b  ");
    s.trim();
    EXPECT_TRUE(hasState(s, "a b", 3, 16));
    s = "   ";
    s.trim(); // the start comes first
    EXPECT_TRUE(hasState(s, "", 0, 16));
    s = "xyaxy";
    s.trim("yx");
    EXPECT_TRUE(hasState(s, "a", 1, 16));
}

TEST(KarString, TrimMeasuresTheText)
{
    karString s = countedNul(); // "xab", 6
    s.rtrim("b");
    EXPECT_TRUE(hasState(s, "xa", 2, 16));
    karString t = countedNul();
    t.ltrim("x");
    EXPECT_TRUE(hasState(t, "ab", 2, 16));
    karString u = countedNul();
    u.rtrim("q");
    EXPECT_TRUE(hasState(u, "xab", 3, 16));
    karString v = countedNul();
    v.ltrim("q"); // nothing to take off: nothing changes
    EXPECT_TRUE(hasState(v, "xab", 6, 16));
    karString w = shortCopy(); // "abyz", 2
    w.rtrim("z");
    EXPECT_TRUE(hasState(w, "aby", 3, 16));
}

TEST(KarString, TrimsByASetThatLiesInTheText)
{
    karString s("abcba");
    s.trim(TextProbe::bytes(s) + 3); // "ba", as it stands on entry
    EXPECT_TRUE(hasState(s, "c", 1, 16));
    karString t("abab");
    t.ltrim(TextProbe::bytes(t));
    EXPECT_TRUE(hasState(t, "", 0, 16));
}

// ---- Mapping

TEST(KarString, ChangesCaseInPlace)
{
    karString s("aBc-1\xe4Z");
    s.toUpper();
    EXPECT_TRUE(hasState(s, "ABC-1\xe4Z", 7, 16));
    s.toLower();
    EXPECT_TRUE(hasState(s, "abc-1\xe4z", 7, 16));
}

TEST(KarString, ChangesCaseOfTheCachedLength)
{
    karString s = shortCopy();
    s.toUpper();
    EXPECT_TRUE(hasState(s, "AByz", 2, 16));
    karString t("ab");
    t &= '\0';
    t &= "cd";
    t.toUpper();
    EXPECT_STREQ(TextProbe::bytes(t) + 3, "CD");
}

TEST(KarString, TakesCharactersOut)
{
    karString s("a-b--c-");
    EXPECT_TRUE(hasState(s.notIn("-"), "abc", 3, 16));
    EXPECT_TRUE(hasState(s.notIn("abc-"), "", 0, 16));
    EXPECT_TRUE(hasState(s.notIn(""), "a-b--c-", 7, 16));
    EXPECT_TRUE(hasState(s.notIn("a-"), "bc", 2, 16));
    EXPECT_TRUE(hasState(karString("0123456789abcdef").notIn("x"), "0123456789abcdef", 16, 24));
    EXPECT_TRUE(hasState(s.removechar('-'), "abc", 3, 16));
    EXPECT_TRUE(hasState(s.removechar('x'), "a-b--c-", 7, 16));
    EXPECT_TRUE(hasState(s.removechar('\0'), "a-b--c-", 7, 16));
    EXPECT_TRUE(hasState(karString("---").removechar('-'), "", 0, 16));
    EXPECT_TRUE(hasState(s, "a-b--c-", 7, 16));
}

TEST(KarString, PutsBackslashesInFront)
{
    const karString s("axb");
    EXPECT_TRUE(hasState(s.maskchar('x', 2), "a\\\\xb", 5, 16));
    EXPECT_TRUE(hasState(s.maskchar('x', 1), "a\\xb", 4, 16));
    EXPECT_TRUE(hasState(s.maskchar('x', 0), "axb", 3, 16));
    EXPECT_TRUE(hasState(s.maskchar('x', -1), "axb", 3, 16));
    EXPECT_TRUE(hasState(s.maskchar('y', 2), "axb", 3, 16));
    EXPECT_TRUE(hasState(karString("\\\\").maskchar('\\', 1), "\\\\\\\\", 4, 16));
    EXPECT_TRUE(hasState(s.maskchar('x', 5), "a\\\\\\\\\\xb", 8, 24)); // adjust(17)
    const karString beyond = karString("xxx").maskchar('x', INT_MAX);  // 32 bits don't count it
    EXPECT_EQ(TextProbe::bytes(beyond), nullptr);
}

TEST(KarString, ReplacesCharacters)
{
    const karString s("a,b,c");
    EXPECT_TRUE(hasState(s.replacechar(',', ';'), "a;b;c", 5, 16));
    EXPECT_TRUE(hasState(s.replacechar('x', ';'), "a,b,c", 5, 16));
    EXPECT_TRUE(hasState(s.replacechar('\0', ';'), "a,b,c", 5, 16));
    EXPECT_TRUE(hasState(s.replacechar(',', '\0'), "a", 1, 16)); // the text ends at its first NUL
}

TEST(KarString, CountsCharacters)
{
    const karString s("a,b,c");
    EXPECT_EQ(s.countchar(','), 2);
    EXPECT_EQ(s.countchar('x'), 0);
    EXPECT_EQ(s.countchar('\0'), 0);
    EXPECT_EQ(karString().countchar('x'), 0);
    EXPECT_EQ(shortCopy().countchar('z'), 1);
}

// ---- Searching by index

TEST(KarString, SearchesForwardFromAnIndex)
{
    const karString s("aba");
    EXPECT_EQ(s.karstrchr('a', 0), 0);
    EXPECT_EQ(s.karstrchr('a', 1), 2);
    EXPECT_EQ(s.karstrchr('x', 0), -1);
    EXPECT_EQ(s.karstrchr('a', -1), -1);
    EXPECT_EQ(s.karstrchr('a', 3), -1);
    EXPECT_EQ(s.karstrchr('\0', 0), 3); // the terminator
    EXPECT_EQ(karString().karstrchr('\0', 0), -1);
}

TEST(KarString, SearchesBackwardBeforeALimit)
{
    const karString s("aba");
    EXPECT_EQ(s.karstrrchr('a', -1), 2);
    EXPECT_EQ(s.karstrrchr('a', 3), 2);
    EXPECT_EQ(s.karstrrchr('a', 2), 0);
    EXPECT_EQ(s.karstrrchr('a', 0), -1);
    EXPECT_EQ(s.karstrrchr('b', 1), -1);
    EXPECT_EQ(s.karstrrchr('a', 4), -1);
    EXPECT_EQ(s.karstrrchr('a', -2), -1);
    EXPECT_EQ(s.karstrrchr('\0', 2), 2); // where the shortened text ends
    EXPECT_EQ(s.karstrrchr('\0', -1), 3);
    EXPECT_TRUE(hasState(s, "aba", 3, 16));
}

TEST(KarString, SearchesASetForward)
{
    const karString s("abcabc");
    EXPECT_EQ(s.karstrchr("cb", 0), 1);
    EXPECT_EQ(s.karstrchr("ca", 1), 2);
    EXPECT_EQ(s.karstrchr("c", 3), 5);
    EXPECT_EQ(s.karstrchr("xy", 0), -1);
    EXPECT_EQ(s.karstrchr("", 0), 6); // the terminator
    EXPECT_EQ(s.karstrchr("", 6), -1);
    EXPECT_EQ(s.karstrchr("ab", -1), -1);
    EXPECT_EQ(s.karstrchr("ab", 6), -1);
}

TEST(KarString, SearchesASetBackwardForTheSmallestOfTheLast)
{
    const karString s("abcabc");
    EXPECT_EQ(s.karstrrchr("ab", -1), 3); // the last a, not the last b
    EXPECT_EQ(s.karstrrchr("ba", 6), 3);
    EXPECT_EQ(s.karstrrchr("bc", -1), 4);
    EXPECT_EQ(s.karstrrchr("abc", 3), 0);
    EXPECT_EQ(s.karstrrchr("c", 5), 2);
    EXPECT_EQ(s.karstrrchr("cx", -1), 5); // a character that isn't there doesn't count
    EXPECT_EQ(s.karstrrchr("xy", -1), -1);
    EXPECT_EQ(s.karstrrchr("", -1), -1);
    EXPECT_EQ(s.karstrrchr("ab", 0), -1);
    EXPECT_EQ(s.karstrrchr("ab", 7), -1);
    EXPECT_EQ(s.karstrrchr("ab", -2), -1);
}

TEST(KarString, SearchesATextForward)
{
    const karString s("abcabc");
    EXPECT_EQ(s.karstrstr("bc", 0), 1);
    EXPECT_EQ(s.karstrstr("bc", 2), 4);
    EXPECT_EQ(s.karstrstr("bc", 5), -1);
    EXPECT_EQ(s.karstrstr("", 4), 4);
    EXPECT_EQ(s.karstrstr("", 6), -1);
    EXPECT_EQ(s.karstrstr("abc", -1), -1);
    EXPECT_EQ(s.karstrstr("abcabcabc", 0), -1);
}

TEST(KarString, SearchesATextBackwardWithoutReadingIt)
{
    const karString s("abcabc");
    EXPECT_EQ(s.karstrrstr("bc", -1), 0);
    EXPECT_EQ(s.karstrrstr("xyz", 6), 0);
    EXPECT_EQ(s.karstrrstr(nullptr, 1), 0);
    EXPECT_EQ(s.karstrrstr("bc", 0), 5); // the empty text stands everywhere: length() - 1
    EXPECT_EQ(s.karstrrstr("bc", 7), -1);
    EXPECT_EQ(s.karstrrstr("bc", -2), -1);
    EXPECT_EQ(karString().karstrrstr("", -1), -1);
    EXPECT_EQ(karString().karstrrstr("", 0), -1);
    EXPECT_EQ(countedNul().karstrrstr("", 6), 0);
    EXPECT_EQ(countedNul().karstrrstr("", 0), 5);
    const karString long65535('x', 65535u);
    EXPECT_EQ(long65535.karstrrstr("", 0), 65534);
    EXPECT_EQ(long65535.length(), 65535u);
}

TEST(KarString, SearchesBehindTheTextUpToTheNextNul)
{
    karString s = countedNul(); // "xab" and NULs, cached length 6, size 16
    EXPECT_EQ(s.karstrchr('a', 4), -1);
    EXPECT_EQ(s.karstrchr('\0', 5), 5);
    EXPECT_EQ(s.karstrchr("", 4), 4);
    EXPECT_EQ(s.karstrstr("", 5), 5);
    s &= "cd";
    EXPECT_EQ(s.karstrchr('d', 6), 7);
    EXPECT_EQ(s.karstrchr("dc", 6), 6);
    EXPECT_EQ(s.karstrchr("dc", 4), -1); // a NUL in between
    EXPECT_EQ(s.karstrstr("d", 6), 7);
    EXPECT_EQ(s.karstrstr("c", 3), -1);
    EXPECT_EQ(s.karstrrchr('b', 7), 2);
    EXPECT_EQ(s.karstrrchr('c', 8), -1); // backward the text ends at its first NUL
    EXPECT_EQ(s.karstrrchr('\0', 8), 3);
    EXPECT_EQ(s.karstrrchr("bc", -1), 2);
    // Without a NUL up to the end of the buffer.
    karString t("ab", 0u);
    t.ncat("c", 3); // "abc", cached length 5, size 8
    ASSERT_EQ(t.length(), 5u);
    const_cast<char *>(TextProbe::bytes(t))[4] = 'd';
    std::memset(const_cast<char *>(TextProbe::bytes(t)) + 5, 'e', 3);
    EXPECT_EQ(t.karstrchr('e', 4), 5);
    EXPECT_EQ(t.karstrchr('f', 4), -1);
    EXPECT_EQ(t.karstrchr("fg", 4), -1);
    EXPECT_EQ(t.karstrchr("", 4), -1);
    EXPECT_EQ(t.karstrstr("ee", 4), 5);
    EXPECT_EQ(t.karstrstr("ef", 4), -1);
}

TEST(KarString, SearchesMeasureAMarkedText)
{
    karString s("abcabc");
    s[4] = '\0';
    EXPECT_EQ(s.karstrchr('c', 4), -1);
    EXPECT_EQ(TextProbe::cached(s), 4u);
    s[3] = '\0';
    EXPECT_EQ(s.karstrrchr('a', -1), 0);
    EXPECT_EQ(TextProbe::cached(s), 3u);
}

// ---- karstrtok

TEST(KarString, TakesTokensOffTheStart)
{
    karString s("a,,b");
    EXPECT_TRUE(hasState(s.karstrtok(","), "a", 1, 16));
    EXPECT_TRUE(hasState(s, ",b", 2, 16));
    EXPECT_TRUE(hasState(s.karstrtok(","), "", 0, 16));
    EXPECT_TRUE(hasState(s, "b", 1, 16));
    EXPECT_TRUE(hasState(s.karstrtok(","), "b", 1, 16));
    EXPECT_TRUE(hasState(s, "", 0, 16));
    EXPECT_TRUE(hasState(s.karstrtok(","), "", 0, 16));
    s = "a;b,c";
    EXPECT_EQ(s.karstrtok(",;") == "a", 1);
    EXPECT_EQ(s.karstrtok(",;") == "b", 1);
    EXPECT_EQ(s.karstrtok(",;") == "c", 1);
    s = "a,";
    EXPECT_EQ(s.karstrtok(",") == "a", 1);
    EXPECT_TRUE(hasState(s, "", 0, 16)); // no last empty token
    s = "abc";
    EXPECT_EQ(s.karstrtok("") == "abc", 1); // the terminator
    EXPECT_TRUE(hasState(s, "", 0, 16));
}

TEST(KarString, TokensHaveTheirOwnSize)
{
    karString s("0123456789abcdef,b", 100u);
    EXPECT_TRUE(hasState(s.karstrtok(","), "0123456789abcdef", 16, 24)); // adjust(17)
    EXPECT_TRUE(hasState(s, "b", 1, 120));
    s = "0123456789abcde,b";
    EXPECT_TRUE(hasState(s.karstrtok(","), "0123456789abcde", 15, 16));
}

TEST(KarString, MovesALongRestToTheStart)
{
    std::string rest;
    for (int i = 0; i < 50000; ++i)
        rest += static_cast<char>('a' + i % 23);
    karString s(("token," + rest).c_str());
    EXPECT_EQ(s.karstrtok(",") == "token", 1);
    EXPECT_EQ(s == rest.c_str(), 1);
    EXPECT_EQ(s.length(), 50000u);
}

TEST(KarString, TakesTokensByDelimitersThatLieInTheText)
{
    karString s("a,b,");
    EXPECT_EQ(s.karstrtok(TextProbe::bytes(s) + 3) == "a", 1);
    EXPECT_TRUE(hasState(s, "b,", 2, 16));
}

TEST(KarString, TakesTokensOfATextWithCountedNuls)
{
    karString s = countedNul(); // "xab", 6
    EXPECT_TRUE(hasState(s.karstrtok(","), "xab", 3, 16));
    EXPECT_TRUE(hasState(s, "", 0, 16));
    karString t = countedNul();
    EXPECT_TRUE(hasState(t.karstrtok("a"), "x", 1, 16));
    EXPECT_TRUE(hasState(t, "b", 1, 16));
    karString u("ab");
    u &= '\0';
    u &= "cd";
    EXPECT_TRUE(hasState(u.karstrtok(""), "ab", 2, 16)); // the terminator, and what stands behind it
    EXPECT_TRUE(hasState(u, "cd", 2, 16));
}

TEST(KarString, TakesTokensOfATextPastItsCachedLength)
{
    karString s = shortCopy(); // "abyz", 2
    EXPECT_TRUE(hasState(s.karstrtok("z"), "aby", 3, 16));
    EXPECT_TRUE(hasState(s, "", 0, 16)); // index 3 isn't below the length
    karString t = shortCopy();
    EXPECT_TRUE(hasState(t.karstrtok("x"), "ab", 2, 16));
    EXPECT_TRUE(hasState(t, "", 0, 16));
}

TEST(KarString, TakesTokensOfATextWithoutATerminator)
{
    // The guard of 200 stands directly behind 192 bytes.
    karString s(("ab," + std::string(188, 'e')).c_str(), 0u);
    s[191] = 'i';
    EXPECT_EQ(s.karstrchr("\xc8z", 0), -1);
    EXPECT_EQ(s.karstrchr('\xc8', 0), -1);
    EXPECT_TRUE(hasState(s.karstrtok(","), "ab", 2, 16));
    EXPECT_TRUE(hasState(s, std::string(188, 'e') + "i", 189, 192));
}

// ---- Date and time

namespace {

void setZone(const char *zone)
{
#if defined(_WIN32)
    _putenv_s("TZ", zone);
#else
    setenv("TZ", zone, 1);
#endif
}

// The fields of the zone `offset` seconds east of Greenwich, by the clock alone.
std::string fieldsAt(std::time_t now, long offset, const char *form)
{
    const std::time_t shifted = now + static_cast<std::time_t>(offset);
    char text[16];
    const std::tm *const fields = std::gmtime(&shifted);
    if (form[0] == 'd')
        std::snprintf(text, sizeof text, "%02d/%02d/%02d", (fields->tm_mon + 1) % 100, fields->tm_mday % 100,
                      fields->tm_year % 100);
    else
        std::snprintf(text, sizeof text, "%02d:%02d:%02d", fields->tm_hour % 100, fields->tm_min % 100,
                      fields->tm_sec % 100);
    return text;
}

} // namespace

TEST(KarString, DateAndTimeFollowTheLocalZoneOfTheMoment)
{
    const struct {
        const char *zone;
        long offset;
    } zones[] = {{"AAA0", 0}, {"AAA-9", 9 * 3600}, {"AAA8", -8 * 3600}};
    for (const auto &zone : zones) {
        setZone(zone.zone);
        for (;;) { // until no second passes in between
            const std::time_t before = std::time(nullptr);
            const karString date = GetLocalizedDate();
            const karString time = GetLocalizedTime();
            if (std::time(nullptr) != before)
                continue;
            EXPECT_TRUE(hasState(date, fieldsAt(before, zone.offset, "date"), 8, 24)) << zone.zone; // adjust(17)
            EXPECT_TRUE(hasState(time, fieldsAt(before, zone.offset, "time"), 8, 24)) << zone.zone;
            break;
        }
    }
}
