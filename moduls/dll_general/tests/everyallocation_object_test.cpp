// Messages, progress, controllers, dispatch, tasks and points, with each allocation failing in turn.
#include "karctrl.h"
#include "kardpoint.h"
#include "karfilterid.h"
#include "karpoint.h"
#include "karstringlist.h"
#include "kartaskelem.h"

#include "everyallocation.h"
#include "silenthost.h"

namespace {

const char *const longer = "and a text that is too long for it"; // 34 characters, of which a string makes a size of 48

// -- Messages

std::string read(const karDataBase *value)
{
    if (!value)
        return "empty";
    switch (value->getType()) {
    case CtrlId:
        return "id " + std::to_string(value->getId());
    case CtrlText:
        return "text " + read(value->getText());
    case CtrlInteger:
        return "integer " + std::to_string(value->getInteger());
    case CtrlDouble:
        return "real " + std::to_string(static_cast<int>(value->getDouble()));
    default:
        return value->getParam() ? "parameters" : "no parameters";
    }
}

std::string read(const karMessageBase &message)
{
    std::string text = std::to_string(message.getParamCount()) + ':';
    for (int i = 0; i < 3; ++i)
        text += ' ' + read(message.getParam(i)) + (i < 2 ? "," : "");
    return text;
}

/// Stores into every place: an array that couldn't be had takes nothing.
std::string readStored(karMessageBase &message)
{
    message.setId(0, 4).setDouble(1, 5.0).setInteger(2, 6);
    return read(message);
}

#define ON_MESSAGE(...)                                                                                                \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        karMessageBase message(EnumMessageID(2), 3);                                                                   \
        message.setDouble(0, 2.0).setId(1, 3);                                                                         \
        span.begin();                                                                                                  \
        message.__VA_ARGS__;                                                                                           \
        span.end();                                                                                                    \
        return read(message);                                                                                          \
    }
#define NEW_VALUE(...)                                                                                                 \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        const karDataText other(source);                                                                               \
        span.begin();                                                                                                  \
        const karDataBase *const value = new __VA_ARGS__;                                                              \
        span.end();                                                                                                    \
        const std::string text = read(value);                                                                          \
        delete value;                                                                                                  \
        return text;                                                                                                   \
    }
#define ON_TEXT_VALUE(...)                                                                                             \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        const karDataText other(source);                                                                               \
        karDataText value(karString("abc"));                                                                           \
        span.begin();                                                                                                  \
        __VA_ARGS__;                                                                                                   \
        span.end();                                                                                                    \
        return read(&value);                                                                                           \
    }

std::string textOfAValue(Span &span)
{
    const karDataText value(karString("abc"));
    span.begin();
    const karString text = value.getText();
    span.end();
    return read(text);
}

std::string textOfNoValue(Span &span)
{
    const karDataBase value;
    span.begin();
    const karString text = value.getText();
    span.end();
    return read(text);
}

std::string messageMade(Span &span)
{
    span.begin();
    karMessageBase message(EnumMessageID(2), 3);
    span.end();
    return readStored(message);
}

std::string messageMadeByNew(Span &span)
{
    span.begin();
    auto *const message = new karMessageBase(EnumMessageID(2), 3);
    span.end();
    const std::string text = message ? readStored(*message) : "null";
    delete message;
    return text;
}

template <int count>
std::string messageResized(Span &span)
{
    karMessageBase message(EnumMessageID(2), 1);
    message.setText(0, karString(longer));
    span.begin();
    message.setParamCount(count);
    span.end();
    const std::string text = readStored(message);
    message.setParamCount(3); // recovers
    EXPECT_EQ(readStored(message), "3: id 4, real 5, integer 0");
    return text;
}

