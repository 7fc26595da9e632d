// Colour numbers of DXF and IGES, the colour wheel both ways, the text form.
#include "vcolor.h"

#include "dxfpalette.h"
#include "failalloc.h"
#include "karstring.h"
#include "goldenrun.h"
#include "testrandom.h"
#include "vcolornames.h"
#include "teststeps.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

namespace {

constexpr long packed(int r, int g, int b) { return r | (g << 8) | (b << 16); }

int dxf(int r, int g, int b) { return vColor::ConvRGB2DXF(packed(r, g, b)); }

// 32 bits as a packed colour comes to a host whose long has 32 bits, or 64.
long asLong(std::uint32_t bits) { return static_cast<long>(static_cast<std::int32_t>(bits)); }

std::string textOf(long rgb)
{
    karString out;
    EXPECT_EQ(vColorName::Conv(rgb, out, 0), 0);
    return static_cast<const char *>(out);
}

struct ExactRow {
    long packed;
    int number;
};

constexpr ExactRow igesRows[] = {
    {0x000000, 8}, {0x0000FF, 4}, {0x00FF00, 3}, {0x00FFFF, 5},
    {0xFF0000, 2}, {0xFF00FF, 7}, {0xFFFF00, 6}, {0xFFFFFF, 1},
};

constexpr ExactRow dxfRows[] = {
    {0x000000, 7},   {0x0000FF, 1},   {0x00FF00, 3},   {0x00FFFF, 2},   {0x494949, 8},
    {0x545454, 250}, {0x757575, 251}, {0x969696, 252}, {0xBABABA, 253}, {0xCACACA, 9},
    {0xDBDBDB, 254}, {0xFF0000, 5},   {0xFF00FF, 6},   {0xFFFF00, 4},   {0xFFFFFF, 7},
};

// The conversion written out step by step with real numbers.
int plainHueStep(double x, double y) { return static_cast<int>(std::trunc(4.0 * x / y + 0.5)); }

int plainRGB2DXF(long rgb)
{
    for (const ExactRow &row : dxfRows)
        if (row.packed == rgb)
            return row.number;
    int part[3] = {static_cast<int>(rgb & 255), static_cast<int>((rgb >> 8) & 255),
                   static_cast<int>((rgb >> 16) & 255)};
    const int mx = *std::max_element(part, part + 3);
    const int mn = *std::min_element(part, part + 3);
    if (mx == 0)
        return 7;
    int offset = 8;
    if (mx > 210)
        offset = 0;
    else if (mx > 146)
        offset = 2;
    else if (mx > 100)
        offset = 4;
    else if (mx > 54)
        offset = 6;
    const int pale = mn > 0 && mx <= 3 * mn ? 1 : 0;
    if (mn > 0) {
        int middle = 2;
        if (mn < part[0] && part[0] < mx)
            middle = 0;
        else if (mn < part[1] && part[1] < mx)
            middle = 1;
        int lowest = 2;
        if (part[0] == mn)
            lowest = 0;
        else if (part[1] == mn)
            lowest = 1;
        const int m = part[middle];
        if (m > 0) {
            double k = 2.0 - static_cast<double>(m) / mn;
            if (!(k <= 0)) {
                if (k > 1.0)
                    k = 1.0;
                part[middle] = static_cast<int>(std::trunc(m - k * mn + 0.5));
                part[lowest] = 0;
            }
        }
    }
    const int r = part[0];
    const int g = part[1];
    const int b = part[2];
    int n = 0;
    if (b == 0 && r > g)
        n = 1 + plainHueStep(g, r);
    else if (b == 0)
        n = 9 - plainHueStep(r, g);
    else if (r == 0 && g > b)
        n = 9 + plainHueStep(b, g);
    else if (r == 0)
        n = 17 - plainHueStep(g, b);
    else if (b > r)
        n = 17 + plainHueStep(r, b);
    else
        n = 25 - plainHueStep(b, r);
    if (n > 24 || n < 1)
        n = 1;
    return 10 * n + pale + offset;
}

int plainRGB2IGES(long rgb)
{
    for (const ExactRow &row : igesRows)
        if (row.packed == rgb)
            return row.number;
    return 0;
}

} // namespace

