#pragma once

#include "Platform/Types/Subscription.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace farview
{

/// Functions to call when something happens, in the order in which they were added. Each is called
/// until its subscription ends. Main thread only.
template <typename... Arguments> class Observers
{
public:
    using Observer = std::function<void(Arguments...)>;

    /// The subscription may outlive this.
    Subscription add(Observer observer)
    {
        std::erase_if(mAll, [](const auto& each) { return each.expired(); });
        auto owned = std::make_shared<Observer>(std::move(observer));
        mAll.push_back(owned);
        // The subscription alone owns the observer, so the observer ends with it.
        return Subscription([owned = std::move(owned)] {});
    }

    /// An observer may add observers, end any subscription, or end the life of whoever owns this.
    void tell(Arguments... arguments) const
    {
        const auto snapshot = mAll;
        for (const auto& each : snapshot) {
            if (const auto observer = each.lock())
                (*observer)(arguments...);
        }
    }

private:
    std::vector<std::weak_ptr<Observer>> mAll;
};

} // namespace farview
