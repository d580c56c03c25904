#include "Platform/Desktop/Screens/KWin/KWinOutputs.h"

#include <wayland-client.h>
#include <wayland-protocols/kde-output-device-v2.h>
#include <wayland-protocols/kde-output-management-v2.h>
#include <wayland-protocols/kde-output-order-v1.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

/// From this one on outputs have names.
constexpr std::uint32_t deviceVersion = 2;

/// For events that say nothing of interest.
constexpr auto ignore = [](auto...) {};

/// Of a screen; no real one is larger.
std::int16_t shortNumber(double number)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<double>(number, Limits::min(), Limits::max()));
}

const KWinOutput* find(const std::vector<KWinOutput>& outputs, const std::string& name)
{
    const auto found = std::ranges::find(outputs, name, &KWinOutput::name);
    return found == outputs.end() ? nullptr : &*found;
}

PixelPoint cornerOf(const KWinOutput& output) { return {output.area.x, output.area.y}; }

} // namespace

bool isRow(const std::vector<KWinOutput>& outputs)
{
    auto areas = outputs;
    std::ranges::sort(areas, {}, [](const auto& output) { return output.area.x; });
    int end = 0;
    return std::ranges::all_of(areas, [&end](const auto& output) {
        const int begin = std::exchange(end, output.area.x + output.area.width);
        return output.area.x == begin && output.area.y == 0;
    });
}

std::vector<KWinChange> undoneRow(const std::vector<KWinOutput>& before,
                                  const std::vector<KWinOutput>& now, const std::string& added)
{
    std::vector<KWinChange> changes;
    PixelPoint beside;
    for (const auto& output : before) {
        const auto* moved = find(now, output.name);
        if (moved && cornerOf(*moved) != cornerOf(output))
            changes.push_back({output.name, cornerOf(output)});
        if (moved && output.area.x + output.area.width > beside.x)
            beside = {shortNumber(output.area.x + output.area.width), output.area.y};
    }
    if (changes.empty() || !isRow(now))
        return {};
    changes.push_back({added, beside});
    return changes;
}

void DestroyProxy::destroy(wl_proxy* proxy) { wl_proxy_destroy(proxy); }

void KWinOutputs::DestroyConfiguration::operator()(kde_output_configuration_v2* configuration) const
{
    kde_output_configuration_v2_destroy(configuration);
}

KWinOutputs::KWinOutputs(WaylandConnection& connection, std::function<void()> changed)
    : mConnection(connection), mChanged(std::move(changed))
{
}

KWinOutputs::~KWinOutputs() = default;

void KWinOutputs::add(const WaylandGlobal& global)
{
    if (global.interface == kde_output_device_v2_interface.name) {
        auto& device = mDevices.emplace_back(Device{*this, global.name});
        device.proxy.reset(mConnection.bind<kde_output_device_v2>(
            global, kde_output_device_v2_interface, deviceVersion));
        follow(device);
    } else if (global.interface == kde_output_management_v2_interface.name && !mManagement) {
        mManagement.reset(mConnection.bind<kde_output_management_v2>(
            global, kde_output_management_v2_interface, 1));
    } else if (global.interface == kde_output_order_v1_interface.name && !mOrder) {
        followOrder(global);
    }
}

void KWinOutputs::remove(std::uint32_t global)
{
    if (std::erase_if(mDevices, [=](const auto& device) { return device.global == global; }) > 0)
        mChanged();
}

void KWinOutputs::follow(Device& device)
{
    // Events of later versions have no handlers, and are not sent.
    static const auto events = [] {
        kde_output_device_v2_listener all{};
        all.geometry = [](void* data, auto*, int x, int y, int, int, int, const char*, const char*,
                          int transform) {
            auto& told = *static_cast<Device*>(data);
            told.x = x;
            told.y = y;
            told.transform = transform;
        };
        all.current_mode = [](void* data, auto*, kde_output_device_mode_v2* current) {
            auto& told = *static_cast<Device*>(data);
            const auto mode = std::ranges::find(told.modes, current,
                                                [](const auto& each) { return each.proxy.get(); });
            told.mode = mode == told.modes.end() ? nullptr : &*mode;
        };
        all.mode = [](void* data, auto*, auto* mode) {
            followMode(*static_cast<Device*>(data), mode);
        };
        all.done = [](void* data, auto*) {
            auto& told = *static_cast<Device*>(data);
            told.isKnown = true;
            told.all.mChanged();
        };
        all.scale = [](void* data, auto*, wl_fixed_t scale) {
            static_cast<Device*>(data)->scale = wl_fixed_to_double(scale);
        };
        all.enabled = [](void* data, auto*, int flag) {
            static_cast<Device*>(data)->isEnabled = flag != 0;
        };
        all.name = [](void* data, auto*, const char* name) {
            static_cast<Device*>(data)->name = name;
        };
        all.edid = all.uuid = all.serial_number = all.eisa_id = ignore;
        all.capabilities = all.overscan = all.vrr_policy = all.rgb_range = ignore;
        return all;
    }();
    kde_output_device_v2_add_listener(device.proxy.get(), &events, &device);
}

