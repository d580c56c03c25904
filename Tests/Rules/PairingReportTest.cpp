#include "Common/Rules/PairingReport.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using State = PairingReport::State;

PairingReport readPairing(const std::string& text) { return pairingReport(&text); }

const std::string nothing = textOfPairingReport({});

/// What is read of a text, as a text.
std::string readAgain(const std::string& text) { return textOfPairingReport(readPairing(text)); }

TEST(PairingReport, ComesBackAsItWasTold)
{
    for (int number = 1; number <= static_cast<int>(State::keyUnusable); ++number) {
        const auto state = static_cast<State>(number);
        const bool hasDigits = state == State::comparing || state == State::confirmed;
        for (const std::string device :
             {"Living Room Tablet", "fe80::1", " a  b ", "482913", "日本"}) {
            const PairingReport report{state, hasDigits ? "004829" : "", device};
            EXPECT_EQ(readPairing(textOfPairingReport(report)), report) << number << device;
        }
    }
    EXPECT_EQ(readPairing(textOfPairingReport({})), PairingReport{});
}

TEST(PairingReport, WhatCannotBeReadIsNothing)
{
    EXPECT_EQ(pairingReport(nullptr), PairingReport{});
    const std::string zero("\0comparing 482913 Tablet", 24);
    for (const std::string& text :
         {std::string(), std::string("none Tablet"), std::string("Changed Tablet"),
          std::string("comparing"), std::string("comparing Tablet"),
          std::string("comparing 48291 Tablet"), std::string("comparing 4829130 Tablet"),
          std::string("comparing -48291 Tablet"), std::string("comparing ٤٨٢ Tablet"),
          std::string("comparing 482913Tablet"), std::string("confirmed 48 913 Tablet"),
          std::string("changed " + std::string(600, 'x')), zero})
        EXPECT_EQ(readAgain(text), nothing) << text;
}

TEST(PairingReport, NamesADevice)
{
    for (const char* text :
         {"changed", "changed ", "comparing 482913", "comparing 482913 ", "tooOld \nTablet"})
        EXPECT_EQ(readAgain(text), nothing) << text;
    EXPECT_EQ(readPairing("tooOld Tab\nlet").device, "Tab") << "a name is one line";
}

TEST(PairingReport, AnswersARequestAlsoWithoutAFailure)
{
    for (const auto state : {State::none, State::unconfirmed})
        EXPECT_FALSE(isFailure(state) || answersRequest(state)) << static_cast<int>(state);
    for (const auto state : {State::comparing, State::confirmed})
        EXPECT_TRUE(!isFailure(state) && answersRequest(state)) << static_cast<int>(state);
    for (const auto state :
         {State::changed, State::refusedThere, State::notCompared, State::tooManyTries,
          State::interfered, State::tooOld, State::keyUnusable})
        EXPECT_TRUE(isFailure(state) && answersRequest(state)) << static_cast<int>(state);
}

TEST(PairingReport, OnlySixDecimalDigitsAreCompared)
{
    EXPECT_TRUE(arePairingDigits("000000"));
    for (const char* text : {"", "48291", "4829133", "48291a", "482 91", "+48291", "48291\n"})
        EXPECT_FALSE(arePairingDigits(text)) << text;
    EXPECT_FALSE(arePairingDigits(std::string("48291\0", 6)));
}

TEST(PairingReport, TypedDigitsMayHaveBlanks)
{
    EXPECT_EQ(withoutBlanks(" 482\t913\r\n"), "482913");
    EXPECT_EQ(withoutBlanks("482\u00A0913"), "482913") << "copied from the panel";
    EXPECT_EQ(withoutBlanks("482-913"), "482-913");
    EXPECT_EQ(withoutBlanks(groupedDigits("482913")), "482913");
}

TEST(PairingReport, DigitsAreShownInTwoGroups)
{
    EXPECT_EQ(groupedDigits("482913"), "482 913");
    EXPECT_EQ(groupedDigits("000000"), "000 000");
}

} // namespace
} // namespace farview