static_assert(std::is_same<decltype(vColor().ConvDXF2RGB(0)), long>::value, "a packed colour");
static_assert(std::is_same<decltype(vColorName().Conv("")), long>::value, "a packed colour");
static_assert(std::is_empty<vColor>::value && std::is_empty<vColorName>::value, "they hold nothing");
static_assert(!std::is_polymorphic<vColor>::value && !std::is_polymorphic<vColorName>::value, "nothing virtual");

TEST(VColor, IgesHasANumberForEightExactValues)
{
    for (const ExactRow &row : igesRows) {
        EXPECT_EQ(vColor::ConvRGB2IGES(row.packed), row.number) << std::hex << row.packed;
        EXPECT_EQ(vColor::ConvRGB2IGES(row.packed ^ 1), 0) << std::hex << row.packed;
    }
    EXPECT_EQ(vColor::ConvRGB2IGES(0x123456), 0);
    EXPECT_EQ(vColor::ConvRGB2IGES(0x808080), 0);
    EXPECT_EQ(vColor::ConvRGB2IGES(0x010000FF), 0) << "the whole number is compared";
    EXPECT_EQ(vColor::ConvRGB2IGES(-1), 0);
    EXPECT_EQ(vColor().ConvRGB2IGES(0x00FF00), 3) << "through an object as well";
}

TEST(VColor, EveryDxfIndexHasItsColour)
{
    for (int index = 0; index < 256; ++index)
        EXPECT_EQ(vColor::ConvDXF2RGB(index), dxfPalette[index]) << index;
}

TEST(VColor, DxfIndicesOutsideTheTableAreBlack)
{
    for (const int index : {-1, 256, 300, 1000000, INT_MIN, INT_MAX})
        EXPECT_EQ(vColor::ConvDXF2RGB(index), 0) << index;
}

TEST(VColor, TheWheelDividesWithTruncation)
{
    EXPECT_EQ(vColor::ConvDXF2RGB(10), 0x0000FF);
    EXPECT_EQ(vColor::ConvDXF2RGB(11), 0x7F7FE5) << "127 + 4 * 4 * 255 / 40 is 229";
    EXPECT_EQ(vColor::ConvDXF2RGB(19), 0x7F7F7F) << "level 0";
    EXPECT_EQ(vColor::ConvDXF2RGB(20), packed(255, 63, 0)) << "1 * 5 * 255 / 20 is 63.75";
    EXPECT_EQ(vColor::ConvDXF2RGB(28), packed(51, 12, 0)) << "1 * 1 * 255 / 20 is 12.75";
    EXPECT_EQ(vColor::ConvDXF2RGB(243), packed(203, 127, 146)) << "level 3: 127 + 76.5 and 127 + 19.125";
    for (int index = 11; index < 250; index += 2) {
        const long rgb = vColor::ConvDXF2RGB(index);
        EXPECT_GE(rgb & 255, 127) << index;
        EXPECT_GE((rgb >> 8) & 255, 127) << index;
        EXPECT_GE((rgb >> 16) & 255, 127) << index;
    }
}

TEST(VColor, FifteenValuesMatchADxfIndexExactly)
{
    for (const ExactRow &row : dxfRows)
        EXPECT_EQ(vColor::ConvRGB2DXF(row.packed), row.number) << std::hex << row.packed;
    EXPECT_EQ(vColor::ConvRGB2DXF(0), 7);
    EXPECT_EQ(vColor::ConvRGB2DXF(0xFFFFFF), 7);
}

