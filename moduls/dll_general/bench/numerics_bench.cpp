// Quartic roots, quadratic roots and the length of elliptical arcs: time and largest error beside GSL, Eigen's
// polynomial solver and Boost.Math. Errors are in units of 2^-52 of the size of the result.
#include "karintegral.h"
#include "karsolve.h"

#include <benchmark/benchmark.h>
#include <boost/math/special_functions/ellint_2.hpp>
#include <eigen3/unsupported/Eigen/Polynomials>
#include <gsl/gsl_integration.h>
#include <gsl/gsl_poly.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <random>
#include <vector>

namespace {

constexpr double fullTurn = 6.283185307179586;
constexpr double ulp = 0x1p-52;

using Root = std::complex<double>;

// ---- Quartics

struct Quartic {
    std::array<double, 5> coefficients; // descending powers
    std::array<Root, 4> roots;
};

Quartic quarticOf(const std::array<Root, 4> &roots)
{
    std::array<std::complex<long double>, 5> exact{1.0L};
    for (std::size_t degree = 0; degree < 4; ++degree)
        for (std::size_t k = degree + 1; k > 0; --k)
            exact[k] -= std::complex<long double>(roots[degree]) * exact[k - 1];
    Quartic quartic{{}, roots};
    for (std::size_t k = 0; k < 5; ++k)
        quartic.coefficients[k] = static_cast<double>(exact[k].real());
    return quartic;
}

/// Real roots and conjugate pairs at least 0.1 apart, of which the iteration finds a factor in 100 passes.
std::vector<Quartic> makeQuartics()
{
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> place(-2.0, 2.0);
    std::uniform_int_distribution<int> coin(0, 1);
    std::vector<Quartic> quartics;
    while (quartics.size() < 1000) {
        std::array<Root, 4> roots;
        for (std::size_t i = 0; i < 4; i += 2) {
            const double re = place(engine);
            const double other = place(engine);
            const bool real = coin(engine) == 1;
            roots[i] = real ? Root(re) : Root(re, other);
            roots[i + 1] = real ? Root(other) : Root(re, -other);
        }
        double nearest = 1;
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t j = 0; j < i; ++j)
                nearest = std::min(nearest, std::abs(roots[i] - roots[j]));
        const Quartic quartic = quarticOf(roots);
        std::array<double, 5> a = quartic.coefficients, re, im;
        int passes = 100;
        if (nearest >= 0.1 && eqbairstow(4, a.data(), re.data(), im.data(), 0, 0, 1e-10, passes) == 4)
            quartics.push_back(quartic);
    }
    return quartics;
}

const std::vector<Quartic> &quartics()
{
    static const std::vector<Quartic> all = makeQuartics();
    return all;
}

/// The bound is that of the intersections.
struct OurQuartics {
    std::array<Root, 4> solve(const Quartic &quartic)
    {
        std::array<double, 5> a = quartic.coefficients, re, im;
        eqbairstow(4, a.data(), re.data(), im.data(), 0, 0, 1e-10);
        return {Root(re[1], im[1]), Root(re[2], im[2]), Root(re[3], im[3]), Root(re[4], im[4])};
    }
};

class GslQuartics {
public:
    GslQuartics() : workspace(gsl_poly_complex_workspace_alloc(5)) {}
    GslQuartics(const GslQuartics &) = delete;
    GslQuartics &operator=(const GslQuartics &) = delete;
    ~GslQuartics() { gsl_poly_complex_workspace_free(workspace); }

    std::array<Root, 4> solve(const Quartic &quartic)
    {
        std::array<double, 5> a;
        std::reverse_copy(quartic.coefficients.begin(), quartic.coefficients.end(), a.begin());
        double z[8];
        gsl_poly_complex_solve(a.data(), 5, workspace, z);
        return {Root(z[0], z[1]), Root(z[2], z[3]), Root(z[4], z[5]), Root(z[6], z[7])};
    }

private:
    gsl_poly_complex_workspace *workspace;
};

