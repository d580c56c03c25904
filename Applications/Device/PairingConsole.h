#pragma once

#include "Applications/Device/DeviceServer.h"

#include <QSocketNotifier>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// Asks by lines of text whether a computer may use a device that has no window, and reads the
/// answer. Reads only while there is a question, never waits, and takes the end of what there is to
/// read for no answer. Main thread only; the application object must exist.
class PairingConsole
{
public:
    struct Actions {
        std::function<bool(const std::string& digits)>
            accept; ///< false when they are not asked for
        std::function<void()> refuse;
        std::function<void(const std::string& line)> say; ///< to the user, without a line break
    };

    /// Longer lines are no answer.
    static constexpr std::size_t longestLine = 64;

    /// `input` stays open as long as the object lives, and is not closed by it.
    PairingConsole(int input, Actions actions);

    void showStatus(const DeviceStatus& status);

private:
    void read();
    void take(char letter);
    void use(const std::string& line);
    void listen();

    Actions mActions;
    std::optional<ComputerToConfirm> mAsked;
    std::string mLine; ///< as far as it came; one byte longer than the longest when it is too long
    bool mHasEnded = false;
    QSocketNotifier mNotifier;
};

} // namespace farview
