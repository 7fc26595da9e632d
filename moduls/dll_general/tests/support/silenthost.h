// A host that counts ticks and task calls and answers nothing, installed for the time of its life.
#ifndef KAR_TEST_SILENT_HOST_H
#define KAR_TEST_SILENT_HOST_H

#include "karstdio.h"

#include <vector>

class SilentHost : public karStdio {
public:
    SilentHost() { Stdio = this; }
    SilentHost(const SilentHost &) = delete;
    SilentHost &operator=(const SilentHost &) = delete;
    ~SilentHost() override { Stdio = nullptr; }

    karString GetFileNameWrite(const karString &, const karString &, const karString &third, const karString &,
                               const karString &, int) override
    {
        return third;
    }
    void message(MsgType, int, const char *, va_list) override {}
    void statusText(const char *, va_list) override {}
    void Fortschritt(int value) override { ticks.push_back(value); }
    void addTask(karTaskElem *task) override { added.push_back(task); }
    void removeTask(karTaskElem *task) override { removed.push_back(task); }
    InterActAnswer interAction(InterActType, InterActIcon, InterActDefault, InterActModal, InterActSonder, karString,
                               karString, karString, va_list) override
    {
        return InterActAnswer(0);
    }
    karString &localizeString(const char *, const char *, karString &out, long) override { return out; }

    std::vector<int> ticks;
    std::vector<karTaskElem *> added;
    std::vector<karTaskElem *> removed;
};

#endif
