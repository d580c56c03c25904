#include "Controls/Qt/Switch/PlainTiff.h"

#include <QtEndian>

#include <map>

namespace farview
{
namespace
{

constexpr quint32 largestSide = 4096;
constexpr qsizetype entrySize = 12;

enum Tag : quint16 {
    imageWidth = 256,
    imageLength = 257,
    compression = 259,
    photometric = 262,
    stripOffsets = 273,
    samplesPerPixel = 277,
    stripByteCounts = 279,
    planarConfiguration = 284,
    predictor = 317,
    extraSamples = 338,
    bitsPerSample = 258,
};

using Fields = std::map<quint16, quint32>; // of one number each; what has more is its place

template <typename Number> std::optional<Number> numberAt(const QByteArray& bytes, quint64 place)
{
    if (place + sizeof(Number) > static_cast<quint64>(bytes.size()))
        return std::nullopt;
    return qFromLittleEndian<Number>(bytes.constData() + place);
}

Fields readFields(const QByteArray& bytes)
{
    constexpr quint16 shortType = 3;
    const quint64 directory = numberAt<quint32>(bytes, 4).value_or(0);
    const int count = numberAt<quint16>(bytes, directory).value_or(0);
    Fields fields;
    for (int i = 0; i < count; ++i) {
        const quint64 entry = directory + 2 + static_cast<quint64>(i * entrySize);
        const auto tag = numberAt<quint16>(bytes, entry);
        const auto type = numberAt<quint16>(bytes, entry + 2);
        const auto length = numberAt<quint32>(bytes, entry + 4);
        const auto value = numberAt<quint32>(bytes, entry + 8);
        if (!value)
            return {};
        fields[*tag] = *type == shortType && *length == 1 ? *value & 0xFFFF : *value;
    }
    return fields;
}

quint32 field(const Fields& fields, Tag tag, quint32 preset)
{
    const auto found = fields.find(tag);
    return found == fields.end() ? preset : found->second;
}

/// Whether each of the four samples has eight bits.
bool hasBytes(const QByteArray& bytes, const Fields& fields)
{
    const quint64 place = field(fields, bitsPerSample, 0);
    for (quint64 i = 0; i < 4; ++i) {
        if (numberAt<quint16>(bytes, place + 2 * i) != 8)
            return false;
    }
    return true;
}

bool isPlain(const QByteArray& bytes, const Fields& fields)
{
    const quint32 extra = field(fields, extraSamples, 0);
    return field(fields, compression, 1) == 1 && field(fields, photometric, 0) == 2 &&
           field(fields, samplesPerPixel, 1) == 4 && field(fields, planarConfiguration, 1) == 1 &&
           field(fields, predictor, 1) == 1 && (extra == 1 || extra == 2) &&
           hasBytes(bytes, fields);
}

} // namespace

std::optional<PlainTiff> PlainTiff::parse(const QByteArray& bytes)
{
    if (!bytes.startsWith(QByteArray("II*\0", 4)))
        return std::nullopt;
    const Fields fields = readFields(bytes);
    const quint32 width = field(fields, imageWidth, 0);
    const quint32 height = field(fields, imageLength, 0);
    const bool reasonable =
        width > 0 && height > 0 && width <= largestSide && height <= largestSide;
    if (!reasonable || !isPlain(bytes, fields))
        return std::nullopt;
    const quint64 begin = field(fields, stripOffsets, 0);
    const quint64 length = field(fields, stripByteCounts, 0);
    // More pieces than one have no length of the whole.
    if (length != quint64(width) * height * 4 || begin + length > quint64(bytes.size()))
        return std::nullopt;
    PlainTiff result;
    result.mSize = QSize(static_cast<int>(width), static_cast<int>(height));
    result.mPixels = bytes.mid(static_cast<qsizetype>(begin), static_cast<qsizetype>(length));
    result.mPremultiplied = field(fields, extraSamples, 0) == 1;
    return result;
}

QImage PlainTiff::image() const
{
    const auto format =
        mPremultiplied ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGBA8888;
    const QImage bytes(reinterpret_cast<const uchar*>(mPixels.constData()), mSize.width(),
                       mSize.height(), mSize.width() * 4, format);
    return bytes.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace farview
