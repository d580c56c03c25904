#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include "Platform/Posix/PropertyLists/PropertyListReader.h"

#include <system_error>

namespace farview
{
namespace
{

void parse(PropertyListFile& result)
{
    auto read = PropertyListReader::read(result.file.bytes);
    result.file.bytes = {};
    result.status = read.list ? PropertyListFile::Status::read : PropertyListFile::Status::broken;
    result.list = std::move(read.list);
    result.reason = std::move(read.reason);
}

} // namespace

std::string textFor(const PropertyList::Dictionary& dictionary, const std::string& key)
{
    const auto found = dictionary.find(key);
    const auto* text = found == dictionary.end() ? nullptr : found->second.get<std::string>();
    return text ? *text : std::string();
}

std::string errorText(int error) { return std::generic_category().message(error); }

PropertyListFile readPropertyListFile(const std::string& path)
{
    PropertyListFile result;
    result.file = readWholeFile(path, PropertyListReader::largestSize);
    switch (result.file.status) {
    case WholeFile::Status::read:
        parse(result);
        break;
    case WholeFile::Status::tooLarge:
        result.status = PropertyListFile::Status::broken;
        result.reason = "too large";
        break;
    case WholeFile::Status::unreadable:
        result.status = PropertyListFile::Status::unreadable;
        result.reason = errorText(result.file.error);
        break;
    case WholeFile::Status::missing:
        break;
    }
    return result;
}

PropertyListFile readDictionaryFile(const std::string& path)
{
    auto result = readPropertyListFile(path);
    if (result.list && !result.list->is<PropertyList::Dictionary>()) {
        result.status = PropertyListFile::Status::broken;
        result.reason = "no dictionary";
        result.list.reset();
    }
    return result;
}

} // namespace farview
