#include "Common/FVEPreferences.h"
#include "Common/Rules/DesktopAbilities.h"
#include "Common/Rules/DeviceScreen.h"
#include "Common/Rules/FilledText.h"
#include "Common/Rules/ScreenTexts.h"
#include "Source/FVEPreferencePane.h"

using farview::RememberedScreen;
using farview::ScreenReport;

namespace
{

// Without a text the label would lose the room that it keeps while it is hidden.
void showHint(farview::TextField& label, const std::string& hint)
{
    label.setHidden(hint.empty());
    if (!hint.empty())
        label.setStringValue(hint);
}

std::optional<farview::WindowKeeping> windowKeepingIn(const std::optional<ScreenReport>& report)
{
    if (report && report->state == ScreenReport::State::shown)
        return report->windows;
    if (report && report->state == ScreenReport::State::possible)
        return farview::desktopAbilities(report->way).windows;
    return std::nullopt;
}

} // namespace

void FVEPreferencePane::serverScreenDidChange(const farview::Notification& notification)
{
    connection().followScreen(notification);
    const auto& report = connection().screen();
    // What the desktop can do does not end with the connection.
    if (const auto windows = windowKeepingIn(report))
        showHint(*windowsHintLabel(), localized(farview::windowsHint(*windows)));
    updateDeviceHint();
}

void FVEPreferencePane::serverFurtherDevicesDidChange(const farview::Notification& notification)
{
    connection().followFurtherDevices(notification);
    updateDeviceHint();
}

/// What becomes of the connected device's monitor, or would become of one: a line for each thing
/// to say.
std::string FVEPreferencePane::screenText()
{
    const auto& report = connection().screen();
    if (!report)
        return {};
    const auto inWords = [this](const std::string& text) { return localized(text); };
    // Whoever gave it the scale 1 with the desktop's own means knows why.
    const auto remembered =
        rememberedScreen(FVEPreferences::sharedAppPrefs().deviceScreen(connectedDevice()));
    const bool wantsHiDPI = enableHiDPIResolutions()->state() == 1 && remembered.scale != 1;
    std::string lines;
    for (const auto& line :
         {screenSentence(*report, inWords), screenAdvice(*report, wantsHiDPI, inWords)})
        lines += line.empty() ? line : "\n" + line;
    return lines;
}

/// The name under which the device's monitor is remembered; empty while none is connected.
std::string FVEPreferencePane::connectedDevice() const
{
    const auto name =
        selectedNetService() ? selectedNetService()->hostName() : connectedToOtherDeviceIPString();
    return name.value_or(std::string{});
}

void FVEPreferencePane::showScreen(bool isOn)
{
    const auto report = isOn ? connection().screen().value_or(ScreenReport{}) : ScreenReport{};
    const bool hasObstacle = report.isObstructed();
    const bool hasPlace = report.state == ScreenReport::State::shown && !report.screens.empty();
    screenDiagnoseButton()->setHidden(!hasObstacle ||
                                      !farview::obstacleTexts(report.obstacle).diagnosisHelps);
    screenPlaceBox()->setHidden(!hasPlace);
    if (!hasPlace)
        return;
    const auto inWords = [this](const std::string& text) { return localized(text); };
    const auto side = farview::sideOf(report.monitor, report.screens.front());
    screenMap()->setScreens(report.monitor, report.screens);
    screenMap()->setStringValue(farview::filledPlaces(
        localized("Place of the device's screen: %1$@"), {farview::screenPlace(side, inWords)}));
}

// The server follows what is remembered, and reports where the monitor really is.
void FVEPreferencePane::screenPlaced(farview::Object* /*sender*/)
{
    const auto device = connectedDevice();
    if (device.empty())
        return;
    auto& preferences = FVEPreferences::sharedAppPrefs();
    RememberedScreen remembered = rememberedScreen(preferences.deviceScreen(device));
    remembered.side = screenMap()->chosenSide();
    preferences.setDeviceScreen(device, storedScreen(remembered));
}
