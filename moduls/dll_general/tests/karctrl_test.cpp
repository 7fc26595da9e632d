// Values, messages, controller and filter. Failing allocation is in karctrl_failure_test.cpp, ownership and what a
// subclass hears in karctrl_owner_test.cpp, fields and slots in karctrl_layout_test.cpp.
#include "karctrl.h"

#include "silenthost.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// An address for a class that is never looked into.
char anything;
karVectorizeParameter *const parameterSet = reinterpret_cast<karVectorizeParameter *>(&anything);

// A value that tells of its end.
class CountedId : public karDataId {
public:
    CountedId(int value, int &counter) : karDataId(value), deleted(counter) {}
    ~CountedId() override { ++deleted; }
    int &deleted;
};

// Gives the copy constructor's source a pointer, which nothing else can.
class OpenParam : public karDataParam {
public:
    OpenParam() { param = parameterSet; }
};

const char *text(const karString &value) { return value; }

} // namespace

TEST(KarDataBase, GivesNothingOfAnyKind)
{
    karDataBase value;
    EXPECT_EQ(value.getType(), 0);
    EXPECT_EQ(value.getId(), -1);
    EXPECT_STREQ(text(value.getText()), "");
    EXPECT_EQ(value.getInteger(), 0);
    EXPECT_EQ(value.getDouble(), 0.0);
    EXPECT_EQ(value.getParam(), nullptr);
    karDataBase copy(value);
    copy = value;
    EXPECT_EQ(copy.getType(), 0);
}

TEST(KarDataId, HoldsAnIdAndNothingElse)
{
    EXPECT_EQ(karDataId().getId(), 0);
    karDataId value(5);
    EXPECT_EQ(value.getType(), 1);
    EXPECT_EQ(value.getId(), 5);
    EXPECT_EQ(value.getInteger(), 0);
    EXPECT_EQ(value.getDouble(), 0.0);
    value.setId(-7);
    karDataId copy(value);
    EXPECT_EQ(copy.getId(), -7);
    copy.setId(1);
    EXPECT_EQ(value.getId(), -7);
    value = copy;
    EXPECT_EQ(value.getId(), 1);
}

TEST(KarDataText, HoldsATextAndGivesCopies)
{
    EXPECT_STREQ(text(karDataText().getText()), "");
    karDataText value(karString("one"));
    EXPECT_EQ(value.getType(), 2);
    EXPECT_STREQ(text(value.getText()), "one");
    EXPECT_EQ(value.getId(), -1);
    karString copy = value.getText();
    copy = "two";
    EXPECT_STREQ(text(value.getText()), "one");
    value.setText(copy);
    karDataText other(value);
    EXPECT_STREQ(text(other.getText()), "two");
    other = karDataText(karString("three"));
    EXPECT_STREQ(text(other.getText()), "three");
    EXPECT_STREQ(text(value.getText()), "two");
}

TEST(KarDataInteger, HoldsAnInteger)
{
    EXPECT_EQ(karDataInteger().getInteger(), 0);
    karDataInteger value(42);
    EXPECT_EQ(value.getType(), 3);
    EXPECT_EQ(value.getInteger(), 42);
    EXPECT_STREQ(text(value.getText()), "");
    EXPECT_EQ(value.getId(), -1);
    value.setInteger(-1);
    karDataInteger copy(value);
    copy = value;
    EXPECT_EQ(copy.getInteger(), -1);
}

TEST(KarDataDouble, IsStoredByTheSetterOfTheSameName)
{
    EXPECT_EQ(karDataDouble().getDouble(), 0.0);
    karDataDouble value(2.5);
    EXPECT_EQ(value.getType(), 4);
    EXPECT_EQ(value.getDouble(), 2.5);
    EXPECT_EQ(value.getInteger(), 0);
    value.getDouble(-0.25);
    karDataDouble copy(value);
    copy = value;
    EXPECT_EQ(copy.getDouble(), -0.25);
}

