#include "Common/FVEPreferences.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Source/FVEConnectToOtherSheetController.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>

namespace farview::test
{
namespace
{

/// The sheet as people see it, opened from the real menu.
class SheetWindow : public PanelFixture
{
protected:
    void open()
    {
        load();
        fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
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

} // namespace
} // namespace farview::test
