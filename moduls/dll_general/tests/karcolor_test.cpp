// The colour value: its four bytes, its marks, its arithmetic and its ways to indices, numbers and text.
#include "karcolor.h"

#include "dxfpalette.h"
#include "failalloc.h"
#include "goldenrun.h"
#include "vcolor.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

namespace {

struct Bytes {
    int red;
    int green;
    int blue;
    int special;
};

bool operator==(const Bytes &a, const Bytes &b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.special == b.special;
}

std::ostream &operator<<(std::ostream &out, const Bytes &b)
{
    return out << '(' << b.red << ", " << b.green << ", " << b.blue << ", " << b.special << ')';
}

Bytes bytes(const karColor &c) { return {c.red(), c.green(), c.blue(), c.special()}; }

karColor marked(unsigned char r, unsigned char g, unsigned char b, unsigned char s)
{
    karColor c(r, g, b);
    c.special(s);
    return c;
}

} // namespace

static_assert(sizeof(karColor) == 4, "four bytes");
static_assert(!std::is_polymorphic<karColor>::value && std::is_trivially_copyable<karColor>::value, "a plain value");
static_assert(std::is_same<decltype(karColor().acad()), ACAD_Color>::value, "an index");
static_assert(std::is_same<decltype(karColor().iges()), int>::value, "a number");
static_assert(std::is_same<decltype(karColor().rgbs()), unsigned long>::value, "a number");

TEST(KarColor, BeginsAsPlainBlack) { EXPECT_EQ(bytes(karColor()), (Bytes{0, 0, 0, 0})); }

TEST(KarColor, HoldsRedGreenBlueAndTheMarkInThisOrder)
{
    const karColor c = marked(1, 2, 3, 4);
    unsigned char held[4];
    std::memcpy(held, &c, sizeof held);
    EXPECT_EQ((Bytes{held[0], held[1], held[2], held[3]}), (Bytes{1, 2, 3, 4}));
}

TEST(KarColor, IsBuiltFromThreePartsWithoutAMark)
{
    EXPECT_EQ(bytes(karColor(1, 2, 3)), (Bytes{1, 2, 3, 0}));
    EXPECT_EQ(bytes(karColor(255, 0, 128)), (Bytes{255, 0, 128, 0}));
}

