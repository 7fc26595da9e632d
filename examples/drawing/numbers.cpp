#include "numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace {

bool continues(unsigned char c) { return (c & 0xc0) == 0x80; }

// Bytes of the UTF-8 character at index i, 0 if there is none.
std::size_t characterAt(const std::string &text, std::size_t i)
{
    const auto byte = [&](std::size_t k) { return k < text.size() ? static_cast<unsigned char>(text[k]) : 0u; };
    const auto tail = [&](std::size_t k) { return continues(static_cast<unsigned char>(byte(k))); };
    const unsigned c = byte(i);
    if (c < 0x80)
        return 1;
    if (c >= 0xc2 && c <= 0xdf)
        return tail(i + 1) ? 2 : 0;
    if (c >= 0xe0 && c <= 0xef) {
        const unsigned second = byte(i + 1);
        const bool overlong = c == 0xe0 && second < 0xa0;
        const bool surrogate = c == 0xed && second >= 0xa0;
        const bool noCharacter = c == 0xef && second == 0xbf && byte(i + 2) >= 0xbe;
        return tail(i + 1) && tail(i + 2) && !overlong && !surrogate && !noCharacter ? 3 : 0;
    }
    if (c >= 0xf0 && c <= 0xf4) {
        const unsigned second = byte(i + 1);
        const bool inRange = (c != 0xf0 || second >= 0x90) && (c != 0xf4 || second < 0x90);
        return tail(i + 1) && tail(i + 2) && tail(i + 3) && inRange ? 4 : 0;
    }
    return 0;
}

} // namespace

std::string decimal(double value, int places)
{
    const int length = std::snprintf(nullptr, 0, "%.*f", places, value);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::snprintf(text.data(), text.size() + 1, "%.*f", places, value);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

int placesFor(double span)
{
    constexpr int most = 15;
    if (!(span > 0))
        return 6;
    return std::clamp(6 - static_cast<int>(std::floor(std::log10(span))), 0, most);
}

std::string hex(const karColor &colour)
{
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", unsigned{colour.red()}, unsigned{colour.green()},
                  unsigned{colour.blue()});
    return text;
}

std::string utf8(const std::string &text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = characterAt(text, i);
        const auto c = static_cast<unsigned char>(text[i]);
        if (length == 0) {
            result += static_cast<char>(0xc0 | (c >> 6));
            result += static_cast<char>(0x80 | (c & 0x3f));
        } else if (c >= ' ' && c != 0x7f) {
            result += text.substr(i, length);
        }
        i += std::max<std::size_t>(length, 1);
    }
    return result;
}
