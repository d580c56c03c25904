#include "Applications/FarviewStatusItem/Tray.h"

#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/MenuTarget.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/StatusNotifierWatcher.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QFile>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

using namespace farview;

namespace
{

constexpr std::array everyIcon = {StatusIcon::off, StatusIcon::on, StatusIcon::connected,
                                  StatusIcon::question, StatusIcon::trouble};

/// The tray side of the status item, in this process, on a private bus.
class TrayTest : public testing::Test
{
protected:
    StatusItemDisplay display(StatusIcon icon, std::vector<std::shared_ptr<MenuItem>> items)
    {
        auto menu = std::make_shared<Menu>();
        for (auto& item : items)
            menu->insertItem(item, menu->numberOfItems());
        return {icon, "Farview: On", "A sentence.", menu};
    }
    void start()
    {
        tray.emplace(session, log, [this] { ++activations; });
        tray->show(
            display(StatusIcon::on, {target->entry("Pad"), MenuTarget::entryForNobody("Slab")}));
    }
    /// A tray that has the item on its list.
    bool startWatcher()
    {
        watcher.emplace(bus.address());
        return waitUntil([this] { return !watcher->items().isEmpty(); });
    }
    QString item() const { return watcher->items().last(); }

    PrivateBus bus;
    SessionBusScope scope{bus.address()};
    FakeLog log;
    TestBus session{log};
    std::shared_ptr<MenuTarget> target = std::make_shared<MenuTarget>();
    int activations = 0;
    std::optional<StatusNotifierWatcher> watcher;
    std::optional<Tray> tray;
};

class ShownTray : public TrayTest
{
protected:
    void SetUp() override
    {
        start();
        ASSERT_TRUE(startWatcher());
    }
};

TEST_F(TrayTest, AppearsInATrayThatRuns)
{
    watcher.emplace(bus.address());
    start();
    ASSERT_TRUE(waitUntil([this] { return !watcher->items().isEmpty(); }));
    EXPECT_TRUE(watcher->isAlive(item()));
    EXPECT_EQ(watcher->items().size(), 1);
}

TEST_F(TrayTest, AppearsInATrayThatStartsLaterAndInOneThatStartsAgain)
{
    start();
    runLoopFor(std::chrono::milliseconds(50));
    ASSERT_TRUE(startWatcher());
    watcher.reset();
    runLoopFor(std::chrono::milliseconds(50));
    ASSERT_TRUE(startWatcher());
    EXPECT_EQ(watcher->items().size(), 1);
    EXPECT_EQ(watcher->menu(item()).size(), 2);
}

TEST_F(TrayTest, AppearsAgainAfterARestartOfTheBus)
{
    start();
    ASSERT_TRUE(startWatcher());
    watcher.reset();
    bus.stop();
    ASSERT_TRUE(waitUntil([this] { return !session.isConnected(); }));
    bus.start();
    ASSERT_TRUE(waitUntil([this] { return session.isConnected(); }));
    ASSERT_TRUE(startWatcher());
    EXPECT_EQ(watcher->property(item(), "Id"), "farview");
}

TEST_F(ShownTray, TellsWhatATrayNeeds)
{
    const auto all = watcher->properties(item());
    EXPECT_EQ(all.value("Id"), "farview");
    EXPECT_EQ(all.value("Category"), "Hardware");
    EXPECT_EQ(all.value("Status"), "Active");
    EXPECT_EQ(all.value("Title"), "Farview");
    EXPECT_EQ(all.value("IconName"), "farview-on-symbolic");
    EXPECT_EQ(all.value("ItemIsMenu"), true);
    EXPECT_EQ(all.value("Menu").value<QDBusObjectPath>().path(), "/MenuBar");
    const auto toolTip = qdbus_cast<DBusToolTip>(all.value("ToolTip"));
    EXPECT_EQ(toolTip.title, "Farview: On");
    EXPECT_EQ(toolTip.text, "A sentence.");
}

TEST_F(ShownTray, TheIconFollowsTheStateAndSaysSoOnlyWhenItChanges)
{
    const int before = watcher->newIcons();
    tray->show(display(StatusIcon::on, {target->entry("Pad")}));
    tray->show(display(StatusIcon::off, {target->entry("Pad")}));
    ASSERT_TRUE(waitUntil([&] { return watcher->newIcons() > before; }));
    EXPECT_EQ(watcher->property(item(), "IconName"), "farview-off-symbolic");
    EXPECT_EQ(watcher->newIcons(), before + 1);
    tray->show(display(StatusIcon::connected, {}));
    EXPECT_EQ(watcher->property(item(), "IconName"), "farview-connected-symbolic");
    tray->show(display(StatusIcon::trouble, {}));
    EXPECT_EQ(watcher->property(item(), "IconName"), "farview-trouble-symbolic");
}

TEST_F(ShownTray, TheItemNeedsAttentionWhileAQuestionIsOpen)
{
    tray->show(display(StatusIcon::question, {}));
    ASSERT_TRUE(waitUntil([&] { return watcher->newStatuses().size() == 1; }));
    const auto asking = watcher->properties(item());
    EXPECT_EQ(asking.value("Status"), "NeedsAttention");
    EXPECT_EQ(asking.value("AttentionIconName"), "farview-question-symbolic");
    EXPECT_EQ(qdbus_cast<DBusIcons>(asking.value("AttentionIconPixmap")).size(), 2);
    tray->show(display(StatusIcon::question, {target->entry("Pad")}));
    tray->show(display(StatusIcon::connected, {}));
    ASSERT_TRUE(waitUntil([&] { return watcher->newStatuses().size() == 2; }));
    EXPECT_EQ(watcher->newStatuses(), QStringList({"NeedsAttention", "Active"}));
    EXPECT_EQ(watcher->property(item(), "Status"), "Active");
}

TEST_F(ShownTray, EveryStateHasAnIconWhereTheTrayIsToldToLook)
{
    const QString theme = watcher->property(item(), "IconThemePath").toString();
    for (const StatusIcon icon : everyIcon) {
        tray->show(display(icon, {}));
        const QString name = watcher->property(item(), "IconName").toString();
        EXPECT_TRUE(QFile::exists(theme + u"/hicolor/symbolic/status/"_qs + name + u".svg"_qs))
            << name.toStdString();
    }
}

TEST_F(ShownTray, ATrayThatDoesNotKnowTheNameGetsPicturesThatDifferByState)
{
    std::set<QByteArray> pictures;
    for (const StatusIcon icon : everyIcon) {
        tray->show(display(icon, {}));
        const auto icons = qdbus_cast<DBusIcons>(watcher->property(item(), "IconPixmap"));
        ASSERT_EQ(icons.size(), 2);
        EXPECT_EQ(icons[0].width, 22);
        EXPECT_EQ(icons[1].height, 44);
        EXPECT_EQ(icons[1].bytes.size(), 44 * 44 * 4);
        EXPECT_NE(icons[1].bytes.count('\0'), icons[1].bytes.size()) << "nothing to see";
        pictures.insert(icons[1].bytes);
    }
    EXPECT_EQ(pictures.size(), everyIcon.size());
}

TEST_F(ShownTray, TheMenuShowsMarksAndWhatCannotBeChosen)
{
    auto marked = target->entry("Marked");
    marked->state = 1;
    tray->show(display(StatusIcon::on,
                       {marked, std::make_shared<MenuItem>(), MenuTarget::entryForNobody("Busy")}));
    const auto menu = watcher->menu(item());
    ASSERT_EQ(menu.size(), 3);
    EXPECT_TRUE(menu[0].isMarked());
    EXPECT_TRUE(menu[0].enabled());
    EXPECT_TRUE(menu[1].isSeparator());
    EXPECT_FALSE(menu[2].isMarked());
    EXPECT_FALSE(menu[2].enabled());
}

TEST_F(ShownTray, ASubmenuHasItsOwnEntriesAndAnyNumberOfMarks)
{
    auto used = target->entry("Used");
    used->state = 1;
    auto devices = std::make_shared<Menu>();
    devices->insertItem(used, 0);
    devices->insertItem(target->entry("Free"), 1);
    auto also = MenuTarget::entryForNobody("Also Use");
    also->submenu = devices;
    tray->show(display(StatusIcon::on, {target->entry("Pad"), also}));
    const auto menu = watcher->menu(item());
    ASSERT_EQ(menu.size(), 2);
    EXPECT_TRUE(menu[1].enabled());
    EXPECT_EQ(menu[1].properties["children-display"], u"submenu"_qs);
    const auto submenu = watcher->menu(item(), menu[1].id);
    ASSERT_EQ(submenu.size(), 2);
    EXPECT_EQ(submenu[0].properties["toggle-type"], u"checkmark"_qs);
    EXPECT_FALSE(submenu[1].isMarked());
    watcher->click(item(), submenu[1].id);
    EXPECT_EQ(target->chosen, std::vector<std::string>{"Free"});
}

TEST_F(ShownTray, AClickReachesTheEntryAndNoOther)
{
    watcher->click(item(), watcher->entry(item(), "Pad").id);
    EXPECT_EQ(target->chosen, std::vector<std::string>{"Pad"});
    watcher->click(item(), watcher->entry(item(), "Slab").id);
    watcher->click(item(), 0);
    watcher->click(item(), -1);
    watcher->click(item(), 2147483647);
    watcher->call(item(), "/MenuBar", "com.canonical.dbusmenu", "Event",
                  {watcher->entry(item(), "Pad").id, QStringLiteral("hovered"),
                   QVariant::fromValue(QDBusVariant(QString())), 0u});
    EXPECT_EQ(target->chosen.size(), 1u);
}

TEST_F(ShownTray, AClickOnAnEntryThatHasGoneDoesNothing)
{
    const int stale = watcher->entry(item(), "Pad").id;
    const int updates = watcher->layoutUpdates();
    tray->show(display(StatusIcon::on, {target->entry("Tablet")}));
    ASSERT_TRUE(waitUntil([&] { return watcher->layoutUpdates() > updates; }));
    watcher->click(item(), stale);
    EXPECT_TRUE(target->chosen.empty());
}

TEST_F(ShownTray, PressingTheItemItselfIsReported)
{
    watcher->call(item(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate", {5, 5});
    EXPECT_EQ(activations, 1);
}

TEST_F(ShownTray, ForeignNamesArePlainText)
{
    auto hostile = display(StatusIcon::connected,
                           {target->entry("_a&b__c"), target->entry("<b>x</b>\n\x1b[31m"),
                            target->entry("\xE2\x80\xAEreversed"), target->entry("\xff\xfe"),
                            target->entry("")});
    hostile.headline = "Connected to <b>x</b>\n";
    tray->show(hostile);
    const auto menu = watcher->menu(item());
    ASSERT_EQ(menu.size(), 5);
    EXPECT_EQ(menu[0].label(), "__a&b____c");
    EXPECT_EQ(menu[1].label(), QString::fromUtf8("<b>x</b>\u240a\u241b[31m"));
    EXPECT_EQ(menu[2].label(), QString::fromUtf8("\xEF\xBF\xBDreversed"));
    EXPECT_FALSE(menu[3].label().isEmpty());
    EXPECT_FALSE(menu[4].isSeparator());
    const auto toolTip = qdbus_cast<DBusToolTip>(watcher->property(item(), "ToolTip"));
    EXPECT_EQ(toolTip.title, QString::fromUtf8("Connected to &lt;b&gt;x&lt;/b&gt;\u240a"));
    watcher->click(item(), menu[0].id);
    EXPECT_EQ(target->chosen, std::vector<std::string>{"_a&b__c"});
}

TEST_F(ShownTray, QuestionsAboutEntriesThatDoNotExistAreAnswered)
{
    const auto ask = [this](const char* member, const QVariantList& arguments) {
        return watcher->call(item(), "/MenuBar", "com.canonical.dbusmenu", member, arguments);
    };
    EXPECT_EQ(ask("GetLayout", {99, 5, QStringList()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(ask("GetProperty", {99, "label"}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(ask("AboutToShow", {99}).arguments().value(0), false);
    const auto ids = QVariant::fromValue(DBusMenuIds{0, 99});
    EXPECT_EQ(ask("GetGroupProperties", {ids, QStringList{"label"}}).type(),
              QDBusMessage::ReplyMessage);
    const auto unknown = ask("AboutToShowGroup", {ids}).arguments();
    ASSERT_EQ(unknown.size(), 2);
    EXPECT_EQ(qdbus_cast<DBusMenuIds>(unknown[1]), DBusMenuIds{99});
}

TEST_F(ShownTray, FiveHundredDevicesReachTheTray)
{
    std::vector<std::shared_ptr<MenuItem>> many;
    for (int i = 0; i < 500; ++i)
        many.push_back(target->entry("Device " + std::to_string(i)));
    tray->show(display(StatusIcon::on, many));
    EXPECT_EQ(watcher->menu(item()).size(), 500);
}

TEST_F(TrayTest, ADesktopWithoutATrayIsMentionedOnce)
{
    start();
    const auto said = [this] {
        return std::count_if(log.lines().begin(), log.lines().end(), [](const auto& line) {
            return line.message.find("no tray") != std::string::npos;
        });
    };
    ASSERT_TRUE(waitUntil([&] { return said() == 1; }));
    ASSERT_TRUE(startWatcher());
    watcher.reset();
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(said(), 1);
}

} // namespace
