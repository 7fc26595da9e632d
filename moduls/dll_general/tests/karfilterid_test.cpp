// Dispatch by kind. Failing allocation of the table is in karctrl_failure_test.cpp.
#include "karfilterid.h"

#include "testslot.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

namespace {

class Item : public karFilterObject {
public:
    explicit Item(int kind) : id(filterObjectID(kind)) {}
    filterObjectID getFilterId() override { return id; }
    filterObjectID id;
};

class Dispatcher : public karFilterIdBase {
public:
    using karFilterIdBase::filterNoAction;
    using karFilterIdBase::filterUnknownMethod;
    using karFilterIdBase::getFilterMethod;
    using karFilterIdBase::karFilterIdBase;

    errorCodesKARTORY remember(karFilterObject *item)
    {
        seen = item;
        return errorCodesKARTORY(17);
    }
    errorCodesKARTORY fail(karFilterObject *) { return errorCodesKARTORY(-3); }

    FilterMethod unknown() { return &Dispatcher::filterUnknownMethod; }
    FilterMethod noAction() { return &Dispatcher::filterNoAction; }
    bool hasTable() const { return methods != nullptr; }
    void dropTable()
    {
        KarDellocMemory(methods);
        methods = nullptr;
    }

    karFilterObject *seen = nullptr;
};

int run(karFilterIdBase &dispatcher, int kind)
{
    Item item(kind);
    return dispatcher.filterObject(&item);
}

} // namespace

TEST(FilterMObject, FilterNeedsObjectAndMethod)
{
    Dispatcher target;
    Item item(0);
    const auto method = static_cast<FilterMethod>(&Dispatcher::remember);

    EXPECT_EQ(FilterMObject().filter(&item), -251);
    EXPECT_EQ(FilterMObject(&target).filter(&item), -251);
    EXPECT_EQ(FilterMObject(nullptr, method).filter(&item), -251);
    EXPECT_EQ(FilterMObject(static_cast<karFilterIdBase *>(&target), method).filter(&item), 17);
    EXPECT_EQ(target.seen, &item);
}

TEST(FilterMObject, StoresAndCopiesBothFields)
{
    Dispatcher target;
    const auto method = static_cast<FilterMethod>(&Dispatcher::fail);
    FilterMObject slot;
    slot.set(&target, method);
    FilterMObject copy;
    copy = slot;
    EXPECT_EQ(copy.getObject(), &target);
    EXPECT_TRUE(copy.getMethod() == method);
    copy.setObject(nullptr);
    EXPECT_EQ(copy.getObject(), nullptr);
    copy.setMethod(nullptr);
    EXPECT_TRUE(copy.getMethod() == nullptr);
    EXPECT_EQ(slot.getObject(), &target);
}

TEST(FilterMObject, StandsInATableByItsTwoValues)
{
    Dispatcher target;
    Item item(0);
    FilterMObject slots[] = {{&target, static_cast<FilterMethod>(&Dispatcher::fail)}, &target, {}};
    EXPECT_EQ(slots[0].filter(&item), -3);
    EXPECT_EQ(slots[1].getObject(), &target);
    EXPECT_EQ(slots[1].filter(&item), -251);
    EXPECT_EQ(slots[2].getObject(), nullptr);
}

TEST(FilterMObject, PassesANullItemOn)
{
    Dispatcher target;
    Item item(0);
    target.seen = &item;
    FilterMObject slot(static_cast<karFilterIdBase *>(&target), static_cast<FilterMethod>(&Dispatcher::remember));
    EXPECT_EQ(slot.filter(nullptr), 17);
    EXPECT_EQ(target.seen, nullptr);
}

TEST(KarFilterObject, AnswersSlotZeroAndCopiesNothing)
{
    karFilterObject object;
    EXPECT_EQ(object.getFilterId(), 0);
    Item three(3);
    karFilterObject &base = three;
    base = object;
    EXPECT_EQ(three.getFilterId(), 3);
    EXPECT_EQ(object.copy(three), 0);
    static_assert(!std::has_virtual_destructor_v<karFilterObject>);
}

