#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Link/Wire/LinkGreeting.h"

#include <optional>
#include <string>

namespace farview
{

enum class LinkEndReason {
    closedHere,  ///< this side ended it
    noOwnKey,    ///< this side has no key that it could use
    goodbye,     ///< the peer ended it and said so
    refused,     ///< the device does not serve this host
    noAgreement, ///< the two have no version or feature in common
    notAnswered, ///< no complete greeting or answer within its time
    notSecured,  ///< encryption failed: perhaps somebody changes what the two say
    brokenRule,  ///< the peer sent what the wire format does not allow
    silent,      ///< the peer stopped answering
    lost,        ///< the connection broke
};

/// Why a connection ended. The text is short and printable; it may be the peer's own words.
struct LinkEnd {
    LinkEndReason reason = LinkEndReason::lost;
    std::string text;
    /// What the device said, on the host's side, when it refused.
    std::optional<LinkRefusalCode> refusal{};
    /// What the peer said when it said goodbye.
    std::optional<LinkGoodbyeCode> goodbye{};
    /// Whether the peer could know the digits, and did not become known: it has used up a guess.
    bool isGuessSpent = false;
};

} // namespace farview
