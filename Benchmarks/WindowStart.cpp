// Starts programs in turn, again and again, and measures the time until their first window is on
// the screen, and the memory that they hold a second later. Compares the first with the fastest
// other.
//
// usage: window-start COUNT PROGRAM [ARGUMENT...] -- PEER [ARGUMENT...] [-- PEER...]
// (on an X display without other clients)

#include <xcb/xcb.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;
using Command = std::vector<std::string>;

constexpr double mostOfThePeersTime = 0.7;
constexpr int smallestSide = 100; // in pixels; toolkits map smaller windows of their own

struct Sample {
    double milliseconds = 0;
    double megabytes = 0; ///< all memory that is resident
};

struct Program {
    Command command;
    std::vector<Sample> samples = {};
};

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Type> using Reply = std::unique_ptr<Type, FreeDeleter>;

double residentMegabytes(pid_t pid)
{
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    double kilobytes = 0;
    for (std::string word; rollup >> word;) {
        if (word == "Rss:" && rollup >> kilobytes)
            break;
    }
    return kilobytes / 1024;
}

pid_t start(const Command& command)
{
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    std::vector<char*> arguments;
    for (const auto& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

bool isWindowOfAProgram(xcb_connection_t* display, const xcb_generic_event_t& event)
{
    if ((event.response_type & 0x7f) != XCB_MAP_NOTIFY)
        return false;
    const auto& mapped = reinterpret_cast<const xcb_map_notify_event_t&>(event);
    const Reply<xcb_get_geometry_reply_t> geometry{
        xcb_get_geometry_reply(display, xcb_get_geometry(display, mapped.window), nullptr)};
    return geometry && geometry->width >= smallestSide && geometry->height >= smallestSide;
}

/// Waits for the next window that is mapped directly on the root.
bool waitForWindow(xcb_connection_t* display, Clock::time_point deadline)
{
    while (Clock::now() < deadline) {
        pollfd descriptor{xcb_get_file_descriptor(display), POLLIN, 0};
        poll(&descriptor, 1, 50);
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(display)}) {
            if (isWindowOfAProgram(display, *event))
                return true;
        }
    }
    return false;
}

Sample measure(xcb_connection_t* display, const Command& command)
{
    while (const Reply<xcb_generic_event_t> stale{xcb_poll_for_event(display)}) {
    }
    const auto begin = Clock::now();
    const pid_t pid = start(command);
    if (!waitForWindow(display, begin + std::chrono::seconds(20))) {
        std::fprintf(stderr, "%s showed no window\n", command[0].c_str());
        std::exit(1);
    }
    const std::chrono::duration<double, std::milli> span = Clock::now() - begin;
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const Sample sample{span.count(), residentMegabytes(pid)};
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    return sample;
}

Sample median(std::vector<Sample> samples)
{
    const auto middle = samples.size() / 2;
    const auto by = [&](auto member) {
        std::ranges::sort(samples, {}, member);
        return samples[middle].*member;
    };
    return {by(&Sample::milliseconds), by(&Sample::megabytes)};
}

/// Nothing when the arguments are wrong.
std::vector<Program> parse(const Command& arguments)
{
    std::vector<Program> programs(1);
    for (const auto& word : arguments) {
        if (word == "--")
            programs.emplace_back();
        else
            programs.back().command.push_back(word);
    }
    const bool complete = std::ranges::none_of(
        programs, [](const Program& program) { return program.command.empty(); });
    return complete && programs.size() > 1 ? programs : std::vector<Program>();
}

xcb_connection_t* watchDisplay()
{
    xcb_connection_t* display = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(display))
        std::exit(1);
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(display, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(display);
    return display;
}

void print(const std::vector<Program>& programs)
{
    for (const Program& each : programs) {
        const Sample middle = median(each.samples);
        std::printf("  %s: window on screen after %.0f ms, %.1f MB resident\n",
                    each.command[0].c_str(), middle.milliseconds, middle.megabytes);
    }
    const auto time = [](const Program& each) { return median(each.samples).milliseconds; };
    const Sample ours = median(programs[0].samples);
    const Sample peer =
        median(std::ranges::min_element(programs.begin() + 1, programs.end(), {}, time)->samples);
    const double ratio = ours.milliseconds / peer.milliseconds;
    std::printf("%.2fx the time of the fastest peer; at most %gx: %s\n", ratio, mostOfThePeersTime,
                ratio <= mostOfThePeersTime ? "holds" : "MISSED");
    std::printf("%.2fx its memory; less than 1x: %s\n", ours.megabytes / peer.megabytes,
                ours.megabytes < peer.megabytes ? "holds" : "MISSED");
}

} // namespace

int main(int argc, char** argv)
{
    const Command words(argv, argv + argc);
    const int count = argc > 1 ? std::atoi(argv[1]) : 0;
    auto programs = parse({words.begin() + std::min(argc, 2), words.end()});
    if (count < 1 || programs.empty()) {
        std::fprintf(stderr, "usage: %s COUNT PROGRAM [ARGUMENT...] -- PEER [ARGUMENT...]...\n",
                     argv[0]);
        return 2;
    }
    xcb_connection_t* display = watchDisplay();
    // The first start of each reads its files from the disk.
    for (Program& each : programs)
        measure(display, each.command);
    for (int round = 0; round < count; ++round) {
        for (Program& each : programs)
            each.samples.push_back(measure(display, each.command));
    }
    print(programs);
    xcb_disconnect(display);
    return 0;
}
