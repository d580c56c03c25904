#pragma once

#include "Platform/Desktop/Discovery/DiscoverySource.h"

#include <QObject>
#include <QTimer>

#include <deque>
#include <map>
#include <memory>

namespace farview
{

/// Lets so many resolves run at a time as the source can bear; the others wait their turn.
class ResolveQueue : public QObject, public std::enable_shared_from_this<ResolveQueue>
{
public:
    struct Job {
        ServiceName service;
        Sighting sighting;
        int addressProtocol = Sighting::anyProtocol;
        /// Goes before those that are not: a service that nobody knows how to reach yet.
        bool isUrgent = true;
        std::function<void(ResolveAnswer)> answer;
    };

    explicit ResolveQueue(std::shared_ptr<DiscoverySource> source);

    /// Answers once, on a later turn; never after the handle was destroyed.
    Subscription resolve(Job job);

    DiscoverySource& source() { return *mSource; }

    /// The bus allows a program 128 open questions, and a service that has died keeps one open for
    /// five seconds.
    static constexpr std::size_t limit = 64;

private:
    struct Entry {
        Job job;
        Subscription running;
        bool isRunning = false;
    };
    using Number = unsigned;

    void wait(Number number, bool isUrgent);
    void startNext();
    void start(Number number, Entry& entry);
    void finish(Number number, const ResolveAnswer& answer);
    void postpone(Number number);
    void drop(Number number);

    std::shared_ptr<DiscoverySource> mSource;
    std::map<Number, Entry> mEntries;
    std::deque<Number> mUrgent;
    std::deque<Number> mOthers;
    std::size_t mRunning = 0;
    Number mLastNumber = 0;
    QTimer mPause;
};

} // namespace farview
