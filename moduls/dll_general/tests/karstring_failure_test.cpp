// Texts while allocations fail: nothing is written, reads give the empty text, length and size stay as computed.
#include "karstringlist.h"
#include "failalloc.h"
#include "textprobe.h"

namespace {

::testing::AssertionResult hasNoBuffer(const karString &s, unsigned cached, unsigned size)
{
    if (TextProbe::bytes(s))
        return ::testing::AssertionFailure() << "a buffer: \"" << TextProbe::bytes(s) << '"';
    if (TextProbe::cached(s) != cached || TextProbe::size(s) != size || s.vstrlen() != 0 || !s.isNull())
        return ::testing::AssertionFailure()
               << "cached length " << TextProbe::cached(s) << ", size " << TextProbe::size(s);
    return ::testing::AssertionSuccess();
}

const char *const twenty = "0123456789abcdefghij";

} // namespace

TEST(KarStringFailure, ConstructorsKeepLengthAndSizeAsComputed)
{
    const karString source("abcdef");
    karString marked("abcdef");
    marked[0] = 'x';
    const AllAllocationsFail failing;
    EXPECT_TRUE(hasNoBuffer(karString(), 0, 16));
    EXPECT_TRUE(hasNoBuffer(karString(20u), 0, 24));
    EXPECT_TRUE(hasNoBuffer(karString('x', 3u, 8u), 3, 16));
    EXPECT_TRUE(hasNoBuffer(karString(255, 16), 2, 8));
    EXPECT_TRUE(hasNoBuffer(karString(255L, 16), 2, 8));
    EXPECT_TRUE(hasNoBuffer(karString(1.5, 2, false), 4, 8));
    EXPECT_TRUE(hasNoBuffer(karString(1.0, 40, false), 42, 48));
    EXPECT_TRUE(hasNoBuffer(karString("abc", "def"), 6, 8));
    EXPECT_TRUE(hasNoBuffer(karString("abc"), 3, 16));
    EXPECT_TRUE(hasNoBuffer(karString(source), 6, 16));
    EXPECT_TRUE(hasNoBuffer(karString(marked), 6, 16));
}

TEST(KarStringFailure, AssignmentLosesTheText)
{
    karString a("abc");
    karString b("abc");
    const karString source(twenty, 40u); // size 64
    const AllAllocationsFail failing;
    a = source;
    EXPECT_TRUE(hasNoBuffer(a, 20, 64));
    b = twenty;
    EXPECT_TRUE(hasNoBuffer(b, 20, 32)); // adjust(29)
    b = "short";                         // would fit, but there is no buffer
    EXPECT_TRUE(hasNoBuffer(b, 5, 32));
    b = a; // neither has a buffer
    EXPECT_TRUE(hasNoBuffer(b, 5, 32));
}

TEST(KarStringFailure, AssignmentOfATextWithoutBufferEmptiesTheText)
{
    karString a(twenty);
    karString b;
    {
        const AllAllocationsFail failing;
        b = twenty;
    }
    a = b;
    EXPECT_TRUE(hasState(a, "", 20, 32)); // the length is taken as it is
    EXPECT_TRUE(hasState(karString(b), "", 20, 32));
    b = "now it has one again: it needs more than the size that it never had";
    EXPECT_TRUE(hasState(b, "now it has one again: it needs more than the size that it never had", 67, 80));
}

TEST(KarStringFailure, GrowthLosesTheText)
{
    karString resized("abc");
    karString joined("abc");
    karString appended("abc");
    karString counted("abc");
    karString padded("abc");
    karString copied("abc");
    karString part("abc");
    karString own(twenty);
    const karString source(twenty);
    const AllAllocationsFail failing;
    EXPECT_EQ(resized.reSize(100), 103u);
    EXPECT_TRUE(hasNoBuffer(resized, 3, 104));
    joined &= source;
    EXPECT_TRUE(hasNoBuffer(joined, 23, 24));
    appended &= twenty;
    EXPECT_TRUE(hasNoBuffer(appended, 23, 24));
    for (int i = 0; i < 13; ++i)
        counted &= 'x'; // the thirteenth needs more than 16 bytes
    EXPECT_TRUE(hasNoBuffer(counted, 16, 24));
    padded.ncat("x", 20);
    EXPECT_TRUE(hasNoBuffer(padded, 23, 24));
    copied.ncopy(twenty, 16);
    EXPECT_TRUE(hasNoBuffer(copied, 16, 24));
    part.ncopy(twenty, 2, -1);
    EXPECT_TRUE(hasNoBuffer(part, 18, 24));
    own.ncopy(TextProbe::bytes(own), 0, 50);
    EXPECT_TRUE(hasNoBuffer(own, 51, 56));
    EXPECT_TRUE(hasNoBuffer(karString(source) & source, 40, 56)); // adjust(49)
}

