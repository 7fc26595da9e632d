// Numbers in texts: `s2int` and `s2double` on any bytes beside the C library, real numbers to text beside exact digits.
#include "exactdecimal.h"
#include "fuzzinput.h"
#include "karstring.h"

#include <algorithm>
#include <cerrno>
#include <climits>

namespace {

std::string textOf(const karString &s) { return static_cast<const char *>(s); }

std::string withoutControls(std::string text)
{
    while (!text.empty() && static_cast<signed char>(text.back()) < 32)
        text.pop_back();
    return text;
}

bool sameNumber(double a, double b) { return a == b && std::signbit(a) == std::signbit(b); }

void checkWhole(const std::string &text)
{
    karString s(text.c_str());
    int value = 1;
    errno = 0;
    const int result = s.s2int(value);
    const std::string kept = withoutControls(text);
    FUZZ_REQUIRE(textOf(s) == kept && s.length() == kept.size());
    if (kept.find_first_not_of("0123456789") == std::string::npos) {
        errno = 0;
        const long long expected = kept.empty() ? 0 : std::strtoll(kept.c_str(), nullptr, 10);
        FUZZ_REQUIRE(result == 0 && value == std::min<long long>(expected, INT_MAX));
        return;
    }
    char *end = nullptr;
    errno = 0;
    const long long number = std::strtoll(kept.c_str(), &end, 16);
    const bool isNumber = *end == '\0' && errno == 0 && number >= INT_MIN && number <= INT_MAX;
    FUZZ_REQUIRE(result == (isNumber ? 0 : -120));
    FUZZ_REQUIRE(value == (isNumber ? number : 0));
}

void checkReal(const std::string &text)
{
    karString s(text.c_str());
    double value = 1;
    const int result = s.s2double(value);
    const std::string kept = withoutControls(text);
    FUZZ_REQUIRE(textOf(s) == kept && s.length() == kept.size());
    if (kept.find_first_not_of("0123456789-.") == std::string::npos)
        FUZZ_REQUIRE(result == 0 && sameNumber(value, std::strtod(kept.c_str(), nullptr)));
    else
        FUZZ_REQUIRE(result == -120 && sameNumber(value, 0.0));
}

void checkText(double value, int decimals)
{
    const std::string text = textOf(karString(value, decimals, false));
    const std::string stripped = textOf(karString(value, decimals, true));
    if (!std::isfinite(value)) {
        FUZZ_REQUIRE(text == (std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf") && stripped == text);
        return;
    }
    const std::string exact = exactDecimal(std::fabs(value));
    std::string expected = roundedDecimal(exact, decimals);
    if (value != 0 && expected.find_first_not_of("0.") == std::string::npos)
        expected = "0." + std::string(exact.find_first_not_of("0.") - 2, '0');
    if (std::signbit(value))
        expected.insert(0, 1, '-');
    FUZZ_REQUIRE(text == expected);
    expected.erase(expected.find_last_not_of('0') + 1);
    if (expected.back() == '.')
        expected.pop_back();
    FUZZ_REQUIRE(stripped == expected);
    karString back(text.c_str());
    double number = 0;
    FUZZ_REQUIRE(back.s2double(number) == KAR_SUCCESS);
    if (decimals >= 1074)
        FUZZ_REQUIRE(sameNumber(number, value));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t count)
{
    FuzzInput input(bytes, count);
    switch (input.below(4)) {
    case 0:
        checkWhole(input.rest());
        break;
    case 1:
        checkReal(input.rest());
        break;
    case 2: { // the characters of numbers alone
        std::string text = input.rest();
        for (char &c : text)
            c = "0123456789.-"[static_cast<unsigned char>(c) % 12];
        checkReal(text);
        checkWhole(text);
        break;
    }
    default: {
        const double value = input.real();
        const int decimals = static_cast<int>(input.below(40) + (input.below(8) == 0 ? 1074 : 0));
        checkText(value, decimals);
        int exponent = 0;
        const double fraction = std::frexp(value, &exponent); // the usual magnitudes too
        checkText(std::ldexp(fraction, static_cast<int>(input.below(128)) - 64), decimals);
        break;
    }
    }
    return 0;
}
