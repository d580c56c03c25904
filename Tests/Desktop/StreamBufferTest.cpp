#include "Platform/Desktop/Screens/StreamBuffer.h"

#include <gtest/gtest.h>

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>

#include <cstring>
#include <vector>

namespace farview
{
namespace
{

/// A buffer of 4x3 pixels in rows of 5, with a pointer of 2x2.
class StreamBufferTest : public testing::Test
{
protected:
    StreamBufferTest()
    {
        mData.data = mPixels.data();
        mData.maxsize = static_cast<std::uint32_t>(mPixels.size() * 4);
        mData.chunk = &mChunk;
        mChunk.size = mData.maxsize;
        mChunk.stride = 20;
        mMetas[0] = {SPA_META_Header, sizeof mHeader, &mHeader};
        mMetas[1] = {SPA_META_Cursor, static_cast<std::uint32_t>(mCursorMemory.size() * 4),
                     mCursorMemory.data()};
        mBuffer.n_metas = 2;
        mBuffer.metas = mMetas;
        mBuffer.n_datas = 1;
        mBuffer.datas = &mData;
        mCursor = {1, 0, {30, 40}, {1, 2}, sizeof(spa_meta_cursor)};
        mBitmap = {SPA_VIDEO_FORMAT_RGBA, {2, 2}, 8, sizeof(spa_meta_bitmap)};
    }
    bool hasPixels() { return pixelsIn(mBuffer, 4, 3).has_value(); }
    std::optional<PointerNews> pointer()
    {
        std::memcpy(mCursorMemory.data(), &mCursor, sizeof mCursor);
        std::memcpy(mCursorMemory.data() + sizeof mCursor / 4, &mBitmap, sizeof mBitmap);
        return pointerIn(mBuffer);
    }

    static constexpr std::size_t kBitmapAt =
        (sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap)) / 4;

    std::vector<std::uint32_t> mPixels = std::vector<std::uint32_t>(15, 0xAB123456);
    std::vector<std::uint32_t> mCursorMemory =
        std::vector<std::uint32_t>(kBitmapAt + 4, 0xFF302010);
    spa_chunk mChunk{};
    spa_data mData{};
    spa_meta_header mHeader{};
    spa_meta mMetas[2]{};
    spa_buffer mBuffer{};
    spa_meta_cursor mCursor{};
    spa_meta_bitmap mBitmap{};
};

TEST_F(StreamBufferTest, AFrameIsWhereItsChunkSays)
{
    const auto view = pixelsIn(mBuffer, 4, 3);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->pixels, mPixels.data());
    EXPECT_EQ(view->stride, 5);
    mChunk.offset = 4;
    mChunk.size = 56;
    EXPECT_EQ(pixelsIn(mBuffer, 4, 3)->pixels, mPixels.data() + 1);
}

TEST_F(StreamBufferTest, PixelsOutsideOfTheMemoryAreNotThere)
{
    using Spoil = std::function<void()>;
    const std::vector<Spoil> spoils = {
        [&] { mChunk.size = 55; },           [&] { mChunk.offset = 8; },
        [&] { mChunk.offset = 0xFFFFFFFC; }, [&] { mChunk.offset = 1; },
        [&] { mChunk.stride = 12; },         [&] { mChunk.stride = -20; },
        [&] { mChunk.stride = 18; },         [&] { mChunk.stride = 0x7FFFFFFC; },
        [&] { mData.maxsize = 55; },         [&] { mData.data = nullptr; },
        [&] { mBuffer.n_datas = 0; }};
    ASSERT_TRUE(hasPixels());
    const auto chunk = mChunk;
    const auto data = mData;
    for (std::size_t index = 0; index < spoils.size(); ++index) {
        spoils[index]();
        EXPECT_FALSE(hasPixels()) << index;
        mChunk = chunk;
        mData = data;
    }
}

