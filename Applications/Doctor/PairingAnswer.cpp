#include "Applications/Doctor/PairingAnswer.h"

#include "Applications/Doctor/Sentence.h"
#include "Common/ConnectionFollower.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/PairingTexts.h"

#include <utility>

namespace farview
{

using State = PairingReport::State;

void PairingAnswer::start(Answer answer, const std::string& digits, Ended ended)
{
    mAnswer = answer;
    mDigits = digits;
    mEnded = std::move(ended);
    observe(kServerPairingDidChange, [this](const Notification& report) {
        heard(pairingReport(report.text(kPairingReportKey)));
    });
    observe(kServerConnectedToDevice, [this](const Notification& report) { connected(report); });
    for (const char* name : {kQueryResultForConnectedHost, kServerDisconnectedFromDevice})
        observe(name, [this](const Notification&) { heardOfConnection(); });
    endAfter(limit, {false, mLocalized("The screen server does not answer.")});
    ConnectionFollower(mPlatform).query();
}

void PairingAnswer::observe(const char* name, NotificationHandler handler)
{
    mPlatform.distributedNotificationCenter->addObserver(weak_from_this(), std::move(handler), name,
                                                         "");
}

/// Unless something is heard before.
void PairingAnswer::endAfter(Duration delay, const Outcome& outcome)
{
    if (const auto earlier = mEnding.lock())
        earlier->invalidate();
    mEnding = mPlatform.runLoop->scheduledTimer(delay, false, weak_from_this(),
                                                [this, outcome] { end(outcome); });
}

/// The server tells of the connection first, and then what is in question.
void PairingAnswer::heardOfConnection()
{
    if (mEnded && !mHasAnswered)
        endAfter(settling, notAsked({}));
}

void PairingAnswer::heard(const PairingReport& report)
{
    if (!mEnded)
        return;
    if (mHasAnswered) {
        if (!isInQuestion(report))
            conclude(report);
    } else if (isInQuestion(report)) {
        answer();
    } else if (report.digits == mDigits) {
        conclude(report);
    } else {
        end(notAsked(report));
    }
}

/// Who has said yes can still say no.
bool PairingAnswer::isInQuestion(const PairingReport& report) const
{
    return report.digits == mDigits &&
           (report.state == State::comparing || mAnswer == Answer::refuse);
}

void PairingAnswer::answer()
{
    mHasAnswered = true;
    const bool confirms = mAnswer == Answer::confirm;
    ConnectionFollower(mPlatform).command(confirms ? kConfirmDevice : kRefuseDevice,
                                          {{kDigitsKey, mDigits}});
    endAfter(limit, {false, mLocalized("The screen server does not answer.")});
}

void PairingAnswer::conclude(const PairingReport& report)
{
    // In both of these the connection may be about to come: the device's user was quicker.
    if (report.state == State::confirmed)
        endAfter(settling, {true, told(report)});
    else if (report.state == State::none)
        endAfter(settling, mAnswer == Answer::confirm ? notAsked(report) : refused());
    else
        end({false, told(report)});
}

Outcome PairingAnswer::refused() const
{
    return {true, mLocalized("The device is not confirmed. No picture was sent.")};
}

void PairingAnswer::connected(const Notification& report)
{
    const auto* device = report.text(kDeviceNameKey);
    if (mHasAnswered && device)
        end({mAnswer == Answer::confirm,
             filledText(mLocalized("Connected to %@"), shownValue(*device))});
}

Outcome PairingAnswer::notAsked(const PairingReport& report) const
{
    const auto text =
        filledText(mLocalized("No device asks about %@ now."), groupedDigits(mDigits));
    return {false, report.state == State::none ? text : text + "\n" + told(report)};
}

std::string PairingAnswer::told(PairingReport report) const
{
    report.device = shownValue(report.device);
    return pairingSentence(report, mLocalized) + "\n" +
           mLocalized(pairingTexts(report.state).remedy);
}

void PairingAnswer::end(const Outcome& outcome)
{
    if (const auto ended = std::exchange(mEnded, nullptr))
        ended(outcome);
}

} // namespace farview
