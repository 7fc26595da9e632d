// Texts of real numbers and back, and whole numbers from texts.
#include "exactdecimal.h"
#include "textprobe.h"
#include "testrandom.h"
#include "teststeps.h"

#include <cerrno>
#include <climits>
#include <clocale>
#include <limits>

namespace {

std::string written(double value, int decimals, bool stripZeros)
{
    return TextProbe::bytes(karString(value, decimals, stripZeros));
}

// The stated steps with the exact digits: a point always; the zeros of a value that vanishes.
std::string plainText(double value, int decimals, bool stripZeros)
{
    const bool negative = std::signbit(value);
    const std::string exact = exactDecimal(std::fabs(value));
    std::string text = roundedDecimal(exact, decimals < 0 ? 0 : decimals);
    if (value != 0 && text.find_first_not_of("0.") == std::string::npos)
        text = "0." + std::string(exact.find_first_not_of("0.") - 2, '0');
    if (stripZeros) {
        while (text.back() == '0')
            text.pop_back();
        if (text.back() == '.')
            text.pop_back();
    }
    return (negative ? "-" : "") + text;
}

double readReal(const std::string &text)
{
    karString s(text.c_str());
    double value = -77;
    EXPECT_EQ(s.s2double(value), KAR_SUCCESS) << text;
    return value;
}

struct Whole {
    int result;
    int value;
    bool operator==(const Whole &other) const { return result == other.result && value == other.value; }
};
std::ostream &operator<<(std::ostream &out, const Whole &whole)
{
    return out << whole.result << " with " << whole.value;
}

Whole readWhole(const char *text)
{
    karString s(text);
    int value = -77;
    errno = 0;
    const int result = s.s2int(value);
    return {result, value};
}

} // namespace

// ---- Real numbers to text

TEST(KarString, WritesRealNumbers)
{
    EXPECT_EQ(written(1.5, 2, false), "1.50");
    EXPECT_EQ(written(1.5, 2, true), "1.5");
    EXPECT_EQ(written(2.0, 3, true), "2");
    EXPECT_EQ(written(2.0, 3, false), "2.000");
    EXPECT_EQ(written(-12.25, 1, false), "-12.3");
    EXPECT_EQ(written(123.456, 2, false), "123.46");
    EXPECT_EQ(written(0.25, 2, false), "0.25");
    EXPECT_EQ(written(0.05, 3, false), "0.050");
    EXPECT_EQ(written(1e15, 1, false), "1000000000000000.0");
}

TEST(KarString, KeepsThePointWithoutPlaces)
{
    EXPECT_EQ(written(5.0, 0, false), "5.");
    EXPECT_EQ(written(5.0, 0, true), "5");
    EXPECT_EQ(written(120.0, 0, true), "120"); // the scan stops at the point
    EXPECT_EQ(written(120.0, 2, true), "120");
    EXPECT_EQ(written(0.0, 0, false), "0.");
    EXPECT_EQ(written(0.0, 0, true), "0");
}

TEST(KarString, RoundsTheExactValueHalfAwayFromZero)
{
    EXPECT_EQ(written(2.5, 0, false), "3.");
    EXPECT_EQ(written(3.5, 0, false), "4.");
    EXPECT_EQ(written(-2.5, 0, false), "-3.");
    EXPECT_EQ(written(0.5, 0, false), "1.");
    EXPECT_EQ(written(0.125, 2, false), "0.13");
    EXPECT_EQ(written(0.375, 2, false), "0.38");
    EXPECT_EQ(written(1.005, 2, false), "1.00"); // 1.00499999999999989...
    EXPECT_EQ(written(0.15, 1, false), "0.1");   // 0.1499999999999999944...
    EXPECT_EQ(written(0.45, 1, false), "0.5");   // 0.450000000000000011...
    EXPECT_EQ(written(9.999, 2, false), "10.00");
    EXPECT_EQ(written(999.9999, 3, false), "1000.000");
    EXPECT_EQ(written(0.999, 2, false), "1.00");
    EXPECT_EQ(written(0.006, 2, false), "0.01");
    EXPECT_EQ(written(0.0, 3, false), "0.000");
    // The middle of two numbers of 69 places, with more digits than a machine word has.
    EXPECT_EQ(written(0x1p-70, 69, false), "0.000000000000000000000847032947254300339068322500679641962051391601563");
}

