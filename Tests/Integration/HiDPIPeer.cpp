// The pane of an ordinary user, without a window, for tests of rights. It does what it is told in
// lines of standard input, and says on standard output what its user would see:
//
//   panel BUNDLE   obeys "press", "ok", "cancel", "look", "drop" (the pane) and "quit"
//   agent PID MODE answers the questions that the system has for the user of that process, as MODE
//                  says: "dismiss" them, or "wait" for ever
//   read           prints whether HiDPI resolutions are offered, and ends

#include "Common/FVEPreferences.h"
#include "Platform/Bundle.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Source/FVEEnableHiDPIController.h"
#include "Source/FVEPreferencePane.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QSocketNotifier>

#include <iostream>
#include <string>
#include <unistd.h>

namespace
{

using farview::View;

void say(const std::string& line) { std::cout << line << std::endl; }

class OutletLoader final : public farview::InterfaceLoader
{
public:
    bool loadNibNamed(const std::string& /*name*/,
                      const std::shared_ptr<farview::InterfaceOwner>& owner,
                      std::string& /*error*/) override
    {
        for (const auto& outlet : owner->outlets())
            outlet.connect(*owner);
        return true;
    }
};

class Panel
{
public:
    explicit Panel(const char* bundlePath) : mInstalled(mDesktop.platform())
    {
        auto& platform = mDesktop.platform();
        mPane = std::make_shared<FVEPreferencePane>(platform);
        mPane->initWithBundle(platform.bundles->bundleWithPath(bundlePath));
        for (const auto& outlet : mPane->outlets())
            outlet.connect(*mPane);
        mPane->setInterfaceLoader(std::make_shared<OutletLoader>());
        mPane->mainViewDidLoad();
        mPane->enableHiDPIResolutions()->setTarget(mPane);
        mPane->enableHiDPIResolutions()->setAction({"enableHiDPIPressed:"});
    }

    void obey(const std::string& order)
    {
        const auto controller = mPane->enableHiDPIController();
        if (order == "press")
            mPane->enableHiDPIResolutions()->performClick(nullptr);
        else if (order == "ok" && controller)
            controller->takeOK(nullptr);
        else if (order == "cancel" && controller)
            controller->takeCancel(nullptr);
        else if (order == "drop")
            mPane.reset();
        look(order);
    }

private:
    /// What the user sees: the box, and the window when there is one.
    void look(const std::string& order)
    {
        if (!mPane)
            return say(order + ": nothing");
        const auto& box = *mPane->enableHiDPIResolutions();
        const auto controller = mPane->enableHiDPIController();
        say(order + ": box " + (box.state() ? "on" : "off") +
            (box.isEnabled() ? " enabled" : " disabled") +
            (controller ? ", window: " + controller->progressText()->stringValue()
                        : ", no window"));
    }

    farview::DesktopPlatform mDesktop{{}};
    farview::Platform::Scope mInstalled;
    std::shared_ptr<FVEPreferencePane> mPane;
};

int runPanel(const char* bundlePath)
{
    Panel panel(bundlePath);
    QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, &orders, [&panel] {
        std::string line;
        if (!std::getline(std::cin, line) || line == "quit")
            QCoreApplication::quit();
        else
            panel.obey(line);
    });
    say("ready");
    return QCoreApplication::exec();
}

/// What asks the user, for polkit.
class Agent : public QDBusVirtualObject
{
public:
    explicit Agent(bool dismisses) : mDismisses(dismisses) {}

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() == QStringLiteral("CancelAuthentication")) {
            say("taken back");
            return connection.send(message.createReply());
        }
        const auto arguments = message.arguments();
        say("asked " + arguments.value(0).toString().toStdString() + ": " +
            arguments.value(1).toString().toStdString());
        message.setDelayedReply(true);
        return !mDismisses || connection.send(message.createErrorReply(
                                  QStringLiteral("org.freedesktop.PolicyKit1.Error.Cancelled"),
                                  QStringLiteral("dismissed")));
    }

private:
    bool mDismisses;
};

quint64 startTimeOf(const QString& process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 1).simplified().split(' ').value(19).toULongLong();
}

int runAgent(const QString& process, const QString& mode)
{
    auto bus = QDBusConnection::connectToBus(
        QStringLiteral("unix:path=/run/dbus/system_bus_socket"), QStringLiteral("agent"));
    Agent agent(mode == QStringLiteral("dismiss"));
    bus.registerVirtualObject(QStringLiteral("/agent"), &agent);
    auto call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.PolicyKit1"),
                                       QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
                                       QStringLiteral("org.freedesktop.PolicyKit1.Authority"),
                                       QStringLiteral("RegisterAuthenticationAgent"));
    QDBusArgument subject;
    subject.beginStructure();
    subject << QStringLiteral("unix-process")
            << QVariantMap{{QStringLiteral("pid"), process.toUInt()},
                           {QStringLiteral("start-time"), startTimeOf(process)},
                           {QStringLiteral("uid"), static_cast<qint32>(::getuid())}};
    subject.endStructure();
    call << QVariant::fromValue(subject) << QStringLiteral("de_DE.UTF-8")
         << QStringLiteral("/agent");
    const auto reply = bus.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        say("cannot register: " + reply.errorMessage().toStdString());
        return 1;
    }
    say("ready");
    return QCoreApplication::exec();
}

int readSetting()
{
    farview::DesktopPlatform desktop{{}};
    const farview::Platform::Scope installed(desktop.platform());
    const bool isEnabled = FVEPreferences::sharedAppPrefs().enableHiDPIResolutions();
    say(isEnabled ? "offered" : "not offered");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "panel" && argc == 3)
        return runPanel(argv[2]);
    if (what == "agent" && argc == 4)
        return runAgent(QString::fromUtf8(argv[2]), QString::fromUtf8(argv[3]));
    return what == "read" ? readSetting() : 64;
}
