#include "Platform/Desktop/Programs/Supervisor.h"

#include "Platform/Desktop/Bus/GrowingPause.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace farview
{
namespace
{

constexpr const char* supervisorName = "farview-keeper";
constexpr int statusOfSignal = 128; // what shells add to a signal's number

Duration now() { return std::chrono::steady_clock::now().time_since_epoch(); }

bool asksToQuit(int signal) { return signal == SIGTERM || signal == SIGINT || signal == SIGHUP; }

timespec timespecFrom(Duration span)
{
    const double seconds = std::floor(std::max(span.count(), 0.0));
    return {static_cast<time_t>(seconds),
            static_cast<long>((std::max(span.count(), 0.0) - seconds) * 1e9)};
}

class Supervisor
{
public:
    explicit Supervisor(SupervisorOptions options)
        : mOptions(options), mPause(options.firstPause, options.longestPause)
    {
        sigemptyset(&mSignals);
        for (const int each : {SIGCHLD, SIGTERM, SIGINT, SIGHUP})
            sigaddset(&mSignals, each);
        signal(SIGCHLD, SIG_DFL); // ignored ends could not be waited for
        sigprocmask(SIG_BLOCK, &mSignals, &mOriginalMask);
        prctl(PR_GET_NAME, mProgramName.data());
        prctl(PR_SET_NAME, supervisorName);
    }

    int run(const std::function<int(unsigned)>& program)
    {
        for (unsigned crashes = 0;; ++crashes) {
            const Duration started = now();
            const pid_t supervisor = getpid();
            const pid_t child = fork();
            if (child <= 0) { // without a child the program runs right here
                becomeProgram(child < 0 ? 0 : supervisor);
                return program(crashes);
            }
            const int status = statusAtEnd(child);
            if (!isCrash(status))
                return WIFEXITED(status) ? WEXITSTATUS(status) : statusOfSignal + WTERMSIG(status);
            if (now() - started >= mOptions.steadyAfter)
                mPause.reset();
            if (isAskedToQuitWithin(mPause.next()))
                return 0;
        }
    }

private:
    void becomeProgram(pid_t supervisor) const
    {
        prctl(PR_SET_NAME, mProgramName.data());
        if (supervisor > 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            if (getppid() != supervisor)
                raise(SIGTERM);
        }
        sigprocmask(SIG_SETMASK, &mOriginalMask, nullptr);
    }

    int statusAtEnd(pid_t child)
    {
        int status = 0;
        while (waitpid(child, &status, WNOHANG) == 0) {
            const int signal = sigwaitinfo(&mSignals, nullptr);
            if (!asksToQuit(signal))
                continue;
            mIsQuitting = true;
            kill(child, signal);
        }
        return status;
    }

    bool isCrash(int status) const
    {
        return WIFSIGNALED(status) && !mIsQuitting && !asksToQuit(WTERMSIG(status));
    }

    bool isAskedToQuitWithin(Duration pause) const
    {
        const Duration end = now() + pause;
        while (now() < end) {
            const timespec left = timespecFrom(end - now());
            if (asksToQuit(sigtimedwait(&mSignals, nullptr, &left)))
                return true;
        }
        return false;
    }

    SupervisorOptions mOptions;
    GrowingPause mPause;
    sigset_t mSignals{};
    sigset_t mOriginalMask{};
    std::array<char, 16> mProgramName{};
    bool mIsQuitting = false;
};

} // namespace

int runSupervised(const std::function<int(unsigned crashes)>& program, SupervisorOptions options)
{
    return Supervisor(options).run(program);
}

void* memorySharedWithChildren(std::size_t bytes)
{
    void* const memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

} // namespace farview
