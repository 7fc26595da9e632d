// Storage, construction, assignment, access, comparison, concatenation and bounded copies of texts.
// Not tested: a null where none is accepted.
#include "textprobe.h"

#include <climits>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr unsigned mark = 0xFFFF;

// A text whose cached length is above its own: "ab", then a NUL.
karString countedNul()
{
    karString s("ab");
    s &= '\0';
    return s;
}

// The text "abyz" with cached length 2.
karString shortCopy()
{
    karString s("wxyz");
    s.ncopy("ab", 5);
    return s;
}

} // namespace

// ---- Sizes and construction

TEST(KarString, SizesAreTheNextMultipleOfEight)
{
    EXPECT_EQ(TextProbe::adjusted(0), 0u);
    EXPECT_EQ(TextProbe::adjusted(1), 8u);
    EXPECT_EQ(TextProbe::adjusted(8), 8u);
    EXPECT_EQ(TextProbe::adjusted(9), 16u);
    EXPECT_EQ(TextProbe::adjusted(0xfffffff8u), 0xfffffff8u);
    EXPECT_EQ(TextProbe::adjusted(0xfffffff9u), 0u); // wraps
}

TEST(KarString, HasThreeFields)
{
    EXPECT_EQ(sizeof(karString), sizeof(char *) + 2 * sizeof(unsigned));
    EXPECT_EQ(TextProbe::mark, mark);
}

TEST(KarString, IsEmptyByDefault)
{
    karString s;
    EXPECT_TRUE(hasState(s, "", 0, 16));
    EXPECT_EQ(s.capacity(), 15u);
    EXPECT_EQ(s.size(), 16u);
    EXPECT_EQ(s.isNull(), 1);
    EXPECT_EQ(s.length(), 0u);
}

TEST(KarString, ReservesRoomForCharactersAndTerminator)
{
    EXPECT_TRUE(hasState(karString(0u), "", 0, 8));
    EXPECT_TRUE(hasState(karString(7u), "", 0, 8));
    EXPECT_TRUE(hasState(karString(8u), "", 0, 16));
    EXPECT_TRUE(hasState(karString(100u), "", 0, 104));
    EXPECT_TRUE(hasState(karString(20), "", 0, 24)); // an int converts
}

TEST(KarString, ANewBufferIsZeroedToItsEndAndNotBeyond)
{
    // 192 bytes and the guards fill an element of 200 bytes, which both guards tell.
    for (unsigned count = 0; count < 192; ++count) {
        const std::string text(count, 'x');
        const karString s(text.c_str(), 191 - count);
        ASSERT_TRUE(hasState(s, text, count, 192));
        EXPECT_EQ(std::string(TextProbe::bytes(s) + count, 192 - count), std::string(192 - count, '\0')) << count;
        unsigned guard;
        std::memcpy(&guard, TextProbe::bytes(s) + 192, sizeof guard);
        EXPECT_EQ(guard, 200u) << count;
    }
    // Without room of its own the buffer of 16 bytes fills no element; the guards of one tell its size.
    const karString empty;
    unsigned size, footer;
    std::memcpy(&size, TextProbe::bytes(empty) - sizeof size, sizeof size);
    std::memcpy(&footer, TextProbe::bytes(empty) + size - 2 * sizeof size, sizeof footer);
    EXPECT_EQ(footer, size);
}

TEST(KarString, RepeatsACharacter)
{
    EXPECT_TRUE(hasState(karString('x', 3u, 8u), "xxx", 3, 16));
    EXPECT_TRUE(hasState(karString('x', 3u), "xxx", 3, 16)); // extra is 8 by default
    EXPECT_TRUE(hasState(karString('x', 7u), "xxxxxxx", 7, 16));
    EXPECT_TRUE(hasState(karString('x', 3u, 0u), "xxx", 3, 8));
    EXPECT_TRUE(hasState(karString('x', 7u, 0u), "xxxxxxx", 7, 8));
    EXPECT_TRUE(hasState(karString('x', 8u, 0u), "xxxxxxxx", 8, 16));
    EXPECT_TRUE(hasState(karString('x', 0u, 0u), "", 0, 8));
    EXPECT_TRUE(hasState(karString('\0', 4u, 8u), "", 4, 16)); // the cached length counts them
    EXPECT_TRUE(hasState(karString('\xe4', 2u), "\xe4\xe4", 2, 16));
}

TEST(KarString, CopiesATextWithSpareRoom)
{
    EXPECT_TRUE(hasState(karString("abc", 8), "abc", 3, 16)); // adjust(12)
    EXPECT_TRUE(hasState(karString("abc"), "abc", 3, 16));
    EXPECT_TRUE(hasState(karString("abc", 0u), "abc", 3, 8));
    EXPECT_TRUE(hasState(karString("abcdefg", 0u), "abcdefg", 7, 8));
    EXPECT_TRUE(hasState(karString("abcdefgh", 0u), "abcdefgh", 8, 16));
    EXPECT_TRUE(hasState(karString("abcdefg", 8u), "abcdefg", 7, 16));
    EXPECT_TRUE(hasState(karString("abcdefgh", 8u), "abcdefgh", 8, 24));
    EXPECT_TRUE(hasState(karString("abc", 100u), "abc", 3, 104));
}

TEST(KarString, TakesNullAsTheEmptyText)
{
    const char *const none = nullptr;
    EXPECT_TRUE(hasState(karString("", 8), "", 0, 16));
    EXPECT_TRUE(hasState(karString(none, 8), "", 0, 16));
    EXPECT_TRUE(hasState(karString(none), "", 0, 16));
    EXPECT_TRUE(hasState(karString("", 0u), "", 0, 8));
    EXPECT_TRUE(hasState(karString(none, 7u), "", 0, 8));
    EXPECT_TRUE(hasState(karString(none, 20u), "", 0, 24));
}

TEST(KarString, JoinsTwoTextsWithoutSpareRoom)
{
    const char *const none = nullptr;
    EXPECT_TRUE(hasState(karString("abc", "def"), "abcdef", 6, 8));
    EXPECT_TRUE(hasState(karString("abcd", "efg"), "abcdefg", 7, 8));
    EXPECT_TRUE(hasState(karString("abcd", "efgh"), "abcdefgh", 8, 16));
    EXPECT_TRUE(hasState(karString("", "def"), "def", 3, 8));
    EXPECT_TRUE(hasState(karString("abc", none), "abc", 3, 8));
    EXPECT_TRUE(hasState(karString("abc", ""), "abc", 3, 8));
    EXPECT_TRUE(hasState(karString(none, "def"), "def", 3, 8)); // a new buffer is zero
    EXPECT_TRUE(hasState(karString(none, none), "", 0, 8));
    EXPECT_TRUE(hasState(karString("", ""), "", 0, 8));
}