// Beside each matching grey lies one that goes to the wheel: hue 9, pale, brightness by its value.
TEST(VColor, GreysBesideTheExactOnesLieOnTheWheel)
{
    EXPECT_EQ(dxf(0x48, 0x48, 0x48), 97);
    EXPECT_EQ(dxf(0x55, 0x55, 0x55), 97);
    EXPECT_EQ(dxf(0x76, 0x76, 0x76), 95);
    EXPECT_EQ(dxf(0x95, 0x95, 0x95), 93);
    EXPECT_EQ(dxf(0xBB, 0xBB, 0xBB), 93);
    EXPECT_EQ(dxf(0xC0, 0xC0, 0xC0), 93);
    EXPECT_EQ(dxf(0xDC, 0xDC, 0xDC), 91);
    EXPECT_EQ(dxf(0x80, 0x80, 0x80), 95);
    EXPECT_EQ(dxf(1, 1, 1), 99);
    EXPECT_EQ(dxf(254, 254, 254), 91);
}

TEST(VColor, TheHueNumberHasSixRows)
{
    // blue is 0, red above green: 1 + trunc(4.0 * g / r + 0.5)
    EXPECT_EQ(dxf(200, 0, 0), 12);
    EXPECT_EQ(dxf(200, 24, 0), 12);
    EXPECT_EQ(dxf(200, 25, 0), 22) << "0.5 + 0.5 is the first whole step";
    EXPECT_EQ(dxf(200, 100, 0), 32);
    EXPECT_EQ(dxf(200, 175, 0), 52);
    // blue is 0 otherwise: 9 - t(r, g)
    EXPECT_EQ(dxf(200, 200, 0), 52);
    EXPECT_EQ(dxf(100, 200, 0), 72);
    EXPECT_EQ(dxf(75, 200, 0), 72) << "t is 2 from 1.5 on";
    EXPECT_EQ(dxf(74, 200, 0), 82);
    EXPECT_EQ(dxf(0, 200, 0), 92);
    // red is 0, green above blue: 9 + t(b, g)
    EXPECT_EQ(dxf(0, 200, 24), 92);
    EXPECT_EQ(dxf(0, 200, 100), 112);
    EXPECT_EQ(dxf(0, 200, 199), 132);
    // red is 0 otherwise: 17 - t(g, b)
    EXPECT_EQ(dxf(0, 200, 200), 132);
    EXPECT_EQ(dxf(0, 100, 200), 152);
    EXPECT_EQ(dxf(0, 0, 200), 172);
    // neither is 0, blue above red: 17 + t(r, b)
    EXPECT_EQ(dxf(24, 0, 200), 172);
    EXPECT_EQ(dxf(100, 0, 200), 192);
    EXPECT_EQ(dxf(199, 0, 200), 212);
    // neither is 0 otherwise: 25 - t(b, r)
    EXPECT_EQ(dxf(200, 0, 200), 212);
    EXPECT_EQ(dxf(200, 0, 100), 232);
    EXPECT_EQ(dxf(200, 0, 25), 242);
}

TEST(VColor, HueNumber25Becomes1)
{
    EXPECT_EQ(dxf(200, 0, 24), 12);
    EXPECT_EQ(dxf(255, 0, 1), 10);
}

TEST(VColor, TheLastTwoRowsLeaveGreenOut)
{
    EXPECT_EQ(dxf(50, 120, 200), 182) << "17 + t(50, 200)";
    EXPECT_EQ(dxf(50, 200, 120), 192) << "17 + t(50, 120), although green is the greatest";
    EXPECT_EQ(dxf(200, 120, 50), 242) << "25 - t(50, 200)";
    EXPECT_EQ(dxf(120, 200, 50), 232) << "25 - t(50, 120)";
}

TEST(VColor, BrightnessChangesAbove54And100And146And210)
{
    EXPECT_EQ(dxf(255, 1, 0), 10);
    EXPECT_EQ(dxf(211, 0, 0), 10);
    EXPECT_EQ(dxf(210, 0, 0), 12);
    EXPECT_EQ(dxf(147, 0, 0), 12);
    EXPECT_EQ(dxf(146, 0, 0), 14);
    EXPECT_EQ(dxf(101, 0, 0), 14);
    EXPECT_EQ(dxf(100, 0, 0), 16);
    EXPECT_EQ(dxf(55, 0, 0), 16);
    EXPECT_EQ(dxf(54, 0, 0), 18);
    EXPECT_EQ(dxf(1, 0, 0), 18);
    EXPECT_EQ(dxf(0, 54, 0), 98) << "it goes by the greatest part, whichever that is";
    EXPECT_EQ(dxf(0, 0, 55), 176);
}

