#include "meet.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

constexpr double closeness = 1e-9; // of the smaller piece
constexpr double rounding = 4e-15; // of coordinates
constexpr int unbounded = 0;       // no limits: ends are looked at here, with a tolerance that suits the pair

// Of a straight piece its length, of an arc the mean of its axes.
double sizeOf(const Piece &piece)
{
    return piece.curved ? std::sqrt(piece.a * piece.b) : piece.start.DistEuk(piece.end);
}

// A pair in coordinates of its own: the smaller piece has size 1 and its middle lies near the origin, so that the fixed
// thresholds of the library neither swallow a small pair nor drown in large coordinates.
class Frame {
public:
    Frame(const Piece &first, const Piece &second)
    {
        const double size1 = sizeOf(first);
        const double size2 = sizeOf(second);
        const Piece &smaller = size1 < size2 ? first : second;
        const double size = std::min(size1, size2);
        middle = smaller.curved
                     ? smaller.centre
                     : karD_Point((smaller.start.x() + smaller.end.x()) / 2, (smaller.start.y() + smaller.end.y()) / 2);
        scale = 1 / size;
        tolerance = closeness + rounding * (middle.DistMax(karD_Point()) + std::max(size1, size2)) * scale;
    }

    karD_Point inside(const karD_Point &p) const
    {
        return karD_Point((p.x() - middle.x()) * scale, (p.y() - middle.y()) * scale);
    }
    karD_Point outside(const karD_Point &p) const
    {
        return karD_Point(p.x() / scale + middle.x(), p.y() / scale + middle.y());
    }
    Piece inside(const Piece &piece) const
    {
        Piece result = piece;
        result.start = inside(piece.start);
        result.end = inside(piece.end);
        result.centre = inside(piece.centre);
        result.a = piece.a * scale;
        result.b = piece.b * scale;
        return result;
    }

    double tolerance; // within the frame

private:
    karD_Point middle;
    double scale;
};

class Pair {
public:
    Pair(const Piece &one, const Piece &other, int passes)
        : frame(one, other),
          first(frame.inside(one)),
          second(frame.inside(other)),
          tolerance(frame.tolerance),
          mostPasses(passes)
    {}

    bool solve()
    {
        addEnds(first, second);
        addEnds(second, first);
        if (!first.curved && !second.curved)
            return lines();
        if (!first.curved)
            return lineAndCurve(first, second);
        if (!second.curved)
            return lineAndCurve(second, first);
        return curves();
    }

    // The coordinates of so small a piece so far out don't tell where it lies.
    bool tooCoarse() const { return tolerance > 0.01; }
    karD_Point outside(const karD_Point &point) const { return frame.outside(point); }

    std::vector<karD_Point> found; // within the frame

private:
    void addEnds(const Piece &piece, const Piece &other)
    {
        if (piece.whole())
            return;
        for (const karD_Point &end : {piece.start, piece.end})
            if (gap(other, end) <= tolerance)
                add(end);
    }

    // A candidate is brought onto both curves; then its distances decide. False for one that lies beside the curves.
    bool offer(karD_Point p)
    {
        constexpr int steps = 4;
        constexpr double far = 1e-2;
        if (std::isinf(p.x()))
            return true; // none at all
        karD_Point n1;
        karD_Point n2;
        double d1 = offset(first, p, n1);
        double d2 = offset(second, p, n2);
        for (int i = 0; i < steps && std::fabs(d1) < far && std::fabs(d2) < far; ++i) {
            const double sine = n1.x() * n2.y() - n1.y() * n2.x();
            if (std::fabs(sine) < 1e-4)
                break; // the curves touch
            p.Set(p.x() - (d1 * n2.y() - d2 * n1.y()) / sine, p.y() - (d2 * n1.x() - d1 * n2.x()) / sine);
            d1 = offset(first, p, n1);
            d2 = offset(second, p, n2);
        }
        if (gap(first, p) <= tolerance && gap(second, p) <= tolerance)
            add(p);
        return std::fabs(d1) <= tolerance && std::fabs(d2) <= tolerance;
    }

