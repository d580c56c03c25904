#include "Applications/ScreenCapture/PortalWords.h"

#include "Common/PairedPeers.h"

#include <utility>

namespace farview
{
namespace
{

constexpr const char* domain = PairedPeers::devices;

PropertyList::Dictionary wordsIn(Preferences& preferences)
{
    const auto value = preferences.copyAppValue(kPortalWords, domain);
    const auto* words = value ? value->get<PropertyList::Dictionary>() : nullptr;
    return words ? *words : PropertyList::Dictionary();
}

void keep(Preferences& preferences, const std::string& name, const std::string& word)
{
    auto words = wordsIn(preferences);
    if (word.empty())
        words.erase(name);
    else
        words[name] = PropertyList(word);
    preferences.setAppValue(kPortalWords, PropertyList(std::move(words)), domain);
    preferences.appSynchronize(domain);
}

} // namespace

PortalMemory portalWordsIn(Preferences& preferences)
{
    return {
        [&](const std::string& name) {
            const auto words = wordsIn(preferences);
            const auto found = words.find(name);
            const auto* word = found == words.end() ? nullptr : found->second.get<std::string>();
            return word ? *word : std::string();
        },
        [&](const std::string& name, const std::string& word) { keep(preferences, name, word); }};
}

} // namespace farview