TEST(KarDataParam, StoresNoPointerButCopiesOne)
{
    karDataParam value(parameterSet);
    EXPECT_EQ(value.getType(), 5);
    EXPECT_EQ(value.getParam(), nullptr);
    value.setParam(parameterSet);
    EXPECT_EQ(value.getParam(), nullptr);
    EXPECT_EQ(karDataParam().getParam(), nullptr);

    OpenParam open;
    karDataParam copy(open);
    EXPECT_EQ(copy.getParam(), parameterSet);
    karDataParam assigned;
    assigned = copy;
    EXPECT_EQ(assigned.getParam(), parameterSet);
    assigned.setParam(nullptr);
    EXPECT_EQ(assigned.getParam(), parameterSet);
}

TEST(KarDataBase, IsMadeFromAValueAlone)
{
    karDataInteger integer = 5;
    karDataDouble real = 2.5;
    EXPECT_EQ(integer.getInteger(), 5);
    EXPECT_EQ(real.getDouble(), 2.5);
    const karMessageBase message = {MessageNone, 3};
    EXPECT_EQ(message.getParamCount(), 3);
}

TEST(KarMessageBase, StartsWithTwoEmptySlotsAndIdEight)
{
    karMessageBase message;
    EXPECT_EQ(message.getMessageID(), 8);
    EXPECT_EQ(message.getParamCount(), 2);
    EXPECT_EQ(message.getParam(0), nullptr);
    EXPECT_EQ(message.getParam(1), nullptr);
    EXPECT_EQ(message.getParamType(0), 0);
}

TEST(KarMessageBase, ReadsNothingOutOfRange)
{
    karMessageBase message(EnumMessageID(3), 2);
    EXPECT_EQ(message.getMessageID(), 3);
    EXPECT_EQ(message.getParam(-1), nullptr);
    EXPECT_EQ(message.getParam(2), nullptr);
    EXPECT_EQ(message.getParamType(-1), 0);
    EXPECT_EQ(message.getParamType(2), 0);
}

TEST(KarMessageBase, WhatStandsBehindTheArrayIsNoSlot)
{
    void *const element = KarAllocMemory(92); // the array's element of 100 bytes, marked before it is taken
    void *const neighbour = KarAllocMemory(92);
    std::memset(element, 0x55, 92);
    KarDellocMemory(element);
    karMessageBase message;
    EXPECT_EQ(message.getParam(2), nullptr);
    EXPECT_EQ(message.getParamType(2), CtrlNone);
    karDataId value(7);
    message.setParam(2, &value);
    const void *behind;
    std::memcpy(&behind, static_cast<const char *>(element) + 2 * sizeof(void *), sizeof behind);
    void *mark;
    std::memset(&mark, 0x55, sizeof mark);
    EXPECT_EQ(behind, mark);
    KarDellocMemory(neighbour);
}

TEST(KarMessageBase, TypedSettersChainAndBuildTheirKind)
{
    karMessageBase message(EnumMessageID(1), 4);
    message.setId(0, 11).setText(1, "name").setDouble(2, 0.5).setParam(3, parameterSet);
    EXPECT_EQ(message.getParamType(0), 1);
    EXPECT_EQ(message.getParam(0)->getId(), 11);
    EXPECT_EQ(message.getParamType(1), 2);
    EXPECT_STREQ(text(message.getParam(1)->getText()), "name");
    EXPECT_EQ(message.getParamType(2), 4);
    EXPECT_EQ(message.getParam(2)->getDouble(), 0.5);
    EXPECT_EQ(message.getParamType(3), 5);
    EXPECT_EQ(message.getParam(3)->getParam(), nullptr);
}

TEST(KarMessageBase, SetIntegerAlwaysStoresZero)
{
    karMessageBase message;
    message.setInteger(0, 42);
    EXPECT_EQ(message.getParamType(0), 3);
    EXPECT_EQ(message.getParam(0)->getInteger(), 0);
    message.setParam(1, new karDataInteger(42));
    EXPECT_EQ(message.getParam(1)->getInteger(), 42);
}

