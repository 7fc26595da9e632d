#include "options.h"

#include "piece.h"
#include "savefile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <vector>

namespace {

constexpr double largestAngle = 1e6; // radians

// What keeps a command line from being read; one line for the user.
class UseError : public std::runtime_error {
public:
    explicit UseError(const karString &text) : std::runtime_error(text) {}
};

[[noreturn]] void refuse(const char *option, const std::string &value, const char *form)
{
    throw UseError(textOf("%s: \"%s\" is not %s", option, value.c_str(), bytesOf(text(form))));
}

// `least` to `most` finite numbers with commas between them; none where the text is something else.
std::vector<double> numbers(const std::string &text, std::size_t least, std::size_t most)
{
    std::vector<double> result;
    const char *at = text.data();
    const char *const end = at + text.size();
    for (;;) {
        double value = 0;
        const auto [behind, fault] = std::from_chars(at, end, value);
        if (fault != std::errc() || !std::isfinite(value))
            return {};
        result.push_back(value);
        at = behind;
        if (at == end)
            break;
        if (*at++ != ',')
            return {};
    }
    return result.size() >= least && result.size() <= most ? result : std::vector<double>{};
}

// One "translate=X,Y", "rotate=DEGREES", "scale=S" or "scale=X,Y".
karTransformationInfo transformation(const std::string &value)
{
    constexpr const char *option = "--transform";
    karTransformationInfo info;
    const std::size_t mark = value.find('=');
    const std::string name = value.substr(0, mark);
    const std::string rest = mark == std::string::npos ? "" : value.substr(mark + 1);
    if (const auto move = numbers(rest, 2, 2); name == "translate" && !move.empty()) {
        info.SetTranslate(move[0], move[1], 0.0);
    } else if (const auto turn = numbers(rest, 1, 1); name == "rotate" && !turn.empty()) {
        const double angle = turn[0] * (pi / 180);
        if (std::fabs(angle) > largestAngle) // beyond, rounding shows
            refuse(option, value, "an angle of up to 1e6 radians");
        info.SetRotateZ(angle);
    } else if (const auto scale = numbers(rest, 1, 2); name == "scale" && !scale.empty()) {
        if (scale.front() == 0 || scale.back() == 0)
            refuse(option, value, "a scale that leaves anything to see");
        info.SetScale(scale.front(), scale.back(), scale.front());
    } else {
        refuse(option, value, "translate=X,Y, rotate=DEGREES or scale=X[,Y] with finite numbers");
    }
    return info;
}

void setCorners(Options &options, const char *option, CornerForm form, const std::string &size)
{
    const std::vector<double> value = numbers(size, 1, 1);
    if (value.empty() || !(value[0] > 0))
        refuse(option, size, "a number above 0");
    options.cornerForm = form;
    options.cornerSize = value[0];
}

void setPasses(Options &options, const std::string &value)
{
    constexpr int most = 1000000;
    const char *const end = value.data() + value.size();
    const auto [behind, fault] = std::from_chars(value.data(), end, options.mostPasses);
    if (fault != std::errc() || behind != end || options.mostPasses < 1 || options.mostPasses > most)
        refuse("--passes", value, "a whole number from 1 to 1000000");
}

// No result takes the place of the drawing or of another result.
void checkFiles(Options &options)
{
    namespace fs = std::filesystem;
    std::error_code none;
    std::vector<std::string> files;
    for (std::string *file : {&options.svg, &options.dxf, &options.json, &options.csv, &options.text}) {
        if (file->empty())
            continue;
        if (isStandardOutput(*file))
            *file = "-";
        else if (isStream(*file)) // a device takes anything
            continue;
        if (fs::equivalent(*file, options.path, none))
            throw UseError(textOf("%s: is the drawing itself", file->c_str()));
        const fs::path place = *file == "-" ? fs::path("-") : fs::weakly_canonical(fs::absolute(*file, none), none);
        const std::string name = place.empty() ? *file : place.string();
        if (std::find(files.begin(), files.end(), name) != files.end())
            throw UseError(textOf("%s: can't hold two results", file->c_str()));
        files.push_back(name);
    }
}

// What the parser tells, in the user's language.
karString describe(const CLI::App &app, const CLI::ParseError &error)
{
    const std::string told = error.what();
    if (dynamic_cast<const CLI::RequiredError *>(&error))
        return text("which drawing? FILE is missing");
    if (dynamic_cast<const CLI::ArgumentMismatch *>(&error))
        return textOf("%s: needs one value", told.substr(0, told.find(':')).c_str());
    std::vector<std::string> rest = app.remaining();
    rest.erase(std::remove(rest.begin(), rest.end(), "--"), rest.end());
    if (dynamic_cast<const CLI::ExtrasError *>(&error) && !rest.empty())
        return textOf(rest.front().size() > 1 && rest.front().front() == '-' ? "%s: no such option"
                                                                             : "%s: one drawing at a time",
                      rest.front().c_str());
    return karString(told.c_str());
}

// The texts of the options as the command line gives them.
struct Words {
    std::vector<std::string> transformations;
    std::string fillet;
    std::string chamfer;
    std::string nearTo;
    std::string passes;
    std::string language;
    bool quiet = false;
    bool verbose = false;
};

void describeOptions(CLI::App &app, Options &options, Words &words)
{
    const auto say = [](const char *english) { return std::string(bytesOf(text(english))); };
    const auto label = [&](const char *english) { app.get_formatter()->label(english, say(english)); };
    label("Usage");
    label("OPTIONS");
    label("Positionals");
    label("REQUIRED");
    app.get_formatter()->column_width(27);
    app.add_option("FILE", options.path, say("DXF drawing, text form; \"-\" is standard input"))
        ->required()
        ->type_name("");

    const std::string results = say("Results");
    const auto file = [&](const char *name, std::string &into, const char *description) {
        app.add_option(name, into, say(description))->type_name("FILE")->group(results);
    };
    file("--svg", options.svg, "Draws the picture into this file; \"-\" is standard output, here and below");
    file("--dxf", options.dxf, "Writes the picture as a drawing without blocks");
    file("--json", options.json, "Writes the report for programs");
    file("--csv", options.csv, "Writes the crossings as a table");
    file("--text", options.text, "Writes the report here and not to standard output");

    const std::string work = say("Work");
    app.add_option("--transform", words.transformations,
                   say("translate=X,Y, rotate=DEGREES or scale=X[,Y]; of several: scaled, turned, then moved"))
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE")
        ->group(work);
    const auto value = [&](const char *name, std::string &into, const char *type, const char *description) {
        app.add_option(name, into, say(description))->type_name(type)->group(work);
    };
    value("--fillet", words.fillet, "RADIUS", "Blends corners of lines by arcs of this radius");
    value("--chamfer", words.chamfer, "LENGTH", "Cuts corners of lines at this distance; not with --fillet");
    value("--nearest", words.nearTo, "X,Y", "Finds the nearest foot of a perpendicular on every curve");
    value("--passes", words.passes, "N", "The most passes of an iteration for crossings and feet; otherwise 1000");

    const std::string messages = say("Messages");
    app.add_option("--lang", words.language, say("Language of messages and report; otherwise that of LANG"))
        ->type_name("en|de")
        ->group(messages);
    app.add_flag("-q,--quiet", words.quiet, say("No messages but errors"))->group(messages);
    app.add_flag("-v,--verbose", words.verbose, say("More messages"))->group(messages);
    app.set_help_flag("-h,--help", say("Shows this and ends"))->group(messages);
    app.set_version_flag("--version", "kartory-drawing " KARTORY_DRAWING_VERSION, say("Shows the version and ends"))
        ->group(messages);
    app.footer(
        say("Exit status: 0 done, 1 wrong use, 2 unreadable drawing, 3 unwritable result, 130 stopped by Ctrl-C"));
}

// The parser would take the next word for a value that isn't there, be it an option or the drawing.
void checkWords(const CLI::App &app, int argc, char **argv)
{
    const auto demand = [](const std::string &name) { throw UseError(textOf("%s: needs one value", name.c_str())); };
    std::string waiting; // the option whose value comes next
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::size_t mark = word.compare(0, 2, "--") == 0 ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, mark);
        const CLI::Option *option = name.size() > 1 && name.front() == '-' ? app.get_option_no_throw(name) : nullptr;
        if (!waiting.empty() && (option || word == "--"))
            demand(waiting);
        if (word == "--")
            return;
        const bool isValue = !waiting.empty();
        waiting.clear();
        if (isValue || !option)
            continue;
        const bool isFlag = option->get_items_expected_max() == 0;
        if (isFlag && mark != std::string::npos)
            throw UseError(textOf("%s: takes no value", name.c_str()));
        if (mark != std::string::npos && mark + 1 == word.size())
            demand(name);
        if (!isFlag && mark == std::string::npos)
            waiting = name;
    }
}