TEST(VColor, PaleIsUpToThreeTimesTheLowestPart)
{
    EXPECT_EQ(dxf(150, 50, 50), 13);
    EXPECT_EQ(dxf(151, 50, 50), 12);
    EXPECT_EQ(dxf(3, 1, 1), 19);
    EXPECT_EQ(dxf(4, 1, 1), 18);
    EXPECT_EQ(dxf(250, 0, 250), 210) << "never with a part of 0";
}

TEST(VColor, GreyIsTakenOffTheMiddleAndTheLowestPart)
{
    EXPECT_EQ(dxf(200, 150, 100), 33) << "k 0.5: green 100, blue 0";
    EXPECT_EQ(dxf(150, 200, 100), 73) << "k 0.5: red 100, blue 0";
    EXPECT_EQ(dxf(100, 150, 200), 153) << "k 0.5: green 100, red 0";
    EXPECT_EQ(dxf(100, 200, 150), 113) << "k 0.5: blue 100, red 0";
    EXPECT_EQ(dxf(150, 100, 200), 193) << "k 0.5: red 100, green 0";
    EXPECT_EQ(dxf(200, 100, 150), 233) << "k 0.5: blue 100, green 0";
    EXPECT_EQ(dxf(200, 199, 100), 53) << "k 0.01: green 198, blue 0";
}

TEST(VColor, NoGreyIsTakenFromAMiddlePartOfTwiceTheLowest)
{
    EXPECT_EQ(dxf(100, 200, 220), 191) << "k 0: all three stay, blue above red, 17 + t(100, 220)";
    EXPECT_EQ(dxf(100, 199, 220), 131) << "k 0.01: green 198, red 0, 17 - t(198, 220)";
    EXPECT_EQ(dxf(100, 201, 220), 191) << "k below 0";
}

TEST(VColor, WithoutAPartStrictlyBetweenBlueIsTheMiddleOne)
{
    EXPECT_EQ(dxf(100, 200, 100), 93) << "blue and red become 0";
    EXPECT_EQ(dxf(200, 100, 100), 13) << "blue and green become 0";
    EXPECT_EQ(dxf(200, 200, 100), 53) << "blue is the lowest as well and becomes 0";
    EXPECT_EQ(dxf(150, 150, 200), 123) << "blue is the greatest: k is 2/3, blue 100, red 0";
    EXPECT_EQ(dxf(101, 101, 200), 153) << "k 2/101: blue 198, red 0, 17 - t(101, 198)";
    EXPECT_EQ(dxf(100, 100, 200), 193) << "k 0: nothing changes, 17 + t(100, 200)";
    EXPECT_EQ(dxf(100, 200, 200), 193) << "k 0: green is no middle part beside an equal blue";
    EXPECT_EQ(dxf(200, 100, 200), 213) << "k 0: 25 - t(200, 200)";
    EXPECT_EQ(dxf(255, 255, 254), 51);
    EXPECT_EQ(dxf(254, 254, 255), 91) << "k 253/254: blue 2, red 0, 9 + t(2, 254)";
}

TEST(VColor, BitsAboveTheThreePartsMissTheExactValuesAlone)
{
    EXPECT_EQ(vColor::ConvRGB2DXF(0x01000000), 7) << "all three parts are 0";
    EXPECT_EQ(vColor::ConvRGB2DXF(0x010000FF), 10) << "red from the wheel";
    EXPECT_EQ(vColor::ConvRGB2DXF(0x01494949), 97);
    EXPECT_EQ(vColor::ConvRGB2DXF(asLong(0xFFFFFFFF)), 91);
    EXPECT_EQ(vColor::ConvRGB2DXF(asLong(0x800000FF)), 10);
}

