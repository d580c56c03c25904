#include "Platform/Desktop/Screens/Mutter/MutterMonitor.h"

#include <utility>

namespace farview
{
namespace
{

/// From the wish to the monitor.
constexpr Duration longestStart{10.0};
/// From one size to the next, on a computer that is busy.
constexpr Duration longestResizing{2.0};
/// Session, stream and bus may end together, and each says something else.
constexpr Duration patience{0.5};

} // namespace

MutterMonitor::MutterMonitor(RunLoop& loop, SessionBus& bus, std::shared_ptr<MutterLayout> layout,
                             const ScreenWish& wish, VirtualScreens::Delegate delegate)
    : mLoop(loop), mDelegate(std::move(delegate)),
      mLayout(std::move(layout)), mPart{wish,
                                        {},
                                        [this] { begin(); },
                                        [this](const auto& geometry, bool wasElse) {
                                            report(geometry);
                                            mStream.show(geometry.width, geometry.height, wasElse);
                                        },
                                        [this](auto reason) { endSoon(reason); }},
      mSession(bus,
               {[this] { queue(); },
                [this](auto node) { mStream.connect({node}, mPart.wish.width, mPart.wish.height); },
                [this](auto reason) { lose(reason); }}),
      mStream(loop,
              {.frameReady = [this] { tellOfPicture([](auto& told) { told.frameReady(); }); },
               .cursorChanged = [this] { tellOfPicture([](auto& told) { told.cursorChanged(); }); },
               .ended = [this](auto reason) { lose(reason); },
               .wantsPause = [this] { mInput.hold([this] { mStream.pause(); }); },
               .resumed = [this] { mSession.settle([this] { mInput.goOn(); }); }})
{
    prepare();
}

MutterMonitor::~MutterMonitor() { remove(); }

void MutterMonitor::prepare()
{
    if (!PipeWireStream::isPossible(mPart.wish.width, mPart.wish.height))
        return end(ScreenObstacle::tooLarge);
    limitWaiting();
    mSession.prepare();
}

void MutterMonitor::limitWaiting()
{
    mWaiting = std::make_shared<int>();
    mLoop.performAfterDelay(longestStart, mWaiting, [this] { end(ScreenObstacle::failed); });
}

/// Others have a limit of their own.
void MutterMonitor::queue()
{
    mWaiting.reset();
    mLayout->add(mPart);
}

void MutterMonitor::begin()
{
    limitWaiting();
    mSession.start();
    if (mPart.wish.input)
        mSession.makeDevices();
}

void MutterMonitor::resize(int width, int height)
{
    if (!PipeWireStream::isPossible(width, height))
        return;
    mPart.wish.width = width;
    mPart.wish.height = height;
    mStream.resize(width, height);
    // A stream that is still being set up may lose that where PipeWire is busy.
    mResizing = std::make_shared<int>();
    mLoop.performAfterDelay(longestResizing, mResizing, [this] {
        const auto& wish = mPart.wish;
        if (mTold && (mTold->width != wish.width || mTold->height != wish.height))
            mStream.resize(wish.width, wish.height);
    });
}

void MutterMonitor::report(const ScreenGeometry& geometry)
{
    mWaiting.reset();
    const auto before = std::exchange(mTold, geometry);
    mInput.setMonitor(geometry);
    if (!before)
        tell([geometry](auto& told) { told.didAppear(geometry); });
    else if (geometry != *before)
        tell([geometry](auto& told) { told.didChange(geometry); });
    for (auto& news : std::exchange(mEarly, {}))
        tell(std::move(news));
}

void MutterMonitor::tellOfPicture(News news)
{
    if (mTold)
        tell(std::move(news));
    else
        mEarly.push_back(std::move(news));
}

void MutterMonitor::tell(News news)
{
    if (!mHasEnded)
        mLoop.post(mLife, [delegate = mDelegate, news = std::move(news)] {
            if (const auto told = delegate.lock())
                news(*told);
        });
}

void MutterMonitor::end(ScreenObstacle reason)
{
    tell([reason](auto& told) { told.didEnd(reason); });
    mHasEnded = true;
    remove();
}

/// Mutter closes the session when PipeWire ends, and the node goes when the session is closed.
void MutterMonitor::lose(ScreenObstacle reason)
{
    if (reason == ScreenObstacle::takenAway)
        endSoon(reason);
    else
        end(reason);
}

/// Unless somebody who knows more says so first.
void MutterMonitor::endSoon(ScreenObstacle reason)
{
    mLoop.performAfterDelay(patience, mLife, [this, reason] { end(reason); });
}

void MutterMonitor::remove()
{
    mInput.end();
    mSession.stop();
    mLayout->remove(mPart);
}

} // namespace farview
