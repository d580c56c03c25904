#include "Common/Rules/UpdateTexts.h"

#include <algorithm>
#include <iterator>

namespace farview
{
namespace
{

using Stage = UpdateStatus::Stage;

constexpr const char* tryLater = "Try again later.";
constexpr const char* nothingWasChanged = "Nothing was changed. Try again later.";
constexpr const char* askTheSource = "Get new versions where you got this one.";
constexpr const char* notGenuine = "What the update server sent is damaged or not genuine.";

struct ProblemTexts {
    UpdateProblem problem;
    const char* trouble;
    const char* remedy;
};

constexpr ProblemTexts problemTexts[] = {
    {UpdateProblem::notConfigured, "This copy of Farview knows no place to get updates from.",
     askTheSource},
    {UpdateProblem::insecureAddress,
     "The place that this copy of Farview gets updates from is not secure.", askTheSource},
    {UpdateProblem::noNetwork, "There is no network connection.",
     "Connect to a network and try again."},
    {UpdateProblem::server, "The update server cannot be reached or does not work.", tryLater},
    {UpdateProblem::certificate, "The update server could not prove that it is the right one.",
     "Check this computer's date and time. Where a network asks you to sign in, sign in first."},
    {UpdateProblem::stalled, "The update server is too slow or stopped sending.", tryLater},
    {UpdateProblem::feedUnreadable, "What the update server sent cannot be read.", tryLater},
    {UpdateProblem::feedExpired, "The list of updates is out of date.",
     "Check this computer's date and time. If they are right, try again later, or get new versions "
     "where you got this one."},
    {UpdateProblem::feedReplayed, "The update server sent an older list of updates than before.",
     tryLater},
    {UpdateProblem::clock, "By this computer's clock, the list of updates comes from the future.",
     "Check this computer's date and time."},
    {UpdateProblem::systemTooOld, "The new version needs a newer system than this one.",
     "Update the system first."},
    {UpdateProblem::managed, "Farview is installed for all users of this computer.",
     "The system's package manager updates it."},
    {UpdateProblem::tooLarge, "The update server announced more than an update may be.",
     nothingWasChanged},
    {UpdateProblem::noSpace, "There is not enough free space for the update.",
     "Make some room and try again."},
    {UpdateProblem::wrongLength, notGenuine, nothingWasChanged},
    {UpdateProblem::wrongSignature, notGenuine, nothingWasChanged},
    {UpdateProblem::archive, notGenuine, nothingWasChanged},
    {UpdateProblem::wrongVersion, notGenuine, nothingWasChanged},
    {UpdateProblem::downgrade, "The update server offered an older version.", nothingWasChanged},
    {UpdateProblem::unfit, "The new version does not work on this computer.",
     "The version that you have stays in place."},
    {UpdateProblem::write, "The update could not be written to the disk.",
     "Check the disk and try again."},
    {UpdateProblem::busy, "Another update of Farview is under way.", "Wait until it has ended."},
    {UpdateProblem::internal, "Something unexpected stopped the update.",
     "Try again. If that does not help, install Farview again."},
};

const ProblemTexts& textsFor(UpdateProblem problem)
{
    return *std::find_if(std::begin(problemTexts), std::end(problemTexts) - 1,
                         [=](const auto& each) { return each.problem == problem; });
}

std::string twoDigits(int number)
{
    const std::string digits = std::to_string(number);
    return digits.size() < 2 ? "0" + digits : digits;
}

std::string dateText(const LocalTime& time)
{
    return std::to_string(time.year) + "-" + twoDigits(time.month) + "-" + twoDigits(time.day);
}

bool isSameDay(const LocalTime& left, const LocalTime& right)
{
    return left.year == right.year && left.month == right.month && left.day == right.day;
}

TextWithValue headline(const UpdateStatus& status)
{
    switch (status.stage) {
    case Stage::current:
        return {"Farview is up to date.", {}};
    case Stage::found:
        return {"Farview %@ is available.", status.version};
    case Stage::downloading:
        return {"Downloading Farview %@…", status.version};
    case Stage::verifying:
        return {"Verifying Farview %@…", status.version};
    case Stage::ready:
    case Stage::installing:
        return {"Installing Farview %@…", status.version};
    case Stage::installed:
        return {"Farview %@ is installed.", status.version};
    case Stage::cancelled:
        return {"Nothing was changed.", {}};
    case Stage::failed:
        return {status.version.empty() ? "The check for updates failed."
                                       : "Farview was not updated.",
                {}};
    default:
        return {"Looking for updates…", {}};
    }
}

TextWithValue detail(const UpdateStatus& status, const std::string& ownVersion)
{
    switch (status.stage) {
    case Stage::current:
        return {"Version %@ is the newest one.", ownVersion};
    case Stage::found:
        return {"You have version %@. The connection to your device ends while the new version is "
                "put in place.",
                ownVersion};
    case Stage::downloading:
        return {status.length > 0 ? amountText(status.received) + " / " + amountText(status.length)
                                  : std::string(),
                {}};
    case Stage::installed:
        return {"Reopen this panel to use it.", {}};
    case Stage::failed:
        return {updateTrouble(status.problem), {}};
    default:
        return {};
    }
}

} // namespace

std::string updateTrouble(UpdateProblem problem) { return textsFor(problem).trouble; }

std::string updateRemedy(UpdateProblem problem) { return textsFor(problem).remedy; }

std::string updateOutcome(const UpdateStatus& status)
{
    switch (status.stage) {
    case Stage::current:
        return "current";
    case Stage::found:
        return "found";
    case Stage::installed:
        return "installed";
    case Stage::failed:
        return std::string(wordOf(status.problem));
    default:
        return {};
    }
}

std::string updateOutcomeText(const std::string& outcome)
{
    if (outcome.empty())
        return {};
    if (outcome == "current")
        return "Farview is up to date.";
    if (outcome == "found")
        return "An update was found.";
    if (outcome == "installed")
        return "An update was installed.";
    return updateTrouble(updateProblemOf(outcome));
}

TextWithValue lastUpdateCheckText(const std::optional<LocalTime>& last, const LocalTime& now)
{
    if (!last)
        return {"Updates were not looked for yet.", {}};
    if (isSameDay(*last, now))
        return {"Looked for updates today at %@.",
                twoDigits(last->hour) + ":" + twoDigits(last->minute)};
    return {"Looked for updates on %@.",
            dateText(*last) + " " + twoDigits(last->hour) + ":" + twoDigits(last->minute)};
}

TextWithValue updateNews(const UpdateStatus& status)
{
    switch (status.stage) {
    case Stage::checking:
        return {"Looking for updates…", {}};
    case Stage::found:
        return {"Farview %@ is available.", status.version};
    case Stage::downloading:
    case Stage::verifying:
    case Stage::ready:
    case Stage::installing:
        return {"Farview %@ is being installed…", status.version};
    case Stage::installed:
        return {"Farview %@ is installed. Reopen this panel to use it.", status.version};
    default:
        return {};
    }
}

std::string updateButtonTitle(const UpdateStatus& status)
{
    const bool hasNews = status.stage == Stage::found || status.stage == Stage::installed;
    return hasNews ? "Show Update…" : "";
}

std::string amountText(std::int64_t bytes)
{
    constexpr std::int64_t kilo = 1000;
    constexpr std::int64_t mega = kilo * kilo;
    constexpr std::int64_t firstInMega = 10 * mega;
    return bytes < firstInMega ? std::to_string((bytes + kilo - 1) / kilo) + " kB"
                               : std::to_string(bytes / mega) + " MB";
}

UpdateSheetDisplay updateSheetDisplay(const UpdateStatus& status, const std::string& ownVersion)
{
    UpdateSheetDisplay display{headline(status), detail(status, ownVersion), {}};
    display.isBusy = isUnderWay(status.stage) || status.stage == Stage::idle;
    switch (status.stage) {
    case Stage::found:
        display.showsNotes = !status.notes.empty();
        display.firstButton = "Install";
        display.secondButton = "Later";
        break;
    case Stage::installed:
        display.firstButton = "Reopen";
        display.secondButton = "Later";
        break;
    case Stage::failed:
        display.remedy = updateRemedy(status.problem);
        [[fallthrough]];
    case Stage::current:
    case Stage::cancelled:
        display.firstButton = "OK";
        break;
    default:
        display.secondButton = "Cancel";
        display.canBeLeft = status.stage != Stage::ready && status.stage != Stage::installing;
    }
    return display;
}

} // namespace farview
