#pragma once

#include "Platform/Desktop/Screens/X11/RandrLayout.h"
#include "Platform/Desktop/Screens/X11/XConnection.h"

#include <optional>

namespace farview
{

/// What an X server says of its outputs, and changes of them, over a connection that somebody else
/// holds. What it says is checked before it is believed. One thread.
class RandrServer
{
public:
    /// For a connection that may have failed already.
    explicit RandrServer(xcb_connection_t* connection);

    /// False where nothing may be asked.
    bool isUsable() const { return mIsUsable; }
    xcb_connection_t* connection() const { return mConnection; }
    xcb_window_t root() const { return mRoot; }

    /// The first screen as it is now; nothing when the server has gone or cannot tell.
    std::optional<RandrLayout> layout();
    bool setScreenSize(RandrSize size, RandrSize millimetres);
    bool apply(const RandrCrtc& crtc, std::uint32_t timestamp);

private:
    bool hasRandr();
    bool readSizes(RandrLayout& layout);
    bool readResources(RandrLayout& layout);
    bool readCrtcs(RandrLayout& layout);
    bool readOutputs(RandrLayout& layout);

    xcb_connection_t* mConnection;
    xcb_window_t mRoot = 0;
    bool mIsUsable = false;
};

} // namespace farview