TEST(KarString, CopyHasTheLengthOfItsSource)
{
    const karString source("abcdef", 40u);
    EXPECT_TRUE(hasState(karString(source), "abcdef", 6, 16)); // adjust(15)
    EXPECT_TRUE(hasState(karString(source, 0u), "abcdef", 6, 8));
    EXPECT_TRUE(hasState(karString(source, 1u), "abcdef", 6, 8));
    EXPECT_TRUE(hasState(karString(source, 2u), "abcdef", 6, 16));
    const karString full("abcdefg", 0u);
    EXPECT_TRUE(hasState(karString(full), "abcdefg", 7, 16)); // 8 bytes more, no ninth
}

TEST(KarString, CopyMeasuresAMarkedSourceAndLeavesItMarked)
{
    karString source("abcdef");
    source[2] = 'X';
    EXPECT_TRUE(hasState(karString(source), "abXdef", 6, 16));
    EXPECT_EQ(TextProbe::cached(source), mark);
}

TEST(KarString, CopyOfACountedNulKeepsTheCountAndEndsAtTheNul)
{
    karString source('x', 3u, 0u);
    source.ncat("y", 9); // "xxxy", cached length 12
    EXPECT_TRUE(hasState(source, "xxxy", 12, 16));
    EXPECT_TRUE(hasState(karString(source), "xxxy", 12, 24)); // by the cached length: adjust(21)
}

TEST(KarString, CopyOfATextPastItsCachedLengthIsWhole)
{
    EXPECT_TRUE(hasState(shortCopy(), "abyz", 2, 16));
    EXPECT_TRUE(hasState(karString(shortCopy()), "abyz", 2, 16)); // adjust(2 + 8 + 1) suffices
    karString source("0123456789abcdefghij");
    source.ncopy("", 5); // cached length 0, and the text of 20 stays
    EXPECT_TRUE(hasState(karString(source), "0123456789abcdefghij", 0, 24)); // 16 is too small: adjust(21)
    EXPECT_TRUE(hasState(karString(source, 30u), "0123456789abcdefghij", 0, 32));
}

TEST(KarString, WritesIntegersInAnyRadix)
{
    EXPECT_TRUE(hasState(karString(255, 16), "ff", 2, 8));
    EXPECT_TRUE(hasState(karString(0, 10), "0", 1, 8));
    EXPECT_TRUE(hasState(karString(-1, 10), "-1", 2, 8));
    EXPECT_TRUE(hasState(karString(1234567, 10), "1234567", 7, 8));
    EXPECT_TRUE(hasState(karString(12345678, 10), "12345678", 8, 16));
    EXPECT_TRUE(hasState(karString(INT_MAX, 10), "2147483647", 10, 16));
    EXPECT_TRUE(hasState(karString(INT_MIN, 10), "-2147483648", 11, 16));
    EXPECT_TRUE(hasState(karString(-1, 16), "ffffffff", 8, 16));
    EXPECT_TRUE(hasState(karString(-1, 2), "11111111111111111111111111111111", 32, 40)); // past a room of 32
    EXPECT_TRUE(hasState(karString(INT_MIN, 2), "10000000000000000000000000000000", 32, 40));
    EXPECT_TRUE(hasState(karString(-1, 8), "37777777777", 11, 16));
    EXPECT_TRUE(hasState(karString(35, 36), "z", 1, 8));
    EXPECT_TRUE(hasState(karString(36 * 36 - 1, 36), "zz", 2, 8));
    EXPECT_TRUE(hasState(karString(-1, 36), "1z141z3", 7, 8)); // 4294967295
    EXPECT_TRUE(hasState(karString(5, 3), "12", 2, 8));
}

TEST(KarString, WritesNothingInAnUnknownRadix)
{
    for (const int radix : {-1, 0, 1, 37})
        EXPECT_TRUE(hasState(karString(5, radix), "", 0, 8)) << radix;
}

TEST(KarString, WritesLongsThirtyTwoBitsWide)
{
    EXPECT_TRUE(hasState(karString(255L, 16), "ff", 2, 8));
    EXPECT_TRUE(hasState(karString(-5L, 10), "-5", 2, 8));
    EXPECT_TRUE(hasState(karString(-1L, 16), "ffffffff", 8, 16));
    if (sizeof(long) > 4) {
        EXPECT_TRUE(hasState(karString(static_cast<long>(0x100000005), 10), "5", 1, 8));
        EXPECT_TRUE(hasState(karString(static_cast<long>(0x80000000), 10), "-2147483648", 11, 16));
    }
}

TEST(KarString, LeavesANullBufferWhenItEnds)
{
    alignas(karString) unsigned char room[sizeof(karString)];
    karString *const s = new (room) karString("abc");
    s->~karString();
    char *buffer;
    std::memcpy(&buffer, room, sizeof buffer);
    EXPECT_EQ(buffer, nullptr);
    s->~karString(); // harmless
}

TEST(KarString, CountsASizeBeyondThirtyTwoBitsAsAFailedAllocation)
{
    karString room(0xffffffffu);
    EXPECT_EQ(TextProbe::bytes(room), nullptr);
    EXPECT_EQ(room.length(), 0u);
    EXPECT_EQ(room.size(), 0u); // adjust(0)
    karString many('x', 0xfffffff0u, 100u);
    EXPECT_EQ(TextProbe::bytes(many), nullptr);
    EXPECT_EQ(many.length(), 0xfffffff0u); // what it should have had
    EXPECT_EQ(many.size(), 88u);           // adjust(0xfffffff0 + 101), wrapped
    karString spare("abc", 0xffffffffu);
    EXPECT_EQ(TextProbe::bytes(spare), nullptr);
    EXPECT_EQ(spare.length(), 3u);
    const karString text("abc");
    EXPECT_EQ(TextProbe::bytes(karString(text, 0xfffffffdu)), nullptr);
}

// ---- A text without a buffer

