// The panel and its server when the bus between them goes, comes, or carries nonsense.

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Integration/PaneSystem.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>

#include <sys/wait.h>

namespace farview
{
namespace
{

using std::chrono::seconds;

constexpr const char* strangerName = "stranger-to-the-pane";

class PaneBusFaults : public PaneSystem
{
protected:
    ~PaneBusFaults() override { QDBusConnection::disconnectFromBus(strangerName); }

    void loseBus()
    {
        bus.stop();
        ASSERT_TRUE(waitUntil([&] { return !desktop->sessionBus().isConnected(); }));
    }
    void regainBus()
    {
        bus.start();
        ASSERT_TRUE(waitUntil([&] { return desktop->sessionBus().isConnected(); }));
    }
    /// Sends signals of the notifications' kind as any program can.
    void connectStranger()
    {
        stranger.emplace(
            QDBusConnection::connectToBus(QString::fromStdString(bus.address()), strangerName));
        ASSERT_TRUE(stranger->isConnected());
    }
    void send(const QVariantList& arguments)
    {
        auto signal = QDBusMessage::createSignal(
            QStringLiteral("/com/quillon/DistributedNotificationCenter"),
            QStringLiteral("com.quillon.DistributedNotificationCenter"), QStringLiteral("Posted"));
        signal.setArguments(arguments);
        EXPECT_TRUE(stranger->send(signal));
    }
    static QVariant dictionary(const QMap<QString, QString>& entries)
    {
        QDBusArgument argument;
        argument.beginMap(QMetaType(QMetaType::QString), QMetaType(QMetaType::QString));
        for (auto each = entries.begin(); each != entries.end(); ++each) {
            argument.beginMapEntry();
            argument << each.key() << each.value();
            argument.endMapEntry();
        }
        argument.endMap();
        return QVariant::fromValue(argument);
    }
    /// Everything that can be wrong with one notification.
    void sendMalformed(const char* name)
    {
        const QString title = QString::fromLatin1(name);
        const QString megabyte(1024 * 1024, 'x');
        send({title});
        send({title, "", dictionary({}), 3u});
        send({title, "", dictionary({}), "3", ""});
        send({title, "", QVariantMap{{"DeviceName", 1}}, 3u, ""});
        send({title, "", dictionary({{"DeviceName", megabyte}}), 3u, ""});
        send({title, megabyte, dictionary({}), 3u, megabyte});
        send({title, "", dictionary({}), 3u, "", "more"});
    }

