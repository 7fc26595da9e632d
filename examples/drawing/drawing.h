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
    long handle = -1;                            ///< -1 where the file gives none
    karColor colour{FARBWERT_VONLAYER};          ///< a colour, or the mark of the layer's or the block's
    bool onPaper = false;                        ///< it belongs to a sheet, not to the model
    kar3DVector extrusion{0.0, 0.0, 1.0, false}; ///< the z axis of the entity's own coordinates
};

/// A layer: its name is the text of a list element.
class Layer : public karStringList {
public:
    Layer(const karString &name, karColor ownColour) : karStringList(name), colour(ownColour) {}
    karColor colour;
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
    PointEntity(const Attributes &own, const kar3D_Point &where) : Entity(EntityPoint, own), at(where) {}
    kar3D_Point at;
};

class LineEntity : public Entity {
public:
    LineEntity(const Attributes &own, const kar3D_Point &from, const kar3D_Point &to)
        : Entity(EntityLine, own), start(from), end(to)
    {}
    kar3D_Point start;
    kar3D_Point end;
};

/// An arc or, from 0 to 2*pi, a circle. In its own coordinates.
class ArcEntity : public Entity {
public:
    ArcEntity(EntityKind ownKind, const Attributes &own, const kar3D_Point &middle, double r, double from, double to)
        : Entity(ownKind, own), centre(middle), radius(r), startAngle(from), endAngle(to)
    {}
    kar3D_Point centre;
    double radius;
    double startAngle; ///< radians, counter-clockwise to `endAngle`
    double endAngle;
};

class EllipseEntity : public Entity {
public:
    EllipseEntity(const Attributes &own, const kar3D_Point &middle, const kar3D_Point &majorAxis, double axisRatio,
                  double from, double to)
        : Entity(EntityEllipse, own),
          centre(middle),
          major(majorAxis),
          ratio(axisRatio),
          startParameter(from),
          endParameter(to)
    {}
    kar3D_Point centre;
    kar3D_Point major;     ///< from the centre to the end of the longer axis
    double ratio;          ///< shorter to longer axis
    double startParameter; ///< values of the parameter, not polar angles
    double endParameter;
};

struct Vertex {
    karD_Point at;
    double bulge; ///< tangent of a quarter of the angle of the arc to the next vertex; 0 is a straight segment
};

/// In its own coordinates.
class PolylineEntity : public Entity {
public:
    PolylineEntity(const Attributes &own, bool isClosed) : Entity(EntityPolyline, own), closed(isClosed) {}
    bool closed;
    double elevation = 0.0;
    std::vector<Vertex> vertices;
};

/// In its own coordinates.
class TextEntity : public Entity {
public:
    TextEntity(const Attributes &own, const kar3D_Point &where, double size, double turn, const karString &content)
        : Entity(EntityText, own), at(where), height(size), angle(turn), text(content)
    {}
    kar3D_Point at;
    double height;
    double angle; ///< radians
    karString text;
    int alignment = 0; ///< to `at`: 0 its left end, 1 and 4 its middle, 2 its right end
};

/// In its own coordinates.
class InsertEntity : public Entity {
public:
    InsertEntity(const Attributes &own, const karString &name) : Entity(EntityInsert, own), block(name) {}
    karString block;
    kar3D_Point at;
    kar3D_Point scale{1.0, 1.0, 1.0};
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
    Block(const karString &ownName, const kar3D_Point &origin, Block *other)
        : karListHeadTyped(other, ObjektIdies(0)), name(ownName), base(origin)
    {}

    int ListHeadObjectOk() override { return 1; }
    void reservedOperation() override {}

    /// By layer, then kind, then handle, then place in the file.
    void sort();

    Block *nextBlock() const { return static_cast<Block *>(next()); }

    karString name;
    kar3D_Point base;

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
    Block *addBlock(const karString &name, const kar3D_Point &base);
    /// The block of that name, upper and lower case alike; null if there is none.
    const Block *block(const karString &name) const;
    const Block *firstBlock() const { return blocks; }

    /// Of two layers of one name the first counts. False if memory ends.
    bool addLayer(const karString &name, karColor colour);
    /// White for a layer that isn't there. Upper and lower case are alike.
    karColor layerColour(const karString &name) const;
    const karStringListHead &layerList() const { return layers; } ///< of `Layer`, in the order of the file

    Block entities{"", kar3D_Point(), nullptr};

private:
    Block *blocks = nullptr;
    Block *lastBlock = nullptr;
    std::unordered_map<std::string, const Block *> byName;
    karStringListHead layers;
    std::unordered_map<std::string, const Layer *> layerByName;
};

#endif