TEST(KarMessageBase, AskedForAnotherKindAValueGivesTheDefault)
{
    karMessageBase message(EnumMessageID(1), 3);
    message.setText(0, "x").setParam(1, new karDataInteger(4)).setDouble(2, 9.0);
    EXPECT_EQ(message.getParam(0)->getId(), -1);
    EXPECT_STREQ(text(message.getParam(1)->getText()), "");
    EXPECT_EQ(message.getParam(2)->getInteger(), 0);
}

TEST(KarMessageBase, StoringReplacesAndDeletes)
{
    int deleted = 0;
    karMessageBase message;
    message.setParam(0, new CountedId(1, deleted));
    message.setText(0, "x");
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(message.getParamType(0), 2);
    message.setId(0, 3);
    EXPECT_EQ(message.getParamType(0), 1);
    message.setParam(0, new CountedId(1, deleted));
    message.setParam(0, static_cast<karDataBase *>(nullptr));
    EXPECT_EQ(deleted, 2);
    EXPECT_EQ(message.getParam(0), nullptr);
}

TEST(KarMessageBase, OutOfRangeAValueStaysWithTheCaller)
{
    int deleted = 0;
    karMessageBase message;
    auto *value = new CountedId(1, deleted);
    EXPECT_EQ(&message.setParam(2, value), &message);
    EXPECT_EQ(&message.setParam(-1, value), &message);
    EXPECT_EQ(deleted, 0);
    delete value;
    EXPECT_EQ(message.getParam(0), nullptr);
    EXPECT_EQ(message.getParam(1), nullptr);
}

TEST(KarMessageBase, MayComeFromNew)
{
    karMessageBase *const message = new karMessageBase;
    EXPECT_EQ(message->getParamCount(), 2);
    delete message;
}

namespace {

// Keeps what the typed setters pass to the virtual operation, so that nothing leaks.
class Watched : public karMessageBase {
public:
    using karMessageBase::karMessageBase;
    using karMessageBase::setParam;
    karMessageBase &setParam(int index, karDataBase *value) override
    {
        indices.push_back(index);
        values.push_back(value);
        return *this;
    }
    ~Watched() override
    {
        for (karDataBase *value : values)
            delete value;
    }
    std::vector<int> indices;
    std::vector<karDataBase *> values;
};

} // namespace

TEST(KarMessageBase, TypedSettersGoThroughTheVirtualOperation)
{
    Watched message(EnumMessageID(1), 2);
    message.setId(5, 1).setText(-1, "x").setInteger(0, 7).setDouble(1, 2.0);
    message.setParam(9, parameterSet);
    EXPECT_EQ(message.indices, (std::vector<int>{5, -1, 0, 1, 9}));
    const int types[] = {1, 2, 3, 4, 5};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(message.values[static_cast<std::size_t>(i)]->getType(), types[i]);
    EXPECT_EQ(message.getParam(0), nullptr);
}

TEST(KarMessageBase, SetParamCountEmptiesEverything)
{
    int deleted = 0;
    karMessageBase message;
    message.setParam(0, new CountedId(1, deleted)).setParam(1, new CountedId(2, deleted));
    EXPECT_EQ(&message.setParamCount(5), &message);
    EXPECT_EQ(deleted, 2);
    EXPECT_EQ(message.getParamCount(), 5);
    for (int index = 0; index < 5; ++index)
        EXPECT_EQ(message.getParam(index), nullptr);
    message.setParamCount(0);
    EXPECT_EQ(message.getParamCount(), 0);
    EXPECT_EQ(message.getParam(0), nullptr);
    message.setParam(0, static_cast<karDataBase *>(nullptr));
    EXPECT_EQ(message.getParamType(0), 0);
}

TEST(KarMessageBase, DestructionDeletesEveryValue)
{
    int deleted = 0;
    {
        karMessageBase message(EnumMessageID(1), 3);
        message.setParam(0, new CountedId(1, deleted)).setParam(2, new CountedId(2, deleted));
    }
    EXPECT_EQ(deleted, 2);
}