    std::optional<QDBusConnection> stranger;
};

TEST_F(PaneBusFaults, AConnectionOutlivesARestartOfTheBusAndIsShownAgain)
{
    showConnectedToDesk();
    const auto before = servers();
    hide();
    loseBus();
    show();
    regainBus();
    ASSERT_TRUE(unlists("Desk (in background)")) << "the pane asked again";
    EXPECT_TRUE(selects("Desk"));
    EXPECT_TRUE(serverAnswers());
    EXPECT_EQ(servers(), before);
    EXPECT_TRUE(pane->warningImage()->isHidden());
}

TEST_F(PaneBusFaults, WhatHappenedWithoutTheBusIsCaughtUpWith)
{
    showConnectedToDesk();
    loseBus();
    device->kill();
    FilePreferences elsewhere(PreferencesLocations(EnvironmentUse::honoured), publisherLog);
    elsewhere.setAppValue(kEnableTouchDisplayOption, false, kApplicationID);
    ASSERT_TRUE(elsewhere.appSynchronize(kApplicationID));
    EXPECT_EQ(pane->enableTouchDisplay()->state(), 1);

    regainBus();
    EXPECT_TRUE(waitUntil([&] { return pane->enableTouchDisplay()->state() == 0; }));
    EXPECT_TRUE(selectsNothing());
    EXPECT_TRUE(serverAnswers());
    EXPECT_EQ(servers().size(), 1u);
}

TEST_F(PaneBusFaults, RestartsInQuickSuccessionAreSurvived)
{
    showConnectedToDesk();
    for (int round = 0; round < 5; ++round) {
        bus.stop();
        bus.start();
        runLoopFor(std::chrono::milliseconds(round * 40));
    }
    ASSERT_TRUE(waitUntil([&] { return desktop->sessionBus().isConnected(); }));
    EXPECT_TRUE(serverAnswers());
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(servers().size(), 1u);
}

TEST_F(PaneBusFaults, WithoutABusDevicesAreListedAndABusThatComesLaterIsUsed)
{
    bus.stop();
    startDesk();
    load();
    show();
    pane->onTextPressed(nullptr);
    EXPECT_TRUE(serversAre(1));
    EXPECT_TRUE(lists("Desk"));
    EXPECT_EQ(preferences().currentState(), 1);
    hide();
    show();
    EXPECT_TRUE(lists("Desk"));
    EXPECT_EQ(servers().size(), 1u) << "it is not started a second time";

    bus.start();
    ASSERT_TRUE(serverAnswers());
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(servers().size(), 1u);
}

TEST_F(PaneBusFaults, WithoutARuntimeFolderTheHostAndThePaneWork)
{
    const ScopedEnvironment noFolder("XDG_RUNTIME_DIR", nullptr);
    const ScopedEnvironment noBus("DBUS_SESSION_BUS_ADDRESS", nullptr);
    const auto smokeTest = start(
        {FARVIEW_BINARY_DIR "/farview-preferences", "--pane", FARVIEW_PANE_BUNDLE, "--smoke-test"},
        "smoke.log");
    const auto status = smokeTest->waitForEnd(seconds(20));
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << text("smoke.log");

    startDesk();
    load();
    show();
    pane->onTextPressed(nullptr);
    EXPECT_TRUE(lists("Desk"));
    EXPECT_EQ(preferences().currentState(), 1);
    pane->offTextPressed(nullptr);
    EXPECT_EQ(preferences().currentState(), 0);
    hide();
}

TEST_F(PaneBusFaults, MalformedNotificationsAreIgnoredByPaneAndServer)
{
    showConnectedToDesk();
    const auto before = servers();
    connectStranger();
    for (const char* name :
         {kFVEPrefsDidChangeNotification, kConnectServerToHost, kConnectServerToTicket,
          kDisconnectCurrentServerFromHost, kQueryRequestForConnectedHost,
          kQueryResultForConnectedHost, kServerConnectedToDevice, kServerDisconnectedFromDevice,
          kRequestingErrorMsgFromPrefPane, kTerminateScreenServer})
        sendMalformed(name);
    EXPECT_TRUE(serverAnswers());
    EXPECT_TRUE(selects("Desk"));
    EXPECT_FALSE(errorShows());
    EXPECT_EQ(switchState(), 1);
    EXPECT_EQ(servers(), before);
    EXPECT_EQ(text("device.log").find("The host is gone"), std::string::npos);
}

TEST_F(PaneBusFaults, WellFormedNonsenseChangesNothing)
{
    showConnectedToDesk();
    const auto before = servers();
    connectStranger();
    for (const char* name : {kQueryResultForConnectedHost, kServerConnectedToDevice}) {
        send({name, "", dictionary({}), 3u, ""});
        send({name, "", dictionary({{"DeviceName", ""}}), 3u, ""});
        send({name, "", dictionary({{"DeviceName", "nobody.local"}}), 3u, ""});
        send({name, "", dictionary({{"DeviceName", "a\nb\x1b[31m<b>"}}), 3u, ""});
        send({name, "", dictionary({{"DeviceName", QString(5000, 'x')}}), 3u, ""});
    }
    send({kConnectServerToHost, "", dictionary({}), 3u, ""});
    send({kConnectServerToHost, "", dictionary({{kConnectToHostNameKey, "a\nb"}}), 3u, ""});
    send({kConnectServerToTicket, "", dictionary({{kConnectUsingTicketKey, "1.2.3"}}), 3u, ""});
    EXPECT_TRUE(serverAnswers());
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(servers(), before);
    EXPECT_EQ(text("device.log").find("The host is gone"), std::string::npos);
}

} // namespace
} // namespace farview
