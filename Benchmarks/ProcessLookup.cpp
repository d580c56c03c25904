// The time to find one process among 10,000 sleeping ones, against `pgrep -x`, alternating.
//
// usage: process-lookup [PROCESSES] [ROUNDS]        (in a process table of its own)

#include "Benchmarks/Figures.h"
#include "Benchmarks/SleepingProcesses.h"
#include "Common/FVEConstants.h"
#include "Common/GetPID.h"
#include "Platform/Platform.h"
#include "Platform/Posix/Processes/PosixProcessTable.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// What one way has taken in all rounds, in microseconds.
struct Times {
    std::vector<double> elapsed;
    std::vector<double> processor; ///< what other programs on the machine do not disturb

    void add(double begin, const rusage& used)
    {
        elapsed.push_back(farview::microsecondsNow() - begin);
        processor.push_back(microseconds(used.ru_utime) + microseconds(used.ru_stime));
    }

private:
    static double microseconds(const timeval& time)
    {
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    }
};

bool lookUp(pid_t expected, Times& times)
{
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    const double begin = farview::microsecondsNow();
    const auto found = GetPIDForProcessName(kFVEScreenServerApplicationNameCString);
    getrusage(RUSAGE_SELF, &after);
    timersub(&after.ru_utime, &before.ru_utime, &after.ru_utime);
    timersub(&after.ru_stime, &before.ru_stime, &after.ru_stime);
    times.add(begin, after);
    return found == expected;
}

bool lookUpWithPgrep(Times& times)
{
    const double begin = farview::microsecondsNow();
    const char* arguments[] = {"pgrep", "-x", kFVEScreenServerApplicationName, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const bool started =
        posix_spawnp(&pid, "pgrep", &actions, nullptr, const_cast<char**>(arguments), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    rusage used{};
    if (!started || wait4(pid, &status, 0, &used) != pid)
        return false;
    times.add(begin, used);
    return status == 0;
}

} // namespace

int main(int argc, char** argv)
{
    const int processes = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 15;
    farview::PosixProcessTable table;
    farview::Platform platform;
    platform.processTable = &table;
    const farview::Platform::Scope scope(platform);

    const SleepingProcesses sleeping(processes);
    if (!sleeping.isComplete()) {
        std::perror("process-lookup: this system allows no such number of processes");
        return 1;
    }
    Times own;
    Times pgrep;
    for (int round = 0; round < rounds; ++round) {
        if (!lookUpWithPgrep(pgrep) || !lookUp(sleeping.last(), own)) {
            std::fprintf(stderr, "process-lookup: the process was not found\n");
            return 1;
        }
    }
    const std::string what = "one process among " + std::to_string(processes);
    farview::printSpeedUp({what, "pgrep -x", "us", own.elapsed, pgrep.elapsed}, 5);
    farview::printSpeedUp(
        {what + ", processor time", "pgrep -x", "us", own.processor, pgrep.processor}, 5);
    return 0;
}
