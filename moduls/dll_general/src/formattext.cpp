#include "formattext.h"

#include "numbertext.h"

#include <clocale>
#include <cmath>
#include <cstring>

namespace kar::text {

namespace {

struct Conversion {
    bool left = false;
    bool zeros = false;
    char plus = '\0'; // what a number that isn't negative has for a sign
    bool isLong = false;
    std::size_t width = 0;
    int precision = -1;
};

class Writer {
public:
    Writer(char *begin, std::size_t room) : at(begin), end(begin + room) {}

    bool put(const char *text, std::size_t count)
    {
        if (static_cast<std::size_t>(end - at) < count)
            return false;
        std::memcpy(at, text, count);
        at += count;
        return true;
    }
    bool fill(char c, std::size_t count)
    {
        if (static_cast<std::size_t>(end - at) < count)
            return false;
        std::memset(at, c, count);
        at += count;
        return true;
    }
    // Sign, digits and `more` zeros behind them, in the width.
    bool number(const Conversion &how, char sign, const char *digits, std::size_t count, std::size_t more = 0)
    {
        const std::size_t length = count + more + (sign != '\0');
        const std::size_t pad = how.width > length ? how.width - length : 0;
        const bool zeros = how.zeros && !how.left;
        return (zeros || how.left || fill(' ', pad)) && (sign == '\0' || fill(sign, 1)) && (!zeros || fill('0', pad)) &&
               put(digits, count) && fill('0', more) && (!how.left || fill(' ', pad));
    }
    bool text(const Conversion &how, const char *characters, std::size_t count)
    {
        const std::size_t pad = how.width > count ? how.width - count : 0;
        return (how.left || fill(' ', pad)) && put(characters, count) && (!how.left || fill(' ', pad));
    }

    char *at;

private:
    char *end;
};

// Up to three digits; more are left for the C library to judge.
int takeDigits(const char *&format)
{
    int value = 0;
    for (int i = 0; i < 3 && *format >= '0' && *format <= '9'; ++i)
        value = value * 10 + (*format++ - '0');
    return value;
}

Conversion readConversion(const char *&format)
{
    Conversion how;
    for (;; ++format) {
        if (*format == '-')
            how.left = true;
        else if (*format == '0')
            how.zeros = true;
        else if (*format == '+')
            how.plus = '+';
        else if (*format == ' ')
            how.plus = how.plus ? how.plus : ' ';
        else
            break;
    }
    how.width = static_cast<std::size_t>(takeDigits(format));
    if (*format == '.') {
        ++format;
        how.precision = takeDigits(format);
    }
    if (*format == 'l') {
        how.isLong = true;
        ++format;
    }
    return how;
}

bool writeSigned(Writer &out, const Conversion &how, long long value)
{
    char digits[20];
    const unsigned long long bits = static_cast<unsigned long long>(value);
    const unsigned count = writeDecimal(value < 0 ? 0 - bits : bits, digits);
    return how.precision < 0 && out.number(how, value < 0 ? '-' : how.plus, digits, count);
}

bool writeUnsigned(Writer &out, const Conversion &how, unsigned long value)
{
    char digits[20];
    const unsigned count = writeDecimal(value, digits);
    return !how.plus && how.precision < 0 && out.number(how, '\0', digits, count);
}

bool writeHexadecimal(Writer &out, const Conversion &how, unsigned long value)
{
    char digits[16];
    char *const end = digits + sizeof digits;
    char *first = end;
    do {
        *--first = "0123456789abcdef"[value & 15];
        value >>= 4;
    } while (value);
    return !how.plus && how.precision < 0 && out.number(how, '\0', first, static_cast<std::size_t>(end - first));
}

bool writeCharacter(Writer &out, const Conversion &how, char c)
{
    return !how.isLong && !how.zeros && !how.plus && how.precision < 0 && out.text(how, &c, 1);
}

// With a precision the text may lack its terminator behind so many characters.
bool writeText(Writer &out, const Conversion &how, const char *text)
{
    if (!text || how.isLong || how.zeros || how.plus)
        return false;
    if (how.precision < 0)
        return out.text(how, text, std::strlen(text));
    const auto most = static_cast<std::size_t>(how.precision);
    const void *const end = std::memchr(text, '\0', most);
    return out.text(how, text, end ? static_cast<std::size_t>(static_cast<const char *>(end) - text) : most);
}

bool writeReal(Writer &out, const Conversion &how, double value)
{
    if (!std::isfinite(value))
        return false;
    const int places = how.precision < 0 ? 6 : how.precision;
    FixedText text;
    writeFixed(value, places, FixedStyle::printed, text);
    const bool negative = *text.begin == '-';
    auto *const digits = const_cast<char *>(text.begin) + negative;
    std::size_t count = text.length - negative;
    if (places == 0) {
        --count; // no point without places
    } else if (const char *const point = std::localeconv()->decimal_point; point[0] != '.') {
        if (point[0] == '\0' || point[1] != '\0')
            return false;
        *static_cast<char *>(std::memchr(digits, '.', count)) = point[0];
    }
    return out.number(how, negative ? '-' : how.plus, digits, count, text.zeros);
}

} // namespace

int writeUsualFormat(char *const out, std::size_t room, const char *format, std::va_list list)
{
    std::va_list arguments;
    va_copy(arguments, list);
    Writer writer(out, room - 1);
    bool usual = true;
    while (usual && *format) {
        if (*format != '%') {
            const char *const start = format;
            while (*format && *format != '%')
                ++format;
            usual = writer.put(start, static_cast<std::size_t>(format - start));
            continue;
        }
        ++format;
        const Conversion how = readConversion(format);
        switch (*format++) {
        case 'd':
        case 'i':
            usual = writeSigned(writer, how, how.isLong ? va_arg(arguments, long) : va_arg(arguments, int));
            break;
        case 'u':
            usual =
                writeUnsigned(writer, how, how.isLong ? va_arg(arguments, unsigned long) : va_arg(arguments, unsigned));
            break;
        case 'x':
            usual = writeHexadecimal(writer, how,
                                     how.isLong ? va_arg(arguments, unsigned long) : va_arg(arguments, unsigned));
            break;
        case 'c':
            usual = writeCharacter(writer, how, static_cast<char>(va_arg(arguments, int)));
            break;
        case 's':
            usual = writeText(writer, how, va_arg(arguments, const char *));
            break;
        case 'f':
            usual = writeReal(writer, how, va_arg(arguments, double));
            break;
        case '%':
            usual = format[-2] == '%' && writer.fill('%', 1);
            break;
        default:
            usual = false;
            break;
        }
    }
    va_end(arguments);
    if (!usual)
        return -1;
    *writer.at = '\0';
    return static_cast<int>(writer.at - out);
}

} // namespace kar::text
