// Loading and unloading the library in a loop, with blocks of every kind alive; and the count of its static
// initialisers. Under the sanitizer and under valgrind no round may leak or touch freed memory.
#include "karmemgb.h"

#include "loadedlibrary.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

TEST(Library, LoadsAndUnloadsWithLiveBlocksOfEveryKind)
{
    for (int round = 0; round < 20; ++round) {
        std::vector<void *> untracked;
        {
            const Library library;
            ASSERT_TRUE(Library::isLoaded());
            // Names as the compilers of all targets decorate them.
            const auto allocate = library.symbol<void *(*)(unsigned)>("_Z14KarAllocMemoryj");
            const auto release = library.symbol<void (*)(void *)>("_Z15KarDellocMemoryPv");
            const auto list = library.symbol<karGlobalMemory **>("globalMemList");
            ASSERT_NE(allocate, nullptr);
            ASSERT_NE(release, nullptr);
            ASSERT_NE(list, nullptr);
            karGlobalMemory &allocator = **list;
            EXPECT_EQ(allocator.getAnzNew(), 0);
            EXPECT_EQ(allocator.getCurAnzNew(), 0);

            std::vector<void *> blocks;
            for (unsigned size = 1; size < 3000; size += 10)
                blocks.push_back(allocate(size)); // small and tracked: the library's own to release
            for (std::size_t i = 0; i < blocks.size(); i += 3)
                release(blocks[i]);
            allocator.setMarkMemListGlobal(0);
            for (unsigned size : {10u, 500u, 5000u})
                untracked.push_back(allocate(size)); // the host's
            release(blocks[250]);                    // a tracked one, whose record stays
            if (round % 2)
                allocator.setMarkMemListGlobal(1);
            EXPECT_GT(allocator.getCurAnzNew(), 0);
        }
        ASSERT_FALSE(Library::isLoaded());
#if !defined(_WIN32)
        // An untracked block is the host's; with the library gone only the C library can take it back. On 64-bit
        // targets it begins 12 bytes into the heap's block.
        for (void *p : untracked) {
            unsigned header;
            std::memcpy(&header, static_cast<char *>(p) - 4, sizeof header);
            EXPECT_GE(header, 18u); // it is untouched
            std::free(static_cast<char *>(p) - (sizeof(void *) > 4 ? 16 : 4));
        }
#endif
    }
}

// A sanitizer has initialisers of its own, and so has a build that counts lines.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(KAR_COVERAGE)
TEST(Library, HasOneStaticInitialiser)
{
    const std::string bytes = Library::contents();
    ASSERT_FALSE(bytes.empty());
    // Each source file with initialisers has one function of this name in the table of symbols.
    std::vector<std::string> found;
    const std::string prefix = "_GLOBAL__sub_I_";
    for (std::size_t i = bytes.find(prefix); i != std::string::npos; i = bytes.find(prefix, i + 1))
        found.emplace_back(bytes.c_str() + i);
    EXPECT_EQ(found, std::vector<std::string>{"_GLOBAL__sub_I_karmemgb.cpp"});

    // The array of initialisers holds that function and one of the start code.
    std::size_t arraySize = 0;
    const auto read = [&bytes](std::size_t offset, std::size_t size) {
        std::uint64_t value = 0;
        std::memcpy(&value, bytes.data() + offset, size);
        return static_cast<std::size_t>(value);
    };
    const bool wide = sizeof(void *) > 4;
    const std::size_t sections = wide ? read(0x28, 8) : read(0x20, 4);
    const std::size_t sectionSize = wide ? read(0x3a, 2) : read(0x2e, 2);
    const std::size_t sectionCount = wide ? read(0x3c, 2) : read(0x30, 2);
    constexpr std::size_t initArray = 14; // SHT_INIT_ARRAY
    for (std::size_t i = 0; i < sectionCount; ++i) {
        const std::size_t section = sections + i * sectionSize;
        if (read(section + 4, 4) == initArray)
            arraySize += wide ? read(section + 0x20, 8) : read(section + 0x14, 4);
    }
    EXPECT_EQ(arraySize / sizeof(void *), 2u);
}
#endif