TEST(KarString, ReadsAsEmptyWithoutABuffer)
{
    karString s('x', 0xfffffff0u, 100u); // failed: length 0xfffffff0, size 88
    const karString &constant = s;
    unsigned index = 77;
    EXPECT_EQ(s.vstrlen(), 0u);
    EXPECT_EQ(s.isNull(), 1);
    EXPECT_EQ(s.getChar(0), 0);
    EXPECT_EQ(static_cast<const char *>(constant), nullptr);
    EXPECT_EQ(s.vstrstr("x"), nullptr);
    EXPECT_EQ(s.vstrchr('x'), nullptr);
    EXPECT_EQ(s.vstrrchr('x'), nullptr);
    EXPECT_EQ(s.vstrrchr('x', 0u), nullptr);
    EXPECT_EQ(s.vstrchr(index, 'x'), 0);
    EXPECT_EQ(s.vstrrchr(index, 'x'), 0);
    EXPECT_EQ(index, 77u);
    EXPECT_EQ(s.karstrchr('x', 0), -1);
    EXPECT_EQ(s.karstrchr("xy", 0), -1);
    EXPECT_EQ(s.karstrrchr('x', 0), -1);
    EXPECT_EQ(s.karstrrchr("xy", 0), -1);
    EXPECT_EQ(s.karstrstr("x", 0), -1);
    EXPECT_EQ(s.karstrrstr("x", 0), -1);
    EXPECT_EQ(s.countchar('x'), 0);
    EXPECT_EQ(s == "", 1);
    EXPECT_EQ(s < "a", 1);
    EXPECT_EQ(s == karString(), 1);
    EXPECT_EQ(karString("a") > s, 1);
    EXPECT_EQ(s == s, 1);
    int value = 5;
    karString::searchStruct table[] = {{"", 1}, {nullptr, 0}};
    EXPECT_EQ(s.searchValue(table, value), -1);
    EXPECT_EQ(value, 5);
    karString t("abc");
    t &= s;
    EXPECT_TRUE(hasState(t, "abc", 3, 16));
    EXPECT_TRUE(hasState(t & s, "abc", 3, 16));
    EXPECT_TRUE(hasState(s.notIn("x"), "", 0, 16));
    EXPECT_TRUE(hasState(s.replacechar('x', 'y'), "", 0, 16));
    EXPECT_TRUE(hasState(s.removechar('x'), "", 0, 16));
    EXPECT_TRUE(hasState(s.maskchar('x', 2), "", 0, 16));
}

TEST(KarString, WritesNothingWithoutABuffer)
{
    karString s('x', 0xfffffff0u, 100u); // size 88
    s[3] = 'q';
    EXPECT_EQ(s[1000], 'q'); // went to the scratch character
    s = "abc";               // 88 bytes would do
    EXPECT_EQ(TextProbe::bytes(s), nullptr);
    EXPECT_EQ(s.length(), 3u);
    s &= "def";
    s &= 'g';
    s.ncat("h", 1);
    s.ncopy("ab", 1);
    s.ncopy("abc", 0, 1);
    s.cut(1);
    s.ltrim();
    s.rtrim();
    s.trim("x");
    s.toLower();
    s.toUpper();
    int number = 1;
    double real = 1;
    EXPECT_EQ(s.s2int(number), KAR_SUCCESS);
    EXPECT_EQ(s.s2double(real), KAR_SUCCESS);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(real, 0.0);
    EXPECT_EQ(s.format("%s", "x"), 1);
    EXPECT_EQ(TextProbe::bytes(s), nullptr);
    EXPECT_EQ(s.size(), 88u);
    s = karString('y', 100u, 0u); // a larger one is obtained
    EXPECT_TRUE(hasState(s, std::string(100, 'y'), 100, 104));
}

TEST(KarString, AssignmentBetweenTextsWithoutBufferChangesNothing)
{
    karString a('x', 0xfffffff0u, 100u);
    const karString b(0xffffffffu);
    a = b;
    EXPECT_EQ(a.length(), 0xfffffff0u);
    EXPECT_EQ(a.size(), 88u);
}

TEST(KarString, AssignmentOfATextWithoutBufferAndRoomForItsLengthLosesTheBuffer)
{
    karString a("abc");
    const karString b('x', 0xfffffff0u, 100u); // size 88, below the length
    a = b;
    EXPECT_EQ(TextProbe::bytes(a), nullptr);
    EXPECT_EQ(a.length(), 0xfffffff0u);
    EXPECT_EQ(a.size(), 88u);
    EXPECT_EQ(a.karstrchr('x', 1000), -1); // behind the size, below the length
    EXPECT_EQ(a.karstrstr("x", 1000), -1);
    a.cut(1000);
    EXPECT_EQ(a.length(), 1000u);
    a = "abc";
    a = karString("0123456789", 200u); // below 88: there is no buffer to write to
    EXPECT_EQ(TextProbe::bytes(a), nullptr);
}

// Any buffer would be too small for the length that is taken over.
TEST(KarString, AssignmentOfATextWithoutBufferWhoseSizeIsNoneLosesTheBuffer)
{
    const karString b('x', 0xffffffffu, 0u); // size 2^32, which wraps to 0
    ASSERT_EQ(b.size(), 0u);
    karString a("abc");
    a = b;
    EXPECT_EQ(TextProbe::bytes(a), nullptr);
    EXPECT_EQ(a.length(), 0xffffffffu);
    EXPECT_EQ(a.size(), 0u);
    EXPECT_EQ(a.karstrchr('x', 1000), -1);
    a.cut(1000);
    EXPECT_EQ(a.length(), 1000u);
    a = "abc";
    EXPECT_TRUE(hasState(a, "abc", 3, 16)); // adjust(12)
    a = b;
    a &= 'c';
    EXPECT_EQ(a.vstrlen(), 0u);
    karString c("abc");
    c = karString(0xffffffffu); // size 0 too, but length 0: fits
    EXPECT_TRUE(hasState(c, "", 0, 16));
}

TEST(KarString, AppendBeyondThirtyTwoBitsLosesTheBuffer)
{
    karString s("abc");
    s.ncat("x", 0xffffffffu);
    EXPECT_EQ(TextProbe::bytes(s), nullptr);
    EXPECT_EQ(s.vstrlen(), 0u);
}

// ---- Assignment

