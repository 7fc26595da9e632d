#include "karstring.h"

#include "karnumeric.h"
#include "numbertext.h"

#include <algorithm>
#include <cstdint>

namespace {

char scratch; // what a bad index gives

// The largest count of bytes whose size, a multiple of 8, fits 32 bits.
constexpr std::uint64_t largestSize = 0xfffffff8;

void putZeros(char *place)
{
    const std::uint64_t zeros = 0;
    std::memcpy(place, &zeros, sizeof zeros);
}

// Zeroes a new buffer from index `from` on, and up to 7 bytes before it: comes before the text is written.
void clearFrom(char *buffer, std::size_t from, std::size_t size)
{
    from &= ~std::size_t{7};
    if (size - from > 24) {
        std::memset(buffer + from, 0, size - from);
        return;
    }
    putZeros(buffer + from);
    if (size - from > 8)
        putZeros(buffer + from + 8);
    if (size - from > 16)
        putZeros(buffer + from + 16);
}

} // namespace

// ---- Storage

char *karString::obtain(std::uint64_t needed)
{
    bufferSize = adjust(static_cast<unsigned>(needed));
    buffer = needed > largestSize ? nullptr : static_cast<char *>(KarAllocMemory(bufferSize));
    return buffer;
}

void karString::obtainText(const char *text, std::size_t count, std::uint64_t needed)
{
    if (!obtain(needed))
        return;
    clearFrom(buffer, count, bufferSize);
    std::memcpy(buffer, text, count);
}

// A new buffer with a text that may lie in the old one, which is then kept until the text is copied.
void karString::replaceBuffer(const char *src, std::size_t count, std::uint64_t needed)
{
    char *const old = buffer;
    const bool isOwn = offsetOf(src) < bufferSize;
    if (!isOwn)
        KarDellocMemory(old);
    obtainText(src, count, needed);
    if (isOwn)
        KarDellocMemory(old);
}

// Moves the text to a buffer for `want` characters and gives the old buffer, which the caller releases.
char *karString::grow(std::uint64_t want)
{
    char *const old = buffer;
    const unsigned count = measured();
    if (obtain(want + 1)) {
        clearFrom(buffer, count, bufferSize);
        if (count)
            std::memcpy(buffer, old, count);
    }
    return old;
}

// Appends `count` characters at the cached length, then NULs up to `n`; without such ones, the terminator.
karString &karString::append(const char *text, std::size_t count, std::uint64_t n)
{
    const unsigned end = length();
    char *old = nullptr;
    if (bufferSize <= end + n)
        old = grow(end + n);
    if (buffer) {
        std::memmove(buffer + end, text, count); // the text may lie in the old buffer or in this one
        if (count == n)
            buffer[end + count] = '\0';
        else
            std::memset(buffer + end + count, 0, static_cast<std::size_t>(n) - count);
    }
    cachedLength = end + static_cast<unsigned>(n);
    KarDellocMemory(old);
    return *this;
}

karString &karString::appendGrowing(char c) { return append(&c, 1, 1); }

unsigned karString::measureAndStore() const { return cachedLength = measured(); }

char &karString::scratchCharacter() { return scratch; }

// ---- Construction

karString::karString()
{
    if (obtain(9))
        clearFrom(buffer, 0, 16);
}

karString::karString(unsigned reserve)
{
    if (obtain(std::uint64_t{reserve} + 1))
        clearFrom(buffer, 0, bufferSize);
}

karString::karString(char c, unsigned count, unsigned extra) : cachedLength(count)
{
    if (!obtain(std::uint64_t{count} + extra + 1))
        return;
    clearFrom(buffer, count, bufferSize);
    std::memset(buffer, c, count);
}

karString::karString(int value, int radix)
{
    char work[kar::text::integerRoom];
    cachedLength = kar::text::writeInteger(value, radix, work);
    obtainText(work, cachedLength, cachedLength + 1u);
}

karString::karString(long value, int radix) : karString(kar::toSigned(static_cast<unsigned>(value)), radix) {}

karString::karString(double value, int decimals, bool stripZeros)
{
    kar::text::FixedText text;
    using Style = kar::text::FixedStyle;
    kar::text::writeFixed(value, decimals, stripZeros ? Style::stripped : Style::published, text);
    const std::uint64_t total = std::uint64_t{text.length} + text.zeros;
    cachedLength = static_cast<unsigned>(total);
    obtainText(text.begin, text.length, total + 1);
    if (buffer)
        std::memset(buffer + text.length, '0', text.zeros);
}

