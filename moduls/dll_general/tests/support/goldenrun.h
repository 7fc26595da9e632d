// A long random sequence, run through the library and through a plain transcription of it.
#ifndef KAR_TEST_GOLDEN_RUN_H
#define KAR_TEST_GOLDEN_RUN_H

#include "testhash.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>

/// Hashes what both give. The hashes are compared with each other after each step and with the constant of the whole
/// sequence after the last, unless KAR_TEST_STEPS cuts it.
///
///     GoldenRun run(1003, 1000000, 0x47e7e23dcce3a9fu);
///     while (run.next()) {
///         const int index = run.random.anyInt();
///         run.code.add(convert(index));
///         run.plain.add(convertStepByStep(index));
///     }
template <class Hash = TestHash>
class GoldenRun {
public:
    GoldenRun(std::uint64_t seed, int steps, std::uint64_t constant)
        : random(seed), start(seed), length(testSteps(steps)), cut(length != steps), golden(constant)
    {}

    /// True if there is a step to take; false after the last one and after a difference, which fails the test.
    bool next()
    {
        if (!(code == plain)) {
            ADD_FAILURE() << "not what the plain steps give, " << *this;
            return false;
        }
        if (++step < length)
            return true;
        EXPECT_TRUE(cut || code.value() == golden) << "the hash is " << code.value();
        return false;
    }

    /// For the message of a check of the test's own.
    friend std::ostream &operator<<(std::ostream &out, const GoldenRun &run)
    {
        return out << "seed " << run.start << ", step " << run.step;
    }

    TestRandom random;
    Hash code;
    Hash plain;
    int step = -1;

private:
    std::uint64_t start;
    int length;
    bool cut;
    std::uint64_t golden;
};

#endif
