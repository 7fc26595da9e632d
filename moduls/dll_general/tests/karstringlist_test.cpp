// Lists of texts: what an element does with its text and its links, and what a head owns.
#include "karstringlist.h"
#include "failalloc.h"
#include "textprobe.h"
#include "testrandom.h"
#include "testslot.h"
#include "teststeps.h"

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace {

int alive = 0;

// Counts how many live, to see what a head deletes.
class CountedText : public karStringList {
public:
    explicit CountedText(const char *text) : karStringList(text) { ++alive; }
    ~CountedText() override { --alive; }
};

const karString &textOf(const karStringList &element) { return element.getString(); }

} // namespace

TEST(KarStringList, IsEmptyAndUnlinkedByDefault)
{
    karStringList element;
    EXPECT_TRUE(hasState(element.getString(), "", 0, 16));
    EXPECT_EQ(element.next(), nullptr);
    EXPECT_EQ(element.prev(), nullptr);
    EXPECT_EQ(element.ListObjectOk(), 1);
    EXPECT_EQ(element.GetType(), KAR_ID_LIST_OBJECT);
    EXPECT_EQ(element.CanCast(KAR_ID_LIST_OBJECT), 1);
}

TEST(KarStringList, TakesItsTextFromEverySource)
{
    karString text("abcdef", 50u);
    karStringList other("ghi");
    EXPECT_TRUE(hasState(textOf(karStringList(text)), "abcdef", 6, 16)); // extra 8: adjust(15)
    EXPECT_TRUE(hasState(textOf(karStringList("abc")), "abc", 3, 16));
    EXPECT_TRUE(hasState(textOf(karStringList(static_cast<const char *>(nullptr))), "", 0, 16));
    EXPECT_TRUE(hasState(textOf(karStringList(20u)), "", 0, 24));
    EXPECT_TRUE(hasState(textOf(karStringList(other)), "ghi", 3, 16));
    // Seven characters, the terminator and 8 more fill 16 bytes.
    karString seven("abcdefg");
    karStringList element(seven);
    EXPECT_TRUE(hasState(textOf(element), "abcdefg", 7, 16));
    EXPECT_TRUE(hasState(textOf(karStringList("abcdefg")), "abcdefg", 7, 16));
    EXPECT_TRUE(hasState(textOf(karStringList(element)), "abcdefg", 7, 16));
}

TEST(KarStringList, AChainLinksBehindItsLastElement)
{
    karStringList first("first");
    karStringList second("second", &first);
    karString text("third");
    karStringList third(text, &first); // any element of the chain will do
    karStringList fourth(5u, &second);
    karStringList fifth(first, &first); // a copy takes the text, not the links
    karStringList sixth(&third);
    const karStringList *const expected[] = {&first, &second, &third, &fourth, &fifth, &sixth};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(expected[i]->prev(), i > 0 ? expected[i - 1] : nullptr) << i;
        EXPECT_EQ(expected[i]->next(), i < 5 ? expected[i + 1] : nullptr) << i;
    }
    EXPECT_EQ(fifth.getString() == "first", 1);
    EXPECT_EQ(third.first(), &first);
    EXPECT_EQ(third.last(), &sixth);
    EXPECT_EQ(third.current(), &third);
    static_assert(std::is_same<decltype(third.next()), karStringList *>::value, "typed navigation");
    static_assert(std::is_same<decltype(third.prev()), karStringList *>::value, "typed navigation");
    static_assert(std::is_same<decltype(third.first()), karStringList *>::value, "typed navigation");
    static_assert(std::is_same<decltype(third.last()), karStringList *>::value, "typed navigation");
    static_assert(std::is_same<decltype(third.current()), karStringList *>::value, "typed navigation");
}

TEST(KarStringList, ACopyIsUnlinked)
{
    karStringList first("first");
    karStringList second("second", &first);
    const karStringList copy(second);
    EXPECT_EQ(copy.next(), nullptr);
    EXPECT_EQ(copy.prev(), nullptr);
    EXPECT_EQ(second.prev(), &first);
}

TEST(KarStringList, LeavesItsChainWhenItDies)
{
    karStringList first("first");
    {
        karStringList second("second", &first);
        EXPECT_EQ(first.next(), &second);
    }
    EXPECT_EQ(first.next(), nullptr);
}

TEST(KarStringList, SetsLinksAlone)
{
    karStringList a("a");
    karStringList b("b");
    a.next(&b);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(b.prev(), nullptr);
    b.prev(&a);
    EXPECT_EQ(b.prev(), &a);
}

