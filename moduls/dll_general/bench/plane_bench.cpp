// A million points of the plane turned and boxed, beside Eigen's fixed-size vectors and its aligned box.
#include "karrect.h"

#include <benchmark/benchmark.h>
#include <eigen3/Eigen/Geometry>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace {

constexpr std::size_t count = 1000000;
constexpr double angle = 0.7;
constexpr double centreX = 120.0;
constexpr double centreY = -45.0;

/// The same coordinates for both sides.
std::vector<double> coordinates()
{
    std::mt19937 engine(6);
    std::uniform_real_distribution<double> place(-1e4, 1e4);
    std::vector<double> values(2 * count);
    for (double &value : values)
        value = place(engine);
    return values;
}

template <class Point>
std::vector<Point> points()
{
    const std::vector<double> values = coordinates();
    std::vector<Point> result;
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        result.emplace_back(values[2 * i], values[2 * i + 1]);
    return result;
}

template <>
std::vector<karPoint> points<karPoint>()
{
    std::vector<karPoint> result;
    result.reserve(count);
    for (const karD_Point &p : points<karD_Point>())
        result.emplace_back(p);
    return result;
}

template <>
std::vector<Eigen::Vector2i> points<Eigen::Vector2i>()
{
    std::vector<Eigen::Vector2i> result;
    result.reserve(count);
    for (const karPoint &p : points<karPoint>())
        result.emplace_back(p.x(), p.y());
    return result;
}

karD_Rect boxOf(const std::vector<karD_Point> &all)
{
    karD_Rect box(all.front(), all.front());
    for (const karD_Point &p : all)
        box.unionrect(karD_Rect(p, p));
    return box;
}

karRect boxOf(const std::vector<karPoint> &all)
{
    karRect box(all.front(), all.front());
    for (const karPoint &p : all)
        box.unionrect(karRect(p, p));
    return box;
}

template <class Vector>
auto boxOf(const std::vector<Vector> &all)
{
    Eigen::AlignedBox<typename Vector::Scalar, 2> box;
    for (const Vector &p : all)
        box.extend(p);
    return box;
}

void turn(std::vector<karD_Point> &all)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (karD_Point &p : all)
        p.RotateElement(cosine, sine, centreX, centreY);
}

void turn(std::vector<Eigen::Vector2d> &all)
{
    const Eigen::Matrix2d rotation = Eigen::Rotation2Dd(angle).toRotationMatrix();
    const Eigen::Vector2d centre(centreX, centreY);
    for (Eigen::Vector2d &p : all)
        p = centre + rotation * (p - centre);
}

void turn(std::vector<karPoint> &all)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (karPoint &p : all)
        p.RotateElement(cosine, sine, 120, -45);
}

/// The nearest of Eigen's: the product is real, and the sum, not each product, is truncated.
void turn(std::vector<Eigen::Vector2i> &all)
{
    const Eigen::Matrix2d rotation = Eigen::Rotation2Dd(angle).toRotationMatrix();
    const Eigen::Vector2i centre(120, -45);
    for (Eigen::Vector2i &p : all)
        p = centre + (rotation * (p - centre).cast<double>()).cast<int>();
}

