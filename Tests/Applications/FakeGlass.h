#pragma once

#include "Applications/Device/Glass.h"

#include <utility>

namespace farview
{

/// A glass that shows frames when the test says so.
class FakeGlass final : public Glass
{
public:
    LinkDeviceScreen screen() const override { return deviceScreen; }
    void setScreenObserver(std::function<void()> changed) override { screenChanged = changed; }
    void setInput(InputReporter* reporter) override { input = reporter; }
    void beginPicture(const PictureReceiver& begun) override
    {
        picture = &begun;
        ++pictures;
    }
    void showFrame(const std::vector<PixelRect>& parts, std::size_t size,
                   std::function<void()> drawn) override
    {
        changed = parts;
        bytes = size;
        mDrawn = std::move(drawn);
    }
    void movePointer() override { ++pointerMoves; }
    void endPicture() override
    {
        picture = nullptr;
        mDrawn = nullptr;
    }

    /// What is to be shown is on the glass now.
    void draw()
    {
        if (const auto drawn = std::exchange(mDrawn, nullptr))
            drawn();
    }
    bool isWaiting() const { return mDrawn != nullptr; }

    LinkDeviceScreen deviceScreen{1280, 800, 100, 60};
    std::function<void()> screenChanged;
    InputReporter* input = nullptr;
    const PictureReceiver* picture = nullptr;
    int pictures = 0;
    std::vector<PixelRect> changed;
    std::size_t bytes = 0;
    int pointerMoves = 0;

private:
    std::function<void()> mDrawn;
};

} // namespace farview
