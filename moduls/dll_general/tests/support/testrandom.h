// Seeded random numbers that are the same on every target.
#ifndef KAR_TEST_RANDOM_H
#define KAR_TEST_RANDOM_H

#include <cstdint>
#include <cstring>

/// SplitMix64 (Steele, Lea, Flood): one 64-bit word of state, the same sequence everywhere.
class TestRandom {
public:
    explicit TestRandom(std::uint64_t seed) : state(seed) {}

    std::uint64_t bits()
    {
        std::uint64_t z = (state += 0x9e3779b97f4a7c15u);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }
    /// 0 to n - 1.
    unsigned below(unsigned n) { return static_cast<unsigned>(bits() % n); }
    /// low to high, both included.
    int between(int low, int high)
    {
        const auto span = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low) + 1;
        return static_cast<int>(low + static_cast<std::int64_t>(bits() % span));
    }
    /// Any int.
    int anyInt() { return static_cast<int>(static_cast<std::int64_t>(bits() >> 32) - 0x80000000ll); }
    /// [low, high), on a grid of 2^-53 of the span.
    double between(double low, double high)
    {
        return low + (high - low) * (static_cast<double>(bits() >> 11) * 0x1p-53);
    }
    /// Any pattern of bits, not-a-numbers and infinities included.
    double anyDouble()
    {
        const std::uint64_t pattern = bits();
        double value;
        std::memcpy(&value, &pattern, sizeof value);
        return value;
    }

private:
    std::uint64_t state;
};

#endif
