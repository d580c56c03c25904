#include "Applications/Device/DeviceWindow.h"

#include "Screen/Codecs/ZlibCodec.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace
{

class DeviceWindowTest : public testing::Test
{
protected:
    DeviceWindowTest() { window.show(); }

    QLabel& label(const char* name)
    {
        return *window.findChild<QLabel*>(QString::fromLatin1(name));
    }
    std::string text(const char* name) { return label(name).text().toStdString(); }
    QPushButton& button(const char* name)
    {
        return *window.findChild<QPushButton*>(QString::fromLatin1(name));
    }
    QWidget& bar() { return *window.findChild<QWidget*>(QStringLiteral("pictureBar")); }
    QWidget& view() { return *window.findChild<QWidget*>(QStringLiteral("screenView")); }
    void press(Qt::Key key)
    {
        QWidget* focused = window.focusWidget();
        QTest::keyClick(focused ? focused : &window, key);
    }

    void ask()
    {
        status.toConfirm = ComputerToConfirm{.digits = "482913", .address = "192.0.2.9"};
        window.showStatus(status);
    }

    DeviceStatus status{.announcedName = "Desk", .port = 6001};
    int closed = 0;
    int disconnects = 0;
    std::vector<bool> shown;
    int confirmed = 0;
    int refused = 0;
    std::vector<std::string> forgotten;
    DeviceTexts texts{{"en"}};
    ZlibCodec zlib;
    PictureReceiver picture{320, 200, zlib, {}};
    DeviceWindow window{texts,
                        {[this] { ++closed; }, [this] { ++disconnects; },
                         [this](bool isShown) { shown.push_back(isShown); },
                         [this](const auto& digits) { confirmed += digits == "482913"; },
                         [this] { ++refused; },
                         [this](const auto& key) { forgotten.push_back(key); }}};
};

TEST_F(DeviceWindowTest, ShowsItsNameAndThatItIsFree)
{
    window.showStatus(status);
    EXPECT_EQ(text("deviceName"), "Desk");
    EXPECT_THAT(text("deviceUse"), HasSubstr("Not in use"));
    EXPECT_FALSE(label("deviceOptions").isVisible());
    EXPECT_FALSE(label("deviceTrouble").isVisible());
}

TEST_F(DeviceWindowTest, ShowsWhoUsesItAndWhatTheyWant)
{
    status.usedBy = "192.0.2.9";
    status.options = LinkOptions{true, false, false, true};
    window.showStatus(status);
    EXPECT_THAT(text("deviceUse"), HasSubstr("192.0.2.9"));
    EXPECT_THAT(text("deviceUse"), HasSubstr("sends no pictures"));
    EXPECT_EQ(text("deviceOptions"), "Touch: on\nRetina resolutions: off\n"
                                     "HiDPI resolutions: off\nWindows move back: on\n"
                                     "Keys and text: off");
    EXPECT_TRUE(label("deviceOptions").isVisible());
}

TEST_F(DeviceWindowTest, SaysThatItWaitsForThePicture)
{
    status.usedBy = "192.0.2.9";
    status.isPictureAgreed = true;
    window.showStatus(status);
    EXPECT_THAT(text("deviceUse"), HasSubstr("192.0.2.9, waiting for its picture"));
}

TEST_F(DeviceWindowTest, ForgetsItsHostWhenThatHasGone)
{
    status.usedBy = "192.0.2.9";
    status.options = LinkOptions{};
    window.showStatus(status);
    status.usedBy.reset();
    status.options.reset();
    window.showStatus(status);
    EXPECT_THAT(text("deviceUse"), HasSubstr("Not in use"));
    EXPECT_FALSE(label("deviceOptions").isVisible());
}

TEST_F(DeviceWindowTest, ShowsTrouble)
{
    status.announcedName.clear();
    status.trouble = "No network";
    window.showStatus(status);
    EXPECT_EQ(text("deviceName"), "Not announced yet");
    EXPECT_EQ(text("deviceTrouble"), "This device cannot be announced: No network");
    status.port = 7001;
    window.showStatus(status);
    EXPECT_THAT(text("deviceTrouble"), HasSubstr("No network\nComputers find this device by its "
                                                 "name only: connecting by address needs port "
                                                 "6001."));
    EXPECT_TRUE(label("deviceTrouble").isVisible());
}

TEST_F(DeviceWindowTest, SaysWhyNoComputerIsLetIn)
{
    status.keyTrouble = "The key is broken.";
    window.showStatus(status);
    EXPECT_THAT(text("deviceTrouble"), HasSubstr("Remove com.quillon.FarviewDevice.pem"));
    EXPECT_THAT(text("deviceTrouble"), Not(HasSubstr("broken"))) << "that is English, for the log";
}

TEST_F(DeviceWindowTest, SaysWhyTheLastHostWasSentAway)
{
    status.lastVerdict = HostPicture::Verdict::tooLarge;
    window.showStatus(status);
    EXPECT_THAT(text("deviceTrouble"), HasSubstr("too large"));
    status.lastVerdict = HostPicture::Verdict::brokenRule;
    window.showStatus(status);
    EXPECT_THAT(text("deviceTrouble"), HasSubstr("cannot be read"));
}

TEST_F(DeviceWindowTest, TakesNoMarkupFromANetwork)
{
    status.announcedName = "<b>Desk</b>";
    window.showStatus(status);
    EXPECT_EQ(text("deviceName"), "<b>Desk</b>");
    EXPECT_EQ(text("barName"), "<b>Desk</b>");
    for (const QLabel* each : window.findChildren<QLabel*>())
        EXPECT_EQ(each->textFormat(), Qt::PlainText) << each->objectName().toStdString();
}

TEST_F(DeviceWindowTest, TellsThatItWasClosed)
{
    window.close();
    EXPECT_EQ(closed, 1);
}

// --- the picture -----------------------------------------------------------------------------

TEST_F(DeviceWindowTest, FillsTheScreenWithTheFirstPictureOnly)
{
    EXPECT_FALSE(view().isVisible());
    window.beginPicture(picture);
    EXPECT_TRUE(view().isVisible());
    EXPECT_TRUE(window.isFullScreen());
    press(Qt::Key_F11);
    EXPECT_FALSE(window.isFullScreen());
    const PictureReceiver next(100, 100, zlib, {});
    window.beginPicture(next);
    EXPECT_FALSE(window.isFullScreen()) << "the user left it";
    EXPECT_THAT(shown, ElementsAre(true));
    window.endPicture();
}

TEST_F(DeviceWindowTest, APictureMayStayInTheWindowAndIsAskedForSmaller)
{
    DeviceWindow beside(texts, {[] {}, [] {}, [](bool) {}, {}, {}, {}},
                        DeviceWindow::First::staysInWindow);
    beside.move(40, 50);
    beside.show();
    const QSize half = beside.QWidget::screen()->size() / 2;
    const QPoint place = beside.pos();
    const LinkDeviceScreen asked = beside.screen();
    EXPECT_EQ(QSize(asked.width, asked.height), half);
    const PictureReceiver large(asked.width, asked.height, zlib, {});
    beside.beginPicture(large);
    EXPECT_FALSE(beside.isFullScreen());
    EXPECT_TRUE(waitUntil([&] { return beside.size() == half; })) << "pixel for pixel";
    EXPECT_EQ(beside.pos(), place);
    beside.endPicture();
    EXPECT_EQ(beside.pos(), place);
}

TEST_F(DeviceWindowTest, IsSmallAgainAfterThePicture)
{
    window.move(30, 40);
    const QRect before = window.geometry();
    window.beginPicture(picture);
    ASSERT_TRUE(
        waitUntil([&] { return window.geometry() == window.QWidget::screen()->geometry(); }));
    window.endPicture();
    EXPECT_FALSE(window.isFullScreen());
    EXPECT_FALSE(view().isVisible());
    EXPECT_TRUE(label("deviceName").isVisible());
    EXPECT_EQ(window.geometry().topLeft(), before.topLeft());
    EXPECT_EQ(window.width(), before.width());
    window.endPicture();
    EXPECT_THAT(shown, ElementsAre(true, false)) << "it ends once";
}

TEST_F(DeviceWindowTest, StaysClosedWhenThePictureEndsAfterwards)
{
    window.beginPicture(picture);
    window.close();
    window.endPicture();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(DeviceWindowTest, FramesAreShownWhileItIsSeen)
{
    window.beginPicture(picture);
    int drawn = 0;
    window.showFrame({{0, 0, 320, 200}}, 1000, [&] { ++drawn; });
    EXPECT_EQ(drawn, 0) << "never inside the call";
    EXPECT_TRUE(waitUntil([&] { return drawn == 1; }));
    window.showFrame({}, 12, [&] { ++drawn; });
    EXPECT_TRUE(waitUntil([&] { return drawn == 2; })) << "also one that changed nothing";
    window.endPicture();
}

TEST_F(DeviceWindowTest, KeysChangeBetweenScreenAndWindow)
{
    window.beginPicture(picture);
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.isFullScreen());
    press(Qt::Key_F11);
    EXPECT_TRUE(window.isFullScreen());
    QTest::mouseDClick(&view(), Qt::LeftButton);
    EXPECT_FALSE(window.isFullScreen());
    window.endPicture();
    press(Qt::Key_F11);
    EXPECT_FALSE(window.isFullScreen()) << "there is nothing to fill it with";
}

TEST_F(DeviceWindowTest, KeysThatItHasNoUseForAreLeftToOthers)
{
    window.beginPicture(picture);
    press(Qt::Key_Escape);
    for (const int key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_F1, Qt::Key_Space}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&window, &event);
        EXPECT_FALSE(event.isAccepted()) << key;
    }
    window.endPicture();
}

