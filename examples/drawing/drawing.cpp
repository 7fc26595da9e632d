#include "drawing.h"

#include "texts.h"

#include <algorithm>
#include <cctype>

const char *kindName(EntityKind kind)
{
    static const char *const names[entityKinds] = {"POINT",    "LINE", "ARC",    "CIRCLE", "ELLIPSE",
                                                   "POLYLINE", "TEXT", "INSERT", "OTHER"};
    return names[kind];
}

void Block::sort() { ListSort(static_cast<karSortMethod>(&Block::keepsFront), this); }

// Positive where the earlier element stays in front. No two entities are equal, since each has its own
// place in the file.
int Block::keepsFront(const karListObject *earlier, const karListObject *later)
{
    const auto &a = static_cast<const Entity &>(*earlier);
    const auto &b = static_cast<const Entity &>(*later);
    if (a.attributes.layer != b.attributes.layer)
        return a.attributes.layer < b.attributes.layer ? 1 : -1;
    if (a.kind != b.kind)
        return a.kind < b.kind ? 1 : -1;
    if (a.attributes.handle != b.attributes.handle)
        return a.attributes.handle < b.attributes.handle ? 1 : -1;
    return a.order < b.order ? 1 : -1;
}

namespace {

std::string key(const karString &name)
{
    std::string result(bytesOf(name));
    std::transform(result.begin(), result.end(), result.begin(), [](unsigned char c) { return std::toupper(c); });
    return result;
}

} // namespace

Drawing::~Drawing()
{
    while (Block *block = blocks) {
        blocks = block->nextBlock();
        delete block;
    }
}

Block *Drawing::addBlock(const karString &name, const kar3D_Point &base)
{
    auto *block = new Block(name, base, lastBlock);
    if (!block)
        return nullptr;
    lastBlock = block;
    if (!blocks)
        blocks = block;
    byName.emplace(key(name), block);
    return block;
}

const Block *Drawing::block(const karString &name) const
{
    const auto found = byName.find(key(name));
    return found == byName.end() ? nullptr : found->second;
}

bool Drawing::addLayer(const karString &name, karColor colour)
{
    auto *layer = new Layer(name, colour);
    if (!layer)
        return false;
    layers.ListAppend(layer);
    layerByName.emplace(key(name), layer);
    return true;
}

karColor Drawing::layerColour(const karString &name) const
{
    const auto found = layerByName.find(key(name));
    return found == layerByName.end() ? karColor(ACAD_COLOR_WHITE) : found->second->colour;
}
