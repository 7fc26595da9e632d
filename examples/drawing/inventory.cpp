#include "inventory.h"

#include <array>
#include <iomanip>
#include <map>
#include <ostream>
#include <string>

namespace {

using Counts = std::array<int, entityKinds>;

void printRow(std::ostream &out, const std::string &layer, const std::string &kind, int count)
{
    out << "  " << std::left << std::setw(24) << layer << ' ' << std::setw(16) << kind << std::right << std::setw(9)
        << count << '\n';
}

} // namespace

void printInventory(std::ostream &out, const Drawing &drawing)
{
    std::map<std::string, Counts> layers;
    std::map<std::string, int> others;
    for (const Entity *entity = drawing.entities.ListFirst(); entity; entity = entity->next()) {
        ++layers[std::string(entity->attributes.layer)][entity->kind];
        if (entity->kind == EntityOther)
            ++others[std::string(static_cast<const OtherEntity *>(entity)->name)];
    }
    int blocks = 0;
    int inBlocks = 0;
    for (const Block *block = drawing.firstBlock(); block; block = block->nextBlock()) {
        ++blocks;
        inBlocks += block->ListAnzahl();
    }

    printRow(out, "layer", "kind", drawing.entities.ListAnzahl());
    for (const auto &[layer, counts] : layers)
        for (int kind = 0; kind < entityKinds; ++kind)
            if (counts[static_cast<std::size_t>(kind)] != 0)
                printRow(out, layer, kindName(static_cast<EntityKind>(kind)), counts[static_cast<std::size_t>(kind)]);
    if (!others.empty()) {
        out << "Only counted:";
        for (const auto &[name, count] : others)
            out << ' ' << name << ' ' << count;
        out << '\n';
    }
    if (blocks != 0)
        out << "Blocks: " << blocks << " with " << inBlocks << " entities\n";
}

void printMemory(std::ostream &out)
{
    out << "Memory: " << globalMemList->getAnzNew() << " allocations, " << globalMemList->getCurAnzNew()
        << " heap blocks of " << globalMemList->getCurSizeNew() << " bytes now, large blocks "
        << globalMemList->curr_used_memory() << " bytes now and " << globalMemList->max_used_memory() << " at most\n";
}