TEST(KarString, AssignmentThatFitsKeepsTheBuffer)
{
    karString a("0123456789");
    const char *const before = TextProbe::bytes(a);
    a = karString("abc", 100u);
    EXPECT_TRUE(hasState(a, "abc", 3, 24));
    EXPECT_EQ(TextProbe::bytes(a), before);
    EXPECT_EQ(TextProbe::bytes(a)[5], '5'); // behind the terminator nothing changes
}

TEST(KarString, AssignmentThatDoesNotFitTakesTheSizeOfItsSource)
{
    karString a;
    a = karString("0123456789abcdef", 40u);
    EXPECT_TRUE(hasState(a, "0123456789abcdef", 16, 64)); // adjust(57), not adjust(17)
    karString b;
    b = karString("0123456789abcde", 40u); // 15 characters fit 16 bytes
    EXPECT_TRUE(hasState(b, "0123456789abcde", 15, 16));
}

TEST(KarString, ReplacedBuffersAreReleasedBeforeTheNewOneAndGrownOnesAfter)
{
    // 48 and 72 bytes come from one pool, which hands out first what was released last.
    const std::string sixty(60, 'y');
    const std::string seventy(70, 'y');
    const karString source(sixty.c_str());
    karString assigned('x', 40u, 0u);
    karString copied('x', 40u, 0u);
    karString bounded('x', 40u, 0u);
    karString part('x', 40u, 0u);
    karString grown('x', 40u, 0u);
    const char *before = TextProbe::bytes(assigned);
    assigned = sixty.c_str();
    EXPECT_EQ(TextProbe::bytes(assigned), before);
    before = TextProbe::bytes(copied);
    copied = source;
    EXPECT_EQ(TextProbe::bytes(copied), before);
    before = TextProbe::bytes(bounded);
    bounded.ncopy(seventy.c_str(), 70);
    EXPECT_EQ(TextProbe::bytes(bounded), before);
    before = TextProbe::bytes(part);
    part.ncopy(seventy.c_str(), 1, -1);
    EXPECT_EQ(TextProbe::bytes(part), before);
    before = TextProbe::bytes(grown);
    grown.reSize(70);
    EXPECT_NE(TextProbe::bytes(grown), before);
    EXPECT_EQ(TextProbe::size(grown), TextProbe::size(assigned));
}

TEST(KarString, AssignmentOfAMarkedTextMeasuresItAndLeavesItMarked)
{
    karString source("abcdef");
    source.at(5u) = '\0';
    karString a;
    a = source;
    EXPECT_TRUE(hasState(a, "abcde", 5, 16));
    EXPECT_EQ(TextProbe::cached(source), mark);
}

TEST(KarString, AssignmentToItselfChangesNothing)
{
    karString a("abc");
    a[1] = 'X';
    const karString &same = a;
    a = same;
    EXPECT_TRUE(hasState(a, "aXc", mark, 16));
}

TEST(KarString, AssignmentKeepsTheCachedLengthOfItsSource)
{
    karString a;
    a = countedNul();
    EXPECT_TRUE(hasState(a, "ab", 3, 16));
    a = shortCopy();
    EXPECT_TRUE(hasState(a, "abyz", 2, 16));
}

TEST(KarString, AssignmentOfATextPastItsCachedLengthGrowsOnlyWhereNeeded)
{
    karString source("0123456789abcdefghij", 40u);
    source.ncopy("", 5);
    karString small;
    small = source;
    EXPECT_TRUE(hasState(small, "0123456789abcdefghij", 0, 24));
    karString large(30u);
    large = source;
    EXPECT_TRUE(hasState(large, "0123456789abcdefghij", 0, 32));
}

TEST(KarString, AssignmentOfACharacterTextBuildsInSpareRoom)
{
    karString a;
    a = "0123456789abcde";
    EXPECT_TRUE(hasState(a, "0123456789abcde", 15, 16));
    a = "0123456789abcdef";
    EXPECT_TRUE(hasState(a, "0123456789abcdef", 16, 32)); // adjust(25)
    a = "x";
    EXPECT_TRUE(hasState(a, "x", 1, 32));
}

TEST(KarString, AssignmentOfNullKeepsTheBuffer)
{
    karString a("0123456789abcdef");
    a = static_cast<const char *>(nullptr);
    EXPECT_TRUE(hasState(a, "", 0, 32));
    EXPECT_EQ(TextProbe::bytes(a)[1], '1');
}

TEST(KarString, AssignmentOfAPartOfItself)
{
    karString a("abcdef");
    a = TextProbe::bytes(a) + 2;
    EXPECT_TRUE(hasState(a, "cdef", 4, 16));
}

// ---- Length and size

TEST(KarString, LengthIsMeasuredOnceAfterAMark)
{
    karString s("abcdef");
    s[3] = '\0';
    EXPECT_EQ(TextProbe::cached(s), mark);
    EXPECT_EQ(s.vstrlen(), 3u);
    EXPECT_EQ(TextProbe::cached(s), mark); // vstrlen leaves the cache
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(TextProbe::cached(s), 3u);
}

TEST(KarString, LengthComesFromTheCacheEvenIfItIsNotTheTexts)
{
    const karString s = countedNul();
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s.vstrlen(), 2u);
}

TEST(KarString, ATextAsLongAsTheMarkIsMeasuredEachTime)
{
    karString s('x', 65535u, 0u);
    EXPECT_EQ(s.length(), 65535u);
    EXPECT_EQ(s.size(), 65536u);
    s[65534] = '\0';
    EXPECT_EQ(s.length(), 65534u);
    s &= 'y';
    EXPECT_EQ(s.length(), 65535u);
    s &= "z";
    EXPECT_EQ(TextProbe::cached(s), 65536u);
    EXPECT_EQ(s.size(), 65544u);
    EXPECT_EQ(s.vstrlen(), 65536u);
    EXPECT_EQ(s.getChar(65534), 'y');
    EXPECT_EQ(s.getChar(65535), 'z');
    const karString copy(karString('x', 65535u, 0u), 8u);
    EXPECT_EQ(copy.length(), 65535u);
    EXPECT_EQ(copy.size(), 65544u);
}

TEST(KarString, IsNullAsksForAnEmptyText)
{
    karString s("abc");
    EXPECT_EQ(s.isNull(), 0);
    s[0] = '\0';
    EXPECT_EQ(s.isNull(), 1);
}

