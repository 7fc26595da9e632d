#include "karmatrix.h"

#include "karalloc.h"
#include "karsystem.h"

#include <cstring>

namespace {

constexpr char source[] = "moduls/dll_general/src/karmatrix";

// Each element of the product of two 4 by 4 matrices is the sum from 0.0 in the order of k, as of matrices of any size.
void multiply4(const double *a, const double *b, double *out)
{
    for (int i = 0; i < 4; ++i) {
        double sum[4] = {0.0, 0.0, 0.0, 0.0};
        for (int k = 0; k < 4; ++k)
            for (int j = 0; j < 4; ++j)
                sum[j] = sum[j] + (a[(4 * i) + k] * b[(4 * k) + j]);
        for (int j = 0; j < 4; ++j)
            out[(4 * i) + j] = sum[j];
    }
}

// A product of 0 columns with 1 row, or of columns with 0 rows.
bool isRefused(const karMatrix &a, const karMatrix &b) { return (a.GetColumns() == 0 ? 1 : 0) == b.GetRows(); }

karMatrix transformation(const double (&elements)[16])
{
    karMatrix result(4, 4);
    if (result.GetData())
        std::memcpy(result.GetData(), elements, sizeof elements);
    return result;
}

} // namespace

ObjektIdies karMatrix::GetType() const { return KAR_ID_MATRIX; }

// ---- Storage

void karMatrix::allocate()
{
    held = 0;
    data = nullptr;
    if (rows <= 0 || columns <= 0)
        return;
    const auto bytes = static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(columns) * sizeof(double);
    if (bytes > kar::largestObject)
        return;
    data = static_cast<double *>(KarAllocMemory(static_cast<unsigned>(bytes)));
    if (data)
        held = rows * columns;
}

void karMatrix::release()
{
    if (held > 0)
        KarDellocMemory(data);
    held = 0;
}

void karMatrix::_InitData()
{
    release();
    if (rows <= 0 || columns <= 0)
        return; // the address stays as it was
    allocate();
    if (held > 0)
        std::memset(data, 0, sizeof(double) * static_cast<unsigned>(held));
}

karMatrix karMatrix::sized(int newRows, int newColumns)
{
    karMatrix result;
    result.rows = newRows;
    result.columns = newColumns;
    result.allocate();
    return result;
}

// ---- Construction and assignment

karMatrix::karMatrix(int n) : karMatrix(n, n)
{
    for (int i = 0; n > 0 && i < held; i += n + 1)
        data[i] = 1.0;
}

karMatrix::karMatrix(int rowCount, int columnCount) : rows(kar::wrapAbs(rowCount)), columns(kar::wrapAbs(columnCount))
{
    _InitData();
}

karMatrix::karMatrix(const karMatrix &o) : rows(o.rows), columns(o.columns)
{
    allocate();
    for (int i = 0; i < held; ++i)
        data[i] = o.at(i);
}

karMatrix::karMatrix(karMatrix &&o) noexcept : rows(o.rows), columns(o.columns), data(o.data), held(o.held)
{
    o.forget();
}

karMatrix::karMatrix(const kar2DVector &v) : karMatrix(1, 2)
{
    if (held > 0) {
        data[0] = v.GetX();
        data[1] = v.GetY();
    }
}

karMatrix::karMatrix(const kar3DVector &v) : karMatrix(1, 3)
{
    if (held > 0) {
        data[0] = v.GetX();
        data[1] = v.GetY();
        data[2] = v.GetZ();
    }
}

karMatrix &karMatrix::operator=(const karMatrix &o)
{
    if (this == &o)
        return *this;
    release();
    rows = o.rows;
    columns = o.columns;
    allocate();
    for (int i = 0; i < held; ++i)
        data[i] = o.at(i);
    return *this;
}

karMatrix &karMatrix::operator=(karMatrix &&o) noexcept
{
    if (this == &o)
        return *this;
    release();
    rows = o.rows;
    columns = o.columns;
    data = o.data;
    held = o.held;
    o.forget();
    return *this;
}

// ---- Parts

