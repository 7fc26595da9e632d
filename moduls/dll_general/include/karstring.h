/// \file
/// The text type of the library: storage, construction, comparison, concatenation, formatting, parsing and searching.
#ifndef KAR_STRING_H
#define KAR_STRING_H

#include "karalloc.h"
#include "karenum.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

/// A text that owns its NUL-terminated bytes. Copies are deep; nothing is shared.
///
/// The length is a cache that can be marked unknown, and the bytes are handed out as a plain writable `char *`. So the
/// text is what stands before the first NUL of the buffer, whatever the cache says.
///
/// Sizes: a buffer grows to exactly the next multiple of 8 that holds what is needed, never further. Bytes of a new
/// buffer that nothing is written to are 0. A text argument that lies in the receiver counts with its value on entry,
/// and where the receiver lacks its terminator, it ends with the buffer.
/// Note: so a loop of appends copies the text at every eighth character, unless `reSize` has made room before.
///
/// After a failed allocation the buffer is null while length and size stay as computed. Such a text reads as empty, and
/// nothing is written to it until an operation obtains a larger buffer. A size that doesn't fit 32 bits counts as a
/// failed allocation.
///
/// Note: a text whose cached length is above its own (a NUL was appended, or `ncat` padded) takes part in sizes with
/// the cached length, and its copy ends at the first NUL. A text that runs on past its cached length (a short `ncopy`)
/// is copied whole, into a size of adjust(its length + 1) where the stated size is too small.
///
/// Note: where a `const char *` is wanted, a string that isn't const converts by way of `operator char *`, which marks
/// its length unknown. Only the time of the next `length` is lost.
class karString {
public:
    /// A row of the table of `searchValue`. A row whose `text` is null ends the table.
    struct searchStruct {
        const char *text; ///< compared whole
        int value;        ///< given for an equal text
    };

    /// \name Construction
    /// `extra` is spare room in bytes, on top of the text and its terminator.
    /// Note: ambiguous are `karString(0)` and `karString("abc", 0)`, where 0 may be a number or a null text, and
    /// `karString('a', 3)`, where the character may be a number: write `0u`, `nullptr`, `3u`.
    /// \{
    KAR_API karString();                                           ///< Empty, size 16.
    KAR_API explicit karString(unsigned reserve);                  ///< Empty, with room for `reserve` characters.
    KAR_API karString(char c, unsigned count, unsigned extra = 8); ///< `count` times `c`.
    /// The digits of `value` in `radix` 2 to 36, letters in lower case. Another radix gives the empty text. Size
    /// without spare room.
    /// Note: a sign is written in radix 10 alone: in every other one the 32 bits count as an unsigned number.
    KAR_API karString(int value, int radix);
    KAR_API karString(long value, int radix); ///< Note: 32 bits wide also where `long` is wider.
    /// `value` with `decimals` places behind a point, the exact binary value rounded half away from zero. `stripZeros`
    /// takes the zeros at the end of the places away, and then the point if it is last. Any magnitude and any number of
    /// places; negative `decimals` count as 0. Not-a-number and infinities give nan, inf, -inf. No spare room.
    /// Note: without `stripZeros` the point is there even if nothing follows it: 5.0 with 0 places is "5.". A negative
    /// value that rounds to zero, -0.0 too, keeps its sign. A value below 1 that vanishes writes the zeros behind its
    /// own point: 0.0001 with 2 places is "0.000".
    KAR_API karString(double value, int decimals, bool stripZeros);
    KAR_API karString(const char *first, const char *second); ///< `first`, then `second`; either may be null.
    KAR_API karString(const char *text, unsigned extra = 8);  ///< A copy; null gives the empty text.
    /// A copy of the text in a buffer of its own.
    KAR_API karString(const karString &other, unsigned extra = 8);
    /// Note: leaves a null buffer, so that a second explicit call does nothing.
    KAR_API ~karString();
    /// \}

    /// \name Assignment
    /// \{

