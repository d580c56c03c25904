#include "Link/Wire/ByteReader.h"

#include "Link/Wire/LinkCodec.h"

namespace farview
{

std::uint32_t ByteReader::number(std::size_t size)
{
    std::uint32_t value = 0;
    unsigned shift = 0;
    for (const std::uint8_t byte : bytes(size)) {
        value |= static_cast<std::uint32_t>(byte) << shift;
        shift += 8;
    }
    return value;
}

ByteView ByteReader::bytes(std::size_t size)
{
    if (size > mBytes.size()) {
        mPastEnd = true;
        mBytes = {};
        return {};
    }
    const ByteView piece = mBytes.first(size);
    mBytes = mBytes.subspan(size);
    return piece;
}

void appendNumber(Bytes& bytes, std::uint32_t value, std::size_t size)
{
    for (std::size_t index = 0; index < size; ++index)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * index)));
}

void appendText(Bytes& bytes, const std::string& text)
{
    const std::string printable = plainLinkText(text, kLinkTextLimit);
    appendNumber(bytes, static_cast<std::uint32_t>(printable.size()), 1);
    bytes.insert(bytes.end(), printable.begin(), printable.end());
}

std::optional<std::string> readText(ByteReader& reader)
{
    const std::uint32_t size = reader.number(1);
    if (size > kLinkTextLimit)
        return std::nullopt;
    const ByteView bytes = reader.bytes(size);
    return plainLinkText(std::string(bytes.begin(), bytes.end()), kLinkTextLimit);
}

} // namespace farview
