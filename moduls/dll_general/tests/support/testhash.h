// A hash over results, to compare long runs bit by bit between targets and with a plain transcription.
#ifndef KAR_TEST_HASH_H
#define KAR_TEST_HASH_H

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

private:
    std::uint64_t state = 0xcbf29ce484222325u;
};

#endif