    /// A text that doesn't fit takes the size of `other` as it is. Two strings without a buffer change nothing.
    KAR_API karString &operator=(const karString &other);
    /// Null gives the empty text and keeps the buffer. A text that doesn't fit gets 8 bytes of spare room.
    KAR_API karString &operator=(const char *text);
    /// \}

    /// \name Length and size
    /// \{

    /// Characters of the text, from the cache where that is valid.
    unsigned length() const { return cachedLength != unknownLength ? cachedLength : measureAndStore(); }
    unsigned vstrlen() const { return measured(); }      ///< Measures the text, whatever the cache says.
    unsigned capacity() const { return bufferSize - 1; } ///< Characters that the buffer holds.
    unsigned size() const { return bufferSize; }         ///< Bytes of the buffer.
    /// 1 if the text is empty. Note: it is no test for a null pointer.
    int isNull() const { return !buffer || !*buffer; }
    /// Room for `n` characters, at least for the present text; never shrinks. Gives `capacity()`.
    KAR_API unsigned reSize(unsigned n);
    /// Ends the text at index `n` if that is below `length()`.
    void cut(unsigned n)
    {
        if (n < length()) {
            if (buffer)
                buffer[n] = '\0';
            cachedLength = n;
        }
    }
    /// \}

    /// \name Character access
    /// \{
    operator const char *() const { return buffer; } ///< The bytes themselves; null only after a failed allocation.
    /// The caller may write: marks the length unknown.
    operator char *()
    {
        cachedLength = unknownLength;
        return buffer;
    }
    /// The character at an index below `size()`, behind the text too.
    /// Note: marks the length unknown, even for a read. A bad index gives one scratch character, shared by all strings,
    /// and leaves the length alone.
    char &operator[](unsigned i)
    {
        if (i < bufferSize && buffer) {
            cachedLength = unknownLength;
            return buffer[i];
        }
        return scratchCharacter();
    }
    char &at(unsigned i) { return (*this)[i]; } ///< \overload
    /// An index of any other integer type; negative ones are bad.
    template <class Integer, class = std::enable_if_t<std::is_integral<Integer>::value>>
    char &operator[](Integer i)
    {
        return (*this)[toIndex(i)];
    }
    /// \overload
    template <class Integer, class = std::enable_if_t<std::is_integral<Integer>::value>>
    char &at(Integer i)
    {
        return (*this)[toIndex(i)];
    }
    /// The character at an index up to the length, where the NUL stands; 0 behind it. Measures; changes nothing.
    KAR_API char getChar(unsigned i) const;
    /// \}

    /// \name Searching by pointer
    /// Null if nothing is found. The NUL character finds the terminator.
    /// \{
    KAR_API const char *vstrstr(const char *s) const;    ///< First place of `s`; null isn't accepted.
    KAR_API const char *vstrchr(char c) const;           ///< First `c`.
    KAR_API const char *vstrrchr(char c) const;          ///< Last `c`.
    KAR_API int vstrchr(unsigned &index, char c) const;  ///< 1 and the index of the first `c`; 0 leaves `index`.
    KAR_API int vstrrchr(unsigned &index, char c) const; ///< 1 and the index of the last `c`; 0 leaves `index`.
    /// Last `c` before index `limit`; null if `limit` is at or above the length. NUL gives the place of `limit`.
    KAR_API const char *vstrrchr(char c, unsigned limit) const;
    /// \}

    /// \name Comparison
    /// Byte by byte, as unsigned, up to the first NUL. 1 or 0. A null text isn't accepted.
    /// Note: a text on the left side (`"abc" == s`) compares addresses.
    /// \{

