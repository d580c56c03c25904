#pragma once

#include "Platform/Posix/Environment.h"

#include <string>
#include <vector>

namespace farview
{

/// The user's languages, the preferred one first, as names of catalogues: "de_AT.UTF-8" gives
/// "de_AT", "de-AT" and "de". From LC_ALL, LC_MESSAGES or LANG, the first that is set; LANGUAGE
/// may list several instead, unless the others ask for the plain "C". The texts themselves are
/// written in English, so the list always ends with "en", and nothing after it is ever asked.
std::vector<std::string> preferredLanguages(const Environment& environment);

} // namespace farview
