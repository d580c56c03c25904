// How far texts stand out from what they stand on, in light and in dark, measured on what is
// painted.

#include "Controls/Qt/DarkPalette.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/TextColors.h"
#include "Tests/Window/PanelFixture.h"

#include <QCheckBox>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTableView>

namespace farview::test
{
namespace
{

/// What the Web Content Accessibility Guidelines ask of a text; of disabled controls they ask
/// nothing.
constexpr double readable = 4.5;
/// Strokes are this many times as wide as on the screen, so that they have pixels of one colour.
constexpr double enlargement = 4;

/// Of a picture with a text on an even ground: how far the text's colour is from the ground's. What
/// is smaller than a stroke is the smooth edge of one.
double contrastIn(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            ++counts[line[x]];
    }
    const auto most = std::max_element(counts.begin(), counts.end());
    const QRgb ground = most.key();
    double strongest = 1;
    for (auto each = counts.begin(); each != counts.end(); ++each) {
        if (each.value() >= 3 * enlargement * enlargement)
            strongest = std::max(strongest, contrast(ground, each.key()));
    }
    return strongest;
}

QImage enlarged(QWidget& window)
{
    QImage image(window.size() * enlargement, QImage::Format_RGB32);
    image.setDevicePixelRatio(enlargement);
    window.render(&image);
    return image;
}

/// A text in a widget.
struct TextPlace {
    QString name;
    const QWidget* widget;
    QRect place;
};

QRect contents(const QAbstractButton& button, QStyle::SubElement element)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    return button.style()->subElementRect(element, &option, &button);
}

QList<TextPlace> textsOf(const QTabBar& bar)
{
    QList<TextPlace> found;
    for (int tab = 0; tab < bar.count(); ++tab)
        found += {bar.tabText(tab), &bar, bar.tabRect(tab).adjusted(8, 6, -8, -6)};
    return found;
}

QList<TextPlace> textsOf(const QTableView& table)
{
    QList<TextPlace> found;
    const auto* header = table.horizontalHeader();
    for (int column = 0; column < header->count(); ++column)
        found += {u"header"_qs, header->viewport(),
                  QRect(header->sectionViewportPosition(column), 0, header->sectionSize(column),
                        header->height())
                      .adjusted(3, 3, -3, -3)};
    for (int row = 0; row < table.model()->rowCount(); ++row) {
        const QModelIndex name = table.model()->index(row, 1);
        found += {name.data().toString(), table.viewport(), table.visualRect(name)};
    }
    return found;
}

QList<TextPlace> textsOf(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget))
        return label->text().isEmpty() ? QList<TextPlace>{}
                                       : QList<TextPlace>{{{}, label, label->contentsRect()}};
    if (const auto* box = qobject_cast<const QCheckBox*>(&widget))
        return {{{}, box, contents(*box, QStyle::SE_CheckBoxContents)}};
    if (const auto* button = qobject_cast<const QPushButton*>(&widget))
        return {{{}, button, contents(*button, QStyle::SE_PushButtonContents)}};
    if (qobject_cast<const PopUpWidget*>(&widget))
        return {{{}, &widget, widget.rect().adjusted(6, 5, -30, -5)}};
    if (qobject_cast<const ChiseledTextWidget*>(&widget))
        return {{{}, &widget, widget.rect()}};
    if (qobject_cast<const QLineEdit*>(&widget))
        return {{{}, &widget, widget.rect().adjusted(4, 4, -4, -4)}};
    if (const auto* bar = qobject_cast<const QTabBar*>(&widget))
        return textsOf(*bar);
    const auto* table = qobject_cast<const QTableView*>(&widget);
    return table ? textsOf(*table) : QList<TextPlace>{};
}

