// List heads: adding, removing, first, last and current, the setters that a subclass watches, typed heads, heads in a
// chain of heads. The sort has a file of its own.
#include "karlisthead.h"

#include "failalloc.h"
#include "karmemgb.h"
#include "testrandom.h"
#include "testslot.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace {

std::string dead; // names of the elements that died, in their order

class Element : public karListTyped<Element, karListObject> {
public:
    explicit Element(char letter) : name(letter) {}
    ~Element() override { dead += name; }
    int ListObjectOk() override { return 1; }
    char name;
};

/// Writes down the calls of the virtual operations: f, l, c with the element for the setters, + append, > insert,
/// - remove, * remove all.
class Watched : public karListHeadObject {
public:
    using karListHeadObject::karListHeadObject;
    using karListHeadObject::ListCurrent;
    using karListHeadObject::ListFirst;
    using karListHeadObject::ListLast;
    int ListHeadObjectOk() override { return 1; }

    karListObject *ListFirst(karListObject *element) override
    {
        note('f', element);
        return karListHeadObject::ListFirst(element);
    }
    karListObject *ListLast(karListObject *element) override
    {
        note('l', element);
        return karListHeadObject::ListLast(element);
    }
    karListObject *ListCurrent(karListObject *element) override
    {
        note('c', element);
        return karListHeadObject::ListCurrent(element);
    }
    karListObject *ListAppend(karListObject *element) override
    {
        note('+', element);
        return karListHeadObject::ListAppend(element);
    }
    karListObject *ListInsert(karListObject *element, karListObject *position) override
    {
        note('>', element);
        return karListHeadObject::ListInsert(element, position);
    }
    void ListRemove(karListObject *element) override
    {
        note('-', element);
        karListHeadObject::ListRemove(element);
    }
    void ListRemoveAll() override
    {
        calls += '*';
        karListHeadObject::ListRemoveAll();
    }

    void note(char call, const karListObject *element)
    {
        calls += call;
        calls += element ? static_cast<const Element *>(element)->name : '0';
    }
    /// The calls since the last look.
    std::string called()
    {
        std::string result;
        result.swap(calls);
        return result;
    }

    std::string calls;
};

class Head : public karListHeadTyped<Element, Watched> {
public:
    using karListHeadTyped::karListHeadTyped;

    /// The elements front to back, then first, last and current.
    std::string state() const
    {
        const auto name = [](const Element *element) { return element ? element->name : '0'; };
        std::string result;
        const Element *before = nullptr;
        for (const Element *element = ListFirst(); element; element = element->next()) {
            if (element->prev() != before)
                return result + " bad link";
            result += element->name;
            before = element;
        }
        return result + ' ' + name(ListFirst()) + name(ListLast()) + name(ListCurrent());
    }
};

TEST(KarListHeadObject, StartsEmpty)
{
    Head head;
    EXPECT_EQ(head.ListFirst(), nullptr);
    EXPECT_EQ(head.ListLast(), nullptr);
    EXPECT_EQ(head.ListCurrent(), nullptr);
    EXPECT_EQ(head.getListId(), 0);
    EXPECT_EQ(head.ListAnzahl(), 0);
    EXPECT_EQ(head.ListHeadObjectOk(), 1);
    EXPECT_EQ(Head(ObjektIdies(61)).getListId(), 61);
}

TEST(KarListHeadObject, AnswersItsTypeWhateverItsListId)
{
    Head head(ObjektIdies(61));
    karListHeadObject &base = head;
    EXPECT_EQ(base.GetType(), 200001);
    EXPECT_EQ(base.IsType(ObjektIdies(200001)), 1);
    EXPECT_EQ(base.IsType(ObjektIdies(61)), 0);
    EXPECT_EQ(base.CanCast(ObjektIdies(200001)), 1);
    EXPECT_EQ(base.CanCast(ObjektIdies(61)), 0);
}

