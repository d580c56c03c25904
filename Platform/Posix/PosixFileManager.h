#pragma once

#include "Platform/FileManager.h"

namespace farview
{

/// Files of the file system. New files and folders are the user's alone (0600, 0700). A link in a
/// file's place is followed. Main thread only.
class PosixFileManager final : public FileManager
{
public:
    bool fileExistsAtPath(const std::string& path) override;
    bool createDirectoryAtPath(const std::string& path) override;
    std::optional<PropertyList> propertyListWithContentsOfFile(const std::string& path) override;
    bool writePropertyList(const PropertyList& list, const std::string& path) override;
    bool writeData(std::span<const std::uint8_t> bytes, const std::string& path) override;
};

} // namespace farview
