// Who deletes what in the control classes, and which virtual operations of a host's own class are heard.
#include "karctrl.h"
#include "karfilterid.h"

#include "failalloc.h"
#include "silenthost.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

/// Writes down what is appended and removed.
template <class Owner>
class Heard : public Owner {
public:
    karListObject *ListAppend(karListObject *element) override
    {
        calls.emplace_back(element ? "append" : "append null");
        return this->karListHeadObject::ListAppend(element);
    }
    void ListRemove(karListObject *element) override
    {
        calls.emplace_back(element ? "remove" : "remove null");
        Owner::ListRemove(element);
    }
    Calls calls;
};

/// Blocks of the library that are in use, whatever their size class.
int liveBlocks()
{
    int blocks = 0;
    for (int pool = 0; pool < 11; ++pool)
        blocks += AllocatorPeek::pool(*globalMemList, pool).getAnzElem();
    return blocks;
}

/// A value that tells of its end.
class Counted : public karDataId {
public:
    explicit Counted(Calls &record, const char *ownName = "value") : calls(record), name(ownName) {}
    ~Counted() override { calls.emplace_back(name); }
    Calls &calls;
    const char *name;
};

} // namespace

TEST(KarMessageBaseOwner, TheValueThatStandsInTheSlotMayBeSetAgain)
{
    Calls deleted;
    {
        karMessageBase message;
        karDataBase *value = new Counted(deleted);
        message.setParam(1, value);
        message.setParam(1, value);
        EXPECT_TRUE(deleted.empty());
        EXPECT_EQ(message.getParam(1), value);
    }
    EXPECT_EQ(deleted, Calls{"value"});
}

TEST(KarMessageBaseOwner, OutOfRangeWhatATypedSetterBuiltIsLeftAlive)
{
    karMessageBase message;
    const int before = liveBlocks();
    message.setDouble(5, 1.0);
    EXPECT_EQ(liveBlocks(), before + 1); // neither stored nor released
    message.setId(-1, 1).setInteger(2, 1);
    EXPECT_EQ(liveBlocks(), before + 3);
    message.setParam(7, static_cast<const karVectorizeParameter *>(nullptr));
    EXPECT_EQ(liveBlocks(), before + 4);
    EXPECT_EQ(message.getParam(0), nullptr);
    EXPECT_EQ(message.getParam(1), nullptr);
}

TEST(KarMessageBaseOwner, WithANegativeCountWhatATypedSetterBuiltIsLeftAlive)
{
    karMessageBase message(EnumMessageID(1), -3);
    const int before = liveBlocks();
    message.setDouble(0, 1.0);
    EXPECT_EQ(liveBlocks(), before + 1);
    EXPECT_EQ(message.getParam(0), nullptr);
}

TEST(KarMessageBaseOwner, AfterAFailedArrayASubclassKeepsTheValuesItTakes)
{
    class Keeping : public karMessageBase {
    public:
        using karMessageBase::karMessageBase;
        using karMessageBase::setParam;
        karMessageBase &setParam(int, karDataBase *value) override
        {
            kept = value;
            return *this;
        }
        ~Keeping() override { delete kept; }
        karDataBase *kept = nullptr;
    };
    Keeping message(EnumMessageID(1), 2147483647); // an array that has no size in 32 bits
    message.setId(3, 14);
    ASSERT_NE(message.kept, nullptr);
    EXPECT_EQ(message.kept->getId(), 14);
}

TEST(KarMessageBaseOwner, ACopySharesTheArrayAndDeletesItToo)
{
    class Open : public karMessageBase {
    public:
        using karMessageBase::karMessageBase;
        void forget()
        {
            params = nullptr;
            paramCount = 0;
        }
    };
    Calls deleted;
    {
        Open message(EnumMessageID(3), 2);
        message.setParam(0, new Counted(deleted));
        {
            karMessageBase copy(message);
            EXPECT_EQ(copy.getMessageID(), 3);
            EXPECT_EQ(copy.getParamCount(), 2);
            EXPECT_EQ(copy.getParam(0), message.getParam(0));
            message.forget(); // one of the two lets go
        }
        EXPECT_EQ(deleted, Calls{"value"});
    }
    EXPECT_EQ(deleted.size(), 1u);
}

