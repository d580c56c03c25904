#pragma once

#include "Platform/RunLoop.h"
#include "Platform/Types/Notification.h"
#include "Platform/Types/Selector.h"
#include "Platform/Types/Subscription.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace farview
{

using NotificationHandler = std::function<void(const Notification&)>;

/// A handler that calls `responder`'s operation of that name with the notification, while it lives.
NotificationHandler performing(std::weak_ptr<Responder> responder, Selector selector);

/// The centre for notifications within one process. A post calls the handlers before it returns, in
/// the order of registration.
///
/// A registration is (observer, handler, name, object); the same one may be made twice and is then
/// called twice. Nothing reaches an observer that was removed or is gone, even in the middle of a
/// post.
class NotificationCenter
{
public:
    virtual ~NotificationCenter() = default;

    /// `object` null: from whomever. The observer is only told apart, never called.
    virtual void addObserver(std::weak_ptr<void> observer, NotificationHandler handler,
                             std::string name, const Object* object) = 0;
    /// Ends every registration of that observer.
    virtual void removeObserver(const std::weak_ptr<void>& observer) = 0;
    /// Ends that observer's registrations for the name and the object; null object: for any object.
    virtual void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                                const Object* object) = 0;
    virtual void postNotificationName(const std::string& name, const Object* object,
                                      UserInfo userInfo) = 0;
};

/// The centre that reaches every process of the user, the poster included.
///
/// A post is delivered on a later turn of the loop, never inside the post. Handlers get
/// notifications in the order in which they were posted. Posting and observing never fail: while
/// there is no bus, posts are lost and observers wait for its return.
class DistributedNotificationCenter
{
public:
    using TextUserInfo = std::map<std::string, std::string>;

    /// Bits of the options word.
    static constexpr unsigned deliverImmediately = 1;
    static constexpr unsigned postToAllSessions = 2;

    virtual ~DistributedNotificationCenter() = default;

    /// `object` empty: whatever the post's object is.
    virtual void addObserver(std::weak_ptr<void> observer, NotificationHandler handler,
                             std::string name, std::string object) = 0;
    virtual void removeObserver(const std::weak_ptr<void>& observer) = 0;
    virtual void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                                const std::string& object) = 0;
    virtual void postNotificationName(const std::string& name, const std::string& object,
                                      TextUserInfo userInfo, unsigned options) = 0;

    /// While suspended (the application is not active), posts without `deliverImmediately` are
    /// kept, the latest of each name, and delivered at the end of the suspension.
    virtual void setSuspended(bool suspended) = 0;

    /// Calls `action` whenever the connection came back after a loss: what was posted meanwhile is
    /// unknown, so the preferences are to be read and the connection to be asked for again.
    virtual Subscription observeReconnection(std::function<void()> action) = 0;
};

} // namespace farview