TEST(KarListHeadObject, CanCastIsIsTypeEvenOfASubclassOfAnotherType)
{
    class Renamed : public Head {
    public:
        ObjektIdies GetType() const override { return ObjektIdies(777); }
    };
    Renamed renamed;
    karListHeadObject &base = renamed;
    EXPECT_EQ(base.IsType(ObjektIdies(777)), 1);
    EXPECT_EQ(base.CanCast(ObjektIdies(777)), 1);
    EXPECT_EQ(base.CanCast(ObjektIdies(200001)), 0);
}

TEST(KarListHeadObject, CanCastAsksTheVirtualIsType)
{
    class Any : public Head {
    public:
        int IsType(ObjektIdies id) const override { return id == 5; }
    };
    Any any;
    EXPECT_EQ(any.CanCast(ObjektIdies(5)), 1);
    EXPECT_EQ(any.CanCast(ObjektIdies(200001)), 0);
}

TEST(KarListHeadObject, SettersStoreAndGiveTheOldValue)
{
    Element a('a'), b('b');
    Head head;
    karListHeadObject &base = head;
    EXPECT_EQ(base.ListFirst(&a), nullptr);
    EXPECT_EQ(base.ListFirst(&b), &a);
    EXPECT_EQ(base.ListFirst(nullptr), &b);
    EXPECT_EQ(base.ListFirst(), nullptr);
    EXPECT_EQ(base.ListLast(&a), nullptr);
    EXPECT_EQ(base.ListLast(&b), &a);
    EXPECT_EQ(base.ListLast(nullptr), &b);
    EXPECT_EQ(base.ListLast(), nullptr);
    EXPECT_EQ(base.ListCurrent(&a), nullptr);
    EXPECT_EQ(base.ListCurrent(&b), &a);
    EXPECT_EQ(base.ListCurrent(), &b);
    EXPECT_EQ(a.next(), nullptr);
    EXPECT_EQ(b.prev(), nullptr);
}

TEST(KarListHeadObject, AppendMakesTheElementLastAndCurrent)
{
    Head head;
    auto *const a = new Element('a');
    EXPECT_EQ(head.ListAppend(a), a);
    EXPECT_EQ(head.state(), "a aaa");
    EXPECT_EQ(head.called(), "+afalaca");
    auto *const b = new Element('b');
    EXPECT_EQ(head.ListAppend(b), b);
    EXPECT_EQ(head.state(), "ab abb");
    EXPECT_EQ(head.called(), "+blbcb"); // the first stays
    EXPECT_EQ(head.ListAppend(nullptr), nullptr);
    EXPECT_EQ(head.state(), "ab abb");
    EXPECT_EQ(head.called(), "+0");
}

TEST(KarListHeadObject, AppendDoesNotWriteTheLinkToTheSuccessor)
{
    Head head;
    auto *const a = new Element('a');
    Element beyond('x');
    a->next(&beyond);
    head.ListAppend(a);
    EXPECT_EQ(a->next(), &beyond);
    a->next(nullptr);
}

TEST(KarListHeadObject, AppendOverwritesTheLinkToThePredecessor)
{
    Head head;
    auto *const a = new Element('a');
    Element beyond('x');
    a->prev(&beyond);
    head.ListAppend(a);
    EXPECT_EQ(a->prev(), nullptr); // the last element of an empty list
}

TEST(KarListHeadObject, InsertBehindNullMakesTheElementFirstAndCurrent)
{
    Head head;
    auto *const a = new Element('a');
    EXPECT_EQ(head.ListInsert(a, nullptr), a);
    EXPECT_EQ(head.state(), "a aaa");
    EXPECT_EQ(head.called(), ">afacala");
    auto *const b = new Element('b');
    EXPECT_EQ(head.ListInsert(b, nullptr), b);
    EXPECT_EQ(head.state(), "ba bab");
    EXPECT_EQ(head.called(), ">bfbcb");
    EXPECT_EQ(head.ListInsert(nullptr, nullptr), nullptr);
    EXPECT_EQ(head.ListInsert(nullptr, a), nullptr);
    EXPECT_EQ(head.called(), ">0>0");
    EXPECT_EQ(head.state(), "ba bab");
}

