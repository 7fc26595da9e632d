// The console of a small host: everything goes to standard output.
#ifndef FIRST_HOUR_CONSOLE_H
#define FIRST_HOUR_CONSOLE_H

#include <krkgeneral.h>

#include <algorithm>
#include <cstdio>
#include <vector>

//! [console]
class Console : public karStdio {
public:
    Console() { Stdio = this; } // from now on the library talks to this object
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;
    ~Console() override { Stdio = nullptr; } // the library never deletes it

    // A text and its arguments, as `vprintf` takes them. What the levels mean is the host's choice: 0 is shown here.
    void message(MsgType type, int level, const char *format, va_list arguments) override
    {
        if (level > 0)
            return;
        const char *const names[] = {"", "info", "parameter", "warning", "error"};
        std::printf("%s: ", names[type]);
        std::vprintf(format, arguments);
        std::printf("\n");
    }
    void statusText(const char *format, va_list arguments) override
    {
        std::printf("status: ");
        std::vprintf(format, arguments);
        std::printf("\n");
    }
    // The percentage has fallen: an operation began anew. A rise is never told, see the progress below.
    void Fortschritt(int) override { std::printf("progress: back\n"); }

    // Texts come from the host's own tables; where it has none, the key itself does.
    karString &localizeString(const char *, const char *key, karString &out, long) override { return out = key; }

    // Dialogs. This host has no user to ask: it takes the suggested name, and it says yes to all questions.
    karString GetFileNameWrite(const karString &, const karString &, const karString &suggested, const karString &,
                               const karString &, int) override
    {
        return suggested;
    }
    InterActAnswer interAction(InterActType, InterActIcon, InterActDefault, InterActModal, InterActSonder, karString,
                               karString caption, karString text, va_list arguments) override
    {
        std::printf("%s: ", static_cast<const char *>(caption));
        std::vprintf(text, arguments);
        std::printf("\n");
        return yes;
    }
    static constexpr InterActAnswer yes = InterActAnswer(1); // the answers are the host's, but for 100

    // Tasks register themselves as they are made and run in turn.
    void addTask(karTaskElem *task) override { tasks.push_back(task); }
    void removeTask(karTaskElem *task) override // also called for a task that has gone already
    {
        tasks.erase(std::remove(tasks.begin(), tasks.end(), task), tasks.end());
    }
    void runTasks() // the host's main loop calls this
    {
        const std::vector<karTaskElem *> turn = tasks;
        for (karTaskElem *task : turn)
            if (std::count(tasks.begin(), tasks.end(), task) != 0 && task->_todo()) {
                removeTask(task);
                task->PostRemove(); // deletes it
            }
    }

private:
    std::vector<karTaskElem *> tasks;
};
//! [console]

#endif
