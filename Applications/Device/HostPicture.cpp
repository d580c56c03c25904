#include "Applications/Device/HostPicture.h"

#include "Link/Wire/LinkCodec.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace farview
{
namespace
{

/// Sides below zero are refused later, where the rectangle is read.
std::int64_t areaOf(int width, int height)
{
    return std::int64_t{std::max(width, 0)} * std::max(height, 0);
}

} // namespace

HostPicture::HostPicture(const LinkAgreement& agreement, Glass& glass, Send send, RunLoop& loop)
    : mGlass(glass), mSend(std::move(send)), mLoop(loop),
      mTakesInput(agreement.has(kLinkInputFeature)), mInput(loop, mSend), mAgreed{&mJpeg}
{
    if (agreement.has(kLinkZstdFeature))
        mAgreed.push_back(&mZstd);
    mGlass.setScreenObserver([this] { tellScreen(); });
    mGlass.setInput(&mInput);
    tellScreen();
}

HostPicture::~HostPicture()
{
    mGlass.setScreenObserver([] {});
    mGlass.setInput(nullptr);
    mGlass.endPicture();
}

void HostPicture::tellScreen()
{
    const LinkDeviceScreen screen = mGlass.screen();
    if (mTold == screen)
        return;
    mTold = screen;
    mSend(screen);
}

HostPicture::Verdict HostPicture::take(const LinkFrame& frame)
{
    try {
        return judge(frame);
    } catch (const std::bad_alloc&) {
        return Verdict::tooLarge;
    }
}

HostPicture::Verdict HostPicture::judge(const LinkFrame& frame)
{
    bool isGood = true;
    const auto* options = std::get_if<LinkOptions>(&frame);
    if (options && mTakesInput)
        mInput.setOptions(*options);
    if (const auto* size = std::get_if<LinkPictureSize>(&frame))
        return begin(*size);
    if (const auto* packet = std::get_if<LinkScreenRectangle>(&frame))
        isGood = apply(*packet);
    if (const auto* end = std::get_if<LinkFrameEnd>(&frame))
        isGood = finish(*end);
    return isGood ? Verdict::good : Verdict::brokenRule;
}

HostPicture::Verdict HostPicture::begin(const LinkPictureSize& size)
{
    mInput.liftAll();
    // What was not shown of the picture before will never be.
    mShown = mEnded;
    if (size == LinkPictureSize{}) {
        mGlass.endPicture();
        mReceiver.reset();
        return Verdict::good;
    }
    const auto pixels = areaOf(size.width, size.height);
    if (pixels > mostPixels)
        return Verdict::tooLarge;
    if (!mayTouch(std::max(pixels, leastOfPicture)))
        return Verdict::brokenRule;
    auto next = std::make_unique<PictureReceiver>(size.width, size.height, mZlib, mAgreed);
    mGlass.beginPicture(*next);
    mReceiver = std::move(next);
    return Verdict::good;
}

bool HostPicture::apply(const LinkScreenRectangle& packet)
{
    const auto& part = packet.rectangle;
    const bool isOfPointer = packet.encoding == QLScreenEncodingMousePos ||
                             packet.encoding == QLScreenEncodingMouseCursor;
    const auto pixels = leastOfPart + areaOf(part.width, part.height);
    if (!mReceiver || (!isOfPointer && !mayTouch(pixels)) || !mReceiver->apply(packet))
        return false;
    mBytes += kLinkFrameHeaderSize + kScreenPacketHeaderSize + packet.data.size();
    if (isOfPointer)
        mGlass.movePointer();
    return true;
}

bool HostPicture::mayTouch(std::int64_t pixels)
{
    mWork += pixels;
    return mWork <= mostWork;
}

bool HostPicture::finish(const LinkFrameEnd& end)
{
    if (!mReceiver || end.number != mEnded + 1 || mEnded - mShown >= mostUnshown)
        return false;
    mEnded = end.number;
    mGlass.showFrame(
        mReceiver->takeChanged(), std::exchange(mBytes, 0),
        [this, number = end.number, arrived = mLoop.now()] { tellShown(number, arrived); });
    return true;
}

void HostPicture::tellShown(std::uint32_t number, Duration arrived)
{
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    const auto span = std::chrono::round<std::chrono::microseconds>(mLoop.now() - arrived);
    const auto took = std::clamp<std::int64_t>(span.count(), 0, most);
    mShown = number;
    mSend(LinkShown{number, static_cast<std::uint32_t>(took)});
}

} // namespace farview
