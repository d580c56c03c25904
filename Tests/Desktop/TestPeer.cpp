// Another process for the tests: "TestPeer ROLE ...". It prints nothing; what it did is seen on the
// bus or in files.

#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/Programs/Supervisor.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Log.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTimer>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

namespace
{

using namespace farview;

class NoLog final : public Log
{
    void write(LogLevel, std::string_view) override {}
};

void appendLine(const std::string& file, const std::string& line)
{
    std::ofstream(file, std::ios::app) << line + "\n" << std::flush;
}

/// Answers every "Ask" with an "Answer" of the same value.
int answer(QCoreApplication& application)
{
    NoLog log;
    QtRunLoop loop;
    SessionBus bus(log);
    DBusNotificationCenter center(bus, loop, log);
    const auto observer = std::make_shared<int>(0);
    center.addObserver(
        observer,
        [&](const Notification& notification) {
            const auto* value = notification.text("v");
            center.postNotificationName("Answer", "", {{"v", value ? *value : "none"}}, 3);
        },
        "Ask", "");
    center.postNotificationName("Ready", "", {}, 3);
    return application.exec();
}

/// Posts "Name" every 20 ms without our own classes, whoever owns the bus, and stays connected.
int post(QCoreApplication& application, const QString& address)
{
    auto connection = QDBusConnection::connectToBus(address, QStringLiteral("stranger"));
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&connection] {
        auto signal = QDBusMessage::createSignal(
            QStringLiteral("/com/quillon/DistributedNotificationCenter"),
            QStringLiteral("com.quillon.DistributedNotificationCenter"), QStringLiteral("Posted"));
        QDBusArgument userInfo;
        userInfo.beginMap(QMetaType(QMetaType::QString), QMetaType(QMetaType::QString));
        userInfo.endMap();
        signal << QStringLiteral("Name") << QString() << QVariant::fromValue(userInfo) << 3u
               << QString();
        connection.send(signal);
    });
    timer.start(20);
    return application.exec();
}

/// An application that runs once: notes its start, its turn and its end in a file, and quits by
/// the notification "Quit", taking 200 ms to say goodbye.
int runOnce(QCoreApplication& application, const std::string& notes)
{
    NoLog log;
    QtRunLoop loop;
    SessionBus bus(log);
    SingleInstance instance(bus, "com.quillon.TestApplication");
    DBusNotificationCenter center(bus, loop, log);
    const auto life = std::make_shared<int>(0);
    center.addObserver(
        life,
        [&](const Notification&) {
            instance.release();
            loop.performAfterDelay(Duration{0.2}, life, [&] {
                appendLine(notes, "ended");
                application.quit();
            });
        },
        "Quit", "");
    instance.acquire([&](bool isTheOne) {
        appendLine(notes, isTheOne ? "started" : "second");
        if (!isTheOne)
            return application.quit();
        instance.whenItsTurnComes([&] { appendLine(notes, "turn"); });
        center.postNotificationName("Ready", "", {}, 3);
    });
    return application.exec();
}

/// Offers one property as the accessibility bus does; "stubborn" takes changes and forgets them.
class AccessibilityStatus : public QDBusVirtualObject
{
public:
    AccessibilityStatus(bool isOn, bool isStubborn) : mIsOn(isOn), mIsStubborn(isStubborn) {}

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override
    {
        if (call.arguments().mid(0, 2) != QVariantList{"org.a11y.Status", "IsEnabled"})
            return false;
        if (call.member() == "Get")
            return connection.send(call.createReply(QVariant::fromValue(QDBusVariant(mIsOn))));
        if (!mIsStubborn)
            mIsOn = call.arguments().value(2).value<QDBusVariant>().variant().toBool();
        return connection.send(call.createReply()) && connection.send(changed());
    }

private:
    QDBusMessage changed() const
    {
        auto signal = QDBusMessage::createSignal("/org/a11y/bus", "org.freedesktop.DBus.Properties",
                                                 "PropertiesChanged");
        return signal << QStringLiteral("org.a11y.Status") << QVariantMap{{"IsEnabled", mIsOn}}
                      << QStringList();
    }

    bool mIsOn;
    bool mIsStubborn;
};

int offerAccessibility(QCoreApplication& application, const std::string& kind)
{
    NoLog log;
    SessionBus bus(log);
    AccessibilityStatus status(kind == "on", kind == "stubborn");
    QObject::connect(&bus, &SessionBus::connected, &bus, [&] {
        bus.connection().registerVirtualObject(QStringLiteral("/org/a11y/bus"), &status);
    });
    bus.requestName("org.a11y.Bus", &bus, [&](bool isOurs) {
        if (!isOurs)
            application.exit(1);
    });
    return application.exec();
}

/// Under supervision: notes each start with the number of crashes; crashes as often as it is told,
/// then ends with status 7, or stays until it is asked to quit.
int supervised(const std::string& notes, unsigned crashesWanted, bool stays)
{
    SupervisorOptions options;
    options.firstPause = Duration{0.02};
    options.longestPause = Duration{0.08};
    auto* const kept = static_cast<unsigned*>(memorySharedWithChildren(sizeof(unsigned)));
    if (!kept)
        return 1;
    return runSupervised(
        [&](unsigned crashes) {
            appendLine(notes, std::to_string(crashes) + " " + std::to_string(::getpid()) + " " +
                                  std::to_string((*kept)++));
            if (crashes < crashesWanted)
                ::raise(SIGKILL);
            while (stays)
                ::pause();
            return 7;
        },
        options);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string role = argc > 1 ? argv[1] : "";
    const std::string argument = argc > 2 ? argv[2] : "";
    if (role == "supervised")
        return supervised(argument, static_cast<unsigned>(std::atoi(argv[3])), argc > 4);
    QCoreApplication application(argc, argv);
    if (role == "answer")
        return answer(application);
    if (role == "post")
        return post(application, QString::fromStdString(argument));
    if (role == "accessibility")
        return offerAccessibility(application, argument);
    // A started application gets no arguments: the test tells it by the environment.
    const char* notes = std::getenv("FARVIEW_TEST_NOTES");
    return notes ? runOnce(application, notes) : 2;
}
