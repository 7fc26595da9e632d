// Boxes beside plain models: four numbers by name, and the set of grid points that a box covers.
#include "karrect.h"
#include "goldenrun.h"
#include "testrandom.h"
#include "teststeps.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <utility>

namespace {

/// The model: four places by name, with every rule written out.
struct Plain {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;

    bool has(double x, double y) const { return left <= x && x <= right && bottom <= y && y <= top; }
    bool touches(const Plain &o) const { return has(o.left, o.bottom) || has(o.right, o.top); }
    void storeLeft(double v)
    {
        const double old = right;
        if (v < old) {
            left = v;
            return;
        }
        left = old;
        right = v;
    }
    void storeRight(double v)
    {
        const double old = left;
        if (v > old) {
            right = v;
            return;
        }
        right = old;
        left = v;
    }
    void storeBottom(double v)
    {
        const double old = top;
        if (v < old) {
            bottom = v;
            return;
        }
        bottom = old;
        top = v;
    }
    void storeTop(double v)
    {
        const double old = bottom;
        if (v > old) {
            top = v;
            return;
        }
        top = old;
        bottom = v;
    }
    void order()
    {
        if (right < left)
            std::swap(left, right);
        if (bottom > top)
            std::swap(bottom, top);
    }
    bool apart(const Plain &o) const { return left > o.right || right < o.left || top < o.bottom || bottom > o.top; }
};

double lesser(double a, double b) { return a < b ? a : b; }
double greater(double a, double b) { return a < b ? b : a; }

void add(TestHash &hash, const karD_Rect &r)
{
    hash.add(r.left());
    hash.add(r.bottom());
    hash.add(r.right());
    hash.add(r.top());
}

void add(TestHash &hash, const Plain &r)
{
    hash.add(r.left);
    hash.add(r.bottom);
    hash.add(r.right);
    hash.add(r.top);
}

void add(TestHash &hash, const karRect &r)
{
    hash.add(r.left());
    hash.add(r.top());
    hash.add(r.right());
    hash.add(r.bottom());
}

/// A box with the four values as they are.
karRect plainGrid(int left, int top, int right, int bottom)
{
    karRect r;
    r.topLeft(karPoint(left, top));
    r.bottomRight(karPoint(right, bottom));
    return r;
}

/// Positive zero alone, on a grid of halves: which of two equal values is stored can't be told apart.
double anyPlace(TestRandom &random) { return random.between(-12, 12) * 0.5 + 0.0; }

int asInt(bool value) { return value ? 1 : 0; }

} // namespace

