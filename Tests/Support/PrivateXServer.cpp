#include "Tests/Support/PrivateXServer.h"

#include "Tests/Support/WaitUntil.h"

#include <xcb/xtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace
{

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

/// The reply of a request that must succeed.
template <typename Reply> std::unique_ptr<Reply, Free> needed(Reply* reply)
{
    if (!reply)
        throw std::runtime_error("the X server refused what a test needs");
    return std::unique_ptr<Reply, Free>(reply);
}

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// A connection of its own: how dense a screen is, is told at the beginning only.
class ScreenReader
{
public:
    explicit ScreenReader(const std::string& display)
        : mConnection(xcb_connect(display.c_str(), nullptr)),
          mScreen(xcb_setup_roots_iterator(xcb_get_setup(mConnection.get())).data)
    {
    }

    std::string description() const
    {
        auto* server = mConnection.get();
        std::ostringstream text;
        const auto resources = needed(xcb_randr_get_screen_resources_reply(
            server, xcb_randr_get_screen_resources(server, mScreen->root), nullptr));
        const auto primary = needed(xcb_randr_get_output_primary_reply(
            server, xcb_randr_get_output_primary(server, mScreen->root), nullptr));
        text << "screen " << mScreen->width_in_pixels << "x" << mScreen->height_in_pixels << " "
             << mScreen->width_in_millimeters << "x" << mScreen->height_in_millimeters
             << " mm, primary " << primary->output << ", modes " << resources->num_modes << " "
             << textOf(xcb_randr_get_screen_resources_names(resources.get()), resources->names_len)
             << ", monitors " << monitorCount() << (hasJournal() ? ", written down" : "") << "\n";
        const auto* outputs = xcb_randr_get_screen_resources_outputs(resources.get());
        for (int index = 0; index < resources->num_outputs; ++index)
            describeOutput(text, outputs[index]);
        const auto* crtcs = xcb_randr_get_screen_resources_crtcs(resources.get());
        for (int index = 0; index < resources->num_crtcs; ++index)
            describeCrtc(text, crtcs[index]);
        return text.str();
    }

private:
    static std::string textOf(const std::uint8_t* first, int count)
    {
        return {first, first + count};
    }
    bool hasJournal() const
    {
        auto* server = mConnection.get();
        const std::string name = "_FARVIEW_VIRTUAL_MONITOR";
        const auto atom = needed(xcb_intern_atom_reply(
            server,
            xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        const auto property = needed(xcb_get_property_reply(
            server, xcb_get_property(server, 0, mScreen->root, atom->atom, XCB_ATOM_ANY, 0, 1),
            nullptr));
        return property->type != XCB_ATOM_NONE;
    }
    void describeOutput(std::ostream& text, xcb_randr_output_t output) const
    {
        const auto info = needed(xcb_randr_get_output_info_reply(
            mConnection.get(), xcb_randr_get_output_info(mConnection.get(), output, 0), nullptr));
        text << textOf(xcb_randr_get_output_info_name(info.get()), info->name_len) << " connection "
             << int(info->connection) << " crtc " << info->crtc << " modes";
        for (int index = 0; index < info->num_modes; ++index)
            text << " " << xcb_randr_get_output_info_modes(info.get())[index];
        text << "\n";
    }
    std::string panning(xcb_randr_crtc_t crtc) const
    {
        const auto area = needed(xcb_randr_get_panning_reply(
            mConnection.get(), xcb_randr_get_panning(mConnection.get(), crtc), nullptr));
        return " panning " + std::to_string(area->width) + "x" + std::to_string(area->height);
    }
    int monitorCount() const
    {
        return needed(xcb_randr_get_monitors_reply(
                          mConnection.get(),
                          xcb_randr_get_monitors(mConnection.get(), mScreen->root, 0), nullptr))
            ->nMonitors;
    }
    void describeCrtc(std::ostream& text, xcb_randr_crtc_t crtc) const
    {
        const auto info = needed(xcb_randr_get_crtc_info_reply(
            mConnection.get(), xcb_randr_get_crtc_info(mConnection.get(), crtc, 0), nullptr));
        text << "crtc " << crtc << " mode " << info->mode;
        // Where one that is off has been is remembered for ever.
        if (info->mode != 0)
            text << " " << info->width << "x" << info->height << "+" << info->x << "+" << info->y
                 << " rotation " << info->rotation;
        for (int index = 0; index < info->num_outputs; ++index)
            text << " output " << xcb_randr_get_crtc_info_outputs(info.get())[index];
        text << "\n";
    }

    std::unique_ptr<xcb_connection_t, Disconnect> mConnection;
    const xcb_screen_t* mScreen;
};

std::string firstLineOf(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

} // namespace

PrivateXServer::PrivateXServer()
{
    const auto number = mFolder.path("number");
    const auto command = "exec '" FARVIEW_X_SERVER "' '" + mFolder.path() +
                         "' 1920x1080 -displayfd 3 3>'" + number + "' >'" + mFolder.path("output") +
                         "' 2>&1";
    mServer = std::make_unique<ChildProcess>(std::vector<std::string>{"sh", "-c", command});
    const bool isUp =
        waitUntil([&] { return !firstLineOf(number).empty() || !mServer->isRunning(); },
                  std::chrono::seconds(30));
    if (!isUp || !mServer->isRunning())
        throw std::runtime_error("no X server: " + firstLineOf(mFolder.path("output")));
    mDisplay = ":" + firstLineOf(number);
    mVariable = std::make_unique<ScopedEnvironment>("DISPLAY", mDisplay.c_str());
}

PrivateXServer::~PrivateXServer()
{
    // Asked to end it takes its lock file and socket away.
    mServer->sendSignal(SIGCONT);
    mServer->sendSignal(SIGTERM);
    mServer->waitForEnd();
}

ScreenArranger::ScreenArranger(const std::string& display)
    : mConnection(xcb_connect(display.c_str(), nullptr))
{
    if (xcb_connection_has_error(mConnection) != 0)
        throw std::runtime_error("no connection to " + display);
    mRoot = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data->root;
    const auto resources = needed(xcb_randr_get_screen_resources_current_reply(
        mConnection, xcb_randr_get_screen_resources_current(mConnection, mRoot), nullptr));
    const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    mOutputs.assign(outputs, outputs + resources->num_outputs);
    const auto first = needed(xcb_randr_get_crtc_info_reply(
        mConnection, xcb_randr_get_crtc_info(mConnection, crtcOf(0), 0), nullptr));
    mMode = first->mode;
}

ScreenArranger::~ScreenArranger() { xcb_disconnect(mConnection); }

/// The one it shows, else the one of the same index, which every output of this server can show.
xcb_randr_crtc_t ScreenArranger::crtcOf(std::size_t index)
{
    const auto info = needed(xcb_randr_get_output_info_reply(
        mConnection, xcb_randr_get_output_info(mConnection, mOutputs.at(index), 0), nullptr));
    if (info->crtc != 0)
        return info->crtc;
    const auto* crtcs = xcb_randr_get_output_info_crtcs(info.get());
    return crtcs[info->num_crtcs > index ? index : 0];
}

void ScreenArranger::configure(xcb_randr_crtc_t crtc, int x, int y, xcb_randr_mode_t mode,
                               std::vector<xcb_randr_output_t> outputs)
{
    const auto cookie = xcb_randr_set_crtc_config(
        mConnection, crtc, 0, 0, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), mode,
        XCB_RANDR_ROTATION_ROTATE_0, static_cast<std::uint32_t>(outputs.size()), outputs.data());
    const auto result = needed(xcb_randr_set_crtc_config_reply(mConnection, cookie, nullptr));
    if (result->status != XCB_RANDR_SET_CONFIG_SUCCESS)
        throw std::runtime_error("the X server did not arrange an output");
}

void ScreenArranger::show(std::size_t index, int x, int y)
{
    // Refused for a mode that it has already.
    std::free(xcb_request_check(
        mConnection, xcb_randr_add_output_mode_checked(mConnection, mOutputs.at(index), mMode)));
    configure(crtcOf(index), x, y, mMode, {mOutputs.at(index)});
}

void ScreenArranger::hide(std::size_t index) { configure(crtcOf(index), 0, 0, 0, {}); }

void ScreenArranger::showOnce(std::size_t index)
{
    setScreenSize(3840, 1080);
    show(index, 1920, 0);
    hide(index);
    setScreenSize(1920, 1080);
}

void ScreenArranger::makePrimary(std::size_t index)
{
    std::free(xcb_request_check(
        mConnection, xcb_randr_set_output_primary_checked(mConnection, mRoot, mOutputs.at(index))));
}

void ScreenArranger::setScreenSize(int width, int height)
{
    std::free(xcb_request_check(
        mConnection,
        xcb_randr_set_screen_size_checked(mConnection, mRoot, static_cast<std::uint16_t>(width),
                                          static_cast<std::uint16_t>(height), 500, 300)));
}

ScreenArranger::Area ScreenArranger::area(std::size_t index)
{
    const auto info = needed(xcb_randr_get_output_info_reply(
        mConnection, xcb_randr_get_output_info(mConnection, mOutputs.at(index), 0), nullptr));
    if (info->crtc == 0)
        return {};
    const auto crtc = needed(xcb_randr_get_crtc_info_reply(
        mConnection, xcb_randr_get_crtc_info(mConnection, info->crtc, 0), nullptr));
    return {crtc->x, crtc->y, crtc->width, crtc->height};
}

ScreenArranger::Area ScreenArranger::screen()
{
    const auto size =
        needed(xcb_get_geometry_reply(mConnection, xcb_get_geometry(mConnection, mRoot), nullptr));
    return {0, 0, size->width, size->height};
}

void ScreenArranger::beWindowManager(const std::string& name)
{
    const auto atom = [&](const std::string& text) {
        return needed(xcb_intern_atom_reply(mConnection,
                                            xcb_intern_atom(mConnection, 0,
                                                            static_cast<std::uint16_t>(text.size()),
                                                            text.data()),
                                            nullptr))
            ->atom;
    };
    const auto window = xcb_generate_id(mConnection);
    xcb_create_window(mConnection, 0, window, mRoot, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_NAME"),
                        atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(name.size()),
                        name.data());
    std::free(xcb_request_check(mConnection,
                                xcb_change_property_checked(mConnection, XCB_PROP_MODE_REPLACE,
                                                            mRoot, atom("_NET_SUPPORTING_WM_CHECK"),
                                                            XCB_ATOM_WINDOW, 32, 1, &window)));
}

void ScreenArranger::fill(const Area& area, std::uint32_t colour)
{
    const auto context = xcb_generate_id(mConnection);
    xcb_create_gc(
        mConnection, context, mRoot, XCB_GC_FOREGROUND | XCB_GC_SUBWINDOW_MODE,
        std::array<std::uint32_t, 2>{colour, XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS}.data());
    const xcb_rectangle_t rectangle{
        static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
        static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height)};
    std::free(xcb_request_check(
        mConnection, xcb_poly_fill_rectangle_checked(mConnection, mRoot, context, 1, &rectangle)));
    xcb_free_gc(mConnection, context);
}

std::vector<std::uint32_t> ScreenArranger::pixels(const Area& area)
{
    const auto image = needed(xcb_get_image_reply(
        mConnection,
        xcb_get_image(mConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, mRoot,
                      static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                      static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), 0x00FFFFFF),
        nullptr));
    const auto* first = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
    return {first, first + area.width * area.height};
}