class Contrast : public PanelFixture, public testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        if (GetParam())
            QApplication::setPalette(darkPalette());
        load();
        fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        view->resize(640, 640);
        show();
        pane->onOffSwitch()->slider()->setAnimator(nullptr);
        announce("Desk", "desk.local.");
        openPage(0);
    }
    void openPage(int index)
    {
        find<QTabWidget>("tabView")->setCurrentIndex(index);
        settle();
    }
    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    void chooseEntry(int index)
    {
        emit popUp()->openRequested();
        const auto entries = popUp()->openMenu()->actions();
        popUp()->openMenu()->close();
        entries.at(index < 0 ? entries.size() + index : index)->trigger();
        settle();
    }

    /// Each text of the enabled controls in that window; tells how many there were.
    static int expectReadable(QWidget& window)
    {
        if (QWidget* focused = window.focusWidget())
            focused->clearFocus(); // its frame is no text
        const QImage image = enlarged(window);
        int measured = 0;
        for (const auto* widget : window.findChildren<QWidget*>()) {
            const bool isOwn = !widget->objectName().isEmpty();
            if (!isOwn || !widget->isVisible() || !widget->isEnabled() ||
                widget->window() != &window)
                continue;
            for (const auto& text : textsOf(*widget))
                measured += expectReadable(window, image, text, *widget);
        }
        return measured;
    }
    static int expectReadable(const QWidget& window, const QImage& image, const TextPlace& text,
                              const QWidget& owner)
    {
        const QRect place(text.widget->mapTo(&window, text.place.topLeft()), text.place.size());
        const QRect pixels(place.topLeft() * enlargement, place.size() * enlargement);
        const QRect seen = pixels & image.rect();
        if (seen.isEmpty())
            return 0;
        EXPECT_GE(contrastIn(image.copy(seen)), readable)
            << owner.objectName().toStdString() << " " << text.name.toStdString();
        return 1;
    }
};

INSTANTIATE_TEST_SUITE_P(InTheDark, Contrast, testing::Bool());

TEST_P(Contrast, OfTheMainTabIsEnough)
{
    EXPECT_GE(expectReadable(*view), 8);
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_GE(expectReadable(*view), 8) << "with the hint";
}

TEST_P(Contrast, OfTheErrorIsEnough)
{
    chooseEntry(1);
    fake.runLoop.advance(Duration(16.0));
    settle();
    ASSERT_FALSE(find<QLabel>("warningImage")->isHidden());
    EXPECT_GE(expectReadable(*view), 8);
}

TEST_P(Contrast, OfWhatIsSaidOfTheMonitorIsEnough)
{
    serverConnectedTo("desk.local.");
    serverReports(shownScreen());
    view->resize(640, 800);
    settle();
    ASSERT_TRUE(find<QWidget>("screenMapHint")->isVisible());
    EXPECT_GE(expectReadable(*view), 9);
    serverReports({.state = ScreenReport::State::missing, .obstacle = ScreenObstacle::failed});
    ASSERT_TRUE(find<QWidget>("screenDiagnoseButton")->isVisible());
    EXPECT_GE(expectReadable(*view), 9);
}

TEST_P(Contrast, OfTheSettingsIsEnough)
{
    // One device in sight, and one that is only remembered.
    openPage(1);
    auto* model = find<QTableView>("autoConnectTable")->model();
    ASSERT_TRUE(model->setData(model->index(0, 0), Qt::Checked, Qt::CheckStateRole));
    announce("Sofa", "sofa.local.");
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_GE(expectReadable(*view), 14);
}

TEST_P(Contrast, OfTheSheetAndItsFailureIsEnough)
{
    chooseEntry(-1);
    auto* sheet = find<SheetWidget>("otherDevicePanel");
    ASSERT_TRUE(sheet->isVisible());
    find<QLineEdit>("otherTextField")->insert(u"10.0.0.5"_qs);
    EXPECT_GE(expectReadable(*sheet), 5);
}

TEST_P(Contrast, OfTheMenuIsEnough)
{
    emit popUp()->openRequested();
    QMenu* menu = popUp()->openMenu();
    ASSERT_NE(menu, nullptr);
    menu->setActiveAction(nullptr);
    const QImage image = enlarged(*menu);
    int measured = 0;
    for (QAction* entry : menu->actions()) {
        const QRect place = menu->actionGeometry(entry).adjusted(4, 2, -4, -2);
        const QRect pixels(place.topLeft() * enlargement, place.size() * enlargement);
        if (!entry->isEnabled())
            continue;
        EXPECT_GE(contrastIn(image.copy(pixels)), readable) << entry->text().toStdString();
        ++measured;
    }
    EXPECT_GE(measured, 2);
    menu->close();
}

TEST(ContrastOfAPicture, IsThatOfItsTextAndItsGround)
{
    QImage image(100, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    EXPECT_EQ(contrastIn(image), 1);
    QPainter painter(&image);
    painter.fillRect(10, 10, 10, 20, Qt::black);
    EXPECT_NEAR(contrastIn(image), 21, 0.01);
    painter.fillRect(10, 10, 10, 20, QColor(0x76, 0x76, 0x76));
    EXPECT_NEAR(contrastIn(image), 4.54, 0.01);
}

} // namespace
} // namespace farview::test