TEST_F(StreamBufferTest, ABufferMayBringNothingButThePointer)
{
    mChunk.flags = SPA_CHUNK_FLAG_CORRUPTED;
    EXPECT_FALSE(hasPixels());
    EXPECT_EQ(pointer()->position, pixelPoint(30, 40));
    mChunk.flags = 0;
    mHeader.flags = SPA_META_HEADER_FLAG_CORRUPTED;
    EXPECT_FALSE(hasPixels());
    mHeader.flags = 0;
    mChunk.size = 0;
    EXPECT_FALSE(hasPixels());
}

TEST_F(StreamBufferTest, APointerHasAPlaceAndAnImage)
{
    const auto news = pointer();
    ASSERT_TRUE(news && news->image);
    EXPECT_EQ(news->position, pixelPoint(30, 40));
    EXPECT_EQ(news->image->width, 2);
    EXPECT_EQ(news->image->hotspot, pixelPoint(1, 2));
    EXPECT_EQ(news->image->pixels, std::vector<std::uint32_t>(4, 0xFF102030));
    mBitmap.format = SPA_VIDEO_FORMAT_BGRA;
    EXPECT_EQ(pointer()->image->pixels, std::vector<std::uint32_t>(4, 0xFF302010));
}

TEST_F(StreamBufferTest, WithoutANewImageItLooksAsBefore)
{
    mCursor.bitmap_offset = 0;
    EXPECT_FALSE(pointer()->image);
    mCursor.bitmap_offset = sizeof(spa_meta_cursor);
    mBitmap = {};
    EXPECT_FALSE(pointer()->image);
}

TEST_F(StreamBufferTest, APointerWithoutANumberIsElsewhere)
{
    mCursor.id = 0;
    ASSERT_TRUE(pointer());
    EXPECT_FALSE(pointer()->position);
    mCursor.id = 1;
    mCursor.position = {70000, 0};
    EXPECT_FALSE(pointer()->position);
}

TEST_F(StreamBufferTest, AnImageOfNoSizeIsHidden)
{
    mBitmap.size = {0, 0};
    EXPECT_EQ(pointer()->image, CursorImage{});
    mBitmap.size = {2, 2};
    mBitmap.offset = 0;
    EXPECT_EQ(pointer()->image, CursorImage{});
}

TEST_F(StreamBufferTest, ImagesOutsideOfTheMemoryAreNotThere)
{
    for (const std::uint32_t offset : {1U, 29U, 4096U, 0xFFFFFFFCU}) {
        mCursor.bitmap_offset = offset;
        EXPECT_FALSE(pointer()->image) << offset;
    }
    mCursor.bitmap_offset = sizeof(spa_meta_cursor);
    for (const spa_meta_bitmap& bitmap :
         {spa_meta_bitmap{SPA_VIDEO_FORMAT_RGBA, {3, 2}, 12, sizeof(spa_meta_bitmap)},
          spa_meta_bitmap{SPA_VIDEO_FORMAT_RGBA, {2, 3}, 8, sizeof(spa_meta_bitmap)},
          spa_meta_bitmap{SPA_VIDEO_FORMAT_RGBA, {2, 2}, 8, 4096},
          spa_meta_bitmap{SPA_VIDEO_FORMAT_RGBA, {2, 2}, -8, sizeof(spa_meta_bitmap)},
          spa_meta_bitmap{SPA_VIDEO_FORMAT_RGBA, {0xFFFFFFFF, 0xFFFFFFFF}, 8, 24},
          spa_meta_bitmap{SPA_VIDEO_FORMAT_NV12, {2, 2}, 8, sizeof(spa_meta_bitmap)}}) {
        mBitmap = bitmap;
        EXPECT_EQ(pointer()->image->pixels.size(), 0U);
    }
    mMetas[1].size = sizeof(spa_meta_cursor) - 1;
    EXPECT_FALSE(pointer());
}

} // namespace
} // namespace farview