TEST(VColor, OnlyThePureColoursAndOneGreyComeBackFromTheIndex)
{
    for (int index = 1; index <= 7; ++index)
        EXPECT_EQ(vColor::ConvRGB2DXF(vColor::ConvDXF2RGB(index)), index);
    EXPECT_EQ(vColor::ConvRGB2DXF(vColor::ConvDXF2RGB(0)), 7);
    EXPECT_EQ(vColor::ConvRGB2DXF(vColor::ConvDXF2RGB(8)), 95);
    EXPECT_EQ(vColor::ConvRGB2DXF(vColor::ConvDXF2RGB(9)), 93);
    for (const int index : {250, 251, 252, 253, 254, 255})
        EXPECT_EQ(vColor::ConvRGB2DXF(vColor::ConvDXF2RGB(index)) / 10, 9) << index;
}

// Every combination of the values around the limits of brightness, and a grid through everything.
TEST(VColor, ToDxfFollowsTheStepsForEveryLimit)
{
    std::vector<int> values = {1, 2, 53, 54, 55, 99, 100, 101, 145, 146, 147, 209, 210, 211, 254, 255};
    for (int value = 0; value < 255; value += 6)
        values.push_back(value);
    for (const int r : values)
        for (const int g : values)
            for (const int b : values)
                ASSERT_EQ(dxf(r, g, b), plainRGB2DXF(packed(r, g, b))) << r << ' ' << g << ' ' << b;
}

TEST(VColor, AMillionColoursEqualThePlainSteps)
{
    GoldenRun run(1001, 1000000, 0xb1b48601ca9a2effu);
    while (run.next()) {
        const auto bits = static_cast<std::uint32_t>(run.random.bits());
        const long rgb = run.step % 16 == 0 ? asLong(bits) : static_cast<long>(bits & 0xFFFFFF);
        run.code.add(vColor::ConvRGB2DXF(rgb));
        run.plain.add(plainRGB2DXF(rgb));
    }
}

// Random numbers almost never meet the eight exact values, so half of the calls choose among them.
TEST(VColor, AMillionIgesNumbersEqualThePlainTable)
{
    GoldenRun run(1002, 1000000, 0xc60e3c9ae6e5dfeau);
    while (run.next()) {
        const long exact = igesRows[run.random.below(8)].packed;
        const long rgb = run.step % 2 == 0 ? exact : asLong(static_cast<std::uint32_t>(run.random.bits()));
        run.code.add(vColor::ConvRGB2IGES(rgb));
        run.plain.add(plainRGB2IGES(rgb));
    }
}

TEST(VColor, AMillionIndicesEqualThePlainTable)
{
    GoldenRun run(1003, 1000000, 0x47e7e23dcce3a9fu);
    while (run.next()) {
        const int index = run.step % 8 == 0 ? run.random.anyInt() : run.random.between(-10, 265);
        run.code.add(static_cast<int>(vColor::ConvDXF2RGB(index)));
        run.plain.add(index >= 0 && index <= 255 ? static_cast<int>(dxfPalette[index]) : 0);
    }
}

TEST(VColorName, WritesTheThreePartsAsDecimalNumbers)
{
    EXPECT_EQ(textOf(0xFF8040), "RGB(64,128,255)");
    EXPECT_EQ(textOf(0), "RGB(0,0,0)");
    EXPECT_EQ(textOf(0xFFFFFF), "RGB(255,255,255)");
    EXPECT_EQ(textOf(0x030201), "RGB(1,2,3)");
}

TEST(VColorName, WritesNothingAboveTheThreeParts)
{
    EXPECT_EQ(textOf(0x7F010203), "RGB(3,2,1)");
    EXPECT_EQ(textOf(-1), "RGB(255,255,255)");
}

TEST(VColorName, WritesOverWhatTheStringHeldWhateverTheFlag)
{
    karString out("a text that is longer than what follows it");
    EXPECT_EQ(vColorName::Conv(0x0000FF, out, 1), 0);
    EXPECT_STREQ(static_cast<const char *>(out), "RGB(255,0,0)");
    EXPECT_EQ(vColorName().Conv(0xFF0000, out, -1), 0);
    EXPECT_STREQ(static_cast<const char *>(out), "RGB(0,0,255)") << "no name, though the colour has one";
}

