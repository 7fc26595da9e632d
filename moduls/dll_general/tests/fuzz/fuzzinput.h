// What a fuzzer makes of its bytes.
#ifndef KAR_FUZZ_INPUT_H
#define KAR_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

/// Takes values off the front; zeros behind the end.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t *bytes, std::size_t count) : at(bytes), left(count) {}

    unsigned byte()
    {
        if (left == 0)
            return 0;
        --left;
        return *at++;
    }
    unsigned below(unsigned n) { return byte() % n; } ///< n up to 256.
    double real()
    {
        std::uint64_t pattern = 0;
        for (int i = 0; i < 8; ++i)
            pattern = pattern << 8 | byte();
        double value;
        std::memcpy(&value, &pattern, sizeof value);
        return value;
    }
    /// At most so many bytes, none of them 0.
    std::string text(std::size_t longest)
    {
        std::string result;
        while (left > 0 && result.size() < longest) {
            const unsigned c = byte();
            if (c == 0)
                break;
            result += static_cast<char>(c);
        }
        return result;
    }
    std::string rest() { return text(left); }

private:
    const std::uint8_t *at;
    std::size_t left;
};

/// Stops the run with the place of a claim that doesn't hold.
#define FUZZ_REQUIRE(claim)                                                                                            \
    do {                                                                                                               \
        if (!(claim)) {                                                                                                \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #claim);                                           \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)

#endif
