// The first hour: blocks, objects of the library and a class of the host's own, and the figures of the allocator.
#include <krkgeneral.h>

#include <cstdio>
#include <cstring>

//! [element]
// An element of a list. `new` and `delete` of every class that derives from one of the library's come from it.
class Contour : public karListTyped<Contour, karListObject> {
public:
    Contour(const char *ownName, int ownLength) : name(ownName), length(ownLength) {}
    int ListObjectOk() override { return 1; }

    karString name;
    int length;
};

// The head owns its elements. A method that gives a - b sorts the largest to the front.
class Contours : public karListHeadTyped<Contour> {
public:
    int ListHeadObjectOk() override { return 1; }
    int byLength(const karListObject *a, const karListObject *b)
    {
        return static_cast<const Contour *>(a)->length - static_cast<const Contour *>(b)->length;
    }
    void sort() { ListSort(static_cast<karSortMethod>(&Contours::byLength), this); }
};
//! [element]

//! [figures]
static void figures(const char *when)
{
    std::printf("%s: %ld large bytes, at most %ld\n", when, globalMemList->curr_used_memory(),
                globalMemList->max_used_memory());
}
//! [figures]

int main()
{
    //! [block]
    figures("at first");
    auto *small = static_cast<char *>(KarAllocMemory(100));  // from a pool: 100 bytes and two guards of four bytes
    auto *large = static_cast<char *>(KarAllocMemory(5000)); // above 992 bytes: from the heap, with a record
    if (!small || !large)                                    // nothing is thrown; no memory is a null pointer
        return 1;
    std::memset(small, 0, 100);
    figures("with a large block");
    KarDellocMemory(large);
    KarDellocMemory(small);
    KarDellocMemory(nullptr); // does nothing
    if (!KarAllocMemory(0))
        std::printf("a block of size 0 is a null pointer too\n");
    figures("released");
    //! [block]

    //! [list]
    const long before = globalMemList->getAnzNew();
    {
        Contours contours;
        const char *const names[] = {"hole", "edge", "slot"};
        const int lengths[] = {10, 70, 40};
        for (int i = 0; i < 3; ++i)
            contours.ListAppend(new Contour(names[i], lengths[i])); // null without memory, which appends nothing
        contours.sort();
        for (const Contour *contour = contours.ListFirst(); contour; contour = contour->next())
            std::printf("%s %d\n", static_cast<const char *>(contour->name), contour->length);
    } // the head deletes the elements
    if (globalMemList->getAnzNew() > before)
        std::printf("elements and texts came from the library's allocator\n");
    //! [list]
    return 0;
}
