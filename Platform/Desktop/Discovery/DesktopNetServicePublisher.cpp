#include "Platform/Desktop/Discovery/DesktopNetServicePublisher.h"

#include "Platform/Desktop/Discovery/EmbeddedServer.h"
#include "Platform/Desktop/Discovery/ServiceNames.h"

#include <avahi-common/domain.h>

#include <QPointer>

#include <chrono>
#include <utility>

namespace farview
{
namespace
{

using Presence = AvahiDaemonLink::Presence;

/// Time for a daemon that is being restarted to come back.
constexpr auto pauseBeforeRetry = std::chrono::seconds(2);

bool isUTF8(const std::string& text) { return replacingInvalidUTF8(text) == text; }

bool isValid(const ServiceAnnouncement& announcement)
{
    return isUTF8(announcement.name) && isUTF8(announcement.hostName) &&
           avahi_is_valid_service_name(announcement.name.c_str()) &&
           avahi_is_valid_host_name(announcement.hostName.c_str());
}

} // namespace

DesktopNetServicePublisher::DesktopNetServicePublisher(Log& log)
    : mLog(log), mLink(std::make_shared<AvahiDaemonLink>(log))
{
    mRetry.setSingleShot(true);
    mRetry.setInterval(pauseBeforeRetry);
    connect(&mRetry, &QTimer::timeout, this, &DesktopNetServicePublisher::announce);
    connect(mLink.get(), &AvahiDaemonLink::presenceChanged, this,
            &DesktopNetServicePublisher::handlePresence);
}

DesktopNetServicePublisher::~DesktopNetServicePublisher() { withdraw(); }

void DesktopNetServicePublisher::setDelegate(std::weak_ptr<NetServicePublisherDelegate> delegate)
{
    mDelegate = std::move(delegate);
}

void DesktopNetServicePublisher::publish(const ServiceAnnouncement& announcement)
{
    withdraw();
    mAnnouncement = announcement;
    if (!isValid(announcement)) {
        handleFailure("the name of the service or of its host is not valid", true);
        return;
    }
    if (!mNetworkWatch)
        mNetworkWatch = std::make_unique<NetworkWatch>([this] {
            if (mPublication)
                mPublication->setAddresses(announceableAddresses());
        });
    mLink->look();
    announce();
}

void DesktopNetServicePublisher::updateTXTRecord(const std::map<std::string, Data>& record)
{
    if (mAnnouncement)
        mAnnouncement->TXTRecord = record;
    if (mPublication)
        mPublication->updateTXTRecord(record);
}

void DesktopNetServicePublisher::stop()
{
    withdraw();
    mAnnouncement.reset();
}

/// The maker goes last: its groups say goodbye through it.
void DesktopNetServicePublisher::withdraw()
{
    mRetry.stop();
    mPublication.reset();
    mMaker.reset();
}

/// What was announced by ourselves stays so when a daemon turns up: the two agree with each other.
void DesktopNetServicePublisher::handlePresence()
{
    if (!mAnnouncement)
        return;
    if (mLink->presence() == Presence::absent && mPublication && mUsesDaemon) {
        withdraw();
        mRetry.start();
    } else if (!mPublication) {
        announce();
    }
}

void DesktopNetServicePublisher::announce()
{
    if (!mAnnouncement || mPublication || mLink->presence() == Presence::unknown)
        return;
    mRetry.stop();
    mUsesDaemon = mLink->presence() == Presence::present;
    auto maker = mUsesDaemon ? daemonEntryGroups(mLink) : embeddedMaker();
    if (maker)
        announceBy(std::move(maker));
    else
        handleFailure("no discovery daemon answers, and the network cannot be used without", false);
}

std::unique_ptr<EntryGroupMaker> DesktopNetServicePublisher::embeddedMaker()
{
    auto start = EmbeddedServer::start();
    if (!start.server)
        return nullptr;
    start.server->setFailed([weak = QPointer(this)] {
        if (weak)
            weak->handleFailure("the embedded discovery stack failed", false);
    });
    mLog.write(LogLevel::info, "No discovery daemon answers; announcing without it");
    return embeddedEntryGroups(std::move(start.server));
}

void DesktopNetServicePublisher::announceBy(std::unique_ptr<EntryGroupMaker> maker)
{
    ServicePublication::Events events;
    events.published = [this](const std::string& name) {
        tell(&NetServicePublisherDelegate::didPublish, name);
    };
    events.renamed = [this](const std::string& name) {
        tell(&NetServicePublisherDelegate::willRename, name);
    };
    events.failed = [this](const std::string& reason, bool isFinal) {
        handleFailure(reason, isFinal);
    };
    mMaker = std::move(maker);
    mPublication = std::make_unique<ServicePublication>(*mMaker, *mAnnouncement, std::move(events));
    mPublication->begin(announceableAddresses());
}

/// The caller may be the publication itself, deep inside, so it is withdrawn a turn later.
void DesktopNetServicePublisher::handleFailure(const std::string& reason, bool isFinal)
{
    mLog.write(LogLevel::warning, reason);
    QTimer::singleShot(0, this, [this, reason, isFinal] {
        withdraw();
        if (isFinal)
            mAnnouncement.reset();
        else
            mRetry.start();
        tell(&NetServicePublisherDelegate::didNotPublish, reason);
    });
}

void DesktopNetServicePublisher::tell(void (NetServicePublisherDelegate::*what)(const std::string&),
                                      const std::string& text)
{
    if (const auto delegate = mDelegate.lock())
        (delegate.get()->*what)(text);
}

} // namespace farview
