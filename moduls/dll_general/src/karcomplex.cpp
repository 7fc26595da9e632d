#include "karcomplex.h"

karComplex karComplex::sqr() const
{
    const double u = std::sqrt((mod() + re) * 0.5);
    const double v = im / (2 * u);
    return karComplex(u, v);
}
