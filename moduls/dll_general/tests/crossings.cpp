// Prints how often the intersections and feet miss a crossing that is known, and why, and how often the iteration
// doesn't settle: the tables of docs/crossings.md. One argument: pairs of each kind (1,000,000 if it is missing).
#include "crossingreasons.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int misses = static_cast<int>(Miss::count);

/// Runs `pair` so often and prints a row for each outcome.
template <class Pair>
void tabulate(const char *kind, int pairs, Pair pair)
{
    int counts[misses] = {};
    TestRandom random(1);
    for (int i = 0; i < pairs; ++i)
        ++counts[static_cast<int>(pair(random))];
    for (int miss = 1; miss < misses; ++miss)
        if (counts[miss] > 0)
            std::printf("| %s | %s | %d |\n", kind, describe(static_cast<Miss>(miss)), counts[miss]);
    const int missed = pairs - counts[0];
    std::printf("| %s | **all** | **%d** of %d |\n", kind, missed, pairs);
}

Miss lineLine(TestRandom &random)
{
    const double x = random.between(-10.0, 10.0);
    const double y = random.between(-10.0, 10.0);
    const double angle = random.between(0.0, crossingFullTurn);
    const double other = random.between(0.0, crossingFullTurn);
    const plain::Line g = segmentThrough(random, x, y, angle);
    const plain::Line h = segmentThrough(random, x, y, other);
    return whyMissed(g, h, {x, y, 0, std::fabs(std::sin(angle - other))});
}

template <bool circle>
Miss lineEllipse(TestRandom &random)
{
    const plain::Ellipse e = randomWhole(random, circle);
    plain::Line line;
    const Common point = lineThrough(random, e, line);
    return whyMissed(line, e, point);
}

template <bool circles>
Miss ellipses(TestRandom &random)
{
    const plain::Ellipse first = randomWhole(random, circles);
    plain::Ellipse second = randomWhole(random, circles);
    const double t1 = random.between(0.0, crossingFullTurn);
    const double t2 = random.between(0.0, crossingFullTurn);
    const Common point = moveTogether(first, t1, second, t2);
    return whyMissed(first, second, point);
}

/// From a point on the normal in t, up to 5 to both sides.
template <bool circle>
Miss foot(TestRandom &random)
{
    const plain::Ellipse e = randomWhole(random, circle);
    const double t = random.between(0.0, crossingFullTurn);
    const double distance = random.between(-5.0, 5.0);
    double tx, ty;
    tangentAt(e, t, tx, ty);
    const double x = e.x(std::cos(t), std::sin(t)), y = e.y(std::cos(t), std::sin(t));
    return whyMissed(x - distance * ty, y + distance * tx, e, {x, y, t, 1});
}

/// Circles whose points fall in the two slots that `Intersect_Arc_Arc` doesn't show.
void hiddenPoints(int pairs)
{
    TestRandom random(1);
    int counted = 0, hidden = 0;
    for (int i = 0; i < pairs; ++i) {
        const plain::Ellipse first = randomWhole(random, true);
        plain::Ellipse second = randomWhole(random, true);
        const double t1 = random.between(0.0, crossingFullTurn);
        const double t2 = random.between(0.0, crossingFullTurn);
        moveTogether(first, t1, second, t2);
        double at[4] = {1e300, 1e300, 1e300, 1e300};
        int passes = crossingPasses;
        const int count = Intersect_Arc_Arc(first.cx, first.cy, first.a, 0, crossingFullTurn, second.cx, second.cy,
                                            second.a, 0, crossingFullTurn, 3, at[0], at[1], at[2], at[3], passes);
        counted += count;
        hidden += count - (at[0] < 1e300 ? 1 : 0) - (at[2] < 1e300 ? 1 : 0);
    }
    std::printf(
        "\nOf %d points that `Intersect_Arc_Arc` counts on %d pairs of circles, %d lie in slots that it doesn't "
        "show.\n",
        counted, pairs, hidden);
}

// Pairs that the iteration may not settle on. Fewer passes tell as well, and end sooner.

constexpr int manyPasses = 1000;

bool settles(const plain::Ellipse &first, const plain::Ellipse &second)
{
    double at[8];
    int passes = manyPasses;
    Intersect_Ellipse_Ellipse(first.cx, first.cy, first.a, first.b, first.r, first.start, first.end, second.cx,
                              second.cy, second.a, second.b, second.r, second.start, second.end, 3, at[0], at[1], at[2],
                              at[3], at[4], at[5], at[6], at[7], passes);
    return passes >= 0;
}

bool settles(double px, double py, const plain::Ellipse &e)
{
    double at[8];
    int passes = manyPasses;
    Calculate_Perpendicular_Points_To_Ellipse(px, py, e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, at[0], at[1], at[2],
                                              at[3], at[4], at[5], at[6], at[7], passes);
    return passes >= 0;
}

