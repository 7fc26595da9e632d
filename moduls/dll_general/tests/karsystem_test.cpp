// What the library says about the system: the mapping on made-up reports, the exports on the system at hand, the
// markers. Load and unload are tested with the allocator, whose object is all that lives from one to the other; the
// first question after a load has a file of its own.
#include "karsystem.h"

#include "systemreport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#include <sys/utsname.h>
#endif

namespace {

using kar::SystemAnswers;
using kar::SystemReport;

static_assert(kar::nodeNameSize == 16, "15 characters and a terminator");

std::string computer; // the name that the made-up system has
int asked;            // how often it was asked for

// As the system call does it: a name that doesn't fit isn't given, and the buffer may hold anything then.
bool madeUpName(char *name)
{
    ++asked;
    if (computer.empty() || computer.size() >= kar::nodeNameSize) {
        std::memset(name, '#', kar::nodeNameSize);
        return false;
    }
    std::strcpy(name, computer.c_str());
    return true;
}

SystemAnswers answers(std::uint32_t platform, std::uint32_t major, std::uint32_t minor, std::uint32_t build)
{
    const SystemReport report = {platform, major, minor, build};
    asked = 0;
    return kar::answersTo(&report, madeUpName);
}

int versionOf(std::uint32_t major, std::uint32_t minor) { return answers(2, major, minor, 1).version; }

TEST(SystemTables, HoldTheNumbersAndTexts)
{
    const char *const types[] = {"UNKNOWN", "Win32s", "Windows NT", "Windows 95", "SUNOS"};
    ASSERT_EQ(std::extent<decltype(kar::systemTypes)>::value, 5u);
    for (int row = 0; row < 5; ++row)
        EXPECT_STREQ(kar::systemTypes[row], types[row]);
    const char *const versions[] = {"UNKNOWN", "3.1", "3.5", "3.51", "4.0", "4.01", "5.4"};
    const unsigned packed[] = {0x0000, 0x030a, 0x0332, 0x0333, 0x0400, 0x0401, 0x0540};
    ASSERT_EQ(std::extent<decltype(kar::systemVersions)>::value, 7u);
    for (int row = 0; row < 7; ++row) {
        EXPECT_STREQ(kar::systemVersions[row].text, versions[row]);
        EXPECT_EQ(kar::systemVersions[row].packed, packed[row]);
    }
}

TEST(SystemAnswers, PlatformSelectsTheTypeRow)
{
    computer = "ABC";
    EXPECT_EQ(answers(0, 4, 0, 1).type, 1);
    EXPECT_EQ(answers(1, 4, 0, 1).type, 3);
    EXPECT_EQ(answers(2, 4, 0, 1).type, 2);
    EXPECT_EQ(answers(3, 4, 0, 1).type, 0);
    EXPECT_EQ(answers(4, 4, 0, 1).type, 0); // the row 4 exists, no platform selects it
    EXPECT_EQ(answers(kar::otherPlatform, 4, 0, 1).type, 0);
}

TEST(SystemAnswers, PackedVersionSelectsTheVersionRow)
{
    EXPECT_EQ(versionOf(3, 10), 1);
    EXPECT_EQ(versionOf(3, 50), 2);
    EXPECT_EQ(versionOf(3, 51), 3);
    EXPECT_EQ(versionOf(4, 0), 4);
    EXPECT_EQ(versionOf(4, 1), 5);
    EXPECT_EQ(versionOf(5, 64), 6);
}

TEST(SystemAnswers, VersionsOutsideTheTableAreUnknown)
{
    EXPECT_EQ(versionOf(4, 10), 0);
    EXPECT_EQ(versionOf(5, 0), 0);
    EXPECT_EQ(versionOf(5, 1), 0);
    EXPECT_EQ(versionOf(5, 4), 0); // the text of the row 6 says 5.4, its packed form 5.64
    EXPECT_EQ(versionOf(3, 1), 0);
    EXPECT_EQ(versionOf(10, 0), 0);
    EXPECT_EQ(versionOf(0, 0), 0);
}

TEST(SystemAnswers, PackedVersionHas16Bits)
{
    EXPECT_EQ(versionOf(3, 256), 4);      // 0x0300 + 0x0100
    EXPECT_EQ(versionOf(0x104, 0), 4);    // 0x10400 without its bit 16
    EXPECT_EQ(versionOf(0, 0x10401u), 5); // the same from the minor version
}

TEST(SystemAnswers, UnknownVersionKeepsBuildAndPlatform)
{
    computer = "ABC";
    const SystemAnswers said = answers(2, 5, 0, 2195);
    EXPECT_EQ(said.version, 0);
    EXPECT_EQ(said.built, 2195);
    EXPECT_EQ(said.type, 2);
    EXPECT_STREQ(said.node, "ABC");
}

TEST(SystemAnswers, BuildNumberIsPassedOnWithAllItsBits)
{
    EXPECT_EQ(answers(1, 4, 0, 0x040003b6u).built, 0x040003b6);
    EXPECT_EQ(answers(1, 4, 0, 0xffffffffu).built, -1);
}

TEST(SystemAnswers, FailedQueryGivesNothing)
{
    computer = "ABC";
    asked = 0;
    const SystemAnswers said = kar::answersTo(nullptr, madeUpName);
    EXPECT_EQ(said.type, 0);
    EXPECT_EQ(said.version, 0);
    EXPECT_EQ(said.built, 0);
    EXPECT_STREQ(said.node, "");
    EXPECT_EQ(asked, 0);
}

TEST(SystemAnswers, NameIsAskedForOnlyWhereItCounts)
{
    computer = "ABC";
    EXPECT_STREQ(answers(0, 3, 10, 1).node, "");
    EXPECT_EQ(asked, 0);
    EXPECT_STREQ(answers(3, 3, 10, 1).node, "");
    EXPECT_EQ(asked, 0);
    EXPECT_STREQ(answers(1, 4, 0, 1).node, "ABC");
    EXPECT_EQ(asked, 1);
    EXPECT_STREQ(answers(2, 4, 0, 1).node, "ABC");
    EXPECT_EQ(asked, 1);
}

TEST(SystemAnswers, NameHasUpTo15Characters)
{
    computer = "ABCDEFGHIJKLMNO"; // 15
    EXPECT_STREQ(answers(2, 4, 0, 1).node, "ABCDEFGHIJKLMNO");
    computer = std::string(40, 'X');
    EXPECT_STREQ(answers(2, 4, 0, 1).node, "");
    EXPECT_EQ(asked, 1);
    computer = ""; // there is none
    EXPECT_STREQ(answers(2, 4, 0, 1).node, "");
}

TEST(SystemReport, IsReadFromAKernelRelease)
{
    const struct {
        const char *release;
        std::uint32_t major, minor, build;
    } rows[] = {
        {"6.1.0-13-amd64", 6, 1, 0}, {"5.64.123", 5, 64, 123}, {"19.90.29", 19, 90, 29}, {"0.99.10", 0, 99, 10},
        {"6.0.9", 6, 0, 9},          {"2.6.32.71+", 2, 6, 32}, {"6.1", 6, 1, 0},         {"6", 6, 0, 0},
        {"6.1-rc3", 6, 1, 0},        {"6.x.9", 6, 0, 0},       {"7..9", 7, 0, 0},        {"6rc2.1", 6, 0, 0},
    };
    for (const auto &row : rows) {
        SystemReport report = {1, 77, 77, 77};
        EXPECT_TRUE(kar::readRelease(row.release, report)) << row.release;
        EXPECT_EQ(report.platform, kar::otherPlatform);
        EXPECT_EQ(report.major, row.major) << row.release;
        EXPECT_EQ(report.minor, row.minor) << row.release;
        EXPECT_EQ(report.build, row.build) << row.release;
    }
}

TEST(SystemReport, IsUntouchedByATextThatIsNoRelease)
{
    for (const char *release : {"", "unknown", ".1.2", " 6.1"}) {
        SystemReport report = {1, 77, 78, 79};
        EXPECT_FALSE(kar::readRelease(release, report)) << release;
        EXPECT_EQ(report.platform, 1u);
        EXPECT_EQ(report.major, 77u);
        EXPECT_EQ(report.minor, 78u);
        EXPECT_EQ(report.build, 79u);
    }
}

// The name first: any of the eight may be the one that asks.
TEST(System, AnswersForTheSystemAtHand)
{
    const std::string node = nodeName();
#if defined(_WIN32)
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    ASSERT_TRUE(GetVersionExA(&version));
    ASSERT_EQ(version.dwPlatformId, 2u);
    char name[16] = "";
    DWORD size = sizeof name;
    GetComputerNameA(name, &size);
    EXPECT_EQ(node, name);
    EXPECT_NE(node, "");
    EXPECT_EQ(systemType(), 2);
    EXPECT_STREQ(systemTypeString(), "Windows NT");
    EXPECT_EQ(systemBuilt(), static_cast<int>(version.dwBuildNumber));
    const unsigned packed = static_cast<unsigned>((version.dwMajorVersion << 8) + version.dwMinorVersion);
#else
    utsname system = {};
    ASSERT_EQ(uname(&system), 0);
    unsigned major = 0, minor = 0, patch = 0;
    ASSERT_GE(std::sscanf(system.release, "%u.%u.%u", &major, &minor, &patch), 2);
    EXPECT_EQ(node, "");
    EXPECT_EQ(systemType(), 0);
    EXPECT_STREQ(systemTypeString(), "UNKNOWN");
    EXPECT_EQ(systemBuilt(), static_cast<int>(patch));
    const unsigned packed = (major << 8) + minor;
#endif
    const bool known = packed == 0x030a || packed == 0x0332 || packed == 0x0333 || packed == 0x0400 ||
                       packed == 0x0401 || packed == 0x0540;
    EXPECT_EQ(systemVersionBinary(), known ? packed : 0u);
    EXPECT_EQ(systemVersion() != 0, known);
    EXPECT_EQ(std::string(systemVersionString()) != "UNKNOWN", known);
    EXPECT_STREQ(systemName(), "");
}

TEST(System, AnswersStayTheSame)
{
    EXPECT_EQ(nodeName(), nodeName());
    EXPECT_EQ(systemName(), systemName());
    EXPECT_NE(nodeName(), systemName());
    EXPECT_EQ(systemTypeString(), systemTypeString());
    EXPECT_EQ(systemVersionString(), systemVersionString());
    EXPECT_EQ(systemType(), systemType());
    EXPECT_EQ(systemBuilt(), systemBuilt());
}

TEST(System, ExportsHaveTheirTypes)
{
    static_assert(std::is_same<decltype(systemType()), int>::value, "");
    static_assert(std::is_same<decltype(systemTypeString()), const char *>::value, "");
    static_assert(std::is_same<decltype(systemVersion()), int>::value, "");
    static_assert(sizeof(systemVersionBinary()) == 2, "");
    static_assert(std::is_same<decltype(systemVersionString()), const char *>::value, "");
    static_assert(std::is_same<decltype(systemBuilt()), int>::value, "");
    static_assert(std::is_same<decltype(systemName()), char *>::value, "");
    static_assert(std::is_same<decltype(nodeName()), char *>::value, "");
    static_assert(std::is_same<decltype(errornoMethod(0)), errorCodesKARTORY>::value, "");
    static_assert(std::is_same<decltype(errornoMethodExt(KAR_SUCCESS, "", 0)), errorCodesKARTORY>::value, "");
    static_assert(std::is_same<decltype(errornoMethodExt(0, "", 0)), int>::value, "");
}

TEST(System, NamesAreUndecorated)
{
    for (const char *name :
         {"systemType", "systemTypeString", "systemVersion", "systemVersionBinary", "systemVersionString",
          "systemBuilt", "systemName", "nodeName", "globalBeep", "_notready", "errornoMethod"}) {
#if defined(_WIN32)
        const HMODULE library = GetModuleHandleA("libkrKGeneral.dll");
        ASSERT_TRUE(library);
        EXPECT_TRUE(GetProcAddress(library, name)) << name;
#else
        EXPECT_TRUE(dlsym(RTLD_DEFAULT, name)) << name;
#endif
    }
}

TEST(Markers, GiveTheirCodeBack)
{
    EXPECT_EQ(errornoMethod(-252), KAR_ERROR_UNKNOWN_METHOD);
    EXPECT_EQ(errornoMethod(0), KAR_SUCCESS);
    EXPECT_EQ(errornoMethod(123456), 123456);
    EXPECT_EQ(errornoMethodExt(KAR_ERROR_NO_METHOD, "file", 12), KAR_ERROR_NO_METHOD);
    EXPECT_EQ(errornoMethodExt(-120, "file", 12), -120);
    EXPECT_EQ(errornoMethodExt(7, nullptr, 0), 7);
}

TEST(Markers, DoNothingAndReturn)
{
    globalBeep();
    _notready("karMatrix::Inverse()", "moduls/dll_general/src/karmatrix", 1);
    _notready(nullptr, nullptr, -1);
}

TEST(Enumerations, AreInts)
{
    static_assert(std::is_same<std::underlying_type<errorCodesKARTORY>::type, int>::value, "");
    static_assert(std::is_same<std::underlying_type<ObjektIdies>::type, int>::value, "");
    static_assert(std::is_convertible<ObjektIdies, int>::value, "");
}

TEST(Enumerations, HaveTheirNumbers)
{
    EXPECT_EQ(KAR_SUCCESS, 0);
    EXPECT_EQ(KAR_ERROR_CORNER, -7);
    EXPECT_EQ(KAR_ERROR_NO_NUMBER, -120);
    EXPECT_EQ(KAR_ERROR_NO_METHOD, -251);
    EXPECT_EQ(KAR_ERROR_UNKNOWN_METHOD, -252);

    EXPECT_EQ(KAR_ID_PAIR, 0);
    EXPECT_EQ(KAR_ID_POINT, 9);
    EXPECT_EQ(KAR_ID_RECT, 10);
    EXPECT_EQ(KAR_ID_DIMENSION, 11);
    EXPECT_EQ(KAR_ID_D_POINT, 13);
    EXPECT_EQ(KAR_ID_D_RECT, 14);
    EXPECT_EQ(KAR_ID_D_DIMENSION, 15);
    EXPECT_EQ(KAR_ID_3D_BKS, 30);
    EXPECT_EQ(KAR_ID_RECT_X, 46);
    EXPECT_EQ(KAR_ID_LIST_OBJECT, 60);
    EXPECT_EQ(KAR_ID_PTR_LIST_OBJECT, 61);
    EXPECT_EQ(KAR_ID_LIST_OBJECT_NV, 62);
    EXPECT_EQ(KAR_ID_2D_VECTOR, 101);
    EXPECT_EQ(KAR_ID_3D_VECTOR, 114);
    EXPECT_EQ(KAR_ID_MATRIX, 119);
    EXPECT_EQ(KAR_ID_PLANE, 120);
    EXPECT_EQ(KAR_ID_TRANSFORMATION_INFO, 123);
    EXPECT_EQ(KAR_ID_PAGE_MEMORY, 4001);
    EXPECT_EQ(KAR_ID_VAR_PAGE_MEMORY, 4005);
    EXPECT_EQ(KAR_ID_LIST_HEAD_OBJECT, 200001);
}

} // namespace