TEST(KarString, KeepsTheZerosOfAValueThatVanishes)
{
    EXPECT_EQ(written(0.001, 2, false), "0.00");
    EXPECT_EQ(written(0.0001, 2, false), "0.000");
    EXPECT_EQ(written(0.4, 0, false), "0.");
    EXPECT_EQ(written(0.04, 0, false), "0.0");
    EXPECT_EQ(written(0.049, 1, false), "0.0");
    EXPECT_EQ(written(0.0001, 2, true), "0");
    EXPECT_EQ(written(1e-300, 2, false), "0." + std::string(299, '0')); // 1.00000000000000002...e-300
    EXPECT_EQ(written(std::numeric_limits<double>::denorm_min(), 3, false), "0." + std::string(323, '0'));
}

TEST(KarString, KeepsTheSignOfANegativeValueThatRoundsToZero)
{
    EXPECT_EQ(written(-0.001, 2, false), "-0.00");
    EXPECT_EQ(written(-0.001, 2, true), "-0");
    EXPECT_EQ(written(-0.0, 2, false), "-0.00");
    EXPECT_EQ(written(-0.0, 2, true), "-0");
}

TEST(KarString, CountsNegativePlacesAsNone)
{
    EXPECT_EQ(written(2.5, -1, false), "3.");
    EXPECT_EQ(written(1234.0, -2, true), "1234");
    EXPECT_EQ(written(2.5, INT_MIN, false), "3.");
}

TEST(KarString, NamesWhatIsNotANumber)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(written(infinity, 2, false), "inf");
    EXPECT_EQ(written(-infinity, 2, true), "-inf");
    EXPECT_EQ(written(notANumber, 2, false), "nan");
    EXPECT_EQ(written(std::copysign(notANumber, -1.0), 0, true), "nan");
}

TEST(KarString, WritesAnyMagnitudeAndAnyCountOfPlaces)
{
    EXPECT_EQ(written(0x1p64, 1, false), "18446744073709551616.0");
    EXPECT_EQ(written(0x1p63, 1, false), "9223372036854775808.0");
    EXPECT_EQ(written(1e22, 0, true), "10000000000000000000000");
    EXPECT_EQ(written(1e23, 0, true), "99999999999999991611392"); // the exact binary value
    EXPECT_EQ(written(0.1, 55, false), "0.1000000000000000055511151231257827021181583404541015625");
    EXPECT_EQ(written(0.1, 60, true), "0.1000000000000000055511151231257827021181583404541015625");
    EXPECT_EQ(written(0.1, 60, false), "0.100000000000000005551115123125782702118158340454101562500000");
    EXPECT_EQ(written(0.1, 54, false), "0.100000000000000005551115123125782702118158340454101563"); // ...5625
    EXPECT_EQ(written(1.0, 2000, false), "1." + std::string(2000, '0'));
    const std::string largest = written(std::numeric_limits<double>::max(), 0, true);
    EXPECT_EQ(largest.size(), 309u);
    EXPECT_EQ(largest, plainText(std::numeric_limits<double>::max(), 0, true));
    const std::string smallest = written(std::numeric_limits<double>::denorm_min(), 1100, true);
    EXPECT_EQ(smallest.size(), 1076u);
    EXPECT_EQ(smallest.substr(0, 327), "0." + std::string(323, '0') + "49");
    EXPECT_EQ(written(-std::numeric_limits<double>::max(), 2, false).size(), 313u);
}

TEST(KarString, SizesOfRealNumbersHaveNoSpareRoom)
{
    EXPECT_TRUE(hasState(karString(1.5, 2, false), "1.50", 4, 8));
    EXPECT_TRUE(hasState(karString(123.5, 3, false), "123.500", 7, 8));
    EXPECT_TRUE(hasState(karString(1234.5, 3, false), "1234.500", 8, 16));
    EXPECT_TRUE(hasState(karString(1234.5, 3, true), "1234.5", 6, 8));
    EXPECT_TRUE(hasState(karString(1.0, 40, false), "1.0000000000000000000000000000000000000000", 42, 48));
}