TEST(KarListHeadObject, InsertAtTheFrontDoesNotWriteTheLinkToThePredecessor)
{
    Head head;
    auto *const a = new Element('a');
    Element beyond('x');
    a->prev(&beyond);
    head.ListInsert(a, nullptr);
    EXPECT_EQ(a->prev(), &beyond);
    a->prev(nullptr);
}

TEST(KarListHeadObject, InsertBehindTheLastElementIsTheVirtualAppend)
{
    Head head;
    auto *const a = new Element('a');
    head.ListAppend(a);
    head.called();
    auto *const b = new Element('b');
    EXPECT_EQ(head.ListInsert(b, a), b);
    EXPECT_EQ(head.called(), ">b+blbcb");
    EXPECT_EQ(head.state(), "ab abb");
}

TEST(KarListHeadObject, InsertGivesWhatTheVirtualAppendGives)
{
    class Refusing : public Head {
    public:
        karListObject *ListAppend(karListObject *) override { return nullptr; }
    };
    Refusing head;
    Element a('a'), b('b');
    head.ListInsert(&a, nullptr);
    EXPECT_EQ(head.ListInsert(&b, &a), nullptr);
    EXPECT_EQ(head.state(), "a aaa");
    head.ListUnchain(&a);
}

TEST(KarListHeadObject, InsertInTheMiddleChangesCurrentAlone)
{
    Head head;
    auto *const a = new Element('a');
    head.ListAppend(a);
    head.ListAppend(new Element('b'));
    head.called();
    auto *const c = new Element('c');
    EXPECT_EQ(head.ListInsert(c, a), c);
    EXPECT_EQ(head.called(), ">ccc");
    EXPECT_EQ(head.state(), "acb abc");
}

TEST(KarListHeadObject, InsertBehindTheEndOfAForeignChainMakesItLonger)
{
    Head head;
    auto *const a = new Element('a');
    head.ListAppend(a);
    Element end('e');
    Element b('b');
    EXPECT_EQ(head.ListInsert(&b, &end), &b);
    EXPECT_EQ(end.next(), &b);
    EXPECT_EQ(b.prev(), &end);
    EXPECT_EQ(b.next(), nullptr);
    EXPECT_EQ(head.state(), "a aab");
    head.ListCurrent(nullptr);
}

TEST(KarListHeadObject, UnchainGivesTheElementBackAlive)
{
    dead.clear();
    Head head;
    auto *const a = new Element('a');
    head.ListAppend(a);
    head.called();
    EXPECT_EQ(head.ListUnchain(a), a);
    EXPECT_EQ(head.called(), "l0f0c0"); // of the only element
    EXPECT_EQ(head.state(), " 000");
    EXPECT_EQ(dead, "");
    delete a;
}

TEST(KarListHeadObject, UnchainMovesCurrentForwardByPreference)
{
    Head head;
    Element *elements[5];
    for (int i = 0; i < 5; ++i)
        head.ListAppend(elements[i] = new Element(static_cast<char>('a' + i)));
    head.ListCurrent(elements[1]);
    head.called();
    delete head.ListUnchain(elements[1]); // current in the middle: its successor
    EXPECT_EQ(head.called(), "cc");
    EXPECT_EQ(head.state(), "acde aec");
    delete head.ListUnchain(elements[3]); // not current, in the middle
    EXPECT_EQ(head.called(), "");
    EXPECT_EQ(head.state(), "ace aec");
    head.ListCurrent(elements[4]);
    head.called();
    delete head.ListUnchain(elements[4]); // current and last: its predecessor
    EXPECT_EQ(head.called(), "lccc");
    EXPECT_EQ(head.state(), "ac acc");
    head.ListCurrent(elements[0]);
    head.called();
    delete head.ListUnchain(elements[0]); // current and first
    EXPECT_EQ(head.called(), "fccc");
    EXPECT_EQ(head.state(), "c ccc");
}

