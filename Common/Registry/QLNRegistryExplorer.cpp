#include "Common/Registry/QLNRegistryExplorer.h"

#include "Common/PerPlatform.h"
#include "Common/Rules/FilledText.h"
#include "Platform/Platform.h"
#include "Platform/Text.h"

#include <algorithm>

using farview::IORegistry;
using farview::PropertyList;

namespace
{

constexpr const char* servicePlane = "IOService";
/// A name's buffer holds 128 bytes, the terminating one included.
constexpr std::size_t longestName = 127;
// Machines are some ten levels deep, and so are classes; what never ends must not end this program.
constexpr std::size_t deepestLevel = 256;
constexpr int longestChain = 64;

bool isInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Cut to fit the buffer, and never in the middle of a character.
std::string cutToBuffer(std::string name)
{
    if (name.size() <= longestName)
        return name;
    // A character has four bytes at most; what goes on longer is no text.
    constexpr std::size_t shortestCut = longestName - 3;
    std::size_t length = longestName;
    while (length > shortestCut && isInsideCharacter(name[length]))
        --length;
    name.resize(isInsideCharacter(name[length]) ? longestName : length);
    return name;
}

std::string entryName(IORegistry& registry, IORegistry::Entry entry, const std::string& plane)
{
    std::string name = registry.nameInPlane(entry, plane);
    if (const auto location = registry.locationInPlane(entry, plane))
        name.append("@").append(*location);
    return cutToBuffer(std::move(name));
}

bool isASCII(const std::string& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char each) { return static_cast<unsigned char>(each) < 0x80; });
}

template <typename Type> const Type* valueFor(const PropertyList& list, const char* key)
{
    const auto* dictionary = list.get<PropertyList::Dictionary>();
    if (!dictionary)
        return nullptr;
    const auto found = dictionary->find(key);
    return found == dictionary->end() ? nullptr : found->second.get<Type>();
}

} // namespace

QLNRegistryExplorer& QLNRegistryExplorer::sharedExplorer()
{
    static farview::PerPlatform<QLNRegistryExplorer> shared;
    return shared.get(farview::Platform::generation(), [] {
        const auto& platform = farview::Platform::current();
        auto explorer = std::make_unique<QLNRegistryExplorer>(*platform.registry, *platform.text);
        explorer->init();
        return explorer;
    });
}

std::string QLNRegistryExplorer::computerModel()
{
    auto& registry = *farview::Platform::current().registry;
    const auto children = registry.childEntries(registry.rootEntry(), servicePlane);
    if (children.empty())
        return {};
    return cutToBuffer(registry.nameInPlane(children.front(), servicePlane));
}

QLNRegistryExplorer::QLNRegistryExplorer(IORegistry& registry, const farview::Text& text)
    : mRegistry(registry), mText(text)
{
}

void QLNRegistryExplorer::init() { mRegistryDictionary = PropertyList::Dictionary{}; }

const char* QLNRegistryExplorer::currentPlaneCString() const
{
    return mCurrentPlane && isASCII(*mCurrentPlane) ? mCurrentPlane->c_str() : nullptr;
}

std::string QLNRegistryExplorer::planeOrNone() const
{
    const char* plane = currentPlaneCString();
    return plane ? plane : "";
}

void QLNRegistryExplorer::buildFullRegistryDictionary()
{
    setRegistryDictionary(dictForIterated(mRegistry.rootEntry()));
}

PropertyList QLNRegistryExplorer::dictForIterated(IORegistry::Entry entry)
{
    Entries ancestors;
    return dictForEntry(entry, ancestors);
}

PropertyList QLNRegistryExplorer::dictForEntry(IORegistry::Entry entry, Entries& ancestors)
{
    std::string name = entryName(mRegistry, entry, planeOrNone());
    std::string className = mRegistry.className(entry);
    // Filled in the order of the keys, each value moved: the children are most of the registry.
    PropertyList::Dictionary dictionary;
    const auto add = [&dictionary](const char* key, PropertyList value) {
        dictionary.emplace_hint(dictionary.end(), key, std::move(value));
    };
    add("children", childrenOf(entry, ancestors));
    add("className", className);
    add("inheritance", createInheritanceStringForIORegistryClassName(className));
    add("name", std::move(name));
    add("regEntry", static_cast<std::int32_t>(entry));
    add("state", "");
    return dictionary;
}

PropertyList::Array QLNRegistryExplorer::childrenOf(IORegistry::Entry entry, Entries& ancestors)
{
    PropertyList::Array children;
    if (ancestors.size() >= deepestLevel)
        return children;
    ancestors.push_back(entry);
    const auto entries = mRegistry.childEntries(entry, planeOrNone());
    children.reserve(entries.size());
    for (const auto child : entries) {
        const bool isLoop = std::find(ancestors.begin(), ancestors.end(), child) != ancestors.end();
        if (!isLoop)
            children.push_back(dictForEntry(child, ancestors));
    }
    ancestors.pop_back();
    return children;
}

std::string
QLNRegistryExplorer::createInheritanceStringForIORegistryClassName(const std::string& className)
{
    std::string chain = className;
    auto superclass = mRegistry.superclassOf(className);
    for (int length = 0; superclass && length < longestChain; ++length) {
        chain.insert(0, *superclass + " : ");
        superclass = mRegistry.superclassOf(*superclass);
    }
    return chain;
}

std::optional<PropertyList> QLNRegistryExplorer::findNamedIORegistryService(const std::string& name)
{
    if (!isASCII(name))
        return std::nullopt;
    const auto end = name.find('\0');
    std::string path(servicePlane);
    path.append(":/IOResources/").append(name, 0, end);
    const auto entry = mRegistry.entryFromPath(path);
    if (entry == 0)
        return std::nullopt;
    return dictForIterated(entry);
}

QLNRegistryExplorer::Paths QLNRegistryExplorer::searchResultsForText(const std::string& text,
                                                                     bool searchKeys,
                                                                     bool /*searchValues*/) const
{
    // Entries keep no properties, so there is nothing in them to look through.
    if (!searchKeys)
        return {};
    return searchKeysResultsInDictionary(mRegistryDictionary, text, "");
}

QLNRegistryExplorer::Paths QLNRegistryExplorer::searchKeysResultsInDictionary(
    const PropertyList& dictionary, const std::string& text, const std::string& passedPath) const
{
    Paths results;
    const auto* name = valueFor<std::string>(dictionary, "name");
    const std::string path =
        passedPath + ":" + farview::textOrNull(name ? std::optional(*name) : std::nullopt);
    const bool isFound = name && !text.empty() &&
                         mText.uppercase(*name).find(mText.uppercase(text)) != std::string::npos;
    if (isFound)
        results.push_back(path);
    const auto* children = valueFor<PropertyList::Array>(dictionary, "children");
    if (!children)
        return results;
    for (const auto& child : *children) {
        auto below = searchKeysResultsInDictionary(child, text, path);
        std::move(below.begin(), below.end(), std::back_inserter(results));
    }
    return results;
}