std::string messageInAList(Span &span)
{
    karMessage list;
    list.addMessage(EnumMessageID(1), 1);
    span.begin();
    karMessageLBase *const element = list.addMessage(EnumMessageID(2), 3);
    span.end();
    EXPECT_EQ(list.searchMessage(EnumMessageID(2)), element);
    return std::to_string(list.ListAnzahl()) + " messages; " + (element ? readStored(*element->getMessage()) : "null");
}

std::string messageElement(Span &span)
{
    karMessageLBase first(nullptr, EnumMessageID(1), 0);
    span.begin();
    auto *const element = new karMessageLBase(&first, EnumMessageID(2), 3);
    span.end();
    EXPECT_EQ(first.next(), element);
    const std::string text = element ? readStored(*element->getMessage()) : "null";
    delete element;
    return text;
}

constexpr const char *stored = "3: id 4, real 5, integer 0";
constexpr const char *nothingStored = "3: empty, empty, empty";

const Operation messages[] = {
    {"Id", NEW_VALUE(karDataId(7)), "id 7", {"empty"}, {}},
    {"Integer", NEW_VALUE(karDataInteger(7)), "integer 7", {"empty"}, {}},
    {"Real", NEW_VALUE(karDataDouble(7.0)), "real 7", {"empty"}, {}},
    {"Parameters", NEW_VALUE(karDataParam), "no parameters", {"empty"}, {}},
    {"NoValue", NEW_VALUE(karDataBase), "no parameters", {"empty"}, {}},
    {"Text", // the value, the empty text that it begins with, the assignment
     NEW_VALUE(karDataText(source)),
     "text 'and a text that is too long for it' 34/48",
     {"empty", "text 'and a text that is too long for it' 34/48", "text '' 34/48"},
     {"empty", "text '' 34/48", "text '' 34/48"}},
    {"CopyOfAText",
     NEW_VALUE(karDataText(other)),
     "text 'and a text that is too long for it' 34/48",
     {"empty", "text '' 34/48"},
     {}},
    {"AssignText",
     ON_TEXT_VALUE(value = other),
     "text 'and a text that is too long for it' 34/48",
     {"text '' 34/48"},
     {}},
    {"StoreText",
     ON_TEXT_VALUE(value.setText(source)),
     "text 'and a text that is too long for it' 34/48",
     {"text '' 34/48"},
     {}},
    {"TextOfAValue", textOfAValue, "'abc' 3/16", {"none 3/16"}, {}},
    {"TextOfNoValue", textOfNoValue, "'' 0/16", {"none 0/16"}, {}},
    {"SetId", ON_MESSAGE(setId(0, 7)), "3: id 7, id 3, empty", {"3: empty, id 3, empty"}, {}},
    {"SetInteger", ON_MESSAGE(setInteger(0, 7)), "3: integer 0, id 3, empty", {"3: empty, id 3, empty"}, {}},
    {"SetReal", ON_MESSAGE(setDouble(2, 7.0)), "3: real 2, id 3, real 7", {"3: real 2, id 3, empty"}, {}},
    {"SetParameters",
     ON_MESSAGE(setParam(1, static_cast<const karVectorizeParameter *>(nullptr))),
     "3: real 2, no parameters, empty",
     {"3: real 2, empty, empty"},
     {}},
    {"SetText",
     ON_MESSAGE(setText(1, source)),
     "3: real 2, text 'and a text that is too long for it' 34/48, empty",
     {"3: real 2, empty, empty", "3: real 2, text 'and a text that is too long for it' 34/48, empty",
      "3: real 2, text '' 34/48, empty"},
     {"3: real 2, empty, empty", "3: real 2, text '' 34/48, empty", "3: real 2, text '' 34/48, empty"}},
    {"Message", messageMade, stored, {nothingStored}, {}},
    {"MessageByNew", messageMadeByNew, stored, {"null", nothingStored}, {}},
    {"Resized", messageResized<3>, stored, {nothingStored}, {}},
    {"ResizedToMany",
     messageResized<400>,
     "400: id 4, real 5, integer 0",
     {"400: empty, empty, empty"},
     {},
     Operation::large},
    {"Element", messageElement, stored, {"null", nothingStored}, {}},
    {"Added",
     messageInAList,
     "2 messages; 3: id 4, real 5, integer 0",
     {"1 messages; null", "2 messages; 3: empty, empty, empty"},
     {}},
};
INSTANTIATE_TEST_SUITE_P(Messages, EveryAllocation, ::testing::ValuesIn(messages), nameOf);

