#include "dxftext.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace {

constexpr std::string_view binaryMark = "AutoCAD Binary DXF";
constexpr int lowestCode = -5;
constexpr int highestCode = 1071;

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool isReal(int code)
{
    return (code >= 10 && code <= 59) || (code >= 110 && code <= 149) || (code >= 210 && code <= 239) ||
           (code >= 460 && code <= 469) || (code >= 1010 && code <= 1059);
}

bool isInteger(int code)
{
    return (code >= 60 && code <= 99) || (code >= 170 && code <= 179) || (code >= 270 && code <= 289) ||
           (code >= 370 && code <= 389) || (code >= 400 && code <= 409) || (code >= 420 && code <= 429) ||
           (code >= 440 && code <= 449) || (code >= 1060 && code <= 1071);
}

// Lines of a text, counted from 1, with or without a carriage return.
class Lines {
public:
    explicit Lines(std::string_view whole) : rest(whole) {}

    bool next(std::string_view &line)
    {
        if (rest.empty())
            return false;
        const auto end = rest.find('\n');
        line = trimmed(rest.substr(0, end));
        const auto taken = end == std::string_view::npos ? rest.size() : end + 1;
        rest.remove_prefix(taken);
        read += taken;
        ++number;
        return true;
    }

    std::size_t read = 0; // characters up to the end of the last line
    int number = 0;       // of the last line

private:
    std::string_view rest;
};

[[noreturn]] void fail(int line, std::string_view value, const char *fault)
{
    constexpr std::size_t longest = 40;
    throw DrawingError("line " + std::to_string(line) + ": \"" + std::string(value.substr(0, longest)) + "\" " + fault);
}

template <class Number>
void checkNumber(std::string_view value, int line)
{
    const std::string_view text = !value.empty() && value.front() == '+' ? value.substr(1) : value;
    Number number{};
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault == std::errc::result_out_of_range)
        fail(line, value, "is out of range");
    if (fault != std::errc() || end != text.data() + text.size())
        fail(line, value, "is not a number");
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number))
            fail(line, value, "is not a finite number");
    }
}

// Length of the text up to the end of its EOF group.
std::size_t checkGroups(std::string_view text)
{
    Lines lines(text);
    std::string_view line;
    bool anySection = false;
    while (lines.next(line)) {
        int code = 0;
        const auto [end, fault] = std::from_chars(line.data(), line.data() + line.size(), code);
        if (fault != std::errc() || end != line.data() + line.size() || code < lowestCode || code > highestCode) {
            if (!anySection)
                throw DrawingError("is not a DXF drawing");
            fail(lines.number, line, "is not a group code");
        }
        std::string_view value;
        if (!lines.next(value))
            break;
        if (code == 0 && value == "EOF") {
            if (!anySection)
                throw DrawingError("has no section");
            return lines.read;
        }
        anySection = anySection || (code == 0 && value == "SECTION");
        if (isReal(code))
            checkNumber<double>(value, lines.number);
        else if (isInteger(code))
            checkNumber<long long>(value, lines.number);
    }
    throw DrawingError(anySection ? "ends early: no EOF behind line " + std::to_string(lines.number)
                                  : "is not a DXF drawing");
}

} // namespace

std::string readDxfText(const std::string &path)
{
    if (std::filesystem::is_directory(path))
        throw DrawingError("is a directory");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw DrawingError(std::strerror(errno));
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad())
        throw DrawingError("can't be read");
    if (text.empty())
        throw DrawingError("is empty");
    if (text.compare(0, binaryMark.size(), binaryMark) == 0)
        throw DrawingError("is a binary DXF drawing; save it as a text DXF");
    text.resize(checkGroups(text));
    return text;
}
