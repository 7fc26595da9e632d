// The control classes without memory: what is stated, and nothing leaked or written elsewhere.
#include "karctrl.h"
#include "karfilterid.h"

#include "failalloc.h"
#include "silenthost.h"

#include <gtest/gtest.h>

namespace {

class OpenCtrl : public karCtrl {
public:
    using karCtrl::messages;
    using karCtrl::percent;
};

class OpenDispatcher : public karFilterIdBase {
public:
    using karFilterIdBase::getFilterMethod;
    using karFilterIdBase::methods;
    errorCodesKARTORY handle(karFilterObject *) { return errorCodesKARTORY(4); }
};

// Holds a page of the class that objects of one size come from: a page that goes gives room for another.
class KeptPage {
public:
    explicit KeptPage(unsigned size = sizeof(karDataBase)) : block(KarAllocMemory(size)) {}
    KeptPage(const KeptPage &) = delete;
    KeptPage &operator=(const KeptPage &) = delete;
    ~KeptPage() { KarDellocMemory(block); }

private:
    void *block;
};

int inUse() { return AllocatorPeek::pool(*globalMemList, 7).getAnzElem(); }

} // namespace

TEST(KarFilterIdBaseWithoutMemory, HasNoTableAndStillSucceeds)
{
    KeptPage page(25 * sizeof(FilterMObject));
    OpenDispatcher dispatcher;
    karFilterObject item;
    {
        AllAllocationsFail failing;
        EXPECT_EQ(dispatcher.filterInit(nullptr, nullptr), 0);
    }
    EXPECT_EQ(dispatcher.methods, nullptr);
    EXPECT_EQ(dispatcher.filterObject(&item), -252);
    EXPECT_EQ(dispatcher.getFilterMethod(filterObjectID(0)), nullptr);
    dispatcher.setFilterHandler(filterObjectID(0), &dispatcher, &OpenDispatcher::handle);
    EXPECT_EQ(dispatcher.filterObject(&item), -252);
    dispatcher.filterInit(nullptr, nullptr); // and recovers
    dispatcher.setFilterHandler(filterObjectID(0), &dispatcher, &OpenDispatcher::handle);
    EXPECT_EQ(dispatcher.filterObject(&item), 4);
}

TEST(KarCtrlWithoutMemory, HoldsNeitherPercentNorMessages)
{
    const int before = inUse();
    {
        AllAllocationsFail failing;
        OpenCtrl ctrl;
        EXPECT_EQ(ctrl.percent, nullptr);
        EXPECT_EQ(ctrl.messages, nullptr);
        EXPECT_EQ(ctrl.getMessageList(), nullptr);
        EXPECT_FALSE(ctrl.isBreak());
        ctrl.SetBreak();
        EXPECT_TRUE(ctrl.isBreak());
    }
    EXPECT_EQ(inUse(), before);
}

TEST(KarCtrlWithoutMemory, StoresNothingAndReadsAsZero)
{
    OpenCtrl ctrl = [] {
        AllAllocationsFail failing;
        return OpenCtrl();
    }();
    ctrl.resetPercent();
    ctrl.setPercentStartEnd(10, 60);
    ctrl.addPercentLayer();
    ctrl.setLayerPercent(50);
    ctrl.setGlobalPercent(70);
    ctrl.removePercentLayer();
    EXPECT_EQ(ctrl.getGlobalPercent(), 0);
    EXPECT_EQ(ctrl.getLayerPercent(), 0);
    EXPECT_EQ(ctrl.addMessage(EnumMessageID(1), 1), nullptr);
    EXPECT_EQ(ctrl.getMessageList(), nullptr);
    EXPECT_EQ(ctrl.getMessage(), nullptr);
    EXPECT_EQ(ctrl.getMessage(EnumMessageID(1)), nullptr);
    karMessageBase other;
    EXPECT_EQ(ctrl.nextMessage(&other, MessageAny), nullptr);
    EXPECT_EQ(ctrl.prevMessage(&other, MessageAny), nullptr);
    ctrl.removeMessage(&other);
}

TEST(KarCtrlWithoutMemory, EachFailingAllocationLeavesTheRest)
{
    const int before = inUse();
    bool sawMessagesOnly = false;
    for (unsigned n = 1; n < 10; ++n) {
        OpenCtrl *probe;
        bool happened;
        {
            NthAllocationFails failing(n);
            probe = ::new OpenCtrl;
            happened = failing.happened();
        }
        if (n == 1) {
            EXPECT_EQ(probe->percent, nullptr);
        } else if (n == 2) { // the stack's layer couldn't be had, nor what follows
            ASSERT_NE(probe->percent, nullptr);
            EXPECT_EQ(probe->percent->ListAnzahl(), 0);
            EXPECT_EQ(probe->messages, nullptr);
            EXPECT_EQ(probe->percent->getStart(), -1);
        } else if (n == 3) {
            EXPECT_EQ(probe->percent->ListAnzahl(), 1);
            EXPECT_EQ(probe->messages, nullptr);
            sawMessagesOnly = true;
        } else {
            EXPECT_NE(probe->percent, nullptr);
            EXPECT_NE(probe->messages, nullptr);
            EXPECT_FALSE(happened);
        }
        ::delete probe;
    }
    EXPECT_TRUE(sawMessagesOnly);
    EXPECT_EQ(inUse(), before);
}

