#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// Processes that do nothing, and one more with the name of the screen server. They end with the
/// object.
class SleepingProcesses
{
public:
    explicit SleepingProcesses(int count);
    ~SleepingProcesses();
    SleepingProcesses(const SleepingProcesses&) = delete;
    SleepingProcesses& operator=(const SleepingProcesses&) = delete;

    /// False where the system allows no such number.
    bool isComplete() const { return mIsComplete; }
    pid_t last() const { return mPids.back(); }

private:
    void add(const char* name, int awake);

    std::string mOwnName;
    std::vector<pid_t> mPids;
    bool mIsComplete = true;
};
