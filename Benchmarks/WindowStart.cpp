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
    double megabytes = 0;
};

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// Memory that is the process's own or shared out fairly, in MB.
double proportionalMemory(pid_t pid)
{
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    for (std::string word; rollup >> word;) {
        double kilobytes = 0;
        if (word == "Pss:" && rollup >> kilobytes)
            return kilobytes / 1024;
    }
    return 0;
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
    sample.megabytes = proportionalMemory(pid);
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
    return {by(&Sample::milliseconds), by(&Sample::megabytes)};
}

void print(const char* what, const Sample& program, const Sample& yardstick)
{
    std::printf("%-14s %8.1f ms  against %7.1f ms  (%.2fx)   %6.1f MB against %6.1f MB (%.2fx)\n",
                what, program.milliseconds, yardstick.milliseconds,
                program.milliseconds / yardstick.milliseconds, program.megabytes,
                yardstick.megabytes, program.megabytes / yardstick.megabytes);
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
        std::printf(
            "first start    not measured: only the administrator can empty the file cache\n");
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