TEST_F(DeviceWindowTest, TheUpperEdgeBringsTheBarAndATouchElsewhereTakesItAway)
{
    window.beginPicture(picture);
    EXPECT_FALSE(bar().isVisible());
    QTest::mouseClick(&view(), Qt::LeftButton, {}, {100, 3});
    EXPECT_TRUE(bar().isVisible());
    QTest::mouseClick(&view(), Qt::LeftButton, {}, {100, view().height() - 5});
    EXPECT_FALSE(bar().isVisible());
    window.endPicture();
}

TEST_F(DeviceWindowTest, TheBarIsReachedByTheKeyboard)
{
    window.beginPicture(picture);
    window.activateWindow();
    press(Qt::Key_F10);
    ASSERT_TRUE(bar().isVisible());
    EXPECT_EQ(window.focusWidget(), &button("fitButton"));
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), &button("disconnectButton"));
    QTest::keyClick(window.focusWidget(), Qt::Key_Space);
    EXPECT_EQ(disconnects, 1);
    press(Qt::Key_Escape);
    EXPECT_FALSE(bar().isVisible());
    EXPECT_TRUE(window.isFullScreen()) << "the bar goes first";
    window.endPicture();
}

TEST_F(DeviceWindowTest, TheBarChangesHowThePictureIsShown)
{
    window.beginPicture(picture);
    press(Qt::Key_F10);
    EXPECT_TRUE(button("fullButton").isChecked());
    button("fullButton").click();
    EXPECT_FALSE(window.isFullScreen());
    auto& screenView = static_cast<ScreenView&>(view());
    EXPECT_TRUE(screenView.isFitted());
    button("fitButton").click();
    EXPECT_FALSE(screenView.isFitted());
    window.endPicture();
}

