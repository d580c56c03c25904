#include "Common/Bonjour/QLNBonjourBrowser.h"

#include <algorithm>
#include <utility>

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
    ResolveBatch(RunLoop& runLoop, std::function<void()> then)
        : mRunLoop(runLoop), mThen(std::move(then))
    {
    }

    /// Begins the resolve of all of them; each may take `timeout`. Called once.
    void begin(const std::vector<std::shared_ptr<NetService>>& services, Duration timeout)
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

    /// The resolve of that service has ended. A service that is not waited for changes nothing.
    void resolveEnded(const NetService& service)
    {
        for (const auto& pending : mPending) {
            if (pending.service.get() == &service)
                pending.wait->stop();
        }
    }

private:
    struct Pending {
        std::shared_ptr<NetService> service;
        std::shared_ptr<RunLoop::Wait> wait;
    };

    void waitEnded()
    {
        --mWaitsUnderWay;
        if (mWaitsUnderWay == 0)
            std::exchange(mThen, nullptr)();
    }

    RunLoop& mRunLoop;
    std::function<void()> mThen;
    std::vector<Pending> mPending;
    std::size_t mWaitsUnderWay = 0;
};

} // namespace farview

using farview::Data;
using farview::Duration;
using farview::NetService;
using farview::NetServiceBrowser;
using farview::UserInfo;

namespace
{

constexpr const char* localDomain = "local.";
constexpr Duration resolveTimeout{5.0};
/// Lets a device finish changing its record before it is resolved again.
constexpr Duration updateDelay{0.5};
constexpr std::size_t shortestValue = 2;

std::optional<std::string>& serviceName()
{
    static std::optional<std::string> name;
    return name;
}

std::shared_ptr<NetService> serviceOf(const UserInfo& change)
{
    const auto found = change.find(kQLNBonjourBrowserDidUpdateTXTRecordServiceKey);
    if (found == change.end())
        return nullptr;
    const auto* object = std::get_if<std::shared_ptr<farview::Object>>(&found->second);
    return object ? std::dynamic_pointer_cast<NetService>(*object) : nullptr;
}

bool contains(const QLNBonjourBrowser::ServiceList& list, const NetService& service)
{
    return std::any_of(list.begin(), list.end(),
                       [&](const auto& each) { return each->isEqual(service); });
}

} // namespace

std::optional<std::string> stringWithData(const Data* data)
{
    if (!data || data->size() < shortestValue)
        return std::nullopt;
    const bool isASCII = std::all_of(data->bytes.begin(), data->bytes.end(),
                                     [](std::uint8_t byte) { return byte < 0x80; });
    return isASCII ? std::optional(data->text()) : std::nullopt;
}

const std::optional<std::string>& QLNBonjourBrowser::bonjourServiceName() { return serviceName(); }

void QLNBonjourBrowser::setBonjourServiceName(const std::optional<std::string>& name)
{
    serviceName() = name;
}

QLNBonjourBrowser::QLNBonjourBrowser(farview::Discovery& discovery, farview::RunLoop& runLoop,
                                     farview::NotificationCenter& center)
    : mDiscovery(discovery), mRunLoop(runLoop), mCenter(center)
{
}

void QLNBonjourBrowser::init()
{
    initWithoutStartingService();
    start();
}

void QLNBonjourBrowser::initWithoutStartingService()
{
    mBrowser = mDiscovery.makeBrowser();
    mBrowser->setDelegate(weak_from_this());
}

void QLNBonjourBrowser::start()
{
    if (mBrowser && serviceName())
        mBrowser->searchForServicesOfType(*serviceName(), localDomain);
}

void QLNBonjourBrowser::stop()
{
    if (mBrowser)
        mBrowser->stop();
}

void QLNBonjourBrowser::post(const char* name, UserInfo userInfo)
{
    mCenter.postNotificationName(name, this, std::move(userInfo));
}

void QLNBonjourBrowser::didFindService(NetServiceBrowser& /*browser*/,
                                       const std::shared_ptr<NetService>& service, bool moreComing)
{
    handle({service, true, moreComing});
}

void QLNBonjourBrowser::didRemoveService(NetServiceBrowser& /*browser*/,
                                         const std::shared_ptr<NetService>& service,
                                         bool moreComing)
{
    handle({service, false, moreComing});
}

