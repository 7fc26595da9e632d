// The report for other programs: JSON and CSV.
#include "numbers.h"
#include "report.h"

#include <nlohmann/json.hpp>

#include <cstdio>

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const karD_Rect &box)
{
    return {{"left", box.left()}, {"bottom", box.bottom()}, {"right", box.right()}, {"top", box.top()}};
}

Json toJson(const karD_Point &p) { return {{"x", p.x()}, {"y", p.y()}}; }

Json toJson(const Extent &extent)
{
    const karRect grid = extent.grid();
    return {{"exact", toJson(extent.exact)},
            {"sampled", toJson(extent.sampled)},
            {"grid", {{"left", grid.left()}, {"top", grid.top()}, {"right", grid.right()}, {"bottom", grid.bottom()}}}};
}

Json toJson(const Shape &shape)
{
    Json result{{"kind", kindName(shape.kind)}, {"layer", utf8(shape.layer)}};
    const std::string handle = handleOf(shape);
    if (!handle.empty())
        result["handle"] = handle;
    return result;
}

Json extentsOf(const Measures &measures)
{
    Json result = Json::object();
    for (int kind = 0; kind < entityKinds; ++kind) {
        const Extent &extent = measures.kinds[static_cast<std::size_t>(kind)];
        if (extent.any)
            result[kindName(static_cast<EntityKind>(kind))] = toJson(extent);
    }
    if (measures.whole.any)
        result["whole"] = toJson(measures.whole);
    return result;
}

Json layersOf(const Results &results)
{
    Json result = Json::array();
    for (const auto &[layer, length] : results.measures.lengths) {
        const karColor colour = results.drawing.layerColour(layer.c_str());
        result.push_back(
            {{"name", utf8(layer)}, {"colour", {colour.red(), colour.green(), colour.blue()}}, {"length", length}});
    }
    return result;
}

// A field with a comma, a quotation mark or a line break stands in quotation marks.
std::string field(const std::string &text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string result = "\"";
    for (const char c : text)
        result += c == '"' ? std::string("\"\"") : std::string(1, c);
    return result + "\"";
}

std::string exactly(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string fieldsOf(const Shape &shape)
{
    return field(kindName(shape.kind)) + "," + field(utf8(shape.layer)) + "," + field(handleOf(shape));
}

} // namespace

std::string toJson(const Results &results, karFilter &filter)
{
    Json report{{"file", utf8(results.path)},       {"entities", results.drawing.entities.ListAnzahl()},
                {"placed", results.picture.size()}, {"length", results.measures.length},
                {"layers", layersOf(results)},      {"extents", extentsOf(results.measures)}};
    if (results.cornerForm)
        report[*results.cornerForm == CornerForm::Fillet ? "fillets" : "chamfers"] = results.corners;
    Json &crossings = report["crossings"] = Json::array();
    for (const Crossing &crossing : results.crossings) {
        Json one = toJson(crossing.at);
        one["first"] = toJson(results.picture[crossing.first]);
        one["second"] = toJson(results.picture[crossing.second]);
        crossings.push_back(std::move(one));
    }
    if (results.nearTo) {
        Json &feet = report["nearest"] = {{"to", toJson(*results.nearTo)}, {"feet", Json::array()}};
        for (const Foot &foot : results.feet) {
            Json one = toJson(foot.at);
            one["distance"] = foot.distance;
            one["on"] = toJson(results.picture[foot.shape]);
            feet["feet"].push_back(std::move(one));
        }
    }
    Json &findings = report["findings"] = Json::array();
    for (karMessageLBase *element = firstFinding(filter); element; element = element->next())
        findings.push_back(utf8(bytesOf(describe(*element->getMessage()))));
    report["stopped"] = filter.getBreak() != BreakNone;
    return report.dump(2) + "\n";
}

std::string toCsv(const Results &results)
{
    std::string table = "x,y,kind 1,layer 1,handle 1,kind 2,layer 2,handle 2\n";
    for (const Crossing &crossing : results.crossings)
        table += exactly(crossing.at.x()) + "," + exactly(crossing.at.y()) + "," +
                 fieldsOf(results.picture[crossing.first]) + "," + fieldsOf(results.picture[crossing.second]) + "\n";
    return table;
}
