#include "Applications/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::HasSubstr;
using testing::Not;

namespace
{

CommandLine read(const QStringList& words)
{
    return {QStringList(u"/usr/bin/farview-test"_qs) + words,
            u"Tests a command line."_qs,
            {{u"colour"_qs, u"Which one."_qs, u"NAME"_qs}, {u"quick"_qs, u"At once."_qs}},
            u"\nExit status:\n   0  done"_qs};
}

int statusOf(const QStringList& words)
{
    const CommandLine line = read(words);
    return line.answer() ? line.answer()->status : -1;
}

std::string textOf(const QStringList& words)
{
    const CommandLine line = read(words);
    return line.answer() ? line.answer()->text.toStdString() : std::string();
}

TEST(CommandLine, GivesOptionsAndTheirValuesInBothSpellings)
{
    const CommandLine line = read({u"--colour"_qs, u"a = b"_qs, u"--quick"_qs});
    EXPECT_FALSE(line.answer());
    EXPECT_TRUE(line.has("quick"));
    EXPECT_EQ(line.value("colour"), u"a = b"_qs);
    EXPECT_EQ(read({u"--colour=red"_qs}).value("colour"), u"red"_qs);
    EXPECT_FALSE(read({}).has("colour"));
}

TEST(CommandLine, AnswersHelpWithEveryOptionAndTheExitStatuses)
{
    for (const QString& word : {u"--help"_qs, u"-h"_qs}) {
        EXPECT_EQ(statusOf({u"--quick"_qs, word}), 0);
        EXPECT_THAT(textOf({word}), HasSubstr("Tests a command line."));
        EXPECT_THAT(textOf({word}), HasSubstr("--colour <NAME>"));
        EXPECT_THAT(textOf({word}), HasSubstr("\n   0  done"));
    }
}

TEST(CommandLine, AnswersWhichVersionItIs)
{
    EXPECT_EQ(statusOf({u"--version"_qs}), 0);
    EXPECT_THAT(textOf({u"-v"_qs}), testing::MatchesRegex("farview-test [0-9.]+"));
}

TEST(CommandLine, RefusesWhatItDoesNotKnowInPrintableWords)
{
    for (const QStringList& words :
         {QStringList{u"--shape"_qs}, QStringList{u"red"_qs}, QStringList{u"--colour"_qs},
          QStringList{u"--quick=very"_qs}, QStringList{u"\x1b[2J"_qs}}) {
        EXPECT_EQ(statusOf(words), CommandLine::wrongUse);
        EXPECT_THAT(textOf(words), testing::StartsWith("farview-test: "));
        EXPECT_THAT(textOf(words), Not(HasSubstr("\x1b")));
    }
    EXPECT_THAT(textOf({u"--shape"_qs}), HasSubstr("'shape'"));
    EXPECT_THAT(textOf({u"red"_qs}), HasSubstr("'red'"));
}

TEST(CommandLine, NamesTheOptionWhoseValueDoesNotFit)
{
    CommandLine line = read({u"--colour=red"_qs});
    line.read("quick", [](const std::string&) { return false; });
    EXPECT_FALSE(line.answer()) << "it is not there";
    line.read("colour", [](const std::string& value) { return value == "red"; });
    EXPECT_FALSE(line.answer());
    line.read("colour", [](const std::string&) { return false; });
    line.refuse(u"Another mistake."_qs);
    ASSERT_TRUE(line.answer());
    EXPECT_THAT(line.answer()->text.toStdString(), HasSubstr("--colour cannot have that value"));
}

TEST(CommandLine, ANumberIsTheWholeText)
{
    int number = 0;
    EXPECT_TRUE(readNumber("12", number));
    EXPECT_EQ(number, 12);
    for (const char* text : {"", " 12", "12 ", "+12", "12s", "99999999999"})
        EXPECT_FALSE(readNumber(text, number)) << text;
}

} // namespace
