#include "Controls/Switch/NSImage_Additions.h"

#include "Platform/Bundle.h"

std::shared_ptr<farview::Image> bundleImageNamed(const QLNImageSource& source,
                                                 const std::string& name)
{
    if (!source.bundle || !source.registry)
        return nullptr;
    const auto path = source.bundle->pathForResource(name, "tiff");
    if (!path)
        return nullptr;
    if (auto registered = source.registry->imageNamed(*path))
        return registered;
    auto image = source.registry->imageWithContentsOfFile(*path);
    if (image)
        source.registry->setName(image, name);
    return image;
}
