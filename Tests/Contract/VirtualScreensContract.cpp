#include "Tests/Contract/ScreenScenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

using Condition = std::function<bool()>;

/// Notes what it is told.
struct Listener final : VirtualScreenDelegate {
    std::vector<ScreenGeometry> appeared;
    std::vector<ScreenGeometry> changes;
    int frames = 0;
    int cursorChanges = 0;
    std::vector<ScreenObstacle> ends;

    void didAppear(const ScreenGeometry& geometry) override { appeared.push_back(geometry); }
    void didChange(const ScreenGeometry& geometry) override { changes.push_back(geometry); }
    void frameReady() override { ++frames; }
    void cursorChanged() override { ++cursorChanges; }
    void didEnd(ScreenObstacle reason) override { ends.push_back(reason); }
};

template <typename Scene> class VirtualScreensContract : public testing::Test
{
protected:
    bool waitFor(const Condition& condition) { return mScene.waitFor(condition); }
    void open(int width = 1024, int height = 600)
    {
        mScreen = mScene.body.open({.name = "Tablet", .width = width, .height = height}, mListener);
    }
    void openAndAppear(int width = 1024, int height = 600)
    {
        open(width, height);
        ASSERT_TRUE(waitFor([&] { return !mListener->appeared.empty(); }));
    }
    /// On which everything that is drawn is seen, of one colour.
    void openEmpty()
    {
        openAndAppear();
        draw(pixelRect(0, 0, geometry().width, geometry().height), 0x202428);
        ASSERT_TRUE(waitFor([&] {
            if (std::exchange(mListener->frames, 0) == 0)
                return false;
            const auto frame = mScreen->frames().takeFrame();
            return frame && frame->view.row(0)[0] == 0x202428 &&
                   frame->view.row(frame->view.height - 1)[frame->view.width - 1] == 0x202428;
        }));
    }
    const ScreenGeometry& geometry()
    {
        return mListener->changes.empty() ? mListener->appeared.back() : mListener->changes.back();
    }
    void draw(const PixelRect& part, std::uint32_t colour)
    {
        mScene.draw(geometry(), part, colour);
    }
    /// The next frame, once the delegate was told of it.
    ScreenFrame nextFrame()
    {
        std::optional<ScreenFrame> frame;
        EXPECT_TRUE(waitFor([&] {
            return mListener->frames > 0 && (frame = mScreen->frames().takeFrame()).has_value();
        }));
        mListener->frames = 0;
        return frame.value_or(ScreenFrame{});
    }
    std::vector<ScreenObstacle> ends()
    {
        EXPECT_TRUE(waitFor([&] { return !mListener->ends.empty(); }));
        return mListener->ends;
    }

    Scene mScene;
    std::shared_ptr<Listener> mListener = std::make_shared<Listener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

bool covers(const ScreenFrame& frame, int x, int y)
{
    return std::any_of(frame.damage.begin(), frame.damage.end(), [&](const auto& part) {
        return x >= part.x && x < part.x + part.width && y >= part.y && y < part.y + part.height;
    });
}

bool isDamagedAsAWhole(const ScreenFrame& frame)
{
    const int right = frame.view.width - 1;
    const int bottom = frame.view.height - 1;
    return covers(frame, 0, 0) && covers(frame, right, 0) && covers(frame, 0, bottom) &&
           covers(frame, right, bottom);
}

std::uint32_t pixel(const ScreenFrame& frame, int x, int y) { return frame.view.row(y)[x]; }

using Scenes = testing::Types<ScriptedScreens, ScreensOfAnXServer, ScreensOfGnome>;
TYPED_TEST_SUITE(VirtualScreensContract, Scenes);

TYPED_TEST(VirtualScreensContract, SaysThatItCanMakeAMonitor)
{
    std::optional<ScreenAvailability> answer;
    this->mScene.body.availability(this->mListener, [&](const auto& found) { answer = found; });
    ASSERT_TRUE(this->waitFor([&] { return answer.has_value(); }));
    EXPECT_TRUE(answer->way.has_value());
}

TYPED_TEST(VirtualScreensContract, AMonitorAppearsInItsSizeOnALaterTurn)
{
    this->open();
    EXPECT_TRUE(this->mListener->appeared.empty());
    ASSERT_TRUE(this->waitFor([&] { return !this->mListener->appeared.empty(); }));
    const auto& geometry = this->geometry();
    EXPECT_EQ(geometry.width, 1024);
    EXPECT_EQ(geometry.height, 600);
    EXPECT_EQ(geometry.corner(), pixelPoint(1920, 0));
    EXPECT_EQ(this->mListener->appeared.size(), 1U);
    EXPECT_TRUE(this->mListener->ends.empty());
}

TYPED_TEST(VirtualScreensContract, TheFirstFrameIsWhole)
{
    this->openAndAppear();
    const auto frame = this->nextFrame();
    EXPECT_EQ(frame.view.width, 1024);
    EXPECT_EQ(frame.view.height, 600);
    EXPECT_TRUE(isDamagedAsAWhole(frame));
}

TYPED_TEST(VirtualScreensContract, WhatIsDrawnArrivesAsDamageWithItsPixels)
{
    this->openEmpty();
    this->draw(pixelRect(100, 50, 40, 30), 0x336699);
    const auto frame = this->nextFrame();
    EXPECT_TRUE(covers(frame, 100, 50));
    EXPECT_TRUE(covers(frame, 139, 79));
    EXPECT_FALSE(covers(frame, 900, 500));
    EXPECT_EQ(pixel(frame, 100, 50), 0x336699U);
    EXPECT_EQ(pixel(frame, 139, 79), 0x336699U);
    EXPECT_NE(pixel(frame, 99, 50), 0x336699U);
    EXPECT_NE(pixel(frame, 140, 79), 0x336699U);
}

TYPED_TEST(VirtualScreensContract, AFrameStaysAsItIsUntilItIsReleased)
{
    this->openEmpty();
    this->draw(pixelRect(0, 0, 8, 8), 0x112233);
    auto frame = this->nextFrame();
    this->draw(pixelRect(0, 0, 8, 8), 0x445566);
    this->mScene.settle();
    EXPECT_EQ(this->mListener->frames, 0);
    EXPECT_FALSE(this->mScreen->frames().takeFrame());
    EXPECT_EQ(pixel(frame, 0, 0), 0x112233U);
    frame = {};
    EXPECT_EQ(pixel(this->nextFrame(), 0, 0), 0x445566U);
}

TYPED_TEST(VirtualScreensContract, TheNewestFrameReplacesOlderOnes)
{
    this->openEmpty();
    for (const std::uint32_t colour : {0x111111U, 0x222222U, 0x333333U})
        this->draw(pixelRect(10, 10, 4, 4), colour);
    ASSERT_TRUE(this->waitFor([&] {
        const auto frame = this->mScreen->frames().takeFrame();
        return frame && pixel(*frame, 10, 10) == 0x333333U;
    }));
    EXPECT_FALSE(this->mScreen->frames().takeFrame());
}

TYPED_TEST(VirtualScreensContract, AFrameOutlivesItsMonitor)
{
    this->openAndAppear();
    this->draw(pixelRect(0, 0, 1024, 600), 0x102030);
    std::optional<ScreenFrame> frame;
    ASSERT_TRUE(this->waitFor([&] {
        frame.reset();
        frame = this->mScreen->frames().takeFrame();
        return frame && pixel(*frame, 1023, 599) == 0x102030U;
    }));
    this->mScreen.reset();
    EXPECT_EQ(pixel(*frame, 1023, 599), 0x102030U);
}

TYPED_TEST(VirtualScreensContract, ResizesWhileItIsOpenAndShowsAWholeFrame)
{
    this->openAndAppear();
    this->nextFrame();
    this->mScreen->resize(600, 1024);
    ASSERT_TRUE(this->waitFor([&] { return !this->mListener->changes.empty(); }));
    EXPECT_EQ(this->geometry().width, 600);
    EXPECT_EQ(this->geometry().height, 1024);
    EXPECT_EQ(this->geometry().corner(), pixelPoint(1920, 0));
    const auto frame = this->nextFrame();
    EXPECT_EQ(frame.view.width, 600);
    EXPECT_EQ(frame.view.height, 1024);
    EXPECT_TRUE(isDamagedAsAWhole(frame));
}

TYPED_TEST(VirtualScreensContract, MovesToAPlaceOfItsOwn)
{
    this->openAndAppear();
    this->mScreen->place(pixelPoint(0, 1080));
    ASSERT_TRUE(this->waitFor([&] { return !this->mListener->changes.empty(); }));
    EXPECT_EQ(this->geometry().corner(), pixelPoint(0, 1080));
    EXPECT_EQ(this->geometry().width, 1024);
    this->draw(pixelRect(5, 5, 2, 2), 0x0A0B0C);
    EXPECT_TRUE(this->waitFor([&] {
        const auto frame = this->mScreen->frames().takeFrame();
        return frame && pixel(*frame, 5, 5) == 0x0A0B0CU;
    }));
}

TYPED_TEST(VirtualScreensContract, ShowsThePointerApartFromTheFrames)
{
    this->openEmpty();
    auto& cursor = this->mScreen->cursor();
    EXPECT_FALSE(cursor.isInFrames());
    this->mScene.movePointer(this->geometry(), 30, 40);
    ASSERT_TRUE(this->waitFor([&] {
        return this->mListener->cursorChanges > 0 && cursor.position() == pixelPoint(30, 40);
    }));
    this->mScene.setCursor(9, 0xFF8040, 3);
    std::optional<CursorImage> image;
    ASSERT_TRUE(this->waitFor([&] {
        auto newer = cursor.takeImage();
        image = newer ? newer : image;
        return image && image->width == 9;
    }));
    EXPECT_EQ(image->height, 9);
    EXPECT_EQ(image->hotspot, pixelPoint(3, 3));
    EXPECT_EQ(image->pixels.at(40), 0xFFFF8040U);
    EXPECT_FALSE(cursor.takeImage());
    this->mScene.movePointer(this->geometry(), -300, 40);
    EXPECT_TRUE(this->waitFor([&] { return !cursor.position(); }));
}

/// GNOME's window manager, version 43, crashes when a monitor that it shows to a program is
/// switched off.
template <typename Scene> class MonitorThatOthersCanSwitch : public VirtualScreensContract<Scene>
{
};
using SwitchingScenes = testing::Types<ScriptedScreens, ScreensOfAnXServer>;
TYPED_TEST_SUITE(MonitorThatOthersCanSwitch, SwitchingScenes);

TYPED_TEST(MonitorThatOthersCanSwitch, EndsWhenTheySwitchItOff)
{
    this->openAndAppear();
    this->mScene.switchOff();
    EXPECT_EQ(this->ends(), std::vector{ScreenObstacle::takenAway});
}

TYPED_TEST(VirtualScreensContract, EndsWithTheDesktop)
{
    this->openAndAppear();
    this->mScene.endDesktop();
    EXPECT_EQ(this->ends(), std::vector{ScreenObstacle::gone});
}

TYPED_TEST(VirtualScreensContract, SaysWhatIsInTheWay)
{
    const auto obstacle = this->mScene.obstruct();
    std::optional<ScreenAvailability> answer;
    this->mScene.body.availability(this->mListener, [&](const auto& found) { answer = found; });
    ASSERT_TRUE(this->waitFor([&] { return answer.has_value(); }));
    EXPECT_FALSE(answer->way);
    EXPECT_EQ(answer->obstacle, obstacle);
    this->open();
    EXPECT_EQ(this->ends(), std::vector{obstacle});
    EXPECT_TRUE(this->mListener->appeared.empty());
}

TYPED_TEST(VirtualScreensContract, TellsNothingOnceItsObjectIsGone)
{
    this->openAndAppear();
    this->draw(pixelRect(0, 0, 10, 10), 0x123456);
    this->mScene.movePointer(this->geometry(), 1, 1);
    this->mScreen.reset();
    const auto told = std::exchange(this->mListener, std::make_shared<Listener>());
    const int before = told->frames + told->cursorChanges;
    this->openAndAppear();
    EXPECT_EQ(told->frames + told->cursorChanges, before);
    EXPECT_EQ(told->appeared.size(), 1U);
    EXPECT_TRUE(told->ends.empty());
}

} // namespace
} // namespace farview
