// The panel on the installed driver extensions, from their bundles to the window.

#include "Common/Registry/QLNRegistryExplorer.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/Registry/SysfsRegistry.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QFileInfo>
#include <QLabel>
#include <QTabWidget>

#include <filesystem>

namespace farview::test
{
namespace
{

namespace fs = std::filesystem;

class DriverInTheWindow : public PanelFixture
{
protected:
    DriverInTheWindow()
    {
        fake.platform().registry = &mRegistry;
        fake.platform().searchPaths = &mPaths;
        fake.platform().bundles = &mBundles;
        install();
    }
    ~DriverInTheWindow() override { close(); }

    void install()
    {
        fs::create_directories(mFolder.path("system"));
        fs::copy(FARVIEW_BINARY_DIR "/Extensions", mFolder.path("system/Extensions"),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }
    void remove(const std::string& extension)
    {
        ASSERT_GT(fs::remove_all(mFolder.path("system/Extensions/" + extension)), 1u);
    }
    void useMachine(const std::string& model)
    {
        mFolder.write("sys/devices/virtual/dmi/id/product_name", model + "\n");
    }
    /// A new start of the panel, on the tab with the switch.
    void start(const char* language = "en")
    {
        close();
        load(language);
        fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
        find<QTabWidget>("tabView")->setCurrentIndex(0);
        settle();
    }
    QString text(const char* label) const { return find<QLabel>(label)->text(); }
    bool isShown(const char* name) const { return find<QWidget>(name)->isVisible(); }
    void expectThePanelToWork()
    {
        EXPECT_EQ(text("statusLabel"), u"On"_qs);
        EXPECT_FALSE(isShown("reinstallDriversButton"));
        EXPECT_TRUE(isShown("onOffSwitch"));
        find<QAbstractButton>("offTextButton")->click();
        EXPECT_EQ(text("statusLabel"), u"Off"_qs);
        find<QAbstractButton>("onTextButton")->click();
        EXPECT_EQ(text("statusLabel"), u"On"_qs);
    }
    void expectTheMissingDriverToShow()
    {
        EXPECT_EQ(text("statusLabel"), u"Error"_qs);
        EXPECT_EQ(text("statusExplanationLabel"), u"Driver not installed."_qs);
        EXPECT_TRUE(isShown("warningImage"));
        EXPECT_TRUE(isShown("reinstallDriversButton"));
        for (const char* name : {"offTextButton", "onOffSwitch", "onTextButton"})
            EXPECT_FALSE(isShown(name)) << name;
        for (const char* name : {"virtualScreenSelectionPopup", "autoConnect", "menuExtraCheckbox",
                                 "enableTouchDisplay"})
            EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name;
    }

    TemporaryFolder mFolder;

private:
    ScopedEnvironment mSystem{"FARVIEW_SYSTEM_ROOT", mFolder.path("system").c_str()};
    ScopedEnvironment mLocal{"FARVIEW_LOCAL_ROOT", mFolder.path("local").c_str()};
    ScopedEnvironment mUser{"XDG_DATA_HOME", mFolder.path("user").c_str()};
    StandardErrorLog mLog{"panel_test"};
    PosixSearchPaths mPaths{EnvironmentUse::honoured};
    PosixBundles mBundles{EnvironmentUse::honoured, mLog};
    SysfsRegistry mRegistry{DriverExtensions(mPaths.extensionFolders()), mFolder.path("sys"),
                            mFolder.path("proc")};
};

TEST_F(DriverInTheWindow, ARemovedDriverShowsAtTheNextStartAndAReinstalledOneToo)
{
    start();
    remove("QLExGFX.kext");
    expectThePanelToWork();
    start();
    expectTheMissingDriverToShow();
    EXPECT_TRUE(
        text("instructionsLabel").endsWith(u"restart your machine when requested to do so."_qs));
    install();
    expectTheMissingDriverToShow();
    start();
    expectThePanelToWork();
}

TEST_F(DriverInTheWindow, ADriverForAnotherPlatformIsNone)
{
    const std::string info = "system/Extensions/QLExGFX.kext/Contents/Info.plist";
    fs::remove(mFolder.path(info));
    mFolder.write(info, "<plist><dict><key>CFBundleIdentifier</key><string>com.quillon.QLExGFX"
                        "</string><key>QLNPlatform</key><string>Other</string></dict></plist>");
    start();
    expectTheMissingDriverToShow();
}

TEST_F(DriverInTheWindow, TheOthersAreNotNeededButTheToolTipTellsThatTheyAreGone)
{
    start();
    const QString versions = find<QLabel>("versionNumberLabel")->toolTip();
    EXPECT_FALSE(versions.contains(u"(null)"_qs)) << versions.toStdString();
    EXPECT_TRUE(versions.contains(u"VideoCard Kext: 1."_qs)) << versions.toStdString();
    remove("QLFrameBuffer.kext");
    start();
    expectThePanelToWork();
    EXPECT_TRUE(
        find<QLabel>("versionNumberLabel")->toolTip().contains(u"VideoCard Kext: (null)"_qs));
}

TEST_F(DriverInTheWindow, TheButtonOpensAPageThatIsThere)
{
    remove("QLExGFX.kext");
    start();
    find<QAbstractButton>("reinstallDriversButton")->click();
    ASSERT_EQ(fake.workspace.opened().size(), 1u);
    const auto& page = fake.workspace.opened().front();
    EXPECT_TRUE(!page.isFileURL() || QFileInfo(QString::fromStdString(page.path())).isFile())
        << page.absoluteString();
}

TEST_F(DriverInTheWindow, OnAListedModelTheTextNamesAPageThatIsThere)
{
    useMachine("MacBookPro5,3");
    remove("QLExGFX.kext");
    for (const char* language : {"en", "de"}) {
        start(language);
        EXPECT_EQ(QLNRegistryExplorer::computerModel(), "MacBookPro5,3");
        const auto* label = find<QLabel>("instructionsLabel");
        EXPECT_TRUE(label->text().contains(u"NVIDIA"_qs)) << label->text().toStdString();
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
        const auto named = bundle->objectForInfoDictionaryKey("QLNSupportURL");
        const auto page = URL::URLWithString(*named.value().get<std::string>());
        ASSERT_TRUE(page);
        EXPECT_TRUE(label->text().contains(QString::fromStdString(page->absoluteString())));
        EXPECT_TRUE(!page->isFileURL() || QFileInfo(QString::fromStdString(page->path())).isFile())
            << page->absoluteString();
    }
}

TEST_F(DriverInTheWindow, AnotherModelHasTheOrdinaryText)
{
    useMachine("MacBookPro6,2");
    remove("QLExGFX.kext");
    start();
    EXPECT_FALSE(text("instructionsLabel").contains(u"NVIDIA"_qs));
}

} // namespace
} // namespace farview::test
