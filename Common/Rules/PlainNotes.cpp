#include "Common/Rules/PlainNotes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace farview
{
namespace
{

constexpr std::size_t largestNotes = 16384;
/// What begins like a tag and is longer is none.
constexpr std::size_t longestTag = 1024;
constexpr std::string_view ellipsis = "…";
constexpr std::string_view whiteSpace = " \t\r\n";

char smallLetter(char each)
{
    return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
}

std::string inSmallLetters(std::string_view text)
{
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), smallLetter);
    return small;
}

/// Where `sought`, in small letters, begins in the text, in letters of any size; else its end.
std::size_t positionOf(std::string_view sought, std::string_view text)
{
    const auto* found =
        std::search(text.begin(), text.end(), sought.begin(), sought.end(),
                    [](char left, char right) { return smallLetter(left) == right; });
    return static_cast<std::size_t>(found - text.begin());
}

/// "li" for "<li class=x>", "/p" for "</p>".
std::string nameOfTag(std::string_view inside)
{
    const auto end = inside.find_first_of(" \t\r\n/", inside.starts_with('/') ? 1 : 0);
    return inSmallLetters(inside.substr(0, end));
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool startsLine(std::string_view tag)
{
    return isOneOf(tag,
                   {"br", "p",  "/p", "div", "/div", "ul",  "/ul", "ol", "/ol", "/li", "h1",
                    "h2", "h3", "h4", "/h1", "/h2",  "/h3", "/h4", "tr", "hr",  "pre", "/pre"});
}

void appendUTF8(std::string& text, std::uint32_t character)
{
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    if (character < 0x80) {
        text += byte(character);
        return;
    }
    if (character < 0x800) {
        text += byte(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            text += byte(0xE0 | character >> 12);
        } else {
            text += byte(0xF0 | character >> 18);
            text += byte(0x80 | (character >> 12 & 0x3F));
        }
        text += byte(0x80 | (character >> 6 & 0x3F));
    }
    text += byte(0x80 | (character & 0x3F));
}

std::optional<std::uint32_t> numberedCharacter(std::string_view name)
{
    const bool isHexadecimal = name.starts_with("#x") || name.starts_with("#X");
    const auto digits = name.substr(isHexadecimal ? 2 : 1);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                              isHexadecimal ? 16 : 10);
    const bool isRead = error == std::errc() && end == digits.data() + digits.size();
    const bool isCharacter = value > 0 && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
    return isRead && isCharacter ? std::optional(value) : std::nullopt;
}

std::optional<std::uint32_t> characterNamed(std::string_view name)
{
    static constexpr std::array<std::pair<std::string_view, std::uint32_t>, 8> names = {{
        {"amp", '&'},
        {"lt", '<'},
        {"gt", '>'},
        {"quot", '"'},
        {"apos", '\''},
        {"nbsp", ' '},
        {"ndash", 0x2013},
        {"mdash", 0x2014},
    }};
    if (name.starts_with('#'))
        return numberedCharacter(name);
    const auto* found = std::find_if(names.begin(), names.end(),
                                     [&](const auto& each) { return each.first == name; });
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

/// How many bytes at the beginning are one invisible character that governs others: controls, marks
/// and overrides of direction, separators of lines, the byte order mark.
std::size_t lengthOfGovernor(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x20 || first == 0x7F)
        return 1;
    if (first == 0xC2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0)
        return 2;
    if (text.starts_with("\u061C"))
        return 2;
    const auto starts = [&](std::string_view each) { return text.starts_with(each); };
    constexpr std::array<std::string_view, 14> governors = {
        "\u200E", "\u200F", "\u2028", "\u2029", "\u202A", "\u202B", "\u202C",
        "\u202D", "\u202E", "\u2066", "\u2067", "\u2068", "\u2069", "\uFEFF"};
    return std::any_of(governors.begin(), governors.end(), starts) ? 3 : 0;
}

