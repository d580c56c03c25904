#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace farview
{

/// Bytes without a meaning of their own.
struct Data {
    std::vector<std::uint8_t> bytes;

    static Data fromText(std::string_view text) { return Data{{text.begin(), text.end()}}; }
    std::string text() const { return {bytes.begin(), bytes.end()}; }
    std::size_t size() const { return bytes.size(); }
    bool isEmpty() const { return bytes.empty(); }
    bool operator==(const Data&) const = default;
};

} // namespace farview
