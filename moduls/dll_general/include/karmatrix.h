/// \file
/// A dense matrix of doubles, the 4 by 4 transformations of space made with it, and their application to positions.
#ifndef KAR_MATRIX_H
#define KAR_MATRIX_H

#include "kar3dpoint.h"
#include "karenum.h"
#include "karexport.h"
#include "karnumeric.h"
#include "karvector.h"

#include <cstdint>

/// A matrix of doubles, stored by rows: element (r, c), counted from 0, is `GetData()[columns * r + c]`. The array
/// comes from `KarAllocMemory`. Nothing is reported: a bad request leaves the receiver as it is or gives an empty
/// matrix, that is one of 0 rows, 0 columns and without an array.
///
/// Where an allocation fails, or rows * columns doubles don't fit 32 bits, the matrix keeps its sizes and has a null
/// array: its elements read as 0, stores are dropped. A result takes the sizes of its operands as they are, negative
/// ones from `SetData` included, and then has no array either.
///
/// Rows and columns of the arguments are counted from 1.
class KAR_API karMatrix {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const; ///< 119.
    /// \}

    /// \name Construction
    /// \{
    karMatrix() = default; ///< Empty.
    /// The identity of |n| rows and columns. Note: all 0 for a negative n.
    karMatrix(int n);
    /// |rows| by |columns| elements 0.
    karMatrix(int rows, int columns);
    karMatrix(const karMatrix &o);     ///< A deep copy.
    karMatrix(karMatrix &&o) noexcept; ///< Takes the array; `o` becomes empty.
    karMatrix(const kar2DVector &v);   ///< 1 row: x, y.
    karMatrix(const kar3DVector &v);   ///< 1 row: x, y, z.
    ~karMatrix() { release(); }        ///< Frees the array.
    /// \}

    /// \name Assignment
    /// A matrix assigned to itself stays as it is.
    /// \{
    karMatrix &operator=(const karMatrix &o);     ///< A deep copy; the old array goes.
    karMatrix &operator=(karMatrix &&o) noexcept; ///< Takes the array; `o` becomes empty.
    /// \}

    /// \name Reading
    /// \{
    int GetRows() const { return rows; }       ///< Rows as given, also negative ones from `SetData`.
    int GetColumns() const { return columns; } ///< Columns, likewise.
    /// The array itself. Note: after `SetData` with a size that is not positive, the address of an array that is gone.
    double *GetData() const { return data; }
    /// Address of the element in row r and column c; null without an array, for r - 1 > rows and for c - 1 > columns.
    /// Note: the limits are one beyond the last row and column, and there is no lower one. The address is computed for
    /// every other pair; the caller sees to it that it lies inside.
    double *GetValue(int r, int c) const { return _GetValue(r, c); }
    /// Row r + 1 as a matrix of 1 row; empty unless 0 < r <= rows.
    /// Note: r is tested as if counted from 1 and used as counted from 0. `GetRowMatrix(1)` is the second row, the
    /// first can't be fetched, `GetRowMatrix(rows)` is all 0.
    karMatrix GetRowMatrix(int r) const;
    /// A matrix of 1 column with the elements `data[rows * i + c]`, 0 beyond the array; empty unless 0 < c <= columns.
    /// Note: c is tested as if counted from 1 and used as counted from 0, and the stride is the number of rows. So this
    /// is column c + 1 of a square matrix, and no column of any other.
    karMatrix GetColumnMatrix(int c) const;
    /// \}

    /// \name Changing
    /// \{

    /// Stores `v` at the address of `GetValue`, if that lies in the array.
    karMatrix &SetValue(int r, int c, double v)
    {
        const std::int64_t i = index(r, c);
        if (hasAddress(r, c) && i >= 0 && i < held)
            data[i] = v;
        return *this;
    }
    /// Stores the sizes unchanged and starts with a new array of 0.
    /// Note: with a size that is not positive the old array is freed and `GetData` keeps its stale address. Nothing in
    /// the library reads, writes or frees it any more.
    karMatrix &SetData(int newRows, int newColumns)
    {
        rows = newRows;
        columns = newColumns;
        _InitData();
        return *this;
    }
    /// \}

