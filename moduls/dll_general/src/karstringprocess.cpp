// The processing operations of karString: formatting, parsing, trimming, mapping, searching by index.
#include "formattext.h"
#include "karnumeric.h"
#include "karstring.h"
#include "numbertext.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <cwchar>

// The characters of a set as on entry, whatever happens to the text that may hold them.
class karString::CharSet {
public:
    CharSet(const karString &text, const char *set)
    {
        for (std::size_t i = 0, count = text.argumentLength(set); i < count; ++i)
            words[word(set[i])] |= bit(set[i]);
    }
    bool has(char c) const { return words[word(c)] & bit(c); }
    void remove(char c) { words[word(c)] &= ~bit(c); }

private:
    static unsigned word(char c) { return static_cast<unsigned char>(c) >> 5; }
    static unsigned bit(char c) { return 1u << (static_cast<unsigned char>(c) & 31); }

    unsigned words[8] = {};
};

namespace {

constexpr const char *blanks = " \t";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// `atoi` on digits, the largest `int` where they don't fit; moves behind them.
int takeNumber(const char *&at)
{
    long long value = 0;
    for (; isDigit(*at); ++at)
        value = std::min<long long>(value * 10 + (*at - '0'), INT_MAX);
    return static_cast<int>(value);
}

// NOLINTBEGIN(clang-analyzer-valist.Uninitialized): the analyzer loses sight of the list behind the reference

// How much room a format asks for: walks the arguments in step with the format. Where the format leaves what it knows,
// it stops reading arguments, as it can no longer tell what they are.
class FormatEstimate {
public:
    FormatEstimate(const char *format, std::va_list &list) : at(format), arguments(list) {}

    unsigned total()
    {
        long long sum = 0;
        while (*at) {
            if (*at++ != '%') {
                ++sum;
            } else if (*at == '%') {
                ++at;
                ++sum;
            } else {
                sum += item();
            }
        }
        return static_cast<unsigned>(std::clamp<long long>(sum, 0, UINT_MAX));
    }

private:
    int intArgument() { return readable ? va_arg(arguments, int) : 0; }

    long long item()
    {
        long long extra = 0;
        int width = 0;
        bool widthGiven = false;
        for (;; ++at) {
            if (*at == '*') {
                readable = readable && !widthGiven; // the C library takes one width, behind the flags
                width = intArgument();
                widthGiven = true;
            } else if (*at == '#' || *at == '-' || *at == '+' || *at == '0' || *at == ' ') {
                readable = readable && !widthGiven;
                extra += *at == '#' ? 2 : 0;
            } else {
                break;
            }
        }
        if (width == 0) {
            readable = readable && !(widthGiven && isDigit(*at));
            width = takeNumber(at);
        }
        int precision = 0;
        if (*at == '.') {
            ++at;
            if (*at == '*') {
                ++at;
                precision = intArgument();
            } else {
                precision = takeNumber(at);
            }
        }
        char letter = '\0';
        if (*at && std::strchr("hlFNL", *at))
            letter = *at++;
        if (letter == 'F' || letter == 'N' || letter == 'L')
            readable = false;
        if (!*at)
            return extra;
        return extra + conversion(*at++, letter == 'l', width, precision);
    }

    long long conversion(char kind, bool isLong, int width, int precision)
    {
        const long long number = std::max<long long>(static_cast<long long>(width) + precision, 32);
        switch (kind) {
        case 'c':
        case 'C':
            if (readable)
                takeCharacter(isLong || kind == 'C');
            return bounded(2, width, precision);
        case 's':
        case 'S': {
            const char *const text = readable ? va_arg(arguments, const char *) : nullptr;
            return bounded(text ? textLength(text, precision) : 1, width, precision);
        }
        case 'd':
        case 'i':
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            if (readable)
                static_cast<void>(isLong ? va_arg(arguments, long) : va_arg(arguments, int));
            return number;
        case 'e':
        case 'f':
        case 'g':
        case 'G':
            if (readable)
                (void)va_arg(arguments, double);
            return number;
        case 'p':
        case 'n':
            if (readable)
                (void)va_arg(arguments, void *);
            return kind == 'p' ? number : 0;
        case '%': // behind flags, width or precision; takes no argument
            return 0;
        default:
            readable = false;
            return 0;
        }
    }

    void takeCharacter(bool isWide)
    {
        // A wide character travels as `wint_t`, which is narrower than `int` on some targets and then widened.
        using Passed = decltype(+std::wint_t());
        static_cast<void>(isWide ? static_cast<long long>(va_arg(arguments, Passed)) : va_arg(arguments, int));
    }

