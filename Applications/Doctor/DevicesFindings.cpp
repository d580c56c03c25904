#include "Applications/Doctor/DevicesProbe.h"

#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Platform/Platform.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Preferences.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace farview
{
namespace
{

using Kind = DeviceAnswer::Kind;

struct Words {
    Severity severity;
    const char* name;
    const char* text; ///< filled with the device's name and its places
    const char* advice;
};

constexpr const char* firewallAdvice =
    "Allow TCP port %@ in the firewalls between this computer and the device.";
constexpr const char* restartAdvice = "Start the device's program anew.";

constexpr Words ready{Severity::ok, "ready", "“%@” at %@ answers and can be connected to.", ""};
constexpr Words inUse{Severity::note, "in-use", "“%@” at %@ answers and is in use by a computer.",
                      ""};
constexpr Words unresolved{Severity::problem, "unresolved",
                           "“%@” is announced, but nobody tells its address.", restartAdvice};
constexpr Words unasked{Severity::note, "unasked", "“%@” at %@ was seen too late to be asked.", ""};

Words wordsFor(const DeviceAnswer& answer)
{
    switch (answer.kind) {
    case Kind::ready:
        return ready;
    case Kind::refuses:
        if (answer.code == LinkRefusalCode::inUse)
            return inUse;
        return {Severity::problem, "refuses", "“%@” at %@ refuses this computer: %@",
                "Look at the device: it says there who may connect."};
    case Kind::tooOld:
        return {Severity::problem, "too-old",
                "The program of “%@” at %@ is too old for this computer, or too new: %@",
                "Install the same version of Farview there and here."};
    case Kind::noAddress:
        return {Severity::problem, "no-address",
                "“%@” is announced without an address that can be connected to.", restartAdvice};
    case Kind::portClosed:
        return {Severity::problem, "port-closed", "“%@” is announced, but nothing listens at %@.",
                restartAdvice};
    case Kind::unreachable:
        return {Severity::problem, "unreachable", "No network leads to “%@” at %@.",
                "Connect this computer to the network that the device is on."};
    case Kind::noAnswer:
        return {Severity::problem, "no-answer", "“%@” does not answer at %@.", firewallAdvice};
    case Kind::silent:
        return {Severity::problem, "silent",
                "“%@” takes the connection at %@, but does not answer the greeting.",
                restartAdvice};
    case Kind::strange:
        break;
    }
    return {Severity::problem, "strange", "What answers for “%@” at %@ is no Farview device.",
            restartAdvice};
}

std::string placeOf(const Endpoint& endpoint)
{
    const bool isIPv6 = endpoint.address.find(':') != std::string::npos;
    return (isIPv6 ? "[" + endpoint.address + "]" : endpoint.address) + ":" +
           std::to_string(endpoint.port);
}

std::string placesOf(const DeviceFact& device)
{
    std::string places;
    for (const auto& each : device.endpoints) {
        const std::string place = placeOf(each);
        if (places.find(place) == std::string::npos)
            places += (places.empty() ? "" : ", ") + place;
    }
    return places;
}

Words wordsFor(const DeviceFact& device)
{
    if (!device.hostName)
        return unresolved;
    if (!device.answer)
        return unasked;
    return device.answer->kind == Kind::ready && device.isInUse ? inUse : wordsFor(*device.answer);
}

std::string portOf(const DeviceFact& device)
{
    return device.endpoints.empty() ? "" : std::to_string(device.endpoints.front().port);
}

Sentence adviceFor(const Words& words, const DeviceFact& device)
{
    if (words.advice == std::string_view(firewallAdvice))
        return {words.advice, {portOf(device)}};
    return {words.advice};
}

Finding findingAbout(const DeviceFact& device)
{
    const Words words = wordsFor(device);
    const std::string refusal = device.answer ? device.answer->words : std::string();
    return {Area::devices,
            words.severity,
            words.name,
            {words.text, {device.name, placesOf(device), refusal}},
            adviceFor(words, device),
            {{"name", device.name},
             {"host", device.hostName.value_or("")},
             {"addresses", placesOf(device)},
             {"port", portOf(device)},
             {"answer", refusal}}};
}

void appendTexts(std::vector<std::string>& names, const std::optional<PropertyList>& list)
{
    const auto* array = list ? list->get<PropertyList::Array>() : nullptr;
    if (!array)
        return;
    for (const auto& each : *array) {
        const auto* name = each.get<std::string>();
        if (name && std::find(names.begin(), names.end(), *name) == names.end())
            names.push_back(*name);
    }
}

Finding awayFinding(const std::string& name)
{
    return {Area::devices,
            Severity::note,
            "away",
            {"“%@” is known from earlier and is not announced now.", {name}},
            {"Start the device, on the same network as this computer."},
            {{"name", name}}};
}

Finding noneFinding()
{
    return {Area::devices,
            Severity::note,
            "none",
            {"No device is announced on the network."},
            {"Start farview-device on another computer. A firewall must let UDP port 5353 "
             "through."}};
}

} // namespace

std::vector<std::string> rememberedDevices(Platform& platform, const std::string& seenDevicesFile)
{
    std::vector<std::string> names;
    appendTexts(names, platform.preferences->copyAppValue(kAutoConnectDevices, kApplicationID));
    appendTexts(names, readPropertyListFile(seenDevicesFile).list);
    return names;
}

Findings findingsAboutDevices(const DeviceFacts& facts)
{
    Findings findings;
    for (const auto& device : facts.seen)
        findings.push_back(findingAbout(device));
    if (facts.seen.empty())
        findings.push_back(noneFinding());
    if (facts.more > 0)
        findings.push_back(
            {Area::devices,
             Severity::note,
             "more",
             {"%@ more devices were seen and not asked.", {std::to_string(facts.more)}}});
    for (const auto& name : facts.remembered) {
        const bool isSeen = std::any_of(facts.seen.begin(), facts.seen.end(),
                                        [&](const auto& each) { return each.name == name; });
        if (!isSeen)
            findings.push_back(awayFinding(name));
    }
    return findings;
}

} // namespace farview
