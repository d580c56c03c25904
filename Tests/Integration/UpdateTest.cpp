// An update as a user goes through it, from the button to the new version: the real pane, the real
// engine, the real programs of an installed bundle, and a server on this computer with an authority
// of its own.

#include "Platform/Bundle.h"
#include "Platform/Desktop/Updates/EngineUpdater.h"
#include "Source/SoftwareUpdates.h"
#include "Tests/Integration/PaneSystem.h"
#include "Tests/Support/Isolation.h"
#include "Tests/Update/Release.h"
#include "Tests/Update/UpdateServer.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace farview
{
namespace
{

namespace fs = std::filesystem;
using Stage = UpdateStatus::Stage;

constexpr auto limit = std::chrono::seconds(60);

/// Connects outlets and actions as the interface file of the sheet does.
class SheetLoader final : public InterfaceLoader
{
public:
    bool loadNibNamed(const std::string& /*name*/, const std::shared_ptr<InterfaceOwner>& owner,
                      std::string& /*error*/) override
    {
        for (const auto& outlet : owner->outlets())
            outlet.connect(*owner);
        auto& sheet = dynamic_cast<FVEUpdateSheetController&>(*owner);
        sheet.firstButton()->setTarget(owner);
        sheet.firstButton()->setAction({"firstButtonPressed:"});
        sheet.secondButton()->setTarget(owner);
        sheet.secondButton()->setAction({"secondButtonPressed:"});
        return true;
    }
};

class InstalledUpdate : public PaneSystem
{
protected:
    void SetUp() override
    {
        PaneSystem::SetUp();
        if (IsSkipped())
            return;
        fs::create_directories(home.path("installed"));
        bundlePath = copyPane(FARVIEW_PANE_BUNDLE, home.path("installed"));
        setVersion(bundlePath, "1.0");
        trust =
            std::make_unique<ScopedEnvironment>("SSL_CERT_FILE", server.authority().file().c_str());
        home.write("config/farview/com.quillon.Farview.plist",
                   "<plist version=\"1.0\"><dict><key>enableDisplayTouch</key><false/>"
                   "<key>autoConnectDevices</key><array><string>Desk</string></array>"
                   "<key>fromAnotherVersion</key><string>kept</string></dict></plist>");
        fs::permissions(home.path("config/farview"), fs::perms::owner_all);
    }
    void setVersion(const std::string& bundle, const std::string& version)
    {
        setInfo(bundle, {{"CFBundleVersion", version},
                         {"SUFeedURL", server.address("updates.xml")},
                         {"SUPublicEDKey", key.publicKey()}});
    }
    /// The same bundle as version 1.1, its archive signed with that key.
    void publish(const SigningKey& signer)
    {
        fs::create_directories(home.path("release"));
        const std::string next = copyPane(FARVIEW_PANE_BUNDLE, home.path("release"));
        setVersion(next, "1.1");
        const std::string archive = packed(entriesOf(next));
        server.serve("archive.tar.xz", archive);
        server.serve("updates.xml",
                     key.signedFeed(feedOf(
                         {offerOf(archive, "1.1", server.address("archive.tar.xz"), signer)})));
    }
    /// The panel on show, switched on, with the programs of its bundle running.
    void openWithPrograms()
    {
        load();
        platform().updaters = &updaters.emplace(
            QStringLiteral(FARVIEW_BINARY_DIR "/farview-preferences"), publisherLog);
        pane->setInterfaceLoader(std::make_shared<SheetLoader>());
        pane->setStatusItemApplication(
            URL::fileURLWithPath(bundlePath + "/Contents/Resources/FarviewStatusItem.app"));
        show();
        turnOn();
        ASSERT_TRUE(runs(1, "FarviewStatusIt"));
        ASSERT_TRUE(runs(1, "ScreenCapture"));
        pane->checkNowForUpdateButton()->setTarget(pane);
        pane->checkNowForUpdateButton()->setAction({"checkNowForUpdatePressed:"});
    }
    /// So many programs of that name, all of the bundle that is installed now.
    bool runs(std::size_t count, const std::string& name) const
    {
        const auto found = [&] {
            std::size_t programs = 0;
            for (const auto& each : processesBelow(::getpid())) {
                std::error_code error;
                const auto file =
                    fs::read_symlink("/proc/" + std::to_string(each.pid) + "/exe", error).string();
                if (each.shortName == name && file.starts_with(bundlePath))
                    ++programs;
            }
            return programs;
        };
        return waitUntil([&] { return found() == count; }, limit);
    }
    void checkNow() { pane->checkNowForUpdateButton()->performClick(nullptr); }
    FVEUpdateSheetController& sheet() { return *pane->softwareUpdates()->sheet(); }
    bool shows(const std::string& headline)
    {
        return waitUntil([&] { return sheet().headlineText()->stringValue() == headline; }, limit);
    }
    std::string report()
    {
        std::string all =
            sheet().headlineText()->stringValue() + " / " + sheet().detailText()->stringValue();
        for (const auto& each : publisherLog.lines())
            all += "\n" + each.message;
        return all;
    }
    /// The stored settings without those that a look for updates writes.
    std::string settings() const
    {
        std::istringstream lines(text("config/farview/com.quillon.Farview.plist"));
        std::string kept;
        for (std::string line; std::getline(lines, line);) {
            const bool isOurs = line.find("lastUpdate") != std::string::npos ||
                                line.find("autoUpdateOptionShown") != std::string::npos;
            if (isOurs)
                std::getline(lines, line); // its value
            else
                kept += line + "\n";
        }
        return kept;
    }
    std::string stored(const std::string& key) const
    {
        const std::string all = text("config/farview/com.quillon.Farview.plist");
        return all.find("<key>" + key + "</key>") == std::string::npos ? "" : all;
    }

    UpdateServer server;
    SigningKey key = SigningKey::generated().value();
    std::unique_ptr<ScopedEnvironment> trust;
    std::optional<EngineUpdaters> updaters;
};

TEST_F(InstalledUpdate, StopsBothProgramsReplacesTheBundleStartsThemAgainAndHarmsNoSetting)
{
    publish(key);
    ASSERT_NO_FATAL_FAILURE(openWithPrograms());
    const std::string before = settings();
    ASSERT_NE(before.find("fromAnotherVersion"), std::string::npos);

    checkNow();
    ASSERT_TRUE(shows("Farview 1.1 is available.")) << report();
    EXPECT_EQ(sheet().notesText()->stringValue(), "What is new");
    EXPECT_EQ(servers().size(), 1u) << "nothing ends before the user agrees";
    sheet().firstButton()->performClick(nullptr);
    ASSERT_TRUE(shows("Farview 1.1 is installed.")) << report();

    EXPECT_EQ(infoText(bundlePath, "CFBundleVersion"), "1.1");
    EXPECT_TRUE(runs(1, "ScreenCapture"));
    EXPECT_TRUE(runs(1, "FarviewStatusIt"));
    EXPECT_EQ(settings(), before);
    EXPECT_NE(stored("lastUpdateCheck"), "");
    EXPECT_EQ(preferences().lastUpdateOutcome(), "installed");
    EXPECT_EQ(preferences().currentState(), 1) << "the next start finds what the user wanted";

    hide();
    bundle = platform().bundles->bundleWithPath(bundlePath);
    reload();
    pane->setInterfaceLoader(std::make_shared<SheetLoader>());
    EXPECT_EQ(pane->bundleVersion(), "1.1");
    show();
    EXPECT_TRUE(runs(1, "ScreenCapture"));
}

TEST_F(InstalledUpdate, WhatAnotherKeySignedChangesNothingAndStopsNobody)
{
    publish(SigningKey::generated().value());
    ASSERT_NO_FATAL_FAILURE(openWithPrograms());
    const auto bundleBefore = snapshot(bundlePath);
    checkNow();
    ASSERT_TRUE(shows("Farview 1.1 is available.")) << report();
    sheet().firstButton()->performClick(nullptr);
    ASSERT_TRUE(shows("Farview was not updated.")) << report();
    EXPECT_EQ(sheet().detailText()->stringValue(),
              "What the update server sent is damaged or not genuine.\n"
              "Nothing was changed. Try again later.");
    EXPECT_EQ(snapshot(bundlePath), bundleBefore);
    EXPECT_EQ(servers().size(), 1u);
    EXPECT_TRUE(runs(1, "FarviewStatusIt"));
}

TEST_F(InstalledUpdate, AServerThatIsNotTrustedIsToldInWords)
{
    publish(key);
    trust = std::make_unique<ScopedEnvironment>("SSL_CERT_FILE", "/dev/null");
    ASSERT_NO_FATAL_FAILURE(openWithPrograms());
    checkNow();
    ASSERT_TRUE(shows("The check for updates failed.")) << report();
    EXPECT_TRUE(sheet().detailText()->stringValue().starts_with(
        "The update server could not prove that it is the right one."))
        << report();
}

} // namespace
} // namespace farview