karString::karString(const char *first, const char *second)
{
    const std::size_t firstLength = first ? std::strlen(first) : 0;
    const std::size_t secondLength = second ? std::strlen(second) : 0;
    const std::uint64_t total = std::uint64_t{firstLength} + secondLength;
    cachedLength = static_cast<unsigned>(total);
    if (!obtain(total + 1))
        return;
    clearFrom(buffer, static_cast<std::size_t>(total), bufferSize);
    if (firstLength)
        std::memcpy(buffer, first, firstLength);
    if (secondLength)
        std::memcpy(buffer + firstLength, second, secondLength);
}

karString::karString(const char *text, unsigned extra)
{
    const std::size_t count = text ? std::strlen(text) : 0;
    cachedLength = static_cast<unsigned>(count);
    obtainText(text ? text : "", count, std::uint64_t{count} + 1 + extra);
}

karString::karString(const karString &other, unsigned extra)
{
    const unsigned count = other.measured();
    cachedLength = other.cachedLength != unknownLength ? other.cachedLength : count;
    std::uint64_t needed = std::uint64_t{cachedLength} + extra + 1;
    if (((needed + 7) & ~std::uint64_t{7}) <= count) // the text runs on past its cached length
        needed = std::uint64_t{count} + 1;
    obtainText(other.text(), count, needed);
}

karString::~karString()
{
    KarDellocMemory(buffer);
    // Through a volatile place, as the compiler drops a plain store to an object that ends here.
    *const_cast<char *volatile *>(&buffer) = nullptr;
}

// ---- Assignment

karString &karString::operator=(const karString &other)
{
    if (this == &other || buffer == other.buffer)
        return *this;
    const unsigned count = other.measured();
    const unsigned newLength = other.cachedLength != unknownLength ? other.cachedLength : count;
    const bool isLonger = newLength >= bufferSize;
    unsigned newSize = isLonger ? other.bufferSize : bufferSize;
    const bool runsOn = other.buffer && count >= newSize; // past its cached length; without a buffer newSize may be 0
    if (runsOn)
        newSize = adjust(count + 1);
    cachedLength = newLength;
    if (isLonger || runsOn) {
        KarDellocMemory(buffer);
        if (newLength < newSize || runsOn) {
            obtainText(other.text(), count, newSize);
        } else { // the size of a source that has no buffer, as its own size didn't fit 32 bits
            buffer = nullptr;
            bufferSize = newSize;
        }
    } else if (buffer) {
        std::memcpy(buffer, other.text(), count);
        buffer[count] = '\0';
    }
    return *this;
}

karString &karString::operator=(const char *text)
{
    const std::size_t count = text ? argumentLength(text) : 0;
    cachedLength = static_cast<unsigned>(count);
    if (text && count >= bufferSize) {
        replaceBuffer(text, count, std::uint64_t{count} + 9);
    } else if (buffer) {
        if (count)
            std::memmove(buffer, text, count);
        buffer[count] = '\0';
    }
    return *this;
}

unsigned karString::reSize(unsigned n)
{
    const unsigned want = std::max(n, length());
    if (bufferSize < want + 1)
        KarDellocMemory(grow(want));
    return bufferSize - 1;
}

// ---- Reading and searching

char karString::getChar(unsigned i) const { return i < measured() ? buffer[i] : '\0'; }

// Where a text may lack its terminator or its buffer: both end at the end of their buffers.
int karString::compareBounded(const char *other, std::size_t otherCount) const
{
    const std::size_t count = measured();
    const int order = std::memcmp(text(), other, std::min(count, otherCount));
    return order ? order : static_cast<int>(count > otherCount) - static_cast<int>(count < otherCount);
}

// First place of `s` at or behind index `from`, up to the next NUL or the end of the buffer.
const char *karString::searchFrom(const char *s, unsigned from) const
{
    if (buffer[bufferSize - 1] == '\0')
        return std::strstr(buffer + from, s);
    const char *const begin = buffer + from;
    const char *const end = begin + boundedLength(begin, bufferSize - from);
    const std::size_t count = argumentLength(s);
    const char *const found = std::search(begin, end, s, s + count);
    return found != end || count == 0 ? found : nullptr;
}

