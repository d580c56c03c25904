#include "Platform/Desktop/Discovery/QtAvahiPoll.h"

#include <QSocketNotifier>
#include <QTimer>

#include <avahi-common/timeval.h>

#include <algorithm>
#include <memory>

// The library leaves these two types to whoever provides the loop. Both may be freed inside their
// own callback, so nothing of them is touched after it, and Qt's objects go a turn later.

namespace
{

struct DeleteLater {
    void operator()(QObject* object) const
    {
        object->disconnect();
        object->deleteLater();
    }
};

} // namespace

struct AvahiWatch {
    std::unique_ptr<QSocketNotifier, DeleteLater> in;
    std::unique_ptr<QSocketNotifier, DeleteLater> out;
    int descriptor = -1;
    AvahiWatchEvent happened{};
    AvahiWatchCallback callback = nullptr;
    void* userdata = nullptr;

    void fire(AvahiWatchEvent event)
    {
        happened = event;
        callback(this, descriptor, event, userdata);
    }

    void setWanted(int events)
    {
        in->setEnabled((events & AVAHI_WATCH_IN) != 0);
        out->setEnabled((events & AVAHI_WATCH_OUT) != 0);
    }
};

struct AvahiTimeout {
    std::unique_ptr<QTimer, DeleteLater> timer;

    void setTime(const timeval* time)
    {
        if (!time) {
            timer->stop();
            return;
        }
        // avahi_age() is positive for what has passed; a started microsecond waits a millisecond.
        const AvahiUsec left = std::max<AvahiUsec>(-avahi_age(time), 0);
        timer->start(static_cast<int>(std::min<AvahiUsec>((left + 999) / 1000, 86'400'000)));
    }
};

namespace farview
{
namespace
{

AvahiWatch* newWatch(const AvahiPoll*, int descriptor, AvahiWatchEvent event,
                     AvahiWatchCallback callback, void* userdata)
{
    auto watch = std::make_unique<AvahiWatch>();
    watch->in.reset(new QSocketNotifier(descriptor, QSocketNotifier::Read));
    watch->out.reset(new QSocketNotifier(descriptor, QSocketNotifier::Write));
    watch->descriptor = descriptor;
    watch->callback = callback;
    watch->userdata = userdata;
    watch->setWanted(event);
    auto* raw = watch.get();
    QObject::connect(raw->in.get(), &QSocketNotifier::activated, raw->in.get(),
                     [raw] { raw->fire(AVAHI_WATCH_IN); });
    QObject::connect(raw->out.get(), &QSocketNotifier::activated, raw->out.get(),
                     [raw] { raw->fire(AVAHI_WATCH_OUT); });
    return watch.release();
}

void updateWatch(AvahiWatch* watch, AvahiWatchEvent event) { watch->setWanted(event); }

AvahiWatchEvent eventsOfWatch(AvahiWatch* watch) { return watch->happened; }

void freeWatch(AvahiWatch* watch)
{
    watch->setWanted(0);
    const std::unique_ptr<AvahiWatch> owner(watch);
}

AvahiTimeout* newTimeout(const AvahiPoll*, const timeval* time, AvahiTimeoutCallback callback,
                         void* userdata)
{
    auto timeout = std::make_unique<AvahiTimeout>();
    timeout->timer.reset(new QTimer);
    timeout->timer->setSingleShot(true);
    timeout->timer->setTimerType(Qt::PreciseTimer);
    timeout->setTime(time);
    auto* raw = timeout.get();
    QObject::connect(raw->timer.get(), &QTimer::timeout, raw->timer.get(),
                     [raw, callback, userdata] { callback(raw, userdata); });
    return timeout.release();
}

void updateTimeout(AvahiTimeout* timeout, const timeval* time) { timeout->setTime(time); }

void freeTimeout(AvahiTimeout* timeout)
{
    timeout->timer->stop();
    const std::unique_ptr<AvahiTimeout> owner(timeout);
}

} // namespace

const AvahiPoll* qtAvahiPoll()
{
    static const AvahiPoll poll = {nullptr,   newWatch,   updateWatch,   eventsOfWatch,
                                   freeWatch, newTimeout, updateTimeout, freeTimeout};
    return &poll;
}

} // namespace farview
