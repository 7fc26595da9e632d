// Which formats are written without the C library, and that they stay in their room. The texts that callers see are
// tested in karstring_process_test.cpp, where the C library takes over what is left to it here; those of numbers too,
// but for one rounding that no format asks for. Numbers are read from parts of texts, which callers can't ask for.
#include "formattext.cpp"
#include "numbertext.cpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

const std::string left = "left to the C library";

std::string written(std::size_t room, const char *format, std::va_list arguments)
{
    std::string out(room + 8, '#');
    const int length = kar::text::writeUsualFormat(out.data(), room, format, arguments);
    EXPECT_EQ(out.substr(room), "########") << format << ": nothing stands behind the room";
    if (length < 0)
        return left;
    EXPECT_EQ(out[static_cast<std::size_t>(length)], '\0') << format;
    return out.substr(0, static_cast<std::size_t>(length));
}

std::string writtenIn(std::size_t room, const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = written(room, format, arguments);
    va_end(arguments);
    return text;
}

std::string usual(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = written(99, format, arguments);
    va_end(arguments);
    return text;
}

} // namespace

TEST(WriteUsualFormat, NeedsRoomForTheTerminator)
{
    for (std::size_t room = 1; room < 12; ++room) {
        const auto fitting = [room](const char *text) { return room > 8 ? text : left; };
        EXPECT_EQ(writtenIn(room, "12345678"), fitting("12345678"));
        EXPECT_EQ(writtenIn(room, "1234567%%"), fitting("1234567%"));
        EXPECT_EQ(writtenIn(room, "%s", "12345678"), fitting("12345678"));
        EXPECT_EQ(writtenIn(room, "%.8s", "123456789"), fitting("12345678"));
        EXPECT_EQ(writtenIn(room, "%-8s", "abc"), fitting("abc     "));
        EXPECT_EQ(writtenIn(room, "%8d", -123), fitting("    -123"));
        EXPECT_EQ(writtenIn(room, "%08d", -123), fitting("-0000123"));
        EXPECT_EQ(writtenIn(room, "%-8d", -123), fitting("-123    "));
        EXPECT_EQ(writtenIn(room, "%u", 12345678u), fitting("12345678"));
        EXPECT_EQ(writtenIn(room, "%8c", 'a'), fitting("       a"));
        EXPECT_EQ(writtenIn(room, "%x", 0x12345678u), fitting("12345678"));
        EXPECT_EQ(writtenIn(room, "%.6f", 1.5), fitting("1.500000"));
    }
}

TEST(WriteUsualFormat, WritesTheUsualConversions)
{
    EXPECT_EQ(usual(""), "");
    EXPECT_EQ(usual("100%%"), "100%");
    EXPECT_EQ(usual("%d|%i|%u", -5, 0, 4294967295u), "-5|0|4294967295");
    EXPECT_EQ(usual("%ld|%lu|%lx", -5L, 6ul, 255ul), "-5|6|ff");
    EXPECT_EQ(usual("%dd%dl", -5, -6), "-5d-6l"); // a letter behind a conversion is none of it
    EXPECT_EQ(usual("%+d|% d|%+ d|% +d", 5, 6, 7, 8), "+5| 6|+7|+8");
    EXPECT_EQ(usual("%4d|%-4d|%04d|%-04d|%012d", 5, 6, -7, 8, 9), "   5|6   |-007|8   |000000000009");
    EXPECT_EQ(usual("%c|%3c|%-3c", 'a', 'b', 'c'), "a|  b|c  ");
    EXPECT_EQ(usual("%.2s|%4s|%-4s|%2s|%s", "abc", "ab", "ab", "ab", ""), "ab|  ab|ab  |ab|");
    EXPECT_EQ(usual("%x|%5x|%05x|%x", 0u, 0xabcu, 1u, 0xffffffffu), "0|  abc|00001|ffffffff");
    EXPECT_EQ(usual("%f|%.0f|%.1f|%+.1f|%07.2f", 1.5, 2.5, -0.25, 0.5, -1.0), "1.500000|2|-0.2|+0.5|-001.00");
    EXPECT_EQ(usual("%60.12f|", 0.5).size(), 61u);
    // A half, and a little more than one behind eight zeros.
    EXPECT_EQ(usual("%.8f|%.8f", 0x1p-9, 0x1p-9 + 0x1p-61), "0.00195312|0.00195313");
    EXPECT_EQ(usual("%.3f|%.40f", 1e-30, std::ldexp(1.0, -80)), "0.000|0.0000000000000000000000008271806125530277");
    EXPECT_EQ(usual("%9d|%19d", 5, 6), "        5|                  6");
}

