// Updates as the pane shows them and decides about them. The updater is a fake; when to look is in
// the rules' own tests.

#include "Source/SoftwareUpdates.h"
#include "Tests/Source/PaneFixture.h"

#include <gmock/gmock.h>

#include <chrono>

namespace
{

using farview::NetworkKind;
using farview::PropertyList;
using farview::UpdateProblem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Stage = farview::UpdateStatus::Stage;

constexpr double day = 24 * 3600;

class PaneUpdates : public PaneFixture
{
protected:
    PaneUpdates() { connect(); }

    void connect()
    {
        loader->wire = [](const FakeInterfaceLoader::Owner& owner) {
            auto& sheet = dynamic_cast<FVEUpdateSheetController&>(*owner);
            sheet.firstButton()->setTarget(owner);
            sheet.firstButton()->setAction({"firstButtonPressed:"});
            sheet.secondButton()->setTarget(owner);
            sheet.secondButton()->setAction({"secondButtonPressed:"});
        };
        pane->setInterfaceLoader(loader);
        pane->checkNowForUpdateButton()->setTitle("Check Now");
        pane->checkNowForUpdateButton()->setTarget(pane);
        pane->checkNowForUpdateButton()->setAction({"checkNowForUpdatePressed:"});
        pane->autoUpdateCheckbox()->setTarget(pane);
        pane->autoUpdateCheckbox()->setAction({"autoUpdatePressed:"});
    }
    /// On show, and not for the first time.
    void open()
    {
        setStored(kAutoUpdateOptionShown, true);
        load();
        show();
        pane->softwareUpdates()->setRandomSource([] { return 0.0; });
    }
    void openWithSheet()
    {
        open();
        checkNow();
    }
    /// Long enough that it looks by itself.
    void openAndLook()
    {
        open();
        pass(150);
    }
    void openAndDownload()
    {
        openWithSheet();
        find();
        pressFirst();
    }
    void openAndInstall()
    {
        openAndDownload();
        updater->verify();
        updater->getReady();
    }
    void checkNow() { pane->checkNowForUpdateButton()->performClick(nullptr); }
    void find() { updater->find("1.3", "Faster."); }
    FVEUpdateSheetController& sheet() const { return *pane->softwareUpdates()->sheet(); }
    bool sheetIsOpen() const
    {
        return pane->softwareUpdates()->sheet() && sheet().updatePanel() && sheet().isOpen();
    }
    void pressFirst() { sheet().firstButton()->performClick(nullptr); }
    void pressSecond() { sheet().secondButton()->performClick(nullptr); }
    std::string headline() const { return sheet().headlineText()->stringValue(); }
    std::string detail() const { return sheet().detailText()->stringValue(); }
    std::string line() const { return pane->updateStatusLabel()->stringValue(); }
    std::string buttonTitle() const { return pane->checkNowForUpdateButton()->title(); }
    std::string outcome() const { return storedText(kLastUpdateOutcome).value_or(""); }
    double now()
    {
        return std::chrono::duration<double>(fake.clock.date().time_since_epoch()).count();
    }
    /// The wall clock and the loop's go on together.
    void pass(double seconds)
    {
        fake.clock.setDate(fake.clock.date() +
                           std::chrono::duration_cast<std::chrono::system_clock::duration>(
                               std::chrono::duration<double>(seconds)));
        after(seconds);
    }
    /// Times at which something was looked for unasked.
    int looks() const
    {
        return static_cast<int>(
            std::count(updater->calls().begin(), updater->calls().end(), "check"));
    }