TEST(KarString, ReSizeNeverShrinks)
{
    karString s("abcdefghij", 0u);
    EXPECT_EQ(s.size(), 16u);
    EXPECT_EQ(s.reSize(0), 15u);
    EXPECT_TRUE(hasState(s, "abcdefghij", 10, 16));
    EXPECT_EQ(s.reSize(15), 15u);
    EXPECT_EQ(s.reSize(16), 23u);
    EXPECT_TRUE(hasState(s, "abcdefghij", 10, 24));
    EXPECT_EQ(s.reSize(100), 103u);
    EXPECT_EQ(s.reSize(20), 103u);
    EXPECT_EQ(s.reSize(0xffffffffu), 103u); // 0xffffffff + 1 is 0 in 32 bits: nothing to do
    EXPECT_TRUE(hasState(s, "abcdefghij", 10, 104));
}

TEST(KarString, ReSizeKeepsTheCachedLength)
{
    karString s = countedNul();
    s.reSize(40);
    EXPECT_TRUE(hasState(s, "ab", 3, 48));
    karString t = shortCopy();
    t.reSize(40);
    EXPECT_TRUE(hasState(t, "abyz", 2, 48));
}

TEST(KarString, ReSizeLeavesTheNewRoomZero)
{
    karString s("abcdef");
    s.cut(2);
    s.reSize(40);
    for (unsigned i = 2; i < 48; ++i)
        EXPECT_EQ(TextProbe::bytes(s)[i], 0) << i;
}

TEST(KarString, ReSizeBeyondThirtyTwoBitsLosesTheBuffer)
{
    karString s("abc");
    EXPECT_EQ(s.reSize(0xfffffff8u), 0xffffffffu); // size 0
    EXPECT_EQ(TextProbe::bytes(s), nullptr);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s.vstrlen(), 0u);
}

TEST(KarString, CutEndsTheTextBelowItsLength)
{
    karString s("abcdef");
    s.cut(6);
    EXPECT_TRUE(hasState(s, "abcdef", 6, 16));
    s.cut(7);
    EXPECT_TRUE(hasState(s, "abcdef", 6, 16));
    s.cut(2);
    EXPECT_TRUE(hasState(s, "ab", 2, 16));
    EXPECT_EQ(TextProbe::bytes(s)[3], 'd');
    s.cut(0);
    EXPECT_TRUE(hasState(s, "", 0, 16));
}

// ---- Character access

TEST(KarString, IndexMarksTheLengthUnknownEvenForARead)
{
    karString s("abc");
    EXPECT_EQ(s[2], 'c');
    EXPECT_EQ(TextProbe::cached(s), mark);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s.at(1), 'b');
    EXPECT_EQ(TextProbe::cached(s), mark);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s[s.length()], '\0'); // up to the size, not the length
    EXPECT_EQ(TextProbe::cached(s), mark);
    s[15] = '\0';
    EXPECT_EQ(s.length(), 3u);
}

TEST(KarString, BadIndexGivesTheSharedScratchCharacter)
{
    karString s("abc");
    karString other("other");
    s[s.size()] = 'q';
    EXPECT_EQ(TextProbe::cached(s), 3u);
    EXPECT_EQ(other.at(16u), 'q');
    EXPECT_EQ(other[0xffffffffu], 'q');
    EXPECT_EQ(other[-1], 'q');
    EXPECT_EQ(&s[1000], &other[2000]);
    EXPECT_EQ(TextProbe::cached(other), 5u);
    s[s.size()] = '\0';
}

TEST(KarString, IndexTakesEveryIntegerType)
{
    karString s("abcdef");
    EXPECT_EQ(s[1], 'b');
    EXPECT_EQ(s[1u], 'b');
    EXPECT_EQ(s[1L], 'b');
    EXPECT_EQ(s[1UL], 'b');
    EXPECT_EQ(s[1LL], 'b');
    EXPECT_EQ(s[static_cast<short>(1)], 'b');
    EXPECT_EQ(s[static_cast<unsigned char>(1)], 'b');
    EXPECT_EQ(s.at(std::size_t{2}), 'c');
    EXPECT_EQ(&s[0x100000000LL], &s[-1]);
    EXPECT_EQ(&s[0x100000001LL], &s[-1]); // no 32 bits: bad, not the second character
    EXPECT_EQ(&s.at(-5L), &s[-1]);
}

TEST(KarString, WritingOverTheTerminatorStaysInTheBuffer)
{
    karString s("abcdefg", 0u);
    s[7] = 'h';
    EXPECT_EQ(s.length(), 8u);
    EXPECT_EQ(s == "abcdefgh", 1);
    EXPECT_EQ(s < "abcdefghi", 1);
    EXPECT_EQ(s > "abcdefg", 1);
    EXPECT_EQ(s < "abcdefgx", 1);
    EXPECT_EQ(s == karString("abcdefgh"), 1);
    EXPECT_EQ(karString("abcdefgh") == s, 1);
    EXPECT_EQ(karString("abcdefghi") > s, 1);
    karString other("abcdefg", 0u);
    other[7] = 'i';
    EXPECT_EQ(s < other, 1);
    EXPECT_EQ(other <= s, 0);
    other[7] = 'h';
    EXPECT_EQ(s == other, 1);
    EXPECT_EQ(s.getChar(7), 'h');
    EXPECT_EQ(s.getChar(8), 0);
    EXPECT_EQ(s.vstrchr('\0'), nullptr);
    EXPECT_EQ(s.vstrrchr('\0'), nullptr);
    EXPECT_EQ(s.vstrstr("gh"), TextProbe::bytes(s) + 6);
    EXPECT_EQ(s.vstrstr("hi"), nullptr);
    EXPECT_EQ(s.karstrchr('h', 3), 7);
    EXPECT_EQ(s.karstrchr('i', 3), -1);
    EXPECT_EQ(s.karstrchr('\0', 3), -1);
    EXPECT_EQ(s.vstrstr(""), TextProbe::bytes(s));
    EXPECT_EQ(s.karstrstr("h", 3), 7);
    EXPECT_TRUE(hasState(karString(s), "abcdefgh", 8, 24));
    s.rtrim();
    EXPECT_EQ(s == "abcdefgh", 1);
    s &= 'i';
    EXPECT_TRUE(hasState(s, "abcdefghi", 9, 16));

    karString large('a', 999u); // the block's guard, its length of 1008 bytes, follows at once
    large[999] = 'b';
    EXPECT_EQ(large.karstrstr("ab", 990), 998);
    EXPECT_EQ(large.karstrstr("b\xf0", 990), -1);

    karString tokens("abc,efg", 0u);
    tokens[7] = 'h';
    EXPECT_TRUE(hasState(tokens.karstrtok(","), "abc", 3, 16));
    EXPECT_TRUE(hasState(tokens, "efgh", 4, 8));
}

