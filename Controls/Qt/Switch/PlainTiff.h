#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace farview
{

/// A TIFF of the plainest kind, as the build makes them: little-endian, four uncompressed bytes to
/// a pixel, in one piece. Reading it needs no library; any other kind is the toolkit's business.
class PlainTiff
{
public:
    /// The picture in a file's bytes; none when they are anything else, or damaged.
    static std::optional<PlainTiff> parse(const QByteArray& bytes);

    QSize size() const { return mSize; }
    QImage image() const;

private:
    QSize mSize;
    QByteArray mPixels;
    bool mPremultiplied = false;
};

} // namespace farview
