#include "Screen/Pacing.h"

#include <algorithm>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

/// One that is on the wire and one that is being shown.
constexpr std::size_t mostUnshown = 2;
constexpr int mostTilesOfSmallChange = 24;
/// Smaller frames say nothing of what the link carries.
constexpr std::size_t tellingSize = 20'000;

} // namespace

int qualityAfter(int quality, PictureTime took)
{
    const int step = took > 90ms ? -15 : took > 45ms ? -5 : took < 28ms ? 1 : 0;
    return std::clamp(quality + step, kLeastPictureQuality, kBestPictureQuality);
}

bool mayBeginFrame(std::size_t unshown, bool hasRoom) { return hasRoom && unshown < mostUnshown; }

bool isSmallChange(int changedTiles) { return changedTiles <= mostTilesOfSmallChange; }

int refinedAtOnce(int quality) { return quality >= kBestPictureQuality - 10 ? 32 : 8; }

bool Pacing::mayBegin(PictureTime now, int changedTiles, bool hasRoom) const
{
    return mayBeginFrame(unshown(), hasRoom) && (isSmallChange(changedTiles) || now >= nextBeat());
}

int Pacing::beat(PictureTime now)
{
    mLastBeat = now;
    return mQuality;
}

std::uint32_t Pacing::begin(PictureTime now, std::size_t bytes)
{
    mOnTheirWay.push_back({++mLast, now, bytes});
    return mLast;
}

bool Pacing::shown(std::uint32_t number, PictureTime now)
{
    const auto found = std::find_if(mOnTheirWay.begin(), mOnTheirWay.end(),
                                    [&](const Frame& frame) { return frame.number == number; });
    if (found == mOnTheirWay.end())
        return false;
    follow(*found, now);
    mOnTheirWay.erase(mOnTheirWay.begin(), std::next(found));
    return true;
}

void Pacing::follow(const Frame& frame, PictureTime now)
{
    if (frame.bytes >= tellingSize)
        mQuality = qualityAfter(mQuality, now - frame.began);
}

} // namespace farview
