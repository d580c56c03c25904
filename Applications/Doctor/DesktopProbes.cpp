#include "Applications/Doctor/Probes.h"

#include "Applications/Doctor/SessionProbe.h"
#include "Platform/Desktop/Screens/X11/RandrConnection.h"
#include "Platform/Posix/Environment.h"

#include <QtGlobal>

#include <algorithm>
#include <chrono>
#include <utility>

namespace farview
{
namespace
{

constexpr unsigned virtualSources = 4;

Finding finding(Area area, Severity severity, const char* name, Sentence text,
                const char* advice = "")
{
    return {area, severity, name, std::move(text), {advice}};
}

/// In at most half a second: an X server may hang like anything else.
std::optional<X11Outputs> x11Outputs()
{
    using Layout = std::optional<RandrLayout>;
    const auto answer = RandrConnection::ask<Layout>(
        std::chrono::milliseconds(500), [](RandrConnection& server) { return server.layout(); });
    if (!answer || !*answer)
        return std::nullopt;
    const RandrLayout& layout = **answer;
    const auto isSpare = [](const RandrOutput& output) {
        return output.crtc == 0 && !output.crtcs.empty() && !output.modes.empty();
    };
    const auto& outputs = layout.outputs;
    return X11Outputs{onlineOutputs(layout).size(), static_cast<std::size_t>(std::count_if(
                                                        outputs.begin(), outputs.end(), isSpare))};
}

Finding aboutX11Outputs(const X11Outputs& outputs)
{
    const std::string online = std::to_string(outputs.online);
    if (outputs.spare == 0)
        return finding(Area::display, Severity::note, "x11-fixed",
                       {"The X server shows %@ outputs and has none to spare for a virtual "
                        "monitor.",
                        {online}});
    return finding(Area::display, Severity::ok, "x11-virtual",
                   {"The X server shows %@ outputs; %@ more could be virtual monitors.",
                    {online, std::to_string(outputs.spare)}});
}

Findings aboutVirtualMonitors(const DisplayFacts& facts)
{
    Findings findings;
    if (facts.mutterScreenCast > 0)
        findings.push_back(finding(Area::display, Severity::ok, "mutter-virtual",
                                   {"GNOME offers virtual monitors (screen casts, version %@).",
                                    {std::to_string(facts.mutterScreenCast)}}));
    if ((facts.portalSourceTypes & virtualSources) != 0)
        findings.push_back(finding(Area::display, Severity::ok, "portal-virtual",
                                   {"The desktop's portal offers virtual monitors."}));
    if (facts.hasSway)
        findings.push_back(
            finding(Area::display, Severity::ok, "sway-virtual", {"sway offers virtual outputs."}));
    if (facts.x11Outputs)
        findings.push_back(aboutX11Outputs(*facts.x11Outputs));
    if (findings.empty())
        findings.push_back(finding(Area::display, Severity::note, "virtual-unknown",
                                   {"It could not be found out whether this desktop offers virtual "
                                    "monitors."}));
    return findings;
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

DisplayFacts displayFacts(const SessionAnswers& session)
{
    DisplayFacts facts;
    facts.x11 = qEnvironmentVariable("DISPLAY").toStdString();
    facts.wayland = qEnvironmentVariable("WAYLAND_DISPLAY").toStdString();
    facts.desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString();
    facts.hasSway = !qEnvironmentVariableIsEmpty("SWAYSOCK");
    if (isX11Session())
        facts.x11Outputs = x11Outputs();
    facts.mutterScreenCast = session.mutterScreenCast;
    facts.portalSourceTypes = session.portalSourceTypes;
    return facts;
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
    for (auto& each : aboutVirtualMonitors(facts))
        findings.push_back(std::move(each));
    return findings;
}

} // namespace farview
