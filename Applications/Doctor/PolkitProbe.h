#pragma once

#include "Applications/Doctor/Finding.h"
#include "Platform/Authorization.h"
#include "Platform/Types/AuthorizationStatus.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

class Bundle;
struct Platform;

/// How an administrator's rights are asked for.
struct PolkitFacts {
    std::string tool;                 ///< that is to run with them; empty when there is none
    Authorization::Obstacle obstacle; ///< why it is not run, whoever asks
    /// What asking would come to; nothing when nobody said so in time.
    std::optional<AuthorizationStatus> foreseen{};
};

/// Asks nobody for a password. `then` is called once, later or at once, while `target` lives; never
/// when the system's message bus does not answer.
void askForPolkitFacts(Platform& platform, const Bundle* pane, std::weak_ptr<void> target,
                       std::function<void(const PolkitFacts&)> then);
/// What is known without asking.
PolkitFacts polkitFacts(Platform& platform, const Bundle* pane);
Findings findingsAboutPolkit(const PolkitFacts& facts);

} // namespace farview
