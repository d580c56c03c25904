#pragma once

#include "Applications/Doctor/Examination.h"
#include "Applications/Doctor/FurtherDeviceRequest.h"
#include "Applications/Doctor/PairingAnswer.h"
#include "Applications/Doctor/ScreenTrial.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Screens/DesktopScreens.h"
#include "Platform/Platform.h"

#include <functional>
#include <memory>
#include <string>

namespace farview
{

class Bundle;

/// To be called before the application object is made and any bus is used: checks both buses,
/// and for this process takes one that does not answer for absent, so that nothing waits for it.
BusFacts checkBuses();

/// The composition of an examination: the platform with its real bodies, and the pane's bundle.
class DoctorProgram
{
public:
    /// `buses` is what `checkBuses` found.
    explicit DoctorProgram(BusFacts buses);

    /// The text in the user's language, from the pane's catalogues; itself where there is none.
    std::string translated(const std::string& text) const;
    /// Begins a run, from the beginning; one that is under way is broken off.
    void examine(std::function<void(Area)> areaBegun, std::function<void()> ended);
    /// Adds a screen for some seconds and notes what arrives; `ended` is called on a later turn,
    /// when it has gone.
    void tryScreen(std::function<void()> ended);
    /// Takes it away now: the notes are not complete.
    void stopTrying();
    using Ended = ServerRequest::Ended;
    /// Has the server log what it sends of the screen, or not. `then` is called on a later turn,
    /// with what holds from now on.
    void switchPacketLog(bool isOn, Ended then);
    /// Says whether the device that is in question shows these digits. `then` as above.
    void answerPairing(PairingAnswer::Answer answer, const std::string& digits, Ended then);
    /// Takes a device from those that the user has confirmed: by its name, or by the digits of its
    /// key that the report shows. `then` as above.
    void forgetDevice(const std::string& nameOrKey, Ended then);
    /// Lets a confirmed device type here, or not. It is meant, and `then` is called, as above.
    void letType(const std::string& nameOrKey, bool mayType, Ended then);
    /// Has the server use that device beside the one that it uses, or leave it. `then` as above.
    void askForFurtherDevice(FurtherDeviceRequest::Wish wish, const std::string& name, Ended then);
    SessionBus& sessionBus() { return mDesktop.sessionBus(); }
    const Notebook& notebook() const { return *mNotebook; }

private:
    using DeviceChange = std::function<void(ConnectionFollower&, const std::string& nameOrKey)>;

    Outcome packetLogOutcome();
    Outcome settingsOutcome() const;
    void changeConfirmed(const std::string& nameOrKey, const DeviceChange& change,
                         const char* doneText, Ended then);
    Outcome changeOutcome(const std::string& nameOrKey, const char* doneText);
    Outcome outcomeOf(const Findings& findings) const;
    void endWhenSent(Ended then, std::function<Outcome()> outcome);

    BusFacts mBuses;
    DesktopPlatform mDesktop;
    DesktopScreens mScreens;
    Platform::Scope mInstalled;
    std::shared_ptr<Bundle> mPane;
    std::unique_ptr<Notebook> mNotebook;
    std::shared_ptr<Examination> mExamination;
    std::shared_ptr<ServerRequest> mRequest;
    std::unique_ptr<DesktopScreens> mTrialScreens;
    std::shared_ptr<ScreenTrial> mTrial;
    const std::shared_ptr<int> mLife = std::make_shared<int>(0); ///< of what is asked
};

} // namespace farview
