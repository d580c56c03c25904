#include "Platform/Posix/Languages.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace farview
{
namespace
{

std::string localeOf(const Environment& environment)
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        auto value = environment.value(name);
        if (!value.empty())
            return value;
    }
    return {};
}

bool isPlain(std::string_view locale)
{
    return locale == "C" || locale == "POSIX" || locale.starts_with("C.");
}

/// "de_AT.UTF-8@euro" is "de_AT". Names are looked up as folders, so only letters, digits, "_" and
/// "-" are let through.
std::string languageOf(std::string_view locale)
{
    const auto language = locale.substr(0, locale.find_first_of(".@"));
    const bool isName = std::all_of(language.begin(), language.end(), [](char each) {
        return (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z') ||
               (each >= '0' && each <= '9') || each == '_' || each == '-';
    });
    return isName ? std::string(language) : std::string{};
}

/// Where a script tells languages apart better than a country does.
std::string_view scriptOf(std::string_view language)
{
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> scripts = {
        {{"zh_CN", "zh-Hans"},
         {"zh_SG", "zh-Hans"},
         {"zh_TW", "zh-Hant"},
         {"zh_HK", "zh-Hant"},
         {"zh_MO", "zh-Hant"}}};
    const auto* found = std::find_if(scripts.begin(), scripts.end(),
                                     [&](const auto& each) { return each.first == language; });
    return found == scripts.end() ? std::string_view{} : found->second;
}

void add(std::vector<std::string>& languages, std::string name)
{
    if (!name.empty() && std::find(languages.begin(), languages.end(), name) == languages.end())
        languages.push_back(std::move(name));
}

void addVariants(std::vector<std::string>& languages, const std::string& language)
{
    std::string hyphened = language;
    std::replace(hyphened.begin(), hyphened.end(), '_', '-');
    add(languages, language);
    add(languages, hyphened);
    add(languages, std::string(scriptOf(language)));
    add(languages, language.substr(0, language.find_first_of("_-")));
}

std::vector<std::string> wishes(const Environment& environment)
{
    const auto locale = localeOf(environment);
    if (locale.empty() || isPlain(locale))
        return {};
    const auto several = environment.value("LANGUAGE");
    std::vector<std::string> list;
    for (std::size_t start = 0; start < several.size();) {
        const auto end = std::min(several.find(':', start), several.size());
        list.push_back(several.substr(start, end - start));
        start = end + 1;
    }
    return list.empty() ? std::vector{locale} : list;
}

} // namespace

std::vector<std::string> preferredLanguages(const Environment& environment)
{
    std::vector<std::string> languages;
    for (const auto& wish : wishes(environment)) {
        if (isPlain(wish))
            break;
        addVariants(languages, languageOf(wish));
        if (!languages.empty() && languages.back() == "en")
            return languages;
    }
    add(languages, "en");
    return languages;
}

} // namespace farview
