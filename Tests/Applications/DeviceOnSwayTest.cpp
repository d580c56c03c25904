// The device's window on a real Wayland desktop, pixel by pixel as other programs see it.
#include "Platform/Fake/FakeRunLoop.h"
#include "Tests/Applications/ShownCheckerboard.h"
#include "Tests/Support/PrivateSway.h"
#include "Tests/Support/WaitUntil.h"

#include <QApplication>
#include <QJsonArray>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <set>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

/// A monitor, as its desktop has it, and what a device with it is.
struct Monitor {
    const char* mode;
    double scale;
    const char* transform;
    LinkDeviceScreen told;
};
void PrintTo(const Monitor& monitor, std::ostream* out)
{
    *out << monitor.mode << " x" << monitor.scale << " " << monitor.transform;
}

/// Started before Qt connects to it.
std::optional<PrivateSway> sway;

const Monitor hd{"1920x1080", 1.5, "normal", {1920, 1080, 150, 60}};

class DeviceOnSwayTest : public ShownCheckerboard
{
protected:
    DeviceOnSwayTest() { window.setInput(&reporter); }
    ~DeviceOnSwayTest() override { window.setInput(nullptr); }

    /// New windows come there.
    void arrange(const Monitor& monitor)
    {
        ASSERT_TRUE(desk.run("focus output HEADLESS-1"));
        ASSERT_TRUE(desk.run("output HEADLESS-1 mode --custom " + std::string(monitor.mode) +
                             "@60Hz scale " + std::to_string(monitor.scale) + " transform " +
                             monitor.transform));
    }
    /// Shows the window and begins a picture of exactly the size that the device tells.
    void begin(const Monitor& monitor)
    {
        arrange(monitor);
        open(monitor.told);
    }
    /// What a monitor shows, as it is held.
    static QImage onTheGlass(const std::string& monitor = "HEADLESS-1")
    {
        const TemporaryFolder folder;
        const auto file = folder.path("glass.ppm");
        ChildProcess grim({"grim", "-t", "ppm", "-o", monitor, file});
        grim.waitForEnd();
        return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_RGB32);
    }
    bool isExact(const std::string& monitor = "HEADLESS-1") const
    {
        return isEqual(onTheGlass(monitor));
    }
    static std::string criteria()
    {
        return "[pid=" + std::to_string(QCoreApplication::applicationPid()) + "]";
    }
    const LinkPointer& pointer()
    {
        runLoopFor(5ms);
        loop.advance(InputReporter::pause);
        return reporter.pointer();
    }
    /// What sway knows of the window.
    QJsonObject node() { return windowIn(desk.tree()); }
    static QJsonObject windowIn(const QJsonObject& node)
    {
        if (node[QStringLiteral("pid")].toInt() == QCoreApplication::applicationPid())
            return node;
        for (const char* children : {"nodes", "floating_nodes"}) {
            for (const auto& child : node[QLatin1String(children)].toArray()) {
                const QJsonObject found = windowIn(child.toObject());
                if (!found.isEmpty())
                    return found;
            }
        }
        return {};
    }

    SwayArranger desk{*sway};
    FakeRunLoop loop;
    std::vector<LinkFrame> sent;
    InputReporter reporter{loop, [this](const LinkFrame& each) { sent.push_back(each); }};
};

// --- sharp -----------------------------------------------------------------------------------

class DeviceOnEachMonitor : public DeviceOnSwayTest, public testing::WithParamInterface<Monitor>
{
};

TEST_P(DeviceOnEachMonitor, ShowsEachPixelOfThePictureAsOneOfTheScreen)
{
    begin(GetParam());
    drawCheckerboard(0xffffff);
    send();
    EXPECT_TRUE(waitUntil([&] { return isExact(); }));
    drawCheckerboard(0x40c0ff);
    send();
    EXPECT_TRUE(waitUntil([&] { return isExact(); })) << "and the next one";
}

