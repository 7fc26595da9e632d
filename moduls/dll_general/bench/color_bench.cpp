// A million colours to their DXF index beside the search for the nearest of the 256 colours; a million indices to their
// colour beside a table of them. The peers are functions of their own, called like the library's.
#include "vcolor.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace {

constexpr std::size_t count = 1000000;

std::vector<long> colors()
{
    std::mt19937 engine(10);
    std::vector<long> values(count);
    for (long &value : values)
        value = static_cast<long>(engine() & 0xFFFFFF);
    return values;
}

std::vector<int> indices()
{
    std::mt19937 engine(11);
    std::vector<int> values(count);
    for (int &value : values)
        value = static_cast<int>(engine() & 0xFF);
    return values;
}

struct Palette {
    int red[256];
    int green[256];
    int blue[256];
    long packed[256];
};

Palette makePalette()
{
    Palette palette;
    for (int i = 0; i < 256; ++i) {
        const long rgb = vColor::ConvDXF2RGB(i);
        palette.packed[i] = rgb;
        palette.red[i] = static_cast<int>(rgb & 0xff);
        palette.green[i] = static_cast<int>((rgb >> 8) & 0xff);
        palette.blue[i] = static_cast<int>((rgb >> 16) & 0xff);
    }
    return palette;
}

const Palette palette = makePalette();

// The least square of the distance wins, the first of equal ones.
[[gnu::noinline]] int nearestOf256(long rgb)
{
    const int r = static_cast<int>(rgb & 0xff);
    const int g = static_cast<int>((rgb >> 8) & 0xff);
    const int b = static_cast<int>((rgb >> 16) & 0xff);
    int distances[256];
    for (int i = 0; i < 256; ++i) {
        const int dr = r - palette.red[i];
        const int dg = g - palette.green[i];
        const int db = b - palette.blue[i];
        distances[i] = (dr * dr) + (dg * dg) + (db * db);
    }
    int best = 0;
    for (int i = 1; i < 256; ++i)
        if (distances[i] < distances[best])
            best = i;
    return best;
}

[[gnu::noinline]] long fromTable(int index) { return index >= 0 && index < 256 ? palette.packed[index] : 0; }

[[gnu::noinline]] long unchanged(long value)
{
    benchmark::DoNotOptimize(value);
    return value;
}

template <class Function, class Value>
void run(benchmark::State &state, Function function, const std::vector<Value> &values)
{
    for (auto _ : state) {
        std::uint32_t sum = 0;
        for (const Value value : values)
            sum += static_cast<std::uint32_t>(function(value));
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(count));
}

void toIndexOurs(benchmark::State &state) { run(state, vColor::ConvRGB2DXF, colors()); }
void toIndexNearest(benchmark::State &state) { run(state, nearestOf256, colors()); }
void toColorOurs(benchmark::State &state) { run(state, vColor::ConvDXF2RGB, indices()); }
void toColorTable(benchmark::State &state) { run(state, fromTable, indices()); }

void call(benchmark::State &state)
{
    run(state, unchanged, indices());
    state.SetLabel("one call");
}

} // namespace

BENCHMARK(toIndexOurs)->Name("Color/rgb to dxf/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(toIndexNearest)->Name("Color/rgb to dxf/nearest of 256")->Unit(benchmark::kMillisecond);
BENCHMARK(toColorOurs)->Name("Color/dxf to rgb/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(toColorTable)->Name("Color/dxf to rgb/table")->Unit(benchmark::kMillisecond);
BENCHMARK(call)->Name("Color/rgb to dxf/limit")->Unit(benchmark::kMillisecond);
BENCHMARK(call)->Name("Color/dxf to rgb/limit")->Unit(benchmark::kMillisecond);
