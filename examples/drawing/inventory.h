// The report on a drawing: what it holds, and what the library's memory did for it.
#ifndef INVENTORY_H
#define INVENTORY_H

#include "drawing.h"

#include <iosfwd>

/// Entities by layer and kind, the kinds that are only counted by their names, and the blocks. The drawing is sorted.
void printInventory(std::ostream &out, const Drawing &drawing);

/// Blocks now held from the heap, bytes in tracked blocks now and at most, and allocations since the start.
void printMemory(std::ostream &out);

#endif
