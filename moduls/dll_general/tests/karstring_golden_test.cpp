// A million texts read as numbers and a million numbers written, against the steps written out on plain texts and the
// schoolbook arithmetic of short numbers; long ones are tested in karstring_number_test.cpp.
#include "support/textprobe.h"

#include "goldenrun.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <string>

namespace {

std::uint64_t wordOf(const std::string &text, std::uint64_t word = 0)
{
    for (const char c : text)
        word = word * 257 + static_cast<unsigned char>(c);
    return word;
}

struct Reading {
    int result;
    double value;
    int error; ///< `errno` behind it
    std::string text;

    void addTo(TestHash &hash) const
    {
        hash.add(wordOf(text, error == ERANGE ? 1 : error == 0 ? 0 : 2));
        hash.add(result);
        hash.add(value);
    }
};

// The steps on plain texts

bool isDigit(char c) { return c >= '0' && c <= '9'; }

void cutControls(std::string &text)
{
    while (!text.empty() && (text.back() < 32 || static_cast<unsigned char>(text.back()) >= 0x80))
        text.pop_back();
}

int hexadecimalDigit(char c)
{
    const char digits[] = "00112233445566778899aAbBcCdDeEfF";
    const void *const digit = std::memchr(digits, c, 32);
    return digit ? static_cast<int>(static_cast<const char *>(digit) - digits) / 2 : -1;
}

Reading plainWhole(std::string text, int error)
{
    cutControls(text);
    if (text.find_first_not_of("0123456789") == std::string::npos) {
        long long value = 0;
        for (const char c : text)
            value = value > INT_MAX ? value : value * 10 + (c - '0');
        return {0, static_cast<double>(value > INT_MAX ? INT_MAX : value), error, text};
    }
    std::size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t' || text[at] == '\n' || text[at] == '\v' ||
                                text[at] == '\f' || text[at] == '\r'))
        ++at;
    long long sign = 1;
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        sign = text[at++] == '-' ? -1 : 1;
    if (at + 2 < text.size() && text[at] == '0' && (text[at + 1] == 'x' || text[at + 1] == 'X') &&
        hexadecimalDigit(text[at + 2]) >= 0)
        at += 2;
    const std::size_t first = at;
    long long value = 0;
    for (; at < text.size() && hexadecimalDigit(text[at]) >= 0; ++at)
        value = value > 0x80000000ll ? value : value * 16 + hexadecimalDigit(text[at]);
    value *= sign;
    if (value > INT_MAX || value < INT_MIN)
        error = ERANGE;
    if (error == ERANGE || at == first || at < text.size())
        return {-120, 0, error, text};
    return {0, static_cast<double>(value), error, text};
}

// Of texts that have at most 15 characters: digits and power of ten are exact.
Reading plainReal(std::string text, int error)
{
    cutControls(text);
    if (text.find_first_not_of("0123456789-.") != std::string::npos)
        return {-120, 0, error, text};
    std::size_t at = 0;
    const bool negative = !text.empty() && text[0] == '-';
    at += negative;
    double digits = 0, power = 1;
    bool any = false;
    for (; at < text.size() && isDigit(text[at]); ++at, any = true)
        digits = digits * 10 + (text[at] - '0');
    if (at < text.size() && text[at] == '.') {
        for (++at; at < text.size() && isDigit(text[at]); ++at, any = true) {
            digits = digits * 10 + (text[at] - '0');
            power *= 10;
        }
    }
    const double value = digits / power;
    return {0, !any ? 0.0 : negative ? -value : value, error, text};
}

// The steps from digits and the place of their point to the text, for numerator / 2^shift. Up to 8 decimals of numbers
// below 2^33 stay within 64 bits.
std::string plainText(bool negative, std::uint64_t numerator, unsigned shift, int decimals, bool stripZeros)
{
    decimals = decimals < 0 ? 0 : decimals;
    std::uint64_t power = 1;
    for (int i = 0; i < decimals; ++i)
        power *= 10;
    const std::uint64_t rounded = (numerator * power * 2 + (std::uint64_t{1} << shift)) >> (shift + 1);
    std::string digits;
    int point = 0;
    if (numerator == 0) {
        digits.assign(static_cast<std::size_t>(decimals), '0');
    } else if (rounded == 0) { // its own exponent
        for (std::uint64_t rest = numerator * 10; rest >> shift == 0; rest *= 10)
            --point;
    } else {
        digits = std::to_string(rounded);
        point = static_cast<int>(digits.size()) - decimals;
    }

    std::string text = negative ? "-" : "";
    std::size_t next = 0;
    int budget = decimals;
    if (point >= 1) {
        for (int copied = 0; copied != point && next < digits.size(); ++copied)
            text += digits[next++];
        text += '.';
    } else {
        text += "0." + std::string(static_cast<std::size_t>(-point), '0');
        budget += point;
    }
    for (; budget != 0 && next < digits.size(); --budget)
        text += digits[next++];
    while (stripZeros && text.back() == '0')
        text.pop_back();
    if (stripZeros && text.back() == '.')
        text.pop_back();
    return text;
}

