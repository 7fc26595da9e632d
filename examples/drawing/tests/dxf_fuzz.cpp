// Any groups as a drawing: it is refused with a sentence, or everything is done with it.
#include "console.h"
#include "dxfreader.h"
#include "dxftext.h"
#include "report.h"
#include "svg.h"

#include "fuzzinput.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

namespace {

const char *const names[] = {"LINE",     "POINT",  "ARC",    "CIRCLE",     "ELLIPSE", "LWPOLYLINE", "POLYLINE",
                             "VERTEX",   "SEQEND", "TEXT",   "INSERT",     "BLOCK",   "ENDBLK",     "SPLINE",
                             "HATCH",    "LEADER", "LAYER",  "TABLE",      "SECTION", "ENDSEC",     "DIMENSION",
                             "3DFACE",   "SOLID",  "MTEXT",  "ATTRIB",     "IMAGE",   "RAY",        "XLINE",
                             "ENTITIES", "BLOCKS", "TABLES", "DICTIONARY", "XRECORD", "LTYPE",      "STYLE"};
constexpr int codes[] = {0,  0,  0,  1,  2,  5,   6,   8,   10,  11,  12,  13,  20,  21,   22,   30,   31,  40, 41,
                         42, 43, 44, 45, 49, 50,  51,  62,  66,  70,  71,  72,  73,  74,   76,   90,   91,  92, 93,
                         97, 98, 75, 77, 78, 100, 102, 210, 220, 230, 330, 340, 420, 1000, 1001, 1040, 1070};
const char *const values[] = {"0",    "1",  "-1",   "2",     "3",          "0.5",   "10",     "1e6", "1e7",
                              "-1e9", "90", "6.28", "32767", "2147483647", "1e300", "1e-300", "256", "B"};

template <class Table>
auto pick(FuzzInput &input, const Table &table)
{
    return table[input.below(static_cast<unsigned>(std::size(table)))];
}

std::string drawingFrom(FuzzInput &input, std::size_t groups)
{
    std::string text = "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nB\n";
    for (std::size_t i = 0; i < groups; ++i) {
        const int code = pick(input, codes);
        text += std::to_string(code) + "\n";
        text += code == 0 || code == 2 ? pick(input, names) : pick(input, values);
        text += "\n";
    }
    return text + "0\nENDSEC\n0\nEOF\n";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Console console(Language::English);
    console.setLoudness(Loudness::Quiet);
    FuzzInput input(data, size);
    const bool raw = input.below(4) == 0;
    const std::string text = raw ? std::string(data, data + size) : drawingFrom(input, size / 2);
    karFilter filter;
    Results results;
    Drawing &drawing = results.drawing;
    try {
        {
            Phase phase(filter, 0, 30, "reading");
            readDxfText(checkedDxf(text), drawing, phase);
        }
        drawing.entities.sort();
        karTransformationInfo transformation;
        transformation.SetRotateZ(0.5).SetScaleX(2.0);
        results.picture = place(drawing, transformation, filter);
        if (results.picture.size() > 2000)
            return 0; // inserts in rows and columns: right, but slow
        workCorners(results.picture, raw ? CornerForm::Fillet : CornerForm::Chamfer, 0.25, filter);
        results.measures = measure(results.picture, filter);
        results.crossings = findCrossings(results.picture, 50, filter);
        results.nearTo = karD_Point(1.0, 2.0);
        results.feet = nearestFeet(results.picture, *results.nearTo, 50, filter);
        for (const Crossing &crossing : results.crossings)
            FUZZ_REQUIRE(std::isfinite(crossing.at.x()) && std::isfinite(crossing.at.y()));
        toSvg(results.picture, results.measures.whole, {});
        toJson(results, filter);
        toCsv(results);
    } catch (const DrawingError &error) {
        FUZZ_REQUIRE(*error.what() != '\0');
    }
    tellFindings(filter);
    return 0;
}
