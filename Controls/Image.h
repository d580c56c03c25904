#pragma once

#include "Platform/Types/Object.h"
#include "Platform/Types/Rect.h"

#include <memory>
#include <string>

namespace farview
{

/// A picture. What is on it is known to whoever made it.
class Image : public Object
{
public:
    /// In points, whatever the sharpness of the screen.
    virtual Size size() const = 0;
};

/// Makes pictures from files, and keeps them by name.
class ImageRegistry
{
public:
    virtual ~ImageRegistry() = default;

    /// The one that was last given that name; null when none was.
    virtual std::shared_ptr<Image> imageNamed(const std::string& name) const = 0;
    /// Null when the file cannot be read or holds no picture.
    virtual std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) = 0;
    virtual void setName(const std::shared_ptr<Image>& image, const std::string& name) = 0;
};

} // namespace farview
