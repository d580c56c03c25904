#include "Benchmarks/PictureSystems.h"

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace farview
{
namespace
{

const std::string onX = "DISPLAY=$A QT_QPA_PLATFORM=xcb ";
const std::string vncViewer = "DISPLAY=$B exec xtigervncviewer -SecurityTypes None -FullScreen "
                              "-RemoteResize=0 127.0.0.1::5900";
/// A Wayland desktop of its own, whose pointer would be part of every picture.
const std::string sway =
    "exec '" FARVIEW_WITH_DESKTOP "' --wayland --shared-network --size 1920x1080 sh -c '"
    "swaymsg -q seat \"*\" hide_cursor 100; echo $XDG_RUNTIME_DIR $WAYLAND_DISPLAY; "
    "exec wayvnc --max-fps=60 127.0.0.1 5900' >$NOTE";
const std::string onSway = "read -r XDG_RUNTIME_DIR WAYLAND_DISPLAY <$NOTE; "
                           "export XDG_RUNTIME_DIR WAYLAND_DISPLAY; QT_QPA_PLATFORM=wayland ";

bool isInstalled(const std::string& program)
{
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

/// Whether a program waits for connections there, by the kernel's list of sockets.
bool isListening(int port)
{
    char ending[16];
    std::snprintf(ending, sizeof ending, ":%04X", static_cast<unsigned>(port));
    for (const char* path : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        std::ifstream sockets(path);
        std::string number, local, remote, state, rest;
        while (sockets >> number >> local >> remote >> state && std::getline(sockets, rest)) {
            if (local.ends_with(ending) && state == "0A")
                return true;
        }
    }
    return false;
}

/// The number behind that word in a file of the kernel's; 0 when there is none.
double numberAfter(const std::string& word, const std::filesystem::path& path)
{
    std::ifstream file(path);
    double number = 0;
    for (std::string each; file >> each;) {
        if (each == word && file >> number)
            break;
    }
    return number;
}

double processorSeconds(pid_t process)
{
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return 0;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double wakeUps(const std::filesystem::path& process)
{
    double sum = 0;
    std::error_code error;
    for (const auto& thread : std::filesystem::directory_iterator(process / "task", error))
        sum += numberAfter("voluntary_ctxt_switches:", thread.path() / "status");
    return sum;
}

void stop(std::unique_ptr<ChildProcess>& process)
{
    if (!process)
        return;
    process->sendSignal(SIGTERM);
    process->waitForEnd(std::chrono::seconds(3));
    process.reset();
}

} // namespace

PictureSystem farviewIn(const std::string& folder, const std::string& name)
{
    return {name,
            {},
            "DISPLAY=$B exec " + folder + "/farview-device --name Desk --host-name desk-7",
            6001,
            "DISPLAY=$A exec " + folder + "/ScreenCapture",
            "DISPLAY=$A QT_QPA_PLATFORM=xcb ",
            {"ScreenCapture", "farview-monitor"}};
}

const std::vector<PictureSystem>& pictureSystems()
{
    static const std::vector<PictureSystem> systems{
        farviewIn(FARVIEW_BINARY_DIR),
        farviewIn(FARVIEW_BENCHMARKS_DIR "/in-clear", kFarviewInClear),
        {"TigerVNC",
         {"X0tigervnc", "xtigervncviewer"},
         "exec X0tigervnc -display $A -rfbport 5900 -SecurityTypes None",
         5900,
         vncViewer,
         onX,
         {"X0tigervnc"}},
        {"x11vnc",
         {"x11vnc", "xtigervncviewer"},
         "exec x11vnc -display $A -forever -nopw -rfbport 5900 -no6 -quiet",
         5900,
         vncViewer,
         onX,
         {"x11vnc"}},
        {"wayvnc",
         {"sway", "wayvnc", "xtigervncviewer"},
         sway,
         5900,
         vncViewer,
         onSway,
         {"wayvnc"}},
        {"FreeRDP's shadow",
         {"freerdp-shadow-cli", "xfreerdp"},
         "DISPLAY=$A exec freerdp-shadow-cli /port:3389 -auth",
         3389,
         "DISPLAY=$B exec xfreerdp /v:127.0.0.1 /cert:ignore /f /u:nobody /p:nothing",
         onX,
         {"freerdp-shadow-"}},
    };
    return systems;
}

std::string missingPrograms(const PictureSystem& system)
{
    std::string missing;
    for (const auto& program : system.needs) {
        if (!isInstalled(program))
            missing += " " + program;
    }
    return missing;
}

RunningPictures::RunningPictures(const PictureSystem& system, const std::string& displayA,
                                 const std::string& displayB)
    : mSystem(system)
{
    static const TemporaryFolder folder;
    mEnvironment = {{"A", displayA}, {"B", displayB}, {"NOTE", folder.path("note")}};
    // The one before has just been asked to end.
    waitUntil([&] { return !isListening(system.port); });
    mListener = start(system.listener);
    if (!waitUntil([&] { return isListening(system.port); }, std::chrono::seconds(20)))
        throw std::runtime_error(system.name + " does not listen");
    mCaller = start(system.caller);
}

RunningPictures::~RunningPictures()
{
    // A desktop of a server's own ends with the server, and with nothing else.
    for (const pid_t server : servers())
        kill(server, SIGTERM);
    stop(mCaller);
    stop(mListener);
}

std::unique_ptr<ChildProcess> RunningPictures::startSource(const std::string& command) const
{
    return start(mSystem.display + "exec " + command);
}

std::unique_ptr<ChildProcess> RunningPictures::start(const std::string& line) const
{
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c", "exec >/dev/null 2>&1; " + line}, mEnvironment);
}

PictureCost RunningPictures::cost() const
{
    PictureCost cost;
    cost.bytes = numberAfter("lo:", "/proc/net/dev") + numberAfter("shaped:", "/proc/net/dev");
    for (const pid_t server : servers()) {
        const std::filesystem::path process("/proc/" + std::to_string(server));
        cost.processor += processorSeconds(server);
        cost.wakeUps += wakeUps(process);
        cost.megabytes += numberAfter("Pss:", process / "smaps_rollup") / 1024;
    }
    return cost;
}

std::vector<pid_t> RunningPictures::servers() const
{
    std::vector<pid_t> found;
    for (const auto& process : processesBelow(getpid())) {
        if (std::ranges::count(mSystem.servers, process.shortName) != 0)
            found.push_back(process.pid);
    }
    return found;
}

} // namespace farview
