#include "Applications/Doctor/PairingProbe.h"

#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/Connection.h"
#include "Common/Rules/PairingReport.h"
#include "Link/Keys/OwnKey.h"
#include "Link/Keys/PairingProof.h"
#include "Platform/Platform.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

// How versions without encryption kept what the user had confirmed.
constexpr const char* hostNamesKey = "confirmedDevices";
constexpr const char* deviceNameKey = "DeviceName";
constexpr std::size_t digitsShown = 8;

/// Empty when nobody knows it.
std::string isoDate(Date date)
{
    if (!mayBeTrue(date))
        return {};
    return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(date.secondsSince1970), Qt::UTC)
        .toString(Qt::ISODate)
        .toStdString();
}

Finding finding(Severity severity, const char* name, Sentence text, const char* advice = "")
{
    return {Area::pairing, severity, name, std::move(text), {advice}};
}

OwnKeyFact ownKeyFact(const std::string& path)
{
    const OwnKeyResult own = readOwnKey(path);
    return {path, own.key ? hexadecimal(own.key->fingerprint) : "", own.trouble};
}

Finding aboutOwnKey(const OwnKeyFact& own)
{
    Finding result;
    if (!own.fault.empty())
        result = finding(Severity::problem, "key-unusable",
                         {"This computer's key cannot be used: %@", {own.fault}},
                         "Remove the file. Every device has to be confirmed once more.");
    else if (own.key.empty())
        result = finding(Severity::ok, "key-missing",
                         {"This computer has no key yet. It gets one with its first connection."});
    else
        result = finding(Severity::ok, "key",
                         {"Devices know this computer by the key %@.", {shownKey(own.key)}});
    result.details = {{"path", own.path}, {"key", shownKey(own.key)}, {"fault", own.fault}};
    return result;
}

std::string shownDate(const std::string& date) { return date.empty() ? "?" : date; }

Finding aboutDevice(const PairedPeer& device)
{
    const std::string key = shownKey(device.key);
    const std::string since = isoDate(device.since);
    const std::string lastUsed = isoDate(device.lastUsed);
    auto result = finding(Severity::ok, "device",
                          {"“%@”, key %@: confirmed %@, used last %@.",
                           {device.name, key, shownDate(since), shownDate(lastUsed)}});
    if (device.name.empty())
        result.text = {"A device chosen by its address, key %@: confirmed %@, used last %@.",
                       {key, shownDate(since), shownDate(lastUsed)}};
    result.details = {
        {"name", device.name}, {"key", key}, {"since", since}, {"lastUsed", lastUsed}};
    return result;
}

Finding aboutDevicesWithoutKey(std::size_t count)
{
    return finding(
        Severity::note, "without-key",
        {"Devices that were confirmed before they had keys: %@.", {std::to_string(count)}},
        "Choose each of them once, and compare the digits that it shows.");
}

Finding aboutConnection(const ConnectionFact& connection)
{
    auto result = finding(
        Severity::ok, "encrypted",
        {"The connection to %@ is encrypted with %@.", {connection.device, connection.cipher}});
    result.details = {{"device", connection.device}, {"cipher", connection.cipher}};
    return result;
}

const std::string* nameIn(const PropertyList& confirmed)
{
    const auto* entries = confirmed.get<PropertyList::Dictionary>();
    return entries && entries->contains(deviceNameKey)
               ? entries->at(deviceNameKey).get<std::string>()
               : nullptr;
}

std::size_t countWithoutKey(Preferences& preferences, const std::vector<PairedPeer>& devices)
{
    const auto stored = preferences.copyAppValue(hostNamesKey, PairedPeers::devices);
    const auto* confirmed = stored ? stored->get<PropertyList::Array>() : nullptr;
    const auto isWithoutKey = [&](const PropertyList& each) {
        const auto* name = nameIn(each);
        return name && std::none_of(devices.begin(), devices.end(),
                                    [&](const auto& device) { return device.name == *name; });
    };
    return confirmed ? static_cast<std::size_t>(
                           std::count_if(confirmed->begin(), confirmed->end(), isWithoutKey))
                     : 0;
}

} // namespace

std::string shownKey(const std::string& key)
{
    return key.empty() ? "" : groupedDigits(key.substr(0, digitsShown));
}

std::optional<ConnectionFact> connectionFact(const Notification& answer)
{
    const auto* name = answer.text(kDeviceNameKey);
    const auto* address = answer.text(kDeviceAddressKey);
    const auto* cipher = answer.text(kCipherKey);
    const auto* device = name && *name == kOtherDeviceName ? address : name;
    if (!device || !cipher || !isAcceptableReportedText(device) ||
        !isAcceptableReportedText(cipher))
        return std::nullopt;
    return ConnectionFact{*device, *cipher};
}

TrustFacts trustFacts(Platform& platform)
{
    TrustFacts facts;
    facts.ownKey = ownKeyFact(ownKeyPath(PairedPeers::devices));
    facts.devices = PairedPeers(*platform.preferences, PairedPeers::devices).all();
    facts.withoutKey = countWithoutKey(*platform.preferences, facts.devices);
    return facts;
}

Findings findingsAboutPairing(const TrustFacts& facts)
{
    Findings findings{aboutOwnKey(facts.ownKey)};
    for (const PairedPeer& device : facts.devices)
        findings.push_back(aboutDevice(device));
    if (facts.devices.empty())
        findings.push_back(finding(Severity::ok, "none", {"No device is confirmed yet."}));
    if (facts.withoutKey > 0)
        findings.push_back(aboutDevicesWithoutKey(facts.withoutKey));
    if (facts.connection)
        findings.push_back(aboutConnection(*facts.connection));
    return findings;
}

} // namespace farview
