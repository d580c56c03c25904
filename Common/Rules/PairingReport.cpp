#include "Common/Rules/PairingReport.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

namespace farview
{
namespace
{

using State = PairingReport::State;

constexpr std::array words{"none",       "comparing",    "confirmed",   "unconfirmed",
                           "changed",    "refusedThere", "notCompared", "tooManyTries",
                           "interfered", "tooOld",       "keyUnusable"};
constexpr std::size_t longestText = 512;
// Whoever copies digits from the panel has the blank between them in the last two bytes.
constexpr std::string_view blanks = " \t\r\n\xC2\xA0";

bool hasDigits(State state) { return state == State::comparing || state == State::confirmed; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

} // namespace

bool arePairingDigits(const std::string& text)
{
    return text.size() == kPairingDigits && std::all_of(text.begin(), text.end(), isDigit);
}

std::string withoutBlanks(const std::string& typed)
{
    std::string text = typed;
    std::erase_if(text, [](char c) { return blanks.find(c) != std::string_view::npos; });
    return text;
}

std::string groupedDigits(const std::string& digits)
{
    const std::size_t half = digits.size() / 2;
    return digits.substr(0, half) + " " + digits.substr(half);
}

std::string textOfPairingReport(const PairingReport& report)
{
    std::string text = words.at(static_cast<std::size_t>(report.state));
    if (hasDigits(report.state))
        text += " " + report.digits;
    return text + " " + report.device;
}

PairingReport pairingReport(const std::string* text)
{
    if (!text || text->size() > longestText)
        return {};
    std::istringstream in(*text);
    std::string word;
    in >> word;
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end() || found == words.begin())
        return {};
    PairingReport report{.state = static_cast<State>(found - words.begin())};
    if (hasDigits(report.state) && !(in >> report.digits && arePairingDigits(report.digits)))
        return {};
    std::getline(in.ignore(), report.device);
    return report.device.empty() ? PairingReport{} : report;
}

} // namespace farview
