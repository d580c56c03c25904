#pragma once

#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/NotificationCenter.h"
#include "Platform/ObserverTable.h"
#include "Platform/Types/Observers.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>
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

    explicit FakeDistributedNotificationCenter(FakeRunLoop& loop) : mLoop(loop) {}

    void addObserver(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
                     std::string object) override
    {
        mObservers.add(std::move(observer), std::move(handler), std::move(name), std::move(object));
    }

    void removeObserver(const std::weak_ptr<void>& observer) override
    {
        mObservers.remove(observer);
    }

    void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                        const std::string& object) override
    {
        mObservers.remove(observer, name, object);
    }

    void postNotificationName(const std::string& name, const std::string& object,
                              TextUserInfo userInfo, unsigned options) override
    {
        const Post post{name, object, std::move(userInfo), options};
        mPosts.push_back(post);
        mPostObservers.tell(post);
        deliverLater(post);
    }

    void setSuspended(bool suspended) override
    {
        mSuspended = suspended;
        if (suspended)
            return;
        for (auto& post : std::exchange(mKept, {}))
            deliverLater(std::move(post));
    }

    Subscription observeReconnection(std::function<void()> action) override
    {
        return mReconnectionObservers.add(std::move(action));
    }

    /// A post of another program; delivered on a later turn, and not recorded in `posts`.
    void postFromAnotherProcess(std::string name, TextUserInfo userInfo = {}, unsigned options = 3,
                                std::string object = {})
    {
        deliverLater({std::move(name), std::move(object), std::move(userInfo), options});
    }

    /// The bus goes away: posts are lost from now on.
    void disconnect() { mConnected = false; }
    /// The bus is back; who observes the reconnection hears of it on a later turn.
    void reconnect()
    {
        mConnected = true;
        mLoop.performAfterDelay(Duration::zero(), mLife, [this] { mReconnectionObservers.tell(); });
    }

    /// Every post of this process so far, in order, lost ones included.
    const std::vector<Post>& posts() const { return mPosts; }
    std::vector<Post> postsNamed(const std::string& name) const
    {
        std::vector<Post> found;
        std::copy_if(mPosts.begin(), mPosts.end(), std::back_inserter(found),
                     [&](const Post& post) { return post.name == name; });
        return found;
    }

    int countOf(const std::string& name) const { return static_cast<int>(postsNamed(name).size()); }

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
    void deliverLater(Post post)
    {
        if (!mConnected)
            return;
        mLoop.performAfterDelay(Duration::zero(), mLife,
                                [this, post = std::move(post)] { receive(post); });
    }

    void receive(const Post& post)
    {
        if (!mSuspended || (post.options & deliverImmediately) != 0) {
            deliver(post);
            return;
        }
        std::erase_if(mKept, [&](const Post& kept) { return kept.name == post.name; });
        mKept.push_back(post);
    }

    void deliver(const Post& post)
    {
        UserInfo userInfo;
        for (const auto& [key, value] : post.userInfo)
            userInfo.emplace(key, value);
        mObservers.deliver(Notification(post.name, nullptr, std::move(userInfo)), post.object);
    }

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
