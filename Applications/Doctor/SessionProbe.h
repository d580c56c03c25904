#pragma once

#include <functional>
#include <memory>

namespace farview
{

struct Platform;
class SessionBus;

/// What the session's programs say of themselves over the bus.
struct SessionAnswers {
    bool hasBus = false;
    bool hasServer = false; ///< the screen server can be heard and told to quit
    bool hasStatusItem = false;
    bool letsWindowsBeMoved = false;
    /// Mutter's screen casts, which can record a virtual monitor: the interface's version, 0 where
    /// there is none.
    int mutterScreenCast = 0;
    /// The portal's screen casts: its bits for monitors (1), windows (2), virtual monitors (4).
    unsigned portalSourceTypes = 0;
};

/// Asks everybody at once. `then` is called once, on a later turn, when all have answered or a
/// second has passed with each; never when `asker` is gone. Nobody is started to be asked.
void askForSessionAnswers(Platform& platform, SessionBus& bus, std::weak_ptr<void> asker,
                          std::function<void(const SessionAnswers&)> then);

} // namespace farview
