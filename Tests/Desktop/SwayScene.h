#pragma once

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Wlroots/WlrootsVirtualScreens.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivateSway.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

namespace farview
{

/// A sway with monitors of its user's, and one of ours on it.
class SwayScene : public testing::Test
{
protected:
    explicit SwayScene(const std::vector<std::string>& monitors = {"1280x720"},
                       const std::string& configuration = {})
        : mDesktop(monitors, configuration)
    {
    }

    void open(int width = 1024, int height = 600, double scale = 1)
    {
        mListener = std::make_shared<ScreenListener>();
        mScreen = mScreens.open(
            {.name = "Tablet", .width = width, .height = height, .scale = scale, .input = true},
            mListener);
        ASSERT_TRUE(waitUntil([&] { return mListener->geometry || mListener->end; }));
        ASSERT_TRUE(mListener->geometry) << static_cast<int>(*mListener->end);
    }
    const ScreenGeometry& geometry() { return *mListener->geometry; }
    bool becomes(int width, int height)
    {
        return waitUntil([&] { return geometry().width == width && geometry().height == height; });
    }
    bool isLayout(const std::string& layout)
    {
        return waitUntil([&] { return mOthers.layout() == layout; });
    }

    PrivateSway mDesktop;
    SwayArranger mOthers{mDesktop};
    QtRunLoop mLoop;
    WlrootsVirtualScreens mScreens{mLoop};
    std::shared_ptr<ScreenListener> mListener;
    std::unique_ptr<VirtualScreen> mScreen;
};

} // namespace farview
