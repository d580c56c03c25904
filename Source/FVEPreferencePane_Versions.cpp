#include "Source/FVEPreferencePane.h"

#include "Common/FVEConstants.h"
#include "Common/NSApplication_Additions.h"
#include "Common/Registry/QLNRegistryExplorer.h"
#include "Common/Rules/VersionText.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"
#include "Platform/SearchPaths.h"

#include <algorithm>

using farview::PropertyList;

namespace
{

constexpr std::uint32_t firstSystemWithTheProblem = 0x000A0700;

std::optional<std::string> textFor(const farview::Bundle* bundle, const char* key)
{
    const auto value = bundle ? bundle->objectForInfoDictionaryKey(key) : std::nullopt;
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> applicationVersion(farview::Platform& platform,
                                              const std::optional<farview::URL>& application)
{
    const std::string path = application ? application->path() : std::string{};
    return textFor(platform.bundles->bundleWithPath(path).get(), "CFBundleVersionString");
}

std::optional<std::string> extensionVersion(farview::Platform& platform, const char* name)
{
    const std::string path = std::string("/System/Library/Extensions/") + name + ".kext";
    const auto bundle = platform.bundles->bundleWithPath(platform.searchPaths->located(path));
    return textFor(bundle.get(), "CFBundleVersion");
}

} // namespace

std::optional<std::string> FVEPreferencePane::infoText(const char* key) const
{
    return textFor(mBundle.get(), key);
}

void FVEPreferencePane::determineComponenVersionNumber()
{
    const auto toolTip = farview::versionToolTip({
        {localized("MenuExtra"), applicationVersion(mPlatform, statusItemApplication())},
        {localized("Server"), applicationVersion(mPlatform, screenServerApplication())},
        {localized("VideoCard Kext"), extensionVersion(mPlatform, kFVEVideoCardKext)},
        {localized("FrameBuffer Kext"), extensionVersion(mPlatform, kFVEFrameBufferKext)},
    });
    versionNumberLabel()->setStringValue(farview::versionText(infoText("CFBundleVersion")));
    versionNumberLabel()->setToolTip(toolTip);
}

bool FVEPreferencePane::needsWarningMessageFor9400_9600_And_LionProblem()
{
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOService");
    explorer.buildFullRegistryDictionary();
    const PropertyList model = QLNRegistryExplorer::computerModel();
    const auto value =
        mBundle ? mBundle->objectForInfoDictionaryKey("incompatibleModels") : std::nullopt;
    const auto* models = value ? value->get<PropertyList::Array>() : nullptr;
    const bool isListed =
        models && std::find(models->begin(), models->end(), model) != models->end();
    return isListed && BCDSystemVersionFunction() >= firstSystemWithTheProblem;
}
