#include "Common/Rules/FurtherDevices.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>

namespace farview
{
namespace
{

constexpr std::array words{"connecting", "connected", "failed"};
constexpr std::size_t longestText = 16 << 10;
constexpr std::size_t longestName = 255;

bool isName(const std::string& text)
{
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    return !text.empty() && text.size() <= longestName &&
           std::none_of(text.begin(), text.end(), isControl);
}

/// Between two tabs, or a tab and the end.
std::string nextField(std::istream& line)
{
    std::string field;
    std::getline(line, field, '\t');
    return field;
}

std::optional<FurtherDevice> deviceIn(const std::string& text)
{
    std::istringstream line(text);
    const auto word = std::find(words.begin(), words.end(), nextField(line));
    FurtherDevice device{nextField(line), nextField(line)};
    const std::string screen = nextField(line);
    device.key = nextField(line);
    if (word == words.end() || !isName(device.hostName) || !isName(device.name) ||
        device.key.size() > longestName)
        return std::nullopt;
    device.state = static_cast<FurtherDevice::State>(word - words.begin());
    device.screen = screenReport(&screen);
    return device;
}

} // namespace

std::string textOfFurtherDevices(const std::vector<FurtherDevice>& devices)
{
    std::string text;
    for (const FurtherDevice& device : devices)
        text += std::string(words.at(static_cast<std::size_t>(device.state))) + '\t' +
                device.hostName + '\t' + device.name + '\t' + textOfScreenReport(device.screen) +
                '\t' + device.key + '\n';
    return text;
}

std::vector<FurtherDevice> furtherDevices(const std::string* text)
{
    std::vector<FurtherDevice> devices;
    std::istringstream lines(text && text->size() <= longestText ? *text : std::string());
    for (std::string line; devices.size() < mostFurtherDevices && std::getline(lines, line);) {
        if (auto device = deviceIn(line))
            devices.push_back(std::move(*device));
    }
    return devices;
}

} // namespace farview
