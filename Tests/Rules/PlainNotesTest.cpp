#include "Common/Rules/PlainNotes.h"

#include <gtest/gtest.h>

#include <string>

namespace farview
{
namespace
{

TEST(PlainNotes, AreWhatTheNotesSayWithoutTheirMarkup)
{
    struct Row {
        const char* notes;
        const char* plain;
    };
    const Row rows[] = {
        {"", ""},
        {"Faster.", "Faster."},
        {"  One\n  two\n\n\n\nthree  ", "One\ntwo\n\nthree"},
        {"One\r\ntwo", "One\ntwo"},
        {"<p>One\n  two</p><p>Three</p>", "One two\n\nThree"},
        {"<h2>New</h2><ul><li>This</li><li class='x'>That</li></ul>", "New\n\n• This\n• That"},
        {"a<br>b<BR/>c", "a\nb\nc"},
        {"<b>bold</b> and <i>not</i>", "bold and not"},
        {"<script>alert('</b>')</script>Safe", "Safe"},
        {"<style>p { }</style><p>Safe</p>", "Safe"},
        {"Safe <script>never ends", "Safe"},
        {"1 < 2 && 3 > 2", "1 < 2 && 3 > 2"},
        {"&lt;b&gt; &amp;amp; &quot;x&quot; &#65;&#x42; &unknown; &",
         "<b> &amp; \"x\" AB &unknown; &"},
        {"&#0;&#xD800;&#x110000;", "&#0;&#xD800;&#x110000;"},
        {"x<a", "x<a"},
        {"gr\u00FC\u00DFe \u65E5\u672C \U0001F600", "gr\u00FC\u00DFe \u65E5\u672C \U0001F600"},
        {"a\x01"
         "b\x7F"
         "c\u0085"
         "d",
         "abcd"},
        {"left\u202Eright\u2066\u200F\uFEFF", "leftright"},
        {"&#x202E;&#8;x", "x"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(plainNotes(row.notes), row.plain) << row.notes;
}

TEST(PlainNotes, AreCutBetweenCharacters)
{
    std::string notes;
    while (notes.size() < 20000)
        notes += "\u65E5";
    const std::string plain = plainNotes(notes);
    EXPECT_LE(plain.size(), 16384u);
    EXPECT_GT(plain.size(), 16370u);
    EXPECT_TRUE(plain.ends_with("\u65E5\u2026"));
    EXPECT_EQ(plainNotes(std::string(16384, 'x')), std::string(16384, 'x'));
}

TEST(PlainNotes, OfAnySizeAreReadQuickly)
{
    const std::size_t size = 1u << 20;
    for (const std::string each :
         {"<a", "<script>", "<script></script>", "&", "<", "\u202E", "</"}) {
        std::string notes;
        while (notes.size() < size)
            notes += each;
        EXPECT_LE(plainNotes(notes).size(), 16384u) << each;
    }
}

} // namespace
} // namespace farview
