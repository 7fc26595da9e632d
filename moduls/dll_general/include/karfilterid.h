/// \file
/// Dispatch by kind: a table of 25 handlers, chosen by the number that an object answers.
#ifndef KAR_FILTER_ID_H
#define KAR_FILTER_ID_H

#include "karalloc.h"
#include "karenum.h"

class karFilterIdBase;

/// The kind of an object, 0 to 24. The values belong to the host.
enum filterObjectID : int {
};

/// An object that a dispatcher handles.
class KAR_API karFilterObject {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual filterObjectID getFilterId(); ///< The slot of the handler; 0 unless a class overrides it.
    /// \}

    karFilterObject() = default;                                          ///< Holds nothing.
    karFilterObject(const karFilterObject &) {}                           ///< Copies nothing.
    karFilterObject &operator=(const karFilterObject &) { return *this; } ///< Does nothing.
    errorCodesKARTORY copy(karFilterObject &) { return KAR_SUCCESS; }     ///< Does nothing and gives 0.
};

/// A handler: a method of `karFilterIdBase` or, converted, of a class that derives from it.
using FilterMethod = errorCodesKARTORY (karFilterIdBase::*)(karFilterObject *item);

/// One slot: a handler and the object that it runs on.
class KAR_API FilterMObject {
public:
    /// A slot; without arguments an empty one, for which `filter` gives -251.
    FilterMObject(void *ownObject = nullptr, FilterMethod ownMethod = nullptr) : method(ownMethod), object(ownObject) {}

    /// Stores both, as `setObject` and `setMethod`.
    void set(void *newObject, FilterMethod newMethod)
    {
        setObject(newObject);
        setMethod(newMethod);
    }
    /// Note: the address is later used as it is. It is that of the `karFilterIdBase` part, which lies at the start of
    /// an object only if its class has that one as its first base and has no virtual operation of its own. Elsewhere a
    /// plain `this` is another address; `karFilterIdBase::setFilterHandler` finds the right one.
    void setObject(void *newObject) { object = newObject; }
    /// The address as stored, read as that of a dispatcher.
    karFilterIdBase *getObject() { return static_cast<karFilterIdBase *>(object); }
    void setMethod(FilterMethod newMethod) { method = newMethod; } ///< Stores the handler; the object stays.
    FilterMethod getMethod() { return method; }                    ///< The handler as stored.

    /// Runs the handler and passes its result through; -251 without an object or without a handler.
    errorCodesKARTORY filter(karFilterObject *item);

protected:
    FilterMethod method; ///< null in an empty slot
    void *object;        ///< see `setObject`
};

/// A dispatcher. A host derives its own from it and stores a handler for each kind:
///
///     class Drawer : public karFilterIdBase {
///     public:
///         Drawer() : karFilterIdBase(this, &Drawer::filterNoAction)    // kinds without a handler are skipped
///         {
///             setFilterHandler(lineKind, this, &Drawer::line);
///         }
///         errorCodesKARTORY line(karFilterObject *item);
///     };
///
/// `filterObject(item)` then asks the item for its kind and runs the handler. A dispatch costs one virtual call, one
/// index, one indirect call and the tests for table, range, object and handler, and allocates nothing.
class KAR_API karFilterIdBase {
public:
    /// Slots of a table.
    static constexpr int slotCount = 25;

    /// \name Construction
    /// \{

    /// All slots get `object` and `method`, as by `filterInit`.
    /// Note: built with the defaults, every slot has a null object, so `filterObject` gives -251 and not -252.
    karFilterIdBase(void *object = nullptr, FilterMethod method = &karFilterIdBase::filterUnknownMethod);
    karFilterIdBase(const karFilterIdBase &) = default; ///< Note: both objects then hold, and release, one table.
    ~karFilterIdBase();                                 ///< Releases the table.
    karFilterIdBase &operator=(const karFilterIdBase &) = default; ///< Note: as the copy; the old table isn't released.
    /// \}

    /// Makes a new table with `object` and `method` in every slot; what was stored before is gone.
    /// Note: gives 0, also where the table couldn't be had: `filterObject` then gives -252 and stores do nothing.
    errorCodesKARTORY filterInit(void *object, FilterMethod method);

    /// Stores a handler with the address of the object that it runs on, which is used as it is: see
    /// `FilterMObject::setObject`. An id outside 0 to 24 is dropped.
    void setFilterMethod(filterObjectID id, void *object, FilterMethod method);

    /// Stores a handler of any dispatcher class, without a cast. It stores the address of the `karFilterIdBase` part,
    /// so that classes with several bases or with virtual operations work.
    template <class Dispatcher, class MethodClass>
    void setFilterHandler(filterObjectID id, Dispatcher *dispatcher,
                          errorCodesKARTORY (MethodClass::*method)(karFilterObject *))
    {
        setFilterMethod(id, static_cast<karFilterIdBase *>(dispatcher), static_cast<FilterMethod>(method));
    }

    /// Runs the handler of the item's kind and gives its result; -251 if the slot has no object or no handler (an id
    /// outside 0 to 24 counts as such a slot), -252 without a table. The item is asked first and must not be null.
    errorCodesKARTORY filterObject(karFilterObject *item);

protected:
    FilterMObject *getFilterMethod(filterObjectID id); ///< The slot; null without a table or for an id outside 0 to 24.
    errorCodesKARTORY filterNoAction(karFilterObject *item);      ///< Handler for kinds to be skipped: 0.
    errorCodesKARTORY filterUnknownMethod(karFilterObject *item); ///< Handler of unknown kinds: -252.

    FilterMObject *methods = nullptr; ///< `slotCount` slots, null without a table
};

// Inline, so that the two calls of a dispatch stand in the host's loop, where the processor foresees them best.

inline errorCodesKARTORY FilterMObject::filter(karFilterObject *item)
{
    if (!object || !method)
        return KAR_ERROR_NO_METHOD;
    return (getObject()->*method)(item);
}

inline errorCodesKARTORY karFilterIdBase::filterObject(karFilterObject *item)
{
    const filterObjectID id = item->getFilterId();
    if (!methods)
        return KAR_ERROR_UNKNOWN_METHOD;
    return id >= 0 && id < slotCount ? methods[id].filter(item) : KAR_ERROR_NO_METHOD;
}

#endif
