#pragma once

#include "Platform/Types/UpdateStatus.h"

#include <array>
#include <string_view>

namespace farview
{

struct UpdateProblemWord {
    std::string_view word;
    UpdateProblem problem;
};

/// The words for it in what programs tell each other, and in settings.
inline constexpr std::array<UpdateProblemWord, 20> updateProblemWords{{
    {"not-configured", UpdateProblem::notConfigured},
    {"insecure-address", UpdateProblem::insecureAddress},
    {"no-network", UpdateProblem::noNetwork},
    {"server", UpdateProblem::server},
    {"certificate", UpdateProblem::certificate},
    {"stalled", UpdateProblem::stalled},
    {"feed-unreadable", UpdateProblem::feedUnreadable},
    {"system-too-old", UpdateProblem::systemTooOld},
    {"managed", UpdateProblem::managed},
    {"too-large", UpdateProblem::tooLarge},
    {"no-space", UpdateProblem::noSpace},
    {"wrong-length", UpdateProblem::wrongLength},
    {"wrong-signature", UpdateProblem::wrongSignature},
    {"archive", UpdateProblem::archive},
    {"wrong-version", UpdateProblem::wrongVersion},
    {"downgrade", UpdateProblem::downgrade},
    {"unfit", UpdateProblem::unfit},
    {"write", UpdateProblem::write},
    {"busy", UpdateProblem::busy},
    {"internal", UpdateProblem::internal},
}};

/// An unknown word counts as `internal`.
constexpr UpdateProblem updateProblemOf(std::string_view word)
{
    for (const auto& each : updateProblemWords) {
        if (each.word == word)
            return each.problem;
    }
    return UpdateProblem::internal;
}

constexpr std::string_view wordOf(UpdateProblem problem)
{
    for (const auto& each : updateProblemWords) {
        if (each.problem == problem)
            return each.word;
    }
    return "internal";
}

} // namespace farview
