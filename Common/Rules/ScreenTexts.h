#pragma once

#include "Common/Rules/FilledText.h"
#include "Common/Rules/ScreenPlacement.h"
#include "Common/Rules/ScreenReport.h"
#include "Platform/Types/WindowKeeping.h"

#include <string>

namespace farview
{

/// Why a device has no picture. The texts are the English ones, the keys of their translations.
struct ObstacleTexts {
    const char* trouble;
    const char* remedy;  ///< what to do about it
    const char* name;    ///< for programs; never translated, never changed
    bool diagnosisHelps; ///< whether the diagnosis can tell more
};

const ObstacleTexts& obstacleTexts(ScreenObstacle obstacle);

/// Where a monitor is, in words: "to the right of your main display".
std::string screenPlace(ScreenSide side, const Localize& localized);

/// What became of the monitor for a connected device, in a line: "1920 × 1200 at 60 Hz, to the
/// right of your main display", or why there is or would be none; empty when one is possible.
std::string screenSentence(const ScreenReport& report, const Localize& localized);

/// Its size alone: "1920 × 1200".
std::string screenSize(const ScreenReport& report, const Localize& localized);

/// What the user may want to know or do beside that, a line for each: the remedy, that `wantsHiDPI`
/// is in vain, what the desktop lacks. Empty when there is nothing.
std::string screenAdvice(const ScreenReport& report, bool wantsHiDPI, const Localize& localized);

/// Why it does not matter whether the user wants windows to be moved back. Empty where it does.
std::string windowsHint(WindowKeeping windows);

} // namespace farview
