#include "dxftext.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
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
        ++number;
        return true;
    }

    int number = 0; // of the last line

private:
    std::string_view rest;
};

[[noreturn]] void fail(const char *fault, int line, std::string_view value)
{
    constexpr std::size_t longest = 40;
    throw DrawingError(textOf(fault, line, std::string(value.substr(0, longest)).c_str()));
}

template <class Number>
Number checkedNumber(std::string_view value, int line)
{
    const std::string_view text = !value.empty() && value.front() == '+' ? value.substr(1) : value;
    Number number{};
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault == std::errc::result_out_of_range)
        fail("line %d: \"%s\" is out of range", line, value);
    if (fault != std::errc() || end != text.data() + text.size())
        fail("line %d: \"%s\" is not a number", line, value);
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number))
            fail("line %d: \"%s\" is not a finite number", line, value);
    }
    return number;
}

// Counts that the parser takes on trust and makes room for at once.
bool isCount(std::string_view entity, int code)
{
    return (entity == "LWPOLYLINE" && code == 90) || (entity == "SPLINE" && code >= 72 && code <= 74) ||
           (entity == "LEADER" && code == 76) || (entity == "HATCH" && code >= 91 && code <= 97) ||
           (entity == "LTYPE" && code == 73);
}

} // namespace

std::string readFile(const std::string &path, const std::function<bool()> &isStopped)
{
    const bool isStandardInput = path == "-";
    std::error_code none;
    if (std::filesystem::is_directory(isStandardInput ? "/dev/stdin" : path, none))
        throw DrawingError(text("is a directory"));
    const auto close = [isStandardInput](std::FILE *opened) { isStandardInput ? 0 : std::fclose(opened); };
    std::unique_ptr<std::FILE, decltype(close)> file(isStandardInput ? stdin : nullptr, close);
    while (!file) {
        file.reset(std::fopen(path.c_str(), "rb"));
        if (file)
            break;
        if (errno != EINTR)
            throw DrawingError(std::strerror(errno));
        if (isStopped())
            return {};
    }
    // Piece by piece: a device may have no end.
    constexpr std::size_t megabyte = 1u << 20;
    constexpr int mostMegabytes = 1024;
    std::string content;
    while (!std::feof(file.get())) {
        const std::size_t size = content.size();
        if (size >= mostMegabytes * megabyte)
            throw DrawingError(textOf("is larger than %d MB", mostMegabytes));
        content.resize(size + megabyte);
        content.resize(size + std::fread(content.data() + size, 1, megabyte, file.get()));
        if (std::ferror(file.get()) == 0)
            continue;
        if (errno != EINTR)
            throw DrawingError(std::strerror(errno));
        if (isStopped())
            return {};
        std::clearerr(file.get());
    }
    if (content.empty())
        throw DrawingError(text("is empty"));
    return content;
}

std::string checkedDxf(std::string_view whole)
{
    constexpr std::size_t longestValue = 1000; // the parser reads lines of 1024 bytes
    if (whole.substr(0, binaryMark.size()) == binaryMark)
        throw DrawingError(text("is a binary DXF drawing; save it as a text DXF"));
    const auto lineCount = std::count(whole.begin(), whole.end(), '\n');
    std::string groups;
    groups.reserve(whole.size());
    Lines lines(whole);
    std::string_view line;
    std::string_view entity;
    bool anySection = false;
    while (lines.next(line)) {
        int code = 0;
        const auto [end, fault] = std::from_chars(line.data(), line.data() + line.size(), code);
        if (fault != std::errc() || end != line.data() + line.size() || code < lowestCode || code > highestCode) {
            if (!anySection)
                throw DrawingError(text("is not a DXF drawing"));
            fail("line %d: \"%s\" is not a group code", lines.number, line);
        }
        std::string_view value;
        if (!lines.next(value))
            break;
        if (code == 0)
            entity = value;
        if (isReal(code))
            checkedNumber<double>(value, lines.number);
        else if (isInteger(code)) {
            const auto number = checkedNumber<long long>(value, lines.number);
            if (isCount(entity, code) && (number < 0 || number > lineCount))
                fail("line %d: \"%s\" is no count of what the file holds", lines.number, value);
        }
        groups.append(line).append("\n").append(value.substr(0, longestValue)).append("\n");
        if (code == 0 && value == "EOF") {
            if (!anySection)
                throw DrawingError(text("has no section"));
            return groups;
        }
        anySection = anySection || (code == 0 && value == "SECTION");
    }
    throw DrawingError(anySection ? textOf("ends early: no EOF behind line %d", lines.number)
                                  : text("is not a DXF drawing"));
}
