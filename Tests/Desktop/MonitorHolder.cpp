// Makes a monitor of the desktop it runs on, of 1024x600, and keeps it until it is killed. SIGUSR1
// has it put a finger at 500,300 there, and press a key (KEY_A) and a button, for ever.

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/DesktopScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>

namespace
{

volatile std::sig_atomic_t isAsked = 0;

void holdDown(farview::InputSink& input)
{
    input.movePointer({.x = 500, .y = 300});
    input.button(farview::PointerButton::left, true);
    input.key(30, true);
    input.touch({.place = {.x = 500, .y = 300}});
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    std::signal(SIGUSR1, [](int) { isAsked = 1; });
    farview::FakeLog log;
    farview::SessionBus bus(log);
    farview::QtRunLoop loop;
    farview::DesktopScreens desktop(loop, bus, FARVIEW_MONITOR_WATCHER);
    const auto listener = std::make_shared<farview::ScreenListener>();
    std::unique_ptr<farview::VirtualScreen> screen;
    // Once it has answered, it is known which desktop this is.
    desktop.screens().availability(listener, [&](auto&) {
        screen = desktop.screens().open(
            {.name = "Tablet", .width = 1024, .height = 600, .input = true}, listener);
    });
    QTimer timer;
    timer.callOnTimeout([&] {
        if (std::exchange(isAsked, 0))
            holdDown(screen->input());
    });
    timer.start(10);
    return QCoreApplication::exec();
}
