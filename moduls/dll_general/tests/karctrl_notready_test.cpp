// What the unfinished value of a host's parameter set tells before it goes on.
#include "notready.h"

#include "karctrl.cpp"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<NotReadyCall>;
const char path[] = "moduls/dll_general/src/karctrl";
const NotReadyCall construction{"karDataParam :: karDataParam (const karVectorizeParameter *_param)", path, 209};
const NotReadyCall destruction{"karDataParam :: ~karDataParam ()", path, 215};
const NotReadyCall setting{"karDataParam :: setParam      (const karVectorizeParameter *_param)", path, 221};

TEST(KarDataParam, ConstructorDestructorAndSetterAreNotReady)
{
    {
        karDataParam value(nullptr);
        EXPECT_TRUE(takeNotReadyCalls() == Calls{construction});
        value.setParam(nullptr);
        EXPECT_TRUE(takeNotReadyCalls() == Calls{setting});
    }
    EXPECT_TRUE(takeNotReadyCalls() == Calls{destruction});
}

TEST(KarDataParam, CopyingAndReadingTellNothing)
{
    karDataParam value;
    takeNotReadyCalls();
    {
        karDataParam copy(value);
        copy = value;
        EXPECT_EQ(copy.getType(), 5);
        EXPECT_EQ(copy.getParam(), nullptr);
        EXPECT_TRUE(takeNotReadyCalls().empty());
    }
    EXPECT_TRUE(takeNotReadyCalls() == Calls{destruction});
}

TEST(KarMessageBase, AParameterSetIsBuiltAndDeletedThroughTheUnfinishedValue)
{
    takeNotReadyCalls();
    karMessageBase message;
    message.setParam(0, static_cast<const karVectorizeParameter *>(nullptr));
    EXPECT_TRUE(takeNotReadyCalls() == Calls{construction});
    message.setId(0, 1);
    EXPECT_TRUE(takeNotReadyCalls() == Calls{destruction});
}

} // namespace
