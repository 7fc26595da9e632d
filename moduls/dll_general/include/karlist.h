/// \file
/// Elements of intrusive lists: objects that carry their own two links.
#ifndef KAR_LIST_H
#define KAR_LIST_H

#include "karalloc.h"
#include "karenum.h"

/// Where a constructor with a position puts the new element. Any other code leaves both links null.
enum karListPosition : int {
    KAR_LIST_APPEND = 5,       ///< at the end of the chain that holds `other`
    KAR_LIST_INSERT = 6,       ///< directly before `other`
    KAR_LIST_INSERT_FRONT = 7, ///< at the start of the chain that holds `other`
};

/// Two links and the operations on them, nothing virtual. Nothing here allocates or can fail, and nothing is tested
/// but what is said. In a well-formed chain a's successor is b exactly where b's predecessor is a; an element outside
/// every chain has both links null.
class KAR_API karListObjectNV {
public:
    KAR_LIBRARY_NEW

    /// \name Construction
    /// \{
    karListObjectNV() = default; ///< Both links null.
    /// Copies the links; the neighbours don't know the copy. Note: as it dies, they bypass the element copied from.
    karListObjectNV(const karListObjectNV &) = default;
    explicit karListObjectNV(karListObjectNV *other) { append(other); } ///< As `append(other)`.
    karListObjectNV(karListObjectNV *other, int position);              ///< `position` as in `karListPosition`.
    ~karListObjectNV() { unchain(); }                                   ///< As `unchain()`.
    /// \}

    karListObjectNV &operator=(const karListObjectNV &) = default; ///< Copies the links; no neighbour is touched.

    /// \name Type identity
    /// Note: not virtual, so a pointer to this class answers 62 whatever the object is.
    /// \{
    ObjektIdies GetType() const { return KAR_ID_LIST_OBJECT_NV; }             ///< 62.
    int IsType(ObjektIdies id) const { return GetType() == id; }              ///< Equality with 62.
    int CanCast(ObjektIdies id) const { return id == KAR_ID_LIST_OBJECT_NV; } ///< Equality with 62.
    /// \}

    /// \name Reading
    /// \{
    karListObjectNV *next() const { return nextLink; } ///< The successor, null at the end of the chain.
    karListObjectNV *prev() const { return prevLink; } ///< The predecessor, null at the start of the chain.
    karListObjectNV *first() const; ///< Start of the chain; the element itself if nothing precedes it. Linear.
    karListObjectNV *last() const;  ///< End of the chain; the element itself if nothing follows it. Linear.
    /// Elements of the whole chain, whatever element it is called on. Linear.
    /// Note: may be called on a null object and then gives 0.
    int listLength() const;
    /// \}

    /// \name Changing
    /// A null `other` leaves both links null.
    /// Note: the linking operations overwrite the element's own links: an element that still stands in a chain is
    /// unchained first, or the old chain keeps pointing at it.
    /// \{
    void next(karListObjectNV *element) { nextLink = element; } ///< Stores the link; the neighbour isn't touched.
    void prev(karListObjectNV *element) { prevLink = element; } ///< \overload
    void append(karListObjectNV *other);      ///< To the end of the chain of `other`; constant if that is its last.
    void insert(karListObjectNV *other);      ///< Directly before `other`. Constant.
    void insertFront(karListObjectNV *other); ///< To the start of the chain of `other`; constant if that is its first.
    void unchain();                           ///< Bridges the neighbours and clears both links. Constant, repeatable.
    /// \}

protected:
    karListObjectNV *nextLink = nullptr; ///< to the successor
    karListObjectNV *prevLink = nullptr; ///< to the predecessor
};

/// A list element with virtual operations. The element leaves its chain when it dies; the chain owns nothing.
/// Note: a head that points at the element isn't told; an element that stands in a head is removed through the head.
class KAR_API karListObject : public karListObjectNV {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual int ListObjectOk() = 0;            ///< 1 in every concrete class of the library.
    virtual ~karListObject();                  ///< Leaves the chain.
    virtual int IsType(ObjektIdies id) const;  ///< Asks the virtual `GetType`.
    virtual ObjektIdies GetType() const;       ///< 60 unless a subclass overrides it.
    virtual int CanCast(ObjektIdies id) const; ///< Equality with 60, without knowledge of base classes.
    /// \}

