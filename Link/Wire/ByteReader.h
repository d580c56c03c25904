#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace farview
{

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

/// Reads a piece of known size from its beginning. Reading past the end gives zeroes and is
/// remembered, so a caller checks once, at the end.
class ByteReader
{
public:
    explicit ByteReader(ByteView bytes) : mBytes(bytes) {}

    std::uint32_t number(std::size_t size);
    ByteView bytes(std::size_t size);

    /// Whether everything was read, and nothing beyond.
    bool isExhausted() const { return !mPastEnd && mBytes.empty(); }
    bool isPastEnd() const { return mPastEnd; }

private:
    ByteView mBytes;
    bool mPastEnd = false;
};

/// Appends the lowest `size` bytes of `value`, the lowest first.
void appendNumber(Bytes& bytes, std::uint32_t value, std::size_t size);

/// A text made printable, with its length in one byte before it.
void appendText(Bytes& bytes, const std::string& text);
/// The reverse; nothing when its length is beyond the limit. A text that is not all there leaves
/// the reader past its end.
std::optional<std::string> readText(ByteReader& reader);

} // namespace farview
