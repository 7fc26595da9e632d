#include "vcolor.h"

#include "karnumeric.h"
#include "karstring.h"
#include "vcolornames.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr int wheelFirst = 10;
constexpr int wheelLast = 249;
constexpr int paletteSize = 256;

constexpr std::uint32_t pack(int r, int g, int b) { return static_cast<std::uint32_t>(r | (g << 8) | (b << 16)); }

// The fixed indices: 0 to 9 stand at their place, 250 to 255 behind them.
constexpr std::uint32_t fixedColors[] = {
    pack(0, 0, 0),       pack(255, 0, 0),     pack(255, 255, 0),   pack(0, 255, 0),
    pack(0, 255, 255),   pack(0, 0, 255),     pack(255, 0, 255),   pack(255, 255, 255),
    pack(128, 128, 128), pack(192, 192, 192),
    pack(32, 32, 32),    pack(64, 64, 64),    pack(96, 96, 96),    pack(144, 144, 144),
    pack(176, 176, 176), pack(224, 224, 224),
};

constexpr int wheelPart(int index, int share, int level)
{
    return index % 2 == 0 ? share * level * 255 / 20 : share * level * 255 / 40 + 127;
}

// All divisions truncate. The shares run from 0 to 4 through red, yellow, green, cyan, blue, magenta and back.
constexpr std::uint32_t wheelColor(int index)
{
    const int hue = (index - wheelFirst) / 10;
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
        if (index < wheelFirst)
            palette.packed[index] = fixedColors[index];
        else if (index <= wheelLast)
            palette.packed[index] = wheelColor(index);
        else
            palette.packed[index] = fixedColors[index - wheelLast - 1 + wheelFirst];
    }
    return palette;
}

constexpr Palette palette = makePalette();

// trunc(4.0 * x / y + 0.5) for 0 <= x <= y and y > 0, as a count of the limits that x / y has reached.
int hueStep(int x, int y)
{
    const int x8 = 8 * x;
    return (x8 >= y) + (x8 >= 3 * y) + (x8 >= 5 * y) + (x8 >= 7 * y);
}

int hueNumber(int r, int g, int b)
{
    if (b == 0)
        return r > g ? 1 + hueStep(g, r) : 9 - hueStep(r, g);
    if (r == 0)
        return g > b ? 9 + hueStep(b, g) : 17 - hueStep(g, b);
    return b > r ? 17 + hueStep(r, b) : 25 - hueStep(b, r);
}

// With m the middle and n > 0 the lowest part, k = 2.0 - m / n tells how much grey goes: the middle part becomes
// trunc(m - k * n + 0.5), the lowest 0. m - k * n is the whole number 2 * (m - n), and k is above 0 if m is below 2 * n.
void removeGrey(int &r, int &g, int &b, int lowest, int highest)
{
    int &middlePart = r > lowest && r < highest ? r : g > lowest && g < highest ? g : b;
    int &lowestPart = r == lowest ? r : g == lowest ? g : b;
    if (middlePart >= 2 * lowest)
        return;
    middlePart = 2 * (middlePart - lowest);
    lowestPart = 0;
}

int brightnessOffset(int highest)
{
    return 2 * ((highest <= 210) + (highest <= 146) + (highest <= 100) + (highest <= 54));
}

} // namespace

int vColor::ConvRGB2IGES(long rgb)
{
    switch (rgb) {
    case 0x000000: return 8;
    case 0x0000FF: return 4;
    case 0x00FF00: return 3;
    case 0x00FFFF: return 5;
    case 0xFF0000: return 2;
    case 0xFF00FF: return 7;
    case 0xFFFF00: return 6;
    case 0xFFFFFF: return 1;
    default: return 0;
    }
}

int vColor::ConvRGB2DXF(long rgb)
{
    switch (rgb) {
    case 0x000000: return 7;
    case 0x0000FF: return 1;
    case 0x00FF00: return 3;
    case 0x00FFFF: return 2;
    case 0x494949: return 8;
    case 0x545454: return 250;
    case 0x757575: return 251;
    case 0x969696: return 252;
    case 0xBABABA: return 253;
    case 0xCACACA: return 9;
    case 0xDBDBDB: return 254;
    case 0xFF0000: return 5;
    case 0xFF00FF: return 6;
    case 0xFFFF00: return 4;
    case 0xFFFFFF: return 7;
    default: break;
    }
    int r = static_cast<int>(rgb & 0xff);
    int g = static_cast<int>((rgb >> 8) & 0xff);
    int b = static_cast<int>((rgb >> 16) & 0xff);
    const int highest = r > g ? (r > b ? r : b) : (g > b ? g : b);
    const int lowest = r < g ? (r < b ? r : b) : (g < b ? g : b);
    if (highest == 0)
        return 7;
    const int pale = lowest > 0 && highest <= 3 * lowest;
    if (lowest > 0)
        removeGrey(r, g, b, lowest, highest);
    const int number = hueNumber(r, g, b);
    return 10 * (number > 24 || number < 1 ? 1 : number) + pale + brightnessOffset(highest);
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
    part.ltrim(nullptr);
    part.rtrim(nullptr);
    int value = 0;
    part.s2int(value); // gives 0 for what it refuses
    return value > 255 ? 255 : value;
}

} // namespace

long vColorName::Conv(const char *text)
{
    karString copy(text);
    char *const start = copy;
    char *const name = start != nullptr ? std::strstr(start, "RGB") : nullptr;
    char *const open = name != nullptr ? std::strchr(name, '(') : nullptr;
    char *const firstComma = open != nullptr ? std::strchr(open, ',') : nullptr;
    if (firstComma == nullptr)
        return 0;
    char *const secondComma = std::strchr(firstComma + 1, ',');
    if (secondComma == nullptr)
        return 0;
    char *const close = std::strchr(secondComma + 1, ')');
    if (close == nullptr)
        return 0;
    const int red = readPart(open + 1, firstComma);
    const int green = readPart(firstComma + 1, secondComma);
    const int blue = readPart(secondComma + 1, close);
    return kar::wrapAdd(kar::wrapAdd(kar::wrapMul(blue, 0x10000), kar::wrapMul(green, 0x100)), red);
}
