#include "Platform/Posix/Registry/SysfsRegistry.h"

#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/Registry/DevicePlace.h"
#include "Platform/Posix/UTF8.h"
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
const std::string resourcesName = "IOResources";

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
    mNodes.emplace(root, Node{Kind::root, "Root", {}});
    mNodes.emplace(machine, Node{Kind::machine, {}, {}});
    mNodes.emplace(resources, Node{Kind::resources, resourcesName, {}});
}

const SysfsRegistry::Node* SysfsRegistry::node(Entry entry) const
{
    const auto found = mNodes.find(entry);
    return found == mNodes.end() ? nullptr : &found->second;
}

IORegistry::Entry SysfsRegistry::makeChild(Entry parent, Kind kind, const std::string& name)
{
    mNodes.emplace(mNext, Node{kind, name, mNodes.at(parent).path + "/" + name});
    return mNext++;
}

void SysfsRegistry::forget(Entry entry)
{
    const auto found = mNodes.extract(entry);
    for (const auto child : found.mapped().children)
        forget(child);
}

/// The handles for what is there now, old and new; those of all others are forgotten. The names are
/// sorted.
std::vector<IORegistry::Entry> SysfsRegistry::keepChildren(Entry parent, Kind kind,
                                                           const std::vector<std::string>& names)
{
    const auto known = std::move(mNodes.at(parent).children);
    std::vector<Entry> children;
    children.reserve(names.size());
    auto next = known.begin();
    for (const auto& name : names) {
        while (next != known.end() && mNodes.at(*next).name < name)
            forget(*next++);
        const bool isKnown = next != known.end() && mNodes.at(*next).name == name;
        children.push_back(isKnown ? *next++ : makeChild(parent, kind, name));
    }
    std::for_each(next, known.end(), [this](Entry gone) { forget(gone); });
    mNodes.at(parent).children = children;
    return children;
}

bool SysfsRegistry::isLoadedModule(const std::string& name) const
{
    // Modules that are built into the kernel have no state of their own.
    return isPlainFileName(name) && lineIn(mSysRoot + "/module/" + name + "/initstate") == "live";
}

bool SysfsRegistry::isPublished(const std::string& name) const
{
    return mExtensions.isUsable(name) || isLoadedModule(name);
}

std::vector<std::string> SysfsRegistry::serviceNames() const
{
    auto names = mExtensions.usableNames();
    for (auto& name : foldersInFolder(mSysRoot + "/module")) {
        if (isLoadedModule(name))
            names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<IORegistry::Entry> SysfsRegistry::childEntries(Entry entry, const std::string& plane)
{
    const auto* found = node(entry);
    if (plane != servicePlane || !found)
        return {};
    switch (found->kind) {
    case Kind::root:
        return {machine, resources};
    case Kind::resources:
        return keepChildren(entry, Kind::service, serviceNames());
    case Kind::machine:
    case Kind::device:
        return keepChildren(entry, Kind::device,
                            foldersInFolder(mSysRoot + "/devices" + found->path));
    case Kind::service:
        break;
    }
    return {};
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
    if (entry == machine)
        return validUTF8(model());
    const auto* found = node(entry);
    if (!found)
        return {};
    return validUTF8(found->kind == Kind::device ? devicePlace(found->name).name : found->name);
}

std::optional<std::string> SysfsRegistry::locationInPlane(Entry entry, const std::string& plane)
{
    const auto* found = node(entry);
    if (plane != servicePlane || !found || found->kind != Kind::device)
        return std::nullopt;
    return devicePlace(found->name).location;
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
    const auto* found = node(entry);
    if (!found)
        return {};
    switch (found->kind) {
    case Kind::root:
        return baseClass;
    case Kind::machine:
        return "IOPlatformExpertDevice";
    case Kind::resources:
        return resourcesName;
    case Kind::device:
        return deviceClass(found->path);
    case Kind::service:
        break;
    }
    return servicePlane;
}

std::optional<std::string> SysfsRegistry::superclassOf(const std::string& className)
{
    if (className.empty() || className == baseClass)
        return std::nullopt;
    return className == "IOService" ? baseClass : "IOService";
}

std::vector<std::string> SysfsRegistry::knownServices() const
{
    std::vector<std::string> names;
    for (const auto entry : mNodes.at(resources).children)
        names.push_back(mNodes.at(entry).name);
    return names;
}

/// Checks only this service and those that were asked for before: looking at every published one
/// would take longer.
IORegistry::Entry SysfsRegistry::serviceNamed(const std::string& name)
{
    auto names = knownServices();
    if (std::find(names.begin(), names.end(), name) == names.end())
        names.insert(std::lower_bound(names.begin(), names.end(), name), name);
    std::erase_if(names, [this](const auto& each) { return !isPublished(each); });
    for (const auto entry : keepChildren(resources, Kind::service, names)) {
        if (mNodes.at(entry).name == name)
            return entry;
    }
    return 0;
}

bool SysfsRegistry::isCalled(Entry entry, const std::string& name)
{
    const auto ownName = nameInPlane(entry, servicePlane);
    const auto location = locationInPlane(entry, servicePlane);
    return name == ownName || (location && name == ownName + "@" + *location);
}

IORegistry::Entry SysfsRegistry::childNamed(Entry entry, const std::string& name)
{
    if (entry == root && name == resourcesName)
        return resources;
    if (entry == resources)
        return serviceNamed(name);
    const auto children = childEntries(entry, servicePlane);
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](Entry child) { return isCalled(child, name); });
    return found == children.end() ? 0 : *found;
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
