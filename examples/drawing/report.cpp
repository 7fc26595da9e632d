#include "report.h"

#include "numbers.h"

#include "texts.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <map>
#include <new>
#include <ostream>
#include <string>

namespace {

using Counts = std::array<int, entityKinds>;

void printRow(std::ostream &out, const std::string &layer, const std::string &kind, int count)
{
    out << "  " << std::left << std::setw(24) << layer << ' ' << std::setw(16) << kind << std::right << std::setw(9)
        << count << '\n';
}

// Counts entities by layer and kind, and the kinds that are only counted by their names.
class Census : public karFilterIdBase {
public:
    Census() : karFilterIdBase(static_cast<karFilterIdBase *>(this), static_cast<FilterMethod>(&Census::count))
    {
        setFilterHandler(static_cast<filterObjectID>(EntityOther), this, &Census::countOther);
    }

    std::map<std::string, Counts> layers;
    std::map<std::string, int> others;

private:
    errorCodesKARTORY count(karFilterObject *item)
    {
        const auto &entity = static_cast<const Entity &>(*item);
        ++layers[bytesOf(entity.attributes.layer)][static_cast<std::size_t>(entity.kind)];
        return KAR_SUCCESS;
    }
    errorCodesKARTORY countOther(karFilterObject *item)
    {
        ++others[bytesOf(static_cast<const OtherEntity &>(*item).name)];
        return count(item);
    }
};

void printInventory(std::ostream &out, const Drawing &drawing)
{
    Census census;
    for (Entity *entity = drawing.entities.ListFirst(); entity; entity = entity->next())
        if (census.filterObject(entity) < 0) // without memory for the table of its handlers
            throw std::bad_alloc();
    int blocks = 0;
    int inBlocks = 0;
    for (const Block *block = drawing.firstBlock(); block; block = block->nextBlock()) {
        ++blocks;
        inBlocks += block->ListAnzahl();
    }

    printRow(out, bytesOf(text("layer")), bytesOf(text("kind")), drawing.entities.ListAnzahl());
    for (const auto &[layer, counts] : census.layers)
        for (int kind = 0; kind < entityKinds; ++kind)
            if (counts[static_cast<std::size_t>(kind)] != 0)
                printRow(out, layer, kindName(static_cast<EntityKind>(kind)), counts[static_cast<std::size_t>(kind)]);
    if (!census.others.empty()) {
        out << text("Only counted:");
        for (const auto &[name, count] : census.others)
            out << ' ' << name << ' ' << count;
        out << '\n';
    }
    if (blocks != 0)
        out << textOf("Blocks: %d with %d entities", blocks, inBlocks) << '\n';
}

void printMemory(std::ostream &out)
{
    const karGlobalMemory &memory = *globalMemList;
    out << textOf(
               "Memory: %ld allocations, %ld heap blocks of %ld bytes now, large blocks %ld bytes now and %ld at most",
               memory.getAnzNew(), memory.getCurAnzNew(), memory.getCurSizeNew(), memory.curr_used_memory(),
               memory.max_used_memory())
        << '\n';
}

void printLayers(std::ostream &out, const Results &results)
{
    if (results.measures.lengths.empty())
        return;
    out << text("Layers: colour, length of the curves") << '\n';
    const int places = placesFor(results.measures.length);
    for (const auto &[layer, length] : results.measures.lengths)
        out << "    " << std::left << std::setw(24) << layer << ' ' << std::setw(20)
            << results.drawing.layerColour(layer.c_str()).name(false) << ' ' << decimal(length, places) << '\n';
    out << "    " << std::left << std::setw(24) << text("all layers") << ' ' << std::setw(20) << "" << ' '
        << decimal(results.measures.length, places) << '\n';
}

void printExtent(std::ostream &out, const std::string &name, const Extent &extent)
{
    if (!extent.any)
        return;
    const auto corners = [&extent](const karD_Rect &box) {
        const int places = placesFor(std::max(extent.exact.width(), extent.exact.height()));
        return "(" + decimal(box.left(), places) + ", " + decimal(box.bottom(), places) + ") (" +
               decimal(box.right(), places) + ", " + decimal(box.top(), places) + ")";
    };
    const karRect grid = extent.grid();
    out << "    " << std::left << std::setw(10) << name << ' ' << text("exact") << ' ' << corners(extent.exact) << "  "
        << text("sampled") << ' ' << corners(extent.sampled) << "  " << text("on the grid") << ' ' << grid.left() << ' '
        << grid.top() << ' ' << grid.right() << ' ' << grid.bottom() << '\n';
}

void printExtents(std::ostream &out, const Measures &measures)
{
    if (!measures.whole.any)
        return;
    out << text("Extents: lower left and upper right corner; grid boxes left, top, right, bottom with y downwards")
        << '\n';
    for (int kind = 0; kind < entityKinds; ++kind)
        printExtent(out, kindName(static_cast<EntityKind>(kind)), measures.kinds[static_cast<std::size_t>(kind)]);
    printExtent(out, bytesOf(text("whole")), measures.whole);
}

std::string placeText(const karD_Point &at, int places)
{
    return decimal(at.x(), places) + ", " + decimal(at.y(), places);
}

constexpr std::size_t mostRows = 10; // of a list in the text

void printRest(std::ostream &out, std::size_t count)
{
    if (count > mostRows)
        out << "    " << textOf("and %d more", static_cast<int>(count - mostRows)) << '\n';
}

void printCrossings(std::ostream &out, const Results &results, int places)
{
    out << textOf("Crossings: %d", static_cast<int>(results.crossings.size())) << '\n';
    for (std::size_t i = 0; i < results.crossings.size() && i < mostRows; ++i) {
        const Crossing &crossing = results.crossings[i];
        out << "    " << std::left << std::setw(24) << placeText(crossing.at, places) << ' '
            << nameOf(results.picture[crossing.first]) << ", " << nameOf(results.picture[crossing.second]) << '\n';
    }
    printRest(out, results.crossings.size());
}

void printFeet(std::ostream &out, const Results &results, int places)
{
    const std::string place = placeText(*results.nearTo, places);
    out << textOf("Nearest feet of perpendiculars from (%s)", place.c_str()) << '\n';
    for (std::size_t i = 0; i < results.feet.size() && i < mostRows; ++i) {
        const Foot &foot = results.feet[i];
        out << "    " << std::left << std::setw(24) << placeText(foot.at, places) << ' ' << text("distance") << ' '
            << std::setw(12) << decimal(foot.distance, places) << ' ' << nameOf(results.picture[foot.shape]) << '\n';
    }
    printRest(out, results.feet.size());
}

} // namespace

void printReport(std::ostream &out, const Results &results)
{
    out << results.path << '\n';
    printInventory(out, results.drawing);
    printLayers(out, results);
    printExtents(out, results.measures);
    const karD_Rect &box = results.measures.whole.exact;
    const int places = placesFor(std::max(box.width(), box.height()));
    if (results.cornerForm)
        out << textOf(*results.cornerForm == CornerForm::Fillet ? "Corners: %d blended" : "Corners: %d cut",
                      results.corners)
            << '\n';
    printCrossings(out, results, places);
    if (results.nearTo)
        printFeet(out, results, places);
    printMemory(out);
}