TEST(KarString, WritesTheExactDigitsOfRandomNumbers)
{
    const std::uint64_t seed = 20261;
    TestRandom random(seed);
    for (int step = 0, steps = testSteps(8000); step < steps; ++step) {
        double value = random.between(-1000.0, 1000.0);
        switch (random.below(6)) {
        case 0:
            value = random.between(-1e-6, 1e-6);
            break;
        case 1:
            value = random.between(-1e18, 1e18);
            break;
        case 2: // ties
            value = std::ldexp(random.between(-100000, 100000), -random.between(1, 12));
            break;
        case 3: // beside a power of ten
            value = std::nextafter(std::pow(10.0, random.between(-8, 20)), random.below(2) ? 0.0 : 1e300);
            break;
        default:
            break;
        }
        const int decimals = random.between(0, 20);
        const bool strip = random.below(2);
        ASSERT_EQ(written(value, decimals, strip), plainText(value, decimals, strip))
            << "seed " << seed << ", step " << step << ", " << value << " with " << decimals;
    }
}

TEST(KarString, WritesTheExactDigitsOfNumbersOfAnyMagnitude)
{
    const std::uint64_t seed = 20262;
    TestRandom random(seed);
    for (int step = 0; step < 100; ++step) {
        const double value = random.anyDouble();
        if (!std::isfinite(value))
            continue;
        const int decimals = random.between(0, step % 4 == 0 ? 1200 : 330);
        ASSERT_EQ(written(value, decimals, false), plainText(value, decimals, false))
            << "seed " << seed << ", step " << step << ", " << value << " with " << decimals;
    }
}

// ---- Text to real numbers

TEST(KarString, ReadsRealNumbers)
{
    EXPECT_EQ(readReal("3.25"), 3.25);
    EXPECT_EQ(readReal("-3.25"), -3.25);
    EXPECT_EQ(readReal("7"), 7.0);
    EXPECT_EQ(readReal("7."), 7.0);
    EXPECT_EQ(readReal(".5"), 0.5);
    EXPECT_EQ(readReal("-.5"), -0.5);
    EXPECT_EQ(readReal("007.50"), 7.5);
    EXPECT_EQ(readReal("0.1"), 0.1);
    EXPECT_EQ(readReal("12"), 12.0);
    EXPECT_EQ(readReal("1234.5678"), 1234.5678);
    EXPECT_EQ(readReal("-98765432109.875"), -98765432109.875);
    EXPECT_EQ(readReal("0.0000000000000000000007"), 7e-22);           // 22 places
    EXPECT_EQ(readReal("0.00000000000000000000007"), 7e-23);          // one more
    EXPECT_EQ(readReal("9007199254740992"), 9007199254740992.0);      // 2^53
    EXPECT_EQ(readReal("10848760502060.357"), 0x1.3bbd9082e58b7p+43); // above 2^53 without the point
    EXPECT_EQ(readReal("9999999999999999999"), 1e19);                 // 19 digits, 20 and more
    EXPECT_EQ(readReal("18446744073709551617"), 18446744073709552e3); // 2^64 + 1
    EXPECT_EQ(readReal("184467440737095516160"), 18446744073709552e4);
    EXPECT_EQ(readReal(""), 0.0);
    EXPECT_TRUE(std::signbit(readReal("-0")));
}

TEST(KarString, ReadsRealNumbersOfAnyCountOfPlaces)
{
    const double expected[] = {5.0,   5e-1,  5e-2,  5e-3,  5e-4,  5e-5,  5e-6,  5e-7,  5e-8,
                               5e-9,  5e-10, 5e-11, 5e-12, 5e-13, 5e-14, 5e-15, 5e-16, 5e-17,
                               5e-18, 5e-19, 5e-20, 5e-21, 5e-22, 5e-23, 5e-24};
    for (std::size_t places = 1; places < 25; ++places)
        EXPECT_EQ(readReal("." + std::string(places - 1, '0') + "5"), expected[places]) << places;
}

