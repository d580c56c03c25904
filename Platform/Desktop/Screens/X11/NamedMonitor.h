#pragma once

#include "Platform/Desktop/Screens/X11/RandrServer.h"
#include "Platform/Types/PixelRect.h"

#include <optional>
#include <string>

namespace farview
{

/// Whether windows are placed on a monitor that the X server was only told of by that window
/// manager. Others go by the outputs alone: they would lose windows there.
bool followsNamedMonitors(const std::string& windowManager);
/// The name of the one that runs; empty when none does.
std::string windowManagerName(const RandrServer& server);

/// Tells the server of a monitor that no output shows, or that it is elsewhere now. False when it
/// refuses.
bool setNamedMonitor(const RandrServer& server, const std::string& name, const PixelRect& area);
void deleteNamedMonitor(const RandrServer& server, const std::string& name);
/// Where it is; nothing when there is none.
std::optional<PixelRect> namedMonitor(const RandrServer& server, const std::string& name);

/// The area over which a crtc pans; empty when it does not.
PixelRect panningOf(const RandrServer& server, RandrNumber crtc);
/// The pointer may leave what crtcs show only while one of them pans. One that pans over what it
/// shows never moves.
void letPointerOut(const RandrServer& server, const RandrCrtc& crtc);
void keepPointerIn(const RandrServer& server, RandrNumber crtc);

} // namespace farview
