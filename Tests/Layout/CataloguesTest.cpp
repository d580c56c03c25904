#include "Platform/Posix/PropertyLists/StringsFile.h"
#include "Tests/Layout/SourceTexts.h"
#include "Tests/Layout/SourceTree.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <regex>
#include <set>

namespace
{

using Texts = std::map<std::string, std::string>;
using Keys = std::set<std::string>;

const std::set<std::string> languages = {"de", "en", "es", "fr", "it", "pt-BR", "ja", "zh-Hans"};

/// The catalogues of one folder.
struct Catalogue {
    std::string folder;
    /// How the paths begin of the sources that use it; the first has those that no other has.
    std::vector<std::string> sources;
    std::size_t leastTexts;
};

const std::vector<Catalogue> catalogues = {
    {"PaneBundle", {}, 150},
    {"PaneBundle/UniversalAccess", {"Source/AccessibilityPane", "PaneBundle/UniversalAccess/"}, 8},
    {"Applications/Device", {"Applications/Device/"}, 15}};

// The rooms whose sentences a user reads.
const std::vector<std::string> rooms = {"Source",
                                        "Common",
                                        "PaneBundle",
                                        "Applications/Device",
                                        "Applications/Doctor",
                                        "Applications/Doctor/Window",
                                        "Applications/FarviewStatusItem"};

// Lines of the log and words to other computers, which stay as they are.
const Keys notForTheUser = {"Couldn't find any matches.",
                            "Another computer is being confirmed.",
                            "Another computer uses this device now.",
                            "IOServiceMatching returned a NULL dictionary.",
                            "The device's user refused.",
                            "The device's user removed this computer.",
                            "This device's own key cannot be used.",
                            "Too many computers were refused: try again in ten minutes.",
                            "The device was switched off.",
                            "The device's user disconnected.",
                            "The picture breaks the rules of the link.",
                            "The picture is too large for this device.",
                            "This device is being switched off.",
                            "This device is in use by another computer.",
                            "Timed out waiting to connect.",
                            "Too many computers are connecting."};

bool isOf(const Catalogue& catalogue, const std::string& path)
{
    const auto user =
        std::find_if(catalogues.begin(), catalogues.end(), [&](const Catalogue& each) {
            return std::any_of(each.sources.begin(), each.sources.end(),
                               [&](const auto& prefix) { return path.starts_with(prefix); });
        });
    return catalogue.folder == (user == catalogues.end() ? catalogues.front() : *user).folder;
}

std::string joined(const SourceFile& file)
{
    std::string all;
    for (const auto& line : file.lines)
        all += line + "\n";
    return all;
}

/// "localized(statusText)" asks for whatever "statusText" is.
Keys namesOfConstants(const std::vector<SourceFile>& files)
{
    static const std::regex call(R"(localized\((?:farview::)?([a-z]\w*Text\w*|popUp\w+)\))");
    Keys names;
    for (const auto& file : files) {
        const auto source = joined(file);
        for (std::sregex_iterator each(source.begin(), source.end(), call), end; each != end;
             ++each)
            names.insert((*each)[1]);
    }
    return names;
}

bool isAskedForDirectly(const Literal& literal)
{
    static const std::regex call(R"((\blocalized|localizedString|[^\w]text)\($)");
    return std::regex_search(literal.before, call);
}

bool isAskedForByName(const Literal& literal, const Keys& constants)
{
    static const std::regex definition(R"((\w+?)(?:\[\])?=$)");
    std::smatch match;
    if (!std::regex_search(literal.before, match, definition))
        return false;
    // The blanks are gone, so a type may stand in front of the name.
    return std::any_of(constants.begin(), constants.end(),
                       [&](const auto& name) { return match[1].str().ends_with(name); });
}

bool looksLikeASentence(const std::string& text)
{
    static const std::regex sentence(R"(^(“|[A-Z])[^]* [^]*([.:?]|…)$)");
    static const std::regex button(R"(^[A-Za-z ]*&[A-Za-z])");
    return std::regex_search(text, sentence) || std::regex_search(text, button);
}

bool isText(const Literal& literal, const Keys& constants)
{
    return !literal.text.empty() && !notForTheUser.contains(literal.text) &&
           (isAskedForDirectly(literal) || isAskedForByName(literal, constants) ||
            looksLikeASentence(literal.text));
}

/// The texts of the forms, or of what else lies in the folder and ends as told.
Keys textsOfFiles(const Catalogue& catalogue, const std::string& ending)
{
    Keys keys;
    const std::filesystem::path root = FARVIEW_SOURCE_DIR;
    for (const auto& entry : std::filesystem::directory_iterator(root / catalogue.folder)) {
        const auto name = entry.path().filename().string();
        if (!name.ends_with(ending))
            continue;
        for (auto& text : textsOfAForm(wholeText(catalogue.folder + "/" + name)))
            keys.insert(std::move(text));
    }
    return keys;
}

/// The texts that must be in a catalogue.
Keys neededKeys(const Catalogue& catalogue)
{
    const auto files = readSources(rooms);
    const auto constants = namesOfConstants(files);
    Keys keys = textsOfFiles(catalogue, ".ui");
    for (const auto& file : files) {
        if (!isOf(catalogue, file.path))
            continue;
        for (const auto& literal : literalsIn(joined(file))) {
            if (isText(literal, constants))
                keys.insert(literal.text);
        }
    }
    return keys;
}

/// Every text that anything could ask for.
Keys possibleKeys(const Catalogue& catalogue)
{
    // The name of a pane, which its window is titled with, is in the Info.plist.
    Keys keys = textsOfFiles(catalogue, "Info.plist.in");
    keys.merge(textsOfFiles(catalogue, ".ui"));
    for (const auto& file : productSources()) {
        if (!isOf(catalogue, file.path))
            continue;
        for (const auto& literal : literalsIn(joined(file)))
            keys.insert(literal.text);
    }
    return keys;
}

std::string fileOf(const Catalogue& catalogue, const std::string& language)
{
    return catalogue.folder + "/" + language + ".lproj/Localizable.strings";
}

Texts textsOf(const Catalogue& catalogue, const std::string& language)
{
    const auto path = fileOf(catalogue, language);
    auto file = farview::StringsFile::parse(wholeText(path));
    EXPECT_TRUE(file.texts) << path << ": " << file.reason;
    return std::move(file.texts).value_or(Texts{});
}

std::vector<std::string> differences(const std::string& english, const std::string& other)
{
    std::vector<std::string> found;
    if (other.empty())
        found.push_back("is empty");
    if (placesIn(english) != placesIn(other))
        found.push_back("has other places to fill in");
    if (shortcutsIn(english) != shortcutsIn(other))
        found.push_back("has a shortcut too many or too few");
    if (english.starts_with(' ') != other.starts_with(' ') || other.ends_with(' '))
        found.push_back("has other blanks at its ends");
    return found;
}

TEST(Catalogues, AreThereInEachLanguage)
{
    for (const auto& catalogue : catalogues) {
        std::set<std::string> found;
        const std::filesystem::path folder =
            std::filesystem::path(FARVIEW_SOURCE_DIR) / catalogue.folder;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".lproj")
                found.insert(entry.path().stem());
        }
        EXPECT_EQ(found, languages) << catalogue.folder;
    }
}

