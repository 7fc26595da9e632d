// A long operation: the controller that its client makes, its phases, what it finds, and the task that runs beside it.
#ifndef OPERATION_H
#define OPERATION_H

#include "console.h"

#include <krkgeneral.h>

/// Controls an operation from a terminal: the first Ctrl-C asks for a break, a second one ends the program at once.
/// Whenever the operation asks for a break, the console gets its turn (see `Console::turn`).
/// `KARTORY_DRAWING_BREAK_AT=N` in the environment presses Ctrl-C as the operation asks for the Nth time.
class TerminalCtrl : public karCtrl {
public:
    explicit TerminalCtrl(Console &ownConsole);
    ~TerminalCtrl() override;

    bool isBreak() override;

private:
    Console &console;
    long asked = 0;
    long breakAt = 0;
};

/// A stretch of an operation, in percent of the whole: a layer of the percentage for as long as the object lives.
class Phase {
public:
    /// `name` tells in English what is done, as "reading".
    Phase(karFilter &operation, int start, int end, const char *name);
    Phase(const Phase &) = delete;
    Phase &operator=(const Phase &) = delete;
    ~Phase();

    /// To be asked before each element; `fraction` of the phase lies behind. False where a break is asked for: the
    /// first time this becomes a finding.
    bool next(double fraction);

    karFilter &filter;

private:
    const char *name;
    int done = 0;
};

/// What the user should know, as a message of the controller. The parameters follow the id.
enum Finding : int {
    FindingStopped = 101,    ///< text: the phase; integer: elements done
    FindingLeftOut,          ///< text: the entity; text: why
    FindingMissingBlock,     ///< text: the block's name
    FindingUnsettled,        ///< texts: two entities
    FindingTooManyCrossings, ///< integer: how many were found
    FindingUnsettledFoot,    ///< text: the entity
    FindingSharpCorner,      ///< text: the entity; text: the corner
};

/// Adds a finding; the parameters are texts and integers in the order of the id's comment.
class FindingMaker {
public:
    FindingMaker(karFilter &filter, Finding id, int count)
        : message(filter.addMessage(static_cast<EnumMessageID>(id), count))
    {}
    FindingMaker &operator<<(const karString &text)
    {
        if (message)
            message->setText(index++, text);
        return *this;
    }
    FindingMaker &operator<<(int number)
    {
        if (message)
            message->setParam(index++, new karDataInteger(number));
        return *this;
    }

private:
    karMessageBase *message;
    int index = 0;
};

/// The first finding, the others behind it; null where there is none, and without memory for the list of them.
karMessageLBase *firstFinding(karFilter &filter);

/// The finding as a sentence in the user's language.
karString describe(const karMessageBase &finding);

/// Tells the user of all findings, as warnings; of many of one kind only the first ones and their number.
void tellFindings(karFilter &filter);

/// Beside the progress bar: seconds since the start and memory in use, renewed once a second.
class FiguresTask : public karTaskElem {
public:
    explicit FiguresTask(Console &ownConsole);

    int step() override;
    void reservedOperation() override {}

private:
    Console &console;
    long long start;
};

#endif
