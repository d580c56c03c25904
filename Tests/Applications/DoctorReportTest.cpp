#include "Applications/Doctor/Notebook.h"
#include "Applications/Doctor/Report.h"
#include "Applications/Doctor/Sentence.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace farview;

namespace
{

std::string same(const std::string& text) { return text; }

Report hostileReport()
{
    Finding device{Area::devices,
                   Severity::problem,
                   "refuses",
                   {"“%@” refuses: %@", {"Desk\n[OK]\x1b[2J\xff", "%@ \u202e no"}},
                   {"Look at %@.", {"it\r"}},
                   {{"name", "Desk\n\x1b"}}};
    return {"1.0", "2026-03-01T12:00:00Z", true, {device}};
}

QJsonObject parsed(const Report& report)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(renderedJSON(report))).object();
}

TEST(DoctorReport, ShowsAreasTextsAndAdvice)
{
    const Report report{"1.0",
                        "2026-03-01T12:00:00Z",
                        true,
                        {{Area::bus, Severity::ok, "session", {"The bus answers."}},
                         {Area::driver, Severity::problem, "missing", {"No driver."}, {"Install."}},
                         {Area::driver, Severity::note, "other", {"Another."}}}};
    EXPECT_EQ(renderedText(report, same),
              "Farview 1.0, diagnosis of 2026-03-01T12:00:00Z\n"
              "Devices cannot be used at the moment. The lines marked \"Problem\" say why.\n"
              "\n"
              "Message bus\n"
              "  [OK] The bus answers.\n"
              "\n"
              "Driver\n"
              "  [Problem] No driver.\n"
              "      Install.\n"
              "  [Note] Another.\n");
}

TEST(DoctorReport, TranslatesEveryTextAndNoValue)
{
    const auto shouted = [](const std::string& text) { return "<" + text + ">"; };
    const std::string text = renderedText(
        {"1", "d", true, {{Area::bus, Severity::note, "n", {"At %@", {"a"}}}}}, shouted);
    EXPECT_NE(
        text.find("<Farview 1, diagnosis of d>\n<Nothing is in the way of using a device as a "
                  "screen.>\n\n<Message bus>\n  [<Note>] <At a>\n"),
        std::string::npos)
        << text;
}

TEST(DoctorReport, ForeignTextStaysOnItsLineAndShowsItsControlCharacters)
{
    const std::string text = renderedText(hostileReport(), same);
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find("\n[OK]"), std::string::npos);
    EXPECT_EQ(text.find("\u202e"), std::string::npos);
    EXPECT_NE(text.find("\\x1B"), std::string::npos) << text;
    EXPECT_NE(text.find("\\n"), std::string::npos) << text;
    EXPECT_NE(text.find("%@ "), std::string::npos) << "a value's own placeholder is a text";
}

TEST(DoctorReport, JSONHasItsKeysWhateverTheValuesHold)
{
    const QJsonObject report = parsed(hostileReport());
    EXPECT_EQ(report["format"].toInt(), 1);
    EXPECT_EQ(report["version"].toString(), "1.0");
    EXPECT_EQ(report["date"].toString(), "2026-03-01T12:00:00Z");
    EXPECT_TRUE(report["complete"].toBool());
    EXPECT_EQ(report["verdict"].toString(), "blocked");
    const QJsonObject finding = report["findings"].toArray().at(0).toObject();
    EXPECT_EQ(finding.keys(), (QStringList{"advice", "area", "details", "id", "severity", "text"}));
    EXPECT_EQ(finding["area"].toString(), "devices");
    EXPECT_EQ(finding["id"].toString(), "devices.refuses");
    EXPECT_EQ(finding["severity"].toString(), "problem");
    EXPECT_EQ(finding["details"].toObject()["name"].toString(), "Desk\\n\\x1B");
}

TEST(DoctorReport, JSONLeavesOutAdviceWhereThereIsNone)
{
    const QJsonObject report =
        parsed({"1", "d", true, {{Area::bus, Severity::ok, "session", {"Fine."}}}});
    EXPECT_FALSE(report["findings"].toArray().at(0).toObject().contains("advice"));
}

TEST(DoctorSentence, FillsItsPlaceholdersInOrder)
{
    EXPECT_EQ(shownSentence({"%@ and %@", {"a", "b"}}, same), "a and b");
    EXPECT_EQ(shownSentence({"%@ and %@", {"%@", "b"}}, same), "%@ and b");
    EXPECT_EQ(shownSentence({"%@ and %@", {"a"}}, same), "a and %@");
    EXPECT_EQ(shownSentence({"none", {"a"}}, same), "none");
}

TEST(DoctorSentence, CutsLongValues)
{
    EXPECT_LE(shownValue(std::string(100'000, 'x')).size(), 300u);
}

TEST(DoctorNotebook, KeepsTheOrderOfTheAreas)
{
    Notebook notebook("1", "d");
    notebook.add({{Area::devices, Severity::ok, "first", {"x"}}});
    notebook.add(
        {{Area::bus, Severity::ok, "second", {"x"}}, {Area::bus, Severity::ok, "third", {"x"}}});
    const Report report = notebook.report();
    ASSERT_EQ(report.findings.size(), 3u);
    EXPECT_EQ(report.findings[0].name, "second");
    EXPECT_EQ(report.findings[1].name, "third");
    EXPECT_EQ(report.findings[2].name, "first");
    EXPECT_FALSE(report.isComplete);
    notebook.setComplete();
    EXPECT_TRUE(notebook.report().isComplete);
}

} // namespace
