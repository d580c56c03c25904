#pragma once

#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"

#include <QSize>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

class QScreen;
class QWindow;
struct wl_output;
struct wl_output_listener;
struct wl_registry;
struct wl_registry_listener;
struct wp_viewport;
struct wp_viewporter;
struct zwp_idle_inhibit_manager_v1;
struct zwp_idle_inhibitor_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;
struct zxdg_output_v1_listener;

namespace farview
{

/// Ends what a Wayland compositor does for the program.
struct WaylandEnd {
    void operator()(wl_output* output) const;
    void operator()(wl_registry* registry) const;
    void operator()(wp_viewport* viewport) const;
    void operator()(wp_viewporter* viewporter) const;
    void operator()(zwp_idle_inhibit_manager_v1* manager) const;
    void operator()(zwp_idle_inhibitor_v1* inhibitor) const;
    void operator()(zxdg_output_manager_v1* manager) const;
    void operator()(zxdg_output_v1* output) const;
};
template <typename Proxy> using WaylandHandle = std::unique_ptr<Proxy, WaylandEnd>;

/// What Qt does not pass on of the Wayland compositor that shows the program's windows. Where there
/// is none, everything is as Qt says. Main thread only; the application object must exist.
class Compositor
{
public:
    /// `changed` is called when the ratio of a screen may have changed.
    explicit Compositor(std::function<void()> changed = [] {});
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    /// The pixels to a point of a screen. Qt rounds those of screens up to whole numbers;
    /// before 6.5 those of windows, too.
    double ratio(const QScreen& screen) const;
    bool hasViewports() const { return mViewporter != nullptr; }
    /// What scales the contents of a window, which was created. Only where there are viewports.
    WaylandHandle<wp_viewport> newViewport(QWindow& window) const;
    /// The screen stays awake as long as this lives and the window is seen. Null where the
    /// compositor cannot, and without a window.
    WaylandHandle<zwp_idle_inhibitor_v1> newIdleInhibitor(QWindow* window) const;

private:
    struct Output {
        const std::function<void()>& changed;
        std::uint32_t global;
        WaylandHandle<wl_output> proxy = nullptr;
        WaylandHandle<zxdg_output_v1> naming = nullptr;
        std::string name = {};
        QSize mode = {}; ///< in pixels
        bool isOnItsSide = false;
    };

    static const wl_registry_listener& registryEvents();
    static const wl_output_listener& outputEvents();
    static const zxdg_output_v1_listener& namingEvents();
    void followOutputs();
    void beginOutputs();
    void takeOutput(const WaylandGlobal& global);

    std::function<void()> mChanged;
    // Of Qt's connection, since they are about Qt's windows.
    WaylandHandle<wl_registry> mRegistry;
    WaylandHandle<wp_viewporter> mViewporter;
    WaylandHandle<zwp_idle_inhibit_manager_v1> mIdleInhibitors;
    /// Another one: Qt 6.4 crashes when it is told of a window on a forgotten output.
    std::optional<WaylandConnection> mConnection;
    WaylandHandle<zxdg_output_manager_v1> mNaming;
    std::list<Output> mOutputs; ///< the compositor's events keep addresses of them
};

} // namespace farview
