// What somebody reads who records a whole session of the real programs, from the first greeting to
// the goodbye. Only what the link's port carries counts: the announcement of a device is public.

#include "Tests/Integration/LinkCapture.h"
#include "Tests/Integration/LinkAttack.h"
#include "Tests/Support/PrivateXServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sched.h>
#include <unistd.h>

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
            byteArray(encodeFrame(LinkPictureSize{1920, 1080})),
            byteArray(encodeFrame(LinkDeviceScreen{1920, 1080, 100, 60})),
            byteArray(encodeFrame(LinkFrameEnd{1})),
            byteArray(encodeFrame(LinkShown{1, 0})).left(12),
            byteArray(encodeFrame(LinkStanding{false})),
            byteArray(encodeFrame(LinkConfirmed{})),
            byteArray(encodeFrame(LinkGoodbye{}))};
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
        desktop.showOnce(1);
    }
    bool deviceShows(const std::string& pixel)
    {
        return waitUntil([&] { return text("picture.ppm").ends_with(pixel); });
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
        ASSERT_TRUE(acceptsAtDevice(report.digits));
        answer(kConfirmDevice);
        ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
        desktop.fill({1920, 0, 1920, 1080}, kColour);
        ASSERT_TRUE(deviceShows("QRSQRSQRSQRS")) << serverLog() << deviceLog();
        preferences->setEnableTouchDisplay(false);
        ASSERT_TRUE(deviceSays("these options: retina windows-move-back\n")) << deviceLog();
        disconnect();
        ASSERT_TRUE(deviceSays("The host is gone")) << deviceLog();
    }

    PrivateXServer display;
    ScreenArranger desktop{display.display()};
};

} // namespace

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

} // namespace farview
