#include "Common/Rules/UpdateTexts.h"
#include "Platform/Types/UpdateProblem.h"

#include <gtest/gtest.h>

#include <set>

namespace
{

using namespace farview;
using Stage = UpdateStatus::Stage;

UpdateStatus statusOf(Stage stage)
{
    UpdateStatus status;
    status.stage = stage;
    status.version = "1.1";
    status.notes = "Better.";
    return status;
}

UpdateStatus failedWith(UpdateProblem problem)
{
    UpdateStatus status;
    status.stage = Stage::failed;
    status.problem = problem;
    return status;
}

TEST(UpdateTexts, EachFailureSaysWhatIsWrongAndWhatToDo)
{
    for (const auto& each : updateProblemWords) {
        EXPECT_TRUE(updateTrouble(each.problem).ends_with('.')) << each.word;
        EXPECT_TRUE(updateRemedy(each.problem).ends_with('.')) << each.word;
    }
    EXPECT_EQ(updateRemedy(UpdateProblem::managed), "The system's package manager updates it.");
}

TEST(UpdateTexts, OnlyWhatIsTheSameForTheUserSharesASentence)
{
    std::set<std::string> texts;
    for (const auto& each : updateProblemWords)
        texts.insert(updateTrouble(each.problem));
    // A wrong length, signature, archive and version are one thing: what came is not ours.
    EXPECT_EQ(texts.size(), updateProblemWords.size() - 3);
}

TEST(UpdateTexts, WordsOfFailuresGoThereAndBack)
{
    std::set<std::string_view> words;
    for (const auto& each : updateProblemWords) {
        EXPECT_EQ(updateProblemOf(wordOf(each.problem)), each.problem) << each.word;
        EXPECT_TRUE(words.insert(each.word).second) << each.word;
    }
    EXPECT_EQ(updateProblemOf("nobody knows"), UpdateProblem::internal);
}

TEST(UpdateTexts, AnOutcomeIsStoredAsAWordAndReadAsASentence)
{
    struct Row {
        UpdateStatus status;
        const char* word;
        const char* text;
    };
    const Row rows[] = {
        {statusOf(Stage::current), "current", "Farview is up to date."},
        {statusOf(Stage::found), "found", "An update was found."},
        {statusOf(Stage::installed), "installed", "An update was installed."},
        {failedWith(UpdateProblem::server), "server",
         "The update server cannot be reached or does not work."},
        {statusOf(Stage::checking), "", ""},
        {statusOf(Stage::cancelled), "", ""},
        {statusOf(Stage::downloading), "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(updateOutcome(row.status), row.word);
        EXPECT_EQ(updateOutcomeText(row.word), row.text);
    }
    EXPECT_EQ(updateOutcomeText("from another program"), updateTrouble(UpdateProblem::internal));
}

TEST(UpdateTexts, TheLastLookIsToldByTheUsersClockAndCalendar)
{
    const LocalTime now{2026, 11, 21, 15, 30};
    EXPECT_EQ(lastUpdateCheckText(std::nullopt, now),
              (TextWithValue{"Updates were not looked for yet.", ""}));
    EXPECT_EQ(lastUpdateCheckText(LocalTime{2026, 11, 21, 9, 5}, now),
              (TextWithValue{"Looked for updates today at %@.", "09:05"}));
    EXPECT_EQ(lastUpdateCheckText(LocalTime{2026, 11, 20, 15, 30}, now),
              (TextWithValue{"Looked for updates on %@.", "2026-11-20 15:30"}));
    EXPECT_EQ(lastUpdateCheckText(LocalTime{2026, 3, 2, 1, 0}, now),
              (TextWithValue{"Looked for updates on %@.", "2026-03-02 01:00"}));
}

TEST(UpdateTexts, TheSettingsTellWhatIsNewAndLeadToIt)
{
    EXPECT_EQ(updateNews(statusOf(Stage::found)),
              (TextWithValue{"Farview %@ is available.", "1.1"}));
    EXPECT_EQ(updateButtonTitle(statusOf(Stage::found)), "Show Update…");
    EXPECT_EQ(updateButtonTitle(statusOf(Stage::installed)), "Show Update…");
    for (const auto stage : {Stage::idle, Stage::current, Stage::cancelled, Stage::failed}) {
        EXPECT_EQ(updateNews(statusOf(stage)), TextWithValue{});
        EXPECT_EQ(updateButtonTitle(statusOf(stage)), "");
    }
}

struct SheetRow {
    Stage stage;
    const char* headline;
    bool showsNotes;
    bool isBusy;
    const char* first;
    const char* second;
    bool canBeLeft;
};

TEST(UpdateTexts, TheSheetFollowsTheUpdate)
{
    const SheetRow rows[] = {
        {Stage::idle, "Looking for updates…", false, true, "", "Cancel", true},
        {Stage::checking, "Looking for updates…", false, true, "", "Cancel", true},
        {Stage::current, "Farview is up to date.", false, false, "OK", "", true},
        {Stage::found, "Farview %@ is available.", true, false, "Install", "Later", true},
        {Stage::downloading, "Downloading Farview %@…", false, true, "", "Cancel", true},
        {Stage::verifying, "Verifying Farview %@…", false, true, "", "Cancel", true},
        {Stage::ready, "Installing Farview %@…", false, true, "", "Cancel", false},
        {Stage::installing, "Installing Farview %@…", false, true, "", "Cancel", false},
        {Stage::installed, "Farview %@ is installed.", false, false, "Reopen", "Later", true},
        {Stage::cancelled, "Nothing was changed.", false, false, "OK", "", true},
        {Stage::failed, "Farview was not updated.", false, false, "OK", "", true},
    };
    for (const auto& row : rows) {
        const auto display = updateSheetDisplay(statusOf(row.stage), "1.0");
        EXPECT_EQ(display.headline.text, row.headline);
        EXPECT_EQ(display.showsNotes, row.showsNotes) << row.headline;
        EXPECT_EQ(display.isBusy, row.isBusy) << row.headline;
        EXPECT_EQ(display.firstButton, row.first) << row.headline;
        EXPECT_EQ(display.secondButton, row.second) << row.headline;
        EXPECT_EQ(display.canBeLeft, row.canBeLeft) << row.headline;
    }
}

TEST(UpdateTexts, TheSheetFillsInVersionsAndAmounts)
{
    EXPECT_EQ(updateSheetDisplay(statusOf(Stage::found), "1.0").detail.value, "1.0");
    EXPECT_EQ(updateSheetDisplay(statusOf(Stage::found), "1.0").headline.value, "1.1");
    auto status = statusOf(Stage::downloading);
    EXPECT_EQ(updateSheetDisplay(status, "1.0").detail.text, "");
    status.received = 812'000;
    status.length = 12'345'678;
    EXPECT_EQ(updateSheetDisplay(status, "1.0").detail.text, "812 kB / 12 MB");
    const auto failed = updateSheetDisplay(failedWith(UpdateProblem::noSpace), "1.0");
    EXPECT_EQ(failed.headline.text, "The check for updates failed.");
    EXPECT_EQ(failed.detail.text, "There is not enough free space for the update.");
    EXPECT_EQ(failed.remedy, "Make some room and try again.");
}

TEST(UpdateTexts, NotesWithoutWordsTakeNoRoom)
{
    auto status = statusOf(Stage::found);
    status.notes.clear();
    EXPECT_FALSE(updateSheetDisplay(status, "1.0").showsNotes);
}

TEST(UpdateTexts, AmountsAreRoundAndNeverNothing)
{
    EXPECT_EQ(amountText(0), "0 kB");
    EXPECT_EQ(amountText(1), "1 kB");
    EXPECT_EQ(amountText(999'999), "1000 kB");
    EXPECT_EQ(amountText(9'999'000), "9999 kB");
    EXPECT_EQ(amountText(10'000'000), "10 MB");
}

} // namespace