TEST(Catalogues, HoldEveryTextThatCodeOrAFormAsksFor)
{
    for (const auto& catalogue : catalogues) {
        const auto needed = neededKeys(catalogue);
        EXPECT_GT(needed.size(), catalogue.leastTexts)
            << "the sources are not read as they are written";
        const auto texts = textsOf(catalogue, "en");
        for (const auto& key : needed)
            EXPECT_TRUE(texts.contains(key)) << catalogue.folder << ": " << key;
    }
}

TEST(Catalogues, HoldNothingThatNobodyAsksFor)
{
    for (const auto& catalogue : catalogues) {
        const auto possible = possibleKeys(catalogue);
        for (const auto& [key, text] : textsOf(catalogue, "en")) {
            EXPECT_TRUE(possible.contains(key)) << catalogue.folder << ": " << key;
            EXPECT_EQ(text, key) << "the English text is the key";
        }
    }
}

TEST(Catalogues, HoldTheSameTextsInEachLanguage)
{
    for (const auto& catalogue : catalogues) {
        const auto english = textsOf(catalogue, "en");
        for (const auto& language : languages) {
            const auto texts = textsOf(catalogue, language);
            for (const auto& [key, text] : texts)
                EXPECT_TRUE(english.contains(key)) << language << ": nobody asks for " << key;
            for (const auto& [key, text] : english)
                EXPECT_TRUE(texts.contains(key)) << language << " lacks " << key;
        }
    }
}