TEST(KarColor, IsBuiltFromOneNumberWithRedLowest)
{
    EXPECT_EQ(bytes(karColor(0x04030201ul)), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(bytes(karColor(0x04030201)), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(bytes(karColor(0xFFFFFFFFul)), (Bytes{255, 255, 255, 255}));
    EXPECT_EQ(bytes(karColor(0ul)), (Bytes{0, 0, 0, 0}));
#if ULONG_MAX > 0xFFFFFFFF
    EXPECT_EQ(bytes(karColor(0x1234567804030201ul)), (Bytes{1, 2, 3, 4})) << "of a wider number the low 32 bits";
#endif
}

TEST(KarColor, IsBuiltFromAMarkBetween1And4)
{
    EXPECT_EQ(bytes(karColor(FARBWERT_VONLAYER)), (Bytes{0, 0, 0, 1}));
    EXPECT_EQ(bytes(karColor(FARBWERT_VONBLOCK)), (Bytes{0, 0, 0, 2}));
    EXPECT_EQ(bytes(karColor(FARBWERT_VONBACKGROUND)), (Bytes{0, 0, 0, 3}));
    EXPECT_EQ(bytes(karColor(FARBWERT_VONFOREGROUND)), (Bytes{0, 0, 0, 4}));
    for (const int mark : {0, 5, -1, 257, 260, INT_MIN, INT_MAX})
        EXPECT_EQ(bytes(karColor(static_cast<FARBWERTE_SPECIAL>(mark))), (Bytes{0, 0, 0, 0})) << mark;
}

TEST(KarColor, IsBuiltFromAndAssignedEveryIndexAlike)
{
    for (int index = 0; index < 256; ++index) {
        const long rgb = dxfPalette[index];
        const Bytes expected = {static_cast<int>(rgb & 255), static_cast<int>((rgb >> 8) & 255),
                                static_cast<int>(rgb >> 16), 0};
        const karColor built(static_cast<ACAD_Color>(index));
        EXPECT_EQ(bytes(built), expected) << index;
        karColor assigned(0x04FFFFFFul);
        EXPECT_EQ(&(assigned = static_cast<ACAD_Color>(index)), &assigned);
        EXPECT_EQ(bytes(assigned), expected) << index;
    }
}

TEST(KarColor, AnUnknownIndexBuildsTheColourOfTheLayerButAssignsPlainBlack)
{
    for (const int index : {-1, 256, 300, INT_MIN, INT_MAX}) {
        const auto color = static_cast<ACAD_Color>(index);
        EXPECT_EQ(bytes(karColor(color)), (Bytes{0, 0, 0, 1})) << index;
        karColor assigned = marked(9, 8, 7, 6);
        assigned = color;
        EXPECT_EQ(bytes(assigned), (Bytes{0, 0, 0, 0})) << index;
    }
}

TEST(KarColor, CopiesAllFourBytes)
{
    const karColor source(0x04030201ul);
    karColor copy(source);
    EXPECT_EQ(bytes(copy), (Bytes{1, 2, 3, 4}));
    karColor assigned(7, 7, 7);
    EXPECT_EQ(&(assigned = source), &assigned);
    EXPECT_EQ(bytes(assigned), (Bytes{1, 2, 3, 4}));
    const karColor &self = copy;
    copy = self;
    EXPECT_EQ(bytes(copy), (Bytes{1, 2, 3, 4}));
}

TEST(KarColor, StoresEachByteOnItsOwn)
{
    karColor c;
    c.red(1);
    EXPECT_EQ(bytes(c), (Bytes{1, 0, 0, 0}));
    c.green(2);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 0, 0}));
    c.blue(3);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 3, 0}));
    c.special(200);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 3, 200})) << "any byte, not the four marks alone";
}

TEST(KarColor, GivesItsBytesInBothOrders)
{
    const karColor c(0x04030201);
    EXPECT_EQ(c.rgbs(), 0x04030201u);
    EXPECT_EQ(c.bgrs(), 0x04010203u);
    EXPECT_EQ(karColor(0xFFFFFFFFul).rgbs(), 0xFFFFFFFFu);
    EXPECT_EQ(karColor(0xFFFFFFFFul).bgrs(), 0xFFFFFFFFu);
    EXPECT_EQ(marked(0, 0, 0, 0x80).rgbs(), 0x80000000u);
}

TEST(KarColor, AMarkKeepsTheThreeParts)
{
    karColor c(1, 2, 3);
    EXPECT_EQ(&c.SetColorVONLAYER(), &c);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 3, 1}));
    EXPECT_EQ(&c.SetColorVONBLOCK(), &c);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 3, 2}));
    EXPECT_EQ(&c.SetColorVONBACKGROUND(), &c);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 3, 3}));
    EXPECT_EQ(&c.SetColorVONFOREGROUND(), &c);
    EXPECT_EQ(bytes(c), (Bytes{1, 2, 3, 4}));
}

TEST(KarColor, TheMarksAreTestedAsBitsAlthoughTheyAreNumbers)
{
    const struct {
        unsigned char special;
        bool layer, block, background, foreground;
    } rows[] = {
        {0, false, false, false, false}, {1, true, false, true, false},  {2, false, true, true, false},
        {3, true, true, true, false},    {4, false, false, false, true}, {5, true, false, true, true},
        {8, false, false, false, false}, {255, true, true, true, true},
    };
    for (const auto &row : rows) {
        const karColor c = marked(0, 0, 0, row.special);
        EXPECT_EQ(c.IsColorVONLAYER(), row.layer) << int(row.special);
        EXPECT_EQ(c.IsColorVONBLOCK(), row.block) << int(row.special);
        EXPECT_EQ(c.IsColorVONBACKGROUND(), row.background) << int(row.special);
        EXPECT_EQ(c.IsColorVONFOREGROUND(), row.foreground) << int(row.special);
    }
}

