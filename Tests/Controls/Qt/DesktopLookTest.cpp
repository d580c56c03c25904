#include "Controls/Qt/DesktopLook.h"
#include "Controls/Qt/DarkPalette.h"
#include "Controls/Qt/Darkness.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/WidgetAnimator.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QStyle>

namespace farview::test
{
namespace
{

constexpr AppearancePreferences dark{ColorPreference::dark, false, true};
constexpr AppearancePreferences light{ColorPreference::light, false, true};
constexpr AppearancePreferences still{ColorPreference::none, true, true};

class DesktopLookTest : public testing::Test
{
protected:
    ~DesktopLookTest() override
    {
        QApplication::setStyle(QStringLiteral("Fusion"));
        QApplication::setPalette(QPalette());
    }

    DesktopLookTest()
    {
        window.show();
        turn();
    }

    DesktopLook look;
    QWidget window;
};

TEST_F(DesktopLookTest, OpenWindowsTurnDarkAndLightAgain)
{
    const QPalette before = QApplication::palette();
    ASSERT_FALSE(isDark(window.palette()));
    look.follow(dark);
    EXPECT_TRUE(isDark(window.palette()));
    look.follow(light);
    EXPECT_EQ(QApplication::palette(), before);
    EXPECT_FALSE(isDark(window.palette()));
    look.follow(dark);
    EXPECT_TRUE(isDark(window.palette()));
}

TEST_F(DesktopLookTest, AWindowThatIsMadeAndNotYetShownIsDarkFromItsFirstPictureOn)
{
    QWidget page;
    auto* child = new QWidget(&page);
    look.follow(dark);
    EXPECT_TRUE(isDark(page.palette()));
    EXPECT_TRUE(isDark(child->palette()));
}

TEST_F(DesktopLookTest, ADarkThemeKeepsItsOwnColors)
{
    const QPalette own(QColor(60, 20, 60), QColor(50, 10, 50));
    QApplication::setPalette(own);
    for (const auto& preferences : {dark, light, AppearancePreferences{}}) {
        look.follow(preferences);
        EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(50, 10, 50));
    }
}

TEST_F(DesktopLookTest, StillnessComesAndGoesWhileWindowsAreOpen)
{
    ASSERT_TRUE(wantsMotion(window));
    look.follow(still);
    EXPECT_FALSE(wantsMotion(window));
    EXPECT_EQ(window.style()->styleHint(QStyle::SH_Widget_Animation_Duration), 0);
    look.follow({});
    EXPECT_TRUE(wantsMotion(window));
    look.follow(still);
    EXPECT_FALSE(wantsMotion(window));
}

TEST_F(DesktopLookTest, StillnessChangesNeitherStyleNorColors)
{
    look.follow(dark);
    look.follow({ColorPreference::dark, true, true});
    EXPECT_TRUE(isDark(window.palette()));
    EXPECT_TRUE(isDark(QApplication::palette()));
    EXPECT_GT(QApplication::style()->pixelMetric(QStyle::PM_ButtonMargin), 0);
    look.follow(light);
    EXPECT_FALSE(isDark(window.palette()));
}

TEST_F(DesktopLookTest, ASpinnerGoesOnWithoutTurning)
{
    SpinnerWidget spinner(&window);
    spinner.resize(24, 24);
    spinner.show();
    spinner.setAnimating(true);
    ASSERT_TRUE(spinner.isTurning());
    const auto symmetric = [&] {
        // The spokes fill a circle: turned by a quarter it is the same when no spoke leads.
        QPixmap picture = spinner.grab();
        return picture.toImage().pixelColor(12, 3) == picture.toImage().pixelColor(12, 20);
    };
    EXPECT_FALSE(symmetric());
    look.follow(still);
    EXPECT_TRUE(spinner.isTurning()) << "it still shows that something is under way";
    EXPECT_TRUE(symmetric());
    look.follow({});
    EXPECT_FALSE(symmetric());
}

} // namespace
} // namespace farview::test
