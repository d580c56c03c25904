#pragma once

#include "Platform/Posix/WholeFile.h"
#include "Platform/Types/PropertyList.h"

#include <optional>
#include <string>

namespace farview
{

/// A property list read from a file that anyone may have written.
struct PropertyListFile {
    enum class Status {
        read,
        missing,
        broken,     ///< there is a file, and it is no property list of ours
        unreadable, ///< it may be a good one, but it could not be read now
    };

    Status status = Status::missing;
    std::optional<PropertyList> list;
    std::string reason; ///< why it is broken or unreadable
    WholeFile file;     ///< its bytes are gone, its descriptor and identity are kept
};

PropertyListFile readPropertyListFile(const std::string& path);
/// The same; a list that is no dictionary is broken.
PropertyListFile readDictionaryFile(const std::string& path);

/// The text that the key has; empty when it has none.
std::string textFor(const PropertyList::Dictionary& dictionary, const std::string& key);

/// The text for an errno, for the log.
std::string errorText(int error);

} // namespace farview
