#pragma once

#include "Platform/Types/PropertyList.h"

#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// A folder "Name.extension/Contents/" with an Info.plist, resources and texts in every language.
class Bundle
{
public:
    virtual ~Bundle() = default;

    /// The bundle's own folder, absolute.
    virtual const std::string& bundlePath() const = 0;
    virtual std::optional<PropertyList>
    objectForInfoDictionaryKey(const std::string& key) const = 0;
    /// The path of "name.type" (or "name", when the type is empty) in the resources, if it exists.
    virtual std::optional<std::string> pathForResource(const std::string& name,
                                                       const std::string& type) const = 0;
    /// The text for `key` in the user's language. A missing entry shows `value`, or the key itself
    /// when `value` is empty. `table` empty means the default catalogue, "Localizable".
    virtual std::string localizedString(const std::string& key, const std::string& value,
                                        const std::string& table) const = 0;
};

/// Opens bundles.
class Bundles
{
public:
    virtual ~Bundles() = default;

    /// The bundle in that folder, or null when it is none (no readable Info.plist).
    virtual std::shared_ptr<Bundle> bundleWithPath(const std::string& path) = 0;
    /// One that was opened by its path and is in use, with that CFBundleIdentifier; else null.
    virtual std::shared_ptr<Bundle> bundleWithIdentifier(const std::string& identifier) = 0;
};

} // namespace farview
