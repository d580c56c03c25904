#pragma once

#include "Applications/Doctor/Finding.h"
#include "Common/PairedPeers.h"
#include "Platform/Types/Notification.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

struct Platform;

/// What proves to devices that it is this computer.
struct OwnKeyFact {
    std::string path;  ///< of its file
    std::string key;   ///< as in `PairedPeer`; empty when it was not made yet or cannot be used
    std::string fault; ///< why it cannot be used, and what helps; else empty
};

/// What the screen server says of the connection there is.
struct ConnectionFact {
    std::string device; ///< its host name, or its address
    std::string cipher; ///< foreign: "TLS_AES_256_GCM_SHA384"
};

struct TrustFacts {
    OwnKeyFact ownKey;
    std::vector<PairedPeer> devices; ///< that the user has confirmed
    /// Devices that were confirmed when they had no keys yet, and not since.
    std::size_t withoutKey = 0;
    std::optional<ConnectionFact> connection;
};

/// A key as people compare it, the same here and at the device: "a1b2 c3d4".
std::string shownKey(const std::string& key);
/// Of the server's answer; nothing when it does not say what encrypts the connection.
std::optional<ConnectionFact> connectionFact(const Notification& answer);

/// What the key's file and the settings tell. Changes nothing, and makes no key.
TrustFacts trustFacts(Platform& platform);
Findings findingsAboutPairing(const TrustFacts& facts);

} // namespace farview
