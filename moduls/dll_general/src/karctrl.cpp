#include "karctrl.h"

#include "karsystem.h"

namespace {

constexpr char sourcePath[] = "moduls/dll_general/src/karctrl";

// What a message whose array failed last turned away. Only its typed setters look here: a subclass whose `setParam`
// keeps the value itself turns nothing away, and its value must live.
const karDataBase *turnedAway = nullptr;

} // namespace

karDataBase::~karDataBase() = default;
CtrlType karDataBase::getType() const { return CtrlNone; }
int karDataBase::getId() const { return -1; }
karString karDataBase::getText() const { return karString(); }
int karDataBase::getInteger() const { return 0; }
double karDataBase::getDouble() const { return 0.0; }
karVectorizeParameter *karDataBase::getParam() const { return nullptr; }

CtrlType karDataId::getType() const { return CtrlId; }
int karDataId::getId() const { return id; }
void karDataId::setId(int newId) { id = newId; }

// cppcheck-suppress useInitializationList ; assigned to a fresh text, whose size a short value then has
karDataText::karDataText(const karString &value) { text = value; }
CtrlType karDataText::getType() const { return CtrlText; }
karString karDataText::getText() const { return text; }
void karDataText::setText(const karString &newText) { text = newText; }

CtrlType karDataInteger::getType() const { return CtrlInteger; }
int karDataInteger::getInteger() const { return value; }
void karDataInteger::setInteger(int newValue) { value = newValue; }

CtrlType karDataDouble::getType() const { return CtrlDouble; }
double karDataDouble::getDouble() const { return value; }
void karDataDouble::getDouble(double newValue) { value = newValue; }

karDataParam::karDataParam(const karVectorizeParameter *)
{
    _notready("karDataParam :: karDataParam (const karVectorizeParameter *_param)", sourcePath, 209);
}
karDataParam::~karDataParam() { _notready("karDataParam :: ~karDataParam ()", sourcePath, 215); }
CtrlType karDataParam::getType() const { return CtrlParam; }
karVectorizeParameter *karDataParam::getParam() const { return param; }
void karDataParam::setParam(const karVectorizeParameter *)
{
    _notready("karDataParam :: setParam      (const karVectorizeParameter *_param)", sourcePath, 221);
}

karMessageBase::karMessageBase(EnumMessageID ownId, int count) : id(ownId) { karMessageBase::setParamCount(count); }

karMessageBase::~karMessageBase() { DeleteAll(); }

EnumMessageID karMessageBase::getMessageID() const { return id; }

int karMessageBase::getParamCount() const { return paramCount; }

karMessageBase &karMessageBase::setParamCount(int count)
{
    DeleteAll();
    paramCount = count;
    if (count <= 0)
        return *this;
    params = static_cast<karDataBase **>(kar::allocArray(
        static_cast<unsigned>(count), sizeof *params)); // NOLINT(bugprone-sizeof-expression): of pointers
    for (int index = 0; params && index < count; ++index)
        params[index] = nullptr;
    return *this;
}

const karDataBase *karMessageBase::getParam(int index) const { return hasSlot(index) ? params[index] : nullptr; }

CtrlType karMessageBase::getParamType(int index) const
{
    const karDataBase *value = getParam(index);
    return value ? value->getType() : CtrlNone;
}

karMessageBase &karMessageBase::setParam(int index, const karVectorizeParameter *param)
{
    return setBuilt(index, new karDataParam(param));
}

karMessageBase &karMessageBase::setParam(int index, karDataBase *value)
{
    if (hasSlot(index)) {
        if (params[index] != value) // the value that stands there already would be deleted and then kept
            Delete(index);
        params[index] = value;
    } else if (paramCount > 0 && !params) {
        turnedAway = value;
    }
    return *this;
}

karMessageBase &karMessageBase::setId(int index, int newId) { return setBuilt(index, new karDataId(newId)); }

karMessageBase &karMessageBase::setText(int index, const karString &text)
{
    return setBuilt(index, new karDataText(text));
}

karMessageBase &karMessageBase::setInteger(int index, int) { return setBuilt(index, new karDataInteger(0)); }

karMessageBase &karMessageBase::setDouble(int index, double value) { return setBuilt(index, new karDataDouble(value)); }

karMessageBase &karMessageBase::setBuilt(int index, karDataBase *value)
{
    turnedAway = nullptr;
    karMessageBase &result = setParam(index, value);
    if (turnedAway == value)
        delete value;
    turnedAway = nullptr;
    return result;
}

void karMessageBase::Delete(int index)
{
    delete params[index];
    params[index] = nullptr;
}

void karMessageBase::DeleteAll()
{
    if (!params)
        return;
    for (int index = 0; index < paramCount; ++index)
        Delete(index);
    KarDellocMemory(params);
    params = nullptr;
    paramCount = 0;
}

int karMessageLBase::ListObjectOk() { return 1; }
karMessageBase *karMessageLBase::getMessage() { return &message; }

int karMessage::ListHeadObjectOk() { return 1; }

karMessage::~karMessage() { ListRemoveAll(); }

