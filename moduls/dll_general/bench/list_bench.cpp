// ListSort beside the sorts of std::list and boost::intrusive::list, with one comparison called through one pointer.
#include "karlisthead.h"

#include <benchmark/benchmark.h>
#include <boost/intrusive/list.hpp>

#include <cmath>
#include <cstdint>
#include <list>
#include <random>
#include <string>
#include <vector>

namespace {

/// A key drawn by chance, 0 to 2^30 - 1.
int keyOf(std::mt19937 &random) { return static_cast<int>(random() >> 2); }

/// Elements of our list. All three kinds carry a key and no more.
struct Element : karListObject {
    int ListObjectOk() override { return 1; }
    int key = 0;
};

struct Plain {
    int key = 0;
};

struct Hooked : boost::intrusive::list_base_hook<boost::intrusive::link_mode<boost::intrusive::normal_link>> {
    int key = 0;
};

class Head : public karListHeadObject {
public:
    int ListHeadObjectOk() override { return 1; }
    int smallerFirst(const karListObject *a, const karListObject *b)
    {
        const int first = static_cast<const Element *>(a)->key;
        const int second = static_cast<const Element *>(b)->key;
        return (second > first) - (second < first);
    }
};

/// The same comparison for the peers, called through a pointer to a member function as well.
template <class Item>
struct Order {
    int smallerFirst(const Item *a, const Item *b) { return (b->key > a->key) - (b->key < a->key); }
};

template <class Item>
struct Before {
    Order<Item> *object;
    int (Order<Item>::*method)(const Item *, const Item *);
    bool operator()(const Item &a, const Item &b) const { return (object->*method)(&a, &b) > 0; }
};

using OursMethod = int (karListHeadObject::*)(const karListObject *, const karListObject *);

/// Sorts lists of 10,000 elements in all, or one of more; keys are drawn anew in list order between the timed parts.
int listsFor(int length) { return length < 10000 ? 10000 / length : 1; }

void ours(benchmark::State &state, int length)
{
    const int lists = listsFor(length);
    std::vector<Element> elements(static_cast<std::size_t>(length * lists));
    std::vector<Head> heads(static_cast<std::size_t>(lists));
    std::size_t next = 0;
    for (Head &head : heads)
        for (int i = 0; i < length; ++i)
            head.ListAppend(&elements[next++]);
    volatile OursMethod method = static_cast<OursMethod>(&Head::smallerFirst);
    std::mt19937 random;
    for (auto _ : state) {
        state.PauseTiming();
        for (Head &head : heads)
            for (karListObject *element = head.ListFirst(); element; element = element->next())
                static_cast<Element *>(element)->key = keyOf(random);
        state.ResumeTiming();
        for (Head &head : heads)
            head.ListSort(method, &head);
    }
    state.SetItemsProcessed(state.iterations() * length * lists);
    for (Head &head : heads) { // the elements aren't the heads' to delete
        head.ListFirst(nullptr);
        head.ListLast(nullptr);
    }
}

template <class List, class Item>
void sortPeer(benchmark::State &state, std::vector<List> &lists, int length)
{
    Order<Item> order;
    int (Order<Item>::*volatile method)(const Item *, const Item *) = &Order<Item>::smallerFirst;
    std::mt19937 random;
    for (auto _ : state) {
        state.PauseTiming();
        for (List &list : lists)
            for (Item &item : list)
                item.key = keyOf(random);
        state.ResumeTiming();
        for (List &list : lists)
            list.sort(Before<Item>{&order, method});
    }
    state.SetItemsProcessed(state.iterations() * length * static_cast<std::int64_t>(lists.size()));
}

void standard(benchmark::State &state, int length)
{
    std::vector<std::list<Plain>> lists;
    for (int i = 0; i < listsFor(length); ++i)
        lists.emplace_back(static_cast<std::size_t>(length));
    sortPeer<std::list<Plain>, Plain>(state, lists, length);
}

void boostIntrusive(benchmark::State &state, int length)
{
    using List = boost::intrusive::list<Hooked, boost::intrusive::constant_time_size<false>>;
    std::vector<Hooked> items(static_cast<std::size_t>(length * listsFor(length)));
    std::vector<List> lists(static_cast<std::size_t>(listsFor(length)));
    std::size_t next = 0;
    for (List &list : lists)
        for (int i = 0; i < length; ++i)
            list.push_back(items[next++]);
    sortPeer<List, Hooked>(state, lists, length);
}

/// The fewest comparisons that a sort can do with, log2 of the factorial, each of two neighbours in memory.
void limit(benchmark::State &state, int length)
{
    std::vector<Element> elements(10000);
    std::mt19937 random;
    for (Element &element : elements)
        element.key = keyOf(random);
    Head head;
    volatile OursMethod kept = static_cast<OursMethod>(&Head::smallerFirst);
    const OursMethod method = kept;
    const auto comparisons = static_cast<std::int64_t>(std::lgamma(length + 1.0) / std::log(2.0));
    for (auto _ : state) {
        int sum = 0;
        std::size_t i = 0;
        for (std::int64_t comparison = 0; comparison < comparisons; ++comparison) {
            sum += (head.*method)(&elements[i], &elements[i + 1]);
            i = i + 2 < elements.size() ? i + 1 : 0;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * length);
    state.SetLabel("log2(n!) comparisons of neighbours in memory");
}

struct Sort {
    const char *name;
    void (*run)(benchmark::State &, int);
};

int registerAll()
{
    for (const int length : {100, 10000, 1000000})
        for (const Sort &sort : {Sort{"ours", ours}, Sort{"std::list", standard},
                                 Sort{"boost::intrusive", boostIntrusive}, Sort{"limit", limit}}) {
            const std::string row = "ListSort/" + std::to_string(length) + "/" + sort.name;
            benchmark::RegisterBenchmark(row.c_str(), [=](benchmark::State &state) { sort.run(state, length); });
        }
    return 0;
}

const int registered = registerAll();

} // namespace
