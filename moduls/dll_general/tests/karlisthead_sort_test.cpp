// The sort of a list: the exact order by every kind of comparison that is a pure function, against the plain steps on
// an array; which pairs are compared; what happens to first, last and current.
#include "karlisthead.h"

#include "karmemgb.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Element : karListTyped<Element, karListObject> {
    int ListObjectOk() override { return 1; }
    int key = 0;
    int number = 0; // place before the sort
};

/// Compares two keys of the elements with the given numbers.
using Comparison = int (*)(const Element &a, const Element &b);

std::uint32_t mixed(int a, int b)
{
    return static_cast<std::uint32_t>(
        TestRandom(static_cast<std::uint64_t>(a) * 1000003u + static_cast<std::uint64_t>(b)).bits());
}

int difference(const Element &a, const Element &b) { return a.key - b.key; }
int ascending(const Element &a, const Element &b) { return b.key - a.key; }
int alwaysPositive(const Element &, const Element &) { return 5; }
int alwaysZero(const Element &, const Element &) { return 0; }
int oneOrZero(const Element &a, const Element &b) { return a.key < b.key; }
int oneOrZeroAtRandom(const Element &a, const Element &b) { return mixed(a.number, b.number) & 1; }

// No order at all, but the result for (b, a) is the opposite of that for (a, b).
int randomAntisymmetric(const Element &a, const Element &b)
{
    const bool turned = a.number > b.number;
    const int sign = mixed(std::min(a.number, b.number), std::max(a.number, b.number)) & 1 ? 1 : -1;
    return turned ? -sign : sign;
}

// Each pair is negative one way round at most, or two neighbours would change places for ever; else 0, 1 or 2.
int randomLopsided(const Element &a, const Element &b)
{
    const std::uint32_t bits = mixed(a.number, b.number);
    const bool mayBeNegative = (a.number < b.number) == ((mixed(std::min(a.number, b.number), -7) & 1) != 0);
    return mayBeNegative && (bits & 1) ? -1 : static_cast<int>((bits >> 1) % 3);
}

const struct {
    const char *name;
    Comparison compare;
} comparisons[] = {
    {"difference", difference},
    {"ascending", ascending},
    {"alwaysPositive", alwaysPositive},
    {"alwaysZero", alwaysZero},
    {"oneOrZero", oneOrZero},
    {"oneOrZeroAtRandom", oneOrZeroAtRandom},
    {"randomAntisymmetric", randomAntisymmetric},
    {"randomLopsided", randomLopsided},
};

using Pairs = std::map<std::pair<int, int>, int>; // how often each pair of numbers was compared

/// The plain steps on an array of elements.
class PlainSort {
public:
    PlainSort(Comparison comparison, Pairs *counted) : compare(comparison), pairs(counted) {}

    std::vector<const Element *> sorted(std::vector<const Element *> part)
    {
        return part.size() <= 7 ? bubbled(std::move(part)) : merged(part);
    }

private:
    int ask(const Element *a, const Element *b)
    {
        if (pairs)
            ++(*pairs)[{a->number, b->number}];
        return compare(*a, *b);
    }

    std::vector<const Element *> bubbled(std::vector<const Element *> part)
    {
        bool swapped = true;
        while (swapped) {
            swapped = false;
            for (std::size_t i = 0; i + 1 < part.size(); ++i) {
                if (ask(part[i], part[i + 1]) < 0) {
                    std::swap(part[i], part[i + 1]);
                    swapped = true;
                }
            }
        }
        return part;
    }

    std::vector<const Element *> merged(const std::vector<const Element *> &part)
    {
        const auto half = static_cast<std::ptrdiff_t>(part.size() >> 1);
        const std::vector<const Element *> a = sorted({part.begin(), part.begin() + half});
        const std::vector<const Element *> b = sorted({part.begin() + half, part.end()});
        std::vector<const Element *> result;
        ask(a[0], b[0]);
        std::size_t i = 0;
        std::size_t j = 0;
        while (i < a.size() && j < b.size())
            result.push_back(ask(a[i], b[j]) > 0 ? a[i++] : b[j++]);
        result.insert(result.end(), a.begin() + static_cast<std::ptrdiff_t>(i), a.end());
        result.insert(result.end(), b.begin() + static_cast<std::ptrdiff_t>(j), b.end());
        return result;
    }

    Comparison compare;
    Pairs *pairs;
};

