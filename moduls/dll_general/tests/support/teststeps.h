// Lengths of long sequences: whole, or shortened by the environment where each step takes long, as under valgrind.
#ifndef KAR_TEST_STEPS_H
#define KAR_TEST_STEPS_H

#include <algorithm>
#include <cstdlib>

/// `whole` steps, divided by the number in the environment variable KAR_TEST_STEPS; 1 at least.
inline int testSteps(int whole)
{
    static const int divisor = [] {
        const char *const text = std::getenv("KAR_TEST_STEPS");
        return text ? std::max(std::atoi(text), 1) : 1;
    }();
    return std::max(whole / divisor, 1);
}

#endif