TEST(WriteUsualFormat, LeavesOthersToTheCLibrary)
{
    const char *const none = nullptr;
    EXPECT_EQ(usual("%.3d", 5), left);
    EXPECT_EQ(usual("%.3u", 5u), left);
    EXPECT_EQ(usual("%.3x", 5u), left);
    EXPECT_EQ(usual("%+u", 5u), left);
    EXPECT_EQ(usual("% x", 5u), left);
    EXPECT_EQ(usual("%X", 5u), left);
    EXPECT_EQ(usual("%o", 5u), left);
    EXPECT_EQ(usual("%#x", 5u), left);
    EXPECT_EQ(usual("%hd", 5), left);
    EXPECT_EQ(usual("%*d", 5, 5), left);
    EXPECT_EQ(usual("%0001d", 5), "5");  // zeros are flags
    EXPECT_EQ(usual("%1000d", 5), left); // a width of four digits
    EXPECT_EQ(usual("%lc", 'a'), left);
    EXPECT_EQ(usual("%0c", 'a'), left);
    EXPECT_EQ(usual("%+c", 'a'), left);
    EXPECT_EQ(usual("%.1c", 'a'), left);
    EXPECT_EQ(usual("%s", none), left);
    EXPECT_EQ(usual("%05s", "a"), left);
    EXPECT_EQ(usual("%+s", "a"), left);
    EXPECT_EQ(usual("%ls", L"a"), left);
    EXPECT_EQ(usual("%.1000f", 1.5), left);
    EXPECT_EQ(usual("%f", HUGE_VAL), left);
    EXPECT_EQ(usual("%f", std::numeric_limits<double>::quiet_NaN()), left);
    EXPECT_EQ(usual("%e", 1.0), left);
    EXPECT_EQ(usual("%5%"), left);
}

// 1/1024 is 0.0009765625, and 2^-80 is 0.0000000000000000000000008271...
TEST(WriteFixed, KeepsTheZerosOfWhatVanishes)
{
    const auto published = [](double value) {
        kar::text::FixedText text;
        kar::text::writeFixed(value, 2, kar::text::FixedStyle::published, text);
        EXPECT_EQ(text.zeros, 0u);
        return std::string(text.begin, text.length);
    };
    EXPECT_EQ(published(1.0 / 1024.0), "0.000");
    EXPECT_EQ(published(std::ldexp(1.0, -80)), "0.000000000000000000000000");
}

TEST(ReadReal, EndsWithItsPartOfTheText)
{
    const char text[] = "-12.75";
    const struct {
        int begin, end;
        double value;
        int behind;
    } parts[] = {{0, 6, -12.75, 6}, {0, 5, -12.7, 5}, {0, 4, -12, 4}, {0, 3, -12, 3}, {0, 2, -1, 2}, {0, 1, 0, 1},
                 {0, 0, 0, 0},      {1, 1, 0, 1},     {1, 2, 1, 2},   {3, 3, 0, 3},   {3, 4, 0, 4},  {3, 5, 0.7, 5}};
    for (const auto &part : parts) {
        const char *behind = nullptr;
        EXPECT_EQ(kar::text::readReal(text + part.begin, text + part.end, behind), part.value);
        EXPECT_EQ(behind - text, part.behind) << part.begin << " to " << part.end;
    }
}

TEST(ReadHexadecimal, EndsWithItsPartOfTheText)
{
    const char text[] = " -0x1f2";
    const struct {
        int begin, end;
        int value;
        int behind;
    } parts[] = {{0, 7, -0x1f2, 7}, {0, 6, -0x1f, 6}, {0, 5, -1, 5}, {0, 4, 0, 3}, {0, 3, 0, 3},   {0, 2, 0, 0},
                 {0, 1, 0, 0},      {0, 0, 0, 0},     {1, 1, 0, 1},  {2, 3, 0, 3}, {5, 7, 0xf2, 7}};
    for (const auto &part : parts) {
        const char *behind = nullptr;
        EXPECT_EQ(kar::text::readHexadecimal(text + part.begin, text + part.end, behind), part.value);
        EXPECT_EQ(behind - text, part.behind) << part.begin << " to " << part.end;
    }
}

TEST(ReadHexadecimal, TakesAPrefixWithoutADigitForANumber)
{
    const char text[] = "0xg";
    const char *behind = nullptr;
    EXPECT_EQ(kar::text::readHexadecimal(text, text + 3, behind), 0);
    EXPECT_EQ(behind, text + 1);
}

TEST(ReadDecimal, EndsWithItsPartOfTheText)
{
    const char text[] = "00127x";
    int value = 5;
    EXPECT_TRUE(kar::text::readDecimal(text, text + 5, value));
    EXPECT_EQ(value, 127);
    EXPECT_TRUE(kar::text::readDecimal(text + 2, text + 4, value));
    EXPECT_EQ(value, 12);
    EXPECT_FALSE(kar::text::readDecimal(text, text + 6, value));
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(kar::text::readDecimal(text + 5, text + 5, value));
    EXPECT_EQ(value, 0);
}