class Head : public karListHeadObject {
public:
    int ListHeadObjectOk() override { return 1; }
    // The elements belong to the test.
    ~Head() override { listFirst = nullptr; }

    karListObject *ListFirst(karListObject *element) override
    {
        return noted('f', karListHeadObject::ListFirst(element));
    }
    karListObject *ListLast(karListObject *element) override
    {
        return noted('l', karListHeadObject::ListLast(element));
    }
    karListObject *ListCurrent(karListObject *element) override
    {
        return noted('c', karListHeadObject::ListCurrent(element));
    }
    using karListHeadObject::ListCurrent;
    using karListHeadObject::ListFirst;
    using karListHeadObject::ListLast;

    karListObject *noted(char call, karListObject *old)
    {
        calls += call;
        olds.push_back(old);
        return old;
    }

    int compared(const karListObject *a, const karListObject *b)
    {
        const auto &first = static_cast<const Element &>(*a);
        const auto &second = static_cast<const Element &>(*b);
        if (pairs)
            ++(*pairs)[{first.number, second.number}];
        return comparison(first, second);
    }
    int byKey(const karListObject *a, const karListObject *b)
    {
        return static_cast<const Element &>(*a).key - static_cast<const Element &>(*b).key;
    }

    errorCodesKARTORY sort() { return ListSort(static_cast<karSortMethod>(&Head::compared), this); }
    errorCodesKARTORY sortByKey() { return ListSort(static_cast<karSortMethod>(&Head::byKey), this); }

    Comparison comparison = nullptr;
    Pairs *pairs = nullptr;
    std::string calls;                       // of the setters
    std::vector<const karListObject *> olds; // what they found

    using karListHeadObject::sortMethod;
    using karListHeadObject::sortObject;
};

std::vector<int> keysOf(const karListHeadObject &head)
{
    std::vector<int> keys;
    for (const karListObject *element = head.ListFirst(); element; element = element->next())
        keys.push_back(static_cast<const Element *>(element)->key);
    return keys;
}

std::vector<int> numbersOf(const karListHeadObject &head)
{
    std::vector<int> numbers;
    for (const karListObject *element = head.ListFirst(); element; element = element->next())
        numbers.push_back(static_cast<const Element *>(element)->number);
    return numbers;
}

/// A list of elements with the given keys.
class List {
public:
    explicit List(const std::vector<int> &keys) : elements(keys.size())
    {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            elements[i].key = keys[i];
            elements[i].number = static_cast<int>(i);
            head.karListHeadObject::ListAppend(&elements[i]);
        }
        head.calls.clear();
        head.olds.clear();
    }
    std::vector<Element> elements;
    Head head;
};

// Both links of every element, both ends, the count, no current element.
void expectWellFormed(const List &list)
{
    const karListObject *before = nullptr;
    std::size_t count = 0;
    for (const karListObject *element = list.head.ListFirst(); element; element = element->next()) {
        ASSERT_EQ(element->prev(), before);
        before = element;
        ASSERT_LE(++count, list.elements.size());
    }
    EXPECT_EQ(count, list.elements.size());
    EXPECT_EQ(list.head.ListLast(), before);
    EXPECT_EQ(list.head.ListCurrent(), nullptr);
}

void compareWithPlainSort(const std::vector<int> &keys, Comparison comparison, bool countPairs)
{
    List list(keys);
    Pairs plainPairs, ownPairs;
    std::vector<const Element *> all;
    for (const Element &element : list.elements)
        all.push_back(&element);
    std::vector<int> expected;
    for (const Element *element : PlainSort(comparison, countPairs ? &plainPairs : nullptr).sorted(all))
        expected.push_back(element->number);

    list.head.comparison = comparison;
    list.head.pairs = countPairs ? &ownPairs : nullptr;
    EXPECT_EQ(list.head.sort(), KAR_SUCCESS);
    EXPECT_EQ(numbersOf(list.head), expected);
    expectWellFormed(list);
    EXPECT_EQ(list.head.calls, "flc");
    // Each pair that the plain steps compare is compared, no other, and none more often.
    ASSERT_EQ(ownPairs.size(), plainPairs.size());
    for (const auto &pair : ownPairs) {
        const auto plain = plainPairs.find(pair.first);
        ASSERT_NE(plain, plainPairs.end()) << pair.first.first << " with " << pair.first.second;
        ASSERT_LE(pair.second, plain->second) << pair.first.first << " with " << pair.first.second;
    }
}