    // Two points between which the pieces stay together are one contact.
    void add(const karD_Point &p)
    {
        constexpr double contact = 2e-2;
        for (const karD_Point &known : found) {
            const double distance = known.DistEuk(p);
            karD_Point between((known.x() + p.x()) / 2, (known.y() + p.y()) / 2);
            karD_Point normal;
            const double aside = offset(first, between, normal); // of the chord from the curve
            between.Set(between.x() - aside * normal.x(), between.y() - aside * normal.y());
            if (distance <= 4 * tolerance ||
                (distance < contact && gap(first, between) <= tolerance && gap(second, between) <= tolerance))
                return;
        }
        found.push_back(p);
    }

    bool lines()
    {
        double x = 0;
        double y = 0;
        if (Intersect_Line_Line(first.start.x(), first.start.y(), first.end.x(), first.end.y(), second.start.x(),
                                second.start.y(), second.end.x(), second.end.y(), unbounded, x, y) > 0)
            offer(karD_Point(x, y));
        return true;
    }

    bool lineAndCurve(const Piece &line, const Piece &curve)
    {
        double x1 = 0;
        double y1 = 0;
        double x2 = 0;
        double y2 = 0;
        const int count = Intersect_Line_EllipticalArc(line.start.x(), line.start.y(), line.end.x(), line.end.y(),
                                                       curve.centre.x(), curve.centre.y(), curve.a, curve.b,
                                                       curve.rotation, 0.0, fullTurn, unbounded, x1, y1, x2, y2);
        if (count > 0)
            offer(karD_Point(x1, y1));
        if (count > 1)
            offer(karD_Point(x2, y2));
        offer(curve.at(pi)); // the root at infinity
        if (found.empty()) { // a tangent that rounding keeps apart: where the curve runs along the line
            const kar2DVector along(line.start, line.end, true);
            const double c = std::cos(curve.rotation);
            const double s = std::sin(curve.rotation);
            const double u = along.GetX() * c + along.GetY() * s;
            const double v = along.GetY() * c - along.GetX() * s;
            const double t = std::atan2(-curve.b * u, curve.a * v);
            offer(curve.at(t));
            offer(curve.at(t + pi));
        }
        return true;
    }

    bool curves()
    {
        const double distance = first.centre.DistEuk(second.centre);
        if (distance > first.a + second.a + tolerance || distance + first.a < second.b - tolerance ||
            distance + second.a < first.b - tolerance)
            return true; // outside of each other, or one inside the other
        if (coincide())
            return true;
        if (first.round() && second.round() && distance > 0) { // circles may touch on the line of their centres
            const karD_Point unit((second.centre.x() - first.centre.x()) / distance,
                                  (second.centre.y() - first.centre.y()) / distance);
            offer(first.centre + unit * first.a);
            offer(first.centre - unit * first.a);
        }
        // The smaller curve gives the parameter of the quartic: on it the roots lie well apart.
        const bool exchange = sizeOf(first) < sizeOf(second);
        const Piece &larger = exchange ? second : first;
        const Piece &smaller = exchange ? first : second;
        walk(larger, smaller);
        // A pair whose iteration ends nowhere, or beside the curves, gets there from another side of it.
        bool settled = false;
        quartic(larger, smaller, settled) || quartic(larger, turned(smaller), settled) ||
            quartic(smaller, larger, settled) || quartic(smaller, turned(larger), settled) ||
            quartic(larger, nudged(smaller), settled);
        return settled;
    }

    // True where every real root led to a point of both curves. `settled` becomes true where the
    // iteration came to an end.
    bool quartic(const Piece &implicit, const Piece &parametric, bool &settled)
    {
        constexpr double unwritten = HUGE_VAL;
        double x[4] = {unwritten, unwritten, unwritten, unwritten};
        double y[4] = {unwritten, unwritten, unwritten, unwritten};
        int passes = mostPasses;
        Intersect_Ellipse_Ellipse(implicit.centre.x(), implicit.centre.y(), implicit.a, implicit.b, implicit.rotation,
                                  0.0, fullTurn, parametric.centre.x(), parametric.centre.y(), parametric.a,
                                  parametric.b, parametric.rotation, 0.0, fullTurn, unbounded, x[0], y[0], x[1], y[1],
                                  x[2], y[2], x[3], y[3], passes);
        bool numbers = true;
        bool common = true;
        for (int i = 0; i < 4; ++i) { // a slot for each root, and a root need not have a point
            numbers = numbers && !std::isnan(x[i]);
            common = offer(karD_Point(x[i], y[i])) && common;
        }
        offer(parametric.at(pi)); // the root at infinity
        settled = settled || (passes >= 0 && numbers);
        return passes >= 0 && common;
    }

