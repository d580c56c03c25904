#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/TabView.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QLabel>
#include <QTabWidget>

namespace farview::test
{
namespace
{

TEST(BoundTextField, MarkupInAForeignTextIsText)
{
    QLabel label;
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    field->setStringValue("<b>bold</b>\n\x07");
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_EQ(label.text(), QString::fromUtf8("<b>bold</b>\n␇"));
}

TEST(BoundTextField, TheFilesTextIsKeptUntilAnotherIsSet)
{
    QLabel label(QStringLiteral("Status"));
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    EXPECT_EQ(field->stringValue(), "Status");
    field->setHidden(true);
    EXPECT_EQ(label.text(), QStringLiteral("Status"));
    field->setStringValue("");
    EXPECT_TRUE(label.text().isEmpty());
}

TEST(BoundTextField, AToolTipIsPlainText)
{
    QLabel label;
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    field->setToolTip("<img src=x>");
    EXPECT_EQ(label.toolTip(), QStringLiteral("<qt>&lt;img src=x&gt;</qt>"));
}

TEST(BoundTextField, TheFilesToolTipStaysUntilOneIsSetAndASetOneCanGo)
{
    QLabel label;
    label.setToolTip(QStringLiteral("from the file"));
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    field->setStringValue("text");
    EXPECT_EQ(label.toolTip(), QStringLiteral("from the file"));
    field->setToolTip("another");
    EXPECT_TRUE(label.toolTip().contains(QStringLiteral("another")));
    field->setToolTip("");
    EXPECT_EQ(label.toolTip(), QString());
}

TEST(BoundImageView, TheSignIsLoadedWhenItIsFirstSeen)
{
    QLabel label;
    label.setVisible(false);
    const auto image = std::make_shared<ImageView>();
    ASSERT_TRUE(bindToWidget(image, &label));
    EXPECT_TRUE(label.pixmap(Qt::ReturnByValue).isNull());
    image->setHidden(false);
    EXPECT_FALSE(label.pixmap(Qt::ReturnByValue).isNull());
}

TEST(BoundProgressIndicator, ItTurnsOnlyWhileItIsSeenAndAnimating)
{
    QWidget window;
    auto* spinner = new SpinnerWidget(&window);
    spinner->setVisible(false);
    const auto indicator = std::make_shared<ProgressIndicator>();
    ASSERT_TRUE(bindToWidget(indicator, spinner));
    EXPECT_TRUE(indicator->isHidden());
    window.show();
    indicator->startAnimation();
    EXPECT_FALSE(spinner->isTurning());
    indicator->setHidden(false);
    EXPECT_TRUE(spinner->isTurning());
    window.hide();
    EXPECT_FALSE(spinner->isTurning());
    window.show();
    EXPECT_TRUE(spinner->isTurning());
    indicator->stopAnimation();
    EXPECT_FALSE(spinner->isTurning());
}

struct BoundTabs : testing::Test {
    BoundTabs()
    {
        for (const char* name : {"VirtualScreen", "Settings"}) {
            auto* page = new QWidget;
            page->setObjectName(QString::fromLatin1(name));
            widget.addTab(page, QString::fromLatin1(name));
        }
        EXPECT_TRUE(bindToWidget(tabs, &widget));
    }

    QTabWidget widget;
    std::shared_ptr<TabView> tabs = std::make_shared<TabView>();
};

TEST_F(BoundTabs, PagesAreKnownByTheirObjectNames)
{
    EXPECT_EQ(tabs->identifiers(), (std::vector<std::string>{"VirtualScreen", "Settings"}));
    tabs->selectTabViewItemWithIdentifier("Settings");
    EXPECT_EQ(widget.currentIndex(), 1);
    tabs->selectFirstTabViewItem(nullptr);
    EXPECT_EQ(widget.currentIndex(), 0);
}

TEST_F(BoundTabs, TheUsersChoiceReachesTheControl)
{
    widget.setCurrentIndex(1);
    EXPECT_EQ(tabs->selectedIdentifier(), "Settings");
}

} // namespace
} // namespace farview::test
