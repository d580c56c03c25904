#include "Platform/Desktop/Notifications/NotificationDelivery.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace farview
{
namespace
{

Notification notificationFrom(const PostedNotification& posted)
{
    return {posted.name, nullptr, UserInfo(posted.userInfo.begin(), posted.userInfo.end())};
}

} // namespace

NotificationDelivery::NotificationDelivery(RunLoop& runLoop, std::string session)
    : mRunLoop(runLoop), mSession(std::move(session))
{
}

void NotificationDelivery::receive(PostedNotification posted)
{
    if (!isForThisSession(posted))
        return;
    if (waits(posted))
        keep(std::move(posted));
    else if (mResuming)
        mResumed.push_back(std::move(posted)); // what was kept is older and comes first
    else
        deliver(posted);
}

void NotificationDelivery::setSuspended(bool suspended)
{
    mSuspended = suspended;
    if (suspended || mKept.empty())
        return;
    std::move(mKept.begin(), mKept.end(), std::back_inserter(mResumed));
    mKept.clear();
    if (!std::exchange(mResuming, true))
        mRunLoop.performAfterDelay(Duration::zero(), mLife, [this] { deliverResumed(); });
}

bool NotificationDelivery::isForThisSession(const PostedNotification& posted) const
{
    const bool toAll = (posted.options & DistributedNotificationCenter::postToAllSessions) != 0;
    return toAll || mSession.empty() || posted.session.empty() || posted.session == mSession;
}

bool NotificationDelivery::waits(const PostedNotification& posted) const
{
    return mSuspended && (posted.options & DistributedNotificationCenter::deliverImmediately) == 0;
}

void NotificationDelivery::keep(PostedNotification posted)
{
    std::erase_if(mKept, [&](const auto& each) { return each.name == posted.name; });
    mKept.push_back(std::move(posted));
}

void NotificationDelivery::deliver(const PostedNotification& posted)
{
    mObservers.deliver(notificationFrom(posted), posted.object);
}

void NotificationDelivery::deliverResumed()
{
    mResuming = false;
    // A handler may suspend again, and what is left then waits again.
    for (auto& posted : std::exchange(mResumed, {}))
        receive(std::move(posted));
}

} // namespace farview
