#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

struct BoundLineEdit : testing::Test {
    BoundLineEdit() { EXPECT_TRUE(bindToWidget(field, &lineEdit)); }

    QLineEdit lineEdit;
    std::shared_ptr<TextField> field = std::make_shared<TextField>();
};

TEST_F(BoundLineEdit, WhatIsTypedReachesTheField)
{
    int typed = 0;
    const auto watch =
        field->observe([&](Change change) { typed += change == Change::typedText ? 1 : 0; });
    QTest::keyClicks(&lineEdit, u"10."_qs);
    EXPECT_EQ(field->stringValue(), "10.");
    EXPECT_EQ(typed, 3);
    QTest::keyClick(&lineEdit, Qt::Key_Backspace);
    EXPECT_EQ(field->stringValue(), "10");
}

TEST_F(BoundLineEdit, TypingInTheMiddleLeavesTheCursorThere)
{
    field->setStringValue("10.0.5");
    lineEdit.setCursorPosition(4);
    QTest::keyClicks(&lineEdit, u"."_qs);
    EXPECT_EQ(field->stringValue(), "10.0..5");
    EXPECT_EQ(lineEdit.cursorPosition(), 5);
}

TEST_F(BoundLineEdit, WhatAProgramSetsIsShownAndIsNotTyping)
{
    bool typed = false;
    const auto watch = field->observe([&](Change change) { typed |= change == Change::typedText; });
    field->setStringValue("::1\x07");
    EXPECT_EQ(lineEdit.text(), QString::fromUtf8("::1␇"));
    EXPECT_FALSE(typed);
    EXPECT_EQ(field->stringValue(), "::1\x07");
}

TEST_F(BoundLineEdit, SelectingSelectsTheWholeText)
{
    field->setStringValue("10.0.0.5");
    field->selectText();
    EXPECT_EQ(lineEdit.selectedText(), u"10.0.0.5"_qs);
}

TEST_F(BoundLineEdit, AReadOnlyFieldTakesNoTyping)
{
    EXPECT_TRUE(field->isEditable());
    field->setEditable(false);
    EXPECT_TRUE(lineEdit.isReadOnly());
    QTest::keyClicks(&lineEdit, u"1"_qs);
    EXPECT_EQ(field->stringValue(), "");
}

TEST_F(BoundLineEdit, WhatAssistiveTechnologyPutsInCountsAsTyped)
{
    auto* accessible = QAccessible::queryAccessibleInterface(&lineEdit);
    accessible->editableTextInterface()->replaceText(0, 0, u"10.0.0.5"_qs);
    EXPECT_EQ(field->stringValue(), "10.0.0.5");
}

TEST(BoundTextRole, AnErrorIsRedOnLightAndOnDarkAndTheDesktopsColourAfterwards)
{
    for (const QColor& background : {QColor(Qt::white), QColor(40, 40, 40)}) {
        QWidget window;
        window.setPalette(QPalette(background));
        QLabel label(&window);
        const auto field = std::make_shared<TextField>();
        ASSERT_TRUE(bindToWidget(field, &label));
        const QColor normal = label.palette().color(QPalette::WindowText);
        field->setTextRole(TextField::Role::error);
        const QColor red = label.palette().color(QPalette::WindowText);
        EXPECT_GT(red.red(), 2 * red.blue());
        EXPECT_GT(std::abs(red.lightness() - background.lightness()), 60);
        field->setTextRole(TextField::Role::normal);
        EXPECT_EQ(label.palette().color(QPalette::WindowText), normal);
    }
}

} // namespace
} // namespace farview::test
