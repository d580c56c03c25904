#include "Controls/Qt/Text/TextLabel.h"

#include <gtest/gtest.h>

#include <functional>

namespace farview
{
namespace
{

const QString longText =
    QStringLiteral("Some words that need more than one line when it is narrow");

const QStringList texts = {
    QString(),
    QStringLiteral("x"),
    QStringLiteral("Two words"),
    longText,
    longText + u' ' + longText + u' ' + longText + u' ' + longText,
    QStringLiteral("A line\nand another one that is a good deal longer\n\nand one after a gap\n"),
    QStringLiteral("One wordthatisfartoolongforanyreasonablelinethatapersonwouldwanttoread here"),
    QStringLiteral(
        "使用另一台设备作为附加屏幕,拖动已勾选的设备即可排列顺序。使用另一台设备作为附加屏幕。"),
    QStringLiteral("استخدم جهازًا آخر كشاشة إضافية واسحب الأجهزة لترتيبها كما تريد"),
    QStringLiteral("Trailing spaces   "),
    QStringLiteral("10 < 20 & 30 > 20"),
    QStringLiteral("A\ttab"),
    QStringLiteral("<b>Bold</b> and <i>more</i> of it"),
};

using Change = std::function<void(QLabel&)>;

const std::vector<Change> changes = {
    [](QLabel&) {},
    [](QLabel& label) { label.setMargin(7); },
    [](QLabel& label) { label.setContentsMargins(1, 20, 3, 4); },
    [](QLabel& label) { label.setIndent(9); },
    [](QLabel& label) { label.setAlignment(Qt::AlignRight | Qt::AlignTop); },
    [](QLabel& label) { label.setTextFormat(Qt::PlainText); },
    [](QLabel& label) { label.setTextInteractionFlags(Qt::TextSelectableByMouse); },
    [](QLabel& label) { label.setBuddy(&label); },
    [](QLabel& label) { label.setFrameShape(QFrame::Box); },
    [](QLabel& label) { label.setMinimumSize(300, 90); },
    [](QLabel& label) { label.setMinimumHeight(90); },
    [](QLabel& label) { label.setMaximumWidth(200); },
};

QFont fontOf(double points, bool bold)
{
    QFont font;
    font.setPointSizeF(points);
    font.setBold(bold);
    return font;
}

const std::vector<QFont> fonts = {fontOf(9, false), fontOf(10.5, true), fontOf(31, false)};

/// The room for the widest word may be a pixel more.
void expectTheSame(const TextLabel& label, const QLabel& judge)
{
    EXPECT_EQ(label.sizeHint(), judge.sizeHint());
    EXPECT_EQ(label.minimumSizeHint().height(), judge.minimumSizeHint().height());
    EXPECT_GE(label.minimumSizeHint().width(), judge.minimumSizeHint().width());
    EXPECT_LE(label.minimumSizeHint().width(), judge.minimumSizeHint().width() + 1);
}

struct TextLabels : testing::Test {
    TextLabels() { label.setWordWrap(true); }

    /// The toolkit's label, made anew, is the judge.
    void expectTheToolkitsAnswers(const Change& change = [](QLabel&) {}) const
    {
        QLabel judge(label.text());
        judge.setFont(label.font());
        judge.setWordWrap(label.wordWrap());
        change(judge);
        expectTheSame(label, judge);
        for (const int width : {0, 1, 37, 120, 400, 120, 5000})
            EXPECT_EQ(label.heightForWidth(width), judge.heightForWidth(width)) << width;
    }
    TextLabel label{longText};
};

TEST_F(TextLabels, AreHigherWhereTheyAreNarrow)
{
    EXPECT_GT(label.heightForWidth(120), label.heightForWidth(1000));
    expectTheToolkitsAnswers();
}

class EachTextLabel : public testing::TestWithParam<int>
{
};

TEST_P(EachTextLabel, AnswersAsTheToolkitsOwnDoes)
{
    for (const QFont& font : fonts) {
        for (const bool wraps : {false, true}) {
            for (std::size_t i = 0; i < changes.size(); ++i) {
                SCOPED_TRACE(font.toString().toStdString() + " wraps " + std::to_string(wraps) +
                             " change " + std::to_string(i));
                TextLabel label(texts.at(GetParam()));
                QLabel judge(texts.at(GetParam()));
                for (QLabel* each : {static_cast<QLabel*>(&label), &judge}) {
                    each->setFont(font);
                    each->setWordWrap(wraps);
                    changes[i](*each);
                }
                expectTheSame(label, judge);
                for (const int width : {0, 1, 37, 120, 400, 120, 5000})
                    EXPECT_EQ(label.heightForWidth(width), judge.heightForWidth(width)) << width;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, EachTextLabel, testing::Range(0, static_cast<int>(texts.size())));

TEST_F(TextLabels, AnswerAnewWhenTheTextTheFontOrTheMarginsChange)
{
    expectTheToolkitsAnswers();
    label.setText(longText + longText);
    expectTheToolkitsAnswers();
    QFont large = label.font();
    large.setPointSize(30);
    label.setFont(large);
    expectTheToolkitsAnswers();
    const auto widen = [](QLabel& each) { each.setMargin(20); };
    widen(label);
    expectTheToolkitsAnswers(widen);
    label.setWordWrap(false);
    expectTheToolkitsAnswers(widen);
}

TEST_F(TextLabels, AnswerAnewInsideALayoutWhenTheTextChanges)
{
    const int before = label.sizeHint().height();
    label.setText(longText + u'\n' + longText + u'\n' + longText + u'\n' + longText);
    EXPECT_GT(label.sizeHint().height(), before);
}

TEST_F(TextLabels, AnswerForAnyNumberOfWidths)
{
    QLabel judge(label.text());
    judge.setWordWrap(true);
    for (int width = 100; width < 300; ++width)
        ASSERT_EQ(label.heightForWidth(width), judge.heightForWidth(width)) << width;
}

} // namespace
} // namespace farview
