#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace farview
{

/// A copy of this process that runs one function and ends: status 0 when none of its expectations
/// failed. Ends with the object, and with the test.
class ForkedProcess
{
public:
    explicit ForkedProcess(const std::function<void()>& body) : mPid(::fork())
    {
        if (mPid != 0)
            return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        body();
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    ~ForkedProcess()
    {
        if (mPid > 0) {
            kill();
            wait();
        }
    }
    ForkedProcess(const ForkedProcess&) = delete;
    ForkedProcess& operator=(const ForkedProcess&) = delete;

    pid_t pid() const { return mPid; }
    void send(int number) const { ::kill(mPid, number); }
    void kill() const { send(SIGKILL); }
    /// Waits for its end; its exit status, or minus the signal that ended it.
    int wait()
    {
        const int status = collect(0);
        mPid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    /// Waits until a signal has stopped it.
    bool waitUntilStopped() const { return WIFSTOPPED(collect(WUNTRACED)); }
    bool hasEnded() const
    {
        siginfo_t info{};
        return ::waitid(P_PID, static_cast<id_t>(mPid), &info, WEXITED | WNOWAIT | WNOHANG) == 0 &&
               info.si_pid == mPid;
    }
    /// Waits until it has ended, without taking its entry from the process table.
    void waitUntilZombie() const
    {
        siginfo_t info{};
        while (::waitid(P_PID, static_cast<id_t>(mPid), &info, WEXITED | WNOWAIT) != 0 &&
               errno == EINTR) {
        }
    }

private:
    int collect(int options) const
    {
        int status = 0;
        while (::waitpid(mPid, &status, options) < 0 && errno == EINTR) {
        }
        return status;
    }

    pid_t mPid;
};

/// For tests of what a process finds out or switches on once: runs the expectations of one case in
/// a process of its own.
inline void inItsOwnProcess(const std::function<void()>& body)
{
    ForkedProcess process(body);
    EXPECT_EQ(process.wait(), 0);
}

} // namespace farview
