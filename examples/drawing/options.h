// The command line.
#ifndef OPTIONS_H
#define OPTIONS_H

#include "console.h"
#include "corners.h"

#include <krkgeneral.h>

#include <optional>
#include <string>

struct Options {
    std::string path;
    std::string language; ///< "en", "de", or empty for that of the environment
    Loudness loudness = Loudness::Usual;
    karTransformationInfo transformation;
    std::optional<CornerForm> cornerForm;
    double cornerSize = 0.0;
    std::optional<karD_Point> nearTo;
    int mostPasses = 1000; ///< of one iteration
    std::string svg;       ///< files to write; empty for none, "-" for standard output
    std::string dxf;
    std::string json;
    std::string csv;
};

/// Reads the command line. What it gives is the exit status of a program that is done already: after `--help`, and with an
/// option that can't be read, which it has told then.
std::optional<int> readOptions(int argc, char **argv, Options &options);

#endif
