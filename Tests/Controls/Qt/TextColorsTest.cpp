#include "Controls/Qt/Text/TextColors.h"
#include "Controls/Qt/DarkPalette.h"
#include "Controls/Qt/Text/LabelTint.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

namespace farview::test
{
namespace
{

using Role = QPalette::ColorRole;
using Group = QPalette::ColorGroup;

QPalette lightPalette() { return QPalette(QColor(239, 239, 239)); }

TEST(Contrast, IsTheOneOfTheGuidelines)
{
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21.0, 0.001);
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21.0, 0.001);
    EXPECT_NEAR(contrast(Qt::red, Qt::red), 1.0, 0.001);
    // The grey that just fails on white, and the one that just holds.
    EXPECT_LT(contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.5);
    EXPECT_GT(contrast(QColor(0x76, 0x76, 0x76), Qt::white), 4.5);
}

/// What is written in which role on which ground.
struct Pair {
    Role text;
    Role ground;
};
const Pair pairs[] = {
    {Role::WindowText, Role::Window},
    {Role::WindowText, Role::Base}, // on a card
    {Role::Text, Role::Base},
    {Role::Text, Role::AlternateBase},
    {Role::ButtonText, Role::Button},
    {Role::ButtonText, Role::Window}, // of a tab
    {Role::HighlightedText, Role::Highlight},
    {Role::PlaceholderText, Role::Base},
    {Role::Link, Role::Window},
    {Role::Link, Role::Base},
    {Role::LinkVisited, Role::Window},
    {Role::LinkVisited, Role::Base},
    {Role::BrightText, Role::Window},
    {Role::ToolTipText, Role::ToolTipBase},
};

TEST(DarkPalette, EveryTextCanBeReadOnItsGroundWhateverItsState)
{
    const QPalette palette = darkPalette();
    for (const auto group : {Group::Active, Group::Inactive, Group::Disabled}) {
        for (const Pair& pair : pairs)
            EXPECT_GE(contrast(palette.color(group, pair.text), palette.color(group, pair.ground)),
                      readableContrast)
                << group << ": " << pair.text << " on " << pair.ground;
    }
}

TEST(DarkPalette, TheFocusCanBeSeen)
{
    const QPalette palette = darkPalette();
    for (const Role ground : {Role::Window, Role::Base})
        EXPECT_GE(contrast(palette.color(Role::Highlight), palette.color(ground)), 3.0) << ground;
}

TEST(SecondaryText, IsQuieterThanTheRestAndReadableOnEveryGround)
{
    const QPalette palettes[] = {darkPalette(), lightPalette(), QPalette(Qt::white),
                                 QPalette(Qt::black),
                                 QPalette(QColor(53, 53, 53), QColor(42, 42, 42))};
    for (const QPalette& palette : palettes) {
        const QColor window = palette.color(Role::Window);
        const QColor color = secondaryText(palette);
        EXPECT_GE(contrast(color, window), readableContrast) << window.name().toStdString();
        EXPECT_GE(contrast(color, palette.color(Role::Base)), readableContrast);
        EXPECT_LT(contrast(color, window), contrast(palette.color(Role::WindowText), window));
    }
}

TEST(SecondaryText, IsTheTextItselfWhereNothingQuieterCanBeRead)
{
    QPalette palette;
    palette.setColor(Role::Window, QColor(120, 120, 120));
    palette.setColor(Role::Base, QColor(120, 120, 120));
    palette.setColor(Role::WindowText, Qt::black);
    EXPECT_EQ(secondaryText(palette), QColor(Qt::black));
}

TEST(ErrorText, CanBeReadOnLightAndDark)
{
    for (const QPalette& palette : {darkPalette(), lightPalette()}) {
        for (const Role ground : {Role::Window, Role::Base})
            EXPECT_GE(contrast(errorText(palette), palette.color(ground)), readableContrast);
    }
}

class TintedLabel : public testing::Test
{
protected:
    QColor color() const { return label->palette().color(Role::WindowText); }

    QWidget window;
    QLabel* label = new QLabel(&window);
};

TEST_F(TintedLabel, FollowsTheColorsOfTheWindow)
{
    window.setPalette(lightPalette());
    LabelTint::of(*label).setSecondary(true);
    EXPECT_EQ(color(), secondaryText(lightPalette()));
    window.setPalette(darkPalette());
    EXPECT_EQ(color(), secondaryText(darkPalette()));
    window.setPalette(lightPalette());
    EXPECT_EQ(color(), secondaryText(lightPalette()));
}

TEST_F(TintedLabel, AnErrorOutranksTheRestAndFollowsToo)
{
    window.setPalette(lightPalette());
    LabelTint::of(*label).setSecondary(true);
    LabelTint::of(*label).setError(true);
    EXPECT_EQ(color(), errorText(lightPalette()));
    window.setPalette(darkPalette());
    EXPECT_EQ(color(), errorText(darkPalette()));
    LabelTint::of(*label).setError(false);
    EXPECT_EQ(color(), secondaryText(darkPalette()));
    LabelTint::of(*label).setSecondary(false);
    EXPECT_EQ(color(), darkPalette().color(Role::WindowText));
}

} // namespace
} // namespace farview::test
