// List elements: links, positions, copies, type identity, layout.
#include "karlist.h"

#include "failalloc.h"
#include "karmemgb.h"
#include "testrandom.h"
#include "testslot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

/// The only class of this file that overrides nothing but what it must.
class Element : public karListTyped<Element, karListObject> {
public:
    Element() = default;
    Element(const Element &) = default;
    Element &operator=(const Element &) = default;
    explicit Element(karListObject *other) : karListTyped(other) {}
    Element(karListObject *other, int position) : karListTyped(other, position) {}
    int ListObjectOk() override { return 1; }
};

// The whole chain, looked at from every element: links both ways, ends, count.
template <class Chain>
void expectChain(std::initializer_list<Chain *> chain)
{
    const std::vector<Chain *> items(chain);
    for (std::size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(items[i]->prev(), i == 0 ? nullptr : items[i - 1]) << i;
        EXPECT_EQ(items[i]->next(), i + 1 == items.size() ? nullptr : items[i + 1]) << i;
        EXPECT_EQ(items[i]->first(), items.front()) << i;
        EXPECT_EQ(items[i]->last(), items.back()) << i;
        EXPECT_EQ(items[i]->listLength(), static_cast<int>(items.size())) << i;
    }
}

// Calls a member function on a null object, which the sanitizers would report here.
template <class Item>
__attribute__((noinline, no_sanitize("undefined"))) int lengthOfNull()
{
    Item *volatile none = nullptr;
    return none->listLength();
}

TEST(KarListObjectNV, StartsAlone)
{
    karListObjectNV plain;
    expectChain({&plain});
    karListObjectNV withNull(static_cast<karListObjectNV *>(nullptr));
    expectChain({&withNull});
    for (int position : {5, 6, 7}) {
        karListObjectNV placed(nullptr, position);
        expectChain({&placed});
    }
}

TEST(KarListObjectNV, ConstructorsPlaceTheElement)
{
    karListObjectNV a, b(&a), c(&a); // both behind the end, whatever element is named
    expectChain({&a, &b, &c});
    karListObjectNV d(&b, 5);
    expectChain({&a, &b, &c, &d});
    karListObjectNV e(&b, 6);
    expectChain({&a, &e, &b, &c, &d});
    karListObjectNV f(&c, 7);
    expectChain({&f, &a, &e, &b, &c, &d});
    karListObjectNV g(&f, 6); // before the first element
    expectChain({&g, &f, &a, &e, &b, &c, &d});
}

TEST(KarListObjectNV, PositionCodesHaveTheirNumbers)
{
    EXPECT_EQ(KAR_LIST_APPEND, 5);
    EXPECT_EQ(KAR_LIST_INSERT, 6);
    EXPECT_EQ(KAR_LIST_INSERT_FRONT, 7);
}

TEST(KarListObjectNV, OtherPositionCodesLeaveBothLinksNull)
{
    karListObjectNV a;
    for (int position : {0, 1, 4, 8, -5, 5 + 256}) {
        karListObjectNV b(&a, position);
        expectChain({&b});
        expectChain({&a});
    }
}

TEST(KarListObjectNV, AppendInsertAndInsertFrontLinkAFreeElement)
{
    karListObjectNV a, b, c, d;
    b.append(&a);
    c.insertFront(&b);
    expectChain({&c, &a, &b});
    d.insert(&b);
    expectChain({&c, &a, &d, &b});
}

TEST(KarListObjectNV, LinkingToNullClearsBothLinks)
{
    void (karListObjectNV::*const operations[])(karListObjectNV *) = {
        &karListObjectNV::append, &karListObjectNV::insert, &karListObjectNV::insertFront};
    for (auto operation : operations) {
        karListObjectNV a, b, c;
        b.next(&c); // neighbours that don't know b
        b.prev(&a);
        (b.*operation)(nullptr);
        EXPECT_EQ(b.next(), nullptr);
        EXPECT_EQ(b.prev(), nullptr);
        expectChain({&a});
        expectChain({&c});
    }
}

