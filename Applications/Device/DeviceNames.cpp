#include "Applications/Device/DeviceNames.h"

#include "Link/Wire/LinkCodec.h"

#include <algorithm>
#include <cstdint>

namespace farview
{

namespace
{

constexpr std::size_t longestLabel = 63;
/// Room for the dash and the digits behind the computer's name.
constexpr std::size_t longestPrefix = 40;

bool isLetterOrDigit(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string firstLabel(const std::string& hostName)
{
    return hostName.substr(0, hostName.find('.'));
}

/// FNV-1a: spreads similar names well and is the same everywhere.
std::uint32_t digest(std::string_view text)
{
    std::uint32_t value = 2166136261U;
    for (const char c : text) {
        value ^= static_cast<std::uint8_t>(c);
        value *= 16777619U;
    }
    return value;
}

std::string eightDigits(std::uint32_t value)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (int shift = 28; shift >= 0; shift -= 4)
        text += digits[(value >> shift) & 0xF];
    return text;
}

} // namespace

std::string readableDeviceName(const std::string& computerHostName)
{
    std::string name;
    bool isFirstOfWord = true;
    for (const char c : firstLabel(computerHostName).substr(0, longestLabel)) {
        const bool isWordCharacter = isLetterOrDigit(c);
        if (isWordCharacter && isFirstOfWord && !name.empty())
            name += ' ';
        if (isWordCharacter)
            name += isFirstOfWord ? upper(c) : c;
        isFirstOfWord = !isWordCharacter;
    }
    return name.empty() ? "Computer" : name;
}

std::string ownDeviceHostName(const std::string& computerHostName, std::string_view machineIdentity,
                              std::string_view deviceName)
{
    std::string prefix;
    for (const char c : firstLabel(computerHostName)) {
        if (isLetterOrDigit(c))
            prefix += lower(c);
        else if (!prefix.empty() && prefix.back() != '-')
            prefix += '-';
    }
    prefix.resize(std::min(prefix.size(), longestPrefix));
    while (!prefix.empty() && prefix.back() == '-')
        prefix.pop_back();
    const std::string identity = std::string(machineIdentity) + '\n' + std::string(deviceName);
    return (prefix.empty() ? "device" : prefix) + "-" + eightDigits(digest(identity));
}

bool isDeviceName(const std::string& text)
{
    return !text.empty() && text.size() <= longestLabel &&
           plainLinkText(text, longestLabel) == text;
}

bool isHostLabel(const std::string& text)
{
    const auto fits = [](char c) { return isLetterOrDigit(c) || c == '-'; };
    return !text.empty() && text.size() <= longestLabel && text.front() != '-' &&
           text.back() != '-' && std::all_of(text.begin(), text.end(), fits);
}

} // namespace farview
