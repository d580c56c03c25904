#include "Platform/Desktop/Screens/KWin/KWinMonitor.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <wayland-client.h>
#include <wayland-protocols/kde-output-device-v2.h>
#include <wayland-protocols/kde-output-management-v2.h>
#include <wayland-protocols/zkde-screencast-unstable-v1.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// From the wish to the monitor, on a computer that is busy.
constexpr Duration longestStart{10.0};
/// KWin and the desktop's own service for screens may each arrange the outputs, one after the
/// other.
constexpr Duration longestArranging{10.0};
constexpr int mostTries = 4;
/// Stream, PipeWire and connection may end together, and each says something else.
constexpr Duration patience{0.5};

/// More than any picture that a graphics processor holds.
constexpr int longestSide = 16384;
constexpr std::size_t longestName = 60;

/// From this one on it makes outputs.
constexpr std::uint32_t makerVersion = 2;

bool isPossible(int width, int height)
{
    return width > 0 && width <= longestSide && height > 0 && height <= longestSide;
}

/// How KWin calls outputs that it makes for programs.
std::string nameOfOutput(const std::string& name) { return "Virtual-" + name; }

} // namespace

std::optional<ScreenObstacle> obstacleAt(const WaylandConnection& connection)
{
    const auto* maker = connection.find(zkde_screencast_unstable_v1_interface);
    if (!connection.find(kde_output_management_v2_interface))
        return ScreenObstacle::protocolMissing;
    // KWin hides it from programs that it does not trust.
    if (!maker)
        return ScreenObstacle::notPermitted;
    return maker->version < makerVersion ? std::optional(ScreenObstacle::protocolMissing)
                                         : std::nullopt;
}

void ShownScreen::show(CapturedScreen& screen)
{
    const std::lock_guard lock(mMutex);
    mScreen = screen.shared_from_this();
}

std::shared_ptr<CapturedScreen> ShownScreen::screen()
{
    const std::lock_guard lock(mMutex);
    return mScreen;
}

std::optional<ScreenFrame> ShownScreen::takeFrame()
{
    const auto shown = screen();
    return shown ? shown->takeFrame() : std::nullopt;
}

std::optional<CursorImage> ShownScreen::takeImage()
{
    const auto shown = screen();
    return shown ? shown->takeImage() : std::nullopt;
}

std::optional<PixelPoint> ShownScreen::position()
{
    const auto shown = screen();
    return shown ? shown->position() : std::nullopt;
}

KWinMonitor::KWinMonitor(RunLoop& loop, SessionBus& bus, const ScreenWish& wish,
                         VirtualScreens::Delegate delegate, std::uint32_t firstFinger)
    : mLoop(loop), mBus(bus), mDelegate(std::move(delegate)), mWish(wish),
      mConnection({[this] { bind(); }, [this](const auto& global) { mOutputs.add(global); },
                   [this](auto global) { mOutputs.remove(global); },
                   [this] { end(ScreenObstacle::gone); }}),
      mOutputs(mConnection, [this] { follow(); }), mInput(firstFinger)
{
    limitWaiting();
}

KWinMonitor::~KWinMonitor() { remove(); }

void KWinMonitor::bind()
{
    if (const auto obstacle = obstacleAt(mConnection))
        return end(*obstacle);
    if (!isPossible(mWish.width, mWish.height))
        return end(ScreenObstacle::tooLarge);
    for (const auto& global : mConnection.globals())
        mOutputs.add(global);
    mMaker.reset(mConnection.bind<zkde_screencast_unstable_v1>(
        *mConnection.find(zkde_screencast_unstable_v1_interface),
        zkde_screencast_unstable_v1_interface, makerVersion));
    if (mWish.input)
        mInput.makeDevices(mConnection, mBus);
    mConnection.afterAll([this] { makeStream(); });
}

void KWinMonitor::makeStream()
{
    const int number = ++mNumber;
    mUsers = mOutputs.shown();
    std::erase_if(mUsers, [this](const auto& output) {
        return mStream && output.name == nameOfOutput(mStream->wish().name);
    });
    const auto tell = [this, number](News news) {
        if (number == mNumber)
            this->tell(std::move(news));
    };
    mNext = std::make_unique<KWinStream>(
        mLoop, *mMaker, KWinStream::Wish{freeName(), mWish.width, mWish.height},
        [this] { follow(); },
        PipeWireStream::Events{[tell] { tell([](auto& told) { told.frameReady(); }); },
                               [tell] { tell([](auto& told) { told.cursorChanged(); }); },
                               [this, number](auto reason) { streamEnded(number, reason); }});
    mArrangedBy = mLoop.now() + longestArranging;
    mTries = 0;
}

/// The same each time, because KWin remembers under it where the output and its windows were.
std::string KWinMonitor::freeName() const
{
    const auto wished = printableText(mWish.name, longestName);
    const auto isTaken = [outputs = mOutputs.shown()](const std::string& name) {
        return std::ranges::find(outputs, nameOfOutput(name), &KWinOutput::name) != outputs.end();
    };
    std::string name = wished;
    for (int number = 2; isTaken(name); ++number)
        name = wished + " " + std::to_string(number);
    return name;
}

void KWinMonitor::limitWaiting()
{
    mLoop.performAfterDelay(longestStart, mLife, [this] {
        if (!mTold)
            end(ScreenObstacle::failed);
    });
}

void KWinMonitor::resize(int width, int height)
{
    const bool isSame = width == mWish.width && height == mWish.height;
    if (isSame || !isPossible(width, height))
        return;
    mWish.width = width;
    mWish.height = height;
    // While its windows are moved, the one for which they are is still needed.
    if (mMaker && !mHasEnded && !mMove)
        makeStream();
}