    std::shared_ptr<farview::FakeUpdater> updater =
        fake.updaters.fakeForBundle("/opt/Farview Preferences.prefPane");
};

// One truth: the option, the updater's flag, the box.

TEST_F(PaneUpdates, TheOptionIsTheUpdatersFlagAndTheBox)
{
    setStored(kAutoUpdateOption, false);
    open();
    EXPECT_EQ(pane->autoUpdateCheckbox()->state(), 0);
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
    pane->autoUpdateCheckbox()->performClick(nullptr);
    EXPECT_EQ(stored(kAutoUpdateOption), PropertyList(true));
    EXPECT_TRUE(updater->automaticallyChecksForUpdates());
    pane->autoUpdateCheckbox()->performClick(nullptr);
    EXPECT_EQ(stored(kAutoUpdateOption), PropertyList(false));
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
}

TEST_F(PaneUpdates, AnOptionThatAnotherProgramChangesReachesBoxAndUpdater)
{
    open();
    EXPECT_TRUE(updater->automaticallyChecksForUpdates());
    changeElsewhere(kAutoUpdateOption, false);
    EXPECT_EQ(pane->autoUpdateCheckbox()->state(), 0);
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
    changeElsewhere(kAutoUpdateOption, true);
    EXPECT_EQ(pane->autoUpdateCheckbox()->state(), 1);
    EXPECT_TRUE(updater->automaticallyChecksForUpdates());
}

// Looking unasked.

TEST_F(PaneUpdates, TheFirstShowingEverLooksForNothing)
{
    loadAndShow();
    pass(9 * day);
    EXPECT_EQ(looks(), 0);
    EXPECT_EQ(fake.networkCondition.questions(), 0);
    EXPECT_EQ(stored(kAutoUpdateOptionShown), PropertyList(true));
    hide();
    show();
    pass(150);
    EXPECT_EQ(looks(), 1);
}

TEST_F(PaneUpdates, NothingIsLookedForBeforeTheWindowHasBeenThereForAWhile)
{
    setStored(kAutoUpdateOptionShown, true);
    loadAndShow();
    pass(12);
    EXPECT_EQ(fake.networkCondition.questions(), 0);
    pass(120);
    EXPECT_EQ(looks(), 1);
}

TEST_F(PaneUpdates, APanelThatStaysOpenLooksOnceADay)
{
    open();
    for (int hour = 0; hour < 24 * 5; ++hour) {
        pass(3600);
        updater->findNothing();
    }
    EXPECT_EQ(looks(), 5);
}

TEST_F(PaneUpdates, ALookOfTodayHoldsUntilTomorrow)
{
    setStored(kLastUpdateCheck, farview::Date{now() - day / 2});
    open();
    pass(day / 2 - 60);
    EXPECT_EQ(looks(), 0);
    pass(2 * 3600);
    EXPECT_EQ(looks(), 1);
}

TEST_F(PaneUpdates, AClockThatWentBackHoldsNothingUp)
{
    setStored(kLastUpdateCheck, farview::Date{now() + 300 * day});
    openAndLook();
    EXPECT_EQ(looks(), 1);
}

TEST_F(PaneUpdates, NobodyLooksWhereItCostsOrCannotWork)
{
    for (const auto kind : {NetworkKind::metered, NetworkKind::absent}) {
        fake.networkCondition.setKind(kind);
        open();
        pass(2 * 3600);
        EXPECT_GE(fake.networkCondition.questions(), 1);
        EXPECT_EQ(looks(), 0);
        hide();
    }
    fake.networkCondition.setKind(NetworkKind::unmetered);
    openAndLook();
    EXPECT_EQ(looks(), 1) << "and as soon as there is another network, somebody does";
}

TEST_F(PaneUpdates, NobodyLooksWhenTheOptionIsOff)
{
    setStored(kAutoUpdateOption, false);
    open();
    pass(9 * day);
    EXPECT_EQ(fake.networkCondition.questions(), 0);
    pane->autoUpdateCheckbox()->performClick(nullptr);
    pass(150);
    EXPECT_EQ(looks(), 1);
}

TEST_F(PaneUpdates, AnOptionTurnedOffWhileTheNetworkIsAskedIsHeeded)
{
    fake.networkCondition.hold();
    openAndLook();
    ASSERT_EQ(fake.networkCondition.questions(), 1);
    pane->autoUpdateCheckbox()->performClick(nullptr);
    fake.networkCondition.answer();
    EXPECT_EQ(looks(), 0);
}

TEST_F(PaneUpdates, APanelThatWasClosedLooksForNothing)
{
    fake.networkCondition.hold();
    openAndLook();
    hide();
    fake.networkCondition.answer();
    pass(9 * day);
    EXPECT_EQ(looks(), 0);
}

TEST_F(PaneUpdates, WhatIsFoundUnaskedIsALineAndAButtonAndNoWindow)
{
    openAndLook();
    find();
    EXPECT_FALSE(sheetIsOpen());
    EXPECT_EQ(line(), "Farview 1.3 is available.");
    EXPECT_EQ(buttonTitle(), "Show Update…");
    EXPECT_EQ(outcome(), "found");
    checkNow();
    EXPECT_TRUE(sheetIsOpen());
    EXPECT_EQ(headline(), "Farview 1.3 is available.");
    EXPECT_EQ(looks(), 1) << "it is shown, not looked for again";
}

TEST_F(PaneUpdates, WhatFailsUnaskedIsOnlyToldInTheLine)
{
    openAndLook();
    updater->fail(UpdateProblem::server);
    EXPECT_FALSE(sheetIsOpen());
    EXPECT_EQ(line(), "Looked for updates today at " + line().substr(28, 5) +
                          ". The update server cannot be reached or does not work.");
    EXPECT_EQ(buttonTitle(), "Check Now");
}

// The line.

TEST_F(PaneUpdates, TheLineTellsOfTheLastLookAlsoAfterARestart)
{
    loadAndShow();
    EXPECT_EQ(line(), "Updates were not looked for yet.");
    hide();
    setStored(kLastUpdateCheck, farview::Date{now() - 40 * day});
    setStored(kLastUpdateOutcome, "current");
    show();
    EXPECT_THAT(line(), StartsWith("Looked for updates on 2025-11-2"));
    EXPECT_THAT(line(), HasSubstr(". Farview is up to date."));
}

TEST_F(PaneUpdates, AStoredWordThatNobodyKnowsIsAnUnknownFailure)
{
    setStored(kLastUpdateCheck, farview::Date{now()});
    setStored(kLastUpdateOutcome, "<b>nonsense</b>");
    open();
    EXPECT_THAT(line(), HasSubstr("Something unexpected stopped the update."));
}

// The sheet.

TEST_F(PaneUpdates, CheckNowShowsThatItLooksAndThatNothingIsNewer)
{
    openWithSheet();
    EXPECT_THAT(loader->loaded, ElementsAre("SoftwareUpdate"));
    EXPECT_EQ(headline(), "Looking for updates…");
    EXPECT_TRUE(sheet().updateProgress()->isAnimating());
    EXPECT_TRUE(sheet().firstButton()->isHidden());
    EXPECT_EQ(sheet().secondButton()->title(), "Cancel");
    updater->findNothing();
    EXPECT_EQ(headline(), "Farview is up to date.");
    EXPECT_EQ(detail(), "Version 1.2 is the newest one.");
    EXPECT_FALSE(sheet().updateProgress()->isAnimating());
    EXPECT_EQ(outcome(), "current");
    pressFirst();
    EXPECT_FALSE(sheetIsOpen());
    checkNow();
    EXPECT_EQ(looks(), 2);
    EXPECT_EQ(loader->loaded.size(), 1u) << "one sheet serves for all";
}

TEST_F(PaneUpdates, CheckNowSaysWhyItFailedAndWhatToDo)
{
    openWithSheet();
    updater->fail(UpdateProblem::managed);
    EXPECT_EQ(headline(), "The check for updates failed.");
    EXPECT_EQ(detail(), "Farview is installed for all users of this computer.\n"
                        "The system's package manager updates it.");
    EXPECT_EQ(outcome(), "managed");
    pressFirst();
    EXPECT_FALSE(sheetIsOpen());
}

TEST_F(PaneUpdates, CheckNowLooksAlsoOnTheFirstDayAndOnAnyNetwork)
{
    fake.networkCondition.setKind(NetworkKind::metered);
    loadAndShow();
    checkNow();
    EXPECT_EQ(looks(), 1);
}

TEST_F(PaneUpdates, CheckNowJoinsALookThatIsUnderWay)
{
    openAndLook();
    checkNow();
    EXPECT_EQ(looks(), 1);
    EXPECT_EQ(headline(), "Looking for updates…");
    find();
    EXPECT_EQ(headline(), "Farview 1.3 is available.");
}

TEST_F(PaneUpdates, CancelGivesUpAndClosesTheSheet)
{
    openWithSheet();
    pressSecond();
    EXPECT_EQ(updater->calls().back(), "cancel");
    EXPECT_FALSE(sheetIsOpen());
    EXPECT_EQ(outcome(), "") << "it did not come to its end";
}

TEST_F(PaneUpdates, AnUpdateIsOfferedWithItsNotes)
{
    openWithSheet();
    find();
    EXPECT_EQ(sheet().notesText()->stringValue(), "Faster.");
    EXPECT_FALSE(sheet().notesArea()->isHidden());
    EXPECT_THAT(detail(), StartsWith("You have version 1.2."));
    EXPECT_EQ(sheet().firstButton()->title(), "Install");
    pressSecond();
    EXPECT_FALSE(sheetIsOpen());
    EXPECT_EQ(updater->calls().back(), "check") << "later is later";
    EXPECT_EQ(buttonTitle(), "Show Update…");
}

TEST_F(PaneUpdates, AnUpdateGoesFromTheClickToItsEnd)
{
    openAndDownload();
    EXPECT_EQ(headline(), "Downloading Farview 1.3…");
    updater->receive(2'000'000, 4'000'000);
    EXPECT_EQ(detail(), "2000 kB / 4000 kB");
    EXPECT_TRUE(sheet().notesArea()->isHidden());
    updater->verify();
    EXPECT_EQ(headline(), "Verifying Farview 1.3…");
    updater->getReady();
    EXPECT_THAT(updater->calls(), ElementsAre("check", "download", "install"));
    EXPECT_EQ(headline(), "Installing Farview 1.3…");
    EXPECT_FALSE(sheet().secondButton()->isEnabled());
    updater->finishInstallation();
    EXPECT_EQ(headline(), "Farview 1.3 is installed.");
    EXPECT_EQ(fake.application->reopenings(), 0);
    pressFirst();
    EXPECT_EQ(fake.application->reopenings(), 1);
    EXPECT_EQ(outcome(), "installed");
}

TEST_F(PaneUpdates, WhoDoesNotReopenNowIsRemindedAndCanDoItLater)
{
    openAndInstall();
    updater->finishInstallation();
    pressSecond();
    EXPECT_EQ(fake.application->reopenings(), 0);
    EXPECT_EQ(line(), "Farview 1.3 is installed. Reopen this panel to use it.");
    checkNow();
    EXPECT_EQ(looks(), 1);
    pressFirst();
    EXPECT_EQ(fake.application->reopenings(), 1);
}

TEST_F(PaneUpdates, BothProgramsAreToldToEndBeforeTheInstallationAndAreNotStartedAfterwards)
{
    setStored(kCurrentState, 1);
    openAndDownload();
    updater->verify();
    const auto launches = fake.workspace.launches().size();
    EXPECT_THAT(posts(kTerminateScreenServer), IsEmpty());
    updater->getReady();
    ASSERT_EQ(posts(kTerminateScreenServer).size(), 1u);
    ASSERT_EQ(posts(kTerminateMenuExtra).size(), 1u);
    updater->finishInstallation();
    pass(60);
    EXPECT_EQ(fake.workspace.launches().size(), launches);
}

TEST_F(PaneUpdates, AnUpdateThatFailsKeepsWhatTheLookCameTo)
{
    openAndDownload();
    updater->fail(UpdateProblem::wrongSignature);
    EXPECT_EQ(headline(), "Farview was not updated.");
    EXPECT_EQ(detail(), "What the update server sent is damaged or not genuine.\n"
                        "Nothing was changed. Try again later.");
    EXPECT_EQ(outcome(), "found");
}

TEST_F(PaneUpdates, YetAnotherVersionIsOfferedAnew)
{
    openAndDownload();
    updater->find("1.4", "");
    EXPECT_EQ(headline(), "Farview 1.4 is available.");
    EXPECT_TRUE(sheet().notesArea()->isHidden());
    EXPECT_THAT(posts(kTerminateScreenServer), IsEmpty());
}

TEST_F(PaneUpdates, ClosingThePanelGivesUpADownload)
{
    openAndDownload();
    hide();
    EXPECT_EQ(updater->calls().back(), "cancel");
    EXPECT_FALSE(sheetIsOpen());
}

TEST_F(PaneUpdates, ClosingThePanelLeavesAnInstallationAlone)
{
    openAndInstall();
    hide();
    EXPECT_EQ(updater->calls().back(), "install");
    updater->finishInstallation();
    EXPECT_EQ(outcome(), "installed");
}

TEST_F(PaneUpdates, APaneThatGoesHearsNothingMore)
{
    openWithSheet();
    pane.reset();
    find();
    EXPECT_EQ(updater->status().stage, Stage::found);
}

TEST_F(PaneUpdates, ANewPaneShowsWhatIsKnownWithoutStoringItAgain)
{
    openAndLook();
    find();
    hide();
    const auto at = stored(kLastUpdateCheck);
    pass(3600);
    newPane();
    connect();
    loadAndShow();
    EXPECT_EQ(line(), "Farview 1.3 is available.");
    checkNow();
    EXPECT_EQ(headline(), "Farview 1.3 is available.");
    EXPECT_EQ(stored(kLastUpdateCheck), at);
}

TEST_F(PaneUpdates, WithoutItsInterfaceFileTheLineStillTells)
{
    loader->isBroken = true;
    openWithSheet();
    EXPECT_TRUE(fake.log.contains("Cannot open the sheet for updates: the file is broken"));
    EXPECT_EQ(line(), "Looking for updates…");
    find();
    EXPECT_EQ(line(), "Farview 1.3 is available.");
}

TEST_F(PaneUpdates, NothingIsDoneAboutUpdatesBeforeThePaneIsShown)
{
    load();
    checkNow();
    pane->autoUpdateCheckbox()->performClick(nullptr);
    EXPECT_EQ(pane->softwareUpdates(), nullptr);
    EXPECT_THAT(updater->calls(), IsEmpty());
}

} // namespace