// One box lives through the whole run, so the stores meet ordered, touching and inverted boxes.
TEST(KarD_RectModel, AgreesOverAMillionCalls)
{
    GoldenRun run(631, 1000000, 0x85f0886c49a694b8u);
    karD_Rect r;
    Plain p;
    while (run.next()) {
        const double a = anyPlace(run.random);
        const double b = anyPlace(run.random);
        const double c = anyPlace(run.random);
        const double d = anyPlace(run.random);
        karD_Rect o;
        o.leftRight(a, b);
        o.topBottom(c, d);
        Plain q{a, d, b, c};
        const int gridX = run.random.between(-6, 6);
        const int gridY = run.random.between(-6, 6);
        karRect grid = plainGrid(gridX, gridY, 1, 3);              // left, top, right, bottom
        const Plain named{double(gridX), 3.0, 1.0, double(gridY)}; // left, bottom, right, top
        switch (run.random.below(28)) {
        case 0:
            r.left(a), p.storeLeft(a);
            break;
        case 1:
            r.right(a), p.storeRight(a);
            break;
        case 2:
            r.top(a), p.storeTop(a);
            break;
        case 3:
            r.bottom(a), p.storeBottom(a);
            break;
        case 4:
            r.topLeft(karD_Point(a, b)), p.storeLeft(a), p.storeTop(b);
            break;
        case 5:
            r.topRight(karD_Point(a, b)), p.storeRight(a), p.storeTop(b);
            break;
        case 6:
            r.bottomLeft(karPoint(gridX, gridY)), p.storeLeft(gridX), p.storeBottom(gridY);
            break;
        case 7:
            r.bottomRight(karPoint(gridX, gridY)), p.storeRight(gridX), p.storeBottom(gridY);
            break;
        case 8:
            r.set_left(a), p.left = a;
            break;
        case 9:
            r.set_top(a), p.top = a;
            break;
        case 10:
            r.leftRight(a, b), p.left = a, p.right = b;
            break;
        case 11:
            r.topBottom(a, b), p.top = a, p.bottom = b;
            break;
        case 12:
            r.NormalizeRect(), p.order();
            break;
        case 13: {
            const double x = p.left <= p.right ? a : -a;
            const double y = p.bottom <= p.top ? a : -a;
            r.InflateRect(a);
            p = Plain{p.left - x, p.bottom - y, p.right + x, p.top + y};
            break;
        }
        case 14:
            r.unionrect(o);
            p = Plain{lesser(p.left, a), lesser(p.bottom, d), greater(p.right, b), greater(p.top, c)};
            break;
        case 15:
            r.unionrect(grid);
            p = Plain{lesser(p.left, gridX), lesser(p.bottom, 3), greater(p.right, 1), greater(p.top, gridY)};
            break;
        case 16:
        case 17: {
            const bool byName = run.step % 2 == 1;
            const Plain &source = byName ? named : q;
            const bool met = p.touches(source);
            run.code.add(asInt(byName ? r.setintersects(grid) : r.setintersects(o)));
            run.plain.add(asInt(met));
            if (met) {
                p.storeLeft(source.left), p.storeBottom(source.bottom);
                p.storeRight(source.right), p.storeTop(source.top);
            } else {
                p = Plain();
            }
            break;
        }
        case 18:
            run.code.add(asInt(r.overlapped(o)));
            q.order(), p.order();
            run.plain.add(asInt(!p.apart(q)));
            add(run.code, o), add(run.plain, q);
            break;
        case 19: {
            add(run.code, r.average(o));
            q.order(), p.order();
            Plain common;
            if (!p.apart(q))
                common = Plain{greater(p.left, q.left), greater(p.bottom, q.bottom), lesser(p.right, q.right),
                               lesser(p.top, q.top)};
            add(run.plain, common);
            add(run.code, o), add(run.plain, q);
            break;
        }
        case 20:
            run.code.add(asInt(r.intersects(o)) + 2 * asInt(r.intersects(grid)));
            run.plain.add(asInt(p.touches(q)) + 2 * asInt(p.touches(named)));
            break;
        case 21:
            run.code.add(asInt(r.contains(o)) + 2 * asInt(r.contains(grid)) + 4 * asInt(r.contains(karD_Point(a, b))) +
                         8 * asInt(r.contains(karPoint(gridX, gridY))));
            run.plain.add(asInt(p.has(a, d) && p.has(b, c)) + 2 * asInt(p.has(gridX, 3) && p.has(1, gridY)) +
                          4 * asInt(p.has(a, b)) + 8 * asInt(p.has(gridX, gridY)));
            break;
        case 22:
            run.code.add(asInt(r.isNull())), run.plain.add(asInt(p.left == p.right && p.bottom == p.top));
            run.code.add(r.width()), run.plain.add(p.right - p.left);
            run.code.add(r.height()), run.plain.add(p.top - p.bottom);
            break;
        case 23:
            r += karD_Point(a, b);
            p = Plain{p.left + a, p.bottom + b, p.right + a, p.top + b};
            break;
        case 24:
            r -= karPoint(gridX, gridY);
            p = Plain{p.left - gridX, p.bottom - gridY, p.right - gridX, p.top - gridY};
            break;
        case 25:
            r = grid, p = named;
            break;
        case 26:
            r.init(a, b, c, d), p = Plain{a, b, c, d}, p.order();
            break;
        default:
            r = karD_Rect(karD_Point(a, b), karD_Dimension(c, d));
            p = Plain{a, b, a + c, b + d};
            p.order();
            break;
        }
        add(run.code, r);
        add(run.plain, p);
    }
}

