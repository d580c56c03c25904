#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace farview
{

/// Something that one side can do beyond the base version, by its short name.
struct LinkFeature {
    std::string name;
    /// Without it this side does not speak at all.
    bool required = false;

    bool operator==(const LinkFeature&) const = default;
};

/// What one side speaks: a range of versions and its features, sorted by name.
struct LinkGreeting {
    std::uint8_t lowestVersion = 1;
    std::uint8_t highestVersion = 1;
    std::vector<LinkFeature> features;

    bool operator==(const LinkGreeting&) const = default;
};

/// What both sides agreed to speak.
struct LinkAgreement {
    std::uint8_t version = 1;
    /// Names, sorted.
    std::vector<std::string> features;

    bool has(const std::string& feature) const;
    bool operator==(const LinkAgreement&) const = default;
};

enum class LinkRefusalCode : std::uint8_t {
    inUse = 1,
    byUser = 2,
    tooManyWaiting = 3,
    noAgreement = 4,
    notAGreeting = 5,
};

/// Why a device does not serve a host. The text is foreign, printable and at most 200 bytes.
struct LinkRefusal {
    LinkRefusalCode code = LinkRefusalCode::byUser;
    std::string text;

    bool operator==(const LinkRefusal&) const = default;
};

using LinkAnswer = std::variant<LinkAgreement, LinkRefusal>;

/// What the programs of this version speak; without pictures what a device without a screen does.
LinkGreeting ownGreeting(bool withPictures = true);

/// The feature that no device ever offers: a host that requires it asks whether it would be served,
/// and is refused in any case.
inline constexpr const char* kLinkProbeFeature = "probe";

/// The greeting of a host that only asks.
LinkGreeting probingGreeting();
/// Whether a host greets only to ask.
bool isProbing(const LinkGreeting& host);

/// The device's answer to a host's greeting: the highest common version and the common features, or
/// the refusal when there is none or when a required feature is missing.
LinkAnswer agreementBetween(const LinkGreeting& host, const LinkGreeting& device);

/// Whether a device's answer keeps to what this host offered, and gives what it requires.
bool agreementFits(const LinkAgreement& agreement, const LinkGreeting& host);

} // namespace farview
