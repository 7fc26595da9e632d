// A million positions moved by a 4 by 4 matrix, beside Eigen and glm; the product of two 4 by 4 matrices, beside
// Eigen's matrices of any size.
#include "karmatrix.h"

#include <benchmark/benchmark.h>
#include <eigen3/Eigen/Core>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <cstddef>
#include <random>
#include <vector>

namespace {

/// A turn and a shift by little, so that coordinates stay what they are over any number of rounds.
karMatrix transformation() { return GetTransformationMatrix(1e-3, -2e-3, 3e-3, 0.01, 0.02, 0.03, 1.0, 1.0, 1.0); }

/// The same coordinates for all sides.
template <class Point>
std::vector<Point> points(std::size_t count)
{
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> place(-1e4, 1e4);
    std::vector<Point> result;
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double x = place(engine), y = place(engine), z = place(engine);
        result.emplace_back(x, y, z);
    }
    return result;
}

void counted(benchmark::State &state, std::size_t count)
{
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(count));
}

template <std::size_t Count>
void applyOurs(benchmark::State &state)
{
    std::vector<kar3D_Point> moved = points<kar3D_Point>(Count);
    const karMatrix matrix = transformation();
    for (auto _ : state) {
        for (kar3D_Point &p : moved)
            p *= matrix;
        benchmark::ClobberMemory();
    }
    counted(state, Count);
}

// The linear block and the translation of the same matrix, as each peer writes it.

Eigen::Matrix4d eigenTransformation()
{
    const karMatrix matrix = transformation();
    Eigen::Matrix4d whole = Eigen::Matrix4d::Identity();
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
            whole(r, c) = matrix.GetData()[4 * r + c];
        whole(r, 3) = matrix.GetData()[12 + r];
    }
    return whole;
}

template <std::size_t Count>
void applyEigen(benchmark::State &state)
{
    std::vector<Eigen::Vector3d> moved = points<Eigen::Vector3d>(Count);
    Eigen::Matrix4d whole = eigenTransformation();
    benchmark::DoNotOptimize(whole);
    for (auto _ : state) {
        for (Eigen::Vector3d &p : moved)
            p = (whole.topLeftCorner<3, 3>() * p + whole.topRightCorner<3, 1>()).eval();
        benchmark::ClobberMemory();
    }
    counted(state, Count);
}

template <std::size_t Count>
void applyEigenHomogeneous(benchmark::State &state)
{
    std::vector<Eigen::Vector3d> moved = points<Eigen::Vector3d>(Count);
    Eigen::Matrix4d whole = eigenTransformation();
    benchmark::DoNotOptimize(whole);
    for (auto _ : state) {
        for (Eigen::Vector3d &p : moved)
            p = (whole * Eigen::Vector4d(p.x(), p.y(), p.z(), 1.0)).head<3>();
        benchmark::ClobberMemory();
    }
    counted(state, Count);
}

template <std::size_t Count>
void applyGlm(benchmark::State &state)
{
    std::vector<glm::dvec3> moved = points<glm::dvec3>(Count);
    const karMatrix matrix = transformation();
    glm::dmat4 whole(1.0);
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
            whole[c][r] = matrix.GetData()[4 * r + c];
        whole[3][r] = matrix.GetData()[12 + r];
    }
    benchmark::DoNotOptimize(whole);
    for (auto _ : state) {
        for (glm::dvec3 &p : moved)
            p = glm::dvec3(whole * glm::dvec4(p, 1.0));
        benchmark::ClobberMemory();
    }
    counted(state, Count);
}

/// Each coordinate read, changed and written once.
template <std::size_t Count>
void applyLimit(benchmark::State &state)
{
    std::vector<double> coordinates(3 * Count, 1.0);
    for (auto _ : state) {
        for (double &value : coordinates)
            value += 1;
        benchmark::ClobberMemory();
    }
    counted(state, Count);
    state.SetLabel("24 bytes a point read and written");
}

void productOurs(benchmark::State &state)
{
    const karMatrix a = transformation(), b = GetRotateMatrix(0.3, 0.2, 0.1);
    for (auto _ : state) {
        karMatrix c = a * b;
        benchmark::DoNotOptimize(c.GetData());
        benchmark::ClobberMemory();
    }
}

Eigen::MatrixXd dynamic(const karMatrix &m)
{
    Eigen::MatrixXd result(4, 4);
    for (int i = 0; i < 16; ++i)
        result(i / 4, i % 4) = m.GetData()[i];
    return result;
}

void productEigen(benchmark::State &state)
{
    const Eigen::MatrixXd a = dynamic(transformation()), b = dynamic(GetRotateMatrix(0.3, 0.2, 0.1));
    for (auto _ : state) {
        Eigen::MatrixXd c = a * b;
        benchmark::DoNotOptimize(c.data());
        benchmark::ClobberMemory();
    }
}

void productInPlaceOurs(benchmark::State &state)
{
    const karMatrix b = GetRotateMatrix(0.3, 0.2, 0.1);
    karMatrix c = transformation();
    for (auto _ : state) {
        c *= b;
        benchmark::DoNotOptimize(c.GetData());
        benchmark::ClobberMemory();
    }
}

void productInPlaceEigen(benchmark::State &state)
{
    const Eigen::MatrixXd b = dynamic(GetRotateMatrix(0.3, 0.2, 0.1));
    Eigen::MatrixXd c = dynamic(transformation());
    for (auto _ : state) {
        c *= b;
        benchmark::DoNotOptimize(c.data());
        benchmark::ClobberMemory();
    }
}

// A thousand positions stay in the first cache, a million pass through memory.
#define APPLY(function, name)                                                                                          \
    BENCHMARK_TEMPLATE(function, 1000)->Name("Space/apply 4x4/1000/" name);                                            \
    BENCHMARK_TEMPLATE(function, 1000000)->Name("Space/apply 4x4/1000000/" name)
APPLY(applyOurs, "ours");
APPLY(applyEigen, "eigen affine");
APPLY(applyEigenHomogeneous, "eigen");
APPLY(applyGlm, "glm");
APPLY(applyLimit, "limit");
BENCHMARK(productOurs)->Name("Space/product 4x4/ours");
BENCHMARK(productEigen)->Name("Space/product 4x4/eigen");
BENCHMARK(productInPlaceOurs)->Name("Space/product in place 4x4/ours");
BENCHMARK(productInPlaceEigen)->Name("Space/product in place 4x4/eigen");

} // namespace