TEST(KarStringList, AssignmentTakesTheTextAndLeavesTheLinks)
{
    karStringList first("first");
    karStringList second("second", &first);
    karStringList third("third", &first);
    const karStringList other("other");
    EXPECT_EQ(&(second = other), &second);
    EXPECT_EQ(textOf(second) == "other", 1);
    EXPECT_EQ(&(second = karString("text")), &second);
    EXPECT_EQ(textOf(second) == "text", 1);
    EXPECT_EQ(&(second = "0123456789abcdef"), &second);
    EXPECT_TRUE(hasState(textOf(second), "0123456789abcdef", 16, 32)); // adjust(25)
    karString set("set");
    second.setString(set);
    EXPECT_EQ(textOf(second) == "set", 1);
    EXPECT_EQ(second.prev(), &first);
    EXPECT_EQ(second.next(), &third);
    EXPECT_EQ(other.next(), nullptr);
}

TEST(KarStringList, AppendsToTheText)
{
    karStringList element("a");
    const karStringList other("b");
    EXPECT_EQ(&(element &= other), &element);
    EXPECT_EQ(&(element &= karString("c")), &element);
    EXPECT_EQ(&(element &= "d"), &element);
    const karStringList &same = element;
    element &= same;
    EXPECT_TRUE(hasState(textOf(element), "abcdabcd", 8, 16));
}

TEST(KarStringList, DiffersByteByByte)
{
    const karStringList element("abc");
    EXPECT_EQ(element != karStringList("abc"), 0);
    EXPECT_EQ(element != karStringList("abcd"), 1);
    EXPECT_EQ(element != karString("abc"), 0);
    EXPECT_EQ(element != karString("ab"), 1);
    EXPECT_EQ(element != "abc", 0);
    EXPECT_EQ(element != "abcd", 1);
    EXPECT_EQ(element != "aBc", 1);
}

TEST(KarStringList, MeasuresItsText)
{
    karStringList element("abc");
    element.getString() &= '\0';
    EXPECT_EQ(element.vstrlen(), 3u);
    EXPECT_EQ(element.getString().length(), 4u);
    element.getString().reSize(0xfffffff8u); // can't be had: no buffer
    EXPECT_EQ(element.vstrlen(), 0u);
}

TEST(KarStringList, WithoutMemoryItsTextReadsAsEmpty)
{
    const karStringList other("other");
    karStringListHead head;
    const AllAllocationsFail failing;
    karStringList none;
    karStringList plain("abc");
    karStringList text(other.getString());
    karStringList copy(other);
    karStringList room(100u);
    for (karStringList *element : {&none, &plain, &text, &copy, &room}) {
        EXPECT_EQ(element->vstrlen(), 0u);
        EXPECT_EQ(*element != "", 0);
        EXPECT_EQ(*element != other, 1);
        *element = other;
        *element &= "more";
        EXPECT_EQ(element->vstrlen(), 0u);
    }
    EXPECT_EQ(head.ListAppend(new karStringList("abc")), nullptr); // the element itself can't be had
    EXPECT_EQ(head.ListFirst(), nullptr);
}

/// Opens the field.
struct StringFields : karStringList {
    void check() { EXPECT_EQ(offsetIn(*this, string), static_cast<long>(3 * sizeof(void *))); } // behind the two links
};

TEST(StringListLayout, TheTextStandsBehindTheLinksAndTheHeadAddsNothing)
{
    StringFields().check();
    EXPECT_EQ(sizeof(karStringList), sizeof(karListObject) + sizeof(karString));
    EXPECT_EQ(sizeof(karStringListHead), sizeof(karListHeadObject));
#if defined(__i386__)
    EXPECT_EQ(sizeof(karStringList), 24u);
#endif
}

TEST(KarStringListHead, HasItsType)
{
    karStringListHead head;
    EXPECT_EQ(head.ListHeadObjectOk(), 1);
    EXPECT_EQ(head.GetType(), KAR_ID_LIST_HEAD_OBJECT);
    EXPECT_EQ(head.getListId(), 0);
    EXPECT_EQ(head.ListFirst(), nullptr);
    EXPECT_EQ(head.ListAnzahl(), 0);
}

