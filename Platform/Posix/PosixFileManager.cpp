#include "Platform/Posix/PosixFileManager.h"

#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Posix/PropertyLists/PropertyListWriter.h"
#include "Platform/Posix/Settings/FileReplacement.h"

#include <unistd.h>

namespace farview
{

bool PosixFileManager::fileExistsAtPath(const std::string& path)
{
    return ::access(path.c_str(), F_OK) == 0;
}

bool PosixFileManager::createDirectoryAtPath(const std::string& path)
{
    return !path.empty() && makeFolders(path, 0700) == 0;
}

std::optional<PropertyList>
PosixFileManager::propertyListWithContentsOfFile(const std::string& path)
{
    return readPropertyListFile(path).list;
}

bool PosixFileManager::writePropertyList(const PropertyList& list, const std::string& path)
{
    using Status = PropertyListFile::Status;
    const auto written = PropertyListWriter::write(list);
    const auto target = resolvedLink(path);
    const auto status = readPropertyListFile(target).status;
    if (!written.bytes || target.empty() || status == Status::unreadable)
        return false;
    FileReplacement replacement(target);
    std::string aside;
    return replacement.write(*written.bytes, 0600) == 0 &&
           (status != Status::broken || setAsideFile(target, aside) == 0) &&
           replacement.commit() == 0;
}

bool PosixFileManager::writeData(std::span<const std::uint8_t> bytes, const std::string& path)
{
    const auto target = resolvedLink(path);
    if (target.empty())
        return false;
    FileReplacement replacement(target, Durability::leftToTheSystem);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return replacement.write(text, 0600) == 0 && replacement.commit() == 0;
}

} // namespace farview
