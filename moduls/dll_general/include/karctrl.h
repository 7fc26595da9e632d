/// \file
/// What a long-running operation and its client exchange: typed values, messages, break and progress.
#ifndef KAR_CTRL_H
#define KAR_CTRL_H

#include "karlisthead.h"
#include "karpercent.h"
#include "karstring.h"

/// A class of the host; held by pointer and never looked into.
class karVectorizeParameter;

/// What a value is.
enum CtrlType : int {
    CtrlNone = 0,    ///< `karDataBase` itself
    CtrlId = 1,      ///< `karDataId`
    CtrlText = 2,    ///< `karDataText`
    CtrlInteger = 3, ///< `karDataInteger`
    CtrlDouble = 4,  ///< `karDataDouble`
    CtrlParam = 5,   ///< `karDataParam`
};

/// What a message is about. The values belong to the host, but for two.
enum EnumMessageID : int {
    MessageAny = 0,  ///< in `nextMessage` and `prevMessage`: any message
    MessageNone = 8, ///< no message: nothing is added for it
};

/// How far a request to stop has come.
enum BreakState : int {
    BreakNone = 0,      ///< no break asked for
    BreakRequested = 1, ///< asked for, and not yet seen by the operation
    BreakSeen = 2,      ///< seen by the operation
};

/// A parameter of a message: a value of one kind. Asked for another kind it gives what this class gives.
class KAR_API karDataBase {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual ~karDataBase();                          ///< A host may delete by this class.
    virtual CtrlType getType() const;                ///< 0.
    virtual int getId() const;                       ///< -1.
    virtual karString getText() const;               ///< Empty.
    virtual int getInteger() const;                  ///< 0.
    virtual double getDouble() const;                ///< 0.0.
    virtual karVectorizeParameter *getParam() const; ///< Null.
    /// \}

    karDataBase() = default;                                      ///< Holds nothing.
    karDataBase(const karDataBase &) {}                           ///< Copies nothing.
    karDataBase &operator=(const karDataBase &) { return *this; } ///< Does nothing.
};

/// An id.
class KAR_API karDataId : public karDataBase {
public:
    /// \name Virtual operations, in slot order
    /// \{
    CtrlType getType() const override; ///< 1.
    int getId() const override;        ///< The id as stored.
    virtual void setId(int newId);     ///< Stores another id.
    /// \}

    karDataId(int value = 0) : id(value) {}            ///< Holds `value`.
    karDataId(const karDataId &) = default;            ///< Copies the id.
    karDataId &operator=(const karDataId &) = default; ///< Copies the id.

protected:
    int id; ///< as `getId` gives it
};

/// A text.
class KAR_API karDataText : public karDataBase {
public:
    /// \name Virtual operations, in slot order
    /// \{
    CtrlType getType() const override;              ///< 2.
    karString getText() const override;             ///< A copy.
    virtual void setText(const karString &newText); ///< A copy replaces the text.
    /// \}

    karDataText(const karString &value = karString());     ///< Holds a copy of `value`.
    karDataText(const karDataText &) = default;            ///< Copies the text.
    karDataText &operator=(const karDataText &) = default; ///< Copies the text.

protected:
    karString text; ///< a copy of its own
};

/// An integer.
class KAR_API karDataInteger : public karDataBase {
public:
    /// \name Virtual operations, in slot order
    /// \{
    CtrlType getType() const override;     ///< 3.
    int getInteger() const override;       ///< The number as stored.
    virtual void setInteger(int newValue); ///< Stores another number.
    /// \}

    karDataInteger(int number = 0) : value(number) {}            ///< Holds `number`.
    karDataInteger(const karDataInteger &) = default;            ///< Copies the number.
    karDataInteger &operator=(const karDataInteger &) = default; ///< Copies the number.

protected:
    int value; ///< as `getInteger` gives it
};

/// A real.
class KAR_API karDataDouble : public karDataBase {
public:
    /// \name Virtual operations, in slot order
    /// \{
    CtrlType getType() const override;       ///< 4.
    double getDouble() const override;       ///< The number as stored.
    virtual void getDouble(double newValue); ///< Stores. Note: this is the setter, under this name.
    /// \}

    karDataDouble(double number = 0.0) : value(number) {}      ///< Holds `number`.
    karDataDouble(const karDataDouble &) = default;            ///< Copies the number.
    karDataDouble &operator=(const karDataDouble &) = default; ///< Copies the number.

protected:
    double value; ///< as `getDouble` gives it
};

