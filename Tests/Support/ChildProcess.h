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

/// A process that someone else started.
struct OtherProcess {
    pid_t pid;
    std::string shortName; ///< "comm"
};

/// The processes below `ancestor` that run now; those that have ended but still wait for their
/// parent do not count.
std::vector<OtherProcess> processesBelow(pid_t ancestor);
bool isProcessRunning(pid_t pid);

/// For as long as it lives, processes that this one's children leave behind become its own
/// children; at the end all children of that short name are killed.
class OrphanCollector
{
public:
    explicit OrphanCollector(std::string shortName);
    ~OrphanCollector();
    OrphanCollector(const OrphanCollector&) = delete;
    OrphanCollector& operator=(const OrphanCollector&) = delete;

    std::vector<pid_t> running() const;

private:
    std::string mShortName;
};
