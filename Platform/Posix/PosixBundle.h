#pragma once

#include "Platform/Bundle.h"
#include "Platform/Posix/Environment.h"
#include "Platform/Types/PropertyList.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

class Log;

/// A bundle on the disk. A resource is looked for in "Contents/Resources" first, then in the
/// folders of the user's languages there ("de.lproj"). Catalogues are read at their first use and
/// kept; a broken one is logged and counts as absent. Main thread only.
class PosixBundle final : public Bundle
{
public:
    PosixBundle(std::string path, PropertyList::Dictionary info, std::vector<std::string> languages,
                Log& log);

    const std::string& bundlePath() const override { return mPath; }
    std::optional<PropertyList> objectForInfoDictionaryKey(const std::string& key) const override;
    std::optional<std::string> pathForResource(const std::string& name,
                                               const std::string& type) const override;
    std::string localizedString(const std::string& key, const std::string& value,
                                const std::string& table) const override;

private:
    using Texts = std::map<std::string, std::string>;

    const std::vector<Texts>& catalogues(const std::string& table) const;
    Texts readCatalogue(const std::string& path) const;

    std::string mPath;
    PropertyList::Dictionary mInfo;
    std::vector<std::string> mLanguages;
    Log& mLog;
    mutable std::map<std::string, std::vector<Texts>> mCatalogues; ///< by table
};

/// Opens bundles on the disk. The user's languages are asked for once, at construction.
class PosixBundles final : public Bundles
{
public:
    /// `log` is used, not owned, and outlives the bundles.
    PosixBundles(EnvironmentUse use, Log& log);

    std::shared_ptr<Bundle> bundleWithPath(const std::string& path) override;
    std::shared_ptr<Bundle> bundleWithIdentifier(const std::string& identifier) override;

private:
    std::vector<std::string> mLanguages;
    Log& mLog;
    std::vector<std::weak_ptr<Bundle>> mOpened;
};

} // namespace farview
