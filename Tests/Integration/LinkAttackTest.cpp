// Attacks on the link of a computer and a device that know each other.

#include "Tests/Integration/LinkAttack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace farview
{
namespace
{

using testing::HasSubstr;
using testing::Not;
using Way = ManInTheMiddle::Way;

ByteView view(const QByteArray& bytes)
{
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()),
            static_cast<std::size_t>(bytes.size())};
}
/// Takes the feature out of a greeting, or puts it in where it is not.
QByteArray changedGreeting(const QByteArray& bytes, const std::string& feature)
{
    LinkGreeting greeting = decodeGreeting(view(bytes)).value;
    const auto isIt = [&](const LinkFeature& each) { return each.name == feature; };
    if (std::erase_if(greeting.features, isIt) == 0)
        greeting.features.push_back({feature});
    return byteArray(encodeGreeting(greeting));
}
/// The same of an answer.
QByteArray changedAnswer(const QByteArray& bytes, const std::string& feature)
{
    auto agreement = std::get<LinkAgreement>(decodeAnswer(view(bytes)).value);
    if (std::erase(agreement.features, feature) == 0)
        agreement.features.push_back(feature);
    return byteArray(encodeAnswer(agreement));
}

QByteArray twice(const QByteArray& bytes) { return bytes + bytes; }

TEST_F(LinkAttack, AManWhoRelaysLearnsNoName)
{
    startAroundMan();
    ASSERT_TRUE(connects()) << serverLog() << deviceLog();
    ASSERT_TRUE(deviceSays("these options"));
    disconnect();
    const QByteArray all = man->seen(ManInTheMiddle::toDevice) + man->seen(ManInTheMiddle::toHost);
    EXPECT_TRUE(all.contains(kLinkEncryptionFeature)) << "the greeting is no secret";
    const QByteArray options = byteArray(encodeFrame(LinkOptions{true, true, false, true}));
    for (const auto& secret : {QByteArray("Desk"), QByteArray("desk-7"), qgetenv("HOME"), options})
        EXPECT_FALSE(all.contains(secret)) << secret.toStdString();
}

TEST_F(LinkAttack, AFeatureThatIsTakenOutOrPutInEndsItOnBothSides)
{
    startAroundMan();
    for (const std::string feature : {"zstd", "turbo", "encryption"}) {
        man->change = ManInTheMiddle::once(ManInTheMiddle::toHost, 0, [&](const auto& bytes) {
            return changedAnswer(bytes, feature);
        });
        EXPECT_EQ(failure(), State::interfered) << feature << serverLog() << deviceLog();
        man->change = ManInTheMiddle::once(ManInTheMiddle::toDevice, 0, [&](const auto& bytes) {
            return changedGreeting(bytes, feature);
        });
        // Whoever takes this one out is refused as an old program is.
        const bool isOld = feature == kLinkEncryptionFeature;
        EXPECT_EQ(failure(), isOld ? State::tooOld : State::interfered) << feature << serverLog();
    }
    EXPECT_THAT(deviceLog(), Not(HasSubstr("Connected to the host")));
    man->change = ManInTheMiddle::unchanged;
    EXPECT_TRUE(connects()) << "the device is free" << serverLog() << deviceLog();
}

