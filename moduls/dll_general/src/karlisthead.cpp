#include "karlisthead.h"

#include "chainsort.h"
#include "nullobject.h"

int karListHeadObject::IsType(ObjektIdies id) const { return GetType() == id; }
ObjektIdies karListHeadObject::GetType() const { return KAR_ID_LIST_HEAD_OBJECT; }
int karListHeadObject::CanCast(ObjektIdies id) const { return IsType(id); }

// A head that dies has only its own virtual operations left: those of a subclass aren't called any more.
karListHeadObject::~karListHeadObject() { karListHeadObject::ListRemoveAll(); }

karListObject *karListHeadObject::ListFirst(karListObject *element)
{
    karListObject *const old = listFirst;
    listFirst = element;
    return old;
}

karListObject *karListHeadObject::ListLast(karListObject *element)
{
    karListObject *const old = listLast;
    listLast = element;
    return old;
}

karListObject *karListHeadObject::ListCurrent(karListObject *element)
{
    karListObject *const old = listCurrent;
    listCurrent = element;
    return old;
}

karListObject *karListHeadObject::ListAppend(karListObject *element)
{
    if (!element)
        return nullptr;
    element->prev(listLast);
    if (listLast)
        listLast->next(element);
    else
        ListFirst(element);
    ListLast(element);
    ListCurrent(element);
    return element;
}

karListObject *karListHeadObject::ListInsert(karListObject *element, karListObject *position)
{
    if (!element)
        return nullptr;
    if (!position) {
        karListObject *const old = listFirst;
        element->next(old);
        ListFirst(element);
        ListCurrent(element);
        if (old)
            old->prev(element);
        else
            ListLast(element);
        return element;
    }
    if (position == listLast)
        return ListAppend(element);
    karListObject *const following = position->next();
    element->prev(position);
    element->next(following);
    position->next(element);
    if (following)
        following->prev(element);
    ListCurrent(element);
    return element;
}

karListObject *karListHeadObject::ListUnchain(karListObject *element)
{
    karListObject *const preceding = element->prev();
    karListObject *const following = element->next();
    if (element == listLast)
        ListLast(preceding);
    if (element == listFirst)
        ListFirst(following);
    if (element == listCurrent)
        ListCurrent(following ? following : preceding);
    element->unchain();
    return element;
}

void karListHeadObject::ListRemove(karListObject *element)
{
    if (element)
        delete ListUnchain(element);
}

void karListHeadObject::ListRemoveAll()
{
    while (listFirst)
        ListRemove(listFirst);
}

karListObject *karListHeadObject::ListExist(const karListObject *element) const
{
    if (!element)
        return nullptr;
    for (karListObject *candidate = listFirst; candidate; candidate = candidate->next())
        if (candidate == element)
            return candidate;
    return nullptr;
}

int karListHeadObject::ListAnzahl() const
{
    int count = 0;
    for (const karListObject *element = listFirst; element; element = element->next())
        ++count;
    return count;
}

int karListHeadObject::ListAnzahl(karListObject *element) const { return element ? element->listLength() : 0; }

void karListHeadObject::changeAlignment(karListObject *a, karListObject *b)
{
    karListObject *const earlier = a->next() == b ? a : b;
    karListObject *const later = earlier == a ? b : a;
    karListObject *const preceding = earlier->prev();
    karListObject *const following = later->next();

    if (preceding)
        preceding->next(later);
    else
        listFirst = later;
    later->prev(preceding);
    later->next(earlier);
    earlier->prev(later);
    earlier->next(following);
    if (following)
        following->prev(earlier);
    else
        listLast = earlier;
}

errorCodesKARTORY karListHeadObject::ListSort(karSortMethod method, karListHeadObject *object)
{
    sortObject = object;
    sortMethod = method;
    if (!listFirst)
        return KAR_SUCCESS;
    karListObject *end = nullptr;
    ListFirst(_sort(listFirst, end));
    ListLast(end);
    ListCurrent(nullptr);
    return KAR_SUCCESS;
}

karListObject *karListHeadObject::_sort(karListObject *element, karListObject *&end)
{
    kar::ChainSort sorter(sortObject, sortMethod, listFirst, listLast);
    karListObject *const first = sorter.sort(element->first());
    // A last element that wasn't one may stand in any chain; its own end counts.
    end = sorter.endWasKnown() || !listLast ? sorter.trueEnd() : listLast->last();
    return first;
}

// The element part is the later base, so its destructor, which leaves the chain of heads, runs before the head's.
karListHeadListObject::~karListHeadListObject() = default;
karListHeadListObject::karListHeadListObject(karListHeadListObject *other, ObjektIdies id)
    : karListHeadObject(id), karListTyped(other)
{}
int karListHeadListObject::ListObjectOk() { return 1; }
KAR_MAY_BE_NULL int karListHeadListObject::listLength() const { return kar::chainLength(kar::maybeNull(this)); }
