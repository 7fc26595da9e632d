// What the transformations of extents tell before they give their result.
#include "notready.h"

#include "kar3dpoint.cpp"

#include "karmatrix.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<NotReadyCall>;
const char path[] = "moduls/dll_general/src/kar3dpoint";

TEST(Kar3DDimension, TransformationsAreNotReady)
{
    const karMatrix matrix(4);
    kar3D_Dimension d(1, 2, 3);
    const Calls construction{
        {"kar3D_Dimension::kar3D_Dimension(const kar3D_Dimension& p, const karMatrix *matrix)", path, 33}};
    const kar3D_Dimension copy(d, &matrix);
    EXPECT_TRUE(takeNotReadyCalls() == construction);
    const kar3D_Dimension copyWithoutMatrix(d, nullptr);
    EXPECT_TRUE(takeNotReadyCalls() == construction);
    d *= matrix;
    EXPECT_TRUE(
        takeNotReadyCalls() ==
        (Calls{{"const kar3D_Dimension      &kar3D_Dimension::operator *= (const karMatrix  &matrix)", path, 38}}));
    d = d * matrix;
    EXPECT_TRUE(
        takeNotReadyCalls() ==
        (Calls{{"const kar3D_Dimension      &kar3D_Dimension::operator *  (const karMatrix  &matrix)", path, 44}}));
}

} // namespace