TEST(KarStringFailure, ASumThatCannotBeHadReadsAsEmpty)
{
    karString a("abc");
    const karString b("defg");
    const AllAllocationsFail failing;
    EXPECT_TRUE(hasNoBuffer(a & b, 7, 16));
    EXPECT_TRUE(hasNoBuffer(a & "defgh", 8, 24));
}

TEST(KarStringFailure, FormatGivesTheLengthAndNoText)
{
    karString grows("abc");
    karString fits("abc", 100u);
    karString isLong("abc");
    karString hasRoom("abc", 3000u);
    const AllAllocationsFail failing;
    EXPECT_EQ(hasRoom.format("%2000d", 12), 2000); // but there is none to print in
    EXPECT_TRUE(hasState(hasRoom, "", 2000, 3008));
    EXPECT_EQ(grows.format("%d", 12), 2);
    EXPECT_TRUE(hasNoBuffer(grows, 2, 40));
    EXPECT_EQ(fits.format("%d", 12), 2);
    EXPECT_TRUE(hasState(fits, "12", 2, 104)); // nothing is allocated
    EXPECT_EQ(isLong.format("%600d", 12), 600);
    EXPECT_TRUE(hasNoBuffer(isLong, 600, 608));
}

// The room to print in can't be had; releasing the old buffer then makes way for the new one.
TEST(KarStringFailure, FormatWithoutRoomToPrintInEmptiesTheText)
{
    karString s('x', 1000u);
    const NthHeapBlockFails failing(1);
    EXPECT_EQ(s.format("%*s", -2000, "ab"), 2000); // a negative width isn't part of the estimate
    EXPECT_TRUE(hasState(s, "", 2000, 2008));
}

TEST(KarStringFailure, ResultsThatCannotBeHadReadAsEmpty)
{
    karString s("a,b");
    const AllAllocationsFail failing;
    EXPECT_TRUE(hasNoBuffer(s.notIn(","), 0, 16));
    EXPECT_TRUE(hasNoBuffer(s.maskchar(',', 2), 0, 16));
    EXPECT_TRUE(hasNoBuffer(s.replacechar(',', ';'), 0, 16));
    EXPECT_TRUE(hasNoBuffer(s.removechar(','), 0, 16));
    EXPECT_TRUE(hasNoBuffer(s.karstrtok(","), 1, 16));
    EXPECT_TRUE(hasState(s, "b", 1, 16)); // the token is taken off all the same
    EXPECT_TRUE(hasNoBuffer(GetLocalizedDate(), 8, 24));
}

TEST(KarStringFailure, AnElementWithoutTextMeasuresZero)
{
    const AllAllocationsFail failing;
    karStringList element("abc");
    EXPECT_EQ(element.vstrlen(), 0u);
    EXPECT_EQ(element != "", 0);
    element &= "def";
    EXPECT_TRUE(hasNoBuffer(element.getString(), 6, 16));
}

TEST(KarStringFailure, EachAllocationOfALongerWorkMayFail)
{
    for (unsigned n = 1; n < 100; ++n) {
        NthAllocationFails failing(n);
        karString a("one,two,three");
        karString b(a);
        a &= b;
        a = a & b & "tail";
        b.format("%s-%d", "text", 5);
        karString token = a.karstrtok(",");
        token = a.replacechar(',', ';').maskchar(';', 2);
        a.double2s(1.25, 40, false);
        a.trim();
        b.int2s(5, 2);
        const karString parts[] = {a, b, token};
        for (const karString &part : parts) {
            EXPECT_LE(part.vstrlen(), part.size());
            EXPECT_EQ(part == part, 1);
        }
        if (!failing.happened())
            break;
        ASSERT_LT(n, 99u);
    }
}
