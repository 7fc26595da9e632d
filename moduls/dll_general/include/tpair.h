// Two values side by side, the root of the plane's points and dimensions.
#ifndef KAR_TPAIR_H
#define KAR_TPAIR_H

#include "karalloc.h"
#include "karenum.h"

#include <type_traits>

/// Two values. A pair is passed around by value and never deleted through a base.
/// Only `tPair<int, int>` and `tPair<double, double>` exist.
/// Note: `Clone` is virtual, the destructor and the type identity aren't: through a reference to the pair a `karPoint`
/// answers 0, and `IsType(KAR_ID_PAIR)` of a `karPoint` is false.
template <class A, class B>
class tPair {
    static_assert((std::is_same<A, int>::value && std::is_same<B, int>::value) ||
                      (std::is_same<A, double>::value && std::is_same<B, double>::value),
                  "pairs are made of two int or of two double");

public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{

    /// A new pair with the two values, from `KarAllocMemory`; null if that gives none. The caller frees it with
    /// `KarDellocMemory`.
    /// Note: it doesn't look at the dynamic type. The clone of a `karPoint` is a plain `tPair<int, int>`.
    virtual tPair *Clone() const { return new tPair(First_, Second_); }
    /// \}

    /// \name Construction
    /// \{
    tPair() = default; ///< Both places zero.
    tPair(const A &first, const B &second) : First_(first), Second_(second) {}
    tPair(const tPair &) = default;
    /// \}

    tPair &operator=(const tPair &) = default;

    /// \name Type identity
    /// \{
    ObjektIdies GetType() const { return KAR_ID_PAIR; }
    bool IsType(ObjektIdies id) const { return id == KAR_ID_PAIR; }
    bool CanCast(ObjektIdies id) const { return id == KAR_ID_PAIR; }
    /// \}

    /// \name Reading
    /// \{
    A First() const { return First_; }
    B Second() const { return Second_; }
    /// \}

    /// \name Changing
    /// \{
    A &First() { return First_; }
    B &Second() { return Second_; }
    void First(const A &value) { First_ = value; }
    void Second(const B &value) { Second_ = value; }
    /// \}

private:
    A First_ = A();
    B Second_ = B();
};

/// A pair of one element type for both places, whose values are coordinates: `x` is `First`, `y` is `Second`.
template <class T>
class tUniquePair : public tPair<T, T> {
public:
    /// \name Construction
    /// \{
    tUniquePair() = default; ///< Both places zero.
    tUniquePair(const T &first, const T &second) : tPair<T, T>(first, second) {}
    tUniquePair(const tUniquePair &) = default;
    /// \}

    tUniquePair &operator=(const tUniquePair &) = default;

    /// \name Reading
    /// \{
    T x() const { return this->First(); }
    T y() const { return this->Second(); }
    /// \}

    /// \name Changing
    /// \{
    T &x() { return this->First(); }
    T &y() { return this->Second(); }
    void x(const T &value) { this->First(value); }
    void y(const T &value) { this->Second(value); }
    /// \}
};

#endif
