#include "Platform/Desktop/Screens/Wlroots/SwayTree.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace farview
{
namespace
{

SwayTree treeOf(const QByteArray& json) { return swayTreeIn(QJsonDocument::fromJson(json)); }

TEST(SwayTree, HasTheWindowsOfEachOutput)
{
    const auto tree = treeOf(R"({"nodes": [
        {"name": "__i3", "nodes": [{"name": "__i3_scratch", "floating_nodes": [
            {"id": 9, "pid": 1, "rect": {"x": 1, "y": 1}}]}]},
        {"name": "DP-1", "rect": {"x": 10, "y": 20}, "current_workspace": "one", "nodes": [
            {"name": "one", "nodes": [
                {"id": 2, "nodes": [{"id": 3, "pid": 7, "focused": true,
                    "rect": {"x": 5, "y": 26}, "deco_rect": {"height": 6}}]}],
             "floating_nodes": [
                {"id": 4, "pid": 8, "rect": {"x": -7, "y": 8}, "fullscreen_mode": 1}]}]}]})");
    ASSERT_EQ(tree.outputs.size(), 1U);
    EXPECT_EQ(tree.outputs[0].name, "DP-1");
    EXPECT_EQ(tree.outputs[0].corner, pixelPoint(10, 20));
    EXPECT_EQ(tree.outputs[0].workspace, "one");
    EXPECT_EQ(tree.focusedOutput, "DP-1");
    ASSERT_EQ(tree.windows.size(), 2U);
    EXPECT_EQ(tree.windows[0].id, 3);
    EXPECT_EQ(tree.windows[0].stand, (SwayStand{"one", false, false, pixelPoint(5, 20)}));
    EXPECT_EQ(tree.windows[1].id, 4);
    EXPECT_EQ(tree.windows[1].output, "DP-1");
    EXPECT_EQ(tree.windows[1].stand, (SwayStand{"one", true, true, pixelPoint(-7, 8)}));
}

TEST(SwayTree, WhatIsNoneIsEmpty)
{
    for (const char* json :
         {"", "[]", "7", "{}", R"({"nodes": 5})", R"({"nodes": [3, null, "x", [], {}]})",
          R"({"nodes": [{"name": 4}]})", R"({"nodes": [{"name": "A", "nodes": {"pid": 1}}]})",
          R"({"nodes": [{"name": "A", "rect": 7, "nodes": [{"name": 1, "nodes": [null]}]}]})"})
        EXPECT_TRUE(treeOf(json).windows.empty()) << json;
}

TEST(SwayTree, PlacesThatNoScreenHasAreBounded)
{
    const auto tree = treeOf(R"({"nodes": [{"name": "A", "nodes": [{"name": "1", "nodes": [
        {"pid": 1, "rect": {"x": 99999999, "y": -1e300}}]}]}]})");
    ASSERT_EQ(tree.windows.size(), 1U);
    EXPECT_EQ(tree.windows[0].stand.corner.x, 32767);
}

TEST(SwayTree, NestingHasAnEnd)
{
    QByteArray inner = R"({"pid": 1})";
    for (int depth = 0; depth < 200; ++depth)
        inner = R"({"nodes": [)" + inner + "]}";
    EXPECT_TRUE(treeOf(R"({"nodes": [{"name": "A", "nodes": [)" + inner + "]}]}").windows.empty());
}

/// A tree with one window that has that mark.
SwayTree marked(const std::string& mark)
{
    QJsonDocument json = QJsonDocument::fromJson(R"({"nodes": [{"name": "A", "nodes": [
        {"name": "1", "nodes": [{"id": 5, "pid": 1, "marks": ["theirs", "MARK"]}]}]}]})");
    auto text = QString::fromUtf8(json.toJson());
    auto quoted = QString::fromStdString(mark);
    quoted.replace(QStringLiteral("\\"), QStringLiteral("\\\\"));
    quoted.replace(QStringLiteral("\""), QStringLiteral("\\\""));
    return treeOf(text.replace(QStringLiteral("MARK"), quoted).toUtf8());
}

TEST(SwayMark, IsReadAsItWasWritten)
{
    const SwayStand there{"odd \"name\" \\ ü", true, false, pixelPoint(-3, 4)};
    for (const auto& note :
         {SwayNote{4000000000, true, there, std::nullopt},
          SwayNote{0, false, there, SwayStand{"1", false, true, pixelPoint(0, 0)}}}) {
        const auto mark = swayMark(5, note);
        const auto tree = marked(mark);
        ASSERT_EQ(tree.windows.size(), 1U);
        EXPECT_EQ(tree.windows[0].mark, mark);
        EXPECT_EQ(tree.windows[0].note, note);
    }
}

TEST(SwayMark, DiffersFromOneWindowToTheNext)
{
    const SwayNote note{1, true, {"1", false, false, {}}, std::nullopt};
    EXPECT_NE(swayMark(5, note), swayMark(6, note));
}

TEST(SwayMark, OfSomebodyElseIsNoNote)
{
    for (const char* text : {"", "[]", "{}", "[1,2,3,4,5]", "[5,1,true,[\"\",true,true,1,2],[]]",
                             "[5,1,true,[\"1\"],[]]"})
        EXPECT_FALSE(
            marked("_farview:" + QByteArray(text).toBase64().toStdString()).windows.at(0).note)
            << text;
    EXPECT_FALSE(marked("_farview:*").windows.at(0).note);
    EXPECT_EQ(marked("other").windows.at(0).mark, "");
}

TEST(SwayMonitorNumber, IsTheSameAtEachStart)
{
    EXPECT_EQ(swayMonitorNumber("Tablet"), swayMonitorNumber("Tablet"));
    EXPECT_NE(swayMonitorNumber("Tablet"), swayMonitorNumber("tablet"));
    EXPECT_EQ(swayMonitorNumber("a"), 0xE40C292CU);
}

} // namespace
} // namespace farview
