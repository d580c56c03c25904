#include "Tests/Applications/DoctorNames.h"

#include "Platform/Posix/PropertyLists/StringsFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>

namespace farview
{
namespace
{

const std::map<std::string, std::string>& germanTexts()
{
    static const auto texts = [] {
        std::ifstream file(FARVIEW_SOURCE_DIR "/PaneBundle/de.lproj/Localizable.strings");
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        return StringsFile::parse(bytes).texts.value_or(std::map<std::string, std::string>{});
    }();
    return texts;
}

std::size_t placesIn(const std::string& text)
{
    std::size_t count = 0;
    for (auto at = text.find("%@"); at != std::string::npos; at = text.find("%@", at + 2))
        ++count;
    return count;
}

void expectComplete(const Sentence& sentence)
{
    if (sentence.key.empty())
        return;
    EXPECT_LE(placesIn(sentence.key), sentence.values.size()) << sentence.key;
    expectTranslated(sentence.key);
}

} // namespace

void expectTranslated(const std::string& text)
{
    const auto found = germanTexts().find(text);
    ASSERT_NE(found, germanTexts().end()) << text;
    EXPECT_EQ(placesIn(found->second), placesIn(text)) << text;
}

std::vector<std::string> names(const Findings& findings)
{
    std::vector<std::string> all;
    for (const auto& each : findings) {
        all.push_back(each.name);
        expectComplete(each.text);
        expectComplete(each.advice);
    }
    return all;
}

std::vector<std::string> troubles(const Findings& findings)
{
    Findings bad;
    for (const auto& each : findings) {
        if (each.severity != Severity::ok)
            bad.push_back(each);
    }
    return names(bad);
}

} // namespace farview