karMatrix karMatrix::GetRowMatrix(int r) const
{
    if (r <= 0 || r > rows)
        return karMatrix();
    karMatrix result = sized(1, columns);
    for (int c = 0; c < result.held; ++c)
        result.data[c] = at((static_cast<std::int64_t>(columns) * r) + c);
    return result;
}

karMatrix karMatrix::GetColumnMatrix(int c) const
{
    if (c <= 0 || c > columns)
        return karMatrix();
    karMatrix result = sized(rows, 1);
    for (int i = 0; i < result.held; ++i)
        result.data[i] = at((static_cast<std::int64_t>(rows) * i) + c);
    return result;
}

// ---- Product

karMatrix karMatrix::operator*(const karMatrix &o) const
{
    if (isRefused(*this, o))
        return karMatrix();
    karMatrix result = sized(rows, o.columns);
    if (result.held == 0)
        return result;
    if (isTransformation() && o.isTransformation() && held > 0 && o.held > 0) {
        multiply4(data, o.data, result.data);
        return result;
    }
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < o.columns; ++j) {
            double sum = 0.0;
            for (int k = 0; k < columns; ++k)
                sum = sum + (at((static_cast<std::int64_t>(columns) * i) + k) *
                             o.at((static_cast<std::int64_t>(o.columns) * k) + j));
            result.data[(static_cast<std::int64_t>(o.columns) * i) + j] = sum;
        }
    }
    return result;
}

karMatrix &karMatrix::operator*=(const karMatrix &o)
{
    if (isRefused(*this, o))
        return *this;
    return *this = *this * o;
}

// ---- Elements one by one

karMatrix &karMatrix::operator*=(const double &factor)
{
    const double f = factor; // may be an element of this matrix
    for (int i = 0; i < held; ++i)
        data[i] = data[i] * f;
    return *this;
}

karMatrix karMatrix::operator*(const double &factor) const
{
    karMatrix result = sized(rows, columns);
    for (int i = 0; i < result.held; ++i)
        result.data[i] = at(i) * factor;
    return result;
}

karMatrix &karMatrix::operator+=(const karMatrix &o)
{
    if (!sameSizes(o))
        return *this;
    for (int i = 0; i < held; ++i)
        data[i] = data[i] + o.at(i);
    return *this;
}

karMatrix &karMatrix::operator-=(const karMatrix &o)
{
    if (!sameSizes(o))
        return *this;
    for (int i = 0; i < held; ++i)
        data[i] = data[i] - o.at(i);
    return *this;
}

karMatrix karMatrix::operator+(const karMatrix &o) const
{
    if (!sameSizes(o))
        return karMatrix();
    karMatrix result = sized(rows, columns);
    for (int i = 0; i < result.held; ++i)
        result.data[i] = at(i) + o.at(i);
    return result;
}

karMatrix karMatrix::operator-(const karMatrix &o) const
{
    if (!sameSizes(o))
        return karMatrix();
    karMatrix result = sized(rows, columns);
    for (int i = 0; i < result.held; ++i)
        result.data[i] = at(i) - o.at(i);
    return result;
}

karMatrix karMatrix::operator-() const
{
    karMatrix result = sized(rows, columns);
    for (int i = 0; i < result.held; ++i)
        result.data[i] = -at(i);
    return result;
}

karMatrix karMatrix::Transpose() const
{
    if (rows != columns)
        return karMatrix();
    karMatrix result = sized(rows, columns);
    if (result.held == 0)
        return result;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < rows; ++j)
            result.data[(rows * i) + j] = at((static_cast<std::int64_t>(rows) * j) + i);
    return result;
}

// ---- Declared, not made

karMatrix karMatrix::Inverse() const
{
    if (rows != columns)
        return *this;
    _notready("karMatrix::Inverse()", source, 277);
    karMatrix result;
    result.SetData(rows, columns);
    return result;
}

karMatrix karMatrix::SolveLinear(const karMatrix &b) const
{
    if (rows != columns || b.columns != 1 || b.rows != rows)
        return karMatrix();
    _notready("karMatrix::SolveLinear()", source, 304);
    karMatrix result;
    result.SetData(rows, 1);
    return result;
}

