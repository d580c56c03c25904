#include "Controls/Qt/Text/PlainText.h"

namespace farview
{
namespace
{

constexpr char16_t firstControlPicture = 0x2400;
constexpr char16_t deletePicture = 0x2421;
constexpr char16_t newLinePicture = 0x2424;

bool isLineBreak(char16_t letter) { return letter == 0x85 || letter == 0x2028 || letter == 0x2029; }

bool reversesDirection(char16_t letter)
{
    return (letter >= 0x202A && letter <= 0x202E) || (letter >= 0x2066 && letter <= 0x2069);
}

QChar visible(QChar character)
{
    const char16_t letter = character.unicode();
    if (letter < 0x20)
        return QChar(static_cast<char16_t>(firstControlPicture + letter));
    if (letter == 0x7F)
        return QChar(deletePicture);
    if (isLineBreak(letter))
        return QChar(newLinePicture);
    if ((letter > 0x7F && letter < 0xA0) || reversesDirection(letter))
        return QChar(QChar::ReplacementCharacter);
    return character;
}

QString shown(std::string_view text, bool keepsLines)
{
    QString result = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    for (QChar& character : result) {
        if (!(keepsLines && character == u'\n'))
            character = visible(character);
    }
    return result;
}

} // namespace

QString plainText(std::string_view text) { return shown(text, true); }

QString plainLine(std::string_view text) { return shown(text, false); }

QString plainMenuText(std::string_view text) { return plainLine(text).replace(u'&', u"&&"_qs); }

QString plainToolTip(std::string_view text)
{
    return text.empty() ? QString() : u"<qt>"_qs + plainText(text).toHtmlEscaped() + u"</qt>"_qs;
}

std::string withoutShortcut(const QString& text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size())
            ++i;
        result += text[i];
    }
    return result.toStdString();
}

} // namespace farview