// The reading of hexadecimal numbers looks at errno, so each test begins with none.
class VColorNameReading : public testing::Test {
protected:
    void SetUp() override { errno = 0; }
    void TearDown() override { errno = 0; }
};

TEST_F(VColorNameReading, ReadsThreeDecimalParts)
{
    EXPECT_EQ(vColorName::Conv("RGB(64,128,255)"), 0xFF8040);
    EXPECT_EQ(vColorName::Conv("RGB(0,0,0)"), 0);
    EXPECT_EQ(vColorName::Conv("RGB(1,2,3)"), 0x030201);
    EXPECT_EQ(vColorName::Conv("RGB(001,0002,3)"), 0x030201);
}

TEST_F(VColorNameReading, TrimsEachPartAndLimitsItTo255)
{
    EXPECT_EQ(vColorName::Conv("RGB( 300 , 2 , 3 )"), 0x0302FF);
    EXPECT_EQ(vColorName::Conv("RGB(256,999,2147483647)"), 0xFFFFFF);
    EXPECT_EQ(vColorName::Conv("RGB(99999999999,0,0)"), 0x0000FF);
    EXPECT_EQ(vColorName::Conv("RGB(\t 1\t,\t2 \t, 3)"), 0x030201);
    EXPECT_EQ(vColorName::Conv("RGB(1\n,2\r\n,3\x01)"), 0x030201) << "control characters at the end of a part go too";
}

TEST_F(VColorNameReading, AMissingMarkGivesBlack)
{
    for (const char *text : {"", "RGB", "RGB(", "RGB(1", "RGB(1,", "RGB(1,2", "RGB(1,2,", "RGB(1,2,3", "RGB(1,2)",
                             "RGB 1,2,3)", "(1,2,3)", "rgb(1,2,3)", "RG B(1,2,3)", "(1,2,3)RGB", "1,2,3", "Red"})
        EXPECT_EQ(vColorName::Conv(text), 0) << text;
    EXPECT_EQ(vColorName::Conv(nullptr), 0);
}

TEST_F(VColorNameReading, FindsTheMarksAnywhere)
{
    EXPECT_EQ(vColorName::Conv("colour RGB(1,2,3) of the frame"), 0x030201);
    EXPECT_EQ(vColorName::Conv("RGB is given as (1,2,3)"), 0x030201);
    EXPECT_EQ(vColorName::Conv("(9,8,7) RGB(1,2,3)"), 0x030201);
    EXPECT_EQ(vColorName::Conv("RGBRGB(1,2,3)RGB(4,5,6)"), 0x030201);
    EXPECT_EQ(vColorName::Conv("RGB,)(1,2,3)"), 0x030201);
    EXPECT_EQ(vColorName::Conv("RGB(1,2,3,4)"), 0x000201) << "blue is \"3,4\", which is no number";
    EXPECT_EQ(vColorName::Conv("RGB(1,2),3)"), 0x030001) << "green is \"2)\"";
    EXPECT_EQ(vColorName::Conv("RGB((1,2,3)"), 0x030200) << "red is \"(1\"";
}

TEST_F(VColorNameReading, WhatIsNotDigitsAloneIsHexadecimal)
{
    EXPECT_EQ(vColorName::Conv("RGB(ff,10,1a)"), 0x1A0AFF);
    EXPECT_EQ(vColorName::Conv("RGB(0x10,+10,A)"), 0x0A1010);
    EXPECT_EQ(vColorName::Conv("RGB(\n10,0,0)"), 0x000010) << "a line end in front makes it so as well";
}

TEST_F(VColorNameReading, ARefusedPartStays0)
{
    EXPECT_EQ(vColorName::Conv("RGB(x,2,3)"), 0x030200);
    EXPECT_EQ(vColorName::Conv("RGB(1,2x,3)"), 0x030001);
    EXPECT_EQ(vColorName::Conv("RGB(1,2,3.0)"), 0x000201);
    EXPECT_EQ(vColorName::Conv("RGB(1 1,2,3)"), 0x030200);
    EXPECT_EQ(vColorName::Conv("RGB(,2,)"), 0x000200) << "an empty part is 0";
    EXPECT_EQ(vColorName::Conv("RGB( , \t,  )"), 0);
}

