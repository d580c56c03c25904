#pragma once

#include <string>
#include <string_view>

namespace farview
{

/// What release notes say, without their markup: paragraphs, list items and line breaks become
/// lines, tags go, the usual character references are resolved, and so goes everything that could
/// change how the text around it is shown. A text without markup keeps its lines. At most 16,384
/// bytes; where more is left out, it ends with an ellipsis. `notes` is UTF-8.
std::string plainNotes(std::string_view notes);

} // namespace farview
