#include "karmemgb.h"

#include <cstdlib>

void *KarAllocMemory(unsigned size) { return size ? std::malloc(size) : nullptr; }
void *KarAllocMemory(unsigned size, void *p) { return p ? p : KarAllocMemory(size); }
void KarDellocMemory(void *p) { std::free(p); }
