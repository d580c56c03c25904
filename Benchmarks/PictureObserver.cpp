#include "Benchmarks/PictureObserver.h"

#include "Benchmarks/Figures.h"

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace farview
{
namespace
{

using std::chrono::milliseconds;

constexpr int sceneSeconds = 4;

double millisecondsSince(double moment) { return (microsecondsNow() - moment) / 1000; }

} // namespace

PictureObserver::PictureObserver(const std::string& display)
    : mRun(openPictureRun(mFolder.path("run").c_str())), mProbe(display)
{
    if (!mRun)
        throw std::runtime_error("there is no memory to share with the source");
}

std::unique_ptr<ChildProcess> PictureObserver::show(const RunningPictures& pictures,
                                                    const std::string& scene)
{
    mRun->isMoving = mRun->hasEnded = false;
    const int before = mRun->newest;
    auto source = pictures.startSource(FARVIEW_BENCHMARKS_DIR "/picture-source " + scene + " " +
                                       std::to_string(sceneSeconds) + " " + mFolder.path("run"));
    if (!waitFor([&] { return mProbe.number() > before; }, milliseconds(20000)) ||
        !waitFor([&] { return mRun->isMoving || mRun->hasEnded; }, milliseconds(2000)))
        throw std::runtime_error("its picture does not arrive");
    return source;
}

void PictureObserver::observe(const RunningPictures& pictures, const std::string& scene,
                              PictureRecord& record)
{
    const auto source = show(pictures, scene);
    collect(pictures, record);
    if (record.delays.empty() && scene != "nothing")
        throw std::runtime_error("no picture of " + scene + " arrives");
    if (!waitFor([&] { return mRun->hasEnded.load(); }, milliseconds(5000)))
        throw std::runtime_error("the source does not end");
    waitForExactness(record.exactAfter);
}

void PictureObserver::observeTouches(const RunningPictures& pictures, int count,
                                     const std::function<void(bool)>& touch, TouchRecord& record)
{
    const auto source = show(pictures, "touching");
    for (int each = 0; each < count; ++each) {
        const auto next = static_cast<std::uint16_t>(mRun->newest + 1);
        const double begin = microsecondsNow();
        touch(true);
        if (!waitFor([&] { return mProbe.number() == next; }, milliseconds(2000)))
            throw std::runtime_error("a touch changes nothing");
        record.all.push_back(millisecondsSince(begin));
        record.picture.push_back(millisecondsSince(mRun->drawn[next]));
        touch(false);
        // A user's next touch meets a picture that stands, at any moment of its pace.
        std::this_thread::sleep_for(milliseconds(40 + each % 17));
    }
}

double PictureObserver::waitForBackground()
{
    const double begin = microsecondsNow();
    const auto isThere = [&] {
        const auto pixels = mProbe.read(kMark);
        return !pixels.empty() && pixels.front() == background;
    };
    if (!waitFor(isThere, milliseconds(20000)))
        throw std::runtime_error("its screen does not arrive");
    return millisecondsSince(begin);
}

/// Looks whenever something has changed on the display, and when it has paused.
bool PictureObserver::waitFor(const std::function<bool()>& isThere, milliseconds limit,
                              milliseconds pause)
{
    const double begin = microsecondsNow();
    while (!isThere()) {
        if (millisecondsSince(begin) > static_cast<double>(limit.count()))
            return false;
        mProbe.waitForChange(pause);
    }
    return true;
}

void PictureObserver::collect(const RunningPictures& pictures, PictureRecord& record)
{
    const auto before = pictures.cost();
    const auto seenBefore = record.delays.size();
    const double begin = microsecondsNow();
    collectDelays(record.delays);
    const double span = millisecondsSince(begin) / 1000;
    const auto after = pictures.cost();
    if (const auto seen = record.delays.size() - seenBefore; seen > 0)
        record.timePerPicture.push_back(1000 * span / static_cast<double>(seen));
    record.megabits.push_back((after.bytes - before.bytes) * 8e-6 / span);
    record.processor.push_back((after.processor - before.processor) * 100 / span);
    record.wakeUps.push_back((after.wakeUps - before.wakeUps) / span);
    record.megabytes.push_back(after.megabytes);
}

void PictureObserver::collectDelays(PictureRecord::Samples& delays)
{
    const double begin = microsecondsNow();
    int seen = mRun->newest;
    while (millisecondsSince(begin) < 1000 * sceneSeconds) {
        const auto number = mProbe.waitForChange(milliseconds(10)) ? mProbe.number() : std::nullopt;
        if (!number || *number <= seen || *number > mRun->newest)
            continue;
        delays.push_back(millisecondsSince(mRun->drawn[*number]));
        seen = *number;
    }
}

void PictureObserver::waitForExactness(PictureRecord::Samples& exactAfter)
{
    double lookedAt = 0;
    const auto isExact = [&] {
        lookedAt = millisecondsSince(mRun->drawn[mRun->newest]);
        return showsLastPicture();
    };
    if (waitFor(isExact, milliseconds(2000), milliseconds(100)))
        exactAfter.push_back(lookedAt);
}

bool PictureObserver::showsLastPicture()
{
    const auto shown = mProbe.read(pixelRect(0, 0, kPictureWidth, kPictureHeight));
    return std::ranges::equal(shown, mRun->last, [](std::uint32_t left, std::uint32_t right) {
        return left == (right & 0xFFFFFF);
    });
}

} // namespace farview
