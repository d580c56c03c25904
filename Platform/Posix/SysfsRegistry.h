#pragma once

#include "Platform/IORegistry.h"
#include "Platform/Posix/DriverExtensions.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace farview
{

/// The machine as the kernel shows it, in the plane "IOService":
///
/// ```
/// Root                      IORegistryEntry
///   <model of the machine>  IOPlatformExpertDevice; the name is empty when nothing tells the model
///     pci0000:00 ...        the folders of sysfs' "devices"; the class is the device's subsystem
///   IOResources             IOResources
///     <name>                IOService: loaded kernel modules, usable driver extensions
/// ```
///
/// Looks at the system at each call; only handles are remembered, one per entry for as long as this
/// object lives, so they stay the same whatever comes and goes. No entry has a location. Main
/// thread only.
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

private:
    static constexpr Entry root = 1;
    static constexpr Entry machine = 2;
    static constexpr Entry resources = 3;

    enum class Kind : std::uint8_t { device, service };
    struct Node {
        Kind kind;
        std::string path; ///< of a device's folder below "devices"; of a service, its name
    };

    Entry handleFor(Kind kind, const std::string& path);
    const Node* node(Entry entry) const;
    std::vector<Entry> devicesBelow(const std::string& path);
    std::vector<Entry> services();
    Entry childNamed(Entry entry, const std::string& name);
    Entry serviceNamed(const std::string& name);
    Entry deviceNamed(const std::string& parent, const std::string& name);
    std::string deviceClass(const std::string& path) const;
    std::string model() const;
    bool isLoadedModule(const std::string& name) const;

    DriverExtensions mExtensions;
    std::string mSysRoot;
    std::string mProcRoot;
    std::vector<Node> mNodes;
    std::unordered_map<std::string, Entry> mHandles;
};

} // namespace farview
