// The status item in a classic tray, on a real display, with a real mouse.

#include "Applications/FarviewStatusItem/ClassicTray.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/MenuTarget.h"
#include "Tests/Support/WaitUntil.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <memory>

using namespace farview;

namespace
{

class ClassicTrayTest : public testing::Test
{
protected:
    StatusItemDisplay display()
    {
        auto menu = std::make_shared<Menu>();
        menu->insertItem(MenuTarget::entryForNobody("Busy"), 0);
        menu->insertItem(target->entry("<b>Pad</b> & Co"), 1);
        return {StatusIcon::on, "Farview: On", "", menu};
    }
    std::unique_ptr<ChildProcess> startTray()
    {
        return std::make_unique<ChildProcess>(
            std::vector<std::string>{"trayer", "--edge", "bottom"});
    }
    static bool isShown(const ClassicTray& tray)
    {
        return waitUntil([&] { return ClassicTray::isThere() && tray.geometry().width() > 4; });
    }
    static void click(const QPoint& place)
    {
        QProcess process;
        process.start(u"xdotool"_qs, {u"mousemove"_qs, QString::number(place.x()),
                                      QString::number(place.y()), u"click"_qs, u"1"_qs});
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0);
    }

    std::shared_ptr<MenuTarget> target = std::make_shared<MenuTarget>();
};

TEST_F(ClassicTrayTest, AppearsInATrayThatStartsLaterAndInOneThatStartsAgain)
{
    const ClassicTray tray(display());
    EXPECT_FALSE(ClassicTray::isThere());
    auto desktop = startTray();
    EXPECT_TRUE(isShown(tray));
    desktop.reset();
    EXPECT_TRUE(waitUntil([] { return !ClassicTray::isThere(); }));
    desktop = startTray();
    EXPECT_TRUE(isShown(tray));
}

TEST_F(ClassicTrayTest, AClickOpensTheMenuAndPicksAnEntry)
{
    const auto desktop = startTray();
    ClassicTray tray(display());
    ASSERT_TRUE(isShown(tray));
    QMenu& menu = tray.menu();
    // The tray may still move the icon after it took it in.
    ASSERT_TRUE(waitUntil([&] {
        click(tray.geometry().center());
        return waitUntil([&] { return menu.isVisible(); }, std::chrono::milliseconds(500));
    }));
    ASSERT_EQ(menu.actions().size(), 2);
    EXPECT_FALSE(menu.actions()[0]->isEnabled());
    EXPECT_EQ(menu.actions()[1]->text(), u"<b>Pad</b> && Co"_qs);
    click(menu.mapToGlobal(menu.actionGeometry(menu.actions()[1]).center()));
    EXPECT_TRUE(waitUntil([&] { return !target->chosen.empty(); }));
    EXPECT_EQ(target->chosen, std::vector<std::string>{"<b>Pad</b> & Co"});
}

TEST_F(ClassicTrayTest, ASubmenuIsThereOnceHoweverOftenTheMenuOpens)
{
    auto devices = std::make_shared<Menu>();
    devices->insertItem(target->entry("Slab"), 0);
    auto also = MenuTarget::entryForNobody("Also Use");
    also->submenu = devices;
    auto shown = display();
    auto entries = std::make_shared<Menu>();
    entries->insertItem(also, 0);
    shown.menu = entries;
    ClassicTray tray(shown);
    for (int time = 0; time < 3; ++time)
        Q_EMIT tray.menu().aboutToShow();
    EXPECT_EQ(tray.menu().findChildren<QMenu*>().size(), 1);
    ASSERT_EQ(tray.menu().actions().size(), 1);
    ASSERT_NE(tray.menu().actions()[0]->menu(), nullptr);
    tray.menu().actions()[0]->menu()->actions()[0]->trigger();
    EXPECT_EQ(target->chosen, std::vector<std::string>{"Slab"});
}

} // namespace
