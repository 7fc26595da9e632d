// What the program tells of a drawing.
#ifndef REPORT_H
#define REPORT_H

#include "corners.h"
#include "crossings.h"
#include "measure.h"
#include "nearest.h"
#include "picture.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

/// All that was found out; after a break, all up to there.
struct Results {
    std::string path;
    Drawing drawing;
    Picture picture;
    std::optional<CornerForm> cornerForm;
    int corners = 0; ///< blended or cut
    Measures measures;
    std::vector<Crossing> crossings;
    std::optional<karD_Point> nearTo;
    std::vector<Foot> feet; ///< nearest to that point
};

/// For a reader, in the language of the console; of long lists the beginning.
void printReport(std::ostream &out, const Results &results);

/// All of it for a program, with the findings of the controller.
std::string toJson(const Results &results, karFilter &filter);

/// The crossings, one a row: place, then kind, layer and handle of both.
std::string toCsv(const Results &results);

#endif
