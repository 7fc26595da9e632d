// What the heap gets back: the test stands in front of the C library's free and looks at the block.
// Only where that is possible: glibc without a sanitizer, which stands there itself.
#include "karmemgb.h"

#include <gtest/gtest.h>

#include <cstring>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)

extern "C" void __libc_free(void *);

namespace {

const char *watched = nullptr; // a block's start, whose guards are read as it goes
unsigned watchedSize = 0;
bool seen = false;
unsigned headerSeen = 1;
unsigned footerSeen = 1;

} // namespace

extern "C" __attribute__((visibility("default"))) void free(void *p)
{
    // The system's block may begin a little before ours.
    const char *const start = static_cast<const char *>(p);
    if (watched && start <= watched && watched - start < 16) {
        std::memcpy(&headerSeen, watched, 4);
        std::memcpy(&footerSeen, watched + watchedSize - 4, 4);
        watched = nullptr;
        seen = true;
    }
    __libc_free(p);
}

TEST(Guards, AreClearedBeforeAHeapBlockGoesBack)
{
    for (int mark : {0, 1})
        for (unsigned size : {1500u, 5000u, 16u}) {
            if (mark == 1 && size < 993)
                continue;
            const int saved = globalMemList->setMarkMemListGlobal(mark);
            char *const p = static_cast<char *>(KarAllocMemory(size));
            std::memset(p, 0xff, size);
            seen = false;
            headerSeen = footerSeen = 1;
            watchedSize = size + 8;
            watched = p - 4;
            KarDellocMemory(p);
            EXPECT_TRUE(seen);
            EXPECT_EQ(headerSeen, 0u);
            EXPECT_EQ(footerSeen, 0u);
            globalMemList->setMarkMemListGlobal(saved);
        }
}

#endif