TEST(KarMessageBase, ANegativeCountIsReadAndHoldsNothing)
{
    int deleted = 0;
    karMessageBase message(EnumMessageID(1), -3);
    EXPECT_EQ(message.getParamCount(), -3);
    EXPECT_EQ(message.getParam(0), nullptr);
    EXPECT_EQ(message.getParam(-1), nullptr);
    EXPECT_EQ(message.getParamType(-3), 0);
    karDataBase *value = new CountedId(1, deleted);
    message.setParam(0, value);
    EXPECT_EQ(deleted, 0);
    delete value;
    message.setParamCount(1);
    message.setId(0, 4);
    EXPECT_EQ(message.getParam(0)->getId(), 4);
}

TEST(KarMessageBase, ACountWhoseArrayHasNoSizeInThirtyTwoBitsHoldsNothing)
{
    karMessageBase message(EnumMessageID(1), 2147483647);
    EXPECT_EQ(message.getParamCount(), 2147483647);
    EXPECT_EQ(message.getParam(5), nullptr);
    message.setDouble(5, 1.0); // built, not stored, released
    EXPECT_EQ(message.getParamType(5), 0);
    message.setParamCount(1);
    EXPECT_EQ(message.getParamCount(), 1);
    message.setId(0, 4);
    EXPECT_EQ(message.getParam(0)->getId(), 4);
}

namespace {

// A message whose copy lets go of the shared array in time.
class Sharing : public karMessageBase {
public:
    using karMessageBase::karMessageBase;
    void forget()
    {
        params = nullptr;
        paramCount = 0;
    }
};

} // namespace

TEST(KarMessageBase, ACopySharesTheArray)
{
    karMessageBase message;
    Sharing copy;
    copy.setParamCount(0);
    static_cast<karMessageBase &>(copy) = message;
    message.setId(1, 6);
    ASSERT_NE(copy.getParam(1), nullptr);
    EXPECT_EQ(copy.getParam(1), message.getParam(1));
    EXPECT_EQ(copy.getMessageID(), message.getMessageID());
    copy.forget();
}

TEST(KarMessageLBase, IsAListElementWithAMessageInside)
{
    karMessageLBase first(nullptr, EnumMessageID(4), 1);
    karMessageLBase second(&first, EnumMessageID(5), 0);
    EXPECT_EQ(first.ListObjectOk(), 1);
    EXPECT_EQ(first.GetType(), 60);
    EXPECT_EQ(first.getMessage()->getMessageID(), 4);
    EXPECT_EQ(first.getMessage()->getParamCount(), 1);
    EXPECT_EQ(first.next(), &second);
    EXPECT_EQ(second.prev(), &first);
    EXPECT_EQ(second.first(), &first);
    EXPECT_EQ(first.last(), &second);
    EXPECT_EQ(first.current(), &first);
    second.prev(static_cast<karMessageLBase *>(nullptr));
    first.next(static_cast<karMessageLBase *>(nullptr));
    EXPECT_EQ(first.next(), nullptr);
}

TEST(KarMessage, AddsAtTheEndAndNothingForIdEight)
{
    karMessage list;
    EXPECT_EQ(list.ListHeadObjectOk(), 1);
    EXPECT_EQ(list.getListId(), 0);
    EXPECT_EQ(list.addMessage(EnumMessageID(8), 2), nullptr);
    EXPECT_EQ(list.ListAnzahl(), 0);
    karMessageLBase *one = list.addMessage(EnumMessageID(1), 2);
    karMessageLBase *zero = list.addMessage(EnumMessageID(0), 0);
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(list.ListFirst(), one);
    EXPECT_EQ(list.ListLast(), zero);
    EXPECT_EQ(list.ListCurrent(), zero);
    EXPECT_EQ(one->getMessage()->getParamCount(), 2);
}

TEST(KarMessage, AddsAnElementOnce)
{
    karMessage list;
    auto *element = new karMessageLBase(nullptr, EnumMessageID(8), 0); // the id 8 is no bar here
    EXPECT_EQ(list.addMessage(element), element);
    EXPECT_EQ(list.addMessage(element), element);
    EXPECT_EQ(list.ListAnzahl(), 1);
    EXPECT_EQ(list.addMessage(static_cast<karMessageLBase *>(nullptr)), nullptr);
    EXPECT_EQ(list.ListAnzahl(), 1);
}

