#include "Applications/PrivilegedHelpers/DisplayResolutions.h"

#include "Common/FVEConstants.h"
#include "Platform/Posix/Settings/PreferencesMerge.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace
{

/// As sysexits.h has it.
constexpr int wrongUse = 64;
constexpr std::chrono::seconds patience{5};

/// Without these three, the first file that is opened would take the place of standard error.
bool hasStandardStreams()
{
    int descriptor = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::dup(descriptor);
    return descriptor > STDERR_FILENO && ::close(descriptor) == 0;
}

/// What the caller chose for this process has no effect on what is done with root's rights.
bool forgetTheCaller()
{
    ::umask(S_IWGRP | S_IWOTH);
    return ::clearenv() == 0 && ::chdir("/") == 0 && hasStandardStreams();
}

farview::PreferencesLocation settingOfAllUsers()
{
    using namespace farview;
    return PreferencesLocations(EnvironmentUse::ignored)
        .location(kWindowServerDomain, PreferencesUser::any, PreferencesHost::current);
}

farview::PreferencesChanges changes(bool enabled)
{
    const char* const chosen = enabled ? kDisplayResolutionEnabled : kDisplayResolutionDisabled;
    const char* const other = enabled ? kDisplayResolutionDisabled : kDisplayResolutionEnabled;
    return {{chosen, true}, {other, std::nullopt}};
}

} // namespace

int storeDisplayResolutions(bool enabled, int argumentCount)
{
    if (argumentCount > 1)
        return wrongUse;
    if (!forgetTheCaller())
        return EXIT_FAILURE;
    const auto location = settingOfAllUsers();
    const auto result = farview::mergeIntoPreferences(location, changes(enabled), patience);
    if (result.status == farview::PreferencesMergeResult::Status::done && result.refused.empty())
        return EXIT_SUCCESS;
    std::fprintf(stderr, "%s: %s\n", location.path.c_str(), result.reason.c_str());
    return EXIT_FAILURE;
}