TEST_F(VColorNameReading, APartBelow0GoesIntoTheSumAndWraps)
{
    EXPECT_EQ(vColorName::Conv("RGB(-1,0,0)"), -1);
    EXPECT_EQ(vColorName::Conv("RGB(0,-1,0)"), -256);
    EXPECT_EQ(vColorName::Conv("RGB(0,0,-1)"), -65536);
    EXPECT_EQ(vColorName::Conv("RGB(-1,1,0)"), 255);
    EXPECT_EQ(vColorName::Conv("RGB(-10,1,0)"), 240) << "-10 is read as hexadecimal";
    EXPECT_EQ(vColorName::Conv("RGB(0,0,-8000)"), INT_MIN);
    EXPECT_EQ(vColorName::Conv("RGB(0,0,-8001)"), 0x7FFF0000) << "32 bits, whatever the width of long";
    EXPECT_EQ(vColorName::Conv("RGB(-1,0,-8000)"), INT_MAX);
}

TEST_F(VColorNameReading, ARangeErrorHoldsForTheHexadecimalPartsBehindIt)
{
    EXPECT_EQ(vColorName::Conv("RGB(fffffffff,ff,7)"), 0x070000) << "green is refused too, blue is digits alone";
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(vColorName::Conv("RGB(a,1,2)"), 0x020100) << "and from call to call";
    errno = 0;
    EXPECT_EQ(vColorName::Conv("RGB(a,1,2)"), 0x02010A);
}

TEST_F(VColorNameReading, TheNumbersInFrontOfAMissingMarkAreReadToo)
{
    for (const char *text : {"RGB(fffffffff,1", "RGB(fffffffff,1)", "RGB(1,fffffffff,1", "RGB(fffffffff,1,2"}) {
        errno = 0;
        EXPECT_EQ(vColorName::Conv(text), 0) << text;
        EXPECT_EQ(errno, ERANGE) << text;
    }
    for (const char *text : {"RGB(fffffffff", "RGB(1,fffffffff", "RGB(1,1,fffffffff", "fffffffff,RGB(1,1,1"}) {
        errno = 0;
        EXPECT_EQ(vColorName::Conv(text), 0) << text;
        EXPECT_EQ(errno, 0) << text << ": a number without its end isn't read";
    }
}

TEST_F(VColorNameReading, ReadsBeyondAnyLengthOfText)
{
    const std::string text = std::string(65535, 'x') + "RGB(" + std::string(66000, ' ') + "1,2,3)";
    EXPECT_EQ(vColorName::Conv(text.c_str()), 0x030201);
}

TEST_F(VColorNameReading, WithoutMemoryForTheCopyIsBlack)
{
    const AllAllocationsFail failing;
    EXPECT_EQ(vColorName::Conv("RGB(1,2,3)"), 0);
}

TEST_F(VColorNameReading, WithoutMemoryForAPartLeavesThatPart0)
{
    unsigned n = 1;
    for (;; ++n) {
        const NthAllocationFails failing(n);
        const long rgb = vColorName::Conv("RGB(1,2,3)");
        if (!failing.happened())
            break;
        EXPECT_TRUE(rgb == 0 || rgb == 0x000001 || rgb == 0x000201) << rgb << " at allocation " << n;
    }
    EXPECT_GT(n, 1u);
    EXPECT_EQ(vColorName::Conv("RGB(1,2,3)"), 0x030201);
}

TEST_F(VColorNameReading, ReadsBackWhatItWrites)
{
    TestRandom random(1004);
    for (int i = 0, count = testSteps(20000); i < count; ++i) {
        const long rgb = static_cast<long>(random.bits() & 0xFFFFFF);
        ASSERT_EQ(vColorName::Conv(textOf(rgb).c_str()), rgb) << "step " << i;
    }
}

