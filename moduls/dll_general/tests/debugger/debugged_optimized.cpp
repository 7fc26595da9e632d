// A program to be looked at by gdb whose compiler has thrown values away, and which knows the classes of parameters.
#include <krkgeneral.h>

namespace {

volatile int seven = 7; // not known to the compiler

} // namespace

extern "C" __attribute__((noinline)) void looked(const void *);
extern "C" __attribute__((noinline)) void looked(const void *) { seven = 8; }

int main()
{
    const int read = seven;
    const karPoint point(read, 2);
    const karD_Point realPoint(read, 2.0);
    const karRect rect(read, 2, 3, read);
    const kar3D_Point spacePoint(read, 2.0, 3.0);
    const karComplex complex(read, 2.0);
    const karColor color(static_cast<unsigned char>(read), 2, 3);
    const karDataId id(3);
    const karDataText text(karString("name"));
    const karDataInteger integer(44);
    const karDataDouble real(2.5);
    const karDataParam parameters;
    const karDataBase *const kept[] = {&id, &text, &integer, &real, &parameters};
    looked(kept);
    return 0;
}
