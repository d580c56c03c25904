#include "Applications/Device/DeviceTexts.h"

#include "Common/Rules/FilledText.h"
#include "Platform/Posix/PropertyLists/StringsFile.h"

#include <QFile>

namespace farview
{

DeviceTexts::DeviceTexts(const std::vector<std::string>& languages)
{
    for (const auto& language : languages) {
        QFile file(QString::fromStdString(":/device/" + language + ".lproj/Localizable.strings"));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        if (auto texts = StringsFile::parse(file.readAll().toStdString()).texts)
            mTexts.merge(*texts);
    }
}

QString DeviceTexts::text(const std::string& english, const std::vector<std::string>& values) const
{
    const auto found = mTexts.find(english);
    std::string text = found == mTexts.end() ? english : found->second;
    for (const auto& value : values)
        text = filledText(std::move(text), value);
    return QString::fromStdString(text);
}

} // namespace farview
