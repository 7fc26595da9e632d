/// \file
/// Heads of intrusive lists: first, last and current element of a chain, ownership, and the sort.
#ifndef KAR_LIST_HEAD_H
#define KAR_LIST_HEAD_H

#include "karlist.h"

class karListHeadObject;

/// Compares two elements of a list, a standing before b. Positive: a stays in front of b.
/// Note: a method that gives the difference of two keys sorts in descending order.
typedef int (karListHeadObject::*karSortMethod)(const karListObject *a, const karListObject *b);

/// The first, last and current element of a chain, which it owns: removing an element deletes it, and so does the death
/// of the head. Elements handed in come from the library's `new`. Nothing tests that an element belongs to this head.
/// Every change of first, last and current goes through the virtual setters, so that a subclass can watch it;
/// `changeAlignment` alone writes the fields.
class KAR_API karListHeadObject {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual int ListHeadObjectOk() = 0;        ///< 1 in every concrete class of the library.
    virtual ~karListHeadObject();              ///< Removes all elements, front to back.
    virtual int IsType(ObjektIdies id) const;  ///< Asks the virtual `GetType`.
    virtual ObjektIdies GetType() const;       ///< 200001 unless overridden. Note: the list id plays no part.
    virtual int CanCast(ObjektIdies id) const; ///< The same as `IsType`.

    virtual karListObject *ListFirst(karListObject *element);   ///< Stores the first element, gives the old one.
    virtual karListObject *ListLast(karListObject *element);    ///< Stores the last element, gives the old one.
    virtual karListObject *ListCurrent(karListObject *element); ///< Stores the current element, gives the old one.

    /// Links a free element behind the last one and makes it last and current. Gives the element, null for null.
    /// Note: the element's link to its successor isn't written; it must be null.
    virtual karListObject *ListAppend(karListObject *element);
    /// Links a free element behind `position`, in front of all with null, and makes it current. Behind the last element
    /// this is the virtual `ListAppend`. Gives the element, null for null.
    /// Note: in front of all the element's link to its predecessor isn't written; it must be null.
    virtual karListObject *ListInsert(karListObject *element, karListObject *position);
    virtual void ListRemove(karListObject *element); ///< Unchains and deletes the element; null is ignored.
    virtual void ListRemoveAll(); ///< Calls the virtual `ListRemove` on the first until none is left.
    /// \}

    /// \name Construction
    /// \{
    explicit karListHeadObject(ObjektIdies id = ObjektIdies(0)) : listId(id) {} ///< Empty.
    /// Note: shares the chain; the head that dies first deletes it.
    karListHeadObject(const karListHeadObject &) = default;
    /// \}

    /// Note: shares the chain; the old one stays alive.
    karListHeadObject &operator=(const karListHeadObject &) = default;

    /// \name Reading
    /// \{
    karListObject *ListFirst() const { return listFirst; } ///< The first element, null if the list is empty.
    karListObject *ListLast() const { return listLast; }   ///< The last element, null if the list is empty.
    /// The element last added, or a neighbour that took its place; null at times.
    karListObject *ListCurrent() const { return listCurrent; }
    ObjektIdies getListId() const { return listId; } ///< The id given at construction.
    /// The element if it stands in the list, else null. Linear.
    karListObject *ListExist(const karListObject *element) const;
    int ListAnzahl() const; ///< Elements from the first one on. Linear.
    /// Elements of the whole chain that holds `element`, 0 for null. Linear.
    int ListAnzahl(karListObject *element) const;
    /// \}

    /// \name Changing
    /// \{

    /// Takes an element, not null, out of the list and gives it back alive. A current element hands over to its
    /// successor, without one to its predecessor.
    karListObject *ListUnchain(karListObject *element);

    /// Swaps two neighbours, given in either order. The current element stays.
    /// Note: neighbourhood isn't tested; other elements break the chain. First and last are written past the setters.
    void changeAlignment(karListObject *a, karListObject *b);