std::vector<int> randomKeys(TestRandom &random, int length, int different)
{
    std::vector<int> keys;
    for (int i = 0; i < length; ++i)
        keys.push_back(random.between(1, different));
    return keys;
}

TEST(ListSort, FollowsThePlainStepsForEveryShortLength)
{
    const std::uint64_t seed = 321;
    TestRandom random(seed);
    for (const auto &row : comparisons) {
        for (int length = 1; length <= 40; ++length) {
            for (int round = 0; round < 6; ++round) {
                SCOPED_TRACE(testing::Message()
                             << row.name << ", length " << length << ", round " << round << ", seed " << seed);
                compareWithPlainSort(randomKeys(random, length, round < 3 ? 3 : 1000), row.compare, true);
                if (HasFatalFailure() || HasNonfatalFailure())
                    return;
            }
        }
    }
}

TEST(ListSort, FollowsThePlainStepsForAllOrdersOfSevenKeys)
{
    std::vector<int> keys = {1, 2, 2, 3, 4, 4, 5};
    do {
        compareWithPlainSort(keys, difference, false);
        if (HasFatalFailure() || HasNonfatalFailure())
            return;
    } while (std::next_permutation(keys.begin(), keys.end()));
}

TEST(ListSort, FollowsThePlainStepsForLongLists)
{
    const std::uint64_t seed = 322;
    TestRandom random(seed);
    for (const auto &row : comparisons) {
        for (const int limit : {300, 5000, 20000}) {
            const int length = random.between(41, limit);
            SCOPED_TRACE(testing::Message() << row.name << ", length " << length << ", seed " << seed);
            compareWithPlainSort(randomKeys(random, length, random.below(2) ? 10 : 1000000), row.compare, false);
        }
    }
    for (const int length : {65536, random.between(80000, 100000)}) {
        SCOPED_TRACE(testing::Message() << "length " << length << ", seed " << seed);
        compareWithPlainSort(randomKeys(random, length, 50000), difference, false);
        compareWithPlainSort(randomKeys(random, length, 50000), randomAntisymmetric, false);
    }
}

TEST(ListSort, KeepsToThePlainStepsAroundTheSizesWhereItsWaysChange)
{
    const std::uint64_t seed = 323;
    TestRandom random(seed);
    for (const int length : {4095, 4096, 4097, 8191, 8192, 8193, 16383, 16384, 16385}) {
        SCOPED_TRACE(testing::Message() << "length " << length << ", seed " << seed);
        compareWithPlainSort(randomKeys(random, length, 3000), difference, false);
        compareWithPlainSort(randomKeys(random, length, 2), oneOrZero, false);
    }
}

TEST(ListSort, EmptyListOnlyStoresTheArguments)
{
    Head head, object;
    Element current;
    head.karListHeadObject::ListCurrent(&current);
    EXPECT_EQ(head.ListSort(static_cast<karSortMethod>(&Head::byKey), &object), KAR_SUCCESS);
    EXPECT_EQ(head.ListCurrent(), &current);
    EXPECT_EQ(head.calls, "");
    EXPECT_EQ(head.sortObject, &object);
    EXPECT_TRUE(head.sortMethod == static_cast<karSortMethod>(&Head::byKey));
}

TEST(ListSort, OneElementStaysAndCurrentIsCleared)
{
    List list({4});
    EXPECT_EQ(list.head.ListCurrent(), &list.elements[0]);
    EXPECT_EQ(list.head.sortByKey(), KAR_SUCCESS);
    EXPECT_EQ(list.head.calls, "flc");
    EXPECT_EQ(list.head.ListFirst(), &list.elements[0]);
    EXPECT_EQ(list.head.ListLast(), &list.elements[0]);
    EXPECT_EQ(list.head.ListCurrent(), nullptr);
    expectWellFormed(list);
}

TEST(ListSort, FindsTheEndOfAListThatHasNoLastElement)
{
    for (const int length : {1, 2, 3, 7, 20}) {
        std::vector<int> keys;
        for (int i = 0; i < length; ++i)
            keys.push_back(i);
        List list(keys);
        list.head.ListLast(nullptr);
        list.head.sortByKey();
        EXPECT_EQ(list.head.ListFirst(), &list.elements[static_cast<std::size_t>(length) - 1]);
        EXPECT_EQ(list.head.ListLast(), list.head.ListFirst()->last()) << length;
    }
}