TEST(KarString, ReadsAsFarAsTheRealNumberGoes)
{
    EXPECT_EQ(readReal("1-2.3.4"), 1.0);
    EXPECT_EQ(readReal("1.5.5"), 1.5);
    EXPECT_EQ(readReal("-"), 0.0);
    EXPECT_FALSE(std::signbit(readReal("-")));
    EXPECT_EQ(readReal("."), 0.0);
    EXPECT_EQ(readReal("-."), 0.0);
    EXPECT_EQ(readReal("--5"), 0.0);
    EXPECT_EQ(readReal("..5"), 0.0);
}

TEST(KarString, RefusesWhatCannotStandInARealNumber)
{
    for (const char *text :
         {"3.25abc", "1-2.3.4x", "1.5.x", "-x", "x", ".-x", "1e5", "+1", " 1", "1 ", "1,5", "0x10", "inf", "nan",
          "\xa0"
          "1"}) {
        karString s(text);
        double value = 5;
        EXPECT_EQ(s.s2double(value), KAR_ERROR_NO_NUMBER) << text;
        EXPECT_EQ(value, 0.0) << text;
        EXPECT_STREQ(TextProbe::bytes(s), text);
    }
}

TEST(KarString, CutsControlsBeforeItReadsARealNumber)
{
    karString s("2.5\r\n\t");
    double value = 0;
    EXPECT_EQ(s.s2double(value), KAR_SUCCESS);
    EXPECT_EQ(value, 2.5);
    EXPECT_TRUE(hasState(s, "2.5", 3, 16));
}

