// The bundles as they were built, and the pages that the panel sends its user to.

#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Types/URL.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

const std::string pane = FARVIEW_BINARY_DIR "/Farview Preferences.prefPane";
const fs::path manual = FARVIEW_SOURCE_DIR "/docs/manual";

std::string infoText(const std::string& bundlePath, const char* key)
{
    FakeLog log;
    const auto bundle = PosixBundles(EnvironmentUse::ignored, log).bundleWithPath(bundlePath);
    const auto value = bundle ? bundle->objectForInfoDictionaryKey(key) : std::nullopt;
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? *text : "";
}

std::set<std::string> incompatibleModels()
{
    FakeLog log;
    const auto bundle = PosixBundles(EnvironmentUse::ignored, log).bundleWithPath(pane);
    const auto value = bundle->objectForInfoDictionaryKey("incompatibleModels");
    std::set<std::string> models;
    for (const auto& each : *value->get<PropertyList::Array>())
        models.insert(*each.get<std::string>());
    return models;
}

std::string contents(const fs::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> allMatches(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        found.insert((*match)[1]);
    return found;
}

std::vector<fs::path> pages()
{
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(manual)) {
        if (entry.path().extension() == ".html")
            found.push_back(entry.path());
    }
    return found;
}

TEST(PaneInfo, TheAddressesThatThePanelNamesLeadSomewhere)
{
    for (const char* key : {"QLNInstallerURL", "QLNSupportURL"}) {
        const auto address = URL::URLWithString(infoText(pane, key));
        ASSERT_TRUE(address) << key;
        EXPECT_TRUE(!address->isFileURL() || fs::is_regular_file(address->path()))
            << address->absoluteString();
    }
}

TEST(PaneInfo, AnInstalledPaneNamesTheInstalledPages)
{
    const TemporaryFolder folder;
    const std::string prefix = folder.path("a place & #1");
    const std::string command = "'" FARVIEW_CMAKE "' -DCMAKE_INSTALL_PREFIX='" + prefix +
                                "' -P '" FARVIEW_BINARY_DIR "/PaneBundle/InstalledPaneInfo.cmake'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const std::string installed =
        prefix + "/lib/farview/PreferencePanes/Farview Preferences.prefPane";
    EXPECT_EQ(infoText(installed, "CFBundleVersion"), infoText(pane, "CFBundleVersion"));
    for (const auto& [key, page] : {std::pair{"QLNInstallerURL", "installation.html"},
                                    std::pair{"QLNSupportURL", "graphics-cards.html"}}) {
        const auto address = URL::URLWithString(infoText(installed, key));
        ASSERT_TRUE(address) << key;
        if (address->isFileURL()) {
            EXPECT_EQ(address->path(), prefix + "/share/farview/manual/" + page);
            EXPECT_EQ(address->absoluteString().find(' '), std::string::npos);
        }
    }
}

TEST(PaneInfo, TheListedModelsAreThoseThatTheManualNamesInEachLanguage)
{
    const auto models = incompatibleModels();
    EXPECT_TRUE(models.contains("MacBookPro5,3"));
    EXPECT_FALSE(models.contains("MacBookPro6,2"));
    for (const char* page : {"graphics-cards.html", "graphics-cards.de.html"})
        EXPECT_EQ(allMatches(contents(manual / page), "<code>(\\w+,\\d)</code>"), models) << page;
}

TEST(PaneInfo, EveryLinkOfTheManualLeadsToAPage)
{
    ASSERT_GE(pages().size(), 4u);
    for (const auto& page : pages()) {
        const auto links = allMatches(contents(page), "href=\"([^\"]*)\"");
        EXPECT_FALSE(links.empty()) << page;
        for (const auto& link : links)
            EXPECT_TRUE(fs::is_regular_file(manual / link)) << page << " " << link;
    }
}

TEST(PaneInfo, EveryPieceKnowsItsVersion)
{
    const std::string version = infoText(pane, "CFBundleVersion");
    EXPECT_NE(version, "");
    for (const char* name : {"ScreenCapture", "FarviewStatusItem"})
        EXPECT_EQ(infoText(pane + "/Contents/Resources/" + name + ".app", "CFBundleVersionString"),
                  version)
            << name;
    for (const char* name : {"QLExGFX", "QLFrameBuffer", "QLVideoCard"}) {
        const std::string bundle = FARVIEW_BINARY_DIR "/Extensions/" + std::string(name) + ".kext";
        EXPECT_EQ(infoText(bundle, "CFBundleVersion"), version) << name;
        EXPECT_EQ(infoText(bundle, "CFBundleIdentifier"), std::string("com.quillon.") + name);
        EXPECT_EQ(infoText(bundle, "QLNPlatform"), "Linux") << name;
    }
}

} // namespace
} // namespace farview