std::string plainDigits(std::uint32_t value, unsigned radix)
{
    std::string text;
    do
        text.insert(0, 1, "0123456789abcdefghijklmnopqrstuvwxyz"[value % radix]);
    while ((value /= radix) != 0);
    return text;
}

// Texts near the borders of what is a number

std::string anyText(TestRandom &random, unsigned longest)
{
    static const std::string alphabets[] = {
        "0123456789",  "0123456789abcdefABCDEFxX+- ", "0xX1fF-", "0 \t\n\v\f\r-+1a", "0019..--",
        "0123456789.", "12\x80\xff\x01\x1f /:@G`g",   "8f0"};
    const std::string &alphabet = alphabets[random.below(8)];
    std::string text(random.below(longest + 1), '\0');
    for (char &c : text)
        c = alphabet[random.below(static_cast<unsigned>(alphabet.size()))];
    static const char *const starts[] = {"-", "0x", "-0X", "7fffffff", "-80000000", "2147483647", "2147483648", "-."};
    if (random.below(4) == 0)
        text.insert(0, starts[random.below(8)]);
    if (text.size() > longest)
        text.resize(longest);
    return text;
}

// With spare room, or in a buffer that the text fills, terminator left out.
karString stringOf(const std::string &text)
{
    const bool fills = !text.empty() && text.size() % 8 == 0;
    karString s(text.substr(0, text.size() - fills).c_str(), fills ? 0u : 8u);
    if (fills)
        s[text.size() - 1] = text.back();
    return s;
}

std::string textOf(const karString &s)
{
    EXPECT_EQ(TextProbe::cached(s), s.vstrlen());
    return std::string(TextProbe::bytes(s), s.vstrlen());
}

} // namespace

TEST(KarString, AMillionTextsReadAsWholeNumbersAsTheStepsDo)
{
    const HeldPages pages;
    GoldenRun<> run(415, 1000000, 3765055397209448707u);
    while (run.next()) {
        const std::string text = anyText(run.random, 24);
        const int error = run.random.below(16) ? 0 : ERANGE;
        karString s = stringOf(text);
        int value = -77;
        errno = error;
        const int result = s.s2int(value);
        const int after = errno;
        Reading{result, static_cast<double>(value), after, textOf(s)}.addTo(run.code);
        plainWhole(text, error).addTo(run.plain);
    }
}

TEST(KarString, AMillionTextsReadAsRealNumbersAsTheStepsDo)
{
    const HeldPages pages;
    GoldenRun<> run(416, 1000000, 1112121198380541576u);
    while (run.next()) {
        const std::string text = anyText(run.random, 15);
        const int error = run.random.below(16) ? 0 : ERANGE;
        karString s = stringOf(text);
        double value = -77;
        errno = error;
        const int result = s.s2double(value);
        const int after = errno;
        Reading{result, value, after, textOf(s)}.addTo(run.code);
        plainReal(text, error).addTo(run.plain);
    }
}

TEST(KarString, AMillionRealNumbersAreWrittenAsTheStepsDo)
{
    const HeldPages pages;
    GoldenRun<> run(4171, 1000000, 113669923886713391u);
    while (run.next()) {
        const bool negative = run.random.below(2);
        const std::uint64_t numerator = run.random.bits() >> (31 + run.random.below(33));
        const unsigned shift = run.random.below(28);
        const int decimals = run.random.between(-1, 8);
        const bool stripZeros = run.random.below(2);
        const double magnitude = std::ldexp(static_cast<double>(numerator), -static_cast<int>(shift));
        run.code.add(wordOf(textOf(karString(negative ? -magnitude : magnitude, decimals, stripZeros))));
        run.plain.add(wordOf(plainText(negative, numerator, shift, decimals, stripZeros)));
    }
}

TEST(KarString, AMillionWholeNumbersAreWrittenAsTheStepsDo)
{
    const HeldPages pages;
    GoldenRun<> run(4172, 1000000, 12244048924210286011u);
    while (run.next()) {
        const int value = run.random.anyInt() >> run.random.below(32);
        const int radix = run.random.below(2) ? 10 : run.random.between(2, 36);
        run.code.add(wordOf(textOf(karString(value, radix))));
        const auto bits = static_cast<std::uint32_t>(value);
        run.plain.add(wordOf(radix == 10 && value < 0 ? "-" + plainDigits(0u - bits, 10)
                                                      : plainDigits(bits, static_cast<unsigned>(radix))));
    }
}
