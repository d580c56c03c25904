#pragma once

#include "Platform/Types/UpdateStatus.h"

#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// What went wrong, in one sentence.
std::string updateTrouble(UpdateProblem problem);
/// What the user can do about it, or may be sure of; empty when there is nothing to say.
std::string updateRemedy(UpdateProblem problem);

/// How a look for updates ended, as one word to store; empty when it did not end.
std::string updateOutcome(const UpdateStatus& status);
/// That word as a sentence; empty for none.
std::string updateOutcomeText(const std::string& outcome);

/// A moment as the user's own clock and calendar tell it.
struct LocalTime {
    int year = 0;
    int month = 0; ///< 1 is January
    int day = 0;
    int hour = 0;
    int minute = 0;
};

/// A text, and what to put in the place of its "%@".
struct TextWithValue {
    std::string text;
    std::string value;

    bool operator==(const TextWithValue&) const = default;
};

/// When updates were looked for last.
TextWithValue lastUpdateCheckText(const std::optional<LocalTime>& last, const LocalTime& now);
/// What takes the place of that while the panel knows something fresher; else empty.
TextWithValue updateNews(const UpdateStatus& status);
/// What the button in the settings says then; empty: what it always says.
std::string updateButtonTitle(const UpdateStatus& status);

/// What the sheet about updates shows. Buttons without a title are not there.
struct UpdateSheetDisplay {
    TextWithValue headline;
    TextWithValue detail;
    std::string remedy{}; ///< below the detail
    bool showsNotes = false;
    bool isBusy = false;
    std::string firstButton{};  ///< what Return presses
    std::string secondButton{}; ///< what Escape presses
    bool canBeLeft = true;      ///< whether the buttons can be pressed

    bool operator==(const UpdateSheetDisplay&) const = default;
};

/// `ownVersion` is the version of the bundle in place.
UpdateSheetDisplay updateSheetDisplay(const UpdateStatus& status, const std::string& ownVersion);

/// "812 kB" or "12 MB".
std::string amountText(std::int64_t bytes);

} // namespace farview