TEST(KarString, SearchesWithoutATerminatorEndAtANul)
{
    karString s("abc", 4u);
    s[7] = 'h';
    TextProbe::setCached(s, 8); // the text ends before
    EXPECT_EQ(s.karstrchr('h', 1), -1);
    EXPECT_EQ(s.karstrstr("", 3), 3);
    EXPECT_EQ(s.karstrstr("h", 3), -1);
}

TEST(KarString, SearchingATextWithoutATerminatorEndsWithItsBuffer)
{
    // The guard of 200 stands directly behind 192 bytes.
    karString s(std::string(191, 'a').c_str(), 0u);
    s[191] = 'h';
    EXPECT_EQ(s.vstrstr("ah"), TextProbe::bytes(s) + 190);
    EXPECT_EQ(s.vstrstr("h\xc8"), nullptr);
}

TEST(KarString, GetCharReadsUpToTheTerminator)
{
    karString s("abc");
    s[0] = 'a';
    EXPECT_EQ(s.getChar(0), 'a');
    EXPECT_EQ(s.getChar(2), 'c');
    EXPECT_EQ(s.getChar(3), '\0');
    EXPECT_EQ(s.getChar(4), '\0');
    EXPECT_EQ(s.getChar(0xffffffffu), '\0');
    EXPECT_EQ(TextProbe::cached(s), mark);
    EXPECT_EQ(shortCopy().getChar(3), 'z'); // measures
    EXPECT_EQ(countedNul().getChar(2), '\0');
}

TEST(KarString, TheWritablePointerMarksTheLengthUnknown)
{
    karString s("abc");
    const karString &constant = s;
    const char *const reading = constant;
    EXPECT_STREQ(reading, "abc");
    EXPECT_EQ(TextProbe::cached(s), 3u);
    char *const writing = s;
    EXPECT_EQ(TextProbe::cached(s), mark);
    std::strcpy(writing, "vwxyz");
    EXPECT_EQ(s.length(), 5u);
    const char *const converted = s; // by way of the writable pointer, as s isn't const
    EXPECT_STREQ(converted, "vwxyz");
    EXPECT_EQ(TextProbe::cached(s), mark);
}

// ---- Searching by pointer

TEST(KarString, FindsTextAndCharactersByPointer)
{
    karString s("abcabc");
    const char *const text = TextProbe::bytes(s);
    EXPECT_EQ(s.vstrstr("bc"), text + 1);
    EXPECT_EQ(s.vstrstr(""), text);
    EXPECT_EQ(s.vstrstr("cb"), nullptr);
    EXPECT_EQ(s.vstrstr("abcabcd"), nullptr);
    EXPECT_EQ(s.vstrchr('b'), text + 1);
    EXPECT_EQ(s.vstrchr('x'), nullptr);
    EXPECT_EQ(s.vstrchr('\0'), text + 6);
    EXPECT_EQ(s.vstrrchr('b'), text + 4);
    EXPECT_EQ(karString("b").vstrrchr('b') != nullptr, true); // the first character too
    EXPECT_EQ(s.vstrrchr('x'), nullptr);
    EXPECT_EQ(s.vstrrchr('\0'), text + 6);
    EXPECT_EQ(TextProbe::cached(s), 6u);
    EXPECT_EQ(shortCopy().vstrchr('z') == nullptr, false); // the text, not the cached length
}

TEST(KarString, FindsCharactersByIndex)
{
    const karString s("abcabc");
    unsigned index = 99;
    EXPECT_EQ(s.vstrchr(index, 'x'), 0);
    EXPECT_EQ(s.vstrrchr(index, 'x'), 0);
    EXPECT_EQ(index, 99u);
    EXPECT_EQ(s.vstrchr(index, 'c'), 1);
    EXPECT_EQ(index, 2u);
    EXPECT_EQ(s.vstrrchr(index, 'c'), 1);
    EXPECT_EQ(index, 5u);
    EXPECT_EQ(s.vstrchr(index, '\0'), 1);
    EXPECT_EQ(index, 6u);
}

TEST(KarString, FindsTheLastCharacterBeforeALimit)
{
    const karString s("aaaa");
    const char *const text = TextProbe::bytes(s);
    EXPECT_EQ(s.vstrrchr('a', 2u), text + 1);
    EXPECT_STREQ(text, "aaaa");
    EXPECT_EQ(s.vstrrchr('a', 0u), nullptr);
    EXPECT_EQ(s.vstrrchr('a', 3u), text + 2);
    EXPECT_EQ(s.vstrrchr('a', 4u), nullptr); // at the length
    EXPECT_EQ(s.vstrrchr('a', 5u), nullptr);
    EXPECT_EQ(s.vstrrchr('b', 3u), nullptr);
    EXPECT_EQ(s.vstrrchr('\0', 3u), text + 3); // where the shortened text ends
    EXPECT_EQ(karString("baaa").vstrrchr('b', 3u) == nullptr, false);
}

// ---- Comparison

TEST(KarString, ComparesByteByByteAsUnsigned)
{
    const char *const ordered[] = {"", "a", "aa", "ab", "b", "b\x7f", "b\x80", "b\xff", "\xff"};
    const int count = 9;
    for (int i = 0; i < count; ++i) {
        for (int j = 0; j < count; ++j) {
            const karString a(ordered[i]);
            const karString b(ordered[j], 50u);
            EXPECT_EQ(a < b, i < j);
            EXPECT_EQ(a > b, i > j);
            EXPECT_EQ(a <= b, i <= j);
            EXPECT_EQ(a >= b, i >= j);
            EXPECT_EQ(a == b, i == j);
            EXPECT_EQ(a != b, i != j);
            EXPECT_EQ(a < ordered[j], i < j);
            EXPECT_EQ(a > ordered[j], i > j);
            EXPECT_EQ(a <= ordered[j], i <= j);
            EXPECT_EQ(a >= ordered[j], i >= j);
            EXPECT_EQ(a == ordered[j], i == j);
            EXPECT_EQ(a != ordered[j], i != j);
        }
    }
}

