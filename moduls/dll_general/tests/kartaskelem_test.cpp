// Cooperative tasks. Wake-up times are set through the fields, so that no test sleeps.
#include "kartaskelem.h"

#include "mempeek.h"
#include "silenthost.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <ctime>
#include <type_traits>

namespace {

unsigned now() { return static_cast<unsigned>(std::time(nullptr)); }

class Task : public karTaskElem {
public:
    int step() override
    {
        ++steps;
        if (nested)
            nestedResult = _todo();
        return steps <= static_cast<int>(results.size()) ? results[static_cast<std::size_t>(steps - 1)] : 0;
    }
    void reservedOperation() override {}

    using karTaskElem::cancelled;
    using karTaskElem::canDo;
    using karTaskElem::resumeTime;
    using karTaskElem::running;
    using karTaskElem::suspended;

    std::vector<int> results;
    int steps = 0;
    bool nested = false;
    bool nestedResult = true;
};

class DeletedTask : public Task {
public:
    explicit DeletedTask(int &counter) : deleted(counter) {}
    ~DeletedTask() override { ++deleted; }
    int &deleted;
};

class KarTaskElem : public ::testing::Test {
protected:
    SilentHost host;
};

} // namespace

TEST_F(KarTaskElem, RegistersAsItIsMadeAndLeavesAsItDies)
{
    karTaskElem *address = nullptr;
    {
        Task task;
        address = &task;
        EXPECT_EQ(host.added, std::vector<karTaskElem *>{address});
        EXPECT_TRUE(host.removed.empty());
        EXPECT_EQ(task.resumeTime, 0u);
        EXPECT_FALSE(task.suspended);
        EXPECT_FALSE(task.cancelled);
        EXPECT_FALSE(task.running);
    }
    EXPECT_EQ(host.removed, std::vector<karTaskElem *>{address});
}

TEST_F(KarTaskElem, ACopyTakesTheStateAndIsNotRegistered)
{
    Task task;
    task.suspend(7);
    task.cancel();
    host.removed.clear();
    {
        Task copy(task);
        EXPECT_EQ(host.added.size(), 1u);
        EXPECT_EQ(copy.resumeTime, task.resumeTime);
        EXPECT_TRUE(copy.suspended);
        EXPECT_TRUE(copy.cancelled);
    }
    EXPECT_EQ(host.removed.size(), 1u); // the destructor of the copy calls the host all the same
    Task other;
    static_cast<karTaskElem &>(other) = task;
    EXPECT_TRUE(other.suspended);
    EXPECT_EQ(other.resumeTime, task.resumeTime);
    EXPECT_EQ(host.added.size(), 2u);
}

TEST_F(KarTaskElem, TodoTellsWhichStatusesHaveFinished)
{
    const struct {
        int status;
        bool finished;
    } rows[] = {{0, true}, {1, false}, {2, true}, {3, true}, {4, false}, {7, false}, {-1, false}};
    for (const auto &row : rows) {
        Task task;
        task.results = {row.status};
        EXPECT_EQ(task._todo(), row.finished) << row.status;
        EXPECT_EQ(task.steps, 1) << row.status;
        EXPECT_FALSE(task.running) << row.status;
    }
}

TEST_F(KarTaskElem, TodoIsNotEnteredFromItsOwnStep)
{
    Task task;
    task.nested = true;
    EXPECT_TRUE(task._todo());
    EXPECT_EQ(task.steps, 1);
    EXPECT_FALSE(task.nestedResult);
    EXPECT_FALSE(task.running);
}

TEST_F(KarTaskElem, SleepsWithoutATimeUntilResumed)
{
    Task task;
    task.suspend(0);
    EXPECT_EQ(task.resumeTime, 0u);
    EXPECT_FALSE(task._todo());
    EXPECT_FALSE(task.running);
    EXPECT_EQ(task.steps, 0);
    task.resume();
    EXPECT_TRUE(task._todo());
    EXPECT_EQ(task.steps, 1);
}

