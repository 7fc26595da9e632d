// Numbers to text and back: the same digits on every target, whatever locale the host has set.
#ifndef KAR_NUMBER_TEXT_H
#define KAR_NUMBER_TEXT_H

namespace kar::text {

/// Room for the digits of 32 bits in radix 2 and a sign.
constexpr unsigned integerRoom = 33;

/// Writes `value` in `radix` 2 to 36, letters in lower case, without a terminator, and gives the count of characters.
/// A sign stands in radix 10 alone; in every other one the 32 bits count as an unsigned number. Another radix gives 0.
unsigned writeInteger(int value, int radix, char *out);

/// Writes the digits of `value` (at most 20) and gives their count.
unsigned writeDecimal(unsigned long long value, char *out);

/// The text of a real number with a fixed count of places: `length` characters at `begin`, then `zeros` times "0".
struct FixedText {
    /// 309 digits before the point, or 16 and then at most 1074 behind it; a sign, the point, and a digit of carry.
    char room[1104];
    const char *begin;
    unsigned length;
    unsigned zeros;
};

enum class FixedStyle {
    /// Rounds half away from zero. A value that isn't zero and vanishes has as many zeros behind the point as its exact
    /// value has before its first digit.
    published,
    stripped, ///< The same without the zeros behind the point, and without the point if it is last then.
    printed,  ///< As `printf`: rounds half to even, and has so many places always.
};

/// The exact binary value rounded to `places` (negative ones count as 0). There is a point even before no places.
void writeFixed(double value, int places, FixedStyle style, FixedText &out);

/// Reads "-", digits and a point from the start of a text of these characters, correctly rounded; 0.0 if there is no
/// number, an infinity beyond the range. Leaves `errno` alone. `behind` is set behind the characters read.
double readReal(const char *begin, const char *end, const char *&behind);

/// Reads a text of digits alone; above 2147483647 gives that. False, and `value` as it was, at any other character.
bool readDecimal(const char *begin, const char *end, int &value);

/// What `strtol` gives in radix 16 where `long` has 32 bits: white space, sign, 0x, digits. Beyond the range the
/// nearest value, and `errno` is `ERANGE`. `behind` is set behind the number, or to `begin` if there is none.
int readHexadecimal(const char *begin, const char *end, const char *&behind);

} // namespace kar::text

#endif
