#include "karsolve.h"

#include "karmatrix.h"
#include "karnumeric.h"
#include "realpair.h"

#include <algorithm>

using kar::lengthTolerance;

bool Solve_2x2Matrix(const double &a, const double &b, const double &c, const double &d, const double &e,
                     const double &f, double &x, double &y)
{
    const double D = (a * d) - (b * c);
    const double newX = ((d * e) - (b * f)) / D;
    const double newY = ((a * f) - (c * e)) / D;
    x = newX;
    y = newY;
    return true;
}

double Calculate_Determinante2(const double &a, const double &b, const double &c, const double &d)
{
    return (a * d) - (b * c);
}

double Calculate_Determinante3(const double &a, const double &b, const double &c, const double &d, const double &e,
                               const double &f, const double &g, const double &h, const double &i)
{
    const double positive = (((a * e) * i) + ((c * d) * h)) + ((b * f) * g);
    return ((positive - ((a * f) * h)) - ((b * d) * i)) - ((c * e) * g);
}

int gausstridiag(double (*const A)[2], double *const b, int n)
{
    if (n == 1) {
        if (A[0][0] == 0.0)
            return 0;
        b[0] = b[0] / A[0][0];
        return 1;
    }
    if (n != 2)
        return 0;

    const int top = std::fabs(A[1][0]) > std::fabs(A[0][0]) ? 1 : 0;
    const double *const pivot = A[top];
    const double *const other = A[1 - top];
    if (pivot[0] == 0.0)
        return 0;
    const double factor = other[0] / pivot[0];
    const double last = other[1] - (factor * pivot[1]);
    const double right = b[1 - top] - (factor * b[top]);
    if (last == 0.0)
        return 0;
    const double second = right / last;
    const double sum = 0.0 + (second * pivot[1]); // a sum starts at 0, so a product of -0 counts as 0
    b[0] = (b[top] - sum) / pivot[0];
    b[1] = second;
    return 1;
}

int Solve_SquareRoots(const double &a, const double &b, const double &c, double &x1, double &x2)
{
    if (std::fabs(a) >= lengthTolerance) {
        const double D = (b * b) - ((4 * a) * c);
        if (D < 0)
            return 0; // a complex pair: the outputs stay as they were
        const kar::RealPair quotients = kar::RealPair{-b, std::sqrt(std::fabs(D))} / (2 * a);
        const double m = quotients[0];
        const double h = quotients[1];
        x1 = h + m;
        x2 = m - h;
        return 1;
    }
    if (std::fabs(b) >= lengthTolerance) { // linear; the second root is a plain zero
        x1 = -c / b;
        x2 = 0.0;
        return 1;
    }
    x1 = x2 = 0.0; // no equation left
    return 0;
}

void Solve_SquareRoots(const double &p, const double &q, double &re1, double &im1, double &re2, double &im2)
{
    const double D = (p * p) - (4 * q);
    const double m = -0.5 * p;
    const double h = 0.5 * std::sqrt(std::fabs(D));
    if (D >= 0) { // two real roots
        re1 = h + m;
        im1 = 0.0;
        re2 = m - h;
        im2 = 0.0;
    } else { // a complex pair, or not a number
        re1 = m;
        im1 = h;
        re2 = m;
        im2 = -h;
    }
}

void Solve_SquareRoots(const karComplex &p, const karComplex &q, karComplex &x1, karComplex &x2)
{
    const double squareReal = (p.GetReal() * p.GetReal()) - (p.GetImag() * p.GetImag());
    const double squareImag = (p.GetImag() * p.GetReal()) + (p.GetReal() * p.GetImag());
    const karComplex w(squareReal - (4 * q.GetReal()), squareImag - (4 * q.GetImag()));
    const karComplex S = w.sqr();
    const karComplex second = (-p - S) / 2.0;
    x1 = (S - p) / 2.0;
    x2 = second;
}

int CalculateRoots(const double &a, const double &b, const double &c, double &x1, double &x2)
{
    const double t = b / a;
    const double w = ((t * t) * 0.25) - (c / a);
    if (std::fabs(w) < lengthTolerance) {
        x1 = x2 = -0.5 * t;
        return 1;
    }
    if (w > 0) {
        const double s = std::sqrt(w);
        x1 = s - (0.5 * t);
        x2 = (-0.5 * t) - s;
        return 2;
    }
    x1 = x2 = 0.0; // a complex pair, or not a number
    return 0;
}

namespace {

/// The entries 0 to `count` - 1. Any other reads as 0, and a store there is dropped.
template <class Number>
class GuardedRow {
public:
    GuardedRow(Number *entries, int count) : first(entries), size(count) {}
    Number get(int index) const { return has(index) ? first[index] : Number(); }
    void set(int index, const Number &value) const
    {
        if (has(index))
            first[index] = value;
    }

private:
    bool has(int index) const { return index >= 0 && index < size; }

