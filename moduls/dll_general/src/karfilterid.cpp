#include "karfilterid.h"

#include <new>

filterObjectID karFilterObject::getFilterId() { return filterObjectID(0); }

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

FilterMObject *karFilterIdBase::getFilterMethod(filterObjectID id)
{
    return methods && id >= 0 && id < slotCount ? &methods[id] : nullptr;
}

errorCodesKARTORY karFilterIdBase::filterNoAction(karFilterObject *) { return KAR_SUCCESS; }

errorCodesKARTORY karFilterIdBase::filterUnknownMethod(karFilterObject *) { return KAR_ERROR_UNKNOWN_METHOD; }
