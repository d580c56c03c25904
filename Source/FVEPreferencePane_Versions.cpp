#include "Source/FVEPreferencePane.h"

#include "Platform/Bundle.h"

namespace
{

constexpr const char* buildNumber = "15644";
constexpr const char* noVersion = "(null)";

} // namespace

void FVEPreferencePane::determineComponenVersionNumber()
{
    const auto value =
        mBundle ? mBundle->objectForInfoDictionaryKey("CFBundleVersion") : std::nullopt;
    const auto* version = value ? value->get<std::string>() : nullptr;
    versionNumberLabel()->setStringValue((version ? *version : noVersion) + " (" + buildNumber +
                                         ")");
}

bool FVEPreferencePane::needsWarningMessageFor9400_9600_And_LionProblem() { return false; }
