#include "Applications/Doctor/Probes.h"

#include "Common/Rules/DesktopAbilities.h"
#include "Common/Rules/ScreenTexts.h"
#include "Platform/Desktop/Screens/ScreenBackends.h"
#include "Platform/Desktop/Screens/X11/InputDevices.h"

namespace farview
{
namespace
{

Finding finding(Severity severity, const char* name, const char* text, const char* advice = "")
{
    return {Area::screen, severity, name, {text}, {advice}};
}

Finding aboutWay(ScreenWay way)
{
    switch (way) {
    case ScreenWay::spareOutput:
        return finding(Severity::ok, "spare-output",
                       "A screen can be added: the graphics driver has an output without a plug to "
                       "spare.");
    case ScreenWay::namedMonitor:
        return finding(Severity::ok, "named-monitor",
                       "A screen can be added: the X server and the window manager take one that "
                       "no output shows.");
    case ScreenWay::portal:
        return finding(Severity::ok, "portal",
                       "A screen can be added, after the desktop has asked whether it may.");
    case ScreenWay::existingScreen:
        return finding(Severity::ok, "existing-screen",
                       "One of your screens can be shown, after the desktop has asked which.");
    default:
        break;
    }
    return finding(Severity::ok, "desktop",
                   "A screen can be added: the desktop has operations for it.");
}

Finding aboutObstacle(ScreenObstacle obstacle)
{
    const auto& texts = obstacleTexts(obstacle);
    // Most often it is this user's own server that has a device's screen there.
    if (obstacle == ScreenObstacle::inUse)
        return finding(Severity::ok, texts.name, "Farview has added a screen to this display.");
    // The diagnosis may run outside the desktop, or while nobody is there.
    const bool isPassing =
        obstacle == ScreenObstacle::noDesktop || obstacle == ScreenObstacle::locked;
    return finding(isPassing ? Severity::note : Severity::problem, texts.name, texts.trouble,
                   texts.remedy);
}

} // namespace

Findings findingsAboutScreen(const std::optional<ScreenAvailability>& answer)
{
    if (!answer)
        return {finding(Severity::note, "unanswered",
                        "Nobody said in time whether a screen can be added.")};
    if (!answer->way)
        return {aboutObstacle(answer->obstacle)};
    Findings findings{aboutWay(*answer->way)};
    for (const auto& limit : limitsOf(*answer->way))
        findings.push_back(finding(Severity::note, limit.name, limit.text));
    return findings;
}

InputFacts inputFacts()
{
    return {screenBackendFor(sessionFacts()) == ScreenBackend::x11, mayMakeKernelDevices()};
}

Findings findingsAboutInput(const InputFacts& facts)
{
    if (!facts.isX11)
        return {};
    if (facts.mayMakeDevices)
        return {finding(Severity::ok, "several-fingers",
                        "Several fingers and a pen with pressure get through to this desktop.")};
    return {finding(Severity::note, "one-finger",
                    "Only one finger at a time gets through to this desktop, as its pointer: "
                    "Farview may not make input devices.",
                    "An administrator puts the rule “60-farview-input.rules” into "
                    "“/etc/udev/rules.d” and restarts the computer.")};
}

} // namespace farview