TEST_F(KarTaskElem, SuspendAddsTheSecondsToTheClock)
{
    Task task;
    const unsigned before = now();
    task.suspend(5);
    const unsigned after = now();
    EXPECT_TRUE(task.suspended);
    EXPECT_GE(task.resumeTime, before + 5);
    EXPECT_LE(task.resumeTime, after + 5);
    EXPECT_FALSE(task._todo());
}

TEST_F(KarTaskElem, SuspendWithoutSecondsForgetsAnEarlierTime)
{
    Task task;
    task.suspend(5);
    task.suspend(0);
    EXPECT_EQ(task.resumeTime, 0u);
}

TEST_F(KarTaskElem, SecondsWrapInThirtyTwoBits)
{
    Task task;
    const unsigned before = now();
    task.suspend(0xfffffffful); // one second back
    const unsigned after = now();
    EXPECT_GE(task.resumeTime, before - 1);
    EXPECT_LE(task.resumeTime, after - 1);
    EXPECT_TRUE(task._todo());
}

TEST_F(KarTaskElem, WakesByItselfWhenTheTimeHasCome)
{
    Task task;
    task.suspend(5);
    task.resumeTime = now() + 1000;
    EXPECT_FALSE(task.canDo());
    EXPECT_TRUE(task.suspended);
    task.resumeTime = now(); // at the time itself
    EXPECT_TRUE(task.canDo());
    EXPECT_FALSE(task.suspended);
    EXPECT_NE(task.resumeTime, 0u); // the time stays
    task.suspended = true;
    task.resumeTime = 1; // long ago
    EXPECT_TRUE(task._todo());
}

TEST_F(KarTaskElem, CompleteRunsASleepingTaskToItsEnd)
{
    Task task;
    task.suspend(0);
    task.results = {1, 1, 1, 2, 1};
    task.complete();
    EXPECT_EQ(task.steps, 4);
    EXPECT_FALSE(task.suspended);
    EXPECT_EQ(host.removed, std::vector<karTaskElem *>{&task});
}

TEST_F(KarTaskElem, CompleteEndsAtAStatusThatTodoWouldRepeat)
{
    Task task;
    task.results = {1, 7, 1};
    task.complete();
    EXPECT_EQ(task.steps, 2);
}

TEST_F(KarTaskElem, CompleteNeitherSetsNorTestsRunning)
{
    Task task;
    task.running = true;
    task.complete();
    EXPECT_EQ(task.steps, 1);
    EXPECT_TRUE(task.running);

    Task nesting; // a nested call finds the mark clear and steps once more
    nesting.nested = true;
    nesting.results = {0, 0};
    nesting.complete();
    EXPECT_GT(nesting.steps, 1);
}

TEST_F(KarTaskElem, CancelOnlyNotesAndRemoves)
{
    Task task;
    task.cancel();
    EXPECT_TRUE(task.cancelled);
    EXPECT_EQ(host.removed, std::vector<karTaskElem *>{&task});
    EXPECT_TRUE(task._todo());
    EXPECT_EQ(task.steps, 1);
}

TEST_F(KarTaskElem, PostRemoveDeletesThroughTheVirtualDestructor)
{
    int deleted = 0;
    karTaskElem *task = new DeletedTask(deleted);
    ASSERT_NE(task, nullptr);
    task->PostRemove();
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(host.removed, std::vector<karTaskElem *>{task});
}

TEST_F(KarTaskElem, AHostDrivesATaskToItsEnd)
{
    int deleted = 0;
    auto *task = new DeletedTask(deleted);
    task->results = {1, 1, 3};
    int rounds = 1;
    while (!task->_todo())
        ++rounds;
    task->PostRemove();
    EXPECT_EQ(rounds, 3);
    EXPECT_EQ(deleted, 1);
}

