#pragma once

#include "Platform/Preferences.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// Somebody whose key the user has confirmed: for a computer a device, for a device a computer.
struct PairedPeer {
    /// 64 hexadecimal digits: the SHA-256 of the public key.
    std::string key;
    /// What the user knows it by: a device's name, the address at which a computer was last seen.
    /// Empty for a device that was reached by its address only. Foreign.
    std::string name;
    Date since;    ///< when it was confirmed, if `mayBeTrue`
    Date lastUsed; ///< when a connection to it began last, if `mayBeTrue`
    /// The user of this computer lets the device type here. Never for a computer.
    bool mayType = false;

    /// Whether a text is its name or its key.
    bool isMeantBy(const std::string& nameOrKey) const
    {
        return !nameOrKey.empty() && (key == nameOrKey || name == nameOrKey);
    }

    bool operator==(const PairedPeer&) const = default;
};

/// Whether a clock that was set can have told that moment. One that never was begins in 1970, as
/// does what was stored without a date.
bool mayBeTrue(Date moment);

/// Whether two names may be those of one device: the network numbers a device, "Desk #2", that
/// finds its own name taken, were it by its own announcement before it slept.
bool mayBeOneDevice(const std::string& name, const std::string& other);

enum class PeerTrust {
    known,    ///< confirmed
    stranger, ///< never seen
    changed,  ///< somebody else was confirmed under that name
};

/// What is known of a key that answers to a name. Without a name, because it was reached by its
/// address, it is known by its key alone. A known key under a name that nobody was confirmed with
/// is a stranger: the user chose the name and expects no other device.
PeerTrust trustIn(const std::vector<PairedPeer>& peers, const std::string& key,
                  const std::string& name);

/// Whom the user has confirmed, in a preferences domain of one's own: as durable as every setting.
/// Every call reads what is stored, and what changes is written at once, so that several programs
/// may use the same domain. Main thread only.
class PairedPeers
{
public:
    /// The server's domain: the devices that this user's computer may connect to.
    static constexpr const char* devices = "com.quillon.ScreenCapture";
    /// The device's domain: the computers that may use it.
    static constexpr const char* computers = "com.quillon.FarviewDevice";
    static constexpr const char* key = "pairedKeys";
    /// Beyond that the one that was not used for the longest time is forgotten.
    static constexpr std::size_t mostPeers = 256;

    /// `preferences` outlives it.
    PairedPeers(Preferences& preferences, std::string domain);

    /// Those that are stored soundly, the newest last.
    std::vector<PairedPeer> all() const;
    /// Takes the place of whoever had that name, and of whoever had that key without a name. So a
    /// computer, whose address others may have too, is added without one. False when it could not
    /// be stored yet: it counts for this process all the same.
    bool add(const PairedPeer& peer);
    /// Notes that whoever has that key and, if it has one, that name is in use. Without a name, or
    /// where `followsName`, it has that name from now on.
    void used(const std::string& key, const std::string& name, Date now, bool followsName = false);
    /// Changes what it may do of whoever has that name, or that key.
    void letType(const std::string& nameOrKey, bool mayType);
    /// Forgets everybody with that name, or that key. Nobody else.
    void forget(const std::string& nameOrKey);

private:
    bool store(const std::vector<PairedPeer>& peers);

    Preferences& mPreferences;
    std::string mDomain;
};

} // namespace farview
