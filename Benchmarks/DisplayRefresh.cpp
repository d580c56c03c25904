#include "Benchmarks/DisplayRefresh.h"

#include "Benchmarks/Figures.h"

#include <cstdio>
#include <stdexcept>

ListedDevices::ListedDevices(long count)
{
    setStored(kCurrentState, std::int64_t{1});
    load();
    list(count);
}

void ListedDevices::list(long count)
{
    show();
    std::vector<farview::FakeDevice> devices;
    for (long index = 0; index < count; ++index) {
        const auto number = std::to_string(index);
        devices.push_back(device("Device number " + number, "device-" + number + ".local"));
    }
    announce(std::move(devices));
    serverConnectedTo("device-0.local");
    if (entry("Device number " + std::to_string(count - 1)) == nullptr)
        throw std::runtime_error("the devices are not listed");
}

namespace farview
{

void measureWithManyDevices(const char* name, void (*body)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name, body)
        ->Arg(10)
        ->Arg(100)
        ->Arg(500)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly()
        ->Complexity(benchmark::oN);
}

int runDisplayRefresh(int argc, char** argv, const std::string& name)
{
    benchmark::Initialize(&argc, argv);
    FiguresReporter reporter;
    if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0)
        return 1;
    const auto few = reporter.median(name + "/10/repeats:7");
    const auto some = reporter.median(name + "/100/repeats:7");
    const auto many = reporter.median(name + "/500/repeats:7");
    if (few.real <= 0 || some.real <= 0 || many.real <= 0)
        return 1;
    printAtMost(name + " with 500 devices", many.real, 10, "ms");
    // Linear: none of the later 400 devices costs more than one of the first 90 does. The rest of
    // the limit is the measurement's own unsteadiness.
    const double early = (some.processor - few.processor) / 90;
    const double late = (many.processor - some.processor) / 400;
    std::printf("  %.4g, %.4g and %.4g ms of processor time with 10, 100 and 500 devices\n",
                few.processor, some.processor, many.processor);
    printAtMost(name + ", a device beyond 100 against one below", late / early, 1.5, "times");
    return 0;
}

} // namespace farview
