// The sample program as a user runs it: its start beside an empty program, and drawings of more and more entities.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

/// Runs a program to its end, with its output going nowhere.
void runProgram(std::vector<std::string> arguments)
{
    std::vector<char *> pointers;
    for (std::string &argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    if (posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ) == 0)
        waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        std::fprintf(stderr, "host_bench: %s failed\n", pointers[0]);
        std::exit(1);
    }
}

void start(benchmark::State &state, const std::vector<std::string> &arguments)
{
    for (auto _ : state)
        runProgram(arguments);
    state.SetItemsProcessed(state.iterations());
}

/// Lines and circles, as dense whatever their number: each crosses a few others.
std::string drawing(int entities)
{
    std::mt19937 engine(5);
    std::uniform_real_distribution<double> place(0.0, 10.0 * std::sqrt(entities)), step(-10.0, 10.0);
    std::string path = "host_bench_" + std::to_string(entities) + ".dxf";
    std::FILE *const file = std::fopen(path.c_str(), "w");
    if (!file)
        std::exit(1);
    std::fputs("0\nSECTION\n2\nENTITIES\n", file);
    for (int i = 0; i < entities; ++i) {
        const double x = place(engine), y = place(engine), dx = step(engine), dy = step(engine);
        if (i % 2 == 0)
            std::fprintf(file, "0\nLINE\n8\n0\n10\n%f\n20\n%f\n11\n%f\n21\n%f\n", x, y, x + dx, y + dy);
        else
            std::fprintf(file, "0\nCIRCLE\n8\n0\n10\n%f\n20\n%f\n40\n%f\n", x, y, 1 + std::fabs(dx));
    }
    std::fputs("0\nENDSEC\n0\nEOF\n", file);
    std::fclose(file);
    return path;
}

void report(benchmark::State &state, int entities)
{
    const std::string path = drawing(entities);
    for (auto _ : state)
        runProgram({KAR_HOST_FILE, "--quiet", path});
    state.SetItemsProcessed(state.iterations() * entities);
    std::remove(path.c_str());
}

int registerAll()
{
    benchmark::RegisterBenchmark("Host/start/ours", start, std::vector<std::string>{KAR_HOST_FILE, "--help"})
        ->UseRealTime();
    benchmark::RegisterBenchmark("Host/start/python3", start, std::vector<std::string>{"/usr/bin/python3", "-c", ""})
        ->UseRealTime();
    benchmark::RegisterBenchmark("Host/start/limit", [](benchmark::State &state) {
        start(state, {"/bin/true"});
        state.SetLabel("a program that does nothing");
    })->UseRealTime();
    for (const int entities : {1000, 10000, 100000})
        benchmark::RegisterBenchmark(("Host/report an entity/" + std::to_string(entities) + "/ours").c_str(), report,
                                     entities)
            ->UseRealTime();
    return 0;
}

const int registered = registerAll();

} // namespace
