// The first hour: a console of the host's own, messages, texts, a dialog and a task.
#include "first_hour_console.h"

//! [task]
class Countdown : public karTaskElem {
public:
    int step() override
    {
        std::printf("task: %d\n", left);
        return --left > 0 ? 1 : 0; // 1: call again; 0: done
    }
    void reservedOperation() override {}

private:
    int left = 2;
};
//! [task]

int main()
{
    //! [without]
    warningText(0, "nobody reads this");               // without a console a message goes nowhere,
    if (LocalizeInterActionErrorOK("", "", "") == 100) // and a dialog gives 100
        std::printf("no console is installed\n");
    //! [without]

    //! [talk]
    Console console;
    infoText(0, "%d entities read", 12);
    warningText(0, "%d contours are open", 3);
    infoText(5, "a detail that this console doesn't show");
    statusText("sorting");

    const karString title = LocalizeString("titles", "Drawing", 0);
    std::printf("title: %s\n", static_cast<const char *>(title));
    if (LocalizeInterActionWarning(InterActType(20), "dialogs", "Save", "Replace %s?", "plan.dxf") == Console::yes)
        std::printf("the user agrees\n");

    new Countdown; // registers itself; the console deletes it when it is done
    for (int turn = 0; turn < 3; ++turn)
        console.runTasks();
    //! [talk]
    return 0;
}
