// Two doubles in one register, each computed as it is by itself.
#ifndef KAR_REAL_PAIR_H
#define KAR_REAL_PAIR_H

#include <cstring>

namespace kar {

/// One operation on it costs what it costs for one number.
using RealPair = double __attribute__((vector_size(16)));

/// The two numbers from `first` on.
inline RealPair pairAt(const double *first)
{
    RealPair pair;
    std::memcpy(&pair, first, sizeof pair);
    return pair;
}

} // namespace kar

#endif
