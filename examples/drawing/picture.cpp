#include "picture.h"

#include "dxftext.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr double largestAngle = 1e6; // radians; the library's turn-by-turn loops take too long beyond
constexpr int mostPlaced = 1000000;  // entities, those of inserted blocks counted each time

// Where an entity is placed: the coordinates, and what it inherits from the insert of its block.
struct Surroundings {
    Placement placement;
    std::string layer; // of the insert; empty outside of blocks
    karColor colour;   // of the insert
};

bool inReach(const kar3D_Point &p)
{
    return std::fabs(p.x()) <= largestCoordinate && std::fabs(p.y()) <= largestCoordinate;
}

bool inReach(const Piece &piece)
{
    const auto reached = [](const karD_Point &p) { return inReach(kar3D_Point(p.x(), p.y(), 0.0)); };
    return reached(piece.start) && reached(piece.end) &&
           (!piece.curved || (reached(piece.centre) && piece.a <= largestCoordinate));
}

// The entities of a block, one after the other, by their kind.
class Placer : public karFilterIdBase {
public:
    Placer(const Drawing &ownDrawing, Phase &ownPhase, Picture &into)
        : karFilterIdBase(static_cast<karFilterIdBase *>(this), static_cast<FilterMethod>(&Placer::skip)),
          drawing(ownDrawing),
          phase(ownPhase),
          picture(into),
          count(std::max(ownDrawing.entities.ListAnzahl(), 1))
    {
        handle(EntityPoint, &Placer::point);
        handle(EntityLine, &Placer::line);
        handle(EntityArc, &Placer::arc);
        handle(EntityCircle, &Placer::arc);
        handle(EntityEllipse, &Placer::ellipse);
        handle(EntityPolyline, &Placer::polyline);
        handle(EntityText, &Placer::label);
        handle(EntityInsert, &Placer::insert);
    }

    void placeAll(const Block &block, const Surroundings &around, int depth)
    {
        for (Entity *entity = block.ListFirst(); entity && !stopped; entity = entity->next()) {
            if (tooMany())
                return;
            if (depth == 0)
                fraction = static_cast<double>(++topLevel) / count;
            if (!phase.next(fraction)) {
                stopped = true;
                break;
            }
            if (depth == 0 && entity->attributes.onPaper)
                continue;
            surroundings = around;
            level = depth;
            refused = refused || filterObject(entity) < 0;
        }
    }

    // An empty block counts too each time, so that the work stays bounded.
    bool tooMany() { return stopped = stopped || ++placed > mostPlaced; }
    bool gaveUp() const { return placed > mostPlaced; }
    bool foundNoHandlers() const { return refused; } // there was no memory for their table

private:
    void handle(EntityKind kind, errorCodesKARTORY (Placer::*method)(karFilterObject *))
    {
        setFilterHandler(static_cast<filterObjectID>(kind), this, method);
    }

    errorCodesKARTORY skip(karFilterObject *) { return KAR_SUCCESS; }

    errorCodesKARTORY point(karFilterObject *item)
    {
        const auto &entity = static_cast<const PointEntity &>(*item);
        Shape shape = begin(entity);
        anchor(shape, surroundings.placement.point(entity.at));
        return KAR_SUCCESS;
    }

    errorCodesKARTORY line(karFilterObject *item)
    {
        const auto &entity = static_cast<const LineEntity &>(*item);
        const kar3D_Point start = surroundings.placement.point(entity.start);
        const kar3D_Point end = surroundings.placement.point(entity.end);
        Shape shape = begin(entity);
        shape.pieces.push_back(straightPiece(karD_Point(start.x(), start.y()), karD_Point(end.x(), end.y())));
        return keep(shape);
    }

    errorCodesKARTORY arc(karFilterObject *item)
    {
        const auto &entity = static_cast<const ArcEntity &>(*item);
        if (!(entity.radius > 0))
            return leaveOut(entity, "its radius is not positive");
        if (!anglesFit(entity.startAngle, entity.endAngle))
            return leaveOut(entity, "its angle is beyond 1e6");
        const Placement system = objectSystem(entity);
        return keepArc(entity, system.point(entity.centre), system.x * entity.radius, system.y * entity.radius,
                       entity.startAngle, entity.endAngle);
    }

