#include "vcolor.h"

#include "karcolor.h"
#include "karnumeric.h"
#include "karstring.h"
#include "vcolornames.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

constexpr int paletteSize = ACAD_COLOR_RAMP_LAST + 1;

constexpr std::uint32_t pack(int r, int g, int b) { return static_cast<std::uint32_t>(r | (g << 8) | (b << 16)); }

// The fixed indices: 0 to 9 stand at their place, 250 to 255 behind them.
// clang-format off
constexpr std::uint32_t fixedColors[] = {
    pack(0, 0, 0),       pack(255, 0, 0),     pack(255, 255, 0),   pack(0, 255, 0),     pack(0, 255, 255),
    pack(0, 0, 255),     pack(255, 0, 255),   pack(255, 255, 255), pack(128, 128, 128), pack(192, 192, 192),
    pack(32, 32, 32),    pack(64, 64, 64),    pack(96, 96, 96),    pack(144, 144, 144), pack(176, 176, 176),
    pack(224, 224, 224),
};
// clang-format on

constexpr int wheelPart(int index, int share, int level)
{
    return index % 2 == 0 ? share * level * 255 / 20 : share * level * 255 / 40 + 127;
}

// All divisions truncate. The shares run from 0 to 4 through red, yellow, green, cyan, blue, magenta and back.
constexpr std::uint32_t wheelColor(int index)
{
    const int hue = (index - ACAD_COLOR_WHEEL_FIRST) / 10;
    const int level = (10 * (index / 10 + 1) - index) / 2;
    int r = 0;
    int g = 0;
    int b = 0;
    if (hue <= 3) {
        r = 4;
        g = hue;
    } else if (hue <= 7) {
        r = 8 - hue;
        g = 4;
    } else if (hue <= 11) {
        g = 4;
        b = hue - 8;
    } else if (hue <= 15) {
        g = 16 - hue;
        b = 4;
    } else if (hue <= 19) {
        r = hue - 16;
        b = 4;
    } else {
        r = 4;
        b = 24 - hue;
    }
    return pack(wheelPart(index, r, level), wheelPart(index, g, level), wheelPart(index, b, level));
}

struct Palette {
    std::uint32_t packed[paletteSize];
};

constexpr Palette makePalette()
{
    Palette palette{};
    for (int index = 0; index < paletteSize; ++index) {
        if (index < ACAD_COLOR_WHEEL_FIRST)
            palette.packed[index] = fixedColors[index];
        else if (index <= ACAD_COLOR_WHEEL_LAST)
            palette.packed[index] = wheelColor(index);
        else
            palette.packed[index] = fixedColors[index - ACAD_COLOR_RAMP_FIRST + ACAD_COLOR_WHEEL_FIRST];
    }
    return palette;
}

constexpr Palette palette = makePalette();

struct ExactColor {
    long packed;
    int number;
};

constexpr ExactColor igesColors[] = {
    {0x000000, 8}, {0x0000FF, 4}, {0x00FF00, 3}, {0x00FFFF, 5},
    {0xFF0000, 2}, {0xFF00FF, 7}, {0xFFFF00, 6}, {0xFFFFFF, 1},
};

constexpr ExactColor dxfColors[] = {
    {0x000000, 7},   {0x0000FF, 1},   {0x00FF00, 3},   {0x00FFFF, 2},   {0x494949, 8},
    {0x545454, 250}, {0x757575, 251}, {0x969696, 252}, {0xBABABA, 253}, {0xCACACA, 9},
    {0xDBDBDB, 254}, {0xFF0000, 5},   {0xFF00FF, 6},   {0xFFFF00, 4},   {0xFFFFFF, 7},
};

// The number of a colour that stands in the table as a whole number, else 0.
template <std::size_t count>
int exactNumber(const ExactColor (&table)[count], long rgb)
{
    for (const ExactColor &row : table)
        if (row.packed == rgb)
            return row.number;
    return 0;
}

// The three parts of a colour, red first.
struct Parts {
    int at[3];
};

// With m the middle and n > 0 the lowest part, k = 2.0 - m / n tells how much grey goes: the middle part becomes
// trunc(m - k * n + 0.5), the lowest 0. m - k * n is the whole number 2 * (m - n), and k > 0 where m < 2 * n. Without a
// part strictly between, blue is the middle one. A lowest part of 0 leaves all as it is.
void removeGrey(Parts &parts, int lowest, int highest)
{
    const int r = parts.at[0];
    const int g = parts.at[1];
    const int greenOrBlue = g > lowest && g < highest ? 1 : 2;
    const int middle = r > lowest && r < highest ? 0 : greenOrBlue;
    const int low = r == lowest ? 0 : g == lowest ? 1 : 2;
    const int m = parts.at[middle];
    const bool grey = m < 2 * lowest;
    parts.at[middle] = grey ? 2 * (m - lowest) : m;
    parts.at[low] = grey ? 0 : parts.at[low];
}

