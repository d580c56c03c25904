#pragma once

#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/FurtherDevices.h"
#include "Common/Rules/PairingReport.h"
#include "Common/Rules/ScreenReport.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// What the panel says and hears on the session bus, without the panel.
class TestPanel
{
public:
    struct Report {
        std::string name;
        std::string deviceName;
        std::string deviceAddress;
    };

    TestPanel()
    {
        for (const char* name : {kServerConnectedToDevice, kServerDisconnectedFromDevice,
                                 kQueryResultForConnectedHost, kRequestingErrorMsgFromPrefPane})
            mCenter.addObserver(
                mLife, [this](const Notification& heard) { note(heard); }, name, "");
        const auto pair = [this](const Notification& heard) {
            pairing = pairingReport(heard.text(kPairingReportKey));
        };
        mCenter.addObserver(mLife, pair, kServerPairingDidChange, "");
        const auto show = [this](const Notification& heard) {
            screen = screenReport(heard.text(kScreenReportKey));
        };
        mCenter.addObserver(mLife, show, kServerScreenDidChange, "");
        const auto list = [this](const Notification& heard) {
            further = furtherDevices(heard.text(kFurtherDevicesKey));
        };
        mCenter.addObserver(mLife, list, kServerFurtherDevicesDidChange, "");
    }

    void post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {})
    {
        mCenter.postNotificationName(name, "", std::move(userInfo), 3);
    }
    void connectTo(const std::string& hostName)
    {
        post(kConnectServerToHost, {{kConnectToHostNameKey, hostName}});
    }
    void connectToAddress(const std::string& address)
    {
        post(kConnectServerToTicket, {{kConnectUsingTicketKey, address}});
    }
    bool hears(const char* name, std::chrono::milliseconds limit = std::chrono::seconds(10))
    {
        return waitUntil([&] { return last(name) != nullptr; }, limit);
    }
    const Report* last(const std::string& name) const
    {
        const auto found = std::find_if(reports.rbegin(), reports.rend(),
                                        [&](const Report& report) { return report.name == name; });
        return found == reports.rend() ? nullptr : &*found;
    }
    DistributedNotificationCenter& center() { return mCenter; }

    std::vector<Report> reports;
    /// The server's last word about each.
    PairingReport pairing;
    ScreenReport screen;
    std::vector<FurtherDevice> further;

private:
    void note(const Notification& heard)
    {
        const auto text = [&](const char* key) {
            const std::string* found = heard.text(key);
            return found ? *found : std::string();
        };
        reports.push_back({heard.name(), text(kDeviceNameKey), text(kDeviceAddressKey)});
    }

    std::shared_ptr<int> mLife = std::make_shared<int>();
    FakeLog mLog;
    QtRunLoop mLoop;
    TestBus mBus{mLog};
    DBusNotificationCenter mCenter{mBus, mLoop, mLog};
};

} // namespace farview
