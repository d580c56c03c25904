#include "Applications/Device/PairingConsole.h"

#include "Common/Rules/PairingReport.h"

#include <QTimer>

#include <array>
#include <cerrno>
#include <chrono>
#include <unistd.h>
#include <utility>

namespace farview
{

namespace
{

constexpr std::chrono::seconds beforeLookingAgain{1};

/// Whoever reads from a terminal in the background is stopped.
bool mayRead(int input)
{
    const pid_t foreground = ::tcgetpgrp(input);
    return foreground < 0 || foreground == ::getpgrp();
}

} // namespace

PairingConsole::PairingConsole(int input, Actions actions)
    : mActions(std::move(actions)), mNotifier(input, QSocketNotifier::Read)
{
    QObject::connect(&mNotifier, &QSocketNotifier::activated, &mNotifier, [this] { read(); });
    listen();
}

void PairingConsole::showStatus(const DeviceStatus& status)
{
    const auto before = std::exchange(mAsked, status.toConfirm);
    if (mAsked == before)
        return;
    listen();
    if (!mAsked)
        return;
    if (!before || before->digits != mAsked->digits) {
        mLine.clear();
        mActions.say("Digits: " + groupedDigits(mAsked->digits));
    }
    mActions.say(mAsked->isConfirmedHere
                     ? "Confirm them at the computer at " + mAsked->address
                     : "If the computer at " + mAsked->address +
                           " shows the same, type them here; if not, type \"no\". Elsewhere: "
                           "farview-device --accept " +
                           mAsked->digits);
}

void PairingConsole::listen() { mNotifier.setEnabled(mAsked && !mHasEnded); }

void PairingConsole::read()
{
    const auto input = static_cast<int>(mNotifier.socket());
    if (!mayRead(input)) {
        mNotifier.setEnabled(false);
        QTimer::singleShot(beforeLookingAgain, &mNotifier, [this] { listen(); });
        return;
    }
    std::array<char, 256> letters{};
    const ssize_t count = ::read(input, letters.data(), letters.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    mHasEnded = count <= 0;
    listen();
    for (ssize_t index = 0; index < count; ++index)
        take(letters[static_cast<std::size_t>(index)]);
}

void PairingConsole::take(char letter)
{
    if (letter == '\n')
        use(std::exchange(mLine, {}));
    else if (mLine.size() <= longestLine)
        mLine += letter;
}

void PairingConsole::use(const std::string& line)
{
    const std::string answer = line.size() > longestLine ? "" : withoutBlanks(line);
    if (!mAsked)
        return;
    if (answer == "no")
        mActions.refuse();
    else if (answer != mAsked->digits || !mActions.accept(answer))
        mActions.say("Type the six digits if the computer shows the same, \"no\" if not");
}

} // namespace farview
