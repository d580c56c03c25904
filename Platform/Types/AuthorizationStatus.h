#pragma once

namespace farview
{

/// How the wish for an administrator's rights ended. The numbers are those that logs show.
enum class AuthorizationStatus : int {
    success = 0,
    denied = -60005,
    canceled = -60006,              ///< whoever was asked dismissed the question
    interactionNotAllowed = -60007, ///< nobody can be asked here
    internal = -60008,              ///< what decides about rights cannot be reached
    toolExecuteFailure = -60031,
};

} // namespace farview