    errorCodesKARTORY ellipse(karFilterObject *item)
    {
        const auto &entity = static_cast<const EllipseEntity &>(*item);
        if (!(entity.major.Distance() > 0 && entity.ratio > 0))
            return leaveOut(entity, "its radius is not positive");
        if (!anglesFit(entity.startParameter, entity.endParameter))
            return leaveOut(entity, "its angle is beyond 1e6");
        // Given in the coordinates of the drawing, other than an arc; the extrusion direction tells the short axis.
        const kar3D_Point normal = Placement::ofExtrusion(entity.attributes.extrusion).z;
        const kar3D_Point &m = entity.major;
        const kar3D_Point minor((normal.y() * m.z() - normal.z() * m.y()) * entity.ratio,
                                (normal.z() * m.x() - normal.x() * m.z()) * entity.ratio,
                                (normal.x() * m.y() - normal.y() * m.x()) * entity.ratio);
        const Placement &system = surroundings.placement;
        return keepArc(entity, system.point(entity.centre), system.direction(m), system.direction(minor),
                       entity.startParameter, entity.endParameter);
    }

    errorCodesKARTORY polyline(karFilterObject *item)
    {
        const auto &entity = static_cast<const PolylineEntity &>(*item);
        const Placement system = objectSystem(entity);
        Shape shape = begin(entity);
        const std::size_t size = entity.vertices.size();
        for (std::size_t i = 0; i + (entity.closed ? 0 : 1) < size; ++i)
            addSegment(shape, system, entity.vertices[i], entity.vertices[(i + 1) % size], entity.elevation);
        return keep(shape);
    }

    errorCodesKARTORY label(karFilterObject *item)
    {
        const auto &entity = static_cast<const TextEntity &>(*item);
        if (std::fabs(entity.angle) > largestAngle)
            return leaveOut(entity, "its angle is beyond 1e6");
        const Placement system = objectSystem(entity);
        const double c = std::cos(entity.angle);
        const double s = std::sin(entity.angle);
        const kar3D_Point right = system.direction(kar3D_Point(c, s, 0.0));
        const kar3D_Point up = system.direction(kar3D_Point(-s, c, 0.0));
        Shape shape = begin(entity);
        shape.right.Set(right.x(), right.y());
        shape.up.Set(up.x(), up.y());
        anchor(shape, system.point(entity.at));
        return KAR_SUCCESS;
    }

    errorCodesKARTORY insert(karFilterObject *item)
    {
        const auto &entity = static_cast<const InsertEntity &>(*item);
        const Block *block = drawing.block(entity.block);
        if (!block) {
            FindingMaker(phase.filter, FindingMissingBlock, 1) << entity.block;
            return KAR_SUCCESS;
        }
        if (std::fabs(entity.angle) > largestAngle)
            return leaveOut(entity, "its angle is beyond 1e6");
        const Shape own = begin(entity);
        Surroundings inside;
        inside.layer = own.layer;
        inside.colour = own.colour;
        const Placement system = objectSystem(entity);
        const int depth = level + 1;
        const double c = std::cos(entity.angle);
        const double s = std::sin(entity.angle);
        Placement turned;
        turned.x.Set(c, s, 0.0);
        turned.y.Set(-s, c, 0.0);
        for (int row = 0; row < std::max(entity.rows, 1); ++row)
            for (int column = 0; column < std::max(entity.columns, 1); ++column) {
                turned.origin =
                    entity.at + (turned.x * (column * entity.spacing.x()) + turned.y * (row * entity.spacing.y()));
                inside.placement = system.holding(turned).holding(scaledBlock(*block, entity));
                if (tooMany())
                    return KAR_SUCCESS;
                placeAll(*block, inside, depth);
            }
        return KAR_SUCCESS;
    }

    static Placement scaledBlock(const Block &block, const InsertEntity &insert)
    {
        Placement result;
        result.x.Set(insert.scale.x(), 0.0, 0.0);
        result.y.Set(0.0, insert.scale.y(), 0.0);
        result.z.Set(0.0, 0.0, insert.scale.z());
        result.origin = -result.direction(block.base);
        return result;
    }

    static bool anglesFit(double start, double end)
    {
        return std::fabs(start) <= largestAngle && std::fabs(end) <= largestAngle;
    }

    Placement objectSystem(const Entity &entity) const
    {
        return surroundings.placement.holding(Placement::ofExtrusion(entity.attributes.extrusion));
    }

    Shape begin(const Entity &entity) const
    {
        Shape shape;
        shape.entity = &entity;
        shape.kind = entity.kind;
        shape.layer = bytesOf(entity.attributes.layer);
        if (shape.layer == "0" && !surroundings.layer.empty())
            shape.layer = surroundings.layer;
        const karColor own = entity.attributes.colour;
        shape.colour = own.special() == FARBWERT_VONLAYER   ? drawing.layerColour(shape.layer.c_str())
                       : own.special() == FARBWERT_VONBLOCK ? surroundings.colour
                                                            : own;
        return shape;
    }

    // The arc over two conjugate half diameters; equal parameters are the whole ellipse.
    errorCodesKARTORY keepArc(const Entity &entity, const kar3D_Point &centre, const kar3D_Point &u,
                              const kar3D_Point &v, double from, double to)
    {
        const double sweep = normalised(to - from);
        Shape shape = begin(entity);
        shape.pieces.push_back(curvedPiece(centre, u, v, from, sweep > 1e-12 ? sweep : fullTurn));
        return keep(shape);
    }

