#include "Tests/Support/PseudoLanguages.h"

#include "Platform/Posix/PropertyLists/StringsFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

namespace
{

namespace fs = std::filesystem;

using Alphabet = const char* const[26];

constexpr Alphabet accentedLetters = {"á", "ƀ", "ç", "đ", "é", "ƒ", "ĝ", "ĥ", "í",
                                      "ĵ", "ķ", "ļ", "ɱ", "ñ", "ó", "þ", "ɋ", "ŕ",
                                      "š", "ţ", "ú", "ṽ", "ŵ", "ẋ", "ý", "ž"};
constexpr Alphabet arabicLetters = {"ا", "ب", "ث", "د", "ع", "ف", "غ", "ه", "ي",
                                    "ج", "ك", "ل", "م", "ن", "و", "پ", "ق", "ر",
                                    "س", "ت", "ؤ", "ڤ", "ش", "خ", "ى", "ز"};

/// What must stay as it is: places to fill in, and the letter of a shortcut with its mark.
const std::regex untouchable(R"(%(\d+|[@a-z]|%)|&[A-Za-z])");

std::string letters(const std::string& text, const Alphabet& alphabet)
{
    std::string result;
    for (const char letter : text) {
        const int place = (letter | 0x20) - 'a';
        result += place >= 0 && place < 26 ? alphabet[place] : std::string(1, letter);
    }
    return result;
}

std::string withoutBlanks(const std::string& text)
{
    const auto first = text.find_first_not_of(' ');
    const auto last = text.find_last_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

/// German is longer than English by a third.
std::string padding(const std::string& text, const Alphabet& alphabet)
{
    std::string more;
    for (std::size_t length = 0; length < text.size() / 3; length += 5)
        more += " " + letters("more", alphabet);
    return more;
}

std::string inAlphabet(const std::string& text, const Alphabet& alphabet, const std::string& more)
{
    const std::string inner = withoutBlanks(text);
    if (inner.empty())
        return text;
    std::string result = text.substr(0, text.find(inner));
    auto end = inner.begin();
    for (std::sregex_iterator each(inner.begin(), inner.end(), untouchable), none; each != none;
         ++each) {
        result += letters(std::string(end, (*each)[0].first), alphabet) + each->str();
        end = (*each)[0].second;
    }
    return result + letters(std::string(end, inner.end()), alphabet) + more +
           text.substr(text.find(inner) + inner.size());
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\')
            result += '\\';
        result += letter == '\n' ? std::string("\\n") : std::string(1, letter);
    }
    return result + "\"";
}

void linkContents(const fs::path& from, const fs::path& to)
{
    fs::create_directories(to);
    for (const auto& entry : fs::directory_iterator(from))
        fs::create_symlink(entry.path(), to / entry.path().filename());
}

void writeCatalogue(const fs::path& folder, const std::map<std::string, std::string>& texts,
                    std::string (*inLanguage)(const std::string&))
{
    fs::create_directories(folder);
    std::ofstream file(folder / "Localizable.strings");
    for (const auto& [key, text] : texts)
        file << quoted(key) << " = " << quoted(inLanguage(text)) << ";\n";
}

} // namespace

PseudoLanguages::PseudoLanguages(const std::string& bundle)
{
    const fs::path own = fs::path(mPath) / "Contents";
    linkContents(fs::path(bundle) / "Contents", own);
    fs::remove(own / "Resources");
    linkContents(fs::path(bundle) / "Contents/Resources", own / "Resources");
    std::ifstream file(own / "Resources/en.lproj/Localizable.strings");
    const std::string all(std::istreambuf_iterator<char>(file), {});
    const auto catalogue = farview::StringsFile::parse(all);
    if (!catalogue.texts || catalogue.texts->empty())
        throw std::runtime_error("no English texts in " + bundle);
    writeCatalogue(own / "Resources/en-XA.lproj", *catalogue.texts, accented);
    writeCatalogue(own / "Resources/ar-XB.lproj", *catalogue.texts, fromRightToLeft);
}

std::string PseudoLanguages::accented(const std::string& text)
{
    return inAlphabet(text, accentedLetters, padding(text, accentedLetters));
}

std::string PseudoLanguages::fromRightToLeft(const std::string& text)
{
    return inAlphabet(text, arabicLetters, "");
}