TEST(KarListObjectNV, LinkingDoesNotUnchainFirst)
{
    karListObjectNV a, b(&a), c(&a), other;
    b.append(&other); // a and c still point at b
    EXPECT_EQ(other.next(), &b);
    EXPECT_EQ(b.prev(), &other);
    EXPECT_EQ(b.next(), nullptr);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(c.prev(), &b);
    a.next(nullptr);
    c.prev(nullptr);
}

TEST(KarListObjectNV, AppendToTheOwnChainWalksBeforeItWrites)
{
    karListObjectNV a, b(&a), c(&a);
    b.append(&a); // the end is c
    EXPECT_EQ(b.prev(), &c);
    EXPECT_EQ(b.next(), nullptr);
    EXPECT_EQ(c.next(), &b);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(c.prev(), &b);
    for (karListObjectNV *element : {&a, &b, &c}) {
        element->next(nullptr);
        element->prev(nullptr);
    }

    karListObjectNV d, e(&d), f(&d);
    e.insertFront(&f); // the start is d
    EXPECT_EQ(e.next(), &d);
    EXPECT_EQ(e.prev(), nullptr);
    EXPECT_EQ(d.prev(), &e);
    EXPECT_EQ(d.next(), &e);
    EXPECT_EQ(f.prev(), &e);
    for (karListObjectNV *element : {&d, &e, &f}) {
        element->next(nullptr);
        element->prev(nullptr);
    }
}

TEST(KarListObjectNV, UnchainBridgesTheNeighbours)
{
    karListObjectNV a, b(&a), c(&a), d(&a);
    b.unchain(); // in the middle
    expectChain({&a, &c, &d});
    expectChain({&b});
    b.unchain(); // again
    expectChain({&b});
    a.unchain(); // the first
    expectChain({&c, &d});
    d.unchain(); // the last
    expectChain({&c});
    c.unchain(); // the only one
    expectChain({&c});
}

TEST(KarListObjectNV, DestructorUnchains)
{
    karListObjectNV a;
    auto *b = new karListObjectNV(&a);
    karListObjectNV c(&a);
    expectChain({&a, b, &c});
    delete b;
    expectChain({&a, &c});
}

TEST(KarListObjectNV, LinkSettersTouchNoNeighbour)
{
    karListObjectNV a, b;
    a.next(&b);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(b.prev(), nullptr);
    b.prev(&a);
    EXPECT_EQ(b.prev(), &a);
    a.next(nullptr);
    EXPECT_EQ(a.next(), nullptr);
    EXPECT_EQ(b.prev(), &a);
    b.prev(nullptr);
    EXPECT_EQ(b.prev(), nullptr);
}

TEST(KarListObjectNV, LengthCountsTheWholeChain)
{
    karListObjectNV a, b(&a), c(&a), d(&a), e(&a);
    EXPECT_EQ(c.listLength(), 5);
    EXPECT_EQ(a.listLength(), 5);
    EXPECT_EQ(e.listLength(), 5);
}

TEST(KarListObjectNV, LengthOfANullObjectIsZero)
{
    EXPECT_EQ(lengthOfNull<karListObjectNV>(), 0);
    EXPECT_EQ(lengthOfNull<const karListObjectNV>(), 0);
    EXPECT_EQ(lengthOfNull<karListObject>(), 0);
    EXPECT_EQ(lengthOfNull<const karListObject>(), 0);
    EXPECT_EQ(lengthOfNull<karPtrListObject>(), 0);
    EXPECT_EQ(lengthOfNull<Element>(), 0);
}

TEST(KarListObjectNV, CopyHasTheLinksAndNobodyKnowsIt)
{
    karListObjectNV a, b(&a), c(&a);
    {
        karListObjectNV copy(b);
        EXPECT_EQ(copy.prev(), &a);
        EXPECT_EQ(copy.next(), &c);
        expectChain({&a, &b, &c});
    }
    // The copy unchained itself: its neighbours bypass b, which still believes in them.
    EXPECT_EQ(a.next(), &c);
    EXPECT_EQ(c.prev(), &a);
    EXPECT_EQ(b.prev(), &a);
    EXPECT_EQ(b.next(), &c);

    karListObjectNV d, e(&d);
    d = b;
    EXPECT_EQ(d.prev(), &a);
    EXPECT_EQ(d.next(), &c);
    EXPECT_EQ(e.prev(), &d); // untouched
    EXPECT_EQ(a.next(), &c);
    for (karListObjectNV *element : {&b, &d, &e}) {
        element->next(nullptr);
        element->prev(nullptr);
    }
}

