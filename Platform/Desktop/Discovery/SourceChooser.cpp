#include "Platform/Desktop/Discovery/SourceChooser.h"

#include "Platform/Desktop/Discovery/HostAddresses.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using Presence = AvahiDaemonLink::Presence;

constexpr auto pauseBeforeRetry = 5s;
/// A search that begins right after a check was asked for is meant by it too.
constexpr auto reachOfCheck = 3s;

} // namespace

SourceChooser::SourceChooser(Log& log)
    : mLog(log), mLink(std::make_shared<AvahiDaemonLink>(log)), mDaemon(daemonSource(mLink))
{
    mRetry.setSingleShot(true);
    mRetry.setInterval(pauseBeforeRetry);
    connect(&mRetry, &QTimer::timeout, this, &SourceChooser::decide);
    connect(mLink.get(), &AvahiDaemonLink::presenceChanged, this, &SourceChooser::handlePresence);
}

SourceChooser::~SourceChooser() = default;

std::vector<std::shared_ptr<TypeSearch>> SourceChooser::searches() const
{
    std::vector<std::shared_ptr<TypeSearch>> living;
    for (const auto& each : mSearches) {
        if (auto search = each.lock())
            living.push_back(std::move(search));
    }
    return living;
}

std::shared_ptr<TypeSearch> SourceChooser::search(const std::string& type,
                                                  const std::string& domain)
{
    mLink->look();
    for (const auto& each : searches()) {
        if (each->type() == type && each->domain() == domain && !isOutdated(*each))
            return each;
    }
    auto search = std::make_shared<TypeSearch>(type, domain);
    std::erase_if(mSearches, [](const auto& each) { return each.expired(); });
    mSearches.push_back(search);
    if (mCheckedAt && std::chrono::steady_clock::now() - *mCheckedAt < reachOfCheck)
        search->checkAgain();
    decide();
    return search;
}

/// Whether a new search would use another source.
bool SourceChooser::isOutdated(const TypeSearch& search) const
{
    if (!search.source() || mLink->presence() == Presence::unknown)
        return false;
    const bool usesDaemon = search.source() == mDaemon;
    return usesDaemon != (mLink->presence() == Presence::present);
}

void SourceChooser::handlePresence()
{
    decide();
    updateCondition();
}

void SourceChooser::decide()
{
    for (const auto& search : searches()) {
        if (search->source())
            continue;
        if (auto source = chooseSource())
            search->useSource(std::move(source));
    }
    if (isAnySearchUndecided() && mLink->presence() == Presence::absent)
        mRetry.start();
    updateCondition();
}

bool SourceChooser::isAnySearchUndecided() const
{
    const auto living = searches();
    return std::any_of(living.begin(), living.end(),
                       [](const auto& search) { return !search->source(); });
}

std::shared_ptr<DiscoverySource> SourceChooser::chooseSource()
{
    if (mLink->presence() == Presence::present)
        return mDaemon;
    if (mLink->presence() == Presence::unknown)
        return nullptr;
    return embeddedSource();
}

std::shared_ptr<EmbeddedSource> SourceChooser::embeddedSource()
{
    if (auto source = mEmbedded.lock())
        return source;
    auto start = EmbeddedServer::start();
    mEmbeddedCondition = start.condition;
    if (!mNetworkWatch)
        mNetworkWatch = std::make_unique<NetworkWatch>([this] { handleNetworkChange(); });
    if (!start.server)
        return nullptr;
    start.server->setFailed([weak = QPointer(this)] {
        if (weak)
            weak->handleEmbeddedFailure();
    });
    mLog.write(LogLevel::info, "No discovery daemon answers; looking for devices without it");
    const auto source = std::make_shared<EmbeddedSource>(std::move(start.server));
    mEmbedded = source;
    return source;
}

void SourceChooser::handleEmbeddedFailure()
{
    mLog.write(LogLevel::warning, "The embedded discovery stack failed; starting it anew");
    mEmbedded.reset();
    for (const auto& search : searches()) {
        if (search->source() && search->source() != mDaemon)
            search->loseSource();
    }
    decide();
}

void SourceChooser::handleNetworkChange()
{
    if (isAnySearchUndecided())
        decide();
    updateCondition();
}

void SourceChooser::checkAgain()
{
    mCheckedAt = std::chrono::steady_clock::now();
    for (const auto& search : searches())
        search->checkAgain();
}

DiscoveryCondition SourceChooser::conditionOf(const TypeSearch& search) const
{
    if (search.source() == mDaemon)
        return mLink->presence() == Presence::present ? DiscoveryCondition::working
                                                      : DiscoveryCondition::unavailable;
    if (search.source())
        return hostAddresses().empty() ? DiscoveryCondition::unavailable
                                       : DiscoveryCondition::working;
    return mLink->presence() == Presence::unknown ? DiscoveryCondition::starting
                                                  : mEmbeddedCondition;
}

/// The newest search speaks for all: the older ones may still wait for a source that has gone.
void SourceChooser::updateCondition()
{
    const auto living = searches();
    const auto condition = living.empty() ? mCondition : conditionOf(*living.back());
    if (condition == std::exchange(mCondition, condition))
        return;
    QTimer::singleShot(0, this, [this] { mConditionObservers.tell(); });
}

Subscription SourceChooser::observeCondition(std::function<void()> changed)
{
    return mConditionObservers.add(std::move(changed));
}

} // namespace farview
