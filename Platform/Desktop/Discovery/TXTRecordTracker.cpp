#include "Platform/Desktop/Discovery/TXTRecordTracker.h"

#include <algorithm>

namespace farview
{

void TXTRecordTracker::seen(Sighting sighting, const Data& record)
{
    std::erase(mPresent, std::pair(sighting, record));
    mPresent.emplace_back(sighting, record);
    mLatest = record;
}

void TXTRecordTracker::gone(Sighting sighting, const Data& record)
{
    std::erase(mPresent, std::pair(sighting, record));
    // A service that changes its mind within a second takes back a record that never went away.
    if (!mPresent.empty())
        mLatest = mPresent.back().second;
}

} // namespace farview