    /// 1 or 0, by the first byte in which the two texts differ.
    int operator<(const karString &other) const { return compare(other) < 0; }
    int operator>(const karString &other) const { return compare(other) > 0; }
    int operator<=(const karString &other) const { return compare(other) <= 0; }
    int operator>=(const karString &other) const { return compare(other) >= 0; }
    int operator==(const karString &other) const { return compare(other) == 0; }
    int operator!=(const karString &other) const { return compare(other) != 0; }
    int operator<(const char *text) const { return compare(text) < 0; }
    int operator>(const char *text) const { return compare(text) > 0; }
    int operator<=(const char *text) const { return compare(text) <= 0; }
    int operator>=(const char *text) const { return compare(text) >= 0; }
    int operator==(const char *text) const { return compare(text) == 0; }
    int operator!=(const char *text) const { return compare(text) != 0; }
    // A plain text that isn't const would fit a comparison of addresses as well.
    template <class Char, class = std::enable_if_t<std::is_same<Char, char>::value>>
    int operator<(Char *text) const
    {
        return compare(text) < 0;
    }
    template <class Char, class = std::enable_if_t<std::is_same<Char, char>::value>>
    int operator>(Char *text) const
    {
        return compare(text) > 0;
    }
    template <class Char, class = std::enable_if_t<std::is_same<Char, char>::value>>
    int operator<=(Char *text) const
    {
        return compare(text) <= 0;
    }
    template <class Char, class = std::enable_if_t<std::is_same<Char, char>::value>>
    int operator>=(Char *text) const
    {
        return compare(text) >= 0;
    }
    template <class Char, class = std::enable_if_t<std::is_same<Char, char>::value>>
    int operator==(Char *text) const
    {
        return compare(text) == 0;
    }
    template <class Char, class = std::enable_if_t<std::is_same<Char, char>::value>>
    int operator!=(Char *text) const
    {
        return compare(text) != 0;
    }
    /// \}

    /// \name Concatenation
    /// Note: `s &= 0` is ambiguous between a null text and the NUL character.
    /// \{

    /// A new string of both texts with 8 bytes of spare room. Null changes nothing.
    KAR_API karString operator&(const karString &other);
    KAR_API karString operator&(const char *text); ///< \overload
    /// Appends at the cached length. Null changes nothing; `s &= s` doubles the text.
    KAR_API karString &operator&=(const char *text);
    KAR_API karString &operator&=(const karString &other); ///< \overload
    /// Appends one character. Note: NUL counts in the cached length, while the text keeps its end.
    karString &operator&=(char c)
    {
        const unsigned end = length();
        if (!buffer || bufferSize <= end + 1)
            return appendGrowing(c);
        buffer[end] = c;
        buffer[end + 1] = '\0';
        ++cachedLength;
        return *this;
    }
    /// \}

    /// \name Bounded copies
    /// \{

    /// At most `n` characters of `src`; null gives the empty text. A buffer that is too small is replaced.
    /// Note: a `src` shorter than `n` is copied without a terminator: what stood behind it in the buffer remains, and
    /// the text may run on past the cached length.
    KAR_API void ncopy(const char *src, unsigned n);
    /// The characters from index `first` to index `last`, both included; `last` -1 means up to the end. Null, and a
    /// `first` above `last` (as signed numbers), give the empty text.
    /// Note: a `last` behind the end of `src` is filled up with NULs, and they count in the cached length. A `first`
    /// behind the end copies nothing.
    KAR_API void ncopy(const char *src, unsigned first, int last);
    /// Appends at most `n` characters of `src`. Null and an `n` of 0 change nothing.
    /// Note: a `src` shorter than `n` is filled up with NULs, and they count in the cached length.
    KAR_API void ncat(const char *src, unsigned n);
    /// \}

    /// \name Formatting and parsing
    /// \{