/// A parameter set of the host.
/// Note: unfinished. The constructor from a pointer and `setParam` store nothing: a value built from a pointer holds
/// null. They and the destructor call `_notready`, which does nothing.
class KAR_API karDataParam : public karDataBase {
public:
    /// \name Virtual operations, in slot order
    /// \{
    ~karDataParam() override;                         ///< Deletes nothing.
    CtrlType getType() const override;                ///< 5.
    karVectorizeParameter *getParam() const override; ///< As stored: null unless a class of the host has set one.
    virtual void setParam(const karVectorizeParameter *newParam); ///< Stores nothing.
    /// \}

    karDataParam(const karVectorizeParameter *value = nullptr); ///< Holds null, whatever `value` is.
    karDataParam(const karDataParam &) = default;               ///< Copies the pointer.
    karDataParam &operator=(const karDataParam &) = default;    ///< Copies the pointer.

protected:
    karVectorizeParameter *param = nullptr; ///< not owned
};

/// An id and a fixed number of numbered parameters, which the message owns. A parameter that isn't set is empty.
///
///     karMessageBase *message = filter.addMessage(myId, 2);
///     message->setText(0, name).setDouble(1, length);
///
/// Note: after the array couldn't be had, or with a negative count, `getParamCount` still reads the count, every
/// parameter is empty, and setters store nothing; a later `setParamCount` recovers.
class KAR_API karMessageBase {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual ~karMessageBase();                            ///< Deletes the parameters.
    virtual EnumMessageID getMessageID() const;           ///< The id given at construction.
    virtual int getParamCount() const;                    ///< Parameters that there are, set or empty.
    virtual karMessageBase &setParamCount(int count);     ///< Leaves `count` empty parameters.
    virtual const karDataBase *getParam(int index) const; ///< On loan; null if empty or out of range.
    virtual CtrlType getParamType(int index) const;       ///< 0 if empty or out of range.
    /// Stores an unfinished `karDataParam`, see there.
    virtual karMessageBase &setParam(int index, const karVectorizeParameter *param);
    /// Takes the value over, or null to empty the parameter; what stood there is deleted. Out of range or without an
    /// array the value stays with the caller.
    virtual karMessageBase &setParam(int index, karDataBase *value);
    /// Note: out of range the value that a typed setter has built is neither stored nor released; only after a failed
    /// array it is released. Without memory for the value the parameter becomes empty.
    virtual karMessageBase &setId(int index, int id);
    virtual karMessageBase &setText(int index, const karString &text); ///< \overload
    /// Note: stores 0, whatever the argument; a value that has to arrive goes through `setParam(index, value)`.
    virtual karMessageBase &setInteger(int index, int value);
    virtual karMessageBase &setDouble(int index, double value); ///< As `setId`.
    /// \}

    karMessageBase(EnumMessageID ownId = MessageNone, int count = 2); ///< `count` empty parameters.
    karMessageBase(const karMessageBase &) = default; ///< Note: both messages then hold, and release, one array.
    karMessageBase &operator=(const karMessageBase &) = default; ///< Note: as the copy; old parameters aren't released.

protected:
    EnumMessageID id;               ///< as constructed
    karDataBase **params = nullptr; ///< `paramCount` values, null without an array
    int paramCount = 0;             ///< length of `params`

private:
    void Delete(int index);
    void DeleteAll();
    bool hasSlot(int index) const { return params && index >= 0 && index < paramCount; }
    karMessageBase &setBuilt(int index, karDataBase *value);
};

/// A message as an element of a list.
class KAR_API karMessageLBase : public karListTyped<karMessageLBase, karListObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListObjectOk() override;          ///< 1.
    virtual karMessageBase *getMessage(); ///< The message in the element, never null; on loan.
    /// \}

    /// Behind the end of `chain`, or alone with null.
    karMessageLBase(karMessageLBase *chain, EnumMessageID id, int paramCount)
        : karListTyped(chain), message(id, paramCount)
    {}
    karMessageLBase(const karMessageLBase &) = default;            ///< Note: shares the parameters with its source.
    karMessageLBase &operator=(const karMessageLBase &) = default; ///< Note: as the copy.

protected:
    karMessageBase message; ///< part of the element, gone with it
};