// The hues go round in three stretches of eight, red to green, green to blue and blue to red. A stretch that begins at
// `base` takes one step for each quarter of the lesser of its two parts in the greater, base + t(second, first) in its
// first half and base + 8 - t(first, second) in its second, where t(x, y) is trunc(4.0 * x / y + 0.5).
int hueNumber(const Parts &parts)
{
    const int r = parts.at[0];
    const int g = parts.at[1];
    const int b = parts.at[2];
    const bool redToGreen = b == 0;
    const bool greenToBlue = r == 0;
    const int first = redToGreen ? r : greenToBlue ? g : b;
    const int second = redToGreen ? g : greenToBlue ? b : r;
    const int base = redToGreen ? 1 : greenToBlue ? 9 : 17;
    const int greater = std::max(first, second);
    const int lesser8 = 8 * std::min(first, second);
    const int step =
        (lesser8 >= greater) + (lesser8 >= 3 * greater) + (lesser8 >= 5 * greater) + (lesser8 >= 7 * greater);
    return first > second ? base + step : base + 8 - step;
}

int brightnessOffset(int highest)
{
    return 2 * ((highest <= 210) + (highest <= 146) + (highest <= 100) + (highest <= 54));
}

} // namespace

int vColor::ConvRGB2IGES(long rgb) { return exactNumber(igesColors, rgb); }

int vColor::ConvRGB2DXF(long rgb)
{
    Parts parts = {
        {static_cast<int>(rgb & 0xff), static_cast<int>((rgb >> 8) & 0xff), static_cast<int>((rgb >> 16) & 0xff)}};
    const int highest = std::max({parts.at[0], parts.at[1], parts.at[2]});
    const int lowest = std::min({parts.at[0], parts.at[1], parts.at[2]});
    if (lowest == highest || (lowest == 0 && highest == 255)) { // the exact values are greys and pure colours
        const int exact = exactNumber(dxfColors, rgb);
        if (exact != 0)
            return exact;
        if (highest == 0)
            return 7;
    }
    const int pale = lowest > 0 && highest <= 3 * lowest;
    removeGrey(parts, lowest, highest);
    const int number = hueNumber(parts);
    return 10 * (number > 24 ? 1 : number) + pale + brightnessOffset(highest);
}

long vColor::ConvDXF2RGB(int index)
{
    if (index < 0 || index >= paletteSize)
        return 0;
    return static_cast<long>(palette.packed[index]);
}

int vColorName::Conv(long rgb, karString &out, int)
{
    out.format("RGB(%d,%d,%d)", static_cast<int>(rgb & 0xff), static_cast<int>((rgb >> 8) & 0xff),
               static_cast<int>((rgb >> 16) & 0xff));
    return 0;
}

namespace {

// The number in the text from `from` up to `end`, which becomes its terminator; at most 255.
int readPart(const char *from, char *end)
{
    *end = '\0';
    karString part(from);
    part.trim();
    int value = 0;
    part.s2int(value); // gives 0 for what it refuses
    return value > 255 ? 255 : value;
}

} // namespace

long vColorName::Conv(const char *text)
{
    karString copy(text);
    char *const start = copy;
    char *const name = start ? std::strstr(start, "RGB") : nullptr;
    char *const open = name ? std::strchr(name, '(') : nullptr;
    char *const firstComma = open ? std::strchr(open, ',') : nullptr;
    if (!firstComma)
        return 0;
    // Each part is read before the next mark is looked for: what it leaves in `errno` stays if that mark is missing.
    const int red = readPart(open + 1, firstComma);
    char *const secondComma = std::strchr(firstComma + 1, ',');
    if (!secondComma)
        return 0;
    const int green = readPart(firstComma + 1, secondComma);
    char *const close = std::strchr(secondComma + 1, ')');
    if (!close)
        return 0;
    const int blue = readPart(secondComma + 1, close);
    return kar::wrapAdd(kar::wrapAdd(kar::wrapMul(blue, 0x10000), kar::wrapMul(green, 0x100)), red);
}