TEST(KarListHeadObject, UnchainOfAForeignElementBridgesTheForeignChain)
{
    Head own, foreign;
    own.ListAppend(new Element('o'));
    auto *const a = new Element('a');
    foreign.ListAppend(new Element('x'));
    foreign.ListAppend(a);
    own.ListUnchain(a);
    EXPECT_EQ(own.state(), "o ooo");
    EXPECT_EQ(foreign.state(), "x xaa"); // last and current aren't told
    foreign.ListLast(foreign.ListFirst());
    foreign.ListCurrent(nullptr);
    delete a;
}

TEST(KarListHeadObject, RemoveDeletesTheElement)
{
    dead.clear();
    Head head;
    auto *const a = new Element('a');
    head.ListAppend(a);
    head.ListAppend(new Element('b'));
    head.called();
    head.ListRemove(nullptr);
    EXPECT_EQ(head.called(), "-0");
    head.ListRemove(a);
    EXPECT_EQ(head.called(), "-afb");
    EXPECT_EQ(dead, "a");
    EXPECT_EQ(head.state(), "b bbb");
}

TEST(KarListHeadObject, RemoveReturnsTheMemory)
{
    Head head;
    const long sizeBefore = globalMemList->getCurSizeNew();
    for (int i = 0; i < 100; ++i)
        head.ListAppend(new Element('a'));
    head.ListRemoveAll();
    EXPECT_EQ(globalMemList->getCurSizeNew(), sizeBefore);
}

TEST(KarListHeadObject, RemoveAllCallsTheVirtualRemoveFrontToBack)
{
    dead.clear();
    Head head;
    for (char name = 'a'; name <= 'd'; ++name)
        head.ListAppend(new Element(name));
    head.called();
    head.ListRemoveAll();
    EXPECT_EQ(dead, "abcd");
    EXPECT_EQ(head.called(), "*-afb-bfc-cfd-dl0f0c0");
    EXPECT_EQ(head.state(), " 000");
    head.ListRemoveAll();
    EXPECT_EQ(head.called(), "*");
}

TEST(KarListHeadObject, ElementsDieWithTheHeadFrontToBack)
{
    dead.clear();
    {
        Head head;
        for (char name = 'a'; name <= 'd'; ++name)
            head.ListAppend(new Element(name));
    }
    EXPECT_EQ(dead, "abcd");
}

TEST(KarListHeadObject, DiesThroughTheBaseAndComesFromTheLibrarysAllocator)
{
    dead.clear();
    const long before = globalMemList->getAnzNew();
    karListHeadObject *const head = new Head;
    EXPECT_GT(globalMemList->getAnzNew(), before);
    head->ListAppend(new Element('a'));
    delete head;
    EXPECT_EQ(dead, "a");
}

TEST(KarListHeadObject, CopySharesTheChain)
{
    dead.clear();
    Element *const a = new Element('a');
    {
        Head head(ObjektIdies(46));
        head.ListAppend(a);
        Head copy(head);
        EXPECT_EQ(copy.ListFirst(), a);
        EXPECT_EQ(copy.ListLast(), a);
        EXPECT_EQ(copy.ListCurrent(), a);
        EXPECT_EQ(copy.getListId(), 46);
        EXPECT_EQ(head.ListFirst(), a);
        head.ListFirst(nullptr); // or both would delete it
    }
    EXPECT_EQ(dead, "a");
}