TEST(KarMessageBaseOwner, TheTypeIsThatOfTheVirtualGetParam)
{
    class Showing : public karMessageBase {
    public:
        const karDataBase *getParam(int) const override { return &shown; }
        karDataDouble shown;
    };
    const Showing message;
    EXPECT_EQ(message.getParamType(0), 4);
    EXPECT_EQ(message.getParamType(99), 4);
}

TEST(KarMessageLBaseOwner, ACopyTakesLinksAndMessage)
{
    karMessageLBase first(nullptr, EnumMessageID(4), 0);
    karMessageLBase second(&first, EnumMessageID(5), 0);
    karMessageLBase copy(first);
    EXPECT_EQ(copy.next(), &second);
    EXPECT_EQ(copy.getMessage()->getMessageID(), 4);
    EXPECT_NE(copy.getMessage(), first.getMessage());
    EXPECT_EQ(second.prev(), &first);
    copy.next(static_cast<karMessageLBase *>(nullptr));
}

TEST(KarMessageOwner, RemovedElementsTakeMessageAndParametersWithThem)
{
    Calls deleted;
    const int before = liveBlocks();
    {
        karMessage list;
        for (const char *name : {"a", "b", "c", "d"})
            list.addMessage(EnumMessageID(name[0]), 1)->getMessage()->setParam(0, new Counted(deleted, name));
        list.ListRemove(list.ListFirst());
        EXPECT_EQ(deleted, Calls{"a"});
        list.removeMessage(EnumMessageID('c'));
        EXPECT_EQ(deleted, (Calls{"a", "c"}));
        list.addMessage(EnumMessageID('d'), 1)->getMessage()->setParam(0, new Counted(deleted, "e"));
    }
    EXPECT_EQ(deleted, (Calls{"a", "c", "b", "d", "e"})); // the head takes the rest along, front to back
    EXPECT_EQ(liveBlocks(), before);
}

TEST(KarMessageOwner, ListOperationsAreTyped)
{
    karMessage list;
    karMessageLBase *a = list.ListAppend(new karMessageLBase(nullptr, EnumMessageID(1), 0));
    karMessageLBase *b = list.ListInsert(new karMessageLBase(nullptr, EnumMessageID(2), 0), a);
    karMessageLBase *c = list.ListInsert(new karMessageLBase(nullptr, EnumMessageID(3), 0), nullptr);
    EXPECT_EQ(list.ListFirst(), c);
    EXPECT_EQ(list.ListLast(), b);
    EXPECT_EQ(list.ListCurrent(), c);
    EXPECT_EQ(list.ListCurrent(a), c);
    EXPECT_EQ(list.ListCurrent(), a);
    EXPECT_EQ(list.ListExist(b), b);
    karMessageLBase *taken = list.ListUnchain(b);
    EXPECT_EQ(taken, b);
    EXPECT_EQ(list.ListExist(b), nullptr);
    EXPECT_EQ(list.ListLast(), a);
    delete taken;
}

TEST(KarMessageOwner, ASubclassHearsWhatIsAddedAndRemoved)
{
    Heard<karMessage> list;
    karMessageLBase *one = list.addMessage(EnumMessageID(1), 0);
    EXPECT_EQ(list.calls, Calls{"append"});
    list.addMessage(one);
    EXPECT_EQ(list.calls, Calls{"append"});
    EXPECT_EQ(list.addMessage(EnumMessageID(8), 0), nullptr);
    EXPECT_EQ(list.addMessage(static_cast<karMessageLBase *>(nullptr)), nullptr);
    EXPECT_EQ(list.calls, (Calls{"append", "append null", "append null"}));
    list.calls.clear();
    static_cast<karMessage &>(list).ListAppend(new karMessageLBase(nullptr, EnumMessageID(1), 0)); // the typed form
    EXPECT_EQ(list.calls, Calls{"append"});
    list.calls.clear();
    list.removeMessage(static_cast<karMessageLBase *>(nullptr));
    list.removeMessage(one->getMessage());
    list.remAllMessage(EnumMessageID(1));
    EXPECT_EQ(list.calls, (Calls{"remove null", "remove", "remove"}));
}

