#include "Common/NSApplication_Additions.h"

#include "Platform/Platform.h"
#include "Platform/SystemVersion.h"

using farview::SystemVersionQuery;

namespace
{

struct Version {
    std::int32_t major = 10;
    std::int32_t minor = 0;
    std::int32_t bugFix = 0;
};

/// The last packed answer that cannot tell apart what the three single questions can.
constexpr std::int32_t lastPackedOnly = 0x103F;

Version versionFromDecimal(std::int32_t packed)
{
    const auto digit = [packed](int place) { return packed >> (4 * place) & 0xF; };
    return {digit(3) * 10 + digit(2), digit(1), digit(0)};
}

Version systemVersion(farview::SystemVersion& system)
{
    Version version;
    const auto packed = system.gestalt(SystemVersionQuery::packed);
    if (!packed)
        return version;
    if (*packed <= lastPackedOnly)
        return versionFromDecimal(*packed);
    version.major = system.gestalt(SystemVersionQuery::major).value_or(version.major);
    version.minor = system.gestalt(SystemVersionQuery::minor).value_or(version.minor);
    version.bugFix = system.gestalt(SystemVersionQuery::bugFix).value_or(version.bugFix);
    return version;
}

} // namespace

std::uint32_t BCDSystemVersionFunction()
{
    const Version version = systemVersion(*farview::Platform::current().systemVersion);
    const auto byte = [](std::int32_t number) { return static_cast<std::uint32_t>(number) & 0xFF; };
    return byte(version.major) << 16 | byte(version.minor) << 8 | byte(version.bugFix);
}

std::uint32_t BCDSystemVersion() { return BCDSystemVersionFunction(); }