TEST(KarMessage, RemovesByElementMessageAndId)
{
    karMessage list;
    list.addMessage(EnumMessageID(1), 0);
    karMessageLBase *b = list.addMessage(EnumMessageID(2), 0);
    karMessageLBase *c = list.addMessage(EnumMessageID(1), 0);
    karMessageLBase *d = list.addMessage(EnumMessageID(2), 0);
    list.removeMessage(static_cast<karMessageLBase *>(nullptr));
    list.removeMessage(static_cast<karMessageBase *>(nullptr));
    list.removeMessage(EnumMessageID(77));
    EXPECT_EQ(list.ListAnzahl(), 4);
    list.removeMessage(EnumMessageID(1)); // the first of them alone
    EXPECT_EQ(list.ListFirst(), b);
    EXPECT_EQ(b->next(), c);
    list.removeMessage(c->getMessage());
    EXPECT_EQ(b->next(), d);
    list.removeMessage(b);
    EXPECT_EQ(list.ListFirst(), d);
}

TEST(KarMessage, RemAllRemovesEveryMessageOfTheId)
{
    karMessage list;
    for (const int id : {1, 2, 1, 1, 3, 1})
        list.addMessage(EnumMessageID(id), 1);
    list.remAllMessage(EnumMessageID(1));
    EXPECT_EQ(list.ListAnzahl(), 2);
    EXPECT_EQ(list.ListFirst()->getMessage()->getMessageID(), 2);
    EXPECT_EQ(list.ListLast()->getMessage()->getMessageID(), 3);
    list.remAllMessage(EnumMessageID(1));
    EXPECT_EQ(list.ListAnzahl(), 2);
}

TEST(KarMessage, SearchTakesZeroAndEightAsTheyAre)
{
    karMessage list;
    karMessageLBase *one = list.addMessage(EnumMessageID(1), 0);
    EXPECT_EQ(list.searchMessage(EnumMessageID(0)), nullptr);
    karMessageLBase *zero = list.addMessage(EnumMessageID(0), 0);
    auto *eight = new karMessageLBase(nullptr, EnumMessageID(8), 0);
    list.addMessage(eight);
    EXPECT_EQ(list.searchMessage(EnumMessageID(0)), zero);
    EXPECT_EQ(list.searchMessage(EnumMessageID(8)), eight);
    EXPECT_EQ(list.searchMessage(one), one);
    EXPECT_EQ(list.searchMessage(one->getMessage()), one);
    karMessageLBase foreign(nullptr, EnumMessageID(1), 0);
    EXPECT_EQ(list.searchMessage(&foreign), nullptr);
    EXPECT_EQ(list.searchMessage(foreign.getMessage()), nullptr);
}

TEST(KarMessage, NextAndPrevBeginAtTheMessageItself)
{
    karMessage list;
    karMessageLBase *a = list.addMessage(EnumMessageID(1), 0);
    karMessageLBase *b = list.addMessage(EnumMessageID(2), 0);
    karMessageLBase *c = list.addMessage(EnumMessageID(1), 0);
    EXPECT_EQ(list.nextMessage(b->getMessage(), EnumMessageID(2)), b);
    EXPECT_EQ(list.nextMessage(b->getMessage(), EnumMessageID(0)), b);
    EXPECT_EQ(list.nextMessage(b->getMessage(), EnumMessageID(1)), c);
    EXPECT_EQ(list.prevMessage(b->getMessage(), EnumMessageID(1)), a);
    EXPECT_EQ(list.prevMessage(c->getMessage(), EnumMessageID(0)), c);
    EXPECT_EQ(list.prevMessage(c->getMessage(), EnumMessageID(2)), b);
    EXPECT_EQ(list.nextMessage(c->getMessage(), EnumMessageID(2)), nullptr);
    EXPECT_EQ(list.prevMessage(a->getMessage(), EnumMessageID(2)), nullptr);
    EXPECT_EQ(list.nextMessage(c->getMessage(), EnumMessageID(8)), nullptr);
    karMessageBase foreign;
    EXPECT_EQ(list.nextMessage(&foreign, EnumMessageID(0)), nullptr);
    EXPECT_EQ(list.prevMessage(&foreign, EnumMessageID(0)), nullptr);
}