TEST(KarFilterWithoutMemory, HasNoControllerThatItOwns)
{
    AllAllocationsFail failing;
    karFilter filter;
    EXPECT_EQ(filter.getCtrl(), nullptr);
    EXPECT_TRUE(filter.isOwnCtrlUsed());
    filter.setCtrl(nullptr);
    EXPECT_FALSE(filter.isOwnCtrlUsed());
}

TEST(KarFilterWithoutMemory, StoresNothingAndReadsAsZero)
{
    AllAllocationsFail failing;
    karFilter filter;
    filter.setBreak(true);
    EXPECT_FALSE(filter.isBreak());
    EXPECT_EQ(filter.getBreak(), 0);
    filter.setBreak(false);
    filter.resetPercent();
    filter.setPercentStartEnd(10, 60);
    filter.addPercentLayer();
    filter.setPercent(50);
    filter.setGlobalPercent(70);
    filter.removePercentLayer();
    EXPECT_EQ(filter.getGlobalPercent(), 0);
    EXPECT_EQ(filter.getPercent(), 0);
    EXPECT_EQ(filter.getMessageList(), nullptr);
    EXPECT_EQ(filter.addMessage(EnumMessageID(1), 1), nullptr);
    EXPECT_EQ(filter.getMessage(), nullptr);
    EXPECT_EQ(filter.getMessage(EnumMessageID(1)), nullptr);
    filter.removeMessage(nullptr);
}

TEST(KarPercentWithoutMemory, AddLayerLeavesTheStackAsItWas)
{
    KeptPage page;
    SilentHost host;
    karPercent stack;
    stack.setStartEnd(10, 60);
    stack.setLayerPercent(50);
    {
        AllAllocationsFail failing;
        stack.addLayer();
    }
    EXPECT_EQ(stack.ListAnzahl(), 1);
    EXPECT_EQ(stack.getStart(), 10);
    EXPECT_EQ(stack.getPercent(), 35);
    {
        AllAllocationsFail failing;
        stack.reset();
    }
    EXPECT_EQ(stack.ListAnzahl(), 0);
    EXPECT_EQ(stack.getStart(), -1);
    EXPECT_EQ(stack.getPercent(), 35);
}

TEST(KarMessageBaseWithoutMemory, AMessageWithoutArrayReadsItsCountAndHoldsNothing)
{
    const int before = inUse();
    {
        AllAllocationsFail failing;
        karMessageBase message(EnumMessageID(2), 3);
        EXPECT_EQ(message.getParamCount(), 3);
        EXPECT_EQ(message.getParam(0), nullptr);
        EXPECT_EQ(message.getParamType(2), 0);
        message.setId(0, 1).setText(1, "x").setDouble(2, 1.0);
        EXPECT_EQ(message.getParam(0), nullptr);
    }
    EXPECT_EQ(inUse(), before);
}

TEST(KarMessageBaseWithoutMemory, AfterAFailedArrayBuiltValuesAreReleasedAndGivenOnesStay)
{
    KeptPage page;
    const int before = inUse();
    {
        karMessageBase message(EnumMessageID(2), 1);
        {
            AllAllocationsFail failing;
            message.setParamCount(1);
        }
        message.setId(0, 1);
        {
            AllAllocationsFail failing;
            message.setParamCount(2);
        }
        message.setId(0, 1).setText(1, "x").setInteger(0, 3).setDouble(1, 1.0);
        EXPECT_EQ(message.getParam(0), nullptr);
        auto *value = new karDataInteger(5);
        message.setParam(0, value);
        EXPECT_EQ(value->getInteger(), 5);
        delete value;
        message.setParamCount(2);
        message.setId(1, 9);
        EXPECT_EQ(message.getParam(1)->getId(), 9);
    }
    EXPECT_EQ(inUse(), before);
}

TEST(KarMessageBaseWithoutMemory, ATypedSetterWithoutMemoryEmptiesTheSlot)
{
    KeptPage page;
    const int before = inUse();
    {
        karMessageBase message(EnumMessageID(2), 2);
        message.setId(0, 1).setDouble(1, 2.0);
        AllAllocationsFail failing;
        message.setId(0, 2);
        EXPECT_EQ(message.getParam(0), nullptr);
        EXPECT_EQ(message.getParam(1)->getDouble(), 2.0);
        message.setDouble(1, 3.0);
        EXPECT_EQ(message.getParam(1), nullptr);
    }
    EXPECT_EQ(inUse(), before);
}

TEST(KarMessageWithoutMemory, AddMessageGivesNullAndLeavesTheList)
{
    karMessage list;
    karMessageLBase *first = list.addMessage(EnumMessageID(1), 1);
    {
        AllAllocationsFail failing;
        EXPECT_EQ(list.addMessage(EnumMessageID(1), 1), nullptr);
    }
    EXPECT_EQ(list.ListAnzahl(), 1);
    EXPECT_EQ(list.ListLast(), first);

    karCtrl ctrl;
    AllAllocationsFail failing;
    EXPECT_EQ(ctrl.addMessage(EnumMessageID(1), 1), nullptr);
}
