// Where the parts of an object and its virtual operations stand.
#ifndef KAR_TEST_SLOT_H
#define KAR_TEST_SLOT_H

#include <cstdint>
#include <cstring>

/// Links and addresses of 64 bits.
constexpr bool wide = sizeof(void *) > 4;

/// Index in the table of virtual operations. A destructor takes two places. Itanium C++ ABI, as all targets have it:
/// the first word of a pointer to a virtual member is 1 plus the offset in the table.
template <class Method>
int slotOf(Method method)
{
    std::intptr_t word = 0;
    static_assert(sizeof method >= sizeof word, "");
    std::memcpy(&word, &method, sizeof word);
    return static_cast<int>((word - 1) / static_cast<std::intptr_t>(sizeof(void *)));
}

/// Offset of a part of an object, in bytes.
template <class Object, class Part>
long offsetIn(const Object &object, const Part &part)
{
    return static_cast<long>(reinterpret_cast<std::intptr_t>(&part) - reinterpret_cast<std::intptr_t>(&object));
}

#endif