TEST(KarString, ComparesWithATextThatMayBeWrittenTo)
{
    const karString s("b");
    for (char c = 'a'; c <= 'c'; ++c) {
        char other[] = {c, '\0'};
        EXPECT_EQ(s < other, 'b' < c);
        EXPECT_EQ(s > other, 'b' > c);
        EXPECT_EQ(s <= other, 'b' <= c);
        EXPECT_EQ(s >= other, 'b' >= c);
        EXPECT_EQ(s == other, 'b' == c);
        EXPECT_EQ(s != other, 'b' != c);
    }
    EXPECT_EQ(TextProbe::cached(s), 1u);
}

TEST(KarString, ComparesUpToTheFirstNulWhateverTheCacheSays)
{
    EXPECT_EQ(countedNul() == "ab", 1);
    EXPECT_EQ(countedNul() == karString("ab"), 1);
    EXPECT_EQ(shortCopy() == "abyz", 1);
    karString s("abc", 0u);
    s[7] = 'x'; // behind the terminator, in the last byte
    EXPECT_EQ(s == "abc", 1);
    EXPECT_EQ(s == karString("abc"), 1);
    EXPECT_EQ(s < "abd", 1);
}

// ---- Concatenation

TEST(KarString, JoinsWithEightBytesOfSpareRoom)
{
    karString a("abc", 100u);
    EXPECT_TRUE(hasState(a & karString("defg"), "abcdefg", 7, 16)); // adjust(16)
    EXPECT_TRUE(hasState(a & "defgh", "abcdefgh", 8, 24));          // adjust(17)
    EXPECT_TRUE(hasState(a & "", "abc", 3, 16));
    EXPECT_TRUE(hasState(karString() & "", "", 0, 16));
    EXPECT_TRUE(hasState(a & static_cast<const char *>(nullptr), "abc", 3, 16));
    EXPECT_TRUE(hasState(a & a & a, "abcabcabc", 9, 24));
    EXPECT_TRUE(hasState(a, "abc", 3, 104));
}

TEST(KarString, JoinsAtTheCachedLength)
{
    EXPECT_TRUE(hasState(shortCopy() & "Q", "abQ", 3, 16));
    EXPECT_TRUE(hasState(shortCopy() & "", "ab", 2, 16));
    EXPECT_TRUE(hasState(shortCopy() & static_cast<const char *>(nullptr), "abyz", 2, 16));
    EXPECT_TRUE(hasState(countedNul() & "QRSTUV", "ab", 9, 24)); // adjust(9 + 9), and the text ends at its NUL
    EXPECT_TRUE(hasState(karString("x") & countedNul(), "xab", 3, 16));
}

TEST(KarString, JoinMeasuresAMarkedTextAndLeavesItMarked)
{
    karString s("abcdef");
    s[2] = '\0';
    EXPECT_TRUE(hasState(s & "X", "abX", 3, 16));
    EXPECT_EQ(TextProbe::cached(s), mark);
    karString other("xyz");
    other[1] = '\0';
    EXPECT_TRUE(hasState(s & other, "abx", 3, 16));
    EXPECT_EQ(TextProbe::cached(s), mark);
    EXPECT_EQ(TextProbe::cached(other), mark);
}

TEST(KarString, JoinWhoseCountsAddUpToTheMarkIsMeasured)
{
    karString s("ab");
    s.ncat("", 65530 - 2);
    EXPECT_EQ(s.length(), 65530u);
    EXPECT_TRUE(hasState(s & "1234", "ab", 65534, 65544)); // adjust(65534 + 9)
    EXPECT_TRUE(hasState(s & "12345", "ab", 2, 16));       // the sum reads as the mark
    EXPECT_TRUE(hasState(s & "123456", "ab", 65536, 65552));
    karString full('x', 65530u, 0u);
    EXPECT_TRUE(hasState(full & "12345", std::string(65530, 'x') + "12345", mark, 65544));
    s &= "12345";
    EXPECT_EQ(TextProbe::cached(s), mark);
    EXPECT_EQ(s.length(), 2u);
}

TEST(KarString, AppendsExactlyWithinTheSize)
{
    karString s("abcdef", 0u); // size 8
    s &= "g";
    EXPECT_TRUE(hasState(s, "abcdefg", 7, 8));
    s &= "h";
    EXPECT_TRUE(hasState(s, "abcdefgh", 8, 16)); // adjust(9)
    s &= static_cast<const char *>(nullptr);
    EXPECT_TRUE(hasState(s, "abcdefgh", 8, 16));
    s &= karString("ijklmno");
    EXPECT_TRUE(hasState(s, "abcdefghijklmno", 15, 16));
    s &= karString("p", 100u);
    EXPECT_TRUE(hasState(s, "abcdefghijklmnop", 16, 24));
    s &= "";
    EXPECT_TRUE(hasState(s, "abcdefghijklmnop", 16, 24));
}

TEST(KarString, AppendsCharacters)
{
    karString s("abcde", 0u); // size 8
    s &= 'f';
    s &= 'g';
    EXPECT_TRUE(hasState(s, "abcdefg", 7, 8)); // at 7 and 8 bytes the size is too small only for one more
    s &= 'h';
    EXPECT_TRUE(hasState(s, "abcdefgh", 8, 16));
}

TEST(KarString, AppendedNulCountsAndTheTextKeepsItsEnd)
{
    karString s = countedNul();
    EXPECT_TRUE(hasState(s, "ab", 3, 16));
    s &= "cd";
    EXPECT_TRUE(hasState(s, "ab", 5, 16));
    EXPECT_STREQ(TextProbe::bytes(s) + 3, "cd");
}

TEST(KarString, AppendsOverTheRestOfATextPastItsCachedLength)
{
    karString s = shortCopy();
    s &= "Q";
    EXPECT_TRUE(hasState(s, "abQ", 3, 16));
}

TEST(KarString, AppendMeasuresAMarkedText)
{
    karString s("abcdef");
    s[2] = '\0';
    s &= "X";
    EXPECT_TRUE(hasState(s, "abX", 3, 16));
}

TEST(KarString, DoublesItself)
{
    karString s("abc", 0u);
    const karString &same = s;
    s &= same;
    EXPECT_TRUE(hasState(s, "abcabc", 6, 8));
    s &= same; // grows
    EXPECT_TRUE(hasState(s, "abcabcabcabc", 12, 16));
    s &= TextProbe::bytes(s) + 10;
    EXPECT_TRUE(hasState(s, "abcabcabcabcbc", 14, 16));
    s &= TextProbe::bytes(s) + 9;
    EXPECT_TRUE(hasState(s, "abcabcabcabcbcabcbc", 19, 24));
}

