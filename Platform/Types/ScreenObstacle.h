#pragma once

namespace farview
{

/// Why there can be no additional monitor here, or why there is none any more.
enum class ScreenObstacle {
    noDesktop,       ///< no display, or of a kind that nothing here can ask
    noSpareOutput,   ///< no output without a plug is left, and the window manager needs one
    protocolMissing, ///< the desktop lacks what it would be asked with
    notPermitted,    ///< the desktop could, but does not let this program
    locked,          ///< not while the screen is locked; afterwards it can be asked again
    inUse,           ///< another Farview has its monitor on this display
    tooLarge,        ///< the desktop cannot become that large
    takenAway,       ///< somebody else switched the monitor off
    gone,            ///< the desktop has ended
    declined,        ///< the desktop asked the user, who said no
    failed,          ///< refused without a reason
};

} // namespace farview
