// The transformations of extents, which are not made yet.
#include "kar3dpoint.h"

#include "karsystem.h"

namespace {

constexpr char source[] = "moduls/dll_general/src/kar3dpoint";

} // namespace

kar3D_Dimension::kar3D_Dimension(const kar3D_Dimension &p, const karMatrix *) : SpaceTriple(p)
{
    _notready("kar3D_Dimension::kar3D_Dimension(const kar3D_Dimension& p, const karMatrix *matrix)", source, 33);
}

const kar3D_Dimension &kar3D_Dimension::operator*=(const karMatrix &)
{
    _notready("const kar3D_Dimension      &kar3D_Dimension::operator *= (const karMatrix  &matrix)", source, 38);
    return *this;
}

kar3D_Dimension kar3D_Dimension::operator*(const karMatrix &) const
{
    _notready("const kar3D_Dimension      &kar3D_Dimension::operator *  (const karMatrix  &matrix)", source, 44);
    return kar3D_Dimension();
}
