#pragma once

#include "Applications/ScreenCapture/DeviceConnection.h"
#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/Rules/FurtherDevices.h"
#include "Platform/Desktop/Bus/GrowingPause.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// The devices that are used beside the first one. One that the user asked for and that was
/// connected is brought back for as long as the user does not leave it; one that was never reached
/// is only told of. What nobody asked for is forgotten when it ends. Main thread only.
class FurtherConnections
{
public:
    struct Services {
        RunLoop& runLoop;
        std::function<std::shared_ptr<DeviceConnection>()> make; ///< one connection more
        std::function<QLNBonjourBrowser::ServiceList()> devicesInSight;
        std::function<void()> listChanged;
        /// One that nobody asked for was not reached, or has ended.
        std::function<void(const std::string& hostName)> automaticEnded;
    };

    /// How long a device may take to be found.
    static constexpr Duration searchLimit{6.0};
    /// Between attempts to bring one back: the first pause, and the longest it grows to.
    static constexpr Duration firstPause{2.0};
    static constexpr Duration longestPause{60.0};

    explicit FurtherConnections(Services services) : mServices(std::move(services)) {}

    /// One that is used already is not asked for again, but becomes the user's.
    void add(const std::string& hostName, bool isAutomatic);
    void leave(const std::string& hostName);
    /// Hands the connection to a device over, with what became of it; null when there is none.
    std::shared_ptr<DeviceConnection> take(const std::string& hostName);
    bool uses(const std::string& hostName) const;
    bool isFull() const { return mAll.size() >= mostFurtherDevices; }

    /// Devices came into sight, or have moved.
    void devicesChanged();
    void preferencesChanged();
    void pairedDevicesChanged();
    /// The one that the user is asked about; null when there is none.
    DeviceConnection* pairing() const;
    std::size_t count() const { return mAll.size(); }
    /// Leaves all for good: `said` is called once for each.
    void quit(const std::function<void()>& said);

    std::vector<FurtherDevice> list() const;

private:
    struct Further {
        std::string hostName;
        std::string name; ///< of its service; the host's as long as that was not found
        std::shared_ptr<DeviceConnection> connection;
        bool wasConnected = false;
        bool hasFailed = false;
        bool isPausing = false;
        GrowingPause pause{firstPause, longestPause};
    };

    Further* find(const std::string& hostName);
    void begin(Further& further);
    void look(Further& further);
    void setEvents(const Further& further);
    void opened(const std::string& hostName);
    void ended(const std::string& hostName);
    void pause(Further& further);
    void forget(const std::string& hostName);

    Services mServices;
    std::vector<Further> mAll;
};

} // namespace farview
