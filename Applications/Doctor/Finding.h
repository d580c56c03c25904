#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// What was examined, in the order of the report.
enum class Area {
    versions,
    bus,
    discovery,
    driver,
    processes,
    preferences,
    accessibility,
    polkit,
    display,
    screen,
    pairing,
    devices,
};

enum class Severity {
    ok,
    note,    ///< worth knowing; nothing needs to be done
    problem, ///< something does not work
};

/// A sentence: an English text, which is its key in the catalogues, with a value in the place of
/// each "%@". The values may be foreign; whoever shows them makes them printable.
struct Sentence {
    std::string key;
    std::vector<std::string> values{};

    bool operator==(const Sentence&) const = default;
};

/// One thing that was found out.
struct Finding {
    Area area;
    Severity severity;
    /// Names the kind of finding within its area, for programs; never translated, never changed.
    std::string name;
    Sentence text;
    /// What to do; empty when there is nothing.
    Sentence advice{};
    /// The values behind the text, by fixed names.
    std::map<std::string, std::string> details{};

    bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

/// The area's fixed name, as it stands in a JSON report: "versions".
const char* nameOf(Area area);
/// "ok", "note", "problem".
const char* nameOf(Severity severity);
/// The area as people call it: a key of the catalogues.
const char* titleOf(Area area);
/// "bus.missing": the area's name and the finding's.
std::string identifierOf(const Finding& finding);

} // namespace farview
