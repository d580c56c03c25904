#pragma once

#include "Platform/Types/PropertyList.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace farview
{

/// Files of the user, whole.
class FileManager
{
public:
    virtual ~FileManager() = default;

    virtual bool fileExistsAtPath(const std::string& path) = 0;
    /// Creates the folder and those above it (0700). True when it exists afterwards.
    virtual bool createDirectoryAtPath(const std::string& path) = 0;
    /// The property list in that file; nothing when it is missing or broken. A broken file is set
    /// aside beside its place at the next write, never overwritten.
    virtual std::optional<PropertyList> propertyListWithContentsOfFile(const std::string& path) = 0;
    /// Replaces the file in one step: at any moment it holds the old or the new list. False on
    /// failure.
    virtual bool writePropertyList(const PropertyList& list, const std::string& path) = 0;
    /// The same for bytes of any kind, without waiting for the disk: a power failure may take them
    /// away. Whatever file is in that place is replaced.
    virtual bool writeData(std::span<const std::uint8_t> bytes, const std::string& path) = 0;
};

} // namespace farview
