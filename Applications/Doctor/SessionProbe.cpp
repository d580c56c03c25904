#include "Applications/Doctor/SessionProbe.h"

#include "Common/FVEConstants.h"
#include "Platform/Accessibility.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Platform.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QRegularExpression>

#include <utility>

namespace farview
{
namespace
{

/// The answers so far.
class SessionQuestions : public std::enable_shared_from_this<SessionQuestions>
{
public:
    SessionQuestions(SessionBus& bus, std::weak_ptr<void> asker,
                     std::function<void(const SessionAnswers&)> then)
        : mBus(bus), mAsker(std::move(asker)), mThen(std::move(then))
    {
    }

    void askWhetherItRuns(const char* identifier, bool SessionAnswers::*fact)
    {
        ++mOpen;
        mBus.askForOwner(QString::fromStdString(applicationBusName(identifier)), &mBus,
                         [self = shared_from_this(), fact](const QString& owner) {
                             self->take(fact, !owner.isEmpty());
                         });
    }
    void askWhetherWindowsMayBeMoved(Accessibility& accessibility)
    {
        ++mOpen;
        accessibility.askWhetherEnabled(mAsker, [self = shared_from_this()](bool isEnabled) {
            self->take(&SessionAnswers::letsWindowsBeMoved, isEnabled);
        });
    }

private:
    void take(bool SessionAnswers::*fact, bool value)
    {
        mFacts.*fact = value;
        if (--mOpen > 0 || mAsker.expired())
            return;
        mFacts.hasBus = mBus.isConnected();
        mThen(mFacts);
    }

    SessionBus& mBus;
    std::weak_ptr<void> mAsker;
    std::function<void(const SessionAnswers&)> mThen;
    SessionAnswers mFacts;
    int mOpen = 0;
};

/// What KDE's window manager says of itself has a line "KWin version: 5.27.5".
std::string versionOfKWin(const QDBusMessage& reply)
{
    static const QRegularExpression line(QStringLiteral("^KWin version: ([0-9.]+)$"),
                                         QRegularExpression::MultilineOption);
    const auto found = line.match(reply.arguments().value(0).toString());
    return found.hasMatch() ? "KWin " + found.captured(1).toStdString() : "";
}

std::string versionOfGNOME(const QDBusMessage& reply)
{
    if (reply.signature() != u"v")
        return {};
    const auto version = reply.arguments().at(0).value<QDBusVariant>().variant();
    return "GNOME Shell " + version.toString().toStdString();
}

} // namespace

void askForDesktopVersion(SessionBus& bus, std::weak_ptr<void> asker,
                          std::function<void(const std::string&)> then)
{
    auto kwin = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.KWin"), QStringLiteral("/KWin"), QStringLiteral("org.kde.KWin"),
        QStringLiteral("supportInformation"));
    auto gnome = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    gnome << QStringLiteral("org.gnome.Shell") << QStringLiteral("ShellVersion");
    for (auto* call : {&kwin, &gnome})
        call->setAutoStartService(false);
    const auto tell = [asker = std::move(asker), then = std::move(then)](const auto& version) {
        if (const auto kept = asker.lock())
            then(version);
    };
    bus.ask(kwin, &bus, [&bus, gnome, tell](const auto& reply) {
        if (const auto version = versionOfKWin(reply); !version.empty())
            tell(version);
        else
            bus.ask(gnome, &bus, [tell](const auto& answer) { tell(versionOfGNOME(answer)); });
    });
}

void askForSessionAnswers(Platform& platform, SessionBus& bus, std::weak_ptr<void> asker,
                          std::function<void(const SessionAnswers&)> then)
{
    const auto questions =
        std::make_shared<SessionQuestions>(bus, std::move(asker), std::move(then));
    questions->askWhetherItRuns(kFVEScreenServerBundleID, &SessionAnswers::hasServer);
    questions->askWhetherItRuns(kFVEMenuExtraBundleID, &SessionAnswers::hasStatusItem);
    questions->askWhetherWindowsMayBeMoved(*platform.accessibility);
}

} // namespace farview
