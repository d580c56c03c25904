#pragma once

#include <pipewire/pipewire.h>

#include <atomic>
#include <cstdint>

/// A PipeWire node that shows pictures of one size and one colour, many a second, as the window
/// manager of a desktop does. It runs on threads of PipeWire's.
class VideoNode
{
public:
    static constexpr std::uint32_t noNumber = SPA_ID_INVALID;

    VideoNode(int width, int height, std::uint32_t colour);
    ~VideoNode();
    VideoNode(const VideoNode&) = delete;
    VideoNode& operator=(const VideoNode&) = delete;

    /// By which consumers find it; `noNumber` until it is there.
    std::uint32_t number() const { return mNumber; }
    void setColour(std::uint32_t colour) { mColour = colour; }

private:
    const pw_stream_events& handlers();
    void tellBuffers();
    void paint();

    int mWidth;
    int mHeight;
    std::atomic<std::uint32_t> mColour;
    std::atomic<std::uint32_t> mNumber;
    pw_thread_loop* mThread = nullptr;
    pw_stream* mStream = nullptr;
    spa_source* mTimer = nullptr;
    spa_hook mHook{};
};
