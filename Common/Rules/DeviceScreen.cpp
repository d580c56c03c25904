#include "Common/Rules/DeviceScreen.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace farview
{
namespace
{

constexpr const char* sideKey = "Side";
constexpr const char* widthKey = "Width";
constexpr const char* heightKey = "Height";
constexpr const char* scaleKey = "Scale";
constexpr const char* deviceWidthKey = "DeviceWidth";
constexpr const char* deviceHeightKey = "DeviceHeight";
constexpr const char* deviceScaleKey = "DeviceScale";
constexpr std::array sideWords{"right", "left", "above", "below"};

constexpr int leastWidth = 320;
constexpr int leastHeight = 200;
constexpr int largestSide = 8192;
constexpr double largestScale = 8;

int sideStored(const PropertyList::Dictionary& stored, const char* key)
{
    const auto found = stored.find(key);
    const auto* number = found == stored.end() ? nullptr : found->second.get<std::int64_t>();
    return number && *number > 0 && *number <= largestSide ? static_cast<int>(*number) : 0;
}

double scaleStored(const PropertyList::Dictionary& stored, const char* key)
{
    const auto found = stored.find(key);
    const auto* number = found == stored.end() ? nullptr : found->second.get<double>();
    return number && *number > 0 && *number <= largestScale ? *number : 0;
}

std::optional<ScreenSide> screenSideStored(const PropertyList::Dictionary& stored)
{
    const auto found = stored.find(sideKey);
    const auto* word = found == stored.end() ? nullptr : found->second.get<std::string>();
    const auto side = word ? std::find(sideWords.begin(), sideWords.end(), *word) : sideWords.end();
    if (side == sideWords.end())
        return std::nullopt;
    return static_cast<ScreenSide>(side - sideWords.begin());
}

} // namespace

PropertyList::Dictionary storedScreen(const RememberedScreen& screen)
{
    PropertyList::Dictionary stored;
    if (screen.side)
        stored[sideKey] = sideWords.at(static_cast<std::size_t>(*screen.side));
    if (screen.width == 0 || screen.height == 0 || screen.scale == 0)
        return stored;
    stored[widthKey] = screen.width;
    stored[heightKey] = screen.height;
    stored[scaleKey] = screen.scale;
    stored[deviceWidthKey] = screen.device.width;
    stored[deviceHeightKey] = screen.device.height;
    stored[deviceScaleKey] = screen.device.scale;
    return stored;
}

RememberedScreen rememberedScreen(const PropertyList& stored)
{
    const auto* fields = stored.get<PropertyList::Dictionary>();
    if (!fields)
        return {};
    return {screenSideStored(*fields),
            sideStored(*fields, widthKey),
            sideStored(*fields, heightKey),
            scaleStored(*fields, scaleKey),
            {sideStored(*fields, deviceWidthKey), sideStored(*fields, deviceHeightKey),
             scaleStored(*fields, deviceScaleKey)}};
}

ScreenMeasure measureFor(const DeviceScreen& device, bool fullResolution, bool hiDPI,
                         const RememberedScreen& remembered)
{
    if (remembered.device == device && remembered.width > 0 && remembered.height > 0 &&
        remembered.scale > 0)
        return {remembered.width, remembered.height, remembered.scale};
    int parts = !fullResolution && device.scale >= 2 ? 2 : 1;
    while (std::max(device.width, device.height) / parts > largestSide)
        ++parts;
    return {std::max(device.width / parts, leastWidth),
            std::max(device.height / parts, leastHeight), hiDPI ? 2.0 : 1.0};
}

} // namespace farview
