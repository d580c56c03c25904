#pragma once

#include "Platform/Desktop/Screens/X11/RandrLayout.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Types/PixelRect.h"

#include <functional>
#include <mutex>
#include <optional>

namespace farview
{

/// What the owner of a monitor asks of its thread, on the way there: the newest wish replaces older
/// ones. Operations may be called on any thread.
class MonitorOrders
{
public:
    struct Wishes {
        std::optional<RandrSize> size;
        std::optional<PixelPoint> place;
        std::optional<bool> keepsWindows;
        bool end = false;
    };

    MonitorOrders();

    void wish(const std::function<void(Wishes&)>& change);
    /// Something else has happened that the thread should look at.
    void wake() const;

    /// Readable as long as there is something to take.
    int descriptor() const { return mDescriptor.get(); }
    Wishes take();

private:
    FileDescriptor mDescriptor;
    std::mutex mMutex;
    Wishes mWishes;
};

} // namespace farview