    static void addSegment(Shape &shape, const Placement &system, const Vertex &from, const Vertex &to,
                           double elevation)
    {
        constexpr double straight = 1e-12;
        const auto placedPoint = [&](const karD_Point &p) {
            return system.point(kar3D_Point(p.x(), p.y(), elevation));
        };
        const double chord = from.at.DistEuk(to.at);
        if (std::fabs(from.bulge) < straight || !(chord > 0)) {
            const kar3D_Point start = placedPoint(from.at);
            const kar3D_Point end = placedPoint(to.at);
            shape.pieces.push_back(straightPiece(karD_Point(start.x(), start.y()), karD_Point(end.x(), end.y())));
            return;
        }
        // The centre lies left of the chord's middle by chord * (1 - bulge^2) / (4 * bulge).
        const double bulge = from.bulge;
        const double left = (1 - bulge * bulge) / (4 * bulge);
        const karD_Point along(to.at.x() - from.at.x(), to.at.y() - from.at.y());
        const karD_Point centre((from.at.x() + to.at.x()) / 2 - along.y() * left,
                                (from.at.y() + to.at.y()) / 2 + along.x() * left);
        const double radius = chord * (1 + bulge * bulge) / (4 * std::fabs(bulge));
        const double sweep = 4 * std::atan(std::fabs(bulge));
        const karD_Point &first = bulge > 0 ? from.at : to.at;
        const double begins = std::atan2(first.y() - centre.y(), first.x() - centre.x());
        Piece piece = curvedPiece(placedPoint(centre), system.x * radius, system.y * radius, begins, sweep);
        shape.pieces.push_back(bulge > 0 ? piece : reversed(piece));
    }

    void anchor(Shape &shape, const kar3D_Point &at)
    {
        shape.at.Set(at.x(), at.y());
        if (inReach(at))
            picture.push_back(std::move(shape));
        else
            leaveOut(*shape.entity, "it lies too far out");
    }

    errorCodesKARTORY keep(Shape &shape)
    {
        if (!std::all_of(shape.pieces.begin(), shape.pieces.end(), [](const Piece &piece) { return inReach(piece); }))
            return leaveOut(*shape.entity, "it lies too far out");
        // Ends that only rounding keeps apart become one.
        for (std::size_t i = 1; i < shape.pieces.size(); ++i)
            shape.pieces[i].start = shape.pieces[i - 1].end;
        const bool isClosed = shape.kind == EntityPolyline && static_cast<const PolylineEntity *>(shape.entity)->closed;
        if (isClosed && !shape.pieces.empty())
            shape.pieces.front().start = shape.pieces.back().end;
        if (!shape.pieces.empty())
            picture.push_back(std::move(shape));
        return KAR_SUCCESS;
    }

    errorCodesKARTORY leaveOut(const Entity &entity, const char *why)
    {
        Shape shape = begin(entity);
        FindingMaker(phase.filter, FindingLeftOut, 2) << karString(nameOf(shape).c_str()) << text(why);
        return KAR_SUCCESS;
    }

    const Drawing &drawing;
    Phase &phase;
    Picture &picture;
    const int count; // entities outside of blocks
    Surroundings surroundings;
    int level = 0;
    int placed = 0;
    int topLevel = 0;
    double fraction = 0;
    bool stopped = false;
    bool refused = false;
};

} // namespace

std::string nameOf(const Shape &shape)
{
    std::string name = kindName(shape.kind);
    if (shape.kind == EntityOther)
        name = bytesOf(static_cast<const OtherEntity *>(shape.entity)->name);
    const std::string handle = handleOf(shape);
    if (!handle.empty())
        name += " " + handle;
    return name + " (" + shape.layer + ")";
}

std::string handleOf(const Shape &shape)
{
    const long handle = shape.entity->attributes.handle;
    if (handle < 0)
        return "";
    karString digits(handle, 16);
    digits.toUpper();
    return bytesOf(digits);
}

Picture place(const Drawing &drawing, const karTransformationInfo &transformation, karFilter &filter)
{
    Picture picture;
    Phase phase(filter, 30, 45, "placing");
    Placer placer(drawing, phase, picture);
    Surroundings world;
    world.placement = Placement::of(transformation);
    world.colour = karColor(ACAD_COLOR_WHITE);
    placer.placeAll(drawing.entities, world, 0);
    if (placer.foundNoHandlers())
        throw std::bad_alloc();
    if (placer.gaveUp()) // not thrown from a handler: the library between knows no exceptions
        throw DrawingError(textOf("places more than %d entities", mostPlaced));
    return picture;
}
