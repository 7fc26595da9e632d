// The variable page pool beside a plain model on long random sequences. The model keeps one mark an element: free runs
// are the stretches of free elements, so joining needs no rules of its own.
#include "testrandom.h"
#include "testvarpool.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

struct ModelPage {
    char *start;            // storage of the page beside it
    std::vector<char> free; // 0: in use, or dropped as too short
    int used = 0;
};

struct Stretch {
    int from, length; // elements
};

class Model {
public:
    Model(int elementSize, int pageCount)
        : size(elementSize), count(pageCount), smallest(static_cast<int>(8.0 / elementSize + 0.5))
    {}

    std::vector<std::unique_ptr<ModelPage>> pages;
    ModelPage *first = nullptr;
    ModelPage *last = nullptr;
    ModelPage *current = nullptr;
    int speed = 0;

    int raised(int n) const { return std::max(n, smallest); }

    static std::vector<Stretch> stretches(const ModelPage &page)
    {
        std::vector<Stretch> list;
        const char *const marks = page.free.data();
        const int n = static_cast<int>(page.free.size());
        for (int from = 0; from < n; ++from) {
            if (!marks[from])
                continue;
            int end = from;
            while (end < n && marks[end])
                ++end;
            list.push_back({from, end - from});
            from = end;
        }
        return list;
    }

    char *pageNew(ModelPage &page, int wantedCount, bool fromEnd) const
    {
        const int n = raised(wantedCount);
        const std::vector<Stretch> list = stretches(page);
        int chosen = -1;
        for (std::size_t i = fromEnd && !list.empty() ? list.size() - 1 : 0; i < list.size(); ++i) {
            if (list[i].length == n) {
                chosen = list[i].from;
                break;
            }
            if (chosen < 0 && (list[i].length - n) * size >= 8)
                chosen = list[i].from;
        }
        if (chosen < 0)
            return nullptr;
        set(page, chosen, n, false);
        page.used += n;
        return page.start + chosen * size;
    }

    /// Whether the page is empty afterwards.
    bool pageDelete(ModelPage &page, char *p, int usedCount) const
    {
        if (usedCount == 0)
            return false;
        const int from = static_cast<int>(p - page.start) / size;
        for (const Stretch &run : stretches(page))
            if (run.from == from)
                return false;
        const int n = raised(usedCount);
        set(page, from, n, true);
        for (const Stretch &run : stretches(page))
            if (run.length * size < 8 && run.from == from)
                set(page, from, n, false);
        page.used = std::max(page.used - n, 0);
        return page.used == 0;
    }

    ModelPage *pageOf(char *p) const
    {
        for (const auto &page : pages)
            if (p >= page->start && p <= page->start + (static_cast<int>(page->free.size()) - 1) * size)
                return page.get();
        return nullptr;
    }

    /// A run from the pages that there are, null where the pool appends one.
    char *newOnPages(int wantedCount, bool append) const
    {
        if (!append)
            for (std::size_t i = 0; i + 1 < pages.size(); ++i)
                if (char *const run = pageNew(*pages[i], wantedCount, false))
                    return run;
        bool started = false;
        for (const auto &page : pages) {
            started = started || page.get() == (speed ? last : first);
            if (!started)
                continue;
            if (char *const run = pageNew(*page, wantedCount, speed != 0))
                return run;
        }
        return nullptr;
    }

    void append(char *start, int wantedCount)
    {
        pages.push_back(std::make_unique<ModelPage>());
        pages.back()->start = start;
        pages.back()->free.assign(static_cast<std::size_t>(std::max(wantedCount, count)), 1);
        last = current = pages.back().get();
        if (!first)
            first = last;
    }

    void remove(ModelPage *page)
    {
        const auto place =
            std::find_if(pages.begin(), pages.end(), [page](const auto &entry) { return entry.get() == page; });
        ModelPage *const before = place == pages.begin() ? nullptr : (place - 1)->get();
        ModelPage *const after = place + 1 == pages.end() ? nullptr : (place + 1)->get();
        if (first == page)
            first = before ? before : after;
        if (last == page)
            last = after ? after : before;
        if (current == page)
            current = after ? after : before;
        pages.erase(place);
    }

    const int size;
    const int count;
    const int smallest;

private:
    static void set(ModelPage &page, int from, int n, bool value)
    {
        for (int i = from; i < from + n; ++i)
            page.free.data()[i] = value ? 1 : 0;
    }
};

struct Run {
    char *p;
    int count;  // as requested
    int filled; // bytes with a pattern
    int seed;
};

/// Drives the pool and the model side by side.
class Beside {
public:
    Beside(int size, int count, std::uint64_t seed) : pool(size, count), model(size, count), random(seed) {}

    void run(int steps)
    {
        for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
            act();
            compare(step % 64 == 0);
            if (::testing::Test::HasFailure())
                ADD_FAILURE() << "element size " << model.size << ", step " << step;
        }
    }

