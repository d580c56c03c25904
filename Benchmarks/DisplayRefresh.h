#pragma once

#include "Benchmarks/FiguresReporter.h"
#include "Tests/Source/PaneFixture.h"

#include <string>

/// A pane on show, switched on, with that many devices listed and connected to the first.
class ListedDevices : public PaneFixture
{
public:
    explicit ListedDevices(long count);

    FVEPreferencePane& panel() { return *pane; }

protected:
    /// Lists the devices; `load` comes first.
    void list(long count);

private:
    void TestBody() override {}
};

namespace farview
{

/// Registers a benchmark with 10, 100 and 500 devices and a fit to a straight line.
void measureWithManyDevices(const char* name, void (*body)(benchmark::State&));
/// Runs what is registered, then holds the refresh with 500 devices and the growth against their
/// targets. 1 when a benchmark failed.
int runDisplayRefresh(int argc, char** argv, const std::string& name);

} // namespace farview
