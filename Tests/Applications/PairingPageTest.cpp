#include "Applications/Device/PairingPage.h"

#include "Tests/Support/WaitUntil.h"

#include <QApplication>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::HasSubstr;

namespace
{

class PairingPageTest : public testing::Test
{
protected:
    PairingPageTest()
    {
        page.resize(640, 480);
        page.show();
        page.ask(computer);
    }
    QLabel& label(const char* name) { return *page.findChild<QLabel*>(QLatin1String(name)); }
    QPushButton& button(const char* name)
    {
        return *page.findChild<QPushButton*>(QLatin1String(name));
    }
    void press(Qt::Key key) { QTest::keyClick(page.focusWidget(), key); }
    bool mayAnswerYes()
    {
        return waitUntil([this] { return button("pairingYes").isEnabled(); });
    }
    /// Where the digits are drawn: all that is dark in their place.
    QRect drawnDigits()
    {
        const QImage image = label("pairingDigits").grab().toImage();
        const auto isDark = [&](int x, int y) { return qGray(image.pixel(x, y)) < 128; };
        QRect drawn;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                drawn = isDark(x, y) ? drawn.united({x, y, 1, 1}) : drawn;
        }
        return drawn;
    }

    ComputerToConfirm computer{.digits = "482913", .address = "192.0.2.9"};
    int confirmed = 0;
    int refused = 0;
    DeviceTexts texts{{"en"}};
    PairingPage page{
        texts,
        {[this](const auto& digits) { confirmed += digits == "482913"; }, [this] { ++refused; }}};
};

TEST_F(PairingPageTest, AsksWithTheDigitsAndWhereTheComputerIs)
{
    EXPECT_EQ(label("pairingDigits").text(), "482 913");
    EXPECT_EQ(label("pairingQuestion").text(), "A computer at 192.0.2.9 wants to use this screen. "
                                               "Does it show the same digits?");
    EXPECT_EQ(label("pairingQuestion").textFormat(), Qt::PlainText);
}

TEST_F(PairingPageTest, TheDigitsAreReadOutOneByOneWithTheQuestion)
{
    EXPECT_EQ(page.focusWidget(), &label("pairingDigits"));
    EXPECT_EQ(label("pairingDigits").accessibleName(), "4 8 2 9 1 3");
    EXPECT_EQ(label("pairingDigits").accessibleDescription(), label("pairingQuestion").text());
}

TEST_F(PairingPageTest, TheDigitsAreAsLargeAsThereIsRoomAndNeverCut)
{
    for (const QSize& size : {QSize(320, 400), QSize(640, 480), QSize(1280, 800)}) {
        page.resize(size);
        const QRect drawn = drawnDigits();
        EXPECT_GT(drawn.width(), size.width() * 3 / 4) << size.width();
        EXPECT_LT(drawn.width(), size.width() * 0.95) << size.width();
        EXPECT_TRUE(label("pairingDigits").rect().adjusted(0, 1, 0, -1).contains(drawn));
    }
    page.resize(1280, 300);
    EXPECT_TRUE(label("pairingDigits").rect().adjusted(0, 1, 0, -1).contains(drawnDigits()))
        << "in a low window";
}

TEST_F(PairingPageTest, GroupsOfDigitsKeepTheirOrderFromRightToLeft)
{
    const QImage before = label("pairingDigits").grab().toImage();
    QApplication::setLayoutDirection(Qt::RightToLeft);
    EXPECT_TRUE(page.isRightToLeft());
    EXPECT_EQ(label("pairingDigits").grab().toImage(), before);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(PairingPageTest, ButtonsAreLargeEnoughForFingers)
{
    for (const char* name : {"pairingYes", "pairingNo"}) {
        EXPECT_GE(button(name).height(), 48) << name;
        EXPECT_GE(button(name).width(), 200) << name;
    }
}

TEST_F(PairingPageTest, TakesTheAnswer)
{
    ASSERT_TRUE(mayAnswerYes());
    button("pairingYes").click();
    EXPECT_EQ(confirmed, 1);
    button("pairingNo").click();
    EXPECT_EQ(refused, 1);
}

TEST_F(PairingPageTest, KeysThatAreTypedBlindlySayNothing)
{
    ASSERT_TRUE(mayAnswerYes());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Y})
        press(key);
    EXPECT_EQ(confirmed + refused, 0);
}

TEST_F(PairingPageTest, IsAnsweredByTheKeyboard)
{
    ASSERT_TRUE(mayAnswerYes());
    press(Qt::Key_Tab);
    ASSERT_EQ(page.focusWidget(), &button("pairingYes"));
    press(Qt::Key_Return);
    EXPECT_EQ(confirmed, 1);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    EXPECT_EQ(refused, 1);
}

TEST_F(PairingPageTest, ATouchThatWasMeantForSomethingElseSaysNoYes)
{
    EXPECT_FALSE(button("pairingYes").isEnabled());
    button("pairingYes").click();
    EXPECT_EQ(confirmed, 0);
    ASSERT_TRUE(mayAnswerYes());
    page.ask({.digits = "000111", .address = "192.0.2.10"});
    EXPECT_FALSE(button("pairingYes").isEnabled()) << "another question";
}

TEST_F(PairingPageTest, TheSameQuestionAgainChangesNothing)
{
    ASSERT_TRUE(mayAnswerYes());
    button("pairingNo").setFocus();
    page.ask(computer);
    EXPECT_TRUE(button("pairingYes").isEnabled());
    EXPECT_EQ(page.focusWidget(), &button("pairingNo"));
}

TEST_F(PairingPageTest, AfterYesItWaitsForTheOtherSide)
{
    ASSERT_TRUE(mayAnswerYes());
    button("pairingYes").setFocus();
    computer.isConfirmedHere = true;
    page.ask(computer);
    EXPECT_EQ(label("pairingDigits").text(), "482 913");
    EXPECT_EQ(label("pairingQuestion").text(), "Now confirm it at the computer, too.");
    EXPECT_FALSE(button("pairingYes").isVisible());
    EXPECT_EQ(button("pairingNo").text(), "&Cancel");
    press(Qt::Key_Return);
    EXPECT_EQ(refused, 0) << "a second Return does not take it back";
    page.ask({.digits = "000111", .address = "192.0.2.10"});
    EXPECT_TRUE(button("pairingYes").isVisible());
    EXPECT_EQ(button("pairingNo").text(), "&No");
}

} // namespace
