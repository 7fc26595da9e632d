#include "karlisthead.h"

#include <gtest/gtest.h>
namespace {
class Element : public karListTyped<Element, karListObject> {
public:
    explicit Element(int k) : key(k) {}
    int ListObjectOk() override { return 1; }
    int key;
};
class Head : public karListHeadTyped<Element> {
public:
    using karListHeadTyped::karListHeadTyped;
    int ListHeadObjectOk() override { return 1; }
};
TEST(KarListHead, X)
{
    Head h;
    h.ListAppend(new Element(1));
    EXPECT_EQ(h.ListFirst()->key, 1);
    Head g(h);
    g.ListFirst(nullptr);
}
} // namespace