struct EigenQuartics {
    std::array<Root, 4> solve(const Quartic &quartic)
    {
        Eigen::Matrix<double, 5, 1> a;
        std::reverse_copy(quartic.coefficients.begin(), quartic.coefficients.end(), a.data());
        solver.compute(a);
        return {solver.roots()[0], solver.roots()[1], solver.roots()[2], solver.roots()[3]};
    }

private:
    Eigen::PolynomialSolver<double, 4> solver;
};

template <class Solver>
void quarticTime(benchmark::State &state)
{
    Solver solver;
    for (auto _ : state)
        for (const Quartic &quartic : quartics())
            benchmark::DoNotOptimize(solver.solve(quartic));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(quartics().size()));
}

/// Largest distance of a chosen root from the nearest one found, against the largest root.
double errorOf(const Quartic &quartic, const std::array<Root, 4> &found)
{
    double error = 0, size = 0;
    for (const Root &root : quartic.roots) {
        double nearest = std::abs(found[0] - root);
        for (const Root &other : found)
            nearest = std::min(nearest, std::abs(other - root));
        error = std::max(error, nearest);
        size = std::max(size, std::abs(root));
    }
    return error / size;
}

/// The largest error of all, or the one that half of them stay below.
template <class Solver, bool largest>
void quarticError(benchmark::State &state)
{
    Solver solver;
    std::vector<double> errors;
    for (auto _ : state) {
        errors.clear();
        for (const Quartic &quartic : quartics())
            errors.push_back(errorOf(quartic, solver.solve(quartic)));
    }
    std::sort(errors.begin(), errors.end());
    state.counters["value"] = (largest ? errors.back() : errors[errors.size() / 2]) / ulp;
    state.SetLabel("a pass ends at a ratio of 1e-10");
}

// ---- Quadratics

std::vector<std::array<double, 3>> makeQuadratics()
{
    std::mt19937 engine(2);
    std::uniform_real_distribution<double> place(-10.0, 10.0);
    std::vector<std::array<double, 3>> quadratics(1000);
    for (auto &coefficients : quadratics)
        for (double &coefficient : coefficients)
            coefficient = place(engine);
    return quadratics;
}

struct OurQuadratics {
    static int solve(const std::array<double, 3> &q, double &x1, double &x2)
    {
        return Solve_SquareRoots(q[0], q[1], q[2], x1, x2);
    }
};

struct GslQuadratics {
    static int solve(const std::array<double, 3> &q, double &x1, double &x2)
    {
        return gsl_poly_solve_quadratic(q[0], q[1], q[2], &x1, &x2);
    }
};