    /// \name Arithmetic
    /// \{

    /// Matrix product: element (i, j) is the sum over k of this[i][k] * o[k][j], from 0.0 on in the order of k.
    /// Note: sizes that don't conform are no reason to refuse; k runs over the columns of this matrix, and elements
    /// beyond the array of `o` count as 0. Only 0 columns with 1 row of `o`, or columns with 0 rows of `o`, are
    /// refused: `*=` then leaves the matrix as it is, `*` gives an empty one.
    karMatrix &operator*=(const karMatrix &o);
    karMatrix operator*(const karMatrix &o) const;   ///< \overload
    karMatrix &operator*=(const double &factor);     ///< Each element times `factor`.
    karMatrix operator*(const double &factor) const; ///< Each element times `factor`.
    karMatrix &operator+=(const karMatrix &o);       ///< Unchanged unless both sizes agree.
    karMatrix &operator-=(const karMatrix &o);       ///< \overload
    karMatrix operator+(const karMatrix &o) const;   ///< Empty unless both sizes agree.
    karMatrix operator-(const karMatrix &o) const;   ///< \overload
    karMatrix operator-() const;                     ///< Each element negated.
    karMatrix operator+() const { return *this; }    ///< A copy.
    karMatrix Transpose() const;                     ///< Empty if the matrix is not square.
    /// A copy of a matrix that is not square.
    /// Note: nothing is inverted. Of a square matrix it gives 0 in the same size and calls `_notready`.
    karMatrix Inverse() const;
    /// Empty unless the matrix is square and `b` has one column and as many rows.
    /// Note: nothing is solved. Otherwise it gives a column of as many 0 and calls `_notready`.
    karMatrix SolveLinear(const karMatrix &b) const;
    /// \}

protected:
    /// As `GetValue`.
    double *_GetValue(int r, int c) const
    {
        if (!hasAddress(r, c))
            return nullptr;
        // The address may lie outside of the array, where pointer arithmetic is not defined.
        const auto offset = static_cast<std::uintptr_t>(index(r, c)) * sizeof(double);
        const auto address = reinterpret_cast<std::uintptr_t>(data) + offset;
        return reinterpret_cast<double *>(address); // NOLINT(performance-no-int-to-ptr): it may lie outside the array
    }
    /// Frees the array; with positive sizes a new one is filled with 0.
    void _InitData();

private:
    friend class kar3D_Point;

    bool hasAddress(int r, int c) const { return data && kar::wrapSub(r, 1) <= rows && kar::wrapSub(c, 1) <= columns; }
    int index(int r, int c) const
    {
        return kar::wrapAdd(kar::wrapMul(columns, kar::wrapSub(r, 1)), kar::wrapSub(c, 1));
    }
    /// Element at a flat index, 0 beyond the array.
    double at(std::int64_t i) const { return i >= 0 && i < held ? data[i] : 0.0; }
    bool sameSizes(const karMatrix &o) const { return rows == o.rows && columns == o.columns; }
    /// A matrix with these sizes, taken as they are, whose array is not filled yet.
    static karMatrix sized(int newRows, int newColumns);
    void allocate();
    void release();
    /// Becomes empty without a release: another matrix has taken the array.
    void forget()
    {
        rows = 0;
        columns = 0;
        data = nullptr;
        held = 0;
    }
    bool isTransformation() const { return (rows == 4) & (columns == 4); }

    int rows = 0;
    int columns = 0;
    double *data = nullptr;
    // Elements of the array that is owned now. 0 marks a null or stale address; every loop and every release asks it.
    int held = 0;
};