/// One walk through the notes.
class Reduction
{
public:
    explicit Reduction(std::string_view notes) : mRest(notes) {}

    std::string run();

private:
    void takeTag(std::size_t end);
    bool takeReference();
    void takeSpace();
    void takeCharacter();
    void append(std::string_view text);
    void startLine();

    std::string_view mRest;
    std::string mText;
    bool mHasTags = false;
    bool mNeedsSpace = false;
};

void Reduction::append(std::string_view text)
{
    if (mNeedsSpace && !mText.empty() && mText.back() != '\n')
        mText += ' ';
    mNeedsSpace = false;
    mText += text;
}

void Reduction::startLine()
{
    mNeedsSpace = false;
    if (!mText.empty() && !mText.ends_with("\n\n"))
        mText += '\n';
}

void Reduction::takeTag(std::size_t end)
{
    const auto tag = nameOfTag(mRest.substr(1, end - 1));
    mRest.remove_prefix(end + 1);
    if (isOneOf(tag, {"script", "style"})) {
        // What stands in these is for programs.
        mRest.remove_prefix(positionOf("</" + tag, mRest));
        return;
    }
    if (startsLine(tag))
        startLine();
    if (tag == "li") {
        if (!mText.empty() && mText.back() != '\n')
            startLine();
        append("• ");
    }
}

bool Reduction::takeReference()
{
    constexpr std::size_t longestReference = 10;
    const auto end = mRest.substr(0, longestReference).find(';');
    if (end == std::string_view::npos)
        return false;
    const auto character = characterNamed(mRest.substr(1, end - 1));
    if (!character)
        return false;
    std::string text;
    appendUTF8(text, *character);
    if (lengthOfGovernor(text) == 0)
        append(text);
    mRest.remove_prefix(end + 1);
    return true;
}

void Reduction::takeSpace()
{
    const auto length = std::min(mRest.find_first_not_of(whiteSpace), mRest.size());
    const auto space = mRest.substr(0, length);
    const auto lines = std::count(space.begin(), space.end(), '\n');
    mRest.remove_prefix(length);
    // Among tags a line break is nothing but space.
    if (mHasTags || lines == 0) {
        mNeedsSpace = true;
        return;
    }
    for (auto line = 0; line < std::min<std::ptrdiff_t>(lines, 2); ++line)
        startLine();
}

void Reduction::takeCharacter()
{
    const auto governor = lengthOfGovernor(mRest);
    if (governor == 0)
        append(mRest.substr(0, 1));
    mRest.remove_prefix(std::max<std::size_t>(governor, 1));
}

bool startsTag(std::string_view text)
{
    const char next = text.size() > 1 ? text[1] : ' ';
    return text.front() == '<' && (next == '/' || next == '!' || (next >= 'a' && next <= 'z') ||
                                   (next >= 'A' && next <= 'Z'));
}

std::string Reduction::run()
{
    mHasTags = mRest.find("</") != std::string_view::npos ||
               mRest.find("/>") != std::string_view::npos ||
               positionOf("<br", mRest) < mRest.size();
    while (!mRest.empty() && mText.size() <= largestNotes) {
        const auto end =
            startsTag(mRest) ? mRest.substr(0, longestTag).find('>') : std::string_view::npos;
        if (end != std::string_view::npos)
            takeTag(end);
        else if (whiteSpace.find(mRest.front()) != std::string_view::npos)
            takeSpace();
        else if (mRest.front() != '&' || !takeReference())
            takeCharacter();
    }
    return std::move(mText);
}

void cut(std::string& text)
{
    if (text.size() <= largestNotes)
        return;
    auto end = largestNotes - ellipsis.size();
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    text.resize(end);
    text += ellipsis;
}

} // namespace

std::string plainNotes(std::string_view notes)
{
    std::string text = Reduction(notes).run();
    cut(text);
    text.resize(text.find_last_not_of(whiteSpace) + 1);
    return text;
}

} // namespace farview
