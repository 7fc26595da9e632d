// A hash over results, to compare long runs bit by bit between targets and with a plain transcription.
#ifndef KAR_TEST_HASH_H
#define KAR_TEST_HASH_H

#include <cmath>
#include <cstdint>
#include <cstring>

/// FNV-1a over 64-bit words. Not-a-numbers count as one value; 0.0 and -0.0 differ.
class TestHash {
public:
    void add(std::uint64_t word)
    {
        for (int shift = 0; shift < 64; shift += 8)
            state = (state ^ ((word >> shift) & 0xff)) * 0x100000001b3u;
    }
    void add(int value) { add(static_cast<std::uint64_t>(static_cast<std::uint32_t>(value))); }
    void add(double value)
    {
        std::uint64_t pattern = 0x7ff8000000000000u;
        if (value == value)
            std::memcpy(&pattern, &value, sizeof pattern);
        add(pattern);
    }
    std::uint64_t value() const { return state; }
    bool operator==(const TestHash &other) const { return state == other.state; }

private:
    std::uint64_t state = 0xcbf29ce484222325u;
};

/// Two hashes, for results of the C library's trigonometry: those of one run are equal bit by bit, and `value` is that
/// of the results on a grid, where the last digits of a C library don't count.
struct RoundedHash {
    TestHash exact;
    TestHash rounded;

    void add(int value)
    {
        exact.add(value);
        rounded.add(value);
    }
    void add(double value, double places = 1048576.0)
    {
        exact.add(value);
        addRounded(value, places);
    }
    /// `places` to a unit.
    void addRounded(double value, double places)
    {
        const double nearest = std::floor((value * places) + 0.5);
        rounded.add(nearest == 0 ? 0.0 : nearest);
    }
    std::uint64_t value() const { return rounded.value(); }
    bool operator==(const RoundedHash &other) const { return exact == other.exact; }
};

#endif