    // At least 1. With a precision the text may lack its terminator behind so many characters, a wide one too.
    static long long textLength(const char *text, int precision)
    {
        if (precision <= 0)
            return std::max<long long>(static_cast<long long>(std::strlen(text)), 1);
        const void *const end = std::memchr(text, '\0', static_cast<std::size_t>(precision));
        return end ? std::max<long long>(static_cast<const char *>(end) - text, 1) : precision;
    }

    static long long bounded(long long length, int width, int precision)
    {
        length = std::max<long long>(length, width);
        return precision != 0 ? std::min<long long>(length, precision) : length;
    }

    const char *at;
    bool readable = true;
    std::va_list &arguments;
};

// NOLINTEND(clang-analyzer-valist.Uninitialized)

// `vsnprintf` with a format that only the caller knows.
int print(char *out, std::size_t size, const char *format, std::va_list list)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::va_list arguments;
    va_copy(arguments, list);
    const int result = std::vsnprintf(out, size, format, arguments);
    va_end(arguments);
    return result;
#pragma GCC diagnostic pop
}

} // namespace

// ---- Formatting

int karString::format(const char *fmt, ...)
{
    std::va_list arguments;
    va_start(arguments, fmt);
    std::va_list scanned;
    va_copy(scanned, arguments);
    const unsigned total = FormatEstimate(fmt, scanned).total();
    va_end(scanned);
    // Printed apart, as format and arguments may lie in this very text.
    char work[512];
    char *printed = work;
    int result = kar::text::writeUsualFormat(work, sizeof work, fmt, arguments);
    if (result < 0)
        result = print(work, sizeof work, fmt, arguments);
    const auto count = static_cast<unsigned>(result < 0 ? 0 : result);
    if (count >= sizeof work) {
        printed = static_cast<char *>(KarAllocMemory(count + 1));
        if (printed)
            print(printed, std::size_t{count} + 1, fmt, arguments);
    }
    va_end(arguments);

    reSize(total);
    if (bufferSize <= count) { // the estimate was too small
        KarDellocMemory(buffer);
        obtainText(printed ? printed : "", printed ? count : 0, std::uint64_t{count} + 1);
    } else if (buffer) {
        if (count && printed)
            std::memcpy(buffer, printed, count);
        buffer[printed ? count : 0] = '\0';
    }
    cachedLength = count;
    if (printed != work)
        KarDellocMemory(printed);
    return result;
}

void karString::int2s(int value, int radix) { *this = karString(value, radix == -1 ? 10 : radix); }

void karString::double2s(double value, int decimals, bool stripZeros)
{
    *this = karString(value, decimals == -1 ? 10 : decimals, stripZeros);
}

void karString::time(unsigned long seconds)
{
    const unsigned long hours = seconds / 3600;
    const unsigned long days = hours / 24;
    const auto h = static_cast<int>(hours % 24);
    const auto rest = static_cast<int>(seconds % 3600);
    if (days)
        format("%02lud%02d:%02d", days, h, rest / 60);
    else
        format("%02d:%02d:%02d", h, rest / 60, rest % 60);
}

// ---- Parsing

// Characters below 32 as signed bytes, so those from 0x80 on too.
void karString::cutControls()
{
    unsigned end = measured();
    while (end > 0 && static_cast<signed char>(buffer[end - 1]) < 32)
        buffer[--end] = '\0';
    cachedLength = end; // measured, also where it looks like the mark
}

errorCodesKARTORY karString::s2int(int &value)
{
    cutControls();
    if (!buffer) {
        value = 0;
        return KAR_SUCCESS;
    }
    const char *const begin = buffer;
    const char *const end = begin + cachedLength;
    if (kar::text::readDecimal(begin, end, value))
        return KAR_SUCCESS;
    const char *behind;
    const int number = kar::text::readHexadecimal(begin, end, behind);
    const bool isNumber = errno != ERANGE && behind == end;
    value = isNumber ? number : 0;
    return isNumber ? KAR_SUCCESS : KAR_ERROR_NO_NUMBER;
}

errorCodesKARTORY karString::s2double(double &value)
{
    cutControls();
    value = 0.0;
    if (!buffer)
        return KAR_SUCCESS;
    const char *const begin = buffer;
    const char *const end = begin + cachedLength;
    const char *behind;
    const double number = kar::text::readReal(begin, end, behind);
    const auto isPart = [](char c) { return isDigit(c) || c == '-' || c == '.'; };
    if (!std::all_of(behind, end, isPart))
        return KAR_ERROR_NO_NUMBER;
    value = number;
    return KAR_SUCCESS;
}

