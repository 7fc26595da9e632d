// kartory-drawing: reads a DXF drawing with the library's lists and memory, and reports on it.
#include "console.h"
#include "dxfreader.h"
#include "dxftext.h"
#include "inventory.h"
#include "operation.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>

namespace {

// Exit statuses.
constexpr int unreadable = 2; // a drawing that can't be read
constexpr int stopped = 130;  // as a shell tells of Ctrl-C

struct Options {
    std::string path;
    std::string language;
    bool quiet = false;
    bool verbose = false;
};

int run(const Options &options, Console &console)
{
    TerminalCtrl ctrl(console);
    karFilter filter(&ctrl);
    new FiguresTask(console);
    Drawing drawing;
    infoText(1, text("Reading %s"), options.path.c_str());
    readDxf(options.path, drawing, filter);
    infoText(1, text("%d entities read"), drawing.entities.ListAnzahl());
    {
        Phase phase(filter, 30, 40, "sorting");
        if (phase.next(0))
            drawing.entities.sort();
    }
    console.clearBar();
    tellFindings(filter);
    std::cout << options.path << '\n';
    printInventory(std::cout, drawing);
    printMemory(std::cout);
    return filter.getBreak() == BreakNone ? 0 : stopped;
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Reads a DXF drawing and reports what it holds.", "kartory-drawing");
    Options options;
    app.add_option("FILE", options.path, "DXF drawing, text form")->required();
    app.add_option("--lang", options.language, "Language of messages and report; otherwise that of LANG")
        ->check(CLI::IsMember({"en", "de"}));
    CLI::Option *quiet = app.add_flag("-q,--quiet", options.quiet, "No messages but errors");
    app.add_flag("-v,--verbose", options.verbose, "More messages")->excludes(quiet);
    CLI11_PARSE(app, argc, argv);

    Console console(options.quiet     ? Loudness::Quiet
                    : options.verbose ? Loudness::Verbose
                                      : Loudness::Usual,
                    chooseLanguage(options.language));
    try {
        return run(options, console);
    } catch (const DrawingError &error) {
        errorText(0, "%s: %s", options.path.c_str(), error.what());
    } catch (const std::bad_alloc &) {
        errorText(0, "%s: %s", options.path.c_str(), static_cast<const char *>(text("is too large for the memory")));
    }
    return unreadable;
}
