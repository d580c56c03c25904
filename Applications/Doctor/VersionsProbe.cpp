#include "Applications/Doctor/Probes.h"

#include "Common/FVEConstants.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"

#include <QString>
#include <QSysInfo>

namespace farview
{
namespace
{

constexpr const char* reinstallAdvice = "Install Farview again.";

std::string textFrom(const Bundle& bundle, const char* key)
{
    const auto value = bundle.objectForInfoDictionaryKey(key);
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? *text : std::string();
}

std::optional<Piece> application(Platform& platform, const Bundle* pane, const char* name)
{
    const auto path = pane ? pane->pathForResource(name, "app") : std::nullopt;
    const auto bundle = path ? platform.bundles->bundleWithPath(*path) : nullptr;
    if (!bundle)
        return std::nullopt;
    return Piece{*path, textFrom(*bundle, "CFBundleVersionString")};
}

Finding found(const char* name, const char* text, const Piece& piece)
{
    return {Area::versions,
            Severity::ok,
            name,
            {text, {piece.version, piece.path}},
            {},
            {{"version", piece.version}, {"path", piece.path}}};
}

Finding missing(Severity severity, const char* name, const char* text)
{
    return {Area::versions, severity, name, {text}, {reinstallAdvice}};
}

Finding systemFinding(const VersionFacts& facts)
{
    return {Area::versions,
            Severity::ok,
            "system",
            {"farview-doctor %@ on %@, kernel %@, Qt %@",
             {facts.doctor, facts.system, facts.kernel, facts.toolkit}},
            {},
            {{"doctor", facts.doctor},
             {"system", facts.system},
             {"kernel", facts.kernel},
             {"qt", facts.toolkit}}};
}

bool differ(const VersionFacts& facts)
{
    const auto differs = [&](const std::optional<Piece>& piece) {
        return piece && piece->version != facts.server.value_or(*piece).version;
    };
    return differs(facts.statusItem);
}

} // namespace

VersionFacts versionFacts(Platform& platform, const Bundle* pane)
{
    VersionFacts facts;
    facts.doctor = FARVIEW_VERSION;
    facts.system = QSysInfo::prettyProductName().toStdString();
    facts.kernel = QSysInfo::kernelVersion().toStdString();
    facts.toolkit = qVersion();
    if (pane)
        facts.pane = Piece{pane->bundlePath(), textFrom(*pane, "CFBundleVersion")};
    facts.server = application(platform, pane, kFVEScreenServerApplicationName);
    facts.statusItem = application(platform, pane, kFVEMenuExtraApplicationName);
    return facts;
}

Findings findingsAboutVersions(const VersionFacts& facts)
{
    Findings findings{systemFinding(facts)};
    if (!facts.pane) {
        findings.push_back(
            missing(Severity::problem, "pane-missing", "The panel is not installed."));
        return findings;
    }
    findings.push_back(found("pane", "Panel: version %@, in %@", *facts.pane));
    findings.push_back(facts.server
                           ? found("server", "Screen server: version %@, in %@", *facts.server)
                           : missing(Severity::problem, "server-missing",
                                     "The panel's bundle holds no screen server."));
    findings.push_back(
        facts.statusItem ? found("status-item", "Status icon: version %@, in %@", *facts.statusItem)
                         : missing(Severity::note, "status-item-missing",
                                   "The panel's bundle holds no status icon."));
    if (differ(facts))
        findings.push_back(missing(Severity::note, "mixed",
                                   "Screen server and status icon are of different versions."));
    return findings;
}

} // namespace farview
