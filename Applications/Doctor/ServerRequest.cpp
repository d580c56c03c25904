#include "Applications/Doctor/ServerRequest.h"

#include "Common/ConnectionFollower.h"

namespace farview
{

void ServerRequest::begin(Ended ended)
{
    mEnded = std::move(ended);
    endUnlessAnswered();
    ConnectionFollower(mPlatform).query();
}

void ServerRequest::observe(const char* name, NotificationHandler handler)
{
    mPlatform.distributedNotificationCenter->addObserver(weak_from_this(), std::move(handler), name,
                                                         "");
}

void ServerRequest::endAfter(Duration delay, const Outcome& outcome)
{
    if (const auto earlier = mEnding.lock())
        earlier->invalidate();
    mEnding = mPlatform.runLoop->scheduledTimer(delay, false, weak_from_this(),
                                                [this, outcome] { end(outcome); });
}

void ServerRequest::endUnlessAnswered()
{
    endAfter(limit, {false, mLocalized("The screen server does not answer.")});
}

void ServerRequest::end(const Outcome& outcome)
{
    if (const auto ended = std::exchange(mEnded, nullptr))
        ended(outcome);
}

} // namespace farview
