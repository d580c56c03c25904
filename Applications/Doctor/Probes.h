#pragma once

#include "Applications/Doctor/Finding.h"
#include "Platform/Authorization.h"
#include "Platform/Desktop/Bus/BusHandshake.h"
#include "Platform/Types/AuthorizationStatus.h"
#include "Platform/Types/DiscoveryCondition.h"
#include "Platform/VirtualScreens.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

class Bundle;
struct Platform;
class PreferencesLocations;
struct SessionAnswers;

/// One piece of the system that lies in a bundle.
struct Piece {
    std::string path;
    std::string version; ///< empty when the bundle does not tell
};

struct VersionFacts {
    std::string doctor; ///< version of the program that asks
    std::string system; ///< name of the operating system
    std::string kernel;
    std::string toolkit;
    std::optional<Piece> pane; ///< nothing when none is installed
    std::optional<Piece> server;
    std::optional<Piece> statusItem;
};

/// `pane` may be null.
VersionFacts versionFacts(Platform& platform, const Bundle* pane);
Findings findingsAboutVersions(const VersionFacts& facts);

struct BusFacts {
    std::string sessionAddress; ///< empty when nobody says where the bus is
    BusAnswer session = BusAnswer::noAddress;
    std::string systemAddress;
    BusAnswer system = BusAnswer::noAddress;
    /// Of the bus at the system's fixed address, the only one that is trusted about rights.
    BusAnswer polkit = BusAnswer::noAddress;
    /// Whether the system's programs use the session bus; they use none that belongs to another
    /// user.
    bool isSessionUsed = false;
};

/// Checks both buses, for at most a second. `isSessionUsed` is left to who has a connection.
BusFacts busFacts();
Findings findingsAboutBus(const BusFacts& facts);

/// An address of this computer on which devices can be looked for.
struct InterfaceFact {
    std::string name; ///< of the interface: "eth0"
    std::string address;
    bool isLoopback = false;
};

struct DiscoveryFacts {
    bool isDaemonThere = false;
    DiscoveryCondition condition = DiscoveryCondition::starting;
    std::vector<InterfaceFact> interfaces;
};

std::vector<InterfaceFact> interfaceFacts();
Findings findingsAboutDiscovery(const DiscoveryFacts& facts);

/// A driver extension's bundle, in one of the folders for them.
struct ExtensionFact {
    std::string path;
    std::string version; ///< empty when the bundle does not tell
    bool isUsable = false;
};

struct DriverFacts {
    bool isPublished = false; ///< what the panel asks: the registry publishes the driver
    std::vector<std::string> folders;
    std::vector<ExtensionFact> extensions; ///< all that are there, whatever their names
};

DriverFacts driverFacts(Platform& platform, std::vector<std::string> folders);
Findings findingsAboutDriver(const DriverFacts& facts);

/// One of the programs that work in the background.
struct ProgramFact {
    std::vector<std::int32_t> pids; ///< of the user's processes of that name
    bool isOnBus = false;           ///< it can be heard and told to quit
};

struct ProcessFacts {
    bool isTableReadable = true;
    bool isSwitchedOn = false; ///< what the user set: the server is to run
    bool showsStatusItem = false;
    bool hasBus = false;
    ProgramFact server;
    ProgramFact statusItem;
};

ProcessFacts processFacts(Platform& platform, const SessionAnswers& session);
Findings findingsAboutProcesses(const ProcessFacts& facts);

/// What is kept of the packets that the server sent.
struct PacketLogFacts {
    bool isOn = false;  ///< what the user set
    std::string home;   ///< the folder in which logs are made
    std::string latest; ///< the folder of the last log; empty when there is none
};

PacketLogFacts packetLogFacts(Platform& platform);
Findings findingsAboutPacketLog(const PacketLogFacts& facts);

/// One file of settings.
struct PreferencesFileFact {
    enum class State {
        good,
        missing,
        broken,     ///< no settings can be read from it
        unreadable, ///< it may be good, but it could not be read
    };

    std::string path;
    State state = State::missing;
    std::string reason{};   ///< why it is broken or unreadable
    bool isWritable = true; ///< the user can change it, or make it where it is missing
    bool isOurs = true;     ///< of the user's own, who has to be able to write it
    /// Broken files that were put aside here earlier.
    std::vector<std::string> setAside{};
};

/// Reads the four files of the shared settings, the server's own and the list of seen devices.
/// Changes nothing, not even a broken file.
std::vector<PreferencesFileFact> preferencesFacts(const PreferencesLocations& locations,
                                                  const std::string& seenDevicesFile);
Findings findingsAboutPreferences(const std::vector<PreferencesFileFact>& files);

/// How an administrator's rights are asked for.
struct PolkitFacts {
    std::string tool;                 ///< that is to run with them; empty when there is none
    Authorization::Obstacle obstacle; ///< why it is not run, whoever asks
    /// What asking would come to; nothing when nobody said so in time.
    std::optional<AuthorizationStatus> foreseen{};
};

/// Asks nobody for a password. `then` is called once, later or at once, while `target` lives; never
/// when the system's message bus does not answer.
void askForPolkitFacts(Platform& platform, const Bundle* pane, std::weak_ptr<void> target,
                       std::function<void(const PolkitFacts&)> then);
/// What is known without asking.
PolkitFacts polkitFacts(Platform& platform, const Bundle* pane);
Findings findingsAboutPolkit(const PolkitFacts& facts);

/// What the desktop lets the system's programs do.
struct AccessibilityFacts {
    bool isEnabled = false;
};

Findings findingsAboutAccessibility(const AccessibilityFacts& facts);

/// What windows are shown on.
struct DisplayFacts {
    std::string x11;     ///< DISPLAY
    std::string wayland; ///< WAYLAND_DISPLAY
    std::string desktop; ///< as the session names it: "GNOME"
};

DisplayFacts displayFacts();
Findings findingsAboutDisplay(const DisplayFacts& facts);
/// As the desktop calls itself: "KWin 5.27.5"; empty where it does not say.
Findings findingsAboutDesktopVersion(const std::string& version);

/// `answer` is nothing when nobody said in time what is possible.
Findings findingsAboutScreen(const std::optional<ScreenAvailability>& answer);

/// What a device's input comes to.
struct InputFacts {
    bool isX11 = false; ///< elsewhere the desktop takes everything
    bool mayMakeDevices = false;
};

InputFacts inputFacts();
Findings findingsAboutInput(const InputFacts& facts);

} // namespace farview
