#include "Common/PacketLog.h"

#include "Common/FVELogging.h"
#include "Link/Wire/LinkCodec.h"
#include "Platform/Log.h"

#include <exception>
#include <string>
#include <system_error>
#include <utility>

namespace farview
{
namespace
{

/// What a file takes, roughly, however little it holds.
std::size_t sizeOnDisk(std::size_t size)
{
    constexpr std::size_t block = 4096;
    return (size + block - 1) / block * block;
}

} // namespace

void PacketLog::setOn(bool isOn)
{
    if (std::exchange(mIsOn, isOn) == isOn)
        return;
    mIsWriting = isOn && hasThread();
    if (mIsWriting)
        add({});
}

bool PacketLog::hasThread()
{
    try {
        if (!mThread.joinable())
            mThread = std::jthread([this](const std::stop_token& stop) { run(stop); });
    } catch (const std::system_error&) {
        mLog.write(LogLevel::warning, "The log of screen packets does not begin: no thread");
    }
    return mThread.joinable();
}

void PacketLog::write(const LinkFrame& frame)
{
    if (mIsWriting && std::holds_alternative<LinkScreenRectangle>(frame))
        add(encodeFrame(frame));
}

void PacketLog::add(Bytes frame)
{
    const std::lock_guard lock(mMutex);
    if (mWaitingSize + frame.size() >= mLimits.waiting) {
        mIsWriting = false;
        mLog.write(LogLevel::warning, "The log of screen packets ends: the disk is too slow");
        return;
    }
    mWaitingSize += frame.size();
    mWaiting.push_back(std::move(frame));
    mAdded.notify_one();
}

void PacketLog::run(const std::stop_token& stop)
{
    std::unique_lock lock(mMutex);
    while (mAdded.wait(lock, stop, [this] { return !mWaiting.empty(); })) {
        const Bytes frame = std::move(mWaiting.front());
        mWaiting.pop_front();
        lock.unlock();
        take(frame);
        lock.lock();
        mWaitingSize -= frame.size();
    }
}

void PacketLog::take(const Bytes& frame)
{
    try {
        if (frame.empty()) {
            EnableLoggingScreenRectangleLogging();
            mRoom = mLimits.written;
        } else if (mRoom > 0) {
            store(ByteView(frame).subspan(kLinkFrameHeaderSize));
        }
    } catch (const std::exception&) {
        end("there is no memory");
    }
}

void PacketLog::store(ByteView packet)
{
    const auto size = sizeOnDisk(packet.size());
    if (size >= mRoom)
        return end("it is full");
    mRoom -= size;
    if (!logScreenRectangle(packet.data(), packet.subspan(kScreenPacketHeaderSize)))
        end("its files cannot be written");
}

void PacketLog::end(const char* reason)
{
    mRoom = 0;
    mLog.write(LogLevel::warning, std::string("The log of screen packets ends: ") + reason);
}

} // namespace farview
