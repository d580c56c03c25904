// Rows of the auto-connect table, carried with a real mouse.

#include "Tests/Window/RealPanel.h"

#include <QCursor>
#include <QDrag>
#include <QLabel>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>

#include <functional>

namespace farview::test
{
namespace
{

using Array = PropertyList::Array;
using Texts = std::vector<std::string>;

class TableDrag : public RealPanel
{
protected:
    /// The settings with that list, and a device "Free" on the network.
    void open(const Array& chosen)
    {
        fake.preferences.setAppValue("autoConnectOption", true, domain);
        fake.preferences.setAppValue("autoConnectDevices", chosen, domain);
        RealPanel::open(false, 1);
        view->resize(720, 760);
        announce("Free", "free.local.");
        bringToFront();
    }
    QTableView* table() const { return find<QTableView>("autoConnectTable"); }
    QWidget* line() const { return table()->findChild<QWidget*>(u"dropLine"_qs); }
    QLabel* orderHint() const { return find<QLabel>("orderHintLabel"); }

    QPoint onScreen(QPoint place) const { return table()->viewport()->mapToGlobal(place); }
    /// A place in the name's cell: 0 is the upper edge of the row, 1 the lower one.
    QPoint placeIn(int row, double part) const
    {
        const QRect cell = table()->visualRect(table()->model()->index(row, 1));
        return onScreen({cell.left() + 40, cell.top() + static_cast<int>(cell.height() * part)});
    }
    QPoint boxOf(int row) const
    {
        const QRect cell = table()->visualRect(table()->model()->index(row, 0));
        return onScreen({cell.left() + 12, cell.center().y()});
    }
    QPoint inGap(int gap) const { return gap == 0 ? placeIn(0, 0.2) : placeIn(gap - 1, 0.8); }

    /// What happens while a row hangs over its goal: an action, and what the mouse and the keyboard
    /// do before the button is let go.
    using Then = std::function<QStringList()>;
    template <typename Action> static Then doing(Action action)
    {
        return [action] {
            action();
            return QStringList();
        };
    }

    /// Takes a row and moves it there in small steps; when `isThere`, does the rest and lets go.
    void carry(QPoint from, QPoint to, const std::function<bool()>& isThere, const Then& then)
    {
        // The drag is a loop inside this test's: everything happens from a timer.
        QProcess pull;
        QProcess letGo;
        QTimer watch;
        bool arrived = false;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (arrived || pull.state() != QProcess::NotRunning || !isThere())
                return;
            arrived = true;
            letGo.start(u"xdotool"_qs, then() + QStringList{u"mouseup"_qs, u"1"_qs});
        });
        watch.start(10);
        // A drag that hangs would hang the test with it.
        QTimer::singleShot(std::chrono::seconds(9), &watch, [] { QDrag::cancel(); });
        pull.start(u"xdotool"_qs, steps(from, to));
        EXPECT_TRUE(waitUntil([&] { return arrived && letGo.state() == QProcess::NotRunning; }));
        runLoopFor(std::chrono::milliseconds(50));
    }
    void carry(int row, int gap, const Then& then)
    {
        carry(
            placeIn(row, 0.5), inGap(gap), [this] { return line()->isVisible(); }, then);
    }
    void carry(int row, int gap)
    {
        carry(row, gap, doing([] {}));
    }
    /// To a place where no line may show; the pointer stays there for a while.
    void carryInVain(QPoint from, QPoint to)
    {
        // On the way there a line may show, and go a little later than the pointer does.
        int hidden = 20;
        int limit = 300;
        const auto isThere = [&] {
            if (QCursor::pos() != to)
                return false;
            hidden = line()->isVisible() ? 20 : hidden - 1;
            return hidden == 0 || --limit == 0;
        };
        carry(from, to, isThere, doing([this] { EXPECT_FALSE(line()->isVisible()); }));
    }
    static QStringList steps(QPoint from, QPoint to)
    {
        constexpr int count = 8;
        QStringList words = moveTo(from) + QStringList{u"mousedown"_qs, u"1"_qs};
        for (int step = 1; step <= count; ++step)
            words += pause(0.02) + moveTo(from + (to - from) * step / count);
        return words;
    }
    static QStringList moveTo(QPoint place)
    {
        return {u"mousemove"_qs, QString::number(place.x()), QString::number(place.y())};
    }
    static QStringList pause(double seconds) { return {u"sleep"_qs, QString::number(seconds)}; }
    static QStringList escape() { return QStringList{u"key"_qs, u"Escape"_qs} + pause(0.1); }

