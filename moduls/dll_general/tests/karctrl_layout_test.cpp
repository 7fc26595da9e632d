// Fields and virtual operations of values, messages, controller and filter in their order.
#include "karctrl.h"

#include "testslot.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace {

constexpr auto word = static_cast<long>(sizeof(void *));

/// Opens the fields.
struct IdFields : karDataId {
    void check() { EXPECT_EQ(offsetIn(*this, id), word); }
};
struct TextFields : karDataText {
    void check() { EXPECT_EQ(offsetIn(*this, text), word); }
};
struct IntegerFields : karDataInteger {
    void check() { EXPECT_EQ(offsetIn(*this, value), word); }
};
struct DoubleFields : karDataDouble {
    void check()
    {
        struct Plain { // where the target aligns a double
            void *table;
            double value;
        };
        EXPECT_EQ(offsetIn(*this, value), static_cast<long>(offsetof(Plain, value)));
    }
};
struct ParamFields : karDataParam {
    void check() { EXPECT_EQ(offsetIn(*this, param), word); }
};
struct MessageFields : karMessageBase {
    void check()
    {
        EXPECT_EQ(offsetIn(*this, id), word);
        EXPECT_EQ(offsetIn(*this, params), 2 * word);
        EXPECT_EQ(offsetIn(*this, paramCount), 3 * word);
    }
};
struct ElementFields : karMessageLBase {
    ElementFields() : karMessageLBase(nullptr, EnumMessageID(1), 0) {}
    void check() { EXPECT_EQ(offsetIn(*this, message), 3 * word); } // behind the two links
};
struct CtrlFields : karCtrl {
    void check()
    {
        EXPECT_EQ(offsetIn(*this, breakState), word);
        EXPECT_EQ(offsetIn(*this, percent), 2 * word);
        EXPECT_EQ(offsetIn(*this, messages), 3 * word);
    }
};
struct FilterFields : karFilter {
    void check()
    {
        EXPECT_EQ(offsetIn(*this, ctrl), 0);
        EXPECT_EQ(offsetIn(*this, ownCtrl), word);
    }
};

TEST(CtrlLayout, FieldsStandInTheirOrder)
{
    IdFields().check();
    TextFields().check();
    IntegerFields().check();
    DoubleFields().check();
    ParamFields().check();
    MessageFields().check();
    ElementFields().check();
    CtrlFields().check();
    FilterFields().check();
    EXPECT_EQ(sizeof(karDataBase), sizeof(void *));
    EXPECT_EQ(sizeof(karMessageBase), 4 * sizeof(void *));
    EXPECT_EQ(sizeof(karMessageLBase), 7 * sizeof(void *));
    EXPECT_EQ(sizeof(karMessage), sizeof(karListHeadObject));
    EXPECT_EQ(sizeof(karCtrl), 4 * sizeof(void *));
    EXPECT_EQ(sizeof(karFilter), 2 * sizeof(void *));
    static_assert(!std::is_polymorphic<karFilter>::value, "");
    static_assert(!std::is_base_of<karMessageBase, karMessageLBase>::value, "");
    static_assert(std::is_base_of<karListObject, karMessageLBase>::value, "");
    static_assert(std::is_base_of<karListHeadObject, karMessage>::value, "");
}

TEST(CtrlLayout, EnumerationsHaveTheirValues)
{
    EXPECT_EQ(CtrlNone, 0);
    EXPECT_EQ(CtrlId, 1);
    EXPECT_EQ(CtrlText, 2);
    EXPECT_EQ(CtrlInteger, 3);
    EXPECT_EQ(CtrlDouble, 4);
    EXPECT_EQ(CtrlParam, 5);
    EXPECT_EQ(BreakNone, 0);
    EXPECT_EQ(BreakRequested, 1);
    EXPECT_EQ(BreakSeen, 2);
    static_assert(std::is_same<std::underlying_type_t<CtrlType>, int>::value, "");
    static_assert(std::is_same<std::underlying_type_t<EnumMessageID>, int>::value, "");
    static_assert(std::is_same<std::underlying_type_t<BreakState>, int>::value, "");
}

