// Progress layers, against hand-worked values and a plain model.
#include "karpercent.h"

#include "silenthost.h"
#include "testrandom.h"
#include "testslot.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class KarPercent : public ::testing::Test {
protected:
    SilentHost host;
    karPercent stack;
};

} // namespace

TEST(KarPercentList, StoresItsRangeUnchecked)
{
    karPercentList layer(nullptr, 7, 3);
    EXPECT_EQ(layer.getStart(), 7);
    EXPECT_EQ(layer.getEnd(), 3);
    layer.setStartEnd(-1, 400);
    EXPECT_EQ(layer.getStart(), -1);
    EXPECT_EQ(layer.getEnd(), 400);
    EXPECT_EQ(layer.ListObjectOk(), 1);
    EXPECT_EQ(layer.GetType(), 60);
}

TEST(KarPercentList, LinksBehindTheEndOfTheChain)
{
    karPercentList first(nullptr, 0, 1);
    karPercentList second(&first, 0, 2);
    karPercentList third(&first, 0, 3);
    EXPECT_EQ(first.next(), &second);
    EXPECT_EQ(second.next(), &third);
    EXPECT_EQ(third.prev(), &second);
    EXPECT_EQ(third.first(), &first);
    EXPECT_EQ(first.last(), &third);
    EXPECT_EQ(second.current(), &second);
    karPercentList copy(second);
    EXPECT_EQ(copy.getEnd(), 2);
    EXPECT_EQ(copy.next(), &third);
    copy.next(static_cast<karPercentList *>(nullptr));
    copy.prev(static_cast<karPercentList *>(nullptr));
    EXPECT_EQ(second.next(), &third);
}

TEST(KarPercentList, AssignmentTakesLinksAndRange)
{
    karPercentList first(nullptr, 0, 1);
    karPercentList second(&first, 3, 4);
    karPercentList other(nullptr, 8, 9);
    other = second;
    EXPECT_EQ(other.getStart(), 3);
    EXPECT_EQ(other.getEnd(), 4);
    EXPECT_EQ(other.prev(), &first);
    EXPECT_EQ(first.next(), &second);
    other.prev(static_cast<karPercentList *>(nullptr));
}

TEST(KarPercentList, CalcPercentRoundsHalvesUp)
{
    EXPECT_EQ(karPercentList(nullptr, 0, 3).calcPercent(50), 2);    // (150 + 50) / 100
    EXPECT_EQ(karPercentList(nullptr, 0, 1).calcPercent(49), 0);    // 99 / 100
    EXPECT_EQ(karPercentList(nullptr, 0, 1).calcPercent(50), 1);    // 100 / 100
    EXPECT_EQ(karPercentList(nullptr, 20, 60).calcPercent(25), 30); // 20 + 10
    EXPECT_EQ(karPercentList(nullptr, 0, 100).calcPercent(37), 37);
}

TEST(KarPercentList, CalcPercentClampsToTheRange)
{
    karPercentList layer(nullptr, 10, 50);
    EXPECT_EQ(layer.calcPercent(100), 50);
    EXPECT_EQ(layer.calcPercent(101), 50);
    EXPECT_EQ(layer.calcPercent(2147483647), 50);
    EXPECT_EQ(layer.calcPercent(0), 10);
    EXPECT_EQ(layer.calcPercent(-2), 10);
    EXPECT_EQ(layer.calcPercent(-2147483647 - 1), 10);
}

TEST(KarPercentList, CalcPercentOfMinusOneIsNone) { EXPECT_EQ(karPercentList(nullptr, 10, 50).calcPercent(-1), -1); }

TEST(KarPercentList, CalcPercentOfAnEmptyRangeIsItsStart)
{
    karPercentList layer(nullptr, 10, 10);
    for (const int percent : {-7, 0, 1, 99, 100, 5000})
        EXPECT_EQ(layer.calcPercent(percent), 10) << percent;
    EXPECT_EQ(layer.calcPercent(-1), -1);
}

