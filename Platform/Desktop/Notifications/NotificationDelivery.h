#pragma once

#include "Platform/Desktop/Notifications/PostedNotification.h"
#include "Platform/ObserverTable.h"
#include "Platform/RunLoop.h"

#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// The receiving half of a distributed centre: who observes, what is for us, and what waits for the
/// end of a suspension.
class NotificationDelivery
{
public:
    /// `session`: our login session; empty when unknown, and then every session's posts are ours.
    NotificationDelivery(RunLoop& runLoop, std::string session);

    const std::string& session() const { return mSession; }
    ObserverTable<std::string>& observers() { return mObservers; }

    /// Hands it to the observers, keeps it while suspended, or ignores it (another session's).
    void receive(PostedNotification posted);
    void setSuspended(bool suspended);

private:
    bool isForThisSession(const PostedNotification& posted) const;
    bool waits(const PostedNotification& posted) const;
    void keep(PostedNotification posted);
    void deliver(const PostedNotification& posted);
    void deliverResumed();

    RunLoop& mRunLoop;
    std::string mSession;
    ObserverTable<std::string> mObservers;
    std::vector<PostedNotification> mKept;    ///< the latest of each name
    std::vector<PostedNotification> mResumed; ///< to be delivered on the next turn
    bool mSuspended = false;
    bool mResuming = false;
    std::shared_ptr<int> mLife = std::make_shared<int>(0);
};

} // namespace farview
