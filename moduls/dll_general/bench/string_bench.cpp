// Texts beside std::string; number formatting and parsing beside the C library, fmt and std::from_chars.
#include "karmemgb.h"
#include "karstring.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

const char *const growth = "growth to exactly the next multiple of 8";

std::string sample(std::size_t length)
{
    std::string text(length, '\0');
    for (std::size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>('a' + i % 23);
    return text;
}

// One living text of each size class: the allocator gives a page back with its last element, and a host that holds no
// other text is not what is measured here.
const karString residents[] = {karString(8u), karString(100u), karString(200u), karString(500u), karString(1000u)};

// ---- Construction, copies, comparison

template <class Text>
void construct(benchmark::State &state, std::size_t length)
{
    const std::string source = sample(length);
    const char *const text = source.c_str();
    for (auto _ : state) {
        Text made(text);
        benchmark::DoNotOptimize(made);
    }
}

template <class Text>
void copy(benchmark::State &state, std::size_t length)
{
    const Text source(sample(length).c_str());
    for (auto _ : state) {
        Text made(source);
        benchmark::DoNotOptimize(made);
    }
}

template <class Text>
void compare(benchmark::State &state, std::size_t length)
{
    const Text a(sample(length).c_str());
    const Text b(sample(length).c_str());
    for (auto _ : state) {
        benchmark::DoNotOptimize(&a);
        benchmark::DoNotOptimize(&b);
        benchmark::ClobberMemory();
        bool less = a < b;
        benchmark::DoNotOptimize(less);
    }
}

// ---- Concatenation

karString joined(karString &a, const karString &b) { return a & b; }
std::string joined(std::string &a, const std::string &b) { return a + b; }
void append(karString &a, const karString &b) { a &= b; }
void append(std::string &a, const std::string &b) { a += b; }
void append(karString &a, char c) { a &= c; }
void append(std::string &a, char c) { a += c; }

// Ten characters at a time, a new text for each sum.
template <class Text>
void join(benchmark::State &state, std::size_t length)
{
    const Text piece(sample(10).c_str());
    for (auto _ : state) {
        Text text("");
        for (std::size_t n = 0; n < length; n += 10)
            text = joined(text, piece);
        benchmark::DoNotOptimize(text);
    }
}

template <class Text>
void appendPieces(benchmark::State &state, std::size_t length)
{
    const Text piece(sample(10).c_str());
    for (auto _ : state) {
        Text text("");
        for (std::size_t n = 0; n < length; n += 10)
            append(text, piece);
        benchmark::DoNotOptimize(text);
    }
}

template <class Text>
void appendCharacters(benchmark::State &state, std::size_t length)
{
    for (auto _ : state) {
        Text text("");
        for (std::size_t n = 0; n < length; ++n)
            append(text, 'x');
        benchmark::DoNotOptimize(text);
    }
}

// ---- Numbers

std::vector<double> reals()
{
    std::vector<double> values;
    unsigned state = 1;
    for (int i = 0; i < 1000; ++i) {
        state = state * 1664525u + 1013904223u;
        values.push_back((state >> 8) * 0.000123 - 700.0);
    }
    return values;
}

const std::vector<double> values = reals();

template <class Body>
void each(benchmark::State &state, Body body)
{
    std::size_t i = 0;
    for (auto _ : state) {
        body(i);
        i = i + 1 < values.size() ? i + 1 : 0;
    }
}

void formatOurs(benchmark::State &state)
{
    karString text;
    each(state, [&](std::size_t i) {
        text.format("%d %s %5.2f", static_cast<int>(i), "line", values[i]);
        benchmark::DoNotOptimize(text);
    });
}

void formatC(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        char text[100];
        std::snprintf(text, sizeof text, "%d %s %5.2f", static_cast<int>(i), "line", values[i]);
        benchmark::DoNotOptimize(text);
    });
}

void formatFmt(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        std::string text = fmt::format("{} {} {:5.2f}", static_cast<int>(i), "line", values[i]);
        benchmark::DoNotOptimize(text);
    });
}

void realOurs(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        karString text(values[i], 3, true);
        benchmark::DoNotOptimize(text);
    });
}

void realC(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        char text[100];
        std::snprintf(text, sizeof text, "%.3f", values[i]);
        benchmark::DoNotOptimize(text);
    });
}

void realFmt(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        std::string text = fmt::format("{:.3f}", values[i]);
        benchmark::DoNotOptimize(text);
    });
}

void integerOurs(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        karString text(static_cast<int>(values[i] * 100), 10);
        benchmark::DoNotOptimize(text);
    });
}

void integerC(benchmark::State &state)
{
    each(state, [&](std::size_t i) {
        char text[100];
        std::snprintf(text, sizeof text, "%d", static_cast<int>(values[i] * 100));
        benchmark::DoNotOptimize(text);
    });
}

void readWholeOurs(benchmark::State &state)
{
    karString text("1234567");
    for (auto _ : state) {
        int value;
        text.s2int(value);
        benchmark::DoNotOptimize(value);
    }
}

void readWholeC(benchmark::State &state)
{
    const std::string text("1234567");
    const char *start = text.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(start);
        long value = std::strtol(start, nullptr, 10);
        benchmark::DoNotOptimize(value);
    }
}

void readWholeFromChars(benchmark::State &state)
{
    const std::string text("1234567");
    const char *start = text.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(start);
        int value;
        std::from_chars(start, start + 7, value);
        benchmark::DoNotOptimize(value);
    }
}

