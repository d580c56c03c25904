// The time to read a setting that is stored in a file.
//
// usage: setting-read [Google Benchmark's options]

#include "Benchmarks/Figures.h"
#include "Benchmarks/FiguresReporter.h"
#include "Benchmarks/StoredSettings.h"

#include <cstdio>

namespace
{

void readSetting(benchmark::State& state)
{
    farview::StoredSettings stored(".");
    for ([[maybe_unused]] auto round : state)
        benchmark::DoNotOptimize(stored.settings().currentState());
}

/// The first read after another process has written, when the file has to be parsed again.
double medianOfChangedReads()
{
    farview::StoredSettings stored(".");
    std::vector<double> samples;
    for (int round = 0; round < 200; ++round) {
        stored.changeElsewhere(round % 2 == 0);
        const double begin = farview::microsecondsNow();
        benchmark::DoNotOptimize(stored.settings().currentState());
        samples.push_back(farview::microsecondsNow() - begin);
    }
    return farview::median(samples);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string name = "a setting read";
    benchmark::Initialize(&argc, argv);
    benchmark::RegisterBenchmark(name.c_str(), readSetting)
        ->Unit(benchmark::kMicrosecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly();
    farview::FiguresReporter reporter;
    if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0)
        return 1;
    farview::printAtMost(name, reporter.median(name + "/repeats:7").real, 20, "us");
    std::printf("  the first read after another process wrote: %.3g us\n", medianOfChangedReads());
    return 0;
}
