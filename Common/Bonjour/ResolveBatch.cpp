#include "Common/Bonjour/ResolveBatch.h"

#include <utility>

namespace farview
{

ResolveBatch::ResolveBatch(RunLoop& runLoop, std::function<void()> then)
    : mRunLoop(runLoop), mThen(std::move(then))
{
}

void ResolveBatch::begin(const std::vector<std::shared_ptr<NetService>>& services, Duration timeout)
{
    if (services.empty()) {
        mWaitsUnderWay = 1;
        mRunLoop.performAfterDelay(Duration::zero(), weak_from_this(), [this] { waitEnded(); });
        return;
    }
    mWaitsUnderWay = services.size();
    for (const auto& service : services) {
        service->resolveWithTimeout(timeout);
        mPending.push_back(
            {service, mRunLoop.run(timeout, weak_from_this(), [this] { waitEnded(); })});
    }
}

void ResolveBatch::resolveEnded(const NetService& service)
{
    for (const auto& pending : mPending) {
        if (pending.service.get() == &service)
            pending.wait->stop();
    }
}

void ResolveBatch::waitEnded()
{
    --mWaitsUnderWay;
    if (mWaitsUnderWay == 0)
        std::exchange(mThen, nullptr)();
}

} // namespace farview