void QLNBonjourBrowser::handle(const Report& report)
{
    mWaitingReports.push_back(report);
    handleWaitingReports();
}

void QLNBonjourBrowser::handleWaitingReports()
{
    while (!mBatch && !mWaitingReports.empty()) {
        const Report report = std::move(mWaitingReports.front());
        mWaitingReports.pop_front();
        if (report.found)
            serviceFound(report.service, report.moreComing);
        else
            serviceRemoved(report.service, report.moreComing);
    }
}

void QLNBonjourBrowser::serviceFound(const std::shared_ptr<NetService>& service, bool moreComing)
{
    mUpdatedServiceList.push_back(service);
    service->setDelegate(weak_from_this());
    if (moreComing)
        return;
    // The batch belongs to this browser alone, and is gone before it: nothing outlives `this`.
    mBatch = std::make_shared<farview::ResolveBatch>(mRunLoop, [this] { applyFoundBatch(); });
    post(kQLNBonjourBrowserWillAddService, {});
    mCurrentLoop = &mRunLoop;
    mBatch->begin(mUpdatedServiceList, resolveTimeout);
}

void QLNBonjourBrowser::applyFoundBatch()
{
    // An observer may let go of the browser while it is told.
    const auto self = shared_from_this();
    const auto batch = mBatch;
    mActiveServiceList.insert(mActiveServiceList.end(), mUpdatedServiceList.begin(),
                              mUpdatedServiceList.end());
    mUpdatedServiceList.clear();
    if (mMonitorTXTRecordUpdates) {
        for (const auto& service : ServiceList(mActiveServiceList))
            service->startMonitoring();
    }
    post(kQLNBonjourBrowserDidAddService, {});
    mBatch.reset();
    handleWaitingReports();
}

void QLNBonjourBrowser::serviceRemoved(const std::shared_ptr<NetService>& service, bool moreComing)
{
    mUpdatedServiceList.push_back(service);
    service->setDelegate({});
    // Nobody hears how this one ends: the resolve of a departing service only refreshes what the
    // platform knows of it.
    service->resolveWithTimeout(resolveTimeout);
    if (!moreComing)
        applyRemovedBatch();
}

void QLNBonjourBrowser::applyRemovedBatch()
{
    post(kQLNBonjourBrowserWillRemoveService, {});
    std::vector<std::string> names;
    for (const auto& service : ServiceList(mUpdatedServiceList)) {
        if (mMonitorTXTRecordUpdates)
            service->stopMonitoring();
        names.push_back(service->name());
    }
    std::erase_if(mActiveServiceList,
                  [this](const auto& service) { return contains(mUpdatedServiceList, *service); });
    mUpdatedServiceList.clear();
    post(kQLNBonjourBrowserDidRemoveService,
         {{kQLNBonjourBrowserDidRemoveServiceNamesKey, std::move(names)}});
}

void QLNBonjourBrowser::resolveEnded(const NetService& service)
{
    if (mBatch)
        mBatch->resolveEnded(service);
}

void QLNBonjourBrowser::netServiceDidResolveAddress(const std::shared_ptr<NetService>& service)
{
    resolveEnded(*service);
    post(kQLNBonjourBrowserDidUpdateService, {});
}

void QLNBonjourBrowser::didNotResolve(const std::shared_ptr<NetService>& service,
                                      const std::string& /*error*/)
{
    resolveEnded(*service);
}

void QLNBonjourBrowser::didUpdateTXTRecordData(const std::shared_ptr<NetService>& service,
                                               const Data& data)
{
    UserInfo change{{kQLNBonjourBrowserDidUpdateTXTRecordServiceKey,
                     std::static_pointer_cast<farview::Object>(service)},
                    {kQLNBonjourBrowserDidUpdateTXTRecordTXTRecordKey,
                     NetService::dictionaryFromTXTRecordData(data)}};
    mRunLoop.performAfterDelay(updateDelay, weak_from_this(),
                               [this, change = std::move(change)] { updateService(change); });
}

void QLNBonjourBrowser::updateService(const UserInfo& change)
{
    mCurrentLoop = &mRunLoop;
    if (const auto service = serviceOf(change))
        service->resolveWithTimeout(resolveTimeout);
    post(kQLNBonjourBrowserDidUpdateTXTRecord, change);
}
