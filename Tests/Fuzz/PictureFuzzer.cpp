// A device's picture, given whatever frames a host may send.
#include "Applications/Device/HostPicture.h"
#include "Link/Wire/LinkCodec.h"
#include "Platform/Fake/FakeRunLoop.h"
#include "Tests/Fuzz/Expect.h"

#include <utility>

namespace
{

using namespace farview;

/// Larger ones would only take time.
constexpr int largestSide = 256;

/// A glass that shows a frame when it has had another one: the next to last is always replaced.
class SlowGlass final : public Glass
{
public:
    LinkDeviceScreen screen() const override { return {}; }
    void setScreenObserver(std::function<void()>) override {}
    void setInput(InputReporter*) override {}
    void beginPicture(const PictureReceiver& picture) override { mPicture = &picture; }
    void showFrame(const std::vector<PixelRect>& changed, std::size_t,
                   std::function<void()> drawn) override
    {
        for (const auto& part : changed)
            expect(mPicture->picture().view().holds(part), "what changed lies inside");
        const bool isSecond = mDrawn != nullptr;
        mDrawn = std::move(drawn);
        if (isSecond)
            std::exchange(mDrawn, nullptr)();
    }
    void movePointer() override
    {
        const auto& cursor = mPicture->cursor();
        expect(!cursor || cursor->image.width() <= Cursor::largestSide, "a cursor is small");
    }
    void endPicture() override { mPicture = nullptr; }

private:
    const PictureReceiver* mPicture = nullptr;
    std::function<void()> mDrawn;
};

bool isTooSlow(const LinkFrame& frame)
{
    const auto* size = std::get_if<LinkPictureSize>(&frame);
    return size && (size->width > largestSide || size->height > largestSide);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    SlowGlass glass;
    FakeRunLoop loop;
    std::uint32_t shown = 0;
    HostPicture picture(
        {1, {kLinkInputFeature, kLinkScreenFeature, kLinkZstdFeature}}, glass,
        [&](const LinkFrame& frame) {
            const auto* answer = std::get_if<LinkShown>(&frame);
            expect(!answer || answer->number > shown, "frames are shown in order");
            shown = answer ? answer->number : shown;
        },
        loop);
    ByteView rest(bytes, size);
    for (;;) {
        const auto frame = decodeFrame(rest);
        if (frame.status != DecodeStatus::complete || isTooSlow(frame.value) ||
            picture.take(frame.value) != HostPicture::Verdict::good)
            return 0;
        rest = rest.subspan(frame.consumed);
    }
}
