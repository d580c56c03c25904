#pragma once

#include "Platform/Desktop/Screens/CapturedScreen.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/RunLoop.h"
#include "Platform/Types/ScreenObstacle.h"

#include <pipewire/pipewire.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace farview
{

/// The pixels and the pointer of a monitor that a PipeWire node shows, in a size that we choose
/// unless the node has one of its own. Frames are copied where they have changed, by a thread of
/// PipeWire's: whoever has one needs no PipeWire any more. Main thread only.
class PipeWireStream
{
public:
    /// Called on the main thread, on a later turn, and never once the object is gone.
    struct Events {
        std::function<void()> frameReady; ///< not again until a frame was taken and released
        std::function<void()> cursorChanged;
        /// The node was `takenAway`; or it `failed`: PipeWire has gone or is not there, or there is
        /// no memory.
        std::function<void(ScreenObstacle reason)> ended;
        /// The frames that follow have that size.
        std::function<void(int width, int height)> sized = [](int, int) {};
        /// A pause would bring the newest frame: to be answered with `pause`, soon, and `resumed`
        /// follows once. Without this one it just comes.
        std::function<void()> wantsPause = nullptr;
        std::function<void()> resumed = nullptr;
    };
    /// Where the node is.
    struct Source {
        std::uint32_t node = 0;
        /// A connection to PipeWire, for this stream only; none: the session's PipeWire.
        FileDescriptor remote = {};
        /// The node sends the pointer apart from frames, may lose one over it, and repeats the
        /// newest when it is paused for a moment. Others lose one then.
        bool repeats = true;
    };

    /// The loop must live longer.
    PipeWireStream(RunLoop& loop, Events events);
    /// Waits for a copy that is being made, some milliseconds.
    ~PipeWireStream();
    PipeWireStream(const PipeWireStream&) = delete;
    PipeWireStream& operator=(const PipeWireStream&) = delete;

    /// Whether a monitor can have that size.
    static bool isPossible(int width, int height);

    /// Begins to take what the node shows. Once.
    void connect(Source source, int width, int height);
    /// Asks the node for another size, after `connect`.
    void resize(int width, int height);
    /// Has the node stop and begin again with a whole frame. Meanwhile Mutter drops places of input
    /// that refer to the stream.
    void pause();
    /// Frames of a new size are held back until this is called with it. `isOld`: those that came
    /// until now do not show what is to be shown, and a whole new one is asked for.
    void show(int width, int height, bool isOld);

    CapturedScreen& screen() { return *mScreen; }

private:
    /// The library is set up as long as there is one of these.
    struct Library {
        Library() { pw_init(nullptr, nullptr); }
        ~Library() { pw_deinit(); }
        Library(const Library&) = delete;
        Library& operator=(const Library&) = delete;
    };
    struct Destroy {
        void operator()(pw_thread_loop* thread) const { pw_thread_loop_destroy(thread); }
        void operator()(pw_context* context) const { pw_context_destroy(context); }
        void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
    };
    struct Size {
        int width = 0;
        int height = 0;

        bool operator==(const Size&) const = default;
    };
    enum class Pause {
        none,
        wanted,
        dropped, ///< wanted, but another size was asked for meanwhile
        begun,
        reached,
        over, ///< as soon as PipeWire has told the node, too
    };
    struct Release {
        Size size;
        bool isOld = false;
    };

    template <auto operation, typename Argument> void perform(const Argument& argument);
    template <auto operation, typename... Arguments>
    static void call(void* self, Arguments... arguments);
    static const pw_stream_events& handlers();
    static const pw_core_events& coreHandlers();
    static const pw_registry_events& registryHandlers();

    bool begin(Source source, Size size);
    pw_core* reach(FileDescriptor remote);
    void tell(std::function<void(const Events&)> news);
    void end(ScreenObstacle reason);
    // On PipeWire's thread:
    void useDone(std::uint32_t id, int sequence);
    void useError(std::uint32_t id, int sequence, int result, const char* message);
    void useRemoval(std::uint32_t id);
    void useState(pw_stream_state before, pw_stream_state now, const char* error);
    void useParameter(std::uint32_t id, const spa_pod* value);
    void useFormat(Size size);
    void ask(const Size& size);
    void askAgain();
    void release(const Release& held);
    void forget(pw_buffer* buffer);
    void process();
    void useArrival(const spa_buffer& buffer);
    void usePointer(const spa_buffer& buffer);
    void wake(int descriptor, std::uint32_t mask);
    void copyNewest();
    std::vector<PixelRect> copy(const spa_buffer& buffer);
    void refresh(std::uint64_t expirations);
    void restart(const Size&);
    void goOn();
    void refreshIn(std::chrono::milliseconds delay);

    RunLoop& mLoop;
    std::shared_ptr<Events> mEvents;
    /// Wakes the thread when a frame has come back, from wherever, perhaps after our end.
    std::shared_ptr<FileDescriptor> mWake;
    std::shared_ptr<CapturedScreen> mScreen;
    Library mLibrary;
    std::unique_ptr<pw_thread_loop, Destroy> mThread;
    std::unique_ptr<pw_context, Destroy> mContext;
    std::unique_ptr<pw_stream, Destroy> mStream;
    spa_hook mHook{};
    spa_hook mCoreHook{};
    spa_hook mRegistryHook{};
    std::uint32_t mNode = 0;
    spa_source* mTimer = nullptr;
    std::chrono::milliseconds mPatience{200}; ///< longer with each answer that brought nothing
    bool mRepeats = true;
    Pause mPause = Pause::none;
    int mSequence = 0; ///< of PipeWire's answer that tells the pause's end
    Size mAsked;
    bool mIsEmpty = true;   ///< no buffer came since then
    bool mIsInDoubt = true; ///< a frame may have been lost
    Size mSize;
    Size mShown; ///< frames of another size are held back
    std::shared_ptr<std::vector<std::uint32_t>> mPixels;
    pw_buffer* mNewest = nullptr; ///< not copied yet: a frame is out, or held back
    CursorImage mPointer;
    bool mIsFirst = true; ///< of its size
    bool mHasEnded = false;
};

} // namespace farview
