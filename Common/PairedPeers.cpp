#include "Common/PairedPeers.h"

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

constexpr const char* keyKey = "Key";
constexpr const char* nameKey = "Name";
constexpr const char* sinceKey = "Since";
constexpr const char* lastUsedKey = "LastUsed";
constexpr const char* mayTypeKey = "MayType";
constexpr std::size_t keySize = 64;
constexpr double year2000 = 946'684'800;
constexpr double year10000 = 253'402'300'800;

template <typename Value>
const Value* valueOf(const PropertyList::Dictionary& entries, const char* key)
{
    const auto found = entries.find(key);
    return found == entries.end() ? nullptr : found->second.get<Value>();
}

bool isKey(const std::string& text)
{
    return text.size() == keySize &&
           text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::optional<PairedPeer> peerIn(const PropertyList& stored)
{
    const auto* entries = stored.get<PropertyList::Dictionary>();
    const auto* key = entries ? valueOf<std::string>(*entries, keyKey) : nullptr;
    if (!key || !isKey(*key))
        return std::nullopt;
    const auto* name = valueOf<std::string>(*entries, nameKey);
    const auto* since = valueOf<Date>(*entries, sinceKey);
    const auto* lastUsed = valueOf<Date>(*entries, lastUsedKey);
    const auto* mayType = valueOf<bool>(*entries, mayTypeKey);
    return PairedPeer{*key, name ? *name : "", since ? *since : Date{},
                      lastUsed ? *lastUsed : Date{}, mayType && *mayType};
}

PropertyList stored(const PairedPeer& peer)
{
    PropertyList::Dictionary entries{{keyKey, peer.key},
                                     {nameKey, peer.name},
                                     {sinceKey, peer.since},
                                     {lastUsedKey, peer.lastUsed}};
    if (peer.mayType)
        entries[mayTypeKey] = true;
    return entries;
}

std::string withoutNumber(const std::string& name)
{
    const auto end = name.find_last_not_of("0123456789");
    const bool isNumbered = end != std::string::npos && end + 1 < name.size() && end > 1 &&
                            name.compare(end - 1, 2, " #") == 0;
    return isNumbered ? name.substr(0, end - 1) : name;
}

bool usedEarlier(const PairedPeer& a, const PairedPeer& b)
{
    return a.lastUsed.secondsSince1970 < b.lastUsed.secondsSince1970;
}

} // namespace

bool mayBeTrue(Date moment)
{
    return moment.secondsSince1970 >= year2000 && moment.secondsSince1970 < year10000;
}

bool mayBeOneDevice(const std::string& name, const std::string& other)
{
    return withoutNumber(name) == withoutNumber(other);
}

PeerTrust trustIn(const std::vector<PairedPeer>& peers, const std::string& key,
                  const std::string& name)
{
    const auto has = [&](const auto& fits) {
        return std::any_of(peers.begin(), peers.end(), fits);
    };
    const auto isNamed = [&](const PairedPeer& peer) { return peer.name == name; };
    if (!name.empty() && has(isNamed)) {
        const auto isBoth = [&](const auto& peer) { return isNamed(peer) && peer.key == key; };
        return has(isBoth) ? PeerTrust::known : PeerTrust::changed;
    }
    const auto isByKey = [&](const PairedPeer& peer) {
        return peer.key == key &&
               (name.empty() || peer.name.empty() || mayBeOneDevice(peer.name, name));
    };
    return has(isByKey) ? PeerTrust::known : PeerTrust::stranger;
}

PairedPeers::PairedPeers(Preferences& preferences, std::string domain)
    : mPreferences(preferences), mDomain(std::move(domain))
{
}

std::vector<PairedPeer> PairedPeers::all() const
{
    const auto value = mPreferences.copyAppValue(key, mDomain);
    const auto* entries = value ? value->get<PropertyList::Array>() : nullptr;
    std::vector<PairedPeer> peers;
    for (const auto& entry : entries ? *entries : PropertyList::Array{}) {
        if (auto peer = peerIn(entry))
            peers.push_back(std::move(*peer));
    }
    return peers;
}

bool PairedPeers::add(const PairedPeer& peer)
{
    auto peers = all();
    std::erase_if(peers, [&](const PairedPeer& other) {
        return (!peer.name.empty() && other.name == peer.name) ||
               (other.key == peer.key && (other.name.empty() || peer.name.empty()));
    });
    while (peers.size() >= mostPeers)
        peers.erase(std::min_element(peers.begin(), peers.end(), usedEarlier));
    peers.push_back(peer);
    return store(peers);
}

void PairedPeers::used(const std::string& key, const std::string& name, Date now, bool followsName)
{
    auto peers = all();
    bool isKnown = false;
    for (PairedPeer& peer : peers) {
        const bool isMeant =
            followsName || peer.name.empty() || name.empty() || mayBeOneDevice(peer.name, name);
        if (peer.key != key || !isMeant)
            continue;
        isKnown = true;
        peer.lastUsed = now;
        if (followsName || peer.name.empty())
            peer.name = name;
    }
    if (isKnown)
        store(peers);
}

void PairedPeers::letType(const std::string& nameOrKey, bool mayType)
{
    auto peers = all();
    for (PairedPeer& peer : peers) {
        if (peer.isMeantBy(nameOrKey))
            peer.mayType = mayType;
    }
    if (peers != all())
        store(peers);
}

void PairedPeers::forget(const std::string& nameOrKey)
{
    auto peers = all();
    const auto forgotten =
        std::erase_if(peers, [&](const PairedPeer& peer) { return peer.isMeantBy(nameOrKey); });
    if (forgotten > 0)
        store(peers);
}

bool PairedPeers::store(const std::vector<PairedPeer>& peers)
{
    PropertyList::Array entries;
    for (const PairedPeer& peer : peers)
        entries.push_back(stored(peer));
    mPreferences.setAppValue(key, PropertyList(std::move(entries)), mDomain);
    return mPreferences.appSynchronize(mDomain);
}

} // namespace farview
