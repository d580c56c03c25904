#pragma once

#include "Platform/Desktop/Screens/X11/MonitorJournal.h"
#include "Platform/VirtualScreens.h"

#include <optional>

namespace farview
{

/// An additional monitor of an X server: an output that nothing is plugged into, switched on with a
/// mode of our own. Every change stands in the journal before it is made. The user's own outputs
/// are read and never changed. One thread; waits for the server.
class VirtualMonitor
{
public:
    /// Whose connection owns the journal, and began when nothing was changed yet: a connection
    /// learns only then how many millimetres the screen has.
    explicit VirtualMonitor(RandrServer& server) : mServer(server) {}

    /// Switches it on, to the right of everything; what was in the way, or nothing. In the second
    /// case nothing is left changed.
    std::optional<ScreenObstacle> make(int width, int height);
    /// While it is on. False when the server does not give that, or others are there.
    bool resize(int width, int height);
    bool place(PixelPoint corner);
    /// Nothing once somebody switched it off, or the server has gone.
    std::optional<ScreenGeometry> geometry();

private:
    bool arrange(const RandrLayout& layout, RandrCrtc wanted);
    RandrNumber modeFor(const RandrLayout& layout, RandrSize size);
    RandrNumber createMode(RandrSize size);

    RandrServer& mServer;
    MonitorJournal mJournal;
};

/// Switches a monitor off as its journal says and takes the journal away. What others changed
/// since then stays. True when nothing is left to undo.
bool undoMonitor(RandrServer& server);
/// The same for a monitor whose maker has gone; one that has an owner is left alone.
bool undoAbandonedMonitor(RandrServer& server);

} // namespace farview
