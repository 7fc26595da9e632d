// kartory-drawing: reads a DXF drawing with the library's lists and memory, and reports on it.
#include "console.h"
#include "dxfreader.h"
#include "dxftext.h"
#include "dxfwriter.h"
#include "operation.h"
#include "options.h"
#include "report.h"
#include "savefile.h"
#include "svg.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

// Exit statuses.
constexpr int unreadable = 2; // a drawing that can't be read
constexpr int unwritable = 3; // a file that can't be written
constexpr int stopped = 130;  // as a shell tells of Ctrl-C

// Each step leaves at once what is done where a break was asked for.
void work(const Options &options, Results &results, karFilter &filter)
{
    infoText(1, text("Reading %s"), options.path.c_str());
    readDxf(options.path, results.drawing, filter);
    infoText(1, text("%d entities read"), results.drawing.entities.ListAnzahl());
    {
        Phase phase(filter, 25, 30, "sorting");
        if (phase.next(0))
            results.drawing.entities.sort();
    }
    results.picture = place(results.drawing, options.transformation, filter);
    results.cornerForm = options.cornerForm;
    if (options.cornerForm)
        results.corners = workCorners(results.picture, *options.cornerForm, options.cornerSize, filter);
    results.measures = measure(results.picture, filter);
    results.crossings = findCrossings(results.picture, options.mostPasses, filter);
    results.nearTo = options.nearTo;
    if (options.nearTo)
        results.feet = nearestFeet(results.picture, *options.nearTo, options.mostPasses, filter);
}

// Each file is there whole or not at all.
void writeFiles(const Options &options, const Results &results, karFilter &filter)
{
    if (!options.svg.empty()) {
        std::vector<karD_Point> marks;
        for (const Crossing &crossing : results.crossings)
            marks.push_back(crossing.at);
        saveWhole(options.svg, toSvg(results.picture, results.measures.whole, marks));
    }
    if (!options.dxf.empty()) {
        SaveFile file(options.dxf);
        if (!writeDxf(file.temporary(), results.picture, results.drawing))
            throw OutputError(options.dxf + ": " + static_cast<const char *>(text("can't be written")));
        file.commit();
    }
    if (!options.json.empty())
        saveWhole(options.json, toJson(results, filter));
    if (!options.csv.empty())
        saveWhole(options.csv, toCsv(results));
}

void tell(const Results &results)
{
    printReport(std::cout, results);
    std::cout.flush();
    if (!std::cout)
        throw OutputError(static_cast<const char *>(text("the report can't be written")));
}

int run(const Options &options, Console &console)
{
    TerminalCtrl ctrl(console);
    karFilter filter(&ctrl);
    new FiguresTask(console);
    Results results;
    results.path = options.path;
    work(options, results, filter);
    console.clearBar();
    tellFindings(filter);
    const bool filesOnly = options.svg == "-" || options.json == "-" || options.csv == "-";
    if (filter.getBreak() != BreakNone) { // what was done is reported, but no file is written
        tell(results);
        return stopped;
    }
    if (!filesOnly)
        tell(results);
    writeFiles(options, results, filter);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (const auto status = readOptions(argc, argv, options))
        return *status;
    Console console(options.loudness, chooseLanguage(options.language));
    try {
        return run(options, console);
    } catch (const DrawingError &error) {
        errorText(0, "%s: %s", options.path.c_str(), error.what());
        return unreadable;
    } catch (const std::bad_alloc &) {
        errorText(0, "%s: %s", options.path.c_str(), static_cast<const char *>(text("is too large for the memory")));
        return unreadable;
    } catch (const OutputError &error) {
        console.clearBar();
        errorText(0, "%s", error.what());
        return unwritable;
    }
}
