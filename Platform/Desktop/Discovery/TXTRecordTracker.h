#pragma once

#include "Platform/Desktop/Discovery/DiscoverySource.h"

#include <optional>
#include <utility>
#include <vector>

namespace farview
{

/// Tells from the coming and going of a service's TXT records which is the current one. A new
/// record comes before the old one goes, once per interface and protocol.
class TXTRecordTracker
{
public:
    void seen(Sighting sighting, const Data& record);
    void gone(Sighting sighting, const Data& record);
    /// Nothing until a record was seen; the last one stays when all have gone.
    const std::optional<Data>& latest() const { return mLatest; }

private:
    std::vector<std::pair<Sighting, Data>> mPresent;
    std::optional<Data> mLatest;
};

} // namespace farview
