// Whether every text has the room it needs: each page and window, in each language, in two sizes of
// type. The program runs once for each ratio of pixels to points, which its environment tells.

#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/FurtherDevices.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ReducedMotionStyle.h"
#include "Platform/Posix/PropertyLists/StringsFile.h"
#include "Tests/Support/PseudoLanguages.h"
#include "Tests/Window/PanelFixture.h"
#include "Tests/Window/TextFaults.h"

#include <QAbstractButton>
#include <QFile>
#include <QGlyphRun>
#include <QLineEdit>
#include <QTabWidget>
#include <QTextLayout>

namespace farview::test
{
namespace
{

const char* const languages[] = {"en", "de", "es", "fr", "it", "pt-BR", "ja", "zh-Hans"};
const char* const pseudoLanguages[] = {"en-XA", "ar-XB"};

/// The smallest screen is 480 points high, and the frame of a window takes some of it.
constexpr QSize smallestWindow(640, 440);
/// As wide as such a screen is, for large type.
constexpr int widestWindow = 854;

constexpr const char* longName = "The tablet in the living room, that of the old lady next door";

class RoomForText : public PanelFixture
{
protected:
    void SetUp() override
    {
        const double ratio = qEnvironmentVariable("FARVIEW_TEST_PIXEL_RATIO", u"1"_qs).toDouble();
        ASSERT_EQ(qGuiApp->devicePixelRatio(), ratio);
        // What is on its way is not where it belongs.
        QApplication::setStyle(new ReducedMotionStyle(u"Fusion"_qs));
    }
    void TearDown() override { QApplication::setStyle(u"Fusion"_qs); }

    QTabWidget* tabs() const { return find<QTabWidget>("tabView"); }
    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    void click(const char* button) const { find<QAbstractButton>(button)->click(); }
    void chooseEntry(int index)
    {
        emit popUp()->openRequested();
        const auto entries = popUp()->openMenu()->actions();
        popUp()->openMenu()->close();
        entries.at(index < 0 ? entries.size() + index : index)->trigger();
        settle();
    }

    void expectRoom(const QWidget& window, const char* where)
    {
        // Texts that wrap may move what is below them once more.
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
        for (const QString& fault : textFaults(window, {QString::fromLatin1(longName)}))
            ADD_FAILURE() << where << ": " << fault.toStdString();
        ++mLookedAt;
    }
    void expectRoomOnPages(const char* where)
    {
        EXPECT_LE(view->height(), smallestWindow.height()) << where;
        EXPECT_LE(view->width(), mScale > 1 ? widestWindow : smallestWindow.width()) << where;
        for (int page = 0; page < tabs()->count(); ++page) {
            tabs()->setCurrentIndex(page);
            expectRoom(*view, (std::string(where) + (page ? ", settings" : "")).c_str());
        }
        tabs()->setCurrentIndex(0);
    }

