#include "numbertext.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

namespace kar::text {

namespace {

constexpr char digitPairs[] = "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243"
                              "4445464748495051525354555657585960616263646566676869707172737475767778798081828384858687"
                              "888990919293949596979899";
constexpr char letters[] = "0123456789abcdefghijklmnopqrstuvwxyz";

constexpr std::uint32_t chunk = 1000000000; // the largest power of ten in 32 bits
constexpr unsigned chunkDigits = 9;

// Writes the decimal digits so that they end before `end`; gives the first one.
char *writeBackwards(std::uint64_t value, char *end)
{
    while (value >= 100) {
        end -= 2;
        std::memcpy(end, digitPairs + 2 * (value % 100), 2);
        value /= 100;
    }
    if (value >= 10) {
        end -= 2;
        std::memcpy(end, digitPairs + 2 * value, 2);
        return end;
    }
    *--end = static_cast<char>('0' + value);
    return end;
}

void writeChunk(std::uint32_t value, char *out)
{
    for (unsigned i = chunkDigits; i-- > 0; value /= 10)
        out[i] = static_cast<char>('0' + value % 10);
}

// mantissa * 2^shift with shift > 0, to decimal digits; gives their count. Divides by 10^9 for nine digits at a time.
unsigned writeLargeInteger(std::uint64_t mantissa, unsigned shift, char *out)
{
    std::uint32_t words[34] = {};
    unsigned count = shift / 32;
    const unsigned bits = shift % 32;
    const std::uint64_t low = mantissa << bits; // 53 + 31 bits: the upper part follows
    words[count++] = static_cast<std::uint32_t>(low);
    words[count++] = static_cast<std::uint32_t>(low >> 32);
    words[count++] = bits ? static_cast<std::uint32_t>(mantissa >> (64 - bits)) : 0;

    std::uint32_t chunks[36];
    unsigned chunkCount = 0;
    while (count && !words[count - 1])
        --count;
    while (count) {
        std::uint64_t rest = 0;
        for (unsigned i = count; i-- > 0;) {
            rest = rest << 32 | words[i];
            words[i] = static_cast<std::uint32_t>(rest / chunk);
            rest %= chunk;
        }
        chunks[chunkCount++] = static_cast<std::uint32_t>(rest);
        while (count && !words[count - 1])
            --count;
    }

    char first[chunkDigits + 1];
    char *const firstEnd = first + sizeof first;
    const char *const start = writeBackwards(chunks[--chunkCount], firstEnd);
    const auto firstLength = static_cast<unsigned>(firstEnd - start);
    std::memcpy(out, start, firstLength);
    unsigned length = firstLength;
    while (chunkCount) {
        writeChunk(chunks[--chunkCount], out + length);
        length += chunkDigits;
    }
    return length;
}

// The decimal digits of fraction / 2^bits, from the point on, one a call. Exact: there are as many as `bits`.
class FractionDigits {
public:
    // Requires: fraction < 2^bits, fraction below 2^53, bits <= 1074.
    FractionDigits(std::uint64_t fraction, unsigned bits) : small(fraction), smallBits(bits)
    {
        if (bits <= smallLimit)
            return;
        // As a fixed-point number of whole words, the most significant one last.
        count = (bits + 31) / 32;
        const unsigned lift = count * 32 - bits;
        std::fill_n(words, count, 0u);
        const std::uint64_t low = fraction << lift;
        words[0] = static_cast<std::uint32_t>(low);
        words[1] = static_cast<std::uint32_t>(low >> 32);
        if (lift > 0)
            words[2] = static_cast<std::uint32_t>(fraction >> (64 - lift));
    }

    unsigned next()
    {
        if (smallBits <= smallLimit) {
            small *= 10;
            const auto digit = static_cast<unsigned>(small >> smallBits);
            small &= (std::uint64_t{1} << smallBits) - 1;
            return digit;
        }
        if (pending == 0) {
            current = nextChunk();
            pending = chunkDigits;
        }
        --pending;
        const std::uint32_t power = powers[pending];
        const std::uint32_t digit = current / power;
        current -= digit * power;
        return digit;
    }

    bool nothingFollows() const { return smallBits <= smallLimit ? small == 0 : current == 0 && lowest == count; }

private:
    static constexpr unsigned smallLimit = 60; // ten times the fraction stays within 64 bits
    static constexpr std::uint32_t powers[chunkDigits] = {1,      10,      100,      1000,     10000,
                                                          100000, 1000000, 10000000, 100000000};