    Number *first;
    int size;
};

struct NoLimit {
    void startFactor() {}
    bool startPass() { return true; }
};

struct PassLimit {
    int allowed;
    int used = 0;
    int usedByFactor = 0;
    bool reached = false;

    void startFactor() { usedByFactor = 0; }
    bool startPass()
    {
        reached = usedByFactor >= allowed;
        if (reached)
            return false;
        ++usedByFactor;
        used = used < 2147483647 ? used + 1 : used;
        return true;
    }
    int passes() const { return reached ? -1 : used; }
};

/// The form for a caller who can wait, and for one who can't. Result: the number of roots.
template <class Run>
int runLimited(int &passes, Run run)
{
    PassLimit limit{passes};
    const int roots = run(limit);
    passes = limit.passes();
    return roots;
}

double magnitude(double number) { return std::fabs(number); }
double magnitude(const karComplex &number) { return number.mod(); }

/// Stores roots 1 to `degree` as real and imaginary parts. Positions count from 0.
struct RealRoots {
    int degree;
    double *re;
    double *im;

    void pair(int position, int, double p, double q) const
    {
        double re1, im1, re2, im2;
        Solve_SquareRoots(p, q, re1, im1, re2, im2);
        store(position, re1, im1);
        store(position + 1, re2, im2);
    }
    void single(int position, double root) const { store(position, root, 0.0); }

private:
    void store(int position, double real, double imag) const
    {
        if (position >= degree)
            return;
        re[position + 1] = real;
        im[position + 1] = imag;
    }
};

/// Stores roots 1 to `degree` as complex numbers.
struct ComplexRoots {
    int degree;
    karComplex *x;

    void pair(int position, int, const karComplex &p, const karComplex &q) const
    {
        karComplex x1, x2;
        Solve_SquareRoots(p, q, x1, x2);
        store(position, x1);
        store(position + 1, x2);
    }
    void single(int position, const karComplex &root) const { store(position, karComplex(root.GetReal(), 0.0)); }

private:
    void store(int position, const karComplex &root) const
    {
        if (position < degree)
            x[position + 1] = root;
    }
};

/// Bairstow's iteration for a polynomial of degree `n`, `a` its coefficients, `b` and `c` work rows, x*x + p*x + q the
/// first guess of a factor. Result: the number of roots stored.
template <class Number, class Coefficients, class Row, class Roots, class Repeat, class Limit>
int bairstow(int n, Coefficients a, Row b, Row c, Number p, Number q, const Roots &roots, Repeat repeat, Limit &limit)
{
    const int degree = n;
    int position = 0;
    b.set(0, a.get(0));
    c.set(0, a.get(0));
    do {
        double ratio;
        limit.startFactor();
        do {
            if (!limit.startPass())
                return position;
            b.set(1, a.get(1) - (p * b.get(0)));
            c.set(1, b.get(1) - (p * c.get(0)));
            for (int k = 2; k <= n; ++k)
                b.set(k, (a.get(k) - (p * b.get(k - 1))) - (q * b.get(k - 2)));
            for (int k = 2; k <= n; ++k)
                c.set(k, (b.get(k) - (p * c.get(k - 1))) - (q * c.get(k - 2)));
            const Number d = b.get(n - 1) - c.get(n - 1);
            const Number D = (c.get(n - 2) * c.get(n - 2)) + (d * c.get(n - 3));
            const Number dp = ((c.get(n - 2) * b.get(n - 1)) - (c.get(n - 3) * b.get(n))) / D;
            const Number dq = ((d * b.get(n - 1)) + (c.get(n - 2) * b.get(n))) / D;
            p = p + dp;
            q = q + dq;
            ratio = (magnitude(dp) + magnitude(dq)) / (magnitude(p) + magnitude(q));
        } while (repeat(ratio));
        roots.pair(position, n, p, q);
        n -= 2;
        position += 2;
        for (int k = 1; k <= n; ++k)
            a.set(k, b.get(k));
    } while (n > 2);
    if (n == 2)
        roots.pair(position, n, b.get(1) / b.get(0), b.get(2) / b.get(0));
    else
        roots.single(position, -b.get(1) / b.get(0));
    return degree;
}

/// The same for degrees 3 and 4 with every entry in a variable. One factor is iterated, the rest is solved. An entry of
/// the second row that nothing reads is left out.
template <int n, class Number, class Roots, class Limit>
int bairstowOf(Number *a, Number p, Number q, const Roots &roots, double eps, Limit &limit)
{
    static_assert(n == 3 || n == 4);
    const Number a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    Number b1, b2;
    double ratio;
    limit.startFactor();
    do {
        if (!limit.startPass())
            return 0;
        b1 = a1 - (p * a0);
        b2 = (a2 - (p * b1)) - (q * a0);
        const Number b3 = (a3 - (p * b2)) - (q * b1);
        const Number c1 = b1 - (p * a0);
        const Number c2 = (b2 - (p * c1)) - (q * a0);
        Number dp, dq;
        if constexpr (n == 4) {
            const Number b4 = (a[4] - (p * b3)) - (q * b2);
            const Number c3 = (b3 - (p * c2)) - (q * c1);
            const Number d = b3 - c3;
            const Number D = (c2 * c2) + (d * c1);
            dp = ((c2 * b3) - (c1 * b4)) / D;
            dq = ((d * b3) + (c2 * b4)) / D;
        } else {
            const Number d = b2 - c2;
            const Number D = (c1 * c1) + (d * a0);
            dp = ((c1 * b2) - (a0 * b3)) / D;
            dq = ((d * b2) + (c1 * b3)) / D;
        }
        p = p + dp;
        q = q + dq;
        ratio = (magnitude(dp) + magnitude(dq)) / (magnitude(p) + magnitude(q));
    } while (ratio > eps);
    roots.pair(0, n, p, q);
    a[1] = b1;
    if constexpr (n == 4) {
        a[2] = b2;
        roots.pair(2, 2, b1 / a0, b2 / a0);
    } else {
        roots.single(2, -b1 / a0);
    }
    return n;
}

/// Work rows of 5 entries: as variables for degrees 3 and 4, guarded for any other.
template <class Number, class Roots, class Limit>
int bairstowOfFive(int n, Number *a, const Number &p, const Number &q, const Roots &roots, double eps, Limit &limit)
{
    if (n == 4)
        return bairstowOf<4>(a, p, q, roots, eps, limit);
    if (n == 3)
        return bairstowOf<3>(a, p, q, roots, eps, limit);
    if (n < 0)
        return 0;
    Number b[5] = {};
    Number c[5] = {};
    const auto repeat = [eps](double ratio) { return ratio > eps; };
    return std::min(n, bairstow(n, GuardedRow<Number>(a, n + 1), GuardedRow<Number>(b, 5), GuardedRow<Number>(c, 5), p,
                                q, roots, repeat, limit));
}

} // namespace

