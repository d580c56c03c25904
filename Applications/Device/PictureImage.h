#pragma once

#include "Screen/Picture.h"

#include <QImage>

namespace farview
{

/// The pixels as an image of that format, where they are: nothing is copied. The picture outlives
/// it.
inline QImage imageOf(const Picture& picture, QImage::Format format)
{
    const auto* pixels = reinterpret_cast<const uchar*>(picture.view().pixels);
    return {pixels, picture.width(), picture.height(),
            picture.width() * static_cast<int>(sizeof(std::uint32_t)), format};
}

} // namespace farview
