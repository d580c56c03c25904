#pragma once

#include <cstdint>
#include <string>

namespace farview
{

/// Why there was no update, or why it was not carried out. Whatever the reason, the version that
/// was there before is in place and works.
enum class UpdateProblem {
    notConfigured,   ///< the bundle names no place to get updates from, or no key
    insecureAddress, ///< that place could be impersonated
    noNetwork,
    server, ///< it cannot be reached, or answers with an error
    certificate,
    stalled,
    feedUnreadable,
    systemTooOld,
    managed, ///< the user may not write the bundle
    tooLarge,
    noSpace,
    wrongLength,
    wrongSignature,
    archive, ///< it is damaged, or reaches out of its folder
    wrongVersion,
    downgrade,
    unfit, ///< the new version failed its trial and was taken back
    write,
    busy,    ///< another update of this bundle is under way
    internal ///< anything else
};

/// How far the search for an update, or the update itself, has come.
struct UpdateStatus {
    enum class Stage {
        idle,
        checking,
        current, ///< there is nothing newer
        found,
        downloading,
        verifying,
        ready, ///< verified and waiting to be installed
        installing,
        installed,
        cancelled,
        failed
    };

    Stage stage = Stage::idle;
    std::string version;                             ///< of the update, once it is known
    std::string notes;                               ///< what is new in it: foreign plain text
    std::int64_t received = 0;                       ///< bytes of the download
    std::int64_t length = 0;                         ///< bytes of the whole download
    UpdateProblem problem = UpdateProblem::internal; ///< of a failed one

    bool operator==(const UpdateStatus&) const = default;
};

/// Whether something goes on that will end by itself.
inline bool isUnderWay(UpdateStatus::Stage stage)
{
    using Stage = UpdateStatus::Stage;
    return stage == Stage::checking || stage == Stage::downloading || stage == Stage::verifying ||
           stage == Stage::ready || stage == Stage::installing;
}

} // namespace farview
