#pragma once

#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"
#include "Platform/Types/PixelRect.h"

#include <map>

struct wl_output;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace farview
{

/// A monitor of a compositor, as it tells all programs.
struct WaylandOutput {
    std::string name; ///< such as "HDMI-A-1"
    PixelRect area;   ///< of the desktop, in its own units
    int width = 0;    ///< in pixels, as it is turned
    int height = 0;
    int rate = 0; ///< frames in a thousand seconds
    wl_output* proxy = nullptr;

    /// How many pixels are one of the desktop's units, in the steps that compositors know.
    double scale() const;
};

/// All monitors of a compositor, once it offers xdg_output. Main thread only.
class WaylandOutputs
{
public:
    /// `changed` is told of whatever is new about them, all of one moment together. The connection
    /// must live longer, and be ready before anything is added.
    WaylandOutputs(WaylandConnection& connection, std::function<void()> changed);
    ~WaylandOutputs();
    WaylandOutputs(const WaylandOutputs&) = delete;
    WaylandOutputs& operator=(const WaylandOutputs&) = delete;

    /// Globals that are no outputs are passed over.
    void add(const WaylandGlobal& global);
    void remove(std::uint32_t global);

    /// Those that are completely known, in the order in which they came.
    std::vector<WaylandOutput> known() const;

private:
    struct Entry;

    WaylandConnection& mConnection;
    std::function<void()> mChanged;
    zxdg_output_manager_v1* mManager = nullptr;
    std::map<std::uint32_t, std::unique_ptr<Entry>> mEntries;
    std::vector<std::unique_ptr<Entry>> mGone; ///< somebody may still use their proxies
};

} // namespace farview
