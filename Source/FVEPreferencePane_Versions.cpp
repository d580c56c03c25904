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

} // namespace

std::optional<std::string> FVEPreferencePane::infoText(const char* key) const
{
    return textFor(mBundle.get(), key);
}

std::optional<std::string> FVEPreferencePane::applicationVersion(const OptionalURL& application)
{
    const std::string path = application ? application->path() : std::string{};
    return textFor(mPlatform.bundles->bundleWithPath(path).get(), "CFBundleVersionString");
}

std::optional<std::string> FVEPreferencePane::extensionVersion(const char* name)
{
    const std::string path = std::string("/System/Library/Extensions/") + name + ".kext";
    const auto bundle = mPlatform.bundles->bundleWithPath(mPlatform.searchPaths->located(path));
    return textFor(bundle.get(), "CFBundleVersion");
}

void FVEPreferencePane::determineComponenVersionNumber()
{
    const auto toolTip = farview::versionToolTip({
        {localized("MenuExtra"), applicationVersion(statusItemApplication())},
        {localized("Server"), applicationVersion(screenServerApplication())},
        {localized("VideoCard Kext"), extensionVersion(kFVEVideoCardKext)},
        {localized("FrameBuffer Kext"), extensionVersion(kFVEFrameBufferKext)},
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
