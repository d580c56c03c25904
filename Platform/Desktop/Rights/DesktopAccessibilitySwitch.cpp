#include "Platform/Desktop/Rights/DesktopAccessibilitySwitch.h"

#include <QDBusError>
#include <QDBusVariant>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::seconds toolLimit{5};
constexpr qint64 longestOutput = 100; // the answers are "true" and "false"

QStringList about(const char* verb)
{
    return {QString::fromLatin1(verb), QStringLiteral("org.gnome.desktop.interface"),
            QStringLiteral("toolkit-accessibility")};
}

QString word(bool on) { return on ? QStringLiteral("true") : QStringLiteral("false"); }

using Problem = AccessibilitySwitch::Problem;

constexpr auto serviceName = "org.a11y.Bus";
const QString statusInterface = QStringLiteral("org.a11y.Status");
const QString property = QStringLiteral("IsEnabled");
const QString path = QStringLiteral("/org/a11y/bus");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
constexpr int limit = 5000; // milliseconds; the service may have to be started

QDBusMessage propertyCall(const char* member)
{
    return QDBusMessage::createMethodCall(QString::fromLatin1(serviceName), path,
                                          propertiesInterface, QString::fromLatin1(member))
           << statusInterface << property;
}

Problem problemOf(const QDBusMessage& reply)
{
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Problem::none;
    const QDBusError error(reply);
    const bool nobody = error.type() == QDBusError::ServiceUnknown ||
                        error.type() == QDBusError::Disconnected ||
                        error.name() == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
    return nobody ? Problem::noService : Problem::noAnswer;
}

} // namespace

/// The lasting setting for accessibility of the desktops that share GNOME's, reached through their
/// settings tool, `gsettings`. Never blocks; what is asked for ends unanswered with this object.
class AccessibilitySetting : public QObject
{
public:
    using QObject::QObject;
    using Answer = std::function<void(bool)>;

    /// Whether this desktop has the setting and lets its user change it.
    void isThere(Answer answer)
    {
        run(about("writable"),
            [answer = std::move(answer)](const Output& output) { answer(output == word(true)); });
    }

    /// Changes it. The answer tells whether another program sees the change: the tool itself
    /// reports success also when nothing was stored.
    void store(bool on, Answer answer)
    {
        run(about("set") << word(on), [this, on, answer = std::move(answer)](const Output& output) {
            if (!output) {
                answer(false);
                return;
            }
            run(about("get"), [on, answer](const Output& stored) { answer(stored == word(on)); });
        });
    }

private:
    using Output = std::optional<QString>;

    /// `done` gets what the tool printed; nothing when it failed, is missing or took too long.
    void run(const QStringList& words, std::function<void(const Output&)> done)
    {
        auto* tool = new QProcess(this);
        const auto end = [this, tool, done = std::move(done)] {
            tool->disconnect(this);
            const bool succeeded = tool->exitStatus() == QProcess::NormalExit &&
                                   tool->exitCode() == 0 && tool->error() == QProcess::UnknownError;
            tool->deleteLater();
            done(succeeded ? Output(QString::fromUtf8(tool->read(longestOutput)).trimmed())
                           : std::nullopt);
        };
        connect(tool, &QProcess::finished, this, end);
        connect(tool, &QProcess::errorOccurred, this, [tool, end] {
            if (tool->state() == QProcess::NotRunning)
                end();
        });
        QTimer::singleShot(toolLimit, tool, &QProcess::kill);
        tool->setStandardInputFile(QProcess::nullDevice());
        tool->setStandardErrorFile(QProcess::nullDevice());
        tool->start(QStringLiteral("gsettings"), words);
    }
};

DesktopAccessibilitySwitch::DesktopAccessibilitySwitch(SessionBus& bus)
    : mBus(bus), mSetting(new AccessibilitySetting(this))
{
    connect(&mBus, &SessionBus::connected, this, &DesktopAccessibilitySwitch::listen);
    if (mBus.isConnected())
        listen();
}

void DesktopAccessibilitySwitch::listen()
{
    // From whomever it comes: naming the sender would mean to wait for the bus, and what counts is
    // only the answer of the service itself.
    mBus.connection().connect(QString(), path, propertiesInterface,
                              QStringLiteral("PropertiesChanged"), this,
                              SLOT(propertiesChanged(QString)));
}

Subscription DesktopAccessibilitySwitch::observe(Observer observer)
{
    mObserver = std::move(observer);
    mIsKnown = false;
    mService.emplace(mBus, serviceName, [this](bool isThere) { serviceChanged(isThere); });
    mSetting->isThere(
        [this](bool isThere) { learnLifetime(isThere ? Lifetime::kept : Lifetime::session); });
    return Subscription([self = QPointer(this), observation = ++mObservation] {
        if (!self || self->mObservation != observation)
            return;
        self->mObserver = nullptr;
        self->mService.reset();
    });
}

void DesktopAccessibilitySwitch::serviceChanged(bool isThere)
{
    // A service that went is not started again: one that crashes would do so for ever.
    if (isThere || !mIsKnown)
        read([] {});
    else
        tell({std::nullopt, Problem::noService, mState.lifetime});
}

void DesktopAccessibilitySwitch::propertiesChanged(const QString& interface)
{
    if (interface == statusInterface && mObserver)
        read([] {});
}

void DesktopAccessibilitySwitch::read(Then then)
{
    const auto use = [this, then = std::move(then)](const QDBusMessage& reply) {
        State state{std::nullopt, problemOf(reply), mState.lifetime};
        if (reply.signature() == u"v")
            state.isOn = reply.arguments().at(0).value<QDBusVariant>().variant().toBool();
        tell(state);
        then();
    };
    mBus.ask(propertyCall("Get"), this, use, limit);
}

void DesktopAccessibilitySwitch::set(bool on, Done done)
{
    if (mState.lifetime == Lifetime::session) {
        setOnBus(on, done);
        return;
    }
    mSetting->store(on, [this, on, done = std::move(done)](bool isStored) {
        if (!isStored)
            learnLifetime(Lifetime::session);
        setOnBus(on, done);
    });
}

void DesktopAccessibilitySwitch::setOnBus(bool on, const Done& done)
{
    auto message = propertyCall("Set");
    message << QVariant::fromValue(QDBusVariant(on));
    const auto check = [this, on, done](const QDBusMessage& reply) {
        if (const auto problem = problemOf(reply); problem != Problem::none)
            done(problem);
        else
            read([this, on, done] { finish(on, done); });
    };
    mBus.ask(message, this, check, limit);
}

void DesktopAccessibilitySwitch::finish(bool on, const Done& done)
{
    if (mState.problem != Problem::none)
        done(mState.problem);
    else
        done(mState.isOn == on ? Problem::none : Problem::notTaken);
}

void DesktopAccessibilitySwitch::learnLifetime(Lifetime lifetime)
{
    State state = mState;
    state.lifetime = lifetime;
    if (mIsKnown)
        tell(state);
    else
        mState = state;
}

void DesktopAccessibilitySwitch::tell(const State& state)
{
    const bool isNews = !std::exchange(mIsKnown, true) || state != mState;
    mState = state;
    if (isNews && mObserver)
        mObserver(mState);
}

} // namespace farview
