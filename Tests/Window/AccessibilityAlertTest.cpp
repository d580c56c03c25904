#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QMessageBox>
#include <QTabWidget>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

/// The alert as people see it, on a desktop whose accessibility is off.
class AccessibilityAlert : public PanelFixture
{
protected:
    void open(const char* language = "en")
    {
        fake.fileManager.addFile(accessibilityPane);
        load(language);
        show();
        find<QTabWidget>("tabView")->setCurrentIndex(1);
    }
    QCheckBox* checkBox() const { return find<QCheckBox>("autoMoveWindowsBack"); }
    QMessageBox* alert() const { return view->window()->findChild<QMessageBox*>(); }

    static constexpr const char* accessibilityPane =
        "/usr/lib/farview/PreferencePanes/UniversalAccessPref.prefPane";
};

TEST_F(AccessibilityAlert, AClickOnTheBoxBringsItAndOKLeadsToThePane)
{
    open();
    checkBox()->click();
    ASSERT_NE(alert(), nullptr);
    EXPECT_TRUE(alert()->isVisible());
    EXPECT_EQ(alert()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(alert()->text(), u"This Feature Requires Accessibility"_qs);
    QTest::keyClick(alert(), Qt::Key_Return);
    EXPECT_FALSE(checkBox()->isChecked());
    ASSERT_EQ(fake.workspace.opened().size(), 1u);
    EXPECT_EQ(fake.workspace.opened()[0].path(), accessibilityPane);
}

TEST_F(AccessibilityAlert, EscapeUnticksTheBoxAndOpensNothing)
{
    open();
    checkBox()->click();
    QTest::keyClick(alert(), Qt::Key_Escape);
    EXPECT_FALSE(checkBox()->isChecked());
    EXPECT_TRUE(fake.workspace.opened().empty());
    const auto stored = fake.preferences.storedValue(kAutoMoveWindowsBackOption, kApplicationID);
    EXPECT_EQ(stored, PropertyList(false)) << "as the showing left it";
}

TEST_F(AccessibilityAlert, HidingThePaneTakesItOffTheScreen)
{
    open();
    checkBox()->click();
    pane->willUnselect();
    EXPECT_TRUE(!alert() || !alert()->isVisible());
    EXPECT_FALSE(checkBox()->isChecked());
}

TEST_F(AccessibilityAlert, ItSpeaksTheUsersLanguage)
{
    open("de");
    checkBox()->click();
    EXPECT_EQ(alert()->text(), u"Diese Funktion braucht die Bedienungshilfen"_qs);
    EXPECT_EQ(alert()->buttons().last()->text(), u"Abbrechen"_qs);
}

} // namespace
} // namespace farview::test