TEST(KarMessage, RemovingGoesThroughTheVirtualOperation)
{
    class Watching : public karMessage {
    public:
        void ListRemove(karListObject *element) override
        {
            ++removed;
            karMessage::ListRemove(element);
        }
        int removed = 0;
    };
    Watching list;
    list.addMessage(EnumMessageID(1), 0);
    karMessageLBase *b = list.addMessage(EnumMessageID(1), 0);
    list.removeMessage(b);
    list.removeMessage(EnumMessageID(1));
    EXPECT_EQ(list.removed, 2);
}

TEST(KarMessage, RandomSequencesWithSharedIdsFollowAPlainList)
{
    constexpr std::uint64_t seed = 4711;
    TestRandom random(seed);
    karMessage list;
    std::vector<karMessageLBase *> plain;
    const auto id = [](karMessageLBase *element) { return static_cast<int>(element->getMessage()->getMessageID()); };
    for (int step = 0, steps = testSteps(60000); step < steps; ++step) {
        const int wanted = random.between(0, 9);
        const unsigned at = plain.empty() ? 0 : random.below(static_cast<unsigned>(plain.size()));
        switch (random.below(8)) {
        case 0:
        case 1:
        case 2: {
            karMessageLBase *added = list.addMessage(EnumMessageID(wanted), random.between(0, 3));
            ASSERT_EQ(added == nullptr, wanted == 8);
            if (added)
                plain.push_back(added);
            break;
        }
        case 3:
            if (!plain.empty()) {
                list.removeMessage(plain[at]);
                plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(at));
            }
            break;
        case 4: { // the first of them
            const auto first = std::find_if(plain.begin(), plain.end(), [&](auto *one) { return id(one) == wanted; });
            list.removeMessage(EnumMessageID(wanted));
            if (first != plain.end())
                plain.erase(first);
            break;
        }
        case 5:
            if (random.below(4) == 0) {
                std::vector<karMessageLBase *> kept;
                for (karMessageLBase *one : plain)
                    if (id(one) != wanted)
                        kept.push_back(one);
                list.remAllMessage(EnumMessageID(wanted));
                plain = kept;
            }
            break;
        case 6:
            if (!plain.empty()) {
                std::size_t expected = at;
                while (expected < plain.size() && wanted != 0 && id(plain[expected]) != wanted)
                    ++expected;
                ASSERT_EQ(list.nextMessage(plain[at]->getMessage(), EnumMessageID(wanted)),
                          expected < plain.size() ? plain[expected] : nullptr)
                    << "seed " << seed << ", step " << step;
            }
            break;
        default:
            if (!plain.empty()) {
                auto expected = static_cast<std::ptrdiff_t>(at);
                while (expected >= 0 && wanted != 0 && id(plain[static_cast<std::size_t>(expected)]) != wanted)
                    --expected;
                ASSERT_EQ(list.prevMessage(plain[at]->getMessage(), EnumMessageID(wanted)),
                          expected >= 0 ? plain[static_cast<std::size_t>(expected)] : nullptr)
                    << "seed " << seed << ", step " << step;
            }
            break;
        }
        if (plain.size() > 60) {
            list.removeMessage(plain.front());
            plain.erase(plain.begin());
        }
        std::size_t place = 0;
        for (karMessageLBase *one = list.ListFirst(); one; one = one->next(), ++place) {
            ASSERT_LT(place, plain.size());
            ASSERT_EQ(one, plain[place]) << "seed " << seed << ", step " << step;
        }
        ASSERT_EQ(place, plain.size()) << "seed " << seed << ", step " << step;
    }
}

TEST(KarCtrl, StartsWithoutBreakPercentAndMessages)
{
    karCtrl ctrl;
    EXPECT_EQ(ctrl.getBreak(), 0);
    EXPECT_FALSE(ctrl.isBreak());
    EXPECT_EQ(ctrl.getGlobalPercent(), -1);
    EXPECT_EQ(ctrl.getLayerPercent(), -1);
    EXPECT_EQ(ctrl.getMessage(), nullptr);
    EXPECT_EQ(ctrl.getMessage(EnumMessageID(1)), nullptr);
    EXPECT_NE(ctrl.getMessageList(), nullptr);
}

