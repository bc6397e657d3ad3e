#include "ClipboardInputs.h"

#include <benchmark/benchmark.h>

#include <string>

// Every operation and its floor, named "<operation>/<bytes>/ours" and ".../floor".

namespace {

void registerRun(const ClipboardCase& each, int size, const char* what, const std::function<void()>& work)
{
    const std::string name = std::string(each.name) + '/' + std::to_string(size) + '/' + what;
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) {
        for (auto _ : state)
            work();
    });
}

} // namespace

int main(int argc, char** argv)
{
    for (const int size : clipboardSizes) {
        for (const ClipboardCase& each : clipboardCases(size)) {
            registerRun(each, size, "ours", each.work);
            registerRun(each, size, "floor", each.floor);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