karMessageLBase *karMessage::addMessage(EnumMessageID id, int paramCount)
{
    karMessageLBase *element = id == MessageNone ? nullptr : new karMessageLBase(nullptr, id, paramCount);
    ListAppend(element); // a new element stands in no list, so it isn't searched for
    return element;
}

karMessageLBase *karMessage::addMessage(karMessageLBase *element)
{
    if (!ListExist(element))
        ListAppend(element);
    return element;
}

void karMessage::removeMessage(karMessageLBase *element) { ListRemove(element); }

void karMessage::removeMessage(karMessageBase *message)
{
    if (karMessageLBase *element = searchMessage(message))
        ListRemove(element);
}

void karMessage::removeMessage(EnumMessageID id)
{
    if (karMessageLBase *element = searchMessage(id))
        ListRemove(element);
}

void karMessage::remAllMessage(EnumMessageID id)
{
    while (karMessageLBase *element = searchMessage(id))
        ListRemove(element);
}

karMessageLBase *karMessage::searchMessage(karMessageLBase *element) { return ListExist(element); }

karMessageLBase *karMessage::searchMessage(karMessageBase *message)
{
    karMessageLBase *element = ListFirst();
    while (element && element->getMessage() != message)
        element = element->next();
    return element;
}

karMessageLBase *karMessage::searchMessage(EnumMessageID id)
{
    karMessageLBase *element = ListFirst();
    while (element && element->getMessage()->getMessageID() != id)
        element = element->next();
    return element;
}

karMessageLBase *karMessage::nextMessage(karMessageBase *message, EnumMessageID id)
{
    karMessageLBase *element = searchMessage(message);
    while (element && id != MessageAny && element->getMessage()->getMessageID() != id)
        element = element->next();
    return element;
}

karMessageLBase *karMessage::prevMessage(karMessageBase *message, EnumMessageID id)
{
    karMessageLBase *element = searchMessage(message);
    while (element && id != MessageAny && element->getMessage()->getMessageID() != id)
        element = element->prev();
    return element;
}

namespace {

karMessageBase *messageOf(karMessageLBase *element) { return element ? element->getMessage() : nullptr; }

} // namespace

// cppcheck-suppress [noCopyConstructor, noOperatorEq] ; copies share what they point at, as the header tells
karCtrl::karCtrl() : percent(new karPercent), messages(new karMessage) {}

karCtrl::~karCtrl()
{
    delete percent;
    delete messages;
}

bool karCtrl::isBreak()
{
    if (breakState == BreakRequested)
        breakState = BreakSeen;
    return breakState == BreakSeen;
}

void karCtrl::SetBreak() { breakState = BreakRequested; }
void karCtrl::ResetBreak() { breakState = BreakNone; }
BreakState karCtrl::getBreak() { return breakState; }

void karCtrl::resetPercent()
{
    if (percent)
        percent->reset();
}

void karCtrl::setGlobalPercent(int value)
{
    if (percent)
        percent->setPercent(value);
}

int karCtrl::getGlobalPercent() { return percent ? percent->getPercent() : 0; }

void karCtrl::setLayerPercent(int value)
{
    if (percent)
        percent->setLayerPercent(value);
}

int karCtrl::getLayerPercent() { return percent ? percent->getLayerPercent() : 0; }

void karCtrl::addPercentLayer()
{
    if (percent)
        percent->addLayer();
}

void karCtrl::removePercentLayer()
{
    if (percent)
        percent->removeLayer();
}

void karCtrl::setPercentStartEnd(int start, int end)
{
    if (percent)
        percent->setStartEnd(start, end);
}

karMessage *karCtrl::getMessageList() { return messages; }

karMessageBase *karCtrl::addMessage(EnumMessageID id, int paramCount)
{
    return messages ? messageOf(messages->addMessage(id, paramCount)) : nullptr;
}

karMessageBase *karCtrl::getMessage(EnumMessageID id)
{
    return messages ? messageOf(messages->searchMessage(id)) : nullptr;
}

karMessageBase *karCtrl::getMessage() { return messages ? messageOf(messages->ListFirst()) : nullptr; }

karMessageBase *karCtrl::nextMessage(karMessageBase *message, EnumMessageID id)
{
    return messages ? messageOf(messages->nextMessage(message, id)) : nullptr;
}

karMessageBase *karCtrl::prevMessage(karMessageBase *message, EnumMessageID id)
{
    return messages ? messageOf(messages->prevMessage(message, id)) : nullptr;
}

void karCtrl::removeMessage(karMessageBase *message)
{
    if (messages)
        messages->removeMessage(message);
}

karFilter::karFilter(karCtrl *clientCtrl) : ctrl(clientCtrl ? clientCtrl : new karCtrl), ownCtrl(!clientCtrl) {}

karFilter::~karFilter()
{
    if (ownCtrl)
        delete ctrl;
}

void karFilter::setCtrl(karCtrl *newCtrl)
{
    if (ownCtrl)
        delete ctrl;
    ownCtrl = false;
    ctrl = newCtrl;
}

void karFilter::setBreak(bool on)
{
    if (!ctrl)
        return;
    if (on)
        ctrl->SetBreak();
    else
        ctrl->ResetBreak();
}
