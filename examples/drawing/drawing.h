// A drawing in memory: entities in lists of the library, blocks as heads that stand in a list themselves.
#ifndef DRAWING_H
#define DRAWING_H

#include <krkgeneral.h>

#include <string>
#include <unordered_map>
#include <vector>

enum EntityKind : int {
    EntityPoint,
    EntityLine,
    EntityArc,
    EntityCircle,
    EntityEllipse,
    EntityPolyline,
    EntityText,
    EntityInsert,
    EntityOther,
    entityKinds, ///< how many kinds there are
};

/// The DXF name of a kind, "OTHER" for the kinds that are only counted.
const char *kindName(EntityKind kind);

/// What every entity has.
struct Attributes {
    karString layer;
    long handle = -1; ///< -1 where the file gives none
    int colour = 256; ///< DXF index; 0 by block, 256 by layer
};

/// An entity is an element of one list, made by the library's `new`, and answers a dispatcher with its kind.
class Entity : public karListTyped<Entity, karListObject>, public karFilterObject {
public:
    Entity(EntityKind ownKind, const Attributes &own) : kind(ownKind), attributes(own) {}

    int ListObjectOk() override { return 1; }
    filterObjectID getFilterId() override { return static_cast<filterObjectID>(kind); }

    const EntityKind kind;
    Attributes attributes;
    int order = 0; ///< position in the file
};

class PointEntity : public Entity {
public:
    PointEntity(const Attributes &own, karD_Point where) : Entity(EntityPoint, own), at(where) {}
    karD_Point at;
};

class LineEntity : public Entity {
public:
    LineEntity(const Attributes &own, karD_Point from, karD_Point to) : Entity(EntityLine, own), start(from), end(to) {}
    karD_Point start;
    karD_Point end;
};

/// An arc or, from 0 to 2*pi, a circle.
class ArcEntity : public Entity {
public:
    ArcEntity(EntityKind ownKind, const Attributes &own, karD_Point middle, double r, double from, double to)
        : Entity(ownKind, own), centre(middle), radius(r), startAngle(from), endAngle(to)
    {}
    karD_Point centre;
    double radius;
    double startAngle; ///< radians, counter-clockwise to `endAngle`
    double endAngle;
};

class EllipseEntity : public Entity {
public:
    EllipseEntity(const Attributes &own, karD_Point middle, double a, double b, double turn, double from, double to)
        : Entity(EntityEllipse, own),
          centre(middle),
          semiMajor(a),
          semiMinor(b),
          rotation(turn),
          startParameter(from),
          endParameter(to)
    {}
    karD_Point centre;
    double semiMajor;
    double semiMinor;
    double rotation;       ///< radians
    double startParameter; ///< values of the parameter, not polar angles
    double endParameter;
};

struct Vertex {
    karD_Point at;
    double bulge; ///< tangent of a quarter of the angle of the arc to the next vertex; 0 is a straight segment
};

class PolylineEntity : public Entity {
public:
    PolylineEntity(const Attributes &own, bool isClosed) : Entity(EntityPolyline, own), closed(isClosed) {}
    bool closed;
    std::vector<Vertex> vertices;
};

class TextEntity : public Entity {
public:
    TextEntity(const Attributes &own, karD_Point where, double size, double turn, const karString &content)
        : Entity(EntityText, own), at(where), height(size), angle(turn), text(content)
    {}
    karD_Point at;
    double height;
    double angle; ///< radians
    karString text;
};

class InsertEntity : public Entity {
public:
    InsertEntity(const Attributes &own, const karString &name) : Entity(EntityInsert, own), block(name) {}
    karString block;
    karD_Point at;
    karD_Point scale{1.0, 1.0};
    double angle = 0.0; ///< radians
    int columns = 1;
    int rows = 1;
    karD_Point spacing;
};

/// A kind that the program doesn't draw, with its name in the file.
class OtherEntity : public Entity {
public:
    OtherEntity(const Attributes &own, const karString &fileName) : Entity(EntityOther, own), name(fileName) {}
    karString name;
};

/// The entities of the drawing or of one block, which they die with.
class Block : public karListHeadTyped<Entity, karListHeadListObject> {
public:
    /// Behind the blocks that `other` stands with.
    Block(const karString &ownName, karD_Point origin, Block *other)
        : karListHeadTyped(other, ObjektIdies(0)), name(ownName), base(origin)
    {}

    int ListHeadObjectOk() override { return 1; }
    void reservedOperation() override {}

    /// By layer, then kind, then handle, then place in the file.
    void sort();

    Block *nextBlock() const { return static_cast<Block *>(next()); }

    karString name;
    karD_Point base;

private:
    int keepsFront(const karListObject *earlier, const karListObject *later);
};

/// The entities of a drawing and its blocks, which die with it.
class Drawing {
public:
    Drawing() = default;
    Drawing(const Drawing &) = delete;
    Drawing &operator=(const Drawing &) = delete;
    ~Drawing();

    /// A new block at the end of the chain; null if memory ends. Of two blocks of one name the first is found.
    Block *addBlock(const karString &name, karD_Point base);
    /// The block of that name, upper and lower case alike; null if there is none.
    const Block *block(const karString &name) const;
    const Block *firstBlock() const { return blocks; }

    Block entities{"", karD_Point(), nullptr};

private:
    Block *blocks = nullptr;
    Block *lastBlock = nullptr;
    std::unordered_map<std::string, const Block *> byName;
};

#endif