void eqbairstow(int n, double *const a, double *const re, double *const im, double, double, double eps)
{
    NoLimit limit;
    bairstowOfFive(n, a, 0.0, 0.0, RealRoots{n, re, im}, eps, limit);
}

int eqbairstow(int n, double *const a, double *const re, double *const im, double, double, double eps, int &passes)
{
    return runLimited(passes, [&](PassLimit &limit) {
        return bairstowOfFive(n, a, 0.0, 0.0, RealRoots{n, re, im}, eps, limit);
    });
}

void EqBairstow(int n, karComplex *const a, karComplex *const x, const karComplex &p, const karComplex &q,
                const double &eps)
{
    NoLimit limit;
    bairstowOfFive(n, a, p, q, ComplexRoots{n, x}, eps, limit);
}

int EqBairstow(int n, karComplex *const a, karComplex *const x, const karComplex &p, const karComplex &q,
               const double &eps, int &passes)
{
    return runLimited(passes, [&](PassLimit &limit) {
        return bairstowOfFive(n, a, p, q, ComplexRoots{n, x}, eps, limit);
    });
}

namespace {

/// Stores roots in the rows of a matrix: the imaginary parts at the flat index position + n, which is the first column
/// of the second row for every pair.
struct MatrixRoots {
    int degree;
    GuardedRow<double> elements;

    void pair(int position, int n, double p, double q) const
    {
        double re1, im1, re2, im2;
        Solve_SquareRoots(p, q, re1, im1, re2, im2);
        elements.set(position, re1);
        elements.set(position + 1, re2); // of degree 1 the next overwrites it
        elements.set(position + n, im1);
        elements.set(position + n + 1, im2);
    }
    void single(int position, double root) const
    {
        if (position >= degree)
            return;
        elements.set(position, root);
        elements.set(position + 1, 0.0);
    }
};

} // namespace

karMatrix Solve_Polynom_Roots(const karMatrix &coefficients, const double &, const double &)
{
    if (coefficients.GetRows() != 1)
        return karMatrix();
    const int n = coefficients.GetColumns();
    karMatrix result(2, n);
    if (n <= 0 || result.GetData() == nullptr || coefficients.GetData() == nullptr)
        return result;
    const karMatrix b(1, n + 1);
    const karMatrix c(1, n + 1);
    if (b.GetData() == nullptr || c.GetData() == nullptr)
        return result;
    NoLimit limit;
    bairstow(
        n, GuardedRow<double>(coefficients.GetData(), n), GuardedRow<double>(b.GetData(), n + 1),
        GuardedRow<double>(c.GetData(), n + 1), 0.0, 0.0, MatrixRoots{n, GuardedRow<double>(result.GetData(), 2 * n)},
        [](double ratio) { return ratio >= lengthTolerance; }, limit);
    return result;
}
