#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// A program that a test started; killed with the object, and when the test itself dies.
class ChildProcess
{
public:
    using Environment = std::map<std::string, std::string>;

    /// Starts `arguments[0]` (found in PATH) with additional environment variables.
    explicit ChildProcess(const std::vector<std::string>& arguments,
                          const Environment& environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return mPid; }
    bool isRunning();
    void sendSignal(int number) const;
    /// Its wait status once it has ended; nothing when it has not within `limit`. Runs Qt's loop.
    std::optional<int> waitForEnd(std::chrono::milliseconds limit = std::chrono::seconds(10));
    void kill();

private:
    pid_t mPid = -1;
    std::optional<int> mStatus;
};

/// The short names ("comm") of the processes that are below `ancestor` now.
std::vector<std::string> shortNamesBelow(pid_t ancestor);
