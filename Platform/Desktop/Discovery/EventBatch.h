#pragma once

#include "Platform/NetService.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace farview
{

/// Collects what one burst reports: until nothing came for 30 ms, and for 250 ms at most.
class EventBatch : public QObject
{
public:
    using Services = std::vector<std::shared_ptr<NetService>>;
    /// One batch of either finds or removals, in order.
    using Deliver = std::function<void(bool found, const Services& services)>;

    explicit EventBatch(Deliver deliver);

    void addFound(std::shared_ptr<NetService> service);
    /// One that was not delivered yet is taken back instead.
    void addRemoved(std::shared_ptr<NetService> service);
    /// Forgets what has not been delivered, also in the middle of a delivery.
    void clear();

private:
    struct Run {
        bool found;
        Services services;
    };

    void add(bool found, std::shared_ptr<NetService> service);
    bool takeBack(const std::shared_ptr<NetService>& service);
    void flush();

    Deliver mDeliver;
    std::vector<Run> mRuns;
    QTimer mQuiet;
    QTimer mLimit;
    unsigned mGeneration = 0;
};

} // namespace farview
