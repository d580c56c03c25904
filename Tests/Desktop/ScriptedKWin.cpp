#include "Tests/Desktop/ScriptedKWin.h"

#include <QTimer>

#include <wayland-server-protocols/kde-output-device-v2.h>
#include <wayland-server-protocols/kde-output-management-v2.h>
#include <wayland-server-protocols/zkde-screencast-unstable-v1.h>
#include <wayland-server.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

namespace farview
{
namespace
{

constexpr int userWidth = 1000;
constexpr int userHeight = 600;
constexpr int millihertz = 60'000;

template <typename Type> Type& dataOf(wl_resource* resource)
{
    return *static_cast<Type*>(wl_resource_get_user_data(resource));
}

void destroy(wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }

} // namespace

/// What programs ask for.
struct ScriptedKWin::Requests {
    static void bindManagement(wl_client* client, void* data, std::uint32_t version,
                               std::uint32_t id)
    {
        static constexpr struct kde_output_management_v2_interface requests {
            .create_configuration = [](wl_client* client, wl_resource* resource, std::uint32_t id) {
                auto* made = wl_resource_create(client, &kde_output_configuration_v2_interface,
                                                wl_resource_get_version(resource), id);
                wl_resource_set_implementation(made, configuration(),
                                               wl_resource_get_user_data(resource), nullptr);
            }
        };
        auto* resource = wl_resource_create(client, &kde_output_management_v2_interface,
                                            static_cast<int>(version), id);
        wl_resource_set_implementation(resource, &requests, data, nullptr);
    }
    static void bindMaker(wl_client* client, void* data, std::uint32_t version, std::uint32_t id)
    {
        auto* resource = wl_resource_create(client, &zkde_screencast_unstable_v1_interface,
                                            static_cast<int>(version), id);
        wl_resource_set_implementation(resource, maker(), data, nullptr);
    }
    static void bindDevice(wl_client* client, void* data, std::uint32_t version, std::uint32_t id)
    {
        auto* resource = wl_resource_create(client, &kde_output_device_v2_interface,
                                            static_cast<int>(version), id);
        wl_resource_set_implementation(resource, nullptr, data, [](wl_resource* gone) {
            if (auto* output = static_cast<Output*>(wl_resource_get_user_data(gone)))
                std::erase(output->watchers, gone);
        });
        if (auto* output = static_cast<Output*>(data)) {
            output->watchers.push_back(resource);
            tell(*output, resource);
        }
    }
    static void makeStream(wl_client* client, wl_resource* resource, std::uint32_t id,
                           const char* name, int width, int height, wl_fixed_t scale, std::uint32_t)
    {
        auto& desktop = dataOf<ScriptedKWin>(resource);
        auto* stream = wl_resource_create(client, &zkde_screencast_stream_unstable_v1_interface,
                                          wl_resource_get_version(resource), id);
        static constexpr struct zkde_screencast_stream_unstable_v1_interface requests {
            .close = destroy
        };
        wl_resource_set_implementation(stream, &requests, &desktop, [](wl_resource* gone) {
            auto& outputs = dataOf<ScriptedKWin>(gone).mOutputs;
            const auto output = std::ranges::find(outputs, gone, &Output::stream);
            if (output != outputs.end())
                output->desktop.remove(*output);
        });
        const double factor = wl_fixed_to_double(scale);
        desktop.makeStream(stream, name, static_cast<int>(width * factor),
                           static_cast<int>(height * factor));
    }
    static void change(wl_resource* configuration, wl_resource* device,
                       std::optional<PixelPoint> corner, std::optional<double> scale)
    {
        if (auto* output = static_cast<Output*>(wl_resource_get_user_data(device)))
            dataOf<ScriptedKWin>(configuration).mChanges.push_back({output, corner, scale});
    }
    static void apply(wl_client*, wl_resource* configuration)
    {
        for (const auto& [output, corner, scale] :
             std::exchange(dataOf<ScriptedKWin>(configuration).mChanges, {})) {
            if (corner) {
                output->x = corner->x;
                output->y = corner->y;
            }
            output->scale = scale.value_or(output->scale);
            output->desktop.tell(*output);
        }
        kde_output_configuration_v2_send_applied(configuration);
    }

