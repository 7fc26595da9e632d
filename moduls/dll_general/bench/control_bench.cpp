// Dispatch by kind beside a virtual call and std::visit, reports through percent layers beside a vector of ranges, and
// messages beside vectors of variants.
#include "karctrl.h"
#include "karfilterid.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

/// \name Dispatch: items of all kinds in random order; each handler adds the weight of the item to the sum of its kind.
/// \{

constexpr std::size_t items = 1000;
constexpr std::size_t kinds = 25;

/// The same kinds for all sides.
std::vector<std::size_t> kindsInOrder()
{
    std::mt19937 engine(4);
    std::uniform_int_distribution<std::size_t> kind(0, kinds - 1);
    std::vector<std::size_t> order(items);
    for (std::size_t &one : order)
        one = kind(engine);
    return order;
}

using EachKind = std::make_index_sequence<kinds>;

struct Item : karFilterObject {
    explicit Item(std::size_t ownKind) : kind(static_cast<int>(ownKind)) {}
    filterObjectID getFilterId() override { return filterObjectID(kind); }
    int kind;
    int weight = 1;
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

void dispatchOurs(benchmark::State &state)
{
    Summing summing;
    std::vector<std::unique_ptr<Item>> all;
    for (const std::size_t kind : kindsInOrder())
        all.push_back(std::make_unique<Item>(kind));
    for (auto _ : state) {
        for (const auto &item : all)
            benchmark::DoNotOptimize(summing.filterObject(item.get()));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
    state.SetLabel("the item is asked for its kind");
}

/// Nothing but a call through a table, by a kind that is known.
void dispatchLimit(benchmark::State &state)
{
    std::int64_t sums[kinds] = {};
    int (*volatile table[kinds])(std::int64_t *);
    for (auto &entry : table)
        entry = [](std::int64_t *sum) { return *sum += 1, 0; };
    const std::vector<std::size_t> order = kindsInOrder();
    for (auto _ : state) {
        for (const std::size_t kind : order)
            benchmark::DoNotOptimize(table[kind](&sums[kind]));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
    state.SetLabel("a call through a table by a kind that is known");
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

template <std::size_t... kind>
std::unique_ptr<Adding> makeAdding(std::size_t wanted, std::index_sequence<kind...>)
{
    std::unique_ptr<Adding> made;
    ((kind == wanted ? (made = std::make_unique<AddingKind<kind>>(), 0) : 0), ...);
    return made;
}

void dispatchVirtual(benchmark::State &state)
{
    std::int64_t sums[kinds] = {};
    std::vector<std::unique_ptr<Adding>> all;
    for (const std::size_t kind : kindsInOrder())
        all.push_back(makeAdding(kind, EachKind()));
    for (auto _ : state) {
        for (const auto &item : all)
            benchmark::DoNotOptimize(item->add(sums));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
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

void dispatchVisit(benchmark::State &state)
{
    using Kinds = VariantOf<EachKind>;
    std::int64_t sums[kinds] = {};
    std::vector<std::unique_ptr<Kinds::Type>> all; // each item an object of its own, as on the other sides
    for (const std::size_t kind : kindsInOrder())
        all.push_back(std::make_unique<Kinds::Type>(Kinds::make(kind)));
    const auto add = [&sums](const auto &item) {
        sums[item.sum] += item.weight;
        return 0;
    };
    for (auto _ : state) {
        for (const auto &item : all)
            benchmark::DoNotOptimize(std::visit(add, *item));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
}

/// \}

/// \name Progress: 0 to 100 percent through a number of layers, each 10 to 90 of the next
/// \{

void percentOurs(benchmark::State &state, int count)
{
    karFilter filter;
    for (int layer = 1; layer < count; ++layer) {
        filter.setPercentStartEnd(10, 90);
        filter.addPercentLayer();
    }
    for (auto _ : state)
        for (int percent = 0; percent <= 100; ++percent) {
            filter.setPercent(percent);
            benchmark::DoNotOptimize(filter.getGlobalPercent());
        }
    state.SetItemsProcessed(state.iterations() * 101);
    state.SetLabel("virtual operations over a list of layers");
}

struct Range {
    int start;
    int end;
};

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
    for (const int layers : {1, 4, 16}) {
        const std::string row = "SetPercent/" + std::to_string(layers) + "/";
        benchmark::RegisterBenchmark((row + "ours").c_str(), percentOurs, layers);
        benchmark::RegisterBenchmark((row + "std::vector").c_str(), percentVector, layers);
    }
    return 0;
}

const int registered = registerAll();

} // namespace

BENCHMARK(dispatchOurs)->Name("Dispatch/25_kinds/ours");
BENCHMARK(dispatchLimit)->Name("Dispatch/25_kinds/limit");
BENCHMARK(dispatchVirtual)->Name("Dispatch/25_kinds/virtual_call");
BENCHMARK(dispatchVisit)->Name("Dispatch/25_kinds/std::visit");

BENCHMARK_CAPTURE(messageOurs, short, shortText)->Name("Message/short_text/ours");
BENCHMARK_CAPTURE(messageVariants, short, shortText)->Name("Message/short_text/std::variant");
BENCHMARK_CAPTURE(messageOurs, long, longText)->Name("Message/long_text/ours");
BENCHMARK_CAPTURE(messageVariants, long, longText)->Name("Message/long_text/std::variant");