const char *karString::vstrstr(const char *s) const { return buffer ? searchFrom(s, 0) : nullptr; }

const char *karString::vstrchr(char c) const
{
    return buffer ? static_cast<const char *>(std::memchr(buffer, c, std::min(measured() + 1, bufferSize))) : nullptr;
}

const char *karString::vstrrchr(char c) const
{
    if (!buffer)
        return nullptr;
    for (unsigned i = std::min(measured() + 1, bufferSize); i-- > 0;)
        if (buffer[i] == c)
            return buffer + i;
    return nullptr;
}

int karString::vstrchr(unsigned &index, char c) const
{
    const char *const found = vstrchr(c);
    if (!found)
        return 0;
    index = static_cast<unsigned>(found - buffer);
    return 1;
}

int karString::vstrrchr(unsigned &index, char c) const
{
    const char *const found = vstrrchr(c);
    if (!found)
        return 0;
    index = static_cast<unsigned>(found - buffer);
    return 1;
}

const char *karString::vstrrchr(char c, unsigned limit) const
{
    if (!buffer || limit >= measured())
        return nullptr;
    if (c == '\0')
        return buffer + limit; // where the text would end
    for (unsigned i = limit; i-- > 0;)
        if (buffer[i] == c)
            return buffer + i;
    return nullptr;
}

// ---- Concatenation

// What copy, append and copy again give, in one allocation.
karString::karString(const karString &left, const char *right, std::size_t rightCount)
{
    const unsigned leftMeasured = left.measured();
    const unsigned leftLength = left.cachedLength != unknownLength ? left.cachedLength : leftMeasured;
    const unsigned leftCount = std::min(leftMeasured, leftLength);
    const bool endsEarly = leftCount < leftLength; // before its cached length, and the result ends there too
    std::uint64_t total = std::uint64_t{leftLength} + rightCount;
    if (endsEarly && total == unknownLength) // the second copy takes the sum for the mark and measures
        total = leftCount;
    cachedLength = static_cast<unsigned>(total);
    if (!obtain(total + 9))
        return;
    clearFrom(buffer, endsEarly ? leftCount : static_cast<std::size_t>(total), bufferSize);
    if (leftCount)
        std::memcpy(buffer, left.buffer, leftCount);
    if (!endsEarly && rightCount)
        std::memcpy(buffer + leftLength, right, rightCount);
}

karString karString::operator&(const karString &other) { return karString(*this, other.text(), other.measured()); }

karString karString::operator&(const char *text)
{
    return text ? karString(*this, text, argumentLength(text)) : karString(*this);
}

karString &karString::operator&=(const char *text)
{
    if (!text)
        return *this;
    const std::size_t count = argumentLength(text);
    return append(text, count, count);
}

karString &karString::operator&=(const karString &other)
{
    const unsigned count = other.measured();
    return append(other.text(), count, count);
}

// ---- Bounded copies

// The copies of a text that may lie in this buffer, then NULs up to `newLength` and the terminator if it is asked for.
void karString::assignBounded(const char *src, std::size_t count, std::size_t newLength, bool terminate)
{
    cachedLength = static_cast<unsigned>(newLength);
    if (newLength < bufferSize) {
        if (!buffer)
            return;
        if (count)
            std::memmove(buffer, src, count);
        if (terminate)
            std::memset(buffer + count, 0, newLength - count + 1);
        return;
    }
    replaceBuffer(src, count, std::uint64_t{newLength} + 1);
}

void karString::ncopy(const char *src, unsigned n)
{
    if (!src) {
        assignBounded("", 0, 0, true);
        return;
    }
    const std::size_t count = argumentLength(src, n);
    assignBounded(src, count, count, count == n);
}

void karString::ncopy(const char *src, unsigned first, int last)
{
    if (!src || (kar::toSigned(first) > last && last != -1)) {
        assignBounded("", 0, 0, true);
        return;
    }
    const std::size_t srcLength = argumentLength(src);
    const std::size_t available = srcLength > first ? srcLength - first : 0;
    if (last == -1) {
        assignBounded(available ? src + first : src, available, available, true);
        return;
    }
    const unsigned count = static_cast<unsigned>(last) - first + 1;
    assignBounded(available ? src + first : src, std::min<std::size_t>(available, count), count, true);
}

void karString::ncat(const char *src, unsigned n)
{
    if (src && n)
        append(src, argumentLength(src, n), n);
}