TEST(KarPercentOwner, ASubclassHearsWhatIsAddedAndRemoved)
{
    Heard<karPercent> stack;
    stack.addLayer();
    stack.removeLayer();
    stack.reset();
    EXPECT_EQ(stack.calls, (Calls{"append", "remove", "remove", "append"}));
    stack.calls.clear();
    stack.removeLayer();
    stack.removeLayer(); // nothing to remove
    EXPECT_EQ(stack.calls, Calls{"remove"});
    stack.calls.clear();
    AllAllocationsFail failing;
    stack.addLayer();
    EXPECT_EQ(stack.calls, Calls{"append null"});
}

TEST(KarPercentOwner, LayersGoWithTheStack)
{
    const int before = liveBlocks();
    {
        karPercent stack;
        stack.addLayer();
        EXPECT_EQ(liveBlocks(), before + 2);
        stack.removeLayer();
        EXPECT_EQ(liveBlocks(), before + 1);
        stack.addLayer();
    }
    EXPECT_EQ(liveBlocks(), before);
}

TEST(KarPercentOwner, ACopySharesLayersAndTakesThePercentages)
{
    class Open : public karPercent {
    public:
        void forget() { listFirst = listLast = listCurrent = nullptr; }
        void **reservedPlace() { return &reserved; }
    };
    Open stack;
    stack.setLayerPercent(40);
    stack.setPercent(7);
    EXPECT_EQ(*stack.reservedPlace(), nullptr);
    *stack.reservedPlace() = &stack;
    Open copy(stack);
    EXPECT_EQ(copy.ListFirst(), stack.ListFirst());
    EXPECT_EQ(copy.getPercent(), 7);
    EXPECT_EQ(copy.getLayerPercent(), 40);
    EXPECT_EQ(*copy.reservedPlace(), &stack);
    copy.forget();
    copy = stack;
    EXPECT_EQ(copy.ListLast(), stack.ListLast());
    copy.forget();
}

namespace {

class OpenCtrl : public karCtrl {
public:
    using karCtrl::breakState;
    using karCtrl::messages;
    using karCtrl::percent;
    void forget()
    {
        percent = nullptr;
        messages = nullptr;
    }
};

} // namespace

TEST(KarCtrlOwner, PercentageGoesBeforeTheMessages)
{
    class Percent : public karPercent {
    public:
        explicit Percent(Calls &record) : calls(record) {}
        ~Percent() override { calls.emplace_back("percent"); }
        Calls &calls;
    };
    class Messages : public karMessage {
    public:
        explicit Messages(Calls &record) : calls(record) {}
        ~Messages() override { calls.emplace_back("messages"); }
        Calls &calls;
    };
    Calls deleted;
    const int before = liveBlocks();
    {
        OpenCtrl ctrl;
        delete ctrl.percent;
        delete ctrl.messages;
        ctrl.percent = new Percent(deleted);
        ctrl.messages = new Messages(deleted);
    }
    EXPECT_EQ(deleted, (Calls{"percent", "messages"}));
    EXPECT_EQ(liveBlocks(), before);
}

TEST(KarCtrlOwner, CopyAndAssignmentShareEverything)
{
    OpenCtrl ctrl;
    ctrl.SetBreak();
    OpenCtrl copy(ctrl);
    EXPECT_EQ(copy.getBreak(), 1);
    EXPECT_EQ(copy.percent, ctrl.percent);
    EXPECT_EQ(copy.messages, ctrl.messages);
    copy.forget();
    copy.ResetBreak();
    copy = ctrl;
    EXPECT_EQ(copy.getBreak(), 1);
    EXPECT_EQ(copy.percent, ctrl.percent);
    EXPECT_EQ(copy.messages, ctrl.messages);
    copy.forget();
}

TEST(KarFilterOwner, ItsOwnControllerGoesWithTheFilterAndBeforeAnother)
{
    karCtrl client;
    const int before = liveBlocks();
    {
        karFilter filter;
        EXPECT_GT(liveBlocks(), before);
    }
    EXPECT_EQ(liveBlocks(), before);
    {
        karFilter filter;
        filter.setCtrl(&client);
        EXPECT_EQ(liveBlocks(), before);
        karFilter other;
        other.setCtrl(nullptr);
        EXPECT_EQ(liveBlocks(), before);
    }
    EXPECT_EQ(liveBlocks(), before);
    EXPECT_FALSE(client.isBreak());
}

