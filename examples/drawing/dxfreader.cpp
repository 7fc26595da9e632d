#include "dxfreader.h"

#include "dxftext.h"
#include "piece.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>

#include <cmath>
#include <sstream>
#include <unordered_set>

namespace {

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

    void addLayer(const DL_LayerData &data) override
    {
        required(drawing.addLayer(data.name.c_str(), colour(getAttributes())) ? &drawing : nullptr);
    }
    void addBlock(const DL_BlockData &data) override
    {
        target = required(drawing.addBlock(data.name.c_str(), kar3D_Point(data.bpx, data.bpy, data.bpz)));
    }
    void endBlock() override
    {
        polyline = nullptr;
        target = &drawing.entities;
    }

    void addPoint(const DL_PointData &data) override
    {
        add(new PointEntity(own(), kar3D_Point(data.x, data.y, data.z)));
    }
    void addLine(const DL_LineData &data) override
    {
        add(new LineEntity(own(), kar3D_Point(data.x1, data.y1, data.z1), kar3D_Point(data.x2, data.y2, data.z2)));
    }
    void addArc(const DL_ArcData &data) override
    {
        add(new ArcEntity(EntityArc, own(), kar3D_Point(data.cx, data.cy, data.cz), data.radius, radians(data.angle1),
                          radians(data.angle2)));
    }
    void addCircle(const DL_CircleData &data) override
    {
        add(new ArcEntity(EntityCircle, own(), kar3D_Point(data.cx, data.cy, data.cz), data.radius, 0.0, fullTurn));
    }
    void addEllipse(const DL_EllipseData &data) override
    {
        add(new EllipseEntity(own(), kar3D_Point(data.cx, data.cy, data.cz), kar3D_Point(data.mx, data.my, data.mz),
                              data.ratio, data.angle1, data.angle2));
    }
    void addPolyline(const DL_PolylineData &data) override
    {
        constexpr int closedFlag = 1;
        constexpr int meshFlags = 16 | 64; // its vertices are no path
        if ((data.flags & meshFlags) != 0) {
            polyline = nullptr;
            other("MESH");
            return;
        }
        polyline = add(new PolylineEntity(own(), (data.flags & closedFlag) != 0));
        polyline->elevation = data.elevation;
    }
    void addVertex(const DL_VertexData &data) override
    {
        if (polyline)
            polyline->vertices.push_back({karD_Point(data.x, data.y), data.bulge});
    }
    void addText(const DL_TextData &data) override
    {
        // The place of an aligned text; what the file leaves out comes as not-a-number.
        const bool aligned = (data.hJustification != 0 || data.vJustification != 0) && std::isfinite(data.apx) &&
                             std::isfinite(data.apy);
        const kar3D_Point at =
            aligned ? kar3D_Point(data.apx, data.apy, data.ipz) : kar3D_Point(data.ipx, data.ipy, data.ipz);
        TextEntity *entity = add(new TextEntity(own(), at, data.height, data.angle, data.text.c_str()));
        entity->alignment = data.hJustification;
    }
    void addInsert(const DL_InsertData &data) override
    {
        InsertEntity *insert = add(new InsertEntity(own(), data.name.c_str()));
        insert->at.Set(data.ipx, data.ipy, data.ipz);
        insert->scale.Set(data.sx, data.sy, data.sz);
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
    // A DXF colour: 256 is that of the layer, 0 that of the block; a layer that is off has its index below 0.
    static karColor colour(const DL_Attributes &read)
    {
        constexpr int byLayer = 256;
        const int true24 = read.getColor24();
        if (true24 >= 0)
            return karColor(static_cast<unsigned char>((true24 >> 16) & 0xff),
                            static_cast<unsigned char>((true24 >> 8) & 0xff),
                            static_cast<unsigned char>(true24 & 0xff));
        const int index = read.getColor();
        if (index == byLayer)
            return karColor(FARBWERT_VONLAYER);
        if (index == 0)
            return karColor(FARBWERT_VONBLOCK);
        return karColor(static_cast<ACAD_Color>(index > 0 ? index : kar::wrapNeg(index)));
    }

    Attributes own()
    {
        const DL_Attributes read = getAttributes();
        Attributes result;
        result.layer = read.getLayer().c_str();
        result.handle = read.getHandle();
        result.colour = colour(read);
        result.onPaper = read.isInPaperSpace();
        const double *direction = getExtrusion()->getDirection();
        result.extrusion.Set(direction[0], direction[1], direction[2], false);
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
                throw DrawingError(textOf("block \"%s\" inserts itself", bytesOf(inserted->name)));
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
    Phase phase(filter, 0, 25, "reading");
    const std::string whole = readFile(path, [&phase] { return !phase.next(0); });
    if (filter.getBreak() == BreakNone)
        readDxfText(checkedDxf(whole), drawing, phase);
}

void readDxfText(const std::string &groups, Drawing &drawing, Phase &phase)
{
    Reader(drawing, groups, phase).read();
    InsertCheck check(drawing);
    check.walk(drawing.entities);
    for (const Block *block = drawing.firstBlock(); block; block = block->nextBlock())
        check.walk(*block);
}
