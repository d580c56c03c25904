#include "Platform/Desktop/DesktopText.h"

#include <QString>

namespace farview
{
namespace
{

QString decoded(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

std::string DesktopText::lowercase(std::string_view text) const
{
    return decoded(text).toLower().toStdString();
}

std::string DesktopText::uppercase(std::string_view text) const
{
    return decoded(text).toUpper().toStdString();
}

} // namespace farview