INSTANTIATE_TEST_SUITE_P(Scaled, DeviceOnEachMonitor,
                         testing::Values(Monitor{"1920x1080", 1, "normal", {1920, 1080, 100, 60}},
                                         Monitor{
                                             "1920x1080", 1.25, "normal", {1920, 1080, 125, 60}},
                                         Monitor{"1920x1080", 1.5, "normal", {1920, 1080, 150, 60}},
                                         Monitor{"1365x768", 1.5, "normal", {1365, 768, 150, 60}},
                                         Monitor{"1920x1080", 2, "normal", {1920, 1080, 200, 60}},
                                         Monitor{"2560x1600", 2.5, "normal", {2560, 1600, 250, 60}},
                                         Monitor{"1920x1080", 1.5, "90", {1080, 1920, 150, 60}},
                                         Monitor{"1920x1080", 1.5, "180", {1920, 1080, 150, 60}}));

// --- the screen ------------------------------------------------------------------------------

TEST_F(DeviceOnSwayTest, TellsWhatBecomesOfItsScreenAndStaysSharp)
{
    int changes = 0;
    window.setScreenObserver([&] { ++changes; });
    begin(hd);
    for (const Monitor& monitor : {Monitor{"1280x800", 1.25, "normal", {1280, 800, 125, 60}},
                                   Monitor{"1280x800", 1.25, "270", {800, 1280, 125, 60}},
                                   Monitor{"1280x800", 2, "270", {800, 1280, 200, 60}},
                                   Monitor{"1920x1200", 2.5, "270", {1200, 1920, 250, 60}}, hd}) {
        const int before = changes;
        arrange(monitor);
        ASSERT_TRUE(waitUntil([&] { return changes > before && window.screen() == monitor.told; }))
            << monitor.mode << " at " << monitor.scale;
        beginPicture();
        drawCheckerboard(0xffffff);
        send();
        EXPECT_TRUE(waitUntil([&] { return isExact(); })) << monitor.mode << " " << monitor.scale;
    }
}

TEST_F(DeviceOnSwayTest, FillsTheScreenThatItsWindowIsOn)
{
    ASSERT_TRUE(desk.run("output HEADLESS-2 scale 1.25"));
    arrange(hd);
    window.show();
    const LinkDeviceScreen second{1280, 800, 125, 60};
    ASSERT_TRUE(waitUntil([&] {
        // Until sway knows the window.
        desk.run(criteria() + " move container to output HEADLESS-2");
        return window.screen() == second;
    }));
    beginPicture();
    drawCheckerboard(0xffffff);
    send();
    EXPECT_TRUE(waitUntil([&] { return isExact("HEADLESS-2"); }));
}

TEST_F(DeviceOnSwayTest, StaysAwakeWhileItShowsAPicture)
{
    const auto isAwake = [&] { return node()[QStringLiteral("inhibit_idle")].toBool(); };
    begin(hd);
    EXPECT_TRUE(waitUntil(isAwake));
    window.endPicture();
    EXPECT_TRUE(waitUntil([&] { return !isAwake(); }));
    window.beginPicture(*receiver);
    EXPECT_TRUE(waitUntil(isAwake));
}

TEST_F(DeviceOnSwayTest, TellsNothingAsShownWhileItsWorkspaceIsHidden)
{
    begin(hd);
    drawCheckerboard(0xffffff);
    send();
    ASSERT_TRUE(desk.run("workspace 9"));
    // Desktops do not say that; it is known by no frame being wanted.
    ASSERT_TRUE(waitUntil([&] {
        show();
        runLoopFor(20ms);
        return !isShown;
    }));
    drawCheckerboard(0x40c0ff);
    show();
    runLoopFor(200ms);
    EXPECT_FALSE(isShown);
    ASSERT_TRUE(desk.run(criteria() + " focus"));
    EXPECT_TRUE(waitUntil([&] { return isShown && isExact(); }));
}

