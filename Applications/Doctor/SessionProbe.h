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
};

/// Asks everybody at once. `then` is called once, on a later turn, when all have answered or a
/// second has passed with each; never when `asker` is gone. Nobody is started to be asked.
void askForSessionAnswers(Platform& platform, SessionBus& bus, std::weak_ptr<void> asker,
                          std::function<void(const SessionAnswers&)> then);

} // namespace farview
