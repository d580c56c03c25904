#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace farview
{

/// Prints Google Benchmark's own table and remembers the medians, to be held against targets.
class FiguresReporter final : public benchmark::ConsoleReporter
{
public:
    FiguresReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median")
                mMedians[run.run_name.str()] = {run.GetAdjustedRealTime(),
                                                run.GetAdjustedCPUTime()};
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// In the benchmark's own time unit.
    struct Times {
        double real = 0;
        double processor = 0; ///< what other programs on the machine do not disturb
    };

    /// Zero when it did not run.
    Times median(const std::string& name) const
    {
        const auto found = mMedians.find(name);
        return found == mMedians.end() ? Times{} : found->second;
    }

private:
    std::map<std::string, Times> mMedians;
};

} // namespace farview
