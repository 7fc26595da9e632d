// The matrix: sizes, element addresses, products and the array's borders, its factories, and its application to
// positions.
#include "karmatrix.h"

#include "failalloc.h"
#include "goldenrun.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

// Blocks come straight from the heap, so that they end where the array ends and the sanitizer sees their borders too.
class ExactBlocks : public testing::Environment {
public:
    void SetUp() override { globalMemList->setMarkMemListGlobal(0); }
    void TearDown() override { globalMemList->setMarkMemListGlobal(1); }
};
const testing::Environment *const exactBlocks = testing::AddGlobalTestEnvironment(new ExactBlocks);

// The guards of 32 bits in front of and behind an array are the same as long as nothing has written over them.
testing::AssertionResult guarded(const karMatrix &m)
{
    const auto bytes =
        static_cast<std::size_t>(m.GetRows()) * static_cast<std::size_t>(m.GetColumns()) * sizeof(double);
    const auto *array = reinterpret_cast<const unsigned char *>(m.GetData());
    if (std::memcmp(array - 4, array + bytes, 4) == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "a guard of the array is overwritten";
}

testing::AssertionResult holds(const karMatrix &m, int rows, int columns, const std::vector<double> &elements)
{
    if (m.GetRows() != rows || m.GetColumns() != columns)
        return testing::AssertionFailure() << m.GetRows() << " by " << m.GetColumns();
    if (elements.empty() != (m.GetData() == nullptr))
        return testing::AssertionFailure() << "array at " << m.GetData();
    for (std::size_t i = 0; i < elements.size(); ++i)
        if (!sameBits(m.GetData()[i], elements[i]))
            return testing::AssertionFailure() << "element " << i << " is " << m.GetData()[i];
    return elements.empty() ? testing::AssertionSuccess() : guarded(m);
}

testing::AssertionResult isEmpty(const karMatrix &m) { return holds(m, 0, 0, {}); }

bool isZero(const karMatrix &m)
{
    return std::all_of(m.GetData(), m.GetData() + m.GetRows() * m.GetColumns(), [](double v) { return v == 0; });
}

karMatrix matrix(int rows, int columns, const std::vector<double> &elements)
{
    karMatrix m(rows, columns);
    for (std::size_t i = 0; i < elements.size(); ++i)
        m.GetData()[i] = elements[i];
    return m;
}

// A matrix for containers, which call its destructor through its own type.
struct HeldMatrix final : karMatrix {
    HeldMatrix(karMatrix m) : karMatrix(std::move(m)) {}
};

testing::AssertionResult lies(const kar3D_Point &p, double x, double y, double z)
{
    if (sameBits(p.x(), x) && sameBits(p.y(), y) && sameBits(p.z(), z))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << p.x() << ", " << p.y() << ", " << p.z() << ")";
}

const std::vector<double> oneToSixteen = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// Construction

TEST(KarMatrix, OfOneNumberIsTheIdentityAndOfANegativeOneZero)
{
    EXPECT_TRUE(holds(karMatrix(3), 3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(karMatrix(-3), 3, 3, {0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(holds(karMatrix(1), 1, 1, {1}));
    EXPECT_TRUE(holds(karMatrix(-1), 1, 1, {0}));
    EXPECT_TRUE(isEmpty(karMatrix(0)));
    EXPECT_TRUE(isEmpty(karMatrix()));
    for (int n = 1; n <= 12; ++n)
        EXPECT_TRUE(guarded(karMatrix(n))) << n;
}

TEST(KarMatrix, OfTwoNumbersTakesTheirAbsoluteValues)
{
    EXPECT_TRUE(holds(karMatrix(-2, 3), 2, 3, {0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(holds(karMatrix(1, -2), 1, 2, {0, 0}));
    EXPECT_TRUE(holds(karMatrix(0, 3), 0, 3, {}));
    EXPECT_TRUE(holds(karMatrix(3, 0), 3, 0, {}));
    EXPECT_TRUE(holds(karMatrix(INT_MIN, 3), INT_MIN, 3, {})) << "its absolute value wraps to itself";
    EXPECT_TRUE(holds(karMatrix(INT_MIN), INT_MIN, INT_MIN, {}));
}

TEST(KarMatrix, OfAVectorIsOneRow)
{
    EXPECT_TRUE(holds(karMatrix(kar2DVector(3, 4, false)), 1, 2, {3, 4}));
    EXPECT_TRUE(holds(karMatrix(kar3DVector(3, 4, 5, false)), 1, 3, {3, 4, 5}));
}

TEST(KarMatrix, CopiesDeeply)
{
    karMatrix m = matrix(2, 3, {1, 2, 3, 4, 5, 6});
    karMatrix copy(m);
    EXPECT_NE(copy.GetData(), m.GetData());
    m.SetValue(1, 1, 9);
    EXPECT_TRUE(holds(copy, 2, 3, {1, 2, 3, 4, 5, 6}));
    karMatrix assigned(4);
    EXPECT_EQ(&(assigned = copy), &assigned);
    EXPECT_TRUE(holds(assigned, 2, 3, {1, 2, 3, 4, 5, 6}));
    EXPECT_NE(assigned.GetData(), copy.GetData());
}

TEST(KarMatrix, EmptyCopiesAsEmpty)
{
    const karMatrix none;
    EXPECT_TRUE(isEmpty(karMatrix(none)));
    EXPECT_TRUE(isEmpty(+none));
    EXPECT_TRUE(isEmpty(-none));
    EXPECT_TRUE(isEmpty(none * 2.0));
    EXPECT_TRUE(isEmpty(none + none));
    EXPECT_TRUE(isEmpty(none - none));
    EXPECT_TRUE(isEmpty(none.Transpose()));
    karMatrix m(3);
    m = none;
    EXPECT_TRUE(isEmpty(m));
    m = karMatrix(2);
    EXPECT_TRUE(holds(m, 2, 2, {1, 0, 0, 1}));
}

TEST(KarMatrix, AssignedToItselfStays)
{
    karMatrix m = matrix(2, 2, {1, 2, 3, 4});
    const karMatrix &same = m;
    m = same;
    EXPECT_TRUE(holds(m, 2, 2, {1, 2, 3, 4}));
    karMatrix &alias = m;
    m = std::move(alias);
    EXPECT_TRUE(holds(m, 2, 2, {1, 2, 3, 4}));
}

TEST(KarMatrix, MovedFromIsEmpty)
{
    karMatrix m(2);
    const double *array = m.GetData();
    karMatrix taken(std::move(m));
    EXPECT_EQ(taken.GetData(), array);
    EXPECT_TRUE(isEmpty(m)); // what is left behind
    m = std::move(taken);
    EXPECT_EQ(m.GetData(), array);
    EXPECT_TRUE(isEmpty(taken));
}

TEST(KarMatrix, WithoutAnElementNothingIsReadOrWritten)
{
    karMatrix never;
    karMatrix before(2);
    const karMatrix taken(std::move(before));
    for (karMatrix *m : {&never, &before}) { // what is left behind
        EXPECT_TRUE(isEmpty(*m *= 2.0));
        EXPECT_TRUE(isEmpty(*m += *m));
        EXPECT_TRUE(isEmpty(*m -= *m));
        EXPECT_TRUE(isEmpty(-*m));
        EXPECT_TRUE(isEmpty(m->SetValue(1, 1, 5.0)));
    }
}

TEST(KarMatrix, HasItsSizesAndItsArrayInOrder)
{
    const karMatrix m(2, 3);
    EXPECT_EQ(m.GetType(), KAR_ID_MATRIX);
    EXPECT_EQ(m.GetType(), 119);
    EXPECT_FALSE(std::has_virtual_destructor<karMatrix>::value);
    int sizes[2];
    const char *object = reinterpret_cast<const char *>(&m);
    std::memcpy(sizes, object + sizeof(void *), sizeof sizes);
    EXPECT_EQ(sizes[0], 2);
    EXPECT_EQ(sizes[1], 3);
    double *array;
    std::memcpy(&array, object + sizeof(void *) + sizeof sizes, sizeof array);
    EXPECT_EQ(array, m.GetData());
}

// Elements

struct OpenMatrix : karMatrix {
    using karMatrix::_GetValue;
    using karMatrix::_InitData;
    using karMatrix::karMatrix;
};

TEST(KarMatrix, AddressesElementsFromOneOnByRows)
{
    OpenMatrix m(2, 3);
    EXPECT_EQ(m.GetValue(1, 1), m.GetData());
    EXPECT_EQ(m.GetValue(1, 3), m.GetData() + 2);
    EXPECT_EQ(m.GetValue(2, 1), m.GetData() + 3);
    EXPECT_EQ(m.GetValue(2, 3), m.GetData() + 5);
    EXPECT_EQ(m._GetValue(2, 3), m.GetData() + 5);
}

TEST(KarMatrix, LimitsOfAnAddressAreOneTooWideAboveAndNoneBelow)
{
    const karMatrix m(2, 3);
    const auto address = [&m](int r, int c) { return reinterpret_cast<std::uintptr_t>(m.GetValue(r, c)); };
    const auto first = reinterpret_cast<std::uintptr_t>(m.GetData());
    EXPECT_EQ(address(3, 1), first + 6 * sizeof(double)) << "one row beyond the last";
    EXPECT_EQ(address(2, 4), first + 6 * sizeof(double));
    EXPECT_EQ(address(3, 4), first + 9 * sizeof(double));
    EXPECT_EQ(address(1, 4), first + 3 * sizeof(double)) << "inside, in the next row";
    EXPECT_EQ(m.GetValue(4, 1), nullptr);
    EXPECT_EQ(m.GetValue(1, 5), nullptr);
    EXPECT_EQ(address(0, 1), first - 3 * sizeof(double));
    EXPECT_EQ(address(1, 0), first - sizeof(double));
    EXPECT_EQ(address(2, 0), first + 2 * sizeof(double));
    EXPECT_EQ(address(2, -2), first);
    EXPECT_EQ(m.GetValue(INT_MIN, 1), nullptr) << "r - 1 wraps";
    EXPECT_EQ(karMatrix().GetValue(1, 1), nullptr);
    EXPECT_EQ(karMatrix(0, 3).GetValue(1, 1), nullptr);
}

TEST(KarMatrix, StoresOnlyInsideItsArray)
{
    karMatrix m(2, 3);
    EXPECT_EQ(&m.SetValue(1, 1, 1), &m);
    m.SetValue(2, 3, 2);
    m.SetValue(1, 4, 3);  // the first of the second row
    m.SetValue(2, -1, 4); // the second of the first row
    const std::vector<double> expected = {1, 4, 0, 3, 0, 2};
    EXPECT_TRUE(holds(m, 2, 3, expected));
    for (int r = -5; r <= 5; ++r)
        for (int c = -5; c <= 6; ++c) {
            const int index = 3 * (r - 1) + (c - 1);
            if (index < 0 || index >= 6)
                m.SetValue(r, c, 7);
        }
    m.SetValue(INT_MIN, INT_MIN, 7).SetValue(INT_MAX, INT_MAX, 7).SetValue(4, 1, 7);
    EXPECT_TRUE(holds(m, 2, 3, expected));
    karMatrix none;
    none.SetValue(1, 1, 1);
    EXPECT_TRUE(isEmpty(none));
}

// SetData

TEST(KarMatrix, SetDataStartsWithAnArrayOfZeros)
{
    karMatrix m = matrix(2, 2, {1, 2, 3, 4});
    EXPECT_EQ(&m.SetData(3, 2), &m);
    EXPECT_TRUE(holds(m, 3, 2, {0, 0, 0, 0, 0, 0}));
    OpenMatrix open;
    open.SetData(1, 2).SetValue(1, 1, 5);
    open._InitData();
    EXPECT_TRUE(holds(open, 1, 2, {0, 0}));
}

TEST(KarMatrix, SetDataWithANegativeSizeKeepsItAndTheStaleAddress)
{
    for (const auto &size : {std::pair<int, int>{-2, 3}, {2, -3}, {0, 3}, {3, 0}, {-1, -1}}) {
        karMatrix m = matrix(2, 2, {1, 2, 3, 4});
        double *stale = m.GetData();
        m.SetData(size.first, size.second);
        EXPECT_EQ(m.GetRows(), size.first);
        EXPECT_EQ(m.GetColumns(), size.second);
        EXPECT_EQ(m.GetData(), stale);
        EXPECT_TRUE(holds(karMatrix(m), size.first, size.second, {})) << "a copy has no array";
        EXPECT_TRUE(holds(m * 2.0, size.first, size.second, {}));
        EXPECT_TRUE(holds(-m, size.first, size.second, {}));
        EXPECT_TRUE(holds(m + m, size.first, size.second, {}));
        karMatrix never;
        never.SetData(size.first, size.second);
        EXPECT_EQ(never.GetData(), nullptr);
    }
}

TEST(KarMatrix, AStaleArrayIsNeitherReadNorWrittenNorFreedAgain)
{
    using Matrix = std::optional<HeldMatrix>;
    const std::vector<void (*)(Matrix &)> waysOut = {
        [](Matrix &m) { m.reset(); },
        [](Matrix &m) { EXPECT_TRUE(isZero(m->SetData(2, 2))); },
        [](Matrix &m) { m->SetData(-2, -2).SetData(0, 0); },
        [](Matrix &m) { *m = karMatrix(-2); },
        [](Matrix &m) { *m *= karMatrix(2); },
        [](Matrix &m) { Matrix(std::move(*m)).reset(); },
    };
    // The pools hand a block that came back to the next request of its size.
    globalMemList->setMarkMemListGlobal(1);
    for (const auto wayOut : waysOut) {
        std::vector<double *> blocks;
        const auto takeBlock = [&blocks] {
            blocks.push_back(static_cast<double *>(KarAllocMemory(4 * sizeof(double))));
            for (int k = 0; k < 4; ++k)
                blocks.back()[k] = 0.5 + k;
        };
        takeBlock(); // keeps the page
        Matrix m(matrix(2, 2, {1, 2, 3, 4}));
        m->SetData(-2, 2);
        for (int i = 0; i < 100; ++i)
            takeBlock();
        EXPECT_TRUE(std::find(blocks.begin(), blocks.end(), m->GetData()) != blocks.end());
        EXPECT_EQ(m->GetValue(1, 1), nullptr) << "0 is above -2";
        EXPECT_NE(m->GetValue(-5, 1), nullptr);
        for (int r = -9; r <= 3; ++r)
            for (int c = -9; c <= 9; ++c)
                m->SetValue(r, c, 99);
        *m *= 2.0;
        *m += *m;
        *m -= *m;
        wayOut(m);
        m.reset();
        for (double *block : blocks) {
            for (int k = 0; k < 4; ++k)
                EXPECT_EQ(block[k], 0.5 + k);
            KarDellocMemory(block);
        }
    }
    globalMemList->setMarkMemListGlobal(0);
}

// Parts

TEST(KarMatrix, RowsAreCountedFromZeroButTestedAsFromOne)
{
    EXPECT_TRUE(holds(karMatrix(4).GetRowMatrix(1), 1, 4, {0, 1, 0, 0}));
    const karMatrix m = matrix(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(holds(m.GetRowMatrix(1), 1, 3, {4, 5, 6}));
    EXPECT_TRUE(holds(m.GetRowMatrix(2), 1, 3, {0, 0, 0})) << "beyond the array";
    EXPECT_TRUE(isEmpty(m.GetRowMatrix(0)));
    EXPECT_TRUE(isEmpty(m.GetRowMatrix(3)));
    EXPECT_TRUE(isEmpty(m.GetRowMatrix(-1)));
}

TEST(KarMatrix, ColumnsGoInStridesOfTheRowCount)
{
    const karMatrix square = matrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_TRUE(holds(square.GetColumnMatrix(1), 3, 1, {2, 5, 8}));
    EXPECT_TRUE(holds(square.GetColumnMatrix(2), 3, 1, {3, 6, 9}));
    EXPECT_TRUE(holds(square.GetColumnMatrix(3), 3, 1, {4, 7, 0})) << "the last is beyond the array";
    EXPECT_TRUE(isEmpty(square.GetColumnMatrix(0)));
    EXPECT_TRUE(isEmpty(square.GetColumnMatrix(4)));
    const karMatrix wide = matrix(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(holds(wide.GetColumnMatrix(1), 2, 1, {2, 4}));
    const karMatrix high = matrix(3, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(holds(high.GetColumnMatrix(1), 3, 1, {2, 5, 0}));
}

TEST(KarMatrix, TransposesSquareMatricesOnly)
{
    const karMatrix m = matrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_TRUE(holds(m.Transpose(), 3, 3, {1, 4, 7, 2, 5, 8, 3, 6, 9}));
    EXPECT_TRUE(isEmpty(karMatrix(2, 3).Transpose()));
}

// Arithmetic

TEST(KarMatrix, AddsOnlyMatricesOfItsSizes)
{
    karMatrix m = matrix(2, 2, {1, 2, 3, 4});
    const karMatrix n = matrix(2, 2, {5, 7, 11, 13});
    EXPECT_TRUE(holds(m + n, 2, 2, {6, 9, 14, 17}));
    EXPECT_TRUE(holds(m - n, 2, 2, {-4, -5, -8, -9}));
    EXPECT_TRUE(isEmpty(m + karMatrix(2, 3)));
    EXPECT_TRUE(isEmpty(m - karMatrix(3, 2)));
    EXPECT_TRUE(isEmpty(karMatrix(1, 4) + karMatrix(4, 1)));
    EXPECT_EQ(&(m += n), &m);
    EXPECT_TRUE(holds(m, 2, 2, {6, 9, 14, 17}));
    m -= n;
    EXPECT_TRUE(holds(m, 2, 2, {1, 2, 3, 4}));
    m += karMatrix(2, 3);
    m -= karMatrix(3, 2);
    EXPECT_TRUE(holds(m, 2, 2, {1, 2, 3, 4}));
    m += m;
    EXPECT_TRUE(holds(m, 2, 2, {2, 4, 6, 8}));
    EXPECT_TRUE(holds(-m, 2, 2, {-2, -4, -6, -8}));
    EXPECT_TRUE(holds(+m, 2, 2, {2, 4, 6, 8}));
}

TEST(KarMatrix, AFactorInTheArrayCountsWithItsValueOnEntry)
{
    karMatrix m = matrix(2, 2, {2, 3, 4, 5});
    EXPECT_TRUE(holds(m * *m.GetValue(2, 2), 2, 2, {10, 15, 20, 25}));
    EXPECT_EQ(&(m *= *m.GetValue(1, 1)), &m);
    EXPECT_TRUE(holds(m, 2, 2, {4, 6, 8, 10}));
}

TEST(KarMatrix, MultipliesRowsByColumns)
{
    const karMatrix a = matrix(2, 3, {1, 2, 3, 4, 5, 6});
    const karMatrix b = matrix(3, 2, {7, 8, 9, 10, 11, 12});
    EXPECT_TRUE(holds(a * b, 2, 2, {58, 64, 139, 154}));
    EXPECT_TRUE(holds(b * a, 3, 3, {39, 54, 69, 49, 68, 87, 59, 82, 105}));
    karMatrix m = a;
    EXPECT_EQ(&(m *= b), &m);
    EXPECT_TRUE(holds(m, 2, 2, {58, 64, 139, 154}));
    m *= m;
    EXPECT_TRUE(holds(m, 2, 2, {58 * 58 + 64 * 139, 58 * 64 + 64 * 154, 139 * 58 + 154 * 139, 139 * 64 + 154 * 154}));
}

TEST(KarMatrix, ProductsThatDontConformAreMadeWithZerosBeyondTheArray)
{
    const karMatrix a = matrix(2, 3, {1, 2, 3, 4, 5, 6});
    const karMatrix b = matrix(2, 2, {7, 8, 9, 10});
    EXPECT_TRUE(holds(a * b, 2, 2, {25, 28, 73, 82}));
    // Flat index 2 * k + j of a 1 by 2 matrix lies beyond it for k > 0.
    EXPECT_TRUE(holds(a * matrix(1, 2, {7, 8}), 2, 2, {7, 8, 28, 32}));
    // Further rows of the right operand take no part.
    EXPECT_TRUE(holds(b * matrix(3, 1, {1, 10, 100}), 2, 1, {87, 109}));
    // The 0 beyond the array is multiplied and added.
    EXPECT_TRUE(holds(matrix(1, 3, {1, 2, infinity}) * b, 1, 2, {notANumber, notANumber}));
    karMatrix m = a;
    m *= b;
    EXPECT_TRUE(holds(m, 2, 2, {25, 28, 73, 82})) << "columns are those of the operand, rows stay";
}

TEST(KarMatrix, RefusesAProductByATruthValueBesideARowCount)
{
    const karMatrix m = matrix(2, 2, {1, 2, 3, 4});
    const karMatrix noColumns(2, 0), noRows(0, 2);
    EXPECT_TRUE(isEmpty(m * noRows)) << "columns, and 0 rows";
    EXPECT_TRUE(isEmpty(m * karMatrix()));
    EXPECT_TRUE(isEmpty(noColumns * karMatrix(1, 3))) << "no columns, and 1 row";
    EXPECT_TRUE(holds(noColumns * karMatrix(2, 3), 2, 3, {0, 0, 0, 0, 0, 0})) << "a sum of nothing is 0";
    EXPECT_TRUE(holds(noColumns * karMatrix(0, 3), 2, 3, {0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(isEmpty(karMatrix() * karMatrix()));
    EXPECT_TRUE(holds(karMatrix() * karMatrix(2, 3), 0, 3, {}));
    EXPECT_TRUE(holds(m * karMatrix(1, 0), 2, 0, {})) << "1 row refuses only without columns";

    karMatrix kept = m;
    kept *= noRows;
    EXPECT_TRUE(holds(kept, 2, 2, {1, 2, 3, 4}));
    kept *= karMatrix();
    EXPECT_TRUE(holds(kept, 2, 2, {1, 2, 3, 4}));
    karMatrix wide = noColumns;
    wide *= karMatrix(1, 3);
    EXPECT_TRUE(holds(wide, 2, 0, {}));
    wide *= karMatrix(5, 3);
    EXPECT_TRUE(holds(wide, 2, 3, {0, 0, 0, 0, 0, 0}));
}

TEST(KarMatrix, ResultsTakeNegativeSizesAsTheyAre)
{
    karMatrix negative;
    negative.SetData(-2, 3);
    EXPECT_TRUE(holds(negative * karMatrix(3, 4), -2, 4, {}));
    karMatrix m(2, 3), other;
    other.SetData(3, -2);
    EXPECT_TRUE(holds(m * other, 2, -2, {}));
    m *= other;
    EXPECT_TRUE(holds(m, 2, -2, {}));
    EXPECT_TRUE(holds(m * karMatrix(3, 2), 2, 2, {0, 0, 0, 0})) << "no k below a negative column count";
    karMatrix square;
    square.SetData(-2, -2);
    EXPECT_TRUE(holds(square.Transpose(), -2, -2, {}));
    EXPECT_TRUE(holds(square.Inverse(), -2, -2, {}));
    EXPECT_TRUE(isEmpty(negative.GetRowMatrix(1)));
    EXPECT_TRUE(holds(negative.GetColumnMatrix(1), -2, 1, {}));
}

// Declared operations

TEST(KarMatrix, InverseGivesZeroOfASquareMatrixAndACopyOfAnyOther)
{
    EXPECT_TRUE(holds(karMatrix(3).Inverse(), 3, 3, {0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(holds(matrix(2, 3, {1, 2, 3, 4, 5, 6}).Inverse(), 2, 3, {1, 2, 3, 4, 5, 6}));
    EXPECT_TRUE(isEmpty(karMatrix().Inverse()));
}

TEST(KarMatrix, SolveLinearGivesAColumnOfZeros)
{
    EXPECT_TRUE(holds(karMatrix(3).SolveLinear(matrix(3, 1, {1, 2, 3})), 3, 1, {0, 0, 0}));
    EXPECT_TRUE(isEmpty(karMatrix(3).SolveLinear(karMatrix(2, 1))));
    EXPECT_TRUE(isEmpty(karMatrix(3).SolveLinear(karMatrix(3, 2))));
    EXPECT_TRUE(isEmpty(karMatrix(2, 3).SolveLinear(karMatrix(2, 1))));
}

// Failing allocation

TEST(KarMatrix, WithoutAnArrayReadsAsZeroAndDropsStores)
{
    const karMatrix full = matrix(4, 4, oneToSixteen);
    const std::vector<double> zeros(16);
    std::vector<HeldMatrix> made;
    made.reserve(32);
    karMatrix assigned(full), multiplied(full), started(full);
    {
        const AllAllocationsFail failing;
        globalMemList->addCurAnzNew(100); // what is freed in between doesn't make room
        made.emplace_back(4);
        made.push_back(karMatrix(4, 4));
        made.emplace_back(full);
        made.push_back(full * full);
        made.push_back(full * 2.0);
        made.push_back(full + full);
        made.push_back(full - full);
        made.push_back(-full);
        made.push_back(full.Transpose());
        made.push_back(full.Inverse());
        made.push_back(GetTranslateMatrix(1, 2, 3));
        made.push_back(GetRotateMatrix(1, 2, 3));
        made.push_back(GetTransformationMatrix(1, 2, 3, 4, 5, 6, 7, 8, 9));
        assigned = full;
        multiplied *= full;
        started.SetData(4, 4);
        EXPECT_TRUE(holds(full.GetRowMatrix(1), 1, 4, {}));
        EXPECT_TRUE(holds(full.GetColumnMatrix(1), 4, 1, {}));
        EXPECT_TRUE(holds(full.SolveLinear(full.GetColumnMatrix(1)), 4, 1, {}));
        EXPECT_TRUE(holds(karMatrix(kar2DVector(1, 2, false)), 1, 2, {}));
        EXPECT_TRUE(holds(karMatrix(kar3DVector(1, 2, 3, false)), 1, 3, {}));
        globalMemList->addCurAnzNew(-100);
    }
    made.push_back(assigned);
    made.push_back(multiplied);
    made.push_back(started);
    EXPECT_TRUE(holds(made.back(), 4, 4, zeros)) << "copied when there is memory again";
    made.erase(made.end() - 3, made.end());
    for (karMatrix *m : {&assigned, &multiplied, &started})
        made.push_back(std::move(*m));
    for (karMatrix &m : made) {
        EXPECT_TRUE(holds(m, 4, 4, {}));
        EXPECT_EQ(m.GetValue(1, 1), nullptr);
        m.SetValue(1, 1, 5);
        m *= 3.0;
        m += full;
        m -= full;
        EXPECT_TRUE(holds(m, 4, 4, {}));
        EXPECT_TRUE(holds(m + full, 4, 4, oneToSixteen));
        EXPECT_TRUE(holds(m * full, 4, 4, zeros));
        EXPECT_TRUE(holds(full * m, 4, 4, zeros));
        EXPECT_TRUE(holds(m.Transpose(), 4, 4, zeros));
        EXPECT_TRUE(holds(m.GetRowMatrix(1), 1, 4, {0, 0, 0, 0}));
        EXPECT_TRUE(lies(kar3D_Point(1, 2, 3) * m, 0, 0, 0));
    }
}

TEST(KarMatrix, SizesWhoseProductDoesntFit32BitsCountAsAFailedAllocation)
{
    EXPECT_TRUE(holds(karMatrix(65536, 65536), 65536, 65536, {}));
    EXPECT_TRUE(holds(karMatrix(INT_MAX), INT_MAX, INT_MAX, {}));
    EXPECT_TRUE(holds(karMatrix(1, 536870911), 1, 536870911, {})) << "0xfffffff8 bytes leave no place for the guards";
    karMatrix m(2);
    m.SetData(INT_MAX, 2);
    EXPECT_TRUE(holds(m, INT_MAX, 2, {}));
    EXPECT_TRUE(holds(karMatrix(65536, 1) * karMatrix(1, 65536), 65536, 65536, {}));
}

// Factories

TEST(KarMatrix, FactoriesGiveTheirMatrixRowByRow)
{
    const double c = std::cos(0.7), s = std::sin(0.7);
    EXPECT_TRUE(holds(GetTranslateMatrix(2, 3, 4), 4, 4, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, 3, 4, 1}));
    EXPECT_TRUE(holds(GetTranslateXMatrix(2), 4, 4, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, 0, 0, 1}));
    EXPECT_TRUE(holds(GetTranslateYMatrix(3), 4, 4, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 3, 0, 1}));
    EXPECT_TRUE(holds(GetTranslateZMatrix(4), 4, 4, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 4, 1}));
    EXPECT_TRUE(holds(GetRotateXMatrix(0.7), 4, 4, {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetRotateYMatrix(0.7), 4, 4, {c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetRotateZMatrix(0.7), 4, 4, {c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetScaleMatrix(2, 3, 4), 4, 4, {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetScaleXMatrix(2), 4, 4, {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetScaleYMatrix(3), 4, 4, {1, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetScaleZMatrix(4), 4, 4, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetCutMatrix(2, 3, 4, 5, 6, 7), 4, 4, {1, 2, 3, 0, 4, 1, 5, 0, 6, 7, 1, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetCutXMatrix(2, 3), 4, 4, {1, 2, 3, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetCutYMatrix(2, 3), 4, 4, {1, 0, 0, 0, 2, 1, 3, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(holds(GetCutZMatrix(2, 3), 4, 4, {1, 0, 0, 0, 0, 1, 0, 0, 2, 3, 1, 0, 0, 0, 0, 1}));
}

using Plain = double[4][4];

karMatrix fromPlain(const Plain &m) { return matrix(4, 4, std::vector<double>(&m[0][0], &m[0][0] + 16)); }

testing::AssertionResult holds(const karMatrix &m, const Plain &plain)
{
    return holds(m, 4, 4, std::vector<double>(&plain[0][0], &plain[0][0] + 16));
}

void multiply(const Plain &a, const Plain &b, Plain &out)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k)
                sum += a[i][k] * b[k][j];
            out[i][j] = sum;
        }
}

void identity(Plain &m)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m[i][j] = i == j ? 1.0 : 0.0;
}

TEST(KarMatrix, RotationAboutThreeAxesIsTheStatedClosedForm)
{
    TestRandom random(731);
    for (int call = 0, calls = testSteps(10000); call < calls; ++call) {
        const double a = random.between(-7.0, 7.0), b = random.between(-7.0, 7.0), c = random.between(-7.0, 7.0);
        const double cA = std::cos(a), sA = std::sin(a), cB = std::cos(b), sB = std::sin(b);
        const double cC = std::cos(c), sC = std::sin(c);
        Plain m;
        identity(m);
        m[0][0] = cC * cB;
        m[0][1] = -sC * cB;
        m[0][2] = sB;
        m[1][0] = cC * sB * sA + sC * cA;
        m[1][1] = cC * cA - sC * sB * sA;
        m[1][2] = -cB * sA;
        m[2][0] = sC * sA - cC * sB * cA;
        m[2][1] = sC * sB * cA + cC * sA;
        m[2][2] = cB * cA;
        const karMatrix rotation = GetRotateMatrix(a, b, c);
        ASSERT_TRUE(holds(rotation, m)) << "seed 731, call " << call;
        const karMatrix product = GetRotateXMatrix(a) * GetRotateYMatrix(b) * GetRotateZMatrix(c);
        for (int i = 0; i < 16; ++i)
            ASSERT_NEAR(rotation.GetData()[i], product.GetData()[i], 5e-16) << "seed 731, call " << call;
    }
}

// A factory's matrix by number, as the class gives it and as a plain array.
karMatrix randomFactory(TestRandom &random, Plain &m)
{
    const double a = random.between(-4.0, 4.0), b = random.between(-4.0, 4.0), d = random.between(-4.0, 4.0);
    const double c = std::cos(a), s = std::sin(a);
    identity(m);
    switch (random.below(6)) {
    case 0:
        m[3][0] = a;
        m[3][1] = b;
        m[3][2] = d;
        return GetTranslateMatrix(a, b, d);
    case 1:
        m[1][1] = m[2][2] = c;
        m[1][2] = -s;
        m[2][1] = s;
        return GetRotateXMatrix(a);
    case 2:
        m[0][0] = m[2][2] = c;
        m[0][2] = s;
        m[2][0] = -s;
        return GetRotateYMatrix(a);
    case 3:
        m[0][0] = m[1][1] = c;
        m[0][1] = -s;
        m[1][0] = s;
        return GetRotateZMatrix(a);
    case 4:
        m[0][0] = a;
        m[1][1] = b;
        m[2][2] = d;
        return GetScaleMatrix(a, b, d);
    default:
        m[0][1] = a;
        m[0][2] = b;
        m[1][0] = d;
        m[1][2] = a;
        m[2][0] = b;
        m[2][1] = d;
        return GetCutMatrix(a, b, d, a, b, d);
    }
}

TEST(KarMatrix, CompositionsOfFactoriesMovePositionsLikePlainMatrices)
{
    TestRandom random(732);
    for (int run = 0, runs = testSteps(5000); run < runs; ++run) {
        Plain plain, factor, product;
        karMatrix composed = randomFactory(random, plain);
        for (unsigned steps = random.below(6); steps > 0; --steps) {
            composed *= randomFactory(random, factor);
            multiply(plain, factor, product);
            std::memcpy(plain, product, sizeof plain);
        }
        ASSERT_TRUE(holds(composed, plain)) << "seed 732, run " << run;
        const double x = random.between(-9.0, 9.0), y = random.between(-9.0, 9.0), z = random.between(-9.0, 9.0);
        double moved[3];
        for (int r = 0; r < 3; ++r)
            moved[r] = z * plain[r][2] + y * plain[r][1] + x * plain[r][0] + plain[3][r];
        kar3D_Point p(x, y, z);
        ASSERT_TRUE(lies(p * composed, moved[0], moved[1], moved[2])) << "seed 732, run " << run;
        ASSERT_TRUE(lies(kar3D_Point(p, &composed), moved[0], moved[1], moved[2]));
        ASSERT_TRUE(lies(p *= composed, moved[0], moved[1], moved[2]));
    }
}

TEST(KarMatrix, TransformationIsTranslationThenRotationThenScale)
{
    const karMatrix m = GetTransformationMatrix(1, 2, 3, 0.4, 0.5, 0.6, 7, 8, 9);
    karMatrix expected = GetTranslateMatrix(1, 2, 3);
    expected *= GetRotateMatrix(0.4, 0.5, 0.6);
    expected *= GetScaleMatrix(7, 8, 9);
    for (int i = 0; i < 16; ++i)
        EXPECT_TRUE(sameBits(m.GetData()[i], expected.GetData()[i])) << i;
    // The translation row goes through the rotation as a row vector and through the scale; the linear block scales the
    // coordinates first.
    const karMatrix turn = GetTransformationMatrix(1, 0, 0, 0, 0, pi / 2, 2, 3, 4);
    const kar3D_Point origin = kar3D_Point() * turn;
    EXPECT_NEAR(origin.x(), 0, 1e-15);
    EXPECT_NEAR(origin.y(), -3, 1e-15) << "(1, 0, 0) as a row by the rotation is (0, -1, 0), scaled (0, -3, 0)";
    const kar3D_Point p = kar3D_Point(1, 0, 0) * turn;
    EXPECT_NEAR(p.x(), 0, 1e-15);
    EXPECT_NEAR(p.y(), 2 - 3, 1e-15);
}

// Application to positions

TEST(Kar3DPoint, IsTurnedAndMovedByAMatrix)
{
    const kar3D_Point turned = kar3D_Point(1, 0, 0) * GetRotateZMatrix(pi / 2);
    EXPECT_NEAR(turned.x(), 0, 1e-16);
    EXPECT_EQ(turned.y(), 1);
    EXPECT_EQ(turned.z(), 0);
    EXPECT_NEAR((kar3D_Point(0, 1, 0) * GetRotateXMatrix(pi / 2)).z(), 1, 1e-15);
    EXPECT_NEAR((kar3D_Point(0, 0, 1) * GetRotateYMatrix(pi / 2)).x(), 1, 1e-15);
    EXPECT_TRUE(lies(kar3D_Point() * GetTranslateMatrix(1, 2, 3), 1, 2, 3));
    EXPECT_TRUE(lies(kar3D_Point(1, 2, 3) * GetScaleMatrix(2, 3, 4), 2, 6, 12));
}

TEST(Kar3DPoint, ReadsTheLinearBlockByRowsAndTheTranslationFromTheLastRow)
{
    const karMatrix m = matrix(4, 4, oneToSixteen);
    // x' = 5*3 + 3*2 + 2*1 + 13, y' = 5*7 + 3*6 + 2*5 + 14, z' = 5*11 + 3*10 + 2*9 + 15
    EXPECT_TRUE(lies(kar3D_Point(2, 3, 5) * m, 36, 77, 118));
    karMatrix other = m;
    for (int r = 1; r <= 4; ++r)
        other.SetValue(r, 4, notANumber);
    EXPECT_TRUE(lies(kar3D_Point(2, 3, 5) * other, 36, 77, 118)) << "the fourth column is never read";
}

TEST(Kar3DPoint, KeepsItselfOrBecomesNullWithAMatrixOfAnotherSize)
{
    const karMatrix identity3(3), wide(4, 3), high(3, 4), none;
    for (const karMatrix *m : {&identity3, &wide, &high, &none}) {
        kar3D_Point p(1, 2, 3);
        EXPECT_TRUE(lies(p * *m, 0, 0, 0));
        EXPECT_EQ(&(p *= *m), &p);
        EXPECT_TRUE(lies(p, 1, 2, 3));
        EXPECT_TRUE(lies(kar3D_Point(p, m), 1, 2, 3));
    }
    EXPECT_TRUE(lies(kar3D_Point(kar3D_Point(1, 2, 3), nullptr), 1, 2, 3));
}

TEST(Kar3DPoint, AMillionApplicationsAreThoseOfThePlainTranscription)
{
    GoldenRun run(733, 5000, 2204647181418496067u);
    Plain m;
    while (run.next()) {
        for (auto &row : m)
            for (double &element : row)
                element = mixedDouble(run.random);
        const karMatrix matrixOfBlock = fromPlain(m);
        for (int call = 0; call < 200; ++call) {
            const double v[3] = {mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
            kar3D_Point p(v[0], v[1], v[2]);
            p *= matrixOfBlock;
            run.code.add(p.x());
            run.code.add(p.y());
            run.code.add(p.z());
            for (int r = 0; r < 3; ++r)
                run.plain.add(v[2] * m[r][2] + v[1] * m[r][1] + v[0] * m[r][0] + m[3][r]);
        }
    }
}

TEST(KarMatrix, ProductsSumsAndScalingsAreThoseOfThePlainTranscription)
{
    GoldenRun run(734, 10000, 4249787655735869847u);
    const auto add = [&run](const karMatrix &m) {
        run.code.add(m.GetRows());
        run.code.add(m.GetColumns());
        for (int i = 0; i < m.GetRows() * m.GetColumns(); ++i)
            run.code.add(m.GetData()[i]);
    };
    while (run.next()) {
        const bool transformations = run.random.below(3) == 0;
        const int rows = transformations ? 4 : run.random.between(1, 5),
                  columns = transformations ? 4 : run.random.between(1, 5);
        const int otherRows = transformations ? 4 : run.random.between(1, 5);
        const int otherColumns = transformations ? 4 : run.random.between(1, 5);
        std::vector<double> a, b;
        for (int i = 0; i < rows * columns; ++i)
            a.push_back(mixedDouble(run.random));
        for (int i = 0; i < otherRows * otherColumns; ++i)
            b.push_back(mixedDouble(run.random));
        const karMatrix m = matrix(rows, columns, a), n = matrix(otherRows, otherColumns, b);
        const double f = mixedDouble(run.random);

        add(m * n);
        run.plain.add(rows);
        run.plain.add(otherColumns);
        for (int i = 0; i < rows; ++i)
            for (int j = 0; j < otherColumns; ++j) {
                double sum = 0.0;
                for (int k = 0; k < columns; ++k) {
                    const std::size_t at = static_cast<std::size_t>(otherColumns * k + j);
                    sum += a[static_cast<std::size_t>(columns * i + k)] * (at < b.size() ? b[at] : 0.0);
                }
                run.plain.add(sum);
            }
        karMatrix inPlace = m;
        inPlace *= n;
        karMatrix scaled = m;
        add(scaled *= f);
        add(m * f);
        for (int twice = 0; twice < 2; ++twice) {
            run.plain.add(rows);
            run.plain.add(columns);
            for (const double element : a)
                run.plain.add(element * f);
        }
        add(m + n);
        add(m - n);
        const bool same = rows == otherRows && columns == otherColumns;
        for (const double sign : {1.0, -1.0}) {
            run.plain.add(same ? rows : 0);
            run.plain.add(same ? columns : 0);
            for (std::size_t i = 0; same && i < a.size(); ++i)
                run.plain.add(a[i] + sign * b[i]);
        }
        ASSERT_TRUE(guarded(inPlace) && guarded(scaled)) << run;
        const karMatrix again = m * n;
        for (int i = 0; i < rows * otherColumns; ++i)
            ASSERT_TRUE(sameBits(inPlace.GetData()[i], again.GetData()[i])) << run;
    }
}

} // namespace
