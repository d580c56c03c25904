#pragma once

#include "Applications/Doctor/Finding.h"

#include <string>
#include <vector>

namespace farview
{

/// Fails the test unless the German catalogue has that text, with the same number of places for
/// values.
void expectTranslated(const std::string& text);

/// The findings' names, in their order. Fails the test when a text or an advice is not translated,
/// or has more places than values.
std::vector<std::string> names(const Findings& findings);

/// Those of the findings that are not in order.
std::vector<std::string> troubles(const Findings& findings);

} // namespace farview