namespace {

// The reading written out on std::string, for texts in which every number has at most four characters.
long plainRead(const std::string &text)
{
    const std::size_t name = text.find("RGB");
    if (name == std::string::npos)
        return 0;
    std::size_t from = text.find('(', name);
    if (from == std::string::npos)
        return 0;
    long long sum = 0;
    const char ends[3] = {',', ',', ')'};
    for (int i = 0; i < 3; ++i) {
        const std::size_t to = text.find(ends[i], from + 1);
        if (to == std::string::npos)
            return 0;
        std::string part = text.substr(from + 1, to - from - 1);
        while (!part.empty() && part.front() == ' ')
            part.erase(0, 1);
        while (!part.empty() && part.back() == ' ')
            part.pop_back();
        const bool decimal = part.find_first_not_of("0123456789") == std::string::npos;
        const bool minus = !part.empty() && part[0] == '-';
        const std::string digits = minus ? part.substr(1) : part;
        long long value = 0;
        if (!digits.empty() && digits.find_first_not_of("0123456789a") == std::string::npos)
            for (const char c : digits)
                value = value * (decimal ? 10 : 16) + (c == 'a' ? 10 : c - '0');
        if (minus)
            value = -value;
        sum += std::min(value, 255ll) * (1ll << (8 * i));
        from = to;
    }
    return static_cast<long>(static_cast<std::int32_t>(static_cast<std::uint32_t>(sum)));
}

} // namespace

TEST_F(VColorNameReading, TextsOfItsOwnAlphabetAreReadAsThePlainModelReadsThem)
{
    const std::string pieces[] = {"RGB", "(", ",", ",", ")", " ", "7", "30", "255", "a", "-", "x"};
    TestRandom random(1005);
    int read = 0;
    for (int i = 0, count = testSteps(60000); i < count; ++i) {
        std::string text = i % 4 == 0 ? "" : "RGB(";
        std::string stretch;
        for (unsigned n = random.below(14); n > 0; --n) {
            const std::string &piece = pieces[random.below(12)];
            const bool number = piece.find_first_of("0123456789a") == 0;
            stretch = number ? stretch + piece : "";
            text += stretch.size() > 4 ? "," : piece;
            if (stretch.size() > 4)
                stretch.clear();
        }
        if (i % 4 == 3)
            text += ",1,2)";
        const long expected = plainRead(text);
        read += expected != 0;
        ASSERT_EQ(vColorName::Conv(text.c_str()), expected) << "step " << i << ": " << text;
    }
    EXPECT_GT(read, testSteps(9000)) << "texts that hold a colour";
}

TEST(NamedColors, SixteenRowsAndANullRow)
{
    const struct {
        long packed;
        const char *name;
    } rows[] = {
        {packed(0, 0, 0), "Black"},         {packed(255, 0, 0), "Red"},
        {packed(0, 255, 0), "Green"},       {packed(255, 255, 0), "Yellow"},
        {packed(0, 0, 255), "Blue"},        {packed(255, 0, 255), "Magenta"},
        {packed(0, 255, 255), "Cyan"},      {packed(255, 255, 255), "White"},
        {packed(192, 192, 192), "Gray"},    {packed(128, 0, 0), "Dark Red"},
        {packed(0, 128, 0), "Dark Green"},  {packed(128, 128, 0), "Dark Yellow"},
        {packed(0, 0, 128), "Dark Blue"},   {packed(128, 0, 128), "Dark Magenta"},
        {packed(0, 128, 128), "Dark Cyan"}, {packed(128, 128, 128), "Dark Gray"},
    };
    ASSERT_EQ(sizeof kar::namedColors / sizeof kar::namedColors[0], 17u);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(kar::namedColors[i].packed, rows[i].packed) << rows[i].name;
        EXPECT_STREQ(kar::namedColors[i].name, rows[i].name);
        EXPECT_EQ(vColorName::Conv(rows[i].name), 0) << "the names are not read";
    }
    EXPECT_EQ(kar::namedColors[16].name, nullptr);
    EXPECT_EQ(kar::namedColors[16].packed, 0);
}
