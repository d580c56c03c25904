// The real device on a display of its own, with a host that sends it a picture.

#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/PictureSender.h"
#include "Tests/Link/PairedBeforehand.h"
#include "Tests/Screen/Scenes.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/ScriptedScreenSaver.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QGuiApplication>
#include <QProcess>
#include <QScreen>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <regex>
#include <sstream>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

class DevicePicture : public testing::Test
{
protected:
    ~DevicePicture() override
    {
        device->sendSignal(SIGTERM);
        device->waitForEnd();
    }
    void SetUp() override
    {
        const ScopedEnvironment settings("XDG_CONFIG_HOME", folder.path("config").c_str());
        FakeLog trouble;
        FilePreferences stored(PreferencesLocations(EnvironmentUse::honoured), trouble);
        pairBeforehand(stored, {});
        start();
        const auto isAnnounced = [this] { return log().find("Announced") != std::string::npos; };
        ASSERT_TRUE(waitUntil(isAnnounced)) << log();
        connect();
        ASSERT_TRUE(waitUntil([this] { return !seen->frames.empty(); })) << log();
        screen = std::get<LinkDeviceScreen>(seen->frames.front());
    }
    void start()
    {
        const std::vector<std::string> command{
            "sh", "-c", "exec \"$0\" --port 0 --name Desk >'" + folder.path("log") + "' 2>&1",
            FARVIEW_BINARY_DIR "/farview-device"};
        // The session of somebody who speaks French.
        device = std::make_unique<ChildProcess>(
            command, ChildProcess::Environment{{"LC_ALL", "fr_FR.UTF-8"},
                                               {"LANGUAGE", "fr"},
                                               {"XDG_CONFIG_HOME", folder.path("config")}});
    }
    std::string log() const
    {
        std::ostringstream all;
        all << std::ifstream(folder.path("log")).rdbuf();
        return all.str();
    }
    void connect()
    {
        std::smatch port;
        const std::string said = log();
        ASSERT_TRUE(std::regex_search(said, port, std::regex("Announced as .*port (\\d+)")))
            << said;
        auto socket = std::make_unique<QSslSocket>();
        socket->connectToHost(QHostAddress(QHostAddress::LocalHost),
                              static_cast<quint16>(std::stoi(port[1])));
        ASSERT_TRUE(waitUntil([&] { return socket->state() == QAbstractSocket::ConnectedState; }));
        link = LinkConnection::make(LinkSide::host, std::move(socket), seen, keyOfHost(),
                                    ownGreeting(), LinkTimes{});
    }
    void beginPicture()
    {
        link->send(LinkPictureSize{screen.width, screen.height});
        frame.emplace(screen.width, screen.height);
        sender.emplace(screen.width, screen.height, zstd, jpeg);
    }
    /// Sends what changed; whether it is told as shown.
    bool send()
    {
        const PixelRect whole = wholeOf(*frame);
        sender->noteDamage({&whole, 1});
        for (const auto& packet : sender->packetsFor(frame->view(), kBestPictureQuality, 0ms))
            link->send(packet);
        link->send(LinkFrameEnd{++sent});
        return waitUntil([&] {
            const auto* shown = std::get_if<LinkShown>(&seen->frames.back());
            return shown && shown->number == sent;
        });
    }
    bool has(const LinkFrame& frame) const
    {
        const auto& frames = seen->frames;
        return std::find(frames.begin(), frames.end(), frame) != frames.end();
    }
    static bool run(const QString& program, const QStringList& words)
    {
        QProcess process;
        process.start(program, words);
        return process.waitForFinished() && process.exitCode() == 0;
    }
    bool isExactOnTheDisplay() const
    {
        const QImage image = QGuiApplication::primaryScreen()->grabWindow().toImage();
        for (int y = 0; y < frame->height(); ++y) {
            for (int x = 0; x < frame->width(); ++x) {
                if ((image.pixel(x, y) & 0xffffff) != frame->view().row(y)[x])
                    return false;
            }
        }
        return true;
    }

    TemporaryFolder folder;
    ScriptedScreenSaver desktop{qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString()};
    std::unique_ptr<ChildProcess> device;
    std::shared_ptr<LinkRecorder> seen = std::make_shared<LinkRecorder>();
    std::shared_ptr<LinkConnection> link;
    LinkDeviceScreen screen;
    Scenes scenes;
    ZstdCodec zstd;
    JpegCodec jpeg;
    std::optional<Picture> frame;
    std::optional<PictureSender> sender;
    std::uint32_t sent = 0;
};