// ---- Bounded copies

TEST(KarString, CopiesAtMostSoManyCharacters)
{
    karString s;
    s.ncopy("abcdef", 3);
    EXPECT_TRUE(hasState(s, "abc", 3, 16));
    s.ncopy("abcdef", 6);
    EXPECT_TRUE(hasState(s, "abcdef", 6, 16));
    s.ncopy("abcdef", 0);
    EXPECT_TRUE(hasState(s, "", 0, 16));
    EXPECT_EQ(TextProbe::bytes(s)[1], 'b');
    s.ncopy(nullptr, 5);
    EXPECT_TRUE(hasState(s, "", 0, 16));
    s.ncopy("0123456789abcdefghij", 15);
    EXPECT_TRUE(hasState(s, "0123456789abcde", 15, 16));
    s.ncopy("0123456789abcdefghij", 16);
    EXPECT_TRUE(hasState(s, "0123456789abcdef", 16, 24)); // adjust(17): no spare room
}

TEST(KarString, CopiesAShorterSourceWithoutATerminator)
{
    karString s("wxyz");
    s.ncopy("ab", 5);
    EXPECT_TRUE(hasState(s, "abyz", 2, 16));
    karString t;
    t.ncopy("0123456789abcdefghij", 100); // a new buffer is zero, so the text ends
    EXPECT_TRUE(hasState(t, "0123456789abcdefghij", 20, 24));
}

TEST(KarString, CopiesFromIndexToIndex)
{
    karString s("0123456789");
    s.ncopy("abcdef", 1, 3);
    EXPECT_TRUE(hasState(s, "bcd", 3, 24));
    s.ncopy("abcdef", 2, -1);
    EXPECT_TRUE(hasState(s, "cdef", 4, 24));
    s.ncopy("abcdef", 3, 1);
    EXPECT_TRUE(hasState(s, "", 0, 24));
    s.ncopy("abcdef", 0, 0);
    EXPECT_TRUE(hasState(s, "a", 1, 24));
    s.ncopy(nullptr, 0, 3);
    EXPECT_TRUE(hasState(s, "", 0, 24));
    s.ncopy("abcdef", 1, -2); // above: the comparison is signed
    EXPECT_TRUE(hasState(s, "", 0, 24));
    s.ncopy("abcdef", 6, -1);
    EXPECT_TRUE(hasState(s, "", 0, 24));
}

TEST(KarString, FillsUpWithNulsBehindTheEndOfTheSource)
{
    karString s("wxyzwxyz");
    s.ncopy("abc", 1, 5);
    EXPECT_TRUE(hasState(s, "bc", 5, 24));
    EXPECT_EQ(std::memcmp(TextProbe::bytes(s), "bc\0\0\0\0yz", 9), 0);
    s.ncopy("abc", 0, 23); // 24 characters and a terminator
    EXPECT_TRUE(hasState(s, "abc", 24, 32));
}

TEST(KarString, CopiesNothingFromBehindTheSource)
{
    karString s("wxyz");
    s.ncopy("abc", 7, -1);
    EXPECT_TRUE(hasState(s, "", 0, 16));
    s = "wxyz";
    s.ncopy("abc", 7, 9);
    EXPECT_TRUE(hasState(s, "", 3, 16));
    s = "wxyz";
    s.ncopy("abc", 0xffffffffu, 4); // -1 isn't above 4: 6 characters
    EXPECT_TRUE(hasState(s, "", 6, 16));
}

TEST(KarString, CopiesPartsOfItself)
{
    karString s("abcdefgh");
    s.ncopy(TextProbe::bytes(s) + 2, 3);
    EXPECT_TRUE(hasState(s, "cde", 3, 24));
    s = "abcdefgh";
    s.ncopy(TextProbe::bytes(s), 2, 5);
    EXPECT_TRUE(hasState(s, "cdef", 4, 24));
    s = "abcdefgh";
    s.ncopy(TextProbe::bytes(s), 6, 30); // needs a new buffer
    EXPECT_TRUE(hasState(s, "gh", 25, 32));
}

TEST(KarString, AppendsAtMostSoManyCharacters)
{
    karString s("x");
    s.ncat("abcdef", 3);
    EXPECT_TRUE(hasState(s, "xabc", 4, 16));
    s.ncat("abcdef", 0);
    s.ncat(nullptr, 5);
    EXPECT_TRUE(hasState(s, "xabc", 4, 16));
    s.ncat("0123456789abcdef", 11);
    EXPECT_TRUE(hasState(s, "xabc0123456789a", 15, 16));
    s.ncat("bc", 1);
    EXPECT_TRUE(hasState(s, "xabc0123456789ab", 16, 24));
}

TEST(KarString, AppendedPaddingCounts)
{
    karString s("x");
    s.ncat("ab", 5);
    EXPECT_TRUE(hasState(s, "xab", 6, 16));
    s.ncat("cd", 2); // behind the padding
    EXPECT_TRUE(hasState(s, "xab", 8, 16));
    EXPECT_STREQ(TextProbe::bytes(s) + 6, "cd");
}

TEST(KarString, AppendedPaddingIsNotFollowedByATerminatorOfItsOwn)
{
    karString s("0123456789");
    s.cut(1);
    s.ncat("x", 3);
    EXPECT_TRUE(hasState(s, "0x", 4, 24));
    EXPECT_EQ(TextProbe::bytes(s)[4], '4');
}

TEST(KarString, AppendsPartsOfItself)
{
    karString s("abcdefg", 0u); // size 8
    s.ncat(TextProbe::bytes(s) + 2, 3);
    EXPECT_TRUE(hasState(s, "abcdefgcde", 10, 16));
    s.ncat(TextProbe::bytes(s) + 8, 5); // "de", then padding
    EXPECT_TRUE(hasState(s, "abcdefgcdede", 15, 16));
}

TEST(KarString, ReadsOnlySoMuchOfTheSourceAsItCopies)
{
    const std::unique_ptr<char[]> source(new char[3]{'a', 'b', 'c'}); // no terminator
    karString s;
    s.ncopy(source.get(), 3);
    EXPECT_TRUE(hasState(s, "abc", 3, 16));
    s.ncat(source.get(), 3);
    EXPECT_TRUE(hasState(s, "abcabc", 6, 16));
}
