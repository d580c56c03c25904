#include "Controls/Switch/FVEChiseledTextButton.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using testing::ElementsAre;

namespace farview::test
{
namespace
{

/// Writes down which lines are drawn, where, and whether smoothly.
class RecordingTextCanvas final : public TextCanvas
{
public:
    struct Line {
        AttributedString string;
        Rect rect;
        bool smooth;

        bool operator==(const Line&) const = default;
    };

    Rect bounds() const override { return area; }
    bool isDark() const override { return dark; }
    double defaultLineHeight() const override { return lineHeight; }
    void drawInRect(const AttributedString& string, const Rect& rect) override
    {
        lines.push_back({string, rect, smooth});
    }
    void saveGraphicsState() override { saved.push_back(smooth); }
    void restoreGraphicsState() override
    {
        ASSERT_FALSE(saved.empty());
        smooth = saved.back();
        saved.pop_back();
    }
    void setShouldSmoothFonts(bool should) override { smooth = should; }

    Rect area{{0, 0}, {40, 30}};
    double lineHeight = 17;
    bool dark = false;
    std::vector<Line> lines;
    std::vector<bool> saved;
    bool smooth = true;
};

class FVEChiseledTextButtonTest : public testing::Test
{
protected:
    FVEChiseledTextButtonTest() { button->setTitle("On"); }

    std::vector<RecordingTextCanvas::Line> draw()
    {
        canvas.lines.clear();
        button->drawRect({{1, 1}, {2, 2}}, canvas);
        EXPECT_TRUE(canvas.smooth) << "the smoothing is what it was";
        EXPECT_TRUE(canvas.saved.empty());
        return canvas.lines;
    }

    std::shared_ptr<FVEChiseledTextButton> button = std::make_shared<FVEChiseledTextButton>();
    RecordingTextCanvas canvas;
};

TEST_F(FVEChiseledTextButtonTest, DrawsTheLightLayerAndTheDarkOneAPointAboveIt)
{
    const auto lines = draw();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].string.foregroundColor, (WhiteColor{1.0, 0.75}));
    EXPECT_EQ(lines[0].rect, (Rect{{0, 6}, {40, 18}}));
    EXPECT_TRUE(lines[0].smooth);
    EXPECT_EQ(lines[1].string.foregroundColor, (WhiteColor{0.0, 0.699999988079071}));
    EXPECT_EQ(lines[1].rect, (Rect{{0, 5}, {40, 18}}));
    EXPECT_FALSE(lines[1].smooth);
}

TEST_F(FVEChiseledTextButtonTest, BothLayersAreTheWidenedTitleInTheMiddle)
{
    for (const auto& line : draw()) {
        EXPECT_EQ(line.string.text, "On");
        EXPECT_EQ(line.string.expansion, double(0.1F));
        EXPECT_EQ(line.string.alignment, TextAlignment::center);
    }
}

TEST_F(FVEChiseledTextButtonTest, DisabledTheDarkLayerHasHalfItsOpacity)
{
    const auto enabled = draw();
    button->setEnabled(false);
    const auto disabled = draw();
    EXPECT_EQ(disabled[0], enabled[0]);
    EXPECT_EQ(disabled[1].string.foregroundColor, (WhiteColor{0.0, 0.3499999940395355}));
    EXPECT_EQ(disabled[1].rect, enabled[1].rect);
}

TEST_F(FVEChiseledTextButtonTest, ItsStateMakesNoDifference)
{
    const auto normal = draw();
    button->setState(1);
    EXPECT_EQ(draw(), normal);
}

TEST_F(FVEChiseledTextButtonTest, AnEvenRestOfTheHeightIsHalved)
{
    canvas.lineHeight = 16;
    EXPECT_EQ(draw()[0].rect, (Rect{{0, 7}, {40, 16}}));
}

TEST_F(FVEChiseledTextButtonTest, AHigherLineGrowsBeyondTheButtonAndStaysInTheMiddle)
{
    canvas.area = {{2, 3}, {40, 10}};
    canvas.lineHeight = 15;
    EXPECT_EQ(draw()[0].rect, (Rect{{2, 0}, {40, 16}}));
    EXPECT_EQ(draw()[1].rect, (Rect{{2, -1}, {40, 16}}));
}

TEST_F(FVEChiseledTextButtonTest, OnDarkGroundTheLightLayerIsOnTop)
{
    const auto light = draw();
    canvas.dark = true;
    EXPECT_THAT(draw(), ElementsAre(light[1], light[0]));
}

TEST_F(FVEChiseledTextButtonTest, OnDarkGroundADisabledTitleIsFainterToo)
{
    canvas.dark = true;
    button->setEnabled(false);
    EXPECT_EQ(draw()[1].string.foregroundColor, (WhiteColor{1.0, 0.375}));
}

} // namespace
} // namespace farview::test