TEST(KarListObjectNV, AnswersItsOwnIdWhateverTheObjectIs)
{
    Element element;
    const karListObjectNV &plain = element;
    EXPECT_EQ(plain.GetType(), 62);
    EXPECT_EQ(plain.IsType(ObjektIdies(62)), 1);
    EXPECT_EQ(plain.IsType(ObjektIdies(60)), 0);
    EXPECT_EQ(plain.CanCast(ObjektIdies(62)), 1);
    EXPECT_EQ(plain.CanCast(ObjektIdies(60)), 0);
    EXPECT_EQ(element.GetType(), 60);
}

TEST(KarListObjectNV, RandomStepsKeepAWellFormedChain)
{
    const std::uint64_t seed = 31;
    TestRandom random(seed);
    std::vector<std::unique_ptr<karListObjectNV>> elements;
    for (int i = 0; i < 12; ++i)
        elements.emplace_back(new karListObjectNV);
    std::vector<karListObjectNV *> model; // the chain of the elements that aren't free
    for (int step = 0; step < 3000; ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << step);
        karListObjectNV *const element = elements[random.below(12)].get();
        const auto at = std::find(model.begin(), model.end(), element);
        if (at != model.end()) {
            element->unchain();
            model.erase(at);
            ASSERT_EQ(element->listLength(), 1);
        } else if (model.empty()) {
            element->append(nullptr);
            model.push_back(element);
        } else {
            const auto other = model.begin() + random.between(0, static_cast<int>(model.size()) - 1);
            switch (random.below(3)) {
            case 0:
                element->append(*other);
                model.push_back(element);
                break;
            case 1:
                element->insert(*other);
                model.insert(other, element);
                break;
            default:
                element->insertFront(*other);
                model.insert(model.begin(), element);
            }
        }
        for (std::size_t i = 0; i < model.size(); ++i) {
            ASSERT_EQ(model[i]->prev(), i == 0 ? nullptr : model[i - 1]);
            ASSERT_EQ(model[i]->next(), i + 1 == model.size() ? nullptr : model[i + 1]);
            ASSERT_EQ(model[i]->listLength(), static_cast<int>(model.size()));
        }
    }
}

TEST(KarListObject, ConstructorsPlaceTheElement)
{
    Element a, b(&a), c(&a, 5), d(&c, 6), e(&c, 7);
    expectChain({&e, &a, &b, &d, &c});
    for (int position : {5, 6, 7, 0, 9}) {
        Element alone(nullptr, position);
        expectChain({&alone});
    }
    Element alone(static_cast<karListObject *>(nullptr));
    expectChain({&alone});
}

TEST(KarListObject, ConversionsKeepNull)
{
    Element element;
    karListObject &base = element;
    // The links point at a part inside the object, behind the virtual operations.
    EXPECT_NE(static_cast<void *>(static_cast<karListObjectNV *>(&element)), static_cast<void *>(&element));
    EXPECT_EQ(base.next(), nullptr);
    EXPECT_EQ(base.prev(), nullptr);
    Element other;
    base.next(&other);
    base.prev(&other);
    EXPECT_EQ(base.next(), &other);
    EXPECT_EQ(base.prev(), &other);
    base.next(nullptr);
    base.prev(nullptr);
    EXPECT_EQ(static_cast<karListObjectNV &>(base).next(), nullptr);
    EXPECT_EQ(static_cast<karListObjectNV &>(base).prev(), nullptr);
}

TEST(KarListObject, CurrentIsTheObjectItself)
{
    Element element;
    const karListObject &base = element;
    EXPECT_EQ(base.current(), &element);
    EXPECT_EQ(static_cast<karListObject &>(element).getListObjectPtr(), &element);
    EXPECT_EQ(element.current(), &element);
}