/// A list of messages, which it owns. Removing an element deletes its message and the message's parameters.
class KAR_API karMessage : public karListHeadTyped<karMessageLBase, karListHeadObject> {
public:
    /// \name Virtual operations, in slot order
    /// \{
    int ListHeadObjectOk() override; ///< 1.
    ~karMessage() override;          ///< Deletes the messages.
    /// \}

    karMessage() : karListHeadTyped(ObjektIdies(0)) {} ///< Empty.
    karMessage(const karMessage &) = default;          ///< Note: shares the elements with its source; both delete them.
    karMessage &operator=(const karMessage &) = default; ///< Note: as the copy.

    /// \name Adding and removing
    /// \{

    /// A new message at the end; null if memory ends. Note: null for the id 8 too, which stands for none.
    karMessageLBase *addMessage(EnumMessageID id, int paramCount);
    /// Appends the element if it isn't in the list yet, and gives it back; null stays null. Linear.
    karMessageLBase *addMessage(karMessageLBase *element);
    /// Deletes the element, which isn't searched for first; null is ignored.
    void removeMessage(karMessageLBase *element);
    void removeMessage(karMessageBase *message); ///< Deletes the element that holds the message, if one does.
    void removeMessage(EnumMessageID id);        ///< Deletes the first message of that id, if there is one.
    void remAllMessage(EnumMessageID id);        ///< Deletes every message of that id.
    /// \}

    /// \name Searching
    /// Linear, from the first element; null if nothing is found. Here 0 is an id like any other.
    /// \{

    /// The element itself, if it stands in the list.
    karMessageLBase *searchMessage(karMessageLBase *element);
    /// The element that holds the message.
    karMessageLBase *searchMessage(karMessageBase *message);
    /// The first element whose message has that id.
    karMessageLBase *searchMessage(EnumMessageID id);
    /// The first element of that id from the one that holds `message` on; id 0 is any.
    /// Note: the search begins at the message itself, so a message of the id gives itself. To walk a list, go on with
    /// the element's own `next` between calls.
    karMessageLBase *nextMessage(karMessageBase *message, EnumMessageID id);
    karMessageLBase *prevMessage(karMessageBase *message, EnumMessageID id); ///< The same towards the front.
    /// \}
};

/// Break, progress and messages of an operation. A client makes one, or a class of its own from it, and hands it to any
/// number of filters.
/// Note: without memory for the percentage or the messages their pointer is null. The operations that use it then store
/// nothing and give 0 or null, also where a present percentage would give -1.
class KAR_API karCtrl {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual ~karCtrl(); ///< Deletes percentage and messages.
    /// True once a break was asked for. Note: the first call that tells it turns `BreakRequested` into `BreakSeen`.
    virtual bool isBreak();
    virtual void SetBreak();                             ///< To `BreakRequested`, also from `BreakSeen`.
    virtual void ResetBreak();                           ///< To `BreakNone`.
    virtual BreakState getBreak();                       ///< The state, unchanged.
    virtual void resetPercent();                         ///< As `karPercent::reset`.
    virtual void setGlobalPercent(int value);            ///< As `karPercent::setPercent`.
    virtual int getGlobalPercent();                      ///< As `karPercent::getPercent`.
    virtual void setLayerPercent(int value);             ///< As `karPercent::setLayerPercent(int)`.
    virtual int getLayerPercent();                       ///< As `karPercent::getLayerPercent`.
    virtual void addPercentLayer();                      ///< As `karPercent::addLayer`.
    virtual void removePercentLayer();                   ///< As `karPercent::removeLayer`.
    virtual void setPercentStartEnd(int start, int end); ///< As `karPercent::setStartEnd`.
    virtual karMessage *getMessageList();                ///< The list itself, owned by the controller.
    virtual karMessageBase *addMessage(EnumMessageID id, int paramCount); ///< Null for the id 8 and if memory ends.
    virtual karMessageBase *getMessage(EnumMessageID id);                 ///< The first of that id, or null.
    virtual karMessageBase *getMessage();                                 ///< The first of all, or null.
    virtual karMessageBase *nextMessage(karMessageBase *message, EnumMessageID id); ///< As `karMessage::nextMessage`.
    virtual karMessageBase *prevMessage(karMessageBase *message, EnumMessageID id); ///< As `karMessage::prevMessage`.
    virtual void removeMessage(karMessageBase *message); ///< Deletes the message, if the list holds it.
    /// \}

