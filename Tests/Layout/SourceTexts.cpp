#include "Tests/Layout/SourceTexts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iterator>
#include <regex>
#include <utility>

namespace
{

class Scanner
{
public:
    explicit Scanner(const std::string& source) : mSource(source) {}

    std::vector<Literal> run()
    {
        while (mAt < mSource.size())
            step();
        return std::move(mFound);
    }

private:
    bool is(const char* beginning) const
    {
        return mSource.compare(mAt, std::string(beginning).size(), beginning) == 0;
    }
    void skipPast(const std::string& end)
    {
        const auto found = mSource.find(end, mAt);
        mAt = found == std::string::npos ? mSource.size() : found + end.size();
    }
    void step()
    {
        if (is("//"))
            skipPast("\n");
        else if (is("/*"))
            skipPast("*/");
        else if (is("R\""))
            skipRawString();
        else if (is("\""))
            readLiteral();
        else if (is("'") && !followsADigit())
            skipCharacter();
        else
            readCode(mSource[mAt++]);
    }
    bool followsADigit() const
    {
        return mAt > 0 && std::isalnum(static_cast<unsigned char>(mSource[mAt - 1]));
    }
    void skipCharacter()
    {
        ++mAt;
        mAt += is("\\") ? 2 : 1;
        skipPast("'");
        readCode('0');
    }
    void skipRawString()
    {
        const auto open = mSource.find('(', mAt);
        const std::string mark = mSource.substr(mAt + 2, open - mAt - 2);
        skipPast(std::string(")").append(mark).append("\""));
        readCode('0');
    }
    void readCode(char letter)
    {
        if (std::isspace(static_cast<unsigned char>(letter)))
            return;
        mCode += letter;
        mIsNeighbour = false;
    }
    void readLiteral()
    {
        if (!mIsNeighbour)
            mFound.push_back(
                {mCode.substr(mCode.size() - std::min<std::size_t>(mCode.size(), 80)), ""});
        mIsNeighbour = true;
        for (++mAt; mAt < mSource.size() && !is("\""); ++mAt)
            mFound.back().text += is("\\") ? escaped(mSource[++mAt]) : mSource[mAt];
        ++mAt;
    }
    static char escaped(char letter)
    {
        return letter == 'n' ? '\n' : letter == 't' ? '\t' : letter;
    }

    const std::string& mSource;
    std::size_t mAt = 0;
    std::string mCode;
    bool mIsNeighbour = false;
    std::vector<Literal> mFound;
};

std::string withoutEntities(std::string text)
{
    static constexpr std::array<std::pair<const char*, const char*>, 4> entities = {
        {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}}};
    for (const auto& [entity, letter] : entities)
        text = std::regex_replace(text, std::regex(entity), letter);
    return text;
}

} // namespace

std::vector<Literal> literalsIn(const std::string& source) { return Scanner(source).run(); }

std::vector<std::string> textsOfAForm(const std::string& xml)
{
    const std::string begin = "<string>";
    std::vector<std::string> texts;
    for (auto at = xml.find(begin); at != std::string::npos; at = xml.find(begin, at + 1)) {
        const auto start = at + begin.size();
        texts.push_back(withoutEntities(xml.substr(start, xml.find("</string>", start) - start)));
    }
    return texts;
}

std::vector<std::string> placesIn(const std::string& text)
{
    static const std::regex place(R"(%(?:\d+\$)?(?:@|\d+|L\d+|n|l*[diufs]))");
    std::vector<std::string> places;
    for (std::sregex_iterator each(text.begin(), text.end(), place), end; each != end; ++each)
        places.push_back(each->str());
    std::sort(places.begin(), places.end());
    return places;
}

std::size_t shortcutsIn(const std::string& text)
{
    const auto single = std::regex_replace(text, std::regex("&&"), "");
    return static_cast<std::size_t>(std::count(single.begin(), single.end(), '&'));
}

std::string wholeText(const std::string& pathInTheProject)
{
    std::ifstream file(std::string(FARVIEW_SOURCE_DIR) + "/" + pathInTheProject);
    return {std::istreambuf_iterator<char>(file), {}};
}
