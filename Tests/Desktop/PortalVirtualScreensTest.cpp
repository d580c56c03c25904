#include "Platform/Desktop/Screens/Portal/PortalVirtualScreens.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivatePortal.h"
#include "Tests/Support/ScreenPainter.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <map>

namespace farview
{
namespace
{

constexpr auto limit = std::chrono::seconds(20);
constexpr std::uint32_t red = 0xC02010;

/// The real portal of sway, which adds no monitors and takes no input: it shows one of the user's.
class PortalVirtualScreensTest : public testing::Test
{
protected:
    PortalVirtualScreensTest()
    {
        mListener->frame = [this] { takeFrame(); };
    }

    void open()
    {
        mScreen.reset();
        *mListener = {};
        mListener->frame = [this] { takeFrame(); };
        mWidth = 0;
        mScreen = mScreens.open({.name = "Tablet", .width = 1024, .height = 600, .input = true},
                                mListener);
        EXPECT_TRUE(waitUntil([this] { return mListener->geometry || mListener->end; }, limit));
    }
    void takeFrame()
    {
        if (const auto frame = mScreen->frames().takeFrame()) {
            mWidth = frame->view.width;
            mPicture.assign(frame->view.pixels,
                            frame->view.pixels + frame->view.stride * frame->view.height);
        }
    }
    /// The portal may lose the first picture of each size, and sends the next one only when there
    /// is something new.
    bool comesToShow(int width)
    {
        int x = 0;
        return waitUntil(
            [&] {
                mPainter.fill(++x % 100, 0, 1, 1, red);
                return mWidth == width;
            },
            limit);
    }
    ScreenAvailability availability()
    {
        std::optional<ScreenAvailability> answer;
        mScreens.availability(mListener, [&](const auto& found) { answer = found; });
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }, limit));
        return answer.value_or(ScreenAvailability{});
    }
    std::optional<ScreenObstacle> end()
    {
        EXPECT_TRUE(waitUntil([&] { return mListener->end.has_value(); }, limit));
        return mListener->end;
    }

    PrivatePortal mDesktop{{"1280x800", "640x480"}};
    SwayArranger mArranger{mDesktop.sway()};
    ScreenPainter mPainter;
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    std::map<std::string, std::string> mWords;
    PortalMemory mMemory{[this](auto& name) { return mWords[name]; },
                         [this](auto& name, auto& word) { mWords[name] = word; }};
    PortalVirtualScreens mScreens{mLoop, mBus, mMemory};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::vector<std::uint32_t> mPicture;
    int mWidth = 0;
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(PortalVirtualScreensTest, WhereItAddsNoScreensAnExistingOneCanBeShown)
{
    EXPECT_EQ(availability().way, ScreenWay::existingScreen);
    EXPECT_EQ(mDesktop.questions(), 0);
    mDesktop.portal().kill();
    EXPECT_EQ(availability().way, std::nullopt);
    EXPECT_EQ(availability().obstacle, ScreenObstacle::protocolMissing);
}

TEST_F(PortalVirtualScreensTest, ThePictureIsThatOfTheUsersScreen)
{
    open();
    ASSERT_TRUE(mListener->geometry);
    EXPECT_TRUE(mListener->geometry->isMirror);
    EXPECT_EQ(mListener->geometry->area, pixelRect(0, 0, 1280, 800));
    std::vector<std::uint32_t> expected(1280 * 800);
    for (int y = 300; y < 350; ++y)
        std::fill_n(expected.begin() + y * 1280 + 200, 100, red);
    mPainter.fill(200, 300, 100, 50, red);
    EXPECT_TRUE(waitUntil([&] { return mPicture == expected; }, limit));
    EXPECT_TRUE(mScreen->cursor().isInFrames());
}

