#include "Tests/Support/PrivateXServer.h"

#include "Tests/Support/WaitUntil.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace
{

const char* const kConfiguration = R"(
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "false"
  Option "DontVTSwitch" "true"
  Option "AllowMouseOpenFail" "true"
  Option "PciForceNone" "true"
EndSection
Section "Device"
  Identifier "device"
  Driver "dummy"
  VideoRam 256000
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 5.0-1000.0
  VertRefresh 5.0-200.0
EndSection
Section "Screen"
  Identifier "screen"
  Device "device"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Virtual 7680 4320
    Modes "1920x1080" "1280x800"
  EndSubSection
EndSection
)";

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
    const auto configuration = mFolder.write("x.conf", kConfiguration);
    const auto number = mFolder.path("number");
    const auto command = "exec Xorg -displayfd 3 -config '" + configuration +
                         "' -noreset -nolisten tcp -novtswitch -sharevts -logfile '" +
                         mFolder.path("log") + "' 3>'" + number + "' >'" + mFolder.path("output") +
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
