// From what a system reports about itself to what the library says about it.
#ifndef KAR_SYSTEM_REPORT_H
#define KAR_SYSTEM_REPORT_H

#include "karnumeric.h"

#include <cstddef>
#include <cstdint>

namespace kar {

/// What the system says when it is asked.
struct SystemReport {
    std::uint32_t platform; ///< 0 the 32-bit extension of 16-bit systems, 1 the 95 line, 2 the NT line, else another
    std::uint32_t major;
    std::uint32_t minor;
    std::uint32_t build;
};

/// A platform that has no row of its own.
constexpr std::uint32_t otherPlatform = 0xffffffffu;

/// The types of systems; the number of a type is its row. Row 4 isn't selected by any platform; its number is taken.
constexpr const char *systemTypes[] = {"UNKNOWN", "Win32s", "Windows NT", "Windows 95", "SUNOS"};

struct SystemVersion {
    std::uint16_t packed; ///< major version in the high byte, minor in the low one
    const char *text;
};

/// The versions of systems; the number of a version is its row.
constexpr SystemVersion systemVersions[] = {
    {0x0000, "UNKNOWN"}, {0x030a, "3.1"},  {0x0332, "3.5"}, {0x0333, "3.51"},
    {0x0400, "4.0"},     {0x0401, "4.01"}, {0x0540, "5.4"},
};

/// Buffer of a computer's name: 15 characters and a terminator.
constexpr std::size_t nodeNameSize = 16;

/// All that the library remembers of the system. Zero is what it says of one that didn't answer.
struct SystemAnswers {
    int type;    ///< row in `systemTypes`
    int version; ///< row in `systemVersions`
    int built;
    char node[nodeNameSize];
};

/// Row of a platform in `systemTypes`.
inline int systemTypeOf(std::uint32_t platform)
{
    switch (platform) {
    case 0:
        return 1;
    case 1:
        return 3;
    case 2:
        return 2;
    default:
        return 0;
    }
}

/// Row of a version in `systemVersions`, 0 for one that isn't there. The packed form has 16 bits.
inline int systemVersionOf(std::uint32_t major, std::uint32_t minor)
{
    const auto packed = static_cast<std::uint16_t>((major << 8) + minor);
    for (const SystemVersion &row : systemVersions)
        if (row.packed == packed)
            return static_cast<int>(&row - systemVersions);
    return 0;
}

/// The answers to a report, null standing for a system that didn't answer. `askName` fills a buffer of `nodeNameSize`
/// with the computer's name and terminator and says whether it could; it is asked only where the name counts.
inline SystemAnswers answersTo(const SystemReport *report, bool (*askName)(char *name))
{
    SystemAnswers said = {};
    if (!report)
        return said;
    said.type = systemTypeOf(report->platform);
    said.version = systemVersionOf(report->major, report->minor);
    said.built = toSigned(report->build);
    if (said.type > 1 && !askName(said.node))
        said.node[0] = '\0';
    return said;
}

/// A number in decimal digits at `text`, which moves behind it; false if there is no digit.
inline bool readNumber(const char *&text, std::uint32_t &number)
{
    if (*text < '0' || *text > '9')
        return false;
    number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = number * 10 + static_cast<std::uint32_t>(*text - '0');
    return true;
}

/// Reads a kernel release such as "6.1.0-13-amd64": major, minor and patch level, missing ones 0. False, and nothing
/// written, if it doesn't begin with a number.
inline bool readRelease(const char *release, SystemReport &report)
{
    SystemReport read = {otherPlatform, 0, 0, 0};
    if (!readNumber(release, read.major))
        return false;
    if (*release == '.' && readNumber(++release, read.minor) && *release == '.')
        readNumber(++release, read.build);
    report = read;
    return true;
}

} // namespace kar

#endif
