#include "Platform/Desktop/Screens/Wayland/WaylandOutputs.h"

#include <wayland-client.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace farview
{
namespace
{

/// Fractional scales are counted in these.
constexpr double scaleSteps = 120;

bool isUsable(const WaylandOutput& output)
{
    constexpr int longest = std::numeric_limits<std::int16_t>::max();
    return !output.name.empty() && output.width > 0 && output.width <= longest &&
           output.height > 0 && output.height <= longest && output.area.width > 0 &&
           output.area.height > 0;
}

bool isTurned(int transform)
{
    return transform == WL_OUTPUT_TRANSFORM_90 || transform == WL_OUTPUT_TRANSFORM_270 ||
           transform == WL_OUTPUT_TRANSFORM_FLIPPED_90 ||
           transform == WL_OUTPUT_TRANSFORM_FLIPPED_270;
}

} // namespace

double WaylandOutput::scale() const
{
    const double ratio = std::max(width, height) / double(std::max(area.width, area.height));
    return std::max(1.0, std::round(ratio * scaleSteps)) / scaleSteps;
}

/// What was told since the last time that it was all.
struct WaylandOutputs::Entry {
    WaylandOutputs& outputs;
    WaylandOutput news;
    int transform = 0;
    WaylandOutput known; ///< without a name before everything was told once
    zxdg_output_v1* details = nullptr;

    explicit Entry(WaylandOutputs& outputs) : outputs(outputs) {}
    ~Entry()
    {
        zxdg_output_v1_destroy(details);
        wl_output_release(news.proxy);
    }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    static Entry& of(void* data) { return *static_cast<Entry*>(data); }

    void take()
    {
        auto now = news;
        if (isTurned(transform))
            std::swap(now.width, now.height);
        known = isUsable(now) ? now : WaylandOutput{};
        outputs.mChanged();
    }

    static const wl_output_listener& events()
    {
        static constexpr wl_output_listener events{
            .geometry = [](void* data, wl_output*, int, int, int, int, int, const char*,
                           const char*, int transform) { of(data).transform = transform; },
            .mode =
                [](void* data, wl_output*, std::uint32_t flags, int width, int height, int rate) {
                    auto& news = of(data).news;
                    if ((flags & WL_OUTPUT_MODE_CURRENT) == 0)
                        return;
                    news.width = width;
                    news.height = height;
                    news.rate = rate;
                },
            .done = [](void* data, wl_output*) { of(data).take(); },
            .scale = [](void*, wl_output*, int) {},
            .name = [](void*, wl_output*, const char*) {},
            .description = [](void*, wl_output*, const char*) {},
        };
        return events;
    }
    static const zxdg_output_v1_listener& detailEvents()
    {
        static constexpr zxdg_output_v1_listener events{
            .logical_position =
                [](void* data, zxdg_output_v1*, int x, int y) {
                    auto& area = of(data).news.area;
                    area = pixelRect(x, y, area.width, area.height);
                },
            .logical_size =
                [](void* data, zxdg_output_v1*, int width, int height) {
                    auto& area = of(data).news.area;
                    area = pixelRect(area.x, area.y, width, height);
                },
            .done = [](void*, zxdg_output_v1*) {},
            .name = [](void* data, zxdg_output_v1*,
                       const char* name) { of(data).news.name = name; },
            .description = [](void*, zxdg_output_v1*, const char*) {},
        };
        return events;
    }
};

WaylandOutputs::WaylandOutputs(WaylandConnection& connection, std::function<void()> changed)
    : mConnection(connection), mChanged(std::move(changed))
{
}

WaylandOutputs::~WaylandOutputs()
{
    mEntries.clear();
    mGone.clear();
    if (mManager)
        zxdg_output_manager_v1_destroy(mManager);
}

void WaylandOutputs::add(const WaylandGlobal& global)
{
    const auto* manager = mConnection.find(zxdg_output_manager_v1_interface);
    if (!manager || global.interface != wl_output_interface.name)
        return;
    if (!mManager)
        mManager =
            mConnection.bind<zxdg_output_manager_v1>(*manager, zxdg_output_manager_v1_interface, 3);
    auto& entry = mEntries[global.name] = std::make_unique<Entry>(*this);
    entry->news.proxy = mConnection.bind<wl_output>(global, wl_output_interface, 3);
    wl_output_add_listener(entry->news.proxy, &Entry::events(), entry.get());
    entry->details = zxdg_output_manager_v1_get_xdg_output(mManager, entry->news.proxy);
    zxdg_output_v1_add_listener(entry->details, &Entry::detailEvents(), entry.get());
}

void WaylandOutputs::remove(std::uint32_t global)
{
    const auto found = mEntries.find(global);
    if (found == mEntries.end())
        return;
    mGone.push_back(std::move(found->second));
    mEntries.erase(found);
    mChanged();
}

std::vector<WaylandOutput> WaylandOutputs::known() const
{
    std::vector<WaylandOutput> found;
    for (const auto& [global, entry] : mEntries) {
        if (!entry->known.name.empty())
            found.push_back(entry->known);
    }
    return found;
}

} // namespace farview