template <class Read>
void readReals(benchmark::State &state, Read read)
{
    std::vector<std::string> texts;
    for (const double value : values) {
        char text[100];
        std::snprintf(text, sizeof text, "%.4f", value);
        texts.emplace_back(text);
    }
    std::vector<karString> own;
    for (const std::string &text : texts)
        own.emplace_back(text.c_str());
    each(state, [&](std::size_t i) {
        double value = read(texts[i], own[i]);
        benchmark::DoNotOptimize(value);
    });
}

double readRealOurs(const std::string &, karString &text)
{
    double value;
    text.s2double(value);
    return value;
}

double readRealC(const std::string &text, karString &) { return std::strtod(text.c_str(), nullptr); }

double readRealFromChars(const std::string &text, karString &)
{
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// ---- Tokens: a line of a megabyte in tokens of 1023 characters

std::string line()
{
    std::string text;
    while (text.size() < 1 << 20)
        text += sample(1023) + ',';
    return text;
}

void tokensOurs(benchmark::State &state)
{
    const std::string source = line();
    for (auto _ : state) {
        karString text(source.c_str());
        while (!text.isNull()) {
            karString token = text.karstrtok(",;");
            benchmark::DoNotOptimize(token);
        }
    }
    state.SetLabel("each token moves the rest of the line to the front");
}

// The same steps.
void tokensErase(benchmark::State &state)
{
    const std::string source = line();
    for (auto _ : state) {
        std::string text(source);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find_first_of(",;"), text.size());
            std::string token = text.substr(0, end);
            benchmark::DoNotOptimize(token);
            text.erase(0, end + 1);
        }
    }
}

template <class Body>
void add(const std::string &row, Body body)
{
    benchmark::RegisterBenchmark(row.c_str(), body);
}

template <class Body>
void addGrowing(const std::string &row, Body body)
{
    benchmark::RegisterBenchmark(row.c_str(), [body](benchmark::State &state) {
        body(state);
        state.SetLabel(growth);
    });
}

/// A buffer of the allocator, filled and given back: what each text of its own costs at least.
void bufferOf(benchmark::State &state, std::size_t length)
{
    const std::string source = sample(length);
    for (auto _ : state) {
        void *const buffer = KarAllocMemory(static_cast<unsigned>(length + 8));
        std::memcpy(buffer, source.c_str(), length + 1);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
        KarDellocMemory(buffer);
    }
    state.SetLabel("a buffer of the allocator, filled");
}

int registerAll()
{
    for (const std::size_t length : {5u, 20u, 80u}) {
        const std::string size = std::to_string(length);
        add("String/construct/" + size + "/ours", [=](benchmark::State &s) {
            construct<karString>(s, length);
            s.SetLabel(length < 16 ? "every text has a buffer of the allocator" : "");
        });
        add("String/construct/" + size + "/std", [=](benchmark::State &s) { construct<std::string>(s, length); });
        add("String/copy/" + size + "/ours", [=](benchmark::State &s) {
            copy<karString>(s, length);
            s.SetLabel(length < 16 ? "every text has a buffer of the allocator" : "");
        });
        add("String/copy/" + size + "/std", [=](benchmark::State &s) { copy<std::string>(s, length); });
        add("String/construct/" + size + "/limit", [=](benchmark::State &s) { bufferOf(s, length); });
        add("String/copy/" + size + "/limit", [=](benchmark::State &s) { bufferOf(s, length); });
        add("String/compare/" + size + "/ours", [=](benchmark::State &s) { compare<karString>(s, length); });
        add("String/compare/" + size + "/std", [=](benchmark::State &s) { compare<std::string>(s, length); });
    }
    for (const std::size_t length : {100u, 10000u}) {
        const std::string size = std::to_string(length);
        addGrowing("String/join/" + size + "/ours", [=](benchmark::State &s) { join<karString>(s, length); });
        add("String/join/" + size + "/std", [=](benchmark::State &s) { join<std::string>(s, length); });
        addGrowing("String/append/" + size + "/ours", [=](benchmark::State &s) { appendPieces<karString>(s, length); });
        add("String/append/" + size + "/std", [=](benchmark::State &s) { appendPieces<std::string>(s, length); });
        addGrowing("String/append character/" + size + "/ours",
                   [=](benchmark::State &s) { appendCharacters<karString>(s, length); });
        add("String/append character/" + size + "/std",
            [=](benchmark::State &s) { appendCharacters<std::string>(s, length); });
    }
    add("String/format/ours", formatOurs);
    add("String/format/snprintf", formatC);
    add("String/format/fmt", formatFmt);
    add("String/from real/ours", realOurs);
    add("String/from real/snprintf", realC);
    add("String/from real/fmt", realFmt);
    add("String/from integer/ours", integerOurs);
    add("String/from integer/snprintf", integerC);
    add("String/to integer/ours", readWholeOurs);
    add("String/to integer/strtol", readWholeC);
    add("String/to integer/from_chars", readWholeFromChars);
    add("String/to real/ours", [](benchmark::State &s) { readReals(s, readRealOurs); });
    add("String/to real/strtod", [](benchmark::State &s) { readReals(s, readRealC); });
    add("String/to real/from_chars", [](benchmark::State &s) { readReals(s, readRealFromChars); });
    add("String/tokens/ours", tokensOurs);
    add("String/tokens/std erase", tokensErase);
    return 0;
}

const int registered = registerAll();

} // namespace
