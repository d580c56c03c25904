#pragma once

#include "Platform/IORegistry.h"
#include "Platform/Types/PropertyList.h"

#include <optional>
#include <string>

/// Reads the machine's registry into plain dictionaries. Main thread only.
class QLNRegistryExplorer
{
public:
    /// The process-wide reader, made on first use on the current platform.
    static QLNRegistryExplorer& sharedExplorer();

    explicit QLNRegistryExplorer(farview::IORegistry& registry);

    /// The plane of every walk; nothing until it is set.
    const std::optional<std::string>& currentPlane() const { return mCurrentPlane; }
    void setCurrentPlane(std::optional<std::string> plane) { mCurrentPlane = std::move(plane); }

    /// The service of that name below "IOResources", as the dictionary of its entry and all below
    /// it; nothing when no such service is published.
    std::optional<farview::PropertyList> findNamedIORegistryService(const std::string& name);

    /// One entry with everything below it in the current plane: "children", "name", "className",
    /// "state" (always empty), "inheritance" and "regEntry".
    farview::PropertyList dictForIterated(farview::IORegistry::Entry entry);

    /// The chain of classes, root first: "A : B : C".
    std::string createInheritanceStringForIORegistryClassName(const std::string& className);

private:
    farview::IORegistry& mRegistry;
    std::optional<std::string> mCurrentPlane;
};
