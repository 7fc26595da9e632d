// Dispatch by kind beside a virtual call and std::visit, reports through percent layers beside a vector of ranges, and
// messages beside vectors of variants.
#include "karctrl.h"
#include "karfilterid.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

/// \name Dispatch: items of all kinds, each an object of the class of its kind, in random order; each handler adds the
/// weight of the item to the sum of its kind. A processor learns the order of a thousand items by heart, but not that of
/// a hundred thousand.
/// \{

constexpr std::size_t kinds = 25;

/// The same kinds for all sides.
std::vector<std::size_t> kindsInOrder(std::size_t items)
{
    std::mt19937 engine(4);
    std::uniform_int_distribution<std::size_t> kind(0, kinds - 1);
    std::vector<std::size_t> order(items);
    for (std::size_t &one : order)
        one = kind(engine);
    return order;
}

using EachKind = std::make_index_sequence<kinds>;

template <class Base, template <std::size_t> class OfKind, std::size_t... kind>
std::unique_ptr<Base> makeOne(std::size_t wanted, std::index_sequence<kind...>)
{
    std::unique_ptr<Base> made;
    ((kind == wanted ? (made = std::make_unique<OfKind<kind>>(), 0) : 0), ...);
    return made;
}

template <class Base, template <std::size_t> class OfKind>
std::vector<std::unique_ptr<Base>> makeAll(std::size_t items)
{
    std::vector<std::unique_ptr<Base>> all;
    for (const std::size_t kind : kindsInOrder(items))
        all.push_back(makeOne<Base, OfKind>(kind, EachKind()));
    return all;
}

/// Runs `handle` on each item of `all` again and again.
template <class Items, class Handle>
void dispatchAll(benchmark::State &state, const Items &all, Handle handle)
{
    for (auto _ : state) {
        for (const auto &item : all)
            benchmark::DoNotOptimize(handle(*item));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(all.size()));
}

struct Item : karFilterObject {
    virtual ~Item() = default;
    int weight = 1;
};

template <std::size_t kind>
struct ItemOfKind : Item {
    filterObjectID getFilterId() override { return filterObjectID(kind); }
};

class Summing : public karFilterIdBase {
public:
    Summing() { store(EachKind()); }
    template <std::size_t kind>
    errorCodesKARTORY add(karFilterObject *item)
    {
        sums[kind] += static_cast<Item *>(item)->weight;
        return KAR_SUCCESS;
    }
    std::int64_t sums[kinds] = {};

private:
    template <std::size_t... kind>
    void store(std::index_sequence<kind...>)
    {
        (setFilterHandler(filterObjectID(kind), this, &Summing::add<kind>), ...);
    }
};

void dispatchOurs(benchmark::State &state, std::size_t items)
{
    Summing summing;
    dispatchAll(state, makeAll<Item, ItemOfKind>(items),
                [&summing](Item &item) { return summing.filterObject(&item); });
    state.SetLabel("the item is asked for its kind");
}

struct Handler {
    int (*run)(std::int64_t *sums, Item &item);
    std::int64_t *sums;
};

template <std::size_t... kind>
void dispatchSteps(benchmark::State &state, std::size_t items, std::index_sequence<kind...>)
{
    std::int64_t sums[kinds] = {};
    Handler table[] = {{[](std::int64_t *all, Item &item) { return all[kind] += item.weight, 0; }, sums}...};
    dispatchAll(state, makeAll<Item, ItemOfKind>(items), [&table](Item &item) {
        const Handler &handler = table[item.getFilterId()];
        return handler.sums && handler.run ? handler.run(handler.sums, item) : -1;
    });
}

/// Nothing but the virtual call, the index, two tests and a call through the table.
void dispatchLimit(benchmark::State &state, std::size_t items)
{
    dispatchSteps(state, items, EachKind());
    state.SetLabel("a virtual call, an index, two tests and a call through a table");
}

struct Adding {
    virtual ~Adding() = default;
    virtual int add(std::int64_t *sums) = 0;
    int weight = 1;
};

template <std::size_t kind>
struct AddingKind : Adding {
    int add(std::int64_t *sums) override
    {
        sums[kind] += weight;
        return 0;
    }
};

void dispatchVirtual(benchmark::State &state, std::size_t items)
{
    std::int64_t sums[kinds] = {};
    dispatchAll(state, makeAll<Adding, AddingKind>(items), [&sums](Adding &item) { return item.add(sums); });
}

template <std::size_t kind>
struct Alternative {
    static constexpr std::size_t sum = kind;
    int weight = 1;
};

