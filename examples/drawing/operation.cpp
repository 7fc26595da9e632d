#include "operation.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <map>

#include <signal.h>

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterrupt(int) { interrupted = 1; }

} // namespace

TerminalCtrl::TerminalCtrl(Console &ownConsole) : console(ownConsole)
{
    if (const char *element = std::getenv("KARTORY_DRAWING_BREAK_AT"))
        breakAt = std::strtol(element, nullptr, 10);
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND); // the second Ctrl-C finds the usual action
    sigaction(SIGINT, &action, nullptr);
}

TerminalCtrl::~TerminalCtrl() { std::signal(SIGINT, SIG_DFL); }

bool TerminalCtrl::isBreak()
{
    if (++asked == breakAt)
        std::raise(SIGINT);
    if (interrupted) {
        interrupted = 0;
        SetBreak();
    }
    console.turn(*this);
    return karCtrl::isBreak();
}

Phase::Phase(karFilter &operation, int start, int end, const char *ownName) : filter(operation), name(ownName)
{
    statusText("%s", bytesOf(text(name)));
    filter.setPercentStartEnd(start, end);
    filter.addPercentLayer();
}

Phase::~Phase() { filter.removePercentLayer(); }

bool Phase::next(double fraction)
{
    const bool known = filter.getBreak() == BreakSeen;
    if (filter.isBreak()) {
        if (!known)
            FindingMaker(filter, FindingStopped, 2) << text(name) << done;
        return false;
    }
    filter.setPercent(static_cast<int>(fraction * 100));
    ++done;
    return true;
}

karMessageLBase *firstFinding(karFilter &filter)
{
    karMessage *findings = filter.getMessageList();
    return findings ? findings->ListFirst() : nullptr;
}

karString describe(const karMessageBase &finding)
{
    const auto textAt = [&finding](int index) {
        const karDataBase *value = finding.getParam(index);
        return value ? value->getText() : karString();
    };
    const auto numberAt = [&finding](int index) {
        const karDataBase *value = finding.getParam(index);
        return value ? value->getInteger() : 0;
    };
    switch (static_cast<int>(finding.getMessageID())) {
    case FindingStopped:
        return textOf("stopped on request while %s, %d elements done", bytesOf(textAt(0)), numberAt(1));
    case FindingLeftOut:
        return textOf("%s is left out: %s", bytesOf(textAt(0)), bytesOf(textAt(1)));
    case FindingMissingBlock:
        return textOf("block \"%s\" is not there", bytesOf(textAt(0)));
    case FindingUnsettled:
        return textOf("crossings of %s and %s may be missing: the iteration does not settle", bytesOf(textAt(0)),
                      bytesOf(textAt(1)));
    case FindingUnsettledFoot:
        return textOf("feet on %s may be missing: the iteration does not settle", bytesOf(textAt(0)));
    case FindingTooManyCrossings:
        return textOf("too much lies on one another: the search ended after %d crossings", numberAt(0));
    case FindingSharpCorner:
        return textOf("%s keeps its corner at %s: its sides are too short", bytesOf(textAt(0)), bytesOf(textAt(1)));
    default:
        return karString();
    }
}

void tellFindings(karFilter &filter)
{
    constexpr int told = 10; // of each kind
    std::map<int, int> counts;
    for (karMessageLBase *element = firstFinding(filter); element; element = element->next()) {
        const karMessageBase &finding = *element->getMessage();
        if (++counts[finding.getMessageID()] <= told)
            warningText(0, "%s", bytesOf(describe(finding)));
    }
    for (const auto &[id, count] : counts)
        if (count > told)
            warningText(0, text("%d more warnings like these"), count - told);
}

FiguresTask::FiguresTask(Console &ownConsole) : console(ownConsole), start(std::time(nullptr)) {}

int FiguresTask::step()
{
    constexpr int goOn = 1;
    constexpr long kilobyte = 1024;
    console.setFigures(textOf("%ld s, %ld KB", static_cast<long>(std::time(nullptr) - start),
                              globalMemList->getCurSizeNew() / kilobyte));
    suspend(1);
    return goOn;
}