TEST(KarPercentList, CalcPercentOfAnInvalidRangeIsNone)
{
    for (const int percent : {-1, 0, 50, 100}) {
        EXPECT_EQ(karPercentList(nullptr, 60, 40).calcPercent(percent), -1);
        EXPECT_EQ(karPercentList(nullptr, -1, 40).calcPercent(percent), -1);
        EXPECT_EQ(karPercentList(nullptr, 0, 101).calcPercent(percent), -1);
        EXPECT_EQ(karPercentList(nullptr, -2, -2).calcPercent(percent), -1);
    }
    EXPECT_EQ(karPercentList(nullptr, 0, 100).calcPercent(0), 0); // both limits are valid
}

TEST_F(KarPercent, StartsWithOneFullLayerAndNoPercentage)
{
    EXPECT_EQ(stack.ListAnzahl(), 1);
    EXPECT_EQ(stack.getStart(), 0);
    EXPECT_EQ(stack.getEnd(), 100);
    EXPECT_EQ(stack.getPercent(), -1);
    EXPECT_EQ(stack.getLayerPercent(), -1);
    EXPECT_EQ(stack.ListHeadObjectOk(), 1);
    EXPECT_EQ(stack.getListId(), 0);
    EXPECT_EQ(stack.GetType(), 200001);
    EXPECT_TRUE(host.ticks.empty());
}

TEST_F(KarPercent, OneLayerPassesThePercentageOn)
{
    stack.setLayerPercent(37);
    EXPECT_EQ(stack.getPercent(), 37);
    EXPECT_EQ(stack.getLayerPercent(), 37);
}

TEST_F(KarPercent, TheLayerKeepsWhatTheWholeClamps)
{
    stack.setLayerPercent(150);
    EXPECT_EQ(stack.getLayerPercent(), 150);
    EXPECT_EQ(stack.getPercent(), 100);
    stack.setLayerPercent(-5);
    EXPECT_EQ(stack.getLayerPercent(), -5);
    EXPECT_EQ(stack.getPercent(), 0);
}

TEST_F(KarPercent, MinusOneStaysWhereTheLayersEndAtHundred)
{
    stack.setLayerPercent(20);
    stack.setLayerPercent(-1);
    EXPECT_EQ(stack.getLayerPercent(), -1);
    EXPECT_EQ(stack.getPercent(), -1);
}

TEST_F(KarPercent, MinusOneCountsAsHundredWhereTheLayersEndBefore)
{
    stack.setStartEnd(10, 50);
    stack.setLayerPercent(-1);
    EXPECT_EQ(stack.getLayerPercent(), 100);
    EXPECT_EQ(stack.getPercent(), 50);
}

TEST_F(KarPercent, MinusOneStaysWhereSeveralLayersEndAtHundredTogether)
{
    stack.setStartEnd(50, 100);
    stack.addLayer();
    stack.setLayerPercent(-1);
    EXPECT_EQ(stack.getLayerPercent(), -1);
    EXPECT_EQ(stack.getPercent(), -1);
}

TEST_F(KarPercent, ANegativeFractionTakesThePathOfMinusOne)
{
    stack.setStartEnd(10, 50);
    stack.setLayerPercent(-0.5);
    EXPECT_EQ(stack.getLayerPercent(), 100);
    EXPECT_EQ(stack.getPercent(), 50);
    stack.setLayerPercent(notANumber);
    EXPECT_EQ(stack.getLayerPercent(), 100);
}

TEST_F(KarPercent, AnInvalidLayerAnywhereGivesNone)
{
    stack.setStartEnd(60, 40);
    stack.addLayer();
    stack.setLayerPercent(-1);
    EXPECT_EQ(stack.getLayerPercent(), 100);
    EXPECT_EQ(stack.getPercent(), -1);
    stack.setLayerPercent(30);
    EXPECT_EQ(stack.getLayerPercent(), 30);
    EXPECT_EQ(stack.getPercent(), -1);
}

TEST_F(KarPercent, LayersFoldInnermostFirst)
{
    stack.setStartEnd(0, 50);
    stack.addLayer();
    stack.setLayerPercent(50);
    EXPECT_EQ(stack.getPercent(), 25);
    stack.setStartEnd(50, 75); // of the inner layer
    stack.addLayer();
    stack.setLayerPercent(50); // 50 + (25*50 + 50)/100 = 63, then (50*63 + 50)/100 = 32
    EXPECT_EQ(stack.getPercent(), 32);
}

