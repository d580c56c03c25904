#pragma once

#include "Applications/Doctor/Finding.h"

#include <functional>
#include <string>

namespace farview
{

/// Whether the main job can be done: finding a device, connecting to it, staying connected.
enum class Verdict {
    works,   ///< nothing was found that is in the way
    limited, ///< it can, but something beside it does not work
    blocked, ///< something is in the way
    unknown, ///< the examination did not come to its end, and found nothing that is in the way
};

/// What an examination came to.
struct Report {
    std::string version; ///< of the program that examined
    std::string date;    ///< when it began: "2026-03-01T12:00:00Z"
    /// False when time was over before everything was answered.
    bool isComplete = false;
    Findings findings{};
};

Verdict verdictOf(const Report& report);
/// "works", "limited", "blocked", "unknown".
const char* nameOf(Verdict verdict);
/// The verdict in words: a key of the catalogues.
const char* titleOf(Verdict verdict);
/// What the command ends with: 0 works or limited, 1 blocked, 3 unknown.
int exitStatusFor(Verdict verdict);

/// A text in the user's language.
using Translate = std::function<std::string(const std::string& text)>;

/// A finding for people, as the report for them shows it.
std::string renderedText(const Finding& finding, const Translate& translate);
/// The report for people: lines of plain text, by area. Whatever is no visible character in the
/// values is spelled out.
std::string renderedText(const Report& report, const Translate& translate);
/// The report for programs: one JSON object, see docs/doctor.md. Its texts are English whatever the
/// user's language.
std::string renderedJSON(const Report& report);

} // namespace farview