TEST(KarListHeadObject, ExistFindsOwnElementsAlone)
{
    Head head;
    Element stranger('x');
    EXPECT_EQ(head.ListExist(&stranger), nullptr);
    Element *elements[3];
    for (Element *&element : elements)
        head.ListAppend(element = new Element('a'));
    for (const Element *element : elements)
        EXPECT_EQ(head.ListExist(element), element);
    EXPECT_EQ(head.ListExist(&stranger), nullptr);
    EXPECT_EQ(head.ListExist(nullptr), nullptr);
    head.ListFirst(elements[1]); // the walk begins at the first element
    EXPECT_EQ(head.ListExist(elements[0]), nullptr);
    head.ListFirst(elements[0]);
}

TEST(KarListHeadObject, AnzahlCountsTheChain)
{
    Head head;
    Element *elements[4];
    for (Element *&element : elements)
        head.ListAppend(element = new Element('a'));
    EXPECT_EQ(head.ListAnzahl(), 4);
    for (Element *element : elements)
        EXPECT_EQ(head.ListAnzahl(element), 4);
    EXPECT_EQ(head.ListAnzahl(nullptr), 0);
    Element alone('x');
    EXPECT_EQ(head.ListAnzahl(&alone), 1); // of whatever chain
}

TEST(KarListHeadObject, ChangeAlignmentSwapsNeighboursGivenInEitherOrder)
{
    Head head;
    Element *elements[4];
    for (int i = 0; i < 4; ++i)
        head.ListAppend(elements[i] = new Element(static_cast<char>('a' + i)));
    head.called();
    head.changeAlignment(elements[1], elements[2]);
    EXPECT_EQ(head.state(), "acbd add");
    head.changeAlignment(elements[1], elements[2]); // c b: the later one is named first
    EXPECT_EQ(head.state(), "abcd add");
    head.changeAlignment(elements[0], elements[1]);
    EXPECT_EQ(head.state(), "bacd bdd");
    head.changeAlignment(elements[3], elements[2]);
    EXPECT_EQ(head.state(), "badc bcd"); // current stays
    EXPECT_EQ(head.called(), "");        // the fields are written past the setters
}

TEST(KarListHeadObject, ChangeAlignmentOfTheOnlyTwoSwapsFirstAndLast)
{
    for (bool turned : {false, true}) {
        Head head;
        auto *const a = new Element('a'), *const b = new Element('b');
        head.ListAppend(a);
        head.ListAppend(b);
        if (turned)
            head.changeAlignment(b, a);
        else
            head.changeAlignment(a, b);
        EXPECT_EQ(head.state(), "ba bab");
        EXPECT_EQ(head.ListLast()->next(), nullptr);
    }
}

TEST(KarListHeadObject, RandomStepsFollowAPlainModel)
{
    const std::uint64_t seed = 32;
    TestRandom random(seed);
    Head head;
    std::string model;  // names front to back
    char current = '0'; // name of the current element, 0 for none
    std::string free = "abcdefghijklmnop";
    const auto find = [&head](char name) {
        Element *element = head.ListFirst();
        while (element && element->name != name)
            element = element->next();
        return element;
    };
    for (int step = 0, steps = testSteps(5000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << step);
        const unsigned what = random.below(6);
        if (what < 3 && !free.empty()) {
            const char name = free.back();
            free.pop_back();
            auto *const element = new Element(name);
            if (what == 0) {
                head.ListAppend(element);
                model += name;
            } else if (what == 1 || model.empty()) {
                head.ListInsert(element, nullptr);
                model.insert(model.begin(), name);
            } else {
                const std::size_t at = random.below(static_cast<unsigned>(model.size()));
                head.ListInsert(element, find(model[at]));
                model.insert(at + 1, 1, name);
            }
            current = name;
        } else if (what < 5 && !model.empty()) {
            const std::size_t at = random.below(static_cast<unsigned>(model.size()));
            const char name = model[at];
            if (what == 3)
                head.ListRemove(find(name));
            else
                delete head.ListUnchain(find(name));
            if (current == name)
                current = at + 1 < model.size() ? model[at + 1] : at > 0 ? model[at - 1] : '0';
            model.erase(at, 1);
            free += name;
        } else if (model.size() > 1) {
            const std::size_t at = random.below(static_cast<unsigned>(model.size()) - 1);
            head.changeAlignment(find(model[at]), find(model[at + 1]));
            std::swap(model[at], model[at + 1]);
        }
        const std::string ends = model.empty() ? "00" : std::string{model.front(), model.back()};
        ASSERT_EQ(head.state(), model + ' ' + ends + current);
        ASSERT_EQ(head.ListAnzahl(), static_cast<int>(model.size()));
    }
}

