#include "karfilterid.h"

#include <new>

filterObjectID karFilterObject::getFilterId() { return filterObjectID(0); }

errorCodesKARTORY FilterMObject::filter(karFilterObject *item)
{
    if (!object || !method)
        return KAR_ERROR_NO_METHOD;
    return (getObject()->*method)(item);
}

karFilterIdBase::karFilterIdBase(void *object, FilterMethod method) { filterInit(object, method); }

karFilterIdBase::~karFilterIdBase() { KarDellocMemory(methods); }

errorCodesKARTORY karFilterIdBase::filterInit(void *object, FilterMethod method)
{
    KarDellocMemory(methods);
    methods = static_cast<FilterMObject *>(KarAllocMemory(slotCount * sizeof(FilterMObject)));
    if (methods) {
        for (int id = 0; id < slotCount; ++id)
            ::new (&methods[id]) FilterMObject(object, method);
    }
    return KAR_SUCCESS;
}

void karFilterIdBase::setFilterMethod(filterObjectID id, void *object, FilterMethod method)
{
    if (FilterMObject *slot = getFilterMethod(id))
        slot->set(object, method);
}

errorCodesKARTORY karFilterIdBase::filterObject(karFilterObject *item)
{
    const filterObjectID id = item->getFilterId();
    if (!methods)
        return KAR_ERROR_UNKNOWN_METHOD;
    FilterMObject *slot = getFilterMethod(id);
    return slot ? slot->filter(item) : KAR_ERROR_NO_METHOD;
}

FilterMObject *karFilterIdBase::getFilterMethod(filterObjectID id)
{
    return methods && id >= 0 && id < slotCount ? &methods[id] : nullptr;
}

errorCodesKARTORY karFilterIdBase::filterNoAction(karFilterObject *) { return KAR_SUCCESS; }

errorCodesKARTORY karFilterIdBase::filterUnknownMethod(karFilterObject *) { return KAR_ERROR_UNKNOWN_METHOD; }