template <class Sequence>
struct VariantOf;
template <std::size_t... kind>
struct VariantOf<std::index_sequence<kind...>> {
    using Type = std::variant<Alternative<kind>...>;
    static Type make(std::size_t wanted)
    {
        Type made;
        ((kind == wanted ? (made.template emplace<kind>(), 0) : 0), ...);
        return made;
    }
};

void dispatchVisit(benchmark::State &state, std::size_t items)
{
    using Kinds = VariantOf<EachKind>;
    std::int64_t sums[kinds] = {};
    std::vector<std::unique_ptr<Kinds::Type>> all; // each item an object of its own, as on the other sides
    for (const std::size_t kind : kindsInOrder(items))
        all.push_back(std::make_unique<Kinds::Type>(Kinds::make(kind)));
    const auto add = [&sums](const auto &item) {
        sums[item.sum] += item.weight;
        return 0;
    };
    dispatchAll(state, all, [add](const Kinds::Type &item) { return std::visit(add, item); });
}

/// \}

/// \name Progress: 0 to 100 percent through a number of layers, each 10 to 90 of the next
/// \{

void reportAll(benchmark::State &state, karFilter &filter)
{
    for (auto _ : state)
        for (int percent = 0; percent <= 100; ++percent) {
            filter.setPercent(percent);
            benchmark::DoNotOptimize(filter.getGlobalPercent());
        }
    state.SetItemsProcessed(state.iterations() * 101);
}

void percentOurs(benchmark::State &state, int count)
{
    karFilter filter;
    for (int layer = 1; layer < count; ++layer) {
        filter.setPercentStartEnd(10, 90);
        filter.addPercentLayer();
    }
    reportAll(state, filter);
    state.SetLabel("virtual operations over a list of layers");
}

struct Range {
    int start;
    int end;
};

/// A controller that does nothing but take the percentage once through a list of layers, their ranges tested.
class LayerCtrl : public karCtrl {
public:
    explicit LayerCtrl(int count) : layers(static_cast<std::size_t>(count), Layer{{10, 90}, nullptr})
    {
        layers.back() = {{0, 100}, nullptr};
        for (Layer &layer : layers) {
            layer.outer = innermost;
            innermost = &layer;
        }
    }
    void setLayerPercent(int value) override
    {
        const int old = whole;
        reported = value;
        whole = value == -1 ? -1 : mapped(static_cast<unsigned>(std::clamp(value, 0, 100)));
        if (old > whole)
            ++falls;
    }
    int getGlobalPercent() override { return whole; }

private:
    struct Layer : Range {
        Layer *outer;
    };
    int mapped(unsigned value) const
    {
        for (const Layer *layer = innermost; layer; layer = layer->outer) {
            const auto start = static_cast<unsigned>(layer->start);
            const auto end = static_cast<unsigned>(layer->end);
            if (start > end || end > 100)
                return -1;
            value = ((end - start) * value + 50) / 100 + start;
        }
        return static_cast<int>(value);
    }

    std::vector<Layer> layers;
    Layer *innermost = nullptr;
    int whole = -1;
    int reported = -1;
    int falls = 0;
};

void percentLimit(benchmark::State &state, int count)
{
    LayerCtrl ctrl(count);
    karFilter filter(&ctrl);
    reportAll(state, filter);
    state.SetLabel("two virtual calls, each layer of a list once");
}

int folded(const std::vector<Range> &layers, int percent)
{
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
        percent = ((layer->end - layer->start) * percent + 50) / 100 + layer->start;
    return percent;
}

void percentVector(benchmark::State &state, int count)
{
    std::vector<Range> layers(static_cast<std::size_t>(count), Range{10, 90});
    layers.back() = {0, 100};
    for (auto _ : state)
        for (int percent = 0; percent <= 100; ++percent) {
            benchmark::DoNotOptimize(layers.data());
            benchmark::DoNotOptimize(folded(layers, percent));
        }
    state.SetItemsProcessed(state.iterations() * 101);
}

/// \}

/// \name Messages: one with an id, a text, a real and an integer, made at the end of a list, read and removed
/// \{

constexpr char shortText[] = "layer 0";
constexpr char longText[] = "the outline of the second floor isn't closed";