TEST(KarListHeadTyped, ForwardsToTheVirtualOperations)
{
    Head head;
    karListHeadTyped<Element, Watched> &typed = head;
    static_assert(std::is_same<decltype(typed.ListFirst()), Element *>::value, "");
    static_assert(std::is_same<decltype(typed.ListLast()), Element *>::value, "");
    static_assert(std::is_same<decltype(typed.ListCurrent()), Element *>::value, "");
    static_assert(std::is_same<decltype(typed.ListAppend(nullptr)), Element *>::value, "");
    static_assert(std::is_same<decltype(typed.ListInsert(nullptr, nullptr)), Element *>::value, "");
    static_assert(std::is_same<decltype(typed.ListUnchain(nullptr)), Element *>::value, "");
    static_assert(std::is_same<decltype(typed.ListExist(nullptr)), Element *>::value, "");
    auto *const a = new Element('a'), *const b = new Element('b');
    EXPECT_EQ(typed.ListAppend(a), a);
    EXPECT_EQ(head.called(), "+afalaca");
    EXPECT_EQ(typed.ListInsert(b, nullptr), b);
    EXPECT_EQ(head.called(), ">bfbcb");
    EXPECT_EQ(typed.ListCurrent(a), b);
    EXPECT_EQ(typed.ListFirst(a), b);
    EXPECT_EQ(typed.ListFirst(b), a);
    EXPECT_EQ(typed.ListLast(b), a);
    EXPECT_EQ(typed.ListLast(a), b);
    EXPECT_EQ(head.called(), "cafafblbla");
    EXPECT_EQ(typed.ListExist(a), a);
    EXPECT_EQ(typed.ListUnchain(b), b);
    EXPECT_EQ(typed.ListAppend(nullptr), nullptr);
    EXPECT_EQ(typed.ListFirst(nullptr), a);
    EXPECT_EQ(typed.ListFirst(a), nullptr);
    EXPECT_EQ(head.state(), "a aaa");
    delete b;
}

class HeadElement : public karListHeadListObject {
public:
    HeadElement(karListHeadListObject *other, ObjektIdies id) : karListHeadListObject(other, id) {}
    HeadElement(const HeadElement &) = default;
    int ListHeadObjectOk() override { return 1; }
    void reservedOperation() override {}
};

TEST(KarListHeadListObject, IsHeadAndElement)
{
    HeadElement a(nullptr, ObjektIdies(7)), b(&a, ObjektIdies(8)), c(&a, ObjektIdies(9));
    EXPECT_EQ(a.getListId(), 7);
    EXPECT_EQ(c.getListId(), 9);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(b.next(), &c); // at the end of the chain, whatever element is named
    EXPECT_EQ(c.prev(), &b);
    EXPECT_EQ(b.first(), &a);
    EXPECT_EQ(b.last(), &c);
    EXPECT_EQ(b.current(), &b);
    EXPECT_EQ(a.prev(), nullptr);
    EXPECT_EQ(c.next(), nullptr);
    EXPECT_EQ(b.listLength(), 3);
    static_assert(std::is_same<decltype(a.next()), karListHeadListObject *>::value, "");
    static_assert(std::is_same<decltype(a.current()), karListHeadListObject *>::value, "");
    EXPECT_EQ(a.ListFirst(), nullptr);
    EXPECT_EQ(a.ListObjectOk(), 1);
}

