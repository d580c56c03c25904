#include "Applications/Doctor/Notebook.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace farview
{

Notebook::Notebook(std::string version, std::string date)
    : mReport{std::move(version), std::move(date)}
{
}

void Notebook::add(Findings findings)
{
    const std::lock_guard lock(mMutex);
    std::move(findings.begin(), findings.end(), std::back_inserter(mReport.findings));
    std::stable_sort(
        mReport.findings.begin(), mReport.findings.end(),
        [](const Finding& left, const Finding& right) { return left.area < right.area; });
}

void Notebook::setComplete()
{
    const std::lock_guard lock(mMutex);
    mReport.isComplete = true;
}

Report Notebook::report() const
{
    const std::lock_guard lock(mMutex);
    return mReport;
}

} // namespace farview
