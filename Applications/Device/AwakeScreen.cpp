#include "Applications/Device/AwakeScreen.h"

#include <QDBusMessage>

#include <utility>

namespace farview
{
namespace
{

QDBusMessage screenSaverCall(const char* member)
{
    const QString service = QStringLiteral("org.freedesktop.ScreenSaver");
    return QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          service, QLatin1String(member));
}

} // namespace

AwakeScreen::AwakeScreen(SessionBus& bus, QString reason) : mBus(bus), mReason(std::move(reason))
{
    connect(&mBus, &SessionBus::disconnected, this, [this] { mCookie.reset(); });
    connect(&mBus, &SessionBus::connected, this, [this] { ask(); });
}

void AwakeScreen::keep(bool isWanted)
{
    mIsWanted = isWanted;
    if (isWanted)
        ask();
    else
        release();
}

void AwakeScreen::ask()
{
    if (!mIsWanted || mCookie || mIsAsking)
        return;
    mIsAsking = true;
    auto call = screenSaverCall("Inhibit");
    call << QStringLiteral("farview-device") << mReason;
    mBus.ask(call, this, [this](const QDBusMessage& reply) { takeCookie(reply); });
}

void AwakeScreen::takeCookie(const QDBusMessage& reply)
{
    mIsAsking = false;
    if (reply.signature() != QStringLiteral("u"))
        return;
    mCookie = reply.arguments().at(0).toUInt();
    if (!mIsWanted)
        release();
}

void AwakeScreen::release()
{
    if (!mCookie)
        return;
    auto call = screenSaverCall("UnInhibit");
    call << *std::exchange(mCookie, std::nullopt);
    mBus.send(call);
}

} // namespace farview