// -- Progress and control

std::string read(karPercent &stack)
{
    return std::to_string(stack.ListAnzahl()) + " layers, " + std::to_string(stack.getStart()) + " to " +
           std::to_string(stack.getEnd()) + ", " + std::to_string(stack.getPercent());
}

std::string percentMade(Span &span)
{
    span.begin();
    karPercent stack;
    span.end();
    return read(stack);
}

std::string percentMadeByNew(Span &span)
{
    span.begin();
    auto *const stack = new karPercent;
    span.end();
    const std::string text = stack ? read(*stack) : "null";
    delete stack;
    return text;
}

template <void (karPercent::*change)()>
std::string percentChanged(Span &span)
{
    karPercent stack;
    stack.setStartEnd(10, 60);
    stack.setLayerPercent(50);
    span.begin();
    (stack.*change)();
    span.end();
    return read(stack);
}

/// Uses a controller, or a filter, in every way.
template <class Control>
std::string readBreak(Control &control)
{
    const bool asked = control.isBreak();
    EXPECT_EQ(control.getBreak(), asked ? BreakSeen : BreakNone);
    return asked ? "break, " : "no break, ";
}

std::string read(karCtrl &ctrl)
{
    ctrl.SetBreak();
    std::string text = readBreak(ctrl);
    ctrl.ResetBreak();
    ctrl.setPercentStartEnd(10, 60);
    ctrl.setLayerPercent(50);
    text += std::to_string(ctrl.getGlobalPercent()) + " of " + std::to_string(ctrl.getLayerPercent());
    ctrl.addPercentLayer();
    ctrl.removePercentLayer();
    ctrl.resetPercent();
    ctrl.setGlobalPercent(12);
    text += ", " + std::to_string(ctrl.getGlobalPercent());

    karMessageBase *const message = ctrl.addMessage(EnumMessageID(1), 1);
    EXPECT_EQ(ctrl.getMessage(), message);
    EXPECT_EQ(ctrl.getMessage(EnumMessageID(1)), message);
    EXPECT_EQ(ctrl.nextMessage(message, MessageAny), message);
    EXPECT_EQ(ctrl.prevMessage(message, MessageAny), message);
    ctrl.removeMessage(message);
    EXPECT_EQ(ctrl.getMessage(), nullptr);
    EXPECT_EQ(ctrl.getMessageList() != nullptr, message != nullptr);
    return text + (message ? ", messages" : ", no messages");
}

std::string read(karFilter &filter)
{
    filter.setBreak(true);
    std::string text = readBreak(filter);
    filter.setBreak(false);
    filter.setPercentStartEnd(10, 60);
    filter.setPercent(50);
    text += std::to_string(filter.getGlobalPercent()) + " of " + std::to_string(filter.getPercent());
    filter.addPercentLayer();
    filter.removePercentLayer();
    filter.resetPercent();
    filter.setGlobalPercent(12);
    text += ", " + std::to_string(filter.getGlobalPercent());

    karMessageBase *const message = filter.addMessage(EnumMessageID(1), 1);
    EXPECT_EQ(filter.getMessage(), message);
    EXPECT_EQ(filter.getMessage(EnumMessageID(1)), message);
    filter.removeMessage(message);
    EXPECT_EQ(filter.getMessage(), nullptr);
    EXPECT_EQ(filter.getMessageList() != nullptr, message != nullptr);
    return text + (message ? ", messages" : ", no messages");
}

