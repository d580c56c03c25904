#pragma once

#include "Platform/Desktop/Screens/X11/MonitorJournal.h"
#include "Platform/VirtualScreens.h"

#include <optional>

namespace farview
{

/// An additional monitor of an X server: an output that nothing is plugged into, switched on with a
/// mode of our own; where there is none, a part of the screen that only has a name, if the window
/// manager goes by that. Every change stands in the journal before it is made. What the user's own
/// outputs show never changes. One thread; waits for the server.
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
    std::optional<ScreenObstacle> choose(const RandrLayout& layout);
    std::optional<RandrCrtc> area(const RandrLayout& layout) const;
    bool arrange(const RandrLayout& layout, const RandrCrtc& wanted);
    bool switchOn(const RandrLayout& layout, RandrCrtc wanted);
    bool name(const RandrLayout& layout, const RandrCrtc& wanted);
    void holdAgainstOthers(const RandrLayout& layout, const RandrCrtc& area);
    void freePointer(const RandrLayout& layout) const;
    RandrNumber modeFor(const RandrLayout& layout, RandrSize size);
    RandrNumber createMode(RandrSize size);

    RandrServer& mServer;
    MonitorJournal mJournal;
    RandrNumber mCrtc = 0; ///< that will feed the output
};

/// How a monitor would be made now; nothing where it cannot.
std::optional<ScreenWay> wayToAMonitor(const RandrServer& server, const RandrLayout& layout);

/// Switches a monitor off as its journal says and takes the journal away. What others changed
/// since then stays. True when nothing is left to undo.
bool undoMonitor(RandrServer& server);
/// The same for a monitor whose maker has gone; one that has an owner is left alone.
bool undoAbandonedMonitor(RandrServer& server);

} // namespace farview