// A picture that was drawn over while the desktop still read it would be of both colours.
TEST_F(DeviceOnSwayTest, NoFrameIsSeenInParts)
{
    begin(hd);
    const auto count = static_cast<std::ptrdiff_t>(frame->width()) * frame->height();
    const std::array<std::uint32_t, 3> colours{0xff0000, 0x00ff00, 0x0000ff};
    std::size_t frames = 0;
    QTimer everyMoment;
    QObject::connect(&everyMoment, &QTimer::timeout, [&] {
        std::fill_n(frame->row(0), count, colours.at(frames++ % colours.size()));
        show();
    });
    everyMoment.start(0);
    ASSERT_TRUE(waitUntil([&] { return frames > 3; }));
    std::set<QRgb> seen;
    for (int pictures = 0; pictures < 15; ++pictures) {
        const QImage glass = onTheGlass();
        seen.insert(glass.pixel(0, 0));
        for (int y = 0; y < glass.height(); ++y)
            ASSERT_EQ(glass.pixel(glass.width() - 1, y), glass.pixel(0, 0)) << "in line " << y;
    }
    EXPECT_GE(seen.size(), 2) << "it moved";
    EXPECT_GT(frames, 15);
}

// --- what lies over the picture --------------------------------------------------------------

TEST_F(DeviceOnSwayTest, TheBarLiesOverThePicture)
{
    begin(hd);
    drawCheckerboard(0xffffff);
    send();
    const auto middleOfBar = [&] {
        return onTheGlass().pixelColor(bar().width() * 3 / 4, bar().height() * 3 / 4);
    };
    QTest::keyClick(&view(), Qt::Key_F10);
    const QColor colour = bar().palette().color(QPalette::Window);
    EXPECT_TRUE(waitUntil([&] { return middleOfBar() == colour; }));
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([&] { return isExact(); }));
}

// --- input -----------------------------------------------------------------------------------

TEST_P(DeviceOnEachMonitor, AMouseMeansThePixelThatItIsOn)
{
    // sway has a mouse as long as this could have one.
    const TemporaryFolder folder;
    const ChildProcess mouse({"wayvnc", "--unix-socket", folder.path("mouse")});
    begin(GetParam());
    reporter.setOptions({.touch = true, .typing = true});
    const LinkDeviceScreen told = GetParam().told;
    for (const QPoint& point : {QPoint(1, 2), QPoint(301, 207), QPoint(500, 1), QPoint(11, 499)}) {
        const auto inPicture = [&](int places) {
            return static_cast<std::uint32_t>(std::lround(places * GetParam().scale * 256));
        };
        const LinkPlace place{inPicture(point.x()), inPicture(point.y()), told.width, told.height};
        EXPECT_TRUE(waitUntil([&] {
            // Until it has a mouse.
            desk.movePointer(point.x() + 1, point.y());
            desk.movePointer(point.x(), point.y());
            return pointer().place == place;
        })) << pointer().place.x / 256.0
            << "," << pointer().place.y / 256.0;
    }
    desk.run("seat - cursor press button1");
    EXPECT_TRUE(waitUntil([&] { return pointer().buttons == 1; }));
    desk.run("seat - cursor release button1");
    EXPECT_TRUE(waitUntil([&] { return pointer().buttons == 0; }));
    sent.clear();
    desk.run("seat - cursor press button5");
    EXPECT_TRUE(waitUntil([&] { return !sent.empty(); }));
    EXPECT_THAT(sent, testing::ElementsAre(LinkWheel{pointer().place, 0, 120}));
}

TEST_F(DeviceOnSwayTest, KeysHaveTheCodesThatTheDesktopTells)
{
    begin(hd);
    reporter.setOptions({.touch = true, .typing = true});
    // It numbers the keys that it needs from one, and Qt sees them once it knows of a keyboard.
    const ChildProcess typist({"wtype", "-s", "500", "ab"});
    EXPECT_TRUE(waitUntil([&] { return sent.size() == 4; }));
    EXPECT_THAT(sent, testing::ElementsAre(LinkKey{1, true}, LinkKey{1, false}, LinkKey{2, true},
                                           LinkKey{2, false}));
}

} // namespace
} // namespace farview

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    farview::sway.emplace(std::vector<std::string>{"1920x1080", "1280x800"});
    qputenv("QT_QPA_PLATFORM", "wayland");
    int status = 0;
    {
        const QApplication application(argc, argv);
        status = RUN_ALL_TESTS();
    }
    farview::sway.reset();
    return status;
}
