#pragma once

#include "Platform/Types/UpdateProblem.h"

#include <cstdint>
#include <string>

namespace farview
{

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
