#include "Tests/Source/PaneFixture.h"

#include "Common/Registry/QLNRegistryExplorer.h"

namespace
{

constexpr const char* resources = "/opt/Farview Preferences.prefPane/Contents/Resources/";
constexpr const char* extensions = "/usr/lib/farview/Extensions/";
constexpr const char* installerText = "Driver not installed.  Please run the installer and restart "
                                      "your machine when requested to do so.";

class PaneVersions : public PaneFixture
{
protected:
    void install(const std::string& path, const char* key, farview::PropertyList version)
    {
        fake.bundles.add(path)->setInfo(key, std::move(version));
    }
    std::string toolTip() const { return pane->versionNumberLabel()->toolTip(); }
};

TEST_F(PaneVersions, TheToolTipNamesFourPiecesAndEachKextByTheOthersConstant)
{
    const std::string folder = resources;
    install(folder + "FarviewStatusItem.app", "CFBundleVersionString", "2.1");
    install(folder + "ScreenCapture.app", "CFBundleVersionString", "2.2");
    install(std::string(extensions) + "QLFrameBuffer.kext", "CFBundleVersion", "3.1");
    install(std::string(extensions) + "QLVideoCard.kext", "CFBundleVersion", "3.2");
    load();
    EXPECT_EQ(toolTip(), "MenuExtra: 2.1\nServer: 2.2\nVideoCard Kext: 3.1\nFrameBuffer Kext: 3.2");
}

TEST_F(PaneVersions, WhatIsNotInstalledHasTheTextForNothingAsItsVersion)
{
    install(std::string(extensions) + "QLVideoCard.kext", "CFBundleVersion", "3.2");
    load();
    EXPECT_EQ(toolTip(),
              "MenuExtra: (null)\nServer: (null)\nVideoCard Kext: (null)\nFrameBuffer Kext: 3.2");
}

TEST_F(PaneVersions, ABundleWithoutTheKeyOrWithAnotherTypeHasNoVersion)
{
    const std::string folder = resources;
    install(folder + "FarviewStatusItem.app", "CFBundleVersion", "2.1");
    install(folder + "ScreenCapture.app", "CFBundleVersionString", true);
    load();
    EXPECT_TRUE(toolTip().starts_with("MenuExtra: (null)\nServer: (null)\n")) << toolTip();
}

TEST_F(PaneVersions, ExtensionsAreLookedForBelowTheSystemsRoot)
{
    fake.searchPaths.setRoots("/elsewhere", "/local");
    install("/elsewhere/Extensions/QLVideoCard.kext", "CFBundleVersion", "9");
    install("/local/Extensions/QLFrameBuffer.kext", "CFBundleVersion", "8");
    load();
    EXPECT_TRUE(toolTip().ends_with("VideoCard Kext: (null)\nFrameBuffer Kext: 9")) << toolTip();
}

TEST_F(PaneVersions, TheLabelsAreInTheUsersLanguage)
{
    bundle->setText("MenuExtra", "Statussymbol");
    bundle->setText("VideoCard Kext", "VideoCard-Kext");
    load();
    EXPECT_EQ(toolTip(), "Statussymbol: (null)\nServer: (null)\nVideoCard-Kext: (null)\n"
                         "FrameBuffer Kext: (null)");
}

TEST_F(PaneVersions, TheyAreDeterminedWithoutTouchingWhetherTheDriverIsThere)
{
    load();
    pane->setVideoDriverInstalled(false);
    pane->determineComponenVersionNumber();
    EXPECT_FALSE(pane->videoDriverInstalled());
}

/// A machine of a known model whose driver is missing.
class PaneGraphicsCheck : public PaneFixture
{
protected:
    PaneGraphicsCheck()
    {
        bundle->setInfo("incompatibleModels",
                        farview::PropertyList::Array{"MacBook5,1", 7, "MacBookPro5,3"});
        bundle->setInfo("QLNSupportURL", "https://example.org/cards");
        fake.registry = farview::FakeRegistry();
    }
    void useMachine(const std::string& model)
    {
        fake.registry.add(fake.registry.rootEntry(), {model, "IOPlatformExpertDevice"});
    }
    bool isDue() { return pane->needsWarningMessageFor9400_9600_And_LionProblem(); }
};

TEST_F(PaneGraphicsCheck, BeforeLionThereIsNoProblem)
{
    useMachine("MacBookPro5,3");
    fake.systemVersion.setVersion(10, 6, 8);
    EXPECT_FALSE(isDue());
    showWithState(1);
    EXPECT_EQ(instructions(), installerText);
}

TEST_F(PaneGraphicsCheck, FromLionOnAListedModelHasTheProblem)
{
    useMachine("MacBookPro5,3");
    fake.systemVersion.setVersion(10, 7, 0);
    EXPECT_TRUE(isDue());
    showWithState(1);
    EXPECT_EQ(instructions(),
              "Driver not installed.\n\nIn Lion, the NVIDIA GeForce video driver on this computer "
              "is not compatible with Farview. The Farview drivers are installed but will be "
              "disabled until the video driver is fixed.\n\nPlease visit "
              "https://example.org/cards for more information.");
    EXPECT_EQ(status(), "Error");
    EXPECT_EQ(explanation(), "Driver not installed.");
}

TEST_F(PaneGraphicsCheck, AModelThatIsNotListedHasNoProblem)
{
    fake.systemVersion.setVersion(10, 8, 0);
    useMachine("MacBookPro6,2");
    EXPECT_FALSE(isDue());
    showWithState(1);
    EXPECT_EQ(instructions(), installerText);
}

TEST_F(PaneGraphicsCheck, TheModelIsComparedLetterForLetter)
{
    for (const char* model : {"macbook5,1", "MacBook5,1 ", "MacBook5", ""}) {
        fake.registry = farview::FakeRegistry();
        useMachine(model);
        EXPECT_FALSE(isDue()) << model;
    }
    fake.registry = farview::FakeRegistry();
    useMachine("MacBook5,1");
    EXPECT_TRUE(isDue());
}

TEST_F(PaneGraphicsCheck, WithoutAListOrAMachineThereIsNoProblem)
{
    EXPECT_FALSE(isDue()) << "the root has no child";
    useMachine("MacBook5,1");
    for (const auto& list : {farview::PropertyList(farview::PropertyList::Array{}),
                             farview::PropertyList("MacBook5,1"), farview::PropertyList(true)}) {
        bundle->setInfo("incompatibleModels", list);
        EXPECT_FALSE(isDue());
    }
    fake.bundles.remove("/opt/Farview Preferences.prefPane");
    bundle = fake.bundles.add("/opt/Farview Preferences.prefPane");
    newPane();
    EXPECT_FALSE(isDue());
}

TEST_F(PaneGraphicsCheck, LoadingLeavesTheWholeRegistryBehind)
{
    useMachine("MacBook5,1");
    load();
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    EXPECT_EQ(explorer.currentPlane(), "IOService");
    EXPECT_EQ(explorer.searchResultsForText("book", true, false),
              (std::vector<std::string>{":Root:MacBook5,1"}));
}

TEST_F(PaneGraphicsCheck, TheTextIsInTheUsersLanguageAndStillNamesThePage)
{
    useMachine("MacBook5,1");
    bundle->setText("Driver not installed.\n\nIn Lion, the NVIDIA GeForce video driver on this "
                    "computer is not compatible with Farview. The Farview drivers are installed "
                    "but will be disabled until the video driver is fixed.\n\nPlease visit %@ for "
                    "more information.",
                    "Mehr unter %@.");
    showWithState(0);
    EXPECT_EQ(instructions(), "Mehr unter https://example.org/cards.");
}

} // namespace
