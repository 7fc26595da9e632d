#include "dxfreader.h"

#include "dxftext.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>

#include <cmath>
#include <sstream>
#include <unordered_set>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double fullTurn = 6.283185307179586;

double radians(double degrees) { return degrees * (pi / 180.0); }

// The library's `new` gives null when memory ends.
template <class Made>
Made *required(Made *made)
{
    if (!made)
        throw DrawingError(text("is too large for the memory"));
    return made;
}

// Receives what dxflib reads. An entity goes to the block that is open, otherwise to the drawing.
class Reader : public DL_CreationAdapter {
public:
    Reader(Drawing &into, const std::string &groups, Phase &ownPhase)
        : drawing(into), target(&into.entities), text(groups), size(groups.size()), phase(ownPhase)
    {}

    void read()
    {
        DL_Dxf dxf;
        dxf.in(text, this);
    }

    void addBlock(const DL_BlockData &data) override
    {
        target = required(drawing.addBlock(data.name.c_str(), karD_Point(data.bpx, data.bpy)));
    }
    void endBlock() override
    {
        polyline = nullptr;
        target = &drawing.entities;
    }

    void addPoint(const DL_PointData &data) override { add(new PointEntity(own(), karD_Point(data.x, data.y))); }
    void addLine(const DL_LineData &data) override
    {
        add(new LineEntity(own(), karD_Point(data.x1, data.y1), karD_Point(data.x2, data.y2)));
    }
    void addArc(const DL_ArcData &data) override
    {
        add(new ArcEntity(EntityArc, own(), karD_Point(data.cx, data.cy), data.radius, normalised(radians(data.angle1)),
                          normalised(radians(data.angle2))));
    }
    void addCircle(const DL_CircleData &data) override
    {
        add(new ArcEntity(EntityCircle, own(), karD_Point(data.cx, data.cy), data.radius, 0.0, fullTurn));
    }
    void addEllipse(const DL_EllipseData &data) override
    {
        const double a = std::sqrt(data.mx * data.mx + data.my * data.my);
        add(new EllipseEntity(own(), karD_Point(data.cx, data.cy), a, a * data.ratio, std::atan2(data.my, data.mx),
                              data.angle1, data.angle2));
    }
    void addPolyline(const DL_PolylineData &data) override
    {
        constexpr int closedFlag = 1;
        polyline = add(new PolylineEntity(own(), (data.flags & closedFlag) != 0));
    }
    void addVertex(const DL_VertexData &data) override
    {
        if (polyline)
            polyline->vertices.push_back({karD_Point(data.x, data.y), data.bulge});
    }
    void addText(const DL_TextData &data) override
    {
        add(new TextEntity(own(), karD_Point(data.ipx, data.ipy), data.height, data.angle, data.text.c_str()));
    }
    void addInsert(const DL_InsertData &data) override
    {
        InsertEntity *insert = add(new InsertEntity(own(), data.name.c_str()));
        insert->at.Set(data.ipx, data.ipy);
        insert->scale.Set(data.sx, data.sy);
        insert->angle = radians(data.angle);
        insert->columns = data.cols;
        insert->rows = data.rows;
        insert->spacing.Set(data.colSp, data.rowSp);
    }

    void addXLine(const DL_XLineData &) override { other("XLINE"); }
    void addRay(const DL_RayData &) override { other("RAY"); }
    void addSpline(const DL_SplineData &) override { other("SPLINE"); }
    void addTrace(const DL_TraceData &) override { other("TRACE"); }
    void add3dFace(const DL_3dFaceData &) override { other("3DFACE"); }
    void addSolid(const DL_SolidData &) override { other("SOLID"); }
    void addMText(const DL_MTextData &) override { other("MTEXT"); }
    void addArcAlignedText(const DL_ArcAlignedTextData &) override { other("ARCALIGNEDTEXT"); }
    void addAttribute(const DL_AttributeData &) override { other("ATTRIB"); }
    void addDimAlign(const DL_DimensionData &, const DL_DimAlignedData &) override { other("DIMENSION"); }
    void addDimLinear(const DL_DimensionData &, const DL_DimLinearData &) override { other("DIMENSION"); }
    void addDimRadial(const DL_DimensionData &, const DL_DimRadialData &) override { other("DIMENSION"); }
    void addDimDiametric(const DL_DimensionData &, const DL_DimDiametricData &) override { other("DIMENSION"); }
    void addDimAngular(const DL_DimensionData &, const DL_DimAngular2LData &) override { other("DIMENSION"); }
    void addDimAngular3P(const DL_DimensionData &, const DL_DimAngular3PData &) override { other("DIMENSION"); }
    void addDimOrdinate(const DL_DimensionData &, const DL_DimOrdinateData &) override { other("DIMENSION"); }
    void addLeader(const DL_LeaderData &) override { other("LEADER"); }
    void addHatch(const DL_HatchData &) override { other("HATCH"); }
    void addImage(const DL_ImageData &) override { other("IMAGE"); }

private:
    static double normalised(double angle)
    {
        const double rest = std::fmod(angle, fullTurn);
        return rest < 0 ? rest + fullTurn : rest;
    }

    Attributes own()
    {
        const DL_Attributes read = getAttributes();
        Attributes result;
        result.layer = read.getLayer().c_str();
        result.handle = read.getHandle();
        result.colour = read.getColor();
        return result;
    }

    template <class Made>
    Made *add(Made *entity)
    {
        required(entity);
        if (!phase.next(static_cast<double>(text.tellg()) / static_cast<double>(size)))
            text.setstate(std::ios::eofbit); // the parser stops at what it takes for the end
        entity->order = ++count;
        target->ListAppend(entity);
        return entity;
    }

    void other(const char *name) { add(new OtherEntity(own(), name)); }

    Drawing &drawing;
    Block *target;
    PolylineEntity *polyline = nullptr; // takes the vertices that follow
    std::istringstream text;
    std::size_t size;
    Phase &phase;
    int count = 0;
};

// A block may insert others, but not itself, over however many steps.
class InsertCheck {
public:
    explicit InsertCheck(const Drawing &all) : drawing(all) {}

    void walk(const Block &block)
    {
        constexpr std::size_t deepest = 200;
        if (open.size() > deepest)
            throw DrawingError(textOf("inserts blocks more than %d deep", static_cast<int>(deepest)));
        for (const Entity *entity = block.ListFirst(); entity; entity = entity->next()) {
            if (entity->kind != EntityInsert)
                continue;
            const Block *inserted = drawing.block(static_cast<const InsertEntity *>(entity)->block);
            if (!inserted || done.count(inserted))
                continue;
            if (!open.insert(inserted).second)
                throw DrawingError(textOf("block \"%s\" inserts itself", static_cast<const char *>(inserted->name)));
            walk(*inserted);
            open.erase(inserted);
            done.insert(inserted);
        }
    }

private:
    const Drawing &drawing;
    std::unordered_set<const Block *> open;
    std::unordered_set<const Block *> done;
};

} // namespace

void readDxf(const std::string &path, Drawing &drawing, karFilter &filter)
{
    Phase phase(filter, 0, 30, "reading");
    readDxfText(checkedDxf(readFile(path)), drawing, phase);
}

void readDxfText(const std::string &groups, Drawing &drawing, Phase &phase)
{
    Reader(drawing, groups, phase).read();
    InsertCheck check(drawing);
    check.walk(drawing.entities);
    for (const Block *block = drawing.firstBlock(); block; block = block->nextBlock())
        check.walk(*block);
}