TEST_F(DeviceWindowTest, TheBarTellsWhatItCounted)
{
    window.beginPicture(picture);
    press(Qt::Key_F10);
    window.showFrame({}, 500'000, [] {});
    ASSERT_TRUE(waitUntil([&] { return !text("barRate").empty(); }));
    EXPECT_THAT(text("barRate"), HasSubstr("320 × 200"));
    EXPECT_THAT(text("barRate"), HasSubstr("pictures a second"));
    window.endPicture();
}

TEST_F(DeviceWindowTest, EverythingInTheBarHasANameForAssistiveTechnology)
{
    for (const char* name : {"fitButton", "fullButton", "disconnectButton"})
        EXPECT_FALSE(button(name).text().isEmpty()) << name;
    EXPECT_FALSE(bar().accessibleName().isEmpty());
    EXPECT_FALSE(view().accessibleName().isEmpty());
}

TEST_F(DeviceWindowTest, TellsTheScreenThatItIsOn)
{
    int told = 0;
    window.setScreenObserver([&] { ++told; });
    QScreen& mine = *QApplication::primaryScreen();
    EXPECT_EQ(window.screen().width, mine.size().width());
    EXPECT_EQ(window.screen().scale, 100);
    Q_EMIT mine.geometryChanged(mine.geometry());
    Q_EMIT mine.refreshRateChanged(mine.refreshRate());
    EXPECT_TRUE(waitUntil([&] { return told > 0; }));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(told, 1) << "changes that come together are told once";
}

TEST_F(DeviceWindowTest, TellsNoScreenThatIsHalfTurned)
{
    QScreen& mine = *QApplication::primaryScreen();
    int told = 0;
    QElapsedTimer span;
    do { // Again where the machine stood still for longer than a screen needs to turn.
        runLoopFor(std::chrono::milliseconds(100));
        window.setScreenObserver([&] { ++told; });
        told = 0;
        span.start();
        Q_EMIT mine.geometryChanged({0, 0, 1, 800});
        QApplication::processEvents();
        Q_EMIT mine.logicalDotsPerInchChanged(96);
        QApplication::processEvents();
        Q_EMIT mine.geometryChanged(mine.geometry());
        QApplication::processEvents();
    } while (span.elapsed() > 30);
    EXPECT_EQ(told, 0) << "more may come";
    EXPECT_TRUE(waitUntil([&] { return told > 0; }));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(told, 1);
}

TEST_F(DeviceWindowTest, TellsTheScreenThatItIsMovedTo)
{
    int told = 0;
    window.setScreenObserver([&] { ++told; });
    const auto screens = QApplication::screens();
    ASSERT_EQ(screens.size(), 2);
    window.windowHandle()->setScreen(screens[1]);
    EXPECT_TRUE(waitUntil([&] { return told == 1; }));
    EXPECT_EQ(window.screen(), (LinkDeviceScreen{1200, 1920, 150, 60}));
    runLoopFor(std::chrono::milliseconds(100));
    Q_EMIT screens[0]->geometryChanged({});
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(told, 1) << "the other screen is no longer of interest";
    Q_EMIT screens[1]->geometryChanged({});
    EXPECT_TRUE(waitUntil([&] { return told == 2; }));
}

TEST_F(DeviceWindowTest, TheBarKeepsItsButtonsInANarrowWindow)
{
    status.announcedName = "WWWWWWWWWW WWWWWWWWWW WWWWWWWWWW";
    window.showStatus(status);
    window.beginPicture(picture);
    press(Qt::Key_F10);
    window.setWindowState(Qt::WindowNoState);
    window.resize(420, 300);
    ASSERT_TRUE(waitUntil([&] { return bar().width() == 420; }));
    for (const char* name : {"fitButton", "fullButton", "disconnectButton"})
        EXPECT_GE(button(name).width(), button(name).sizeHint().width()) << name;
    EXPECT_LT(button("disconnectButton").geometry().right(), 420);
    window.endPicture();
}

// --- computers that ask and those that are known ----------------------------------------------

TEST_F(DeviceWindowTest, AsksInALargeWindowInTheMiddleAndIsSmallAgainAfterwards)
{
    window.move(600, 500);
    const int width = window.width();
    ask();
    EXPECT_TRUE(label("pairingDigits").isVisible());
    EXPECT_FALSE(label("deviceName").isVisible());
    const QRect room = window.QWidget::screen()->availableGeometry();
    EXPECT_EQ(window.size(), room.size() * 0.75);
    EXPECT_EQ(window.geometry().center(), room.center());
    status.toConfirm.reset();
    window.showStatus(status);
    EXPECT_TRUE(label("deviceName").isVisible());
    EXPECT_EQ(window.width(), width);
    EXPECT_LT(window.height(), room.height() / 2);
}

TEST_F(DeviceWindowTest, AMinimisedWindowComesForwardToAsk)
{
    window.setWindowState(Qt::WindowMinimized);
    ask();
    EXPECT_FALSE(window.isMinimized());
    EXPECT_TRUE(window.isVisible());
    window.setWindowState(Qt::WindowMinimized);
    window.showStatus(status);
    EXPECT_TRUE(window.isMinimized()) << "once for each question";
    status.toConfirm->digits = "000111";
    window.showStatus(status);
    EXPECT_FALSE(window.isMinimized()) << "another one";
    window.setWindowState(Qt::WindowMinimized);
    status.toConfirm.reset();
    window.showStatus(status);
    EXPECT_TRUE(window.isMinimized()) << "the end of the question is no reason to come";
}

TEST_F(DeviceWindowTest, AMaximisedWindowStaysSoWhileItAsks)
{
    window.setWindowState(Qt::WindowMaximized);
    ask();
    EXPECT_TRUE(window.isMaximized());
}

TEST_F(DeviceWindowTest, APictureIsNotDisturbedByAQuestion)
{
    window.beginPicture(picture);
    ask();
    EXPECT_TRUE(view().isVisible());
    EXPECT_TRUE(window.isFullScreen());
    window.endPicture();
    EXPECT_TRUE(label("pairingDigits").isVisible()) << "its turn comes afterwards";
    EXPECT_FALSE(window.isFullScreen());
    window.beginPicture(picture);
    EXPECT_TRUE(view().isVisible());
    window.endPicture();
}

TEST_F(DeviceWindowTest, AClosedWindowDoesNotAsk)
{
    window.close();
    ask();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(DeviceWindowTest, PassesTheAnswerOn)
{
    ask();
    ASSERT_TRUE(waitUntil([this] { return button("pairingYes").isEnabled(); }));
    button("pairingYes").click();
    EXPECT_EQ(confirmed, 1);
    button("pairingNo").click();
    EXPECT_EQ(refused, 1);
}

TEST_F(DeviceWindowTest, EscapeMeansNo)
{
    ask();
    press(Qt::Key_Escape);
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(confirmed, 0);
}

TEST_F(DeviceWindowTest, ListsTheKnownComputersAndComesBack)
{
    status.computers = {{std::string(64, 'a'), "192.0.2.9", {}, {}}};
    window.showStatus(status);
    button("knownComputers").click();
    EXPECT_FALSE(label("deviceName").isVisible());
    ASSERT_TRUE(button("knownRemove").isVisible());
    button("knownRemove").click();
    EXPECT_THAT(forgotten, ElementsAre(std::string(64, 'a')));
    button("knownBack").click();
    EXPECT_TRUE(label("deviceName").isVisible());
    button("knownComputers").click();
    press(Qt::Key_Escape);
    EXPECT_TRUE(label("deviceName").isVisible());
    EXPECT_EQ(refused, 0);
}

TEST_F(DeviceWindowTest, AQuestionComesBeforeTheList)
{
    button("knownComputers").click();
    ask();
    EXPECT_TRUE(label("pairingDigits").isVisible());
    status.toConfirm.reset();
    window.showStatus(status);
    EXPECT_TRUE(button("knownBack").isVisible()) << "the user is where he was";
}

QStringList cutTexts(const QWidget& window)
{
    QStringList cut;
    for (const QLabel* each : window.findChildren<QLabel*>()) {
        if (each->isVisible() && each->height() < each->heightForWidth(each->width()))
            cut += each->text();
    }
    for (const QPushButton* each : window.findChildren<QPushButton*>()) {
        const QRect seen = each->visibleRegion().boundingRect();
        if (each->isVisible() && seen.width() < each->sizeHint().width())
            cut += each->text();
    }
    return cut;
}

TEST(DeviceWindowInEachLanguage, CutsNoTextThoughLettersAreLarge)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(2 * usual.pointSizeF());
    QApplication::setFont(large);
    DeviceStatus status{.announcedName = "Desk", .port = 6001};
    const Date november{1'700'000'000};
    status.computers = {
        {std::string(64, 'a'), "2001:db8::d250:99ff:fe81:2c4f", november, november}};
    status.keyTrouble = "It is broken.";
    for (const char* language : {"en", "de", "es", "fr", "it", "pt-BR", "ja", "zh-Hans"}) {
        const DeviceTexts texts({language});
        DeviceWindow window(
            texts, {[] {}, [] {}, [](bool) {}, [](const auto&) {}, [] {}, [](const auto&) {}});
        status.toConfirm.reset();
        window.showStatus(status);
        window.show();
        const auto expectWhole = [&](const char* page) {
            QApplication::processEvents();
            EXPECT_EQ(cutTexts(window).join(u'\n').toStdString(), "") << language << page;
        };
        expectWhole(" status");
        window.findChild<QPushButton*>(QStringLiteral("knownComputers"))->click();
        expectWhole(" list");
        window.findChild<QPushButton*>(QStringLiteral("knownRemove"))->click();
        expectWhole(" removed");
        status.toConfirm = ComputerToConfirm{.digits = "482913", .address = "192.0.2.9"};
        window.showStatus(status);
        expectWhole(" question");
        window.resize(360, 300);
        expectWhole(" narrow question");
    }
    QApplication::setFont(usual);
}

TEST(RateText, IsCountedNotPromised)
{
    const DeviceTexts texts({"en"});
    EXPECT_EQ(rateText(texts, {1920, 1080}, {30, 1'250'000, 1000}).toStdString(),
              "1920 × 1080 pixels, 30 pictures a second, 10.0 Mbit/s");
    EXPECT_EQ(rateText(texts, {1, 1}, {4, 0, 2000}).toStdString(),
              "1 × 1 pixels, 2 pictures a second, 0.0 Mbit/s");
    EXPECT_EQ(rateText(texts, {1, 1}, {0, 0, 0}).toStdString(),
              "1 × 1 pixels, 0 pictures a second, 0.0 Mbit/s");
}

/// One screen is a tablet's that is held upright.
const char* const twoScreens = R"({"screens": [
    {"name": "A", "x": 0, "y": 0, "width": 1000, "height": 800,
     "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1},
    {"name": "B", "x": 1000, "y": 0, "width": 800, "height": 1280,
     "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1.5}]})";

} // namespace

int main(int argc, char** argv)
{
    TemporaryFolder folder;
    const auto screens = folder.write("screens.json", twoScreens);
    qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString("offscreen:configfile=" + screens));
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QLocale::setDefault(QLocale::c());
    return RUN_ALL_TESTS();
}
