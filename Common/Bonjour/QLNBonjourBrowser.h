#pragma once

#include "Platform/NetService.h"
#include "Platform/NotificationCenter.h"
#include "Platform/RunLoop.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// In-process notifications, posted with the browser as object. Each value equals its name.
inline constexpr const char* kQLNBonjourBrowserWillAddService = "kQLNBonjourBrowserWillAddService";
inline constexpr const char* kQLNBonjourBrowserDidAddService = "kQLNBonjourBrowserDidAddService";
inline constexpr const char* kQLNBonjourBrowserWillRemoveService =
    "kQLNBonjourBrowserWillRemoveService";
inline constexpr const char* kQLNBonjourBrowserDidRemoveService =
    "kQLNBonjourBrowserDidRemoveService";
inline constexpr const char* kQLNBonjourBrowserDidRemoveServiceNamesKey =
    "kQLNBonjourBrowserDidRemoveServiceNamesKey";
inline constexpr const char* kQLNBonjourBrowserDidUpdateService =
    "kQLNBonjourBrowserDidUpdateService";
inline constexpr const char* kQLNBonjourBrowserDidUpdateTXTRecord =
    "kQLNBonjourBrowserDidUpdateTXTRecord";
inline constexpr const char* kQLNBonjourBrowserDidUpdateTXTRecordServiceKey =
    "kQLNBonjourBrowserDidUpdateTXTRecordServiceKey";
inline constexpr const char* kQLNBonjourBrowserDidUpdateTXTRecordTXTRecordKey =
    "kQLNBonjourBrowserDidUpdateTXTRecordTXTRecordKey";
inline constexpr const char* kQLNBonjourBrowserWillUpdateService =
    "kQLNBonjourBrowserWillUpdateService";

namespace farview
{
class ResolveBatch;
} // namespace farview

/// The text of a TXT value: nothing for no data, for data of fewer than two bytes and for data that
/// is not ASCII, else its bytes, whole.
std::optional<std::string> stringWithData(const farview::Data* data);

/// Finds the services of one type, resolves each, keeps the list of those published to clients and
/// announces every change. Made with `std::make_shared`. Main thread only.
///
/// A batch of finds is applied when all its resolves have ended, after five seconds at the latest.
/// What is found or removed meanwhile waits its turn and is handled in the order of its arrival.
/// `stop` ends the search and nothing else: a batch that is being resolved is still applied.
class QLNBonjourBrowser : public farview::Object,
                          public farview::NetServiceBrowserDelegate,
                          public farview::NetServiceDelegate,
                          public std::enable_shared_from_this<QLNBonjourBrowser>
{
public:
    using ServiceList = std::vector<std::shared_ptr<farview::NetService>>;

    /// The type that every browser made from now on searches for; nothing until it is set.
    static const std::optional<std::string>& bonjourServiceName();
    static void setBonjourServiceName(const std::optional<std::string>& name);

    QLNBonjourBrowser(farview::Discovery& discovery, farview::RunLoop& runLoop,
                      farview::NotificationCenter& center);

    /// Sets up and starts browsing at once. Called once.
    void init();
    /// Sets up only; `start` begins the search.
    void initWithoutStartingService();
    void start();
    void stop();

    /// Services found and, resolved or not, published to clients, in report order.
    const ServiceList& activeServiceList() const { return mActiveServiceList; }
    void setActiveServiceList(ServiceList list) { mActiveServiceList = std::move(list); }
    /// Services reported since the last batch was applied.
    const ServiceList& updatedServiceList() const { return mUpdatedServiceList; }
    void setUpdatedServiceList(ServiceList list) { mUpdatedServiceList = std::move(list); }
    std::shared_ptr<farview::NetServiceBrowser> browser() const { return mBrowser; }
    void setBrowser(std::shared_ptr<farview::NetServiceBrowser> browser)
    {
        mBrowser = std::move(browser);
    }
    /// The loop on which the last resolve was begun; not owned.
    farview::RunLoop* currentLoop() const { return mCurrentLoop; }
    void setCurrentLoop(farview::RunLoop* loop) { mCurrentLoop = loop; }
    /// Takes effect at the next batch of found services.
    bool monitorTXTRecordUpdates() const { return mMonitorTXTRecordUpdates; }
    void setMonitorTXTRecordUpdates(bool flag) { mMonitorTXTRecordUpdates = flag; }

    /// Resolves a service whose TXT record changed and announces the record.
    void updateService(const farview::UserInfo& change);

    void didFindService(farview::NetServiceBrowser& browser,
                        const std::shared_ptr<farview::NetService>& service,
                        bool moreComing) override;
    void didRemoveService(farview::NetServiceBrowser& browser,
                          const std::shared_ptr<farview::NetService>& service,
                          bool moreComing) override;
    void netServiceDidResolveAddress(const std::shared_ptr<farview::NetService>& service) override;
    void didNotResolve(const std::shared_ptr<farview::NetService>& service,
                       const std::string& error) override;
    void didUpdateTXTRecordData(const std::shared_ptr<farview::NetService>& service,
                                const farview::Data& data) override;

private:
    /// A report that waits until the batch before it has been applied.
    struct Report {
        std::shared_ptr<farview::NetService> service;
        bool found;
        bool moreComing;
    };

    void handle(const Report& report);
    void serviceFound(const std::shared_ptr<farview::NetService>& service, bool moreComing);
    void serviceRemoved(const std::shared_ptr<farview::NetService>& service, bool moreComing);
    void applyFoundBatch();
    void applyRemovedBatch();
    void handleWaitingReports();
    void resolveEnded(const farview::NetService& service);
    void post(const char* name, farview::UserInfo userInfo);

    farview::Discovery& mDiscovery;
    farview::RunLoop& mRunLoop;
    farview::NotificationCenter& mCenter;
    std::shared_ptr<farview::NetServiceBrowser> mBrowser;
    ServiceList mActiveServiceList;
    ServiceList mUpdatedServiceList;
    /// The batch that is being resolved; null when none is.
    std::shared_ptr<farview::ResolveBatch> mBatch;
    std::deque<Report> mWaitingReports;
    farview::RunLoop* mCurrentLoop = nullptr;
    bool mMonitorTXTRecordUpdates = false;
};