void KWinMonitor::setScale(double scale)
{
    mWanted.scale = mWish.scale = scale;
    follow();
}

/// No output of KDE's is left of or above the desktop's corner.
void KWinMonitor::place(PixelPoint corner)
{
    if (corner.x < 0 || corner.y < 0)
        return;
    mWanted.corner = corner;
    follow();
}

const KWinOutput* KWinMonitor::outputOf(const KWinStream* stream,
                                        const std::vector<KWinOutput>& outputs) const
{
    if (!stream || !stream->hasBegun())
        return nullptr;
    const auto found =
        std::ranges::find(outputs, nameOfOutput(stream->wish().name), &KWinOutput::name);
    return found == outputs.end() ? nullptr : &*found;
}

void KWinMonitor::follow()
{
    if (mHasEnded || mOutputs.isApplying())
        return;
    if (mNext)
        followNext();
    const auto outputs = mOutputs.shown();
    const auto* ours = outputOf(mStream.get(), outputs);
    const bool isLeaving = std::ranges::find(outputs, mLeaving, &KWinOutput::name) != outputs.end();
    if (mMove || isLeaving)
        return;
    if (ours && !change(outputs))
        report(*ours);
    else if (!ours && mTold)
        endSoon(ScreenObstacle::takenAway);
}

void KWinMonitor::followNext()
{
    const auto outputs = mOutputs.shown();
    const auto* next = outputOf(mNext.get(), outputs);
    if (!next || mMove)
        return;
    const auto* ours = outputOf(mStream.get(), outputs);
    if (!ours)
        return useNext();
    mWanted.corner = mWanted.corner.value_or(PixelPoint{ours->area.x, ours->area.y});
    mMove = std::make_shared<WindowMove>(mLoop, mBus, [this] {
        mLoop.post(mLife, [this] {
            mMove.reset();
            useNext();
            follow();
        });
    });
    mMove->begin({ours->area.x, ours->area.y}, {next->area.x, next->area.y});
}

void KWinMonitor::useNext()
{
    if (mStream)
        mLeaving = nameOfOutput(mStream->wish().name);
    mStream = std::move(mNext);
    mWanted.scale = mWish.scale;
    const auto& made = mStream->wish();
    if (made.width != mWish.width || made.height != mWish.height)
        makeStream();
}

/// Whether KWin was asked for something, and is to be waited for.
bool KWinMonitor::change(const std::vector<KWinOutput>& outputs)
{
    mWanted.name = nameOfOutput(mStream->wish().name);
    std::vector<KWinChange> changes;
    if (mLoop.now() < mArrangedBy && mTries < mostTries)
        changes = undoneRow(mUsers, outputs, mWanted.name);
    if (!changes.empty())
        ++mTries;
    if (mWanted.corner ||
        (mWanted.scale && mWanted.scale != outputOf(mStream.get(), outputs)->scale))
        changes.push_back(mWanted);
    mWanted = {};
    if (!changes.empty())
        mOutputs.apply(changes);
    return mOutputs.isApplying();
}

void KWinMonitor::report(const KWinOutput& ours)
{
    ScreenGeometry geometry{ours.area, ours.width, ours.height, ours.scale, ours.rate};
    auto others = mOutputs.shown();
    std::erase_if(others, [&](const auto& output) {
        return output.name == ours.name ||
               (mNext && output.name == nameOfOutput(mNext->wish().name));
    });
    std::ranges::stable_partition(
        others, [](const auto& output) { return !output.name.starts_with(nameOfOutput("")); });
    for (const auto& output : others)
        geometry.others.push_back(output.area);
    mWish.scale = ours.scale;
    mInput.setMonitor(geometry);
    mScreen.show(mStream->screen());
    const auto before = std::exchange(mTold, geometry);
    if (!before)
        tell([geometry](auto& told) { told.didAppear(geometry); });
    else if (geometry != *before)
        tell([geometry](auto& told) { told.didChange(geometry); });
    const bool isAnother = !before || before->width != ours.width || before->height != ours.height;
    // What came before was told to nobody.
    if (isAnother)
        tell([](auto& told) { told.frameReady(); });
}

void KWinMonitor::tell(News news)
{
    if (!mHasEnded && mTold)
        mLoop.post(mLife, [delegate = mDelegate, news = std::move(news)] {
            if (const auto told = delegate.lock())
                news(*told);
        });
}

/// Where KWin cannot make another size, the one of before stays.
void KWinMonitor::streamEnded(int number, ScreenObstacle reason)
{
    if (!mStream || number != mNumber || !mNext)
        return endSoon(reason);
    mLoop.post(mLife, [this, number] {
        if (number == mNumber && !mMove)
            mNext.reset();
    });
}

/// Unless somebody who knows more says so first.
void KWinMonitor::endSoon(ScreenObstacle reason)
{
    const bool isSure = reason != ScreenObstacle::takenAway;
    mLoop.performAfterDelay(isSure ? Duration(0) : patience, mLife,
                            [this, reason] { end(reason); });
}

void KWinMonitor::end(ScreenObstacle reason)
{
    mLoop.post(mLife, [delegate = mDelegate, reason, wasTold = std::exchange(mHasEnded, true)] {
        if (const auto told = delegate.lock(); told && !wasTold)
            told->didEnd(reason);
    });
    remove();
}

void KWinMonitor::remove()
{
    mMove.reset();
    mInput.end();
    mNext.reset();
    mStream.reset();
    mConnection.flush();
}

} // namespace farview
