// Intersections and feet on any bits: the forms with a limit end, and give what those without give where they settle.
#include "karintersect.h"

#include "fuzzinput.h"
#include "testnumbers.h"

namespace {

constexpr int mostPasses = 200;
constexpr double untouched = 12345.0;

struct Found {
    int count = 0;
    double p[8] = {untouched, untouched, untouched, untouched, untouched, untouched, untouched, untouched};

    bool isSameAs(const Found &o) const
    {
        bool same = count == o.count;
        for (int i = 0; i < 8; ++i)
            same = same && sameBits(p[i], o.p[i]);
        return same;
    }
};

template <class... Passes>
Found ellipses(const double *v, int mask, Passes &...passes)
{
    Found f;
    double *const p = f.p;
    f.count = Intersect_Ellipse_Ellipse(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], v[11], v[12],
                                        v[13], mask, p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7], passes...);
    return f;
}

template <class... Passes>
Found arcs(const double *v, int mask, Passes &...passes)
{
    Found f;
    double *const p = f.p;
    f.count = Intersect_Arc_Arc(v[0], v[1], v[2], v[5], v[6], v[7], v[8], v[9], v[12], v[13], mask, p[0], p[1], p[2],
                                p[3], passes...);
    return f;
}

template <class... Passes>
Found feet(const double *v, int, Passes &...passes)
{
    Found f;
    double *const p = f.p;
    f.count = Calculate_Perpendicular_Points_To_Ellipse(v[7], v[8], v[0], v[1], v[2], v[3], v[4], v[5], v[6], p[0],
                                                        p[1], p[2], p[3], p[4], p[5], p[6], p[7], passes...);
    return f;
}

/// `call` gives the form with a limit for a variable of passes, and the one without for none.
template <class Call>
void compare(Call call)
{
    int passes = mostPasses;
    const Found bounded = call(passes);
    FUZZ_REQUIRE(passes >= -1 && passes <= mostPasses);
    FUZZ_REQUIRE(bounded.count >= 0 && bounded.count <= 4);
    if (passes < 0)
        FUZZ_REQUIRE(bounded.count == 0);
    else
        FUZZ_REQUIRE(bounded.isSameAs(call()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t count)
{
    FuzzInput input(bytes, count);
    const int mask = static_cast<int>(input.below(5));
    double v[14];
    for (double &value : v)
        value = input.below(2) == 0 ? input.real() : (static_cast<double>(input.byte()) - 128.0) / 16.0;
    compare([&](auto &...passes) { return ellipses(v, mask, passes...); });
    compare([&](auto &...passes) { return arcs(v, mask, passes...); });
    compare([&](auto &...passes) { return feet(v, mask, passes...); });

    Found f;
    f.count = Intersect_Line_EllipticalArc(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], mask,
                                           f.p[0], f.p[1], f.p[2], f.p[3]);
    FUZZ_REQUIRE(f.count >= 0 && f.count <= 2);
    for (int i = 2 * f.count; i < 4; ++i)
        FUZZ_REQUIRE(sameBits(0.0, f.p[i]));
    return 0;
}
