// What somebody reads who records a whole session of the real programs, from the first greeting to
// the goodbye. Only what the link's port carries counts: the announcement of a device is public.

#include "Tests/Integration/LinkCapture.h"
#include "Tests/Integration/LinkAttack.h"
#include "Tests/Support/PrivateXServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <sched.h>
#include <unistd.h>
#include <vector>

namespace farview
{
namespace
{

using testing::HasSubstr;

constexpr std::uint32_t kColour = 0x00515253;

/// What must not be found in either stream.
std::vector<QByteArray> secrets()
{
    const auto pixels = [](const char* pixel, int size) {
        return QByteArray(pixel, size).repeated(4);
    };
    return {"A tablet that is private",
            "a-private-tablet",
            "a-private-computer",
            "a-private-user",
            pixels("QRS", 3),
            pixels("SRQ", 3),
            pixels("SRQ\0", 4),
            byteArray(encodeFrame(LinkOptions{true, true, false, true})),
            byteArray(encodeFrame(LinkOptions{false, true, false, true})),
            byteArray(encodeFrame(LinkPictureSize{1920, 1080}))};
}

/// Whether it is a greeting or an answer, then the records of one handshake, then nothing but
/// encrypted records to its end.
void expectRecordsOnly(const QByteArray& stream)
{
    const auto byte = [&](qsizetype at) { return static_cast<std::uint8_t>(stream[at]); };
    constexpr std::uint8_t handshake = 22;
    constexpr std::uint8_t changeOfCipher = 20;
    constexpr std::uint8_t encrypted = 23;
    qsizetype at = 10 + byte(8) + 256 * byte(9);
    std::map<std::uint8_t, int> records;
    while (at + 5 <= stream.size()) {
        ++records[byte(at)];
        at += 5 + 256 * byte(at + 3) + byte(at + 4);
    }
    EXPECT_EQ(at, stream.size());
    EXPECT_EQ(records[handshake], 1) << "a hello";
    EXPECT_LE(records[changeOfCipher], 1);
    EXPECT_GT(records[encrypted], 10);
    EXPECT_EQ(records.size(), 3U) << "nothing else";
}

class LinkCaptureTest : public PairingAttack
{
protected:
    void SetUp() override
    {
        PairingAttack::SetUp();
        if (IsSkipped())
            return;
        // The name of this process's computer, and that of what it starts.
        ASSERT_EQ(::unshare(CLONE_NEWUTS), 0);
        ASSERT_EQ(::sethostname("a-private-computer", 18), 0);
        environment["USER"] = environment["LOGNAME"] = "a-private-user";
        preferences->setCurrentState(1);
        PairedPeers(*stored, PairedPeers::devices)
            .add({hexadecimal(keyOfDevice().fingerprint), {}, {}, {}});
        desktop.showOnce(1);
    }
    /// Paints where the monitor is or is about to come, until the picture has arrived.
    bool paintsUntil(const std::function<bool()>& hasArrived)
    {
        return waitUntil([&] {
            desktop.fill({1920, 0, 1920, 1080}, kColour);
            return hasArrived();
        });
    }
    /// Everything that users do: they pair, look at a picture, change an option, and go.
    void useIt()
    {
        startDevice({"--name", "A tablet that is private", "--host-name", "a-private-tablet",
                     "--picture-file", home.path("picture.ppm")});
        ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
        startServer();
        ask();
        ASSERT_TRUE(reports(State::comparing)) << serverLog() << deviceLog();
        ASSERT_TRUE(acceptsAtDevice(panel->pairing.digits));
        answer(kConfirmDevice);
        ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
        ASSERT_TRUE(paintsUntil([this] { return text("picture.ppm").ends_with("QRSQRSQRS"); }))
            << serverLog() << deviceLog();
        preferences->setEnableTouchDisplay(false);
        ASSERT_TRUE(deviceSays("these options: retina windows-move-back\n")) << deviceLog();
        disconnect();
        ASSERT_TRUE(deviceSays("The host is gone")) << deviceLog();
    }

    PrivateXServer display;
    ScreenArranger desktop{display.display()};
};

TEST_F(LinkCaptureTest, NoNameNoPixelAndNoSettingTravelsInClear)
{
    LinkCapture capture(6001);
    ASSERT_NO_FATAL_FAILURE(useIt());
    const auto [toDevice, toHost] = capture.streams();
    for (const QByteArray& stream : {toDevice, toHost}) {
        for (const char* feature : {kLinkEncryptionFeature, kLinkScreenFeature, kLinkZstdFeature})
            EXPECT_TRUE(stream.contains(feature)) << "what is in clear is found: " << feature;
        for (const QByteArray& secret : secrets())
            EXPECT_FALSE(stream.contains(secret)) << secret.toHex().toStdString();
        expectRecordsOnly(stream);
    }
}

TEST_F(LinkCaptureTest, NoFrameTravelsAsTheDeviceReadsIt)
{
    LinkCapture capture(6001);
    LinkListener place;
    place.listen(QHostAddress::LocalHost, 6001);
    startServer();
    ask();
    ASSERT_TRUE(waitUntil([&] { return place.hasPendingConnections(); })) << serverLog();
    const auto heard = std::make_shared<LinkRecorder>();
    const auto link = LinkConnection::make(LinkSide::device, place.next(), heard, keyOfDevice(),
                                           ownGreeting(), LinkTimes{});
    ASSERT_TRUE(waitUntil([&] { return heard->opened; })) << serverLog();
    link->send(LinkDeviceScreen{800, 600, 100, 60});
    const auto isPicture = [](const LinkFrame& frame) {
        return std::holds_alternative<LinkScreenRectangle>(frame);
    };
    ASSERT_TRUE(paintsUntil([&] {
        return std::any_of(heard->frames.begin(), heard->frames.end(), isPicture);
    })) << serverLog();
    const QByteArray stream = capture.streams().first;
    EXPECT_TRUE(stream.contains(kLinkScreenFeature)) << "what is in clear is found";
    for (const LinkFrame& frame : heard->frames)
        EXPECT_FALSE(stream.contains(byteArray(encodeFrame(frame)).left(64)));
}

} // namespace
} // namespace farview
