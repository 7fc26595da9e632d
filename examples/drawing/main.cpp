// kartory-drawing: reads a DXF drawing with the library's lists and memory, and reports on it.
#include "dxfreader.h"
#include "dxftext.h"
#include "inventory.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>

namespace {

constexpr int unreadable = 2; // exit status for a drawing that can't be read

int run(const std::string &path)
{
    Drawing drawing;
    readDxf(path, drawing);
    drawing.entities.sort();
    std::cout << path << '\n';
    printInventory(std::cout, drawing);
    printMemory(std::cout);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    CLI::App app("Reads a DXF drawing and reports what it holds.", "kartory-drawing");
    std::string path;
    app.add_option("FILE", path, "DXF drawing, text form")->required();
    CLI11_PARSE(app, argc, argv);

    try {
        return run(path);
    } catch (const DrawingError &error) {
        std::cerr << "kartory-drawing: " << path << ": " << error.what() << '\n';
        return unreadable;
    }
}