void messageOurs(benchmark::State &state, const char *text)
{
    karCtrl ctrl;
    const karString name(text);
    for (auto _ : state) {
        karMessageBase *const message = ctrl.addMessage(EnumMessageID(100), 4);
        message->setId(0, 7).setText(1, name).setDouble(2, 2.5).setParam(3, new karDataInteger(42));
        const karMessageBase *const found = ctrl.getMessage(EnumMessageID(100));
        benchmark::DoNotOptimize(found->getParam(0)->getId());
        const karString read = found->getParam(1)->getText();
        benchmark::DoNotOptimize(static_cast<const char *>(read)[3]);
        benchmark::DoNotOptimize(found->getParam(2)->getDouble());
        benchmark::DoNotOptimize(found->getParam(3)->getInteger());
        ctrl.removeMessage(message);
    }
    state.SetLabel("each value an object, a text read as a copy");
}

/// The blocks of one message and its texts, copied, and nothing else.
void messageLimit(benchmark::State &state, const char *text)
{
    const karString resident; // as the host's own: a page goes with its last block
    const auto size = static_cast<unsigned>(std::strlen(text)) + 1;
    for (auto _ : state) {
        void *blocks[] = {KarAllocMemory(sizeof(karMessageLBase)), KarAllocMemory(4 * sizeof(karDataBase *)),
                          KarAllocMemory(sizeof(karDataId)),       KarAllocMemory(sizeof(karDataText)),
                          KarAllocMemory(sizeof(karDataDouble)),   KarAllocMemory(sizeof(karDataInteger))};
        void *stored = KarAllocMemory(16); // an empty text, replaced if it is too short
        if (size > 16) {
            KarDellocMemory(stored);
            stored = KarAllocMemory(size);
        }
        std::memcpy(stored, text, size);
        void *const read = KarAllocMemory(size + 8);
        std::memcpy(read, stored, size);
        benchmark::DoNotOptimize(read);
        benchmark::ClobberMemory();
        for (void *const block : blocks)
            KarDellocMemory(block);
        KarDellocMemory(stored);
        KarDellocMemory(read);
    }
    state.SetLabel("the blocks, the text copied in and out");
}

enum class Id : int {
};
using Value = std::variant<std::monostate, Id, std::string, int, double>;

struct Message {
    int id;
    std::vector<Value> values;
};

void messageVariants(benchmark::State &state, const char *text)
{
    std::list<Message> messages;
    const std::string name(text);
    for (auto _ : state) {
        Message &message = messages.emplace_back(Message{100, std::vector<Value>(4)});
        message.values[0] = Id(7);
        message.values[1] = name;
        message.values[2] = 2.5;
        message.values[3] = 42;
        auto found = messages.begin();
        while (found != messages.end() && found->id != 100)
            ++found;
        benchmark::DoNotOptimize(std::get<Id>(found->values[0]));
        benchmark::DoNotOptimize(std::get<std::string>(found->values[1])[3]);
        benchmark::DoNotOptimize(std::get<double>(found->values[2]));
        benchmark::DoNotOptimize(std::get<int>(found->values[3]));
        messages.erase(found);
    }
}

/// \}

int registerAll()
{
    for (const std::size_t items : {1000u, 100000u}) {
        const std::string row = "Dispatch/25_kinds/" + std::to_string(items) + "/";
        benchmark::RegisterBenchmark((row + "ours").c_str(), dispatchOurs, items);
        benchmark::RegisterBenchmark((row + "limit").c_str(), dispatchLimit, items);
        benchmark::RegisterBenchmark((row + "virtual_call").c_str(), dispatchVirtual, items);
        benchmark::RegisterBenchmark((row + "std::visit").c_str(), dispatchVisit, items);
    }
    for (const int layers : {1, 4, 16}) {
        const std::string row = "SetPercent/" + std::to_string(layers) + "/";
        benchmark::RegisterBenchmark((row + "ours").c_str(), percentOurs, layers);
        benchmark::RegisterBenchmark((row + "limit").c_str(), percentLimit, layers);
        benchmark::RegisterBenchmark((row + "std::vector").c_str(), percentVector, layers);
    }
    return 0;
}

const int registered = registerAll();

} // namespace

BENCHMARK_CAPTURE(messageOurs, short, shortText)->Name("Message/short_text/ours");
BENCHMARK_CAPTURE(messageLimit, short, shortText)->Name("Message/short_text/limit");
BENCHMARK_CAPTURE(messageVariants, short, shortText)->Name("Message/short_text/std::variant");
BENCHMARK_CAPTURE(messageOurs, long, longText)->Name("Message/long_text/ours");
BENCHMARK_CAPTURE(messageLimit, long, longText)->Name("Message/long_text/limit");
BENCHMARK_CAPTURE(messageVariants, long, longText)->Name("Message/long_text/std::variant");
