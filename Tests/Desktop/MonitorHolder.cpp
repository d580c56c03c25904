// Makes a monitor of the desktop it runs on, of 1024x600, and keeps it until it is killed.

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    farview::FakeLog log;
    farview::SessionBus bus(log);
    farview::QtRunLoop loop;
    farview::MutterVirtualScreens screens(loop, bus);
    const auto listener = std::make_shared<farview::ScreenListener>();
    const auto screen = screens.open({.name = "Tablet", .width = 1024, .height = 600}, listener);
    return QCoreApplication::exec();
}
