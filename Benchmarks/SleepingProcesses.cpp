#include "Benchmarks/SleepingProcesses.h"

#include "Common/FVEConstants.h"

#include <array>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

std::string ownName()
{
    std::array<char, 17> name{};
    prctl(PR_GET_NAME, name.data());
    return name.data();
}

} // namespace

SleepingProcesses::SleepingProcesses(int count) : mOwnName(ownName())
{
    // Each child holds the writing end until it sleeps.
    int ends[2];
    mIsComplete = pipe(ends) == 0;
    for (int index = 0; index < count && mIsComplete; ++index)
        add("sleeper", ends[1]);
    add(kFVEScreenServerApplicationNameCString, ends[1]);
    close(ends[1]);
    char nothing;
    mIsComplete = read(ends[0], &nothing, 1) == 0 && mIsComplete;
    close(ends[0]);
}

SleepingProcesses::~SleepingProcesses()
{
    for (const pid_t pid : mPids)
        kill(pid, SIGKILL);
    for (const pid_t pid : mPids)
        waitpid(pid, nullptr, 0);
}

void SleepingProcesses::add(const char* name, int awake)
{
    prctl(PR_SET_NAME, name);
    const pid_t pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        close(awake);
        for (;;)
            pause();
    }
    mIsComplete = mIsComplete && pid > 0;
    if (pid > 0)
        mPids.push_back(pid);
    prctl(PR_SET_NAME, mOwnName.c_str());
}
