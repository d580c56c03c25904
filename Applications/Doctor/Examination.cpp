#include "Applications/Doctor/Examination.h"

#include "Applications/Doctor/PermissionProbe.h"
#include "Applications/Doctor/Probes.h"
#include "Common/ConnectionFollower.h"
#include "Common/FVEDistributedNotifications.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Posix/Settings/PreferencesLocations.h"

#include <utility>

namespace farview
{

const std::vector<Examination::QuickProbe> Examination::quickProbes = {
    {Area::versions, &Examination::examineVersions},
    {Area::bus, &Examination::examineBus},
    {Area::driver, &Examination::examineDriver},
    {Area::processes, &Examination::examineProcesses},
    {Area::preferences, &Examination::examinePreferences},
    {Area::accessibility, &Examination::examineAccessibility},
    {Area::display, &Examination::examineDisplay},
};

Examination::Examination(DiagnosisContext context, Notebook& notebook, DevicesProbe::Times times)
    : mContext(std::move(context)), mNotebook(notebook), mTimes(times)
{
}

Examination::~Examination() = default;

void Examination::start(std::function<void(Area)> areaBegun, std::function<void()> ended)
{
    mAreaBegun = std::move(areaBegun);
    mEnded = std::move(ended);
    auto& loop = *mContext.platform.runLoop;
    askForSessionAnswers(mContext.platform, mContext.bus, weak_from_this(),
                         [this](const SessionAnswers& session) {
                             mSession = session;
                             examineNext();
                         });
    loop.performAfterDelay(limit, weak_from_this(), [this] {
        end(mDevices ? mDevices->devices() : std::vector<DeviceFact>{}, 0, false);
    });
}

void Examination::examineNext()
{
    if (mNext == quickProbes.size()) {
        lookForDevices();
        return;
    }
    const QuickProbe& probe = quickProbes[mNext++];
    mAreaBegun(probe.area);
    mNotebook.add((this->*probe.step)());
    mContext.platform.runLoop->performAfterDelay(Duration(0), weak_from_this(),
                                                 [this] { examineNext(); });
}

Findings Examination::examineVersions()
{
    return findingsAboutVersions(versionFacts(mContext.platform, mContext.pane.get()));
}

Findings Examination::examineBus()
{
    mContext.busFacts.isSessionUsed = mSession.hasBus;
    return findingsAboutBus(mContext.busFacts);
}

Findings Examination::examineDriver()
{
    return findingsAboutDriver(driverFacts(mContext.platform, mContext.extensionFolders));
}

Findings Examination::examineProcesses()
{
    auto findings = findingsAboutProcesses(processFacts(mContext.platform, mSession));
    for (auto& each : findingsAboutPacketLog(packetLogFacts(mContext.platform)))
        findings.push_back(std::move(each));
    return findings;
}

Findings Examination::examinePreferences()
{
    return findingsAboutPreferences(
        preferencesFacts(PreferencesLocations(EnvironmentUse::honoured), mContext.seenDevicesFile));
}

Findings Examination::examineAccessibility()
{
    return findingsAboutAccessibility({mSession.letsWindowsBeMoved});
}

Findings Examination::examineDisplay() { return findingsAboutDisplay(displayFacts()); }

void Examination::lookForDevices()
{
    askForRights();
    askForScreen();
    askForConnection();
    mAreaBegun(Area::devices);
    // Which way devices are found is asked beside the search, which does not tell.
    mDaemon = std::make_unique<AvahiDaemonLink>(*mContext.platform.log);
    mDaemon->look();
    mDevices = std::make_shared<DevicesProbe>(*mContext.platform.discovery,
                                              *mContext.platform.runLoop, mTimes);
    mDevices->start([this](std::vector<DeviceFact> devices, std::size_t more) {
        end(std::move(devices), more, true);
    });
}

/// Answered while devices are looked for, or not at all.
void Examination::askForRights()
{
    mRights = polkitFacts(mContext.platform, mContext.pane.get());
    if (mContext.busFacts.polkit != BusAnswer::silent)
        askForPolkitFacts(mContext.platform, mContext.pane.get(), weak_from_this(),
                          [this](const PolkitFacts& facts) { mRights = facts; });
}

/// As above. Changes nothing on the desktop.
void Examination::askForScreen()
{
    mContext.platform.virtualScreens->availability(
        weak_from_this(), [this](const ScreenAvailability& answer) { mScreen = answer; });
}

/// As above. The server answers everybody who asks, and does nothing else for it.
void Examination::askForConnection()
{
    mContext.platform.distributedNotificationCenter->addObserver(
        weak_from_this(),
        [this](const Notification& answer) { mConnection = connectionFact(answer); },
        kQueryResultForConnectedHost, "");
    ConnectionFollower(mContext.platform).query();
}

DiscoveryFacts Examination::discoveryFacts() const
{
    return {mDaemon && mDaemon->presence() == AvahiDaemonLink::Presence::present,
            mContext.platform.discovery->condition(), interfaceFacts()};
}

void Examination::end(std::vector<DeviceFact> devices, std::size_t more, bool isComplete)
{
    const auto ended = std::exchange(mEnded, nullptr);
    if (!ended)
        return;
    mNotebook.add(findingsAboutPolkit(mRights));
    mNotebook.add(findingsAboutScreen(mScreen));
    mNotebook.add(findingsAboutPermission(permissionFacts(mContext.pane.get())));
    mNotebook.add(findingsAboutInput(inputFacts()));
    mNotebook.add(findingsAboutDiscovery(discoveryFacts()));
    auto pairing = trustFacts(mContext.platform);
    pairing.connection = mConnection;
    mNotebook.add(findingsAboutPairing(pairing));
    mNotebook.add(
        findingsAboutDevices({std::move(devices), more,
                              rememberedDevices(mContext.platform, mContext.seenDevicesFile)}));
    if (isComplete)
        mNotebook.setComplete();
    ended();
}

} // namespace farview