// ---- Transformations

// clang-format off
karMatrix GetTranslateMatrix(const double &x, const double &y, const double &z)
{
    return transformation({1, 0, 0, 0,
                           0, 1, 0, 0,
                           0, 0, 1, 0,
                           x, y, z, 1});
}

karMatrix GetTranslateXMatrix(const double &x) { return GetTranslateMatrix(x, 0.0, 0.0); }
karMatrix GetTranslateYMatrix(const double &y) { return GetTranslateMatrix(0.0, y, 0.0); }
karMatrix GetTranslateZMatrix(const double &z) { return GetTranslateMatrix(0.0, 0.0, z); }

karMatrix GetRotateXMatrix(const double &a)
{
    const double c = std::cos(a);
    const double s = std::sin(a);
    return transformation({1, 0,  0, 0,
                           0, c, -s, 0,
                           0, s,  c, 0,
                           0, 0,  0, 1});
}

karMatrix GetRotateYMatrix(const double &a)
{
    const double c = std::cos(a);
    const double s = std::sin(a);
    return transformation({ c, 0, s, 0,
                            0, 1, 0, 0,
                           -s, 0, c, 0,
                            0, 0, 0, 1});
}

karMatrix GetRotateZMatrix(const double &a)
{
    const double c = std::cos(a);
    const double s = std::sin(a);
    return transformation({c, -s, 0, 0,
                           s,  c, 0, 0,
                           0,  0, 1, 0,
                           0,  0, 0, 1});
}

karMatrix GetRotateMatrix(const double &a, const double &b, const double &c)
{
    const double cA = std::cos(a);
    const double sA = std::sin(a);
    const double cB = std::cos(b);
    const double sB = std::sin(b);
    const double cC = std::cos(c);
    const double sC = std::sin(c);
    return transformation({
        cC * cB,                       -sC * cB,                      sB,       0,
        ((cC * sB) * sA) + (sC * cA),  (cC * cA) - ((sC * sB) * sA),  -cB * sA, 0,
        (sC * sA) - ((cC * sB) * cA),  ((sC * sB) * cA) + (cC * sA),  cB * cA,  0,
        0,                             0,                             0,        1});
}

karMatrix GetScaleMatrix(const double &x, const double &y, const double &z)
{
    return transformation({x, 0, 0, 0,
                           0, y, 0, 0,
                           0, 0, z, 0,
                           0, 0, 0, 1});
}

karMatrix GetScaleXMatrix(const double &x) { return GetScaleMatrix(x, 1.0, 1.0); }
karMatrix GetScaleYMatrix(const double &y) { return GetScaleMatrix(1.0, y, 1.0); }
karMatrix GetScaleZMatrix(const double &z) { return GetScaleMatrix(1.0, 1.0, z); }

karMatrix GetCutMatrix(const double &a, const double &b, const double &c, const double &d, const double &e,
                       const double &f)
{
    return transformation({1, a, b, 0,
                           c, 1, d, 0,
                           e, f, 1, 0,
                           0, 0, 0, 1});
}

karMatrix GetCutXMatrix(const double &a, const double &b) { return GetCutMatrix(a, b, 0.0, 0.0, 0.0, 0.0); }
karMatrix GetCutYMatrix(const double &a, const double &b) { return GetCutMatrix(0.0, 0.0, a, b, 0.0, 0.0); }
karMatrix GetCutZMatrix(const double &a, const double &b) { return GetCutMatrix(0.0, 0.0, 0.0, 0.0, a, b); }
// clang-format on

karMatrix GetTransformationMatrix(const double &tx, const double &ty, const double &tz, const double &rx,
                                  const double &ry, const double &rz, const double &sx, const double &sy,
                                  const double &sz)
{
    karMatrix result = GetTranslateMatrix(tx, ty, tz);
    result *= GetRotateMatrix(rx, ry, rz);
    result *= GetScaleMatrix(sx, sy, sz);
    return result;
}
