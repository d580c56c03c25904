#include "Common/FVEConstants.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Source/FVEEnableHiDPIController.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QPointer>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

using Kind = FakeAuthorization::Request::Kind;

/// The window as people see it, opened with the real box.
class HiDPIWindow : public PanelFixture
{
protected:
    void open(const char* language = "en")
    {
        load(language);
        show();
        box()->click();
        settle();
        ASSERT_NE(window(), nullptr);
        ASSERT_TRUE(window()->isVisible());
    }
    QCheckBox* box() const { return find<QCheckBox>("enableHiDPIResolutions"); }
    /// Those on the screen.
    QList<SheetWidget*> windows() const
    {
        QList<SheetWidget*> found;
        for (auto* each : view->window()->findChildren<SheetWidget*>(QStringLiteral("window"))) {
            if (each->isVisible())
                found.append(each);
        }
        return found;
    }
    SheetWidget* window() const { return windows().value(0); }
    QAbstractButton* button(const char* name) const
    {
        return window()->findChild<QAbstractButton*>(QString::fromLatin1(name));
    }
    QLabel* label(const char* name) const
    {
        return window()->findChild<QLabel*>(QString::fromLatin1(name));
    }
    void expectNothingIsCut()
    {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        for (const auto* each : window()->findChildren<QLabel*>())
            EXPECT_GE(each->height(), each->heightForWidth(each->width()))
                << each->objectName().toStdString();
        EXPECT_TRUE(window()->rect().contains(window()->childrenRect()));
    }
};

TEST_F(HiDPIWindow, StandsBesideThePanelWhichGoesOnTakingInput)
{
    open();
    EXPECT_EQ(window()->parentWidget(), view->window());
    EXPECT_TRUE(window()->isWindow());
    EXPECT_EQ(window()->windowModality(), Qt::NonModal);
    EXPECT_EQ(window()->windowTitle(), u"HiDPI Resolutions"_qs);
    EXPECT_TRUE(label("explanationText")->text().contains(u"are off. OK turns them on"_qs));
    EXPECT_EQ(window()->focusWidget()->objectName(), u"okButton"_qs);
}

TEST_F(HiDPIWindow, EnterIsOKAndTheWindowIsGoneForGood)
{
    open();
    const QPointer<QWidget> widget = window();
    QTest::keyClick(window(), Qt::Key_Return);
    EXPECT_EQ(fake.authorization.runTools().size(), 1u);
    EXPECT_EQ(window(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(widget.isNull());
    EXPECT_TRUE(box()->isChecked());
}

TEST_F(HiDPIWindow, TheTitleBarsCloseButtonRunsNothingAndLeavesTheBoxAsClicked)
{
    open();
    window()->close();
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(box()->isChecked());
    EXPECT_TRUE(fake.authorization.runTools().empty());
    box()->click();
    EXPECT_NE(window(), nullptr) << "it opens again";
}

TEST_F(HiDPIWindow, TwoClicksShowOneWindow)
{
    open();
    box()->click();
    EXPECT_EQ(windows().size(), 1);
    EXPECT_FALSE(box()->isChecked());
    for (int time = 0; time < 20; ++time)
        box()->click();
    EXPECT_EQ(windows().size(), 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view->window()->findChildren<SheetWidget*>(u"window"_qs).size(), 1)
        << "the others have gone";
}

TEST_F(HiDPIWindow, WhileAnAdministratorIsAwaitedNothingInItCanBePressed)
{
    fake.authorization.hold(Kind::create);
    open();
    button("okButton")->click();
    EXPECT_FALSE(box()->isEnabled());
    EXPECT_FALSE(button("okButton")->isEnabled());
    EXPECT_FALSE(button("cancelButton")->isEnabled());
    QTest::keyClick(window(), Qt::Key_Escape);
    ASSERT_NE(window(), nullptr);
    EXPECT_EQ(label("progressText")->text(), u"Waiting for an administrator…"_qs);
    EXPECT_TRUE(fake.authorization.answer(AuthorizationStatus::canceled));
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(box()->isEnabled());
}

TEST_F(HiDPIWindow, MayBeClosedWhileAnAdministratorIsAwaited)
{
    fake.authorization.hold(Kind::create);
    open();
    button("okButton")->click();
    window()->close();
    EXPECT_EQ(window(), nullptr);
    EXPECT_FALSE(box()->isEnabled());
    EXPECT_TRUE(fake.authorization.answer(AuthorizationStatus::success));
    EXPECT_TRUE(box()->isEnabled());
    EXPECT_EQ(fake.authorization.runTools().size(), 1u);
}

TEST_F(HiDPIWindow, GrowsForAWarningThatComesLate)
{
    fake.authorization.hold(Kind::foresee);
    open();
    const int before = window()->height();
    EXPECT_TRUE(fake.authorization.answer(AuthorizationStatus::interactionNotAllowed));
    expectNothingIsCut();
    EXPECT_GT(window()->height(), before);
    EXPECT_TRUE(label("progressText")->text().contains(u"Start the authentication agent"_qs));
}

TEST_F(HiDPIWindow, NothingIsCutInLargeTypeOrInGerman)
{
    useLargeFont();
    fake.authorization.setObstacle(
        {Authorization::Obstacle::Kind::changeableByOthers, "/home/user/Farview"});
    open("de");
    EXPECT_EQ(window()->windowTitle(), u"HiDPI-Auflösungen"_qs);
    EXPECT_TRUE(label("progressText")->text().contains(u"/home/user/Farview verändern"_qs));
    EXPECT_EQ(button("cancelButton")->text(), u"Abbrechen"_qs);
    expectNothingIsCut();
}

TEST_F(HiDPIWindow, APaneThatGoesTakesItsWindowAlong)
{
    open();
    const QPointer<QWidget> widget = window();
    pane.reset();
    EXPECT_TRUE(widget.isNull());
}

TEST_F(HiDPIWindow, AWindowOfThePanelThatGoesFirstTakesItAlong)
{
    fake.authorization.hold(Kind::create);
    open();
    const QPointer<QWidget> widget = window();
    button("okButton")->click();
    view.reset();
    EXPECT_TRUE(widget.isNull());
    EXPECT_TRUE(fake.authorization.answer(AuthorizationStatus::success));
    pane->willUnselect();
}

} // namespace
} // namespace farview::test
