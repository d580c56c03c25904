#pragma once

#include "Platform/NetService.h"
#include "Platform/RunLoop.h"

#include <functional>
#include <memory>
#include <vector>

namespace farview
{

/// Resolves several services at the same time and tells when each has ended, one way or another.
///
/// Each service has a wait of its own, so that one which answers does not end the wait for another.
/// Made with `std::make_shared`; nothing is called once it is destroyed. Main thread only.
class ResolveBatch : public std::enable_shared_from_this<ResolveBatch>
{
public:
    /// `then` is called once, from the loop, when every wait has ended.
    ResolveBatch(RunLoop& runLoop, std::function<void()> then);

    /// Begins the resolve of all of them; each may take `timeout`. Called once.
    void begin(const std::vector<std::shared_ptr<NetService>>& services, Duration timeout);
    /// The resolve of that service has ended. A service that is not waited for changes nothing.
    void resolveEnded(const NetService& service);

private:
    struct Pending {
        std::shared_ptr<NetService> service;
        std::shared_ptr<RunLoop::Wait> wait;
    };

    void waitEnded();

    RunLoop& mRunLoop;
    std::function<void()> mThen;
    std::vector<Pending> mPending;
    std::size_t mWaitsUnderWay = 0;
};

} // namespace farview
