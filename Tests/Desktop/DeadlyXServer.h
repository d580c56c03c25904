#pragma once

#include <sys/types.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

/// Stands between an X server and a process that makes a monitor, and its watcher. Kills the
/// process right after one of its requests that change something has reached the server. Passes on
/// everything but files. Serves in a thread.
class DeadlyXServer
{
public:
    explicit DeadlyXServer(const std::string& realDisplay);
    ~DeadlyXServer();
    DeadlyXServer(const DeadlyXServer&) = delete;
    DeadlyXServer& operator=(const DeadlyXServer&) = delete;

    const std::string& display() const { return mDisplay; }
    /// From now on. `request` counts from 1.
    void killAfter(int request, pid_t victim);

    bool hasKilled() const { return mHasKilled; }
    /// Whether the watcher has come and gone.
    bool hasWatched() const { return mHasWatched; }

private:
    struct Client;

    void serve();
    void accept();
    bool pass(Client& client);
    bool passRequests(Client& client);

    std::string mRealSocket;
    std::string mDisplay;
    int mRandr = 0; ///< the code of its requests
    int mListener = -1;
    std::vector<std::unique_ptr<Client>> mClients;
    std::atomic<int> mFatalRequest = 0;
    std::atomic<pid_t> mVictim = 0;
    std::atomic<bool> mHasKilled = false;
    std::atomic<bool> mIsEnding = false;
    std::atomic<bool> mHasWatched = false;
    int mChanges = 0;
    std::thread mThread;
};
