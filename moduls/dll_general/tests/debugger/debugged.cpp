// A program to be looked at by gdb: one variable of each kind of value, sound and damaged. gdb stops in `looked`.
#include <krkgeneral.h>

#include <cstring>

namespace {

volatile int seven = 7; // not known to the compiler

/// An element and a head as a host derives them, with bases of their own beside those of the library.
class Named {
public:
    explicit Named(int newNumber) : number(newNumber) {}
    virtual ~Named() = default;

    int number;
};

class Mark : public Named, public karListTyped<Mark, karListObject> {
public:
    Mark(int newNumber, const karPoint &newPlace) : Named(newNumber), place(newPlace) {}
    int ListObjectOk() override { return 1; }

    karPoint place;
};

class LongMark : public Mark {
public:
    LongMark(int newNumber, const karPoint &newPlace, double newLength) : Mark(newNumber, newPlace), length(newLength)
    {}

    double length;
};

class Marks : public karListHeadTyped<Mark> {
public:
    int ListHeadObjectOk() override { return 1; }

    int layer = 4;
};

/// Reaches into the protected fields of lists, as damage does.
class BrokenMarks : public Marks {
public:
    void setEnds(karListObject *first, karListObject *last)
    {
        listFirst = first;
        listLast = last;
        listCurrent = nullptr;
    }
};

/// Memory of an object that was never made.
template <class T>
union Raw {
    Raw() { std::memset(bytes, 0x25, sizeof bytes); }
    ~Raw() {}

    T object;
    unsigned char bytes[sizeof(T)];
};

} // namespace

extern "C" __attribute__((noinline)) void looked(const void *);
extern "C" __attribute__((noinline)) void looked(const void *) { seven = 7; }

int main()
{
    karString text("Kartory");
    karString empty;
    karString quoted("a \"b\"\tc");
    karString longText('x', 300u);
    const karString &reference = text;
    karString *nullText = nullptr;
    static Raw<karString> rawText;

    const karPoint point(3, -4);
    const karD_Point realPoint(0.1, 1e300);
    const karDimension dimension(30, 40);
    const karD_Dimension realDimension(0.5, 2.0);
    const tPair<int, int> pair(1, 2);
    const kar3D_Point spacePoint(1.0, 2.5, -3.0);
    const kar3D_Dimension spaceDimension(1.0, 2.0, 3.0);
    const kar3D_Range range(2.0, -1.0, 0.0);
    const karRect rect(1, 2, 30, 40);
    const karD_Rect realRect(0.5, 1.5, 2.5, 3.5);
    const karRectX turned(karPoint(5, 6), karDimension(20, 10), 0.25);
    const kar2DVector vector(3.0, 4.0, false);
    const kar3DVector spaceVector(1.0, 0.0, -1.0, false);
    const karComplex sum(1.5, 2.0);
    const karComplex difference(1.5, -2.0);
    const karPoint *nullPoint = nullptr;

    const karMatrix noMatrix;
    karMatrix matrix(2, 3);
    for (int row = 1; row <= 2; ++row)
        for (int column = 1; column <= 3; ++column)
            matrix.SetValue(row, column, row * 10.0 + column);
    karMatrix staleMatrix(2, 2);
    staleMatrix.SetData(-1, 2);
    static Raw<karMatrix> rawMatrix;

    const karColor red(255, 0, 0);
    const karColor ofLayer(FARBWERT_VONLAYER);
    karColor special(1, 2, 3);
    special.special(77);

    karStringListHead texts;
    for (const char *one : {"one", "two", "three"})
        texts.ListAppend(new karStringList(one));
    karStringListHead noTexts;
    Marks marks;
    marks.ListAppend(new Mark(1, karPoint(10, 11)));
    marks.ListAppend(new LongMark(2, karPoint(20, 21), 2.5));
    marks.ListAppend(new Mark(3, karPoint(30, 31)));
    Mark *second = marks.ListFirst()->next();
    Mark alone(9, karPoint(0, 0));
    karPtrListObject carrier;
    karListObjectNV bareFirst;
    karListObjectNV bare(&bareFirst);

    // A chain that leads back, one that leads nowhere, one with an end that isn't its end.
    Mark loopStart(1, karPoint(1, 1));
    Mark loopEnd(2, karPoint(2, 2));
    loopStart.next(&loopEnd);
    loopEnd.prev(&loopStart);
    loopEnd.next(&loopStart);
    BrokenMarks loop;
    loop.setEnds(&loopStart, &loopEnd);
    Mark lost(1, karPoint(1, 1));
    Mark other(2, karPoint(2, 2));
    BrokenMarks astray;
    astray.setEnds(&lost, &other);
    Mark torn(1, karPoint(1, 1));
    Mark target(2, karPoint(2, 2));
    torn.next(&target);
    BrokenMarks oneWay;
    oneWay.setEnds(&torn, &target);
    static Raw<Marks> rawMarks;

    karMessage messages;
    messages.addMessage(EnumMessageID(12), 6)
        ->getMessage()
        ->setText(0, "name")
        .setDouble(1, 2.5)
        .setId(2, 33)
        .setParam(3, new karDataInteger(44))
        .setParam(4, new karDataParam);
    messages.addMessage(EnumMessageID(13), 0);
    karMessageBase message(EnumMessageID(14));
    karMessageBase unheld(EnumMessageID(15));
    unheld.setParamCount(-1);
    static Raw<karMessageBase> rawMessage;

    karPercent percent;
    percent.setStartEnd(20, 60);
    percent.addLayer();
    percent.setLayerPercent(50);
    karCtrl ctrl;

    karPageMemory pool(24, 10);
    void *elements[12];
    for (void *&element : elements)
        element = pool.newElement();
    karPageMemory noPool(24, 10);
    karVarPageMemory runs(8, 100);
    void *run = runs.newElement(20);
    static karGlobalMemory global;
    void *small = global.newMem(50);
    void *large = global.newMem(5000);
    static Raw<karGlobalMemory> rawMemory;

    const void *const kept[] = {
        &text,        &empty,       &quoted,        &longText,   &reference,  &nullText, &rawText,   &point,
        &realPoint,   &dimension,   &pair,          &spacePoint, &range,      &rect,     &realRect,  &turned,
        &vector,      &spaceVector, &sum,           &nullPoint,  &difference, &noMatrix, &matrix,    &red,
        &staleMatrix, &ofLayer,     &special,       &texts,      &noTexts,    &marks,    &second,    &alone,
        &loop,        &carrier,     &astray,        &oneWay,     &rawMarks,   &messages, &message,   &rawMessage,
        &percent,     &pool,        &noPool,        &runs,       &global,     &ctrl,     &rawMatrix, &realDimension,
        &rawMemory,   &unheld,      &spaceDimension};
    looked(kept);

    // Links that lead astray must not be followed at the end.
    for (BrokenMarks *head : {&loop, &astray, &oneWay})
        head->setEnds(nullptr, nullptr);
    loopEnd.next(static_cast<Mark *>(nullptr));
    runs.deleteElement(run, 20);
    global.deleteMem(small);
    global.deleteMem(large);
    return 0;
}
