#pragma once

#include "Common/PairedPeers.h"
#include "Link/Keys/OwnKey.h"
#include "Link/Keys/PairingProof.h"
#include "Tests/Link/LinkPeers.h"

#include <string>
#include <vector>

namespace farview
{

/// As if the users had confirmed it all long ago: devices of these names that run with the settings
/// of this process, the computer of these settings at such a device, and the peers of tests
/// (`keyOfHost`, and `keyOfDevice` by its address or any of the names of `scripted`).
inline void pairBeforehand(Preferences& preferences, const std::vector<std::string>& devices,
                           const std::vector<std::string>& scripted = {})
{
    const auto key = [](const char* domain) {
        const auto own = ownKey(ownKeyPath(domain));
        EXPECT_TRUE(own.key) << own.trouble;
        return own.key ? hexadecimal(own.key->fingerprint) : std::string();
    };
    PairedPeers computers(preferences, PairedPeers::computers);
    computers.add({key(PairedPeers::devices), {}, {}, {}});
    computers.add({hexadecimal(keyOfHost().fingerprint), {}, {}, {}});
    PairedPeers known(preferences, PairedPeers::devices);
    known.add({hexadecimal(keyOfDevice().fingerprint), {}, {}, {}});
    for (const auto& name : devices)
        known.add({key(PairedPeers::computers), name, {}, {}});
    for (const auto& name : scripted)
        known.add({hexadecimal(keyOfDevice().fingerprint), name, {}, {}});
}

} // namespace farview
