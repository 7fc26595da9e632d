#include "karlisthead.h"

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
    _sort(listFirst);
    ListFirst(listFirst->first());
    ListLast(listLast->last());
    ListCurrent(nullptr);
    return KAR_SUCCESS;
}

karListObject *karListHeadObject::_sort(karListObject *element)
{
    karListObject *first = element->first();
    const int count = ListAnzahl(first);
    if (count <= 7) {
        bool swapped = true;
        while (swapped) {
            swapped = false;
            for (karListObject *a = first; a->next();) {
                karListObject *const b = a->next();
                if ((sortObject->*sortMethod)(a, b) < 0) {
                    changeAlignment(a, b);
                    swapped = true;
                    if (a == first)
                        first = b;
                } else {
                    a = b;
                }
            }
        }
        return first;
    }

    karListObject *before = first;
    for (int i = 1; i < count >> 1; ++i)
        before = before->next();
    karListObject *second = before->next();
    before->next(nullptr);
    second->prev(nullptr);
    karListObject *a = _sort(first);
    karListObject *b = _sort(second);

    karListObject *result = nullptr;
    karListObject *end = nullptr;
    while (a || b) {
        karListObject *&source = !b || (a && (sortObject->*sortMethod)(a, b) > 0) ? a : b;
        karListObject *const taken = source;
        source = taken->next();
        taken->prev(end);
        taken->next(nullptr);
        if (end)
            end->next(taken);
        else
            result = taken;
        end = taken;
    }
    return result;
}

// The element part is the later base, so its destructor, which leaves the chain of heads, runs before the head's.
karListHeadListObject::~karListHeadListObject() = default;
karListHeadListObject::karListHeadListObject(karListHeadListObject *other, ObjektIdies id)
    : karListHeadObject(id), karListTyped(other)
{}
int karListHeadListObject::ListObjectOk() { return 1; }
KAR_MAY_BE_NULL int karListHeadListObject::listLength() const { return kar::chainLength(kar::maybeNull(this)); }