int karString::searchValue(searchStruct *table, int &value)
{
    for (; table->text; ++table) {
        const unsigned count = length();
        if (count == 0 || !buffer)
            return -1;
        if (argumentLength(table->text) == count && std::strncmp(buffer, table->text, count) == 0) {
            value = table->value;
            return 0;
        }
    }
    return -1;
}

// ---- Trimming and mapping

void karString::trimStart(const CharSet &set)
{
    const unsigned count = length() ? measured() : 0;
    unsigned skip = 0;
    while (skip < count && set.has(buffer[skip]))
        ++skip;
    if (skip == 0)
        return;
    if (skip == count) {
        cut(0);
        return;
    }
    cachedLength = count - skip;
    std::memmove(buffer, buffer + skip, cachedLength);
    buffer[cachedLength] = '\0';
}

void karString::trimEnd(const CharSet &set)
{
    const unsigned count = length() ? measured() : 0;
    if (count == 0)
        return;
    unsigned end = count;
    while (end > 1 && set.has(buffer[end - 1]))
        --end;
    if (end < bufferSize)
        buffer[end] = '\0';
    cachedLength = end;
}

void karString::ltrim(const char *set) { trimStart(CharSet(*this, set ? set : blanks)); }
void karString::rtrim(const char *set) { trimEnd(CharSet(*this, set ? set : blanks)); }

void karString::trim(const char *set)
{
    const CharSet characters(*this, set ? set : blanks); // the set may lie in this text, which changes in between
    trimStart(characters);
    trimEnd(characters);
}

void karString::toLower()
{
    for (unsigned i = 0, end = buffer ? std::min(length(), bufferSize) : 0; i < end; ++i)
        buffer[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(buffer[i])));
}

void karString::toUpper()
{
    for (unsigned i = 0, end = buffer ? std::min(length(), bufferSize) : 0; i < end; ++i)
        buffer[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(buffer[i])));
}

karString karString::notIn(const char *set) const
{
    const CharSet characters(*this, set);
    const unsigned end = measured();
    unsigned count = 0;
    for (unsigned i = 0; i < end; ++i)
        count += !characters.has(buffer[i]);
    karString result;
    result.reSize(count);
    if (!result.buffer)
        return result;
    for (unsigned i = 0; i < end; ++i)
        if (!characters.has(buffer[i]))
            result.buffer[result.cachedLength++] = buffer[i];
    return result;
}

karString karString::maskchar(char c, int count) const
{
    return count < 1 ? karString(*this) : masked(c, static_cast<unsigned>(count));
}

karString karString::masked(char c, unsigned count) const
{
    const unsigned end = measured();
    const auto hits = static_cast<unsigned>(countchar(c));
    const std::uint64_t total = end + std::uint64_t{hits} * count;
    karString result(reserveFor(total));
    if (!result.buffer)
        return result;
    char *out = result.buffer;
    for (unsigned i = 0; i < end; ++i) {
        if (buffer[i] == c) {
            std::memset(out, '\\', count);
            out += count;
        }
        *out++ = buffer[i];
    }
    result.cachedLength = static_cast<unsigned>(total);
    return result;
}

karString karString::replacechar(char from, char to) const
{
    const unsigned end = measured();
    karString result(reserveFor(end));
    if (!result.buffer)
        return result;
    for (unsigned i = 0; i < end; ++i)
        result.buffer[i] = buffer[i] == from ? to : buffer[i];
    result.cachedLength = to == '\0' ? result.measured() : end;
    return result;
}

int karString::countchar(char c) const
{
    return buffer ? static_cast<int>(std::count(buffer, buffer + measured(), c)) : 0;
}

karString karString::removechar(char c) const
{
    const unsigned end = measured();
    karString result(reserveFor(end - static_cast<unsigned>(countchar(c))));
    if (!result.buffer)
        return result;
    for (unsigned i = 0; i < end; ++i)
        if (buffer[i] != c)
            result.buffer[result.cachedLength++] = buffer[i];
    return result;
}

// ---- Searching by index

int karString::karstrchr(char c, int from) const
{
    if (from < 0 || static_cast<unsigned>(from) >= length() || !buffer)
        return -1;
    const char *const begin = buffer + from;
    const char *found;
    if (buffer[bufferSize - 1] == '\0') {
        found = std::strchr(begin, c);
    } else {
        const char *const end = buffer + bufferSize;
        found = std::find_if(begin, end, [c](char at) { return at == c || at == '\0'; });
        if (found == end || *found != c)
            found = nullptr;
    }
    return found ? static_cast<int>(found - buffer) : -1;
}