TEST(ListSort, DifferenceSortsInDescendingOrder)
{
    List five({2, 5, 1, 4, 3});
    five.head.sortByKey();
    EXPECT_EQ(keysOf(five.head), (std::vector<int>{5, 4, 3, 2, 1}));

    std::vector<int> keys, expected;
    for (int i = 0; i < 100; ++i) {
        keys.push_back(i * 37 % 100);
        expected.push_back(99 - i);
    }
    List hundred(keys);
    hundred.head.sortByKey();
    EXPECT_EQ(keysOf(hundred.head), expected);
}

TEST(ListSort, EqualKeysKeepTheirOrderUpToSevenElements)
{
    List list({1, 2, 1, 2, 1, 2, 1});
    list.head.sortByKey();
    EXPECT_EQ(numbersOf(list.head), (std::vector<int>{1, 3, 5, 0, 2, 4, 6}));
}

TEST(ListSort, EqualKeysOfTheSecondHalfComeFirstFromEightElementsOn)
{
    List list({1, 1, 1, 1, 1, 1, 1, 1});
    list.head.sortByKey();
    EXPECT_EQ(numbersOf(list.head), (std::vector<int>{4, 5, 6, 7, 0, 1, 2, 3}));

    List nine({2, 1, 2, 1, 2, 1, 2, 1, 2}); // halves of 4 and 5
    nine.head.sortByKey();
    EXPECT_EQ(numbersOf(nine.head), (std::vector<int>{4, 6, 8, 0, 2, 5, 7, 1, 3}));

    List sixteen(std::vector<int>(16, 1)); // both halves are turned, then the whole
    sixteen.head.sortByKey();
    EXPECT_EQ(numbersOf(sixteen.head), (std::vector<int>{12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3}));
}

