#include "Applications/Doctor/DoctorProgram.h"

#include "Applications/Doctor/PairingProbe.h"
#include "Applications/Doctor/PermissionProbe.h"
#include "Applications/Doctor/Sentence.h"
#include "Applications/OwnPane.h"
#include "Common/ConnectionFollower.h"
#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Common/NSString_Additions.h"
#include "Common/PairedPeers.h"
#include "Common/Rules/FilledText.h"
#include "Platform/Bundle.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Platform/Preferences.h"

#include <QCoreApplication>
#include <QDateTime>

#include <utility>

namespace farview
{
namespace
{

constexpr const char* noBus = "unix:path=/nonexistent";

std::string now() { return QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString(); }

std::string seenDevicesFile()
{
    return applicationSupportPath() + "/" + kFVEApplicationSupportFolderName + "/" +
           kSeenDevicesForAutoConnectTableFilename;
}

std::unique_ptr<Notebook> emptyNotebook()
{
    return std::make_unique<Notebook>(FARVIEW_VERSION, now());
}

/// It lies beside the screen server.
std::string monitorWatcher(const Bundle* pane)
{
    const auto server = pane ? pane->pathForResource("ScreenCapture", "app") : std::nullopt;
    const auto folder =
        server ? *server + "/Contents/Linux" : QCoreApplication::applicationDirPath().toStdString();
    return folder + "/farview-monitor-watcher";
}

/// Those who were confirmed under that name, or with a key that the report shows so: their name, or
/// else their key.
std::vector<std::string> confirmedDevices(Platform& platform, const std::string& nameOrKey)
{
    std::vector<std::string> found;
    for (const auto& device : PairedPeers(*platform.preferences, PairedPeers::devices).all()) {
        if (device.name == nameOrKey)
            found.push_back(device.name);
        else if (shownKey(device.key) == nameOrKey)
            found.push_back(device.key);
    }
    return found;
}

} // namespace

BusFacts checkBuses()
{
    BusFacts facts = busFacts();
    if (facts.session == BusAnswer::silent)
        qputenv("DBUS_SESSION_BUS_ADDRESS", noBus);
    if (facts.system == BusAnswer::silent)
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", noBus);
    return facts;
}

DoctorProgram::DoctorProgram(BusFacts buses)
    : mBuses(std::move(buses)), mDesktop({.isSilent = true}),
      mScreens(*mDesktop.platform().runLoop, mDesktop.sessionBus(), {}),
      mInstalled(mDesktop.platform()), mPane(ownPane(mDesktop.platform())),
      mNotebook(emptyNotebook())
{
    mDesktop.platform().virtualScreens = &mScreens.screens();
    // Reads the catalogue, so that from now on looking up a text changes nothing.
    translated("OK");
}

std::string DoctorProgram::translated(const std::string& text) const
{
    return mPane && !text.empty() ? mPane->localizedString(text, "", "") : text;
}

void DoctorProgram::examine(std::function<void(Area)> areaBegun, std::function<void()> ended)
{
    mExamination.reset();
    mNotebook = emptyNotebook();
    const PosixSearchPaths paths(EnvironmentUse::honoured);
    mExamination = std::make_shared<Examination>(
        DiagnosisContext{mDesktop.platform(), mDesktop.sessionBus(), mBuses, mPane,
                         paths.extensionFolders(), seenDevicesFile()},
        *mNotebook, DevicesProbe::Times{});
    mExamination->start(std::move(areaBegun), std::move(ended));
}

void DoctorProgram::tryScreen(std::function<void()> ended)
{
    auto& loop = *mDesktop.platform().runLoop;
    mTrialScreens =
        std::make_unique<DesktopScreens>(loop, mDesktop.sessionBus(), monitorWatcher(mPane.get()));
    mTrial = std::make_shared<ScreenTrial>(loop, mTrialScreens->screens());
    // Pieces that are missing are no matter here.
    auto versions = findingsAboutVersions(versionFacts(mDesktop.platform(), mPane.get()));
    std::erase_if(versions, [](const auto& each) { return each.severity != Severity::ok; });
    mNotebook->add(std::move(versions));
    mNotebook->add(findingsAboutDisplay(displayFacts()));
    askForDesktopVersion(
        mDesktop.sessionBus(), mLife, [this, ended = std::move(ended)](const auto& version) {
            mNotebook->add(findingsAboutDesktopVersion(version));
            mTrial->start([this, ended] {
                mNotebook->add(findingsAboutTrial(mTrial->facts()));
                mNotebook->add(findingsAboutPermission(permissionFacts(mPane.get())));
                if (!mTrial->facts().isBrokenOff)
                    mNotebook->setComplete();
                ended();
            });
        });
}

void DoctorProgram::stopTrying() { mTrial->breakOff(); }

void DoctorProgram::switchPacketLog(bool isOn, Ended then)
{
    auto& platform = mDesktop.platform();
    FVEPreferences(*platform.preferences, *platform.distributedNotificationCenter)
        .setLogsScreenPackets(isOn);
    endWhenSent(std::move(then), [this] { return packetLogOutcome(); });
}

/// What was announced goes over the bus before these questions: it has left when they are answered.
void DoctorProgram::endWhenSent(Ended then, std::function<Outcome()> outcome)
{
    askForSessionAnswers(mDesktop.platform(), mDesktop.sessionBus(), mLife,
                         [then = std::move(then), outcome = std::move(outcome)](
                             const SessionAnswers&) { then(outcome()); });
}

Outcome DoctorProgram::packetLogOutcome()
{
    auto& platform = mDesktop.platform();
    if (platform.preferences->appSynchronize(kApplicationID))
        return outcomeOf(findingsAboutPacketLog(packetLogFacts(platform)));
    return settingsOutcome();
}

/// What is in the way of keeping a setting.
Outcome DoctorProgram::settingsOutcome() const
{
    return outcomeOf(findingsAboutPreferences(
        preferencesFacts(PreferencesLocations(EnvironmentUse::honoured), seenDevicesFile())));
}

Outcome DoctorProgram::outcomeOf(const Findings& findings) const
{
    Outcome outcome{true, {}};
    for (const Finding& each : findings) {
        outcome.isDone = outcome.isDone && each.severity != Severity::problem;
        outcome.text += renderedText(each, [this](const auto& text) { return translated(text); });
    }
    if (!outcome.text.empty())
        outcome.text.pop_back(); // The end of the last line, which whoever prints it adds.
    return outcome;
}

void DoctorProgram::answerPairing(PairingAnswer::Answer answer, const std::string& digits,
                                  Ended then)
{
    const auto request = std::make_shared<PairingAnswer>(
        mDesktop.platform(), [this](const auto& text) { return translated(text); });
    mRequest = request;
    request->start(answer, digits, std::move(then));
}

void DoctorProgram::askForFurtherDevice(FurtherDeviceRequest::Wish wish, const std::string& name,
                                        Ended then)
{
    const auto request = std::make_shared<FurtherDeviceRequest>(
        mDesktop.platform(), [this](const auto& text) { return translated(text); });
    mRequest = request;
    request->start(wish, name, std::move(then));
}

void DoctorProgram::forgetDevice(const std::string& nameOrKey, Ended then)
{
    const auto forget = [](auto& connection, const auto& device) {
        connection.forgetDevice(device);
    };
    changeConfirmed(nameOrKey, forget,
                    "“%@” is no longer confirmed: it shows digits when you choose it the next "
                    "time.",
                    std::move(then));
}

void DoctorProgram::letType(const std::string& nameOrKey, bool mayType, Ended then)
{
    const auto let = [mayType](auto& connection, const auto& device) {
        connection.letType(device, mayType);
    };
    changeConfirmed(nameOrKey, let,
                    mayType ? "“%@” may type on this computer from now on."
                            : "“%@” may not type on this computer.",
                    std::move(then));
}

void DoctorProgram::changeConfirmed(const std::string& nameOrKey, const DeviceChange& change,
                                    const char* doneText, Ended then)
{
    ConnectionFollower connection(mDesktop.platform());
    const auto devices = confirmedDevices(mDesktop.platform(), nameOrKey);
    for (const auto& device : devices)
        change(connection, device);
    const char* text = devices.empty() ? nullptr : doneText;
    endWhenSent(std::move(then),
                [this, nameOrKey, text] { return changeOutcome(nameOrKey, text); });
}

/// `doneText` is null when nobody was meant.
Outcome DoctorProgram::changeOutcome(const std::string& nameOrKey, const char* doneText)
{
    if (doneText && !mDesktop.platform().preferences->appSynchronize(PairedPeers::devices))
        return settingsOutcome();
    const char* text = doneText ? doneText : "No confirmed device is called “%@”.";
    return {doneText != nullptr, filledText(translated(text), shownValue(nameOrKey))};
}

} // namespace farview
