#include "dxfwriter.h"

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>

namespace {

constexpr int byLayer = -1; // line width

class Writer {
public:
    Writer(const std::string &path, const Drawing &ownDrawing)
        : drawing(ownDrawing), file(dxf.out(path.c_str(), DL_VERSION_2000))
    {}

    bool write(const Picture &picture)
    {
        if (!file || file->openFailed())
            return false;
        dxf.writeHeader(*file);
        file->sectionEnd();
        file->sectionTables();
        writeTables(picture);
        file->sectionEnd();
        file->sectionBlocks();
        for (const char *space : {"*Model_Space", "*Paper_Space", "*Paper_Space0"}) {
            dxf.writeBlock(*file, DL_BlockData(space, 0, 0.0, 0.0, 0.0));
            dxf.writeEndBlock(*file, space);
        }
        file->sectionEnd();
        file->sectionEntities();
        for (const Shape &shape : picture)
            writeShape(shape);
        file->sectionEnd();
        dxf.writeObjects(*file);
        dxf.writeObjectsEnd(*file);
        file->dxfEOF();
        file->close();
        return !file->openFailed();
    }

private:
    void writeTables(const Picture &picture)
    {
        constexpr int lineTypes = 3;
        dxf.writeVPort(*file);
        file->tableLinetypes(lineTypes);
        for (const char *name : {"BYBLOCK", "BYLAYER", "CONTINUOUS"})
            dxf.writeLinetype(*file, DL_LinetypeData(name, "", 0, 0, 0.0));
        file->tableEnd();
        std::set<std::string> layers{"0"};
        for (const Shape &shape : picture)
            layers.insert(shape.layer);
        file->tableLayers(static_cast<int>(layers.size()));
        for (const std::string &layer : layers)
            dxf.writeLayer(*file, DL_LayerData(layer, 0), attributes(layer, drawing.layerColour(layer.c_str())));
        file->tableEnd();
        file->tableStyle(1);
        dxf.writeStyle(*file, DL_StyleData("Standard", 0, 0.0, 1.0, 0.0, 0, 2.5, "txt", ""));
        file->tableEnd();
        dxf.writeView(*file);
        dxf.writeUcs(*file);
        file->tableAppid(1);
        dxf.writeAppid(*file, "ACAD");
        file->tableEnd();
        dxf.writeDimStyle(*file, 1.0, 1.0, 1.0, 1.0, 1.0);
        dxf.writeBlockRecord(*file);
        file->tableEnd();
    }

    // An index where that tells the colour, else the index beside the colour itself.
    static DL_Attributes attributes(const std::string &layer, const karColor &colour)
    {
        const ACAD_Color index = colour.acad();
        const bool exact = karColor(index) == colour;
        const int parts = (colour.red() << 16) | (colour.green() << 8) | colour.blue();
        return DL_Attributes(layer, index, exact ? -1 : parts, byLayer, "CONTINUOUS");
    }

    DL_Attributes attributesOf(const Shape &shape) const
    {
        constexpr int colourOfLayer = 256;
        if (shape.colour == drawing.layerColour(shape.layer.c_str()))
            return DL_Attributes(shape.layer, colourOfLayer, -1, byLayer, "BYLAYER");
        return attributes(shape.layer, shape.colour);
    }

    void writeShape(const Shape &shape)
    {
        const DL_Attributes attributes = attributesOf(shape);
        const auto bent = [](const Piece &piece) { return piece.curved && !piece.round(); };
        if (shape.kind == EntityText)
            writeText(shape, attributes);
        else if (shape.pieces.empty())
            dxf.writePoint(*file, DL_PointData(shape.at.x(), shape.at.y(), 0.0), attributes);
        else if (shape.kind == EntityPolyline && std::none_of(shape.pieces.begin(), shape.pieces.end(), bent))
            writePolyline(shape, attributes);
        else
            for (const Piece &piece : shape.pieces)
                writePiece(piece, attributes);
    }

    void writeText(const Shape &shape, const DL_Attributes &attributes)
    {
        const auto &entity = static_cast<const TextEntity &>(*shape.entity);
        const double height = entity.height * shape.up.DistEuk(karD_Point());
        dxf.writeText(*file,
                      DL_TextData(shape.at.x(), shape.at.y(), 0.0, shape.at.x(), shape.at.y(), 0.0, height, 1.0, 0, 0,
                                  0, bytesOf(entity.text), "Standard", std::atan2(shape.right.y(), shape.right.x())),
                      attributes);
    }

    void writePolyline(const Shape &shape, const DL_Attributes &attributes)
    {
        const bool closed = shape.closed();
        const int count = static_cast<int>(shape.pieces.size()) + (closed ? 0 : 1);
        dxf.writePolyline(*file, DL_PolylineData(count, 0, 0, closed ? 1 : 0), attributes);
        for (const Piece &piece : shape.pieces) {
            const double bulge = piece.curved ? std::tan(piece.sweep / 4) : 0.0;
            dxf.writeVertex(*file,
                            DL_VertexData(piece.start.x(), piece.start.y(), 0.0, piece.clockwise ? -bulge : bulge));
        }
        const karD_Point end = shape.pieces.back().end;
        if (!closed)
            dxf.writeVertex(*file, DL_VertexData(end.x(), end.y(), 0.0, 0.0));
        dxf.writePolylineEnd(*file);
    }

    void writePiece(const Piece &piece, const DL_Attributes &attributes)
    {
        constexpr double degree = pi / 180;
        const karD_Point &c = piece.centre;
        if (!piece.curved) {
            dxf.writeLine(*file, DL_LineData(piece.start.x(), piece.start.y(), 0.0, piece.end.x(), piece.end.y(), 0.0),
                          attributes);
        } else if (piece.round() && piece.whole()) {
            dxf.writeCircle(*file, DL_CircleData(c.x(), c.y(), 0.0, piece.a), attributes);
        } else if (piece.round()) {
            const double from = normalised(piece.from + piece.rotation);
            const double to = normalised(from + piece.sweep);
            dxf.writeArc(*file, DL_ArcData(c.x(), c.y(), 0.0, piece.a, from / degree, to / degree), attributes);
        } else {
            dxf.writeEllipse(*file,
                             DL_EllipseData(c.x(), c.y(), 0.0, piece.a * std::cos(piece.rotation),
                                            piece.a * std::sin(piece.rotation), 0.0, piece.b / piece.a, piece.from,
                                            piece.whole() ? piece.from + fullTurn : piece.to()),
                             attributes);
        }
    }

    DL_Dxf dxf;
    const Drawing &drawing;
    std::unique_ptr<DL_WriterA> file;
};

} // namespace

bool writeDxf(const std::string &path, const Picture &picture, const Drawing &drawing)
{
    return Writer(path, drawing).write(picture);
}
