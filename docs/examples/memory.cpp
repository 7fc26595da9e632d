// A block, a pool of equal elements and a pool of runs.
#include "expect.h"

#include <karmemgb.h>

int main()
{
    // A guarded block. Nothing is thrown: no memory is a null pointer, and so is a block of size 0.
    void *block = KarAllocMemory(100);
    EXPECT(block != nullptr);
    KarDellocMemory(block);
    EXPECT(KarAllocMemory(0) == nullptr);

    // Elements of 24 bytes, 1000 to a page. The pool holds nothing while it is empty.
    karPageMemory pool(24, 1000);
    void *element = pool.newElement();
    EXPECT(element != nullptr && pool.getAnzElem() == 1);
    pool.deleteElement(element);
    EXPECT(element == nullptr); // the release clears the caller's pointer
    EXPECT(pool.getAnzElem() == 0);

    // A run of unknown length: ask for enough, give the tail back. Its owner remembers the count.
    karVarPageMemory runs(sizeof(double), 1000);
    void *run = runs.newElement(500);
    auto *values = static_cast<double *>(run);
    int count = 0;
    for (int v = 1; v < 1000; v *= 2)
        values[count++] = v;
    runs.speicher_Speed(1); // the run stays where it is
    EXPECT(runs.resizeElementLast(run, 500, count) == values);
    EXPECT(count == 10 && runs.getAnzElem() == 10 && values[9] == 512.0);
    runs.deleteElement(run, count);
    return 0;
}
