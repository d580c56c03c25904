#include "Common/Rules/PairingTexts.h"

#include <array>

namespace farview
{
namespace
{

// In the order of the enumeration.
constexpr std::array texts = {
    PairingTexts{"", "", "", ""},
    PairingTexts{"Does %1$@ show %2$@?",
                 "Compare all six digits. If the device shows others, say no.", "Yes, These Digits",
                 "No"},
    PairingTexts{"Now confirm it at %1$@, too.", "It asks about the same digits.", "", "Cancel"},
    PairingTexts{"%1$@ is there, but you have never confirmed it.",
                 "Choose it once: from then on it connects by itself.", "", ""},
    PairingTexts{"This is not the %1$@ that you confirmed. No picture was sent.",
                 "If you have set it up anew, forget the old one, and compare digits once more. "
                 "If not, something else pretends to be it: do nothing.",
                 "Forget the Old One", ""},
    PairingTexts{"Somebody said no at %1$@. No picture was sent.",
                 "If that was a mistake, choose the device again.", "", ""},
    PairingTexts{"The digits at %1$@ were not compared in time. No picture was sent.",
                 "Choose the device again, and have it at hand.", "", ""},
    PairingTexts{"Comparing digits with %1$@ went wrong several times.",
                 "Choose it again in ten minutes. Devices that you have confirmed connect as "
                 "always.",
                 "", ""},
    PairingTexts{"Something between this computer and %1$@ changes what they say. No picture was "
                 "sent.",
                 "Connect in a network that you trust.", "", ""},
    PairingTexts{"The program at %1$@ is too old: it cannot encrypt. No picture was sent.",
                 "Update it there, then choose the device again.", "", ""},
    PairingTexts{"This computer's own key cannot be used, so %1$@ cannot be connected.",
                 "Remove com.quillon.ScreenCapture.pem from the folder of Farview's settings, "
                 "usually .config/farview, then choose the device again. Every device has to be "
                 "confirmed once more.",
                 "", ""},
};
static_assert(texts.size() == static_cast<std::size_t>(PairingReport::State::keyUnusable) + 1);

} // namespace

const PairingTexts& pairingTexts(PairingReport::State state)
{
    return texts.at(static_cast<std::size_t>(state));
}

std::string shownDigits(const std::string& digits)
{
    // A blank that does not break joins the two to one number, which no text direction turns round.
    std::string text = groupedDigits(digits);
    return text.replace(text.find(' '), 1, "\u00A0");
}

std::string pairingSentence(const PairingReport& report, const Localize& localized)
{
    return filledPlaces(localized(pairingTexts(report.state).sentence),
                        {report.device, shownDigits(report.digits)});
}

} // namespace farview