namespace {

// Looks at the task at the moment of the call.
class LookingHost : public SilentHost {
public:
    void addTask(karTaskElem *task) override
    {
        look(*task);
        SilentHost::addTask(task);
    }
    void removeTask(karTaskElem *task) override
    {
        look(*task);
        SilentHost::removeTask(task);
    }
    unsigned resumeTime = 99;
    bool suspended = true;
    bool cancelled = true;
    bool running = true;

private:
    struct Open : karTaskElem {
        static unsigned resumeTimeOf(karTaskElem &task) { return task.*&Open::resumeTime; }
        static bool suspendedOf(karTaskElem &task) { return task.*&Open::suspended; }
        static bool cancelledOf(karTaskElem &task) { return task.*&Open::cancelled; }
        static bool runningOf(karTaskElem &task) { return task.*&Open::running; }
    };
    void look(karTaskElem &task)
    {
        resumeTime = Open::resumeTimeOf(task);
        suspended = Open::suspendedOf(task);
        cancelled = Open::cancelledOf(task);
        running = Open::runningOf(task);
    }
};

/// Opens the fields.
struct TaskFields : Task {
    void check()
    {
        const auto word = static_cast<std::ptrdiff_t>(sizeof(void *));
        EXPECT_EQ(offsetIn(*this, resumeTime), word);
        EXPECT_EQ(offsetIn(*this, suspended), word + 4);
        EXPECT_EQ(offsetIn(*this, cancelled), word + 5);
        EXPECT_EQ(offsetIn(*this, running), word + 6);
        EXPECT_EQ(sizeof resumeTime, 4u);
    }
};

} // namespace

TEST(KarTaskElemHost, SeesTheFieldsAsTheyAreStated)
{
    LookingHost host;
    Task task;
    EXPECT_EQ(host.resumeTime, 0u); // cleared before the host is told
    EXPECT_FALSE(host.suspended);
    EXPECT_FALSE(host.cancelled);
    EXPECT_FALSE(host.running);
    task.cancel();
    EXPECT_TRUE(host.cancelled); // noted before the host is told
    EXPECT_FALSE(host.suspended);
    task.suspend(0);
    task.removeTask();
    EXPECT_TRUE(host.suspended);
    task.complete();
    EXPECT_FALSE(host.suspended); // awake, and the steps are done
    EXPECT_EQ(task.steps, 1);
    EXPECT_EQ(host.removed.size(), 3u);
}

TEST_F(KarTaskElem, CompleteIsAwakeBeforeTheFirstStep)
{
    class Waking : public Task {
    public:
        int step() override
        {
            wasAsleep = suspended;
            return 0;
        }
        bool wasAsleep = true;
    };
    Waking task;
    task.suspend(1000);
    const unsigned time = task.resumeTime;
    task.complete();
    EXPECT_FALSE(task.wasAsleep);
    EXPECT_EQ(task.resumeTime, time); // waking leaves the time
}

TEST_F(KarTaskElem, RunningIsTrueInsideTheStepAlone)
{
    class Inside : public Task {
    public:
        int step() override
        {
            seen = running;
            return 1;
        }
        bool seen = false;
    };
    Inside task;
    task._todo();
    EXPECT_TRUE(task.seen);
    EXPECT_FALSE(task.running);
}

TEST_F(KarTaskElem, PostRemoveGivesTheMemoryBack)
{
    karPageMemory &pool = AllocatorPeek::pool(*globalMemList, 7); // that of an object of this size
    static_assert(sizeof(DeletedTask) <= 92);
    const int before = pool.getAnzElem();
    int deleted = 0;
    karTaskElem *task = new DeletedTask(deleted);
    EXPECT_EQ(pool.getAnzElem(), before + 1);
    task->PostRemove();
    EXPECT_EQ(pool.getAnzElem(), before);
}

TEST(TaskElemLayout, FieldsAndVirtualOperationsStandInTheirOrder)
{
    SilentHost host;
    TaskFields().check();
    EXPECT_EQ(sizeof(karTaskElem), sizeof(void *) + 8);
    static_assert(std::is_abstract_v<karTaskElem>);
    static_assert(std::has_virtual_destructor_v<karTaskElem>);
    EXPECT_EQ(slotOf(&karTaskElem::_todo), 2); // behind the destructor
    EXPECT_EQ(slotOf(&karTaskElem::step), 3);
    EXPECT_EQ(slotOf(&karTaskElem::PostRemove), 4);
    EXPECT_EQ(slotOf(&karTaskElem::reservedOperation), 5);
}