void ScreenArranger::setCursor(int side, std::uint32_t colour, int hotspot)
{
    const auto pixmap = xcb_generate_id(mConnection);
    const auto context = xcb_generate_id(mConnection);
    const auto cursor = xcb_generate_id(mConnection);
    const auto length = static_cast<std::uint16_t>(side);
    const auto part = [&](int shift) {
        return static_cast<std::uint16_t>((colour >> shift & 0xFF) * 0x101);
    };
    xcb_create_pixmap(mConnection, 1, pixmap, mRoot, length, length);
    const std::uint32_t set = 1;
    xcb_create_gc(mConnection, context, pixmap, XCB_GC_FOREGROUND, &set);
    const xcb_rectangle_t all{0, 0, length, length};
    xcb_poly_fill_rectangle(mConnection, pixmap, context, 1, &all);
    xcb_create_cursor(mConnection, cursor, pixmap, pixmap, part(16), part(8), part(0), 0, 0, 0,
                      static_cast<std::uint16_t>(hotspot), static_cast<std::uint16_t>(hotspot));
    std::free(xcb_request_check(mConnection, xcb_change_window_attributes_checked(
                                                 mConnection, mRoot, XCB_CW_CURSOR, &cursor)));
}

void ScreenArranger::movePointer(int x, int y)
{
    std::free(xcb_request_check(
        mConnection, xcb_test_fake_input_checked(
                         mConnection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, mRoot,
                         static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0)));
}

std::string describedScreens(const std::string& display)
{
    const ScreenReader reader(display);
    return reader.description();
}
