#pragma once

#include "Common/Rules/FilledText.h"
#include "Common/Rules/PairingReport.h"

#include <string>

namespace farview
{

/// What a report about a device's key says, and how the user may answer. The texts are the English
/// ones, the keys of their translations; what is not there is "".
struct PairingTexts {
    const char* sentence; ///< "%1$@" stands for the device, "%2$@" for the digits
    const char* remedy;   ///< what to do, or what to be sure of
    const char* yes;      ///< the title of the answer that goes on; never a default button
    const char* no;       ///< the title of the answer that ends it
};

const PairingTexts& pairingTexts(PairingReport::State state);

/// The digits in two groups as they are shown: on one line, and in a text that is written from
/// right to left the first group on the left, too.
std::string shownDigits(const std::string& digits);

/// The sentence with the device's name, which is foreign and no markup, and the digits as they are
/// shown.
std::string pairingSentence(const PairingReport& report, const Localize& localized);

} // namespace farview
