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

/// The same order from the texts alone.
void compareLimit(benchmark::State &state, std::size_t length)
{
    const std::string source = sample(length);
    const std::string other = sample(length);
    const char *a = source.c_str();
    const char *b = other.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        bool less = std::strcmp(a, b) < 0;
        benchmark::DoNotOptimize(less);
    }
    state.SetLabel("strcmp");
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

unsigned roomFor(std::size_t count) { return (static_cast<unsigned>(count) + 8) / 8 * 8; }

/// A block of the allocator for each multiple of 8 that a text passes, the text copied over up to its NUL, which a host
/// may have put anywhere, the old block given back.
void appendLimit(benchmark::State &state, std::size_t length, const std::string &piece)
{
    for (auto _ : state) {
        unsigned room = 16;
        char *text = static_cast<char *>(KarAllocMemory(room));
        *text = '\0';
        std::size_t count = 0;
        while (count < length) {
            if (count + piece.size() >= room) {
                room = roomFor(count + piece.size());
                char *const larger = static_cast<char *>(KarAllocMemory(room));
                std::memcpy(larger, text, std::strlen(text));
                KarDellocMemory(text);
                text = larger;
            }
            std::memcpy(text + count, piece.data(), piece.size());
            count += piece.size();
            text[count] = '\0';
        }
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
        KarDellocMemory(text);
    }
    state.SetLabel("a larger block at each multiple of 8, the text measured and copied");
}

/// A block of the allocator for each sum, both texts copied, and copied once more into the text that takes the sum; each
/// copy up to the NUL.
void joinLimit(benchmark::State &state, std::size_t length)
{
    const std::string piece = sample(10);
    for (auto _ : state) {
        unsigned room = 16;
        char *text = static_cast<char *>(KarAllocMemory(room));
        *text = '\0';
        for (std::size_t count = 0; count < length; count += piece.size()) {
            const std::size_t total = count + piece.size();
            char *const sum = static_cast<char *>(KarAllocMemory(roomFor(total + 8)));
            std::memcpy(sum, text, std::strlen(text));
            std::memcpy(sum + count, piece.c_str(), std::strlen(piece.c_str()) + 1);
            if (total >= room) {
                room = roomFor(total + 8);
                KarDellocMemory(text);
                text = static_cast<char *>(KarAllocMemory(room));
            }
            std::memcpy(text, sum, std::strlen(sum) + 1);
            KarDellocMemory(sum);
        }
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
        KarDellocMemory(text);
    }
    state.SetLabel("a block for each sum, the texts measured and copied, and the sum copied into its text");
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
    const char *end = start + text.size();
    for (auto _ : state) {
        benchmark::DoNotOptimize(start);
        benchmark::DoNotOptimize(end);
        int value;
        std::from_chars(start, end, value);
        benchmark::DoNotOptimize(value);
    }
}

void readWholeLimit(benchmark::State &state)
{
    const std::string text("1234567");
    const char *start = text.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(start);
        int value;
        std::from_chars(start, start + std::strlen(start), value);
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel("the text measured, then from_chars");
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

double readRealLimit(const std::string &text, karString &)
{
    double value = 0;
    std::from_chars(text.c_str(), text.c_str() + std::strlen(text.c_str()), value);
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

/// The first token searched and copied, the rest measured and moved to the front.
void tokensLimit(benchmark::State &state)
{
    const std::string source = line();
    std::string text;
    for (auto _ : state) {
        text = source;
        char *const begin = &text[0];
        for (std::size_t count = source.size(); count > 0;) {
            const auto end = static_cast<std::size_t>(static_cast<char *>(std::memchr(begin, ',', count)) - begin);
            karString token(static_cast<const char *>(nullptr), static_cast<unsigned>(end));
            token.ncopy(begin, static_cast<unsigned>(end));
            benchmark::DoNotOptimize(token);
            count = std::strlen(begin + end + 1);
            std::memmove(begin, begin + end + 1, count + 1);
        }
    }
    state.SetLabel("a delimiter found, the rest of the line measured and moved to the front");
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

/// A text measured, a buffer of the allocator, filled and given back: what each text of its own costs at least.
void bufferOf(benchmark::State &state, std::size_t length)
{
    const std::string source = sample(length);
    const char *text = source.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        const std::size_t count = std::strlen(text);
        void *const buffer = KarAllocMemory(static_cast<unsigned>(count + 9));
        std::memcpy(buffer, text, count + 1);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
        KarDellocMemory(buffer);
    }
    state.SetLabel("the text measured, a buffer of the allocator, filled");
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
        add("String/compare/" + size + "/ours", [=](benchmark::State &s) {
            compare<karString>(s, length);
            s.SetLabel("up to the first NUL");
        });
        add("String/compare/" + size + "/limit", [=](benchmark::State &s) { compareLimit(s, length); });
        add("String/compare/" + size + "/std", [=](benchmark::State &s) { compare<std::string>(s, length); });
    }
    for (const std::size_t length : {100u, 10000u}) {
        const std::string size = std::to_string(length);
        addGrowing("String/join/" + size + "/ours", [=](benchmark::State &s) { join<karString>(s, length); });
        add("String/join/" + size + "/limit", [=](benchmark::State &s) { joinLimit(s, length); });
        add("String/join/" + size + "/std", [=](benchmark::State &s) { join<std::string>(s, length); });
        addGrowing("String/append/" + size + "/ours", [=](benchmark::State &s) { appendPieces<karString>(s, length); });
        add("String/append/" + size + "/limit", [=](benchmark::State &s) { appendLimit(s, length, sample(10)); });
        add("String/append/" + size + "/std", [=](benchmark::State &s) { appendPieces<std::string>(s, length); });
        addGrowing("String/append character/" + size + "/ours",
                   [=](benchmark::State &s) { appendCharacters<karString>(s, length); });
        add("String/append character/" + size + "/limit", [=](benchmark::State &s) { appendLimit(s, length, "x"); });
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
    add("String/to integer/limit", readWholeLimit);
    add("String/to integer/strtol", readWholeC);
    add("String/to integer/from_chars", readWholeFromChars);
    add("String/to real/ours", [](benchmark::State &s) { readReals(s, readRealOurs); });
    add("String/to real/limit", [](benchmark::State &s) {
        readReals(s, readRealLimit);
        s.SetLabel("the text measured, then from_chars");
    });
    add("String/to real/strtod", [](benchmark::State &s) { readReals(s, readRealC); });
    add("String/to real/from_chars", [](benchmark::State &s) { readReals(s, readRealFromChars); });
    add("String/tokens/ours", tokensOurs);
    add("String/tokens/limit", tokensLimit);
    add("String/tokens/std erase", tokensErase);
    return 0;
}

const int registered = registerAll();

} // namespace