private:
    void act()
    {
        const unsigned what = random.below(100);
        const bool many = live.size() > 24 || random.below(4000) < drain;
        if (what < 45 && !many)
            request(random.below(4) == 0);
        else if (what < 80)
            release();
        else if (what < 92)
            resize();
        else if (what < 94)
            changeSpeed();
        else if (what < 96)
            check();
        else
            releaseAgain();
        drain = random.below(2000) == 0 ? (drain ? 0u : 3500u) : drain; // now and then the pool runs empty
    }

    void request(bool append)
    {
        const int count = random.below(40) == 0 ? random.between(25, 60) : random.between(1, 9);
        void *const real = append ? pool.appendElement(count) : pool.newElement(count);
        char *const expected = expectNew(count, append);
        ASSERT_EQ(real, expected);
        if (expected)
            keep(expected, count, count * model.size);
    }

    void keep(char *p, int count, int bytes)
    {
        Run run = {p, count, bytes, static_cast<int>(random.below(256))};
        for (int i = 0; i < bytes; ++i)
            p[i] = static_cast<char>(run.seed + i);
        live.push_back(run);
    }

    static void expectFilled(const char *p, const Run &run, int bytes)
    {
        for (int i = 0; i < std::min(bytes, run.filled); ++i)
            if (p[i] != static_cast<char>(run.seed + i)) {
                ADD_FAILURE() << "byte " << i << " of a run was changed";
                return;
            }
    }

    std::size_t pick() { return random.below(static_cast<unsigned>(live.size())); }

    void forget(std::size_t index)
    {
        live[index] = live.back();
        live.pop_back();
    }

    void release()
    {
        if (live.empty())
            return;
        const std::size_t index = pick();
        const Run run = live[index];
        expectFilled(run.p, run, run.filled);
        void *p = run.p;
        pool.deleteElement(p, run.count);
        ASSERT_EQ(p, nullptr);
        ModelPage *const page = model.pageOf(run.p);
        ASSERT_NE(page, nullptr);
        if (model.pageDelete(*page, run.p, run.count))
            model.remove(page);
        forget(index);
    }

    // The start of a free run changes nothing.
    void releaseAgain()
    {
        if (model.pages.empty())
            return;
        const ModelPage &page = *model.pages[random.below(static_cast<unsigned>(model.pages.size()))];
        const std::vector<Stretch> list = Model::stretches(page);
        if (list.empty())
            return;
        const Stretch run = list[random.below(static_cast<unsigned>(list.size()))];
        void *p = page.start + run.from * model.size;
        pool.deleteElement(p, random.between(-2, 30));
        ASSERT_EQ(p, nullptr);
    }

    void changeSpeed()
    {
        model.speed = random.between(0, 1);
        pool.speicher_Speed(model.speed);
    }

    void check()
    {
        pool.checkMemory();
        if (!model.last)
            return;
        ModelPage *const page = model.last;
        char *const run = model.pageNew(*page, 40, false);
        if (run && model.pageDelete(*page, run, 40))
            model.remove(page);
    }

    void resize()
    {
        // With single bytes a run alone on its page would be given back through another one.
        if (live.empty() || (model.size == 1 && !model.speed))
            return;
        const std::size_t index = pick();
        const Run run = live[index];
        const int shorter = random.between(0, run.count);
        const int count = random.below(8) == 0 ? run.count + random.between(1, 6) : shorter;
        void *p = run.p;
        void *const real = pool.resizeElementLast(p, run.count, count);
        forget(index);
        ModelPage *const page = model.pageOf(run.p);
        ASSERT_NE(page, nullptr);
        const int behindOld = static_cast<int>(run.p - page->start) + model.raised(run.count) * model.size;

        if (!model.speed) {
            char *const target = expectNew(count, false);
            if (target) {
                const ModelPage *const targetPage = model.pageOf(target);
                const int used = targetPage ? targetPage->used : 0;
                const bool directlyBehind = targetPage == page && target == page->start + behindOld;
                if (!directlyBehind && used * model.size != count) {
                    moved(run, page, target, count);
                    ASSERT_EQ(real, target);
                    ASSERT_EQ(p, run.p);
                    return;
                }
                model.pageDelete(*page, target, count);
                if (count == 0 && model.smallest > 0) // nobody else will: the run stays taken
                    live.push_back({target, 1, 0, 0});
            }
        }
        if ((run.count - count) * model.size >= 8) {
            shortened(run, page, count, real, p);
            return;
        }
        char *const target = expectNew(count, false);
        if (target) {
            moved(run, page, target, count);
            ASSERT_EQ(real, target);
            ASSERT_EQ(p, target);
            return;
        }
        ASSERT_EQ(real, run.p);
        ASSERT_EQ(p, run.p);
        live.push_back(run);
    }

    // Where the pool finds a run. It appends pages behind its chain, two requests within one call may do so twice.
    char *expectNew(int count, bool append)
    {
        if (char *const run = model.newOnPages(count, append))
            return run;
        const std::vector<karVarPage *> real = pool.pages();
        if (real.size() <= model.pages.size()) {
            ADD_FAILURE() << "a page is missing";
            return nullptr;
        }
        model.append(static_cast<char *>(real[model.pages.size()]->PageBegin()), count);
        return model.pageNew(*model.pages.back(), count, false);
    }

    void moved(const Run &run, ModelPage *page, char *target, int count)
    {
        const int bytes = std::min(count, run.count) * model.size;
        expectFilled(target, run, bytes);
        model.pageDelete(*page, run.p, run.count);
        if (count > 0)
            keep(target, count, count * model.size);
        else if (model.smallest > 0)
            live.push_back({target, 1, 0, 0});
    }

    void shortened(const Run &run, ModelPage *page, int count, void *real, void *p)
    {
        if (count == 0) {
            const bool empty = model.pageDelete(*page, run.p, run.count);
            ASSERT_EQ(p, empty ? nullptr : run.p);
            ASSERT_EQ(real, p);
            return;
        }
        ASSERT_EQ(p, run.p);
        ASSERT_EQ(real, run.p);
        const int kept = model.raised(count);
        const int tail = run.count - kept;
        Run rest = run;
        if (tail >= model.smallest && kept <= run.count) {
            model.pageDelete(*page, run.p + kept * model.size, tail);
            rest.count = kept;
            rest.filled = std::min(run.filled, kept * model.size);
        }
        live.push_back(rest);
    }

    void compare(bool thorough)
    {
        std::size_t index = 0;
        int sum = 0;
        for (karVarPage *page = pool.firstPage ? pool.firstPage->first() : nullptr; page; page = page->next()) {
            ASSERT_LT(index, model.pages.size());
            const ModelPage &expected = *model.pages[index];
            const bool same = page->PageBegin() == expected.start && page->elementUsed() == expected.used &&
                              (pool.firstPage == page) == (model.first == &expected) &&
                              (pool.lastPage == page) == (model.last == &expected) &&
                              (pool.currentPage == page) == (model.current == &expected);
            ASSERT_TRUE(same) << "page " << index;
            sum += expected.used;
            if (thorough) {
                ASSERT_TRUE(page->isValid());
                Runs runs;
                for (const Stretch &run : Model::stretches(expected))
                    runs.emplace_back(run.from * model.size, run.length * model.size);
                ASSERT_EQ(pool.runs(index), runs);
            }
            ++index;
        }
        ASSERT_EQ(index, model.pages.size());
        ASSERT_EQ(pool.getAnzElem(), sum);
        ASSERT_TRUE(index > 0 || (!pool.lastPage && !pool.currentPage));
    }

    Pool pool;
    Model model;
    TestRandom random;
    std::vector<Run> live;
    unsigned drain = 0;
};

} // namespace

