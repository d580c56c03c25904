#pragma once

#include "Platform/Desktop/Discovery/DesktopDiscovery.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Discovery/DiscoveryRecorder.h"
#include "Tests/Discovery/TestDaemon.h"
#include "Tests/Discovery/TestPublisher.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace farview
{

inline constexpr const char* deviceType = "_qlexvscreen._udp";
inline constexpr const char* localDomain = "local.";

/// How the discovering host looks at the network.
enum class Way { daemon, embedded };

inline std::string nameOfWay(const testing::TestParamInfo<Way>& info)
{
    return info.param == Way::daemon ? "WithADaemon" : "ByItself";
}

/// The test is host A, which discovers; host B has a daemon and announces.
class TwoHosts : public testing::Test
{
protected:
    void begin(Way way, const TestDaemon::Options& here = {"A"})
    {
        if (way == Way::daemon) {
            mHere.emplace(here);
            useBus(mHere->busAddress());
        }
        mDiscovery.emplace(mLog);
    }

    /// What is made from now on uses that bus as the system's.
    void useBus(const std::string& address)
    {
        mBusAddress.reset();
        mBusAddress.emplace("DBUS_SYSTEM_BUS_ADDRESS", address.c_str());
    }

    std::shared_ptr<NetServiceBrowser> search(const std::shared_ptr<DiscoveryRecorder>& recorder)
    {
        auto browser = mDiscovery->makeBrowser();
        browser->setDelegate(recorder);
        browser->searchForServicesOfType(deviceType, localDomain);
        return browser;
    }

    bool waitFor(std::size_t count, std::chrono::milliseconds limit = std::chrono::seconds(10))
    {
        return waitUntil([&] { return mRecorder->present.size() == count; }, limit);
    }
    bool waitForResolves(std::size_t count)
    {
        return waitUntil([&] { return mRecorder->resolved.size() >= count; });
    }

    FakeLog mLog;
    std::optional<TestDaemon> mHere;
    TestDaemon mThere{{"B"}};
    TestPublisher mPublisher{mThere.busAddress()};
    std::optional<ScopedEnvironment> mBusAddress;
    std::optional<DesktopDiscovery> mDiscovery;
    std::shared_ptr<DiscoveryRecorder> mRecorder = std::make_shared<DiscoveryRecorder>();
};

/// The same in both ways of looking.
class Discovering : public TwoHosts, public testing::WithParamInterface<Way>
{
protected:
    void SetUp() override { begin(GetParam()); }
};

} // namespace farview