    Texts shown() const
    {
        Texts names;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            names.push_back(table()->model()->index(row, 1).data().toString().toStdString());
        return names;
    }
    PropertyList stored() const
    {
        return fake.preferences.storedValue("autoConnectDevices", domain).value_or(PropertyList());
    }

    static constexpr const char* domain = "com.quillon.Farview";
};

TEST_F(TableDrag, ARowLandsInTheGapThatTheLineMarks)
{
    open({"A", "B", "C"});
    ASSERT_EQ(shown(), (Texts{"A", "B", "C", "Free"}));
    EXPECT_FALSE(orderHint()->isVisible());
    carry(0, 2, doing([this] {
              EXPECT_EQ(line()->y() + line()->height() / 2, table()->rowViewportPosition(2));
          }));
    EXPECT_EQ(shown(), (Texts{"B", "A", "C", "Free"}));
    EXPECT_FALSE(line()->isVisible());
    EXPECT_EQ(table()->currentIndex().row(), 1) << "the keyboard goes along";
    EXPECT_TRUE(orderHint()->isVisible());
    EXPECT_EQ(stored(), PropertyList(Array{"A", "B", "C"}));
    carry(2, 0);
    EXPECT_EQ(shown(), (Texts{"C", "B", "A", "Free"}));
    pane->willUnselect();
    EXPECT_EQ(stored(), PropertyList(Array{"C", "B", "A"}));
    EXPECT_FALSE(orderHint()->isVisible());
}

TEST_F(TableDrag, ARowIsCarriedBelowTheLastTickedOneAndNoFurther)
{
    open({"A", "B", "C"});
    carry(0, 3);
    EXPECT_EQ(shown(), (Texts{"B", "C", "A", "Free"}));
    carryInVain(placeIn(0, 0.5), placeIn(3, 0.8));
    carryInVain(placeIn(0, 0.5),
                onScreen(table()->viewport()->rect().bottomLeft() + QPoint(40, -4)));
    carryInVain(placeIn(0, 0.5), find<QLabel>("versionNumberLabel")->mapToGlobal(QPoint(5, 5)));
    EXPECT_EQ(shown(), (Texts{"B", "C", "A", "Free"}));
}

TEST_F(TableDrag, ARowThatIsNotTickedStays)
{
    open({"A", "B", "C"});
    carryInVain(placeIn(3, 0.5), inGap(0));
    EXPECT_EQ(shown(), (Texts{"A", "B", "C", "Free"}));
}

TEST_F(TableDrag, EscapeEndsItAndNothingChanges)
{
    open({"A", "B", "C"});
    carry(0, 3, [] { return escape(); });
    EXPECT_EQ(shown(), (Texts{"A", "B", "C", "Free"}));
    EXPECT_FALSE(line()->isVisible());
    EXPECT_TRUE(view->isVisible());
}

TEST_F(TableDrag, ABoxThatWasDraggedIsNotClicked)
{
    open({"A", "B", "C"});
    const QPoint box = boxOf(0);
    click(box);
    ASSERT_TRUE(waitUntil([&] { return shown() == Texts{"B", "C", "Free", "A"}; })) << "a click";
    carry(
        box, inGap(2), [this] { return line()->isVisible(); },
        [box] { return moveTo(box) + pause(0.05) + escape(); });
    EXPECT_EQ(shown(), (Texts{"B", "C", "Free", "A"}));
}

