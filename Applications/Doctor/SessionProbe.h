#pragma once

#include <functional>
#include <memory>
#include <string>

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
/// Asks the desktop which one it is, as in "KWin 5.27.5". `then` is called once, on a later turn,
/// unless `asker` is gone by then; with an empty text where nobody knows.
void askForDesktopVersion(SessionBus& bus, std::weak_ptr<void> asker,
                          std::function<void(const std::string&)> then);

} // namespace farview