TEST_F(LinkAttack, ARecordedSessionIsWorthNothing)
{
    startAroundMan();
    ASSERT_TRUE(connects()) << serverLog() << deviceLog();
    ASSERT_TRUE(deviceSays("these options"));
    disconnect();
    const QByteArrayList toHost = man->pieces(ManInTheMiddle::toHost);
    const QByteArrayList toDevice = man->pieces(ManInTheMiddle::toDevice);
    const auto replayed = [&](Way where, const QByteArrayList& pieces) {
        return [=, next = 0](Way way, const QByteArray& bytes) mutable {
            return way == where ? pieces.value(next++) : bytes;
        };
    };
    man->change = replayed(ManInTheMiddle::toHost, toHost);
    EXPECT_EQ(failure(), State::interfered) << serverLog() << deviceLog();
    man->change = replayed(ManInTheMiddle::toDevice, toDevice);
    EXPECT_EQ(failure(), State::interfered) << serverLog() << deviceLog();

    QTcpSocket replayer;
    replayer.connectToHost(QHostAddress(QHostAddress::LocalHost), portIn("device.log"));
    replayer.write(toDevice.join());
    EXPECT_TRUE(waitUntil([&] {
        return replayer.state() == QTcpSocket::UnconnectedState &&
               timesDeviceSaid("Turned away") == 3;
    })) << deviceLog();
    EXPECT_EQ(timesDeviceSaid("Connected to the host"), 1U);
    EXPECT_EQ(timesDeviceSaid("these options"), 1U);
    man->change = ManInTheMiddle::unchanged;
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
}

TEST_F(LinkAttack, AGreetingThatIsSentTwiceIsNone)
{
    startAroundMan();
    man->change = ManInTheMiddle::once(ManInTheMiddle::toDevice, 0, twice);
    failure();
    EXPECT_TRUE(deviceSays("does not speak this link's language")) << deviceLog();
    man->change = ManInTheMiddle::unchanged;
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
}

TEST_F(LinkAttack, FramesThatComeTwiceEndTheConnection)
{
    startAroundMan();
    ASSERT_TRUE(connects());
    man->change = ManInTheMiddle::once(ManInTheMiddle::toDevice, 0, twice);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << serverLog() << deviceLog();
    EXPECT_TRUE(deviceSays("The host is gone")) << deviceLog();
    man->change = ManInTheMiddle::unchanged;
    ASSERT_TRUE(connects());
    man->change = ManInTheMiddle::once(ManInTheMiddle::toHost, 0, twice);
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << serverLog() << deviceLog();
    man->change = ManInTheMiddle::unchanged;
    EXPECT_TRUE(connects());
}

TEST_F(LinkAttack, AnotherDeviceUnderTheSameNameAndHostNameIsShownNothing)
{
    startServer();
    const std::string own = environment["XDG_CONFIG_HOME"];
    environment["XDG_CONFIG_HOME"] = home.path("stranger");
    startDevice();
    panel->connectTo("desk-7.local");
    EXPECT_EQ(failureOf(), State::changed);
    EXPECT_EQ(panel->pairing.device, "Desk");
    EXPECT_TRUE(deviceSays("Another device has this name here")) << deviceLog();
    for (const char* words : {"options", "Connected", "shows"})
        EXPECT_THAT(deviceLog(), Not(HasSubstr(words)));
    device->sendSignal(SIGTERM);
    device->waitForEnd();
    environment["XDG_CONFIG_HOME"] = own;
    startDevice();
    ASSERT_TRUE(waitUntil([this] { return timesDeviceSaid("Announced") == 2; })) << deviceLog();
    panel->reports.clear();
    panel->connectTo("desk-7.local");
    EXPECT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
    EXPECT_TRUE(reports(State::none));
}

TEST_F(LinkAttack, AKnownKeyIsNotTrustedUnderAnotherDevicesName)
{
    PairedPeers(*stored, PairedPeers::devices)
        .add({hexadecimal(keyOfDevice().fingerprint), "Sofa", {}, {}});
    startServer();
    startDevice({"--name", "Sofa", "--host-name", "sofa-7"});
    panel->connectTo("sofa-7.local");
    EXPECT_EQ(failureOf(), State::changed) << serverLog() << deviceLog();
    device->sendSignal(SIGTERM);
    device->waitForEnd();
    startDevice({"--name", "Lounge", "--host-name", "lounge-7"});
    panel->reports.clear();
    panel->connectTo("lounge-7.local");
    EXPECT_TRUE(reports(State::comparing)) << "a name that nobody was confirmed with";
    EXPECT_EQ(panel->last(kServerConnectedToDevice), nullptr);
}

} // namespace
} // namespace farview
