#include "Link/Wire/ScreenPacket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>

using namespace farview;

namespace
{

Bytes bytesOf(const ScreenPacketHeader& header)
{
    Bytes bytes;
    appendScreenPacketHeader(bytes, header);
    return bytes;
}

} // namespace

TEST(PixelRect, HasItsFirstNumberInTheLowestBits)
{
    EXPECT_EQ(std::bit_cast<std::uint32_t>(PixelPoint{1, 2}), 0x00020001U);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(PixelRect{1, 2, 3, 4}), 0x0004000300020001U);
}

TEST(ScreenPacketHeader, LiesInThirteenBytesWithoutGaps)
{
    const Bytes bytes = bytesOf({{0x0102, -2, 300, -32768}, 4, 0x0A0B0C0D});
    EXPECT_EQ(bytes.size(), kScreenPacketHeaderSize);
    EXPECT_THAT(
        bytes, testing::ElementsAre(2, 1, 0xFE, 0xFF, 0x2C, 1, 0, 0x80, 4, 0x0D, 0x0C, 0x0B, 0x0A));
}

TEST(ScreenPacketHeader, IsReadAsItWasWrittenAndNoFurther)
{
    const ScreenPacketHeader header{{-1, 2, 300, -4}, 255, 0xFFFFFFFF};
    Bytes bytes = bytesOf(header);
    bytes.push_back(7);
    ByteReader reader(bytes);
    EXPECT_EQ(readScreenPacketHeader(reader), header);
    EXPECT_EQ(reader.number(1), 7U);
    EXPECT_TRUE(reader.isExhausted());
}

TEST(ScreenPacketHeader, ThatIsCutShortLeavesTheReaderPastItsEnd)
{
    const Bytes bytes = bytesOf({{1, 2, 3, 4}, 0, 5});
    ByteReader reader(ByteView(bytes).first(12));
    readScreenPacketHeader(reader);
    EXPECT_TRUE(reader.isPastEnd());
}
