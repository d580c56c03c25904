// What a long auto-connect list costs: building it from its sources, writing it back, and showing
// it in its table until that has been painted. The stores are in memory; the disk is measured
// elsewhere.

#include "Benchmarks/Figures.h"
#include "Benchmarks/FiguresReporter.h"
#include "Controls/Qt/Binding.h"
#include "Tests/Source/PaneFixture.h"

#include <QApplication>
#include <QTableView>

#include <cstdio>
#include <stdexcept>

namespace
{

using farview::PropertyList;

constexpr long fewNames = 1'000;
constexpr long manyNames = 10'000;

/// A pane on show with that many names: half of them ticked, half remembered.
class LongList : public PaneFixture
{
public:
    explicit LongList(long count)
    {
        PropertyList::Array chosen;
        PropertyList::Array seen;
        for (long number = 0; number < count / 2; ++number) {
            chosen.push_back("Ticked device " + std::to_string(number));
            seen.push_back("Remembered device " + std::to_string(number));
        }
        setStored(kAutoConnectDevices, chosen);
        fake.fileManager.putPropertyList(pane->seenDevicesFilename(), seen);
        showTable();
        showWithState(1);
        if (rows().size() != static_cast<std::size_t>(count))
            throw std::runtime_error("the list is not complete");
    }
    FVEPreferencePane& panel() { return *pane; }

private:
    void showTable()
    {
        mWidget.setProperty("column1", "AutoConnectFlag");
        mWidget.setProperty("column2", "DeviceName");
        farview::bindToWidget(pane->autoConnectTable(), &mWidget);
        mWidget.resize(500, 300);
        mWidget.show();
    }
    void TestBody() override {}

    QTableView mWidget;
};

void build(benchmark::State& state)
{
    LongList list(state.range(0));
    for ([[maybe_unused]] auto round : state) {
        list.panel().buildDeviceList();
        QApplication::processEvents();
    }
    state.SetComplexityN(state.range(0));
}

void write(benchmark::State& state)
{
    LongList list(state.range(0));
    for ([[maybe_unused]] auto round : state)
        list.panel().writeDeviceList();
    state.SetComplexityN(state.range(0));
}

void measure(const char* name, void (*body)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name, body)
        ->Arg(fewNames)
        ->Arg(manyNames)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly()
        ->Complexity(benchmark::oN);
}

/// Linear: a name among many costs what a name among few costs. False when it did not run.
bool printGrowth(const farview::FiguresReporter& reporter, const std::string& name)
{
    const auto few = reporter.median(name + "/" + std::to_string(fewNames) + "/repeats:7");
    const auto many = reporter.median(name + "/" + std::to_string(manyNames) + "/repeats:7");
    if (few.processor <= 0 || many.processor <= 0)
        return false;
    std::printf("  %s: %.3g and %.3g ms of processor time with %ld and %ld names\n", name.c_str(),
                few.processor, many.processor, fewNames, manyNames);
    const double growth = many.processor / few.processor / (manyNames / fewNames);
    farview::printAtMost(name + ", a name among many against one among few", growth, 2, "times");
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    measure("building and showing", build);
    measure("writing", write);
    benchmark::Initialize(&argc, argv);
    farview::FiguresReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const bool complete =
        printGrowth(reporter, "building and showing") && printGrowth(reporter, "writing");
    return complete ? 0 : 1;
}
