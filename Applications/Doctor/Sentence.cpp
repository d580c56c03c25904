#include "Applications/Doctor/Sentence.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <cstddef>

namespace farview
{
namespace
{

constexpr std::size_t longestValue = 300;
constexpr std::string_view placeholder = "%@";

} // namespace

std::string shownValue(std::string_view value) { return printableText(value, longestValue); }

std::string shownSentence(const Sentence& sentence, const Translate& translate)
{
    const std::string text = translate(sentence.key);
    std::string shown;
    std::size_t done = 0;
    // In one pass over the text: a value that holds a placeholder must not be filled.
    for (const auto& value : sentence.values) {
        const auto place = text.find(placeholder, done);
        if (place == std::string::npos)
            break;
        shown.append(text, done, place - done).append(shownValue(value));
        done = place + placeholder.size();
    }
    return shown.append(text, done);
}

} // namespace farview