    /// The text that the C library's `printf` makes of `fmt` and the arguments; gives its length. A negative result,
    /// the C library's failure, leaves the empty text.
    /// Makes room by an estimate: ordinary characters as they are, numbers and pointers by width + precision and at
    /// least 32, a character by 2, a text by its length and at least 1, both raised to the width and lowered to a
    /// precision that isn't 0, "#" by 2 more. Where the estimate is too small, the size becomes adjust(length + 1).
    /// Never shrinks. A format that ends inside a conversion ends at its NUL.
    /// Note: the estimate doesn't know a second length letter, the letters F, L, N, j, t, z, nor any conversion besides
    /// "cCsSdiuxXoefgGpn%"; from there on it reads no further argument. A negative precision given by "*" lowers it.
    KAR_API int format(const char *fmt, ...);
    /// Reads a whole number and cuts characters below 32, compared as signed bytes, off the end of the text: 0 and
    /// `value`, or -120 and `value` 0. Digits alone are decimal. Everything else is hexadecimal with optional sign and
    /// 0x, in the range of 32 bits. The empty text is 0.
    /// Note: digits above 2147483647 give 2147483647 and 0, and leave `errno` alone.
    /// Note: 12a is 298, -5 is -5 and -10 is -16. A range error of an earlier call in `errno` counts as one here, as
    /// `errno` isn't cleared.
    KAR_API errorCodesKARTORY s2int(int &value);
    /// Reads a real number in the C locale, correctly rounded, after the same cut: 0 and `value`, or -120 and `value`
    /// 0.0 at the first character that isn't a digit, "-" or ".". Beyond the range it gives an infinity.
    /// Note: the order isn't checked: 1-2.3.4 is 1. There is no "e" and no "+".
    KAR_API errorCodesKARTORY s2double(double &value);
    /// Looks for the row that is equal to the text: 0 and its `value`, or -1. The first such row wins.
    /// Note: blanks count, and the empty text matches nothing, not even an empty row.
    KAR_API int searchValue(searchStruct *table, int &value);
    KAR_API void int2s(int value, int radix); ///< Assigns `karString(value, radix)`; -1 means radix 10.
    /// Assigns `karString(value, decimals, stripZeros)`; -1 means 10 places.
    KAR_API void double2s(double value, int decimals, bool stripZeros);
    /// A duration: HH:MM:SS below a day. Note: from then on days without the seconds: 01d01:01.
    KAR_API void time(unsigned long seconds);
    /// \}

    /// \name Trimming and mapping
    /// `set` null means blank and tab.
    /// \{
    KAR_API void ltrim(const char *set = nullptr); ///< Takes characters of `set` off the start.
    /// Takes characters of `set` off the end. Note: the first character always stays.
    KAR_API void rtrim(const char *set = nullptr);
    KAR_API void trim(const char *set = nullptr);            ///< `ltrim`, then `rtrim`.
    KAR_API void toLower();                                  ///< `length()` characters by the C library, in place.
    KAR_API void toUpper();                                  ///< \overload
    KAR_API karString notIn(const char *set) const;          ///< The characters that aren't in `set`.
    KAR_API karString maskchar(char c, int count) const;     ///< `count` backslashes before each `c`.
    KAR_API karString replacechar(char from, char to) const; ///< Each `from` replaced by `to`.
    KAR_API int countchar(char c) const;                     ///< How often `c` occurs.
    KAR_API karString removechar(char c) const;              ///< The text without `c`.
    /// \}

    /// \name Searching by index
    /// An index into the whole text, or -1. Forward from index `from`, which has to lie in 0 to `length()` - 1;
    /// backward before index `limit`, which has to lie in 0 to `length()`, where -1 means `length()`.
    /// Note: where the cached length is above the text's, a search may start behind the text's end. It stops at the
    /// next NUL or at the end of the buffer.
    /// \{
    KAR_API int karstrchr(char c, int from) const;          ///< First `c`. NUL finds the terminator.
    KAR_API int karstrrchr(char c, int limit) const;        ///< Last `c`. NUL gives `limit` or the text's end.
    KAR_API int karstrchr(const char *set, int from) const; ///< First of `set`. An empty set finds the terminator.
    /// Note: of the last positions of the characters of `set` the smallest, not the largest: abcabc with ab gives 3.
    /// An empty set gives -1.
    KAR_API int karstrrchr(const char *set, int limit) const;
    KAR_API int karstrstr(const char *s, int from) const; ///< First place of `s`.
    /// Note: looks for the text's own first `limit` characters and never reads `s`. So it gives 0 where there are any,
    /// and with `limit` 0 the last index of a text that isn't empty.
    KAR_API int karstrrstr(const char *s, int limit) const;
    /// Takes the first token off: gives what stands before the first of `delimiters`, and keeps what stands behind it.
    /// Note: two delimiters in a row give an empty token, so a loop ends when the string is empty.
    KAR_API karString karstrtok(const char *delimiters);
    /// \}

protected:
    static constexpr unsigned unknownLength = 0xFFFF; ///< The mark. A text of just this length is measured each time.

