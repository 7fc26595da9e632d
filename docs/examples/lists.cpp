// Strokes in a list that owns and sorts them.
#include "expect.h"

#include <karlisthead.h>

class Stroke : public karListTyped<Stroke, karListObject> {
public:
    explicit Stroke(int ownLength) : length(ownLength) {}
    int ListObjectOk() override { return 1; }

    const int length;
};

class Drawing : public karListHeadTyped<Stroke> {
public:
    int ListHeadObjectOk() override { return 1; }

    // Positive: a stays in front of b. So the difference of two lengths puts the longest first.
    int longestFirst(const karListObject *a, const karListObject *b)
    {
        return static_cast<const Stroke *>(a)->length - static_cast<const Stroke *>(b)->length;
    }
};

int main()
{
    Drawing drawing;
    drawing.ListAppend(new Stroke(3));
    drawing.ListAppend(new Stroke(8));
    drawing.ListAppend(new Stroke(5));
    EXPECT(drawing.ListAnzahl() == 3);

    drawing.ListSort(static_cast<karSortMethod>(&Drawing::longestFirst), &drawing);
    int lengths = 0;
    for (const Stroke *stroke = drawing.ListFirst(); stroke; stroke = stroke->next())
        lengths = lengths * 10 + stroke->length;
    EXPECT(lengths == 853);

    // Unchaining gives an element back to the caller; removing deletes it.
    Stroke *longest = drawing.ListUnchain(drawing.ListFirst());
    EXPECT(longest->length == 8 && longest->next() == nullptr);
    delete longest;
    drawing.ListRemove(drawing.ListFirst());
    EXPECT(drawing.ListAnzahl() == 1);
    return 0; // the head deletes what is left
}
