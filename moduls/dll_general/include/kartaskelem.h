/// \file
/// A small unit of work that the host runs in turn with others.
#ifndef KAR_TASK_ELEM_H
#define KAR_TASK_ELEM_H

#include "karalloc.h"

/// A cooperative task. It registers itself with the host (`Stdio`) as it is made; the host's loop then calls `_todo`
/// until that gives true, takes the task out of its list and calls `PostRemove`. A host must be installed before the
/// first task is made and as long as one lives: `Stdio` is used without a test. The host must accept the removal of a
/// task that it has dropped already.
class KAR_API karTaskElem {
public:
    KAR_LIBRARY_NEW

    /// \name Virtual operations, in slot order
    /// \{
    virtual ~karTaskElem(); ///< Takes the task out of the host's list.
    /// Runs one step if the task is awake. True: the task has finished (`step` gave 0, 2 or 3). False: to be called
    /// again, also from a sleeping task, and from inside the task's own `step`, which is not entered twice.
    virtual bool _todo();
    /// One portion of the work. 1: more is to be done; 0, 2 and 3: finished.
    /// Note: any other value counts as 1 in `_todo` and as finished in `complete`.
    virtual int step() = 0;
    virtual void PostRemove();            ///< Deletes the task. A task that doesn't come from `new` overrides it.
    virtual void reservedOperation() = 0; ///< Never called.
    /// \}

    /// \name Construction and assignment
    /// \{
    karTaskElem(); ///< Awake; registers with the host.
    /// Copies the state. Note: the copy isn't registered, but its destructor still calls the host.
    karTaskElem(const karTaskElem &) = default;
    karTaskElem &operator=(const karTaskElem &) = default; ///< Copies the state; registration doesn't change.
    /// \}

    /// Puts the task to sleep for a number of seconds of the clock `time`, or until `resume` for 0.
    /// Note: wake-up times count in unsigned 32 bits on every target; sum and comparison wrap so.
    void suspend(unsigned long seconds);
    void resume(); ///< Wakes the task.
    /// Notes the wish and takes the task out of the host's list.
    /// Note: nothing here reads the mark: a step that is under way goes on, and a later `_todo` still runs.
    void cancel();
    /// Wakes the task, runs its steps until one gives anything but 1, and takes it out of the host's list.
    void complete();
    void removeTask(); ///< Takes the task out of the host's list.

protected:
    bool canDo(); ///< Wakes a task whose time has come; true if the task is awake.

    unsigned resumeTime = 0; ///< seconds of `time` at which a sleeping task wakes by itself; 0 for never
    bool suspended = false;  ///< asleep
    bool cancelled = false;  ///< `cancel` was called; nothing here reads it
    bool running = false;    ///< while `_todo` is inside
};

#endif
