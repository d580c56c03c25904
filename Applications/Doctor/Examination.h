#pragma once

#include "Applications/Doctor/DevicesProbe.h"
#include "Applications/Doctor/Notebook.h"
#include "Applications/Doctor/PairingProbe.h"
#include "Applications/Doctor/Probes.h"
#include "Applications/Doctor/SessionProbe.h"
#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

class Bundle;
class SessionBus;
struct Platform;

/// What an examination looks at, beside the environment.
struct DiagnosisContext {
    Platform& platform;
    SessionBus& bus;
    BusFacts busFacts; ///< found out before anything used a bus
    std::shared_ptr<Bundle> pane;
    std::vector<std::string> extensionFolders;
    std::string seenDevicesFile;
};

/// One run of all probes: the quick ones one after the other, a turn of the loop each, then the
/// search for devices. Reads only. Made with `std::make_shared`; its end breaks the run off. Main
/// thread only.
class Examination final : public std::enable_shared_from_this<Examination>
{
public:
    /// Before this is over the run has ended, complete or not.
    static constexpr Duration limit{9.0};

    Examination(DiagnosisContext context, Notebook& notebook, DevicesProbe::Times times);
    ~Examination();

    /// Begins, once. `areaBegun` is called before each area is examined, `ended` at the end, both
    /// on later turns. Findings go to the notebook as they come.
    void start(std::function<void(Area)> areaBegun, std::function<void()> ended);

private:
    using Step = Findings (Examination::*)();
    struct QuickProbe {
        Area area;
        Step step;
    };
    static const std::vector<QuickProbe> quickProbes;

    Findings examineVersions();
    Findings examineBus();
    Findings examineDriver();
    Findings examineProcesses();
    Findings examinePreferences();
    Findings examineAccessibility();
    Findings examineDisplay();
    void examineNext();
    void askForRights();
    void askForScreen();
    void askForConnection();
    void lookForDevices();
    void end(std::vector<DeviceFact> devices, std::size_t more, bool isComplete);
    DiscoveryFacts discoveryFacts() const;

    DiagnosisContext mContext;
    Notebook& mNotebook;
    DevicesProbe::Times mTimes;
    SessionAnswers mSession;
    std::size_t mNext = 0;
    std::function<void(Area)> mAreaBegun;
    std::function<void()> mEnded;
    std::unique_ptr<AvahiDaemonLink> mDaemon;
    std::shared_ptr<DevicesProbe> mDevices;
    PolkitFacts mRights;
    std::optional<ScreenAvailability> mScreen;
    std::optional<ConnectionFact> mConnection;
};

} // namespace farview
