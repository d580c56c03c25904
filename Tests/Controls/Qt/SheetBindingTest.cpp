#include "Controls/Panel.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

struct BoundSheet : testing::Test {
    BoundSheet()
    {
        cancel->setProperty("cancels", true);
        QObject::connect(cancel, &QPushButton::clicked, [this] { ++cancelled; });
        EXPECT_TRUE(bindToWidget(panel, sheet));
        EXPECT_TRUE(bindToWidget(view, inside));
        window.show();
    }
    ~BoundSheet() override { delete sheet.data(); }

    QWidget window;
    QWidget* inside = new QWidget(&window);
    QPointer<SheetWidget> sheet = new SheetWidget;
    QLineEdit* field = new QLineEdit(sheet);
    QPushButton* cancel = new QPushButton(sheet);
    std::shared_ptr<Panel> panel = std::make_shared<Panel>();
    std::shared_ptr<View> view = std::make_shared<View>();
    int cancelled = 0;
};

TEST_F(BoundSheet, ItHangsOnTheWindowOfTheViewAndBlocksIt)
{
    EXPECT_FALSE(sheet->isVisible());
    panel->beginSheet(view);
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_EQ(sheet->parentWidget(), &window);
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(sheet->isWindow());
    panel->endSheet(0);
    panel->orderOut();
    EXPECT_FALSE(sheet->isVisible());
    panel->beginSheet(view);
    EXPECT_TRUE(sheet->isVisible()) << "it can be opened again";
}

TEST_F(BoundSheet, TheKeyboardIsInItsFirstFieldAtEachOpening)
{
    panel->beginSheet(view);
    EXPECT_EQ(sheet->focusWidget(), field);
    cancel->setFocus();
    panel->endSheet(0);
    panel->beginSheet(view);
    EXPECT_EQ(sheet->focusWidget(), field);
}

TEST_F(BoundSheet, EscapeAndClosingPressCancelAndNothingElse)
{
    panel->beginSheet(view);
    QTest::keyClick(sheet, Qt::Key_Escape);
    EXPECT_EQ(cancelled, 1);
    EXPECT_TRUE(sheet->isVisible()) << "only its owner ends it";
    sheet->close();
    EXPECT_EQ(cancelled, 2);
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_TRUE(panel->isSheet());
}

TEST_F(BoundSheet, AViewThatNothingShowsLeavesItByItself)
{
    panel->beginSheet(std::make_shared<View>());
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_EQ(sheet->parentWidget(), nullptr);
}

TEST_F(BoundSheet, ItGoesWithTheWindowItHangsOn)
{
    auto* other = new QWidget;
    auto* part = new QWidget(other);
    const auto place = std::make_shared<View>();
    ASSERT_TRUE(bindToWidget(place, part));
    panel->beginSheet(place);
    delete other;
    EXPECT_TRUE(sheet.isNull());
    panel->endSheet(0);
    panel->orderOut();
    EXPECT_FALSE(panel->isSheet());
}

} // namespace
} // namespace farview::test
