#pragma once

#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/PictureReceiver.h"
#include "Tests/Link/LinkPeers.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace farview
{

inline constexpr LinkDeviceScreen kTablet{800, 600, 100, 60};

/// A device that keeps the picture, and says that it has shown each frame unless told not to.
class Tablet final : public LinkConnectionDelegate, public std::enable_shared_from_this<Tablet>
{
public:
    bool listen()
    {
        QObject::connect(&mServer, &LinkListener::newConnection, &mServer, [this] { accept(); });
        return mServer.listen(QHostAddress::Any, 6001);
    }
    void linkDidGreet(LinkConnection& connection) override { connection.accept(); }
    LinkTrust linkDidProveKey(LinkConnection&) override { return true; }
    void linkDidOpen(LinkConnection& connection) override { connection.send(screen); }
    void linkDidReceive(LinkConnection&, const LinkFrame& frame) override
    {
        if (const auto* size = std::get_if<LinkPictureSize>(&frame))
            receiver.emplace(size->width, size->height, mZlib,
                             std::vector<PixelCodec*>{&mZstd, &mJpeg});
        else if (const auto* packet = std::get_if<LinkScreenRectangle>(&frame))
            EXPECT_TRUE(receiver && receiver->apply(*packet));
        else if (const auto* end = std::get_if<LinkFrameEnd>(&frame))
            finish(end->number);
    }
    void linkDidEnd(LinkConnection&, const LinkEnd& end) override { ended = end; }

    void send(const LinkFrame& frame) { mLink->send(frame); }
    /// Is gone without a word.
    void vanish()
    {
        mServer.close();
        mLink.reset();
    }
    std::uint32_t pixel(int x, int y) const
    {
        const bool holds = receiver && receiver->picture().view().holds(pixelRect(x, y, 1, 1));
        return holds ? receiver->picture().view().row(y)[x] : 0;
    }

    LinkDeviceScreen screen = kTablet;
    bool isSilent = false;
    std::optional<PictureReceiver> receiver;
    std::uint32_t frames = 0;
    std::optional<LinkEnd> ended;

private:
    void accept()
    {
        ended.reset();
        mLink = LinkConnection::make(LinkSide::device, mServer.next(), weak_from_this(),
                                     keyOfDevice(), ownGreeting(), LinkTimes{});
    }
    void finish(std::uint32_t number)
    {
        frames = number;
        if (!isSilent)
            mLink->send(LinkShown{number, 1000});
    }

    LinkListener mServer;
    std::shared_ptr<LinkConnection> mLink;
    ZlibCodec mZlib;
    ZstdCodec mZstd;
    JpegCodec mJpeg;
};

} // namespace farview