TEST(KarListObject, VirtualDestructorUnchains)
{
    Element a;
    karListObject *b = new Element(&a);
    Element c(&a);
    expectChain<Element>({&a, static_cast<Element *>(b), &c});
    delete b;
    expectChain({&a, &c});
}

TEST(KarListObject, CopyHasTheLinksAndItsDeathBypassesTheSource)
{
    Element a, b(&a), c(&a);
    {
        const Element copy(b);
        EXPECT_EQ(copy.prev(), &a);
        EXPECT_EQ(copy.next(), &c);
        expectChain({&a, &b, &c});
        Element assigned;
        assigned = b;
        EXPECT_EQ(assigned.prev(), &a);
        EXPECT_EQ(assigned.next(), &c);
        expectChain({&a, &b, &c});
    }
    EXPECT_EQ(a.next(), &c);
    EXPECT_EQ(c.prev(), &a);
    EXPECT_EQ(b.prev(), &a);
    EXPECT_EQ(b.next(), &c);
}

TEST(KarListObject, AnswersForSubclassesThatDoNotOverride)
{
    Element element;
    karListObject &base = element;
    EXPECT_EQ(base.GetType(), 60);
    EXPECT_EQ(base.IsType(ObjektIdies(60)), 1);
    EXPECT_EQ(base.IsType(ObjektIdies(62)), 0);
    EXPECT_EQ(base.CanCast(ObjektIdies(60)), 1);
    EXPECT_EQ(base.CanCast(ObjektIdies(62)), 0);
}

TEST(KarListObject, IsTypeAsksTheVirtualGetTypeAndCanCastDoesNot)
{
    class Renamed : public Element {
    public:
        ObjektIdies GetType() const override { return ObjektIdies(777); }
    };
    Renamed renamed;
    karListObject &base = renamed;
    EXPECT_EQ(base.IsType(ObjektIdies(777)), 1);
    EXPECT_EQ(base.IsType(ObjektIdies(60)), 0);
    EXPECT_EQ(base.CanCast(ObjektIdies(777)), 0);
    EXPECT_EQ(base.CanCast(ObjektIdies(60)), 1);
}

TEST(KarListObject, ComesFromTheLibrarysAllocator)
{
    const long before = globalMemList->getAnzNew();
    karListObject *const element = new Element;
    EXPECT_GT(globalMemList->getAnzNew(), before);
    delete element;
}

TEST(KarListObject, NewGivesNullWithoutMemory)
{
    const AllAllocationsFail failing;
    EXPECT_EQ(new karListObjectNV, nullptr);
    EXPECT_EQ(new Element, nullptr);
    EXPECT_EQ(new karPtrListObject, nullptr);
}

TEST(KarPtrListObject, CarriesAPointer)
{
    int carried = 3, another = 4;
    karPtrListObject none;
    EXPECT_EQ(none.getObject(), nullptr);
    expectChain({&none});
    karPtrListObject a(&carried, nullptr);
    EXPECT_EQ(a.getObject(), &carried);
    a.setObject(&another);
    EXPECT_EQ(a.getObject(), &another);
    a.setObject(nullptr);
    EXPECT_EQ(a.getObject(), nullptr);
    expectChain({&a});
}

TEST(KarPtrListObject, ConstructorsPlaceTheElement)
{
    int carried = 3;
    karPtrListObject a, b(&carried, &a), c(&carried, &a, 6), d(&carried, &a, 7), e(&carried, &c, 5);
    expectChain({&d, &c, &a, &b, &e});
    karPtrListObject alone(&carried, nullptr, 6), unknown(&carried, &a, 8);
    expectChain({&alone});
    expectChain({&unknown});
    EXPECT_EQ(unknown.getObject(), &carried);
}

TEST(KarPtrListObject, StandsBesideElementsOfOtherClasses)
{
    Element first;
    karPtrListObject second(nullptr, &first, 5);
    const karListObject &base = second;
    EXPECT_EQ(base.prev(), &first);
    EXPECT_EQ(static_cast<karListObject &>(first).next(), &second);
}