TEST(KarColor, EqualityLooksAtAllFourBytes)
{
    const karColor c = marked(1, 2, 3, 4);
    EXPECT_TRUE(c == marked(1, 2, 3, 4));
    EXPECT_FALSE(c != marked(1, 2, 3, 4));
    for (const karColor &other : {marked(9, 2, 3, 4), marked(1, 9, 3, 4), marked(1, 2, 9, 4), marked(1, 2, 3, 0)}) {
        EXPECT_FALSE(c == other);
        EXPECT_TRUE(c != other);
    }
}

TEST(KarColor, InversComplementsThePartsAndDropsTheMark)
{
    EXPECT_EQ(bytes(marked(0, 255, 100, 3).invers()), (Bytes{255, 0, 155, 0}));
    EXPECT_EQ(bytes(karColor(1, 127, 128).invers()), (Bytes{254, 128, 127, 0}));
}

TEST(KarColor, ExclusiveOrDropsTheMark)
{
    karColor c = marked(0xF0, 0xFF, 0x0F, 4);
    EXPECT_EQ(bytes(c ^ marked(0xFF, 0xFF, 0xF0, 1)), (Bytes{0x0F, 0, 0xFF, 0}));
    EXPECT_EQ(bytes(c), (Bytes{0xF0, 0xFF, 0x0F, 4}));
    EXPECT_EQ(&(c ^= marked(0xFF, 0xFF, 0xF0, 1)), &c);
    EXPECT_EQ(bytes(c), (Bytes{0x0F, 0, 0xFF, 0}));
    const karColor &self = c;
    c ^= self;
    EXPECT_EQ(bytes(c), (Bytes{0, 0, 0, 0}));
}

TEST(KarColor, ContrastIsAllOrNothingAt128)
{
    EXPECT_EQ(bytes(karColor(127, 128, 0).contrast()), (Bytes{255, 0, 255, 0}));
    EXPECT_EQ(bytes(marked(255, 1, 129, 2).contrast()), (Bytes{0, 255, 0, 0}));
}

TEST(KarColor, TwilightIsTheTruncatedMean)
{
    EXPECT_EQ(bytes(karColor(255, 0, 1).twilight(karColor(0, 0, 2))), (Bytes{127, 0, 1, 0}));
    EXPECT_EQ(bytes(marked(255, 254, 3, 1).twilight(marked(255, 255, 4, 2))), (Bytes{255, 254, 3, 0}));
}

TEST(KarColor, ItsNameIsTheNumericForm)
{
    karColor c(64, 128, 255);
    EXPECT_STREQ(static_cast<const char *>(c.name(true)), "RGB(64,128,255)");
    EXPECT_STREQ(static_cast<const char *>(c.name(false)), "RGB(64,128,255)");
    c.SetColorVONBLOCK();
    EXPECT_STREQ(static_cast<const char *>(c.name(true)), "RGB(64,128,255)") << "the mark isn't told";
    EXPECT_STREQ(static_cast<const char *>(karColor(255, 0, 0).name(true)), "RGB(255,0,0)") << "never a name";
}

TEST(KarColor, ItsNameIsEmptyWithoutMemory)
{
    const AllAllocationsFail failing;
    const karString name = karColor(1, 2, 3).name(true);
    EXPECT_EQ(static_cast<const char *>(name), nullptr);
}

