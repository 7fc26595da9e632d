// Points, boxes and the placement of an element.
#include "expect.h"

#include <karparamblock.h>
#include <karrect.h>

int main()
{
    // The pixel grid has y downwards, the drawing plane upwards; each has its own box.
    const karRect pixels(karPoint(10, 20), karPoint(2, 5));
    EXPECT(pixels.left() == 2 && pixels.top() == 5 && pixels.height() == 15);
    const karD_Rect sheet(karD_Point(10.0, 20.0), karD_Point(2.0, 5.0));
    EXPECT(sheet.bottom() == 5.0 && sheet.top() == 20.0 && sheet.height() == 15.0);

    // A real point goes to the grid rounded half away from zero.
    const karPoint rounded = karD_Point(2.5, -2.5);
    EXPECT(rounded == karPoint(3, -3));

    // The box common to both; if there is none the receiver is all zero and the result false.
    karRect common(0, 0, 5, 10);
    EXPECT(common.setintersects(pixels));
    EXPECT(common == karRect(2, 5, 5, 10));
    EXPECT(!common.setintersects(karRect(100, 100, 110, 110)) && common.isNull());

    // Twice as large, a quarter turn (1,000,000 angle units), then moved to (100, 50).
    karParamBlock block;
    block.setInsertPoint(karPoint(100, 50));
    block.setScaleX(2.0);
    block.setScaleY(2.0);
    block.setAngle(1000000);
    const karD_Point placed(karD_Point(3.0, 1.0), &block);
    EXPECT(placed == karD_Point(98.0, 56.0)); // (6, 2) turns to (-2, 6)
    return 0;
}
