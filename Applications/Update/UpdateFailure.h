#pragma once

#include <string>

namespace farview
{

/// Why an update did not come about. The panel has a sentence for each; docs/updates.md has their
/// meanings.
enum class UpdateReason {
    notConfigured,
    managed,
    busy,
    insecureAddress,
    noNetwork,
    server,
    certificate,
    stalled,
    feedUnreadable,
    systemTooOld,
    tooLarge,
    noSpace,
    wrongLength,
    wrongSignature,
    archive,
    wrongVersion,
    downgrade,
    unfit,
    write,
    internal,
};

/// The word for it that is said to the panel.
const char* wordFor(UpdateReason reason);

/// A reason, with what the log should know besides.
struct UpdateFailure {
    UpdateReason reason = UpdateReason::internal;
    std::string detail;
};

/// The failure of a write that ended with that errno: a full disk has a reason of its own.
UpdateFailure writeFailure(int error, const std::string& what);

} // namespace farview
