#include "Applications/Preferences/SmokeTest.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>

namespace
{

constexpr int showings = 2;
constexpr std::chrono::milliseconds timeOnShow{150};

} // namespace

SmokeTest::SmokeTest(PreferencesHost& host, QString bundlePath)
    : mHost(host), mBundlePath(std::move(bundlePath))
{
}

HostError SmokeTest::start()
{
    const HostError error = mHost.open(mBundlePath);
    if (error.status == HostStatus::success)
        QTimer::singleShot(timeOnShow, this, &SmokeTest::endShowing);
    return error;
}

void SmokeTest::endShowing()
{
    mHost.unselect();
    mHost.window().hide();
    if (++mShowings == showings)
        QCoreApplication::quit();
    else
        start();
}
