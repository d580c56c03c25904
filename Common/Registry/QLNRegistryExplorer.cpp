#include "Common/Registry/QLNRegistryExplorer.h"

#include "Common/PerPlatform.h"
#include "Platform/Platform.h"

#include <utility>

using farview::IORegistry;
using farview::PropertyList;

namespace
{

/// A name's buffer holds 128 bytes, the terminating one included.
constexpr std::size_t longestName = 127;

bool isInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Cut to fit the buffer, and never in the middle of a character.
std::string cutToBuffer(std::string name)
{
    if (name.size() <= longestName)
        return name;
    std::size_t length = longestName;
    while (length > 0 && isInsideCharacter(name[length]))
        --length;
    name.resize(length);
    return name;
}

std::string entryName(IORegistry& registry, IORegistry::Entry entry, const std::string& plane)
{
    std::string name = registry.nameInPlane(entry, plane);
    if (const auto location = registry.locationInPlane(entry, plane))
        name += "@" + *location;
    return cutToBuffer(std::move(name));
}

} // namespace

QLNRegistryExplorer& QLNRegistryExplorer::sharedExplorer()
{
    static farview::PerPlatform<QLNRegistryExplorer> shared;
    return shared.get(farview::Platform::generation(), [] {
        return std::make_unique<QLNRegistryExplorer>(*farview::Platform::current().registry);
    });
}

QLNRegistryExplorer::QLNRegistryExplorer(IORegistry& registry) : mRegistry(registry) {}

std::optional<PropertyList> QLNRegistryExplorer::findNamedIORegistryService(const std::string& name)
{
    const auto entry = mRegistry.entryFromPath("IOService:/IOResources/" + name);
    if (entry == 0)
        return std::nullopt;
    return dictForIterated(entry);
}

PropertyList QLNRegistryExplorer::dictForIterated(IORegistry::Entry entry)
{
    const std::string plane = mCurrentPlane.value_or("");
    const std::string className = mRegistry.className(entry);
    PropertyList::Array children;
    for (const auto child : mRegistry.childEntries(entry, plane))
        children.push_back(dictForIterated(child));
    return PropertyList::Dictionary{
        {"children", std::move(children)},
        {"name", entryName(mRegistry, entry, plane)},
        {"className", className},
        {"state", ""},
        {"inheritance", createInheritanceStringForIORegistryClassName(className)},
        {"regEntry", static_cast<std::int32_t>(entry)},
    };
}

std::string
QLNRegistryExplorer::createInheritanceStringForIORegistryClassName(const std::string& className)
{
    std::string chain = className;
    auto superclass = mRegistry.superclassOf(className);
    while (superclass) {
        chain.insert(0, *superclass + " : ");
        superclass = mRegistry.superclassOf(*superclass);
    }
    return chain;
}
