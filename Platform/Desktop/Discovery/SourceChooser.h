#pragma once

#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Desktop/Discovery/EmbeddedSource.h"
#include "Platform/Desktop/Discovery/NetworkWatch.h"
#include "Platform/Desktop/Discovery/TypeSearch.h"
#include "Platform/Types/DiscoveryCondition.h"
#include "Platform/Types/Observers.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// Decides which source each new search uses: the daemon where one answers, else the embedded
/// stack. A search keeps its source, so that nothing flickers when the other one turns up.
class SourceChooser : public QObject
{
public:
    explicit SourceChooser(Log& log);
    ~SourceChooser() override;

    /// The search for a type; shared with whoever searches for it on the same source.
    std::shared_ptr<TypeSearch> search(const std::string& type, const std::string& domain);
    void checkAgain();

    DiscoveryCondition condition() const { return mCondition; }
    Subscription observeCondition(std::function<void()> changed);

private:
    std::vector<std::shared_ptr<TypeSearch>> searches() const;
    bool isOutdated(const TypeSearch& search) const;
    bool isAnySearchUndecided() const;
    void handlePresence();
    void decide();
    std::shared_ptr<DiscoverySource> chooseSource();
    std::shared_ptr<EmbeddedSource> embeddedSource();
    void handleEmbeddedFailure();
    void handleNetworkChange();
    void updateCondition();
    DiscoveryCondition conditionOf(const TypeSearch& search) const;

    Log& mLog;
    std::shared_ptr<AvahiDaemonLink> mLink;
    std::shared_ptr<DiscoverySource> mDaemon;
    std::weak_ptr<EmbeddedSource> mEmbedded;
    DiscoveryCondition mEmbeddedCondition = DiscoveryCondition::starting;
    std::vector<std::weak_ptr<TypeSearch>> mSearches;
    std::optional<std::chrono::steady_clock::time_point> mCheckedAt;
    std::unique_ptr<NetworkWatch> mNetworkWatch;
    QTimer mRetry;
    DiscoveryCondition mCondition = DiscoveryCondition::starting;
    Observers<> mConditionObservers;
};

} // namespace farview
