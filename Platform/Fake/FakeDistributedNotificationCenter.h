#pragma once

#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/NotificationCenter.h"
#include "Platform/ObserverTable.h"
#include "Platform/Types/Observers.h"

#include <memory>
#include <vector>

namespace farview
{

/// A distributed centre without a bus: records every post and delivers it on a later turn of the
/// loop.
class FakeDistributedNotificationCenter final : public DistributedNotificationCenter
{
public:
    struct Post {
        std::string name;
        std::string object;
        TextUserInfo userInfo;
        unsigned options = 0;

        bool operator==(const Post&) const = default;
    };

    explicit FakeDistributedNotificationCenter(FakeRunLoop& loop);

    void addObserver(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
                     std::string object) override;
    void removeObserver(const std::weak_ptr<void>& observer) override;
    void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                        const std::string& object) override;
    void postNotificationName(const std::string& name, const std::string& object,
                              TextUserInfo userInfo, unsigned options) override;
    void setSuspended(bool suspended) override;
    Subscription observeReconnection(std::function<void()> action) override;

    /// A post of another program; delivered on a later turn, and not recorded in `posts`.
    void postFromAnotherProcess(std::string name, TextUserInfo userInfo = {}, unsigned options = 3,
                                std::string object = {});

    /// The bus goes away: posts are lost from now on.
    void disconnect() { mConnected = false; }
    /// The bus is back; who observes the reconnection hears of it on a later turn.
    void reconnect();

    /// Every post of this process so far, in order, lost ones included.
    const std::vector<Post>& posts() const { return mPosts; }
    std::vector<Post> postsNamed(const std::string& name) const;
    int countOf(const std::string& name) const;
    /// Calls `observer` within each post of this process.
    Subscription observePosts(std::function<void(const Post&)> observer)
    {
        return mPostObservers.add(std::move(observer));
    }
    void forgetPosts() { mPosts.clear(); }

    std::size_t registrationCount() const { return mObservers.size(); }
    bool isObserved(const std::string& name) const { return mObservers.observes(name); }
    bool isSuspended() const { return mSuspended; }

private:
    void deliverLater(Post post);
    void receive(const Post& post);
    void deliver(const Post& post);

    FakeRunLoop& mLoop;
    /// What pending deliveries are bound to: they end with the centre.
    std::shared_ptr<void> mLife = std::make_shared<int>();
    ObserverTable<std::string> mObservers;
    std::vector<Post> mPosts;
    Observers<const Post&> mPostObservers;
    /// Of each name, the latest post that waits for the end of the suspension, in order of arrival.
    std::vector<Post> mKept;
    Observers<> mReconnectionObservers;
    bool mSuspended = false;
    bool mConnected = true;
};

} // namespace farview