TEST(KarRectModel, AgreesOverAMillionCalls)
{
    GoldenRun run(632, 1000000, 0x98b353bf5212a41bu);
    const auto any = [&run] { return run.random.below(2) ? run.random.anyInt() : run.random.between(-3, 3); };
    const auto wrapped = [](std::int64_t v) {
        v = (v % 4294967296 + 4294967296) % 4294967296;
        return static_cast<int>(v >= 2147483648 ? v - 4294967296 : v);
    };
    while (run.next()) {
        const int l = any();
        const int t = any();
        const int r = any();
        const int b = any();
        const int ol = any();
        const int ot = any();
        const int oR = any();
        const int ob = any();
        karRect box = plainGrid(l, t, r, b);
        const karRect o = plainGrid(ol, ot, oR, ob);
        const int maxLeft = l > ol ? l : ol;
        const int maxTop = t > ot ? t : ot;
        const int minRight = r < oR ? r : oR;
        const int minBottom = b < ob ? b : ob;
        const bool meet = maxLeft <= minRight && maxTop <= minBottom;
        switch (run.step % 9) {
        case 0:
            box.init(l, t, r, b);
            add(run.code, box);
            add(run.plain, plainGrid(l < r ? l : r, t < b ? t : b, l < r ? r : l, t < b ? b : t));
            break;
        case 1:
            add(run.code, karRect(karPoint(l, t), karDimension(r, b)));
            add(run.plain, plainGrid(l, t, wrapped(std::int64_t{l} + r), wrapped(std::int64_t{t} + b)));
            break;
        case 2: {
            const karPoint centre = box.centre();
            run.code.add(centre.x()), run.plain.add(wrapped(std::int64_t{l} + r) / 2);
            run.code.add(centre.y()), run.plain.add(wrapped(std::int64_t{t} + b) / 2);
            run.code.add(box.width()), run.plain.add(wrapped(std::int64_t{r} - l));
            run.code.add(box.height()), run.plain.add(wrapped(std::int64_t{b} - t));
            break;
        }
        case 3:
            box.unionrect(o);
            add(run.code, box);
            add(run.plain, plainGrid(l < ol ? l : ol, t < ot ? t : ot, r > oR ? r : oR, b > ob ? b : ob));
            break;
        case 4:
            box.MoveElement(ol, ot);
            add(run.code, box);
            add(run.plain, plainGrid(wrapped(std::int64_t{l} + ol), wrapped(std::int64_t{t} + ot),
                                     wrapped(std::int64_t{r} + ol), wrapped(std::int64_t{b} + ot)));
            break;
        case 5:
            box -= karPoint(ol, ot);
            add(run.code, box);
            add(run.plain, plainGrid(wrapped(std::int64_t{l} - ol), wrapped(std::int64_t{t} - ot),
                                     wrapped(std::int64_t{r} - ol), wrapped(std::int64_t{b} - ot)));
            break;
        case 6: {
            karPoint corner(ol, ot);
            karRect limits(box);
            run.code.add(asInt(box.contains(corner)) + 2 * asInt(box.contains(o)) + 4 * asInt(corner.isFullIn(limits)));
            const bool first = l <= ol && ol <= r && t <= ot && ot <= b;
            const bool second = l <= oR && oR <= r && t <= ob && ob <= b;
            run.plain.add(asInt(first) + 2 * asInt(first && second) + 4 * asInt(first));
            break;
        }
        case 7:
            run.code.add(asInt(box.intersects(o))), run.plain.add(asInt(meet));
            break;
        default:
            run.code.add(asInt(box.setintersects(o)));
            add(run.code, box);
            run.plain.add(asInt(meet));
            add(run.plain, meet ? plainGrid(maxLeft, maxTop, minRight, minBottom) : karRect());
            break;
        }
    }
}

