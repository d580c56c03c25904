#pragma once

#include "Platform/Bundle.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace farview
{

/// A bundle whose contents tests fill in.
class FakeBundle final : public Bundle
{
public:
    explicit FakeBundle(std::string path);

    const std::string& bundlePath() const override { return mPath; }
    std::optional<PropertyList> objectForInfoDictionaryKey(const std::string& key) const override;
    std::optional<std::string> pathForResource(const std::string& name,
                                               const std::string& type) const override;
    std::string localizedString(const std::string& key, const std::string& value,
                                const std::string& table) const override;

    void setInfo(const std::string& key, PropertyList value);
    /// Adds "name.type" (or "name") to the resources.
    void addResource(const std::string& name, const std::string& type);
    /// The translation of `key` in the default catalogue.
    void setText(const std::string& key, const std::string& text);
    void setText(const std::string& key, const std::string& text, const std::string& table);

private:
    std::string mPath;
    PropertyList::Dictionary mInfo;
    std::map<std::string, std::string> mResources;
    std::map<std::pair<std::string, std::string>, std::string> mTexts; ///< table, key
};

/// Opens the bundles that tests put there, and no others.
class FakeBundles final : public Bundles
{
public:
    std::shared_ptr<Bundle> bundleWithPath(const std::string& path) override;
    std::shared_ptr<Bundle> bundleWithIdentifier(const std::string& identifier) override;

    /// Makes (or finds) the bundle at that path.
    std::shared_ptr<FakeBundle> add(const std::string& path);
    void remove(const std::string& path) { mBundles.erase(path); }

private:
    std::map<std::string, std::shared_ptr<FakeBundle>> mBundles;
};

} // namespace farview