TEST_F(KarPercent, SetStartEndStoresAndReportsZero)
{
    stack.setLayerPercent(80);
    host.ticks.clear();
    stack.setStartEnd(20, 60);
    EXPECT_EQ(stack.getStart(), 20);
    EXPECT_EQ(stack.getEnd(), 60);
    EXPECT_EQ(stack.getLayerPercent(), 0);
    EXPECT_EQ(stack.getPercent(), 20);
    EXPECT_EQ(host.ticks, std::vector<int>{0}); // 80 fell to 20
    stack.setStartEnd(60, 40);
    EXPECT_EQ(stack.getStart(), 60);
    EXPECT_EQ(stack.getPercent(), -1);
}

TEST_F(KarPercent, FallOfTheGlobalPercentTicksOnce)
{
    stack.setLayerPercent(40);
    EXPECT_TRUE(host.ticks.empty());
    stack.setLayerPercent(10);
    EXPECT_EQ(host.ticks, std::vector<int>{0});
}

TEST_F(KarPercent, RiseAndStandstillAreSilent)
{
    stack.setLayerPercent(10);
    stack.setLayerPercent(40);
    stack.setLayerPercent(40);
    stack.setLayerPercent(100);
    EXPECT_TRUE(host.ticks.empty());
}

TEST_F(KarPercent, ATickFindsTheNewPercentagesAndRange)
{
    class Reader : public SilentHost {
    public:
        explicit Reader(karPercent &read) : stack(read) {}
        void Fortschritt(int) override
        {
            found = {stack.getPercent(), stack.getLayerPercent(), stack.getStart(), stack.getEnd()};
        }
        karPercent &stack;
        std::vector<int> found;
    };
    Reader reader(stack);
    stack.setLayerPercent(40);
    stack.setLayerPercent(10);
    EXPECT_EQ(reader.found, (std::vector<int>{10, 10, 0, 100}));
    stack.setStartEnd(5, 60);
    EXPECT_EQ(reader.found, (std::vector<int>{5, 0, 5, 60}));
    stack.removeLayer();
    stack.setLayerPercent(1);
    EXPECT_EQ(reader.found, (std::vector<int>{-1, -1, -1, -1}));
}

TEST_F(KarPercent, TheLastLayerIsInnermostWhicheverIsCurrent)
{
    stack.addLayer();
    stack.ListInsert(new karPercentList(nullptr, 20, 70), nullptr); // the outermost, and current
    EXPECT_EQ(stack.getEnd(), 100);
    stack.setStartEnd(0, 50);
    EXPECT_EQ(stack.ListLast()->getEnd(), 50);
    EXPECT_EQ(stack.ListFirst()->getEnd(), 70);
    stack.setLayerPercent(100); // 50, then 20 + 25
    EXPECT_EQ(stack.getPercent(), 45);
    stack.removeLayer();
    EXPECT_EQ(stack.getEnd(), 100);
}

TEST_F(KarPercent, AnEmptyStackGivesNoneAndMayTick)
{
    stack.setLayerPercent(40);
    stack.removeLayer();
    EXPECT_EQ(stack.getPercent(), 40);
    EXPECT_EQ(stack.getLayerPercent(), 40);
    EXPECT_EQ(stack.getStart(), -1);
    EXPECT_EQ(stack.getEnd(), -1);
    stack.setStartEnd(1, 2); // nothing to set, and nothing is reported
    EXPECT_EQ(stack.getPercent(), 40);
    EXPECT_EQ(stack.getLayerPercent(), 40);
    EXPECT_TRUE(host.ticks.empty());
    stack.setLayerPercent(30);
    EXPECT_EQ(stack.getPercent(), -1);
    EXPECT_EQ(stack.getLayerPercent(), -1);
    EXPECT_EQ(host.ticks, std::vector<int>{0});
    stack.removeLayer(); // harmless on an empty stack
    stack.addLayer();
    stack.setLayerPercent(30);
    EXPECT_EQ(stack.getPercent(), 30);
}

