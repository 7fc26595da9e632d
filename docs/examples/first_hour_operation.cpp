// The first hour: a long operation with phases, a break and messages, and the client that started it.
#include "first_hour_console.h"

//! [operation]
constexpr EnumMessageID contourOpen = EnumMessageID(20); // ids belong to the host; 0 and 8 are taken

// One phase. It counts 0 to 100 in its own terms and doesn't know where in the whole it stands.
static int phase(karFilter &filter, const char *name, int items)
{
    int done = 0;
    while (done < items && !filter.isBreak()) { // asked as often as the user should wait for at most
        ++done;
        filter.setPercent(100 * done / items);
        std::printf("%s %d of %d: %3d percent of the whole\n", name, done, items, filter.getGlobalPercent());
        if (done == 2)
            if (karMessageBase *message = filter.addMessage(contourOpen, 2)) // null without memory
                message->setText(0, name).setId(1, done);
    }
    return done;
}

// The whole: reading takes the first quarter, tracing the rest.
static int operation(karFilter &filter)
{
    while (karMessageBase *old = filter.getMessage(contourOpen)) // those of the run before
        filter.removeMessage(old);
    filter.resetPercent();
    filter.setPercentStartEnd(0, 25); // the stretch of the next phase
    filter.addPercentLayer();
    int done = phase(filter, "read", 2);
    filter.removePercentLayer();

    filter.setPercentStartEnd(25, 100);
    filter.addPercentLayer();
    done += phase(filter, "trace", 3);
    filter.removePercentLayer();
    return done;
}
//! [operation]

//! [controller]
// A controller of the client's own. Here the user loses patience; elsewhere a button calls `SetBreak`.
class Impatient : public karCtrl {
public:
    explicit Impatient(int ownLeft) : left(ownLeft) {}
    bool isBreak() override
    {
        if (left-- == 0)
            SetBreak();
        return karCtrl::isBreak();
    }

private:
    int left;
};
//! [controller]

//! [client]
static void run(karCtrl &ctrl)
{
    karFilter filter(&ctrl); // doesn't own the controller
    const int done = operation(filter);
    std::printf("%d done%s\n", done, ctrl.getBreak() == BreakSeen ? ", stopped by the user" : "");

    karMessage *messages = ctrl.getMessageList(); // null if there was no memory for it
    for (karMessageLBase *element = messages ? messages->ListFirst() : nullptr; element; element = element->next()) {
        const karMessageBase *message = element->getMessage(); // on loan: it goes with its element
        const karDataBase *name = message->getParam(0);        // null where nothing is stored
        const karDataBase *item = message->getParam(1);
        if (message->getMessageID() == contourOpen && name && item)
            std::printf("message: open contour in %s, item %d\n", static_cast<const char *>(name->getText()),
                        item->getId());
    }
}

int main()
{
    const Console console;
    Impatient ctrl(9); // outlasts the first run
    run(ctrl);
    run(ctrl);
    return 0;
}
//! [client]
