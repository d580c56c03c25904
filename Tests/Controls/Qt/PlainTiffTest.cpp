#include "Controls/Qt/Switch/PlainTiff.h"

#include <QBuffer>
#include <QtEndian>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace farview::test
{
namespace
{

struct Entry {
    quint16 tag, type;
    quint32 count, value;
};

/// A TIFF of two by one pixels, put together by hand.
struct PlainTiffTest : testing::Test {
    std::vector<Entry> entries = {{256, 3, 1, 2}, {257, 3, 1, 1}, {258, 3, 4, 200}, {259, 3, 1, 1},
                                  {262, 3, 1, 2}, {273, 4, 1, 8}, {277, 3, 1, 4},   {279, 4, 1, 8},
                                  {284, 3, 1, 1}, {338, 3, 1, 2}};

    Entry& entry(quint16 tag)
    {
        return *std::find_if(entries.begin(), entries.end(),
                             [tag](const Entry& each) { return each.tag == tag; });
    }
    QByteArray bytes() const
    {
        QByteArray result(208, '\0');
        const auto put16 = [&](qsizetype place, quint16 value) {
            qToLittleEndian(value, result.data() + place);
        };
        const auto put32 = [&](qsizetype place, quint32 value) {
            qToLittleEndian(value, result.data() + place);
        };
        result.replace(0, 4, QByteArray("II*\0", 4));
        put32(4, 16);
        result.replace(8, 8, QByteArray("\xff\x00\x00\xff\x00\x00\xff\x80", 8));
        put16(16, static_cast<quint16>(entries.size()));
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const auto place = static_cast<qsizetype>(18 + 12 * i);
            put16(place, entries[i].tag);
            put16(place + 2, entries[i].type);
            put32(place + 4, entries[i].count);
            put32(place + 8, entries[i].value);
        }
        for (qsizetype i = 0; i < 4; ++i)
            put16(200 + 2 * i, 8);
        return result;
    }
    bool isRefused() const { return !PlainTiff::parse(bytes()); }
};

TEST_F(PlainTiffTest, ReadsColoursAndTransparency)
{
    const auto tiff = PlainTiff::parse(bytes());
    ASSERT_TRUE(tiff);
    EXPECT_EQ(tiff->size(), QSize(2, 1));
    EXPECT_EQ(tiff->image().pixel(0, 0), qRgba(255, 0, 0, 255));
    EXPECT_EQ(tiff->image().pixel(1, 0), qPremultiply(qRgba(0, 0, 255, 128)));
}

TEST_F(PlainTiffTest, WhatIsOfAnotherKindIsRefused)
{
    struct Change {
        quint16 tag;
        quint32 value;
    };
    for (const auto& [tag, value] :
         {Change{259, 5}, Change{262, 1}, Change{277, 3}, Change{284, 2}, Change{338, 0},
          Change{256, 0}, Change{256, 5000}, Change{257, 3}, Change{279, 4}, Change{258, 8}}) {
        const quint32 before = std::exchange(entry(tag).value, value);
        EXPECT_TRUE(isRefused()) << tag << " " << value;
        entry(tag).value = before;
    }
    EXPECT_FALSE(isRefused());
    EXPECT_FALSE(PlainTiff::parse(QByteArray("MM\0*", 4) + bytes().mid(4)));
    EXPECT_FALSE(PlainTiff::parse({}));
}

TEST_F(PlainTiffTest, PlacesOutsideTheFileAreRefused)
{
    for (const quint32 place : {201u, 0xFFFFFFFFu}) {
        entry(273).value = place;
        EXPECT_TRUE(isRefused()) << place;
    }
    entry(273).value = 8;
    entry(258).value = 0xFFFFFFFE;
    EXPECT_TRUE(isRefused());
}

TEST_F(PlainTiffTest, AFileThatBreaksOffAnywhereIsRefused)
{
    const QByteArray whole = bytes();
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(PlainTiff::parse(whole.left(length))) << length;
}

TEST_F(PlainTiffTest, NoByteThatIsDamagedBreaksIt)
{
    const QByteArray whole = bytes();
    for (qsizetype place = 0; place < whole.size(); ++place) {
        QByteArray damaged = whole;
        damaged[place] = '\xff';
        if (const auto tiff = PlainTiff::parse(damaged)) {
            EXPECT_EQ(tiff->image().size(), tiff->size());
        }
    }
}

} // namespace
} // namespace farview::test
