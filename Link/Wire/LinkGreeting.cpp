#include "Link/Wire/LinkGreeting.h"

#include "Link/Wire/LinkFrame.h"

#include <algorithm>

namespace farview
{

namespace
{

bool offers(const LinkGreeting& side, const std::string& feature)
{
    return std::any_of(side.features.begin(), side.features.end(),
                       [&](const LinkFeature& own) { return own.name == feature; });
}

const LinkFeature* missingRequirement(const LinkGreeting& wants, const LinkGreeting& has)
{
    for (const LinkFeature& feature : wants.features) {
        if (feature.required && !offers(has, feature.name))
            return &feature;
    }
    return nullptr;
}

LinkRefusal noAgreement(std::string text)
{
    return {LinkRefusalCode::noAgreement, std::move(text)};
}

} // namespace

bool LinkAgreement::has(const std::string& feature) const
{
    return std::find(features.begin(), features.end(), feature) != features.end();
}

LinkGreeting ownGreeting(bool withPictures)
{
    LinkGreeting greeting{.features = {{kLinkEncryptionFeature, true}}};
    if (withPictures)
        greeting.features.insert(greeting.features.end(),
                                 {{kLinkInputFeature}, {kLinkScreenFeature}, {kLinkZstdFeature}});
    return greeting;
}

LinkGreeting probingGreeting()
{
    LinkGreeting greeting = ownGreeting();
    const LinkFeature probe{kLinkProbeFeature, true};
    auto& features = greeting.features;
    features.insert(std::upper_bound(features.begin(), features.end(), probe,
                                     [](const auto& a, const auto& b) { return a.name < b.name; }),
                    probe);
    return greeting;
}

bool isProbing(const LinkGreeting& host)
{
    const LinkFeature probe{kLinkProbeFeature, true};
    return std::find(host.features.begin(), host.features.end(), probe) != host.features.end();
}

LinkAnswer agreementBetween(const LinkGreeting& host, const LinkGreeting& device)
{
    LinkAgreement agreement;
    agreement.version = std::min(host.highestVersion, device.highestVersion);
    if (agreement.version < std::max(host.lowestVersion, device.lowestVersion))
        return noAgreement("The two programs have no version of the link in common.");
    if (const LinkFeature* missing = missingRequirement(host, device))
        return noAgreement("The device does not offer \"" + missing->name + "\".");
    if (const LinkFeature* missing = missingRequirement(device, host))
        return noAgreement("The device requires \"" + missing->name + "\".");
    for (const LinkFeature& feature : host.features) {
        if (offers(device, feature.name))
            agreement.features.push_back(feature.name);
    }
    return agreement;
}

bool agreementFits(const LinkAgreement& agreement, const LinkGreeting& host)
{
    if (agreement.version < host.lowestVersion || agreement.version > host.highestVersion)
        return false;
    if (!std::all_of(agreement.features.begin(), agreement.features.end(),
                     [&](const std::string& name) { return offers(host, name); }))
        return false;
    return std::all_of(host.features.begin(), host.features.end(), [&](const LinkFeature& own) {
        return !own.required || agreement.has(own.name);
    });
}

} // namespace farview
