/// \file
/// Two values side by side, the root of the plane's points and dimensions.
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
    tPair() = default;                                                         ///< Both places zero.
    tPair(const A &first, const B &second) : First_(first), Second_(second) {} ///< The two values, in their order.
    tPair(const tPair &) = default;                                            ///< Copies the two values.
    /// \}

    tPair &operator=(const tPair &) = default; ///< Copies the two values.

    /// \name Type identity
    /// \{
    ObjektIdies GetType() const { return KAR_ID_PAIR; }              ///< 0.
    bool IsType(ObjektIdies id) const { return id == KAR_ID_PAIR; }  ///< Equality with 0.
    bool CanCast(ObjektIdies id) const { return id == KAR_ID_PAIR; } ///< Equality with 0.
    /// \}

    /// \name Reading
    /// \{
    A First() const { return First_; }   ///< The value in the first place.
    B Second() const { return Second_; } ///< The value in the second place.
    /// \}

    /// \name Changing
    /// \{
    A &First() { return First_; }                    ///< The first place itself, to be written.
    B &Second() { return Second_; }                  ///< The second place itself, to be written.
    void First(const A &value) { First_ = value; }   ///< Stores the first value.
    void Second(const B &value) { Second_ = value; } ///< Stores the second value.
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
    tUniquePair() = default;                                                     ///< Both places zero.
    tUniquePair(const T &first, const T &second) : tPair<T, T>(first, second) {} ///< x, then y.
    tUniquePair(const tUniquePair &) = default;                                  ///< Copies x and y.
    /// \}

    tUniquePair &operator=(const tUniquePair &) = default; ///< Copies x and y.

    /// \name Reading
    /// \{
    T x() const { return this->First(); }  ///< `First`.
    T y() const { return this->Second(); } ///< `Second`.
    /// \}

    /// \name Changing
    /// \{
    T &x() { return this->First(); }                ///< The place itself, to be written.
    T &y() { return this->Second(); }               ///< The place itself, to be written.
    void x(const T &value) { this->First(value); }  ///< Stores x alone.
    void y(const T &value) { this->Second(value); } ///< Stores y alone.
    /// \}
};

#endif
