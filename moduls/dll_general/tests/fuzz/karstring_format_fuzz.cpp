// `format` with generated formats and fitting arguments beside `snprintf`; a text and a number follow each conversion,
// so that an estimate which loses its step reads them wrongly.
#include "fuzzinput.h"
#include "karstring.h"

#pragma clang diagnostic ignored "-Wformat-nonliteral"
#pragma clang diagnostic ignored "-Wformat-security"

namespace {

template <class... Arguments>
void check(const std::string &start, const std::string &format, Arguments... arguments)
{
    karString s(start.c_str(), 0u);
    const int expected = std::snprintf(nullptr, 0, format.c_str(), arguments...);
    const int result = s.format(format.c_str(), arguments...);
    FUZZ_REQUIRE(s.size() % 8 == 0);
    if (expected < 0) {
        FUZZ_REQUIRE(result < 0 && s.isNull() && s.length() == 0);
        return;
    }
    std::string text(static_cast<std::size_t>(expected) + 1, '\0');
    std::snprintf(&text[0], text.size(), format.c_str(), arguments...);
    FUZZ_REQUIRE(result == expected);
    FUZZ_REQUIRE(s.length() == static_cast<unsigned>(expected));
    FUZZ_REQUIRE(s.size() > s.length());
    const karString &constant = s;
    FUZZ_REQUIRE(std::memcmp(static_cast<const char *>(constant), text.data(), text.size()) == 0);
}

// The conversion with no, one or two stars before its argument, then a text and a number.
template <class Value>
void checkStars(const std::string &start, const std::string &format, unsigned stars, int width, int precision,
                const char *text, Value value)
{
    if (stars == 0)
        check(start, format, value, text, width);
    else if (stars == 1)
        check(start, format, width, value, text, width);
    else
        check(start, format, width, precision, value, text, width);
}

// At most three digits in a row: behind "%F", which the estimate takes for a letter of length, "%%" and digits are a
// width, and memory is asked for that.
std::string ordinary(FuzzInput &input)
{
    std::string result;
    int digits = 0;
    for (const char c : input.text(input.below(20))) {
        digits = c >= '0' && c <= '9' ? digits + 1 : 0;
        result += c == '%' ? std::string("%%") : std::string(1, digits > 3 ? 'x' : c);
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t count)
{
    FuzzInput input(bytes, count);
    const std::string start = input.text(input.below(40));
    const std::string text = input.text(input.below(60));
    int width = static_cast<int>(input.below(200)) - 60;
    int precision = static_cast<int>(input.below(200)) - 60;
    unsigned stars = 0;

    std::string format = ordinary(input) + '%';
    for (unsigned flags = input.below(4); flags > 0; --flags)
        format += "-+ 0#"[input.below(5)];
    switch (input.below(3)) {
    case 0:
        format += std::to_string(input.below(200));
        break;
    case 1:
        format += '*';
        ++stars;
        break;
    default:
        break;
    }
    switch (input.below(4)) {
    case 0:
        format += '.' + std::to_string(input.below(200));
        break;
    case 1:
        format += ".*";
        if (stars == 0)
            width = precision;
        ++stars;
        break;
    case 2:
        format += '.';
        break;
    default:
        break;
    }
    const std::string behind = ordinary(input) + "%s" + ordinary(input) + "%d" + (input.below(8) == 0 ? "%" : "");
    const unsigned kind = input.below(16);
    const char integer = "diuxXo"[input.below(6)];
    const char real = "efgGEFaA"[input.below(8)];
    const double value = input.real();
    const auto whole = static_cast<int>(input.byte() << 24 | input.byte());
    const char *const other = text.c_str();
    const auto run = [&](const std::string &conversion, auto argument) {
        checkStars(start, format + conversion + behind, stars, width, precision, other, argument);
    };
    switch (kind) {
    case 0:
    case 1:
        run(std::string(1, integer), whole);
        break;
    case 2:
        run(std::string("h") + integer, whole);
        break;
    case 3:
        run(std::string("hh") + integer, whole);
        break;
    case 4:
        run(std::string("l") + integer, static_cast<long>(whole) * 65537);
        break;
    case 5:
        run(std::string("ll") + integer, static_cast<long long>(whole) * 65537);
        break;
    case 6:
        run(std::string("z") + integer, static_cast<std::size_t>(whole));
        break;
    case 7:
        run(std::string("j") + integer, static_cast<std::intmax_t>(whole));
        break;
    case 8:
        run(std::string("L") + real, static_cast<long double>(value));
        break;
    case 9:
        run(std::string("l") + real, value);
        break;
    case 10:
        run("c", whole & 0xff);
        break;
    case 11:
        run("p", static_cast<const void *>(other));
        break;
    case 12:
    case 13:
        run("s", other);
        break;
    default:
        run(std::string(1, real), value);
        break;
    }
    return 0;
}
