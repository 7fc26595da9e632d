#include "karlist.h"

#include "nullobject.h"

karListObjectNV::karListObjectNV(karListObjectNV *other, int position)
{
    switch (position) {
    case KAR_LIST_APPEND:
        append(other);
        break;
    case KAR_LIST_INSERT:
        insert(other);
        break;
    case KAR_LIST_INSERT_FRONT:
        insertFront(other);
        break;
    default:
        break;
    }
}

karListObjectNV *karListObjectNV::first() const
{
    const karListObjectNV *element = this;
    while (element->prevLink)
        element = element->prevLink;
    return const_cast<karListObjectNV *>(element);
}

karListObjectNV *karListObjectNV::last() const
{
    const karListObjectNV *element = this;
    while (element->nextLink)
        element = element->nextLink;
    return const_cast<karListObjectNV *>(element);
}

KAR_MAY_BE_NULL int karListObjectNV::listLength() const { return kar::chainLength(kar::maybeNull(this)); }

// The walk comes before any link is written: an element that still stands in the chain doesn't cut it.

void karListObjectNV::append(karListObjectNV *other)
{
    karListObjectNV *const end = other ? other->last() : nullptr;
    prevLink = end;
    nextLink = nullptr;
    if (end)
        end->nextLink = this;
}

void karListObjectNV::insert(karListObjectNV *other)
{
    nextLink = other;
    prevLink = other ? other->prevLink : nullptr;
    if (prevLink)
        prevLink->nextLink = this;
    if (other)
        other->prevLink = this;
}

void karListObjectNV::insertFront(karListObjectNV *other)
{
    karListObjectNV *const start = other ? other->first() : nullptr;
    prevLink = nullptr;
    nextLink = start;
    if (start)
        start->prevLink = this;
}

void karListObjectNV::unchain()
{
    if (prevLink)
        prevLink->nextLink = nextLink;
    if (nextLink)
        nextLink->prevLink = prevLink;
    nextLink = nullptr;
    prevLink = nullptr;
}

karListObject::~karListObject() = default;
int karListObject::IsType(ObjektIdies id) const { return GetType() == id; }
ObjektIdies karListObject::GetType() const { return KAR_ID_LIST_OBJECT; }
int karListObject::CanCast(ObjektIdies id) const { return id == KAR_ID_LIST_OBJECT; }
KAR_MAY_BE_NULL int karListObject::listLength() const { return kar::chainLength(kar::maybeNull(this)); }

int karPtrListObject::ListObjectOk() { return 1; }
karPtrListObject::~karPtrListObject() = default;
ObjektIdies karPtrListObject::GetType() const { return KAR_ID_PTR_LIST_OBJECT; }
int karPtrListObject::CanCast(ObjektIdies id) const { return id == KAR_ID_PTR_LIST_OBJECT; }