TEST(KarFilterIdBase, DefaultTableHasNullObjectsSoGivesNoMethod)
{
    karFilterIdBase dispatcher;
    for (int kind = 0; kind < 25; ++kind)
        EXPECT_EQ(run(dispatcher, kind), -251) << kind;
}

TEST(KarFilterIdBase, UnknownMethodWithAnObjectGivesItsCodeForEveryKind)
{
    Dispatcher dispatcher;
    EXPECT_EQ(dispatcher.filterInit(&dispatcher, dispatcher.unknown()), 0);
    for (int kind = 0; kind < 25; ++kind)
        EXPECT_EQ(run(dispatcher, kind), -252) << kind;
}

TEST(KarFilterIdBase, NoActionGivesSuccessForEveryKind)
{
    Dispatcher dispatcher;
    dispatcher.filterInit(&dispatcher, dispatcher.noAction());
    for (int kind = 0; kind < 25; ++kind)
        EXPECT_EQ(run(dispatcher, kind), 0) << kind;
}

TEST(KarFilterIdBase, ConstructorFillsEverySlot)
{
    Dispatcher target;
    Dispatcher dispatcher(&target, static_cast<FilterMethod>(&Dispatcher::remember));
    for (int kind = 0; kind < 25; ++kind) {
        EXPECT_EQ(dispatcher.getFilterMethod(filterObjectID(kind))->getObject(), &target);
        EXPECT_EQ(run(dispatcher, kind), 17);
    }
}

TEST(KarFilterIdBase, NothingIsWrittenBehindTheTable)
{
    // The table comes from the class of 1000 bytes, or of 500 where pointers have 32 bits. Its element is marked first.
    const std::size_t tableSize = 25 * 3 * sizeof(void *);
    const std::size_t room = (sizeof(void *) > 4 ? 1000 : 500) - 8;
    void *const element = KarAllocMemory(static_cast<unsigned>(room));
    void *const neighbour = KarAllocMemory(static_cast<unsigned>(room)); // keeps the page
    std::memset(element, 0x55, room);
    KarDellocMemory(element);
    Dispatcher dispatcher;
    const char *const table = reinterpret_cast<const char *>(dispatcher.getFilterMethod(filterObjectID(0)));
    ASSERT_EQ(table, element);
    const std::string behind(table + tableSize, room - tableSize);
    EXPECT_EQ(behind, std::string(room - tableSize, 0x55));
    KarDellocMemory(neighbour);
}

TEST(KarFilterIdBase, ANullHandlerMakesItsKindFailAlone)
{
    Dispatcher dispatcher;
    dispatcher.filterInit(&dispatcher, dispatcher.noAction());
    dispatcher.setFilterMethod(filterObjectID(3), &dispatcher, nullptr);
    EXPECT_EQ(run(dispatcher, 2), 0);
    EXPECT_EQ(run(dispatcher, 3), -251);
    EXPECT_EQ(run(dispatcher, 4), 0);
}

TEST(KarFilterIdBase, LastSlotIsReadBackAndTheNextIsNone)
{
    Dispatcher dispatcher;
    dispatcher.setFilterHandler(filterObjectID(24), &dispatcher, &Dispatcher::remember);
    ASSERT_NE(dispatcher.getFilterMethod(filterObjectID(24)), nullptr);
    EXPECT_EQ(dispatcher.getFilterMethod(filterObjectID(24)) - dispatcher.getFilterMethod(filterObjectID(0)), 24);
    EXPECT_TRUE(dispatcher.getFilterMethod(filterObjectID(24))->getMethod() ==
                static_cast<FilterMethod>(&Dispatcher::remember));
    EXPECT_EQ(run(dispatcher, 24), 17);
    EXPECT_EQ(dispatcher.getFilterMethod(filterObjectID(25)), nullptr);
    EXPECT_EQ(dispatcher.getFilterMethod(filterObjectID(-1)), nullptr);
}

