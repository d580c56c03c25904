#pragma once

#include <array>
#include <string_view>

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
    feedExpired,
    feedReplayed, ///< it is older than one that came before
    clock,        ///< this computer's is behind that of whoever signed the feed
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

struct UpdateProblemWord {
    std::string_view word;
    UpdateProblem problem;
};

/// The words for it in what programs tell each other, and in settings.
inline constexpr std::array<UpdateProblemWord, 23> updateProblemWords{{
    {"not-configured", UpdateProblem::notConfigured},
    {"insecure-address", UpdateProblem::insecureAddress},
    {"no-network", UpdateProblem::noNetwork},
    {"server", UpdateProblem::server},
    {"certificate", UpdateProblem::certificate},
    {"stalled", UpdateProblem::stalled},
    {"feed-unreadable", UpdateProblem::feedUnreadable},
    {"feed-expired", UpdateProblem::feedExpired},
    {"feed-replayed", UpdateProblem::feedReplayed},
    {"clock", UpdateProblem::clock},
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