    karCtrl();                          ///< No break, one layer of 0 to 100, no messages.
    karCtrl(const karCtrl &) = default; ///< Note: shares percentage and messages with its source; both delete them.
    karCtrl &operator=(const karCtrl &) = default; ///< Note: as the copy; what was held isn't deleted.

protected:
    BreakState breakState = BreakNone; ///< as `getBreak` gives it
    karPercent *percent;               ///< owned
    karMessage *messages;              ///< owned
};

/// What an operation holds to reach its controller, which is its client's or, made by the filter, its own. Every
/// operation goes to the controller's virtual one, of the same name where no other is told.
/// Note: without memory for its own controller a filter holds null, as after `setCtrl(nullptr)`. Every operation that
/// goes to the controller then stores nothing and gives false, 0 or null.
class KAR_API karFilter {
public:
    /// Uses the controller of the client or, with null, makes and owns one.
    karFilter(karCtrl *clientCtrl = nullptr);
    karFilter(const karFilter &) = default; ///< Note: of an owning filter, both believe that they own the controller.
    ~karFilter();                           ///< Deletes the controller if the filter made it.
    karFilter &operator=(const karFilter &) = default; ///< Note: as the copy; an owned controller isn't deleted.

    /// Uses another controller, null included; deletes the present one if the filter made it. None is made for null.
    /// Note: deletes it also where it is the argument itself, which must not be used any more then.
    void setCtrl(karCtrl *newCtrl);
    karCtrl *getCtrl() { return ctrl; }      ///< The controller in use, whoever owns it.
    bool isOwnCtrlUsed() { return ownCtrl; } ///< True if the filter made its controller and will delete it.

    /// \name Break
    /// \{
    /// True once a break was asked for; the first call that tells it marks it as seen.
    bool isBreak() { return ctrl && ctrl->isBreak(); }
    void setBreak(bool on);                                               ///< `SetBreak` or `ResetBreak`.
    BreakState getBreak() { return ctrl ? ctrl->getBreak() : BreakNone; } ///< The state, unchanged.
    /// \}

    /// \name Progress
    /// \{
    /// One layer of 0 to 100 again.
    void resetPercent()
    {
        if (ctrl)
            ctrl->resetPercent();
    }
    /// Stores the percentage of the whole, past all layers.
    void setGlobalPercent(int value)
    {
        if (ctrl)
            ctrl->setGlobalPercent(value);
    }
    int getGlobalPercent() { return ctrl ? ctrl->getGlobalPercent() : 0; } ///< The percentage of the whole, or -1.
    /// Note: that of the innermost layer.
    void setPercent(int value)
    {
        if (ctrl)
            ctrl->setLayerPercent(value);
    }
    int getPercent() { return ctrl ? ctrl->getLayerPercent() : 0; } ///< Note: that of the innermost layer.
    /// A layer for a sub-phase.
    void addPercentLayer()
    {
        if (ctrl)
            ctrl->addPercentLayer();
    }
    /// The sub-phase is over.
    void removePercentLayer()
    {
        if (ctrl)
            ctrl->removePercentLayer();
    }
    /// The stretch of the next outer layer that the innermost one covers.
    void setPercentStartEnd(int start, int end)
    {
        if (ctrl)
            ctrl->setPercentStartEnd(start, end);
    }
    /// \}

    /// \name Messages
    /// \{
    /// All messages; the controller owns them.
    karMessage *getMessageList() { return ctrl ? ctrl->getMessageList() : nullptr; }
    /// A new message at the end; null for the id 8 and if memory ends.
    karMessageBase *addMessage(EnumMessageID id, int paramCount)
    {
        return ctrl ? ctrl->addMessage(id, paramCount) : nullptr;
    }
    karMessageBase *getMessage() { return ctrl ? ctrl->getMessage() : nullptr; } ///< The first of all, or null.
    /// The first of that id, or null.
    karMessageBase *getMessage(EnumMessageID id) { return ctrl ? ctrl->getMessage(id) : nullptr; }
    /// Deletes it if it is there.
    void removeMessage(karMessageBase *message)
    {
        if (ctrl)
            ctrl->removeMessage(message);
    }
    /// \}

protected:
    karCtrl *ctrl; ///< in use, null after `setCtrl(nullptr)`
    bool ownCtrl;  ///< the filter made it and deletes it
};

#endif