template <class Solver>
void quadraticTime(benchmark::State &state)
{
    const auto quadratics = makeQuadratics();
    for (auto _ : state) {
        double sum = 0;
        for (const auto &coefficients : quadratics) {
            double x1 = 0, x2 = 0;
            Solver::solve(coefficients, x1, x2);
            sum += x1 - x2;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(quadratics.size()));
}

// ---- Arc lengths

struct Arc {
    double a, b, start, end;
};

/// Eighths to quarters of ellipses up to 3 : 1, as a drawing has them.
std::vector<Arc> makeArcs()
{
    std::mt19937 engine(3);
    std::uniform_real_distribution<double> axis(1.0, 3.0), angle(0.0, fullTurn), span(fullTurn / 8, fullTurn / 4);
    std::vector<Arc> arcs(1000);
    for (Arc &arc : arcs) {
        arc.b = 1;
        arc.a = axis(engine);
        arc.start = angle(engine);
        arc.end = arc.start + span(engine);
    }
    return arcs;
}

const std::vector<Arc> &arcs()
{
    static const std::vector<Arc> all = makeArcs();
    return all;
}

struct OurLengths {
    double length(const Arc &arc) { return LengthOfEllipticalArc(0, 0, arc.a, arc.b, 0, arc.start, arc.end); }
};

/// a * (E(k, pi / 2 - start) - E(k, pi / 2 - end)) for a >= b.
struct BoostLengths {
    double length(const Arc &arc)
    {
        const double k = std::sqrt(1 - (arc.b / arc.a) * (arc.b / arc.a));
        return arc.a *
               (boost::math::ellint_2(k, fullTurn / 4 - arc.start) - boost::math::ellint_2(k, fullTurn / 4 - arc.end));
    }
};

double speed(double t, void *parameters)
{
    const Arc &arc = *static_cast<const Arc *>(parameters);
    const double x = arc.a * std::sin(t), y = arc.b * std::cos(t);
    return std::sqrt(x * x + y * y);
}

/// The non-adaptive Gauss-Kronrod rules, to 1e-12.
struct GslLengths {
    double length(const Arc &arc)
    {
        Arc parameters = arc;
        const gsl_function function{speed, &parameters};
        double result, error;
        std::size_t evaluations;
        gsl_integration_qng(&function, arc.start, arc.end, 0, 1e-12, &result, &error, &evaluations);
        return result;
    }
};

/// The values of the integrand alone.
void lengthLimit(benchmark::State &state)
{
    const double parameters[4] = {3, 0, 0, 2};
    for (auto _ : state) {
        double sum = 0;
        for (int i = 0; i < 65; ++i)
            sum += normDerivedElliptical(i * 0.1, parameters);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("65 times sine, cosine and root");
}

template <class Method>
void lengthTime(benchmark::State &state)
{
    Method method;
    for (auto _ : state) {
        double sum = 0;
        for (const Arc &arc : arcs())
            sum += method.length(arc);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(arcs().size()));
    state.SetLabel("65 values of the integrand");
}

template <class Method>
void lengthError(benchmark::State &state)
{
    Method method;
    double largest = 0;
    for (auto _ : state) {
        for (const Arc &arc : arcs()) {
            const long double k = std::sqrt(1 - static_cast<long double>(arc.b / arc.a) * (arc.b / arc.a));
            const long double quarter = std::acos(-1.0L) / 2;
            const long double exact =
                arc.a * (boost::math::ellint_2(k, quarter - arc.start) - boost::math::ellint_2(k, quarter - arc.end));
            largest = std::max(largest, static_cast<double>(std::fabs(method.length(arc) - exact) / exact));
        }
    }
    state.counters["value"] = largest / ulp;
    state.SetLabel("seven levels");
}

} // namespace

BENCHMARK(quarticTime<OurQuartics>)->Name("Numerics/quartic/ours");
BENCHMARK(quarticTime<GslQuartics>)->Name("Numerics/quartic/gsl");
BENCHMARK(quarticTime<EigenQuartics>)->Name("Numerics/quartic/eigen");
BENCHMARK(quarticError<OurQuartics, false>)->Name("Numerics/quartic_median_error/ours")->Iterations(1);
BENCHMARK(quarticError<GslQuartics, false>)->Name("Numerics/quartic_median_error/gsl")->Iterations(1);
BENCHMARK(quarticError<EigenQuartics, false>)->Name("Numerics/quartic_median_error/eigen")->Iterations(1);
BENCHMARK(quarticError<OurQuartics, true>)->Name("Numerics/quartic_largest_error/ours")->Iterations(1);
BENCHMARK(quarticError<GslQuartics, true>)->Name("Numerics/quartic_largest_error/gsl")->Iterations(1);
BENCHMARK(quarticError<EigenQuartics, true>)->Name("Numerics/quartic_largest_error/eigen")->Iterations(1);
BENCHMARK(quadraticTime<OurQuadratics>)->Name("Numerics/quadratic/ours");
BENCHMARK(quadraticTime<GslQuadratics>)->Name("Numerics/quadratic/gsl");
BENCHMARK(lengthTime<OurLengths>)->Name("Numerics/arc_length/ours");
BENCHMARK(lengthLimit)->Name("Numerics/arc_length/limit");
BENCHMARK(lengthTime<BoostLengths>)->Name("Numerics/arc_length/boost");
BENCHMARK(lengthTime<GslLengths>)->Name("Numerics/arc_length/gsl");
BENCHMARK(lengthError<OurLengths>)->Name("Numerics/arc_length_largest_error/ours")->Iterations(1);
BENCHMARK(lengthError<BoostLengths>)->Name("Numerics/arc_length_largest_error/boost")->Iterations(1);
BENCHMARK(lengthError<GslLengths>)->Name("Numerics/arc_length_largest_error/gsl")->Iterations(1);
