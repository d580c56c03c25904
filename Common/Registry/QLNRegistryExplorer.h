#pragma once

#include "Platform/IORegistry.h"
#include "Platform/Types/PropertyList.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{
class Text;
}

/// Reads the machine's registry into plain dictionaries. Set the plane before any walk, and build
/// before you search. Main thread only; entries that go while it reads are left out.
class QLNRegistryExplorer
{
public:
    using Paths = std::vector<std::string>;

    /// The process-wide reader, made on first use on the current platform.
    static QLNRegistryExplorer& sharedExplorer();
    /// What the machine calls itself ("MacBookPro6,2"); empty when nothing tells it. Asks the
    /// current platform, whatever any explorer's plane.
    static std::string computerModel();

    /// Both are used, not owned; `text` knows upper case.
    QLNRegistryExplorer(farview::IORegistry& registry, const farview::Text& text);
    /// Gives it an empty registry dictionary.
    void init();

    /// The plane of every walk; nothing until it is set.
    const std::optional<std::string>& currentPlane() const { return mCurrentPlane; }
    void setCurrentPlane(std::optional<std::string> plane) { mCurrentPlane = std::move(plane); }
    /// The same in ASCII, valid until the plane changes; null when there is none, or it is not
    /// ASCII.
    const char* currentPlaneCString() const;

    /// The root entry's dictionary of the last full build; an empty one before the first.
    const farview::PropertyList& registryDictionary() const { return mRegistryDictionary; }
    void setRegistryDictionary(farview::PropertyList dictionary)
    {
        mRegistryDictionary = std::move(dictionary);
    }

    /// Walks the whole registry. What was built before is freed.
    void buildFullRegistryDictionary();

    /// One entry with everything below it in the current plane: "children", "name" (127 bytes at
    /// most, with "@" and its location), "className", "state" (always empty), "inheritance" and
    /// "regEntry".
    farview::PropertyList dictForIterated(farview::IORegistry::Entry entry);

    /// The chain of classes, root first: "A : B : C".
    std::string createInheritanceStringForIORegistryClassName(const std::string& className);

    /// The service of that name below "IOResources", as the dictionary of its entry and all below
    /// it; nothing when no such service is published.
    std::optional<farview::PropertyList> findNamedIORegistryService(const std::string& name);

    /// The entries of the last full build whose names contain `text`, upper and lower case being
    /// the same: chains of names (":Root:Machine:Bridge"), parents before children. Nothing for an
    /// empty text, or unless `searchKeys`. Values are never searched.
    Paths searchResultsForText(const std::string& text, bool searchKeys, bool searchValues) const;
    /// The same in one entry's dictionary, which lies below `passedPath`.
    Paths searchKeysResultsInDictionary(const farview::PropertyList& dictionary,
                                        const std::string& text,
                                        const std::string& passedPath) const;

private:
    using Entries = std::vector<farview::IORegistry::Entry>;

    farview::PropertyList dictForEntry(farview::IORegistry::Entry entry, Entries& ancestors);
    farview::PropertyList::Array childrenOf(farview::IORegistry::Entry entry, Entries& ancestors);
    std::string planeOrNone() const;

    farview::IORegistry& mRegistry;
    const farview::Text& mText;
    farview::PropertyList mRegistryDictionary;
    std::optional<std::string> mCurrentPlane;
};