std::string controllerMade(Span &span)
{
    span.begin();
    karCtrl ctrl;
    span.end();
    return read(ctrl);
}

std::string controllerMadeByNew(Span &span)
{
    span.begin();
    auto *const ctrl = new karCtrl;
    span.end();
    const std::string text = ctrl ? read(*ctrl) : "null";
    delete ctrl;
    return text;
}

std::string filterMade(Span &span)
{
    span.begin();
    karFilter filter;
    span.end();
    EXPECT_TRUE(filter.isOwnCtrlUsed());
    return read(filter);
}

template <void (karCtrl::*change)()>
std::string controllerChanged(Span &span)
{
    karCtrl ctrl;
    ctrl.setLayerPercent(30);
    span.begin();
    (ctrl.*change)();
    span.end();
    ctrl.setLayerPercent(50);
    return std::to_string(ctrl.getGlobalPercent());
}

std::string controllerGivenAMessage(Span &span)
{
    karCtrl ctrl;
    span.begin();
    karMessageBase *const message = ctrl.addMessage(EnumMessageID(1), 3);
    span.end();
    EXPECT_EQ(ctrl.getMessage(), message);
    return message ? readStored(*message) : "null";
}

constexpr const char *controlled = "break, 35 of 50, 12, messages";
constexpr const char *withoutPercent = "break, 0 of 0, 0, messages";
constexpr const char *withoutLayer = "break, -1 of -1, 12, messages";
constexpr const char *withoutMessages = "break, 35 of 50, 12, no messages";

const Operation control[] = {
    {"Percent", percentMade, "1 layers, 0 to 100, -1", {"0 layers, -1 to -1, -1"}, {}},
    {"PercentByNew", percentMadeByNew, "1 layers, 0 to 100, -1", {"null", "0 layers, -1 to -1, -1"}, {}},
    {"AddLayer", percentChanged<&karPercent::addLayer>, "2 layers, 0 to 100, 35", {"1 layers, 10 to 60, 35"}, {}},
    {"Reset", percentChanged<&karPercent::reset>, "1 layers, 0 to 100, 35", {"0 layers, -1 to -1, 35"}, {}},
    {"Controller", // the percentage, its layer, the messages
     controllerMade,
     controlled,
     {withoutPercent, withoutLayer, withoutMessages},
     {"break, 0 of 0, 0, no messages", "break, -1 of -1, 12, no messages", withoutMessages}},
    {"ControllerByNew",
     controllerMadeByNew,
     controlled,
     {"null", withoutPercent, withoutLayer, withoutMessages},
     {"null", "break, 0 of 0, 0, no messages", "break, -1 of -1, 12, no messages", withoutMessages}},
    {"Filter",
     filterMade,
     controlled,
     {"no break, 0 of 0, 0, no messages", withoutPercent, withoutLayer, withoutMessages},
     {"no break, 0 of 0, 0, no messages", "break, 0 of 0, 0, no messages", "break, -1 of -1, 12, no messages",
      withoutMessages}},
    {"ControllerAddsALayer", controllerChanged<&karCtrl::addPercentLayer>, "50", {"50"}, {}},
    {"ControllerResets", controllerChanged<&karCtrl::resetPercent>, "50", {"-1"}, {}},
    {"ControllerAddsAMessage", controllerGivenAMessage, stored, {"null", nothingStored}, {}},
};
INSTANTIATE_TEST_SUITE_P(Control, EveryAllocation, ::testing::ValuesIn(control), nameOf);

// -- Dispatch and tasks

class Dispatcher : public karFilterIdBase {
public:
    errorCodesKARTORY handle(karFilterObject *) { return errorCodesKARTORY(4); }
    errorCodesKARTORY result()
    {
        karFilterObject item;
        setFilterHandler(filterObjectID(0), this, &Dispatcher::handle);
        return filterObject(&item);
    }
};

