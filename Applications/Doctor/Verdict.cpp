#include "Applications/Doctor/Report.h"

#include <algorithm>
#include <set>

namespace farview
{
namespace
{

// Without these no device can be used, whichever it is.
const std::set<std::string> obstacles = {
    "versions.pane-missing", "versions.server-missing", "bus.session-missing",
    "bus.session-refused",   "bus.session-silent",      "bus.session-foreign",
    "driver.missing",        "driver.unusable",         "processes.server-not-running",
    "processes.server-deaf", "pairing.key-unusable"};

// These hide devices; one that answers all the same was found in spite of them.
const std::set<std::string> obstaclesOfDiscovery = {
    "bus.system-silent", "discovery.refused", "discovery.unavailable", "discovery.loopback-only"};

bool is(const Finding& finding, const std::set<std::string>& set)
{
    return set.contains(identifierOf(finding));
}

bool answers(const Finding& finding) { return is(finding, {"devices.ready", "devices.in-use"}); }

/// Nothing can show a picture: no monitor can be added here.
bool isScreenInTrouble(const Finding& finding)
{
    return finding.area == Area::screen && finding.severity == Severity::problem;
}

/// A device that is there and cannot be used.
bool isDeviceInTrouble(const Finding& finding)
{
    return finding.area == Area::devices && finding.severity == Severity::problem;
}

template <typename Condition> bool any(const Findings& findings, Condition condition)
{
    return std::any_of(findings.begin(), findings.end(), condition);
}

bool isBlocked(const Findings& findings)
{
    const auto stands = [](const std::set<std::string>& set) {
        return [&set](const Finding& finding) { return is(finding, set); };
    };
    if (any(findings, stands(obstacles)) || any(findings, isScreenInTrouble))
        return true;
    return !any(findings, answers) &&
           (any(findings, stands(obstaclesOfDiscovery)) || any(findings, isDeviceInTrouble));
}

} // namespace

Verdict verdictOf(const Report& report)
{
    if (isBlocked(report.findings))
        return Verdict::blocked;
    if (!report.isComplete)
        return Verdict::unknown;
    const bool hasProblem = any(report.findings, [](const Finding& finding) {
        return finding.severity == Severity::problem;
    });
    return hasProblem ? Verdict::limited : Verdict::works;
}

const char* nameOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::works:
        return "works";
    case Verdict::limited:
        return "limited";
    case Verdict::blocked:
        return "blocked";
    case Verdict::unknown:
        break;
    }
    return "unknown";
}

const char* titleOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::works:
        return "Nothing is in the way of using a device as a screen.";
    case Verdict::limited:
        return "Devices can be used, but not everything works.";
    case Verdict::blocked:
        return "Devices cannot be used at the moment. The lines marked \"Problem\" say why.";
    case Verdict::unknown:
        break;
    }
    return "The diagnosis did not come to its end, so it cannot tell.";
}

int exitStatusFor(Verdict verdict)
{
    switch (verdict) {
    case Verdict::works:
    case Verdict::limited:
        return 0;
    case Verdict::blocked:
        return 1;
    case Verdict::unknown:
        break;
    }
    return 3;
}

} // namespace farview