TEST(CtrlLayout, VirtualOperationsOfValuesStandInTheirOrder)
{
    static_assert(std::has_virtual_destructor<karDataBase>::value, "");
    EXPECT_EQ(slotOf(&karDataBase::getType), 2); // behind the destructor
    EXPECT_EQ(slotOf(&karDataBase::getId), 3);
    EXPECT_EQ(slotOf(&karDataBase::getText), 4);
    EXPECT_EQ(slotOf(&karDataBase::getInteger), 5);
    EXPECT_EQ(slotOf(&karDataBase::getDouble), 6);
    EXPECT_EQ(slotOf(&karDataBase::getParam), 7);
    EXPECT_EQ(slotOf(&karDataId::setId), 8);
    EXPECT_EQ(slotOf(&karDataText::setText), 8);
    EXPECT_EQ(slotOf(&karDataInteger::setInteger), 8);
    EXPECT_EQ(slotOf(static_cast<double (karDataDouble::*)() const>(&karDataDouble::getDouble)), 6);
    EXPECT_EQ(slotOf(static_cast<void (karDataDouble::*)(double)>(&karDataDouble::getDouble)), 8);
    EXPECT_EQ(slotOf(&karDataParam::setParam), 8);
}

TEST(CtrlLayout, VirtualOperationsOfMessagesStandInTheirOrder)
{
    using M = karMessageBase;
    static_assert(std::has_virtual_destructor<M>::value, "");
    EXPECT_EQ(slotOf(&M::getMessageID), 2); // behind the destructor
    EXPECT_EQ(slotOf(&M::getParamCount), 3);
    EXPECT_EQ(slotOf(&M::setParamCount), 4);
    EXPECT_EQ(slotOf(&M::getParam), 5);
    EXPECT_EQ(slotOf(&M::getParamType), 6);
    EXPECT_EQ(slotOf(static_cast<M &(M::*)(int, const karVectorizeParameter *)>(&M::setParam)), 7);
    EXPECT_EQ(slotOf(static_cast<M &(M::*)(int, karDataBase *)>(&M::setParam)), 8);
    EXPECT_EQ(slotOf(&M::setId), 9);
    EXPECT_EQ(slotOf(&M::setText), 10);
    EXPECT_EQ(slotOf(&M::setInteger), 11);
    EXPECT_EQ(slotOf(&M::setDouble), 12);

    EXPECT_EQ(slotOf(&karMessageLBase::ListObjectOk), 0);
    EXPECT_EQ(slotOf(&karMessageLBase::getMessage), 6); // behind the operations of every element
    EXPECT_EQ(slotOf(&karMessage::ListHeadObjectOk), 0);
}

TEST(CtrlLayout, VirtualOperationsOfTheControllerStandInTheirOrder)
{
    using C = karCtrl;
    static_assert(std::has_virtual_destructor<C>::value, "");
    EXPECT_EQ(slotOf(&C::isBreak), 2); // behind the destructor
    EXPECT_EQ(slotOf(&C::SetBreak), 3);
    EXPECT_EQ(slotOf(&C::ResetBreak), 4);
    EXPECT_EQ(slotOf(&C::getBreak), 5);
    EXPECT_EQ(slotOf(&C::resetPercent), 6);
    EXPECT_EQ(slotOf(&C::setGlobalPercent), 7);
    EXPECT_EQ(slotOf(&C::getGlobalPercent), 8);
    EXPECT_EQ(slotOf(&C::setLayerPercent), 9);
    EXPECT_EQ(slotOf(&C::getLayerPercent), 10);
    EXPECT_EQ(slotOf(&C::addPercentLayer), 11);
    EXPECT_EQ(slotOf(&C::removePercentLayer), 12);
    EXPECT_EQ(slotOf(&C::setPercentStartEnd), 13);
    EXPECT_EQ(slotOf(&C::getMessageList), 14);
    EXPECT_EQ(slotOf(&C::addMessage), 15);
    EXPECT_EQ(slotOf(static_cast<karMessageBase *(C::*)(EnumMessageID)>(&C::getMessage)), 16);
    EXPECT_EQ(slotOf(static_cast<karMessageBase *(C::*)()>(&C::getMessage)), 17);
    EXPECT_EQ(slotOf(&C::nextMessage), 18);
    EXPECT_EQ(slotOf(&C::prevMessage), 19);
    EXPECT_EQ(slotOf(&C::removeMessage), 20);
}

} // namespace
