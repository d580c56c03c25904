#pragma once

#include "Platform/Types/UpdateProblem.h"

#include <string>

namespace farview
{

/// Why an update did not come about, with what the log should know besides.
struct UpdateFailure {
    UpdateProblem problem = UpdateProblem::internal;
    std::string detail;
};

/// The failure of a write that ended with that errno: a full disk is a problem of its own.
UpdateFailure writeFailure(int error, const std::string& what);

} // namespace farview
