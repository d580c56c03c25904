#pragma once

#include "Platform/Desktop/Screens/X11/RandrServer.h"
#include "Platform/Types/FrameView.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace farview
{

/// Rows of a screen.
struct RowBand {
    int first = 0;
    int count = 0;

    bool operator==(const RowBand&) const = default;
};

/// The rows that have damage, each once and from above; bands that touch are one.
std::vector<RowBand> bandsOf(std::span<const PixelRect> damage);

/// Reads a part of the root window into memory that this process shares with the X server, as far
/// as it has changed. One thread; waits for the server.
class RootCapture
{
public:
    explicit RootCapture(RandrServer& server);
    ~RootCapture();
    RootCapture(const RootCapture&) = delete;
    RootCapture& operator=(const RootCapture&) = delete;

    /// Whether the server has what it takes: shared memory, damage, 32 bits to a pixel.
    static bool isPossible(const RandrServer& server);

    /// From now on that part, into new memory. False when there is none.
    bool begin(const PixelRect& part);
    /// Where the pixels are, and what keeps them.
    FrameView view() const { return mView; }
    std::shared_ptr<void> memory() const { return mMemory; }

    /// Whether the event says that something has changed since the last capture.
    bool isDamage(const xcb_generic_event_t& event) const;
    /// Reads what has changed, the first time everything, and says where that is, in the part's
    /// coordinates. Nothing when the part is not on the screen any more, or the server has gone.
    std::optional<std::vector<PixelRect>> capture();

private:
    std::vector<PixelRect> takeDamage();
    bool read(const std::vector<RowBand>& bands);

    RandrServer& mServer;
    std::uint8_t mDamageEvent = 0;
    std::uint32_t mDamage = 0;
    std::uint32_t mRegion = 0;
    std::uint32_t mSegment = 0;
    PixelRect mPart;
    FrameView mView;
    std::shared_ptr<void> mMemory;
    bool mIsWhole = true;
};

} // namespace farview
