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

#include <csignal>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

// A standard stream that is closed would otherwise be taken for the first file that is opened.
void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDERR_FILENO ? O_WRONLY : O_RDONLY); // takes the lowest number that is free
}

// Throws `OutputError` before the work is done.
void checkPlaces(const Options &options)
{
    for (const std::string &place : {options.svg, options.dxf, options.json, options.csv, options.text})
        if (!place.empty() && !isStream(place))
            SaveFile probe(place);
}

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
        // The parser's writer wants a file of its own, also on the way to standard output.
        const bool stream = isStream(options.dxf);
        std::error_code none;
        const std::filesystem::path folder = std::filesystem::temp_directory_path(none);
        const std::filesystem::path elsewhere = (folder.empty() ? "/tmp" : folder) / "kartory-drawing.dxf";
        SaveFile file(stream ? elsewhere.string() : options.dxf);
        if (!writeDxf(file.temporary(), results.picture, results.drawing))
            throw OutputError(options.dxf + ": " + bytesOf(text("can't be written")));
        if (stream)
            saveWhole(options.dxf, readFile(file.temporary()));
        else
            file.commit();
    }
    if (!options.json.empty())
        saveWhole(options.json, toJson(results, filter));
    if (!options.csv.empty())
        saveWhole(options.csv, toCsv(results));
    if (!options.text.empty()) {
        std::ostringstream report;
        printReport(report, results);
        saveWhole(options.text, report.str());
    }
}

void tell(const Results &results)
{
    printReport(std::cout, results);
    std::cout.flush();
    if (!std::cout)
        throw OutputError(bytesOf(text("the report can't be written")));
}

int run(const Options &options, Console &console)
{
    checkPlaces(options);
    TerminalCtrl ctrl(console);
    karFilter filter(&ctrl);
    new FiguresTask(console);
    Results results;
    results.path = options.path;
    work(options, results, filter);
    console.clearBar();
    tellFindings(filter);
    const bool outputTaken = options.svg == "-" || options.dxf == "-" || options.json == "-" || options.csv == "-";
    if (filter.getBreak() != BreakNone) { // what was done is reported, but no file is written
        tell(results);
        return ExitStopped;
    }
    writeFiles(options, results, filter);
    // The report comes last: a reader that has seen enough of it ends the program.
    if (!outputTaken && options.text.empty())
        tell(results);
    return ExitDone;
}

} // namespace

int main(int argc, char **argv)
{
    occupyStandardStreams();
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows beyond its limit is a file that can't be written
    const Language language = chooseLanguage(languageChoice(argc, argv));
    Console console(language);
    Options options;
    std::string source = translated(language, "the command line");
    try {
        if (const auto status = readOptions(argc, argv, options))
            return *status;
        console.setLoudness(options.loudness);
        source = options.path == "-" ? translated(language, "standard input") : options.path;
        return run(options, console);
    } catch (const DrawingError &error) {
        errorText(0, "%s: %s", source.c_str(), error.what());
        return ExitUnreadable;
    } catch (const std::bad_alloc &) {
        // Not by `text`, which wants memory itself.
        errorText(0, "%s: %s", source.c_str(), translated(language, "is too large for the memory"));
        return ExitUnreadable;
    } catch (const OutputError &error) {
        console.clearBar();
        errorText(0, "%s", error.what());
        return ExitUnwritable;
    }
}