TEST_F(KarPercent, ResetLeavesOneLayerAndThePercentages)
{
    stack.setStartEnd(10, 50);
    stack.addLayer();
    stack.setLayerPercent(50);
    stack.reset();
    EXPECT_EQ(stack.ListAnzahl(), 1);
    EXPECT_EQ(stack.getStart(), 0);
    EXPECT_EQ(stack.getEnd(), 100);
    EXPECT_EQ(stack.getPercent(), 30);
    EXPECT_EQ(stack.getLayerPercent(), 50);
    stack.setLayerPercent(60);
    EXPECT_EQ(stack.getPercent(), 60);
}

TEST_F(KarPercent, AddAndRemoveLayerKeepThePercentages)
{
    stack.setLayerPercent(45);
    stack.addLayer();
    EXPECT_EQ(stack.ListAnzahl(), 2);
    EXPECT_EQ(stack.getPercent(), 45);
    EXPECT_EQ(stack.getLayerPercent(), 45);
    stack.removeLayer();
    EXPECT_EQ(stack.ListAnzahl(), 1);
    EXPECT_EQ(stack.getPercent(), 45);
}

TEST_F(KarPercent, SetPercentIsStoredAsItIs)
{
    stack.setLayerPercent(90);
    stack.setPercent(70);
    EXPECT_EQ(stack.getPercent(), 70);
    EXPECT_EQ(stack.getLayerPercent(), 90);
    stack.setPercent(-12345);
    EXPECT_EQ(stack.getPercent(), -12345);
    EXPECT_TRUE(host.ticks.empty());
}

TEST_F(KarPercent, FractionsAreRoundedToPercent)
{
    const struct {
        double fraction;
        int percent;
    } rows[] = {{0.5, 50},
                {0.994, 99},
                {0.0, 0},
                {-0.0, 0},
                {0.005, 1},
                {1.0, 100},
                {2.5, 250},
                {-0.1, -1},
                {-1e300, -1},
                {notANumber, -1},
                {1e300, 2147483647},
                {infinity, 2147483647},
                {-infinity, -1},
                {21474836.46, 2147483646}};
    for (const auto &row : rows) {
        stack.setLayerPercent(row.fraction);
        EXPECT_EQ(stack.getLayerPercent(), row.percent) << row.fraction;
    }
}

TEST_F(KarPercent, WithoutAHostAFallIsSilent)
{
    Stdio = nullptr;
    stack.setLayerPercent(40);
    stack.setLayerPercent(10);
    EXPECT_EQ(stack.getPercent(), 10);
}

TEST_F(KarPercent, ListOperationsAreTyped)
{
    karPercentList *layer = stack.ListAppend(new karPercentList(nullptr, 3, 4));
    EXPECT_EQ(stack.ListLast(), layer);
    EXPECT_EQ(stack.ListCurrent(), layer);
    EXPECT_EQ(stack.ListExist(layer), layer);
    EXPECT_EQ(stack.ListFirst()->next(), layer);
    karPercentList *front = stack.ListInsert(new karPercentList(nullptr, 5, 6), nullptr);
    EXPECT_EQ(stack.ListFirst(), front);
    EXPECT_EQ(stack.ListUnchain(front), front);
    delete front;
    EXPECT_EQ(stack.ListAnzahl(), 2);
    EXPECT_EQ(stack.getStart(), 3);
}

namespace {

// The stack as plain numbers, one function a rule.
struct PlainStack {
    struct Layer {
        long long start, end;
    };
    std::vector<Layer> layers{{0, 100}};
    long long percent = -1;
    long long layerPercent = -1;
    int ticks = 0;

    static long long outer(const Layer &layer, long long value)
    {
        const bool valid = layer.start <= layer.end && layer.start >= 0 && layer.end <= 100;
        if (!valid || value == -1)
            return -1;
        const long long clamped = value > 100 ? 100 : value < 0 ? 0 : value;
        return static_cast<long long>(std::floor(
                   (static_cast<double>(layer.end - layer.start) * static_cast<double>(clamped) + 50.0) / 100.0)) +
               layer.start;
    }
    long long fold(long long value) const
    {
        for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
            value = outer(*layer, value);
        return value;
    }
    void report(long long value)
    {
        const long long before = percent;
        if (layers.empty()) {
            percent = layerPercent = -1;
        } else {
            if (value == -1 && fold(100) != 100)
                value = 100;
            layerPercent = value;
            percent = fold(value);
        }
        ticks += before > percent;
    }
    void report(double fraction)
    {
        if (std::isnan(fraction) || fraction < 0)
            report(-1ll);
        else
            report(std::floor(fraction * 100.0 + 0.5) >= 2147483647.0
                       ? 2147483647ll
                       : static_cast<long long>(std::floor(fraction * 100.0 + 0.5)));
    }
};

} // namespace

