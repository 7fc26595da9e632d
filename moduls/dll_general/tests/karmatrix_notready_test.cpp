// What the declared operations of the matrix tell before they give their result.
#include "notready.h"

#include "karmatrix.cpp"

#include <gtest/gtest.h>

namespace {

const NotReadyCall inverse{"karMatrix::Inverse()", "moduls/dll_general/src/karmatrix", 277};
const NotReadyCall solveLinear{"karMatrix::SolveLinear()", "moduls/dll_general/src/karmatrix", 304};
using Calls = std::vector<NotReadyCall>;

TEST(KarMatrix, InverseOfASquareMatrixIsNotReady)
{
    karMatrix(3).Inverse();
    EXPECT_TRUE(takeNotReadyCalls() == Calls{inverse});
    karMatrix().Inverse();
    EXPECT_TRUE(takeNotReadyCalls() == Calls{inverse}) << "0 by 0 is square";
    karMatrix(2, 3).Inverse();
    EXPECT_TRUE(takeNotReadyCalls().empty());
}

TEST(KarMatrix, SolveLinearOfAFittingSystemIsNotReady)
{
    karMatrix(3).SolveLinear(karMatrix(3, 1));
    EXPECT_TRUE(takeNotReadyCalls() == Calls{solveLinear});
    karMatrix(3).SolveLinear(karMatrix(2, 1));
    karMatrix(3).SolveLinear(karMatrix(3, 2));
    karMatrix(2, 3).SolveLinear(karMatrix(2, 1));
    EXPECT_TRUE(takeNotReadyCalls().empty());
}

} // namespace
