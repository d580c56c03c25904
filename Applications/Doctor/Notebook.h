#pragma once

#include "Applications/Doctor/Report.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

namespace farview
{

/// What was found so far. May be read from another thread while the examination writes.
class Notebook
{
public:
    Notebook(std::string version, std::string date) : mReport{std::move(version), std::move(date)}
    {
    }

    void add(Findings findings)
    {
        const std::lock_guard lock(mMutex);
        std::move(findings.begin(), findings.end(), std::back_inserter(mReport.findings));
        std::stable_sort(
            mReport.findings.begin(), mReport.findings.end(),
            [](const Finding& left, const Finding& right) { return left.area < right.area; });
    }

    void setComplete()
    {
        const std::lock_guard lock(mMutex);
        mReport.isComplete = true;
    }

    /// A copy, the findings in the order of their areas.
    Report report() const
    {
        const std::lock_guard lock(mMutex);
        return mReport;
    }

private:
    mutable std::mutex mMutex;
    Report mReport;
};

} // namespace farview
