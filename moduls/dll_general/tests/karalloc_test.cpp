// Objects and arrays from the library's allocator: sizes beyond 32 bits fail, and the placement form takes its address.
// The largest sizes are in karalloc_largest_test.cpp.
#include "karalloc.h"

#include <gtest/gtest.h>

namespace {

struct Owner {
    KAR_LIBRARY_NEW
    int value = 7;
};

} // namespace

TEST(KarAlloc, SizesWithoutRoomForTheGuardsFail)
{
    EXPECT_EQ(kar::allocObject(0xfffffff8u), nullptr); // with both guards 2^32 bytes
    EXPECT_EQ(kar::allocObject(0xffffffffu), nullptr);
    EXPECT_EQ(Owner::operator new(0xfffffff8u), nullptr);
    void *const object = kar::allocObject(24);
    ASSERT_NE(object, nullptr);
    KarDellocMemory(object);
}

TEST(KarAlloc, ProductsOfSizesBeyond32BitsFail)
{
    EXPECT_EQ(kar::allocArray(0xfffffff8u, 1), nullptr);
    EXPECT_EQ(kar::allocArray(0x1fffffffu, 8), nullptr); // 0xfffffff8
    EXPECT_EQ(kar::allocArray(0x20000001u, 8), nullptr); // 2^32 + 8
    void *const array = kar::allocArray(3, 8);
    ASSERT_NE(array, nullptr);
    KarDellocMemory(array);
}

TEST(KarAlloc, ArraysOfNothingAreNull)
{
    EXPECT_EQ(kar::allocArray(0, 8), nullptr);
    EXPECT_EQ(kar::allocArray(5, 0), nullptr);
}

TEST(KarAlloc, PlacementTakesItsAddressAndAllocatesForNull)
{
    alignas(Owner) char room[sizeof(Owner)];
    EXPECT_EQ(Owner::operator new(sizeof(Owner), static_cast<void *>(room)), room);
    void *const fresh = Owner::operator new(sizeof(Owner), static_cast<void *>(nullptr));
    ASSERT_NE(fresh, nullptr);
    Owner::operator delete(fresh);
    Owner *const owner = new Owner;
    ASSERT_NE(owner, nullptr);
    EXPECT_EQ(owner->value, 7);
    delete owner;
}
