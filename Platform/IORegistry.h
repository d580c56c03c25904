#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A tree of what the machine is made of and of the services published on it, seen through
/// "planes". Handles are numbers of entries; 0 is no entry.
class IORegistry
{
public:
    using Entry = std::uint32_t;

    virtual ~IORegistry() = default;

    virtual Entry rootEntry() = 0;
    virtual std::vector<Entry> childEntries(Entry entry, const std::string& plane) = 0;
    virtual std::string nameInPlane(Entry entry, const std::string& plane) = 0;
    /// Where the entry sits among its siblings; nothing for an entry without a location.
    virtual std::optional<std::string> locationInPlane(Entry entry, const std::string& plane) = 0;
    virtual std::string className(Entry entry) = 0;
    /// The class above that one; nothing for a root class.
    virtual std::optional<std::string> superclassOf(const std::string& className) = 0;
    /// The entry at a path such as "IOService:/IOResources/Name"; 0 when there is none.
    virtual Entry entryFromPath(const std::string& path) = 0;
};

} // namespace farview
