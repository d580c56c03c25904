#pragma once

#include "Platform/Desktop/Discovery/KnownService.h"
#include "Platform/NetService.h"

#include <QTimer>

#include <memory>

namespace farview
{

/// What one browser hands out for a service: its own delegate, resolves and monitoring on what the
/// process knows.
class DesktopNetService final : public NetService,
                                public KnownServiceObserver,
                                public std::enable_shared_from_this<DesktopNetService>
{
public:
    static std::shared_ptr<DesktopNetService> make(std::shared_ptr<KnownService> service);

    const std::string& name() const override { return mService->printableName(); }
    const std::string& type() const override { return mService->name().type; }
    const std::string& domain() const override { return mDomain; }
    std::optional<std::string> hostName() const override;
    Data TXTRecordData() const override;
    std::vector<Endpoint> endpoints() const override;
    void setDelegate(std::weak_ptr<NetServiceDelegate> delegate) override;
    void resolveWithTimeout(Duration timeout) override;
    void startMonitoring() override;
    void stopMonitoring() override;

    const std::shared_ptr<KnownService>& knownService() const { return mService; }
    bool isWaitingForResolve() const override { return mIsWaiting; }
    void serviceWasResolved() override;
    void serviceCannotBeResolved(const std::string& reason) override;
    void recordChanged(const Data& record) override;

private:
    explicit DesktopNetService(std::shared_ptr<KnownService> service);
    void answerOnNextTurn();
    void endResolve();

    std::shared_ptr<KnownService> mService;
    std::string mDomain;
    std::weak_ptr<NetServiceDelegate> mDelegate;
    std::shared_ptr<void> mMonitor;
    std::unique_ptr<QTimer> mTimeout;
    unsigned mResolveNumber = 0;
    bool mIsWaiting = false;
    bool mWasResolved = false;
};

} // namespace farview
