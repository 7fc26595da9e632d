// The numbers of the shared enumerations: hosts compare them and store them.
#include "karenum.h"

#include <gtest/gtest.h>
#include <type_traits>

static_assert(std::is_same<std::underlying_type<errorCodesKARTORY>::type, int>::value,
              "hosts keep values of their own");
static_assert(std::is_same<std::underlying_type<ObjektIdies>::type, int>::value, "hosts keep values of their own");

TEST(KarEnum, FailuresAreFixedNegativeNumbers)
{
    EXPECT_EQ(KAR_SUCCESS, 0);
    EXPECT_EQ(KAR_ERROR_CORNER, -7);
    EXPECT_EQ(KAR_ERROR_NO_NUMBER, -120);
    EXPECT_EQ(KAR_ERROR_NO_METHOD, -251);
    EXPECT_EQ(KAR_ERROR_UNKNOWN_METHOD, -252);
}

TEST(KarEnum, TypeIdsAreFixedNumbers)
{
    EXPECT_EQ(KAR_ID_PAIR, 0);
    EXPECT_EQ(KAR_ID_POINT, 9);
    EXPECT_EQ(KAR_ID_RECT, 10);
    EXPECT_EQ(KAR_ID_DIMENSION, 11);
    EXPECT_EQ(KAR_ID_D_POINT, 13);
    EXPECT_EQ(KAR_ID_D_RECT, 14);
    EXPECT_EQ(KAR_ID_D_DIMENSION, 15);
    EXPECT_EQ(KAR_ID_3D_BKS, 30);
    EXPECT_EQ(KAR_ID_RECT_X, 46);
    EXPECT_EQ(KAR_ID_LIST_OBJECT, 60);
    EXPECT_EQ(KAR_ID_PTR_LIST_OBJECT, 61);
    EXPECT_EQ(KAR_ID_LIST_OBJECT_NV, 62);
    EXPECT_EQ(KAR_ID_2D_VECTOR, 101);
    EXPECT_EQ(KAR_ID_3D_VECTOR, 114);
    EXPECT_EQ(KAR_ID_MATRIX, 119);
    EXPECT_EQ(KAR_ID_PLANE, 120);
    EXPECT_EQ(KAR_ID_TRANSFORMATION_INFO, 123);
    EXPECT_EQ(KAR_ID_PAGE_MEMORY, 4001);
    EXPECT_EQ(KAR_ID_VAR_PAGE_MEMORY, 4005);
    EXPECT_EQ(KAR_ID_LIST_HEAD_OBJECT, 200001);
}
