#include "Controls/Qt/Text/PlainText.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::string_view_literals;

TEST(PlainText, ControlCharactersAreVisible)
{
    EXPECT_EQ(plainLine("a\tb\x1b[31m\x7f\0z"sv), QString::fromUtf8("a␉b␛[31m␡␀z"));
}

TEST(PlainText, AParagraphKeepsItsLinesAndALineDoesNotBreak)
{
    EXPECT_EQ(plainText("one\n\ntwo"), QStringLiteral("one\n\ntwo"));
    EXPECT_EQ(plainLine("one\ntwo\r"), QString::fromUtf8("one␊two␍"));
    EXPECT_EQ(plainLine("one\u2028two"), QString::fromUtf8("one␤two"));
}

TEST(PlainText, MarksThatReverseTheReadingDirectionDoNotWork)
{
    const QString shown = plainLine("\u202Etxt.exe\u2066");
    EXPECT_FALSE(shown.contains(QChar(0x202E)));
    EXPECT_FALSE(shown.contains(QChar(0x2066)));
    EXPECT_TRUE(shown.contains(QStringLiteral("txt.exe")));
}

TEST(PlainText, LettersOfEveryScriptStay)
{
    const char* text = "Wohnzimmer שלום 画面 👨‍👩‍👧";
    EXPECT_EQ(plainLine(text), QString::fromUtf8(text));
}

TEST(PlainText, BytesThatAreNotUtf8AreReplaced)
{
    EXPECT_EQ(plainLine("a\xff"), QString(u'a') + QChar(QChar::ReplacementCharacter));
}

TEST(PlainText, AnAmpersandInAMenuIsALetter)
{
    EXPECT_EQ(plainMenuText("R&D && more"), QStringLiteral("R&&D &&&& more"));
}

TEST(PlainText, AToolTipShowsMarkupInsteadOfObeyingIt)
{
    EXPECT_EQ(plainToolTip("<b>x</b>"), QStringLiteral("<qt>&lt;b&gt;x&lt;/b&gt;</qt>"));
    EXPECT_TRUE(plainToolTip("").isEmpty());
}

TEST(PlainText, ShortcutMarksAreNotPartOfATitle)
{
    EXPECT_EQ(withoutShortcut(QStringLiteral("&Open R&&D")), "Open R&D");
    EXPECT_EQ(withoutShortcut(QStringLiteral("end&")), "end&");
}

} // namespace
} // namespace farview
