// How long it takes from a finger on a device's glass to the pixel there that it changes: Farview's
// device on the display that DISPLAY names, 1920x1080 with the touch screen of $WITH_DESKTOP_INPUT,
// and on another one a program that draws when it is touched. Needs a network and a session bus of
// its own.
//
// usage: touch-to-pixel [TOUCHES]

#include "Benchmarks/Figures.h"
#include "Benchmarks/PictureObserver.h"
#include "Benchmarks/PictureUsers.h"
#include "Tests/Support/InputTestDevice.h"
#include "Tests/Support/PrivateXServer.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

using namespace farview;

TouchRecord measure(const std::string& glass, const std::string& touchScreen, int touches)
{
    const PrivateXServer source;
    setBackground(source.display(), PictureObserver::background);
    ::setenv("FARVIEW_TEST_INPUT", source.folder().c_str(), 1);
    const auto system = farviewIn(FARVIEW_TEST_PROGRAMS);
    const RunningPictures pictures(system, source.display(), glass);
    TestPanel panel;
    chooseDevice(panel, "127.0.0.1");
    PictureObserver observer(glass);
    observer.waitForBackground();
    const InputTestDevices devices(touchScreen);
    const auto finger = devices.maker()();
    TouchRecord record;
    const auto touch = [&](bool isDown) {
        TouchPoint point{};
        point.phase = isDown ? TouchPhase::down : TouchPhase::up;
        finger->touch(point, {DevicePlace::parts / 2, DevicePlace::parts / 2});
    };
    observer.observeTouches(pictures, touches, touch, record);
    return record;
}

void print(const char* what, const PictureRecord::Samples& samples)
{
    std::printf("  %-44s%5.3g ms, 99 %% %5.3g ms\n", what, median(samples),
                quantile(samples, 0.99));
}

void printAll(const TouchRecord& record)
{
    print("from the finger to the changed pixel", record.all);
    print("its picture alone, from the program on", record.picture);
    printExcess({"touch to pixel", "its picture alone", "ms", record.all, record.picture}, 5);
}

} // namespace

int main(int argc, char** argv)
{
    const char* glass = std::getenv("DISPLAY");
    const char* touchScreen = std::getenv("WITH_DESKTOP_INPUT");
    if (!glass || !touchScreen) {
        std::fprintf(stderr, "%s: there is no display with a touch screen\n", argv[0]);
        return 2;
    }
    QCoreApplication application(argc, argv);
    pairBothPrograms();
    try {
        printAll(measure(glass, touchScreen, argc > 1 ? std::atoi(argv[1]) : 300));
    } catch (const std::exception& error) {
        std::printf("  cannot be measured: %s\n", error.what());
        return 1;
    }
    return 0;
}