    static constexpr unsigned adjust(unsigned n) { return (n + 7u) & ~7u; } ///< The next multiple of 8, 0 for 0.

    char *buffer = nullptr;            ///< From `KarAllocMemory`; null only after a failed allocation and destruction.
    mutable unsigned cachedLength = 0; ///< Characters, or the mark.
    unsigned bufferSize = 0;           ///< Bytes in `buffer`, terminator included.

private:
    class CharSet;

    template <class Integer>
    static constexpr unsigned toIndex(Integer i)
    {
        return static_cast<unsigned long long>(i) > 0xffffffffu ? 0xffffffffu : static_cast<unsigned>(i);
    }

    // The last byte of a buffer is NUL, but where a host has written there or a text fills its buffer.
    bool isTerminated() const { return buffer && !buffer[bufferSize - 1]; }
    int compare(const char *text) const
    {
        return isTerminated() ? std::strcmp(buffer, text) : compareBounded(text, argumentLength(text));
    }
    int compare(const karString &other) const
    {
        return isTerminated() && other.isTerminated() ? std::strcmp(buffer, other.buffer)
                                                      : compareBounded(other.text(), other.measured());
    }

    karString(const karString &left, const char *right, std::size_t rightCount);
    // The length of a text, `limit` if there is no NUL before.
    static std::size_t boundedLength(const char *text, std::size_t limit)
    {
        const void *const end = std::memchr(text, '\0', limit);
        return end ? static_cast<std::size_t>(static_cast<const char *>(end) - text) : limit;
    }
    // Where `place` stands in the buffer; `bufferSize` or more if it doesn't.
    std::size_t offsetOf(const char *place) const
    {
        return buffer ? reinterpret_cast<std::uintptr_t>(place) - reinterpret_cast<std::uintptr_t>(buffer) : SIZE_MAX;
    }
    // The length of an argument, which may lie in this text, where it ends with the buffer at the latest.
    std::size_t argumentLength(const char *text) const
    {
        const std::size_t offset = offsetOf(text);
        return offset < bufferSize ? boundedLength(text, bufferSize - offset) : std::strlen(text);
    }
    std::size_t argumentLength(const char *text, std::size_t limit) const // at most `limit`
    {
        const std::size_t offset = offsetOf(text);
        return boundedLength(text, offset < bufferSize && bufferSize - offset < limit ? bufferSize - offset : limit);
    }
    unsigned measured() const { return buffer ? static_cast<unsigned>(boundedLength(buffer, bufferSize)) : 0; }
    static unsigned reserveFor(std::uint64_t count) // with 8 bytes of spare room; more than fits fails
    {
        return count < 0xfffffff0u ? static_cast<unsigned>(count) + 8u : 0xffffffffu;
    }
    const char *text() const { return buffer ? buffer : ""; }
    char *obtain(std::uint64_t needed);
    void obtainText(const char *text, std::size_t count, std::uint64_t needed);
    char *grow(std::uint64_t want);
    karString &append(const char *text, std::size_t count, std::uint64_t n);
    void replaceBuffer(const char *src, std::size_t count, std::uint64_t needed);
    void assignBounded(const char *src, std::size_t count, std::size_t newLength, bool terminate);
    karString masked(char c, unsigned count) const;
    void cutControls();
    void trimStart(const CharSet &set);
    void trimEnd(const CharSet &set);
    int backwardEnd(int limit) const;
    const char *searchFrom(const char *s, unsigned from) const;
    KAR_API static char &scratchCharacter();
    KAR_API int compareBounded(const char *text, std::size_t count) const;
    KAR_API unsigned measureAndStore() const;
    KAR_API karString &appendGrowing(char c);
};

/// \name Date and time
/// \{
KAR_API karString GetLocalizedDate(); ///< Today as MM/DD/YY, in the local time zone. Note: not in the host's language.
KAR_API karString GetLocalizedTime(); ///< Now as HH:MM:SS, in the local time zone.
/// \}

#endif
