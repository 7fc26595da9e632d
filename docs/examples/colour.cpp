// Colours and their numbers in exchange formats.
#include "expect.h"

#include <karcolor.h>
#include <vcolor.h>

int main()
{
    const karColor orange(255, 127, 0);
    EXPECT(orange.name(false) == "RGB(255,127,0)");
    EXPECT(orange.acad() == ACAD_Color(30)); // on the wheel
    EXPECT(orange.iges() == 0);              // no number for it

    // Black and white are both 7 in a DXF file, and 7 is white.
    EXPECT(karColor(0, 0, 0).acad() == ACAD_COLOR_WHITE);
    EXPECT(karColor(ACAD_COLOR_WHITE) == karColor(255, 255, 255));

    // A colour of the layer keeps its three parts beside the mark.
    karColor ofLayer(255, 0, 0);
    ofLayer.SetColorVONLAYER();
    EXPECT(ofLayer.IsColorVONLAYER() && ofLayer.red() == 255);
    EXPECT(ofLayer != karColor(255, 0, 0));

    // From text and back, packed with red in the lowest byte.
    EXPECT(vColorName::Conv("RGB(1,2,3)") == 0x030201);
    EXPECT(vColorName::Conv("orange") == 0); // not a colour text
    return 0;
}
