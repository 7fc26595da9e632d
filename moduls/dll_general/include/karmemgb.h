// The global allocator.
#ifndef KAR_MEMGB_H
#define KAR_MEMGB_H

#include "karalloc.h"

#endif
