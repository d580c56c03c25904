#include "Controls/Qt/AlertBoxes.h"

#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QtTest/QTest>

#include <optional>

namespace farview::test
{
namespace
{

struct ShownAlert : testing::Test {
    ShownAlert()
    {
        window->setWindowTitle(u"Farview"_qs);
        EXPECT_TRUE(bindToWidget(view, new QWidget(window.get())));
        window->show();
        alert.messageText = "<b>Message</b>";
        alert.informativeText = "<i>Reason</i> & more";
        alert.buttons = {"OK", "Can & cel"};
    }
    void show()
    {
        handle = boxes.beginSheet(alert, view, [this](int code) { answers.push_back(code); });
    }
    QMessageBox* box() const { return window->findChild<QMessageBox*>(); }
    /// What was to go on a later turn goes now.
    static void letGo() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    std::shared_ptr<View> view = std::make_shared<View>();
    Alert alert;
    AlertBoxes boxes;
    Subscription handle;
    std::vector<int> answers;
};

TEST_F(ShownAlert, ItHangsOnTheWindowOfTheViewBlocksItAndReturnsAtOnce)
{
    show();
    ASSERT_NE(box(), nullptr);
    EXPECT_TRUE(box()->isVisible());
    EXPECT_EQ(box()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(box()->windowTitle(), u"Farview"_qs);
    EXPECT_EQ(box()->icon(), QMessageBox::Warning);
    EXPECT_TRUE(answers.empty());
}

TEST_F(ShownAlert, ItsTextsArePlainText)
{
    show();
    EXPECT_EQ(box()->text(), u"<b>Message</b>"_qs);
    EXPECT_EQ(box()->informativeText(), u"<i>Reason</i> & more"_qs);
    for (const auto* label : box()->findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
    EXPECT_EQ(box()->buttons().last()->text(), u"Can && cel"_qs);
}

TEST_F(ShownAlert, EachButtonAnswersItsNumberOnce)
{
    for (const int index : {0, 1}) {
        show();
        box()->buttons().at(index)->click();
        letGo();
        EXPECT_EQ(box(), nullptr);
    }
    EXPECT_EQ(answers, (std::vector<int>{1000, 1001}));
}

TEST_F(ShownAlert, ReturnPressesTheFirstAndEscapeTheLast)
{
    show();
    QTest::keyClick(box(), Qt::Key_Return);
    letGo();
    EXPECT_EQ(box(), nullptr);
    show();
    QTest::keyClick(box(), Qt::Key_Escape);
    letGo();
    EXPECT_EQ(box(), nullptr);
    show();
    box()->close();
    EXPECT_EQ(answers, (std::vector<int>{1000, 1001, 1001}));
}

TEST_F(ShownAlert, EndingTheHandleTakesItAwayUnanswered)
{
    show();
    const QPointer<QMessageBox> shown = box();
    handle.end();
    EXPECT_FALSE(shown->isVisible());
    letGo();
    EXPECT_TRUE(shown.isNull());
    EXPECT_TRUE(answers.empty());
}

TEST_F(ShownAlert, TheHandleMayEndWhileItIsAnswered)
{
    handle = boxes.beginSheet(alert, view, [this](int code) {
        handle.end();
        answers.push_back(code);
    });
    box()->buttons().first()->click();
    letGo();
    EXPECT_EQ(box(), nullptr);
    EXPECT_EQ(answers, (std::vector<int>{1000}));
}

TEST_F(ShownAlert, AWindowThatGoesTakesItAlong)
{
    show();
    const QPointer<QMessageBox> shown = box();
    window.reset();
    EXPECT_TRUE(shown.isNull());
    handle.end();
    EXPECT_TRUE(answers.empty());
}

TEST_F(ShownAlert, AViewThatNothingShowsLeavesItByItself)
{
    handle = boxes.beginSheet(alert, std::make_shared<View>(),
                              [this](int code) { answers.push_back(code); });
    const QPointer<QWidget> shown = QApplication::activeModalWidget();
    ASSERT_FALSE(shown.isNull());
    EXPECT_EQ(shown->parentWidget(), nullptr);
    handle.end();
    letGo();
    EXPECT_TRUE(shown.isNull());
}

} // namespace
} // namespace farview::test
