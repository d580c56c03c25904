#pragma once

#include "Link/Wire/LinkFrame.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>

namespace farview
{

class Log;

/// Writes the screen packets that a server sends to the packet log (`FVELogging.h`), while the user
/// wants that: their files hold what the screen shows. A thread of its own writes, so nobody waits
/// for the disk. A log ends when it is full, and when the disk is full or too slow; up to its end
/// it is complete. One thread calls; the platform is read from the other one, and outlives this.
class PacketLog
{
public:
    /// A log ends before it reaches these, in bytes.
    struct Limits {
        std::size_t written = std::size_t{256} << 20; ///< on the disk
        std::size_t waiting = std::size_t{32} << 20;  ///< in memory, for the disk
    };

    explicit PacketLog(Log& log) : PacketLog(log, Limits{}) {}
    PacketLog(Log& log, Limits limits) : mLog(log), mLimits(limits) {}
    // The end of the thread, which writes what waits before.
    ~PacketLog() = default;
    PacketLog(const PacketLog&) = delete;
    PacketLog& operator=(const PacketLog&) = delete;

    /// What the user wants. Switching it on begins another log.
    void setOn(bool isOn);
    /// Takes note of a frame that is being sent; returns at once.
    void write(const LinkFrame& frame);

private:
    bool hasThread();
    void add(Bytes frame);
    void run(const std::stop_token& stop);
    void take(const Bytes& frame);
    void store(ByteView packet);
    void end(const char* reason);

    Log& mLog;
    const Limits mLimits;
    bool mIsOn = false;      ///< as the user wants it
    bool mIsWriting = false; ///< until the disk is too slow
    std::mutex mMutex;
    std::condition_variable_any mAdded;
    std::deque<Bytes> mWaiting; ///< frames; one without bytes begins another log
    std::size_t mWaitingSize = 0;
    std::size_t mRoom = 0; ///< that the log has left; none after its end. For the thread alone.
    std::jthread mThread;  ///< ends before what it uses
};

} // namespace farview
