#pragma once

#include "Applications/Doctor/Examination.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Screens/DesktopScreens.h"
#include "Platform/Platform.h"

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
    /// Has the server log what it sends of the screen, or not. `then` is called on a later turn,
    /// with what holds from now on.
    void switchPacketLog(bool isOn, std::function<void(const Findings&)> then);
    SessionBus& sessionBus() { return mDesktop.sessionBus(); }
    const Notebook& notebook() const { return *mNotebook; }

private:
    Findings packetLogFindings();

    BusFacts mBuses;
    DesktopPlatform mDesktop;
    DesktopScreens mScreens;
    Platform::Scope mInstalled;
    std::shared_ptr<Bundle> mPane;
    std::unique_ptr<Notebook> mNotebook;
    std::shared_ptr<Examination> mExamination;
    const std::shared_ptr<int> mLife = std::make_shared<int>(0); ///< of what is asked
};

} // namespace farview
