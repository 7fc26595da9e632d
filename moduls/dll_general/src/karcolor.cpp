#include "karcolor.h"

#include "vcolor.h"

karColor &karColor::operator=(ACAD_Color c)
{
    return *this = karColor(static_cast<unsigned long>(vColor::ConvDXF2RGB(c)));
}

void karColor::init(ACAD_Color c)
{
    *this = c;
    if (c < ACAD_COLOR_NONE || c > ACAD_COLOR_RAMP_LAST) // an unknown index means the colour of the layer
        mark(FARBWERT_VONLAYER);
}

karString karColor::name(bool flag) const
{
    karString text;
    vColorName::Conv(static_cast<long>(pack(red_, green_, blue_, 0)), text, flag);
    return text;
}

ACAD_Color karColor::acad() const { return static_cast<ACAD_Color>(vColor::ConvRGB2DXF(static_cast<long>(rgbs()))); }

int karColor::iges() const { return vColor::ConvRGB2IGES(static_cast<long>(rgbs())); }
