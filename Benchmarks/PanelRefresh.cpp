// What it costs to refresh everything the panel shows, without a window.

#include "Benchmarks/DisplayRefresh.h"

namespace
{

void refresh(benchmark::State& state)
{
    ListedDevices devices(state.range(0));
    for ([[maybe_unused]] auto round : state)
        devices.panel().updateUI();
    state.SetComplexityN(state.range(0));
}

} // namespace

int main(int argc, char** argv)
{
    farview::measureWithManyDevices("updateUI", refresh);
    return farview::runDisplayRefresh(argc, argv, "updateUI");
}
