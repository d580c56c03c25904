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
    observe(kServerPairingDidChange, [this](const Notification& report) {
        heard(pairingReport(report.text(kPairingReportKey)));
    });
    observe(kServerConnectedToDevice, [this](const Notification& report) { connected(report); });
    for (const char* name : {kQueryResultForConnectedHost, kServerDisconnectedFromDevice})
        observe(name, [this](const Notification&) { heardOfConnection(); });
    begin(std::move(ended));
}

/// The server tells of the connection first, and then what is in question.
void PairingAnswer::heardOfConnection()
{
    if (!isOver() && !mHasAnswered)
        endAfter(settling, notAsked({}));
}

void PairingAnswer::heard(const PairingReport& report)
{
    if (isOver())
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
    ConnectionFollower(platform())
        .command(confirms ? kConfirmDevice : kRefuseDevice, {{kDigitsKey, mDigits}});
    endUnlessAnswered();
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
    return {true, localized()("The device is not confirmed. No picture was sent.")};
}

void PairingAnswer::connected(const Notification& report)
{
    const auto* device = report.text(kDeviceNameKey);
    if (mHasAnswered && device)
        end({mAnswer == Answer::confirm,
             filledText(localized()("Connected to %@"), shownValue(*device))});
}

Outcome PairingAnswer::notAsked(const PairingReport& report) const
{
    const auto text =
        filledText(localized()("No device asks about %@ now."), groupedDigits(mDigits));
    return {false, report.state == State::none ? text : text + "\n" + told(report)};
}

std::string PairingAnswer::told(PairingReport report) const
{
    report.device = shownValue(report.device);
    return pairingSentence(report, localized()) + "\n" +
           localized()(pairingTexts(report.state).remedy);
}

} // namespace farview