/// \name Transformations
/// Each gives 4 rows and 4 columns. Angles are radians, counter-clockwise seen along the axis towards the origin in a
/// right-handed system. See `kar3D_Point::operator*=` for what they do to a position.
/// \{
KAR_API karMatrix GetTranslateMatrix(const double &x, const double &y, const double &z); ///< x, y, z in the last row.
KAR_API karMatrix GetTranslateXMatrix(const double &x);                                  ///< Along x alone.
KAR_API karMatrix GetTranslateYMatrix(const double &y);                                  ///< Along y alone.
KAR_API karMatrix GetTranslateZMatrix(const double &z);                                  ///< Along z alone.
KAR_API karMatrix GetRotateXMatrix(const double &a); ///< [1 0 0] [0 cos -sin] [0 sin cos].
KAR_API karMatrix GetRotateYMatrix(const double &a); ///< [cos 0 sin] [0 1 0] [-sin 0 cos].
KAR_API karMatrix GetRotateZMatrix(const double &a); ///< [cos -sin 0] [sin cos 0] [0 0 1].
/// `GetRotateXMatrix(a) * GetRotateYMatrix(b) * GetRotateZMatrix(c)` in closed form: a position turns about z first.
KAR_API karMatrix GetRotateMatrix(const double &a, const double &b, const double &c);
KAR_API karMatrix GetScaleMatrix(const double &x, const double &y, const double &z); ///< The diagonal x, y, z, 1.
KAR_API karMatrix GetScaleXMatrix(const double &x);                                  ///< The diagonal x, 1, 1, 1.
KAR_API karMatrix GetScaleYMatrix(const double &y);                                  ///< The diagonal 1, y, 1, 1.
KAR_API karMatrix GetScaleZMatrix(const double &z);                                  ///< The diagonal 1, 1, z, 1.
/// The shear [1 a b] [c 1 d] [e f 1].
KAR_API karMatrix GetCutMatrix(const double &a, const double &b, const double &c, const double &d, const double &e,
                               const double &f);
KAR_API karMatrix GetCutXMatrix(const double &a, const double &b); ///< a and b in the first row.
KAR_API karMatrix GetCutYMatrix(const double &a, const double &b); ///< In the second row.
KAR_API karMatrix GetCutZMatrix(const double &a, const double &b); ///< In the third row.
/// Translation, `*=` rotation, `*=` scale.
/// Note: a position is scaled first and turned second, while the translation row goes through rotation and scale as a
/// row vector. So (tx, ty, tz) is not where the origin comes to lie.
KAR_API karMatrix GetTransformationMatrix(const double &tx, const double &ty, const double &tz, const double &rx,
                                          const double &ry, const double &rz, const double &sx, const double &sy,
                                          const double &sz);
/// \}

namespace kar {

/// The elements of a 4 by 4 matrix. Read through this type they can't be places of a position, so that a loop over
/// positions keeps them in registers while it stores.
struct TransformationElements {
    double at[4][4]; ///< rows first, counted from 0
};

/// What a 4 by 4 matrix without an array reads as.
constexpr TransformationElements noElements = {};

} // namespace kar

inline kar3D_Point &kar3D_Point::operator*=(const karMatrix &matrix)
{
    // The elements are read whether or not they are needed and without branches on the way: so a loop reads them once,
    // in front.
    const bool fits = matrix.isTransformation();
    const bool readable = fits & (matrix.data != nullptr);
    const auto &M = *(readable ? reinterpret_cast<const kar::TransformationElements *>(matrix.data) : &kar::noElements);
    const double oldX = x();
    const double oldY = y();
    const double oldZ = z();
    const double newX = (((oldZ * M.at[0][2]) + (oldY * M.at[0][1])) + (oldX * M.at[0][0])) + M.at[3][0];
    const double newY = (((oldZ * M.at[1][2]) + (oldY * M.at[1][1])) + (oldX * M.at[1][0])) + M.at[3][1];
    const double newZ = (((oldZ * M.at[2][2]) + (oldY * M.at[2][1])) + (oldX * M.at[2][0])) + M.at[3][2];
    if (fits)
        store(newX, newY, newZ);
    return *this;
}

inline kar3D_Point kar3D_Point::operator*(const karMatrix &matrix) const
{
    if (!matrix.isTransformation())
        return kar3D_Point();
    return kar3D_Point(*this) *= matrix;
}

inline kar3D_Point::kar3D_Point(const kar3D_Point &p, const karMatrix *matrix) : kar3D_Point(p)
{
    if (matrix)
        *this *= *matrix;
}

#endif