template <class Point>
void rotate(benchmark::State &state)
{
    std::vector<Point> all = points<Point>();
    for (auto _ : state) {
        turn(all);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

template <class Point>
void box(benchmark::State &state)
{
    const std::vector<Point> all = points<Point>();
    for (auto _ : state)
        benchmark::DoNotOptimize(boxOf(all));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

template <class Point>
void rotateAndBox(benchmark::State &state)
{
    std::vector<Point> all = points<Point>();
    for (auto _ : state) {
        turn(all);
        benchmark::DoNotOptimize(boxOf(all));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

/// A point as ours lies in memory: behind a table of virtual operations.
template <class Coordinate>
struct Placed {
    const void *table;
    Coordinate x;
    Coordinate y;
};

std::vector<Placed<double>> placed(const std::vector<karD_Point> &all)
{
    static_assert(sizeof(Placed<double>) == sizeof(karD_Point));
    std::vector<Placed<double>> result;
    for (const karD_Point &p : all)
        result.push_back({nullptr, p.x(), p.y()});
    return result;
}

std::vector<Placed<int>> placed(const std::vector<karPoint> &all)
{
    static_assert(sizeof(Placed<int>) == sizeof(karPoint));
    std::vector<Placed<int>> result;
    for (const karPoint &p : all)
        result.push_back({nullptr, p.x(), p.y()});
    return result;
}

/// The products and sums of a place in their order.
void turn(std::vector<Placed<double>> &all)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (Placed<double> &p : all) {
        const double dx = p.x - centreX;
        const double dy = p.y - centreY;
        p.x = (centreX + (dx * cosine)) - (dy * sine);
        p.y = (centreY + (dx * sine)) + (dy * cosine);
    }
}

/// Four products, each truncated on its own.
void turn(std::vector<Placed<int>> &all)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (Placed<int> &p : all) {
        const double dx = p.x - 120;
        const double dy = p.y + 45;
        p.x = 120 + static_cast<int>(dx * cosine) - static_cast<int>(dy * sine);
        p.y = -45 + static_cast<int>(dx * sine) + static_cast<int>(dy * cosine);
    }
}

template <class Point>
void rotateLimit(benchmark::State &state)
{
    auto all = placed(points<Point>());
    for (auto _ : state) {
        turn(all);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
    state.SetLabel("the products and sums alone, on points of this size");
}

/// Each coordinate read once, as whole numbers whose sum may be taken in any order.
template <class Word>
void boxLimit(benchmark::State &state)
{
    const std::vector<Word> all(2 * count, 1);
    for (auto _ : state) {
        Word sum = 0;
        for (const Word value : all)
            sum += value;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
    state.SetLabel("each coordinate read");
}

} // namespace

BENCHMARK(rotate<karD_Point>)->Name("Plane/rotate_1e6_real/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(rotate<Eigen::Vector2d>)->Name("Plane/rotate_1e6_real/eigen")->Unit(benchmark::kMillisecond);
BENCHMARK(rotate<karPoint>)->Name("Plane/rotate_1e6_int/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(rotate<Eigen::Vector2i>)->Name("Plane/rotate_1e6_int/eigen")->Unit(benchmark::kMillisecond);
BENCHMARK(box<karD_Point>)->Name("Plane/box_1e6_real/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(box<Eigen::Vector2d>)->Name("Plane/box_1e6_real/eigen")->Unit(benchmark::kMillisecond);
BENCHMARK(box<karPoint>)->Name("Plane/box_1e6_int/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(box<Eigen::Vector2i>)->Name("Plane/box_1e6_int/eigen")->Unit(benchmark::kMillisecond);
BENCHMARK(rotateAndBox<karD_Point>)->Name("Plane/rotate_box_1e6_real/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(rotateAndBox<Eigen::Vector2d>)->Name("Plane/rotate_box_1e6_real/eigen")->Unit(benchmark::kMillisecond);
BENCHMARK(rotateLimit<karD_Point>)->Name("Plane/rotate_1e6_real/limit")->Unit(benchmark::kMillisecond);
BENCHMARK(rotateLimit<karPoint>)->Name("Plane/rotate_1e6_int/limit")->Unit(benchmark::kMillisecond);
BENCHMARK(boxLimit<std::uint64_t>)->Name("Plane/box_1e6_real/limit")->Unit(benchmark::kMillisecond);
BENCHMARK(boxLimit<std::uint32_t>)->Name("Plane/box_1e6_int/limit")->Unit(benchmark::kMillisecond);
BENCHMARK(rotateLimit<karD_Point>)->Name("Plane/rotate_box_1e6_real/limit")->Unit(benchmark::kMillisecond);