TEST(KarCtrl, BreakIsRequestedThenSeen)
{
    karCtrl ctrl;
    ctrl.SetBreak();
    EXPECT_EQ(ctrl.getBreak(), 1);
    EXPECT_TRUE(ctrl.isBreak());
    EXPECT_EQ(ctrl.getBreak(), 2);
    EXPECT_TRUE(ctrl.isBreak());
    EXPECT_EQ(ctrl.getBreak(), 2);
    ctrl.SetBreak();
    EXPECT_EQ(ctrl.getBreak(), 1);
    ctrl.ResetBreak();
    EXPECT_EQ(ctrl.getBreak(), 0);
    EXPECT_FALSE(ctrl.isBreak());
}

TEST(KarCtrl, AnyOtherBreakStateIsNoneAndStays)
{
    class Open : public karCtrl {
    public:
        using karCtrl::breakState;
    };
    Open ctrl;
    ctrl.breakState = BreakState(5);
    EXPECT_FALSE(ctrl.isBreak());
    EXPECT_EQ(ctrl.getBreak(), 5);
}

TEST(KarCtrl, PercentOperationsReachTheStack)
{
    karCtrl ctrl;
    ctrl.setPercentStartEnd(0, 50);
    ctrl.addPercentLayer();
    ctrl.setLayerPercent(30);
    EXPECT_EQ(ctrl.getGlobalPercent(), 15);
    EXPECT_EQ(ctrl.getLayerPercent(), 30);
    ctrl.removePercentLayer();
    ctrl.setLayerPercent(40);
    EXPECT_EQ(ctrl.getGlobalPercent(), 20);
    ctrl.setGlobalPercent(77);
    EXPECT_EQ(ctrl.getGlobalPercent(), 77);
    EXPECT_EQ(ctrl.getLayerPercent(), 40);
    ctrl.resetPercent();
    ctrl.setLayerPercent(40);
    EXPECT_EQ(ctrl.getGlobalPercent(), 40);
}

TEST(KarCtrl, MessageOperationsGiveTheMessageOfTheElement)
{
    karCtrl ctrl;
    EXPECT_EQ(ctrl.addMessage(EnumMessageID(8), 2), nullptr);
    karMessageBase *a = ctrl.addMessage(EnumMessageID(1), 2);
    karMessageBase *b = ctrl.addMessage(EnumMessageID(2), 2);
    karMessageBase *c = ctrl.addMessage(EnumMessageID(1), 2);
    EXPECT_EQ(ctrl.getMessage(), a);
    EXPECT_EQ(ctrl.getMessage(EnumMessageID(2)), b);
    EXPECT_EQ(ctrl.getMessage(EnumMessageID(3)), nullptr);
    EXPECT_EQ(ctrl.nextMessage(b, EnumMessageID(1)), c);
    EXPECT_EQ(ctrl.nextMessage(b, EnumMessageID(0)), b);
    EXPECT_EQ(ctrl.nextMessage(c, EnumMessageID(2)), nullptr);
    EXPECT_EQ(ctrl.prevMessage(b, EnumMessageID(1)), a);
    EXPECT_EQ(ctrl.prevMessage(a, EnumMessageID(2)), nullptr);
    ctrl.removeMessage(a);
    EXPECT_EQ(ctrl.getMessage(), b);
    EXPECT_EQ(ctrl.getMessageList()->ListAnzahl(), 2);
}

namespace {

// Counts destructions and hears what a filter forwards.
class HeardCtrl : public karCtrl {
public:
    explicit HeardCtrl(int &counter) : deleted(counter) {}
    ~HeardCtrl() override { ++deleted; }
    void setLayerPercent(int value) override
    {
        heard.push_back(value);
        karCtrl::setLayerPercent(value);
    }
    bool isBreak() override
    {
        heard.push_back(-1000);
        return karCtrl::isBreak();
    }
    std::vector<int> heard;
    int &deleted;
};

} // namespace

