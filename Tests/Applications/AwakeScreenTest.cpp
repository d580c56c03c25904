#include "Applications/Device/AwakeScreen.h"

#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace farview
{
namespace
{

/// A desktop that can be kept awake.
class ScreenSaver : public QDBusVirtualObject
{
public:
    explicit ScreenSaver(const std::string& address)
        : mConnection(QDBusConnection::connectToBus(QString::fromStdString(address), name))
    {
        mConnection.registerVirtualObject(QStringLiteral("/org/freedesktop/ScreenSaver"), this);
        mConnection.registerService(QStringLiteral("org.freedesktop.ScreenSaver"));
    }
    ~ScreenSaver() override { QDBusConnection::disconnectFromBus(name); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() == QStringLiteral("UnInhibit"))
            return cookies.erase(message.arguments().at(0).toUInt()) == 1;
        cookies.insert(++mLast);
        reason = message.arguments().at(1).toString().toStdString();
        return connection.send(isBroken ? message.createErrorReply(QDBusError::NoMemory, {})
                                        : message.createReply(mLast));
    }

    std::set<uint> cookies; ///< of those who want it awake
    std::string reason;
    bool isBroken = false;

private:
    static inline const QString name = QStringLiteral("screen-saver");
    QDBusConnection mConnection;
    uint mLast = 100;
};

class AwakeScreenTest : public testing::Test
{
protected:
    PrivateBus bus;
    SessionBusScope session{bus.address()};
    FakeLog log;
    std::unique_ptr<ScreenSaver> desktop = std::make_unique<ScreenSaver>(bus.address());
    TestBus ours{log};
    AwakeScreen awake{ours, QStringLiteral("Shows a picture")};
};

TEST_F(AwakeScreenTest, IsKeptAwakeForAsLongAsThatIsWanted)
{
    awake.keep(true);
    ASSERT_TRUE(waitUntil([&] { return desktop->cookies.size() == 1; }));
    EXPECT_EQ(desktop->reason, "Shows a picture");
    runLoopFor(std::chrono::milliseconds(50));
    awake.keep(true);
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(desktop->cookies.size(), 1u) << "once is enough";
    awake.keep(false);
    EXPECT_TRUE(waitUntil([&] { return desktop->cookies.empty(); }));
}

TEST_F(AwakeScreenTest, MaySleepAgainThoughTheAnswerCameLate)
{
    awake.keep(true);
    awake.keep(false);
    ASSERT_TRUE(waitUntil([&] { return !desktop->reason.empty() && desktop->cookies.empty(); }));
}

TEST_F(AwakeScreenTest, IsKeptAwakeOnTheBusThatComesAfter)
{
    awake.keep(true);
    ASSERT_TRUE(waitUntil([&] { return desktop->cookies.size() == 1; }));
    desktop.reset();
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return !ours.isConnected(); }));
    bus.start();
    desktop = std::make_unique<ScreenSaver>(bus.address());
    EXPECT_TRUE(waitUntil([&] { return desktop->cookies.size() == 1; }));
}

TEST_F(AwakeScreenTest, ADesktopThatCannotIsLeftAlone)
{
    desktop->isBroken = true;
    awake.keep(true);
    ASSERT_TRUE(waitUntil([&] { return !desktop->reason.empty(); }));
    runLoopFor(std::chrono::milliseconds(50));
    awake.keep(false);
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(desktop->cookies.size(), 1u) << "there is nothing to give back";
}

TEST_F(AwakeScreenTest, WithoutAnybodyToAskNothingHappens)
{
    desktop.reset();
    awake.keep(true);
    runLoopFor(std::chrono::milliseconds(50));
    awake.keep(false);
    EXPECT_TRUE(ours.isConnected());
}

} // namespace
} // namespace farview
