// What a freshly loaded library says of the system: whichever of the eight functions is called first asks the system,
// and nobody asks again. On Linux the system is made up, by a `uname` of this program.
#include "loadedlibrary.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/utsname.h>
#endif

namespace {

const std::vector<std::string> functions = {
    "systemType",          "systemTypeString", "systemVersion", "systemVersionBinary",
    "systemVersionString", "systemBuilt",      "systemName",    "nodeName"};

/// What one of the functions says, as a text.
std::string answer(const Library &library, const std::string &function)
{
    const char *const name = function.c_str();
    if (function == "systemType" || function == "systemVersion" || function == "systemBuilt")
        return std::to_string(library.symbol<int (*)()>(name)());
    if (function == "systemVersionBinary")
        return std::to_string(library.symbol<unsigned short (*)()>(name)());
    if (function == "systemName" || function == "nodeName")
        return library.symbol<char *(*)()>(name)();
    return library.symbol<const char *(*)()>(name)();
}

std::vector<std::string> allAnswers(const Library &library)
{
    std::vector<std::string> answers;
    for (const std::string &function : functions)
        answers.push_back(answer(library, function));
    return answers;
}

#if !defined(_WIN32)
const char *release; // of the made-up kernel; null fails the query
int asked;           // how often the system was
#endif

} // namespace

#if !defined(_WIN32)
extern "C" __attribute__((visibility("default"))) int uname(utsname *system) noexcept
{
    ++asked;
    if (!release)
        return -1;
    *system = {};
    std::strcpy(system->release, release);
    std::strcpy(system->nodename, "computer");
    return 0;
}

TEST(SystemQuery, IsMadeOnceByWhicheverFunctionComesFirst)
{
    release = "5.64.123-made-up";
    const std::vector<std::string> expected = {"0", "UNKNOWN", "6", "1344", "5.4", "123", "", ""}; // 1344 is 0x540
    for (std::size_t i = 0; i < functions.size(); ++i) {
        asked = 0;
        const Library library;
        EXPECT_EQ(asked, 0) << "nothing is asked at load";
        EXPECT_EQ(answer(library, functions[i]), expected[i]) << functions[i];
        EXPECT_EQ(asked, 1) << functions[i];
        EXPECT_EQ(allAnswers(library), expected);
        EXPECT_EQ(asked, 1) << "the computer's name isn't asked for";
    }
    ASSERT_FALSE(Library::isLoaded());
}

TEST(SystemQuery, ThatFailedIsNotRepeated)
{
    const std::vector<std::string> expected = {"0", "UNKNOWN", "0", "0", "UNKNOWN", "0", "", ""};
    const char *const failures[] = {nullptr, "no release"};
    for (const char *failure : failures) {
        asked = 0;
        const Library library;
        release = failure;
        EXPECT_EQ(allAnswers(library), expected);
        release = "5.64.123";
        EXPECT_EQ(allAnswers(library), expected);
        EXPECT_EQ(asked, 1);
    }
}
#else
TEST(SystemQuery, IsMadeByWhicheverFunctionComesFirst)
{
    std::vector<std::string> expected;
    {
        const Library library;
        expected = allAnswers(library);
    }
    EXPECT_EQ(expected[0], "2");
    EXPECT_EQ(expected[1], "Windows NT");
    EXPECT_NE(expected[5], "0");
    EXPECT_NE(expected[7], "");
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const Library library;
        EXPECT_EQ(answer(library, functions[i]), expected[i]) << functions[i];
    }
}

// What the system makes of it isn't ours: it may refuse.
TEST(Library, AsksForNoThreadNotices)
{
    EXPECT_NE(Library::contents().find("DisableThreadLibraryCalls"), std::string::npos);
}
#endif

TEST(Library, StartsWithAnAllocatorAndWithoutAConsole)
{
    const Library library;
    const auto allocator = library.symbol<void **>("globalMemList");
    const auto console = library.symbol<void **>("Stdio");
    ASSERT_NE(allocator, nullptr);
    ASSERT_NE(console, nullptr);
    EXPECT_NE(*allocator, nullptr);
    EXPECT_EQ(*console, nullptr);
}
