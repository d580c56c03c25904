#pragma once

#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Desktop/Discovery/EntryGroup.h"
#include "Platform/Desktop/Discovery/NetworkWatch.h"
#include "Platform/Desktop/Discovery/ServicePublication.h"
#include "Platform/Log.h"
#include "Platform/NetServicePublisher.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

namespace farview
{

/// Announces through the discovery daemon, or by itself where none answers within a second. Main
/// thread only; the application object must exist.
class DesktopNetServicePublisher final : public QObject, public NetServicePublisher
{
public:
    /// `log` must outlive the publisher.
    explicit DesktopNetServicePublisher(Log& log);
    ~DesktopNetServicePublisher() override;

    void setDelegate(std::weak_ptr<NetServicePublisherDelegate> delegate) override;
    void publish(const ServiceAnnouncement& announcement) override;
    void updateTXTRecord(const std::map<std::string, Data>& record) override;
    void stop() override;

private:
    void handlePresence();
    void announce();
    void announceBy(std::unique_ptr<EntryGroupMaker> maker);
    std::unique_ptr<EntryGroupMaker> embeddedMaker();
    void withdraw();
    void handleFailure(const std::string& reason, bool isFinal);
    void tell(void (NetServicePublisherDelegate::*what)(const std::string&),
              const std::string& text);

    Log& mLog;
    std::shared_ptr<AvahiDaemonLink> mLink;
    std::weak_ptr<NetServicePublisherDelegate> mDelegate;
    std::optional<ServiceAnnouncement> mAnnouncement;
    std::unique_ptr<EntryGroupMaker> mMaker;
    std::unique_ptr<ServicePublication> mPublication;
    bool mUsesDaemon = false;
    QTimer mRetry;
    std::unique_ptr<NetworkWatch> mNetworkWatch;
};

} // namespace farview