std::string dispatcherMade(Span &span)
{
    span.begin();
    Dispatcher dispatcher;
    span.end();
    return std::to_string(dispatcher.result());
}

std::string dispatcherStartedAnew(Span &span)
{
    Dispatcher dispatcher;
    EXPECT_EQ(dispatcher.result(), 4);
    span.begin();
    const int result = dispatcher.filterInit(nullptr, nullptr);
    span.end();
    return std::to_string(result) + ", " + std::to_string(dispatcher.result());
}

class Task : public karTaskElem {
public:
    int step() override { return 0; }
    void reservedOperation() override {}
};

std::string taskMade(Span &span)
{
    SilentHost host;
    host.added.reserve(4);
    span.begin();
    auto *const task = new Task;
    span.end();
    const std::size_t known = host.added.size();
    delete task;
    EXPECT_EQ(host.removed.size(), known);
    return std::to_string(known) + " tasks";
}

template <class Object>
std::string objectMade(Span &span)
{
    span.begin();
    auto *const object = new Object;
    span.end();
    const bool made = object != nullptr;
    delete object;
    return made ? "made" : "null";
}

class HeadOfHeads : public karListHeadListObject {
public:
    HeadOfHeads() : karListHeadListObject(nullptr, ObjektIdies(0)) {}
    int ListHeadObjectOk() override { return 1; }
    void reservedOperation() override {}
};

class Layer : public karPercentList {
public:
    Layer() : karPercentList(nullptr, 0, 1) {}
};

const Operation dispatch[] = {
    {"Dispatcher", dispatcherMade, "4", {"-252"}, {}},
    {"DispatcherStartedAnew", dispatcherStartedAnew, "0, 4", {"0, -252"}, {}},
    {"Task", taskMade, "1 tasks", {"0 tasks"}, {}},
    {"ListOfMessages", objectMade<karMessage>, "made", {"null"}, {}},
    {"ListOfTexts", objectMade<karStringListHead>, "made", {"null"}, {}},
    {"HeadOfHeads", objectMade<HeadOfHeads>, "made", {"null"}, {}},
    {"Layer", objectMade<Layer>, "made", {"null"}, {}},
    {"ElementWithAPointer", objectMade<karPtrListObject>, "made", {"null"}, {}},
};
INSTANTIATE_TEST_SUITE_P(Dispatch, EveryAllocation, ::testing::ValuesIn(dispatch), nameOf);

// -- Points

template <class Source>
std::string cloned(Span &span)
{
    const Source source(1, 2);
    span.begin();
    auto *const clone = source.Clone();
    span.end();
    const std::string text = clone ? std::to_string(static_cast<int>(clone->First())) + ' ' +
                                         std::to_string(static_cast<int>(clone->Second()))
                                   : "null";
    KarDellocMemory(clone);
    return text;
}

template <class Point>
std::string pointMade(Span &span)
{
    span.begin();
    auto *const point = new Point(1, 2);
    span.end();
    const bool made = point != nullptr;
    KarDellocMemory(point);
    return made ? "made" : "null";
}

const Operation points[] = {
    {"PairOfInt", cloned<tPair<int, int>>, "1 2", {"null"}, {}},
    {"PairOfDouble", cloned<tPair<double, double>>, "1 2", {"null"}, {}},
    {"Point", cloned<karPoint>, "1 2", {"null"}, {}},
    {"Dimension", cloned<karDimension>, "1 2", {"null"}, {}},
    {"RealPoint", cloned<karD_Point>, "1 2", {"null"}, {}},
    {"RealDimension", cloned<karD_Dimension>, "1 2", {"null"}, {}},
    {"NewPoint", pointMade<karPoint>, "made", {"null"}, {}},
    {"NewRealPoint", pointMade<karD_Point>, "made", {"null"}, {}},
};
INSTANTIATE_TEST_SUITE_P(Points, EveryAllocation, ::testing::ValuesIn(points), nameOf);

} // namespace
