#include "Platform/Fake/FakeDistributedNotificationCenter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace farview
{

FakeDistributedNotificationCenter::FakeDistributedNotificationCenter(FakeRunLoop& loop)
    : mLoop(loop)
{
}

void FakeDistributedNotificationCenter::addObserver(std::weak_ptr<void> observer,
                                                    NotificationHandler handler, std::string name,
                                                    std::string object)
{
    mObservers.add(std::move(observer), std::move(handler), std::move(name), std::move(object));
}

void FakeDistributedNotificationCenter::removeObserver(const std::weak_ptr<void>& observer)
{
    mObservers.remove(observer);
}

void FakeDistributedNotificationCenter::removeObserver(const std::weak_ptr<void>& observer,
                                                       const std::string& name,
                                                       const std::string& object)
{
    mObservers.remove(observer, name, object);
}

void FakeDistributedNotificationCenter::postNotificationName(const std::string& name,
                                                             const std::string& object,
                                                             TextUserInfo userInfo,
                                                             unsigned options)
{
    const Post post{name, object, std::move(userInfo), options};
    mPosts.push_back(post);
    mPostObservers.tell(post);
    deliverLater(post);
}

void FakeDistributedNotificationCenter::postFromAnotherProcess(std::string name,
                                                               TextUserInfo userInfo,
                                                               unsigned options, std::string object)
{
    deliverLater({std::move(name), std::move(object), std::move(userInfo), options});
}

void FakeDistributedNotificationCenter::deliverLater(Post post)
{
    if (!mConnected)
        return;
    mLoop.performAfterDelay(Duration::zero(), mLife,
                            [this, post = std::move(post)] { receive(post); });
}

void FakeDistributedNotificationCenter::receive(const Post& post)
{
    if (!mSuspended || (post.options & deliverImmediately) != 0) {
        deliver(post);
        return;
    }
    std::erase_if(mKept, [&](const Post& kept) { return kept.name == post.name; });
    mKept.push_back(post);
}

void FakeDistributedNotificationCenter::deliver(const Post& post)
{
    UserInfo userInfo;
    for (const auto& [key, value] : post.userInfo)
        userInfo.emplace(key, value);
    mObservers.deliver(Notification(post.name, nullptr, std::move(userInfo)), post.object);
}

void FakeDistributedNotificationCenter::setSuspended(bool suspended)
{
    mSuspended = suspended;
    if (suspended)
        return;
    for (auto& post : std::exchange(mKept, {}))
        deliverLater(std::move(post));
}

Subscription FakeDistributedNotificationCenter::observeReconnection(std::function<void()> action)
{
    return mReconnectionObservers.add(std::move(action));
}

void FakeDistributedNotificationCenter::reconnect()
{
    mConnected = true;
    mLoop.performAfterDelay(Duration::zero(), mLife, [this] { mReconnectionObservers.tell(); });
}

std::vector<FakeDistributedNotificationCenter::Post>
FakeDistributedNotificationCenter::postsNamed(const std::string& name) const
{
    std::vector<Post> found;
    std::copy_if(mPosts.begin(), mPosts.end(), std::back_inserter(found),
                 [&](const Post& post) { return post.name == name; });
    return found;
}

int FakeDistributedNotificationCenter::countOf(const std::string& name) const
{
    return static_cast<int>(postsNamed(name).size());
}

} // namespace farview