    // Once around the smaller curve: where the larger one's implicit form changes its sign, the curves cross, and where
    // it comes near 0 and turns back, they may touch. Rounding parts the roots of curves that touch, so the quartic
    // alone would miss those.
    void walk(const Piece &larger, const Piece &smaller)
    {
        constexpr int places = 64;
        constexpr double step = fullTurn / places;
        constexpr int halvings = 40;
        const Implicit form(larger, smaller);
        double value[places + 2];
        for (int i = 0; i < places + 2; ++i)
            value[i] = form.at(i * step);
        for (int i = 1; i <= places; ++i) {
            const double before = value[i - 1];
            const double here = value[i];
            const double behind = value[i + 1];
            if ((before < 0) != (here < 0)) {
                double low = (i - 1) * step;
                double high = i * step;
                for (int k = 0; k < halvings; ++k) {
                    const double middle = (low + high) / 2;
                    ((form.at(middle) < 0) == (before < 0) ? low : high) = middle;
                }
                offer(smaller.at((low + high) / 2));
            } else if (std::fabs(here) <= std::fabs(before) && std::fabs(here) <= std::fabs(behind) &&
                       std::fabs(here) <= std::fabs(here - before) + std::fabs(here - behind)) {
                double low = (i - 1) * step;
                double high = (i + 1) * step;
                for (int k = 0; k < halvings; ++k) {
                    const double third = (high - low) / 3;
                    if (std::fabs(form.at(low + third)) < std::fabs(form.at(high - third)))
                        high -= third;
                    else
                        low += third;
                }
                offer(smaller.at((low + high) / 2));
            }
        }
    }

    // (x/a)^2 + (y/b)^2 - 1 of one curve along another.
    class Implicit {
    public:
        Implicit(const Piece &curve, const Piece &along)
        {
            const double c = std::cos(curve.rotation);
            const double s = std::sin(curve.rotation);
            const auto set = [&](double x, double y, double &u, double &v) {
                u = (x * c + y * s) / curve.a;
                v = (y * c - x * s) / curve.b;
            };
            const double cosine = std::cos(along.rotation);
            const double sine = std::sin(along.rotation);
            set(along.centre.x() - curve.centre.x(), along.centre.y() - curve.centre.y(), u0, v0);
            set(along.a * cosine, along.a * sine, uc, vc);
            set(-along.b * sine, along.b * cosine, us, vs);
        }
        double at(double t) const
        {
            const double c = std::cos(t);
            const double s = std::sin(t);
            const double u = u0 + uc * c + us * s;
            const double v = v0 + vc * c + vs * s;
            return (u * u + v * v) - 1;
        }

    private:
        double u0, v0, uc, vc, us, vs;
    };

    // The same curve with another beginning of its parameter: other roots of another quartic.
    static Piece turned(const Piece &piece)
    {
        Piece result = piece;
        if (!piece.round())
            std::swap(result.a, result.b);
        result.rotation += piece.round() ? 1.0 : pi / 2;
        return result;
    }

    // A curve so near that its crossings lead to those of the piece, without the piece's symmetry.
    static Piece nudged(const Piece &piece)
    {
        constexpr double little = 1e-6;
        Piece result = piece;
        result.rotation += little;
        result.centre.Set(piece.centre.x() + little * piece.a, piece.centre.y() - 0.7 * little * piece.a);
        return result;
    }

    // Five points tell an ellipse.
    bool coincide() const
    {
        const auto onFirst = [this](double t) {
            karD_Point normal;
            return std::fabs(offset(first, second.at(t), normal)) <= tolerance;
        };
        constexpr double some[] = {0.0, 1.0, 2.5, 4.0, 5.5};
        return std::all_of(std::begin(some), std::end(some), onFirst);
    }

    Frame frame;
    Piece first;
    Piece second;
    double tolerance;
    int mostPasses;
};

} // namespace

bool meet(const Piece &first, const Piece &second, int mostPasses, std::vector<karD_Point> &points)
{
    if (!(sizeOf(first) > 0 && sizeOf(second) > 0))
        return true; // a line without length crosses nothing
    Pair pair(first, second, mostPasses);
    if (pair.tooCoarse())
        return true;
    const bool settled = pair.solve();
    for (const karD_Point &point : pair.found)
        points.push_back(pair.outside(point));
    return settled;
}
