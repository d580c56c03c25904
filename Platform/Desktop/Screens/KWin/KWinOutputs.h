#pragma once

#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"
#include "Platform/Types/PixelRect.h"

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct kde_output_configuration_v2;
struct kde_output_device_mode_v2;
struct kde_output_device_v2;
struct kde_output_management_v2;
struct kde_output_order_v1;
struct wl_proxy;

namespace farview
{

/// Forgets a proxy whose interface has no request for that.
struct DestroyProxy {
    template <typename Proxy> void operator()(Proxy* proxy) const
    {
        destroy(reinterpret_cast<wl_proxy*>(proxy));
    }

private:
    static void destroy(wl_proxy* proxy);
};
template <typename Proxy> using ProxyPointer = std::unique_ptr<Proxy, DestroyProxy>;

/// A part of the desktop that KWin shows somewhere.
struct KWinOutput {
    std::string name;
    PixelRect area; ///< in the desktop's units
    int width = 0;  ///< in pixels, as its mode is
    int height = 0;
    double rate = 0;
    double scale = 1;
};

/// What is to be changed of one.
struct KWinChange {
    std::string name;
    std::optional<PixelPoint> corner = std::nullopt;
    std::optional<double> scale = std::nullopt;
};

/// Whether they stand as KWin puts those that it has not seen together before: in one row, from the
/// left end of the desktop.
bool isRow(const std::vector<KWinOutput>& outputs);
/// What brings outputs back to where they were when KWin has put all of them in a row because of
/// `added`, which then goes beside everything. Nothing when it has not, or has moved nothing.
std::vector<KWinChange> undoneRow(const std::vector<KWinOutput>& before,
                                  const std::vector<KWinOutput>& now, const std::string& added);

/// The outputs of KWin, as it tells and takes them. Main thread only.
class KWinOutputs
{
public:
    /// `changed` is called when something may have become different.
    KWinOutputs(WaylandConnection& connection, std::function<void()> changed);
    ~KWinOutputs();
    KWinOutputs(const KWinOutputs&) = delete;
    KWinOutputs& operator=(const KWinOutputs&) = delete;

    /// To be called for all globals, those that are there and those that come.
    void add(const WaylandGlobal& global);
    void remove(std::uint32_t global);

    /// Those that show something and are wholly known, the main one first.
    std::vector<KWinOutput> shown() const;
    /// Asks for all changes at once. What KWin refuses changes nothing.
    void apply(const std::vector<KWinChange>& changes);
    /// Until KWin has answered that.
    bool isApplying() const { return mConfiguration != nullptr; }

private:
    struct Mode {
        ProxyPointer<kde_output_device_mode_v2> proxy;
        int width = 0;
        int height = 0;
        int millihertz = 0;
    };
    struct Device {
        KWinOutputs& all;
        std::uint32_t global = 0;
        ProxyPointer<kde_output_device_v2> proxy{};
        std::list<Mode> modes{};
        const Mode* mode = nullptr;
        std::string name{};
        int x = 0;
        int y = 0;
        int transform = 0;
        double scale = 1;
        bool isEnabled = false;
        bool isKnown = false;
    };
    struct DestroyConfiguration {
        void operator()(kde_output_configuration_v2* configuration) const;
    };

    void follow(Device& device);
    void followOrder(const WaylandGlobal& global);
    static void followMode(Device& device, kde_output_device_mode_v2* proxy);
    static KWinOutput described(const Device& device);
    Device* find(const std::string& name);
    void conclude();

    WaylandConnection& mConnection;
    std::function<void()> mChanged;
    ProxyPointer<kde_output_management_v2> mManagement;
    ProxyPointer<kde_output_order_v1> mOrder;
    std::list<Device> mDevices;
    std::vector<std::string> mNames;    ///< in the user's order
    std::vector<std::string> mNewNames; ///< that are being told
    std::unique_ptr<kde_output_configuration_v2, DestroyConfiguration> mConfiguration;
};

} // namespace farview