TEST_F(DevicePicture, FillsTheDisplayBitForBit)
{
    EXPECT_EQ(QSize(screen.width, screen.height), QGuiApplication::primaryScreen()->size());
    beginPicture();
    scenes.writeText(*frame, wholeOf(*frame));
    ASSERT_TRUE(send()) << log();
    EXPECT_TRUE(waitUntil([&] { return isExactOnTheDisplay(); })) << "growing takes a moment";
    for (int count = 0; count < 20; ++count) {
        scenes.writeText(*frame, pixelRect(scenes.number(900), scenes.number(500), 200, 150));
        ASSERT_TRUE(send());
        // The display may serve us before the device, which has asked it earlier.
        ASSERT_TRUE(waitUntil([&] { return isExactOnTheDisplay(); })) << "after change " << count;
    }
}

TEST_F(DevicePicture, HasATitleInTheSessionsLanguage)
{
    EXPECT_TRUE(run(u"xdotool"_qs, {u"search"_qs, u"--name"_qs, u"^Appareil Farview$"_qs}));
}

TEST_F(DevicePicture, SendsWhatIsDoneWithItAndLiftsItWhenThatIsNoLongerWanted)
{
    beginPicture();
    ASSERT_TRUE(send());
    const auto use = [this](const QStringList& words) { return run(u"xdotool"_qs, words); };
    const QStringList press{u"mousemove"_qs, u"300"_qs,     u"200"_qs, u"mousedown"_qs,
                            u"3"_qs,         u"keydown"_qs, u"a"_qs};
    const QStringList release{u"mouseup"_qs, u"3"_qs, u"keyup"_qs, u"a"_qs};
    ASSERT_TRUE(use(press) && use(release));
    ASSERT_TRUE(send()) << "nothing but the word that it is shown";
    EXPECT_EQ(seen->frames.size(), 3u) << "its screen, and two frames shown";
    link->send(LinkOptions{.touch = true, .typing = true});
    const LinkPlace place{300 * 256, 200 * 256, screen.width, screen.height};
    ASSERT_TRUE(waitUntil([&] { return log().find("typing") != std::string::npos; })) << log();
    ASSERT_TRUE(use(press));
    ASSERT_TRUE(waitUntil([&] { return has(LinkPointer{place, 2}) && has(LinkKey{30, true}); }));
    EXPECT_FALSE(has(LinkKey{30, false}));
    link->send(LinkOptions{});
    EXPECT_TRUE(waitUntil([&] { return has(LinkPointer{place, 0}) && has(LinkKey{30, false}); }));
    ASSERT_TRUE(use(release));
}

TEST_F(DevicePicture, TellsOnceThatItsScreenWasTurned)
{
    const QString output = QGuiApplication::primaryScreen()->name();
    // The driver cannot turn a screen, so another mode is what a turned one would have.
    const QString upright = u"--newmode upright 60 800 801 802 803 1280 1281 1282 1283"_qs;
    ASSERT_TRUE(run(u"xrandr"_qs, upright.split(u' ')));
    ASSERT_TRUE(run(u"xrandr"_qs, {u"--addmode"_qs, output, u"upright"_qs}));
    ASSERT_TRUE(run(u"xrandr"_qs, {u"--output"_qs, output, u"--mode"_qs, u"upright"_qs}));
    EXPECT_TRUE(waitUntil([&] { return seen->frames.size() > 1; }));
    ASSERT_TRUE(run(u"xrandr"_qs, {u"--output"_qs, output, u"--mode"_qs, u"first"_qs}));
    ASSERT_TRUE(waitUntil([&] { return seen->frames.back() == LinkFrame(screen); }));
    ASSERT_EQ(seen->frames.size(), 3u) << "and nothing in between";
    const auto turned = std::get<LinkDeviceScreen>(seen->frames[1]);
    EXPECT_EQ(QSize(turned.width, turned.height), QSize(800, 1280));
    run(u"xrandr"_qs, {u"--delmode"_qs, output, u"upright"_qs});
    run(u"xrandr"_qs, {u"--rmmode"_qs, u"upright"_qs});
}

TEST_F(DevicePicture, KeepsTheDesktopAwakeAsLongAsItLasts)
{
    EXPECT_TRUE(desktop.cookies.empty());
    beginPicture();
    EXPECT_TRUE(waitUntil([&] { return desktop.cookies.size() == 1; }));
    link->close({LinkGoodbyeCode::byUser, ""});
    EXPECT_TRUE(waitUntil([&] { return desktop.cookies.empty(); }));
}

TEST_F(DevicePicture, SurvivesAHostThatAsksForAGigabyte)
{
    link->send(LinkPictureSize{16384, 16384});
    ASSERT_TRUE(waitUntil([&] { return seen->ended(); }));
    EXPECT_EQ(seen->ends.front().text, "The picture is too large for this device.");
    seen->frames.clear();
    connect();
    EXPECT_TRUE(waitUntil([&] { return !seen->frames.empty(); })) << log();
}

} // namespace
} // namespace farview
