#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/X11/MonitorThread.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>
#include <vector>

namespace farview
{
namespace
{

/// Hears of every change of what outputs show.
class OutputListener
{
public:
    explicit OutputListener(const std::string& display)
        : mConnection(connectX(display.c_str())),
          mEvent(xcb_get_extension_data(mConnection.get(), &xcb_randr_id)->first_event)
    {
        auto* server = mConnection.get();
        std::free(xcb_request_check(
            server, xcb_randr_select_input_checked(server, screenOf(server)->root,
                                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE)));
    }

    /// The sizes since the beginning, each change once; 0x0 for off.
    std::vector<std::pair<int, int>> sizes()
    {
        std::free(xcb_get_input_focus_reply(mConnection.get(),
                                            xcb_get_input_focus(mConnection.get()), nullptr));
        std::vector<std::pair<int, int>> sizes;
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(mConnection.get())}) {
            const auto& notice = reinterpret_cast<const xcb_randr_notify_event_t&>(*event);
            const auto& crtc = notice.u.cc;
            const std::pair<int, int> size(crtc.mode ? crtc.width : 0, crtc.mode ? crtc.height : 0);
            if (event->response_type == mEvent + XCB_RANDR_NOTIFY &&
                (sizes.empty() || sizes.back() != size))
                sizes.push_back(size);
        }
        return sizes;
    }

private:
    XConnection mConnection;
    int mEvent;
};

class X11VirtualScreensTest : public testing::Test
{
protected:
    X11VirtualScreensTest() { mOthers.showOnce(1); }
    std::string described() { return describedScreens(mServer.display()); }
    void open(int width = 1024, int height = 600)
    {
        mScreen = mScreens.open({.name = "Tablet", .width = width, .height = height}, mListener);
        waitUntil([&] { return mListener->geometry || mListener->end; });
    }
    bool becomes(int width, int height)
    {
        return waitUntil([&] {
            return mListener->geometry->width == width && mListener->geometry->height == height;
        });
    }

