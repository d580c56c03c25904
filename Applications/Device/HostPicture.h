#pragma once

#include "Applications/Device/Glass.h"
#include "Applications/Device/InputReporter.h"
#include "Link/Wire/LinkGreeting.h"
#include "Platform/RunLoop.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace farview
{

/// The picture of the host that uses the device: from its frames to the glass, and back the word
/// that they are shown, and what the user does with it. Lives as long as the link. Main thread
/// only.
class HostPicture
{
public:
    enum class Verdict { good, brokenRule, tooLarge };
    using Send = std::function<void(const LinkFrame&)>;

    /// The pixels of the largest picture that is shown: those of 8K.
    static constexpr std::int64_t mostPixels = std::int64_t{1} << 25;
    /// The pixels that may be touched in one turn of the event loop, so that no host keeps the
    /// device from its user: each rectangle counts with its area and a little more, each new
    /// picture with its area or what it takes to lay the window out for it.
    static constexpr std::int64_t mostWork = 8 * mostPixels;
    static constexpr std::int64_t leastOfPart = 256;
    static constexpr std::int64_t leastOfPicture = std::int64_t{1} << 20;
    /// The frames that may wait to be shown.
    static constexpr std::uint32_t mostUnshown = 2;

    /// Tells the host at once, through `send`, what the glass's screen is, and again when that
    /// changes. `glass` and `loop` outlive this.
    HostPicture(const LinkAgreement& agreement, Glass& glass, Send send, RunLoop& loop);
    ~HostPicture();
    HostPicture(const HostPicture&) = delete;
    HostPicture& operator=(const HostPicture&) = delete;

    /// Takes what the host sends. After anything but "good" the link is to be ended.
    Verdict take(const LinkFrame& frame);
    /// The event loop has turned.
    void beginTurn() { mWork = 0; }

private:
    void tellScreen();
    Verdict judge(const LinkFrame& frame);
    Verdict begin(const LinkPictureSize& size);
    bool apply(const LinkScreenRectangle& packet);
    bool finish(const LinkFrameEnd& end);
    bool mayTouch(std::int64_t pixels);
    void tellShown(std::uint32_t number, Duration arrived);

    Glass& mGlass;
    Send mSend;
    RunLoop& mLoop;
    bool mTakesInput;
    InputReporter mInput;
    ZlibCodec mZlib;
    ZstdCodec mZstd;
    JpegCodec mJpeg;
    std::vector<PixelCodec*> mAgreed; ///< beside zlib
    std::unique_ptr<PictureReceiver> mReceiver;
    std::optional<LinkDeviceScreen> mTold;
    std::int64_t mWork = 0;   ///< pixels touched in this turn
    std::size_t mBytes = 0;   ///< received since the last frame's end
    std::uint32_t mEnded = 0; ///< the last frame that is complete
    std::uint32_t mShown = 0; ///< the last of which the host was told
};

} // namespace farview
