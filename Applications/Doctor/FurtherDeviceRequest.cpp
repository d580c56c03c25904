#include "Applications/Doctor/FurtherDeviceRequest.h"

#include "Applications/Doctor/Sentence.h"
#include "Common/FVEConstants.h"
#include "Common/Rules/PairingTexts.h"

#include <algorithm>
#include <utility>

namespace farview
{

using State = FurtherDevice::State;

void FurtherDeviceRequest::start(Wish wish, const std::string& name, Ended ended)
{
    mWish = wish;
    mName = name;
    observe(kServerFurtherDevicesDidChange, [this](const Notification& report) { heard(report); });
    observe(kQueryResultForConnectedHost, [this](const Notification& report) {
        const auto* hostName = report.text(kDeviceNameKey);
        mFirstHostName = hostName ? *hostName : std::string();
    });
    observe(kServerPairingDidChange, [this](const Notification& report) { heardPairing(report); });
    begin(std::move(ended));
}

void FurtherDeviceRequest::heard(const Notification& report)
{
    if (isOver())
        return;
    mConnection.followFurtherDevices(report);
    const auto& used = mConnection.furtherDevices();
    const auto found = std::find_if(used.begin(), used.end(), [&](const FurtherDevice& device) {
        return isMeant(device.name, device.hostName);
    });
    follow(found == used.end() ? nullptr : &*found);
}

void FurtherDeviceRequest::follow(const FurtherDevice* device)
{
    if (mWish == Wish::leave && !device)
        end(mHasAsked ? outcome(true, "“%@” is no longer used.")
                      : outcome(false, "“%@” is not used beside another device."));
    else if (device && device->state == State::connected && mWish == Wish::use)
        end(outcome(true, "“%@” is used, too."));
    else if (device && device->state == State::failed && mHasAsked && mWish == Wish::use)
        end(outcome(false, "“%@” could not be reached."));
    else if (!mHasAsked && device)
        ask(device->hostName);
    else if (!mHasAsked && !mBrowser)
        lookForDevice();
}

void FurtherDeviceRequest::ask(const std::string& hostName)
{
    mHasAsked = true;
    if (mWish == Wish::leave) {
        mConnection.leaveFurtherDevice(hostName);
        return endUnlessAnswered();
    }
    if (hostName == mFirstHostName)
        return end(outcome(true, "“%@” is used already."));
    mConnection.alsoConnectToHost(hostName);
    endAfter(connecting, outcome(false, "“%@” could not be reached."));
}

/// The server is asked for a device by its host's name, which the network tells.
void FurtherDeviceRequest::lookForDevice()
{
    endAfter(limit, outcome(false, "No device called “%@” is in sight."));
    auto& platform = this->platform();
    QLNBonjourBrowser::setBonjourServiceName(kVirtualScreenServiceName);
    mBrowser = std::make_shared<QLNBonjourBrowser>(*platform.discovery, *platform.runLoop,
                                                   *platform.notificationCenter);
    for (const char* name : {kQLNBonjourBrowserDidAddService, kQLNBonjourBrowserDidUpdateService})
        platform.notificationCenter->addObserver(
            weak_from_this(), [this](const Notification&) { askForDeviceInSight(); }, name,
            mBrowser.get());
    mBrowser->init();
}

void FurtherDeviceRequest::askForDeviceInSight()
{
    for (const auto& service : mBrowser->activeServiceList()) {
        const auto hostName = service->hostName();
        if (!isOver() && !mHasAsked && hostName && isMeant(service->name(), *hostName))
            ask(*hostName);
    }
}

/// The device is to be confirmed first, or cannot be.
void FurtherDeviceRequest::heardPairing(const Notification& report)
{
    auto pairing = pairingReport(report.text(kPairingReportKey));
    if (!mHasAsked || mWish == Wish::leave || pairing.state == PairingReport::State::none)
        return;
    pairing.device = shownValue(pairing.device);
    end({false, pairingSentence(pairing, localized()) + "\n" +
                    localized()(pairingTexts(pairing.state).remedy)});
}

bool FurtherDeviceRequest::isMeant(const std::string& name, const std::string& hostName) const
{
    return name == mName || hostName == mName;
}

Outcome FurtherDeviceRequest::outcome(bool isDone, const char* text) const
{
    return {isDone, filledText(localized()(text), shownValue(mName))};
}

} // namespace farview
