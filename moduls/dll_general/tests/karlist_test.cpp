// List elements: links, positions, type identity.
#include "karlist.h"

#include <gtest/gtest.h>

TEST(KarPtrListObject, AnswersItsOwnIdOnly)
{
    karPtrListObject element;
    EXPECT_EQ(element.CanCast(KAR_ID_LIST_OBJECT), 0);
    EXPECT_EQ(element.CanCast(KAR_ID_PTR_LIST_OBJECT), 1);
    EXPECT_EQ(element.IsType(KAR_ID_PTR_LIST_OBJECT), 1);
}
