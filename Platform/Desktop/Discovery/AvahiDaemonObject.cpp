#include "Platform/Desktop/Discovery/AvahiDaemonObject.h"

#include <QDBusObjectPath>

#include <utility>

namespace farview
{

AvahiDaemonObject::AvahiDaemonObject(AvahiDaemonLink& link, QString interface, Events events)
    : mLink(link), mInterface(std::move(interface)), mEvents(std::move(events)),
      mDaemonNumber(link.daemonNumber())
{
}

AvahiDaemonObject::~AvahiDaemonObject()
{
    // A new daemon uses the same paths for other objects.
    if (isReady() && mDaemonNumber == mLink.daemonNumber())
        mLink.send(message(QStringLiteral("Free")));
}

QDBusMessage AvahiDaemonObject::message(const QString& path, const QString& interface,
                                        const QString& member)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Avahi"), path, interface,
                                          member);
}

QDBusMessage AvahiDaemonObject::message(const QString& member) const
{
    return message(mPath, mInterface, member);
}

void AvahiDaemonObject::prepare(const QDBusMessage& request)
{
    mLink.call(request, [weak = weak_from_this(), link = &mLink,
                         interface = mInterface](const QDBusMessage& reply) {
        if (const auto self = weak.lock())
            self->handlePrepared(reply);
        else if (reply.signature() == QLatin1String("o"))
            link->send(message(reply.arguments().at(0).value<QDBusObjectPath>().path(), interface,
                               QStringLiteral("Free")));
    });
}

void AvahiDaemonObject::handlePrepared(const QDBusMessage& reply)
{
    if (mDaemonNumber != mLink.daemonNumber())
        return;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("o")) {
        mEvents.refused(reply.errorName());
        return;
    }
    mPath = reply.arguments().at(0).value<QDBusObjectPath>().path();
    mSignals = mLink.observeSignals(mPath, mEvents.signal);
    mEvents.ready();
}

} // namespace farview
