#include "kartaskelem.h"

#include "karstdio.h"

#include <ctime>

namespace {

unsigned now() { return static_cast<unsigned>(std::time(nullptr)); }

} // namespace

karTaskElem::karTaskElem() { Stdio->addTask(this); }

karTaskElem::~karTaskElem() { Stdio->removeTask(this); }

bool karTaskElem::_todo()
{
    if (running)
        return false;
    running = true;
    bool finished = false;
    if (canDo()) {
        const int status = step();
        finished = status == 0 || status == 2 || status == 3;
    }
    running = false;
    return finished;
}

void karTaskElem::PostRemove() { delete this; }

void karTaskElem::suspend(unsigned long seconds)
{
    suspended = true;
    resumeTime = seconds == 0 ? 0 : now() + static_cast<unsigned>(seconds);
}

void karTaskElem::resume() { suspended = false; }

void karTaskElem::cancel()
{
    cancelled = true;
    removeTask();
}

void karTaskElem::complete()
{
    resume();
    while (step() == 1) {
    }
    removeTask();
}

void karTaskElem::removeTask() { Stdio->removeTask(this); }

bool karTaskElem::canDo()
{
    if (suspended && resumeTime != 0 && now() >= resumeTime)
        resume();
    return !suspended;
}