// Boxes on the grid 0 to 9: what they have in common is found point by point.
TEST(KarRectModel, IntersectsAndUnitesLikeSetsOfGridPoints)
{
    const std::uint64_t seed = 633;
    TestRandom random(seed);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        int v[8];
        for (int &value : v)
            value = random.between(0, 9);
        const karRect a(v[0], v[1], v[2], v[3]);
        const karRect b(v[4], v[5], v[6], v[7]);
        karRect common;
        karRect both;
        bool someCommon = false;
        bool some = false;
        for (int x = 0; x <= 9; ++x)
            for (int y = 0; y <= 9; ++y) {
                const bool inA = x >= a.left() && x <= a.right() && y >= a.top() && y <= a.bottom();
                const bool inB = x >= b.left() && x <= b.right() && y >= b.top() && y <= b.bottom();
                if (inA && inB) {
                    const karRect point(x, y, x, y);
                    common = someCommon
                                 ? karRect(common.left(), std::min(common.top(), y), x, std::max(common.bottom(), y))
                                 : point;
                    someCommon = true;
                }
                if (inA || inB) {
                    both = some ? karRect(both.left(), std::min(both.top(), y), x, std::max(both.bottom(), y))
                                : karRect(x, y, x, y);
                    some = true;
                }
            }
        karRect united(a);
        united.unionrect(b);
        ASSERT_EQ(united, both) << "seed " << seed << ", step " << step;
        ASSERT_EQ(a.intersects(b), someCommon) << "seed " << seed << ", step " << step;
        karRect cut(a);
        ASSERT_EQ(cut.setintersects(b), someCommon) << "seed " << seed << ", step " << step;
        ASSERT_EQ(cut, common) << "seed " << seed << ", step " << step;

        // The real box in any order of its places: the same points, once it is normalised.
        karD_Rect realA;
        realA.leftRight(v[0], v[2]);
        realA.topBottom(v[1], v[3]);
        karD_Rect realB;
        realB.leftRight(v[4], v[6]);
        realB.topBottom(v[5], v[7]);
        karD_Rect overlapA(realA);
        karD_Rect overlapB(realB);
        ASSERT_EQ(overlapA.overlapped(overlapB), someCommon) << "seed " << seed << ", step " << step;
        const karD_Rect average = realA.average(realB);
        ASSERT_EQ(average, karD_Rect(common.left(), common.top(), common.right(), common.bottom()))
            << "seed " << seed << ", step " << step;
        ASSERT_EQ(realA, karD_Rect(v[0], v[1], v[2], v[3])) << "seed " << seed << ", step " << step;
        ASSERT_EQ(realB, karD_Rect(v[4], v[5], v[6], v[7])) << "seed " << seed << ", step " << step;
    }
}

TEST(KarD_RectModel, StaysOrderedUnderOrderedStores)
{
    const std::uint64_t seed = 634;
    TestRandom random(seed);
    karD_Rect r(0, 0, 1, 1);
    for (int step = 0, steps = testSteps(200000); step < steps; ++step) {
        const karD_Point p(random.between(-9.0, 9.0), anyPlace(random));
        switch (random.below(4)) {
        case 0:
            r.topLeft(p);
            break;
        case 1:
            r.topRight(p);
            break;
        case 2:
            r.bottomLeft(p);
            break;
        default:
            r.bottomRight(p);
            break;
        }
        ASSERT_LE(r.left(), r.right()) << "seed " << seed << ", step " << step;
        ASSERT_LE(r.bottom(), r.top()) << "seed " << seed << ", step " << step;
        ASSERT_TRUE(r.left() == p.x() || r.right() == p.x()) << "seed " << seed << ", step " << step;
        ASSERT_TRUE(r.bottom() == p.y() || r.top() == p.y()) << "seed " << seed << ", step " << step;
    }
}

TEST(KarRectModel, TurnsEachCornerLikeAPoint)
{
    const std::uint64_t seed = 635;
    TestRandom random(seed);
    for (int step = 0, steps = testSteps(100000); step < steps; ++step) {
        const karRect start = plainGrid(random.between(-999, 999), random.between(-999, 999), random.between(-999, 999),
                                        random.between(-999, 999));
        const double angle = random.between(-7.0, 7.0);
        const int cx = random.between(-99, 99);
        const int cy = random.between(-99, 99);
        karPoint topLeft = start.topLeft();
        karPoint bottomRight = start.bottomRight();
        topLeft.RotateElement(angle, cx, cy);
        bottomRight.RotateElement(angle, cx, cy);
        karRect r(start);
        r.RotateElement(angle, cx, cy);
        ASSERT_EQ(r.topLeft(), topLeft) << "seed " << seed << ", step " << step;
        ASSERT_EQ(r.bottomRight(), bottomRight) << "seed " << seed << ", step " << step;
        topLeft = start.topLeft();
        bottomRight = start.bottomRight();
        topLeft.RotateElement(angle);
        bottomRight.RotateElement(angle);
        r = start;
        r.RotateElement(angle);
        ASSERT_EQ(r.topLeft(), topLeft) << "seed " << seed << ", step " << step;
        ASSERT_EQ(r.bottomRight(), bottomRight) << "seed " << seed << ", step " << step;
    }
}
