#pragma once

#include "Controls/Image.h"

#include <memory>
#include <string>

namespace farview
{
class Bundle;
}

/// Where a control's pictures come from: the bundle that holds them, and who makes them.
struct QLNImageSource {
    const farview::Bundle* bundle = nullptr; ///< null: there are no pictures
    std::shared_ptr<farview::ImageRegistry> registry;
};

/// The "tiff" of that name in the source's bundle; null when there is none. A picture is looked up
/// by its path but registered by its name, so every call loads the file, and sees it as it is now.
std::shared_ptr<farview::Image> bundleImageNamed(const QLNImageSource& source,
                                                 const std::string& name);