    static const struct zkde_screencast_unstable_v1_interface* maker()
    {
        static const auto all = [] {
            struct zkde_screencast_unstable_v1_interface requests {
            };
            requests.destroy = destroy;
            requests.stream_virtual_output = makeStream;
            return requests;
        }();
        return &all;
    }
    static const struct kde_output_configuration_v2_interface* configuration()
    {
        static const auto all = [] {
            struct kde_output_configuration_v2_interface requests {
            };
            requests.position = [](wl_client*, wl_resource* self, wl_resource* device, int x,
                                   int y) { change(self, device, pixelPoint(x, y), std::nullopt); };
            requests.scale = [](wl_client*, wl_resource* self, wl_resource* device,
                                wl_fixed_t scale) {
                change(self, device, std::nullopt, wl_fixed_to_double(scale));
            };
            requests.apply = apply;
            requests.destroy = destroy;
            return requests;
        }();
        return &all;
    }
};

ScriptedKWin::ScriptedKWin(const std::vector<PixelPoint>& corners)
    : mWayland("WAYLAND_DISPLAY", mFolder.path("wayland").c_str()), mDisplay(wl_display_create())
{
    wl_global_create(mDisplay, &kde_output_management_v2_interface, 1, this,
                     Requests::bindManagement);
    wl_global_create(mDisplay, &zkde_screencast_unstable_v1_interface, 3, this,
                     Requests::bindMaker);
    for (const auto& corner : corners)
        add("User-" + std::to_string(mOutputs.size()), corner.x, corner.y, userWidth, userHeight);
    wl_display_add_socket(mDisplay, mFolder.path("wayland").c_str());
    mNotifier = std::make_unique<QSocketNotifier>(
        wl_event_loop_get_fd(wl_display_get_event_loop(mDisplay)), QSocketNotifier::Read);
    QObject::connect(mNotifier.get(), &QSocketNotifier::activated, [this] { serve(); });
}

ScriptedKWin::~ScriptedKWin()
{
    wl_display_destroy_clients(mDisplay);
    wl_display_destroy(mDisplay);
}

void ScriptedKWin::serve()
{
    wl_event_loop_dispatch(wl_display_get_event_loop(mDisplay), 0);
    wl_display_flush_clients(mDisplay);
}

ScriptedKWin::Output& ScriptedKWin::add(const std::string& name, int x, int y, int width,
                                        int height)
{
    auto& output = mOutputs.emplace_back(Output{*this, name, x, y, width, height});
    output.global = wl_global_create(mDisplay, &kde_output_device_v2_interface, 2, &output,
                                     Requests::bindDevice);
    return output;
}

void ScriptedKWin::remove(Output& output)
{
    for (auto* watcher : output.watchers)
        wl_resource_set_user_data(watcher, nullptr);
    // Who has not heard of that yet may still bind it.
    wl_global_set_user_data(output.global, nullptr);
    wl_global_remove(output.global);
    mOutputs.remove_if([&](const auto& each) { return &each == &output; });
}

void ScriptedKWin::makeStream(wl_resource* stream, const std::string& name, int width, int height)
{
    if (refuses)
        return zkde_screencast_stream_unstable_v1_send_failed(stream, "No");
    int right = 0;
    for (const auto& each : mOutputs)
        right = std::max(right, each.x + static_cast<int>(std::lround(each.width / each.scale)));
    auto& output = add("Virtual-" + name, right, 0, width, height);
    output.stream = stream;
    output.node = std::make_unique<VideoNode>(width, height, 0xFF204060);
    if (arrangesInARow) {
        for (int x = 0; auto& each : mOutputs) {
            each.x = std::exchange(x, x + each.width);
            each.y = 0;
            tell(each);
        }
    }
    auto* poll = new QTimer(mNotifier.get());
    QObject::connect(poll, &QTimer::timeout, [this, poll, stream] {
        const auto made = std::ranges::find(mOutputs, stream, &Output::stream);
        const bool isGone = made == mOutputs.end();
        if (!isGone && made->node->number() == VideoNode::noNumber)
            return;
        poll->deleteLater();
        poll->stop();
        if (!isGone)
            zkde_screencast_stream_unstable_v1_send_created(stream, made->node->number());
        serve();
    });
    poll->start(5);
}

void ScriptedKWin::tell(Output& output)
{
    for (auto* watcher : output.watchers)
        tell(output, watcher);
}

void ScriptedKWin::tell(Output& output, wl_resource* watcher)
{
    auto* mode = wl_resource_create(wl_resource_get_client(watcher),
                                    &kde_output_device_mode_v2_interface, 1, 0);
    wl_resource_set_implementation(mode, nullptr, nullptr, nullptr);
    kde_output_device_v2_send_mode(watcher, mode);
    kde_output_device_mode_v2_send_size(mode, output.width, output.height);
    kde_output_device_mode_v2_send_refresh(mode, millihertz);
    kde_output_device_v2_send_current_mode(watcher, mode);
    kde_output_device_v2_send_geometry(watcher, output.x, output.y, 0, 0, 0, "", "", 0);
    kde_output_device_v2_send_scale(watcher, wl_fixed_from_double(output.scale));
    kde_output_device_v2_send_enabled(watcher, 1);
    kde_output_device_v2_send_name(watcher, output.name.c_str());
    kde_output_device_v2_send_done(watcher);
}

std::string ScriptedKWin::outputs() const
{
    std::ostringstream text;
    for (const auto& output : mOutputs)
        text << output.name << " " << output.x << "," << output.y << " " << output.width << "x"
             << output.height << " x" << output.scale << "\n";
    return text.str();
}

ScriptedKWin::Output& ScriptedKWin::output(const std::string& name)
{
    return *std::ranges::find(mOutputs, name, &Output::name);
}

void ScriptedKWin::end() { wl_display_destroy_clients(mDisplay); }

void ScriptedKWin::closeStream(const std::string& name)
{
    zkde_screencast_stream_unstable_v1_send_closed(output(name).stream);
    serve();
}

} // namespace farview