template <class Pair>
void tabulateUnsettled(const char *kind, int pairs, Pair pair)
{
    TestRandom random(2);
    int unsettled = 0;
    for (int i = 0; i < pairs; ++i)
        unsettled += pair(random) ? 0 : 1;
    std::printf("| %s | %d of %d |\n", kind, unsettled, pairs);
}

template <bool circles>
bool settlesAtRandom(TestRandom &random)
{
    const plain::Ellipse first = randomWhole(random, circles);
    const plain::Ellipse second = randomWhole(random, circles);
    return settles(first, second);
}

template <bool circles>
bool settlesConcentric(TestRandom &random)
{
    const plain::Ellipse first = randomWhole(random, circles);
    plain::Ellipse second = randomWhole(random, circles);
    second.cx = first.cx;
    second.cy = first.cy;
    return settles(first, second);
}

/// A common point with a common tangent: the second ellipse is turned so that its tangent in t2 is the one of t1.
template <bool circles, bool osculating>
bool settlesTouching(TestRandom &random)
{
    const plain::Ellipse first = randomWhole(random, circles);
    plain::Ellipse second = randomWhole(random, circles);
    const double t1 = random.between(0.0, crossingFullTurn);
    double t2 = random.between(0.0, crossingFullTurn);
    if (osculating) { // of the same curvature: scaled
        const auto curvature = [](const plain::Ellipse &e, double t) {
            const double x = e.a * std::sin(t), y = e.b * std::cos(t);
            return e.a * e.b / std::pow(x * x + y * y, 1.5);
        };
        const double scale = curvature(second, t2) / curvature(first, t1);
        second.a *= scale;
        second.b *= scale;
    }
    double ax, ay, bx, by;
    tangentAt(first, t1, ax, ay);
    tangentAt(second, t2, bx, by);
    const double turn = std::atan2(ay, ax) - std::atan2(by, bx);
    if (circles)
        t2 += turn;
    else
        second.r += turn;
    moveTogether(first, t1, second, t2);
    return settles(first, second);
}

template <bool circle>
bool settlesFromAnywhere(TestRandom &random)
{
    const plain::Ellipse e = randomWhole(random, circle);
    const double px = random.between(-10.0, 10.0);
    const double py = random.between(-10.0, 10.0);
    return settles(px, py, e);
}

/// Exactly on it: the ellipse isn't rotated.
bool settlesFromAnAxis(TestRandom &random)
{
    plain::Ellipse e = randomWhole(random, false);
    e.r = 0;
    const double along = random.between(-10.0, 10.0);
    return random.below(2) == 0 ? settles(e.cx + along, e.cy, e) : settles(e.cx, e.cy + along, e);
}

bool settlesFromTheCentre(TestRandom &random)
{
    const plain::Ellipse e = randomWhole(random, false);
    return settles(e.cx, e.cy, e);
}

} // namespace

int main(int count, char **arguments)
{
    const int pairs = count > 1 ? std::atoi(arguments[1]) : 1000000;
    std::puts("| pairs with a known crossing | why it is missed | how often |\n| --- | --- | ---: |");
    tabulate("line, line", pairs, lineLine);
    tabulate("line, circle", pairs, lineEllipse<true>);
    tabulate("line, ellipse", pairs, lineEllipse<false>);
    tabulate("circle, circle", pairs, ellipses<true>);
    tabulate("ellipse, ellipse", pairs, ellipses<false>);
    tabulate("point, circle (feet)", pairs, foot<true>);
    tabulate("point, ellipse (feet)", pairs, foot<false>);
    hiddenPoints(pairs);

    std::printf("\n| pairs | not settled after %d passes |\n| --- | ---: |\n", manyPasses);
    tabulateUnsettled("circles, random", pairs, settlesAtRandom<true>);
    tabulateUnsettled("circles, touching", pairs / 10, settlesTouching<true, false>);
    tabulateUnsettled("circles, concentric", pairs / 10, settlesConcentric<true>);
    tabulateUnsettled("ellipses, random", pairs, settlesAtRandom<false>);
    tabulateUnsettled("ellipses, touching", pairs / 10, settlesTouching<false, false>);
    tabulateUnsettled("ellipses, osculating", pairs / 10, settlesTouching<false, true>);
    tabulateUnsettled("ellipses, concentric", pairs / 10, settlesConcentric<false>);
    tabulateUnsettled("feet on a circle", pairs, settlesFromAnywhere<true>);
    tabulateUnsettled("feet on an ellipse", pairs, settlesFromAnywhere<false>);
    tabulateUnsettled("feet from a point of an axis", pairs / 10, settlesFromAnAxis);
    tabulateUnsettled("feet from the centre", pairs / 10, settlesFromTheCentre);
    return 0;
}
