#include "Platform/Desktop/Looks/AppearancePortal.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QMap>
#include <QVariantMap>

#include <utility>

namespace farview
{
namespace
{

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
// What all desktops share, and what GNOME and its relatives had before that.
const QString shared = QStringLiteral("org.freedesktop.appearance");
const QString gnomes = QStringLiteral("org.gnome.desktop.interface");

constexpr uint prefersDark = 1;
constexpr uint prefersLight = 2;
constexpr uint prefersReduced = 1;

using Values = QMap<QString, QVariantMap>;

uint number(const Values& values, const QString& key)
{
    const QVariant value = values.value(shared).value(key);
    return value.typeId() == QMetaType::UInt ? value.toUInt() : 0;
}

ColorPreference colorPreference(uint value)
{
    switch (value) {
    case prefersDark:
        return ColorPreference::dark;
    case prefersLight:
        return ColorPreference::light;
    default:
        return ColorPreference::none;
    }
}

AppearancePreferences preferencesIn(const QDBusMessage& reply)
{
    AppearancePreferences preferences;
    if (reply.type() != QDBusMessage::ReplyMessage ||
        reply.signature() != QStringLiteral("a{sa{sv}}"))
        return preferences;
    const auto values = qdbus_cast<Values>(reply.arguments().at(0));
    preferences.colors = colorPreference(number(values, QStringLiteral("color-scheme")));
    preferences.reducedMotion = number(values, QStringLiteral("reduced-motion")) == prefersReduced;
    const QVariant animations = values.value(gnomes).value(QStringLiteral("enable-animations"));
    preferences.animations = animations.typeId() != QMetaType::Bool || animations.toBool();
    return preferences;
}

} // namespace

AppearancePortal::AppearancePortal(const QDBusConnection& bus, Changed changed)
    : mBus(bus), mChanged(std::move(changed))
{
    if (!mBus.isConnected())
        return;
    // Subscribed before the question is asked, so no change falls in between. From whomever it
    // comes: naming the sender would mean to wait for the bus, and what counts is only the answer
    // of the portal itself.
    mBus.connect(QString(), portalPath, settings, QStringLiteral("SettingChanged"), {},
                 QStringLiteral("ssv"), this, SLOT(noticeChange(QString)));
    ask();
}

void AppearancePortal::noticeChange(const QString& area)
{
    if (area == shared || area == gnomes)
        ask();
}

void AppearancePortal::ask()
{
    if (mQuestion) {
        mAskAgain = true;
        return;
    }
    auto call =
        QDBusMessage::createMethodCall(portalName, portalPath, settings, QStringLiteral("ReadAll"));
    call << QStringList{shared, gnomes};
    mQuestion = new QDBusPendingCallWatcher(mBus.asyncCall(call), this);
    connect(mQuestion, &QDBusPendingCallWatcher::finished, this, &AppearancePortal::takeAnswer);
}

void AppearancePortal::tellWhatIsHere()
{
    if (mQuestion && mQuestion->isFinished())
        takeAnswer();
}

void AppearancePortal::takeAnswer()
{
    auto* question = std::exchange(mQuestion, nullptr);
    if (!question)
        return;
    question->disconnect(this);
    question->deleteLater();
    const QDBusMessage reply = question->reply();
    if (std::exchange(mAskAgain, false))
        ask();
    tell(preferencesIn(reply));
}

void AppearancePortal::tell(const AppearancePreferences& preferences)
{
    if (std::exchange(mTold, preferences) != preferences)
        mChanged(preferences);
}

} // namespace farview