    PrivateXServer mServer;
    ScreenArranger mOthers{mServer.display()};
    QtRunLoop mLoop;
    X11VirtualScreens mScreens{mLoop, FARVIEW_MONITOR_WATCHER};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(X11VirtualScreensTest, RemovalLeavesEverythingAsItWas)
{
    const auto before = described();
    open();
    EXPECT_NE(described(), before);
    mScreen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, RemovalAfterOtherSizesAndPlacesLeavesEverythingAsItWas)
{
    const auto before = described();
    open();
    mScreen->resize(2560, 1600);
    ASSERT_TRUE(becomes(2560, 1600));
    mScreen->place(pixelPoint(0, 1080));
    mScreen->resize(600, 1024);
    ASSERT_TRUE(becomes(600, 1024));
    mScreen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, FiftySizesASecondEndInTheLast)
{
    const auto before = described();
    open();
    for (int width = 801; width <= 850; ++width)
        mScreen->resize(width, 600);
    EXPECT_TRUE(becomes(850, 600));
    mScreen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, TurningShowsNothingBetweenOneSizeAndTheOther)
{
    open();
    std::vector<std::pair<int, int>> frames;
    mListener->frame = [&] {
        const auto frame = mScreen->frames().takeFrame();
        if (frame && (frames.empty() || frames.back().first != frame->view.width))
            frames.emplace_back(frame->view.width, frame->view.height);
    };
    ASSERT_TRUE(waitUntil([&] { return !frames.empty(); }));
    OutputListener outputs(mServer.display());
    mScreen->resize(600, 1024);
    int shade = 0;
    ASSERT_TRUE(waitUntil([&] {
        mOthers.fill({1920, 0, 600, 600}, ++shade % 256);
        return frames.size() > 1;
    }));
    const std::vector sizes{std::pair(1024, 600), std::pair(600, 1024)};
    EXPECT_EQ(frames, sizes);
    ASSERT_EQ(mListener->geometries.size(), 2U);
    EXPECT_EQ(mListener->geometries[1].area, pixelRect(1920, 0, 600, 1024));
    EXPECT_EQ(outputs.sizes(), std::vector{sizes[1]});
}

TEST_F(X11VirtualScreensTest, SizesThatNoScreenHasAreRefused)
{
    const auto before = described();
    for (const auto& [width, height] :
         {std::pair(65535, 65535), std::pair(0, 0), std::pair(-5, 100), std::pair(32000, 10)}) {
        *mListener = {};
        open(width, height);
        EXPECT_EQ(mListener->end, ScreenObstacle::tooLarge) << width;
        mScreen.reset();
        EXPECT_EQ(described(), before);
    }
}

TEST_F(X11VirtualScreensTest, ASinglePixelIsAMonitor)
{
    const auto before = described();
    open(1, 1);
    EXPECT_EQ(mOthers.area(1), (ScreenArranger::Area{1920, 0, 1, 1}));
    mScreen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, ASizeThatCannotBeChangesNothing)
{
    open();
    const auto before = described();
    mScreen->resize(32000, 600);
    mScreen->place(pixelPoint(100, 100));
    mScreen->place(pixelPoint(-10, 0));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, WhatOthersChangeMeanwhileStays)
{
    open();
    mOthers.setScreenSize(4000, 2160);
    mOthers.show(2, 0, 1080);
    mOthers.makePrimary(2);
    const auto theirs = mOthers.area(2);
    mScreen.reset();
    EXPECT_EQ(mOthers.area(2), theirs);
    EXPECT_EQ(mOthers.area(1), ScreenArranger::Area{});
    EXPECT_EQ(mOthers.area(0), (ScreenArranger::Area{0, 0, 1920, 1080}));
    EXPECT_EQ(mOthers.screen(), (ScreenArranger::Area{0, 0, 1920, 2160}));
}

TEST_F(X11VirtualScreensTest, ThePrimaryOutputIsTheUsersAgain)
{
    mOthers.makePrimary(0);
    const auto before = described();
    open();
    mOthers.makePrimary(1);
    mScreen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, WhatOthersSwitchedOffLeavesNothing)
{
    const auto before = described();
    open();
    mOthers.hide(1);
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::takenAway);
    EXPECT_TRUE(waitUntil([&] { return described() == before; }));
}

TEST_F(X11VirtualScreensTest, MonitorsOfOneProcessAtATime)
{
    const ForkedProcess another([] {
        const MonitorThread thread({.name = "Phone", .width = 800, .height = 600},
                                   FARVIEW_MONITOR_WATCHER, [](const auto&) {});
        ::pause();
    });
    ASSERT_TRUE(waitUntil([&] { return mOthers.area(1).width == 800; }));
    open();
    EXPECT_EQ(mListener->end, ScreenObstacle::inUse);
    std::optional<ScreenAvailability> answer;
    mScreens.availability(mListener, [&](const auto& found) { answer = found; });
    ASSERT_TRUE(waitUntil([&] { return answer.has_value(); }));
    EXPECT_FALSE(answer->way);
    EXPECT_EQ(answer->obstacle, ScreenObstacle::inUse);
    EXPECT_EQ(mOthers.area(1), (ScreenArranger::Area{1920, 0, 800, 600}));
}

TEST_F(X11VirtualScreensTest, WithoutItsWatcherThereIsNoMonitor)
{
    const auto before = described();
    X11VirtualScreens alone(mLoop, "/nonexistent/watcher");
    mScreen = alone.open({.name = "Tablet", .width = 800, .height = 600}, mListener);
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::failed);
    EXPECT_EQ(described(), before);
}

TEST_F(X11VirtualScreensTest, AServerThatStandsStillDoesNotHoldUpTheEnd)
{
    const auto before = described();
    open();
    mServer.process().sendSignal(SIGSTOP);
    mScreen.reset();
    mServer.process().sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return described() == before; }));
}

} // namespace
} // namespace farview
