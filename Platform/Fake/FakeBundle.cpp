#include "Platform/Fake/FakeBundle.h"

namespace farview
{
namespace
{

constexpr const char* defaultTable = "Localizable";

std::string fileName(const std::string& name, const std::string& type)
{
    return type.empty() ? name : name + "." + type;
}

} // namespace

FakeBundle::FakeBundle(std::string path) : mPath(std::move(path)) {}

std::optional<PropertyList> FakeBundle::objectForInfoDictionaryKey(const std::string& key) const
{
    const auto found = mInfo.find(key);
    return found == mInfo.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> FakeBundle::pathForResource(const std::string& name,
                                                       const std::string& type) const
{
    const auto found = mResources.find(fileName(name, type));
    return found == mResources.end() ? std::nullopt : std::optional(found->second);
}

std::string FakeBundle::localizedString(const std::string& key, const std::string& value,
                                        const std::string& table) const
{
    const auto found = mTexts.find({table.empty() ? defaultTable : table, key});
    if (found != mTexts.end())
        return found->second;
    return value.empty() ? key : value;
}

void FakeBundle::setInfo(const std::string& key, PropertyList value)
{
    mInfo.insert_or_assign(key, std::move(value));
}

void FakeBundle::addResource(const std::string& name, const std::string& type)
{
    const std::string file = fileName(name, type);
    mResources[file] = mPath + "/Contents/Resources/" + file;
}

void FakeBundle::setText(const std::string& key, const std::string& text)
{
    setText(key, text, defaultTable);
}

void FakeBundle::setText(const std::string& key, const std::string& text, const std::string& table)
{
    mTexts[{table, key}] = text;
}

std::shared_ptr<Bundle> FakeBundles::bundleWithPath(const std::string& path)
{
    const auto found = mBundles.find(path);
    return found == mBundles.end() ? nullptr : found->second;
}

std::shared_ptr<Bundle> FakeBundles::bundleWithIdentifier(const std::string& identifier)
{
    for (const auto& [path, bundle] : mBundles) {
        if (bundle->objectForInfoDictionaryKey("CFBundleIdentifier") == PropertyList(identifier))
            return bundle;
    }
    return nullptr;
}

std::shared_ptr<FakeBundle> FakeBundles::add(const std::string& path)
{
    auto& bundle = mBundles[path];
    if (!bundle)
        bundle = std::make_shared<FakeBundle>(path);
    return bundle;
}

} // namespace farview
