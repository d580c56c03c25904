#include "Platform/Desktop/Screens/Wlroots/SwayPlacing.h"

#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

const SwayStand atHome{"1", true, false, pixelPoint(100, 80)};
const SwayStand onOurs{"2", true, false, pixelPoint(1300, 40)};
constexpr std::uint32_t monitorNumber = 7;

/// The user's monitor, and ours beside it.
SwayTree treeWith(std::vector<SwayWindow> windows)
{
    return {{{"DP-1", pixelPoint(0, 0), "1"}, {"HEADLESS-1", pixelPoint(1280, 0), "2"}},
            std::move(windows),
            "DP-1"};
}

SwayWindow window(const std::string& output, const SwayStand& stand,
                  std::optional<SwayNote> note = std::nullopt)
{
    SwayWindow window{5, output, stand, std::move(note), {}};
    if (window.note)
        window.mark = swayMark(window.id, *window.note);
    return window;
}

std::string marked(const SwayNote& note)
{
    return "[con_id=5] mark --add " + swayQuoted(swayMark(5, note));
}
std::string unmarked(const SwayNote& note)
{
    return "[con_id=5] unmark " + swayQuoted(swayMark(5, note));
}

/// On the monitor, from its corner.
SwayStand there(bool isFull = false) { return {"2", true, isFull, pixelPoint(20, 40)}; }

TEST(SwayQuoted, IsOneWordWhateverIsInIt)
{
    EXPECT_EQ(swayQuoted("HEADLESS-1"), R"("HEADLESS-1")");
    EXPECT_EQ(swayQuoted("it's; a"), "\"it's; a\"");
    EXPECT_EQ(swayQuoted("a \"b\""), "'a \"b\"'");
    EXPECT_EQ(swayQuoted("it's \"b\""), "'its \"b\"'");
}

TEST(NotesFor, SayWhereAWindowOfTheMonitorCameFrom)
{
    const auto tree = treeWith({window("HEADLESS-1", onOurs)});
    EXPECT_EQ(notesFor(tree, "HEADLESS-1", monitorNumber, {{5, atHome}}),
              (SwayCommands{marked({monitorNumber, true, there(), atHome})}));
    EXPECT_EQ(notesFor(tree, "HEADLESS-1", monitorNumber, {}),
              (SwayCommands{marked({monitorNumber, true, there(), std::nullopt})}));
}

TEST(NotesFor, ChangeOnlyWhatIsNew)
{
    const SwayNote note{monitorNumber, true, there(), atHome};
    EXPECT_EQ(notesFor(treeWith({window("HEADLESS-1", onOurs, note)}), "HEADLESS-1", monitorNumber,
                       {{5, onOurs}}),
              SwayCommands{});
    const SwayNote older{monitorNumber, true, there(true), atHome};
    EXPECT_EQ(
        notesFor(treeWith({window("HEADLESS-1", onOurs, older)}), "HEADLESS-1", monitorNumber, {}),
        (SwayCommands{unmarked(older), marked(note)}));
}

TEST(NotesFor, AreRemovedFromWindowsThatHaveLeft)
{
    const SwayNote note{monitorNumber, true, there(), atHome};
    EXPECT_EQ(notesFor(treeWith({window("DP-1", atHome, note)}), "HEADLESS-1", monitorNumber, {}),
              (SwayCommands{unmarked(note)}));
    const SwayNote gone{monitorNumber, false, there(), atHome};
    const SwayNote ofAnother{monitorNumber + 1, true, there(), atHome};
    for (const auto& kept : {gone, ofAnother})
        EXPECT_EQ(
            notesFor(treeWith({window("DP-1", atHome, kept)}), "HEADLESS-1", monitorNumber, {}),
            SwayCommands{});
}

TEST(TakenBack, WindowsGoHomeAndAreToReturn)
{
    const SwayNote note{monitorNumber, true, {}, atHome};
    EXPECT_EQ(takenBack(treeWith({window("HEADLESS-1", onOurs, note)}), "HEADLESS-1"),
              (SwayCommands{
                  "[con_id=5] fullscreen disable",
                  "[con_id=5] move --no-auto-back-and-forth container to workspace \"1\"",
                  "[con_id=5] floating enable",
                  "[con_id=5] move absolute position 100 80",
                  unmarked(note),
                  marked({monitorNumber, false, there(), atHome}),
              }));
}

TEST(TakenBack, WindowsWithoutAHomeGoToAnotherMonitor)
{
    EXPECT_EQ(takenBack(treeWith({window("HEADLESS-1", onOurs)}), "HEADLESS-1"),
              (SwayCommands{"[con_id=5] move container to output \"DP-1\""}));
}

TEST(TakenBack, TheFocusGoesToo)
{
    auto tree = treeWith({});
    tree.focusedOutput = "HEADLESS-1";
    EXPECT_EQ(takenBack(tree, "HEADLESS-1"), (SwayCommands{"focus output \"DP-1\""}));
}

TEST(TakenBack, WhereThereIsNoOtherMonitorNothingMoves)
{
    SwayTree tree{{{"HEADLESS-1", {}, "1"}}, {window("HEADLESS-1", onOurs)}, "HEADLESS-1"};
    EXPECT_EQ(takenBack(tree, "HEADLESS-1"), SwayCommands{});
}

TEST(BroughtTo, WindowsThatStayedWhereTheyWerePutReturn)
{
    const SwayNote note{monitorNumber, false, there(true), atHome};
    EXPECT_EQ(broughtTo(treeWith({window("DP-1", atHome, note)}), "HEADLESS-1", monitorNumber),
              (SwayCommands{
                  "[con_id=5] fullscreen disable",
                  "[con_id=5] move container to output \"HEADLESS-1\"",
                  "[con_id=5] floating enable",
                  "[con_id=5] move absolute position 1300 40",
                  "[con_id=5] fullscreen enable",
                  unmarked(note),
                  marked({monitorNumber, true, there(true), atHome}),
              }));
}

TEST(BroughtTo, OthersStay)
{
    auto elsewhere = atHome;
    elsewhere.workspace = "3";
    const SwayNote note{monitorNumber, false, there(), atHome};
    for (const auto& each :
         {window("DP-1", elsewhere, note), window("DP-1", atHome),
          window("DP-1", atHome, SwayNote{monitorNumber + 1, false, there(), atHome}),
          window("HEADLESS-1", onOurs, SwayNote{monitorNumber, true, there(), atHome}),
          window("DP-1", atHome, SwayNote{monitorNumber, false, there(), std::nullopt})})
        EXPECT_EQ(broughtTo(treeWith({each}), "HEADLESS-1", monitorNumber), SwayCommands{});
}

} // namespace
} // namespace farview
