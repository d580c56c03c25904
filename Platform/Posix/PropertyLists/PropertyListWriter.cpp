#include "Platform/Posix/PropertyLists/PropertyListWriter.h"

#include "Platform/Posix/PropertyLists/PropertyListReader.h"
#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/UTF8.h"

#include <set>
#include <string_view>

namespace farview
{
namespace
{

bool isXMLCharacter(char32_t character)
{
    if (character < 0x20)
        return character == '\t' || character == '\n' || character == '\r';
    return character != 0xFFFE && character != 0xFFFF;
}

void appendEscaped(std::string& output, char32_t character)
{
    switch (character) {
    case '&':
        output += "&amp;";
        break;
    case '<':
        output += "&lt;";
        break;
    case '>':
        output += "&gt;";
        break;
    case '\r':
        // Readers turn a bare carriage return into a line feed.
        output += "&#13;";
        break;
    default:
        appendUTF8(output, character);
    }
}

std::string escaped(std::string_view text)
{
    constexpr char32_t replacement = 0xFFFD;
    std::string output;
    output.reserve(text.size());
    while (!text.empty()) {
        const auto character = decodeCharacter(text);
        const auto value = character.value.value_or(replacement);
        appendEscaped(output, isXMLCharacter(value) ? value : replacement);
        text.remove_prefix(character.length);
    }
    return output;
}

/// Writes one list. After the first refusal it adds nothing more.
class Writing
{
public:
    PropertyListWriter::Result run(const PropertyList& list);

    void operator()(bool value) { line(value ? "<true/>" : "<false/>"); }
    void operator()(std::int64_t value) { element("integer", std::to_string(value)); }
    void operator()(double value) { element("real", textFromReal(value)); }
    void operator()(const std::string& value) { element("string", escaped(value)); }
    void operator()(const Data& value) { element("data", base64FromData(value)); }
    void operator()(Date value);
    void operator()(const PropertyList::Array& value);
    void operator()(const PropertyList::Dictionary& value);

private:
    void value(const PropertyList& list);
    void line(std::string_view text);
    void element(std::string_view name, std::string_view text);
    void refuse(const char* reason);

    std::string mOutput;
    std::string mReason;
    std::size_t mDepth = 0;
};

void Writing::refuse(const char* reason)
{
    if (mReason.empty())
        mReason = reason;
}

void Writing::line(std::string_view text)
{
    if (mOutput.size() + mDepth + text.size() > PropertyListReader::largestSize)
        return refuse("too large");
    mOutput.append(mDepth - 1, '\t').append(text) += '\n';
}

void Writing::element(std::string_view name, std::string_view text)
{
    std::string whole;
    whole.reserve(2 * name.size() + text.size() + 5);
    whole.append("<").append(name).append(">").append(text);
    line(whole.append("</").append(name).append(">"));
}

void Writing::value(const PropertyList& list)
{
    if (!mReason.empty())
        return;
    if (mDepth == PropertyListReader::largestDepth)
        return refuse("nested too deeply");
    ++mDepth;
    std::visit(*this, list.value());
    --mDepth;
}

void Writing::operator()(Date date)
{
    const auto text = textFromDate(date);
    if (!text)
        return refuse("a date that cannot be written");
    element("date", *text);
}

void Writing::operator()(const PropertyList::Array& array)
{
    line("<array>");
    for (const auto& each : array)
        value(each);
    line("</array>");
}

void Writing::operator()(const PropertyList::Dictionary& dictionary)
{
    line("<dict>");
    std::set<std::string> written;
    for (const auto& [key, each] : dictionary) {
        const auto [name, isNew] = written.insert(escaped(key));
        if (!isNew)
            refuse("two keys that become one");
        ++mDepth;
        element("key", *name);
        --mDepth;
        value(each);
    }
    line("</dict>");
}

PropertyListWriter::Result Writing::run(const PropertyList& list)
{
    mOutput = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
    value(list);
    mDepth = 1;
    line("</plist>");
    if (!mReason.empty())
        return {std::nullopt, mReason};
    return {std::move(mOutput), {}};
}

} // namespace

PropertyListWriter::Result PropertyListWriter::write(const PropertyList& list)
{
    try {
        return Writing().run(list);
    } catch (...) {
        return {std::nullopt, "out of memory"};
    }
}

} // namespace farview