TEST(KarStringListHead, FindsAndDeletesWhatItOwns)
{
    alive = 0;
    {
        karStringListHead head;
        karStringList *const a = head.ListAppend(new CountedText("a"));
        karStringList *const c = head.ListAppend(new CountedText("c"));
        karStringList *const b = head.ListInsert(new CountedText("b"), a);
        EXPECT_EQ(head.ListAnzahl(), 3);
        EXPECT_EQ(head.ListFirst(), a);
        EXPECT_EQ(head.ListLast(), c);
        EXPECT_EQ(head.ListCurrent(), b);
        EXPECT_EQ(a->next(), b);
        EXPECT_EQ(b->next(), c);
        EXPECT_EQ(head.ListExist(c), c);
        EXPECT_EQ(head.ListUnchain(b), b);
        EXPECT_EQ(head.ListExist(b), nullptr);
        EXPECT_EQ(alive, 3);
        delete b;
        head.ListRemove(a);
        EXPECT_EQ(alive, 1);
        EXPECT_EQ(head.ListFirst(), c);
        static_assert(std::is_same<decltype(head.ListFirst()), karStringList *>::value, "typed operations");
    }
    EXPECT_EQ(alive, 0);
}

TEST(KarStringListHead, RemovalReturnsElementAndText)
{
    karStringListHead head;
    const long before = globalMemList->getCurSizeNew();
    karStringList *const element = head.ListAppend(new karStringList(5000u));
    *element = "abc";
    EXPECT_GT(globalMemList->getCurSizeNew(), before + 5000);
    head.ListRemove(element);
    EXPECT_EQ(globalMemList->getCurSizeNew(), before);
}

TEST(KarStringListHead, AnAssignedElementStaysInItsPlace)
{
    karStringListHead head;
    karStringList *const a = head.ListAppend(new karStringList("a"));
    karStringList *const b = head.ListAppend(new karStringList("b"));
    *a = *b;
    EXPECT_EQ(head.ListFirst(), a);
    EXPECT_EQ(a->next(), b);
    EXPECT_EQ(head.ListLast(), b);
    EXPECT_EQ(*a != "b", 0);
}

TEST(KarStringListHead, DoesNotSeeAnElementBuiltWithAChain)
{
    karStringListHead head;
    karStringList *const a = head.ListAppend(new karStringList("a"));
    auto *const b = new karStringList("b", a);
    EXPECT_EQ(a->next(), b);
    EXPECT_EQ(head.ListLast(), a);
    EXPECT_EQ(head.ListAnzahl(), 2); // the chain is counted from the first on
}

TEST(KarStringListHead, ACopySharesTheChain)
{
    karStringListHead head;
    karStringList *const a = head.ListAppend(new karStringList("a"));
    {
        karStringListHead copy(head);
        EXPECT_EQ(copy.ListFirst(), a);
        EXPECT_EQ(copy.ListLast(), a);
        copy.ListUnchain(a);
    }
    EXPECT_EQ(head.ListFirst(), a); // the head doesn't know
    head.ListFirst(nullptr);
    head.ListLast(nullptr);
    head.ListCurrent(nullptr);
    delete a;
}

TEST(KarStringListHead, RandomOperationsFollowAPlainList)
{
    const std::uint64_t seed = 43;
    TestRandom random(seed);
    karStringListHead head;
    std::vector<std::string> plain;
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        const auto count = static_cast<unsigned>(plain.size());
        const unsigned at = count ? random.below(count) : 0;
        karStringList *element = head.ListFirst();
        for (unsigned i = 0; i < at; ++i)
            element = element->next();
        const std::string word = std::to_string(random.below(1000));
        switch (count > 40 ? 3 : random.below(5)) {
        case 0:
            head.ListAppend(new karStringList(word.c_str()));
            plain.push_back(word);
            break;
        case 1:
            head.ListInsert(new karStringList(word.c_str()), element);
            plain.insert(plain.begin() + static_cast<std::ptrdiff_t>(count ? at + 1 : 0), word);
            break;
        case 2:
            if (element) {
                *element &= word.c_str();
                plain[at] += word;
            }
            break;
        case 3:
            if (element) {
                head.ListRemove(element);
                plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(at));
            }
            break;
        default:
            if (element) {
                *element = word.c_str();
                plain[at] = word;
            }
            break;
        }
        std::vector<std::string> texts;
        for (karStringList *one = head.ListFirst(); one; one = one->next())
            texts.emplace_back(TextProbe::bytes(one->getString()));
        ASSERT_EQ(texts, plain) << "seed " << seed << ", step " << step;
    }
}
