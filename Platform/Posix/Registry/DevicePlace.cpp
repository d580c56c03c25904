#include "Platform/Posix/Registry/DevicePlace.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace farview
{
namespace
{

bool isHex(char each)
{
    return (each >= '0' && each <= '9') || (each >= 'a' && each <= 'f') ||
           (each >= 'A' && each <= 'F');
}

bool isAddress(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isHex);
}

bool beginsWithLetter(std::string_view text)
{
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text.front())) != 0;
}

/// "0000:00:1f.2": domain (four digits or more), bus, device and function.
bool isPCIFunction(std::string_view folder)
{
    constexpr std::string_view shape = "xxxx:xx:xx.x";
    if (folder.size() < shape.size())
        return false;
    const auto end = folder.substr(folder.size() - shape.size());
    const auto fits = [](char each, char wanted) {
        return wanted == 'x' ? isHex(each) : each == wanted;
    };
    return std::all_of(folder.begin(), end.begin(), isHex) &&
           std::equal(end.begin(), end.end(), shape.begin(), fits);
}

} // namespace

DevicePlace devicePlace(const std::string& folder)
{
    constexpr std::size_t shortestAddress = 4;
    if (isPCIFunction(folder))
        return {"pci", folder};
    const auto colon = folder.find(':');
    if (colon != std::string::npos && beginsWithLetter(folder) &&
        isAddress(std::string_view(folder).substr(colon + 1)))
        return {folder.substr(0, colon), folder.substr(colon + 1)};
    const auto dot = folder.find('.');
    if (dot != std::string::npos && dot >= shortestAddress &&
        isAddress(std::string_view(folder).substr(0, dot)) &&
        beginsWithLetter(std::string_view(folder).substr(dot + 1)))
        return {folder.substr(dot + 1), folder.substr(0, dot)};
    return {folder};
}

} // namespace farview
