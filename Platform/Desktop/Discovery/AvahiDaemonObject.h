#pragma once

#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"

#include <memory>

namespace farview
{

/// One object inside the discovery daemon: a browser or a group of entries. It is asked for, then
/// listened to, then told to start, and freed with this handle. Outlived by the link.
class AvahiDaemonObject : public std::enable_shared_from_this<AvahiDaemonObject>
{
public:
    struct Events {
        /// A signal of the object.
        AvahiDaemonLink::SignalHandler signal;
        /// The object exists and is being listened to.
        std::function<void()> ready;
        /// The daemon refused to make it; with the bus's name of the error.
        std::function<void(const QString& error)> refused;
    };

    AvahiDaemonObject(AvahiDaemonLink& link, QString interface, Events events);
    ~AvahiDaemonObject();

    /// Asks the daemon for the object. Called once.
    void prepare(const QDBusMessage& message);
    bool isReady() const { return !mPath.isEmpty(); }
    QDBusMessage message(const QString& member) const;

private:
    static QDBusMessage message(const QString& path, const QString& interface,
                                const QString& member);
    void handlePrepared(const QDBusMessage& reply);

    AvahiDaemonLink& mLink;
    QString mInterface;
    Events mEvents;
    QString mPath;
    unsigned mDaemonNumber = 0;
    Subscription mSignals;
};

} // namespace farview
