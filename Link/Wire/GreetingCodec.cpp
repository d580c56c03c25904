#include "Link/Wire/ByteReader.h"
#include "Link/Wire/LinkCodec.h"

#include <algorithm>
#include <array>
#include <optional>

namespace farview
{

namespace
{

constexpr std::array<std::uint8_t, 8> magic{'F', 'V', 'E', 'L', 'I', 'N', 'K', '\n'};
constexpr std::size_t envelopeSize = magic.size() + 2;
constexpr std::uint32_t requiredFlag = 1;
constexpr std::uint32_t accepted = 1;
constexpr std::uint32_t refused = 2;

bool isFeatureName(const std::string& name)
{
    const auto fits = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    };
    return !name.empty() && name.size() <= kLinkFeatureNameLimit &&
           std::all_of(name.begin(), name.end(), fits);
}

std::vector<LinkFeature> encodable(std::vector<LinkFeature> features)
{
    std::erase_if(features,
                  [](const LinkFeature& feature) { return !isFeatureName(feature.name); });
    const auto byName = [](const LinkFeature& a, const LinkFeature& b) { return a.name < b.name; };
    const auto same = [](const LinkFeature& a, const LinkFeature& b) { return a.name == b.name; };
    std::stable_sort(features.begin(), features.end(), byName);
    features.erase(std::unique(features.begin(), features.end(), same), features.end());
    features.resize(std::min(features.size(), kLinkFeatureLimit));
    return features;
}

void appendFeatures(Bytes& bytes, std::vector<LinkFeature> features)
{
    features = encodable(std::move(features));
    appendNumber(bytes, static_cast<std::uint32_t>(features.size()), 1);
    for (const LinkFeature& feature : features) {
        appendNumber(bytes, feature.required ? requiredFlag : 0, 1);
        appendNumber(bytes, static_cast<std::uint32_t>(feature.name.size()), 1);
        bytes.insert(bytes.end(), feature.name.begin(), feature.name.end());
    }
}

std::string readName(ByteReader& reader)
{
    const ByteView bytes = reader.bytes(reader.number(1));
    return {bytes.begin(), bytes.end()};
}

/// The features, or nothing when one breaks a rule. A value has one encoding only, hence the order.
std::optional<std::vector<LinkFeature>> readFeatures(ByteReader& reader, std::uint32_t allowedFlags)
{
    const std::uint32_t count = reader.number(1);
    if (count > kLinkFeatureLimit)
        return std::nullopt;
    std::vector<LinkFeature> features;
    for (std::uint32_t index = 0; index < count; ++index) {
        const std::uint32_t flags = reader.number(1);
        std::string name = readName(reader);
        if ((flags & ~allowedFlags) != 0 || !isFeatureName(name))
            return std::nullopt;
        if (!features.empty() && features.back().name >= name)
            return std::nullopt;
        features.push_back({std::move(name), flags == requiredFlag});
    }
    return features;
}

Bytes enveloped(const Bytes& body)
{
    Bytes bytes(magic.begin(), magic.end());
    appendNumber(bytes, static_cast<std::uint32_t>(body.size()), 2);
    bytes.insert(bytes.end(), body.begin(), body.end());
    return bytes;
}

/// Opens the envelope and has `read` turn the body into a value.
template <typename Value, typename Read> Decoded<Value> decodeEnveloped(ByteView bytes, Read read)
{
    Decoded<Value> result;
    const std::size_t known = std::min(bytes.size(), magic.size());
    if (!std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(known),
                    magic.begin())) {
        result.status = DecodeStatus::malformed;
        return result;
    }
    if (bytes.size() < envelopeSize)
        return result;
    const std::size_t size = ByteReader(bytes.subspan(magic.size())).number(2);
    if (envelopeSize + size > kLinkGreetingLimit) {
        result.status = DecodeStatus::malformed;
        return result;
    }
    if (bytes.size() < envelopeSize + size)
        return result;
    ByteReader reader(bytes.subspan(envelopeSize, size));
    std::optional<Value> value = read(reader);
    const bool good = value.has_value() && reader.isExhausted();
    result.status = good ? DecodeStatus::complete : DecodeStatus::malformed;
    if (good) {
        result.value = std::move(*value);
        result.consumed = envelopeSize + size;
    }
    return result;
}

std::optional<LinkGreeting> readGreeting(ByteReader& reader)
{
    LinkGreeting greeting;
    greeting.lowestVersion = static_cast<std::uint8_t>(reader.number(1));
    greeting.highestVersion = static_cast<std::uint8_t>(reader.number(1));
    auto features = readFeatures(reader, requiredFlag);
    if (!features || greeting.lowestVersion < 1 || greeting.highestVersion < greeting.lowestVersion)
        return std::nullopt;
    greeting.features = std::move(*features);
    return greeting;
}

std::optional<LinkAnswer> readAgreement(ByteReader& reader)
{
    LinkAgreement agreement;
    agreement.version = static_cast<std::uint8_t>(reader.number(1));
    const auto features = readFeatures(reader, 0);
    if (!features || agreement.version < 1)
        return std::nullopt;
    for (const LinkFeature& feature : *features)
        agreement.features.push_back(feature.name);
    return agreement;
}

std::optional<LinkAnswer> readRefusal(ByteReader& reader)
{
    const std::uint32_t code = reader.number(1);
    auto text = readText(reader);
    if (!text)
        return std::nullopt;
    const bool known =
        code >= 1 && code <= static_cast<std::uint32_t>(LinkRefusalCode::notAGreeting);
    return LinkRefusal{known ? static_cast<LinkRefusalCode>(code) : LinkRefusalCode::byUser,
                       std::move(*text)};
}

std::optional<LinkAnswer> readAnswer(ByteReader& reader)
{
    switch (reader.number(1)) {
    case accepted:
        return readAgreement(reader);
    case refused:
        return readRefusal(reader);
    default:
        return std::nullopt;
    }
}

} // namespace

Bytes encodeGreeting(const LinkGreeting& greeting)
{
    Bytes body{greeting.lowestVersion, greeting.highestVersion};
    appendFeatures(body, greeting.features);
    return enveloped(body);
}

Bytes encodeAnswer(const LinkAnswer& answer)
{
    Bytes body;
    if (const auto* refusal = std::get_if<LinkRefusal>(&answer)) {
        body = {refused, static_cast<std::uint8_t>(refusal->code)};
        appendText(body, refusal->text);
        return enveloped(body);
    }
    const auto& agreement = std::get<LinkAgreement>(answer);
    std::vector<LinkFeature> features;
    for (const std::string& name : agreement.features)
        features.push_back({name, false});
    body = {accepted, agreement.version};
    appendFeatures(body, std::move(features));
    return enveloped(body);
}

Decoded<LinkGreeting> decodeGreeting(ByteView bytes)
{
    return decodeEnveloped<LinkGreeting>(bytes, readGreeting);
}

Decoded<LinkAnswer> decodeAnswer(ByteView bytes)
{
    return decodeEnveloped<LinkAnswer>(bytes, readAnswer);
}

} // namespace farview
