#include "Applications/Doctor/DoctorProgram.h"

#include "Applications/OwnPane.h"
#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Common/NSString_Additions.h"
#include "Platform/Bundle.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Platform/Preferences.h"

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

void DoctorProgram::switchPacketLog(bool isOn, std::function<void(const Findings&)> then)
{
    auto& platform = mDesktop.platform();
    FVEPreferences(*platform.preferences, *platform.distributedNotificationCenter)
        .setLogsScreenPackets(isOn);
    // The announcement goes over the bus before these questions: it has left when they are
    // answered.
    askForSessionAnswers(
        platform, mDesktop.sessionBus(), mLife,
        [this, then = std::move(then)](const SessionAnswers&) { then(packetLogFindings()); });
}

Findings DoctorProgram::packetLogFindings()
{
    auto& platform = mDesktop.platform();
    if (platform.preferences->appSynchronize(kApplicationID))
        return findingsAboutPacketLog(packetLogFacts(platform));
    return findingsAboutPreferences(
        preferencesFacts(PreferencesLocations(EnvironmentUse::honoured), seenDevicesFile()));
}

} // namespace farview
