#include "Platform/Posix/PosixBundle.h"

#include "Platform/Log.h"
#include "Platform/Posix/Languages.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Posix/PropertyLists/StringsFile.h"
#include "Platform/Posix/WholeFile.h"

#include <climits>
#include <unistd.h>

#include <array>

namespace farview
{
namespace
{

/// Absolute and without a slash at its end; links stay as they are.
std::string bundlePathFrom(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    if (path.starts_with('/'))
        return path;
    std::array<char, PATH_MAX> folder{};
    return ::getcwd(folder.data(), folder.size()) ? std::string(folder.data()) + "/" + path : path;
}

/// Resources lie inside their bundle.
bool staysInside(const std::string& name)
{
    return !name.empty() && name.find('\0') == std::string::npos &&
           ("/" + name + "/").find("/../") == std::string::npos;
}

std::string inLanguage(std::string resources, const std::string& language, const std::string& file)
{
    return std::move(resources.append(language).append(".lproj/").append(file));
}

} // namespace

PosixBundle::PosixBundle(std::string path, PropertyList::Dictionary info,
                         std::vector<std::string> languages, Log& log)
    : mPath(std::move(path)), mInfo(std::move(info)), mLanguages(std::move(languages)), mLog(log)
{
}

std::optional<PropertyList> PosixBundle::objectForInfoDictionaryKey(const std::string& key) const
{
    const auto found = mInfo.find(key);
    return found == mInfo.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> PosixBundle::pathForResource(const std::string& name,
                                                        const std::string& type) const
{
    const auto file = type.empty() ? name : name + "." + type;
    if (name.empty() || !staysInside(file))
        return std::nullopt;
    const auto resources = mPath + "/Contents/Resources/";
    std::vector<std::string> candidates{resources + file};
    for (const auto& language : mLanguages)
        candidates.push_back(inLanguage(resources, language, file));
    for (auto& candidate : candidates) {
        if (::access(candidate.c_str(), F_OK) == 0)
            return std::move(candidate);
    }
    return std::nullopt;
}

PosixBundle::Texts PosixBundle::readCatalogue(const std::string& path) const
{
    const auto file = readWholeFile(path, StringsFile::largestSize);
    if (file.status == WholeFile::Status::missing)
        return {};
    auto parsed = file.status == WholeFile::Status::read
                      ? StringsFile::parse(file.bytes)
                      : StringsFile{std::nullopt, "too large or not readable"};
    if (!parsed.texts)
        mLog.write(LogLevel::warning, "the catalogue " + path + " is refused: " + parsed.reason);
    return std::move(parsed.texts).value_or(Texts{});
}

const std::vector<PosixBundle::Texts>& PosixBundle::catalogues(const std::string& table) const
{
    const auto known = mCatalogues.find(table);
    if (known != mCatalogues.end())
        return known->second;
    auto& list = mCatalogues[table];
    if (!staysInside(table))
        return list;
    const auto resources = mPath + "/Contents/Resources/";
    const auto file = table + ".strings";
    for (const auto& language : mLanguages) {
        auto texts = readCatalogue(inLanguage(resources, language, file));
        if (!texts.empty())
            list.push_back(std::move(texts));
    }
    return list;
}

std::string PosixBundle::localizedString(const std::string& key, const std::string& value,
                                         const std::string& table) const
{
    for (const auto& texts : catalogues(table.empty() ? "Localizable" : table)) {
        const auto found = texts.find(key);
        if (found != texts.end())
            return found->second;
    }
    return value.empty() ? key : value;
}

PosixBundles::PosixBundles(EnvironmentUse use, Log& log)
    : mLanguages(preferredLanguages(Environment(use))), mLog(log)
{
}

std::shared_ptr<Bundle> PosixBundles::bundleWithPath(const std::string& path)
{
    if (path.empty())
        return nullptr;
    const auto absolute = bundlePathFrom(path);
    auto info = readDictionaryFile(absolute + "/Contents/Info.plist");
    if (!info.reason.empty())
        mLog.write(LogLevel::warning, "the bundle " + absolute + " is refused: " + info.reason);
    if (!info.list)
        return nullptr;
    const auto bundle = std::make_shared<PosixBundle>(
        absolute, std::move(*info.list->get<PropertyList::Dictionary>()), mLanguages, mLog);
    std::erase_if(mOpened, [](const auto& each) { return each.expired(); });
    mOpened.push_back(bundle);
    return bundle;
}

std::shared_ptr<Bundle> PosixBundles::bundleWithIdentifier(const std::string& identifier)
{
    for (const auto& each : mOpened) {
        const auto bundle = each.lock();
        if (bundle &&
            bundle->objectForInfoDictionaryKey("CFBundleIdentifier") == PropertyList(identifier))
            return bundle;
    }
    return nullptr;
}

} // namespace farview
