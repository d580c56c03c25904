// The question before a device is trusted, as it is seen in the card.

#include "Tests/Window/PanelFixture.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>

namespace farview::test
{
namespace
{

class PairingCard : public PanelFixture
{
protected:
    void open()
    {
        load();
        fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
        announce("Desk", "desk.local.");
    }
    bool isSeen(const char* name) const { return find<QWidget>(name)->isVisible(); }
    QLabel& digits() const { return *find<QLabel>("pairingDigitsLabel"); }
};

TEST_F(PairingCard, IsNotThereAndTakesNoRoomBeforeAnythingIsAsked)
{
    open();
    find<QTabWidget>("tabView")->setCurrentIndex(0);
    settle();
    EXPECT_FALSE(isSeen("pairingBox"));
    const int before = find<QWidget>("deviceCard")->sizeHint().height();
    compareWith("Desk");
    EXPECT_TRUE(isSeen("pairingBox"));
    EXPECT_GT(find<QWidget>("deviceCard")->sizeHint().height(), before);
    serverReports(PairingReport{});
    EXPECT_FALSE(isSeen("pairingBox"));
    EXPECT_EQ(find<QWidget>("deviceCard")->sizeHint().height(), before);
}

TEST_F(PairingCard, ShowsTheDigitsLargeToBeSelectedAndReadOutOneByOne)
{
    open();
    compareWith("Desk");
    EXPECT_EQ(digits().text(), u"482\u00A0913"_qs);
    EXPECT_GE(digits().font().pointSizeF(), 2.5 * QApplication::font().pointSizeF());
    EXPECT_TRUE(digits().textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    const auto* spoken = QAccessible::queryAccessibleInterface(&digits());
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"4 8 2 9 1 3"_qs);
}

TEST_F(PairingCard, TakesTheNameOfADeviceForPlainText)
{
    open();
    compareWith("<b>Desk</b>\u202E%2$@");
    const auto& label = *find<QLabel>("pairingLabel");
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_TRUE(label.text().contains(u"<b>Desk</b>"_qs)) << label.text().toStdString();
    EXPECT_FALSE(label.text().contains(QChar(0x202E))) << "it would turn the digits round";
    EXPECT_TRUE(label.text().endsWith(u"482\u00A0913?"_qs)) << label.text().toStdString();
}

TEST_F(PairingCard, HasNoDefaultButton)
{
    open();
    compareWith("Desk");
    for (const char* name : {"pairingYesButton", "pairingNoButton"}) {
        EXPECT_FALSE(find<QPushButton>(name)->isDefault()) << name;
        EXPECT_FALSE(find<QPushButton>(name)->autoDefault()) << name;
        EXPECT_FALSE(find<QPushButton>(name)->hasFocus()) << name;
    }
}

TEST_F(PairingCard, OffersToForgetADeviceWithAnotherKey)
{
    open();
    compareWith("Desk");
    serverReports(PairingReport{PairingReport::State::changed, "", "Desk"});
    EXPECT_FALSE(isSeen("pairingDigitsLabel"));
    EXPECT_FALSE(isSeen("pairingNoButton"));
    ASSERT_TRUE(isSeen("pairingYesButton"));
    EXPECT_EQ(find<QPushButton>("pairingYesButton")->text(), u"Forget the Old One"_qs);
    find<QPushButton>("pairingYesButton")->click();
    settle();
    EXPECT_FALSE(isSeen("pairingBox"));
    EXPECT_EQ(fake.distributedNotificationCenter.countOf(kPairedDevicesDidChange), 1);
}

} // namespace
} // namespace farview::test
