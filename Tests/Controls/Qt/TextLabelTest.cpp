#include "Controls/Qt/TextLabel.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

const QString longText =
    QStringLiteral("Some words that need more than one line when it is narrow");

/// What a label says that has never been asked before.
int freshHeight(const TextLabel& like, int width)
{
    TextLabel fresh(like.text());
    fresh.setFont(like.font());
    fresh.setWordWrap(like.wordWrap());
    fresh.setMargin(like.margin());
    fresh.setContentsMargins(like.contentsMargins());
    return fresh.heightForWidth(width);
}

struct TextLabels : testing::Test {
    TextLabels() { label.setWordWrap(true); }
    void expectRightHeights() const
    {
        for (const int width : {120, 400, 120})
            EXPECT_EQ(label.heightForWidth(width), freshHeight(label, width)) << width;
    }
    TextLabel label{longText};
};

TEST_F(TextLabels, AreHigherWhereTheyAreNarrow)
{
    EXPECT_GT(label.heightForWidth(120), label.heightForWidth(1000));
    expectRightHeights();
}

TEST_F(TextLabels, ForgetTheirHeightsWithTheTextTheFontAndTheMargins)
{
    expectRightHeights();
    label.setText(longText + longText);
    expectRightHeights();
    QFont large = label.font();
    large.setPointSize(30);
    label.setFont(large);
    expectRightHeights();
    label.setMargin(20);
    expectRightHeights();
    label.setContentsMargins(0, 40, 0, 0);
    expectRightHeights();
}

TEST_F(TextLabels, HaveNoHeightOfTheirOwnWithoutWrapping)
{
    expectRightHeights();
    label.setWordWrap(false);
    expectRightHeights();
}

TEST_F(TextLabels, AnswerForAnyNumberOfWidths)
{
    for (int width = 100; width < 300; ++width)
        ASSERT_EQ(label.heightForWidth(width), freshHeight(label, width)) << width;
}

} // namespace
} // namespace farview
