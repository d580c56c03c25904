#pragma once

#include "Common/Rules/FilledText.h"
#include "Common/Rules/PairingReport.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/RunLoop.h"

#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// What came of a request, for the command line.
struct Outcome {
    bool isDone = false; ///< as asked
    std::string text;    ///< in the user's language; what is foreign in it is printable
};

/// Answers the screen server's question whether a device shows the same digits, as the user does in
/// the panel, and hears what comes of it. Made with `std::make_shared`; its end breaks it off. Main
/// thread only.
class PairingAnswer final : public std::enable_shared_from_this<PairingAnswer>
{
public:
    enum class Answer { confirm, refuse };
    using Ended = std::function<void(const Outcome&)>;

    /// How long the server may take to answer.
    static constexpr Duration limit{5.0};
    /// How long it may take to tell the rest.
    static constexpr Duration settling{1.0};

    /// `platform` outlives it.
    PairingAnswer(Platform& platform, Localize localized)
        : mPlatform(platform), mLocalized(std::move(localized))
    {
    }

    /// Begins, once. Answers only when these `kPairingDigits` digits are in question. `ended` is
    /// called once, on a later turn.
    void start(Answer answer, const std::string& digits, Ended ended);

private:
    void observe(const char* name, NotificationHandler handler);
    void endAfter(Duration delay, const Outcome& outcome);
    void heardOfConnection();
    void heard(const PairingReport& report);
    void answer();
    void conclude(const PairingReport& report);
    void connected(const Notification& report);
    bool isInQuestion(const PairingReport& report) const;
    Outcome refused() const;
    Outcome notAsked(const PairingReport& report) const;
    std::string told(PairingReport report) const;
    void end(const Outcome& outcome);

    Platform& mPlatform;
    Localize mLocalized;
    Answer mAnswer = Answer::refuse;
    std::string mDigits;
    Ended mEnded;
    bool mHasAnswered = false;
    std::weak_ptr<Timer> mEnding;
};

} // namespace farview
