#pragma once

#include "Platform/IORegistry.h"
#include "Platform/Posix/Registry/DriverExtensions.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace farview
{

/// The machine as the kernel shows it, in the plane "IOService":
///
/// ```
/// Root                        IORegistryEntry
///   <model of the machine>    IOPlatformExpertDevice; the name is empty when nothing tells the
///     pci0000@00 ...          model. Below it the folders of sysfs' "devices"; the class is the
///                             device's subsystem
///   IOResources               IOResources
///     <name>                  IOService: loaded kernel modules, usable driver extensions
/// ```
///
/// A device whose folder is named by its place has that as its location: "PNP0C0F:02" is "PNP0C0F"
/// at "02", "40003000.serial" is "serial" at "40003000", "0000:00:1f.2" is "pci" there. Links are
/// not followed; a folder that cannot be read has nothing below it.
///
/// Looks at the system at each call. A handle belongs to one entry for as long as that is there and
/// is never given to another; those of entries that went are forgotten when their place is looked
/// at again. Main thread only.
class SysfsRegistry final : public IORegistry
{
public:
    explicit SysfsRegistry(DriverExtensions extensions);
    /// With other folders in the places of "/sys" and "/proc".
    SysfsRegistry(DriverExtensions extensions, std::string sysRoot, std::string procRoot);

    Entry rootEntry() override { return root; }
    std::vector<Entry> childEntries(Entry entry, const std::string& plane) override;
    std::string nameInPlane(Entry entry, const std::string& plane) override;
    std::optional<std::string> locationInPlane(Entry entry, const std::string& plane) override;
    std::string className(Entry entry) override;
    std::optional<std::string> superclassOf(const std::string& className) override;
    Entry entryFromPath(const std::string& path) override;

    /// How many entries have a handle now.
    std::size_t handleCount() const { return mNodes.size(); }

private:
    static constexpr Entry root = 1;
    static constexpr Entry machine = 2;
    static constexpr Entry resources = 3;

    enum class Kind : std::uint8_t { root, machine, resources, device, service };
    struct Node {
        Kind kind;
        std::string name;              ///< a device's folder, a service's name
        std::string path;              ///< of a device, below "devices"
        std::vector<Entry> children{}; ///< those that are known, sorted by name
    };

    const Node* node(Entry entry) const;
    std::vector<Entry> keepChildren(Entry parent, Kind kind, const std::vector<std::string>& names);
    Entry makeChild(Entry parent, Kind kind, const std::string& name);
    void forget(Entry entry);
    std::vector<std::string> serviceNames() const;
    std::vector<std::string> knownServices() const;
    bool isPublished(const std::string& name) const;
    bool isLoadedModule(const std::string& name) const;
    Entry childNamed(Entry entry, const std::string& name);
    Entry serviceNamed(const std::string& name);
    bool isCalled(Entry entry, const std::string& name);
    std::string model() const;
    std::string deviceClass(const std::string& path) const;

    DriverExtensions mExtensions;
    std::string mSysRoot;
    std::string mProcRoot;
    std::unordered_map<Entry, Node> mNodes;
    Entry mNext = resources + 1;
};

} // namespace farview
