#include "Applications/Doctor/Probes.h"

#include <QtGlobal>

#include <utility>

namespace farview
{
namespace
{

Finding finding(Area area, Severity severity, const char* name, Sentence text,
                const char* advice = "")
{
    return {area, severity, name, std::move(text), {advice}};
}

} // namespace

Findings findingsAboutAccessibility(const AccessibilityFacts& facts)
{
    if (facts.isEnabled)
        return {finding(Area::accessibility, Severity::ok, "on",
                        {"The desktop lets Farview move windows."})};
    return {finding(Area::accessibility, Severity::note, "off",
                    {"The desktop does not let Farview move windows: they stay where they are "
                     "when a device's screen goes away."},
                    "Switch the desktop's accessibility on.")};
}

DisplayFacts displayFacts()
{
    DisplayFacts facts;
    facts.x11 = qEnvironmentVariable("DISPLAY").toStdString();
    facts.wayland = qEnvironmentVariable("WAYLAND_DISPLAY").toStdString();
    facts.desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString();
    return facts;
}

Findings findingsAboutDesktopVersion(const std::string& version)
{
    if (version.empty())
        return {};
    auto found =
        finding(Area::display, Severity::ok, "desktop-version", {"The desktop is %@.", {version}});
    found.details = {{"version", version}};
    return {found};
}

Findings findingsAboutDisplay(const DisplayFacts& facts)
{
    Findings findings;
    if (!facts.wayland.empty())
        findings.push_back(finding(Area::display, Severity::ok, "wayland",
                                   {"Wayland display %@ (%@)", {facts.wayland, facts.desktop}}));
    if (!facts.x11.empty())
        findings.push_back(finding(Area::display, Severity::ok, "x11",
                                   {"X11 display %@ (%@)", {facts.x11, facts.desktop}}));
    if (findings.empty())
        return {finding(Area::display, Severity::note, "none",
                        {"There is no display here: neither X11 nor Wayland."},
                        "Start the diagnosis in the desktop session to learn of its display.")};
    return findings;
}

} // namespace farview
