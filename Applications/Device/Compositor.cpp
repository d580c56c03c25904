#include "Applications/Device/Compositor.h"

#include "Applications/Device/GlassGeometry.h"

#include <QGuiApplication>
#include <QLibraryInfo>
#include <QScreen>
#include <QVersionNumber>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>
#include <wayland-protocols/idle-inhibit-unstable-v1.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace farview
{
namespace
{

constexpr std::uint32_t outputVersion = 3;
/// The first one that tells names. Newer outputs do so themselves, but not those of Mutter 43.
constexpr std::uint32_t namingVersion = 2;

wl_display* displayOfQt()
{
    auto* const qt = QGuiApplication::platformNativeInterface();
    return qt ? static_cast<wl_display*>(qt->nativeResourceForIntegration("wl_display")) : nullptr;
}

wl_surface* surfaceOf(QWindow& window)
{
    auto* const qt = QGuiApplication::platformNativeInterface();
    return static_cast<wl_surface*>(qt->nativeResourceForWindow("surface", &window));
}

template <typename Proxy> void bindTo(WaylandHandle<Proxy>& handle, wl_registry* registry,
                                      std::uint32_t global, const wl_interface& interface)
{
    handle.reset(static_cast<Proxy*>(wl_registry_bind(registry, global, &interface, 1)));
}

} // namespace

void WaylandEnd::operator()(wl_output* output) const { wl_output_release(output); }
void WaylandEnd::operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
void WaylandEnd::operator()(wp_viewport* viewport) const { wp_viewport_destroy(viewport); }
void WaylandEnd::operator()(wp_viewporter* viewporter) const { wp_viewporter_destroy(viewporter); }
void WaylandEnd::operator()(zwp_idle_inhibit_manager_v1* manager) const
{
    zwp_idle_inhibit_manager_v1_destroy(manager);
}
void WaylandEnd::operator()(zwp_idle_inhibitor_v1* inhibitor) const
{
    zwp_idle_inhibitor_v1_destroy(inhibitor);
}
void WaylandEnd::operator()(zxdg_output_manager_v1* manager) const
{
    zxdg_output_manager_v1_destroy(manager);
}
void WaylandEnd::operator()(zxdg_output_v1* output) const { zxdg_output_v1_destroy(output); }

Compositor::Compositor(std::function<void()> changed) : mChanged(std::move(changed))
{
    wl_display* const display = displayOfQt();
    if (!display)
        return;
    mRegistry.reset(wl_display_get_registry(display));
    wl_registry_add_listener(mRegistry.get(), &registryEvents(), this);
    followOutputs();
}

const wl_registry_listener& Compositor::registryEvents()
{
    static constexpr wl_registry_listener events{
        .global =
            [](void* data, wl_registry* registry, std::uint32_t global, const char* name,
               std::uint32_t) {
                auto& self = *static_cast<Compositor*>(data);
                // Newer ones make a viewport for each surface, and there may be only one.
                const bool isScaledByQt = QLibraryInfo::version() >= QVersionNumber(6, 5);
                const std::string_view interface = name;
                if (interface == wp_viewporter_interface.name && !isScaledByQt)
                    bindTo(self.mViewporter, registry, global, wp_viewporter_interface);
                else if (interface == zwp_idle_inhibit_manager_v1_interface.name)
                    bindTo(self.mIdleInhibitors, registry, global,
                           zwp_idle_inhibit_manager_v1_interface);
            },
        .global_remove = [](auto...) {},
    };
    return events;
}

void Compositor::followOutputs()
{
    mConnection.emplace(WaylandConnection::Events{
        .ready = [this] { beginOutputs(); },
        .added = [this](const auto& global) { takeOutput(global); },
        .removed =
            [this](std::uint32_t name) {
                mOutputs.remove_if([name](const Output& each) { return each.global == name; });
            },
        .lost =
            [this] {
                mOutputs.clear();
                mNaming.reset();
                mConnection.reset();
            },
    });
}

void Compositor::beginOutputs()
{
    const WaylandGlobal* const naming = mConnection->find(zxdg_output_manager_v1_interface);
    if (!naming || naming->version < namingVersion)
        return;
    mNaming.reset(mConnection->bind<zxdg_output_manager_v1>(
        *naming, zxdg_output_manager_v1_interface, namingVersion));
    for (const auto& global : mConnection->globals())
        takeOutput(global);
}

void Compositor::takeOutput(const WaylandGlobal& global)
{
    if (!mNaming || global.interface != wl_output_interface.name || global.version < outputVersion)
        return;
    auto& output = mOutputs.emplace_back(mChanged, global.name);
    output.proxy.reset(mConnection->bind<wl_output>(global, wl_output_interface, outputVersion));
    wl_output_add_listener(output.proxy.get(), &outputEvents(), &output);
    output.naming.reset(zxdg_output_manager_v1_get_xdg_output(mNaming.get(), output.proxy.get()));
    zxdg_output_v1_add_listener(output.naming.get(), &namingEvents(), &output);
}

const wl_output_listener& Compositor::outputEvents()
{
    static constexpr wl_output_listener events{
        .geometry =
            [](void* data, wl_output*, auto, auto, auto, auto, auto, auto, auto, int transform) {
                static_cast<Output*>(data)->isOnItsSide = transform % 2 != 0;
            },
        .mode =
            [](void* data, wl_output*, std::uint32_t flags, int width, int height, auto) {
                if (flags & WL_OUTPUT_MODE_CURRENT)
                    static_cast<Output*>(data)->mode = QSize(width, height);
            },
        .done = [](void* data, wl_output*) { static_cast<Output*>(data)->changed(); },
        .scale = [](auto...) {},
        .name = [](auto...) {},
        .description = [](auto...) {},
    };
    return events;
}

const zxdg_output_v1_listener& Compositor::namingEvents()
{
    static constexpr zxdg_output_v1_listener events{
        .logical_position = [](auto...) {},
        .logical_size = [](auto...) {},
        .done = [](void* data, zxdg_output_v1*) { static_cast<Output*>(data)->changed(); },
        .name = [](void* data, zxdg_output_v1*,
                   const char* name) { static_cast<Output*>(data)->name = name; },
        .description = [](auto...) {},
    };
    return events;
}

double Compositor::ratio(const QScreen& screen) const
{
    const double ofQt = screen.devicePixelRatio();
    const auto name = screen.name().toStdString();
    const auto output = std::find_if(mOutputs.begin(), mOutputs.end(),
                                     [&](const Output& each) { return each.name == name; });
    if (output == mOutputs.end())
        return ofQt;
    const QSize pixels = output->isOnItsSide ? output->mode.transposed() : output->mode;
    return exactRatio(pixels, screen.size(), ofQt);
}

WaylandHandle<wp_viewport> Compositor::newViewport(QWindow& window) const
{
    return WaylandHandle<wp_viewport>(
        wp_viewporter_get_viewport(mViewporter.get(), surfaceOf(window)));
}

WaylandHandle<zwp_idle_inhibitor_v1> Compositor::newIdleInhibitor(QWindow* window) const
{
    wl_surface* const surface = mIdleInhibitors && window ? surfaceOf(*window) : nullptr;
    return WaylandHandle<zwp_idle_inhibitor_v1>(
        surface ? zwp_idle_inhibit_manager_v1_create_inhibitor(mIdleInhibitors.get(), surface)
                : nullptr);
}

} // namespace farview
