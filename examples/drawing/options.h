// The command line.
#ifndef OPTIONS_H
#define OPTIONS_H

#include "console.h"
#include "corners.h"

#include <krkgeneral.h>

#include <optional>
#include <string>

enum ExitStatus : int {
    ExitDone,
    ExitWrongUse,
    ExitUnreadable,    ///< a drawing that can't be read
    ExitUnwritable,    ///< a file that can't be written
    ExitStopped = 130, ///< as a shell tells of Ctrl-C
};

struct Options {
    std::string path; ///< "-" for standard input
    Loudness loudness = Loudness::Usual;
    karTransformationInfo transformation;
    std::optional<CornerForm> cornerForm;
    double cornerSize = 0.0;
    std::optional<karD_Point> nearTo;
    int mostPasses = 1000; ///< of one iteration
    std::string svg;       ///< files to write; empty for none, "-" for standard output, which one of them has at most
    std::string dxf;
    std::string json;
    std::string csv;
    std::string text; ///< the report
};

/// The language that the command line chooses, whatever else stands there; empty where it doesn't.
std::string languageChoice(int argc, char **argv);

/// Reads the command line. What it gives is the exit status of a program that is done already: after `--help`, and with
/// an option that can't be read, which it has told the console then.
std::optional<int> readOptions(int argc, char **argv, Options &options);

#endif
