#pragma once

#include "Screen/Picture.h"

#include <QImage>

namespace farview
{

/// The pixels where they are: nothing is copied. The picture outlives it. The highest byte is taken
/// for the opacity, by which the others are multiplied.
inline QImage imageOf(const Picture& picture)
{
    const auto* pixels = reinterpret_cast<const uchar*>(picture.view().pixels);
    return {pixels, picture.width(), picture.height(),
            picture.width() * static_cast<qsizetype>(sizeof(std::uint32_t)),
            QImage::Format_ARGB32_Premultiplied};
}

} // namespace farview
