#pragma once

#include "Platform/Types/Observers.h"
#include "Platform/Workspace.h"

#include <functional>
#include <string>
#include <vector>

namespace farview
{

/// Starts and opens nothing, and keeps the list of what it was asked for.
class FakeWorkspace final : public Workspace
{
public:
    struct Launch {
        std::string path;
        unsigned options = 0;

        bool operator==(const Launch&) const = default;
    };

    bool launchApplicationAtURL(const URL& url, unsigned options) override
    {
        mLaunches.push_back({url.path(), options});
        mLaunchObservers.tell(mLaunches.back());
        return mLaunchesSucceed && !url.path().empty();
    }
    bool openURL(const URL& url) override
    {
        mOpened.push_back(url);
        return mOpensSucceed;
    }

    void setLaunchesSucceed(bool succeed) { mLaunchesSucceed = succeed; }
    void setOpensSucceed(bool succeed) { mOpensSucceed = succeed; }
    /// Every attempt, in order.
    const std::vector<Launch>& launches() const { return mLaunches; }
    /// Calls `observer` within each launch.
    Subscription observeLaunches(std::function<void(const Launch&)> observer)
    {
        return mLaunchObservers.add(std::move(observer));
    }
    const std::vector<URL>& opened() const { return mOpened; }

private:
    std::vector<Launch> mLaunches;
    Observers<const Launch&> mLaunchObservers;
    std::vector<URL> mOpened;
    bool mLaunchesSucceed = true;
    bool mOpensSucceed = true;
};

} // namespace farview
