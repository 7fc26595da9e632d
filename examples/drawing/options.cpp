#include "options.h"

#include "piece.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <vector>

namespace {

constexpr double largestAngle = 1e6; // radians

// Finite numbers with commas between them, `least` to `most` of them.
std::vector<double> numbers(const std::string &text, std::size_t least, std::size_t most)
{
    std::vector<double> result;
    const char *at = text.data();
    const char *const end = at + text.size();
    for (;;) {
        double value = 0;
        const auto [behind, fault] = std::from_chars(at, end, value);
        if (fault != std::errc() || !std::isfinite(value))
            throw CLI::ValidationError("\"" + text + "\" is not made of numbers");
        result.push_back(value);
        at = behind;
        if (at == end)
            break;
        if (*at++ != ',')
            throw CLI::ValidationError("\"" + text + "\" is not made of numbers");
    }
    if (result.size() < least || result.size() > most)
        throw CLI::ValidationError("\"" + text + "\" has too few or too many numbers");
    return result;
}

// One "translate=X,Y", "rotate=DEGREES", "scale=S" or "scale=X,Y".
karTransformationInfo transformation(const std::string &text)
{
    karTransformationInfo info;
    const std::size_t mark = text.find('=');
    const std::string name = text.substr(0, mark);
    const std::string values = mark == std::string::npos ? "" : text.substr(mark + 1);
    if (name == "translate") {
        const std::vector<double> move = numbers(values, 2, 2);
        info.SetTranslate(move[0], move[1], 0.0);
    } else if (name == "rotate") {
        const double angle = numbers(values, 1, 1)[0] * (pi / 180);
        if (std::fabs(angle) > largestAngle) // the library brings an angle into range turn by turn
            throw CLI::ValidationError("\"" + text + "\" turns beyond 1e6 radians");
        info.SetRotateZ(angle);
    } else if (name == "scale") {
        const std::vector<double> scale = numbers(values, 1, 2);
        if (scale.front() == 0 || scale.back() == 0)
            throw CLI::ValidationError("\"" + text + "\" leaves nothing to see");
        info.SetScale(scale.front(), scale.back(), scale.front());
    } else {
        throw CLI::ValidationError("\"" + text + "\" is not translate=X,Y, rotate=DEGREES or scale=X[,Y]");
    }
    return info;
}

void setCorners(Options &options, CornerForm form, const std::string &size)
{
    options.cornerForm = form;
    options.cornerSize = numbers(size, 1, 1)[0];
    if (!(options.cornerSize > 0))
        throw CLI::ValidationError("\"" + size + "\" is not above 0");
}

} // namespace

std::optional<int> readOptions(int argc, char **argv, Options &options)
{
    CLI::App app("Reads a DXF drawing, reports on it and draws it.", "kartory-drawing");
    bool quiet = false;
    bool verbose = false;
    std::vector<std::string> transformations;
    std::string fillet;
    std::string chamfer;
    std::string nearTo;
    app.add_option("FILE", options.path, "DXF drawing, text form")->required();
    app.add_option("--transform", transformations,
                   "translate=X,Y, rotate=DEGREES or scale=X[,Y]; repeated, all count: scaled, then turned, then moved")
        ->allow_extra_args(false);
    CLI::Option *rounding = app.add_option("--fillet", fillet, "Blends corners of lines by arcs of this radius");
    app.add_option("--chamfer", chamfer, "Cuts corners of lines at this distance")->excludes(rounding);
    app.add_option("--nearest", nearTo, "X,Y: finds the nearest foot of a perpendicular on every curve");
    app.add_option("--passes", options.mostPasses, "The most passes of an iteration for crossings and feet")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--svg", options.svg, "Draws the picture into this file; \"-\" is standard output, here and below");
    app.add_option("--dxf", options.dxf, "Writes the picture as a drawing without blocks");
    app.add_option("--json", options.json, "Writes the report for programs");
    app.add_option("--csv", options.csv, "Writes the crossings as a table");
    app.add_option("--lang", options.language, "Language of messages and report; otherwise that of LANG")
        ->check(CLI::IsMember({"en", "de"}));
    CLI::Option *quietly = app.add_flag("-q,--quiet", quiet, "No messages but errors");
    app.add_flag("-v,--verbose", verbose, "More messages")->excludes(quietly);
    try {
        app.parse(argc, argv);
        for (const std::string &one : transformations)
            options.transformation += transformation(one);
        if (!fillet.empty())
            setCorners(options, CornerForm::Fillet, fillet);
        if (!chamfer.empty())
            setCorners(options, CornerForm::Chamfer, chamfer);
        if (!nearTo.empty()) {
            const std::vector<double> place = numbers(nearTo, 2, 2);
            options.nearTo = karD_Point(place[0], place[1]);
        }
    } catch (const CLI::ParseError &error) {
        return app.exit(error);
    }
    options.loudness = quiet ? Loudness::Quiet : verbose ? Loudness::Verbose : Loudness::Usual;
    return std::nullopt;
}
