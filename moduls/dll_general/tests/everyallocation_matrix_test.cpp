// Matrices and what makes them, with each allocation failing in turn.
#include "karmatrix.h"

#include "karsolve.h"
#include "kartransformationinfo.h"

#include "everyallocation.h"

#include <cmath>

namespace {

std::string read(karMatrix &m)
{
    std::string text = std::to_string(m.GetRows()) + 'x' + std::to_string(m.GetColumns()) + ':';
    if (!m.GetData()) { // is asked for its elements, and stored to
        EXPECT_EQ(m.SetValue(1, 1, 5.0).GetValue(1, 1), nullptr);
        EXPECT_EQ((m *= 2.0).GetData(), nullptr);
        EXPECT_EQ((m += m).GetData(), nullptr);
        const karMatrix copy(m); // an array of 0
        EXPECT_TRUE(copy.GetData() && copy.GetData()[0] == 0.0);
        kar3D_Point p(1.0, 2.0, 3.0);
        p *= m;
        const double kept = m.GetRows() == 4 && m.GetColumns() == 4 ? 0.0 : 2.0;
        EXPECT_EQ(p.y(), kept);
        return text + " none";
    }
    for (int i = 0; i < m.GetRows() * m.GetColumns(); ++i)
        text += ' ' + std::to_string(std::lround(m.GetData()[i]));
    return text;
}

karMatrix counted(int rows, int columns)
{
    karMatrix m(rows, columns);
    for (int i = 0; i < rows * columns; ++i)
        m.GetData()[i] = i + 1;
    return m;
}

#define MATRIX_OF(rows, columns, ...)                                                                                  \
    [](Span &span) {                                                                                                   \
        const karMatrix m = counted(rows, columns);                                                                    \
        span.begin();                                                                                                  \
        karMatrix result = __VA_ARGS__;                                                                                \
        span.end();                                                                                                    \
        EXPECT_EQ(m.GetData()[1], 2.0);                                                                                \
        return read(result);                                                                                           \
    }
#define ON_MATRIX(...)                                                                                                 \
    [](Span &span) {                                                                                                   \
        const karMatrix other = counted(2, 2);                                                                         \
        karMatrix m = counted(2, 2);                                                                                   \
        span.begin();                                                                                                  \
        m __VA_ARGS__;                                                                                                 \
        span.end();                                                                                                    \
        return read(m);                                                                                                \
    }
// 0 as an angle and 1 as a scale give the identity but for what is given.
#define TRANSFORMATION(...)                                                                                            \
    [](Span &span) {                                                                                                   \
        [[maybe_unused]] const karTransformationInfo info;                                                             \
        span.begin();                                                                                                  \
        karMatrix result = __VA_ARGS__;                                                                                \
        span.end();                                                                                                    \
        return read(result);                                                                                           \
    }

std::string matrixWithSizes(Span &span)
{
    karMatrix m = counted(2, 2);
    span.begin();
    m.SetData(1, 2);
    span.end();
    return read(m);
}

std::string rootsOfAPolynomial(Span &span) // x * x - 3 * x: 3 and 0
{
    karMatrix coefficients(1, 2);
    coefficients.SetValue(1, 1, 1.0).SetValue(1, 2, -3.0);
    span.begin();
    karMatrix roots = Solve_Polynom_Roots(coefficients, 0.0, 0.0);
    span.end();
    return roots.GetData() ? "sum " + std::to_string(std::lround(roots.GetData()[0] + roots.GetData()[1]))
                           : read(roots);
}

const Operation matrices[] = {
    {"Identity", MATRIX_OF(2, 2, karMatrix(2)), "2x2: 1 0 0 1", {"2x2: none"}, {}},
    {"Zero", MATRIX_OF(2, 2, karMatrix(1, 2)), "1x2: 0 0", {"1x2: none"}, {}},
    {"Large",
     MATRIX_OF(2, 2, karMatrix(20, 20).Transpose() * 2.0 * karMatrix(20, 1)), // four matrices before the last
     "20x1: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
     {"20x1: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "20x1: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
      "20x1: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "20x1: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "20x1: none"},
     {"20x1: none", "20x1: none", "20x1: none", "20x1: none", "20x1: none"},
     Operation::large},
    {"OfPlaneVector", MATRIX_OF(2, 2, karMatrix(kar2DVector(1.0, 2.0, false))), "1x2: 1 2", {"1x2: none"}, {}},
    {"OfSpaceVector", MATRIX_OF(2, 2, karMatrix(kar3DVector(1.0, 2.0, 3.0, false))), "1x3: 1 2 3", {"1x3: none"}, {}},
    {"Copy", MATRIX_OF(2, 2, karMatrix(m)), "2x2: 1 2 3 4", {"2x2: none"}, {}},
    {"Row", MATRIX_OF(2, 2, m.GetRowMatrix(1)), "1x2: 3 4", {"1x2: none"}, {}},
    {"Column", MATRIX_OF(2, 2, m.GetColumnMatrix(1)), "2x1: 2 4", {"2x1: none"}, {}},
    {"Product", MATRIX_OF(2, 2, m *m), "2x2: 7 10 15 22", {"2x2: none"}, {}},
    {"Multiple", MATRIX_OF(2, 2, m * 2.0), "2x2: 2 4 6 8", {"2x2: none"}, {}},
    {"Sum", MATRIX_OF(2, 2, m + m), "2x2: 2 4 6 8", {"2x2: none"}, {}},
    {"Difference", MATRIX_OF(2, 2, m - m), "2x2: 0 0 0 0", {"2x2: none"}, {}},
    {"Negative", MATRIX_OF(2, 2, -m), "2x2: -1 -2 -3 -4", {"2x2: none"}, {}},
    {"Positive", MATRIX_OF(2, 2, +m), "2x2: 1 2 3 4", {"2x2: none"}, {}},
    {"Transposed", MATRIX_OF(2, 2, m.Transpose()), "2x2: 1 3 2 4", {"2x2: none"}, {}},
    {"InverseOfASquare", MATRIX_OF(2, 2, m.Inverse()), "2x2: 0 0 0 0", {"2x2: none"}, {}},
    {"InverseOfAnother", MATRIX_OF(1, 2, m.Inverse()), "1x2: 1 2", {"1x2: none"}, {}},
    {"Linear", // the column and the result
     MATRIX_OF(2, 2, m.SolveLinear(karMatrix(2, 1))),
     "2x1: 0 0",
     {"2x1: 0 0", "2x1: none"},
     {"2x1: none", "2x1: none"}},
    {"Assign", ON_MATRIX(= other), "2x2: 1 2 3 4", {"2x2: none"}, {}},
    {"MultiplyBy", ON_MATRIX(*= other), "2x2: 7 10 15 22", {"2x2: none"}, {}},
    {"AddMultiple", ON_MATRIX(+= other * 2.0), "2x2: 3 6 9 12", {"2x2: 1 2 3 4"}, {}},
    {"SubtractMultiple", ON_MATRIX(-= other * 2.0), "2x2: -1 -2 -3 -4", {"2x2: 1 2 3 4"}, {}},
    {"Sizes", matrixWithSizes, "1x2: 0 0", {"1x2: none"}, {}},
    {"RootsOfAPolynomial", // the roots and two rows to work in
     rootsOfAPolynomial,
     "sum 3",
     {"2x2: none", "sum 0", "sum 0"},
     {}},
};
INSTANTIATE_TEST_SUITE_P(Matrices, EveryAllocation, ::testing::ValuesIn(matrices), nameOf);

constexpr const char *identity = "4x4: 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1";
constexpr const char *zero = "4x4: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
constexpr const char *none = "4x4: none";
constexpr const char *moved = "4x4: 1 0 0 0 0 1 0 0 0 0 1 0 5 0 0 1";

const Operation transformations[] = {
    {"Translate", TRANSFORMATION(GetTranslateMatrix(5.0, 0.0, 0.0)), moved, {none}, {}},
    {"TranslateX", TRANSFORMATION(GetTranslateXMatrix(5.0)), moved, {none}, {}},
    {"TranslateY", TRANSFORMATION(GetTranslateYMatrix(0.0)), identity, {none}, {}},
    {"TranslateZ", TRANSFORMATION(GetTranslateZMatrix(0.0)), identity, {none}, {}},
    {"Rotate", TRANSFORMATION(GetRotateMatrix(0.0, 0.0, 0.0)), identity, {none}, {}},
    {"RotateX", TRANSFORMATION(GetRotateXMatrix(0.0)), identity, {none}, {}},
    {"RotateY", TRANSFORMATION(GetRotateYMatrix(0.0)), identity, {none}, {}},
    {"RotateZ", TRANSFORMATION(GetRotateZMatrix(0.0)), identity, {none}, {}},
    {"Scale", TRANSFORMATION(GetScaleMatrix(1.0, 1.0, 1.0)), identity, {none}, {}},
    {"ScaleX", TRANSFORMATION(GetScaleXMatrix(1.0)), identity, {none}, {}},
    {"ScaleY", TRANSFORMATION(GetScaleYMatrix(1.0)), identity, {none}, {}},
    {"ScaleZ", TRANSFORMATION(GetScaleZMatrix(1.0)), identity, {none}, {}},
    {"Cut", TRANSFORMATION(GetCutMatrix(0.0, 0.0, 0.0, 0.0, 0.0, 0.0)), identity, {none}, {}},
    {"CutX", TRANSFORMATION(GetCutXMatrix(0.0, 0.0)), identity, {none}, {}},
    {"CutY", TRANSFORMATION(GetCutYMatrix(0.0, 0.0)), identity, {none}, {}},
    {"CutZ", TRANSFORMATION(GetCutZMatrix(0.0, 0.0)), identity, {none}, {}},
    {"Whole", // translation, rotation, their product, scale, the product: a factor without elements counts as 0
     TRANSFORMATION(GetTransformationMatrix(5.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0, 1.0, 1.0)),
     moved,
     {zero, zero, zero, zero, none},
     {none, none, none, none, none}},
    {"OfParameters",
     TRANSFORMATION(info.GetTransformationMatrix()),
     identity,
     {zero, zero, zero, zero, none},
     {none, none, none, none, none}},
    {"TranslateByParameters", TRANSFORMATION(info.GetTranslateMatrix()), identity, {none}, {}},
    {"RotateByParameters", TRANSFORMATION(info.GetRotateMatrix()), identity, {none}, {}},
    {"ScaleByParameters", TRANSFORMATION(info.GetScaleMatrix()), identity, {none}, {}},
    {"CutByParameters", TRANSFORMATION(info.GetCutMatrix()), identity, {none}, {}},
};
INSTANTIATE_TEST_SUITE_P(Transformations, EveryAllocation, ::testing::ValuesIn(transformations), nameOf);

} // namespace