TEST(KarVarPageMemory, AMillionRandomStepsAgreeWithThePlainModel)
{
    const int sizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 16, 17, 20, 33};
    const int steps = testSteps(1000000 / 14 + 1);
    for (const int size : sizes) {
        SCOPED_TRACE(size);
        Beside(size, 24, 1000u + static_cast<unsigned>(size)).run(steps);
        if (HasFailure())
            return;
    }
}

TEST(KarVarPage, WrongReleasesStayInsideThePage)
{
    // Counts and addresses by chance: the list means nothing any more, but every call ends and every run that is
    // handed out lies in the storage, whose neighbouring bytes the allocator guards.
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        TestRandom random(seed);
        const int size = random.between(1, 24);
        const int count = random.between(1, 40);
        karVarPage page(nullptr, size, count);
        karVarPage other(&page, size, count);
        char *const start = static_cast<char *>(page.PageBegin());
        for (int step = 0; step < 300; ++step) {
            if (random.below(2)) {
                const int wanted = random.between(-2, 12);
                char *const run = static_cast<char *>(page.newElement(wanted, random.between(0, 1)));
                if (!run)
                    continue;
                const int bytes = std::max(wanted, page.minElementCount()) * size;
                const bool inOther =
                    run >= other.PageBegin() && run < static_cast<char *>(other.PageBegin()) + size * count;
                char *const from = inOther ? static_cast<char *>(other.PageBegin()) : start;
                ASSERT_GE(run - from, 0) << "seed " << seed << ", step " << step;
                ASSERT_LE(run - from + bytes, size * count) << "seed " << seed << ", step " << step;
                std::memset(run, static_cast<int>(random.below(256)), static_cast<std::size_t>(bytes));
            } else {
                void *p = (random.below(8) ? start : static_cast<char *>(other.PageBegin())) +
                          random.between(-size, size * (count + 1));
                if (random.below(3))
                    p = start + size * random.between(0, count - 1);
                page.deleteElement(p, random.between(-3, 50));
            }
        }
    }
}
