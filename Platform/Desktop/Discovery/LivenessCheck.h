#pragma once

#include "Platform/Desktop/Discovery/DiscoverySource.h"

#include <QObject>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace farview
{

/// Finds out which services still answer. Whoever remembers records may keep those of a dead host
/// for an hour, so this asks with a memory of its own that begins empty, and goes on listening for
/// those that did not answer.
class LivenessCheck : public QObject
{
public:
    struct Events {
        /// It did not answer. It is listened for from now on.
        std::function<void(const std::string& name)> died;
        /// One that had died answers.
        std::function<void(const std::string& name)> returned;
    };

    explicit LivenessCheck(Events events);

    /// Those that are being asked or listened for already are left alone.
    void check(const std::vector<ServiceName>& services);
    /// Ends the interest in one.
    void forget(const std::string& name);

private:
    struct Listener {
        Subscription listening;
        bool isDead = false;
    };

    void hear(const std::string& name);
    void judge(const std::vector<std::string>& names);

    Events mEvents;
    std::map<std::string, Listener> mListeners;
};

} // namespace farview