TEST(KarFilterIdBase, IdsOutsideTheTableReadAsEmptyAndStoreNothing)
{
    Dispatcher dispatcher;
    dispatcher.setFilterHandler(filterObjectID(25), &dispatcher, &Dispatcher::remember);
    dispatcher.setFilterHandler(filterObjectID(-1), &dispatcher, &Dispatcher::remember);
    EXPECT_EQ(run(dispatcher, 25), -251);
    EXPECT_EQ(run(dispatcher, -1), -251);
    EXPECT_EQ(dispatcher.seen, nullptr);
}

TEST(KarFilterIdBase, SecondInitDiscardsEveryHandler)
{
    Dispatcher dispatcher;
    dispatcher.setFilterHandler(filterObjectID(7), &dispatcher, &Dispatcher::remember);
    EXPECT_EQ(run(dispatcher, 7), 17);
    dispatcher.filterInit(&dispatcher, dispatcher.unknown());
    EXPECT_EQ(run(dispatcher, 7), -252);
}

TEST(KarFilterIdBase, WithoutATableObjectsAreUnknown)
{
    Dispatcher dispatcher;
    dispatcher.dropTable();
    EXPECT_EQ(run(dispatcher, 0), -252);
    EXPECT_EQ(run(dispatcher, 99), -252);
    EXPECT_EQ(dispatcher.getFilterMethod(filterObjectID(0)), nullptr);
    dispatcher.setFilterMethod(filterObjectID(0), &dispatcher, dispatcher.noAction());
    EXPECT_FALSE(dispatcher.hasTable());
}

TEST(KarFilterIdBase, ResultOfAHandlerPassesThrough)
{
    Dispatcher dispatcher;
    dispatcher.setFilterHandler(filterObjectID(1), &dispatcher, &Dispatcher::fail);
    EXPECT_EQ(run(dispatcher, 1), -3);
}

TEST(KarFilterIdBase, ASlotMayNameAnotherObject)
{
    Dispatcher dispatcher;
    Dispatcher other;
    dispatcher.setFilterHandler(filterObjectID(1), &other, &Dispatcher::remember);
    Item item(1);
    EXPECT_EQ(dispatcher.filterObject(&item), 17);
    EXPECT_EQ(other.seen, &item);
    EXPECT_EQ(dispatcher.seen, nullptr);
}

TEST(KarFilterIdBase, AssignmentSharesTheTable)
{
    Dispatcher dispatcher;
    Dispatcher other;
    other.dropTable();
    other = dispatcher;
    EXPECT_EQ(other.getFilterMethod(filterObjectID(0)), dispatcher.getFilterMethod(filterObjectID(0)));
    other.dropTable(); // one of the two lets go of the table, the other must forget it
    dispatcher = other;
    EXPECT_FALSE(dispatcher.hasTable());
}

namespace {

struct Weight {
    virtual ~Weight() = default;
    int weight = 5;
};

// The dispatcher part lies behind another base.
class Second : public Weight, public karFilterIdBase {
public:
    Second() { setFilterHandler(filterObjectID(2), this, &Second::weigh); }
    errorCodesKARTORY weigh(karFilterObject *) { return errorCodesKARTORY(weight); }
};

} // namespace

TEST(KarFilterIdBase, HandlersOfClassesWithSeveralBasesGetTheirOwnObject)
{
    Second dispatcher;
    dispatcher.weight = 9;
    EXPECT_EQ(run(dispatcher, 2), 9);
}

TEST(KarFilterIdBase, AnItemThatDoesNotOverrideGoesToSlotZero)
{
    Dispatcher dispatcher;
    dispatcher.setFilterHandler(filterObjectID(0), &dispatcher, &Dispatcher::remember);
    karFilterObject item;
    EXPECT_EQ(dispatcher.filterObject(&item), 17);
    EXPECT_EQ(dispatcher.seen, &item);
}

