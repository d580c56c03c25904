#include "Platform/Desktop/Updates/DesktopNetworkCondition.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/WaitUntil.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <optional>

namespace
{

using namespace farview;

constexpr const char* roadOut = "Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\n"
                                "eth0\t00000000\t0102A8C0\t0003\t0\t0\t100\t00000000\n"
                                "eth0\t0002A8C0\t00000000\t0001\t0\t0\t100\t00FFFFFF\n";
constexpr const char* localOnly = "Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\n"
                                  "eth0\t0002A8C0\t00000000\t0001\t0\t0\t100\t00FFFFFF\n";
constexpr const char* nothing6 =
    "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
    "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo\n";
constexpr const char* roadOut6 =
    "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
    "fe800000000000000000000000000001 00000400 00000001 00000000 00000003     eth0\n";

/// Gives its properties to whoever asks on that bus.
class NetworkManager final : public QDBusVirtualObject
{
public:
    explicit NetworkManager(const std::string& address)
        : mConnection(QDBusConnection::connectToBus(QString::fromStdString(address), mName))
    {
        mConnection.registerVirtualObject(QStringLiteral("/org/freedesktop/NetworkManager"), this);
        mConnection.registerService(QStringLiteral("org.freedesktop.NetworkManager"));
    }
    ~NetworkManager() override { QDBusConnection::disconnectFromBus(mName); }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        ++questions;
        if (!holds)
            connection.send(message.createReply(properties));
        return true;
    }

    QVariantList properties{QVariantMap{}};
    bool holds = false;
    int questions = 0;

private:
    static QString freshName()
    {
        static int count = 0;
        return QStringLiteral("network-manager-%1").arg(++count);
    }

    QString mName = freshName();
    QDBusConnection mConnection;
};

class NetworkConditionTest : public testing::Test
{
protected:
    NetworkConditionTest()
    {
        folder.write("route", roadOut);
        folder.write("route6", nothing6);
    }
    void tell(unsigned metered, unsigned connectivity)
    {
        manager.properties = {QVariantMap{{QStringLiteral("Metered"), metered},
                                          {QStringLiteral("Connectivity"), connectivity},
                                          {QStringLiteral("Version"), QStringLiteral("1.42")}}};
    }
    NetworkPlaces places() const
    {
        return {QString::fromStdString(bus.address()), QString::fromStdString(folder.path("route")),
                QString::fromStdString(folder.path("route6"))};
    }
    std::optional<NetworkKind> ask() { return ask(places()); }
    std::optional<NetworkKind> ask(const NetworkPlaces& where)
    {
        DesktopNetworkCondition condition(where);
        std::optional<NetworkKind> answer;
        condition.ask(target, [&](NetworkKind kind) { answer = kind; });
        waitUntil([&] { return answer.has_value(); });
        return answer;
    }

    TemporaryFolder folder;
    PrivateBus bus;
    NetworkManager manager{bus.address()};
    std::shared_ptr<int> target = std::make_shared<int>();
};

TEST_F(NetworkConditionTest, TheManagersWordsAreHeeded)
{
    struct Row {
        unsigned metered;
        unsigned connectivity;
        NetworkKind kind;
    };
    const Row rows[] = {
        {0, 0, NetworkKind::unmetered}, {2, 4, NetworkKind::unmetered},
        {4, 4, NetworkKind::unmetered}, {1, 4, NetworkKind::metered},
        {3, 4, NetworkKind::metered},   {1, 0, NetworkKind::metered},
        {2, 1, NetworkKind::absent},    {2, 2, NetworkKind::absent},
        {2, 3, NetworkKind::absent},    {9, 9, NetworkKind::unmetered},
    };
    for (const auto& row : rows) {
        tell(row.metered, row.connectivity);
        EXPECT_EQ(ask(), row.kind) << row.metered << " " << row.connectivity;
    }
}

TEST_F(NetworkConditionTest, WithoutARoadOutThereIsNoNetworkAndNobodyIsAsked)
{
    folder.write("route", localOnly);
    EXPECT_EQ(ask(), NetworkKind::absent);
    EXPECT_EQ(manager.questions, 0);
    folder.write("route6", roadOut6);
    EXPECT_EQ(ask(), NetworkKind::unmetered) << "one road is enough";
    folder.write("route6", "garbage\n\n0 0\n");
    folder.write("route", "garbage");
    EXPECT_EQ(ask(), NetworkKind::absent);
    EXPECT_EQ(ask({places().busAddress, QStringLiteral("/nowhere"), QStringLiteral("/nowhere")}),
              NetworkKind::absent);
}

TEST_F(NetworkConditionTest, WhereNobodyTellsARoadOutIsFree)
{
    auto nowhere = places();
    nowhere.busAddress = QStringLiteral("unix:path=/nonexistent/bus");
    EXPECT_EQ(ask(nowhere), NetworkKind::unmetered);
    nowhere.busAddress = QStringLiteral("nonsense");
    EXPECT_EQ(ask(nowhere), NetworkKind::unmetered);
    const PrivateBus other;
    nowhere.busAddress = QString::fromStdString(other.address());
    EXPECT_EQ(ask(nowhere), NetworkKind::unmetered) << "no manager on the bus";
}

TEST_F(NetworkConditionTest, NonsenseFromTheManagerIsNothingTold)
{
    manager.properties = {QStringLiteral("metered")};
    EXPECT_EQ(ask(), NetworkKind::unmetered);
    manager.properties = {QVariantMap{{QStringLiteral("Metered"), QStringLiteral("a lot")}}};
    EXPECT_EQ(ask(), NetworkKind::unmetered);
}

TEST_F(NetworkConditionTest, AManagerThatIsSilentHoldsNothingUp)
{
    manager.holds = true;
    EXPECT_EQ(ask(), NetworkKind::unmetered);
}

TEST_F(NetworkConditionTest, ABusThatStoppedBlocksNobody)
{
    ::kill(bus.process().pid(), SIGSTOP);
    DesktopNetworkCondition condition(places());
    std::optional<NetworkKind> answer;
    const auto before = std::chrono::steady_clock::now();
    condition.ask(target, [&](NetworkKind kind) { answer = kind; });
    // A library's own call would have taken half a minute.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(10));
    EXPECT_EQ(answer, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer, NetworkKind::unmetered);
    ::kill(bus.process().pid(), SIGCONT);
}

TEST_F(NetworkConditionTest, NobodyIsToldWhoHasGone)
{
    DesktopNetworkCondition condition(places());
    bool isTold = false;
    condition.ask(target, [&](NetworkKind) { isTold = true; });
    target.reset();
    EXPECT_TRUE(waitUntil([&] { return manager.questions > 0; }));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_FALSE(isTold);
}

} // namespace
