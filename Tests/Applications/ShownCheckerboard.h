#pragma once

#include "Applications/Device/DeviceWindow.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/PictureSender.h"
#include "Tests/Screen/Scenes.h"
#include "Tests/Support/WaitUntil.h"

#include <QImage>

#include <gtest/gtest.h>

#include <optional>

namespace farview
{

/// The device's window with a picture in which no pixel is like its neighbours.
class ShownCheckerboard : public testing::Test
{
protected:
    ~ShownCheckerboard() override { window.endPicture(); }

    /// Shows the window and begins a picture of exactly the size that the device is to tell.
    void open(const LinkDeviceScreen& told)
    {
        window.show();
        ASSERT_TRUE(waitUntil([&] { return window.screen() == told; }))
            << window.screen().width << "x" << window.screen().height << " at "
            << window.screen().scale;
        beginPicture();
    }
    void beginPicture()
    {
        const LinkDeviceScreen screen = window.screen();
        frame.emplace(screen.width, screen.height);
        sender.emplace(screen.width, screen.height, zstd, jpeg);
        receiver.emplace(screen.width, screen.height, zlib, std::vector<PixelCodec*>{&zstd, &jpeg});
        window.beginPicture(*receiver);
    }
    /// Alternating single pixels, black and one colour; each corner has its own.
    void drawCheckerboard(std::uint32_t colour)
    {
        for (int y = 0; y < frame->height(); ++y) {
            for (int x = 0; x < frame->width(); ++x)
                frame->row(y)[x] = (x + y) % 2 ? colour : 0;
        }
        frame->row(0)[0] = 0xff0000;
        frame->row(0)[frame->width() - 1] = 0x00ff00;
        frame->row(frame->height() - 1)[0] = 0x0000ff;
    }
    void send()
    {
        show();
        ASSERT_TRUE(waitUntil([&] { return isShown; }));
    }
    /// As far as it is seen.
    void show()
    {
        const PixelRect whole = wholeOf(*frame);
        sender->noteDamage({&whole, 1});
        for (const auto& packet :
             sender->packetsFor(frame->view(), kBestPictureQuality, PictureTime{}))
            ASSERT_TRUE(receiver->apply(packet));
        for (const auto& packet : sender->refinement(mostTiles, std::chrono::seconds(1)))
            ASSERT_TRUE(receiver->apply(packet));
        isShown = false;
        window.showFrame(receiver->takeChanged(), 0, [this] { isShown = true; });
    }
    /// With what the desktop shows.
    bool isEqual(const QImage& seen) const
    {
        if (seen.size() != QSize(frame->width(), frame->height()))
            return false;
        for (int y = 0; y < frame->height(); ++y) {
            for (int x = 0; x < frame->width(); ++x) {
                if ((seen.pixel(x, y) & 0xffffff) != frame->view().row(y)[x])
                    return false;
            }
        }
        return true;
    }
    ScreenView& view()
    {
        return static_cast<ScreenView&>(*window.findChild<QWidget*>(QStringLiteral("screenView")));
    }
    QWidget& bar() { return *window.findChild<QWidget*>(QStringLiteral("pictureBar")); }

    static constexpr int mostTiles = 1'000'000;
    DeviceTexts texts{{"en"}};
    ZlibCodec zlib;
    ZstdCodec zstd;
    JpegCodec jpeg;
    std::optional<Picture> frame;
    std::optional<PictureSender> sender;
    std::optional<PictureReceiver> receiver;
    bool isShown = false;
    DeviceWindow window{texts, {[] {}, [] {}, [](bool) {}, [](auto&) {}, [] {}, [](auto&) {}}};
};

} // namespace farview