    /// Sorts by `(object->*method)(a, b)` and gives 0. Up to 7 elements: bubble sort, a and b change places on a
    /// negative result. From 8 on: both halves likewise (the first has n / 2 elements), then merged; the element of the
    /// first half goes first on a positive result only, so equal elements of the second half come first. The current
    /// element becomes null; an empty list only stores its two arguments, which stay in `sortObject` and `sortMethod`.
    /// Note: equal elements keep their order in lists of up to 7 elements only.
    /// The method must be a pure function of its two elements: how often and in what order it is called is open, beyond
    /// that it is never asked about a pair that the sort as told here doesn't ask about. It needs no consistent order,
    /// but a pair that it calls negative both ways round may swap for ever.
    /// Links of the elements and the first and last element of the head mean nothing until the sort is done. No memory,
    /// recursion as deep as the logarithm of the count; not reentrant for one head.
    errorCodesKARTORY ListSort(karSortMethod method, karListHeadObject *object);
    /// \}

protected:
    karListHeadObject *sortObject = nullptr; ///< on which the comparison method is called
    karSortMethod sortMethod = nullptr;      ///< of the last `ListSort`, as `sortObject`
    karListObject *listFirst = nullptr;      ///< see `ListFirst`
    karListObject *listLast = nullptr;       ///< see `ListLast`
    karListObject *listCurrent = nullptr;    ///< see `ListCurrent`
    ObjektIdies listId;                      ///< as constructed; nothing in the library goes by it

private:
    // Sorts the chain that holds the element and gives its first element; `end` becomes that of the
    // chain of `listLast`.
    karListObject *_sort(karListObject *element, karListObject *&end);
};

// The typed forms take other arguments than the virtual operations whose names they hide, and call them.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#endif

/// The operations of a head with the type of its elements: `class A : public karListHeadTyped<Element>`. All of them
/// are plain forwarders to the virtual operations of `Base`.
template <class Element, class Base = karListHeadObject>
class karListHeadTyped : public Base {
public:
    using Base::Base;

    /// The first element, null if the list is empty.
    Element *ListFirst() const { return static_cast<Element *>(Base::ListFirst()); }
    /// The last element, null if the list is empty.
    Element *ListLast() const { return static_cast<Element *>(Base::ListLast()); }
    /// The element last added, or a neighbour that took its place; null at times.
    Element *ListCurrent() const { return static_cast<Element *>(Base::ListCurrent()); }
    /// The element if it stands in the list, else null. Linear.
    Element *ListExist(const Element *element) const { return static_cast<Element *>(Base::ListExist(element)); }

    /// Each as the operation of the same name and arguments in `karListHeadObject`.
    Element *ListFirst(Element *element) { return static_cast<Element *>(head().ListFirst(element)); }
    Element *ListLast(Element *element) { return static_cast<Element *>(head().ListLast(element)); } ///< \overload
    /// \overload
    Element *ListCurrent(Element *element) { return static_cast<Element *>(head().ListCurrent(element)); }
    Element *ListAppend(Element *element) { return static_cast<Element *>(head().ListAppend(element)); } ///< \overload
    /// \overload
    Element *ListInsert(Element *element, Element *position)
    {
        return static_cast<Element *>(head().ListInsert(element, position));
    }
    Element *ListUnchain(Element *element) { return static_cast<Element *>(Base::ListUnchain(element)); } ///< \overload

private:
    Base &head() { return *this; } // a call through it is virtual, one qualified by `Base::` isn't
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// A head that is itself an element in a chain of heads. When it dies it leaves that chain first, then
/// its elements die.
/// Note: asked as a head for its type it answers 200001, as an element 60.
class KAR_API karListHeadListObject : public karListHeadObject,
                                      public karListTyped<karListHeadListObject, karListObject> {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual void reservedOperation() = 0; ///< The last of the head part. Nothing in the library calls it.
    int ListObjectOk() override;          ///< 1.
    ~karListHeadListObject() override;    ///< Leaves the chain of heads, then removes all elements.
    /// \}

    /// \name Construction
    /// \{

    /// At the end of the chain of heads of `other`.
    karListHeadListObject(karListHeadListObject *other, ObjektIdies id);
    karListHeadListObject(const karListHeadListObject &) = default; ///< Copies the head part and the links.
    /// \}

    karListHeadListObject &operator=(const karListHeadListObject &) = default; ///< Copies the head part and the links.

    /// \name Type identity
    /// A call on the class itself asks the head part.
    /// \{
    using karListHeadObject::CanCast;
    using karListHeadObject::GetType;
    using karListHeadObject::IsType;
    /// \}

    int listLength() const; ///< Heads in the chain of heads. Note: may be called on a null object and then gives 0.
};

#endif
