#pragma once

#include "Platform/CursorSource.h"
#include "Platform/Desktop/Screens/X11/RandrServer.h"

namespace farview
{

/// The mouse pointer of an X server. One thread; waits for the server.
class RootCursor
{
public:
    /// Listens for changes of its looks and for its motion.
    explicit RootCursor(RandrServer& server);

    bool isNewShape(const xcb_generic_event_t& event) const;
    /// Whether a mouse or another pointing device has moved. There is no such event for programs
    /// that move it.
    bool isMotion(const xcb_generic_event_t& event) const;
    /// Each motion is an event, up to a thousand a second: who follows the pointer by asking where
    /// it is does not want them.
    void listenForMotion(bool listen);

    /// Nothing when the server cannot tell: it has no pixels of animated pointers.
    std::optional<CursorImage> image();
    /// On the root window.
    PixelPoint position();

private:
    RandrServer& mServer;
    std::uint8_t mFixesEvent = 0;
    std::uint8_t mInputOpcode = 0;
};

} // namespace farview
