#include "Platform/NetService.h"

#include <algorithm>
#include <string_view>

namespace farview
{

bool NetService::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* service = dynamic_cast<const NetService*>(&other);
    return service && name() == service->name() && type() == service->type() &&
           domain() == service->domain();
}

std::map<std::string, Data> NetService::dictionaryFromTXTRecordData(const Data& data)
{
    std::map<std::string, Data> dictionary;
    const std::string bytes = data.text();
    std::size_t position = 0;
    while (position < bytes.size()) {
        const auto length = static_cast<unsigned char>(bytes[position]);
        ++position;
        if (length > bytes.size() - position)
            break;
        const auto entry = std::string_view(bytes).substr(position, length);
        position += length;
        const auto equals = entry.find('=');
        const auto key = entry.substr(0, equals);
        if (key.empty())
            continue;
        const auto value =
            equals == std::string_view::npos ? std::string_view{} : entry.substr(equals + 1);
        dictionary.emplace(std::string(key), Data::fromText(value));
    }
    return dictionary;
}

Data NetService::dataFromTXTRecordDictionary(const std::map<std::string, Data>& dictionary)
{
    constexpr std::size_t longestEntry = 255;
    Data data;
    for (const auto& [key, value] : dictionary) {
        std::string entry = key + "=" + value.text();
        entry.resize(std::min(entry.size(), longestEntry));
        data.bytes.push_back(static_cast<std::uint8_t>(entry.size()));
        data.bytes.insert(data.bytes.end(), entry.begin(), entry.end());
    }
    return data;
}

} // namespace farview
