#include "Platform/Posix/PropertyLists/StringsFile.h"

#include "Platform/Posix/UTF8.h"

#include <algorithm>
#include <charconv>

namespace farview
{
namespace
{

class Parser
{
public:
    explicit Parser(std::string_view bytes) : mAll(bytes), mRest(bytes) {}

    StringsFile run();

private:
    void skipBlanks();
    bool skipComment();
    bool skipPast(std::string_view end);
    bool pair(std::map<std::string, std::string>& texts);
    bool text(std::string& output);
    bool escape(std::string& output);
    bool codePoint(std::string& output);
    bool token(char expected);
    bool refuse(const char* reason);

    std::string_view mAll;
    std::string_view mRest;
    std::string mReason;
};

bool Parser::refuse(const char* reason)
{
    if (!mReason.empty())
        return false;
    const auto read = mAll.substr(0, mAll.size() - mRest.size());
    const auto line = std::count(read.begin(), read.end(), '\n') + 1;
    mReason = "line " + std::to_string(line) + ": " + reason;
    return false;
}

bool Parser::skipPast(std::string_view end)
{
    const auto found = mRest.find(end);
    if (found == std::string_view::npos)
        return false;
    mRest.remove_prefix(found + end.size());
    return true;
}

bool Parser::skipComment()
{
    if (mRest.starts_with("/*")) {
        mRest.remove_prefix(2);
        return skipPast("*/") || refuse("a comment without an end");
    }
    if (!mRest.starts_with("//"))
        return false;
    if (!skipPast("\n"))
        mRest = {};
    return true;
}

void Parser::skipBlanks()
{
    do {
        const auto first = mRest.find_first_not_of(" \t\r\n");
        mRest.remove_prefix(std::min(first, mRest.size()));
    } while (skipComment());
}

bool Parser::token(char expected)
{
    skipBlanks();
    if (!mRest.starts_with(expected))
        return refuse("no pair \"key\" = \"text\";");
    mRest.remove_prefix(1);
    return true;
}

bool Parser::codePoint(std::string& output)
{
    constexpr std::size_t length = 4;
    unsigned value = 0;
    const auto hexadecimal = mRest.substr(0, length);
    const auto* end = hexadecimal.data() + hexadecimal.size();
    const auto result = std::from_chars(hexadecimal.data(), end, value, 16);
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (hexadecimal.size() != length || result.ptr != end || value == 0 || isSurrogate)
        return refuse("no character");
    mRest.remove_prefix(length);
    appendUTF8(output, value);
    return true;
}

bool Parser::escape(std::string& output)
{
    if (mRest.empty())
        return refuse("a text without an end");
    const char letter = mRest.front();
    mRest.remove_prefix(1);
    if (letter == 'u' || letter == 'U')
        return codePoint(output);
    constexpr std::string_view letters = "\"\\ntr";
    constexpr std::string_view meanings = "\"\\\n\t\r";
    const auto index = letters.find(letter);
    if (index == std::string_view::npos)
        return refuse("an unknown escape");
    output += meanings[index];
    return true;
}

bool Parser::text(std::string& output)
{
    if (!token('"'))
        return false;
    while (true) {
        const auto end = mRest.find_first_of("\"\\");
        if (end == std::string_view::npos)
            return refuse("a text without an end");
        const bool isEnd = mRest[end] == '"';
        output.append(mRest.substr(0, end));
        mRest.remove_prefix(end + 1);
        if (isEnd)
            return true;
        if (!escape(output))
            return false;
    }
}

bool Parser::pair(std::map<std::string, std::string>& texts)
{
    std::string key;
    std::string value;
    if (!text(key) || !token('=') || !text(value) || !token(';'))
        return false;
    return texts.emplace(std::move(key), std::move(value)).second || refuse("a key twice");
}

StringsFile Parser::run()
{
    std::map<std::string, std::string> texts;
    skipBlanks();
    while (!mRest.empty() && mReason.empty() && pair(texts))
        skipBlanks();
    if (!mReason.empty())
        return {std::nullopt, mReason};
    return {std::move(texts), {}};
}

} // namespace

StringsFile StringsFile::parse(std::string_view bytes)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.size() > largestSize)
        return {std::nullopt, "too large"};
    if (!isValidUTF8(bytes) || bytes.find('\0') != std::string_view::npos)
        return {std::nullopt, "not UTF-8"};
    if (bytes.starts_with(byteOrderMark))
        bytes.remove_prefix(byteOrderMark.size());
    return Parser(bytes).run();
}

} // namespace farview
