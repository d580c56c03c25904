#include "Applications/Doctor/Examination.h"

#include "Applications/Doctor/DesktopProbes.h"
#include "Applications/Doctor/DriverProbe.h"
#include "Applications/Doctor/PreferencesProbe.h"
#include "Applications/Doctor/ProcessesProbe.h"
#include "Applications/Doctor/VersionsProbe.h"
#include "Platform/Desktop/SessionBus.h"
#include "Platform/Platform.h"
#include "Platform/Posix/PreferencesLocations.h"

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

Examination::Examination(Patient patient, Notebook& notebook, DevicesProbe::Times times)
    : mPatient(std::move(patient)), mNotebook(notebook), mTimes(times)
{
}

Examination::~Examination() = default;

void Examination::start(std::function<void(Area)> areaBegun, std::function<void()> ended)
{
    mAreaBegun = std::move(areaBegun);
    mEnded = std::move(ended);
    auto& loop = *mPatient.platform.runLoop;
    loop.performAfterDelay(Duration(0), weak_from_this(), [this] { examineNext(); });
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
    mPatient.platform.runLoop->performAfterDelay(Duration(0), weak_from_this(),
                                                 [this] { examineNext(); });
}

Findings Examination::examineVersions()
{
    return findingsAboutVersions(versionFacts(mPatient.platform, mPatient.pane.get()));
}

Findings Examination::examineBus()
{
    mPatient.busFacts.isSessionUsed = mPatient.bus.isConnected();
    return findingsAboutBus(mPatient.busFacts);
}

Findings Examination::examineDriver()
{
    return findingsAboutDriver(driverFacts(mPatient.platform, mPatient.extensionFolders));
}

Findings Examination::examineProcesses()
{
    return findingsAboutProcesses(processFacts(mPatient.platform, mPatient.bus));
}

Findings Examination::examinePreferences()
{
    return findingsAboutPreferences(
        preferencesFacts(PreferencesLocations(EnvironmentUse::honoured), mPatient.seenDevicesFile));
}

Findings Examination::examineAccessibility()
{
    return findingsAboutAccessibility(accessibilityFacts(mPatient.platform));
}

Findings Examination::examineDisplay() { return findingsAboutDisplay(displayFacts(mPatient.bus)); }

void Examination::lookForDevices()
{
    askForRights();
    mAreaBegun(Area::devices);
    // Which way devices are found is asked beside the search, which does not tell.
    mDaemon = std::make_unique<AvahiDaemonLink>(*mPatient.platform.log);
    mDaemon->look();
    mDevices = std::make_shared<DevicesProbe>(*mPatient.platform.discovery,
                                              *mPatient.platform.runLoop, mTimes);
    mDevices->start([this](std::vector<DeviceFact> devices, std::size_t more) {
        end(std::move(devices), more, true);
    });
}

/// Answered while devices are looked for, or not at all.
void Examination::askForRights()
{
    mRights = polkitFacts(mPatient.platform, mPatient.pane.get());
    if (mPatient.busFacts.polkit != BusAnswer::silent)
        askForPolkitFacts(mPatient.platform, mPatient.pane.get(), weak_from_this(),
                          [this](const PolkitFacts& facts) { mRights = facts; });
}

DiscoveryFacts Examination::discoveryFacts() const
{
    return {mDaemon && mDaemon->presence() == AvahiDaemonLink::Presence::present,
            mPatient.platform.discovery->condition(), interfaceFacts()};
}

void Examination::end(std::vector<DeviceFact> devices, std::size_t more, bool isComplete)
{
    const auto ended = std::exchange(mEnded, nullptr);
    if (!ended)
        return;
    mNotebook.add(findingsAboutPolkit(mRights));
    mNotebook.add(findingsAboutDiscovery(discoveryFacts()));
    mNotebook.add(
        findingsAboutDevices({std::move(devices), more,
                              rememberedDevices(mPatient.platform, mPatient.seenDevicesFile)}));
    if (isComplete)
        mNotebook.setComplete();
    ended();
}

} // namespace farview
