// What stands on a real display, pixel by pixel.
#include "Applications/Device/ScreenView.h"

#include "Link/Wire/ScreenPacket.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/PictureSender.h"
#include "Tests/Screen/Scenes.h"
#include "Tests/Support/WaitUntil.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

constexpr QPoint corner{40, 30};
/// In points; the pixels are whole at each ratio that is tested.
constexpr QSize glass{400, 300};

class ScreenViewTest : public testing::Test
{
protected:
    ScreenViewTest()
    {
        view.setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
        view.setGeometry({corner, glass});
    }
    ~ScreenViewTest() override { view.endPicture(); }

    static QSize inPixels(const QSize& points)
    {
        return (QSizeF(points) * qGuiApp->devicePixelRatio()).toSize();
    }
    void begin(const QSize& size)
    {
        frame.emplace(size.width(), size.height());
        sender.emplace(size.width(), size.height(), zstd, jpeg);
        receiver.emplace(size.width(), size.height(), zlib, std::vector<PixelCodec*>{&zstd, &jpeg});
        view.beginPicture(*receiver);
    }
    void open()
    {
        view.show();
        ASSERT_TRUE(waitUntil([&] { return isBlackOnTheGlass(); }));
    }
    bool isBlackOnTheGlass() const
    {
        const QImage image = onTheGlass();
        return image.pixel(0, 0) == 0xff000000u &&
               image.pixel(image.width() - 1, image.height() - 1) == 0xff000000u;
    }
    /// Sends what changed, and waits until it is told as shown.
    void send(PictureTime now = 0ms)
    {
        const PixelRect whole = wholeOf(*frame);
        sender->noteDamage({&whole, 1});
        deliver(sender->packetsFor(frame->view(), kBestPictureQuality, now));
    }
    void deliver(const PictureSender::Packets& packets)
    {
        for (const auto& packet : packets)
            ASSERT_TRUE(receiver->apply(packet));
        bool isShown = false;
        view.showFrame(receiver->takeChanged(), [&] { isShown = true; });
        ASSERT_TRUE(waitUntil([&] { return isShown; }));
    }
    void placeCursor(const PixelPoint& place)
    {
        ASSERT_TRUE(receiver->apply(cursorPlacePacket(place)));
        view.movePointer();
    }
    /// A red square of ten pixels that points with its middle.
    void giveCursor()
    {
        Cursor cursor{{5, 5}, Picture(10, 10)};
        std::fill_n(cursor.image.row(0), 100, 0xffff0000u);
        ASSERT_TRUE(receiver->apply(cursorPacket(cursor, zlib)));
        view.movePointer();
    }

    /// What the display shows in the place of the view.
    static QImage onTheGlass()
    {
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, corner.x(), corner.y(), glass.width(), glass.height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }
    static bool isEqual(const QImage& image, const FrameView& sent)
    {
        const FrameView shown{reinterpret_cast<const std::uint32_t*>(image.constBits()),
                              image.width(), image.height(), image.width()};
        if (shown.width != sent.width || shown.height != sent.height)
            return false;
        for (int y = 0; y < sent.height; ++y) {
            for (int x = 0; x < sent.width; ++x) {
                if ((shown.row(y)[x] & 0xffffff) != (sent.row(y)[x] & 0xffffff))
                    return false;
            }
        }
        return true;
    }
    /// The largest difference of a colour.
    static int farthestApart(const QImage& left, const QImage& right)
    {
        int most = 0;
        for (qsizetype i = 0; i < left.sizeInBytes(); ++i)
            most = std::max(most, std::abs(left.constBits()[i] - right.constBits()[i]));
        return most;
    }
    bool isExact() const { return isEqual(onTheGlass(), frame->view()); }

    Scenes scenes;
    ZlibCodec zlib;
    ZstdCodec zstd;
    JpegCodec jpeg;
    std::optional<Picture> frame;
    std::optional<PictureSender> sender;
    std::optional<PictureReceiver> receiver;
    Compositor compositor;
    ScreenView view{compositor};
};

TEST_F(ScreenViewTest, ShowsWhatTheHostSentBitForBit)
{
    begin(inPixels(glass));
    open();
    scenes.writeText(*frame, wholeOf(*frame));
    send();
    EXPECT_TRUE(isExact()) << "text";
    scroll(*frame, -48, scenes);
    send();
    EXPECT_TRUE(isExact()) << "scrolled text";
    for (int count = 0; count < 30; ++count) {
        scenes.writeText(*frame, pixelRect(scenes.number(300), scenes.number(200), 90, 70));
        send();
        ASSERT_TRUE(isExact()) << "after change " << count;
    }
}

TEST_F(ScreenViewTest, APhotographIsExactOnceItStandsStill)
{
    begin(inPixels(glass));
    open();
    scenes.takePhotograph(*frame, wholeOf(*frame));
    send();
    EXPECT_FALSE(isExact()) << "it came with loss";
    EXPECT_TRUE(isEqual(onTheGlass(), receiver->picture().view())) << "but as it came";
    deliver(sender->refinement(1000, 1s));
    EXPECT_TRUE(isExact());
}