    std::uint32_t nextChunk()
    {
        std::uint64_t carry = 0;
        for (unsigned i = lowest; i < count; ++i) {
            carry += std::uint64_t{words[i]} * chunk;
            words[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        while (lowest < count && !words[lowest]) // each factor of ten brings a zero bit: the low words run out
            ++lowest;
        return static_cast<std::uint32_t>(carry);
    }

    std::uint64_t small;
    unsigned smallBits;
    unsigned count = 0;
    unsigned lowest = 0;
    unsigned pending = 0;
    std::uint32_t current = 0;
    std::uint32_t words[34];
};

// One more in the last place of a number with a point in it; gives its start, one further ahead after 9...9.
char *roundUp(char *begin, char *end)
{
    while (end > begin) {
        --end;
        if (*end == '.')
            continue;
        if (*end != '9') {
            ++*end;
            return begin;
        }
        *end = '0';
    }
    *--begin = '1';
    return begin;
}

// The magnitude of a number: whole * 2^exponent + fraction / 2^fractionBits. One of the two powers is 1.
struct Magnitude {
    std::uint64_t whole;
    unsigned exponent = 0;
    std::uint64_t fraction = 0;
    unsigned fractionBits = 0;

    // Of the bits of a finite double.
    explicit Magnitude(std::uint64_t pattern) : whole(pattern & 0xfffffffffffffu)
    {
        const auto exponentBits = static_cast<int>(pattern >> 52 & 0x7ff);
        int scale = exponentBits ? exponentBits - 1075 : -1074;
        if (exponentBits)
            whole |= std::uint64_t{1} << 52;
        if (whole && scale < 0) {
            const int idle = std::min(__builtin_ctzll(whole), -scale);
            scale += idle;
            whole >>= idle;
        }
        if (whole && scale < 0) {
            fractionBits = static_cast<unsigned>(-scale);
            fraction = fractionBits < 64 ? whole & ((std::uint64_t{1} << fractionBits) - 1) : whole;
            whole = fractionBits < 64 ? whole >> fractionBits : 0;
        } else if (whole) {
            exponent = static_cast<unsigned>(scale);
        }
    }
};

// Writes fewer places than the number has to `end`, which moves behind them; gives its start, as `roundUp` does.
char *writeRounded(const Magnitude &number, unsigned places, FixedStyle style, char *begin, char *&end)
{
    FractionDigits digits(number.fraction, number.fractionBits);
    unsigned seen = static_cast<unsigned>(number.whole != 0);
    for (unsigned i = 0; i < places; ++i) {
        const unsigned digit = digits.next();
        seen |= digit;
        *end++ = static_cast<char>('0' + digit);
    }
    unsigned following = digits.next();
    bool up = following >= 5; // of exact digits: the rest is a half or more
    if (style == FixedStyle::printed && following == 5 && digits.nothingFollows())
        up = (places ? end[-1] : end[-2]) & 1; // to the even digit
    if (up)
        return roundUp(begin, end);
    if (!seen && style != FixedStyle::printed) { // vanished: it keeps the zeros before its first digit
        for (; following == 0; following = digits.next())
            *end++ = '0';
    }
    return begin;
}

void setText(FixedText &out, const char *text)
{
    out.begin = text;
    out.length = static_cast<unsigned>(std::strlen(text));
    out.zeros = 0;
}

} // namespace

unsigned writeInteger(int value, int radix, char *out)
{
    char work[integerRoom];
    char *const end = work + sizeof work;
    char *begin = end;
    auto rest = static_cast<unsigned>(value);
    if (radix == 10) {
        const bool negative = value < 0;
        begin = writeBackwards(negative ? 0u - rest : rest, end);
        if (negative)
            *--begin = '-';
    } else if (radix >= 2 && radix <= 36) {
        const auto base = static_cast<unsigned>(radix);
        do {
            *--begin = letters[rest % base];
            rest /= base;
        } while (rest);
    }
    const auto length = static_cast<unsigned>(end - begin);
    std::memcpy(out, begin, length);
    return length;
}

unsigned writeDecimal(unsigned long long value, char *out)
{
    char work[20];
    char *const end = work + sizeof work;
    const char *const begin = writeBackwards(value, end);
    const auto length = static_cast<unsigned>(end - begin);
    std::memcpy(out, begin, length);
    return length;
}

void writeFixed(double value, int places, FixedStyle style, FixedText &out)
{
    std::uint64_t pattern;
    std::memcpy(&pattern, &value, sizeof pattern);
    const bool negative = pattern >> 63;
    if ((pattern >> 52 & 0x7ff) == 0x7ff) {
        setText(out, pattern << 12 ? "nan" : negative ? "-inf" : "inf");
        return;
    }
    const Magnitude number(pattern);
    const auto wantedPlaces = places < 0 ? 0u : static_cast<unsigned>(places);
    char *begin = out.room + 2; // a sign and a carry may come before
    char *end = begin;
    if (number.exponent <= 11) // 53 + 11 bits
        end += writeDecimal(number.whole << number.exponent, end);
    else
        end += writeLargeInteger(number.whole, number.exponent, end);
    *end++ = '.';

    out.zeros = 0;
    if (wantedPlaces < number.fractionBits) {
        begin = writeRounded(number, wantedPlaces, style, begin, end);
    } else { // every digit of the exact value
        if (number.fractionBits) {
            FractionDigits digits(number.fraction, number.fractionBits);
            for (unsigned i = 0; i < number.fractionBits; ++i)
                *end++ = static_cast<char>('0' + digits.next());
        }
        out.zeros = wantedPlaces - number.fractionBits;
    }

    if (style == FixedStyle::stripped) {
        out.zeros = 0;
        while (end[-1] == '0')
            --end;
        if (end[-1] == '.')
            --end;
    }
    if (negative)
        *--begin = '-';
    out.begin = begin;
    out.length = static_cast<unsigned>(end - begin);
}

double readReal(const char *begin, const char *end, const char *&behind)
{
    constexpr std::ptrdiff_t mostDigits = 19; // below 2^64
    constexpr double powers[mostDigits + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                               1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
    const bool negative = begin < end && *begin == '-';
    const char *const digits = begin + negative;
    const char *at = digits;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };

    std::uint64_t mantissa = 0;
    bool wholeIsZero = true;
    for (; at < end && isDigit(*at); ++at) {
        mantissa = mantissa * 10 + static_cast<unsigned>(*at - '0');
        wholeIsZero = wholeIsZero && *at == '0';
    }
    auto count = at - digits;
    std::ptrdiff_t places = 0;
    if (at < end && *at == '.') {
        const char *const fraction = ++at;
        for (; at < end && isDigit(*at); ++at)
            mantissa = mantissa * 10 + static_cast<unsigned>(*at - '0');
        places = at - fraction;
        count += places;
    }
    behind = at;
    if (count == 0)
        return 0.0;
    // Both numbers are exact, up to 2^53 and to 10^22, so that one division rounds once (Clinger).
    if (count <= mostDigits && mantissa <= std::uint64_t{1} << 53) {
        const double magnitude = static_cast<double>(mantissa) / powers[places];
        return negative ? -magnitude : magnitude;
    }
    double magnitude = 0.0;
    if (std::from_chars(digits, at, magnitude, std::chars_format::fixed).ec == std::errc::result_out_of_range)
        magnitude = wholeIsZero ? 0.0 : std::numeric_limits<double>::infinity();
    return negative ? -magnitude : magnitude;
}

bool readDecimal(const char *begin, const char *end, int &value)
{
    while (begin < end && *begin == '0')
        ++begin;
    constexpr unsigned largest = 0x7fffffff;
    std::uint64_t number = 0; // wraps behind 19 digits, which are too many anyway
    for (const char *at = begin; at < end; ++at) {
        const unsigned digit = static_cast<unsigned char>(*at) - '0';
        if (digit > 9)
            return false;
        number = number * 10 + digit;
    }
    value = static_cast<int>(end - begin > 19 || number > largest ? largest : number);
    return true;
}

int readHexadecimal(const char *begin, const char *end, const char *&behind)
{
    const auto digitAt = [end](const char *at) {
        if (at >= end)
            return -1;
        if (*at >= '0' && *at <= '9')
            return *at - '0';
        const int lower = *at | 0x20;
        return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
    };
    const char *at = begin;
    while (at < end && (*at == ' ' || (*at >= '\t' && *at <= '\r')))
        ++at;
    const bool negative = at < end && *at == '-';
    if (at < end && (*at == '-' || *at == '+'))
        ++at;
    if (end - at > 2 && *at == '0' && (at[1] | 0x20) == 'x' && digitAt(at + 2) >= 0)
        at += 2;

    const char *const first = at;
    constexpr std::int64_t beyond = 0x100000000;
    std::int64_t magnitude = 0;
    for (int digit; (digit = digitAt(at)) >= 0; ++at)
        magnitude = std::min(magnitude * 16 + digit, beyond);
    behind = at > first ? at : begin;

    const std::int64_t limit = negative ? 0x80000000 : 0x7fffffff;
    if (magnitude > limit) {
        errno = ERANGE;
        magnitude = limit;
    }
    return static_cast<int>(negative ? -magnitude : magnitude);
}

} // namespace kar::text