TEST(ListSort, ComparesOnTheGivenObject)
{
    class Turned : public Head {
    public:
        explicit Turned(int direction) : sign(direction) {}
        int turned(const karListObject *a, const karListObject *b) { return sign * byKey(a, b); }
        int sign;
    };
    List list({1, 2, 3});
    Turned up(-1), down(1);
    list.head.ListSort(static_cast<karSortMethod>(&Turned::turned), &down);
    EXPECT_EQ(keysOf(list.head), (std::vector<int>{3, 2, 1}));
    list.head.ListSort(static_cast<karSortMethod>(&Turned::turned), &up);
    EXPECT_EQ(keysOf(list.head), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(list.head.sortObject, &up);
    EXPECT_TRUE(list.head.sortMethod == static_cast<karSortMethod>(&Turned::turned));
}

TEST(ListSort, ItsArgumentsPassToACopyOfTheHead)
{
    Head head, object;
    head.ListSort(static_cast<karSortMethod>(&Head::byKey), &object);
    const Head copy(head);
    EXPECT_EQ(copy.sortObject, &object);
    EXPECT_TRUE(copy.sortMethod == static_cast<karSortMethod>(&Head::byKey));
}

TEST(ListSort, TakesAVirtualMethod)
{
    class Base : public Head {
    public:
        virtual int rank(const karListObject *a, const karListObject *b) { return byKey(a, b); }
    };
    class Derived : public Base {
    public:
        int rank(const karListObject *a, const karListObject *b) override { return byKey(b, a); }
    };
    List list({2, 3, 1});
    Derived object;
    list.head.ListSort(static_cast<karSortMethod>(&Base::rank), &object);
    EXPECT_EQ(keysOf(list.head), (std::vector<int>{1, 2, 3}));
}

TEST(ListSort, SortsTheWholeChainWhateverTheHeadPointsAt)
{
    for (const int length : {5, 20}) {
        std::vector<int> keys, expected;
        for (int i = 0; i < length; ++i) {
            keys.push_back(i * 7 % length);
            expected.push_back(length - 1 - i);
        }
        List list(keys);
        list.head.karListHeadObject::ListFirst(&list.elements[2]);
        list.head.karListHeadObject::ListLast(&list.elements[3]);
        list.head.sortByKey();
        EXPECT_EQ(keysOf(list.head), expected);
        expectWellFormed(list);
    }
}

TEST(ListSort, LastElementOfAnotherChainKeepsItsOwnEnd)
{
    // Nothing changes places, so nothing writes the last element.
    List list({3, 2, 1});
    Element x, y(x);
    y.append(&x);
    list.head.karListHeadObject::ListLast(&x);
    list.head.sortByKey();
    EXPECT_EQ(list.head.ListLast(), &y);
    EXPECT_EQ(list.head.ListFirst(), &list.elements[0]);
    // A swap at the end does.
    List other({3, 1, 2});
    other.head.karListHeadObject::ListLast(&x);
    other.head.sortByKey();
    EXPECT_EQ(other.head.ListLast(), &other.elements[1]);
}

TEST(ListSort, SettersFindWhatSwapsAtTheEdgesOfPartsLeft)
{
    List two({1, 2});
    two.head.sortByKey();
    EXPECT_EQ(two.head.olds,
              (std::vector<const karListObject *>{&two.elements[1], &two.elements[0], &two.elements[1]}));

    // Parts of 4: 8 7 6 5 stays as it is, 1 2 3 4 becomes 4 3 2 1 and is the last to write.
    List eight({8, 7, 6, 5, 1, 2, 3, 4});
    eight.head.sortByKey();
    EXPECT_EQ(numbersOf(eight.head), (std::vector<int>{0, 1, 2, 3, 7, 6, 5, 4}));
    EXPECT_EQ(eight.head.olds,
              (std::vector<const karListObject *>{&eight.elements[7], &eight.elements[4], &eight.elements[7]}));
}

TEST(ListSort, LeavesOtherChainsAlone)
{
    List list({1, 2, 3, 4, 5, 6, 7, 8, 9}), other({1, 2, 3});
    list.head.sortByKey();
    EXPECT_EQ(keysOf(other.head), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(other.head.calls, "");
}

TEST(ListSort, SortsAgainAfterMoreElements)
{
    List list({3, 1, 2});
    list.head.sortByKey();
    std::vector<Element> more(20);
    for (Element &element : more) {
        element.key = 10;
        list.head.karListHeadObject::ListAppend(&element);
    }
    list.head.sortByKey();
    EXPECT_EQ(list.head.ListAnzahl(), 23);
    EXPECT_EQ(static_cast<const Element *>(list.head.ListLast())->key, 1);
    for (Element &element : more)
        list.head.ListUnchain(&element);
    EXPECT_EQ(keysOf(list.head), (std::vector<int>{3, 2, 1}));
}

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t frameGrowth = 8; // guards around every local
#else
constexpr std::size_t frameGrowth = 1;
#endif

/// Knows how far the stack reached down in any comparison.
class DepthHead : public Head {
public:
    int deep(const karListObject *a, const karListObject *b)
    {
        const char here = 0;
        lowest = std::min(lowest, reinterpret_cast<std::uintptr_t>(&here));
        return byKey(a, b);
    }
    std::uintptr_t lowest = UINTPTR_MAX;
};

TEST(ListSort, SortsAMillionElementsOnASmallStackWithoutMemory)
{
    const int count = testSteps(1000000);
    const std::uint64_t seed = 324;
    TestRandom random(seed);
    std::vector<Element> elements(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) // in the order of their places, linked by hand
        elements[static_cast<std::size_t>(i)].key = random.between(0, 1 << 30);
    DepthHead head;
    for (Element &element : elements)
        head.karListHeadObject::ListAppend(&element);
    const long allocations = globalMemList->getAnzNew();
    const char here = 0;
    EXPECT_EQ(head.ListSort(static_cast<karSortMethod>(&DepthHead::deep), &head), KAR_SUCCESS);
    EXPECT_LT(reinterpret_cast<std::uintptr_t>(&here) - head.lowest, frameGrowth * 16384);
    EXPECT_EQ(globalMemList->getAnzNew(), allocations);

    const Element *before = nullptr;
    int sorted = 0;
    for (const karListObject *link = head.ListFirst(); link; link = link->next()) {
        const auto *const element = static_cast<const Element *>(link);
        ASSERT_EQ(element->prev(), before);
        ASSERT_TRUE(!before || before->key >= element->key);
        before = element;
        ++sorted;
    }
    EXPECT_EQ(sorted, count);
    EXPECT_EQ(head.ListLast(), before);
    // In one go: each element would unchain itself otherwise, one cache miss after the other.
    for (Element &element : elements) {
        element.next(nullptr);
        element.prev(nullptr);
    }
}

} // namespace