TEST_F(ScreenViewTest, TellsNothingAsShownWhileItIsHidden)
{
    begin(inPixels(glass));
    bool isShown = false;
    view.showFrame({}, [&] { isShown = true; });
    runLoopFor(30ms);
    EXPECT_FALSE(isShown);
    view.show();
    EXPECT_TRUE(waitUntil([&] { return isShown; }));
}

TEST_F(ScreenViewTest, DrawsThePointerOverThePictureAndTakesItAway)
{
    begin(inPixels(glass));
    open();
    scenes.writeText(*frame, wholeOf(*frame));
    send();
    giveCursor();
    placeCursor({100, 80});
    const auto isRedAt = [](int x, int y) { return onTheGlass().pixel(x, y) == 0xffff0000u; };
    EXPECT_TRUE(waitUntil([&] { return isRedAt(95, 75) && isRedAt(104, 84); }));
    EXPECT_FALSE(isRedAt(94, 75) || isRedAt(105, 84)) << "its middle points to the place";
    placeCursor({static_cast<std::int16_t>(frame->width()), 0});
    EXPECT_TRUE(waitUntil([&] { return isRedAt(frame->width() - 1, 0) && !isRedAt(100, 80); }));
    ASSERT_TRUE(receiver->apply(noCursorPacket()));
    view.movePointer();
    EXPECT_TRUE(waitUntil([&] { return isExact(); }));
}

TEST_F(ScreenViewTest, ASmallerPictureFillsTheGlassBetweenBlackBars)
{
    begin(inPixels({200, 100}));
    open();
    std::fill_n(frame->row(0), frame->width() * frame->height(), 0x3060c0u);
    send();
    const QImage image = onTheGlass();
    const auto middle = image.width() / 2;
    EXPECT_EQ(image.pixel(middle, image.height() / 2), 0xff3060c0u);
    EXPECT_EQ(image.pixel(0, image.height() / 2), 0xff3060c0u);
    EXPECT_EQ(image.pixel(middle, image.height() / 6 - 2), 0xff000000u);
    EXPECT_EQ(image.pixel(middle, image.height() * 5 / 6 + 2), 0xff000000u);
}

TEST_F(ScreenViewTest, AScaledPictureHasNoSeamsWhereItChanged)
{
    begin(inPixels({310, 170}));
    open();
    for (int count = 0; count < 10; ++count) {
        scenes.writeText(*frame, pixelRect(scenes.number(200), scenes.number(90), 80, 60));
        send();
    }
    const QImage inParts = onTheGlass();
    view.repaint();
    const QImage asAWhole = onTheGlass();
    EXPECT_LE(farthestApart(inParts, asAWhole), 1) << "but for rounding";
}

TEST_F(ScreenViewTest, PixelForPixelALargerPictureFollowsThePointer)
{
    begin(inPixels(glass * 2));
    view.setFitted(false);
    open();
    scenes.writeText(*frame, wholeOf(*frame));
    send();
    const auto part = [&](int x, int y) {
        const QSize size = inPixels(glass);
        const FrameView whole = frame->view();
        return FrameView{whole.row(y) + x, size.width(), size.height(), whole.stride};
    };
    EXPECT_TRUE(isEqual(onTheGlass(), part(0, 0)));
    placeCursor({32767, 32767});
    const QSize size = inPixels(glass);
    EXPECT_TRUE(
        waitUntil([&] { return isEqual(onTheGlass(), part(size.width(), size.height())); }));
    scenes.writeText(*frame, pixelRect(500, 400, 90, 70));
    send();
    EXPECT_TRUE(isEqual(onTheGlass(), part(size.width(), size.height())));
}

// On some desktops windows are mixed with what lies behind them.
TEST_F(ScreenViewTest, NothingShinesThrough)
{
    begin(inPixels(glass / 2));
    open();
    scenes.writeText(*frame, wholeOf(*frame));
    scenes.takePhotograph(*frame, pixelRect(0, 0, 64, 64));
    send();
    for (const bool isFitted : {true, false}) {
        view.setFitted(isFitted);
        QImage seen(glass, QImage::Format_ARGB32_Premultiplied);
        seen.fill(Qt::transparent);
        view.render(&seen, {}, {}, {});
        for (int x = 0; x < seen.width(); ++x)
            ASSERT_EQ(qAlpha(seen.pixel(x, seen.height() / 2)), 255) << x;
    }
}

TEST_F(ScreenViewTest, IsBlackWithoutAPicture)
{
    begin(inPixels(glass));
    open();
    scenes.writeText(*frame, wholeOf(*frame));
    send();
    view.endPicture();
    EXPECT_TRUE(waitUntil([&] { return isBlackOnTheGlass(); }));
}

} // namespace
} // namespace farview
