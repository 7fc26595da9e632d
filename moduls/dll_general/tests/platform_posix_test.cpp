// What the library makes of the answers of `uname`. On other systems there is nothing to test here.
#include <gtest/gtest.h>

#ifndef _WIN32

#include <cstring>
#include <string>

#include <sys/utsname.h>

namespace {

bool answers; // whether the made-up `uname` does
std::string release, node;

int madeUpUname(utsname *system)
{
    std::strcpy(system->release, release.c_str());
    std::strcpy(system->nodename, node.c_str());
    return answers ? 0 : -1;
}

} // namespace

#define uname madeUpUname
#include "platform_posix.cpp"

using kar::SystemReport;

TEST(PlatformPosix, ReleaseOfTheKernelIsTheVersion)
{
    answers = true;
    release = "6.1.44-amd64";
    SystemReport report = {77, 78, 79, 80};
    EXPECT_TRUE(kar::platform::systemReport(report));
    EXPECT_EQ(report.platform, kar::otherPlatform);
    EXPECT_EQ(report.major, 6u);
    EXPECT_EQ(report.minor, 1u);
    EXPECT_EQ(report.build, 44u);
}

TEST(PlatformPosix, WithoutAnAnswerNothingIsWritten)
{
    answers = false;
    release = "6.1.44-amd64";
    node = "plotter";
    SystemReport report = {77, 78, 79, 80};
    EXPECT_FALSE(kar::platform::systemReport(report));
    EXPECT_EQ(report.platform, 77u);
    EXPECT_EQ(report.major, 78u);
    char name[kar::nodeNameSize];
    EXPECT_FALSE(kar::platform::computerName(name));
}

TEST(PlatformPosix, NamesHaveUpTo15Characters)
{
    answers = true;
    for (const char *fitting : {"", "a", "plotter", "123456789012345"}) {
        node = fitting;
        char name[kar::nodeNameSize + 1];
        std::memset(name, '#', sizeof name);
        EXPECT_TRUE(kar::platform::computerName(name));
        EXPECT_STREQ(name, fitting);
        EXPECT_EQ(name[node.size() + 1], '#'); // nothing behind the terminator
    }
    for (const char *longer : {"1234567890123456", "12345678901234567", "a.domain.of.some.length"}) {
        node = longer;
        char name[kar::nodeNameSize];
        EXPECT_FALSE(kar::platform::computerName(name)) << longer;
    }
}

#endif