// Both given: an empty value is given, too.
void exclude(const CLI::App &app, const char *one, const char *other)
{
    if (app.count(one) != 0 && app.count(other) != 0)
        throw UseError(textOf("%s and %s exclude each other", one, other));
}

void evaluate(const CLI::App &app, const Words &words, Options &options)
{
    if (options.path.empty())
        throw UseError(text("which drawing? FILE is missing"));
    for (const char *file : {"--svg", "--dxf", "--json", "--csv", "--text"})
        if (app.count(file) != 0 && app[file]->as<std::string>().empty())
            throw UseError(textOf("%s: needs one value", file));
    exclude(app, "--fillet", "--chamfer");
    exclude(app, "--quiet", "--verbose");
    if (app.count("--lang") != 0 && words.language != "en" && words.language != "de")
        refuse("--lang", words.language, "en or de");
    for (const std::string &one : words.transformations)
        options.transformation += transformation(one);
    if (app.count("--fillet") != 0)
        setCorners(options, "--fillet", CornerForm::Fillet, words.fillet);
    if (app.count("--chamfer") != 0)
        setCorners(options, "--chamfer", CornerForm::Chamfer, words.chamfer);
    if (app.count("--nearest") != 0) {
        const std::vector<double> place = numbers(words.nearTo, 2, 2);
        if (place.empty())
            refuse("--nearest", words.nearTo, "X,Y with finite numbers");
        if (std::max(std::fabs(place[0]), std::fabs(place[1])) > largestCoordinate)
            refuse("--nearest", words.nearTo, "a place of up to 1e15");
        options.nearTo = karD_Point(place[0], place[1]);
    }
    if (app.count("--passes") != 0)
        setPasses(options, words.passes);
    options.loudness = words.quiet ? Loudness::Quiet : words.verbose ? Loudness::Verbose : Loudness::Usual;
    checkFiles(options);
}

} // namespace

std::string languageChoice(int argc, char **argv)
{
    const std::string option = "--lang";
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == option && i + 1 < argc)
            return argv[i + 1];
        if (word.compare(0, option.size() + 1, option + "=") == 0)
            return word.substr(option.size() + 1);
    }
    return "";
}

std::optional<int> readOptions(int argc, char **argv, Options &options)
{
    CLI::App app(bytesOf(text("Reads a DXF drawing, reports on it and draws it.")), "kartory-drawing");
    Words words;
    describeOptions(app, options, words);
    try {
        checkWords(app, argc, argv);
        app.parse(argc, argv);
        evaluate(app, words, options);
    } catch (const CLI::Success &done) {
        const int status = app.exit(done); // help or version
        std::cout.flush();
        return std::cout ? status : ExitUnwritable;
    } catch (const CLI::ParseError &error) {
        errorText(0, text("%s (--help tells more)"), bytesOf(describe(app, error)));
        return ExitWrongUse;
    } catch (const UseError &error) {
        errorText(0, "%s", error.what());
        return ExitWrongUse;
    }
    return std::nullopt;
}
