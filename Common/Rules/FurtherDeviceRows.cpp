#include "Common/Rules/FurtherDeviceRows.h"

#include "Common/Rules/ScreenTexts.h"

#include <algorithm>

namespace farview
{
namespace
{

using State = FurtherDevice::State;

template <typename Device>
const Device* deviceOf(const std::vector<Device>& devices, const std::string& hostName)
{
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const Device& device) {
        return device.hostName == hostName;
    });
    return found == devices.end() ? nullptr : &*found;
}

std::string stateOf(const FurtherDevice& device, const Localize& localized)
{
    if (device.state == State::failed)
        return localized("Not reached");
    if (device.state == State::connecting || device.screen.isAwaited())
        return localized("Connecting…");
    return device.screen.state == ScreenReport::State::shown ? screenSize(device.screen, localized)
                                                             : localized("No picture");
}

FurtherDeviceRow usedRow(const FurtherDevice& device, const Localize& localized)
{
    FurtherDeviceRow row{device.hostName, device.name, device.state != State::failed,
                         stateOf(device, localized)};
    if (device.screen.state == ScreenReport::State::missing)
        row.trouble = screenSentence(device.screen, localized);
    if (device.state == State::connected)
        row.key = device.key;
    return row;
}

} // namespace

std::vector<FurtherDeviceRow> furtherDeviceRows(const FurtherDeviceInputs& inputs,
                                                const Localize& localized)
{
    std::vector<FurtherDeviceRow> rows;
    for (const auto& seen : inputs.inSight) {
        if (const auto* device = deviceOf(inputs.used, seen.hostName))
            rows.push_back(usedRow(*device, localized));
        else if (inputs.firstHostName && !seen.busy && seen.hostName != *inputs.firstHostName)
            rows.push_back({seen.hostName, seen.name});
    }
    for (const auto& device : inputs.used) {
        if (!deviceOf(inputs.inSight, device.hostName))
            rows.push_back(usedRow(device, localized));
    }
    return rows;
}

std::vector<std::string> typingLines(const std::string& firstName,
                                     const std::optional<ScreenReport>& screen,
                                     const std::vector<FurtherDevice>& used,
                                     const Localize& localized)
{
    std::vector<std::string> lines;
    const auto add = [&](const std::string& name) {
        lines.push_back(filledText(localized("%@ is typing"), name));
    };
    if (screen && screen->isTyping)
        add(firstName);
    for (const auto& device : used) {
        if (device.screen.isTyping)
            add(device.name);
    }
    return lines;
}

std::string joinedLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const auto& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

} // namespace farview
