#include "Common/Rules/AutoConnectChoice.h"

#include <string_view>
#include <unordered_map>

namespace farview
{

std::optional<std::size_t> autoConnectChoice(const PropertyList::Array& chosen,
                                             const std::vector<AnnouncedDevice>& announced,
                                             const std::unordered_set<std::string>& heldOff)
{
    std::unordered_map<std::string_view, std::size_t> candidates;
    for (std::size_t index = 0; index < announced.size(); ++index) {
        const AnnouncedDevice& device = announced[index];
        if (device.reachable && !device.busy && !heldOff.contains(device.name))
            candidates.emplace(device.name, index);
    }
    for (const auto& name : chosen) {
        const auto* text = name.get<std::string>();
        const auto found = text ? candidates.find(*text) : candidates.end();
        if (found != candidates.end())
            return found->second;
    }
    return std::nullopt;
}

std::vector<std::string> newlyChosenNames(const PropertyList::Array& before,
                                          const PropertyList::Array& after)
{
    std::unordered_set<std::string_view> known;
    for (const auto& name : before) {
        if (const auto* text = name.get<std::string>())
            known.insert(*text);
    }
    std::vector<std::string> added;
    for (const auto& name : after) {
        const auto* text = name.get<std::string>();
        if (text && known.insert(*text).second)
            added.push_back(*text);
    }
    return added;
}

} // namespace farview
