// A long operation that reports, can be stopped and leaves messages; and dispatch by kind.
#include "expect.h"

#include <karctrl.h>
#include <karfilterid.h>

constexpr EnumMessageID contourOpen = EnumMessageID(20); // message ids belong to the host

// Works on `items` and gives how many it got done.
static int operation(karFilter &filter, int items)
{
    filter.setPercentStartEnd(0, 50); // the sub-phase is the first half of the whole
    filter.addPercentLayer();
    int done = 0;
    while (done < items && !filter.isBreak()) {
        ++done;
        filter.setPercent(100 * done / items);
        if (done == 2)
            if (karMessageBase *message = filter.addMessage(contourOpen, 2))
                message->setText(0, "contour").setId(1, done);
    }
    filter.removePercentLayer();
    return done;
}

constexpr filterObjectID lineKind = filterObjectID(1);

class Line : public karFilterObject {
public:
    filterObjectID getFilterId() override { return lineKind; }
};

class Drawer : public karFilterIdBase {
public:
    Drawer() : karFilterIdBase(this, &Drawer::filterNoAction) { setFilterHandler(lineKind, this, &Drawer::line); }
    errorCodesKARTORY line(karFilterObject *)
    {
        ++lines;
        return KAR_SUCCESS;
    }
    int lines = 0;
};

int main()
{
    karCtrl ctrl; // the client's; it owns progress and messages
    karFilter filter(&ctrl);
    EXPECT(operation(filter, 4) == 4);
    EXPECT(ctrl.getGlobalPercent() == 50);

    const karMessageBase *message = ctrl.getMessage(contourOpen);    // on loan
    EXPECT(message && message->getParam(0) && message->getParam(1)); // null where there was no memory
    EXPECT(message->getParam(0)->getText() == "contour");
    EXPECT(message->getParam(1)->getId() == 2);
    EXPECT(message->getParam(2) == nullptr); // out of range

    ctrl.SetBreak();
    EXPECT(operation(filter, 4) == 0);
    EXPECT(ctrl.getBreak() == BreakSeen);

    Drawer drawer;
    Line line;
    karFilterObject other; // kind 0, which has no handler of its own
    EXPECT(drawer.filterObject(&line) == KAR_SUCCESS && drawer.lines == 1);
    EXPECT(drawer.filterObject(&other) == KAR_SUCCESS && drawer.lines == 1);
    EXPECT(karFilterIdBase().filterObject(&line) == KAR_ERROR_NO_METHOD);
    return 0;
}
