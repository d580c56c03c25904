// What the panel's watchdog costs every ten seconds: one look at the processes, against a bare
// reading of the same files, alternating.
//
// usage: watchdog-tick [PROCESSES] [ROUNDS]        (in a process table of its own)

#include "Benchmarks/Figures.h"
#include "Benchmarks/SleepingProcesses.h"
#include "Platform/Posix/Processes/PosixProcessTable.h"
#include "Tests/Source/PaneFixture.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

/// A loaded panel that is switched on, among the real processes.
class WatchingPanel : public PaneFixture
{
public:
    WatchingPanel()
    {
        fake.platform().processTable = &mTable;
        setStored(kCurrentState, std::int64_t{1});
        load();
    }

    void tick() { pane->watchdogTimerOperation(nullptr); }
    int state() const { return switchState(); }
    void setState(int state) { pane->onOffSwitch()->setState(state, false); }

private:
    void TestBody() override {}

    farview::PosixProcessTable mTable;
};

/// The least that a look at the processes takes: each one's line of the table, read once.
long readEveryLine()
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc"), closedir);
    std::array<char, 4096> bytes;
    long count = 0;
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        if (std::isdigit(static_cast<unsigned char>(entry->d_name[0])) == 0)
            continue;
        const auto path = "/proc/" + std::string(entry->d_name) + "/stat";
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        count += file >= 0 && read(file, bytes.data(), bytes.size()) > 0 ? 1 : 0;
        close(file);
    }
    return count;
}

double processorNow()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto microseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    };
    return microseconds(used.ru_utime) + microseconds(used.ru_stime);
}

struct Times {
    std::vector<double> elapsed;
    std::vector<double> processor;

    template <typename Action> void measure(Action action)
    {
        const double processorBefore = processorNow();
        const double before = farview::microsecondsNow();
        action();
        elapsed.push_back(farview::microsecondsNow() - before);
        processor.push_back(processorNow() - processorBefore);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const int processes = argc > 1 ? std::atoi(argv[1]) : 500;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 101;
    const SleepingProcesses sleeping(processes);
    WatchingPanel panel;
    if (!sleeping.isComplete())
        return 1;
    // The tick sees the server, or nothing here means anything.
    panel.setState(0);
    panel.tick();
    if (panel.state() != 1) {
        std::fprintf(stderr, "watchdog-tick: the panel does not see the server\n");
        return 1;
    }
    Times tick;
    Times bare;
    for (int round = 0; round < rounds; ++round) {
        bare.measure([&] {
            if (readEveryLine() < processes)
                std::exit(1);
        });
        tick.measure([&] { panel.tick(); });
    }
    const auto what = "a tick of the watchdog among " + std::to_string(processes) + " processes";
    farview::printRatio(
        {what, "a bare reading of the same files", "us", tick.elapsed, bare.elapsed}, 2);
    const double share = farview::median(tick.processor) / 10e6 * 100;
    farview::printAtMost(what + ", of one processor", share, 0.1, "%");
    return 0;
}
