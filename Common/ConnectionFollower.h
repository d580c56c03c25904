#pragma once

#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/FurtherDeviceRows.h"
#include "Common/Rules/PairingReport.h"
#include "Common/Rules/ScreenReport.h"
#include "Platform/NetService.h"
#include "Platform/NotificationCenter.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class FVEPreferences;

namespace farview
{

struct Platform;

/// The server's connection, as a program follows it that shows it and lets the user choose. It
/// posts what the user wants and takes in what the server reports; its owner observes the server's
/// notifications. Main thread only; `platform` outlives it.
class ConnectionFollower
{
public:
    explicit ConnectionFollower(Platform& platform) : mPlatform(platform) {}

    // What the user wants. The latest request is kept until it is answered, fails, is taken back,
    // or is replaced: a server that has just begun may not have heard it.
    void connectToHost(const std::string& hostName);
    void connectToAddress(const std::string& address);
    void chooseNone();
    void forgetRequest() { mRequest.reset(); }
    /// Somebody's request was heard: another one than the latest here takes its place.
    void heardRequest(const Notification& request);
    /// Tells the server to quit; nothing is asked of the next one.
    void quitServer();
    /// Asks which device is connected.
    void query();
    /// Tells another program what to do: at once, in all the user's sessions.
    void command(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {});

    /// Whether the texts of a report are short enough to be a name and an address.
    static bool isAcceptable(const Notification& report);
    /// The first service of the host that a report names; null when there is none.
    static std::shared_ptr<NetService>
    serviceOfHost(const std::vector<std::shared_ptr<NetService>>& services,
                  const std::string* hostName);
    /// Takes in the report of a connection by address, and stores what follows from it.
    void followAddress(const Notification& report, FVEPreferences& preferences);
    /// Takes in the report that no device is connected. A server that has just begun gets the
    /// latest request, once: one that came to an end over it is not asked a third time. True when
    /// that asks for the device of a host.
    bool followEnd(const Notification& report);
    /// Takes in the report about the monitor for the device that is connected.
    void followScreen(const Notification& report);
    /// Nothing before the server has told of it, and none outlives its connection.
    const std::optional<ScreenReport>& screen() const { return mScreen; }

    /// Uses that device beside those in use, or no longer.
    void alsoConnectToHost(const std::string& hostName);
    void leaveFurtherDevice(const std::string& hostName);
    /// Takes in the report about the devices that are used beside the first one.
    void followFurtherDevices(const Notification& report);
    /// As the server told last; none when it has just begun.
    const std::vector<FurtherDevice>& furtherDevices() const { return mFurtherDevices; }
    /// What the user is offered of the devices in sight, and of those used already, beside the one
    /// that is connected: of that host, empty by address, nothing without one.
    std::vector<FurtherDeviceRow>
    furtherDeviceRows(const std::vector<std::shared_ptr<NetService>>& services,
                      const std::optional<std::string>& firstHostName,
                      const Localize& localized) const;
    /// Null when that host's device is not among them.
    const FurtherDevice* furtherDevice(const std::string& hostName) const;

    /// Takes in the report that a device is connected: which key it has.
    void followKey(const Notification& report);
    /// Of the device that is connected; empty when there is none.
    const std::string& deviceKey() const { return mDeviceKey; }
    /// Whether a confirmed device may type here, by its name or its key.
    bool mayType(const std::string& nameOrKey) const;
    /// Stores that, and tells the server.
    void letType(const std::string& nameOrKey, bool mayType);

    /// Takes in the report of what is in question before a device is trusted.
    void followPairing(const Notification& report);
    /// What the server told last. The next request, and a server that begins, leave nothing of it.
    const PairingReport& pairing() const { return mPairing; }
    /// For when the server may be another one, or may have told more than was heard.
    void forgetPairing() { mPairing = {}; }
    /// The user's answer to the digits on show; nothing when there are none.
    void confirmDevice() { answer(kConfirmDevice); }
    void refuseDevice() { answer(kRefuseDevice); }
    /// Forgets that the user confirmed the devices of that name, and tells the server.
    void forgetDevice(const std::string& name);

    /// The connection was made by address, and to which one. The address outlives the connection.
    bool isByAddress() const { return mIsByAddress; }
    void setIsByAddress(bool flag) { mIsByAddress = flag; }
    const std::optional<std::string>& address() const { return mAddress; }
    void setAddress(std::optional<std::string> address) { mAddress = std::move(address); }

private:
    struct Request {
        const char* name;
        DistributedNotificationCenter::TextUserInfo userInfo;
    };

    void request(const char* name, DistributedNotificationCenter::TextUserInfo userInfo);
    void answer(const char* name);

    Platform& mPlatform;
    std::optional<Request> mRequest;
    bool mIsByAddress = false;
    std::optional<std::string> mAddress;
    std::optional<ScreenReport> mScreen;
    std::vector<FurtherDevice> mFurtherDevices;
    std::string mDeviceKey;
    PairingReport mPairing;
};

} // namespace farview