TEST_F(KarPercent, RandomSequencesFollowThePlainStack)
{
    constexpr std::uint64_t seed = 20260105;
    TestRandom random(seed);
    PlainStack plain;
    for (int step = 0, steps = testSteps(300000); step < steps; ++step) {
        switch (random.below(12)) {
        case 0:
            if (plain.layers.size() < 6) {
                stack.addLayer();
                plain.layers.push_back({0, 100});
            }
            break;
        case 1:
            stack.removeLayer();
            if (!plain.layers.empty())
                plain.layers.pop_back();
            break;
        case 2:
            if (random.below(10) == 0) {
                stack.reset();
                plain.layers = {{0, 100}};
            }
            break;
        case 3:
        case 4: {
            const int start = random.below(20) ? random.between(0, 100) : random.between(-50, 150);
            const int end =
                random.below(5) ? random.between(start, 100 > start ? 100 : start) : random.between(-50, 150);
            stack.setStartEnd(start, end);
            if (!plain.layers.empty()) {
                plain.layers.back() = {start, end};
                plain.report(0ll);
            }
            break;
        }
        case 5: {
            const double special[] = {notANumber, infinity, -infinity, 1e300, -1e-300, -0.0, 0.995, 1.5};
            const double fraction = random.below(3) ? random.between(-0.5, 1.5) : special[random.below(8)];
            stack.setLayerPercent(fraction);
            plain.report(fraction);
            break;
        }
        case 6: {
            const int value = random.anyInt();
            stack.setPercent(value);
            plain.percent = value;
            break;
        }
        default: {
            const int value = random.below(10) ? random.between(-1, 100) : random.anyInt();
            stack.setLayerPercent(value);
            plain.report(static_cast<long long>(value));
            break;
        }
        }
        ASSERT_EQ(stack.getPercent(), plain.percent) << "seed " << seed << ", step " << step;
        ASSERT_EQ(stack.getLayerPercent(), plain.layerPercent) << "seed " << seed << ", step " << step;
        ASSERT_EQ(host.ticks.size(), static_cast<std::size_t>(plain.ticks)) << "seed " << seed << ", step " << step;
        ASSERT_EQ(stack.ListAnzahl(), static_cast<int>(plain.layers.size())) << "seed " << seed << ", step " << step;
        ASSERT_EQ(stack.getStart(), plain.layers.empty() ? -1 : plain.layers.back().start) << step;
        ASSERT_EQ(stack.getEnd(), plain.layers.empty() ? -1 : plain.layers.back().end) << step;
    }
}

namespace {

/// Opens the fields.
struct LayerFields : karPercentList {
    LayerFields() : karPercentList(nullptr, 0, 100) {}
    void check()
    {
        const auto word = static_cast<long>(sizeof(void *));
        EXPECT_EQ(offsetIn(*this, start), 3 * word); // behind the two links
        EXPECT_EQ(offsetIn(*this, end), 3 * word + 4);
    }
};

struct StackFields : karPercent {
    void check()
    {
        const auto word = static_cast<long>(sizeof(void *));
        EXPECT_EQ(offsetIn(*this, reserved), 8 * word); // behind the head
        EXPECT_EQ(offsetIn(*this, percent), 9 * word);
        EXPECT_EQ(offsetIn(*this, layerPercent), 9 * word + 4);
        EXPECT_EQ(reserved, nullptr);
    }
};

} // namespace

TEST(PercentLayout, FieldsStandInTheirOrder)
{
    LayerFields().check();
    StackFields().check();
    EXPECT_EQ(sizeof(karPercentList), 3 * sizeof(void *) + 8);
    EXPECT_EQ(sizeof(karPercent), 9 * sizeof(void *) + 8);
}

TEST(PercentLayout, NoVirtualOperationIsAdded)
{
    EXPECT_EQ(slotOf(&karPercentList::ListObjectOk), 0);
    EXPECT_EQ(slotOf(&karPercent::ListHeadObjectOk), 0);
}