    void walk(const char* language, const std::string& path)
    {
        const testing::ScopedTrace trace(__FILE__, __LINE__, language);
        walkWithDriver(language, path);
        walkWithoutDriver(language, path);
        close();
    }
    void open(const char* language, const std::string& path)
    {
        close();
        load(language, path);
        view->resize(smallestWindow);
        show();
        pane->onOffSwitch()->slider()->setAnimator(nullptr);
    }
    void walkWithDriver(const char* language, const std::string& path)
    {
        fake.registry.publish("QLExGFX");
        open(language, path);
        expectRoomOnPages("off");
        click("onTextButton");
        settle();
        expectRoomOnPages("on without a device");
        announce(longName, "tablet.local.");
        expectRoomOnPages("with a device");
        chooseEntry(1);
        expectRoomOnPages("connecting");
        fake.runLoop.advance(Duration(16.0));
        expectRoomOnPages("error");
        lookAtQuestions();
        lookAtSheet();
        lookAtHiDPIWindow();
        lookAtScreens();
        lookAtFurtherDevices();
        fake.discovery.remove({longName});
        click("offTextButton");
        settle();
    }
    void lookAtSheet()
    {
        chooseEntry(-1);
        auto* sheet = find<SheetWidget>("otherDevicePanel");
        ASSERT_TRUE(sheet->isVisible());
        expectRoom(*sheet, "sheet");
        find<QLineEdit>("otherTextField")->clear();
        find<QLineEdit>("otherTextField")->insert(u"2001:db8:85a3:1234:5678:8a2e:370:7334"_qs);
        click("connectToOtherOKButton");
        expectRoom(*sheet, "sheet connecting");
        fake.distributedNotificationCenter.postNotificationName(kRequestingErrorMsgFromPrefPane, "",
                                                                {}, 3);
        settle();
        expectRoom(*sheet, "sheet after a failure");
        click("cancelButton");
        settle();
    }
    void lookAtQuestions()
    {
        for (int number = 1; number <= static_cast<int>(PairingReport::State::keyUnusable);
             ++number) {
            const auto state = static_cast<PairingReport::State>(number);
            compareWith(longName);
            serverReports(PairingReport{state, "482913", longName});
            ASSERT_TRUE(find<QWidget>("pairingBox")->isVisible());
            expectRoom(*view, "in question");
        }
        serverReports(PairingReport{});
    }
    void lookAtScreens()
    {
        serverConnectedTo("tablet.local.");
        auto report = shownScreen();
        report.scale = 1.25;
        serverReports(report);
        ASSERT_TRUE(find<QWidget>("screenMap")->isVisible());
        expectRoomOnPages("with a monitor");
        serverReports(
            {.state = ScreenReport::State::missing, .obstacle = ScreenObstacle::noSpareOutput});
        ASSERT_TRUE(find<QWidget>("screenDiagnoseButton")->isVisible());
        expectRoomOnPages("without a monitor");
    }
    void lookAtFurtherDevices()
    {
        serverPosts(kServerConnectedToDevice,
                    {{kDeviceNameKey, "tablet.local."}, {kDeviceKeyKey, std::string(64, 'a')}});
        auto report = shownScreen();
        report.fingers = ScreenReport::Fingers::oneWithoutARight;
        report.isTyping = true;
        serverReports(report);
        using State = FurtherDevice::State;
        const std::vector<FurtherDevice> devices{
            {"a.local.", longName, State::connected, report, std::string(64, 'b')},
            {"b.local.", longName, State::connecting},
            {"c.local.", longName, State::failed}};
        serverPosts(kServerFurtherDevicesDidChange,
                    {{kFurtherDevicesKey, textOfFurtherDevices(devices)}});
        for (const char* name : {"furtherDevicesTable", "typingLabel", "mayTypeCheckbox"})
            ASSERT_TRUE(find<QWidget>(name)->isVisible()) << name;
        expectRoomOnPages("with further devices");
        serverPosts(kServerFurtherDevicesDidChange, {});
    }
    void lookAtHiDPIWindow()
    {
        tabs()->setCurrentIndex(1);
        click("enableHiDPIResolutions");
        settle();
        for (auto* window : view->findChildren<SheetWidget*>(QStringLiteral("window"))) {
            expectRoom(*window, "HiDPI");
            window->reject();
        }
        settle();
        tabs()->setCurrentIndex(0);
    }
    void walkWithoutDriver(const char* language, const std::string& path)
    {
        fake.registry = FakeRegistry();
        open(language, path);
        expectRoomOnPages("without the driver");
    }
    void walkThroughEveryLanguage(double scale)
    {
        mScale = scale;
        useFontScale(scale);
        for (const char* each : languages)
            walk(each, FARVIEW_PANE_BUNDLE);
        const PseudoLanguages pseudo(FARVIEW_PANE_BUNDLE);
        for (const char* each : pseudoLanguages)
            walk(each, pseudo.bundlePath());
        EXPECT_EQ(mLookedAt, 10 * 32);
    }

private:
    double mScale = 1;
    int mLookedAt = 0;
};

TEST_F(RoomForText, IsThereInEachLanguage) { walkThroughEveryLanguage(1); }

TEST_F(RoomForText, IsThereInEachLanguageInLargeType) { walkThroughEveryLanguage(1.5); }

/// The letters that no font of this machine can draw.
QString lettersWithoutGlyph(const QString& text)
{
    QTextLayout layout(text, QApplication::font());
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    QString missing;
    for (const QGlyphRun& run : layout.glyphRuns()) {
        if (run.glyphIndexes().contains(0))
            missing += run.rawFont().familyName() + u' ';
    }
    return missing;
}

TEST_F(RoomForText, IsMeasuredWithLettersAndNotWithBoxes)
{
    EXPECT_FALSE(lettersWithoutGlyph(QString(QChar(0xE000))).isEmpty()) << "boxes are noticed";
    for (const char* language : languages) {
        QFile file(QStringLiteral(FARVIEW_PANE_BUNDLE "/Contents/Resources/") +
                   QString::fromLatin1(language) + u".lproj/Localizable.strings"_qs);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto catalogue = StringsFile::parse(file.readAll().toStdString());
        ASSERT_TRUE(catalogue.texts);
        for (const auto& [key, text] : *catalogue.texts)
            EXPECT_EQ(lettersWithoutGlyph(QString::fromStdString(text).remove(u'\n')), QString())
                << language << ": " << text;
    }
}

} // namespace
} // namespace farview::test