TEST_F(TableDrag, ALongListScrollsWhileARowHangsOverItsEdge)
{
    Array names;
    for (int number = 0; number < 60; ++number)
        names.push_back("Device " + std::to_string(number));
    open(names);
    auto* bar = table()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 20);
    carry(
        placeIn(0, 0.5), onScreen(table()->viewport()->rect().bottomLeft() + QPoint(200, -4)),
        [bar] { return bar->value() == bar->maximum(); },
        [this] { return moveTo(inGap(60)) + pause(0.1); });
    ASSERT_EQ(shown().size(), 61u);
    EXPECT_EQ(shown().front(), "Device 1");
    EXPECT_EQ(shown().at(59), "Device 0");
    EXPECT_EQ(bar->value(), bar->maximum()) << "the list stays where it was scrolled to";
}

TEST_F(TableDrag, ADeviceThatArrivesMeanwhileEndsIt)
{
    open({"A", "B", "C"});
    carry(0, 3, doing([this] { announce("Late", "late.local."); }));
    EXPECT_EQ(shown(), (Texts{"A", "B", "C", "Free", "Late"}));
    EXPECT_FALSE(line()->isVisible());
    carry(0, 3);
    EXPECT_EQ(shown(), (Texts{"B", "C", "A", "Free", "Late"})) << "the next one goes well";
}

TEST_F(TableDrag, ARowThatIsUntickedMeanwhileIsNotDropped)
{
    open({"A", "B", "C"});
    carry(2, 0, doing([this] {
              auto* model = table()->model();
              model->setData(model->index(2, 0), Qt::Unchecked, Qt::CheckStateRole);
          }));
    EXPECT_EQ(shown(), (Texts{"A", "B", "Free", "C"}));
    EXPECT_EQ(stored(), PropertyList(Array{"A", "B"}));
}

TEST_F(TableDrag, ATableThatIsFoldedAwayMeanwhileTakesNoDrop)
{
    open({"A", "B", "C"});
    carry(0, 3, doing([this] { pane->autoConnect()->performClick(nullptr); }));
    pane->autoConnect()->performClick(nullptr);
    EXPECT_EQ(shown(), (Texts{"A", "B", "C", "Free"}));
}

TEST_F(TableDrag, APanelThatIsHiddenMeanwhileTakesNoDrop)
{
    open({"A", "B", "C"});
    carry(0, 3, doing([this] {
              pane->willUnselect();
              view->hide();
          }));
    show();
    find<QTabWidget>("tabView")->setCurrentIndex(1);
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_EQ(shown(), (Texts{"A", "B", "C", "Free"}));
    carry(0, 3);
    EXPECT_EQ(shown(), (Texts{"B", "C", "A", "Free"}));
}

TEST_F(TableDrag, APanelThatIsDestroyedMeanwhileHarmsNothing)
{
    open({"A", "B", "C"});
    carry(0, 3, doing([this] {
              pane->willUnselect();
              pane.reset();
              view.reset();
          }));
    EXPECT_EQ(stored(), PropertyList(Array{"A", "B", "C"}));
    open({"A", "B", "C"});
    carry(0, 3);
    EXPECT_EQ(shown().at(2), "A") << "the next panel is as good as new";
}

TEST_F(TableDrag, AWindowThatIsDestroyedBeforeItsPaneHarmsNothing)
{
    open({"A", "B", "C"});
    carry(0, 3, doing([this] { view.reset(); }));
    pane->willUnselect();
    EXPECT_EQ(stored(), PropertyList(Array{"A", "B", "C"}));
}

TEST_F(TableDrag, AnotherProgramIsRefusedWhateverItCallsWhatItDrags)
{
    open({"A", "B", "C"});
    QProcess other;
    QByteArray said;
    const auto says = [&](const char* word) {
        return waitUntil([&] {
            said += other.readAllStandardOutput();
            return said.contains(word);
        });
    };
    other.start(QStringLiteral(FARVIEW_FOREIGN_DRAG), QStringList());
    ASSERT_TRUE(says("ready\n"));
    runLoopFor(std::chrono::milliseconds(200));
    carryInVain(QPoint(1100, 400), inGap(1));
    EXPECT_TRUE(says("dropped 0\n")) << "nothing was done with it: " << said.toStdString();
    EXPECT_EQ(shown(), (Texts{"A", "B", "C", "Free"}));
    other.kill();
    other.waitForFinished();
}

} // namespace
} // namespace farview::test
