#include "Controls/Pasteboard.h"

namespace farview
{

void Pasteboard::declareTypes(const std::vector<std::string>& types)
{
    mContent.clear();
    for (const auto& type : types)
        mContent[type];
}

std::vector<std::string> Pasteboard::types() const
{
    std::vector<std::string> types;
    for (const auto& [type, content] : mContent)
        types.push_back(type);
    return types;
}

bool Pasteboard::setPropertyList(PropertyList list, const std::string& type)
{
    const auto place = mContent.find(type);
    if (place == mContent.end())
        return false;
    place->second = std::move(list);
    return true;
}

std::optional<PropertyList> Pasteboard::propertyListForType(const std::string& type) const
{
    const auto place = mContent.find(type);
    return place == mContent.end() ? std::nullopt : place->second;
}

} // namespace farview