    /// \name Construction
    /// \{
    karListObject() = default;                      ///< Both links null.
    karListObject(const karListObject &) = default; ///< Copies the links. Note: as the copy of `karListObjectNV`.
    explicit karListObject(karListObject *other) : karListObjectNV(other) {} ///< At the end of the chain of `other`.
    /// `position` as in `karListPosition`.
    karListObject(karListObject *other, int position) : karListObjectNV(other, position) {}
    /// \}

    karListObject &operator=(const karListObject &) = default; ///< Copies the links; no neighbour is touched.

    /// \name Reading
    /// As in `karListObjectNV`; null stays null.
    /// \{

    /// The successor, null at the end of the chain.
    karListObject *next() const { return static_cast<karListObject *>(karListObjectNV::next()); }
    /// The predecessor, null at the start of the chain.
    karListObject *prev() const { return static_cast<karListObject *>(karListObjectNV::prev()); }
    /// Start of the chain. Linear.
    karListObject *first() const { return static_cast<karListObject *>(karListObjectNV::first()); }
    /// End of the chain. Linear.
    karListObject *last() const { return static_cast<karListObject *>(karListObjectNV::last()); }
    karListObject *current() const { return const_cast<karListObject *>(this); } ///< The object itself.
    karListObject *getListObjectPtr() { return this; }                           ///< The object itself.
    int listLength() const; ///< Note: may be called on a null object and then gives 0.
    /// \}

    /// \name Changing
    /// \{

    /// Stores the link; the neighbour isn't touched.
    void next(karListObject *element) { karListObjectNV::next(element); }
    void prev(karListObject *element) { karListObjectNV::prev(element); } ///< \overload
    /// \}
};

/// The navigation of `Base` with the type of the class that derives from it: `class A : public karListTyped<A, Base>`.
/// Every element class of the library has its typed `next`, `prev`, `first`, `last` and `current` from here.
template <class Self, class Base>
class karListTyped : public Base {
public:
    using Base::Base;

    Self *next() const { return static_cast<Self *>(Base::next()); } ///< The successor, null at the end of the chain.
    /// The predecessor, null at the start of the chain.
    Self *prev() const { return static_cast<Self *>(Base::prev()); }
    Self *first() const { return static_cast<Self *>(Base::first()); } ///< Start of the chain. Linear.
    Self *last() const { return static_cast<Self *>(Base::last()); }   ///< End of the chain. Linear.
    Self *current() const { return const_cast<Self *>(static_cast<const Self *>(this)); } ///< The object itself.
    void next(Self *element) { Base::next(element); } ///< Stores the link; the neighbour isn't touched.
    void prev(Self *element) { Base::prev(element); } ///< \overload
};

/// An element that carries a pointer to an object that it doesn't own or interpret.
class KAR_API karPtrListObject : public karListTyped<karPtrListObject, karListObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListObjectOk() override;                ///< 1.
    ~karPtrListObject() override;               ///< Leaves the chain; what it carries stays.
    ObjektIdies GetType() const override;       ///< 61.
    int CanCast(ObjektIdies id) const override; ///< Equality with 61. Note: false for the id of `karListObject`.
    /// \}

    /// \name Construction
    /// \{
    karPtrListObject() = default;                         ///< Carries null; both links null.
    karPtrListObject(const karPtrListObject &) = default; ///< Copies links and pointer.
    /// At the end of the chain of `other`.
    karPtrListObject(void *carried, karPtrListObject *other) : karListTyped(other), object(carried) {}
    /// `position` as in `karListPosition`.
    karPtrListObject(void *carried, karListObject *other, int position) : karListTyped(other, position), object(carried)
    {}
    /// \}

    karPtrListObject &operator=(const karPtrListObject &) = default; ///< Copies links and pointer.

    void *getObject() const { return object; }          ///< The pointer that it carries.
    void setObject(void *carried) { object = carried; } ///< Carries another pointer from now on.

protected:
    void *object = nullptr; ///< carried, not owned
};

#endif
