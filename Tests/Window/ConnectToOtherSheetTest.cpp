#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Source/FVEConnectToOtherSheetController.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

/// The sheet as people see it, opened from the real menu.
class SheetWindow : public PanelFixture
{
protected:
    void open(const char* language = "en")
    {
        load(language);
        fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
        openFromMenu();
    }
    void openFromMenu()
    {
        auto* popUp = find<PopUpWidget>("virtualScreenSelectionPopup");
        emit popUp->openRequested();
        ASSERT_NE(popUp->openMenu(), nullptr);
        const auto entries = popUp->openMenu()->actions();
        popUp->openMenu()->close();
        entries.last()->trigger();
        settle();
        ASSERT_TRUE(sheet()->isVisible());
    }
    SheetWidget* sheet() const { return find<SheetWidget>("otherDevicePanel"); }
    QLineEdit* field() const { return find<QLineEdit>("otherTextField"); }
    QAbstractButton* ok() const { return find<QAbstractButton>("connectToOtherOKButton"); }
    QLabel* progress() const { return find<QLabel>("connectToOtherProgress"); }
    int requests() const
    {
        return fake.distributedNotificationCenter.countOf(kConnectServerToTicket);
    }
    void type(const char* text) { QTest::keyClicks(field(), QString::fromLatin1(text)); }
    /// Saves the sheet when someone wants to look at it.
    void pictureOfSheet(const char* name) const
    {
        const QString folder = qEnvironmentVariable("FARVIEW_TEST_PICTURES");
        if (!folder.isEmpty())
            sheet()->grab().save(folder + u'/' + QString::fromLatin1(name) + u".png"_qs);
    }
    void expectNothingIsCut()
    {
        QCoreApplication::processEvents();
        for (const auto* label : sheet()->findChildren<QLabel*>()) {
            const int needed = label->wordWrap() ? label->heightForWidth(label->width())
                                                 : label->sizeHint().height();
            EXPECT_GE(label->height(), needed) << label->objectName().toStdString();
            EXPECT_TRUE(label->wordWrap() || label->width() >= label->sizeHint().width())
                << label->objectName().toStdString();
        }
        EXPECT_TRUE(sheet()->rect().contains(sheet()->childrenRect()));
    }
};

TEST_F(SheetWindow, OpensFromTheMenuWithTheLastAddressSelected)
{
    fake.preferences.setAppValue(kLastOtherDeviceName, "10.0.0.5", "com.quillon.Farview");
    open();
    EXPECT_EQ(sheet()->parentWidget(), view->window());
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet()->focusWidget(), field());
    EXPECT_EQ(field()->selectedText(), u"10.0.0.5"_qs);
    EXPECT_TRUE(ok()->isEnabled());
    EXPECT_FALSE(progress()->isVisible());
    pictureOfSheet("sheet");
}

TEST_F(SheetWindow, EnterIsOKOnlyWhenTheAddressIsComplete)
{
    open();
    type("10.0.0.");
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(requests(), 0);
    EXPECT_TRUE(sheet()->isVisible());
    type("5");
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(requests(), 1);
    EXPECT_EQ(progress()->text(), u"Connecting..."_qs);
    EXPECT_TRUE(progress()->isVisible());
    EXPECT_FALSE(ok()->isEnabled());
}

TEST_F(SheetWindow, EscapeIsCancel)
{
    open();
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_FALSE(sheet()->isVisible());
    EXPECT_FALSE(pane->connectToOtherSheetController()->isOpen());
    EXPECT_EQ(find<PopUpWidget>("virtualScreenSelectionPopup")->title(), u"No device selected"_qs);
    openFromMenu();
    sheet()->close();
    EXPECT_FALSE(pane->connectToOtherSheetController()->isOpen());
}

TEST_F(SheetWindow, ATimeOutIsRedAndOffersToRetry)
{
    open();
    type("::1");
    ok()->click();
    fake.runLoop.advance(Duration(121));
    EXPECT_EQ(progress()->text(), u"Could not connect..."_qs);
    const QColor red = progress()->palette().color(QPalette::WindowText);
    EXPECT_GT(red.red(), 2 * red.blue());
    EXPECT_EQ(ok()->text(), u"Retry"_qs);
    pictureOfSheet("sheet-timed-out");
    type("2");
    EXPECT_EQ(ok()->text(), u"OK"_qs);
    EXPECT_EQ(progress()->text(), QString());
}

TEST_F(SheetWindow, AConnectionClosesIt)
{
    open();
    type("10.0.0.5");
    ok()->click();
    fake.distributedNotificationCenter.postFromAnotherProcess(kServerConnectedToDevice,
                                                              {{"DeviceName", "Other"}});
    fake.runLoop.advance(Duration(0.1));
    EXPECT_EQ(progress()->text(), u"Connected..."_qs);
    fake.runLoop.advance(Duration(0.5));
    EXPECT_FALSE(sheet()->isVisible());
    EXPECT_EQ(find<PopUpWidget>("virtualScreenSelectionPopup")->title(), u"10.0.0.5"_qs);
}

TEST_F(SheetWindow, HidingThePaneTakesItOffTheScreen)
{
    open();
    pane->willUnselect();
    EXPECT_FALSE(sheet()->isVisible());
}

TEST_F(SheetWindow, APaneThatGoesTakesItsSheetAlong)
{
    open();
    const QPointer<QWidget> window = sheet();
    const std::weak_ptr<FVEPreferencePane> weak = pane;
    pane.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(window.isNull());
}

TEST_F(SheetWindow, AWindowThatGoesFirstTakesItAlong)
{
    open();
    const QPointer<QWidget> window = sheet();
    view.reset();
    EXPECT_TRUE(window.isNull());
    pane->willUnselect();
    EXPECT_FALSE(pane->connectToOtherSheetController()->isOpen());
}

TEST_F(SheetWindow, EveryControlHasANameForAssistiveTechnology)
{
    open();
    for (const char* name : {"otherTextField", "connectToOtherOKButton", "cancelButton"}) {
        auto* widget = find<QWidget>(name);
        const auto* accessible = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr) << name;
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << name;
    }
    EXPECT_FALSE(sheet()->windowTitle().isEmpty());
}

TEST_F(SheetWindow, NothingIsCutInLargeTypeOrInGerman)
{
    useLargeFont();
    open("de");
    EXPECT_EQ(find<QAbstractButton>("cancelButton")->text(), u"Abbrechen"_qs);
    EXPECT_EQ(sheet()->windowTitle(), u"Mit anderem verbinden"_qs);
    expectNothingIsCut();
    type("::1");
    ok()->click();
    EXPECT_EQ(progress()->text(), u"Verbindung wird aufgebaut …"_qs);
    expectNothingIsCut();
    pictureOfSheet("sheet-de");
}

} // namespace
} // namespace farview::test
