#include "Applications/Preferences/PreferencesHost.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Tests/Support/WaitUntil.h"
#include "Tests/Window/HostFixture.h"

#include <QLabel>
#include <QMessageBox>
#include <QToolButton>

namespace
{

class TwoPanes : public HostFixture
{
protected:
    farview::StandardErrorLog log{"host_test"};
    farview::PosixBundles bundles{farview::EnvironmentUse::honoured, log};
};

TEST_F(TwoPanes, LiveInOneHostWithoutMeetingEachOther)
{
    const QString first = copyOfBundle("First.prefPane");
    const QString second = copyOfBundle("Second.prefPane");
    PreferencesHost host(PaneLoader(bundles, true));
    ASSERT_EQ(host.open(first).status, HostStatus::success);
    const LoadedPane* firstPane = host.selected();
    ASSERT_EQ(host.open(second).status, HostStatus::success);
    const LoadedPane* secondPane = host.selected();
    EXPECT_NE(firstPane, secondPane);
    EXPECT_FALSE(firstPane->view()->isVisible());
    EXPECT_TRUE(secondPane->view()->isVisible());
    secondPane->view()->findChild<QLabel*>("statusLabel")->setText(u"second"_qs);
    ASSERT_EQ(host.open(first).status, HostStatus::success);
    EXPECT_EQ(host.selected(), firstPane);
    EXPECT_TRUE(firstPane->view()->isVisible());
    EXPECT_NE(firstPane->view()->findChild<QLabel*>("statusLabel")->text(), u"second"_qs);
    runLoopFor(std::chrono::milliseconds(50));
}

TEST_F(TwoPanes, FromTheOneOpenedOverTheOtherAButtonLeadsBack)
{
    const QString first = copyOfBundle("First.prefPane");
    const QString second = copyOfBundle("Second.prefPane");
    PreferencesHost host(PaneLoader(bundles, true));
    ASSERT_EQ(host.open(first).status, HostStatus::success);
    const LoadedPane* firstPane = host.selected();
    auto* back = host.window().findChild<QToolButton*>("backButton");
    EXPECT_FALSE(back->isVisible());
    ASSERT_EQ(host.open(second).status, HostStatus::success);
    EXPECT_TRUE(back->isVisible());
    EXPECT_EQ(back->text(), firstPane->title());
    EXPECT_EQ(back->shortcut(), QKeySequence(Qt::ALT | Qt::Key_Left));
    back->click();
    EXPECT_EQ(host.selected(), firstPane);
    EXPECT_TRUE(firstPane->view()->isVisible());
    EXPECT_FALSE(back->isVisible());
}

TEST_F(TwoPanes, TheWayBackHasEachPaneOnceAndEndsWithTheWindow)
{
    const QString first = copyOfBundle("First.prefPane");
    const QString second = copyOfBundle("Second.prefPane");
    PreferencesHost host(PaneLoader(bundles, true));
    for (const QString& each : {first, second, first, second})
        ASSERT_EQ(host.open(each).status, HostStatus::success);
    auto* back = host.window().findChild<QToolButton*>("backButton");
    back->click();
    EXPECT_FALSE(back->isVisible()) << "once there and back again, not twice";
    ASSERT_EQ(host.open(second).status, HostStatus::success);
    host.window().close();
    ASSERT_EQ(host.open(first).status, HostStatus::success);
    EXPECT_FALSE(back->isVisible());
}

TEST_F(TwoPanes, ABrokenOneIsExplainedInTheWindowAndTheOtherStays)
{
    PreferencesHost host(PaneLoader(bundles, true));
    ASSERT_EQ(host.open(copyOfBundle("First.prefPane")).status, HostStatus::success);
    const LoadedPane* shown = host.selected();
    EXPECT_EQ(host.open(path("<b>Nowhere</b>.prefPane")).status, HostStatus::paneNotFound);
    EXPECT_EQ(host.selected(), shown);
    const auto* box = host.window().findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    EXPECT_TRUE(box->text().contains(u"<b>Nowhere</b>"_qs));
}

TEST_F(TwoPanes, ClosingTheWindowUnselectsAndOpeningSelectsAgain)
{
    PreferencesHost host(PaneLoader(bundles, true));
    const QString bundle = copyOfBundle("First.prefPane");
    for (int showing = 0; showing < 3; ++showing) {
        ASSERT_EQ(host.open(bundle).status, HostStatus::success);
        EXPECT_TRUE(host.window().isVisible());
        host.window().close();
        EXPECT_EQ(host.selected(), nullptr);
    }
}

} // namespace
