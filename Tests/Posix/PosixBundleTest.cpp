#include "Platform/Posix/PosixBundle.h"

#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/Languages.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace farview
{
namespace
{

using Names = std::vector<std::string>;

/// The language variables of one user, for the length of a scope.
struct Languages {
    ScopedEnvironment all;
    ScopedEnvironment messages;
    ScopedEnvironment lang;
    ScopedEnvironment several;
};

Languages user(const char* lang, const char* several)
{
    return {{"LC_ALL", nullptr}, {"LC_MESSAGES", nullptr}, {"LANG", lang}, {"LANGUAGE", several}};
}

Names preferred() { return preferredLanguages(Environment(EnvironmentUse::honoured)); }

class PosixBundleTest : public testing::Test
{
protected:
    PosixBundleTest()
    {
        mFolder.write("A.bundle/Contents/Info.plist",
                      "<plist><dict><key>CFBundleVersion</key><string>1.5</string></dict></plist>");
    }
    std::string bundlePath() const { return mFolder.path("A.bundle"); }
    std::shared_ptr<Bundle> open() { return open(bundlePath()); }
    std::shared_ptr<Bundle> open(const std::string& path)
    {
        return PosixBundles(EnvironmentUse::honoured, mLog).bundleWithPath(path);
    }
    void writeTexts(const std::string& language, const std::string& texts)
    {
        mFolder.write("A.bundle/Contents/Resources/" + language + ".lproj/Localizable.strings",
                      texts);
    }
    std::string text(const std::string& key) { return open()->localizedString(key, "", ""); }

    TemporaryFolder mFolder;
    FakeLog mLog;
};

TEST_F(PosixBundleTest, IsNoneWithoutAReadableDictionary)
{
    EXPECT_EQ(open(mFolder.path("none")), nullptr);
    EXPECT_EQ(open(""), nullptr);
    for (const char* broken : {"", "text", "<plist><array/></plist>"}) {
        mFolder.write("A.bundle/Contents/Info.plist", broken);
        EXPECT_EQ(open(), nullptr) << broken;
    }
    EXPECT_TRUE(mLog.contains(bundlePath()));
}

TEST_F(PosixBundleTest, HasAnAbsolutePathWithoutASlashAtItsEnd)
{
    EXPECT_EQ(open(bundlePath() + "//")->bundlePath(), bundlePath());
    const auto relative = std::filesystem::relative(bundlePath()).string();
    const auto path = open(relative)->bundlePath();
    EXPECT_TRUE(path.starts_with('/')) << path;
    EXPECT_TRUE(std::filesystem::equivalent(path, bundlePath()));
}

TEST_F(PosixBundleTest, AResourceOfTheUsersLanguageIsFoundWhenThereIsNoCommonOne)
{
    const auto german = user("de_DE.UTF-8", nullptr);
    const auto page = mFolder.write("A.bundle/Contents/Resources/de.lproj/Manual.pdf", "");
    EXPECT_EQ(open()->pathForResource("Manual", "pdf"), page);
    const auto common = mFolder.write("A.bundle/Contents/Resources/Manual.pdf", "");
    EXPECT_EQ(open()->pathForResource("Manual", "pdf"), common);
}

TEST_F(PosixBundleTest, AResourceStaysInsideItsBundle)
{
    mFolder.write("A.bundle/Contents/Resources/a", "");
    EXPECT_EQ(open()->pathForResource("../Info", "plist"), std::nullopt);
    EXPECT_EQ(open()->pathForResource("x/../../Info.plist", ""), std::nullopt);
    EXPECT_EQ(open()->pathForResource("", ""), std::nullopt);
    EXPECT_EQ(open()->pathForResource("", "plist"), std::nullopt);
}

TEST_F(PosixBundleTest, TextsComeFromTheFirstLanguageThatHasThem)
{
    const auto austrian = user("de_AT.UTF-8", "de_AT:fr");
    writeTexts("de", "\"On\" = \"An\";");
    writeTexts("fr", "\"On\" = \"Oui\"; \"Off\" = \"Non\";");
    writeTexts("en", "\"Key\" = \"English\";");
    EXPECT_EQ(text("On"), "An");
    EXPECT_EQ(text("Off"), "Non");
    EXPECT_EQ(text("Key"), "English");
    EXPECT_EQ(text("Missing"), "Missing");
    EXPECT_EQ(open()->localizedString("Missing", "value", ""), "value");
}

TEST_F(PosixBundleTest, AnEnglishUserSeesNoOtherLanguage)
{
    const auto english = user("en_GB.UTF-8", "en_GB:de");
    writeTexts("de", "\"On\" = \"An\";");
    EXPECT_EQ(text("On"), "On");
}

TEST_F(PosixBundleTest, ABrokenCatalogueIsLoggedOnceAndCountsAsAbsent)
{
    const auto german = user("de_DE.UTF-8", nullptr);
    writeTexts("de", "\"On\" = An;");
    writeTexts("en", "\"On\" = \"English\";");
    const auto bundle = open();
    EXPECT_EQ(bundle->localizedString("On", "", ""), "English");
    EXPECT_EQ(bundle->localizedString("On", "", ""), "English");
    EXPECT_EQ(mLog.lines().size(), 1u);
}

TEST_F(PosixBundleTest, AnotherTableIsAnotherCatalogue)
{
    const auto plain = user("C", nullptr);
    mFolder.write("A.bundle/Contents/Resources/en.lproj/Errors.strings", "\"a\" = \"error\";");
    EXPECT_EQ(open()->localizedString("a", "", "Errors"), "error");
    EXPECT_EQ(open()->localizedString("a", "", ""), "a");
    EXPECT_EQ(open()->localizedString("a", "", "../../../x"), "a");
}

TEST(Languages, FollowTheVariablesInTheirOrder)
{
    const auto base = user("fr_FR.UTF-8", nullptr);
    EXPECT_EQ(preferred(), (Names{"fr_FR", "fr-FR", "fr", "en"}));
    const ScopedEnvironment messages("LC_MESSAGES", "it");
    EXPECT_EQ(preferred(), (Names{"it", "en"}));
    const ScopedEnvironment all("LC_ALL", "sv_SE@euro");
    EXPECT_EQ(preferred(), (Names{"sv_SE", "sv-SE", "sv", "en"}));
    const ScopedEnvironment several("LANGUAGE", "pt_BR::de:en:ja");
    EXPECT_EQ(preferred(), (Names{"pt_BR", "pt-BR", "pt", "de", "en"}));
}

TEST(Languages, AreEnglishWhenThePlainLocaleIsAskedFor)
{
    for (const char* lang : {"C", "POSIX", "C.UTF-8", ""}) {
        const auto plain = user(lang, "de");
        EXPECT_EQ(preferred(), Names{"en"}) << lang;
    }
}

TEST(Languages, TellChineseScriptsApart)
{
    const auto chinese = user("zh_TW.UTF-8", nullptr);
    EXPECT_EQ(preferred(), (Names{"zh_TW", "zh-TW", "zh-Hant", "zh", "en"}));
}

TEST(Languages, ReachTheCatalogueOfTheirScriptOrCountry)
{
    for (const auto& [locale, catalogue] :
         {std::pair{"pt_BR.UTF-8", "pt-BR"}, std::pair{"zh_CN.UTF-8", "zh-Hans"},
          std::pair{"zh_SG.UTF-8", "zh-Hans"}, std::pair{"ja_JP.UTF-8", "ja"},
          std::pair{"fr_CA.UTF-8", "fr"}}) {
        const auto speaker = user(locale, nullptr);
        EXPECT_THAT(preferred(), testing::Contains(catalogue)) << locale;
    }
}

TEST(Languages, NeverNameAnotherFolder)
{
    const auto hostile = user("../../etc", "../x:/etc:de/../..");
    EXPECT_EQ(preferred(), Names{"en"});
}

} // namespace
} // namespace farview
