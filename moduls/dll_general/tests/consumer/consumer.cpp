// A program of a user: it sees the installed headers and the installed library, and nothing else.
#include <krkgeneral.h>

int main()
{
    void *block = KarAllocMemory(16);
    karPtrListObject first;
    karPtrListObject second(block, &first);
    const bool good = block && first.listLength() == 2 && first.next() == &second;
    KarDellocMemory(block);
    return good ? 0 : 1;
}