TEST(Catalogues, KeepPlacesShortcutsAndBlanksInEachLanguage)
{
    for (const auto& catalogue : catalogues) {
        for (const auto& language : languages) {
            for (const auto& [key, text] : textsOf(catalogue, language)) {
                for (const auto& difference : differences(key, text))
                    ADD_FAILURE() << language << " " << difference << ": " << text;
            }
        }
    }
}

TEST(Catalogues, AFaultInATranslationIsFound)
{
    EXPECT_TRUE(differences("At %@ (%1)", "Bei %1 (%@)").empty());
    EXPECT_EQ(differences("At %@", "Bei %s").size(), 1u);
    EXPECT_EQ(differences("At %@", "Bei").size(), 1u);
    EXPECT_EQ(differences("&Copy", "Kopieren").size(), 1u);
    EXPECT_EQ(differences(" (old)", "(alt)").size(), 1u);
    EXPECT_EQ(differences("Copy", "").size(), 1u);
}

TEST(Catalogues, TextsAreFoundInSourcesAndForms)
{
    const auto found =
        literalsIn("// \"no\"\nf(\"A \"\n \"b\\n\\\"c\\\"\", 1'0, '\"', R\"(d)\", \"e\");");
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].before, "f(");
    EXPECT_EQ(found[0].text, "A b\n\"c\"");
    EXPECT_EQ(found[1].text, "e");
    EXPECT_TRUE(isText({"localized(", "word"}, {}));
    EXPECT_TRUE(isText({"constexprconstchar*titleText=", "word"}, {"titleText"}));
    EXPECT_TRUE(isText({"return", "It is so."}, {}));
    EXPECT_FALSE(isText({"return", "word"}, {}));
    EXPECT_EQ(textsOfAForm("<string>&amp;A &lt;</string><string notr=\"true\">b</string>"),
              std::vector<std::string>{"&A <"});
}

std::size_t countOf(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

/// A locale's name, as the message of a policy is marked: "pt_BR", "zh_CN".
std::string localeOf(const std::string& language)
{
    if (language == "zh-Hans")
        return "zh_CN";
    return std::regex_replace(language, std::regex("-"), "_");
}

TEST(Catalogues, TheQuestionForAPasswordIsInEachLanguage)
{
    const auto policy =
        wholeText("Applications/PrivilegedHelpers/com.quillon.displayresolutions.policy.in");
    const auto english = countOf("<description>", policy) + countOf("<message>", policy);
    ASSERT_EQ(english, 4u);
    for (const auto& language : languages) {
        const auto mark = "xml:lang=\"" + localeOf(language) + "\"";
        EXPECT_EQ(countOf(mark, policy), language == "en" ? 0 : english) << language;
    }
}

TEST(Catalogues, TheEntriesOfTheMenuAreInEachLanguage)
{
    for (const char* path : {"Applications/Device/farview-device.desktop",
                             "Applications/Preferences/farview-preferences.desktop"}) {
        const auto entry = wholeText(path);
        ASSERT_EQ(countOf("\nName=", entry), 1u) << path;
        for (const auto& language : languages) {
            const std::size_t expected = language == "en" ? 0 : 1;
            for (const std::string key : {"Name", "Comment"})
                EXPECT_EQ(countOf("\n" + key + "[" + localeOf(language) + "]=", entry), expected)
                    << path << ": " << key << " in " << language;
        }
    }
}

} // namespace