TEST(KarString, ReadsRealNumbersOfAnyLength)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(readReal("1" + std::string(308, '0')), 1e308);
    EXPECT_EQ(readReal("1" + std::string(309, '0')), infinity);
    EXPECT_EQ(readReal("-2" + std::string(400, '0') + ".5"), -infinity);
    EXPECT_EQ(readReal("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_TRUE(std::signbit(readReal("-0." + std::string(400, '0') + "1")));
    EXPECT_EQ(readReal("0." + std::string(323, '0') + "4"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(readReal("0." + std::string(323, '0') + "2"), 0.0);
    EXPECT_EQ(readReal(std::string(1000, '0') + "7." + std::string(1000, '0')), 7.0);
    EXPECT_EQ(readReal("0." + std::string(3000, '1')), 1.0 / 9);
    EXPECT_EQ(readReal("9007199254740993"), 9007199254740992.0);                                // a tie goes to even
    EXPECT_EQ(readReal("9007199254740993." + std::string(800, '0') + "1"), 9007199254740994.0); // a little above it
    EXPECT_EQ(readReal("9007199254740995"), 9007199254740996.0);
    // Above 2^53, where digits and quotient would each be rounded.
    EXPECT_EQ(readReal("141.34132357837303"), 141.34132357837303);
    EXPECT_EQ(readReal("100693156.97783869"), 100693156.97783869);
}

TEST(KarString, ReadsNumbersThatFillTheirBuffers)
{
    const auto full = [](const char *text) { // of eight characters
        karString s(std::string(text, 7).c_str(), 0u);
        s[7] = text[7];
        return s;
    };
    const auto whole = [](karString s) {
        int value = -77;
        EXPECT_EQ(s.s2int(value), KAR_SUCCESS);
        return value;
    };
    errno = 0;
    EXPECT_EQ(whole(full("12345678")), 12345678);
    EXPECT_EQ(whole(full("0x1234ab")), 0x1234ab);
    EXPECT_EQ(whole(full("-1234567")), -0x1234567);
    karString real = full("1234.567");
    double value = -77;
    EXPECT_EQ(real.s2double(value), KAR_SUCCESS);
    EXPECT_EQ(value, 1234.567);
    karString controls = full("123456\r\n");
    EXPECT_EQ(controls.s2double(value), KAR_SUCCESS);
    EXPECT_EQ(value, 123456.0);
    EXPECT_TRUE(hasState(controls, "123456", 6, 8));
}

TEST(KarString, AnInfinityLeavesErrnoAlone)
{
    errno = 0;
    readReal("1" + std::string(400, '0'));
    readReal("0." + std::string(400, '0') + "1");
    EXPECT_EQ(errno, 0);
}

TEST(KarString, ReadsWhatItWrites)
{
    const std::uint64_t seed = 20263;
    TestRandom random(seed);
    for (int step = 0; step < 1500; ++step) {
        double value = step % 10 ? random.between(-1e6, 1e6) : random.anyDouble();
        if (!std::isfinite(value))
            continue;
        const double back = readReal(written(value, 1080, true));
        ASSERT_EQ(back, value) << "seed " << seed << ", step " << step;
        ASSERT_EQ(std::signbit(back), std::signbit(value)) << "seed " << seed << ", step " << step;
    }
}

TEST(KarString, ReadsTheMiddleOfTwoNumbersAsTheEvenOne)
{
    const std::uint64_t seed = 20264;
    TestRandom random(seed);
    for (int step = 0; step < 500; ++step) {
        const std::uint64_t lower = (std::uint64_t{1} << 52) + (random.bits() >> 12);
        const int exponent = step % 20 ? random.between(-70, -20) : random.between(-1000, 900);
        const double even = std::ldexp(static_cast<double>(lower % 2 ? lower + 1 : lower), exponent);
        const double below = std::ldexp(static_cast<double>(lower), exponent);
        const double above = std::ldexp(static_cast<double>(lower + 1), exponent);
        const std::string middle = exactDecimal(2 * lower + 1, exponent - 1);
        ASSERT_EQ(readReal(middle), even) << "seed " << seed << ", step " << step;
        ASSERT_EQ(readReal(middle + "1"), above) << "seed " << seed << ", step " << step;
        std::string less = middle; // a last digit of one less
        if (less.back() == '.')
            continue;
        --less.back(); // the last digit of a binary fraction is 5
        ASSERT_EQ(readReal(less + "9"), below) << "seed " << seed << ", step " << step;
    }
}

TEST(KarString, ReadsAndWritesInTheCLocale)
{
    for (const char *name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"})
        if (std::setlocale(LC_ALL, name))
            break;
    EXPECT_EQ(written(1.5, 2, false), "1.50");
    EXPECT_EQ(readReal("1.5"), 1.5);
    EXPECT_EQ(readReal("0.12345678901234567890123"), 0.12345678901234567890123);
    std::setlocale(LC_ALL, "C");
}

// ---- Text to whole numbers

TEST(KarString, ReadsDigitsAsDecimal)
{
    EXPECT_EQ(readWhole("123"), (Whole{0, 123}));
    EXPECT_EQ(readWhole("007"), (Whole{0, 7}));
    EXPECT_EQ(readWhole(""), (Whole{0, 0}));
    EXPECT_EQ(readWhole("2147483647"), (Whole{0, INT_MAX}));
    EXPECT_EQ(readWhole("2147483648"), (Whole{0, INT_MAX}));
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(readWhole("99999999999999999999999999999999999999"), (Whole{0, INT_MAX}));
    EXPECT_EQ(readWhole("9999999999999999999"), (Whole{0, INT_MAX}));  // 19 digits
    EXPECT_EQ(readWhole("18446744073709551617"), (Whole{0, INT_MAX})); // 2^64 + 1, 20 digits
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(readWhole("000000000000000000000000000012"), (Whole{0, 12}));
    EXPECT_EQ(readWhole("0"), (Whole{0, 0}));
    EXPECT_EQ(readWhole("12:"), (Whole{-120, 0})); // the characters on both sides of the digits
    EXPECT_EQ(readWhole("12/"), (Whole{-120, 0}));
}

TEST(KarString, ReadsEverythingElseAsHexadecimal)
{
    EXPECT_EQ(readWhole("ff"), (Whole{0, 255}));
    EXPECT_EQ(readWhole("FF"), (Whole{0, 255}));
    EXPECT_EQ(readWhole("12a"), (Whole{0, 298}));
    EXPECT_EQ(readWhole("0a1"), (Whole{0, 161}));
    EXPECT_EQ(readWhole("-5"), (Whole{0, -5}));
    EXPECT_EQ(readWhole("-10"), (Whole{0, -16}));
    EXPECT_EQ(readWhole("+10"), (Whole{0, 16}));
    EXPECT_EQ(readWhole("0x10"), (Whole{0, 16}));
    EXPECT_EQ(readWhole("0x7"), (Whole{0, 7}));
    EXPECT_EQ(readWhole("-0X1f"), (Whole{0, -31}));
    EXPECT_EQ(readWhole(" 12"), (Whole{0, 18})); // a blank isn't a digit
    EXPECT_EQ(readWhole("\t\n\v\f\r 12"), (Whole{0, 18}));
}

TEST(KarString, RefusesWhatIsNoWholeNumber)
{
    for (const char *text : {"xyz", "12g", "-", "+", " ", "0x", "0xg", "x10", "1 ", "--1", "- 1", "1.5",
                             "12\xe4"
                             "a"})
        EXPECT_EQ(readWhole(text), (Whole{-120, 0})) << text;
}

TEST(KarString, ReadsHexadecimalInThirtyTwoBits)
{
    EXPECT_EQ(readWhole("0x7fffffff"), (Whole{0, INT_MAX}));
    EXPECT_EQ(readWhole("-80000000"), (Whole{0, INT_MIN}));
    EXPECT_EQ(readWhole("0x00000000000000000001"), (Whole{0, 1}));
    for (const char *text : {"0x80000000", "ffffffff", "-80000001", "fffffffffffffffffffffffffffffff"}) {
        EXPECT_EQ(readWhole(text), (Whole{-120, 0})) << text;
        EXPECT_EQ(errno, ERANGE) << text;
    }
}

TEST(KarString, AnEarlierRangeErrorIsSeenByTheHexadecimalReaderAlone)
{
    errno = ERANGE;
    karString hexadecimal("ff");
    int value = 5;
    EXPECT_EQ(hexadecimal.s2int(value), KAR_ERROR_NO_NUMBER);
    EXPECT_EQ(value, 0);
    karString decimal("12");
    EXPECT_EQ(decimal.s2int(value), KAR_SUCCESS);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(errno, ERANGE);
    errno = EINVAL; // another error isn't one
    EXPECT_EQ(hexadecimal.s2int(value), KAR_SUCCESS);
    EXPECT_EQ(value, 255);
    errno = 0;
}

TEST(KarString, CutsControlsAndBytesFrom0x80OnBeforeItReadsAWholeNumber)
{
    karString s("12\r\n");
    int value = 0;
    EXPECT_EQ(s.s2int(value), KAR_SUCCESS);
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(hasState(s, "12", 2, 16));
    karString signedCompare("12\x80\xff\x01\xe4");
    EXPECT_EQ(signedCompare.s2int(value), KAR_SUCCESS);
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(hasState(signedCompare, "12", 2, 16));
    karString all("\n\n");
    EXPECT_EQ(all.s2int(value), KAR_SUCCESS);
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(hasState(all, "", 0, 16));
    karString blank("12 "); // 32 stays
    EXPECT_EQ(blank.s2int(value), KAR_ERROR_NO_NUMBER);
    EXPECT_TRUE(hasState(blank, "12 ", 3, 16));
    karString counted("12");
    counted &= '\0';
    EXPECT_EQ(counted.s2int(value), KAR_SUCCESS);
    EXPECT_TRUE(hasState(counted, "12", 2, 16)); // the length is measured
}

// ---- Assigning numbers

TEST(KarString, AssignsWholeNumbers)
{
    karString s;
    s.int2s(255, -1);
    EXPECT_TRUE(hasState(s, "255", 3, 16)); // fits: the buffer stays
    s.int2s(255, 16);
    EXPECT_TRUE(hasState(s, "ff", 2, 16));
    s.int2s(-1, 2);
    EXPECT_TRUE(hasState(s, std::string(32, '1'), 32, 40));
}

TEST(KarString, AssignsRealNumbers)
{
    karString s;
    s.double2s(1.0, -1, true);
    EXPECT_TRUE(hasState(s, "1", 1, 16));
    s.double2s(1.0, -1, false);
    EXPECT_TRUE(hasState(s, "1.0000000000", 12, 16)); // 10 places
    s.double2s(2.5, -2, false);
    EXPECT_TRUE(hasState(s, "3.", 2, 16));
    s.double2s(0.125, 2, false);
    EXPECT_TRUE(hasState(s, "0.13", 4, 16));
}
