#pragma once

#include "Platform/Desktop/Screens/X11/MonitorJournal.h"
#include "Platform/VirtualScreens.h"

#include <optional>
#include <vector>

namespace farview
{

/// An additional monitor of an X server: an output that nothing is plugged into, switched on with a
/// mode of our own; where there is none, a part of the screen that only has a name, if the window
/// manager goes by that. Every change stands in the journal before it is made. What the user's own
/// outputs and our other monitors show never changes. One thread; waits for the server.
class VirtualMonitor
{
public:
    /// Whose connection will own the journal.
    explicit VirtualMonitor(RandrServer& server) : mServer(server) {}
    /// Leaves nothing changed.
    ~VirtualMonitor();
    VirtualMonitor(const VirtualMonitor&) = delete;
    VirtualMonitor& operator=(const VirtualMonitor&) = delete;

    /// Once: switches it on, to the right of everything; what was in the way, or nothing.
    std::optional<ScreenObstacle> make(int width, int height);
    /// While it is on. Where there is no room for it, to the right of everything. False when the
    /// server does not give that.
    bool resize(int width, int height);
    /// While it is on. False when others are there.
    bool place(PixelPoint corner);
    /// Nothing once somebody switched it off, or the server has gone.
    std::optional<ScreenGeometry> geometry();

private:
    std::optional<ScreenObstacle> claim(const RandrLayout& layout);
    void choose(const RandrLayout& layout, const std::vector<MonitorJournal>& journals);
    std::optional<ScreenObstacle> begin(const RandrLayout& layout, int width, int height);
    std::optional<RandrCrtc> area(const RandrLayout& layout) const;
    std::vector<PixelRect> others(const RandrLayout& layout) const;
    bool arrange(const RandrLayout& layout, const RandrCrtc& wanted);
    bool setSize(RandrSize size);
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

/// How a monitor would be made now, or why not.
ScreenAvailability wayToAMonitor(const RandrServer& server, const RandrLayout& layout);

} // namespace farview
