#include "Platform/Posix/SysfsRegistry.h"

#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PropertyListScalars.h"
#include "Platform/Posix/WholeFile.h"

#include <climits>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace farview
{
namespace
{

const std::string servicePlane = "IOService";
const std::string baseClass = "IORegistryEntry";

/// The text of a small file of the kernel; the device tree's end with a NUL.
std::string lineIn(const std::string& path)
{
    constexpr std::size_t largestFile = 4096;
    const auto file = readWholeFile(path, largestFile);
    if (file.status != WholeFile::Status::read)
        return {};
    const std::string_view text = file.bytes;
    return std::string(trimmed(text.substr(0, text.find('\0'))));
}

std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// The parts of "IOService:/a/b"; nothing for another plane or another form.
std::optional<std::vector<std::string>> partsOf(const std::string& path)
{
    const std::string prefix = servicePlane + ":/";
    if (!path.starts_with(prefix))
        return std::nullopt;
    std::vector<std::string> parts;
    for (auto start = prefix.size(); start < path.size();) {
        const auto end = std::min(path.find('/', start), path.size());
        parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

} // namespace

SysfsRegistry::SysfsRegistry(DriverExtensions extensions)
    : SysfsRegistry(std::move(extensions), "/sys", "/proc")
{
}

SysfsRegistry::SysfsRegistry(DriverExtensions extensions, std::string sysRoot, std::string procRoot)
    : mExtensions(std::move(extensions)), mSysRoot(std::move(sysRoot)),
      mProcRoot(std::move(procRoot))
{
}

IORegistry::Entry SysfsRegistry::handleFor(Kind kind, const std::string& path)
{
    const std::string key = (kind == Kind::device ? "device " : "service ") + path;
    const auto next = static_cast<Entry>(resources + 1 + mNodes.size());
    const auto [found, isNew] = mHandles.try_emplace(key, next);
    if (isNew)
        mNodes.push_back({kind, path});
    return found->second;
}

const SysfsRegistry::Node* SysfsRegistry::node(Entry entry) const
{
    const auto index = static_cast<std::size_t>(entry) - resources - 1;
    return entry > resources && index < mNodes.size() ? &mNodes[index] : nullptr;
}

std::vector<IORegistry::Entry> SysfsRegistry::devicesBelow(const std::string& path)
{
    const auto names = foldersInFolder(mSysRoot + "/devices" + path);
    const auto prefix = path + "/";
    std::vector<Entry> entries;
    entries.reserve(names.size());
    for (const auto& name : names)
        entries.push_back(handleFor(Kind::device, prefix + name));
    return entries;
}

bool SysfsRegistry::isLoadedModule(const std::string& name) const
{
    // Modules that are built into the kernel have no state of their own.
    return isPlainFileName(name) && lineIn(mSysRoot + "/module/" + name + "/initstate") == "live";
}

std::vector<IORegistry::Entry> SysfsRegistry::services()
{
    auto names = mExtensions.usableNames();
    for (auto& name : foldersInFolder(mSysRoot + "/module")) {
        if (isLoadedModule(name) && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    std::vector<Entry> entries;
    entries.reserve(names.size());
    for (const auto& name : names)
        entries.push_back(handleFor(Kind::service, name));
    return entries;
}

std::vector<IORegistry::Entry> SysfsRegistry::childEntries(Entry entry, const std::string& plane)
{
    if (plane != servicePlane)
        return {};
    if (entry == root)
        return {machine, resources};
    if (entry == machine)
        return devicesBelow({});
    if (entry == resources)
        return services();
    const auto* found = node(entry);
    if (!found || found->kind != Kind::device)
        return {};
    // A copy: finding the children makes new nodes.
    const auto path = found->path;
    return devicesBelow(path);
}

std::string SysfsRegistry::model() const
{
    for (const auto& path :
         {mSysRoot + "/devices/virtual/dmi/id/product_name", mProcRoot + "/device-tree/model",
          mSysRoot + "/firmware/devicetree/base/model"}) {
        auto text = lineIn(path);
        if (!text.empty())
            return text;
    }
    return {};
}

std::string SysfsRegistry::nameInPlane(Entry entry, const std::string& /*plane*/)
{
    if (entry == root)
        return "Root";
    if (entry == machine)
        return model();
    if (entry == resources)
        return "IOResources";
    const auto* found = node(entry);
    return found ? lastPart(found->path) : std::string{};
}

std::optional<std::string> SysfsRegistry::locationInPlane(Entry /*entry*/,
                                                          const std::string& /*plane*/)
{
    return std::nullopt;
}

std::string SysfsRegistry::deviceClass(const std::string& path) const
{
    std::array<char, PATH_MAX> target{};
    const auto link = mSysRoot + "/devices" + path + "/subsystem";
    const auto length = ::readlink(link.c_str(), target.data(), target.size());
    if (length <= 0)
        return servicePlane;
    return lastPart(std::string(target.data(), static_cast<std::size_t>(length)));
}

std::string SysfsRegistry::className(Entry entry)
{
    if (entry == root)
        return baseClass;
    if (entry == machine)
        return "IOPlatformExpertDevice";
    if (entry == resources)
        return "IOResources";
    const auto* found = node(entry);
    if (!found)
        return {};
    return found->kind == Kind::device ? deviceClass(found->path) : "IOService";
}

std::optional<std::string> SysfsRegistry::superclassOf(const std::string& className)
{
    if (className.empty() || className == baseClass)
        return std::nullopt;
    return className == "IOService" ? baseClass : "IOService";
}

IORegistry::Entry SysfsRegistry::serviceNamed(const std::string& name)
{
    return mExtensions.isUsable(name) || isLoadedModule(name) ? handleFor(Kind::service, name) : 0;
}

IORegistry::Entry SysfsRegistry::deviceNamed(const std::string& parent, const std::string& name)
{
    const auto path = parent + "/" + name;
    const bool exists = isPlainFileName(name) && isRealFolder(mSysRoot + "/devices" + path);
    return exists ? handleFor(Kind::device, path) : 0;
}

/// Goes straight to the one place where such a child would be.
IORegistry::Entry SysfsRegistry::childNamed(Entry entry, const std::string& name)
{
    if (entry == root)
        return name == "IOResources" ? resources : name == model() ? machine : 0;
    if (entry == machine)
        return deviceNamed({}, name);
    if (entry == resources)
        return serviceNamed(name);
    const auto* found = node(entry);
    if (!found || found->kind != Kind::device)
        return 0;
    const auto parent = found->path;
    return deviceNamed(parent, name);
}

IORegistry::Entry SysfsRegistry::entryFromPath(const std::string& path)
{
    const auto parts = partsOf(path);
    if (!parts)
        return 0;
    Entry entry = root;
    for (const auto& part : *parts)
        entry = entry == 0 ? 0 : childNamed(entry, part);
    return entry;
}

} // namespace farview