void KWinOutputs::followMode(Device& device, kde_output_device_mode_v2* proxy)
{
    static constexpr kde_output_device_mode_v2_listener events{
        .size =
            [](void* data, auto*, int width, int height) {
                static_cast<Mode*>(data)->width = width;
                static_cast<Mode*>(data)->height = height;
            },
        .refresh = [](void* data, auto*, int rate) { static_cast<Mode*>(data)->millihertz = rate; },
        .preferred = ignore,
        // It stays in the list: it may be the current one until another is.
        .removed = ignore,
    };
    auto& mode = device.modes.emplace_back();
    mode.proxy.reset(proxy);
    kde_output_device_mode_v2_add_listener(proxy, &events, &mode);
}

void KWinOutputs::followOrder(const WaylandGlobal& global)
{
    static constexpr kde_output_order_v1_listener events{
        .output =
            [](void* data, auto*, const char* name) {
                static_cast<KWinOutputs*>(data)->mNewNames.emplace_back(name);
            },
        .done =
            [](void* data, auto*) {
                auto& self = *static_cast<KWinOutputs*>(data);
                self.mNames = std::exchange(self.mNewNames, {});
                self.mChanged();
            }};
    mOrder.reset(mConnection.bind<kde_output_order_v1>(global, kde_output_order_v1_interface, 1));
    kde_output_order_v1_add_listener(mOrder.get(), &events, this);
}

KWinOutput KWinOutputs::described(const Device& device)
{
    constexpr double thousandth = 0.001;
    const auto& mode = *device.mode;
    auto width = shortNumber(std::round(mode.width / device.scale));
    auto height = shortNumber(std::round(mode.height / device.scale));
    const bool isTurned = device.transform % 2 != 0;
    if (isTurned)
        std::swap(width, height);
    return {device.name,
            {shortNumber(device.x), shortNumber(device.y), width, height},
            mode.width,
            mode.height,
            mode.millihertz * thousandth,
            device.scale};
}

std::vector<KWinOutput> KWinOutputs::shown() const
{
    std::vector<KWinOutput> outputs;
    for (const auto& device : mDevices) {
        if (device.isKnown && device.isEnabled && device.mode && device.scale > 0)
            outputs.push_back(described(device));
    }
    std::ranges::stable_sort(outputs, {}, [this](const auto& output) {
        return std::ranges::find(mNames, output.name) - mNames.begin();
    });
    return outputs;
}

KWinOutputs::Device* KWinOutputs::find(const std::string& name)
{
    const auto found = std::ranges::find(mDevices, name, &Device::name);
    return found == mDevices.end() ? nullptr : &*found;
}

void KWinOutputs::apply(const std::vector<KWinChange>& changes)
{
    static constexpr kde_output_configuration_v2_listener events{
        .applied = [](void* data, auto*) { static_cast<KWinOutputs*>(data)->conclude(); },
        .failed = [](void* data, auto*) { static_cast<KWinOutputs*>(data)->conclude(); }};
    if (!mManagement)
        return;
    mConfiguration.reset(kde_output_management_v2_create_configuration(mManagement.get()));
    auto* wanted = mConfiguration.get();
    for (const auto& [name, corner, scale] : changes) {
        auto* device = find(name);
        if (device && corner)
            kde_output_configuration_v2_position(wanted, device->proxy.get(), corner->x, corner->y);
        if (device && scale)
            kde_output_configuration_v2_scale(wanted, device->proxy.get(),
                                              wl_fixed_from_double(*scale));
    }
    kde_output_configuration_v2_add_listener(wanted, &events, this);
    kde_output_configuration_v2_apply(wanted);
}

void KWinOutputs::conclude()
{
    mConfiguration.reset();
    mChanged();
}

} // namespace farview