TEST(KarPtrListObject, NavigationHasItsType)
{
    karPtrListObject a, b(nullptr, &a);
    static_assert(std::is_same<decltype(a.next()), karPtrListObject *>::value, "");
    static_assert(std::is_same<decltype(a.prev()), karPtrListObject *>::value, "");
    static_assert(std::is_same<decltype(a.first()), karPtrListObject *>::value, "");
    static_assert(std::is_same<decltype(a.last()), karPtrListObject *>::value, "");
    static_assert(std::is_same<decltype(a.current()), karPtrListObject *>::value, "");
    EXPECT_EQ(a.current(), &a);
    karPtrListObject c;
    c.next(&a);
    c.prev(&b);
    EXPECT_EQ(c.next(), &a);
    EXPECT_EQ(c.prev(), &b);
    c.next(nullptr);
    c.prev(nullptr);
    expectChain({&c});
    expectChain({&a, &b});
}

TEST(KarPtrListObject, AnswersItsOwnIdOnly)
{
    karPtrListObject element;
    karListObject &base = element;
    EXPECT_EQ(base.ListObjectOk(), 1);
    EXPECT_EQ(base.GetType(), 61);
    EXPECT_EQ(base.IsType(ObjektIdies(61)), 1);
    EXPECT_EQ(base.IsType(ObjektIdies(60)), 0);
    EXPECT_EQ(base.CanCast(ObjektIdies(61)), 1);
    EXPECT_EQ(base.CanCast(ObjektIdies(60)), 0);
}

TEST(KarPtrListObject, CopyHasLinksAndPointer)
{
    int carried = 3;
    karPtrListObject a, b(&carried, &a), c(nullptr, &a);
    {
        karPtrListObject copy(b), assigned;
        assigned = b;
        for (const karPtrListObject *each : {&copy, &assigned}) {
            EXPECT_EQ(each->prev(), &a);
            EXPECT_EQ(each->next(), &c);
            EXPECT_EQ(each->getObject(), &carried);
        }
        expectChain({&a, &b, &c});
    }
    EXPECT_EQ(a.next(), &c);
    EXPECT_EQ(c.prev(), &a);
}

TEST(KarPtrListObject, DeathUnchainsAndLeavesTheCarriedObjectAlone)
{
    int carried = 3;
    karPtrListObject a;
    karListObject *const b = new karPtrListObject(&carried, &a);
    karPtrListObject c(nullptr, &a);
    delete b;
    expectChain({&a, &c});
    EXPECT_EQ(carried, 3);
}

/// Opens the fields.
struct NVFields : karListObjectNV {
    void check()
    {
        EXPECT_EQ(offsetIn(*this, nextLink), 0);
        EXPECT_EQ(offsetIn(*this, prevLink), static_cast<long>(sizeof(void *)));
    }
};

struct PtrFields : karPtrListObject {
    void check()
    {
        const auto word = static_cast<long>(sizeof(void *));
        EXPECT_EQ(offsetIn(*this, nextLink), word);
        EXPECT_EQ(offsetIn(*this, prevLink), 2 * word);
        EXPECT_EQ(offsetIn(*this, object), 3 * word);
    }
};

TEST(ListLayout, FieldsStandInTheirOrder)
{
    NVFields().check();
    PtrFields().check();
    EXPECT_EQ(sizeof(karListObjectNV), 2 * sizeof(void *));
    EXPECT_EQ(sizeof(karListObject), 3 * sizeof(void *));
    EXPECT_EQ(sizeof(karPtrListObject), 4 * sizeof(void *));
    static_assert(!std::is_polymorphic<karListObjectNV>::value, "");
    static_assert(std::is_abstract<karListObject>::value, "");
#if defined(__i386__)
    EXPECT_EQ(sizeof(karListObjectNV), 8u);
    EXPECT_EQ(sizeof(karListObject), 12u);
    EXPECT_EQ(sizeof(karPtrListObject), 16u);
#endif
}

TEST(ListLayout, VirtualOperationsStandInTheirOrder)
{
    EXPECT_EQ(slotOf(&karListObject::ListObjectOk), 0);
    EXPECT_EQ(slotOf(&karListObject::IsType), 3); // behind the destructor
    EXPECT_EQ(slotOf(&karListObject::GetType), 4);
    EXPECT_EQ(slotOf(&karListObject::CanCast), 5);
}

} // namespace