// The end of the part that a backward search sees, -1 where `limit` isn't valid.
int karString::backwardEnd(int limit) const
{
    const unsigned end = limit == -1 ? length() : static_cast<unsigned>(limit);
    if (limit < -1 || end > length() || !buffer)
        return -1;
    return static_cast<int>(std::min(end, measured()));
}

int karString::karstrrchr(char c, int limit) const
{
    const int end = backwardEnd(limit);
    if (c == '\0' || end < 0)
        return end;
    int i = end - 1;
    while (i >= 0 && buffer[i] != c)
        --i;
    return i;
}

int karString::karstrchr(const char *set, int from) const
{
    const std::size_t count = argumentLength(set, 2);
    if (count < 2)
        return karstrchr(count ? *set : '\0', from);
    if (from < 0 || static_cast<unsigned>(from) >= length() || !buffer)
        return -1;
    const CharSet characters(*this, set);
    for (auto i = static_cast<unsigned>(from); i < bufferSize && buffer[i]; ++i)
        if (characters.has(buffer[i]))
            return static_cast<int>(i);
    return -1;
}

int karString::karstrrchr(const char *set, int limit) const
{
    const int end = backwardEnd(limit);
    int smallest = -1;
    if (end <= 0)
        return -1;
    CharSet open(*this, set); // those whose last position isn't known yet
    for (int i = end - 1; i >= 0; --i) {
        if (open.has(buffer[i])) {
            open.remove(buffer[i]);
            smallest = i;
        }
    }
    return smallest;
}

int karString::karstrstr(const char *s, int from) const
{
    if (from < 0 || static_cast<unsigned>(from) >= length() || !buffer)
        return -1;
    const char *const found = searchFrom(s, static_cast<unsigned>(from));
    return found ? static_cast<int>(found - buffer) : -1;
}

int karString::karstrrstr(const char *, int limit) const
{
    const int end = backwardEnd(limit);
    if (end < 0 || length() == 0)
        return -1;
    // The shortened text stands in itself at 0 alone; an empty one stands everywhere.
    return end > 0 ? 0 : static_cast<int>(length() - 1);
}

karString karString::karstrtok(const char *delimiters)
{
    karString token;
    const unsigned count = length();
    if (count == 0)
        return token;
    const int found = karstrchr(delimiters, 0);
    const unsigned i = found < 0 ? count : static_cast<unsigned>(found);
    token.ncopy(text(), i);
    if (i < count && i < bufferSize) {
        // What follows moves to the start, behind a NUL in the text too, up to the next one. In pieces that the cache
        // still holds from the search when they are moved.
        constexpr unsigned piece = 2048;
        const char *const rest = buffer + i + 1;
        const unsigned room = bufferSize - i - 1;
        unsigned moved = 0;
        for (bool ended = false; !ended && moved < room;) {
            const unsigned next = std::min(piece, room - moved);
            const auto part = static_cast<unsigned>(boundedLength(rest + moved, next));
            std::memmove(buffer + moved, rest + moved, part);
            moved += part;
            ended = part < next;
        }
        buffer[moved] = '\0';
        cachedLength = moved;
    } else {
        cut(0);
    }
    return token;
}

// ---- Date and time

namespace {

// Now in the local time zone, as the host's environment has it at this moment.
std::tm localTime()
{
#if defined(_WIN32)
    _tzset();
#else
    tzset();
#endif
    const std::time_t now = std::time(nullptr);
    const std::tm *const local = std::localtime(&now);
    return local ? *local : std::tm();
}

// Three numbers of two digits.
karString threeFields(int first, int second, int third, char separator)
{
    char text[9];
    char *out = text;
    for (const int field : {first, second, third}) {
        *out++ = static_cast<char>('0' + field / 10 % 10);
        *out++ = static_cast<char>('0' + field % 10);
        *out++ = separator;
    }
    text[8] = '\0';
    return karString(static_cast<const char *>(text), 8u);
}

} // namespace

karString GetLocalizedDate()
{
    const std::tm now = localTime();
    return threeFields(now.tm_mon + 1, now.tm_mday, now.tm_year, '/');
}

karString GetLocalizedTime()
{
    const std::tm now = localTime();
    return threeFields(now.tm_hour, now.tm_min, now.tm_sec, ':');
}