TEST(KarFilter, MakesAndOwnsAControllerForNull)
{
    karFilter filter;
    EXPECT_TRUE(filter.isOwnCtrlUsed());
    EXPECT_NE(filter.getCtrl(), nullptr);
    EXPECT_FALSE(filter.isBreak());
}

TEST(KarFilter, BorrowsTheControllerOfItsClient)
{
    int deleted = 0;
    HeardCtrl ctrl(deleted);
    {
        karFilter filter(&ctrl);
        EXPECT_FALSE(filter.isOwnCtrlUsed());
        EXPECT_EQ(filter.getCtrl(), &ctrl);
    }
    EXPECT_EQ(deleted, 0);
}

TEST(KarFilter, SetCtrlDeletesAnOwnedControllerAndMakesNone)
{
    int deleted = 0;
    HeardCtrl ctrl(deleted);
    karFilter filter;
    filter.setCtrl(&ctrl);
    EXPECT_FALSE(filter.isOwnCtrlUsed());
    EXPECT_EQ(filter.getCtrl(), &ctrl);
    filter.setCtrl(nullptr);
    EXPECT_EQ(filter.getCtrl(), nullptr);
    EXPECT_FALSE(filter.isOwnCtrlUsed());
    EXPECT_EQ(deleted, 0);
}

TEST(KarFilter, AssignmentCopiesTheOwnership)
{
    class Open : public karFilter {
    public:
        using karFilter::karFilter;
        using karFilter::ownCtrl;
    };
    Open owner;
    karCtrl ctrl;
    Open other(&ctrl);
    other = owner;
    EXPECT_EQ(other.getCtrl(), owner.getCtrl());
    EXPECT_TRUE(other.isOwnCtrlUsed());
    other.ownCtrl = false; // one of the two lets go
}

TEST(KarFilter, ForwardsThroughTheVirtualOperations)
{
    int deleted = 0;
    HeardCtrl ctrl(deleted);
    karFilter filter(&ctrl);
    filter.setPercentStartEnd(0, 50);
    filter.addPercentLayer();
    filter.setPercent(30);
    EXPECT_EQ(ctrl.heard, std::vector<int>{30});
    EXPECT_EQ(filter.getGlobalPercent(), 15);
    EXPECT_EQ(filter.getPercent(), 30);
    filter.isBreak();
    EXPECT_EQ(ctrl.heard.back(), -1000);
    filter.removePercentLayer();
    filter.setGlobalPercent(9);
    EXPECT_EQ(ctrl.getGlobalPercent(), 9);
    filter.resetPercent();
    EXPECT_EQ(filter.getGlobalPercent(), 9);
}

TEST(KarFilter, TopLayerOfHalfReadsFifteenForThirty)
{
    karFilter filter;
    filter.setPercentStartEnd(0, 50);
    filter.setPercent(30);
    EXPECT_EQ(filter.getGlobalPercent(), 15);
    EXPECT_EQ(filter.getPercent(), 30);
}

TEST(KarFilter, SetBreakSetsAndResets)
{
    karFilter filter;
    filter.setBreak(true);
    EXPECT_EQ(filter.getBreak(), 1);
    EXPECT_TRUE(filter.isBreak());
    EXPECT_EQ(filter.getBreak(), 2);
    filter.setBreak(false);
    EXPECT_EQ(filter.getBreak(), 0);
}

TEST(KarFilter, FiltersOfOneClientShareBreakPercentAndMessages)
{
    karCtrl ctrl;
    karFilter one(&ctrl);
    karFilter two(&ctrl);
    one.setBreak(true);
    EXPECT_TRUE(two.isBreak());
    karMessageBase *message = one.addMessage(EnumMessageID(2), 1);
    EXPECT_EQ(two.getMessage(), message);
    EXPECT_EQ(two.getMessage(EnumMessageID(2)), message);
    EXPECT_EQ(two.getMessageList(), ctrl.getMessageList());
    two.removeMessage(message);
    EXPECT_EQ(one.getMessage(), nullptr);
    one.setPercent(12);
    EXPECT_EQ(two.getPercent(), 12);
}
