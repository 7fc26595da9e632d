// A program of a user: it sees the installed headers and the installed library, and nothing else.
#include <krkgeneral.h>

int main()
{
    void *block = KarAllocMemory(16);
    karPtrListObject first;
    karPtrListObject second(block, &first);
    const bool listed = block && first.listLength() == 2 && first.next() == &second;
    KarDellocMemory(block);

    double x, y;
    const int bounded = 3;
    const int count = Intersect_Line_Line(0.0, 0.0, 4.0, 4.0, 0.0, 2.0, 4.0, 2.0, bounded, x, y);
    const bool crossed = count == 1 && x == 2.0 && y == 2.0;

    karString text("Kartory");
    const bool written = (text & " drawing") == "Kartory drawing";
    return listed && crossed && written ? 0 : 1;
}
