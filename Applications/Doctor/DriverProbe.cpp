#include "Applications/Doctor/Probes.h"

#include "Common/FVEConstants.h"
#include "Common/Registry/QLNRegistryExplorer.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/Registry/DriverExtensions.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

const std::string suffix = ".kext";

std::string versionOf(Platform& platform, const std::string& path)
{
    const auto bundle = platform.bundles->bundleWithPath(path);
    const auto value =
        bundle ? bundle->objectForInfoDictionaryKey("CFBundleVersion") : std::nullopt;
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? *text : std::string();
}

std::vector<ExtensionFact> extensionsIn(Platform& platform, const std::string& folder)
{
    std::vector<ExtensionFact> facts;
    for (const auto& name : namesInFolder(folder)) {
        if (!name.ends_with(suffix))
            continue;
        std::string path = folder;
        path.append("/").append(name);
        const auto bare = name.substr(0, name.size() - suffix.size());
        facts.push_back(
            {path, versionOf(platform, path), DriverExtensions({folder}).isUsable(bare)});
    }
    return facts;
}

bool isTheDriver(const ExtensionFact& extension)
{
    return extension.path.ends_with("/" + (kFVEKextName + suffix));
}

Finding missing(const DriverFacts& facts)
{
    const auto& all = facts.extensions;
    const auto there = std::find_if(all.begin(), all.end(), isTheDriver);
    if (there != all.end())
        return {Area::driver,
                Severity::problem,
                "unusable",
                {"The driver in %@ cannot be used.", {there->path}},
                {"Install Farview's driver again."},
                {{"path", there->path}}};
    const std::string folder = facts.folders.empty() ? "" : facts.folders.back();
    return {Area::driver,
            Severity::problem,
            "missing",
            {"The driver %@ is not installed.", {kFVEKextName}},
            {"Install Farview's driver again; it belongs into %@.", {folder}},
            {{"name", kFVEKextName}, {"folder", folder}}};
}

Finding aboutExtension(const ExtensionFact& extension)
{
    if (!extension.isUsable)
        return {Area::driver,
                Severity::note,
                "extension-unusable",
                {"The driver extension in %@ cannot be used.", {extension.path}},
                {"Install Farview's driver again."},
                {{"path", extension.path}}};
    return {
        Area::driver, Severity::ok,
        "extension",  {"Driver extension: version %@, in %@", {extension.version, extension.path}},
        {},           {{"version", extension.version}, {"path", extension.path}}};
}

} // namespace

DriverFacts driverFacts(Platform& platform, std::vector<std::string> folders)
{
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOService");
    DriverFacts facts;
    facts.isPublished = explorer.findNamedIORegistryService(kFVEKextName).has_value();
    for (const auto& folder : folders) {
        for (auto& each : extensionsIn(platform, folder))
            facts.extensions.push_back(std::move(each));
    }
    facts.folders = std::move(folders);
    return facts;
}

Findings findingsAboutDriver(const DriverFacts& facts)
{
    Findings findings;
    if (facts.isPublished)
        findings.push_back({Area::driver, Severity::ok, "published", {"The driver is installed."}});
    else
        findings.push_back(missing(facts));
    for (const auto& each : facts.extensions) {
        if (facts.isPublished || !isTheDriver(each))
            findings.push_back(aboutExtension(each));
    }
    return findings;
}

} // namespace farview