namespace {

/// Writes down every operation that reaches it.
class HeardCtrl : public karCtrl {
public:
    bool isBreak() override { return heard("isBreak"), true; }
    void SetBreak() override { heard("SetBreak"); }
    void ResetBreak() override { heard("ResetBreak"); }
    BreakState getBreak() override { return heard("getBreak"), BreakState(9); }
    void resetPercent() override { heard("resetPercent"); }
    void setGlobalPercent(int value) override { heard("setGlobalPercent " + std::to_string(value)); }
    int getGlobalPercent() override { return heard("getGlobalPercent"), 21; }
    void setLayerPercent(int value) override { heard("setLayerPercent " + std::to_string(value)); }
    int getLayerPercent() override { return heard("getLayerPercent"), 22; }
    void addPercentLayer() override { heard("addPercentLayer"); }
    void removePercentLayer() override { heard("removePercentLayer"); }
    void setPercentStartEnd(int start, int end) override
    {
        heard("setPercentStartEnd " + std::to_string(start) + " " + std::to_string(end));
    }
    karMessage *getMessageList() override { return heard("getMessageList"), &list; }
    karMessageBase *addMessage(EnumMessageID id, int count) override
    {
        return heard("addMessage " + std::to_string(id) + " " + std::to_string(count)), &message;
    }
    karMessageBase *getMessage(EnumMessageID id) override
    {
        return heard("getMessage " + std::to_string(id)), &message;
    }
    karMessageBase *getMessage() override { return heard("getMessage"), &message; }
    void removeMessage(karMessageBase *removed) override { heard(removed == &message ? "removeMessage" : "?"); }

    Calls take()
    {
        Calls taken;
        taken.swap(calls);
        return taken;
    }

    karMessage list;
    karMessageBase message;

private:
    void heard(const std::string &call) { calls.push_back(call); }
    Calls calls;
};

} // namespace

TEST(KarFilterOwner, EveryOperationReachesTheVirtualOneAndGivesItsResult)
{
    HeardCtrl ctrl;
    karFilter filter(&ctrl);
    EXPECT_TRUE(filter.isBreak());
    filter.setBreak(true);
    filter.setBreak(false);
    EXPECT_EQ(filter.getBreak(), 9);
    EXPECT_EQ(ctrl.take(), (Calls{"isBreak", "SetBreak", "ResetBreak", "getBreak"}));

    filter.resetPercent();
    filter.setGlobalPercent(3);
    EXPECT_EQ(filter.getGlobalPercent(), 21);
    filter.setPercent(4);
    EXPECT_EQ(filter.getPercent(), 22);
    filter.addPercentLayer();
    filter.removePercentLayer();
    filter.setPercentStartEnd(5, 6);
    EXPECT_EQ(ctrl.take(),
              (Calls{"resetPercent", "setGlobalPercent 3", "getGlobalPercent", "setLayerPercent 4", "getLayerPercent",
                     "addPercentLayer", "removePercentLayer", "setPercentStartEnd 5 6"}));

    EXPECT_EQ(filter.getMessageList(), &ctrl.list);
    EXPECT_EQ(filter.addMessage(EnumMessageID(7), 2), &ctrl.message);
    EXPECT_EQ(filter.getMessage(), &ctrl.message);
    EXPECT_EQ(filter.getMessage(EnumMessageID(6)), &ctrl.message);
    filter.removeMessage(&ctrl.message);
    EXPECT_EQ(ctrl.take(), (Calls{"getMessageList", "addMessage 7 2", "getMessage", "getMessage 6", "removeMessage"}));
}

TEST(KarFilterIdBaseOwner, ItsTableGoesWithItAndBeforeAnother)
{
    const int before = liveBlocks();
    {
        karFilterIdBase dispatcher;
        EXPECT_EQ(liveBlocks(), before + 1);
        dispatcher.filterInit(nullptr, nullptr);
        EXPECT_EQ(liveBlocks(), before + 1);
    }
    EXPECT_EQ(liveBlocks(), before);
}
