#pragma once

#include "Applications/Doctor/ServerRequest.h"
#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/ConnectionFollower.h"

#include <memory>
#include <string>

namespace farview
{

/// Has the screen server use a device beside the one that it uses already, or leave it, as the user
/// does in the panel, and hears what comes of it.
class FurtherDeviceRequest final : public ServerRequest
{
public:
    enum class Wish { use, leave };

    /// How long a connection may take.
    static constexpr Duration connecting{20.0};

    /// `platform` outlives it.
    FurtherDeviceRequest(Platform& platform, Localize localized)
        : ServerRequest(platform, std::move(localized)), mConnection(platform)
    {
    }

    /// Begins, once. The device is meant by its name or by its host's. `ended` is called once, on a
    /// later turn.
    void start(Wish wish, const std::string& name, Ended ended);

private:
    void heard(const Notification& report);
    void heardPairing(const Notification& report);
    void follow(const FurtherDevice* device);
    void lookForDevice();
    void askForDeviceInSight();
    void ask(const std::string& hostName);
    bool isMeant(const std::string& name, const std::string& hostName) const;
    Outcome outcome(bool isDone, const char* text) const;

    ConnectionFollower mConnection;
    Wish mWish = Wish::use;
    std::string mName;
    std::string mFirstHostName; ///< of the device that the menu has chosen
    bool mHasAsked = false;
    std::shared_ptr<QLNBonjourBrowser> mBrowser;
};

} // namespace farview
