// What the program tells of a drawing.
#ifndef REPORT_H
#define REPORT_H

#include "measure.h"
#include "picture.h"

#include <iosfwd>
#include <string>

/// All that was found out; after a break, all up to there.
struct Results {
    std::string path;
    Drawing drawing;
    Picture picture;
    Measures measures;
};

/// For a reader, in the language of the console.
void printReport(std::ostream &out, const Results &results);

#endif
