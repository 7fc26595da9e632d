#include "karstring.h"
#include <gtest/gtest.h>
TEST(KarString, X) {
 karString s; EXPECT_EQ(s.size(),16u); EXPECT_STREQ(karString(1.5,2,false),"1.50");
}
