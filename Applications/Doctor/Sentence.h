#pragma once

#include "Applications/Doctor/Finding.h"
#include "Applications/Doctor/Report.h"

#include <string>
#include <string_view>

namespace farview
{

/// A foreign text as it may be shown: on one line, at most 300 bytes, everything that is no visible
/// character spelled out.
std::string shownValue(std::string_view value);

/// The sentence in that language, its values made printable.
std::string shownSentence(const Sentence& sentence, const Translate& translate);

} // namespace farview