TEST(KarColor, ItsNumbersAreThoseOfTheConversions)
{
    EXPECT_EQ(karColor().acad(), ACAD_COLOR_WHITE);
    EXPECT_EQ(karColor(255, 255, 255).acad(), ACAD_COLOR_WHITE);
    EXPECT_EQ(karColor(255, 0, 0).acad(), ACAD_COLOR_RED);
    EXPECT_EQ(karColor(128, 128, 128).acad(), 95);
    EXPECT_EQ(karColor().iges(), 8);
    EXPECT_EQ(karColor(255, 255, 255).iges(), 1);
    EXPECT_EQ(karColor(0, 0, 255).iges(), 2);
    EXPECT_EQ(karColor(1, 2, 3).iges(), 0);
}

TEST(KarColor, AMarkMissesTheExactValues)
{
    EXPECT_EQ(karColor(255, 0, 0).SetColorVONFOREGROUND().acad(), 10) << "red of the wheel";
    EXPECT_EQ(karColor(255, 0, 0).SetColorVONLAYER().iges(), 0);
    EXPECT_EQ(marked(255, 0, 0, 0x80).acad(), 10) << "the top bit of 32 as well";
    EXPECT_EQ(marked(255, 0, 0, 0x80).iges(), 0);
    EXPECT_EQ(karColor(FARBWERT_VONLAYER).acad(), 7) << "black parts give 7 in any case";
    EXPECT_EQ(karColor(FARBWERT_VONLAYER).iges(), 0);
}

TEST(KarColor, TheNamedIndicesHaveTheirColours)
{
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_NONE)), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_YELLOW)), (Bytes{255, 255, 0, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_GREEN)), (Bytes{0, 255, 0, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_CYAN)), (Bytes{0, 255, 255, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_BLUE)), (Bytes{0, 0, 255, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_MAGENTA)), (Bytes{255, 0, 255, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_DARK_GRAY)), (Bytes{128, 128, 128, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_GRAY)), (Bytes{192, 192, 192, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_WHEEL_FIRST)), (Bytes{255, 0, 0, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_WHEEL_LAST)), (Bytes{127, 127, 127, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_RAMP_FIRST)), (Bytes{32, 32, 32, 0}));
    EXPECT_EQ(bytes(karColor(ACAD_COLOR_RAMP_LAST)), (Bytes{224, 224, 224, 0}));
}

// Each byte of two numbers on its own, with plain integers.
TEST(KarColor, AMillionStepsEqualPlainBytes)
{
    GoldenRun run(1010, 1000000, 0x88ed9f27ed00c0c6u);
    while (run.next()) {
        const auto a = static_cast<std::uint32_t>(run.random.bits());
        const auto b = static_cast<std::uint32_t>(run.random.bits());
        const unsigned shape = run.random.below(6);
        const karColor ca(static_cast<unsigned long>(a));
        const karColor cb(static_cast<unsigned long>(b));
        karColor x = ca;
        switch (shape) {
        case 0:
            x = ca.invers();
            break;
        case 1:
            x = ca ^ cb;
            break;
        case 2:
            x ^= cb;
            break;
        case 3:
            x = ca.contrast();
            break;
        case 4:
            x = ca.twilight(cb);
            break;
        default:
            x = karColor(ca.bgrs());
            break;
        }
        run.code.add(static_cast<std::uint64_t>(x.rgbs()));

        std::uint32_t y = 0;
        for (int shift = 0; shift < 24; shift += 8) {
            const std::uint32_t pa = (a >> shift) & 255;
            const std::uint32_t pb = (b >> shift) & 255;
            std::uint32_t part = (a >> (16 - shift)) & 255;
            if (shape == 0)
                part = 255 - pa;
            else if (shape == 1 || shape == 2)
                part = pa ^ pb;
            else if (shape == 3)
                part = pa < 128 ? 255 : 0;
            else if (shape == 4)
                part = (pa + pb) / 2;
            y |= part << shift;
        }
        if (shape == 5)
            y |= a & 0xFF000000u;
        run.plain.add(static_cast<std::uint64_t>(y));
    }
}
