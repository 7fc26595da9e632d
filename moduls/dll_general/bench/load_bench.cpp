// Loading and unloading the library, and the size of its code and data, beside GSL.
#include <benchmark/benchmark.h>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void *opened(const char *file)
{
    void *const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    return library;
}

void loadAndUnload(benchmark::State &state, const char *file)
{
    for (auto _ : state)
        dlclose(opened(file));
    state.SetItemsProcessed(state.iterations());
}

struct Size {
    const link_map *library;
    double bytes;
};

int addSize(dl_phdr_info *info, std::size_t, void *argument)
{
    Size &size = *static_cast<Size *>(argument);
    if (info->dlpi_addr != size.library->l_addr)
        return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i)
        if (info->dlpi_phdr[i].p_type == PT_LOAD)
            size.bytes += static_cast<double>(info->dlpi_phdr[i].p_filesz);
    return 1;
}

/// Code and data, as a stripped file holds them.
void strippedSize(benchmark::State &state, const char *file)
{
    Size size{};
    for (auto _ : state) {
        void *const library = opened(file);
        size = {};
        if (dlinfo(library, RTLD_DI_LINKMAP, &size.library) == 0)
            dl_iterate_phdr(addSize, &size);
        dlclose(library);
    }
    state.counters["value"] = size.bytes / 1024;
}

void add(const std::string &name, const char *file)
{
    benchmark::RegisterBenchmark(("Library/load and unload/" + name).c_str(),
                                 [=](benchmark::State &state) { loadAndUnload(state, file); });
    benchmark::RegisterBenchmark(("Library/KiB of code and data/" + name).c_str(), [=](benchmark::State &state) {
        strippedSize(state, file);
    })->Iterations(1);
}

int registerAll()
{
    add("ours", KAR_LIBRARY_FILE);
    add("gsl", "libgsl.so.27");
    return 0;
}

const int registered = registerAll();

} // namespace