TEST_F(PortalVirtualScreensTest, ASingleChangeAfterAPauseIsSeen)
{
    open();
    ASSERT_TRUE(comesToShow(1280));
    for (int time = 0; time < 3; ++time) {
        runLoopFor(std::chrono::milliseconds(1500));
        mPainter.fill(10 * time, 10, 1, 1, red);
        const auto pixel = static_cast<std::size_t>(10 * 1280 + 10 * time);
        EXPECT_TRUE(waitUntil([&] { return mPicture[pixel] == red; }, std::chrono::seconds(5)))
            << time;
    }
}

TEST_F(PortalVirtualScreensTest, NothingThatIsAskedChangesTheUsersScreen)
{
    const auto before = mArranger.layout();
    open();
    ASSERT_TRUE(mListener->geometry);
    mScreen->resize(800, 600);
    mScreen->setScale(2);
    mScreen->place({100, 100});
    ASSERT_TRUE(comesToShow(1280));
    mScreen.reset();
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(mArranger.layout(), before);
    EXPECT_EQ(mListener->geometries.size(), 1U);
}

TEST_F(PortalVirtualScreensTest, WhatTheUserMakesOfTheScreenIsFollowed)
{
    open();
    ASSERT_TRUE(comesToShow(1280));
    ASSERT_TRUE(mArranger.run("output HEADLESS-1 resolution 800x640"));
    ASSERT_TRUE(waitUntil([this] { return mListener->geometries.size() == 2; }, limit));
    EXPECT_EQ(mListener->geometry->area, pixelRect(0, 0, 800, 640));
    EXPECT_TRUE(comesToShow(800));
}

TEST_F(PortalVirtualScreensTest, WhoHasAllowedItIsNotAskedAgain)
{
    open();
    ASSERT_TRUE(mListener->geometry);
    EXPECT_EQ(mDesktop.questions(), 1);
    EXPECT_NE(mWords["Tablet"], "");
    open();
    ASSERT_TRUE(mListener->geometry);
    EXPECT_EQ(mDesktop.questions(), 1);
    EXPECT_TRUE(comesToShow(1280));
}

TEST_F(PortalVirtualScreensTest, AWordThatCountsNoLongerLeadsBackToTheQuestion)
{
    for (const char* word : {"nonsense", "8bf05163-54f4-4264-954c-a0562fee7c9c"}) {
        mWords["Tablet"] = word;
        const int before = mDesktop.questions();
        open();
        EXPECT_TRUE(mListener->geometry) << word;
        EXPECT_EQ(mDesktop.questions(), before + 1) << word;
        EXPECT_NE(mWords["Tablet"], word);
    }
}

TEST_F(PortalVirtualScreensTest, AUserWhoSaysNoIsNotAskedTwice)
{
    mDesktop.setAnswer("");
    open();
    EXPECT_EQ(end(), ScreenObstacle::declined);
    EXPECT_EQ(mDesktop.questions(), 1);
}

TEST_F(PortalVirtualScreensTest, EndsWithThePortal)
{
    open();
    ASSERT_TRUE(mListener->geometry);
    mDesktop.portal().kill();
    EXPECT_EQ(end(), ScreenObstacle::gone);
}

TEST_F(PortalVirtualScreensTest, EndsWithPipeWire)
{
    open();
    ASSERT_TRUE(mListener->geometry);
    mDesktop.pipeWire().kill();
    EXPECT_EQ(end(), ScreenObstacle::failed);
}

TEST_F(PortalVirtualScreensTest, TwoDevicesMayShowTwoScreens)
{
    open();
    ASSERT_TRUE(mListener->geometry);
    mDesktop.setAnswer("HEADLESS-2");
    const auto other = std::make_shared<ScreenListener>();
    const auto second = mScreens.open({.name = "Old laptop", .width = 1024, .height = 600}, other);
    EXPECT_TRUE(waitUntil([&] { return other->geometry.has_value(); }, limit));
    EXPECT_EQ(other->geometry->width, 640);
    EXPECT_EQ(mDesktop.questions(), 2);
    EXPECT_EQ(mListener->end, std::nullopt);
}

} // namespace
} // namespace farview
