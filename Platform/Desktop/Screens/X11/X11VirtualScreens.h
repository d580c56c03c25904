#pragma once

#include "Platform/Desktop/Screens/X11/InputDevices.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <string>
#include <vector>

namespace farview
{

/// Monitors of the X server that $DISPLAY names, of one process at a time. Whatever asks the server
/// does so on a thread of its own; answers come through the run loop, which must live longer. Main
/// thread.
class X11VirtualScreens final : public VirtualScreens
{
public:
    /// `watcher`: the path of the program that undoes a monitor when this process has died.
    /// `makeDevices` is called on other threads, once for each monitor that takes input.
    X11VirtualScreens(RunLoop& loop, std::string watcher,
                      MakeInputDevices makeDevices = makeKernelDevices);
    ~X11VirtualScreens() override;

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    class Question;

    RunLoop& mLoop;
    std::string mWatcher;
    MakeInputDevices mMakeDevices;
    std::vector<std::unique_ptr<Question>> mQuestions;
};

} // namespace farview