TEST(KarListHeadListObject, LinkSettersKeepNull)
{
    HeadElement a(nullptr, ObjektIdies(0)), b(nullptr, ObjektIdies(0));
    a.next(&b);
    a.prev(&b);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(a.prev(), &b);
    EXPECT_EQ(b.next(), nullptr);
    EXPECT_EQ(b.prev(), nullptr);
    a.next(nullptr);
    a.prev(nullptr);
    EXPECT_EQ(a.next(), nullptr);
    EXPECT_EQ(a.prev(), nullptr);
}

// Calls a member function on a null object, which the sanitizers would report here. The element part isn't the start of
// the object.
__attribute__((noinline, no_sanitize("undefined"))) int lengthOfNull()
{
    karListHeadListObject *volatile none = nullptr;
    return none->listLength();
}

TEST(KarListHeadListObject, LengthOfANullObjectIsZero) { EXPECT_EQ(lengthOfNull(), 0); }

TEST(KarListHeadListObject, EachPartAnswersItsType)
{
    HeadElement object(nullptr, ObjektIdies(5));
    const karListHeadObject &head = object;
    const karListObject &element = object;
    EXPECT_EQ(head.GetType(), 200001);
    EXPECT_EQ(head.CanCast(ObjektIdies(200001)), 1);
    EXPECT_EQ(element.GetType(), 60);
    EXPECT_EQ(element.IsType(ObjektIdies(60)), 1);
    EXPECT_EQ(element.CanCast(ObjektIdies(200001)), 0);
    EXPECT_EQ(object.GetType(), 200001); // the class itself asks the head part
    EXPECT_EQ(object.IsType(ObjektIdies(200001)), 1);
    EXPECT_EQ(object.CanCast(ObjektIdies(60)), 0);
}

TEST(KarListHeadListObject, CopyHasHeadPartAndLinks)
{
    dead.clear();
    HeadElement a(nullptr, ObjektIdies(5)), b(&a, ObjektIdies(6)), c(&a, ObjektIdies(7));
    b.ListAppend(new Element('e'));
    {
        HeadElement copy(b);
        EXPECT_EQ(copy.prev(), &a);
        EXPECT_EQ(copy.next(), &c);
        EXPECT_EQ(copy.ListFirst(), b.ListFirst());
        EXPECT_EQ(copy.getListId(), 6);
        EXPECT_EQ(a.next(), &b);
        copy.ListFirst(nullptr);
    }
    EXPECT_EQ(dead, "");
    EXPECT_EQ(a.next(), &c); // the copy unchained itself
}

/// An element that looks at the chain of heads when it dies.
class Witness : public Element {
public:
    explicit Witness(const karListHeadListObject &head) : Element('w'), other(head) {}
    ~Witness() override { alone = !other.next(); }
    static bool alone;

private:
    const karListHeadListObject &other;
};
bool Witness::alone;

TEST(KarListHeadListObject, WithoutMemoryNewGivesNullAndNullIsNotLinked)
{
    Head head;
    const AllAllocationsFail failing;
    EXPECT_EQ(new Head, nullptr);
    EXPECT_EQ(new HeadElement(nullptr, ObjektIdies(0)), nullptr);
    EXPECT_EQ(head.ListAppend(new Element('a')), nullptr);
    EXPECT_EQ(head.ListInsert(new Element('a'), nullptr), nullptr);
    EXPECT_EQ(head.state(), " 000");
}

