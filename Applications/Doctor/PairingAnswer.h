#pragma once

#include "Applications/Doctor/ServerRequest.h"
#include "Common/Rules/PairingReport.h"

#include <string>

namespace farview
{

/// Answers the screen server's question whether a device shows the same digits, as the user does in
/// the panel, and hears what comes of it.
class PairingAnswer final : public ServerRequest
{
public:
    enum class Answer { confirm, refuse };

    /// How long it may take to tell the rest.
    static constexpr Duration settling{1.0};

    /// `platform` outlives it.
    PairingAnswer(Platform& platform, Localize localized)
        : ServerRequest(platform, std::move(localized))
    {
    }

    /// Begins, once. Answers only when these `kPairingDigits` digits are in question. `ended` is
    /// called once, on a later turn.
    void start(Answer answer, const std::string& digits, Ended ended);

private:
    void heardOfConnection();
    void heard(const PairingReport& report);
    void answer();
    void conclude(const PairingReport& report);
    void connected(const Notification& report);
    bool isInQuestion(const PairingReport& report) const;
    Outcome refused() const;
    Outcome notAsked(const PairingReport& report) const;
    std::string told(PairingReport report) const;

    Answer mAnswer = Answer::refuse;
    std::string mDigits;
    bool mHasAnswered = false;
};

} // namespace farview
