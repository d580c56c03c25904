#include "Common/Rules/ScreenTexts.h"

#include "Common/Rules/DesktopAbilities.h"

#include <array>
#include <cmath>

namespace farview
{
namespace
{

constexpr const char* useAnother =
    "Log in to GNOME or sway on Wayland instead: they can add screens.";

// In the order of the enumeration.
constexpr std::array obstacles = {
    ObstacleTexts{"Farview finds no desktop here that it could add a screen to.",
                  "Log in to GNOME, or to a desktop on X11.", "no-desktop", true},
    ObstacleTexts{"This desktop cannot get another screen: the graphics driver has no output to "
                  "spare.",
                  useAnother, "no-spare-output", true},
    ObstacleTexts{"This desktop lacks what Farview adds a screen with.", useAnother,
                  "protocol-missing", true},
    ObstacleTexts{"The desktop does not let Farview add a screen.",
                  "Ask the administrator of this computer to allow sharing of the screen.",
                  "not-permitted", true},
    ObstacleTexts{"There is no picture while the screen of this computer is locked.",
                  "It comes back by itself after unlocking.", "locked", false},
    ObstacleTexts{"Another Farview has added a screen to this display already.",
                  "Turn the other one off, then turn this one off and on again.", "in-use", false},
    ObstacleTexts{"The device's screen is larger than this desktop can get.",
                  "Untick the full resolution in the settings, or give the device a lower one.",
                  "too-large", false},
    ObstacleTexts{"The device's screen was switched off in the settings of the desktop.",
                  "To bring it back, turn Farview off and on again.", "taken-away", false},
    ObstacleTexts{"The desktop that had the device's screen has ended.", "Log out and in again.",
                  "gone", false},
    ObstacleTexts{"The device's screen was not allowed when the desktop asked.",
                  "Turn Farview off and on again, and allow it when the desktop asks.", "declined",
                  false},
    ObstacleTexts{"The desktop did not add a screen, and did not say why.",
                  "Turn Farview off and on again.", "failed", true},
};
static_assert(obstacles.size() == static_cast<std::size_t>(ScreenObstacle::failed) + 1);

// In the order of the enumeration.
constexpr std::array sides = {"to the right of your main display",
                              "to the left of your main display", "above your main display",
                              "below your main display"};

constexpr const char* sizeText = "%1$@ × %2$@";
constexpr const char* sizeAndRateText = "%1$@ × %2$@ at %3$@ Hz";
constexpr const char* mirrorText = "%1$@, the same as on one of your screens";
constexpr const char* placeText = "%1$@, %2$@";
constexpr const char* placeAndScaleText = "%1$@, %2$@, enlarged %3$@ %";

std::string rounded(double number) { return std::to_string(std::lround(number)); }

std::string sizeAndRate(const ScreenReport& report, const Localize& localized)
{
    return report.rate > 0 ? filledPlaces(localized(sizeAndRateText),
                                          {std::to_string(report.width),
                                           std::to_string(report.height), rounded(report.rate)})
                           : screenSize(report, localized);
}

std::string shownSentence(const ScreenReport& report, const Localize& localized)
{
    constexpr double percent = 100;
    auto size = sizeAndRate(report, localized);
    if (report.isMirror)
        size = filledPlaces(localized(mirrorText), {size});
    if (report.screens.empty())
        return size;
    const auto place = screenPlace(sideOf(report.monitor, report.screens.front()), localized);
    return report.scale == 1 ? filledPlaces(localized(placeText), {size, place})
                             : filledPlaces(localized(placeAndScaleText),
                                            {size, place, rounded(report.scale * percent)});
}

const char* aboutOneFinger(ScreenReport::Fingers fingers)
{
    return fingers == ScreenReport::Fingers::oneWithoutARight
               ? "Only one finger at a time gets through: for several, this computer must allow "
                 "Farview more. Diagnose says how."
               : "Only one finger at a time gets through to this desktop, as its pointer.";
}

/// Those that nothing else of the panel tells.
std::string limits(ScreenWay way, bool wantsHiDPI, const Localize& localized)
{
    std::string lines;
    for (const auto& limit : limitsOf(way)) {
        const std::string name = limit.name;
        if (name != "windows-stay" && (wantsHiDPI || name != "no-enlarging"))
            lines += (lines.empty() ? "" : "\n") + localized(limit.text);
    }
    return lines;
}

} // namespace

const ObstacleTexts& obstacleTexts(ScreenObstacle obstacle)
{
    return obstacles.at(static_cast<std::size_t>(obstacle));
}

std::string screenPlace(ScreenSide side, const Localize& localized)
{
    return localized(sides.at(static_cast<std::size_t>(side)));
}

std::string screenSentence(const ScreenReport& report, const Localize& localized)
{
    switch (report.state) {
    case ScreenReport::State::shown:
        return shownSentence(report, localized);
    case ScreenReport::State::coming:
        return localized("The device's screen is being added to your desktop…");
    case ScreenReport::State::asking:
        return localized("Your desktop asks you about the device's screen: please answer there.");
    case ScreenReport::State::missing:
    case ScreenReport::State::impossible:
        return localized(obstacleTexts(report.obstacle).trouble);
    case ScreenReport::State::possible:
        return {};
    case ScreenReport::State::none:
        break;
    }
    return localized("This device shows no picture.");
}

std::string screenSize(const ScreenReport& report, const Localize& localized)
{
    return filledPlaces(localized(sizeText),
                        {std::to_string(report.width), std::to_string(report.height)});
}

std::string screenAdvice(const ScreenReport& report, bool wantsHiDPI, const Localize& localized)
{
    if (report.isObstructed())
        return localized(obstacleTexts(report.obstacle).remedy);
    if (report.state == ScreenReport::State::possible)
        return limits(report.way, wantsHiDPI, localized);
    if (report.state != ScreenReport::State::shown)
        return {};
    std::string advice;
    if (wantsHiDPI && report.scale == 1)
        advice = localized("HiDPI is on, but this desktop cannot enlarge the device's screen.");
    if (report.fingers != ScreenReport::Fingers::several)
        advice += (advice.empty() ? "" : "\n") + localized(aboutOneFinger(report.fingers));
    return advice;
}

std::string windowsHint(WindowKeeping windows)
{
    switch (windows) {
    case WindowKeeping::desktop:
        return "Your desktop does this by itself.";
    case WindowKeeping::nobody:
        return "Your desktop lets no program move windows.";
    case WindowKeeping::byFarview:
        break;
    }
    return {};
}

} // namespace farview
