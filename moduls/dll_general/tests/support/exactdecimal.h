// The exact decimal digits of a binary number by schoolbook arithmetic on single digits.
#ifndef KAR_TEST_EXACT_DECIMAL_H
#define KAR_TEST_EXACT_DECIMAL_H

#include <cmath>
#include <cstdint>
#include <string>

/// mantissa * 2^exponent as digits with a point: at least one before it, none behind it that isn't needed.
inline std::string exactDecimal(std::uint64_t mantissa, int exponent)
{
    std::string digits = std::to_string(mantissa); // without a point
    const auto times = [&digits](int factor) {
        int carry = 0;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
            carry += (*digit - '0') * factor;
            *digit = static_cast<char>('0' + carry % 10);
            carry /= 10;
        }
        if (carry)
            digits.insert(0, 1, static_cast<char>('0' + carry));
    };
    for (int i = 0; i < exponent; ++i)
        times(2);
    std::size_t places = 0;
    for (int i = 0; i > exponent; --i) { // a half is five tenths
        times(5);
        ++places;
    }
    if (digits.size() <= places)
        digits.insert(0, places + 1 - digits.size(), '0');
    std::string fraction = digits.substr(digits.size() - places);
    while (!fraction.empty() && fraction.back() == '0')
        fraction.pop_back();
    return digits.substr(0, digits.size() - places) + '.' + fraction;
}

/// The digits of a finite value that isn't negative.
inline std::string exactDecimal(double value)
{
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent); // 53 bits
    return exactDecimal(static_cast<std::uint64_t>(std::ldexp(fraction, 53)), exponent - 53);
}

/// Digits and a point, rounded half away from zero to so many places.
inline std::string roundedDecimal(std::string text, int places)
{
    const std::size_t point = text.find('.');
    const std::size_t end = point + 1 + static_cast<std::size_t>(places);
    if (text.size() <= end)
        return text + std::string(end - text.size(), '0');
    const bool up = text[end] >= '5';
    text.resize(end);
    for (std::size_t i = end; up && i-- > 0;) {
        if (text[i] == '.')
            continue;
        if (text[i] != '9') {
            ++text[i];
            return text;
        }
        text[i] = '0';
    }
    return up ? '1' + text : text;
}

#endif