TEST(KarListHeadListObject, LeavesTheChainOfHeadsBeforeItsElementsDie)
{
    HeadElement a(nullptr, ObjektIdies(0));
    karListObject *const b = new HeadElement(&a, ObjektIdies(0)); // dies through its element part
    static_cast<HeadElement *>(b)->ListAppend(new Witness(a));
    EXPECT_EQ(a.next(), b);
    Witness::alone = false;
    delete b;
    EXPECT_TRUE(Witness::alone);
    EXPECT_EQ(a.next(), nullptr);
}

TEST(KarListHeadListObject, DiesThroughItsHeadPart)
{
    HeadElement a(nullptr, ObjektIdies(0));
    karListHeadObject *const b = new HeadElement(&a, ObjektIdies(0));
    EXPECT_NE(a.next(), nullptr);
    delete b;
    EXPECT_EQ(a.next(), nullptr);
}

/// Opens the fields.
struct Fields : Head {
    void check()
    {
        const auto word = static_cast<long>(sizeof(void *));
        EXPECT_EQ(offsetIn<karListHeadObject>(*this, sortObject), word);
        EXPECT_EQ(offsetIn<karListHeadObject>(*this, sortMethod), 2 * word);
        EXPECT_EQ(sizeof sortMethod, 2 * sizeof(void *)); // a pointer to member is two words on all targets
        EXPECT_EQ(offsetIn<karListHeadObject>(*this, listFirst), 4 * word);
        EXPECT_EQ(offsetIn<karListHeadObject>(*this, listLast), 5 * word);
        EXPECT_EQ(offsetIn<karListHeadObject>(*this, listCurrent), 6 * word);
        EXPECT_EQ(offsetIn<karListHeadObject>(*this, listId), 7 * word);
        EXPECT_EQ(sizeof listId, 4u);
        EXPECT_EQ(sortObject, nullptr);
        EXPECT_TRUE(sortMethod == nullptr);
    }
};

TEST(ListHeadLayout, FieldsStandInTheirOrder)
{
    Fields().check();
    EXPECT_EQ(sizeof(karListHeadObject), 8 * sizeof(void *));
    static_assert(std::is_abstract<karListHeadObject>::value, "");
    static_assert(std::is_abstract<karListHeadListObject>::value, "");
    HeadElement object(nullptr, ObjektIdies(0));
    const karListHeadListObject &base = object;
    EXPECT_EQ(offsetIn(base, static_cast<const karListHeadObject &>(object)), 0);
    EXPECT_EQ(offsetIn(base, static_cast<const karListObject &>(object)), static_cast<long>(8 * sizeof(void *)));
    EXPECT_EQ(sizeof(karListHeadListObject), sizeof(karListHeadObject) + sizeof(karListObject));
#if defined(__i386__)
    EXPECT_EQ(sizeof(karListHeadObject), 32u);
    EXPECT_EQ(sizeof(karListHeadListObject), 44u);
#endif
}

TEST(ListHeadLayout, VirtualOperationsStandInTheirOrder)
{
    using H = karListHeadObject;
    using Setter = karListObject *(H::*)(karListObject *);
    EXPECT_EQ(slotOf(&H::ListHeadObjectOk), 0);
    EXPECT_EQ(slotOf(&H::IsType), 3); // behind the destructor
    EXPECT_EQ(slotOf(&H::GetType), 4);
    EXPECT_EQ(slotOf(&H::CanCast), 5);
    EXPECT_EQ(slotOf(static_cast<Setter>(&H::ListFirst)), 6);
    EXPECT_EQ(slotOf(static_cast<Setter>(&H::ListLast)), 7);
    EXPECT_EQ(slotOf(static_cast<Setter>(&H::ListCurrent)), 8);
    EXPECT_EQ(slotOf(&H::ListAppend), 9);
    EXPECT_EQ(slotOf(&H::ListInsert), 10);
    EXPECT_EQ(slotOf(&H::ListRemove), 11);
    EXPECT_EQ(slotOf(&H::ListRemoveAll), 12);
    EXPECT_EQ(slotOf(&karListHeadListObject::reservedOperation), 13);
}

} // namespace