TEST(KarFilterIdBase, TheItemIsAskedOnceAndBeforeTheTable)
{
    class Asked : public karFilterObject {
    public:
        filterObjectID getFilterId() override
        {
            ++asked;
            return filterObjectID(1);
        }
        int asked = 0;
    };
    Dispatcher dispatcher;
    Asked item;
    EXPECT_EQ(dispatcher.filterObject(&item), -251);
    EXPECT_EQ(item.asked, 1);
    dispatcher.dropTable();
    EXPECT_EQ(dispatcher.filterObject(&item), -252);
    EXPECT_EQ(item.asked, 2);
}

TEST(KarFilterIdBase, TheTableIsReadWhenTheItemHasAnswered)
{
    class Changer : public karFilterObject {
    public:
        explicit Changer(Dispatcher &changed) : dispatcher(changed) {}
        filterObjectID getFilterId() override
        {
            if (drop)
                dispatcher.dropTable();
            else
                dispatcher.filterInit(static_cast<karFilterIdBase *>(&dispatcher), dispatcher.noAction());
            return filterObjectID(24);
        }
        Dispatcher &dispatcher;
        bool drop = false;
    };
    Dispatcher dispatcher;
    Changer item(dispatcher);
    EXPECT_EQ(dispatcher.filterObject(&item), 0);
    item.drop = true;
    EXPECT_EQ(dispatcher.filterObject(&item), -252);
    item.drop = false;
    EXPECT_EQ(dispatcher.filterObject(&item), 0);
}

TEST(KarFilterIdBase, AHandlerMayReplaceTheTableThatItStandsIn)
{
    class Replacing : public Dispatcher {
    public:
        errorCodesKARTORY replace(karFilterObject *)
        {
            filterInit(static_cast<karFilterIdBase *>(this), noAction());
            return errorCodesKARTORY(5);
        }
    };
    Replacing dispatcher;
    dispatcher.setFilterHandler(filterObjectID(2), &dispatcher, &Replacing::replace);
    EXPECT_EQ(run(dispatcher, 2), 5);
    EXPECT_EQ(run(dispatcher, 2), 0);
}

namespace {

// Its virtual operation puts a table in front of the dispatcher part.
class Changing : public karFilterIdBase {
public:
    Changing() { setFilterHandler(filterObjectID(6), this, &Changing::handle); }
    virtual ~Changing() = default;
    virtual errorCodesKARTORY handle(karFilterObject *) { return errorCodesKARTORY(own); }
    int own = 31;
};

class Changed : public Changing {
public:
    errorCodesKARTORY handle(karFilterObject *) override { return errorCodesKARTORY(own + 1); }
};

/// Opens the fields.
struct SlotFields : FilterMObject {
    void check()
    {
        EXPECT_EQ(offsetIn(*this, method), 0);
        EXPECT_EQ(offsetIn(*this, object), static_cast<long>(2 * sizeof(void *))); // a method is two words
    }
};

struct TableFields : karFilterIdBase {
    void check() { EXPECT_EQ(offsetIn(*this, methods), 0); }
};

} // namespace

TEST(KarFilterIdBase, HandlersOfClassesWithVirtualOperationsGetTheirOwnObject)
{
    Changing dispatcher;
    EXPECT_EQ(run(dispatcher, 6), 31);
    Changed derived;
    derived.own = 40;
    EXPECT_EQ(run(derived, 6), 41); // a virtual handler stays virtual
}

TEST(FilterIdLayout, FieldsAndVirtualOperationsStandInTheirOrder)
{
    SlotFields().check();
    TableFields().check();
    EXPECT_EQ(sizeof(FilterMObject), 3 * sizeof(void *));
    EXPECT_EQ(sizeof(karFilterIdBase), sizeof(void *));
    EXPECT_EQ(sizeof(karFilterObject), sizeof(void *));
    EXPECT_EQ(slotOf(&karFilterObject::getFilterId), 0);
    static_assert(!std::is_polymorphic_v<FilterMObject>);
    static_assert(!std::is_polymorphic_v<karFilterIdBase>);
    static_assert(std::is_same_v<std::underlying_type_t<filterObjectID>, int>);
}
