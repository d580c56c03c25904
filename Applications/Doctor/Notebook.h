#pragma once

#include "Applications/Doctor/Report.h"

#include <mutex>

namespace farview
{

/// What was found so far. May be read from another thread while the examination writes.
class Notebook
{
public:
    Notebook(std::string version, std::string date);

    void add(Findings findings);
    void setComplete();
    /// A copy, the findings in the order of their areas.
    Report report() const;

private:
    mutable std::mutex mMutex;
    Report mReport;
};

} // namespace farview
