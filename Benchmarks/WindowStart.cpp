// Starts a program again and again and measures the time until its first window is on the screen,
// and the memory it holds a second later. Compares it with the empty window in the same run,
// alternating.
//
// usage: window-start COUNT YARDSTICK -- PROGRAM [ARGUMENT...]      (on an X display without other
// clients)

#include <xcb/xcb.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

struct Sample {
    double milliseconds = 0;
    double resident = 0;     ///< all memory in use, in MB
    double proportional = 0; ///< the process's own and its fair share of what is shared, in MB
};

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

void measureMemory(pid_t pid, Sample& sample)
{
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    for (std::string word; rollup >> word;) {
        double kilobytes = 0;
        if (word == "Rss:" && rollup >> kilobytes)
            sample.resident = kilobytes / 1024;
        else if (word == "Pss:" && rollup >> kilobytes)
            sample.proportional = kilobytes / 1024;
    }
}

/// Empties the file cache, so that the next start reads everything from the disk.
bool forgetFiles()
{
    sync();
    std::ofstream control("/proc/sys/vm/drop_caches");
    control << "3" << std::flush;
    return control.good();
}

pid_t start(const std::vector<std::string>& command)
{
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    std::vector<char*> arguments;
    for (const auto& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

/// Waits for the next window that is mapped directly on the root and is larger than a helper
/// window.
bool waitForWindow(xcb_connection_t* display, Clock::time_point deadline)
{
    while (Clock::now() < deadline) {
        pollfd descriptor{xcb_get_file_descriptor(display), POLLIN, 0};
        poll(&descriptor, 1, 50);
        while (
            std::unique_ptr<xcb_generic_event_t, FreeDeleter> event{xcb_poll_for_event(display)}) {
            if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY)
                return true;
        }
    }
    return false;
}

Sample measure(xcb_connection_t* display, const std::vector<std::string>& command)
{
    while (std::unique_ptr<xcb_generic_event_t, FreeDeleter> stale{xcb_poll_for_event(display)}) {
    }
    const auto begin = Clock::now();
    const pid_t pid = start(command);
    Sample sample;
    if (!waitForWindow(display, begin + std::chrono::seconds(20))) {
        std::fprintf(stderr, "%s showed no window\n", command[0].c_str());
        std::exit(1);
    }
    sample.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    measureMemory(pid, sample);
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    return sample;
}

Sample median(std::vector<Sample> samples)
{
    const auto middle = samples.size() / 2;
    const auto by = [&](auto member) {
        std::sort(samples.begin(), samples.end(), [&](const Sample& left, const Sample& right) {
            return left.*member < right.*member;
        });
        return samples[middle].*member;
    };
    return {by(&Sample::milliseconds), by(&Sample::resident), by(&Sample::proportional)};
}

void printLine(const char* start, const char* what, double program, double yardstick,
               const char* unit, double limit)
{
    const double ratio = program / yardstick;
    std::printf("%s, %s: %.1f %s against %.1f %s of an empty window: %.2fx; at most %gx: %s\n",
                start, what, program, unit, yardstick, unit, ratio, limit,
                ratio <= limit ? "holds" : "MISSED");
}

void print(const char* start, const Sample& program, const Sample& yardstick)
{
    printLine(start, "window on screen", program.milliseconds, yardstick.milliseconds, "ms", 2);
    printLine(start, "resident memory", program.resident, yardstick.resident, "MB", 1.5);
    std::printf("  with shared memory shared out among those who use it: %.1f MB against %.1f MB\n",
                program.proportional, yardstick.proportional);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 5 || std::string(argv[3]) != "--") {
        std::fprintf(stderr, "usage: %s COUNT YARDSTICK -- PROGRAM [ARGUMENT...]\n", argv[0]);
        return 2;
    }
    const int count = std::atoi(argv[1]);
    const std::vector<std::string> yardstick{argv[2]};
    const std::vector<std::string> program(argv + 4, argv + argc);
    xcb_connection_t* display = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(display))
        return 1;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(display, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(display);

    if (forgetFiles()) {
        // The display server has to read its own files again too: the first start pays for it.
        measure(display, yardstick);
        forgetFiles();
        const Sample firstYardstick = measure(display, yardstick);
        forgetFiles();
        print("first start", measure(display, program), firstYardstick);
    } else {
        std::printf("first start: not measured, only the administrator can empty the file cache\n");
    }
    std::vector<Sample> programs, yardsticks;
    for (int round = 0; round < count; ++round) {
        yardsticks.push_back(measure(display, yardstick));
        programs.push_back(measure(display, program));
    }
    print("later starts", median(programs), median(yardsticks));
    xcb_disconnect(display);
    return 0;
}
